// Paths and HBAs: the path display record, the state words of physical and
// logical paths, printable port names, and the path/HBA entry points.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "mpi/mpi_usr.h"
#include "uil/uil_ids.h"

// ---------------------------------------------------------------------------
// Text sizes (buffer sizes, terminator included).
inline constexpr size_t UIL_PORT_NAME_LEN = 241;        // a port name as the driver sends it
inline constexpr size_t UIL_PORT_TEXT_SIZE = 282;       // printable initiator / target port
inline constexpr size_t UIL_ISCSI_NAME_CUT = 223;       // iSCSI names are cut here before "::"
inline constexpr size_t UIL_IP_TEXT_SIZE = 41;          // IPv6: 8 groups of 4 hex digits and 7 colons
inline constexpr size_t UIL_ARRAY_NAME_SIZE = 81;
inline constexpr size_t UIL_VENDOR_DRIVER_SIZE = 129;
inline constexpr size_t UIL_CONTROLLER_TEXT_SIZE = 33;
inline constexpr size_t UIL_PORT_ID_SIZE = 129;
inline constexpr size_t UIL_CHECK_WORD_SIZE = 65;
inline constexpr size_t UIL_SHORT_TEXT_SIZE = 17;
inline constexpr size_t UIL_HBA_WWN_SIZE = 242;

// Port types of a path.
enum : uint32_t {
    UIL_PORT_FC = 1,
    UIL_PORT_SAS = 2,
    UIL_PORT_ISCSI = 3,
    UIL_PORT_FCOE = 4,
    UIL_PORT_IB = 5,
};

// I/O state codes the driver keeps per path.
enum : uint32_t {
    UIL_PATH_IO_NORMAL = 19,
    UIL_PATH_IO_FAILBACK = 20,
    UIL_PATH_IO_BUSY = 21,
    UIL_PATH_IO_UNKNOWN = 22,
    UIL_PATH_IO_NOT_STEADY = 23,
    UIL_PATH_IO_TIMEOUT = 24,
    UIL_PATH_IO_HIGHLATENCY = 25,
    UIL_PATH_IO_SENSITIVE_DELAYED = 26,
    UIL_PATH_IO_POTENTIAL_FAULT = 27,
};
inline constexpr uint32_t UIL_PATH_IO_FIRST = UIL_PATH_IO_NORMAL;
inline constexpr uint32_t UIL_PATH_IO_COUNT = 9;
// UIL_PathSzIostateToUInt's answer for a word that is not an I/O state.
inline constexpr uint32_t UIL_PATH_IO_NONE = 0xFFFFFFFF;

// I/O state words. The display table is indexed by code - 19; the parsing
// table swaps 23 and 24, and the two orders must stay as they are.
extern const std::array<const char*, UIL_PATH_IO_COUNT> g_apszCVPathIoState;
extern const std::array<const char*, UIL_PATH_IO_COUNT> g_apszUIlPathIoState;
inline constexpr const char UIL_PATH_IO_UNKNOWN_TEXT[] = "Unknown path io state";

// Path state words (the `pathState` of a display record points at one of these).
inline constexpr const char UIL_PATH_STATE_NORMAL[] = "Normal";
inline constexpr const char UIL_PATH_STATE_FAULT[] = "Fault";
inline constexpr const char UIL_PATH_STATE_DISABLE[] = "Disable";
inline constexpr const char UIL_PATH_STATE_DEGRADED[] = "Degraded";
inline constexpr const char UIL_PATH_STATE_BUSY[] = "BUSY degradation";
inline constexpr const char UIL_PATH_STATE_IO_ERROR[] = "I/O discrete error degradation";
inline constexpr const char UIL_PATH_STATE_INTERMITTENT[] = "Intermittent failure degradation";
inline constexpr const char UIL_PATH_STATE_TIMEOUT[] = "I/O timeout degradation";
inline constexpr const char UIL_PATH_STATE_HIGH_LATENCY[] = "High latency degradation";
inline constexpr const char UIL_PATH_STATE_SENSITIVE[] = "Sensitive delayed degradation";
inline constexpr const char UIL_PATH_STATE_POTENTIAL[] = "Potential fault degradation";

// Check start types and check steps of a path check.
enum : uint32_t { UIL_CHECK_START_INIT = 20, UIL_CHECK_START_AUTO = 21, UIL_CHECK_START_MANUAL = 22 };
enum : uint32_t {
    UIL_CHECK_STEP_INIT = 100,
    UIL_CHECK_STEP_CHECKING = 101,
    UIL_CHECK_STEP_WAITING = 102,
    UIL_CHECK_STEP_IGNORE = 103,
    UIL_CHECK_STEP_NOTSTEADY = 104,
    UIL_CHECK_STEP_SUCCEED = 105,
    UIL_CHECK_STEP_FAIL = 106,
};

// Array flags bit that selects engine-and-letter controller naming.
inline constexpr uint32_t UIL_CAP_PAIR_NAMING = 1u << 24;
// Capability bit of a disk's array: controllers are not shown ("--").
inline constexpr uint32_t UIL_CAP_HIDE_CONTROLLERS = 1u << 6;
// Logical path flags bit counted by UIL_GetLogicalLunForPhyPath.
inline constexpr uint32_t UIL_PATH_FLAG_COUNTED = 1u << 4;

// Result of INTF_UIL_EnumeratePhyPathStart when the driver cannot list the
// array's physical paths (unknown array, or no path at all).
inline constexpr uint32_t UIL_RET_NO_PATH = 19;

// ---------------------------------------------------------------------------
// Path display record: one layout for physical paths (filled from request
// 0x2a by UIL_TransPhyPathInfo) and logical paths (request 0x20,
// UIL_TransPathInfo). Fields a kind does not have stay zero. Allocated
// zero-filled, chained through `links`.
enum UilPathKind : uint32_t { UIL_PATH_PHYSICAL = 1, UIL_PATH_LOGICAL = 2 };

struct UilPathInfo {
    MPI_ListNode links;
    UilPathKind kind;
    uint32_t pathId;    // physical path ID; a logical path carries the ID of its physical path
    uint32_t diskId;    // logical paths: the disk this path belongs to
    uint32_t arrayId;   // physical
    uint32_t controllerId;  // physical (TPG ID within the array)
    uint32_t linkState;     // physical (1 = connected)
    uint32_t driverPathState;  // logical (9, 11, 12 are working states)
    uint32_t ioState;          // I/O state code 19..27
    uint32_t portType;         // UIL_PORT_*
    uint8_t enabled;           // 0 = disabled by the operator
    uint8_t faulty;            // logical, 1 = faulty whatever the state

    char initiatorPort[UIL_PORT_TEXT_SIZE];  // printable (iSCSI: "name::ip::port")
    char targetPort[UIL_PORT_TEXT_SIZE];     // printable (iSCSI: "name::port")
    char arrayName[UIL_ARRAY_NAME_SIZE];     // GB2312
    char vendorDriver[UIL_VENDOR_DRIVER_SIZE];
    char controllerText[UIL_CONTROLLER_TEXT_SIZE];
    char portId[UIL_PORT_ID_SIZE];           // location of the target port; may be empty

    const char* pathState;    // one of UIL_PATH_STATE_* (physical or logical rule)
    const char* ioStateWord;  // g_apszCVPathIoState entry or UIL_PATH_IO_UNKNOWN_TEXT

    char checkStartWord[UIL_CHECK_WORD_SIZE];   // physical: check start type ("Init", "Auto", "Manual" or "")
    char checkStepWord[UIL_CHECK_WORD_SIZE];    // physical: step of the last check
    char prevCheckStepWord[UIL_CHECK_WORD_SIZE];  // physical: step of the previous check
    uint32_t checkStartType;
    uint32_t checkStep;
    uint32_t prevCheckStep;

    // Physical-path counters shown by the detail view.
    uint64_t ioRetryCount;
    uint64_t pathFaultCount;
    uint64_t latencyHighMs;
    uint64_t latencyLowMs;
    uint64_t latencyAvgMs;

    uint32_t initiatorTcpPort;  // iSCSI
    uint32_t targetTcpPort;     // iSCSI
    uint32_t arrayFlags;        // bit 24: engine-and-letter controller naming

    // Physical-path words carried through unchanged.
    uint32_t phyWord20;
    uint32_t phyWord24;       // must be non-zero for `set phypathnormal`
    uint32_t phyWord32;
    uint32_t phyWord64;
    char phyText820[UIL_SHORT_TEXT_SIZE];
    uint32_t phyWords848[5];
    char phyTexts868[2][UIL_SHORT_TEXT_SIZE];
    uint8_t phyBytes902[2];

    // Logical-path words carried through unchanged.
    uint32_t logObject8;
    uint32_t logObject12;
    uint32_t logWord20;
    uint32_t logWord28;
    uint32_t scsiHost;        // } SCSI address of the disk
    uint32_t scsiChannel;     // } on this path, shown as
    uint32_t scsiTarget;      // } [host:channel:target:lun]
    uint64_t scsiLun;         // }
    uint32_t logWord44;
    uint8_t logFlags48[2];
    uint32_t logWord52;
    uint32_t logWord56;
    uint32_t logWord64;
    uint32_t pathFlags;       // bit 4 counted by UIL_GetLogicalLunForPhyPath
    uint8_t logByte96;
    char logText1056[UIL_SHORT_TEXT_SIZE];

    // Filled on request (UIL_GetLogicalLunForPhyPath and the controller
    // lists): LUNs running over a physical path.
    uint32_t lunCount;          // disks whose I/O runs over this path (request 0x16)
    uint32_t workingLunCount;   // logical paths in a working state
    uint32_t busyLunCount;      // ... of which the I/O state is busy
    uint32_t readLunCount;      // logical paths that could be read
    uint32_t flaggedLunCount;   // logical paths with UIL_PATH_FLAG_COUNTED set
};

// Releases every record of a path list (the head is left empty).
void UIL_PathListFree(MPI_ListNode* head);

// ---------------------------------------------------------------------------
// Pure rules (no driver).

// Physical path: "Disable", "Fault", then by I/O state (busy reads "Normal").
const char* UIL_PhyPathStateWord(uint8_t enabled, uint32_t linkState, uint32_t ioState);
// Logical path: "Disable", "Fault", then by I/O state (busy reads
// "BUSY degradation"); a faulty byte of 1 turns whatever word into "Fault".
const char* UIL_LogicalPathStateWord(uint8_t enabled, uint32_t driverState, uint32_t ioState, uint8_t faulty);
// Display word of an I/O state code, UIL_PATH_IO_UNKNOWN_TEXT outside 19..27.
const char* UIL_PathIoStateWord(uint32_t ioState);
// 19 + the index of `word` in g_apszUIlPathIoState, UIL_PATH_IO_NONE if absent.
uint32_t UIL_PathSzIostateToUInt(const char* word);
// True when `word` is one of the degraded state words of a disk's paths.
bool UIL_IsDegradedPathState(const char* word);

// Check words; an unknown value leaves `out` empty; a longer word is cut.
void UIL_TransCheckStartTypeToStr(uint32_t type, char* out, size_t size);
void UIL_TransCheckStepToStr(uint32_t step, char* out, size_t size);

// Printable ports. `name` is the raw port-name field of `nameSize` bytes.
// iSCSI initiators: the name cut at 223 characters, "::<ip>::<tcp port>";
// iSCSI targets: the name cut at 223, "::<tcp port>"; others: the name.
void UIL_GetPrintableInitiatorWwn(char* out, size_t outSize, const uint8_t* name, size_t nameSize,
                                  uint32_t portType, uint32_t tcpPort);
void UIL_GetPrintableTargetWwn(char* out, size_t outSize, const uint8_t* name, size_t nameSize,
                               uint32_t portType, uint32_t tcpPort);
// The address in bytes 225..240 of an iSCSI initiator name field: IPv6
// ("%X:" groups) when any of 229..240 is non-zero, else dotted IPv4.
void UIL_GetIPfromInitiatorWwn(const uint8_t* name, size_t nameSize, char* out, size_t outSize);

// Counts a logical path: `working` when its state is a working one (see the
// definition), then `busy` when its I/O state word is the busy one.
void UIL_ModifyNumforPathStatus(uint32_t* working, uint32_t* busy, const UilPathInfo* logicalPath);

// ---------------------------------------------------------------------------
// Driver entry points.

// Logical paths of a disk (request 0x1f); the IDs are physical path IDs.
uint32_t UIL_EnumeratePathIdsStart(uint32_t diskId, UilIdList** out);
void UIL_EnumeratePathIdsEnd(UilIdList* list);
// Physical paths of an array (request 0x29); UIL_ALL_ARRAYS lists every path.
inline constexpr uint32_t UIL_ALL_ARRAYS = 0x7FFFFFFF;
uint32_t UIL_EnumeratePhyPathIdsStart(uint32_t arrayId, UilIdList** out);
void UIL_EnumeratePhyPathIdsEnd(UilIdList* list);
// Disks whose I/O runs over a physical path (request 0x16).
uint32_t UIL_EnumeratePhyPathDiskIdsStart(uint32_t phyPathId, UilIdList** out);
void UIL_EnumeratePhyPathDiskIdsEnd(UilIdList* list);

// One logical path: disk `diskId` over physical path `pathId` (request 0x20).
uint32_t UIL_GetPathInfo(uint32_t diskId, uint32_t pathId, UilPathInfo* out);
// One physical path (request 0x2a). 1024, or the request's failure code.
uint32_t INTF_UIL_GetPhyPathInfo(uint32_t pathId, UilPathInfo* out);

// Every logical path of a disk, in path ID order. 1024; 2 when the disk has
// none; another code on failure (nothing left in the list).
uint32_t UIL_EnumeratePathStart(uint32_t diskId, MPI_ListNode* head);
void UIL_EnumeratePathEnd(MPI_ListNode* head);
// Every physical path of an array (or UIL_ALL_ARRAYS), in path ID order.
// 1024; 2 when the array lists no path; UIL_RET_NO_PATH when the driver
// refuses the list; 1037 out of memory. A path that cannot be read is
// skipped (traced).
uint32_t INTF_UIL_EnumeratePhyPathStart(uint32_t arrayId, MPI_ListNode* head);
void INTF_UIL_EnumeratePhyPathEnd(MPI_ListNode* head);

// Counts the logical paths over a physical path into its record
// (workingLunCount, busyLunCount, readLunCount, flaggedLunCount, lunCount).
uint32_t UIL_GetLogicalLunForPhyPath(UilPathInfo* phyPath);

// ---------------------------------------------------------------------------
// HBAs.
struct UilHbaInfo {
    uint32_t hbaId;              // input of the by-ID query
    uint32_t word8;              // second word returned by the driver
    char wwn[UIL_HBA_WWN_SIZE];  // input of the by-WWN query
    uint8_t enabled;             // 0 = the HBA is disabled
};

// Every HBA ID, sorted ascending, into `ids` (room for `capacity`).
// 1024; 1030 on any failure, a zero count included.
uint32_t INTF_UIL_GetAllHbaIds(uint32_t* ids, uint32_t capacity, uint32_t* count);
// By WWN (hba->wwn in) or by ID (hba->hbaId in). 1024, or the code the
// driver left in the record's result word.
uint32_t INTF_UIL_GetHbaInfoByWwn(UilHbaInfo* hba);
uint32_t INTF_UIL_GetHbaInfoById(UilHbaInfo* hba);
// Physical path IDs of one HBA (request 0x2c), sorted ascending.
uint32_t INTF_UIL_GetPhyPathIdsByHbaId(uint32_t hbaId, UilIdList** out);
void INTF_UIL_GetPhyPathIdsByHbaIdEnd(UilIdList* list);
