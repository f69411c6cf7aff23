#include "uil/uil_reliability.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bounded/bounded.h"
#include "mpi/mpi_scope.h"
#include "uia/uia.h"
#include "uil/uil_array.h"
#include "uil/uil_path.h"
#include "uil/uil_wire_reliability.h"

namespace w = uil_wire_reliability;

uint64_t UIL_CalAverageIoLatency(uint64_t latencySum, uint64_t samples)
{
    return samples == 0 ? 0 : latencySum / samples;
}

uint32_t INTF_UIL_GetIoReliabilityById(uint32_t diskId, uint32_t pathId, UilIoReliability* record)
{
    UIL_ASSERT(record != nullptr);
    UiaPayload payload(w::kSize);
    payload.setU32(w::kDiskId, diskId);
    payload.setU32(w::kPathId, pathId);
    payload.setU32(w::kFlag, record->flag);
    payload.setU32(w::kScope, record->scope);
    const uint32_t ret = UIA_Send(uia_req::GetIoReliability, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("querry io reliability info by ioctl fail, disk id {%u}, path id {%u}, iRet is %u", diskId, pathId,
                ret);
        return ret;
    }
    record->flag = payload.u32(w::kFlag);
    if (record->flag == UIL_RELIABILITY_VALID) {
        record->errorIo = payload.u64(w::kErrorIo);
        record->errorCmd = payload.u64(w::kErrorCmd);
        record->queuedIo = payload.u64(w::kQueuedIo);
        record->queuedCmd = payload.u64(w::kQueuedCmd);
        record->latestLatency = payload.u64(w::kLatestLatency);
        record->maxLatency = payload.u64(w::kMaxLatency);
        record->latencySum = payload.u64(w::kLatencySum);
        record->latencySamples = payload.u64(w::kLatencySamples);
        record->averageLatency = UIL_CalAverageIoLatency(record->latencySum, record->latencySamples);
    }
    return MPI_RET_SUCCESS;
}

void INTF_UIL_EnumerateIoReliabilityEnd(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        std::free(reinterpret_cast<UilIoReliability*>(node));
    }
}

namespace {

static_assert(offsetof(UilIoReliability, links) == 0);

UilIoReliability* recordOf(MPI_ListNode* node) { return reinterpret_cast<UilIoReliability*>(node); }

template <class Less>
void sortList(MPI_ListNode* head, Less less)
{
    UIL_ASSERT(head != nullptr);
    std::vector<UilIoReliability*> records;
    for (MPI_ListNode* n = head->next; n != head; n = n->next) {
        records.push_back(recordOf(n));
    }
    std::stable_sort(records.begin(), records.end(), less);
    MPI_ListInit(head);
    for (UilIoReliability* r : records) {
        MPI_ListAddTail(&r->links, head);
    }
}

// One disk of a VLUN, as the records name it.
struct DiskOfVlun {
    uint32_t vlunId;
    uint32_t diskId;
    char name[UIL_LUN_NAME_SIZE];
};

// Reads one record and appends it; a query that fails leaves the record
// out (traced) and is not an error of the list.
uint32_t appendRecord(const DiskOfVlun& disk, uint32_t pathId, UilReliabilityScope scope, MPI_ListNode* head)
{
    auto* record = static_cast<UilIoReliability*>(UIL_ZMalloc(sizeof(UilIoReliability)));
    if (record == nullptr) {
        UIL_ERR("Allocate memory of io reliability info fail");
        return MPI_RET_NO_MEMORY;
    }
    MPI_ListInit(&record->links);
    record->vlunId = disk.vlunId;
    record->diskId = disk.diskId;
    (void)strcpy_s(record->diskName, sizeof(record->diskName), disk.name);
    record->pathId = pathId;
    record->scope = scope;
    record->flag = UIL_RELIABILITY_VALID;
    if (INTF_UIL_GetIoReliabilityById(disk.diskId, pathId, record) != MPI_RET_SUCCESS) {
        if (scope == UIL_RELIABILITY_DISK) {
            UIL_ERR("Get reliability info fail, disk id {%u}", disk.diskId);
        } else {
            UIL_ERR("Get reliability info fail, disk id {%u}, path id {%u}", disk.diskId, pathId);
        }
        std::free(record);
        return MPI_RET_SUCCESS;
    }
    MPI_ListAddTail(&record->links, head);
    return MPI_RET_SUCCESS;
}

// The member disks of a VLUN with their names. 1039 when the VLUN does not
// exist; a member whose disk cannot be read is left out (traced).
uint32_t vlunDisks(uint32_t vlunId, std::vector<DiskOfVlun>& out)
{
    VLunInfo vlun;
    MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner;
    const uint32_t ret = INTF_UIL_GetVLunInfoStart(vlunId, &vlun);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    owner.own(&vlun);
    const uint32_t members = std::min<uint32_t>(vlun.memberCount, UIL_VLUN_SLOTS);
    for (uint32_t slot = 0; slot < members; ++slot) {
        DiskInfo disk;
        const uint32_t diskId = vlun.memberDiskId[slot];
        if (INTF_UIL_GetDiskBasicInfoStart(diskId, &disk) != MPI_RET_SUCCESS) {
            UIL_ERR("Get disk info fail, disk id {%u}", diskId);
            continue;
        }
        DiskOfVlun d{vlunId, diskId, {}};
        (void)strcpy_s(d.name, sizeof(d.name), disk.name);
        out.push_back(d);
    }
    return MPI_RET_SUCCESS;
}

// Every VLUN ID of every array, each once (a dual-site VLUN has a member
// in two arrays), ascending.
uint32_t allVlunIds(std::vector<uint32_t>& out)
{
    UilIdList* arrays = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayIdsStart(&arrays);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate array ids fail, ret {%u}", ret);
        return ret;
    }
    MPI_Ended<INTF_UIL_EnumerateArrayIdsEnd> arraysOwner(arrays);
    for (uint32_t arrayId : arrays->view()) {
        UilIdList* vluns = nullptr;
        ret = INTF_UIL_EnumerateArrayVlunIdsStart(arrayId, &vluns);
        if (ret != MPI_RET_SUCCESS) {
            // An array without VLUNs, or one that went away meanwhile.
            UIL_ERR("Enumerate vlun ids of array {%u} fail, ret {%u}", arrayId, ret);
            continue;
        }
        MPI_Ended<INTF_UIL_EnumerateVlunIdsEnd> vlunsOwner(vluns);
        out.insert(out.end(), vluns->view().begin(), vluns->view().end());
    }
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return MPI_RET_SUCCESS;
}

uint32_t wholeDisks(MPI_ListNode* head)
{
    std::vector<uint32_t> vlunIds;
    uint32_t ret = allVlunIds(vlunIds);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    for (uint32_t vlunId : vlunIds) {
        std::vector<DiskOfVlun> disks;
        if (vlunDisks(vlunId, disks) != MPI_RET_SUCCESS) {
            UIL_ERR("Get vlun info fail, vlun id {%u}", vlunId);
            continue;
        }
        for (const DiskOfVlun& disk : disks) {
            ret = appendRecord(disk, 0, UIL_RELIABILITY_DISK, head);
            if (ret != MPI_RET_SUCCESS) {
                return ret;
            }
        }
    }
    INTF_UIL_SortReliabilityListByVLunID(head);
    return MPI_RET_SUCCESS;
}

uint32_t pathsOfVlun(uint32_t vlunId, MPI_ListNode* head)
{
    std::vector<DiskOfVlun> disks;
    uint32_t ret = vlunDisks(vlunId, disks);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    for (const DiskOfVlun& disk : disks) {
        UilIdList* paths = nullptr;
        if (UIL_EnumeratePathIdsStart(disk.diskId, &paths) != MPI_RET_SUCCESS) {
            UIL_ERR("Enumerate path ids fail");
            continue;
        }
        MPI_Ended<UIL_EnumeratePathIdsEnd> pathsOwner(paths);
        for (uint32_t pathId : paths->view()) {
            ret = appendRecord(disk, pathId, UIL_RELIABILITY_PATH, head);
            if (ret != MPI_RET_SUCCESS) {
                return ret;
            }
        }
    }
    INTF_UIL_SortReliabilityListByPathID(head);
    return MPI_RET_SUCCESS;
}

}  // namespace

void INTF_UIL_SortReliabilityListByPathID(MPI_ListNode* head)
{
    sortList(head, [](const UilIoReliability* a, const UilIoReliability* b) { return a->pathId < b->pathId; });
}

void INTF_UIL_SortReliabilityListByVLunID(MPI_ListNode* head)
{
    sortList(head, [](const UilIoReliability* a, const UilIoReliability* b) { return a->vlunId < b->vlunId; });
}

uint32_t INTF_UIL_EnumerateIoReliabilityStart(UilReliabilityKind kind, uint32_t vlunId, MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    MPI_ListInit(head);
    const uint32_t ret = kind == UIL_RELIABILITY_ONE_VLUN ? pathsOfVlun(vlunId, head) : wholeDisks(head);
    if (ret != MPI_RET_SUCCESS) {
        INTF_UIL_EnumerateIoReliabilityEnd(head);
        return ret;
    }
    return MPI_ListEmpty(head) ? MPI_RET_NOT_FOUND : MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_ClearIoCount()
{
    UiaPayload payload(w::kSize);
    const uint32_t ret = UIA_Send(uia_req::ClearIoCount, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("clear io count failed, iRet is %u", ret);
    }
    return ret;
}

namespace {

uint32_t readSwitch(const UiaRequest& req, uint32_t* on)
{
    UIL_ASSERT(on != nullptr);
    UiaPayload payload(req.size);
    const uint32_t ret = UIA_Send(req, payload);
    if (ret == MPI_RET_SUCCESS) {
        *on = payload.u32(w::kSwitch) != 0 ? 1 : 0;
    }
    return ret;
}

uint32_t switchText(uint32_t (*read)(uint32_t*), const char* label, const char* failure, char* text, size_t size)
{
    UIL_ASSERT(text != nullptr);
    uint32_t on = 0;
    const uint32_t ret = read(&on);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("%s", failure);
        return ret;
    }
    (void)sprintf_s(text, size, "%s: %s", label, on != 0 ? "on" : "off");
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t UIL_Alarm_GetEnable(uint32_t* on) { return readSwitch(uia_req::GetAlarmEnable, on); }

uint32_t UIL_GetReliabilitySwitch(uint32_t* on) { return readSwitch(uia_req::GetReliabilityEnable, on); }

uint32_t INTF_UIL_GetAlarmEnable(char* text, size_t size)
{
    return switchText(UIL_Alarm_GetEnable, "alarmenable", "Query alarm enable fail", text, size);
}

uint32_t INTF_UIL_GetReliabilityEnable(char* text, size_t size)
{
    return switchText(UIL_GetReliabilitySwitch, "path reliabilityenable", "Query reliability enable fail", text,
                      size);
}
