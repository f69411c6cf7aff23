// Disks and VLUNs: the disk and VLUN records and their entry points.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "mpi/mpi_usr.h"
#include "uil/uil_array.h"
#include "uil/uil_ids.h"

inline constexpr size_t UIL_LUN_NAME_SIZE = 65;
inline constexpr size_t UIL_LUN_WWN_SIZE = 33;
inline constexpr size_t UIL_DEVICE_NAME_SIZE = 65;

// Disk status words.
inline constexpr const char UIL_DISK_NORMAL[] = "Normal";
inline constexpr const char UIL_DISK_DEGRADED[] = "Degraded";
inline constexpr const char UIL_DISK_FAULT[] = "Fault";
inline constexpr const char UIL_DISK_UNAVAILABLE[] = "Unavailable";

// One disk. The basic form fills every field but
// `controllers`; the detailed form also builds the disk's paths, grouped by
// the controller they go through, and computes status and path count from
// them. The record holds a list head, so it is never copied.
struct DiskInfo {
    MPI_ListNode links;
    uint32_t diskId;
    uint32_t vlunId;
    uint32_t owningController;
    uint32_t workingController;
    uint32_t arrayId;
    uint32_t hostLun;            // copied to the VLUN as its host LUN word
    uint32_t word24;
    uint32_t lunCountWord;
    uint64_t capacity;           // bytes
    char name[UIL_LUN_NAME_SIZE];
    char vendor[UIL_VENDOR_SIZE];
    char product[UIL_PRODUCT_SIZE];
    char revision[UIL_REVISION_SIZE];
    char lunWwn[UIL_LUN_WWN_SIZE];
    char arrayName[UIL_ARRAY_NAME_SIZE];  // GB2312
    char arraySn[UIL_ARRAY_SN_SIZE];
    char driver[UIL_VENDOR_DRIVER_SIZE];
    char deviceName[UIL_DEVICE_NAME_SIZE];  // host block device ("Disk")
    uint32_t capability;         // bit 24 A/B naming, bit 6 controllers hidden
    uint8_t byte504;
    uint64_t value512;
    uint32_t value520;
    uint32_t value524;
    uint8_t byte528;
    uint8_t unavailable;         // 1 = "Unavailable" whatever else
    uint32_t devLunId;           // LUN number on the array
    uint8_t devLunIdValid;       // 0 = print "--"
    uint8_t normalFlag;
    uint8_t degradedFlag;
    const char* status;          // UIL_DISK_* (basic or detailed rule)
    uint32_t pathCount;          // as the driver counts them (basic); paths counted (detailed)
    MPI_ListNode controllers;    // detailed form: UilController records whose
                                 // `paths` hold this disk's logical paths
};

// Status of the basic form from the disk's normal, degraded and unavailable flags.
const char* UIL_DiskBasicStatus(uint8_t normalFlag, uint8_t degradedFlag, uint8_t unavailable);
// Status of the detailed form: counts every path of every controller into
// disk->pathCount, then "Normal" / "Degraded" / "Fault"; an unavailable disk
// reads "Unavailable" and each of its paths that is not "Disable" is
// relabelled "Fault".
void UIL_DiskDetailStatus(DiskInfo* disk);

// One disk, basic form. 1024, or the request's code (nothing to release).
uint32_t INTF_UIL_GetDiskBasicInfoStart(uint32_t diskId, DiskInfo* disk);
// One disk with its paths. `disk` need not be initialised; after any result
// it may be passed to ...End.
uint32_t INTF_UIL_GetDiskDetailInfoStart(uint32_t diskId, DiskInfo* disk);
void INTF_UIL_GetDiskDetailInfoEnd(DiskInfo* disk);

// ---------------------------------------------------------------------------
// VLUNs.

// VLUN type codes (also the filter of `show vlun`).
enum : uint8_t {
    UIL_VLUN_TYPE_ALL = 36,
    UIL_VLUN_TYPE_ORDINARY = 37,
    UIL_VLUN_TYPE_DUALSITE = 38,
    UIL_VLUN_TYPE_MIGRATION = 39,
    UIL_VLUN_TYPE_PE = 41,
    UIL_VLUN_TYPE_INVALID = 42,
};
inline constexpr uint32_t UIL_VLUN_SLOTS = 2;

// One VLUN and, for a dual-site VLUN, its two members (slot 0 and 1, one per
// array). Per-member fields are indexed by slot.
struct VLunInfo {
    MPI_ListNode links;
    uint32_t vlunId;
    char lunWwn[UIL_LUN_WWN_SIZE];
    char deviceName[UIL_DEVICE_NAME_SIZE];  // host block device of slot 0
    // From the VLUN-info request (0x5f).
    uint8_t type;                // UIL_VLUN_TYPE_*
    uint8_t peFlag;              // 1 = the disk is a PE LUN
    uint32_t memberCount;        // 1, or 2 for a dual-site VLUN
    uint32_t memberDiskId[UIL_VLUN_SLOTS];
    char arraySn[UIL_ARRAY_SN_SIZE];
    uint32_t suspendTimeoutMs;   // manual I/O suspension: timeout (0 = off)
    uint32_t suspendRemainMs;    // ... and the time that remains
    // Per member, from its disk record.
    uint8_t slotFilled[UIL_VLUN_SLOTS];
    uint32_t diskId[UIL_VLUN_SLOTS];
    char name[UIL_VLUN_SLOTS][UIL_LUN_NAME_SIZE];
    const char* status[UIL_VLUN_SLOTS];
    uint64_t capacity[UIL_VLUN_SLOTS];  // bytes
    uint32_t owningController[UIL_VLUN_SLOTS];
    uint32_t workingController[UIL_VLUN_SLOTS];
    char driver[UIL_VLUN_SLOTS][UIL_VENDOR_DRIVER_SIZE];
    uint32_t capability[UIL_VLUN_SLOTS];
    uint32_t arrayId[UIL_VLUN_SLOTS];
    char arraySnOf[UIL_VLUN_SLOTS][UIL_ARRAY_SN_SIZE];
    uint32_t hostLun[UIL_VLUN_SLOTS];
    char arrayName[UIL_VLUN_SLOTS][UIL_ARRAY_NAME_SIZE];
    uint32_t devLunId[UIL_VLUN_SLOTS];
    uint8_t devLunIdValid[UIL_VLUN_SLOTS];
    // The block the records of one list share (released by the list's End);
    // nullptr for a record allocated on its own.
    void* storage;
};

// The slot whose member lies in `arrayId` (0 when none does).
uint32_t UIL_VLunSlotForArray(const VLunInfo& vlun, uint32_t arrayId);

// Copies a disk record into slot `slot` of `vlun`; a slot of 2 or more is ignored.
void UIL_TransVLunPrimaryInfo(const DiskInfo& disk, uint32_t slot, VLunInfo* vlun);
// Fills the member slots from the member disks named by the VLUN-info
// fields (slot 1 only when memberCount is 2).
uint32_t UIL_GetVLunPrimaryInfo(VLunInfo* vlun);

// Dual-site VLUNs read during one command: a VLUN with members in two
// arrays is read with the first array that lists it and taken from here by
// the second. Owned by the command that lists several arrays.
class UilVLunCache {
public:
    const VLunInfo* find(uint32_t vlunId) const;
    void keep(const VLunInfo& vlun);

private:
    std::unordered_map<uint32_t, VLunInfo> m_vluns;
};

// Every VLUN with a disk in `arrayId`, sorted by VLUN ID, member slots
// filled. 1024; 2 when empty; the disk-ID request's code; 1037 (nothing
// left in the list). A VLUN that cannot be read is skipped (traced). With
// a cache, a dual-site VLUN already read for another array is not read again.
uint32_t INTF_UIL_EnumerateVLunCachedStart(uint32_t arrayId, MPI_ListNode* head, UilVLunCache* cache);
uint32_t INTF_UIL_EnumerateVLunStart(uint32_t arrayId, MPI_ListNode* head);
void INTF_UIL_EnumerateVLunEnd(MPI_ListNode* head);
// Sorts a VLUN list by VLUN ID (stable).
void UIL_SortVLunListByVLunID(MPI_ListNode* head);

// One VLUN from the VLUN-info request only (type, members, WWN, array SN,
// suspension); the member slots are left empty (UIL_GetVLunPrimaryInfo
// fills them). 1024; 1039 when the driver does not know the VLUN.
uint32_t INTF_UIL_GetVLunInfoStart(uint32_t vlunId, VLunInfo* vlun);
void INTF_UIL_GetVLunInfoEnd(VLunInfo* vlun);
