// Internal to the object layer: the wire layouts of its requests and the
// decoders that turn a driver payload into a record. Kept out of the
// public headers so that the shell never sees a payload.
#pragma once

#include <cstddef>
#include <cstdint>

#include "uia/uia.h"
#include "uil/uil_objects.h"

namespace uil_wire {

// An ID-list request: where the program writes the capacity and where the
// driver answers the count and the IDs. The buffer sent is the declared
// size plus room for capacity - 1 more IDs.
struct IdListLayout {
    const UiaRequest* req;
    size_t capacityOff;  // kNoCapacityWord: fixed room, nothing to write
    size_t countOff;
    size_t idsOff;
    uint32_t capacity;
    const char* what;    // for the trace of a clamped count

    size_t bufferSize() const;
};
inline constexpr size_t kNoCapacityWord = static_cast<size_t>(-1);

extern const IdListLayout kArrayIds;         // 0x0b
extern const IdListLayout kArrayVlunIds;     // 0x19, array ID at 0
extern const IdListLayout kArrayDiskIds;     // 0x15, array ID at 0
extern const IdListLayout kTpgIds;           // 0x3c, array ID at 0
extern const IdListLayout kTpgInfo;          // 0x3d, array ID at 0, TPG ID at 4
extern const IdListLayout kPathIds;          // 0x1f, disk ID at 0
extern const IdListLayout kPhyPathIds;       // 0x29, array ID at 0
extern const IdListLayout kPhyPathDiskIds;   // 0x16, physical path ID at 0
extern const IdListLayout kHbaIds;           // 0x42
extern const IdListLayout kHbaPathIds;       // 0x2c, HBA ID at 0

// Input word offsets shared by the requests above.
inline constexpr size_t kInObjectId = 0;
inline constexpr size_t kInTpgId = 4;

// TPG info (0x3d) answer fields besides the path IDs.
inline constexpr size_t kTpgState = 12;
inline constexpr size_t kTpgRemote = 20;

// TPG name (0x3e).
inline constexpr size_t kTpgNameArray = 0;
inline constexpr size_t kTpgNameTpg = 4;
inline constexpr size_t kTpgNameText = 8;

}  // namespace uil_wire

// Issues an ID-list request whose input words were already written into
// `payload` (sized layout.bufferSize()), then hands back the IDs sorted and
// clamped to the capacity. 1024, the request's code, or 1037.
uint32_t UIL_RunIdListRequest(const uil_wire::IdListLayout& layout, UiaPayload& payload, UilIdList** out);
// The same with one input word (the object ID at 0).
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

// The record holding `node` as its first member `links`, for read-only walks.
template <typename T>
const T* UIL_ListEntry(const MPI_ListNode* node)
{
    static_assert(offsetof(T, links) == 0, "records open with their links");
    return reinterpret_cast<const T*>(node);
}
