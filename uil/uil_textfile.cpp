#include "uil/uil_textfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

UilOpenResult UIL_OpenRegular(const char* path, int flags, mode_t mode, UilFd* fd)
{
    fd->reset(open(path, flags | O_NONBLOCK | O_CLOEXEC, mode));
    if (!fd->valid()) {
        return errno == ENOENT ? UilOpenResult::Missing : UilOpenResult::Failed;
    }
    struct stat st {};
    if (fstat(fd->get(), &st) != 0) {
        int saved = errno;
        fd->reset();
        errno = saved;
        return UilOpenResult::Failed;
    }
    if (!S_ISREG(st.st_mode)) {
        fd->reset();
        errno = EINVAL;
        return UilOpenResult::NotRegular;
    }
    return UilOpenResult::Ok;
}

bool UIL_ReadRest(int fd, size_t maxSize, std::string* bytes)
{
    char chunk[8192];
    for (;;) {
        ssize_t n = read(fd, chunk, sizeof(chunk));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return false;
        }
        if (n == 0) {
            return true;
        }
        if (static_cast<size_t>(n) > maxSize - bytes->size()) {
            errno = EFBIG;
            return false;
        }
        bytes->append(chunk, static_cast<size_t>(n));
    }
}

UilOpenResult UIL_ReadRegular(const char* path, size_t maxSize, std::string* bytes)
{
    bytes->clear();
    UilFd fd;
    UilOpenResult result = UIL_OpenRegular(path, O_RDONLY, 0, &fd);
    if (result != UilOpenResult::Ok) {
        return result;
    }
    return UIL_ReadRest(fd.get(), maxSize, bytes) ? UilOpenResult::Ok : UilOpenResult::Failed;
}
