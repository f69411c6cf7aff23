// Files of the simulated host under $CVADM_ROOT/sim/. Plain POSIX calls:
// this code runs inside the program under test, so it keeps away from its
// stdio streams.
#include "model.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cvsim {

namespace {

class Fd {
public:
    explicit Fd(int fd) : m_fd(fd) {}
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    ~Fd()
    {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
    }
    int get() const { return m_fd; }

private:
    int m_fd;
};

std::string ErrnoText(const std::string& what, const std::string& path)
{
    return what + " " + path + ": " + std::strerror(errno);
}

void WriteAll(int fd, std::string_view data, const std::string& path)
{
    while (!data.empty()) {
        ssize_t n = ::write(fd, data.data(), data.size());
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            throw SimError(ErrnoText("cannot write", path));
        }
        data.remove_prefix(static_cast<size_t>(n));
    }
}

}  // namespace

SimPaths MakePaths(const std::string& root)
{
    SimPaths p;
    p.root = root;
    p.simDir = root + "/sim";
    p.topology = p.simDir + "/topology.json";
    p.state = p.simDir + "/state.json";
    p.requestLog = p.simDir + "/requests.log";
    p.faults = p.simDir + "/faults";
    p.diagLog = p.simDir + "/sim.log";
    p.lock = p.simDir + "/lock";
    return p;
}

bool ReadFile(const std::string& path, std::string& out)
{
    Fd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) {
        if (errno == ENOENT) {
            return false;
        }
        throw SimError(ErrnoText("cannot open", path));
    }
    out.clear();
    char buf[4096];
    for (;;) {
        ssize_t n = ::read(fd.get(), buf, sizeof buf);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            throw SimError(ErrnoText("cannot read", path));
        }
        if (n == 0) {
            return true;
        }
        out.append(buf, static_cast<size_t>(n));
    }
}

// Temporary file beside the target, flushed, then renamed over it: a reader
// sees the old file or the new one, never half of one.
void WriteFileAtomic(const std::string& path, std::string_view data)
{
    std::string tmp = path + ".tmp." + std::to_string(::getpid());
    {
        Fd fd(::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644));
        if (fd.get() < 0) {
            throw SimError(ErrnoText("cannot create", tmp));
        }
        try {
            WriteAll(fd.get(), data, tmp);
            if (::fsync(fd.get()) != 0) {
                throw SimError(ErrnoText("cannot flush", tmp));
            }
        } catch (...) {
            ::unlink(tmp.c_str());
            throw;
        }
    }
    if (::rename(tmp.c_str(), path.c_str()) != 0) {
        std::string err = ErrnoText("cannot rename over", path);
        ::unlink(tmp.c_str());
        throw SimError(err);
    }
}

int OpenAppend(const std::string& path)
{
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) {
        throw SimError(ErrnoText("cannot open", path));
    }
    return fd;
}

// One write(2) per line on an O_APPEND descriptor, so lines of concurrent
// writers never interleave.
void WriteLine(int fd, std::string_view line, const std::string& path) { WriteAll(fd, line, path); }

void AppendLine(const std::string& path, std::string_view line)
{
    Fd fd(OpenAppend(path));
    std::string text(line);
    text.push_back('\n');
    WriteLine(fd.get(), text, path);
}

RequestLogMode RequestLogModeFromEnv()
{
    const char* v = std::getenv("CVSIM_REQUEST_LOG");
    std::string_view mode = v != nullptr ? v : "";
    if (mode.empty() || mode == "full") {
        return RequestLogMode::Full;
    }
    if (mode == "brief") {
        return RequestLogMode::Brief;
    }
    if (mode == "off") {
        return RequestLogMode::Off;
    }
    static constexpr char kMsg[] = "cvsim: CVSIM_REQUEST_LOG is not full, brief or off; full is used\n";
    ssize_t ignored = ::write(STDERR_FILENO, kMsg, sizeof kMsg - 1);
    (void)ignored;
    return RequestLogMode::Full;
}

namespace {

void PutDecimal(std::string& out, uint64_t v)
{
    char buf[20];
    char* end = buf + sizeof buf;
    char* p = end;
    do {
        *--p = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v != 0);
    out.append(p, end);
}

constexpr char kHexDigits[] = "0123456789abcdef";

// The two lowercase hex digits of every byte value.
constexpr std::array<char, 512> kHexPairs = [] {
    std::array<char, 512> t{};
    for (size_t b = 0; b < 256; ++b) {
        t[2 * b] = kHexDigits[b >> 4];
        t[2 * b + 1] = kHexDigits[b & 0xF];
    }
    return t;
}();

// Lowercase hex, two digits a byte, written in place.
void PutHex(std::string& out, std::span<const uint8_t> bytes)
{
    size_t at = out.size();
    out.resize(at + 2 * bytes.size());
    char* p = out.data() + at;
    for (uint8_t b : bytes) {
        std::memcpy(p, &kHexPairs[2 * b], 2);
        p += 2;
    }
}

// "0x" and at least eight hex digits, as printf's "0x%08lx".
void PutCode(std::string& out, unsigned long code)
{
    char buf[2 * sizeof code];
    int n = 0;
    for (unsigned long v = code; v != 0 || n < 8; v >>= 4) {
        buf[n++] = kHexDigits[v & 0xF];
    }
    out += "0x";
    while (n > 0) {
        out.push_back(buf[--n]);
    }
}

}  // namespace

void FormatRequestLine(std::string& line, const SimLoggedRequest& req, RequestLogMode mode)
{
    line.assign("nr=");
    PutDecimal(line, req.nr);
    line += " code=";
    PutCode(line, req.code);
    line += " size=";
    PutDecimal(line, req.size);
    line += " result=";
    PutDecimal(line, req.result);
    if (mode == RequestLogMode::Full) {
        line += " in=";
        PutHex(line, req.in);
        line += " out=";
        PutHex(line, req.out);
    }
    line.push_back('\n');
}

void Complain(const SimPaths& paths, const std::string& msg)
{
    std::string line = "cvsim: " + msg;
    std::string withNl = line + "\n";
    ssize_t ignored = ::write(STDERR_FILENO, withNl.data(), withNl.size());
    (void)ignored;
    try {
        AppendLine(paths.diagLog, line);
    } catch (const SimError&) {
        // stderr already has it; a missing sim/ directory is reported by the caller
    }
}

}  // namespace cvsim
