// Base primitives shared by every layer: return codes, the trace log,
// assertions, zero-filling allocation, the guarded counter, the intrusive
// list and the date texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

// ---------------------------------------------------------------------------
// Return codes shared by all layers.
enum : uint32_t {
    MPI_RET_SUCCESS = 1024,
    MPI_RET_INVALID_PARAM = 1026,
    MPI_RET_FAIL = 1030,
    MPI_RET_IOCTL_FAIL = 1031,
    MPI_RET_NO_MEMORY = 1037,
    MPI_RET_BUFFER_SMALL = 1038,
    MPI_RET_VLUN_NOT_EXIST = 1039,
    MPI_RET_ARRAY_NOT_EXIST = 1057,
    MPI_RET_UPGRADE_RUNNING = 1064,
    MPI_RET_INTERNAL_ERROR = 1065,
    MPI_RET_NOT_FOUND = 2,  // a few enumerations: nothing was found
};

// Object types used by the configuration store, setters and operation log.
enum : uint32_t {
    MPI_OBJ_COMMON = 100,
    MPI_OBJ_ARRAY = 101,
    MPI_OBJ_LUN = 102,
    MPI_OBJ_PATH = 103,
};

// ---------------------------------------------------------------------------
// Trace log.
enum : uint32_t { MPI_LOG_DEBUG = 0, MPI_LOG_INFO = 1, MPI_LOG_WARN = 2, MPI_LOG_ERROR = 3, MPI_LOG_FATAL = 4 };
enum : uint32_t { MPI_MOD_MPI = 0, MPI_MOD_UIA = 18, MPI_MOD_UIL = 19, MPI_MOD_CLI = 20 };

inline constexpr size_t MPI_LOG_PATH_LEN = 120;  // the paths the program names itself
inline constexpr size_t MPI_ROOT_MAX = 256;      // room reserved for a CVADM_ROOT prefix
inline constexpr size_t MPI_PATH_BUF_LEN = MPI_LOG_PATH_LEN + MPI_ROOT_MAX;

inline constexpr const char MPI_LOG_DIR[] = "/opt/Corvane/log/";
inline constexpr const char MPI_CFG_DIR[] = "/etc/Corvane/";

extern char g_pstUILLogCurAlarmPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogAlarmPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogHisAlarmPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogSerAlarmPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogOperPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogTracePath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogTimePath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogTmpPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogClearPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogEventPath[MPI_PATH_BUF_LEN];
extern char g_pstUILLogCLIOperPath[MPI_PATH_BUF_LEN];  // never filled nor read
extern char g_pstUILLogCvadmPath[MPI_PATH_BUF_LEN];    // never filled nor read

void UIL_GetLogPathName();
uint32_t UIL_LogInit();
void UIL_LogFini();
// Why the last UIL_LogInit failed (the system's error text, or "not a
// regular file"); null after a success.
const char* MPI_LogInitFailure();
// The log directory with its missing parents; the log directory itself is
// private to root (mode 0600).
void MPI_MakeLogDir();

const char* MPI_LevelName(uint32_t level);
const char* MPI_ModuleName(uint32_t module);

void UIL_GenerateLogCode(uint32_t value, uint32_t width, char* out);
char UIL_NumToHexadecimalChar(uint32_t digit);
void UIL_GetDate(char* out, size_t size);
const char* UTIL_GetTime();

// Writes "[date] [code] [level] [module] [func: line ] " followed by the
// formatted tail, exactly as given (the tail carries its own newline).
void MPI_TraceRaw(uint32_t module, uint32_t level, const char* func, int line, const char* fmt, ...)
    __attribute__((format(printf, 5, 6)));
// Same prefix; the message is followed by ".\n".
void MPI_TraceMsg(uint32_t module, uint32_t level, const char* func, int line, const char* fmt, ...)
    __attribute__((format(printf, 5, 6)));

#define UIL_TRACE(level, ...) MPI_TraceMsg(MPI_MOD_UIL, (level), __func__, __LINE__, __VA_ARGS__)
#define UIA_TRACE(level, ...) MPI_TraceMsg(MPI_MOD_UIA, (level), __func__, __LINE__, __VA_ARGS__)
#define UIL_ERR(...) UIL_TRACE(MPI_LOG_ERROR, __VA_ARGS__)
#define UIA_ERR(...) UIA_TRACE(MPI_LOG_ERROR, __VA_ARGS__)
#define UIL_TRACE_NULL(name) \
    MPI_TraceRaw(MPI_MOD_UIL, MPI_LOG_ERROR, __func__, __LINE__, "Pointer \"%s\" is NULL.\n", (name))

// The program's own console output may be buffered above this layer: the
// hook set here writes it out, and runs before this layer prints a console
// line itself, so the lines keep their order. Null (the default) does nothing.
void MPI_SetConsoleFlush(void (*flush)());
void MPI_FlushConsole();

// ---------------------------------------------------------------------------
// Assertions: a failed one is a programming error; it writes the trace line
// and never returns.
[[noreturn]] void MPI_AssertFail(uint32_t module, const char* file, const char* func, int line, const char* cond);

#define MPI_ASSERT_IN(module, file, cond) \
    ((cond) ? (void)0 : MPI_AssertFail((module), (file), __func__, __LINE__, #cond))

inline constexpr const char MPI_SRC_CLI_MAIN[] = "../../../../../cvdrv/common/util/cli/usr/cli_main";
inline constexpr const char MPI_SRC_CLI_MISC[] = "../../../../../cvdrv/common/util/cli/usr/cli_misc";
inline constexpr const char MPI_SRC_UIL[] = "../../../../../cvdrv/common/util/uil/usr/uil";
inline constexpr const char MPI_SRC_UIA[] = "../../../../../cvdrv/common/util/uia/usr/uia";
inline constexpr const char MPI_SRC_MPI[] = "../../../../../cvdrv/linux/base/mpi/usr/mpi_usr";

#define CLI_ASSERT(cond) MPI_ASSERT_IN(MPI_MOD_UIL, MPI_SRC_CLI_MAIN, cond)
#define UIL_ASSERT(cond) MPI_ASSERT_IN(MPI_MOD_UIL, MPI_SRC_UIL, cond)
#define UIA_ASSERT(cond) MPI_ASSERT_IN(MPI_MOD_UIA, MPI_SRC_UIA, cond)

// ---------------------------------------------------------------------------
// Allocation: zero-filled; NULL for 0 bytes, more than 0x40000000 bytes, or
// when memory runs out (each traced). Released with free().
inline constexpr size_t MPI_ALLOC_MAX = 0x40000000;
void* UIL_ZMalloc(size_t size);
void* MPCLI_ZMalloc(size_t size);

// ---------------------------------------------------------------------------
// Full names: kind 2 is the log directory, kind 5 the configuration
// directory; any other kind appends to what the buffer last held.
enum : uint32_t { MPI_NAME_LOG = 2, MPI_NAME_CFG = 5 };
char* MPI_GetFullName(uint32_t kind, const char* name);
int MPI_FindFile(const char* name);

// ---------------------------------------------------------------------------
// Guarded counter.
inline constexpr uint32_t MPI_ATOMIC_INITED = 0xBEEF;
inline constexpr uint32_t MPI_ATOMIC_DESTROYED = 0xFFFF4110;

struct MPI_Atomic {
    std::mutex lock;
    int64_t value = 0;
    uint32_t state = 0;
};

void MPI_AtomicInit(MPI_Atomic* atomic, int64_t value);
void MPI_AtomicDestroy(MPI_Atomic* atomic);
int64_t MPI_AtomicRead(MPI_Atomic* atomic);
int64_t MPI_AtomicIncrease(MPI_Atomic* atomic);
int64_t MPI_AtomicDecrease(MPI_Atomic* atomic);

// ---------------------------------------------------------------------------
// Intrusive doubly linked list: the node is embedded in its record.
struct MPI_ListNode {
    MPI_ListNode* next;
    MPI_ListNode* prev;
};

inline void MPI_ListInit(MPI_ListNode* head) { head->next = head->prev = head; }
inline bool MPI_ListEmpty(const MPI_ListNode* head) { return head->next == head; }
inline void __MPI_ListInsert(MPI_ListNode* node, MPI_ListNode* prev, MPI_ListNode* next)
{
    next->prev = node;
    node->next = next;
    node->prev = prev;
    prev->next = node;
}
inline void __MPI_ListDelete(MPI_ListNode* prev, MPI_ListNode* next)
{
    next->prev = prev;
    prev->next = next;
}
inline void MPI_ListAddHead(MPI_ListNode* node, MPI_ListNode* head) { __MPI_ListInsert(node, head, head->next); }
inline void MPI_ListAddTail(MPI_ListNode* node, MPI_ListNode* head) { __MPI_ListInsert(node, head->prev, head); }
inline void MPI_ListDelete(MPI_ListNode* node) { __MPI_ListDelete(node->prev, node->next); }

// The record whose `links` member is `node`: every listed record names its
// node so.
template <typename T>
T* MPI_ListEntry(MPI_ListNode* node)
{
    return reinterpret_cast<T*>(reinterpret_cast<char*>(node) - offsetof(T, links));
}
template <typename T>
const T* MPI_ListEntry(const MPI_ListNode* node)
{
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(node) - offsetof(T, links));
}
