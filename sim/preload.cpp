// LD_PRELOAD shim: the program opens "$CVADM_ROOT/dev/cvdrv" (an empty file
// in the sandbox) and sends its ioctls there; this library answers those
// from the driver model and passes every other ioctl to the C library.
// getuid/geteuid report CVSIM_UID when it is set.
//
// The hooks keep no state that needs constructing: the real functions are
// looked up by a constructor (and again on first use, should a hook run
// before it), and the device's identity is read at each call.
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "model.h"

#define CVSIM_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

using IoctlFn = int (*)(int, unsigned long, ...);
using UidFn = uid_t (*)();

std::atomic<IoctlFn> g_realIoctl{nullptr};
std::atomic<UidFn> g_realGetuid{nullptr};
std::atomic<UidFn> g_realGeteuid{nullptr};

template <typename Fn>
Fn Resolve(std::atomic<Fn>& slot, const char* name)
{
    Fn fn = slot.load(std::memory_order_acquire);
    if (fn == nullptr) {
        fn = reinterpret_cast<Fn>(dlsym(RTLD_NEXT, name));
        slot.store(fn, std::memory_order_release);
    }
    return fn;
}

__attribute__((constructor)) void ResolveRealFunctions()
{
    Resolve(g_realIoctl, "ioctl");
    Resolve(g_realGetuid, "getuid");
    Resolve(g_realGeteuid, "geteuid");
}

// Set while the model runs, so an ioctl made from inside it goes straight
// to the C library instead of deadlocking on the request lock.
constinit thread_local bool t_inModel = false;

// The sandbox's device node, looked up once per sandbox root: a request
// then costs one fstat to recognise its descriptor. Guarded by the mutex,
// as threads may send requests at once.
struct DeviceNode {
    char root[PATH_MAX] = {};
    bool found = false;
    dev_t dev = 0;
    ino_t ino = 0;
};
constinit DeviceNode g_device;
constinit pthread_mutex_t g_deviceMutex = PTHREAD_MUTEX_INITIALIZER;

// True when fd is the sandbox's device node: same device and inode.
bool IsSimDevice(int fd, const char* root)
{
    struct stat open{};
    if (::fstat(fd, &open) != 0 || !S_ISREG(open.st_mode)) {
        return false;
    }
    pthread_mutex_lock(&g_deviceMutex);
    if (std::strcmp(g_device.root, root) != 0) {
        g_device.found = false;
        char path[PATH_MAX];
        int n = std::snprintf(path, sizeof path, "%s/dev/cvdrv", root);
        struct stat dev{};
        if (n >= 0 && static_cast<size_t>(n) < sizeof path && std::strlen(root) < sizeof g_device.root &&
            ::stat(path, &dev) == 0) {
            g_device.found = true;
            g_device.dev = dev.st_dev;
            g_device.ino = dev.st_ino;
            std::strcpy(g_device.root, root);
        }
    }
    bool same = g_device.found && g_device.dev == open.st_dev && g_device.ino == open.st_ino;
    pthread_mutex_unlock(&g_deviceMutex);
    return same;
}

std::atomic<bool> g_badUidReported{false};

// CVSIM_UID as a uid; false when unset. A value that is not a uid is
// reported once and otherwise ignored.
bool SimUid(uid_t& uid)
{
    const char* s = std::getenv("CVSIM_UID");
    if (s == nullptr || *s == '\0') {
        return false;
    }
    unsigned long long v = 0;
    const char* p = s;
    for (; *p >= '0' && *p <= '9' && v <= UINT_MAX; ++p) {
        v = v * 10 + static_cast<unsigned>(*p - '0');
    }
    if (*p != '\0' || v > UINT_MAX) {
        if (!g_badUidReported.exchange(true)) {
            static constexpr char kMsg[] = "cvsim: CVSIM_UID is not a uid; ignored\n";
            ssize_t ignored = ::write(STDERR_FILENO, kMsg, sizeof kMsg - 1);
            (void)ignored;
        }
        return false;
    }
    uid = static_cast<uid_t>(v);
    return true;
}

}  // namespace

CVSIM_EXPORT int ioctl(int fd, unsigned long request, ...) __THROW
{
    va_list ap;
    va_start(ap, request);
    void* arg = va_arg(ap, void*);
    va_end(ap);

    const char* root = std::getenv("CVADM_ROOT");
    if (root != nullptr && *root != '\0' && !t_inModel && IsSimDevice(fd, root)) {
        t_inModel = true;
        int ret = cvsim::DeviceIoctl(root, request, arg);
        int err = errno;
        t_inModel = false;
        errno = err;
        return ret;
    }
    IoctlFn real = Resolve(g_realIoctl, "ioctl");
    if (real == nullptr) {
        errno = ENOSYS;
        return -1;
    }
    return real(fd, request, arg);
}

CVSIM_EXPORT uid_t getuid() __THROW
{
    uid_t uid;
    if (SimUid(uid)) {
        return uid;
    }
    UidFn real = Resolve(g_realGetuid, "getuid");
    return real != nullptr ? real() : static_cast<uid_t>(::syscall(SYS_getuid));
}

CVSIM_EXPORT uid_t geteuid() __THROW
{
    uid_t uid;
    if (SimUid(uid)) {
        return uid;
    }
    UidFn real = Resolve(g_realGeteuid, "geteuid");
    return real != nullptr ? real() : static_cast<uid_t>(::syscall(SYS_geteuid));
}
