// The storage-object model of the interface layer: arrays, controllers,
// disks, VLUNs, paths and HBAs as read from the driver.
//
// Enumeration contract: a ...Start function fills records (or an ID list)
// that the caller owns until it calls the matching ...End; a Start that
// fails leaves nothing allocated behind, and End may be called after any
// Start result. Records are zero-filled and chained through their first
// member `links`; End unlinks each record and frees nested lists first.
// Nothing here prints to the console.
#pragma once

#include <cstddef>

#include "uil/uil_array.h"
#include "uil/uil_convert.h"
#include "uil/uil_ids.h"
#include "uil/uil_path.h"
#include "uil/uil_tpg.h"
#include "uil/uil_vlun.h"

// The record holding `node`: every record of this layer opens with its
// `links`, so the node's address is the record's.
template <typename T>
const T* UIL_ListEntry(const MPI_ListNode* node)
{
    static_assert(offsetof(T, links) == 0, "records open with their links");
    return reinterpret_cast<const T*>(node);
}
template <typename T>
T* UIL_ListEntry(MPI_ListNode* node)
{
    static_assert(offsetof(T, links) == 0, "records open with their links");
    return reinterpret_cast<T*>(node);
}
