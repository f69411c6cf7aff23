// One request to the simulated driver, from request frame to log line.
#include "model.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

namespace cvsim {

namespace {

// Request frame: u32 result at 0, 4 reserved bytes, u64 payload address at 8.
constexpr size_t kFrameResultOff = 0;
constexpr size_t kFramePayloadOff = 8;

// The driver's state, loaded at the first request of the process. Never
// destroyed, so a request from an exit handler still finds it.
struct LoadedDriver {
    std::string root;
    bool loaded = false;
    Json driver;
    SimObjectsPtr objects;  // read from `driver` at first use
};

LoadedDriver& Loaded()
{
    static LoadedDriver* s = new LoadedDriver;
    return *s;
}

// Serialises requests of the process; the sandbox lock serialises processes.
constinit std::mutex g_requestMutex;

class SandboxLock {
public:
    explicit SandboxLock(const SimPaths& paths)
        : m_fd(::open(paths.lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600))
    {
        if (m_fd < 0) {
            throw SimError("the sandbox " + paths.root + " is not set up (cannot open " + paths.lock +
                           ": " + std::strerror(errno) + "); run cvadm-sim --setup");
        }
        while (::flock(m_fd, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    SandboxLock(const SandboxLock&) = delete;
    SandboxLock& operator=(const SandboxLock&) = delete;
    ~SandboxLock() { ::close(m_fd); }

private:
    int m_fd;
};

Json ParseDocument(const std::string& path, const std::string& text)
{
    Json doc = Json::parse(text, nullptr, false);
    if (doc.is_discarded()) {
        throw SimError(path + ": not valid JSON");
    }
    if (!doc.is_object()) {
        throw SimError(path + ": expected a JSON object at the top");
    }
    return doc;
}

// The saved state when there is one, otherwise the topology: the driver
// starts as the topology describes it and keeps its changes in state.json.
Json& DriverState(const SimPaths& paths)
{
    LoadedDriver& l = Loaded();
    if (l.loaded && l.root == paths.root) {
        return l.driver;
    }
    std::string text;
    if (ReadFile(paths.state, text)) {
        l.driver = ParseDocument(paths.state, text);
    } else if (ReadFile(paths.topology, text)) {
        l.driver = ParseDocument(paths.topology, text);
    } else {
        throw SimError("no topology at " + paths.topology + "; run cvadm-sim --setup");
    }
    l.objects.reset();
    l.root = paths.root;
    l.loaded = true;
    return l.driver;
}

void SaveDriverState(const SimPaths& paths, const Json& driver)
{
    WriteFileAtomic(paths.state, driver.dump(2) + "\n");
}

std::string Hex(const uint8_t* p, size_t n)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string s(2 * n, '\0');
    char* out = s.data();
    for (size_t i = 0; i < n; ++i) {
        out[2 * i] = kDigits[p[i] >> 4];
        out[2 * i + 1] = kDigits[p[i] & 0xF];
    }
    return s;
}

std::string CodeText(unsigned long code)
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "0x%08lx", code);
    return buf;
}

// Why the driver would not accept this code, or "" when it does.
std::string CodeProblem(const SimCode& c, const SimRequestRow* row)
{
    if (c.dir != kDirRead || c.type != kTypeLetter) {
        char buf[80];
        std::snprintf(buf, sizeof buf, "direction %u type 0x%02x, expected _IOR('M', ...)", c.dir, c.type);
        return buf;
    }
    if (row == nullptr) {
        return "request nr " + std::to_string(c.nr) + " is not modelled";
    }
    if (c.size != row->size) {
        return "declared size " + std::to_string(c.size) + ", nr " + std::to_string(c.nr) + " takes " +
               std::to_string(row->size);
    }
    return "";
}

uint32_t ReadU32(const void* base, size_t off)
{
    uint32_t v;
    std::memcpy(&v, static_cast<const uint8_t*>(base) + off, sizeof v);
    return v;
}

void WriteResult(void* frame, uint32_t result)
{
    std::memcpy(static_cast<uint8_t*>(frame) + kFrameResultOff, &result, sizeof result);
}

uint8_t* PayloadAddress(const void* frame)
{
    uint64_t addr;
    std::memcpy(&addr, static_cast<const uint8_t*>(frame) + kFramePayloadOff, sizeof addr);
    return reinterpret_cast<uint8_t*>(static_cast<uintptr_t>(addr));
}

// What the ioctl call itself returns.
struct Outcome {
    int ret = 0;
    int err = 0;
};

Outcome Fail(int err) { return Outcome{-1, err}; }

// Runs the handler with the faults that apply around it.
Outcome Answer(const SimPaths& paths, const SimCode& c, const SimRequestRow& row, void* frame,
               SimPayload& payload)
{
    Fault fault{};
    bool faulted = TakeFault(paths, c.nr, fault);
    if (faulted) {
        switch (fault.kind) {
        case FaultKind::Refuse:
            return Fail(EIO);
        case FaultKind::Untouched:
            return Outcome{};
        case FaultKind::Code:
            WriteResult(frame, fault.value);
            return Outcome{};
        case FaultKind::Count:
            break;  // applied to the answer below
        }
    }
    Json& driver = DriverState(paths);
    SimContext ctx(driver, &Loaded().objects);
    uint32_t result = row.handler(ctx, payload);
    if (faulted && fault.kind == FaultKind::Count) {
        if (row.countOffset == kNoCountField) {
            Complain(paths, "count= fault on nr " + std::to_string(c.nr) + ", which answers no count");
        } else {
            payload.setU32(static_cast<size_t>(row.countOffset), fault.value);
        }
    }
    if (ctx.changed()) {
        SaveDriverState(paths, driver);
    }
    WriteResult(frame, result);
    return Outcome{};
}

Outcome Serve(const SimPaths& paths, unsigned long code, void* frame)
{
    SimCode c = DecodeCode(code);
    const SimRequestRow* row = FindRequest(c.nr);
    std::string problem = CodeProblem(c, row);
    uint8_t* base = PayloadAddress(frame);
    size_t logged = row != nullptr ? std::min(c.size, row->size) : c.size;
    if (base == nullptr) {
        logged = 0;
    }

    SandboxLock lock(paths);
    std::vector<uint8_t> before(base, base + logged);
    Outcome out;
    if (!problem.empty()) {
        Complain(paths, "bad request code " + CodeText(code) + ": " + problem);
        WriteResult(frame, kResultInvalid);
    } else if (base == nullptr) {
        out = Fail(EFAULT);
    } else {
        SimPayload payload(base, row->size);
        try {
            out = Answer(paths, c, *row, frame, payload);
        } catch (const SimError& e) {
            // The driver could not answer: leave the caller's buffer as it was.
            std::memcpy(base, before.data(), logged);
            Complain(paths, "nr " + std::to_string(c.nr) + ": " + e.what());
            out = Fail(EIO);
        }
    }

    char head[96];
    std::snprintf(head, sizeof head, "nr=%u code=%s size=%u result=%u in=", c.nr, CodeText(code).c_str(), c.size,
                  ReadU32(frame, kFrameResultOff));
    AppendLine(paths.requestLog, std::string(head) + Hex(before.data(), logged) + " out=" + Hex(base, logged));
    return out;
}

}  // namespace

std::time_t SimNow()
{
    const char* fixed = std::getenv("CVSIM_NOW");
    if (fixed == nullptr || *fixed == '\0') {
        return std::time(nullptr);
    }
    long long v = 0;
    const char* end = fixed + std::strlen(fixed);
    auto [p, ec] = std::from_chars(fixed, end, v, 10);
    if (ec != std::errc() || p != end || v < 0) {
        throw SimError(std::string("CVSIM_NOW=") + fixed + " is not a number of seconds since 1970");
    }
    return static_cast<std::time_t>(v);
}

std::time_t SimContext::now()
{
    if (!m_now) {
        m_now = SimNow();
    }
    return *m_now;
}

int DeviceIoctl(const char* root, unsigned long code, void* arg) noexcept
{
    try {
        std::lock_guard<std::mutex> guard(g_requestMutex);
        SimPaths paths = MakePaths(root);
        Outcome out;
        if (arg == nullptr) {
            Complain(paths, "request code " + CodeText(code) + " sent without a frame");
            out = Fail(EFAULT);
        } else {
            try {
                out = Serve(paths, code, arg);
            } catch (const std::exception& e) {
                Complain(paths, e.what());
                out = Fail(EIO);
            }
        }
        if (out.ret != 0) {
            errno = out.err;
        }
        return out.ret;
    } catch (...) {
        // Not even a complaint could be made (no memory): the device fails.
        errno = EIO;
        return -1;
    }
}

}  // namespace cvsim
