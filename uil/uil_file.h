// Files the interface layer rewrites (the user configuration and its
// backup, the operation log's serial number file): one descriptor owner and
// one way to replace a file, so that a process killed at any instant
// leaves either the old or the new content, never a torn one.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <string>
#include <string_view>

class UilFd {
public:
    UilFd() = default;
    explicit UilFd(int fd) : m_fd(fd) {}
    UilFd(const UilFd&) = delete;
    UilFd& operator=(const UilFd&) = delete;
    UilFd(UilFd&& other) noexcept : m_fd(other.release()) {}
    UilFd& operator=(UilFd&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    ~UilFd() { reset(); }

    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }
    int release()
    {
        int fd = m_fd;
        m_fd = -1;
        return fd;
    }
    void reset(int fd = -1)
    {
        if (m_fd >= 0) {
            (void)::close(m_fd);
        }
        m_fd = fd;
    }
    // Closes now and reports whether the data reached the file.
    bool closeChecked()
    {
        int fd = release();
        return fd < 0 || ::close(fd) == 0;
    }

private:
    int m_fd = -1;
};

// Opens a file the layer reads or writes (MPI_OpenRegular): never blocks
// on a FIFO, takes nothing but a regular file; a failure is noted with its
// cause (UIL_FileErrorNote) and errno kept.
UilFd UIL_OpenRegular(const char* path, int flags, mode_t mode = 0600);

// Writes all of `bytes`, resuming after signals; false on any error.
bool UIL_WriteAll(int fd, std::string_view bytes);

// Temporary files of a replacement are named <path>.tmp.XXXXXX.
inline constexpr const char UIL_TEMP_INFIX[] = ".tmp.";
inline constexpr size_t UIL_TEMP_SUFFIX_LEN = 6;

// Checks the complete temporary file before it replaces the old one.
using UilReplaceCheck = bool (*)(const char* tempName);

// Replaces `path` by `bytes`: a temporary file in the same directory,
// written, given `mode`, synced, closed, accepted by `check` (when given),
// renamed over `path`, the directory synced. On failure `path` is as it
// was and the temporary file is gone; the cause is in the trace log.
bool UIL_ReplaceFile(const char* path, std::string_view bytes, mode_t mode, UilReplaceCheck check = nullptr);

// The cause of the last failure on a file the layer reads or writes, as
// "<path>: <reason>", for the shell to name it (this layer never prints).
// Each change clears it when it begins; "" when nothing failed.
void UIL_FileErrorClear();
void UIL_FileErrorNote(const char* path, const char* reason);

// Removes the temporary files a killed writer left next to `path`.
void UIL_RemoveStaleTemps(const char* path);
