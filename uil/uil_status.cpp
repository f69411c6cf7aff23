#include "uil/uil_status.h"

#include <cstdlib>

#include "uia/uia.h"

namespace {

// Array IDs request: capacity at 0, count at 8, IDs from 12.
constexpr uint32_t kArrayCapacity = 128;
constexpr size_t kArrayIdsCapacity = 0;
constexpr size_t kArrayIdsCount = 8;

}  // namespace

uint32_t INTF_UIL_CheckArrayPathDiskStatus(MPI_ListNode* head)
{
    UIL_ASSERT(head != NULL);
    MPI_ListInit(head);
    UiaPayload payload(uia_req::EnumArrayIds.size + 4 * (kArrayCapacity - 1));
    payload.setU32(kArrayIdsCapacity, kArrayCapacity);
    uint32_t ret = UIA_Send(uia_req::EnumArrayIds, payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    return payload.u32(kArrayIdsCount) == 0 ? MPI_RET_NOT_FOUND : MPI_RET_SUCCESS;
}

void INTF_UIL_CheckStatusEnd(MPI_ListNode* head)
{
    UIL_ASSERT(head != NULL);
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        std::free(MPI_LIST_ENTRY(node, UilStatusRecord, links));
    }
}
