#include "mpi/mpi_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

int MPI_OpenRegular(const char* path, int flags, mode_t mode, const char** reason)
{
    // O_NONBLOCK: a FIFO in a file's place would otherwise hang the open
    // (and whatever lock the caller holds) until someone opens its other end.
    int fd = open(path, flags | O_NONBLOCK | O_CLOEXEC, mode);
    if (fd < 0) {
        // A FIFO without a reader (ENXIO) or a directory (EISDIR) is named
        // for what it is.
        int err = errno;
        struct stat st {};
        bool odd = err != ELOOP && stat(path, &st) == 0 && !S_ISREG(st.st_mode);
        *reason = odd ? "not a regular file" : std::strerror(err);
        errno = err;
        return -1;
    }
    struct stat st {};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        int err = S_ISREG(st.st_mode) ? errno : EINVAL;
        *reason = S_ISREG(st.st_mode) ? std::strerror(err) : "not a regular file";
        (void)close(fd);
        errno = err;
        return -1;
    }
    int fl = fcntl(fd, F_GETFL);
    if (fl < 0 || fcntl(fd, F_SETFL, fl & ~O_NONBLOCK) != 0) {
        int err = errno;
        *reason = std::strerror(err);
        (void)close(fd);
        errno = err;
        return -1;
    }
    return fd;
}
