// The trace log: one line per report, the file opened and closed each time
// so that several processes can append to it.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>

#include "bounded/bounded.h"
#include "mpi/mpi_file.h"
#include "mpi/mpi_root.h"
#include "mpi/mpi_usr.h"

char g_pstUILLogCurAlarmPath[MPI_PATH_BUF_LEN];
char g_pstUILLogAlarmPath[MPI_PATH_BUF_LEN];
char g_pstUILLogHisAlarmPath[MPI_PATH_BUF_LEN];
char g_pstUILLogSerAlarmPath[MPI_PATH_BUF_LEN];
char g_pstUILLogOperPath[MPI_PATH_BUF_LEN];
char g_pstUILLogTracePath[MPI_PATH_BUF_LEN];
char g_pstUILLogTimePath[MPI_PATH_BUF_LEN];
char g_pstUILLogTmpPath[MPI_PATH_BUF_LEN];
char g_pstUILLogClearPath[MPI_PATH_BUF_LEN];
char g_pstUILLogEventPath[MPI_PATH_BUF_LEN];
char g_pstUILLogCLIOperPath[MPI_PATH_BUF_LEN];
char g_pstUILLogCvadmPath[MPI_PATH_BUF_LEN];

namespace {

constexpr std::array<const char*, 5> kLevelNames = {"DEBUG", "INFO", "WARN", "ERROR", "FATAL"};

constexpr std::array<const char*, 29> kModuleNames = {
    "MPI",  "BAL", "KLS", "KCF",   "USI",  "LPM",       "VDS",      "LBS",  "PIA", "PIA_BASE",
    "DISK", "VHBA", "VHBA_BASE", "VHBA_EXT", "VLM", "SHEL", "SHEL_BASE", "SHEL_EXT", "UIA", "UIL",
    "CLI",  "GUI", "REG", "INST",  "OUC",  "AGT",       "EVENT",    "PCM",  "REF",
};

struct LogFile {
    char* path;
    const char* name;
};

constexpr std::array<LogFile, 10> kLogFiles = {{
    {g_pstUILLogCurAlarmPath, "current_alarm"},
    {g_pstUILLogAlarmPath, "alarm_info_log"},
    {g_pstUILLogHisAlarmPath, "history_alarm"},
    {g_pstUILLogSerAlarmPath, "serial_alarm"},
    {g_pstUILLogOperPath, "oper_log"},
    {g_pstUILLogTracePath, "cli_uil_log.txt"},
    {g_pstUILLogTimePath, "alarm_time_log.txt"},
    {g_pstUILLogTmpPath, "tmp_log.txt"},
    {g_pstUILLogClearPath, "clear_log.txt"},
    {g_pstUILLogEventPath, "event_log"},
}};

const char* g_pszMPILogInitFailure = nullptr;

constexpr uint32_t kLogCodeProduct = 0x5342;
constexpr uint32_t kLogCodeFixed = 0xC0;
constexpr size_t kLogCodeLen = 16;

using FilePtr = MPI_FilePtr;  // the FILE* of one trace line

const char* tracePath()
{
    if (g_pstUILLogTracePath[0] == '\0') {
        MPI_RootPath("/opt/Corvane/log/cli_uil_log.txt", g_pstUILLogTracePath, MPI_PATH_BUF_LEN);
    }
    return g_pstUILLogTracePath;
}

// The trace log for appending, the log directory made when it is missing.
// Anything but a regular file in its place is refused, never waited on.
FilePtr openTraceFile(const char** reason)
{
    int fd = MPI_OpenRegular(tracePath(), O_WRONLY | O_APPEND | O_CREAT, 0600, reason);
    if (fd < 0 && errno == ENOENT) {
        MPI_MakeLogDir();
        fd = MPI_OpenRegular(tracePath(), O_WRONLY | O_APPEND | O_CREAT, 0600, reason);
    }
    if (fd < 0) {
        return nullptr;
    }
    FilePtr file(fdopen(fd, "a"));
    if (!file) {
        *reason = std::strerror(errno);
        (void)close(fd);
    }
    return file;
}

FilePtr openTrace(uint32_t module)
{
    const char* reason = "";
    FilePtr file = openTraceFile(&reason);
    if (!file) {
        MPI_FlushConsole();
        std::fputs(module == MPI_MOD_UIA ? "Open UIA trace log fail.\n" : "Open UIL trace log fail.\n", stdout);
        std::fflush(stdout);
    }
    return file;
}

void writePrefix(FILE* file, uint32_t module, uint32_t level, const char* func, int line)
{
    char code[kLogCodeLen + 1] = {};
    UIL_GenerateLogCode(kLogCodeProduct, 8, code);
    UIL_GenerateLogCode(module, 2, code + 8);
    UIL_GenerateLogCode(kLogCodeFixed, 2, code + 10);
    UIL_GenerateLogCode(static_cast<uint32_t>(line), 4, code + 12);
    char date[40];
    UIL_GetDate(date, sizeof(date));
    std::fprintf(file, "[%s] [%s] [%-4s] [%-6s] [%s: %d ] ", date, code, MPI_LevelName(level), MPI_ModuleName(module),
                 func, line);
}

void traceV(uint32_t module, uint32_t level, const char* func, int line, const char* suffix, const char* fmt,
            va_list args)
{
    int savedErrno = errno;  // reporting must not disturb the caller's errno
    FilePtr file = openTrace(module);
    if (file) {
        writePrefix(file.get(), module, level, func, line);
        std::vfprintf(file.get(), fmt, args);
        std::fputs(suffix, file.get());
        std::fflush(file.get());
    }
    errno = savedErrno;
}

}  // namespace

void UIL_GetLogPathName()
{
    for (const LogFile& log : kLogFiles) {
        MPI_RootPath(MPI_LOG_DIR, log.path, MPI_PATH_BUF_LEN);
        (void)strcat_s(log.path, MPI_PATH_BUF_LEN, log.name);
    }
}

uint32_t UIL_LogInit()
{
    const char* reason = "";
    FilePtr file = openTraceFile(&reason);
    if (!file) {
        g_pszMPILogInitFailure = reason;
        MPI_FlushConsole();
        std::fputs("UIL trace log init fail.\n", stdout);
        std::fflush(stdout);
        return MPI_RET_FAIL;
    }
    g_pszMPILogInitFailure = nullptr;
    return MPI_RET_SUCCESS;
}

const char* MPI_LogInitFailure() { return g_pszMPILogInitFailure; }

void MPI_MakeLogDir()
{
    char dir[MPI_PATH_BUF_LEN];
    MPI_RootPath(MPI_LOG_DIR, dir, sizeof(dir));
    size_t len = std::strlen(dir);
    for (size_t i = 1; i < len; ++i) {
        if (dir[i] == '/') {
            dir[i] = '\0';
            bool last = (i == len - 1);
            (void)mkdir(dir, last ? 0600 : 0755);
            dir[i] = '/';
        }
    }
}

void UIL_LogFini() {}

const char* MPI_LevelName(uint32_t level) { return level < kLevelNames.size() ? kLevelNames[level] : ""; }

const char* MPI_ModuleName(uint32_t module) { return module < kModuleNames.size() ? kModuleNames[module] : ""; }

char UIL_NumToHexadecimalChar(uint32_t digit)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    return digit < 16 ? kDigits[digit] : '0';
}

void UIL_GenerateLogCode(uint32_t value, uint32_t width, char* out)
{
    // Digits from the right; a value wider than the field keeps its low
    // digits rather than writing in front of `out`.
    uint32_t pos = width;
    do {
        if (pos == 0) {
            return;
        }
        out[--pos] = UIL_NumToHexadecimalChar(value % 16);
        value /= 16;
    } while (value != 0);
    while (pos > 0) {
        out[--pos] = '0';
    }
}

void UIL_GetDate(char* out, size_t size)
{
    UIL_ASSERT(NULL != out);
    if (size == 0) {
        return;
    }
    out[0] = '\0';
    time_t now = std::time(nullptr);
    struct tm local;
    if (localtime_r(&now, &local) == nullptr) {
        return;
    }
    (void)snprintf_s(out, size, size - 1, "%d-%02d-%02d %02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                     local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

const char* UTIL_GetTime()
{
    static char text[32];
    text[0] = '\0';
    time_t now = std::time(nullptr);
    struct tm local;
    if (localtime_r(&now, &local) == nullptr || asctime_r(&local, text) == nullptr) {
        text[0] = '\0';
        return text;
    }
    char* newline = std::strchr(text, '\n');
    if (newline) {
        *newline = '\0';
    }
    return text;
}

void MPI_TraceRaw(uint32_t module, uint32_t level, const char* func, int line, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    traceV(module, level, func, line, "", fmt, args);
    va_end(args);
}

void MPI_TraceMsg(uint32_t module, uint32_t level, const char* func, int line, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    traceV(module, level, func, line, ".\n", fmt, args);
    va_end(args);
}

namespace {
void (*g_consoleFlush)() = nullptr;
}  // namespace

void MPI_SetConsoleFlush(void (*flush)()) { g_consoleFlush = flush; }

void MPI_FlushConsole()
{
    if (g_consoleFlush != nullptr) {
        g_consoleFlush();
    }
}

void MPI_AssertFail(uint32_t module, const char* file, const char* func, int line, const char* cond)
{
    MPI_TraceRaw(module, MPI_LOG_ERROR, func, line, "*** Assertion on file \"%s\" function \"%s\" line %d  exception \"%s\"\n",
                 file, func, line, cond);
    MPI_FlushConsole();
    // A broken invariant: stop all further work, but do not spin the CPU.
    for (;;) {
        pause();
    }
}

char* MPI_GetFullName(uint32_t kind, const char* name)
{
    static char fullName[MPI_PATH_BUF_LEN];
    if (kind == MPI_NAME_LOG) {
        MPI_RootPath(MPI_LOG_DIR, fullName, sizeof(fullName));
    } else if (kind == MPI_NAME_CFG) {
        MPI_RootPath(MPI_CFG_DIR, fullName, sizeof(fullName));
    }
    // Any other kind appends to whatever the buffer held last.
    size_t used = std::strlen(fullName);
    (void)strncat_s(fullName, sizeof(fullName), name, sizeof(fullName) - 1 - used);
    return fullName;
}

int MPI_FindFile(const char* /*name*/) { return 0; }
