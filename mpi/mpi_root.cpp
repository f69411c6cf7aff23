#include "mpi/mpi_root.h"

#include <cstdlib>
#include <cstring>

#include "mpi/mpi_usr.h"

namespace {

struct Root {
    char prefix[MPI_ROOT_MAX] = "";
    bool tooLong = false;

    Root()
    {
        const char* env = std::getenv("CVADM_ROOT");
        if (env == nullptr || env[0] == '\0') {
            return;
        }
        size_t len = std::strlen(env);
        while (len > 1 && env[len - 1] == '/') {
            --len;  // "/tmp/h/" and "/tmp/h" name the same sandbox
        }
        if (len >= sizeof(prefix)) {
            tooLong = true;
            return;
        }
        std::memcpy(prefix, env, len);
        prefix[len] = '\0';
        if (len == 1 && prefix[0] == '/') {
            prefix[0] = '\0';  // CVADM_ROOT=/ is the real host
        }
    }
};

const Root& root()
{
    static const Root instance;
    return instance;
}

}  // namespace

const char* MPI_Root() { return root().prefix; }

bool MPI_RootTooLong() { return root().tooLong; }

void MPI_RootPath(const char* absPath, char* out, size_t capacity)
{
    if (out == nullptr || capacity == 0) {
        return;
    }
    out[0] = '\0';
    const char* prefix = absPath[0] == '/' ? MPI_Root() : "";
    size_t plen = std::strlen(prefix);
    size_t alen = std::strlen(absPath);
    if (plen >= capacity) {
        plen = capacity - 1;
    }
    std::memcpy(out, prefix, plen);
    if (alen > capacity - 1 - plen) {
        alen = capacity - 1 - plen;
    }
    std::memcpy(out + plen, absPath, alen);
    out[plen + alen] = '\0';
}

std::string MPI_HostPath(const char* absPath)
{
    std::string path = absPath[0] == '/' ? MPI_Root() : "";
    path += absPath;
    return path;
}
