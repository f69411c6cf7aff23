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
        *reason = std::strerror(errno);
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
