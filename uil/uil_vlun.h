// Disks and VLUNs: the disk and VLUN records and their entry points.
#pragma once

#include <cstddef>
#include <cstdint>

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

// One disk (request 0x17). The basic form fills every field but
// `controllers`; the detailed form also builds the disk's paths, grouped by
// the controller they go through, and computes status and path count from
// them. The record holds a list head, so it is never copied.
struct DiskInfo {
    MPI_ListNode links;
    uint32_t diskId;             // wire 0
    uint32_t vlunId;             // wire 4
    uint32_t owningController;   // wire 8
    uint32_t workingController;  // wire 12
    uint32_t arrayId;            // wire 16
    uint32_t hostLun;            // wire 20: copied to the VLUN as its host LUN word
    uint32_t word24;             // wire 24
    uint32_t lunCountWord;       // wire 36
    uint64_t capacity;           // wire 40, bytes
    char name[UIL_LUN_NAME_SIZE];        // wire 48 (64)
    char vendor[UIL_VENDOR_SIZE];        // wire 120 (8)
    char product[UIL_PRODUCT_SIZE];      // wire 136 (16)
    char revision[UIL_REVISION_SIZE];    // wire 160 (4)
    char lunWwn[UIL_LUN_WWN_SIZE];       // wire 168 (32)
    char arrayName[UIL_ARRAY_NAME_SIZE]; // wire 208 (80), GB2312
    char arraySn[UIL_ARRAY_SN_SIZE];     // wire 296 (20)
    char driver[UIL_VENDOR_DRIVER_SIZE]; // wire 324
    char deviceName[UIL_DEVICE_NAME_SIZE];  // wire 460: host block device ("Disk")
    uint32_t capability;         // wire 500: bit 24 A/B naming, bit 6 controllers hidden
    uint8_t byte504;             // wire 504
    uint64_t value512;           // wire 512
    uint32_t value520;           // wire 520
    uint32_t value524;           // wire 524
    uint8_t byte528;             // wire 528
    uint8_t unavailable;         // wire 529: 1 = "Unavailable" whatever else
    uint32_t devLunId;           // wire 532: LUN number on the array
    uint8_t devLunIdValid;       // wire 536: 0 = print "--"
    uint8_t normalFlag;          // wire 537
    uint8_t degradedFlag;        // wire 538
    const char* status;          // UIL_DISK_* (basic or detailed rule)
    uint32_t pathCount;          // wire 540 (basic); paths counted (detailed)
    MPI_ListNode controllers;    // detailed form: UilController records whose
                                 // `paths` hold this disk's logical paths
};

// Status of the basic form from the wire bytes 537, 538 and 529.
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
    char arraySn[UIL_ARRAY_SN_SIZE];   // wire 37
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
};

// The slot whose member lies in `arrayId` (0 when none does).
uint32_t UIL_VLunSlotForArray(const VLunInfo& vlun, uint32_t arrayId);

// Copies a disk record into slot `slot` of `vlun`; a slot of 2 or more is ignored.
void UIL_TransVLunPrimaryInfo(const DiskInfo& disk, uint32_t slot, VLunInfo* vlun);
// Fills the member slots from the member disks named by the VLUN-info
// fields (slot 1 only when memberCount is 2).
uint32_t UIL_GetVLunPrimaryInfo(VLunInfo* vlun);

// Every VLUN with a disk in `arrayId`, sorted by VLUN ID, member slots
// filled. 1024; 2 when empty; the disk-ID request's code; 1037 (nothing
// left in the list). A VLUN that cannot be read is skipped (traced).
uint32_t INTF_UIL_EnumerateVLunStart(uint32_t arrayId, MPI_ListNode* head);
void INTF_UIL_EnumerateVLunEnd(MPI_ListNode* head);
// Sorts a VLUN list by VLUN ID (stable).
void UIL_SortVLunListByVLunID(MPI_ListNode* head);

// One VLUN from the VLUN-info request only (type, members, WWN, array SN,
// suspension); the member slots are left empty (UIL_GetVLunPrimaryInfo
// fills them). 1024; 1039 when the driver does not know the VLUN.
uint32_t INTF_UIL_GetVLunInfoStart(uint32_t vlunId, VLunInfo* vlun);
void INTF_UIL_GetVLunInfoEnd(VLunInfo* vlun);
