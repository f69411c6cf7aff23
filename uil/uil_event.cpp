// The event log: extraction of the key events from the current kernel log
// file, trimming, and reading the log back into records.
#include "uil/uil_event.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "mpi/mpi_root.h"
#include "uil/uil_textfile.h"

const std::array<UilEventName, 12> g_stEventIDEesMap = {{
    {1, "Register host to array"},
    {2, "Create virtual disk"},
    {3, "Remove virtual disk"},
    {4, "All paths for LUN are failed"},
    {5, "Physical path becomes degraded"},
    {6, "Physical path becomes normal"},
    {7, "Physical path becomes failed"},
    {8, "Add path to disk"},
    {9, "Delete path from disk"},
    {10, "Path becomes normal"},
    {11, "Path becomes failed"},
    {12, "I/O high latency"},
}};

namespace {

constexpr uint32_t kOpenAttempts = 20;
constexpr size_t kTimeFieldMax = 32;  // time text taken from a kernel log line
constexpr size_t kSplitPieces = 10;   // an event log line is split at "[" at most this often
constexpr size_t kTailRead = 8192;    // enough for the last line of the event log
constexpr size_t kAppendBatch = 64 * 1024;

// The log directory, made when missing (the directory itself private).
void makeLogDir()
{
    char dir[MPI_PATH_BUF_LEN];
    MPI_RootPath(MPI_LOG_DIR, dir, sizeof(dir));
    std::filesystem::path logDir = std::filesystem::path(dir).parent_path();
    std::error_code ignored;
    std::filesystem::create_directories(logDir.parent_path(), ignored);
    (void)mkdir(logDir.c_str(), 0600);
}

// Opens a log file that may have to be created, making the log directory
// when it is missing; gives up after 20 attempts, at once for a file that
// is not regular.
UilOpenResult openLog(const char* path, int flags, UilFd* fd)
{
    UilOpenResult result = UilOpenResult::Failed;
    for (uint32_t attempt = 0; attempt < kOpenAttempts; ++attempt) {
        result = UIL_OpenRegular(path, flags, 0600, fd);
        if (result == UilOpenResult::Ok || result == UilOpenResult::NotRegular) {
            break;
        }
        if (result == UilOpenResult::Missing) {
            makeLogDir();
        }
    }
    return result;
}

// Lines of a file read through a buffer: each without its newline, cut to
// UIL_EVENT_LINE_MAX characters and at a NUL byte.
class LineReader {
public:
    explicit LineReader(int fd) : m_fd(fd) {}

    bool next(std::string* line)
    {
        line->clear();
        bool any = false;
        for (;;) {
            if (m_pos == m_len && !fill()) {
                break;
            }
            any = true;
            const char* begin = m_buf + m_pos;
            const char* nl = static_cast<const char*>(std::memchr(begin, '\n', m_len - m_pos));
            size_t take = nl != nullptr ? static_cast<size_t>(nl - begin) : m_len - m_pos;
            if (line->size() < UIL_EVENT_LINE_MAX) {
                line->append(begin, std::min(take, UIL_EVENT_LINE_MAX - line->size()));
            }
            m_pos += take;
            if (nl != nullptr) {
                ++m_pos;
                break;
            }
        }
        size_t nul = line->find('\0');
        if (nul != std::string::npos) {
            line->resize(nul);
        }
        return any;
    }
    bool failed() const { return m_failed; }

private:
    bool fill()
    {
        for (;;) {
            ssize_t n = read(m_fd, m_buf, sizeof(m_buf));
            if (n < 0 && errno == EINTR) {
                continue;
            }
            m_failed = n < 0;
            m_pos = 0;
            m_len = n > 0 ? static_cast<size_t>(n) : 0;
            return n > 0;
        }
    }

    int m_fd;
    char m_buf[65536];
    size_t m_pos = 0;
    size_t m_len = 0;
    bool m_failed = false;
};

// The event log line of a kernel log line: the time (its first bracketed
// field) in brackets, then the line from the third bracketed field after
// the marker; false for a line without a key event.
bool keyEventLine(std::string_view line, std::string* out)
{
    size_t marker = line.find(UIL_EVENT_MARKER);
    if (marker == std::string_view::npos) {
        return false;
    }
    size_t open = line.find('[');
    size_t close = line.find(']', open + 1);
    if (close == std::string_view::npos) {
        return false;
    }
    std::string_view time = line.substr(open + 1, std::min(close - open - 1, kTimeFieldMax));
    size_t pos = marker + std::strlen(UIL_EVENT_MARKER);
    for (int skipped = 0; skipped < 2; ++skipped) {
        size_t fieldOpen = line.find('[', pos);
        size_t fieldClose = fieldOpen == std::string_view::npos ? fieldOpen : line.find(']', fieldOpen + 1);
        if (fieldClose == std::string_view::npos) {
            return false;
        }
        pos = fieldClose + 1;
    }
    size_t text = line.find('[', pos);
    if (text == std::string_view::npos) {
        return false;
    }
    std::string_view rest = line.substr(text);
    out->clear();
    out->push_back('[');
    out->append(time.data(), time.size());
    out->push_back(']');
    out->append(rest.data(), rest.size());
    // Cut as the line will read back, so that the next run recognises it.
    if (out->size() > UIL_EVENT_LINE_MAX) {
        out->resize(UIL_EVENT_LINE_MAX);
    }
    return true;
}

// The last complete line of the event log; `tornAt` is where a last line
// cut short by a writer that stopped in the middle of it begins (the
// file's size when the log ends with a newline).
struct LastEvent {
    bool found = false;
    off_t tornAt = 0;
    off_t size = 0;
    std::string line;
};

bool readLastEvent(int fd, LastEvent* last)
{
    struct stat st {};
    if (fstat(fd, &st) != 0) {
        return false;
    }
    size_t size = static_cast<size_t>(st.st_size);
    size_t start = size > kTailRead ? size - kTailRead : 0;
    std::string tail(size - start, '\0');
    size_t got = 0;
    while (got < tail.size()) {
        ssize_t n = pread(fd, tail.data() + got, tail.size() - got, static_cast<off_t>(start + got));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        got += static_cast<size_t>(n);
    }
    last->size = static_cast<off_t>(size);
    last->tornAt = last->size;
    size_t end = tail.rfind('\n');
    if (end == std::string::npos) {
        if (start == 0) {
            last->tornAt = 0;
        }
        return true;  // no complete line
    }
    last->tornAt = static_cast<off_t>(start + end + 1);
    size_t begin = end == 0 ? std::string::npos : tail.rfind('\n', end - 1);
    if (begin == std::string::npos && start != 0) {
        return true;  // longer than any line the analysis writes
    }
    begin = begin == std::string::npos ? 0 : begin + 1;
    last->line = tail.substr(begin, end - begin);
    last->found = true;
    return true;
}

// Collects lines and appends them in large writes; a failed write is
// traced and the analysis goes on.
class EventAppender {
public:
    EventAppender(int fd, const char* path) : m_fd(fd), m_path(path) {}
    ~EventAppender() { flush(); }
    EventAppender(const EventAppender&) = delete;
    EventAppender& operator=(const EventAppender&) = delete;

    void add(std::string_view text)
    {
        m_pending.append(text);
        if (m_pending.size() >= kAppendBatch) {
            flush();
        }
    }
    void flush()
    {
        if (!m_pending.empty() && !UIL_WriteAll(m_fd, m_pending)) {
            UIL_ERR("Write event log (%s) failed", m_path);
        }
        m_pending.clear();
    }

private:
    int m_fd;
    const char* m_path;
    std::string m_pending;
};

// UIL_AppendEventLog: the key events of the kernel log that follow the last
// recorded one. The point is the last key event whose line equals the
// event log's last line (the whole line, not only its time and ID, so two
// events of the same second and ID are told apart); when none does (the
// kernel log rotated, or the event log is new), every key event is taken.
uint32_t UIL_AppendEventLog(int kernelFd, int eventFd, const char* eventPath)
{
    LastEvent last;
    if (!readLastEvent(eventFd, &last)) {
        UIL_ERR("Get last event time from event file failed");
        return MPI_RET_FAIL;
    }
    std::string line;
    std::string event;
    uint64_t point = 0;  // key events up to and including the recorded one
    if (last.found) {
        LineReader reader(kernelFd);
        for (uint64_t seen = 0; reader.next(&line);) {
            if (!keyEventLine(line, &event)) {
                continue;
            }
            ++seen;
            if (event == last.line) {
                point = seen;
            }
        }
        if (lseek(kernelFd, 0, SEEK_SET) < 0) {
            UIL_ERR("Move to file pointer fail");
            return MPI_RET_FAIL;
        }
    }
    EventAppender out(eventFd, eventPath);
    if (last.tornAt != last.size && ftruncate(eventFd, last.tornAt) != 0) {
        // The cut line follows the recorded event, so its event is written
        // again in full below; it cannot be removed, so end it here.
        UIL_ERR("Remove cut line of event log (%s) failed: %s", eventPath, std::strerror(errno));
        out.add("\n");
    }
    LineReader reader(kernelFd);
    for (uint64_t seen = 0; reader.next(&line);) {
        if (keyEventLine(line, &event) && ++seen > point) {
            event.push_back('\n');
            out.add(event);
        }
    }
    if (reader.failed()) {
        UIL_ERR("Read kernel log failed: %s", std::strerror(errno));
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

// ---------------------------------------------------------------------------
// Names and paths.

const char* UIL_GetEventName(uint32_t eventId)
{
    for (const UilEventName& row : g_stEventIDEesMap) {
        if (row.eventId == eventId) {
            return row.name;
        }
    }
    return nullptr;
}

uint32_t UIL_GetEventFilePath(char* buffer, size_t size, const char* name)
{
    UIL_ASSERT(buffer != nullptr && name != nullptr);
    const char* full = MPI_GetFullName(MPI_NAME_LOG, name);
    if (std::strlen(full) + 1 > size || strcpy_s(buffer, size, full) != 0) {
        UIL_ERR("Path of %s does not fit in %zu bytes", name, size);
        return MPI_RET_BUFFER_SMALL;
    }
    return MPI_RET_SUCCESS;
}

uint32_t UIL_GetKernelLogFilePath(char* buffer, size_t size)
{
    UIL_ASSERT(buffer != nullptr);
    char indexPath[UIL_EVENT_PATH_LEN];
    uint32_t ret = UIL_GetEventFilePath(indexPath, sizeof(indexPath), UIL_KLOG_INDEX_NAME);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    UilFd fd;
    if (UIL_OpenRegular(indexPath, O_RDONLY, 0, &fd) != UilOpenResult::Ok) {
        UIL_ERR("Open log index file (%s) failed", indexPath);
        return MPI_RET_FAIL;
    }
    char index = 0;
    ssize_t n = 0;
    do {
        n = read(fd.get(), &index, 1);
    } while (n < 0 && errno == EINTR);
    if (n != 1) {
        UIL_ERR("read log index file (%s) failed", indexPath);
        return MPI_RET_FAIL;
    }
    uint32_t value = 0;
    if (MPI_ParseU32(std::string_view(&index, 1), 0, 2, &value) != MPI_Num::Ok) {
        UIL_ERR("Log index (%c) invalid", index);
        return MPI_RET_FAIL;
    }
    // The directory and "xmp_log", then the index, ".txt" and the terminator.
    char head[UIL_EVENT_PATH_LEN];
    ret = UIL_GetEventFilePath(head, sizeof(head), UIL_KLOG_NAME_HEAD);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    if (std::strlen(head) + 6 > size) {
        UIL_ERR("Kernel log path does not fit in %zu bytes", size);
        return MPI_RET_BUFFER_SMALL;
    }
    (void)snprintf_s(buffer, size, size - 1, "%s%c%s", head, index, UIL_KLOG_NAME_TAIL);
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// Trimming.

// Cuts the event log back to its last UIL_EVENT_LOG_KEEP bytes once it is
// longer than UIL_EVENT_LOG_MAX: the tail goes to the scratch file, which
// is synced and renamed over the log, so a stop at any point leaves the
// whole log or the trimmed one. Failures are traced; the analysis goes on.
void INTF_UIL_LOG_TRACE_IN(const char* eventPath, const char* scratchPath)
{
    UilFd log;
    UilOpenResult opened = UIL_OpenRegular(eventPath, O_RDONLY, 0, &log);
    if (opened == UilOpenResult::Missing) {
        return;
    }
    struct stat st {};
    if (opened != UilOpenResult::Ok || fstat(log.get(), &st) != 0) {
        UIL_ERR("{%s} log file open fail.", eventPath);
        return;
    }
    if (static_cast<uint64_t>(st.st_size) <= UIL_EVENT_LOG_MAX) {
        return;
    }
    if (lseek(log.get(), st.st_size - static_cast<off_t>(UIL_EVENT_LOG_KEEP), SEEK_SET) < 0) {
        UIL_ERR("Move file {%s} pointer fail.", eventPath);
        return;
    }
    std::string tail;
    if (!UIL_ReadRest(log.get(), UIL_EVENT_LOG_KEEP, &tail)) {
        UIL_ERR("Copy trimmed content from {%s} to {%s} fail.", eventPath, scratchPath);
        return;
    }
    UilFd scratch;
    if (UIL_OpenRegular(scratchPath, O_WRONLY | O_CREAT | O_TRUNC, 0600, &scratch) != UilOpenResult::Ok) {
        UIL_ERR("Open file {%s} to write fail.", scratchPath);
        return;
    }
    bool copied = UIL_WriteAll(scratch.get(), tail) && fchmod(scratch.get(), st.st_mode & 07777) == 0 &&
                  fsync(scratch.get()) == 0 && scratch.closeChecked();
    if (!copied || rename(scratchPath, eventPath) != 0) {
        UIL_ERR("Copy file from {%s} to {%s} fail.", scratchPath, eventPath);
        if (unlink(scratchPath) != 0) {
            UIL_ERR("Del file {%s} fail.", scratchPath);
        }
    }
}

// ---------------------------------------------------------------------------
// Analysis.

namespace {

// Keeps two analyses (two shells asking for events at once) from appending
// the same events twice: the log directory is locked while one runs.
class AnalysisLock {
public:
    AnalysisLock()
    {
        char dir[MPI_PATH_BUF_LEN];
        MPI_RootPath(MPI_LOG_DIR, dir, sizeof(dir));
        m_fd.reset(open(dir, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!m_fd.valid()) {
            return;  // nothing to lock yet: the directory is made on the way
        }
        while (flock(m_fd.get(), LOCK_EX) != 0 && errno == EINTR) {
        }
    }

private:
    UilFd m_fd;  // closing it releases the lock
};

uint32_t UIL_FilterKeyEvent(const char* kernelPath, const char* eventPath, const char* scratchPath)
{
    AnalysisLock lock;
    INTF_UIL_LOG_TRACE_IN(eventPath, scratchPath);
    UilFd kernel;
    if (UIL_OpenRegular(kernelPath, O_RDONLY, 0, &kernel) != UilOpenResult::Ok) {
        UIL_ERR("Open kernel log file (%s) failed", kernelPath);
        return MPI_RET_FAIL;
    }
    UilFd events;
    if (openLog(eventPath, O_RDWR | O_APPEND | O_CREAT, &events) != UilOpenResult::Ok) {
        UIL_ERR("Open event file (%s) failed", eventPath);
        return MPI_RET_FAIL;
    }
    if (UIL_AppendEventLog(kernel.get(), events.get(), eventPath) != MPI_RET_SUCCESS) {
        UIL_ERR("Append event log failed");
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t INTF_UIL_AnalyzeKeyEvent()
{
    char kernelPath[UIL_EVENT_PATH_LEN];
    char eventPath[UIL_EVENT_PATH_LEN];
    char scratchPath[UIL_EVENT_PATH_LEN];
    if (UIL_GetKernelLogFilePath(kernelPath, sizeof(kernelPath)) != MPI_RET_SUCCESS) {
        UIL_ERR("Get kernel log file path failed");
        return MPI_RET_FAIL;
    }
    if (UIL_GetEventFilePath(eventPath, sizeof(eventPath), UIL_EVENT_LOG_NAME) != MPI_RET_SUCCESS) {
        UIL_ERR("Get kernel event file path failed");
        return MPI_RET_FAIL;
    }
    if (UIL_GetEventFilePath(scratchPath, sizeof(scratchPath), UIL_EVENT_TMP_NAME) != MPI_RET_SUCCESS) {
        UIL_ERR("Get kernel tmp event file path failed");
        return MPI_RET_FAIL;
    }
    if (UIL_FilterKeyEvent(kernelPath, eventPath, scratchPath) != MPI_RET_SUCCESS) {
        UIL_ERR("Analyze event log failed");
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// Reading back.

namespace {

void copyField(char* out, size_t capacity, std::string_view text)
{
    (void)strncpy_s(out, capacity, text.data(), std::min(text.size(), capacity - 1));
}

}  // namespace

bool UIL_ParseEventLine(const char* line, UilEventInfo* info)
{
    UIL_ASSERT(line != nullptr && info != nullptr);
    std::string_view text(line);
    if (text.empty() || text[0] != '[') {
        return false;  // what is left of a line cut by trimming, or not an event line
    }
    // The line split at "[" (into at most kSplitPieces pieces, the first
    // being the empty text before the leading "["), each piece cut at "]".
    struct Field {
        std::string_view text;
        size_t restAt;  // where the text after the field's "]" begins
    };
    std::array<Field, kSplitPieces> fields{};
    size_t count = 0;
    size_t pos = 1;
    while (count < kSplitPieces - 1) {
        size_t next = count == kSplitPieces - 2 ? std::string_view::npos : text.find('[', pos);
        size_t pieceEnd = next == std::string_view::npos ? text.size() : next;
        size_t close = text.find(']', pos);
        size_t fieldEnd = close < pieceEnd ? close : pieceEnd;
        fields[count++] = Field{text.substr(pos, fieldEnd - pos), close < pieceEnd ? close + 1 : pieceEnd};
        if (next == std::string_view::npos) {
            break;
        }
        pos = next + 1;
    }
    if (count < 4) {
        return false;
    }
    uint32_t eventId = 0;
    uint32_t number = 0;
    if (MPI_ParseU32(fields[1].text, 0, UINT32_MAX, &eventId) != MPI_Num::Ok ||
        MPI_ParseU32(fields[3].text, 0, UINT32_MAX, &number) != MPI_Num::Ok) {
        return false;
    }
    *info = UilEventInfo{};
    copyField(info->time, sizeof(info->time), fields[0].text);
    info->eventId = eventId;
    copyField(info->object, sizeof(info->object), fields[2].text);
    info->number = number;
    info->number2 = -1;
    size_t messageAt = fields[3].restAt;
    uint32_t number2 = 0;
    // A fifth field that is not a number belongs to the message.
    if (count >= 5 && MPI_ParseU32(fields[4].text, 0, INT32_MAX, &number2) == MPI_Num::Ok) {
        info->number2 = static_cast<int32_t>(number2);
        messageAt = fields[4].restAt;
    }
    copyField(info->message, sizeof(info->message), text.substr(messageAt));
    return true;
}

void INTF_UIL_ShowEventEnd(MPI_ListNode* head)
{
    if (head == nullptr || head->next == nullptr) {
        return;
    }
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        std::free(MPI_ListEntry<UilEventInfo>(node));
    }
}

uint32_t INTF_UIL_ShowLatestEvents(MPI_ListNode* head, uint32_t latest, uint32_t* count)
{
    if (head == nullptr || count == nullptr) {
        UIL_ERR("The input log list head is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    MPI_ListInit(head);
    *count = 0;
    char eventPath[UIL_EVENT_PATH_LEN];
    UilFd fd;
    if (UIL_GetEventFilePath(eventPath, sizeof(eventPath), UIL_EVENT_LOG_NAME) != MPI_RET_SUCCESS ||
        openLog(eventPath, O_RDWR | O_APPEND | O_CREAT, &fd) != UilOpenResult::Ok) {
        UIL_ERR("Open event log file fail.");
        return UIL_EVENT_OPEN_FAIL;
    }
    LineReader reader(fd.get());
    std::string line;
    uint32_t skipped = 0;
    UilEventInfo parsed{};
    while (reader.next(&line)) {
        if (!UIL_ParseEventLine(line.c_str(), &parsed)) {
            skipped += line.empty() ? 0 : 1;
            continue;
        }
        auto* record = static_cast<UilEventInfo*>(UIL_ZMalloc(sizeof(UilEventInfo)));
        if (record == nullptr) {
            UIL_ERR("malloc for log info fail");
            INTF_UIL_ShowEventEnd(head);
            *count = 0;
            return MPI_RET_NO_MEMORY;
        }
        *record = parsed;
        MPI_ListAddTail(&record->links, head);
        if (latest != 0 && *count == latest) {
            MPI_ListNode* oldest = head->next;
            MPI_ListDelete(oldest);
            std::free(MPI_ListEntry<UilEventInfo>(oldest));
        } else {
            ++*count;
        }
    }
    if (reader.failed()) {
        UIL_ERR("Read event log (%s) failed: %s", eventPath, std::strerror(errno));
    }
    if (skipped != 0) {
        UIL_TRACE(MPI_LOG_WARN, "Skipped %u lines of %s that are not events", skipped, eventPath);
    }
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_ShowEvent(MPI_ListNode* head)
{
    uint32_t count = 0;
    if (head == nullptr) {
        UIL_ERR("The input log list head is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    return INTF_UIL_ShowLatestEvents(head, 0, &count);
}
