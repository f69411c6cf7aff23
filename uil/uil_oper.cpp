// The operation log file and its serial number file: writing one line,
// advancing the serial number, reading the log back.
//
// Neither file may be left torn by a process killed half-way: a line is
// appended with one write() on a descriptor opened for appending, and the
// serial file is replaced as a whole (temporary file, fsync, rename).
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "bounded/bounded.h"
#include "mpi/mpi_file.h"
#include "mpi/mpi_number.h"
#include "mpi/mpi_root.h"
#include "uil/uil.h"
#include "uil/uil_file.h"
#include "uil/uil_journal.h"
#include "uil/uil_oper.h"

namespace {

constexpr size_t kUserLen = 32;
constexpr size_t kDateLen = 40;
constexpr size_t kMaxFields = 11;
constexpr size_t kSerialFileMax = 64 << 10;  // the number and whatever text follows it

UilOperLogRetry g_stOperLogRetry = UIL_OPER_LOG_RETRY;


const char* operLogPath()
{
    if (g_pstUILLogOperPath[0] == '\0') {
        UIL_GetLogPathName();
    }
    return g_pstUILLogOperPath;
}

std::string serialPath() { return MPI_HostPath(UIL_OPER_SERIAL_PATH); }

void pause(uint32_t ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

UilFd openForAppend(const char* path)
{
    for (uint32_t attempt = 0; attempt < g_stOperLogRetry.attempts; ++attempt) {
        if (attempt > 0) {
            pause(g_stOperLogRetry.delayMs);
        }
        // Never through a symbolic link, never into a FIFO or a device.
        UilFd fd = UIL_OpenRegular(path, O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW, 0600);
        if (fd.valid() || errno != ENOENT) {
            return fd;
        }
        MPI_MakeLogDir();
    }
    return UilFd();
}

void getUserName(char* out, size_t size)
{
    struct passwd entry;
    struct passwd* found = nullptr;
    char buffer[1024];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof(buffer), &found) == 0 && found != nullptr) {
        (void)snprintf_s(out, size, size - 1, "%s", found->pw_name);
    } else {
        (void)snprintf_s(out, size, size - 1, "%u", static_cast<unsigned>(getuid()));
    }
}

void appendf(std::string& out, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
void appendf(std::string& out, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    va_list again;
    va_copy(again, args);
    int need = std::vsnprintf(nullptr, 0, fmt, args);
    va_end(args);
    if (need > 0) {
        size_t old = out.size();
        out.resize(old + static_cast<size_t>(need) + 1);
        (void)std::vsnprintf(&out[old], static_cast<size_t>(need) + 1, fmt, again);
        out.resize(old + static_cast<size_t>(need));
    }
    va_end(again);
}

// One line stays one line: control characters typed into a command (or
// carried by a value) would split it, so they are written as blanks.
void blankControlCharacters(std::string& line)
{
    for (char& c : line) {
        if (static_cast<unsigned char>(c) < 0x20) {
            c = ' ';
        }
    }
}

// ---------------------------------------------------------------------------
// Serial number file.

UilFd openSerialFile(const std::string& path)
{
    // The file is never created here: without it there is no line at all.
    for (uint32_t attempt = 0; attempt < g_stOperLogRetry.attempts; ++attempt) {
        UilFd fd = UIL_OpenRegular(path.c_str(), O_RDONLY | O_NOFOLLOW);
        if (fd.valid() || errno != ENOENT) {
            return fd;
        }
        MPI_MakeLogDir();
    }
    errno = ENOENT;
    return UilFd();
}

// Read, increment and replace happen under an exclusive lock on a file
// beside the serial file, so that two writers never take the same number.
// The lock dies with its holder.
UilFd lockSerial(const std::string& path)
{
    std::string lockPath = path + UIL_OPER_SERIAL_LOCK_SUFFIX;
    UilFd fd = UIL_OpenRegular(lockPath.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (!fd.valid()) {
        UIL_ERR("Open file [%s] failed: %s", lockPath.c_str(), std::strerror(errno));
        return fd;
    }
    while (flock(fd.get(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            UIL_ERR("Lock file [%s] failed: %s", lockPath.c_str(), std::strerror(errno));
            UIL_FileErrorNote(lockPath.c_str(), std::strerror(errno));
            return UilFd();
        }
    }
    return fd;
}

bool readSerialFile(int fd, const std::string& path, std::string* content)
{
    if (lseek(fd, 0, SEEK_SET) != 0) {
        UIL_ERR("move file [%s] pointer failed", path.c_str());
        return false;
    }
    struct stat st {};
    if (fstat(fd, &st) != 0 || static_cast<size_t>(st.st_size) > kSerialFileMax) {
        // Rewriting it whole would copy it all; cutting it would lose text.
        UIL_ERR("File [%s] is too large for a serial number", path.c_str());
        UIL_FileErrorNote(path.c_str(), "too large for a serial number file");
        return false;
    }
    content->clear();
    char buffer[4096];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            UIL_ERR("Read file [%s] failed: %s", path.c_str(), std::strerror(errno));
            UIL_FileErrorNote(path.c_str(), std::strerror(errno));
            return false;
        }
        if (n == 0 || content->size() + static_cast<size_t>(n) > kSerialFileMax) {
            return n == 0;
        }
        content->append(buffer, static_cast<size_t>(n));
    }
}

// The number is the decimal value of the digits that begin the first nine
// characters; an empty file, or one that begins with anything but a digit
// ("-5", "abc"), holds 0. Nine digits at most: the next number always fits.
uint32_t serialOf(const std::string& content)
{
    std::string_view head(content.data(), std::min<size_t>(content.size(), UIL_OPER_SERIAL_DIGITS));
    size_t digits = 0;
    while (digits < head.size() && head[digits] >= '0' && head[digits] <= '9') {
        ++digits;
    }
    uint32_t serial = 0;
    return digits > 0 && MPI_ToU32(head.substr(0, digits), &serial) ? serial : 0;
}

// The new number is written over the start of the old text, which is not
// cut: "99" becomes "100", "1000000000" becomes "1000000010".
std::string overwriteStart(const std::string& content, uint32_t serial)
{
    std::string next = std::to_string(serial);
    if (content.size() > next.size()) {
        next += content.substr(next.size());
    }
    return next;
}

// ---------------------------------------------------------------------------
// Reading back.

void copyField(char* out, size_t size, const char* field) { (void)strncpy_s(out, size, field, size - 1); }

// A number field of a line; what is no number reads as 0.
uint32_t fieldAsUint(const char* field)
{
    uint32_t value = 0;
    return MPI_ToU32(field, &value) ? value : 0;
}

// Splits a line at "[" (at most 11 pieces) and cuts every piece at "]".
// Returns the number of fields, or 0 for a line with too many pieces.
size_t splitFields(char* line, char** fields)
{
    char* context = nullptr;
    size_t count = 0;
    for (char* piece = strtok_s(line, "[", &context); piece != nullptr; piece = strtok_s(nullptr, "[", &context)) {
        if (count == kMaxFields) {
            UIL_ERR("'[' beyound max number %d", static_cast<int>(kMaxFields));
            return 0;
        }
        char* close = std::strchr(piece, ']');
        if (close != nullptr) {
            *close = '\0';
        }
        fields[count++] = piece;
    }
    return count;
}

// Lines of 9 fields are those written before the result was recorded.
bool fillEntry(char** fields, size_t count, UilOperLogEntry* entry)
{
    if (count != 9 && count != 10) {
        return false;
    }
    entry->serial = fieldAsUint(fields[0]);
    copyField(entry->date, sizeof(entry->date), fields[1]);
    copyField(entry->user, sizeof(entry->user), fields[2]);
    copyField(entry->source, sizeof(entry->source), fields[3]);
    entry->level = fieldAsUint(fields[4]);
    entry->eventId = fieldAsUint(fields[5]);
    copyField(entry->command, sizeof(entry->command), fields[6]);
    copyField(entry->english, sizeof(entry->english), fields[7]);
    copyField(entry->localised, sizeof(entry->localised), fields[8]);
    entry->hasResult = count == 10 ? 1 : 0;
    entry->result = count == 10 ? fieldAsUint(fields[9]) : 0;
    return true;
}

FILE* openForReading(const char* path)
{
    for (uint32_t attempt = 0; attempt < g_stOperLogRetry.attempts; ++attempt) {
        UilFd fd = UIL_OpenRegular(path, O_RDONLY);
        if (fd.valid()) {
            FILE* file = fdopen(fd.get(), "r");
            if (file != nullptr) {
                (void)fd.release();
            }
            return file;
        }
        if (errno != ENOENT) {
            break;
        }
    }
    return nullptr;
}

}  // namespace

UilOperLogRetry UIL_OperLogSetRetry(UilOperLogRetry retry)
{
    UilOperLogRetry before = g_stOperLogRetry;
    g_stOperLogRetry = retry;
    return before;
}

uint32_t UIL_IncreaseAndGetOperSN(uint32_t* serial)
{
    if (serial == nullptr) {
        UIL_ERR("The input parameter is null");
        return MPI_RET_INVALID_PARAM;
    }
    std::string path = serialPath();
    UilFd fd = openSerialFile(path);
    if (!fd.valid()) {
        const int err = errno;
        UIL_ERR("Open file [%s] failed: %s", path.c_str(), std::strerror(err));
        // A host without the serial file keeps no operation log at all.
        return err == ENOENT ? MPI_RET_NOT_FOUND : MPI_RET_FAIL;
    }
    fd.reset();  // it exists; the lock file is made only then
    UilFd lock = lockSerial(path);
    if (!lock.valid()) {
        return MPI_RET_FAIL;
    }
    fd = openSerialFile(path);  // what the last holder of the lock left
    struct stat st {};
    std::string content;
    if (!fd.valid() || fstat(fd.get(), &st) != 0 || !readSerialFile(fd.get(), path, &content)) {
        return MPI_RET_FAIL;
    }
    uint32_t next = serialOf(content) + 1;
    if (!UIL_ReplaceFile(path.c_str(), overwriteStart(content, next), st.st_mode)) {
        UIL_ERR("fseek file [%s] seek set failed", path.c_str());
        return MPI_RET_FAIL;
    }
    *serial = next;
    return MPI_RET_SUCCESS;
}

namespace {

// `settles`: the line settles the journal records this process owes (a
// line written on behalf of a dead writer settles only that writer's).
uint32_t writeLine(const char* source, const char* verb, const char* command, uint32_t eventId, uint8_t result,
                   const UilOperLogPara* record, bool settles)
{
    UIL_ASSERT(source != NULL);
    const char* path = operLogPath();
    UIL_FileErrorClear();
    UilFd fd = openForAppend(path);
    if (!fd.valid()) {
        UIL_ERR("Open oper log file [%s] failed", path);
        if (*INTF_UIL_LastFileError() == '\0') {
            UIL_FileErrorNote(path, std::strerror(errno));
        }
        return UIL_OPERLOG_OPEN_FAIL;
    }
    char user[kUserLen] = {};
    getUserName(user, sizeof(user));
    char english[UIL_OPER_DSC_LEN] = {};
    char localised[UIL_OPER_DSC_LEN] = {};
    uint32_t index = 0;
    (void)UIL_GetOperDscByEventID(eventId, command, record, english, localised, &index);
    char date[kDateLen] = {};
    UIL_GetDate(date, sizeof(date));
    uint32_t serial = 0;
    const uint32_t taken = UIL_IncreaseAndGetOperSN(&serial);
    if (taken == MPI_RET_NOT_FOUND) {
        if (settles) {
            UIL_JournalLogged();  // a host that keeps no log owes no line
        }
        return UIL_OPERLOG_SWITCHED_OFF;
    }
    if (taken != MPI_RET_SUCCESS) {
        if (*INTF_UIL_LastFileError() == '\0') {
            UIL_FileErrorNote(serialPath().c_str(), "no serial number could be taken");
        }
        return MPI_RET_FAIL;
    }
    std::string line;
    appendf(line, "[%u] [%s] [%s] [%s] [%u] [%u] [%s%s] [%s] [%s] [%u]", serial, date, user, source,
            g_astUILOperLogFmt[index].level, eventId, verb != nullptr ? verb : "", command != nullptr ? command : "",
            english, localised, static_cast<unsigned>(result));
    blankControlCharacters(line);
    if (settles) {
        UIL_JournalLogging(serial, line);
    }
    line += '\n';
    if (!UIL_WriteAll(fd.get(), line) || !fd.closeChecked()) {
        UIL_ERR("Write oper log file [%s] failed: %s", path, std::strerror(errno));
        UIL_FileErrorNote(path, std::strerror(errno));
        return MPI_RET_FAIL;
    }
    if (settles) {
        UIL_JournalLogged();
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t UIL_OperLog(const char* source, const char* verb, const char* command, uint32_t eventId, uint8_t result,
                     const UilOperLogPara* record)
{
    return writeLine(source, verb, command, eventId, result, record, true);
}

uint32_t UIL_OperLogForDeadWriter(const char* verb, const char* command, uint8_t result)
{
    return writeLine("CLI", verb, command, UIL_OPER_WRITE_CONFIG, result, nullptr, false);
}

uint32_t UIL_OperLogFinishLine(uint32_t serial, const std::string& line)
{
    const char* path = operLogPath();
    const std::string mark = "[" + std::to_string(serial) + "] ";
    {
        MPI_FilePtr in(openForReading(path));
        char buf[4096];
        bool lineStart = true;
        while (in != nullptr && std::fgets(buf, sizeof(buf), in.get()) != nullptr) {
            if (lineStart && std::strncmp(buf, mark.c_str(), mark.size()) == 0) {
                return MPI_RET_SUCCESS;  // the dead writer got its line out
            }
            lineStart = std::strchr(buf, '\n') != nullptr;
        }
    }
    UilFd fd = openForAppend(path);
    if (!fd.valid() || !UIL_WriteAll(fd.get(), line + "\n") || !fd.closeChecked()) {
        UIL_ERR("Write oper log file [%s] failed: %s", path, std::strerror(errno));
        UIL_FileErrorNote(path, std::strerror(errno));
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_EnumerateOperLogStart(MPI_ListNode* head, uint32_t* count)
{
    if (head == nullptr) {
        UIL_ERR("The input log list head is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    MPI_ListInit(head);
    uint32_t found = 0;
    if (count != nullptr) {
        *count = 0;
    }
    MPI_FilePtr file(openForReading(operLogPath()));
    if (!file) {
        UIL_ERR("Open oper log file [%s] failed", operLogPath());
        return UIL_OPERLOG_OPEN_FAIL;
    }
    char* line = nullptr;
    size_t capacity = 0;
    bool anyLine = false;
    uint32_t ret = MPI_RET_SUCCESS;
    while (getline(&line, &capacity, file.get()) >= 0) {
        anyLine = true;
        auto* entry = static_cast<UilOperLogEntry*>(UIL_ZMalloc(sizeof(UilOperLogEntry)));
        if (entry == nullptr) {
            UIL_ERR("malloc for log info fail");
            ret = MPI_RET_NO_MEMORY;
            break;
        }
        char* fields[kMaxFields] = {};
        size_t n = splitFields(line, fields);
        if (!fillEntry(fields, n, entry)) {
            std::free(entry);
            continue;
        }
        MPI_ListAddTail(&entry->links, head);
        ++found;
    }
    std::free(line);
    if (!anyLine) {
        UIL_ERR("no log info fail");
        ret = MPI_RET_NOT_FOUND;
    }
    if (count != nullptr) {
        *count = found;
    }
    return ret;
}

void INTF_UIL_EnumerateOperLogEnd(MPI_ListNode* head)
{
    if (head == nullptr) {
        UIL_ERR("Input pointer of log list is NULL");
        return;
    }
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        std::free(MPI_ListEntry<UilOperLogEntry>(node));
    }
}
