// The XML user configuration store: every driver setting the operator
// changed, kept in "/etc/user_cfg.xml" at three levels (the whole host, one
// array keyed by its serial number, one LUN keyed by its WWN).
//
// Every value is checked against the item table below. A change is made in
// memory under the inter-process write lock, sent to the driver, and only
// then saved, so a change the driver refuses never reaches the file. The
// document and its ".bak" copy are each replaced atomically (temporary file
// in the same directory, synced, re-read, renamed over), so a process killed
// at any instant leaves the old or the new document, never a torn one.
//
// One document is open at a time (process state). Nothing here prints.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "mpi/mpi_usr.h"
#include "uia/uia_request.h"
#include "uia/uia_wire.h"

struct _xmlNode;  // libxml2's element node; only the store's own code walks it

// ---------------------------------------------------------------------------
// Files (absolute names; the store takes them beneath the sandbox root).
inline constexpr const char UIL_CFG_FILE_PATH[] = "/etc/user_cfg.xml";
inline constexpr const char UIL_CFG_BAK_FILE_PATH[] = "/etc/user_cfg.xml.bak";
inline constexpr const char UIL_CFG_LOCK_FILE_PATH[] = "/etc/usercfgxml.lock";
// The program's own path names must fit 128 bytes; the sandbox root gets
// room of its own on top.
inline constexpr size_t UIL_CFG_PATH_LEN = 128;
inline constexpr size_t UIL_CFG_PATH_BUF_LEN = UIL_CFG_PATH_LEN + MPI_ROOT_MAX;
inline constexpr size_t UIL_CFG_XPATH_LEN = 128;
inline constexpr const char UIL_CFG_ROOT_NAME[] = "cvcfg";

// Return codes of the store beyond the shared ones.
enum : uint32_t {
    UIL_RET_CFG_INVALID_ITEM = 1025,  // an item that fails its checks (deleted at parse time)
    UIL_RET_CFG_NOT_FOUND = 1056,     // no such node in the document
    UIL_RET_CFG_LOAD_FAIL = 1062,     // the document cannot be parsed (missing, empty, torn)
};

// Section types (the object types of the store) and their mask bits.
enum : uint32_t {
    UIL_CFG_SECTION_COMMON = MPI_OBJ_COMMON,  // 100
    UIL_CFG_SECTION_ARRAY = MPI_OBJ_ARRAY,    // 101
    UIL_CFG_SECTION_LUN = MPI_OBJ_LUN,        // 102
};
inline constexpr uint64_t UIL_CFG_SEC_COMMON = 1;
inline constexpr uint64_t UIL_CFG_SEC_ARRAY = 2;
inline constexpr uint64_t UIL_CFG_SEC_LUN = 4;
inline constexpr uint64_t UIL_CFG_SEC_ALL = UIL_CFG_SEC_COMMON | UIL_CFG_SEC_ARRAY | UIL_CFG_SEC_LUN;
// The mask bit of a section type; 0 for any other number.
constexpr uint64_t UIL_CfgSectionBit(uint32_t sectionType)
{
    return sectionType == UIL_CFG_SECTION_COMMON  ? UIL_CFG_SEC_COMMON
           : sectionType == UIL_CFG_SECTION_ARRAY ? UIL_CFG_SEC_ARRAY
           : sectionType == UIL_CFG_SECTION_LUN   ? UIL_CFG_SEC_LUN
                                                  : 0;
}

// ---------------------------------------------------------------------------
// Item table.
enum : uint32_t { UIL_CFG_TYPE_DIGITAL = 121, UIL_CFG_TYPE_STRING = 122 };
inline constexpr size_t UIL_CFG_MAX_VALUES = 4;
inline constexpr size_t UIL_CFG_ITEM_NAME_LEN = 32;   // 31 characters + NUL
inline constexpr size_t UIL_CFG_ITEM_VALUE_LEN = 64;  // 63 characters + NUL
inline constexpr size_t UIL_CFG_ITEM_COUNT = 40;

struct UilCfgItemDef {
    const char* pszName;
    uint32_t uiType;          // UIL_CFG_TYPE_*
    const char* pszDefault;
    uint32_t uiMin;           // digital items only, inclusive
    uint32_t uiMax;
    std::array<const char*, UIL_CFG_MAX_VALUES> apszValues;  // string items; none listed: any string
    uint64_t ullSectionMask;  // UIL_CFG_SEC_* bits
    uint64_t ullItemBit;      // unique single bit, finds duplicates
};

namespace uil_cfg_detail {
constexpr UilCfgItemDef Digital(const char* name, const char* def, uint32_t min, uint32_t max, uint64_t sections,
                                unsigned bit)
{
    return {name, UIL_CFG_TYPE_DIGITAL, def, min, max, {}, sections, uint64_t{1} << bit};
}
constexpr UilCfgItemDef String(const char* name, const char* def, std::array<const char*, UIL_CFG_MAX_VALUES> values,
                               uint64_t sections, unsigned bit)
{
    return {name, UIL_CFG_TYPE_STRING, def, 0, 0, values, sections, uint64_t{1} << bit};
}
inline constexpr uint64_t kC = UIL_CFG_SEC_COMMON;
inline constexpr uint64_t kA = UIL_CFG_SEC_ARRAY;
inline constexpr uint64_t kAll = UIL_CFG_SEC_ALL;

// Bits 33 and 36 are left free on purpose.
inline constexpr std::array<UilCfgItemDef, UIL_CFG_ITEM_COUNT> kUserCfgItems{{
    Digital("workingmode", "1", 0, 1, kAll, 0),
    String("loadbalancemode", "min-queue-depth", {"round-robin", "min-queue-depth", "min-task"}, kAll, 1),
    Digital("lb_io_threshold", "100", 1, 10000, kAll, 2),
    Digital("luntrespass", "1", 0, 1, kAll, 3),
    Digital("failbackdelaytime", "600", 0, 3600, kC, 4),
    Digital("ioretry", "10", 0, 60, kC, 5),
    Digital("ioretrydelay", "0", 0, 10, kC, 6),
    Digital("iosuspensiontime", "60", 0, 2592000, kAll, 7),
    Digital("io_timeout", "1800", 1, 2592000, kAll, 8),
    Digital("tod_time", "600", 60, 2592000, kC, 9),
    Digital("tod_threshold", "1", 0, 65535, kC, 10),
    Digital("tod_recover_time", "1800", 1800, 2592000, kC, 11),
    Digital("ied_time", "300", 60, 2592000, kC, 12),
    Digital("ied_min_io", "5000", 5000, 65535, kC, 13),
    Digital("ied_threshold", "20", 0, 100, kC, 14),
    Digital("ied_recover_time", "1800", 1800, 2592000, kC, 15),
    Digital("ifd_time", "1800", 60, 2592000, kC, 16),
    Digital("ifd_threshold", "3", 0, 65535, kC, 17),
    Digital("ifd_recover_time", "3600", 60, 2592000, kC, 18),
    Digital("failpath_check_interval", "10", 1, 2592000, kC, 19),
    Digital("idlepath_check_interval", "60", 1, 2592000, kC, 20),
    Digital("hld_time", "300", 60, 18000, kC, 21),
    Digital("hld_threshold", "1000", 0, 65535, kC, 22),
    Digital("hld_recover_time", "3600", 60, 2592000, kC, 23),
    String("xva_remote", "", {}, kA, 24),
    String("ds_mode", "", {}, kAll, 25),
    String("ds_primary", "", {}, kAll, 26),
    Digital("manual_io_timeout", "", 1, 2592000, kC, 27),
    Digital("apd_to_pdl_mode", "0", 0, 1, kC, 28),
    Digital("apd_to_pdl_timeout", "10", 1, 140, kC, 29),
    Digital("ds_split_size", "262144", 1, 2097152, kAll, 30),
    Digital("sdd_threshold", "30000", 100, 60000, kC, 31),
    Digital("sdd_recover_time", "120", 1, 2592000, kC, 32),
    Digital("alarmenable", "1", 0, 1, kAll, 34),
    Digital("reliabilityenable", "1", 0, 1, kAll, 35),
    Digital("io_latency_threshold", "20", 0, 120000, kC, 37),
    Digital("performance_record", "0", 0, 1, kC, 38),
    Digital("performance_record_duration", "0", 0, 8760, kC, 39),
    Digital("performance_record_starth", "0", 0, 2147483647u, kC, 40),
    Digital("performance_record_startl", "0", 0, 4294967295u, kC, 41),
}};
}  // namespace uil_cfg_detail

inline constexpr const std::array<UilCfgItemDef, UIL_CFG_ITEM_COUNT>& UIL_sastUserCfgItems =
    uil_cfg_detail::kUserCfgItems;

// ---------------------------------------------------------------------------
// Parsed item and node path.

// One parsed item of a section or instance, chained until sent to the driver.
struct UilUserCfgItem {
    MPI_ListNode links;
    char szName[UIL_CFG_ITEM_NAME_LEN];
    char szValue[UIL_CFG_ITEM_VALUE_LEN];
};

// Element names below the root leading to one item: common/item, or
// array/array<SN>/item, lun/lun<WWN>/item. The instance name is allocated
// (key length + 6 bytes) and released by the section's free operation.
inline constexpr uint32_t UIL_CFG_NODE_PATH_MAX = 3;
struct UilCfgNodePath {
    uint32_t uiDepth;
    const char* apszNames[UIL_CFG_NODE_PATH_MAX];
    char* pszInstance;
};

// Section table: one row per section, parsed in this order (common, array, lun).
struct UilCfgParseStep {
    uint32_t uiSectionType;
    const char* pszXPath;  // "/cvcfg/common", "/cvcfg/array", "/cvcfg/lun"
    uint32_t (*pfParse)(_xmlNode* section);
    uint32_t (*pfBuildNodePath)(const char* instance, const char* item, UilCfgNodePath* path);
    void (*pfFreeNodePath)(UilCfgNodePath* path);
    // The item's XPath into `out` (cut to `size`); with a null item, the
    // instance's XPath (array and lun only).
    uint32_t (*pfBuildItemXPath)(const char* instance, const char* item, char* out, size_t size);
};
inline constexpr size_t UIL_CFG_SECTION_COUNT = 3;
extern const std::array<UilCfgParseStep, UIL_CFG_SECTION_COUNT> UIL_sastUserCfgParseSteps;
// The row of a section type, or null.
const UilCfgParseStep* UIL_CfgGetParseStep(uint32_t sectionType);

// Instances kept per section at start-up parse; later ones are deleted.
inline constexpr uint32_t UIL_CFG_MAX_INSTANCES = 128;

// ---------------------------------------------------------------------------
// Full configuration record: the effective configuration of one LUN.
inline constexpr size_t UIL_CFG_LB_POLICY_LEN = 16;
inline constexpr size_t UIL_CFG_DS_PRIMARY_LEN = 24;
inline constexpr size_t UIL_CFG_DS_SN_LEN = 20;
inline constexpr const char UIL_CFG_NOT_CONFIGURED[] = "Not configured";

struct UilFullCfg {
    uint8_t ucLbAcrossCtrl;       // workingmode: 1 when it converts to 0 (or is empty)
    char szLbPolicy[UIL_CFG_LB_POLICY_LEN];
    uint32_t uiLbIoThreshold;
    uint8_t ucLunTrespass;
    uint32_t uiTodTime;
    uint32_t uiTodThreshold;
    uint32_t uiTodRecoverTime;
    uint32_t uiIedTime;
    uint32_t uiIedMinIo;
    uint32_t uiIedThreshold;
    uint32_t uiIedRecoverTime;
    uint32_t uiIfdTime;
    uint32_t uiIfdThreshold;
    uint32_t uiIfdRecoverTime;
    uint32_t uiHldTime;
    uint32_t uiHldThreshold;
    uint32_t uiHldRecoverTime;
    uint32_t uiIoRetry;
    uint32_t uiIoRetryDelay;
    uint32_t uiFailPathCheckInterval;
    uint32_t uiIdlePathCheckInterval;
    uint32_t uiFailbackDelay;
    uint32_t uiIoSuspensionTime;
    uint32_t uiIoTimeout;
    uint8_t ucApdToPdlMode;
    uint32_t uiApdToPdlTimeout;
    uint32_t uiDsMode;            // 0 when exactly "balance", else 1
    char szDsPrimary[UIL_CFG_DS_PRIMARY_LEN];  // SN, driver default SN or "Not configured"
    uint32_t uiDsSplitSize;
    uint32_t uiSddThreshold;
    uint32_t uiSddRecoverTime;
    uint32_t uiPerformanceRecord;
};


// ---------------------------------------------------------------------------
// How the store reaches the driver. Tests may install their own sender to
// watch or refuse requests; null restores the driver channel. Returns the
// sender in force before.
using UilCfgSendFn = uint32_t (*)(const UiaRequest& req, UiaPayload& payload);
UilCfgSendFn UIL_CfgSetDriverSender(UilCfgSendFn sender);

// ---------------------------------------------------------------------------
// Operation-log parameter record (76 bytes): filled by the setters and the
// delete entry points, handed to the operation log.
inline constexpr size_t UIL_OPER_LOG_VALUE_LEN = 64;
struct UilOperLogPara {
    uint32_t uiObjType;  // 100 common, 101 array, 102 VLUN, 103 path
    uint32_t uiObjId;
    uint32_t uiReserved;  // always zero
    char szValue[UIL_OPER_LOG_VALUE_LEN];
};
static_assert(sizeof(UilOperLogPara) == 76);

// ---------------------------------------------------------------------------
// Entry points. Return codes are those of mpi_usr.h and the store's above.

// Path buffers (called from the layer's initialisation and finalisation;
// the document itself is opened by each operation).
uint32_t UIL_CfgInit();
void UIL_CfgFini();
// The resolved path of the file (valid after UIL_CfgInit).
const char* UIL_CfgFilePath();

// Open / close. A write access takes the lock and refreshes the backup;
// a read access does neither. Closing with `save` writes the document and
// drops the lock; closing without saving never drops the lock.
uint32_t UIL_CfgOpenFile(bool bForWrite);
uint32_t UIL_CfgCloseFile(bool bSave);

// Lock on "/etc/usercfgxml.lock": non-blocking fcntl write lock, the
// holder's process ID written into the file.
uint32_t UIL_CfgCheckFileAlreadyOpen();
uint32_t UIL_CfgUnlockFile();
uint32_t UIL_LockFile(int fd);
uint32_t UIL_UnlockFile(int fd);

// Item table lookups and value checks.
const UilCfgItemDef* UIL_CfgGetItemDef(const char* name, uint32_t sectionType);
bool UIL_CfgCheckItemValue(const char* value, const UilCfgItemDef* item);
bool UIL_CfgIsValidDigital(const char* value, const UilCfgItemDef* item);
bool UIL_CfgIsValidString(const char* value, const UilCfgItemDef* item);

// Start-up parse: clean the document of duplicate sections, excess and
// invalid nodes, push it to the driver section by section, save it.
uint32_t INTF_UIL_CfgParse();
uint32_t UIL_CfgParseSection(_xmlNode* element, uint32_t sectionType, const char* instance);
uint32_t UIL_CfgParseOneItem(_xmlNode* node, uint32_t sectionType, uint64_t* seenMask, UilUserCfgItem* item);

// The value stored at one level (the document already open). A stored value
// that fails the item's checks gives 1025, with the value in `buffer`.
uint32_t UIL_QueryConfig(uint32_t sectionType, const char* instance, const char* item, char* buffer,
                         uint32_t size);
// With bOpen set these open a read access around the query.
uint32_t UIL_GetCommonConfig(const char* item, char* buffer, uint32_t size, bool bOpen);
uint32_t UIL_GetArrayConfig(const char* serialNumber, const char* item, char* buffer, uint32_t size, bool bOpen);
uint32_t UIL_GetLunConfig(const char* wwn, const char* item, char* buffer, uint32_t size, bool bOpen);

// Effective value: LUN, else array, else common, else "" (document open).
uint32_t UIL_GetOneOfFullConfig(const char* wwn, const char* serialNumber, const char* item, char* buffer,
                                uint32_t size);
// The effective configuration of one LUN (serialNumber may be null).
uint32_t INTF_UIL_GetFullConfig(const char* wwn, const char* serialNumber, UilFullCfg* fullConfig);

// Whether `value` is valid for the common item `item`.
bool INTF_UIL_CheckCfgValid(const char* item, const char* value);
// Whether the effective value of `item` equals `expected`.
bool INTF_UIL_CfgValueCmp(const char* wwn, const char* serialNumber, const char* item, const char* expected);

// Change the open document in memory (creating missing elements).
uint32_t UIL_SetConfig(uint32_t sectionType, const char* instance, const char* item, const char* value);

// Whole changes: lock, set, tell the driver, save. The file-only array
// variant does not tell the driver. Whatever the outcome, the lock is free
// when they return. A change the driver took but that cannot be saved is
// given back to the driver (the previous value, or the delete request when
// there was none) and fails; INTF_UIL_LastFileError names the cause.
uint32_t UIL_SetCommonConfig(const char* item, const char* value);
uint32_t UIL_SetArrayConfig(const char* serialNumber, const char* item, const char* value);
uint32_t UIL_SetLunConfig(const char* wwn, const char* item, const char* value);
uint32_t UIL_SetArrayConfigFile(const char* serialNumber, const char* item, const char* value);

// The driver messages. `itemList` chains UilUserCfgItem through `links`.
uint32_t UIL_CfgNotifyItemToDriver(uint32_t sectionType, const char* instance, const char* item, const char* value);
uint32_t UIL_CfgNotifySectionToDriver(MPI_ListNode* itemList, uint32_t sectionType, const char* instance);
uint32_t UIL_CfgDelFromDriver(uint32_t sectionType, const char* instance, const char* item);

// Delete one item, or with a null item the whole instance. Something absent
// is success without a driver request. `objectRecord` receives the section
// type and object ID.
uint32_t INTF_UIL_DelArrayConfig(const char* source, uint32_t arrayId, const char* serialNumber, const char* item,
                                 UilOperLogPara* objectRecord);
uint32_t INTF_UIL_DelLunConfig(const char* source, uint32_t vlunId, const char* wwn, const char* item,
                               UilOperLogPara* objectRecord);

// Upgrade: add to an older document the common items it lacks, with their
// defaults.
uint32_t INTF_UIL_MergeUserCfgXml();

// Default dual-site information (28-byte record; the caller need not fill
// it). 1026 for a null record, 1 when the request fails.
uint32_t UIL_GetDefaultDSInfo(UiaPayload* record);
