// Wire layouts of the ID-list requests: where the program writes its inputs
// and the capacity, where the driver answers the count and the IDs. Also
// the two TPG requests that travel with the TPG lists (info and name).
// Internal to the object layer.
#pragma once

#include <cstddef>
#include <cstdint>

#include "uia/uia_request.h"
#include "uia/uia_wire.h"
#include "uil/uil_ids.h"

namespace uil_wire {

inline constexpr size_t kNone = static_cast<size_t>(-1);

// An ID-list request. The declared size holds the header and one ID; the
// buffer sent holds `capacity` IDs, i.e. declared size + 4 * (capacity - 1).
// A request without a capacity word has room for `capacity` IDs within its
// declared size.
struct IdListLayout {
    const UiaRequest* req;
    size_t objectOff;    // input: the object whose IDs are listed (kNone: no input)
    size_t capacityOff;  // kNone: fixed room, nothing to write
    size_t countOff;
    size_t idsOff;
    uint32_t capacity;
    const char* what;    // for the trace of a clamped or repeated answer

    constexpr size_t bufferSize() const
    {
        return capacityOff == kNone ? req->size : req->size + 4 * (static_cast<size_t>(capacity) - 1);
    }
    // The header and the IDs end where the buffer ends; no header word
    // overlaps another or the IDs.
    constexpr bool consistent() const
    {
        const UiaField header[] = {{countOff, 4},
                                   {objectOff == kNone ? countOff : objectOff, 4},
                                   {capacityOff == kNone ? countOff : capacityOff, 4}};
        bool wordsApart = (objectOff == kNone || objectOff != countOff) &&
                          (capacityOff == kNone || (capacityOff != countOff && capacityOff != objectOff));
        return capacity >= 1 && wordsApart && UiaFieldsFit(header, idsOff) &&
               idsOff + 4 * static_cast<size_t>(capacity) == bufferSize() &&
               (capacityOff != kNone || idsOff + 4 * static_cast<size_t>(capacity) <= req->size);
    }
};

inline constexpr IdListLayout kArrayIds{&uia_req::EnumArrayIds, kNone, 0, 8, 12, UIL_MAX_ARRAYS, "array ids"};
inline constexpr IdListLayout kArrayVlunIds{&uia_req::EnumArrayVlunIds, 0, 4, 12, 16, UIL_MAX_VLUNS,
                                            "vlun ids of an array"};
inline constexpr IdListLayout kArrayDiskIds{&uia_req::EnumArrayDiskIds, 0, 8, 16, 20, UIL_MAX_DISKS,
                                            "disk ids of an array"};
inline constexpr IdListLayout kTpgIds{&uia_req::EnumTpgIds, 0, 4, 8, 12, UIL_MAX_TPGS, "tpg ids"};
inline constexpr IdListLayout kTpgInfo{&uia_req::GetTpgInfo, 0, 8, 16, 24, UIL_MAX_TPG_PATHS, "path ids of a tpg"};
inline constexpr IdListLayout kPathIds{&uia_req::EnumPathIds, 0, 4, 8, 12, UIL_MAX_LOGICAL_PATHS,
                                       "logical path ids"};
inline constexpr IdListLayout kPhyPathIds{&uia_req::EnumPhyPathIds, 0, 4, 12, 16, UIL_MAX_PHY_PATHS,
                                          "physical path ids"};
inline constexpr IdListLayout kPhyPathDiskIds{&uia_req::EnumPhyPathDiskIds, 0, 8, 16, 20, UIL_MAX_DISKS,
                                              "disk ids of a physical path"};
inline constexpr IdListLayout kHbaIds{&uia_req::GetAllHbaIds, kNone, 0, 4, 8, UIL_MAX_HBAS, "hba ids"};
inline constexpr IdListLayout kHbaPathIds{&uia_req::GetPhyPathIdsByHba, 0, kNone, 4, 8, UIL_MAX_HBA_PATHS,
                                          "physical path ids of an hba"};

inline constexpr const IdListLayout* kAllIdLists[] = {&kArrayIds, &kArrayVlunIds, &kArrayDiskIds,  &kTpgIds,
                                                      &kTpgInfo,  &kPathIds,      &kPhyPathIds,    &kPhyPathDiskIds,
                                                      &kHbaIds,   &kHbaPathIds};
constexpr bool AllIdListsConsistent()
{
    for (const IdListLayout* layout : kAllIdLists) {
        if (!layout->consistent()) {
            return false;
        }
    }
    return true;
}
static_assert(AllIdListsConsistent());

// The largest buffer any ID-list request sends.
constexpr size_t LargestIdBuffer()
{
    size_t largest = 0;
    for (const IdListLayout* layout : kAllIdLists) {
        largest = layout->bufferSize() > largest ? layout->bufferSize() : largest;
    }
    return largest;
}

// TPG info (0x3d): besides the path-ID list, the TPG ID as a second input
// and the TPG's state and remote flag.
namespace tpg_info {
inline constexpr UiaField kTpgId{4, 4};
inline constexpr UiaField kState{12, 4};
inline constexpr UiaField kPathCount{16, 4};
inline constexpr UiaField kRemote{20, 1};
inline constexpr UiaField kFields[] = {{kTpgInfo.objectOff, 4}, kTpgId, {kTpgInfo.capacityOff, 4}, kState,
                                       kPathCount, kRemote, {kTpgInfo.idsOff, 4}};
static_assert(UiaFieldsFit(kFields, uia_req::GetTpgInfo.size) && UiaFieldsDisjoint(kFields));
static_assert(kPathCount.off == kTpgInfo.countOff);
}  // namespace tpg_info

// TPG name (0x3e, 28 bytes): array and TPG in, the name (16 characters and
// a terminator) out.
namespace tpg_name {
inline constexpr UiaField kArray{0, 4};
inline constexpr UiaField kTpg{4, 4};
inline constexpr UiaField kName{8, 16};
inline constexpr UiaField kFields[] = {kArray, kTpg, {kName.off, kName.len + 1}};
static_assert(UiaFieldsFit(kFields, uia_req::GetTpgName.size) && UiaFieldsDisjoint(kFields));
}  // namespace tpg_name

}  // namespace uil_wire
