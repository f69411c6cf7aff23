// Storage arrays: the array record and its entry points.
#pragma once

#include <cstddef>
#include <cstdint>

#include "mpi/mpi_usr.h"
#include "uil/uil_ids.h"
#include "uil/uil_tpg.h"

inline constexpr size_t UIL_ARRAY_SN_SIZE = 21;
inline constexpr size_t UIL_VENDOR_SIZE = 9;
inline constexpr size_t UIL_PRODUCT_SIZE = 17;
inline constexpr size_t UIL_REVISION_SIZE = 5;

// Result of the array queries when a driver request fails.
inline constexpr uint32_t UIL_RET_QUERY_FAIL = 3;

// One array. Callers own the record between
// INTF_UIL_GetArrayInfoStart and INTF_UIL_GetArrayInfoEnd; the record holds
// a list head, so it is never copied.
struct ArrayInfo {
    MPI_ListNode links;
    uint32_t arrayId;
    char sn[UIL_ARRAY_SN_SIZE];
    char name[UIL_ARRAY_NAME_SIZE];  // trailing zero bytes erased, UTF-8 converted to GB2312
    char vendor[UIL_VENDOR_SIZE];
    char product[UIL_PRODUCT_SIZE];
    char revision[UIL_REVISION_SIZE];
    char driver[UIL_VENDOR_DRIVER_SIZE];  // vendor driver key
    // Carried through unchanged; their meaning is the driver's.
    uint8_t flag266;
    uint32_t value268;
    char text272[129];
    uint32_t words404[6];
    uint32_t value428;
    uint32_t value432;
    uint8_t flag440;  // } either non-zero: the array supports `set pathstate`
    uint8_t flag441;  // }
    uint8_t flag442;  // at most 2: a two-character tpg_id is read as a number
    uint32_t capability;      // bit 24: engine-and-letter controller naming
    MPI_ListNode controllers;  // UilController records
};

inline bool UIL_ArraySupportsPathState(const ArrayInfo& array)
{
    return array.flag440 != 0 || array.flag441 != 0;
}

// Array IDs (capacity 128), sorted ascending, each once. 1024; 3 when the
// request fails; 1026 null argument; 1037 out of memory.
uint32_t INTF_UIL_EnumerateArrayIdsStart(UilIdList** out);
void INTF_UIL_EnumerateArrayIdsEnd(UilIdList* list);
// The same into a caller's buffer: *count IDs, never more than `capacity`;
// *reported is the count as the driver answered it, so that a caller whose
// rule refuses a count above the capacity can tell (the IDs of such an
// answer are still clamped and listed once).
uint32_t INTF_UIL_EnumerateArrayIdsCounted(uint32_t* ids, uint32_t capacity, uint32_t* count, uint32_t* reported);
uint32_t INTF_UIL_EnumerateArrayIds(uint32_t* ids, uint32_t capacity, uint32_t* count);

// One array with its controllers. 1024; 2 when the array has no disk (not
// listed); 3 when a request fails; 1026 null record. `array` need not be
// initialised; after any result it may be passed to ...End.
uint32_t INTF_UIL_GetArrayInfoStart(uint32_t arrayId, ArrayInfo* array);
void INTF_UIL_GetArrayInfoEnd(ArrayInfo* array);

// Every array with its controllers, in ID order (arrays whose info fails
// are skipped). 1024; 2 when none is listed; 1037; 1026 null head.
uint32_t INTF_UIL_EnumerateArrayStart(MPI_ListNode* head);
void INTF_UIL_EnumerateArrayEnd(MPI_ListNode* head);

// 1024 when the array exists (the driver answers its record).
uint32_t INTF_UIL_ArrayIDIsExist(uint32_t arrayId);
// Writes the array's SN back to the driver. 1030 on failure,
// 1026 on a null SN.
uint32_t INTF_UIL_SyncArrayInfo(uint32_t arrayId, const char* sn);

// ID lists of one array, sorted ascending: 1024; 1 when the request fails;
// 1037 out of memory.
uint32_t INTF_UIL_EnumerateArrayVlunIdsStart(uint32_t arrayId, UilIdList** out);
void INTF_UIL_EnumerateVlunIdsEnd(UilIdList* list);
uint32_t INTF_UIL_EnumerateArrayDiskIdsStart(uint32_t arrayId, UilIdList** out);
void INTF_UIL_EnumerateDiskIdsEnd(UilIdList* list);
