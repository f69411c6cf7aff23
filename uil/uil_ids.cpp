// ID lists: allocation, sorting, clamping, and the one routine that issues
// every ID-list request of the object layer.
#include <algorithm>
#include <cstdlib>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"

namespace uil_wire {

size_t IdListLayout::bufferSize() const
{
    if (capacityOff == kNoCapacityWord) {
        return req->size;
    }
    return req->size + 4 * (static_cast<size_t>(capacity) - 1);
}

// Every layout below fits its IDs exactly in the buffer it sends.
const IdListLayout kArrayIds{&uia_req::EnumArrayIds, 0, 8, 12, UIL_MAX_ARRAYS, "array ids"};
const IdListLayout kArrayVlunIds{&uia_req::EnumArrayVlunIds, 4, 12, 16, UIL_MAX_VLUNS, "vlun ids of an array"};
const IdListLayout kArrayDiskIds{&uia_req::EnumArrayDiskIds, 8, 16, 20, UIL_MAX_DISKS, "disk ids of an array"};
const IdListLayout kTpgIds{&uia_req::EnumTpgIds, 4, 8, 12, UIL_MAX_TPGS, "tpg ids"};
const IdListLayout kTpgInfo{&uia_req::GetTpgInfo, 8, 16, 24, UIL_MAX_TPG_PATHS, "path ids of a tpg"};
const IdListLayout kPathIds{&uia_req::EnumPathIds, 4, 8, 12, UIL_MAX_LOGICAL_PATHS, "logical path ids"};
const IdListLayout kPhyPathIds{&uia_req::EnumPhyPathIds, 4, 12, 16, UIL_MAX_PHY_PATHS, "physical path ids"};
const IdListLayout kPhyPathDiskIds{&uia_req::EnumPhyPathDiskIds, 8, 16, 20, UIL_MAX_DISKS,
                                   "disk ids of a physical path"};
const IdListLayout kHbaIds{&uia_req::GetAllHbaIds, 0, 4, 8, UIL_MAX_HBAS, "hba ids"};
const IdListLayout kHbaPathIds{&uia_req::GetPhyPathIdsByHba, kNoCapacityWord, 4, 8, UIL_MAX_HBA_PATHS,
                               "physical path ids of an hba"};

}  // namespace uil_wire

bool UilIdList::contains(uint32_t id) const
{
    std::span<const uint32_t> all = view();
    return std::binary_search(all.begin(), all.end(), id);
}

UilIdList* UIL_IdListAlloc(uint32_t capacity)
{
    size_t bytes = sizeof(UilIdList) + sizeof(uint32_t) * static_cast<size_t>(std::max<uint32_t>(capacity, 1));
    auto* list = static_cast<UilIdList*>(UIL_ZMalloc(bytes));
    if (list == nullptr) {
        return nullptr;
    }
    list->capacity = capacity;
    list->ids = reinterpret_cast<uint32_t*>(list + 1);
    return list;
}

void UIL_IdListFree(UilIdList* list) { std::free(list); }

// Named for the routine it replaces; a real sort, since an array can hold
// 16384 disks.
void UIL_BubbleSort(uint32_t* ids, uint32_t count)
{
    UIL_ASSERT(ids != nullptr || count == 0);
    std::sort(ids, ids + count);
}

uint32_t UIL_ClampCount(uint32_t count, uint32_t capacity, const char* what)
{
    if (count <= capacity) {
        return count;
    }
    UIL_ERR("The driver answered %u %s, more than the capacity %u; only %u are read", count, what, capacity,
            capacity);
    return capacity;
}

uint32_t UIL_RunIdListRequest(const uil_wire::IdListLayout& layout, UiaPayload& payload, UilIdList** out)
{
    UIL_ASSERT(out != nullptr);
    UIL_ASSERT(payload.size() >= layout.bufferSize());
    *out = nullptr;
    if (layout.capacityOff != uil_wire::kNoCapacityWord) {
        payload.setU32(layout.capacityOff, layout.capacity);
    }
    uint32_t ret = UIA_Send(*layout.req, payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    uint32_t count = UIL_ClampCount(payload.u32(layout.countOff), layout.capacity, layout.what);
    UilIdList* list = UIL_IdListAlloc(layout.capacity);
    if (list == nullptr) {
        return MPI_RET_NO_MEMORY;
    }
    for (uint32_t i = 0; i < count; ++i) {
        list->ids[i] = payload.u32(layout.idsOff + 4 * static_cast<size_t>(i));
    }
    list->count = count;
    UIL_BubbleSort(list->ids, count);
    *out = list;
    return MPI_RET_SUCCESS;
}

uint32_t UIL_EnumerateIds(const uil_wire::IdListLayout& layout, uint32_t objectId, UilIdList** out)
{
    UiaPayload payload(layout.bufferSize());
    payload.setU32(uil_wire::kInObjectId, objectId);
    return UIL_RunIdListRequest(layout, payload, out);
}

uint32_t UIL_CountIds(const uil_wire::IdListLayout& layout, uint32_t objectId, uint32_t* count)
{
    UIL_ASSERT(count != nullptr);
    *count = 0;
    UiaPayload payload(layout.bufferSize());
    payload.setU32(uil_wire::kInObjectId, objectId);
    if (layout.capacityOff != uil_wire::kNoCapacityWord) {
        payload.setU32(layout.capacityOff, layout.capacity);
    }
    uint32_t ret = UIA_Send(*layout.req, payload);
    if (ret == MPI_RET_SUCCESS) {
        *count = UIL_ClampCount(payload.u32(layout.countOff), layout.capacity, layout.what);
    }
    return ret;
}
