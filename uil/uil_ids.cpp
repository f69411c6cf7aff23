// ID lists: allocation, sorting, clamping, and the one routine that issues
// every ID-list request of the object layer.
#include <algorithm>
#include <cstdlib>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"

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

uint32_t UIL_SortUniqueIds(uint32_t* ids, uint32_t count, const char* what)
{
    UIL_ASSERT(ids != nullptr || count == 0);
    UIL_BubbleSort(ids, count);
    uint32_t kept = static_cast<uint32_t>(std::unique(ids, ids + count) - ids);
    if (kept != count) {
        UIL_ERR("The driver answered %u %s with %u repeated; each is listed once", count, what, count - kept);
    }
    return kept;
}

namespace {

// The one buffer of every ID-list request. Clearing a whole 64 KB buffer
// for each of thousands of requests cost more than everything else a
// listing does, so the buffer is kept and only the part a request could
// have dirtied is cleared again: its header, and the IDs the previous
// answer held. The driver writes no more IDs than the count it answers.
class IdScratch {
public:
    UiaPayload& take(const uil_wire::IdListLayout& layout)
    {
        m_payload.clearFirst(std::max(m_dirty, layout.idsOff));
        m_dirty = layout.bufferSize();  // until the answer says less
        return m_payload;
    }
    void answered(const uil_wire::IdListLayout& layout, uint32_t idsWritten)
    {
        m_dirty = layout.idsOff + 4 * static_cast<size_t>(idsWritten);
    }
    bool owns(const UiaPayload& payload) const { return &payload == &m_payload; }

private:
    UiaPayload m_payload{uil_wire::LargestIdBuffer()};
    size_t m_dirty = 0;
};

IdScratch& scratch()
{
    static IdScratch s_scratch;
    return s_scratch;
}

}  // namespace

UiaPayload& UIL_IdPayload(const uil_wire::IdListLayout& layout, uint32_t objectId)
{
    UiaPayload& payload = scratch().take(layout);
    if (layout.objectOff != uil_wire::kNone) {
        payload.setU32(layout.objectOff, objectId);
    }
    return payload;
}

namespace {

// Sends the request prepared in `payload`; *count is the answered count
// clamped to the capacity, *reported the count as answered.
uint32_t sendIdRequest(const uil_wire::IdListLayout& layout, UiaPayload& payload, uint32_t* count,
                       uint32_t* reported)
{
    UIL_ASSERT(payload.size() >= layout.bufferSize());
    *count = 0;
    *reported = 0;
    if (layout.capacityOff != uil_wire::kNone) {
        payload.setU32(layout.capacityOff, layout.capacity);
    }
    uint32_t ret = UIA_Send(*layout.req, payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    *reported = payload.u32(layout.countOff);
    *count = UIL_ClampCount(*reported, layout.capacity, layout.what);
    if (scratch().owns(payload)) {
        scratch().answered(layout, *count);
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t UIL_RunIdListRequest(const uil_wire::IdListLayout& layout, UiaPayload& payload, UilIdList** out)
{
    UIL_ASSERT(out != nullptr);
    *out = nullptr;
    uint32_t count = 0;
    uint32_t reported = 0;
    uint32_t ret = sendIdRequest(layout, payload, &count, &reported);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    UilIdList* list = UIL_IdListAlloc(count);
    if (list == nullptr) {
        return MPI_RET_NO_MEMORY;
    }
    for (uint32_t i = 0; i < count; ++i) {
        list->ids[i] = payload.u32(layout.idsOff + 4 * static_cast<size_t>(i));
    }
    list->count = UIL_SortUniqueIds(list->ids, count, layout.what);
    list->reported = reported;
    *out = list;
    return MPI_RET_SUCCESS;
}

uint32_t UIL_EnumerateIds(const uil_wire::IdListLayout& layout, uint32_t objectId, UilIdList** out)
{
    return UIL_RunIdListRequest(layout, UIL_IdPayload(layout, objectId), out);
}

uint32_t UIL_CountIds(const uil_wire::IdListLayout& layout, uint32_t objectId, uint32_t* count)
{
    UIL_ASSERT(count != nullptr);
    uint32_t reported = 0;
    return sendIdRequest(layout, UIL_IdPayload(layout, objectId), count, &reported);
}
