#include "uil/uil_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "mpi/mpi_file.h"
#include "mpi/mpi_usr.h"
#include "uil/uil.h"

namespace {

std::string g_strUILFileError;

std::string dirOf(std::string_view path)
{
    size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) {
        return ".";
    }
    return slash == 0 ? "/" : std::string(path.substr(0, slash));
}

std::string baseOf(std::string_view path)
{
    size_t slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

bool syncDirectory(const std::string& dir)
{
    UilFd fd(open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd.valid() && fsync(fd.get()) == 0;
}

// Removes the temporary file unless it was renamed into place.
class TempFile {
public:
    explicit TempFile(std::string name) : m_name(std::move(name)) {}
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile()
    {
        if (!m_kept) {
            (void)unlink(m_name.c_str());
        }
    }
    const char* name() const { return m_name.c_str(); }
    void keep() { m_kept = true; }

private:
    std::string m_name;
    bool m_kept = false;
};

}  // namespace

void UIL_FileErrorClear() { g_strUILFileError.clear(); }

void UIL_FileErrorNote(const char* path, const char* reason)
{
    g_strUILFileError = std::string(path) + ": " + reason;
}

const char* INTF_UIL_LastFileError() { return g_strUILFileError.c_str(); }

UilFd UIL_OpenRegular(const char* path, int flags, mode_t mode)
{
    const char* reason = "";
    UilFd fd(MPI_OpenRegular(path, flags, mode, &reason));
    if (!fd.valid()) {
        int err = errno;
        UIL_FileErrorNote(path, reason);
        errno = err;
    }
    return fd;
}

bool UIL_WriteAll(int fd, std::string_view bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

bool UIL_ReplaceFile(const char* path, std::string_view bytes, mode_t mode, UilReplaceCheck check)
{
    std::string name = std::string(path) + UIL_TEMP_INFIX + std::string(UIL_TEMP_SUFFIX_LEN, 'X');
    UilFd fd(mkostemp(name.data(), O_CLOEXEC));
    if (!fd.valid()) {
        UIL_ERR("Create temporary file for %s failed: %s", path, std::strerror(errno));
        UIL_FileErrorNote(path, std::strerror(errno));
        return false;
    }
    TempFile temp(name);
    if (!UIL_WriteAll(fd.get(), bytes) || fchmod(fd.get(), mode & 07777) != 0 || fsync(fd.get()) != 0) {
        UIL_ERR("Write temporary file %s failed: %s", temp.name(), std::strerror(errno));
        UIL_FileErrorNote(path, std::strerror(errno));
        return false;
    }
    if (!fd.closeChecked()) {
        UIL_ERR("Close temporary file %s failed: %s", temp.name(), std::strerror(errno));
        UIL_FileErrorNote(path, std::strerror(errno));
        return false;
    }
    if (check != nullptr && !check(temp.name())) {
        UIL_ERR("Temporary file %s does not read back as expected", temp.name());
        UIL_FileErrorNote(path, "what was written does not read back");
        return false;
    }
    if (rename(temp.name(), path) != 0) {
        UIL_ERR("Rename %s to %s failed: %s", temp.name(), path, std::strerror(errno));
        UIL_FileErrorNote(path, std::strerror(errno));
        return false;
    }
    temp.keep();
    if (!syncDirectory(dirOf(path))) {
        // The new file is in place; only its durability across a power cut is in doubt.
        UIL_ERR("Sync directory of %s failed: %s", path, std::strerror(errno));
    }
    return true;
}

void UIL_RemoveStaleTemps(const char* path)
{
    std::string dir = dirOf(path);
    std::string prefix = baseOf(path) + UIL_TEMP_INFIX;
    DIR* d = opendir(dir.c_str());
    if (d == nullptr) {
        return;
    }
    while (const dirent* entry = readdir(d)) {
        std::string_view entryName(entry->d_name);
        if (entryName.size() == prefix.size() + UIL_TEMP_SUFFIX_LEN && entryName.starts_with(prefix)) {
            std::string full = dir + "/" + std::string(entryName);
            if (unlink(full.c_str()) == 0) {
                UIL_TRACE(MPI_LOG_WARN, "Removed %s left by an interrupted save", full.c_str());
            }
        }
    }
    (void)closedir(d);
}
