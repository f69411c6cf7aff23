// Storage arrays: array IDs, array records with their controllers, and the
// ID lists of one array.
#include <cstdlib>
#include <cstring>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"
#include "uil/uil_wire_array.h"

namespace wire = uil_wire::array;

namespace {

ArrayInfo* allocArray()
{
    auto* array = static_cast<ArrayInfo*>(UIL_ZMalloc(sizeof(ArrayInfo)));
    if (array != nullptr) {
        UIL_InitArrayInfo(array);
    }
    return array;
}

}  // namespace

void UIL_InitArrayInfo(ArrayInfo* array)
{
    UIL_ASSERT(array != nullptr);
    std::memset(static_cast<void*>(array), 0, sizeof(*array));
    MPI_ListInit(&array->links);
    MPI_ListInit(&array->controllers);
}

void UIL_TransArrayInfo(const UiaPayload& p, ArrayInfo* array)
{
    UIL_ASSERT(array != nullptr);
    array->arrayId = p.u32(wire::kId);
    UIL_TransNameToGb2312(p.bytes(wire::kName), wire::kName.len, array->name, sizeof(array->name));
    p.text(wire::kVendor, array->vendor);
    p.text(wire::kProduct, array->product);
    p.text(wire::kRevision, array->revision);
    p.text(wire::kSn, array->sn);
    // The vendor driver key is shown as the driver sends it.
    p.text(wire::kDriver, array->driver);
    array->flag266 = p.u8(wire::kFlag266);
    array->value268 = p.u32(wire::kValue268);
    p.text(wire::kText272, array->text272);
    for (size_t i = 0; i < 6; ++i) {
        array->words404[i] = p.u32At(wire::kWords404, i);
    }
    array->value428 = p.u32(wire::kValue428);
    array->value432 = p.u32(wire::kValue432);
    array->capability = p.u32(wire::kCapability);
    array->flag440 = p.u8(wire::kFlag440);
    array->flag441 = p.u8(wire::kFlag441);
    array->flag442 = p.u8(wire::kFlag442);
}

uint32_t INTF_UIL_EnumerateArrayIdsStart(UilIdList** out)
{
    if (out == nullptr) {
        UIL_TRACE_NULL("out");
        return MPI_RET_INVALID_PARAM;
    }
    uint32_t ret = UIL_EnumerateIds(uil_wire::kArrayIds, 0, out);
    if (ret == MPI_RET_NO_MEMORY) {
        return ret;
    }
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query Array Ids by IOCTL fail. ret {%d}", static_cast<int>(ret));
        return UIL_RET_QUERY_FAIL;
    }
    return MPI_RET_SUCCESS;
}

void INTF_UIL_EnumerateArrayIdsEnd(UilIdList* list) { UIL_IdListFree(list); }

uint32_t INTF_UIL_EnumerateArrayIdsCounted(uint32_t* ids, uint32_t capacity, uint32_t* count, uint32_t* reported)
{
    UIL_ASSERT(ids != nullptr && count != nullptr && reported != nullptr);
    *count = 0;
    *reported = 0;
    UilIdList* list = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayIdsStart(&list);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    MPI_Ended<INTF_UIL_EnumerateArrayIdsEnd> owner(list);
    uint32_t n = UIL_ClampCount(list->count, capacity, "array ids for the caller");
    (void)memcpy_s(ids, sizeof(uint32_t) * static_cast<uint64_t>(capacity), list->ids, sizeof(uint32_t) * n);
    *count = n;
    *reported = list->reported;
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_EnumerateArrayIds(uint32_t* ids, uint32_t capacity, uint32_t* count)
{
    uint32_t reported = 0;
    return INTF_UIL_EnumerateArrayIdsCounted(ids, capacity, count, &reported);
}

uint32_t UIL_GetArrayRecord(uint32_t arrayId, ArrayInfo* array)
{
    UIL_ASSERT(array != nullptr);
    UIL_InitArrayInfo(array);
    UiaPayload payload(uia_req::GetArrayInfo.size);
    payload.setU32(wire::kId, arrayId);
    uint32_t ret = UIA_Send(uia_req::GetArrayInfo, payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    UIL_TransArrayInfo(payload, array);
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_GetArrayInfoStart(uint32_t arrayId, ArrayInfo* array)
{
    if (array == nullptr) {
        UIL_ERR("The input array buffer is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    uint32_t ret = UIL_GetArrayRecord(arrayId, array);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get Array {%u} info fail. Ret {%d}", arrayId, static_cast<int>(ret));
        return UIL_RET_QUERY_FAIL;
    }
    uint32_t disks = 0;
    ret = UIL_CountIds(uil_wire::kArrayDiskIds, arrayId, &disks);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("enumerate vlun ids fail");
        return UIL_RET_QUERY_FAIL;
    }
    if (disks == 0) {
        UIL_ERR("there is no vlun in Array {%u}", arrayId);
        return MPI_RET_NOT_FOUND;
    }
    ret = INTF_UIL_GetPhyTpgInfoStart(array);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get Tpg info of array{%u} fail, Ret={%d}", arrayId, static_cast<int>(ret));
        INTF_UIL_GetPhyTpgInfoEnd(array);
        // No controller at all leaves the array out as one without disks.
        return ret == MPI_RET_NO_MEMORY || ret == MPI_RET_NOT_FOUND ? ret : UIL_RET_QUERY_FAIL;
    }
    return MPI_RET_SUCCESS;
}

void INTF_UIL_GetArrayInfoEnd(ArrayInfo* array)
{
    UIL_ASSERT(array != nullptr);
    INTF_UIL_GetPhyTpgInfoEnd(array);
}

void INTF_UIL_EnumerateArrayEnd(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        MPI_ListInit(node);
        ArrayInfo* array = MPI_ListEntry<ArrayInfo>(node);
        INTF_UIL_GetArrayInfoEnd(array);
        std::free(array);
    }
}

uint32_t INTF_UIL_EnumerateArrayStart(MPI_ListNode* head)
{
    if (head == nullptr) {
        UIL_TRACE_NULL("head");
        return MPI_RET_INVALID_PARAM;
    }
    MPI_ListInit(head);
    UilIdList* ids = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayIdsStart(&ids);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    MPI_Ended<INTF_UIL_EnumerateArrayIdsEnd> idsOwner(ids);
    MPI_ScopeExit freeOnFailure([head] { INTF_UIL_EnumerateArrayEnd(head); });
    for (uint32_t arrayId : ids->view()) {
        ArrayInfo* array = allocArray();
        if (array == nullptr) {
            return MPI_RET_NO_MEMORY;
        }
        ret = INTF_UIL_GetArrayInfoStart(arrayId, array);
        if (ret != MPI_RET_SUCCESS) {
            INTF_UIL_GetArrayInfoEnd(array);
            std::free(array);
            if (ret == MPI_RET_NO_MEMORY) {
                return ret;
            }
            UIL_ERR("Get Array info fail, array id {%u}", arrayId);
            continue;
        }
        MPI_ListAddTail(&array->links, head);
    }
    freeOnFailure.dismiss();
    return MPI_ListEmpty(head) ? MPI_RET_NOT_FOUND : MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_ArrayIDIsExist(uint32_t arrayId)
{
    UiaPayload payload(uia_req::GetArrayInfo.size);
    payload.setU32(wire::kId, arrayId);
    return UIA_Send(uia_req::GetArrayInfo, payload);
}

uint32_t INTF_UIL_SyncArrayInfo(uint32_t arrayId, const char* sn)
{
    if (sn == nullptr) {
        UIL_ERR("The input ArraySn is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    UiaPayload payload(uia_req::SyncArrayInfo.size);
    payload.setU32(wire::kId, arrayId);
    payload.setText(wire::kSnField, sn);
    if (UIA_Send(uia_req::SyncArrayInfo, payload) != MPI_RET_SUCCESS) {
        UIL_ERR("Sync Array Info for ID{%u} failed", arrayId);
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

namespace {

uint32_t enumerateOfArray(const uil_wire::IdListLayout& layout, uint32_t arrayId, UilIdList** out)
{
    UIL_ASSERT(out != nullptr);
    uint32_t ret = UIL_EnumerateIds(layout, arrayId, out);
    if (ret == MPI_RET_SUCCESS || ret == MPI_RET_NO_MEMORY) {
        return ret;
    }
    UIL_ERR("Query %s of array {%u} by ioctl fail. ret {%u}", layout.what, arrayId, ret);
    return 1;
}

}  // namespace

uint32_t INTF_UIL_EnumerateArrayVlunIdsStart(uint32_t arrayId, UilIdList** out)
{
    return enumerateOfArray(uil_wire::kArrayVlunIds, arrayId, out);
}
void INTF_UIL_EnumerateVlunIdsEnd(UilIdList* list) { UIL_IdListFree(list); }

uint32_t INTF_UIL_EnumerateArrayDiskIdsStart(uint32_t arrayId, UilIdList** out)
{
    return enumerateOfArray(uil_wire::kArrayDiskIds, arrayId, out);
}
void INTF_UIL_EnumerateDiskIdsEnd(UilIdList* list) { UIL_IdListFree(list); }
