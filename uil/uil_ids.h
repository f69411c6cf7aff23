// ID lists handed out by the enumerations of the object layer, and the
// small rules every enumeration shares (sorting, clamping a driver count).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "mpi/mpi_usr.h"

// Capacities sent with each ID-list request: the driver never writes more
// IDs than the capacity word allows; a count above it is clamped, and an ID
// it repeats is listed once.
inline constexpr uint32_t UIL_MAX_ARRAYS = 128;
inline constexpr uint32_t UIL_MAX_TPGS = 16;           // TPGs of one array, IDs 0..15
inline constexpr uint32_t UIL_MAX_TPG_PATHS = 8;       // physical paths of one TPG
inline constexpr uint32_t UIL_MAX_DISKS = 16384;       // disks (and VLUNs) of an array or of a path
inline constexpr uint32_t UIL_MAX_VLUNS = 16384;
inline constexpr uint32_t UIL_MAX_PHY_PATHS = 16384;   // physical paths of an array (or of every array)
inline constexpr uint32_t UIL_MAX_LOGICAL_PATHS = 128; // logical paths of one disk
inline constexpr uint32_t UIL_MAX_HBAS = 64;
inline constexpr uint32_t UIL_MAX_HBA_PATHS = 210;     // (848 - 8) / 4: what the 0x2c payload holds

// An ID list: `count` IDs, sorted ascending, each once, never more than
// `capacity`. Allocated in one block by the Start function that returns it
// (the IDs follow the header) and released by the matching End function.
struct UilIdList {
    uint32_t count;
    uint32_t capacity;
    uint32_t* ids;
    uint32_t reported;  // the count as the driver answered it, before any clamping

    std::span<const uint32_t> view() const { return {ids, count}; }
    bool contains(uint32_t id) const;  // binary search: the list is sorted
};

// A list able to hold `capacity` IDs, zero-filled; nullptr when memory runs out.
UilIdList* UIL_IdListAlloc(uint32_t capacity);
// Sorts the IDs of `ids` (count `count`) ascending and drops repeated ones;
// returns how many stay. A repetition is traced with `what`.
uint32_t UIL_SortUniqueIds(uint32_t* ids, uint32_t count, const char* what);
// Releases a list of any enumeration (nullptr is accepted).
void UIL_IdListFree(UilIdList* list);

// Sorts `count` IDs ascending in place (the driver's order is not kept).
void UIL_BubbleSort(uint32_t* ids, uint32_t count);

// The count a driver answered, limited to the capacity that was sent; a
// larger count is traced with `what` and the capacity is used instead.
uint32_t UIL_ClampCount(uint32_t count, uint32_t capacity, const char* what);
