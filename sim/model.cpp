// One request to the simulated driver, from request frame to log line.
#include "model.h"
#include "model_objects.h"
#include "model_pathset.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <pthread.h>
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
struct LoadedDriver final : SimDocumentSource {
    std::string root;
    bool loaded = false;
    Json driver;
    SimObjectsPtr objects;    // read from `driver` or the snapshot at first use
    std::string source;       // the file `driver` came from
    SimSnapshotPtr snapshot;  // set while `driver` lacks its storage object lists

    static Json ParseDocument(const std::string& path, const std::string& text)
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

    void completeDocument() override
    {
        if (!snapshot) {
            return;
        }
        std::string text;
        if (!ReadFile(source, text)) {
            throw SimError(source + ": removed while in use");
        }
        driver = ParseDocument(source, text);
        snapshot.reset();
    }

    SimObjectsPtr snapshotObjects() override
    {
        if (!snapshot) {
            return nullptr;
        }
        try {
            return SnapshotObjects(snapshot);
        } catch (const SimError&) {
            completeDocument();  // a damaged snapshot: the objects are read from the JSON
            return nullptr;
        }
    }
};

LoadedDriver& Loaded()
{
    static LoadedDriver* s = new LoadedDriver;
    return *s;
}

// Serialises requests of the process; the sandbox lock serialises processes.
constinit std::mutex g_requestMutex;

// What the requests of a process share: the sandbox's file names, the lock
// and the request log kept open, the log mode, buffers. A forked child
// opens its own (a lock is held per open file, so sharing it would not
// exclude the parent).
struct ProcessFiles {
    SimPaths paths;
    int lockFd = -1;
    int logFd = -1;
    RequestLogMode logMode = RequestLogMode::Full;
    std::string line;             // the log line being written
    std::vector<uint8_t> before;  // the payload as it came

    void close()
    {
        for (int* fd : {&lockFd, &logFd}) {
            if (*fd >= 0) {
                ::close(*fd);
                *fd = -1;
            }
        }
    }
};

ProcessFiles& Files()
{
    static ProcessFiles* s = new ProcessFiles;
    return *s;
}

ProcessFiles& FilesFor(const char* root)
{
    static const bool kForkHandled = [] {
        ::pthread_atfork(nullptr, nullptr, [] {
            Files().close();
            Files().paths.root.clear();
        });
        return true;
    }();
    (void)kForkHandled;
    ProcessFiles& f = Files();
    if (f.paths.root.empty() || f.paths.root != root) {
        f.close();
        f.paths = MakePaths(root);
        f.logMode = RequestLogModeFromEnv();
    }
    return f;
}

class SandboxLock {
public:
    explicit SandboxLock(ProcessFiles& files) : m_fd(files.lockFd)
    {
        if (m_fd < 0) {
            const SimPaths& paths = files.paths;
            m_fd = files.lockFd = ::open(paths.lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
            if (m_fd < 0) {
                throw SimError("the sandbox " + paths.root + " is not set up (cannot open " + paths.lock +
                               ": " + std::strerror(errno) + "); run cvadm-sim --setup");
            }
        }
        while (::flock(m_fd, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    SandboxLock(const SandboxLock&) = delete;
    SandboxLock& operator=(const SandboxLock&) = delete;
    ~SandboxLock() { ::flock(m_fd, LOCK_UN); }

private:
    int m_fd;
};

// The saved state when there is one, otherwise the topology: the driver
// starts as the topology describes it and keeps its changes in state.json.
// A large document comes from its snapshot when that is up to date, and
// gets one when not.
LoadedDriver& DriverState(const SimPaths& paths)
{
    LoadedDriver& l = Loaded();
    if (l.loaded && l.root == paths.root) {
        return l;
    }
    l.loaded = false;
    l.objects.reset();
    l.snapshot.reset();
    SimSnapshotKey key;
    std::string source = paths.state;
    if (!SnapshotKeyOf(source, key)) {
        source = paths.topology;
        if (!SnapshotKeyOf(source, key)) {
            throw SimError("no topology at " + paths.topology + "; run cvadm-sim --setup");
        }
    }
    std::string snapPath = source + ".snap";
    if (SimSnapshotPtr snap = OpenSnapshot(snapPath, key)) {
        try {
            l.driver = SnapshotHead(*snap);
            l.snapshot = std::move(snap);
        } catch (const SimError&) {
            // damaged: the JSON is read below
        }
    }
    if (!l.snapshot) {
        std::string text;
        if (!ReadFile(source, text)) {
            throw SimError("no topology at " + paths.topology + "; run cvadm-sim --setup");
        }
        l.driver = LoadedDriver::ParseDocument(source, text);
        if (text.size() >= kSnapshotMinSource) {
            try {
                l.objects = SimObjects::Build(l.driver);
                WriteSnapshot(snapPath, key, l.driver, l.objects);
            } catch (const SimError&) {
                l.objects.reset();  // reported by the first request that reads them
            }
        }
    }
    l.source = source;
    l.root = paths.root;
    l.loaded = true;
    return l;
}

void SaveDriverState(const SimPaths& paths, const Json& driver)
{
    WriteFileAtomic(paths.state, driver.dump(2) + "\n");
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

// Runs the handler with the faults that apply around it. `lock` is held
// when a fault may apply (see Serve); a change to the driver takes it
// before the state is saved.
Outcome Answer(ProcessFiles& files, std::optional<SandboxLock>& lock, const SimCode& c, const SimRequestRow& row,
               void* frame, SimPayload& payload)
{
    const SimPaths& paths = files.paths;
    Fault fault{};
    bool faulted = lock.has_value() && TakeFault(paths, c.nr, fault);
    if (faulted) {
        switch (fault.kind) {
        case FaultKind::Refuse:
            return Fail(EIO);
        case FaultKind::Untouched:
            return Outcome{};
        case FaultKind::Code:
            // A common set refusal names its code in the result word too,
            // so an injected code reads like one the model gave itself.
            if (c.nr == kCommonSetNr) {
                WriteCommonSetResult(payload, fault.value);
            }
            WriteResult(frame, fault.value);
            return Outcome{};
        case FaultKind::Count:
            break;  // applied to the answer below
        }
    }
    LoadedDriver& loaded = DriverState(paths);
    Json& driver = loaded.driver;
    SimContext ctx(driver, &loaded.objects, &loaded);
    uint32_t result = kResultSuccess;
    if (!loaded.snapshot || !SnapshotKeepsAnswers(c.nr) || !ctx.objects()->cannedAnswer(c.nr, payload)) {
        result = row.handler(ctx, payload);
    }
    if (faulted && fault.kind == FaultKind::Count) {
        if (row.countOffset == kNoCountField) {
            Complain(paths, "count= fault on nr " + std::to_string(c.nr) + ", which answers no count");
        } else {
            payload.setU32(static_cast<size_t>(row.countOffset), fault.value);
        }
    }
    if (ctx.changed()) {
        if (!lock) {
            lock.emplace(files);
        }
        SaveDriverState(paths, driver);
    }
    WriteResult(frame, result);
    return Outcome{};
}

Outcome Serve(ProcessFiles& files, unsigned long code, void* frame)
{
    const SimPaths& paths = files.paths;
    SimCode c = DecodeCode(code);
    const SimRequestRow* row = FindRequest(c.nr);
    std::string problem = CodeProblem(c, row);
    uint8_t* base = PayloadAddress(frame);
    size_t logged = row != nullptr ? std::min(c.size, row->size) : c.size;
    if (base == nullptr) {
        logged = 0;
    }

    // A request that neither logs, nor may meet a scripted fault, nor
    // changes the driver needs no lock: a listing of tens of thousands of
    // requests with the log off then costs the model one system call per
    // request, not three.
    std::optional<SandboxLock> lock;
    if (files.logMode != RequestLogMode::Off || ::access(paths.faults.c_str(), F_OK) == 0) {
        lock.emplace(files);
    }
    std::vector<uint8_t>& before = files.before;
    before.assign(base, base + logged);
    Outcome out;
    if (!problem.empty()) {
        Complain(paths, "bad request code " + CodeText(code) + ": " + problem);
        WriteResult(frame, kResultInvalid);
    } else if (base == nullptr) {
        out = Fail(EFAULT);
    } else {
        SimPayload payload(base, row->size);
        try {
            out = Answer(files, lock, c, *row, frame, payload);
        } catch (const SimError& e) {
            // The driver could not answer: leave the caller's buffer as it was.
            std::memcpy(base, before.data(), logged);
            Complain(paths, "nr " + std::to_string(c.nr) + ": " + e.what());
            out = Fail(EIO);
        }
    }

    if (files.logMode != RequestLogMode::Off) {
        SimLoggedRequest req{c.nr, code, c.size, ReadU32(frame, kFrameResultOff),
                             {before.data(), logged}, {base, logged}};
        FormatRequestLine(files.line, req, files.logMode);
        if (files.logFd < 0) {
            files.logFd = OpenAppend(paths.requestLog);
        }
        WriteLine(files.logFd, files.line, paths.requestLog);
    }
    return out;
}

}  // namespace

namespace {
std::atomic<int64_t> g_clockOffsetNs{0};
}  // namespace

void SimClockAdvance(int64_t ns) { g_clockOffsetNs.fetch_add(ns, std::memory_order_relaxed); }
int64_t SimClockOffsetNs() { return g_clockOffsetNs.load(std::memory_order_relaxed); }
int64_t SimClockOffsetSec() { return SimClockOffsetNs() / 1000000000; }

std::time_t SimNow()
{
    const char* fixed = std::getenv("CVSIM_NOW");
    if (fixed == nullptr || *fixed == '\0') {
        return std::time(nullptr);  // the preloaded time() adds the offset already
    }
    long long v = 0;
    const char* end = fixed + std::strlen(fixed);
    auto [p, ec] = std::from_chars(fixed, end, v, 10);
    if (ec != std::errc() || p != end || v < 0) {
        throw SimError(std::string("CVSIM_NOW=") + fixed + " is not a number of seconds since 1970");
    }
    return static_cast<std::time_t>(v + SimClockOffsetSec());
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
        ProcessFiles& files = FilesFor(root);
        Outcome out;
        if (arg == nullptr) {
            Complain(files.paths, "request code " + CodeText(code) + " sent without a frame");
            out = Fail(EFAULT);
        } else {
            try {
                out = Serve(files, code, arg);
            } catch (const std::exception& e) {
                Complain(files.paths, e.what());
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
