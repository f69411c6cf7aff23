// LD_PRELOAD shim: the program opens "$CVADM_ROOT/dev/cvdrv" (an empty file
// in the sandbox) and sends its ioctls there; this library answers those
// from the driver model and passes every other ioctl to the C library.
// getuid/geteuid report CVSIM_UID when it is set. With CVSIM_FASTCLOCK=1 the
// program's clocks run fast: a sleep returns at once and moves every clock
// forward by what it asked for (see the fast clock below). CVSIM_FREE_KB=N
// makes statvfs report N KB available to unprivileged users (a list N,M,...
// gives successive calls successive values).
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
#include <sys/statvfs.h>
#include <ctime>
#include <iterator>
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

// Copies to `root` the sandbox whose device node fd is, and returns true;
// false when fd is no sandbox's device node. The node of the sandbox last
// seen is compared first: the descriptor names its sandbox, so a request
// on it needs neither the environment nor a lookup of the node.
bool SimDeviceRoot(int fd, char (&root)[PATH_MAX])
{
    struct stat open{};
    if (::fstat(fd, &open) != 0 || !S_ISREG(open.st_mode)) {
        return false;
    }
    pthread_mutex_lock(&g_deviceMutex);
    bool same = g_device.found && g_device.dev == open.st_dev && g_device.ino == open.st_ino;
    const char* env = same ? nullptr : std::getenv("CVADM_ROOT");
    if (env != nullptr && *env != '\0' && std::strcmp(g_device.root, env) != 0) {
        g_device.found = false;
        g_device.root[0] = '\0';
        char path[PATH_MAX];
        int n = std::snprintf(path, sizeof path, "%s/dev/cvdrv", env);
        struct stat dev{};
        if (n >= 0 && static_cast<size_t>(n) < sizeof path && std::strlen(env) < sizeof g_device.root &&
            ::stat(path, &dev) == 0) {
            g_device.found = true;
            g_device.dev = dev.st_dev;
            g_device.ino = dev.st_ino;
            std::strcpy(g_device.root, env);
        }
        same = g_device.found && g_device.dev == open.st_dev && g_device.ino == open.st_ino;
    }
    if (same) {
        std::strcpy(root, g_device.root);
    }
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

    static thread_local char root[PATH_MAX];
    if (!t_inModel && SimDeviceRoot(fd, root)) {
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

// ---------------------------------------------------------------------------
// Fast clock. Off unless CVSIM_FASTCLOCK=1: then nanosleep and
// clock_nanosleep do not wait but advance an offset that clock_gettime and
// time add to every clock, and the driver model's clock moves with them.
// The wall clock reads CVSIM_NOW plus the offset when CVSIM_NOW is set, so
// the times a test sees are fixed too.

namespace {

using ClockGettimeFn = int (*)(clockid_t, struct timespec*);
using TimeFn = time_t (*)(time_t*);
using NanosleepFn = int (*)(const struct timespec*, struct timespec*);
using ClockNanosleepFn = int (*)(clockid_t, int, const struct timespec*, struct timespec*);

std::atomic<ClockGettimeFn> g_realClockGettime{nullptr};
std::atomic<TimeFn> g_realTime{nullptr};
std::atomic<NanosleepFn> g_realNanosleep{nullptr};
std::atomic<ClockNanosleepFn> g_realClockNanosleep{nullptr};

constexpr int64_t kNsPerSec = 1000000000;

// The first reading of each clock under the fast clock (-1: not read yet).
std::atomic<int64_t> g_clockBase[16] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};

bool FastClock()
{
    const char* s = std::getenv("CVSIM_FASTCLOCK");
    return s != nullptr && std::strcmp(s, "1") == 0;
}

int64_t ToNs(const struct timespec& ts) { return static_cast<int64_t>(ts.tv_sec) * kNsPerSec + ts.tv_nsec; }

struct timespec FromNs(int64_t ns)
{
    struct timespec ts {};
    ts.tv_sec = static_cast<time_t>(ns / kNsPerSec);
    ts.tv_nsec = static_cast<long>(ns % kNsPerSec);
    return ts;
}

int RealClockGettime(clockid_t clk, struct timespec* ts)
{
    ClockGettimeFn real = Resolve(g_realClockGettime, "clock_gettime");
    return real != nullptr ? real(clk, ts) : static_cast<int>(::syscall(SYS_clock_gettime, clk, ts));
}

// The fast clock's reading of `clk`.
int FastClockGettime(clockid_t clk, struct timespec* ts)
{
    int ret = RealClockGettime(clk, ts);
    if (ret != 0 || ts == nullptr) {
        return ret;
    }
    bool wall = clk == CLOCK_REALTIME || clk == CLOCK_REALTIME_COARSE;
    if (wall && std::getenv("CVSIM_NOW") != nullptr && *std::getenv("CVSIM_NOW") != '\0') {
        *ts = FromNs(static_cast<int64_t>(cvsim::SimNow()) * kNsPerSec + cvsim::SimClockOffsetNs() % kNsPerSec);
        return 0;
    }
    // Other clocks stand still at their first reading but for the offset, so
    // a slow machine cannot slip a real second into a counted interval.
    if (clk >= 0 && static_cast<size_t>(clk) < std::size(g_clockBase)) {
        int64_t unset = -1;
        (void)g_clockBase[clk].compare_exchange_strong(unset, ToNs(*ts));
        *ts = FromNs(g_clockBase[clk].load() + cvsim::SimClockOffsetNs());
        return 0;
    }
    *ts = FromNs(ToNs(*ts) + cvsim::SimClockOffsetNs());
    return 0;
}

}  // namespace

CVSIM_EXPORT int clock_gettime(clockid_t clk, struct timespec* ts) __THROW
{
    if (FastClock()) {
        try {
            return FastClockGettime(clk, ts);
        } catch (...) {
            // A malformed CVSIM_NOW: the real clock.
        }
    }
    return RealClockGettime(clk, ts);
}

CVSIM_EXPORT time_t time(time_t* out) __THROW
{
    if (FastClock()) {
        struct timespec ts {};
        if (clock_gettime(CLOCK_REALTIME, &ts) == 0) {
            if (out != nullptr) {
                *out = ts.tv_sec;
            }
            return ts.tv_sec;
        }
    }
    TimeFn real = Resolve(g_realTime, "time");
    return real != nullptr ? real(out) : static_cast<time_t>(::syscall(SYS_time, out));
}

CVSIM_EXPORT int nanosleep(const struct timespec* req, struct timespec* rem)
{
    if (FastClock() && req != nullptr && req->tv_nsec >= 0 && req->tv_nsec < kNsPerSec && req->tv_sec >= 0) {
        cvsim::SimClockAdvance(ToNs(*req));
        if (rem != nullptr) {
            *rem = {};
        }
        return 0;
    }
    NanosleepFn real = Resolve(g_realNanosleep, "nanosleep");
    if (real == nullptr) {
        errno = ENOSYS;
        return -1;
    }
    return real(req, rem);
}

CVSIM_EXPORT int clock_nanosleep(clockid_t clk, int flags, const struct timespec* req, struct timespec* rem)
{
    if (FastClock() && req != nullptr && req->tv_nsec >= 0 && req->tv_nsec < kNsPerSec) {
        int64_t wait = ToNs(*req);
        if ((flags & TIMER_ABSTIME) != 0) {
            struct timespec now {};
            if (clock_gettime(clk, &now) != 0) {
                return EINVAL;
            }
            wait -= ToNs(now);
        }
        if (wait > 0) {
            cvsim::SimClockAdvance(wait);
        }
        if (rem != nullptr) {
            *rem = {};
        }
        return 0;
    }
    ClockNanosleepFn real = Resolve(g_realClockNanosleep, "clock_nanosleep");
    return real != nullptr ? real(clk, flags, req, rem) : ENOSYS;
}

// ---------------------------------------------------------------------------
// Free space: CVSIM_FREE_KB=<KB> replaces what statvfs reports as available
// to unprivileged users, so a test can fill a disk without filling it.
// CVSIM_FREE_KB=<KB>,<KB>,... gives the process's successive statvfs calls
// one value each, the last for every call after, so the disk can fill up
// in the middle of a run.

namespace {
using StatvfsFn = int (*)(const char*, struct statvfs*);
std::atomic<StatvfsFn> g_realStatvfs{nullptr};
std::atomic<unsigned long> g_statvfsCalls{0};

// The `index`th value of the list (the last when the list is shorter);
// false when the text is not a list of numbers.
bool FreeKbAt(const char* list, unsigned long index, unsigned long long* kb)
{
    const char* p = list;
    for (unsigned long i = 0;; ++i) {
        unsigned long long v = 0;
        const char* start = p;
        for (; *p >= '0' && *p <= '9' && v < (1ULL << 40); ++p) {
            v = v * 10 + static_cast<unsigned>(*p - '0');
        }
        if (p == start || (*p != '\0' && *p != ',')) {
            return false;
        }
        *kb = v;
        if (i == index || *p == '\0') {
            return true;
        }
        ++p;
    }
}
}  // namespace

CVSIM_EXPORT int statvfs(const char* path, struct statvfs* out) __THROW
{
    StatvfsFn real = Resolve(g_realStatvfs, "statvfs");
    if (real == nullptr) {
        errno = ENOSYS;
        return -1;
    }
    int ret = real(path, out);
    const char* fake = std::getenv("CVSIM_FREE_KB");
    if (ret != 0 || fake == nullptr || *fake == '\0' || out->f_bsize == 0) {
        return ret;
    }
    unsigned long long kb = 0;
    if (FreeKbAt(fake, g_statvfsCalls.fetch_add(1), &kb)) {
        out->f_bavail = static_cast<fsblkcnt_t>(kb * 1024 / out->f_bsize);
    }
    return ret;
}
