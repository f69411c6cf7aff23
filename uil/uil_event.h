// The event log: the driver writes its log, key events included, into a
// small ring of kernel log files under the log directory ("cur_index" names
// the current one, "xmp_log<index>.txt"). The analysis copies the key
// events of the current file into "event_log" without writing any event
// twice; the reader turns the event log back into records for display.
//
// Kernel log line with a key event:
//   [time][...][EVENT][...][...][id][object][number]message
// Event log line (the time, then the kernel line from the third bracketed
// field after the marker):
//   [time][id][object][number][number2]message      (number2 optional)
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "mpi/mpi_usr.h"

inline constexpr const char UIL_KLOG_INDEX_NAME[] = "cur_index";
inline constexpr const char UIL_KLOG_NAME_HEAD[] = "xmp_log";
inline constexpr const char UIL_KLOG_NAME_TAIL[] = ".txt";
inline constexpr const char UIL_EVENT_LOG_NAME[] = "event_log";
inline constexpr const char UIL_EVENT_TMP_NAME[] = "event_log_tmp";
inline constexpr const char UIL_EVENT_MARKER[] = "[EVENT]";

// The event log is cut back to its last 917504 bytes once it grows past
// 1048575 bytes.
inline constexpr uint64_t UIL_EVENT_LOG_MAX = 0xFFFFF;
inline constexpr uint64_t UIL_EVENT_LOG_KEEP = 0xE0000;

inline constexpr size_t UIL_EVENT_PATH_LEN = MPI_PATH_BUF_LEN;
inline constexpr size_t UIL_EVENT_LINE_MAX = 511;  // longer lines are cut

// Result of INTF_UIL_ShowEvent when the event log cannot be opened.
inline constexpr uint32_t UIL_EVENT_OPEN_FAIL = 25;

// One event log line.
inline constexpr size_t UIL_EVENT_TIME_LEN = 40;
inline constexpr size_t UIL_EVENT_OBJECT_LEN = 20;
inline constexpr size_t UIL_EVENT_MESSAGE_LEN = 512;
struct UilEventInfo {
    MPI_ListNode links;
    char time[UIL_EVENT_TIME_LEN + 1];
    uint32_t eventId;
    char object[UIL_EVENT_OBJECT_LEN + 1];
    uint32_t number;
    int32_t number2;  // -1 when the line has only four bracketed fields
    char message[UIL_EVENT_MESSAGE_LEN + 1];
};

// Event names; an ID without a row is shown as its number.
struct UilEventName {
    uint32_t eventId;
    const char* name;
};
extern const std::array<UilEventName, 12> g_stEventIDEesMap;
// The name of `eventId`, or null when the table has none.
const char* UIL_GetEventName(uint32_t eventId);

// The current kernel log file from "cur_index". 1024; 1030 when the index
// file cannot be opened or read or does not hold "0", "1" or "2"; 1038
// when the path does not fit `size`.
uint32_t UIL_GetKernelLogFilePath(char* buffer, size_t size);
// The log directory followed by `name`. 1024; 1038 when it does not fit.
uint32_t UIL_GetEventFilePath(char* buffer, size_t size, const char* name);

// Trims the event log `eventPath` through the scratch file `scratchPath`
// when it is longer than UIL_EVENT_LOG_MAX (failures are traced only).
void INTF_UIL_LOG_TRACE_IN(const char* eventPath, const char* scratchPath);

// Brings the event log up to date with the current kernel log: trims it
// when too long, then appends the key events it does not hold yet. 1024, or
// 1030 when a path cannot be built, the kernel log or the event log cannot
// be opened, or the event log's last line cannot be read.
uint32_t INTF_UIL_AnalyzeKeyEvent();

// Reads the event log into `head` (records allocated here, released by
// INTF_UIL_ShowEventEnd), in file order; lines that are not event lines are
// skipped. A missing event log is created empty. 1024; 1026 no list head;
// 25 the event log cannot be opened; 1037 out of memory (the list is then
// empty).
uint32_t INTF_UIL_ShowEvent(MPI_ListNode* head);
void INTF_UIL_ShowEventEnd(MPI_ListNode* head);

// The same, keeping only the `latest` most recent events (0 keeps all);
// `count` receives the number of records in the list.
uint32_t INTF_UIL_ShowLatestEvents(MPI_ListNode* head, uint32_t latest, uint32_t* count);

// One event log line (without its newline) into `info`; false when it is
// not an event line: it must begin with "[", have at least four bracketed
// fields, and its event ID and first number must be decimal numbers.
bool UIL_ParseEventLine(const char* line, UilEventInfo* info);
