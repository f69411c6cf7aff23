// The driver's own parameter file "/etc/cv.conf" (backup "/etc/cv.conf.bak"),
// which the driver reads at boot: common parameters as `key = "value";`
// lines, and after the line "[vendors]" one rule per supported array model:
//   ruler_name = "Ruler_<vendor>_<product>", vendor_id = "<vendor>", product_id = "<product>", driver = "<driver>";
// Every change is saved as a whole new file renamed over the old one, the
// old content first saved as the backup, so a process killed at any instant
// leaves the old or the new file, never a torn one. A changed file takes
// effect once the driver reloads it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "mpi/mpi_usr.h"
#include "uil/uil_cfg.h"  // UilOperLogPara

inline constexpr const char UIL_DRVCFG_PATH[] = "/etc/cv.conf";
inline constexpr const char UIL_DRVCFG_BAK_PATH[] = "/etc/cv.conf.bak";
inline constexpr const char UIL_DRVCFG_VENDORS[] = "[vendors]";
inline constexpr size_t UIL_DRVCFG_MAX_SIZE = 4 << 20;  // far beyond any real parameter file
inline constexpr size_t UIL_DRVCFG_LINE_BUF = 512;      // lines of 512 characters or more never match a key

// Return codes besides those of mpi_usr.h. A value or a vendor, product or
// driver text that is refused is MPI_RET_INVALID_PARAM (1026), always
// before anything is written.
inline constexpr uint32_t UIL_RET_DRVCFG_NO_FILE = 1066;      // "/etc/cv.conf" missing, not a regular file, or unreadable
inline constexpr uint32_t UIL_RET_VENDOR_EXIST = 1067;        // add: the rule is there already
inline constexpr uint32_t UIL_RET_VENDOR_NOT_EXIST = 1068;    // del, driver name: no such rule
inline constexpr uint32_t UIL_RET_VENDOR_NOTIFY_FAIL = 1069;  // the file was changed; the driver refused to be told
inline constexpr uint32_t UIL_RET_DRVCFG_NO_KEY = 1070;       // the file has no line for the key

// ---------------------------------------------------------------------------
// The parameter tables.
enum : uint32_t {
    UIL_PARAM_NUMBER = 121,
    UIL_PARAM_TEXT = 122,
    UIL_PARAM_NUMBER_OR_TEXT = 123,  // decided per value
};
inline constexpr size_t UIL_PARAM_MAX_ALLOWED = 4;

struct UilParamDef {
    const char* key;
    int32_t defaultNumber;
    const char* defaultText;  // null: none
    uint32_t type;
    int32_t minimum;
    int32_t maximum;
    std::array<const char*, UIL_PARAM_MAX_ALLOWED> allowed;
    uint32_t allowedCount;  // texts to try; 0 = any text
    uint32_t maxLength;
    uint32_t flag;
};

// The rows are kept as the driver defines them, inconsistencies included:
// two stack sizes default below their minimum, lb_controller defaults to
// "off" while allowing only "0" and "1", and lun_trespass declares three
// allowed texts but gives two (the absent third matches nothing).
extern const std::array<UilParamDef, 34> g_astUILCommonParam;
extern const std::array<UilParamDef, 4> g_astUILVendorParam;

inline constexpr const char UIL_VENDOR_KEY_RULER[] = "ruler_name";
inline constexpr const char UIL_VENDOR_KEY_VENDOR[] = "vendor_id";
inline constexpr const char UIL_VENDOR_KEY_PRODUCT[] = "product_id";
inline constexpr const char UIL_VENDOR_KEY_DRIVER[] = "driver";
inline constexpr size_t UIL_VENDOR_ID_LEN = 8;
inline constexpr size_t UIL_PRODUCT_ID_LEN = 16;
inline constexpr size_t UIL_VENDOR_DRIVER_LEN = 64;
inline constexpr size_t UIL_RULER_NAME_LEN = 64;
inline constexpr const char UIL_VENDOR_DEFAULT_DRIVER[] = "dft";

// The row of a common key, or null.
const UilParamDef* UIL_FindParam(const char* key);
const UilParamDef* INTF_UIL_GetParam(const char* key);
// The row of a vendor rule key, or null.
const UilParamDef* UIL_FindVendorParam(const char* key);

// A decimal number with an optional leading "-" that fits in 32 signed
// bits (at most ten digits).
bool UIL_IsNum(const char* text, int32_t* value);

// 1 when `value` is acceptable for `def`, else 0 (the reason traced). A
// text is accepted when it is a prefix of one of the allowed texts ("min"
// for "min-task", the empty text for any).
uint32_t INTF_UIL_IsParamValueValid(const UilParamDef* def, const char* value);

// The default as text: "%d" of the number for number rows, the default
// text otherwise. 1024; 1030 for a row without a default text (pr_key);
// 1038 when it does not fit.
uint32_t UIL_GetParamDefaultValue(const UilParamDef* def, char* out, size_t size);

// Filters a line in place: the comment from "#" on, line feeds and ";" are
// dropped, and every other character below 33 and DEL; blanks and double
// quotes are kept in mode 1 and dropped in mode 0. 1024.
uint32_t UIL_CfgLineFilter(char* line, uint32_t mode);

// ---------------------------------------------------------------------------
// Common keys.

const char* UIL_GetConfFileNamePath();     // "/etc/cv.conf" beneath the sandbox root
const char* UIL_GetBakConfFileNamePath();  // "/etc/cv.conf.bak" beneath the sandbox root

// The value of a common key in the file: the first line whose key is a
// prefix of the definition's key and whose value passes the value check
// (lines with invalid values are passed over); cut to size - 1. 1024;
// UIL_RET_DRVCFG_NO_FILE; 1030 when no line gives a valid value.
uint32_t UIL_GetCommonParamValueFromCfg(const UilParamDef* def, char* out, size_t size);

// Rewrites one line (without its newline) when its key matches: `output`
// receives `key = "value";` and whatever followed the line's first ";".
// 1 when rewritten, 0 when the line is to be copied unchanged.
uint32_t UIL_MatchAndModifyCommonParam(const UilParamDef* def, const char* value, const char* line,
                                       std::string* output);

// 1 when `file` is empty and `backup` is not; 0 otherwise (and when a size
// cannot be read).
uint32_t UIL_IsNeedCopyBakFileToSourceFile(const char* file, const char* backup);

// By key. Get: 1024; 1026 unknown key; UIL_RET_DRVCFG_NO_FILE; 1030 no valid
// line. Set: 1024; 1026 unknown key or invalid value (nothing written);
// UIL_RET_DRVCFG_NO_FILE; UIL_RET_DRVCFG_NO_KEY the file has no line for the
// key (nothing written); 1030 the file could not be saved (unchanged).
uint32_t INTF_UIL_GetConfigCommonKey(const char* key, char* out, size_t size);
uint32_t INTF_UIL_GetConfigCommonKeyDefault(const char* key, char* out, size_t size);
uint32_t INTF_UIL_SetConfigCommonKey(const char* key, const char* value);
uint32_t INTF_UIL_SetConfigCommonKeyDefault(const char* key);
// As INTF_UIL_SetConfigCommonKey; the value "default" restores the default.
uint32_t INTF_UIL_SetCommonCfg(const char* key, const char* value);

// ---------------------------------------------------------------------------
// Vendor rules.

struct UilVendorRule {
    MPI_ListNode links;
    char ruler[UIL_RULER_NAME_LEN + 1];
    char vendor[UIL_VENDOR_ID_LEN + 1];
    char product[UIL_PRODUCT_ID_LEN + 1];
    char driver[UIL_VENDOR_DRIVER_LEN + 1];
};

// A vendor, product or driver text the file can hold: 1 to `maxLength`
// characters, none of them a double quote, ";", "#", "=", "," or a control
// character. 1024, else 1026 (traced).
uint32_t UIL_CheckVendorText(const char* what, const char* text, size_t maxLength);

// The rule line as the file holds it, with its newline. 1024; 1026 when a
// text is absent ("Vendor not exist", "Product not exist", "Driver not
// exist"); 1038 when it does not fit.
uint32_t UIL_FormatRulerToBuf(const char* vendor, const char* product, const char* driver, char* out, size_t size);
// Reads a rule line back; false when it is not a rule (traced).
bool UIL_ParseVendorLine(const char* line, UilVendorRule* rule);

// Adds the rule after the existing ones and tells the driver. 1024; 1026
// bad text; UIL_RET_DRVCFG_NO_FILE; UIL_RET_VENDOR_EXIST; 1030 not saved
// (file unchanged); UIL_RET_VENDOR_NOTIFY_FAIL saved, driver not told.
// A null or empty driver means "dft".
uint32_t INTF_UIL_AddVendor(const char* vendor, const char* product, const char* driver);
// Removes the rule's line and tells the driver. Codes as above, with
// UIL_RET_VENDOR_NOT_EXIST for a rule the file does not hold.
uint32_t INTF_UIL_DelVendor(const char* vendor, const char* product);
// The rules of the file in file order (vendor, product, driver; a rule
// without a driver reads "dft"); lines that are not rules are skipped.
// 1024 (an empty list when there is none); 1026 null argument;
// UIL_RET_DRVCFG_NO_FILE; 1037 out of memory (the list is then empty).
uint32_t INTF_UIL_StartShowVendor(MPI_ListNode* head, uint32_t* count);
void INTF_UIL_EndShowVendor(MPI_ListNode* head);
// The driver of a rule. 1024; 1026; UIL_RET_DRVCFG_NO_FILE; UIL_RET_VENDOR_NOT_EXIST.
uint32_t INTF_UIL_GetKernelDrivername(const char* vendor, const char* product, char* out, size_t size);

// ---------------------------------------------------------------------------
// The whole file as entries of key/value pairs, in file order: each common
// parameter line before the first section (filtered as the driver reads
// it: blanks and quotes dropped, split at the first "=") is one entry of
// one pair; each line of the "[vendors]" section is one entry of its
// `key = "value"` pairs (blanks and quotes at either end of a key or value
// dropped). A line that yields no pair (no "=", an empty key, a key or
// value too long, more than UIL_PARAM_ENTRY_MAX_KEYS pairs) is passed over
// and traced; the values are not checked against the tables.
// 1024 (an empty list when there is nothing); 1026 null argument;
// UIL_RET_DRVCFG_NO_FILE; 1037 out of memory (the list is then empty).
inline constexpr size_t UIL_PARAM_ENTRY_MAX_KEYS = 8;
inline constexpr size_t UIL_PARAM_KEY_LEN = 64;
struct UilParamPair {
    char key[UIL_PARAM_KEY_LEN + 1];
    char value[UIL_DRVCFG_LINE_BUF];
};
struct UilParamEntry {
    MPI_ListNode links;
    uint32_t line;  // 1-based line number in the file
    uint32_t count;
    UilParamPair pairs[UIL_PARAM_ENTRY_MAX_KEYS];
};
uint32_t INTF_UIL_EnumerateConfigStart(MPI_ListNode* head, uint32_t* count);
void INTF_UIL_EnumerateConfigEnd(MPI_ListNode* head);
uint32_t INTF_UIL_EnumerateVendorConfigStart(MPI_ListNode* head, uint32_t* count);
void INTF_UIL_EnumerateVendorConfigEnd(MPI_ListNode* head);

// The operation-log record of an added or deleted rule: "vendor;product".
void UIL_VendorOperRecord(const char* vendor, const char* product, UilOperLogPara* record);

// The driver column of arrays and disks.
void INTF_UIL_TransVendorDriverNamePrint(const char* driverKey, char* out, size_t size);

// ---------------------------------------------------------------------------
// Driver notification: the common set request with these sub-commands.
// Payload: u32 sub-command at 0, u32 driver result at 4, the vendor text
// at 16 (9 bytes), the product at 32 (17 bytes), the driver at 64 (65 bytes),
// each NUL-terminated.
enum : uint32_t {
    UIL_SETCMD_ADD_VENDOR = 58,
    UIL_SETCMD_DEL_VENDOR = 59,
};
inline constexpr size_t UIL_VENDOR_NOTIFY_CMD = 0;
inline constexpr size_t UIL_VENDOR_NOTIFY_RESULT = 4;
inline constexpr size_t UIL_VENDOR_NOTIFY_VENDOR = 16;
inline constexpr size_t UIL_VENDOR_NOTIFY_PRODUCT = 32;
inline constexpr size_t UIL_VENDOR_NOTIFY_DRIVER = 64;

// Sends one request (INTF_UIA_Ioctl's signature); tests put a recorder in
// its place. Returns the sender in force before; null restores the device.
using UilDrvCfgSendFn = uint32_t (*)(uint32_t request, void* payload, uint32_t size);
UilDrvCfgSendFn UIL_DrvCfgSetDriverSender(UilDrvCfgSendFn sender);
uint32_t UIL_NotifyDriverAddVendor(const char* vendor, const char* product, const char* driver);
uint32_t UIL_NotifyDriverDelVendor(const char* vendor, const char* product);
