// Internal to the object layer: the ID-list requests and the decoders that
// turn a driver payload into a record. The wire layouts themselves live in
// uil_wire_*.h, one header per request family, kept out of the public
// headers so that the shell never sees a payload.
#pragma once

#include <cstddef>
#include <cstdint>

#include "mpi/mpi_scope.h"
#include "uia/uia.h"
#include "uil/uil_objects.h"
#include "uil/uil_wire_ids.h"


// Every ID-list request goes through one buffer, sized once for the largest
// list and reused: UIL_IdPayload hands it out cleared for `layout` (the
// caller then writes any input besides the object ID), UIL_RunIdListRequest
// sends it and hands back the IDs sorted, clamped to the capacity and each
// listed once, in a list sized to what the driver answered. The buffer's
// other answer fields stay readable until the next ID-list request.
// 1024, the request's code, or 1037.
UiaPayload& UIL_IdPayload(const uil_wire::IdListLayout& layout, uint32_t objectId);
uint32_t UIL_RunIdListRequest(const uil_wire::IdListLayout& layout, UiaPayload& payload, UilIdList** out);
// Both steps for a request whose only input is the object ID.
uint32_t UIL_EnumerateIds(const uil_wire::IdListLayout& layout, uint32_t objectId, UilIdList** out);
// Only the count the driver answers (clamped), for the LUN count of a path.
uint32_t UIL_CountIds(const uil_wire::IdListLayout& layout, uint32_t objectId, uint32_t* count);

// Decoders: payload -> record, at the wire offsets.
void UIL_TransArrayInfo(const UiaPayload& payload, ArrayInfo* array);
void UIL_TransDiskInfo(const UiaPayload& payload, DiskInfo* disk);
void UIL_TransVLunInfo(const UiaPayload& payload, VLunInfo* vlun);
void UIL_TransPhyPathInfo(const UiaPayload& payload, UilPathInfo* path);
void UIL_TransPathInfo(const UiaPayload& payload, UilPathInfo* path);
void UIL_TransHbaInfo(const UiaPayload& payload, UilHbaInfo* hba);

// A driver text field of `len` bytes (UTF-8): trailing zero bytes erased,
// converted to GB2312 into `out` (always terminated). A character GB2312
// lacks, or a byte that is not UTF-8, becomes '?'; the output never exceeds
// `size`, a name that does not fit is cut at a character boundary.
void UIL_TransNameToGb2312(const uint8_t* raw, size_t len, char* out, size_t size);

// Resets a record that holds list heads to an empty state.
void UIL_InitArrayInfo(ArrayInfo* array);
void UIL_InitDiskInfo(DiskInfo* disk);

// Builds the controllers of an array into `head`; with `withLunCounts`
// every path's LUN count is asked of the driver (request 0x16) and the
// controllers' LUN counts are set. Same results as INTF_UIL_GetPhyTpgInfoStart.
uint32_t UIL_BuildControllerList(uint32_t arrayId, MPI_ListNode* head, bool withLunCounts);
// Reads only the array record (request 0x0c), no disk check and no controllers.
uint32_t UIL_GetArrayRecord(uint32_t arrayId, ArrayInfo* array);
