// Opening the text files the interface layer reads or appends to (kernel
// and event logs, the driver parameter file). A FIFO or device put in place
// of one of them must neither hang the program nor be read as text: every
// open is non-blocking and anything but a regular file is refused.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "uil/uil_file.h"

enum class UilOpenResult { Ok, Missing, NotRegular, Failed };

// Opens `path` with `flags` (O_NONBLOCK and O_CLOEXEC are added) and checks
// it is a regular file; `fd` owns it on success. errno tells the cause of a
// failure (EINVAL for a file that is not regular).
UilOpenResult UIL_OpenRegular(const char* path, int flags, mode_t mode, UilFd* fd);

// The whole content of a regular file of at most `maxSize` bytes.
UilOpenResult UIL_ReadRegular(const char* path, size_t maxSize, std::string* bytes);

// Reads the rest of an open file into `bytes` (at most `maxSize` bytes);
// false on a read error or a larger file.
bool UIL_ReadRest(int fd, size_t maxSize, std::string* bytes);
