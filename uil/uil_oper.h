// The operation log: one numbered line per command that changed the
// system, with a readable description in English and in Chinese (GB2312),
// and the reading of that log back for display.
//
// Line format:
//   [serial] [date] [user] [source] [level] [event] [verb+command] [english] [chinese] [result]
// The serial number lives in "serial_oper" beside the log; when that file is
// missing no line is written at all (the product's installer creates it).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "mpi/mpi_usr.h"
#include "uil/uil_cfg.h"  // UilOperLogPara, the record the setters fill

// ---------------------------------------------------------------------------
// Event IDs (printed in decimal in the line).
enum : uint32_t {
    UIL_OPER_LB_OPEN = 0x53415101,
    UIL_OPER_LB_CLOSE = 0x53415102,
    UIL_OPER_LB_POLICY = 0x53415103,
    UIL_OPER_LUNTRESPASS_OPEN = 0x53415104,
    UIL_OPER_LUNTRESPASS_CLOSE = 0x53415105,
    UIL_OPER_FAILBACK_TIME = 0x53415106,
    UIL_OPER_HOLDON_TIME = 0x53415107,
    UIL_OPER_IO_RETRY = 0x53415108,
    UIL_OPER_PATH_ENABLE = 0x5341510a,
    UIL_OPER_PATH_DISABLE = 0x5341510b,
    UIL_OPER_PATH_CHECK = 0x5341510c,
    UIL_OPER_CTRL_ENABLE = 0x5341510d,
    UIL_OPER_CTRL_DISABLE = 0x5341510e,
    UIL_OPER_WRITE_CONFIG = 0x5341510f,
    UIL_OPER_TIME_ZONE = 0x53415110,
    UIL_OPER_GEN_PRKEY = 0x53415111,
    UIL_OPER_UPDATE_DISK_DRIVER = 0x53415112,
    UIL_OPER_PHY_PATH_IOSTATE = 0x53415113,
    UIL_OPER_CLEAR_ALARM = 0x53415114,
    UIL_OPER_UNKNOWN = 0x53415115,  // what the shell logs for a keyword it cannot place
    UIL_OPER_SCAN_DISK = 0x53415120,
    UIL_OPER_ADD_VENDOR = 0x53415121,
    UIL_OPER_DEL_VENDOR = 0x53415122,
    UIL_OPER_REBALANCE_LUN = 0x53415123,
    UIL_OPER_LB_IO_THRESHOLD = 0x53415124,
    UIL_OPER_FAULTY_PATH_CHECK = 0x53415125,
    UIL_OPER_IDLE_PATH_CHECK = 0x53415126,
    UIL_OPER_IO_RETRY_TIMEOUT = 0x53415127,
    UIL_OPER_TOD_TIME = 0x53415128,
    UIL_OPER_TOD_THRESHOLD = 0x53415129,
    UIL_OPER_TOD_RECOVER_TIME = 0x5341512a,
    UIL_OPER_IED_TIME = 0x5341512b,
    UIL_OPER_IED_MIN_IO = 0x5341512c,
    UIL_OPER_IED_THRESHOLD = 0x5341512d,
    UIL_OPER_IED_RECOVER_TIME = 0x5341512e,
    UIL_OPER_IFD_TIME = 0x5341512f,
    UIL_OPER_IFD_THRESHOLD = 0x53415130,
    UIL_OPER_IFD_RECOVER_TIME = 0x53415131,
    UIL_OPER_XVA_CONTROLLER = 0x53415132,
    UIL_OPER_SCSI2_TO_SCSI3 = 0x53415133,
    UIL_OPER_HLD_TIME = 0x53415134,
    UIL_OPER_HLD_THRESHOLD = 0x53415135,
    UIL_OPER_HLD_RECOVER_TIME = 0x53415136,
    UIL_OPER_CLEAR_CONFIG = 0x53415137,
    UIL_OPER_IO_RETRY_COUNT = 0x53415138,
    UIL_OPER_IO_RETRY_INTERVAL = 0x53415139,
    UIL_OPER_CLEAR_OBSOLETE_PATH = 0x5341513a,
    UIL_OPER_INSTALL_SERVICE = 0x5341513b,
    UIL_OPER_UNINSTALL_SERVICE = 0x5341513c,
    UIL_OPER_START_SERVICE = 0x5341513d,
    UIL_OPER_STOP_SERVICE = 0x5341513e,
    UIL_OPER_DS_MODE = 0x5341513f,
    UIL_OPER_LB_POLICY_ALT = 0x53415141,
    UIL_OPER_REMOVE_DISKS = 0x53415142,
    UIL_OPER_REGISTER_HOST = 0x53415143,
    UIL_OPER_START_MIGRATION = 0x53415144,
    UIL_OPER_START_IOSUSPENSION = 0x53415145,
    UIL_OPER_STOP_IOSUSPENSION = 0x53415146,
    UIL_OPER_APD_TO_PDL = 0x53415147,
    UIL_OPER_BUSY_DELAY_TIME = 0x53415148,
    UIL_OPER_LOGIC_PATH_IOSTATE = 0x53415149,
    UIL_OPER_ALARM_STABLE_TIME = 0x5341514a,
    UIL_OPER_FAILOVER_DELAY_TIME = 0x5341514c,
    UIL_OPER_DS_SPLIT_SIZE = 0x5341514d,
    UIL_OPER_ALARM_ENABLE = 0x5341514e,
    UIL_OPER_HBA_ENABLE = 0x5341514f,
    UIL_OPER_HBA_DISABLE = 0x53415150,
    UIL_OPER_RELIABILITY_ENABLE = 0x53415151,
    UIL_OPER_REMOVE_DISKS_BY_ARRAY = 0x53415152,
    UIL_OPER_REMOVE_DISKS_BY_VLUN = 0x53415153,
    UIL_OPER_CLOSE_IOSUSPENSION = 0x53415154,
    UIL_OPER_IO_LATENCY_THRESHOLD = 0x53415155,
    UIL_OPER_CLEAR_IO_COUNT = 0x53415156,
    UIL_OPER_CLEAR_RECORD_PROCESSES = 0x53415157,
    UIL_OPER_CREATE_RECORD_PROCESS = 0x53415158,
    UIL_OPER_WRITE_PERF_REPORT = 0x53415159,
    UIL_OPER_SDD_THRESHOLD = 0x53415160,
    UIL_OPER_SDD_RECOVER_TIME = 0x53415161,
    UIL_OPER_PERF_RECORD = 0x53415163,
    UIL_OPER_CLEAR_PATH_STATISTIC = 0x53415164,
};

// ---------------------------------------------------------------------------
// Descriptions.
//
// What a record must carry for each event (the builders read it so):
// - value only ("%s" of the value text): failback, faulty/idle path check,
//   the degrade and latency settings, retry count/interval, APD-to-PDL,
//   rebalance, clear config, clear path statistic, close io suspension; and,
//   with the ID written as decimal text into the value, path check, clear
//   obsolete path and stop io suspension.
// - value and object (type and ID give "for array id 3", "for vlun id 5",
//   "for path id 7", nothing for the host): hold-on time, lb_io_threshold,
//   io retry timeout, dual-site split size.
// - switch "1" (Open/Enable) or "0" (Close/Disable) in the value: load
//   balancing between controllers and LUN trespass (with the object),
//   physical path and HBA enable/disable (the ID in objId), alarm and
//   reliability switches.
// - a pair "first,second" in the value, split at the first comma: IO retry
//   "count,interval", alarm "stable,delay", supported array
//   "vendor,product", controller "switch,name" (array ID in objId), XVA
//   "local|remote,controllers" (array ID in objId), dual-site working mode
//   "mode,primaryArrayId" (with the object), performance record
//   "switch,hours".
// - converted values: load-balance policy word ("round-robin", ...), time
//   zone hours (signed decimal), failover/busy delay seconds (decimal),
//   path I/O state code ("19" normal, ...; path ID in objId), alarm serial
//   ("" reads "all"), migration and io suspension (the value, then the VLUN
//   ID from objId).
inline constexpr size_t UIL_OPER_DSC_LEN = 128;  // each description, with its NUL
inline constexpr size_t UIL_OPER_FMT_ROWS = 79;
inline constexpr size_t UIL_OPER_BUILDER_ROWS = 70;

struct UilOperLogFmt {
    uint32_t level;         // 0, 1 or 2: printed in the line
    uint32_t eventId;
    const char* english;    // printf format
    const char* localised;  // printf format, GB2312 bytes
};
extern const std::array<UilOperLogFmt, UIL_OPER_FMT_ROWS> g_astUILOperLogFmt;

// A builder fills both descriptions (UIL_OPER_DSC_LEN bytes each, cut to
// fit) from its row's two formats and the record.
using UilOperDscBuilder = void (*)(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                                   char* localised);
struct UilOperCmdExcute {
    uint32_t eventId;
    UilOperDscBuilder build;
};
extern const std::array<UilOperCmdExcute, UIL_OPER_BUILDER_ROWS> g_stUILCvOperCmdExcute;

void UIL_GetOperDscWithNoneParam(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperOneParam(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperTwoParam(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_OpenCloseDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_OpenCloseLBDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_EnableDisableDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_OpenClosePerfRecordDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperLBDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperDsModeDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperIORetryTimeDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperTimeZoneDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperPathIoStateDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperClearAlarmDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetCtrlOper(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetXvaLocalRemoteCtrlParam(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_AddDelSupportArray(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperArrayVlunIDParam(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperFailoverDelayTimeDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);
void UIL_GetOperBusyDelayTimeDsc(const UilOperLogFmt&, const UilOperLogPara&, char*, char*);

// Both descriptions of an event and the index of its description row.
// `command` is the command text (used by the "Write to configuration"
// event only; may be null). An unknown event leaves both descriptions
// empty, sets the index to 0 and returns 1030; an event without a builder
// leaves them empty and returns 1024.
uint32_t UIL_GetOperDscByEventID(uint32_t eventId, const char* command, const UilOperLogPara* record,
                                 char* english, char* localised, uint32_t* index);

// ---------------------------------------------------------------------------
// Value-to-text routines of the builders.
enum UilLang : uint32_t { UIL_LANG_ENGLISH = 0, UIL_LANG_LOCAL = 1 };

struct UilStrConvert {
    const char* keyword;
    const char* english;
    const char* chinese;  // GB2312
};
inline constexpr const char UIL_UNKNOWN_STR[] = "Unknown Str";

// The text of the row whose keyword equals `key` exactly, else "Unknown Str".
const char* UIL_StrTypeConvertToStr(const UilStrConvert* table, size_t rows, const char* key, UilLang lang);
// The switch words of `table` ("1" and "0" rows) for a boolean.
const char* UIL_BoolTypeConvertToStr(const UilStrConvert* table, size_t rows, bool value, UilLang lang);
// Decimal text of a number into `out` (at most size - 1 characters).
void UIL_IntTypeConvertToStr(int32_t value, char* out, size_t size);
void UIL_UintTypeConvertToStr(uint32_t value, char* out, size_t size);

// "Open" for "1", "Close" for "0".
extern const std::array<UilStrConvert, 2> g_astUILOpenCloseConvert;
// "Enable" for "1", "Disable" for "0".
extern const std::array<UilStrConvert, 2> g_astUILEnableDisableConvert;

// ---------------------------------------------------------------------------
// Writing.

// Result of UIL_OperLog when the log file cannot be opened (the shell warns
// the operator), and of the enumeration when the log cannot be read.
inline constexpr uint32_t UIL_OPERLOG_OPEN_FAIL = 25;
// Result of UIL_OperLog on a host without the serial number file: such a
// host keeps no operation log, so nothing is written and nothing failed.
inline constexpr uint32_t UIL_OPERLOG_SWITCHED_OFF = 2;

// Writes one line, appended in one write() so that a line is never torn.
// `source` is required ("CLI"); `verb` and `command` are joined without a
// separator; `record` may be null (an all-zero record). 1024; 25 when the
// log cannot be opened (after 20 attempts one second apart); 2 when the
// host has no serial number file (no log kept); 1030 when the serial number
// or the line could not be written (the cause in INTF_UIL_LastFileError).
uint32_t UIL_OperLog(const char* source, const char* verb, const char* command, uint32_t eventId, uint8_t result,
                     const UilOperLogPara* record);

// Settling the journal record of a writer that died before its line was
// out (the shell's line is lost with it): a "Write to configuration" line
// whose command text describes the change, `result` its true outcome.
uint32_t UIL_OperLogForDeadWriter(const char* verb, const char* command, uint8_t result);
// A dead writer's line that was already numbered: appended unless a line
// with that serial number is in the log already.
uint32_t UIL_OperLogFinishLine(uint32_t serial, const std::string& line);

// Reads the serial file, writes it back advanced by one (replacing the file
// atomically) and hands back the new number. 1024; 1026 null argument; 1030
// when the file is missing or cannot be read or replaced.
uint32_t UIL_IncreaseAndGetOperSN(uint32_t* serial);

inline constexpr const char UIL_OPER_SERIAL_PATH[] = "/opt/Corvane/log/serial_oper";
inline constexpr uint32_t UIL_OPER_SERIAL_DIGITS = 9;
// Beside the serial file: its lock, taken around read, increment, replace.
inline constexpr const char UIL_OPER_SERIAL_LOCK_SUFFIX[] = ".lock";

// How hard the log is tried before giving up: 20 opens one second apart.
// Tests shorten the wait; returns the setting in force before.
struct UilOperLogRetry {
    uint32_t attempts;
    uint32_t delayMs;
};
inline constexpr UilOperLogRetry UIL_OPER_LOG_RETRY{20, 1000};
UilOperLogRetry UIL_OperLogSetRetry(UilOperLogRetry retry);

// ---------------------------------------------------------------------------
// Reading back.
inline constexpr size_t UIL_OPER_ENTRY_SIZE = 1248;

struct UilOperLogEntry {
    MPI_ListNode links;
    uint32_t serial;
    uint32_t level;
    uint32_t eventId;
    uint32_t result;
    uint32_t hasResult;  // 0 for the older lines without the result field
    char date[40];
    char user[32];
    char source[32];
    char command[512];  // verb and command text as written
    char english[UIL_OPER_DSC_LEN];
    char localised[UIL_OPER_DSC_LEN];
    uint8_t display[340];  // left to the command that shows the log
};
static_assert(sizeof(UilOperLogEntry) == UIL_OPER_ENTRY_SIZE);

// Reads every well-formed line into `head` (entries allocated here, freed by
// ...End), in file order; lines with a field count other than 9 or 10 are
// skipped. 1024; 2 for an empty log; 25 when it cannot be opened; 1026 null
// head; 1037 out of memory (the entries read so far stay in the list).
uint32_t INTF_UIL_EnumerateOperLogStart(MPI_ListNode* head, uint32_t* count);
void INTF_UIL_EnumerateOperLogEnd(MPI_ListNode* head);
