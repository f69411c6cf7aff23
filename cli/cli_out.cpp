#include "cli/cli_out.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

namespace {

constexpr size_t kCapacity = 64 * 1024;

char g_buffer[kCapacity];
// Written by the main flow, read by the SIGINT handler: g_length first, then
// g_complete, so the handler only ever sees bytes that are in place.
volatile sig_atomic_t g_length = 0;
volatile sig_atomic_t g_complete = 0;  // bytes up to the end of the last whole line
volatile sig_atomic_t g_failed = 0;
int g_fd = STDOUT_FILENO;

// write(2) until done; false on any error but an interrupted call.
bool writeAll(const char* data, size_t len)
{
    while (len > 0) {
        const ssize_t written = write(g_fd, data, len);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        len -= static_cast<size_t>(written);
    }
    return true;
}

class SigintHeld {
public:
    SigintHeld()
    {
        sigset_t block;
        sigemptyset(&block);
        sigaddset(&block, SIGINT);
        (void)sigprocmask(SIG_BLOCK, &block, &m_old);
    }
    SigintHeld(const SigintHeld&) = delete;
    SigintHeld& operator=(const SigintHeld&) = delete;
    ~SigintHeld() { (void)sigprocmask(SIG_SETMASK, &m_old, nullptr); }

private:
    sigset_t m_old;
};

void writeOut(const char* data, size_t len)
{
    if (g_failed == 0 && !writeAll(data, len)) {
        g_failed = 1;
    }
}

}  // namespace

void MPCLI_OutFlush()
{
    if (g_length == 0) {
        return;
    }
    SigintHeld held;
    writeOut(g_buffer, static_cast<size_t>(g_length));
    g_complete = 0;
    g_length = 0;
}

void MPCLI_OutWrite(const char* data, size_t len)
{
    if (len == 0) {
        return;
    }
    if (len > kCapacity - static_cast<size_t>(g_length)) {
        MPCLI_OutFlush();
        if (len > kCapacity) {
            SigintHeld held;
            writeOut(data, len);
            return;
        }
    }
    const size_t start = static_cast<size_t>(g_length);
    std::memcpy(g_buffer + start, data, len);
    g_length = static_cast<sig_atomic_t>(start + len);
    const void* lastNewline = memrchr(data, '\n', len);
    if (lastNewline != nullptr) {
        g_complete = static_cast<sig_atomic_t>(start + (static_cast<const char*>(lastNewline) - data) + 1);
    }
}

void MPCLI_OutDrainOnSignal()
{
    if (g_failed == 0 && g_complete > 0) {
        (void)writeAll(g_buffer, static_cast<size_t>(g_complete));
    }
    g_complete = 0;
    g_length = 0;
}

bool MPCLI_OutFailed() { return g_failed != 0; }

void MPCLI_OutReset(int fd)
{
    g_fd = fd;
    g_length = 0;
    g_complete = 0;
    g_failed = 0;
}
