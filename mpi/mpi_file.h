// Opening the files the program reads and writes: never blocking on a FIFO
// or a device put in a file's place, and never taking anything but a
// regular file.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <memory>

// Opens `path` with `flags` (O_CLOEXEC added) without blocking, checks that
// it is a regular file, and clears O_NONBLOCK again. Returns the
// descriptor, or -1 with `*reason` saying why ("not a regular file", or the
// system's error text); errno is kept from the failing call.
int MPI_OpenRegular(const char* path, int flags, mode_t mode, const char** reason);

// The one owner of a stdio stream the program opened: closed once, on
// every way out.
struct MPI_FileCloser {
    void operator()(FILE* f) const { (void)std::fclose(f); }
};
using MPI_FilePtr = std::unique_ptr<FILE, MPI_FileCloser>;
