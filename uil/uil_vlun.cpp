// Disks and VLUNs: disk records (basic and detailed), VLUN records and the
// VLUN list of an array.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"
#include "uil/uil_wire_vlun.h"

namespace disk = uil_wire::disk;
namespace vlunw = uil_wire::vlun;

namespace {

template <size_t N>
void copyText(char (&out)[N], const char* text)
{
    (void)strncpy_s(out, N, text, std::min(std::strlen(text), N - 1));
}

}  // namespace

void UIL_InitDiskInfo(DiskInfo* d)
{
    UIL_ASSERT(d != nullptr);
    std::memset(static_cast<void*>(d), 0, sizeof(*d));
    MPI_ListInit(&d->links);
    MPI_ListInit(&d->controllers);
}

const char* UIL_DiskBasicStatus(uint8_t normalFlag, uint8_t degradedFlag, uint8_t unavailable)
{
    if (unavailable == 1) {
        return UIL_DISK_UNAVAILABLE;
    }
    if (normalFlag == 1) {
        return UIL_DISK_NORMAL;
    }
    return degradedFlag == 1 ? UIL_DISK_DEGRADED : UIL_DISK_FAULT;
}

void UIL_DiskDetailStatus(DiskInfo* d)
{
    UIL_ASSERT(d != nullptr);
    bool anyNormal = false;
    bool anyDegraded = false;
    d->pathCount = 0;
    for (MPI_ListNode* c = d->controllers.next; c != &d->controllers; c = c->next) {
        UilController* controller = MPI_ListEntry<UilController>(c);
        for (MPI_ListNode* p = controller->paths.next; p != &controller->paths; p = p->next) {
            UilPathInfo* path = MPI_ListEntry<UilPathInfo>(p);
            ++d->pathCount;
            anyNormal = anyNormal || std::strcmp(path->pathState, UIL_PATH_STATE_NORMAL) == 0;
            anyDegraded = anyDegraded || UIL_IsDegradedPathState(path->pathState);
            if (d->unavailable == 1 && std::strcmp(path->pathState, UIL_PATH_STATE_DISABLE) != 0) {
                path->pathState = UIL_PATH_STATE_FAULT;
            }
        }
    }
    if (d->unavailable == 1) {
        d->status = UIL_DISK_UNAVAILABLE;
    } else if (anyNormal) {
        d->status = UIL_DISK_NORMAL;
    } else {
        d->status = anyDegraded ? UIL_DISK_DEGRADED : UIL_DISK_FAULT;
    }
}

void UIL_TransDiskInfo(const UiaPayload& p, DiskInfo* d)
{
    UIL_ASSERT(d != nullptr);
    d->diskId = p.u32(disk::kId);
    d->vlunId = p.u32(disk::kVlun);
    d->owningController = p.u32(disk::kOwning);
    d->workingController = p.u32(disk::kWorking);
    d->arrayId = p.u32(disk::kArray);
    d->hostLun = p.u32(disk::kHostLun);
    d->word24 = p.u32(disk::kWord24);
    d->lunCountWord = p.u32(disk::kLunCount);
    d->capacity = p.u64(disk::kCapacity);
    p.text(disk::kName, d->name);
    p.text(disk::kVendor, d->vendor);
    p.text(disk::kProduct, d->product);
    p.text(disk::kRevision, d->revision);
    p.text(disk::kWwn, d->lunWwn);
    UIL_TransNameToGb2312(p.bytes(disk::kArrayName), disk::kArrayName.len, d->arrayName, sizeof(d->arrayName));
    p.text(disk::kArraySn, d->arraySn);
    p.text(disk::kDriver, d->driver);
    p.text(disk::kDevice, d->deviceName);
    d->capability = p.u32(disk::kCapability);
    d->byte504 = p.u8(disk::kByte504);
    d->value512 = p.u64(disk::kValue512);
    d->value520 = p.u32(disk::kValue520);
    d->value524 = p.u32(disk::kValue524);
    d->byte528 = p.u8(disk::kByte528);
    d->unavailable = p.u8(disk::kUnavailable);
    d->devLunId = p.u32(disk::kDevLunId);
    d->devLunIdValid = p.u8(disk::kDevLunValid);
    d->normalFlag = p.u8(disk::kNormal);
    d->degradedFlag = p.u8(disk::kDegraded);
    d->pathCount = p.u32(disk::kPathCount);
    d->status = UIL_DiskBasicStatus(d->normalFlag, d->degradedFlag, d->unavailable);
}

namespace {

// Reads a disk record into `payload` (reused across many disks).
uint32_t readDisk(uint32_t diskId, UiaPayload& payload, DiskInfo* d)
{
    payload.clear();
    payload.setU32(disk::kId, diskId);
    uint32_t ret = UIA_Send(uia_req::GetDiskInfo, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query disk info by ioctl fail, disk id {%u}", diskId);
        return ret;
    }
    UIL_InitDiskInfo(d);
    UIL_TransDiskInfo(payload, d);
    return MPI_RET_SUCCESS;
}

// The disk's logical paths that go through one TPG, as a controller record
// (nullptr with MPI_RET_SUCCESS when the disk has no path there).
uint32_t buildDiskController(const DiskInfo& d, const UilTpgInfo& tpg, const UilIdList& diskPaths,
                             UilController** out)
{
    *out = nullptr;
    auto* controller = static_cast<UilController*>(UIL_ZMalloc(sizeof(UilController)));
    if (controller == nullptr) {
        UIL_ERR("malloc for tpg info fail");
        return MPI_RET_NO_MEMORY;
    }
    MPI_ListInit(&controller->links);
    MPI_ListInit(&controller->paths);
    MPI_ScopeExit dropController([controller] {
        UIL_PathListFree(&controller->paths);
        std::free(controller);
    });
    controller->state = tpg.state;
    controller->tpgId = tpg.tpgId;
    controller->remote = tpg.remote;
    for (uint32_t pathId : tpg.paths->view()) {
        if (!diskPaths.contains(pathId)) {
            continue;
        }
        auto* path = static_cast<UilPathInfo*>(UIL_ZMalloc(sizeof(UilPathInfo)));
        if (path == nullptr) {
            UIL_ERR("malloc for path info fail");
            return MPI_RET_NO_MEMORY;
        }
        MPI_ListInit(&path->links);
        if (UIL_GetPathInfo(d.diskId, pathId, path) != MPI_RET_SUCCESS) {
            UIL_ERR("Get path info fail, disk id {%u}, path id {%u}", d.diskId, pathId);
            std::free(path);
            continue;
        }
        path->arrayId = d.arrayId;
        path->controllerId = tpg.tpgId;
        MPI_ListAddTail(&path->links, &controller->paths);
    }
    if (!MPI_ListEmpty(&controller->paths)) {
        dropController.dismiss();
        *out = controller;
    }
    return MPI_RET_SUCCESS;
}

uint32_t buildDiskControllers(DiskInfo* d)
{
    UilIdList* diskPaths = nullptr;
    uint32_t ret = UIL_EnumeratePathIdsStart(d->diskId, &diskPaths);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate path ids of disk {%u} fail. ret {%u}", d->diskId, ret);
        return ret;
    }
    MPI_Ended<UIL_EnumeratePathIdsEnd> pathsOwner(diskPaths);
    UilIdList* tpgIds = nullptr;
    ret = UIL_EnumerateTpgIdsStart(d->arrayId, &tpgIds);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate Tpg's Ids fail");
        return ret;
    }
    MPI_Ended<UIL_EnumerateTpgIdsEnd> tpgIdsOwner(tpgIds);
    for (uint32_t tpgId : tpgIds->view()) {
        UilTpgInfo* tpg = nullptr;
        ret = UIL_EnumerateTpgStart(d->arrayId, tpgId, &tpg);
        if (ret == MPI_RET_NO_MEMORY) {
            return ret;
        }
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Get Tpg info fail, tpg id {%u}", tpgId);
            continue;
        }
        MPI_Ended<UIL_EnumerateTpgEnd> tpgOwner(tpg);
        UilController* controller = nullptr;
        ret = buildDiskController(*d, *tpg, *diskPaths, &controller);
        if (ret != MPI_RET_SUCCESS) {
            return ret;
        }
        if (controller != nullptr) {
            MPI_ListAddTail(&controller->links, &d->controllers);
        }
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t INTF_UIL_GetDiskBasicInfoStart(uint32_t diskId, DiskInfo* d)
{
    UIL_ASSERT(d != nullptr);
    UiaPayload payload(uia_req::GetDiskInfo.size);
    UIL_InitDiskInfo(d);
    return readDisk(diskId, payload, d);
}

uint32_t INTF_UIL_GetDiskDetailInfoStart(uint32_t diskId, DiskInfo* d)
{
    uint32_t ret = INTF_UIL_GetDiskBasicInfoStart(diskId, d);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    ret = buildDiskControllers(d);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ControllerListFree(&d->controllers);
        return ret;
    }
    UIL_DiskDetailStatus(d);
    return MPI_RET_SUCCESS;
}

void INTF_UIL_GetDiskDetailInfoEnd(DiskInfo* d)
{
    UIL_ASSERT(d != nullptr);
    UIL_ControllerListFree(&d->controllers);
}

// ---------------------------------------------------------------------------
// VLUNs.

void UIL_TransVLunInfo(const UiaPayload& p, VLunInfo* v)
{
    UIL_ASSERT(v != nullptr);
    v->vlunId = p.u32(vlunw::kId);
    p.text(vlunw::kWwn, v->lunWwn);
    p.text(vlunw::kArraySn, v->arraySn);
    v->type = p.u8(vlunw::kType);
    v->peFlag = p.u8(vlunw::kPe);
    v->memberCount = UIL_ClampCount(p.u32(vlunw::kMembers), UIL_VLUN_SLOTS, "members of a vlun");
    for (uint32_t i = 0; i < UIL_VLUN_SLOTS; ++i) {
        v->memberDiskId[i] = p.u32At(vlunw::kMemberDisks, i);
    }
    v->suspendTimeoutMs = p.u32(vlunw::kSuspendTimeout);
    v->suspendRemainMs = p.u32(vlunw::kSuspendRemain);
}

void UIL_TransVLunPrimaryInfo(const DiskInfo& d, uint32_t slot, VLunInfo* v)
{
    UIL_ASSERT(v != nullptr);
    if (slot >= UIL_VLUN_SLOTS) {
        return;
    }
    v->slotFilled[slot] = 1;
    v->diskId[slot] = d.diskId;
    copyText(v->name[slot], d.name);
    v->status[slot] = d.status;
    v->capacity[slot] = d.capacity;
    v->owningController[slot] = d.owningController;
    v->workingController[slot] = d.workingController;
    copyText(v->driver[slot], d.driver);
    v->capability[slot] = d.capability;
    v->arrayId[slot] = d.arrayId;
    copyText(v->arraySnOf[slot], d.arraySn);
    v->hostLun[slot] = d.hostLun;
    copyText(v->arrayName[slot], d.arrayName);
    v->devLunId[slot] = d.devLunId;
    v->devLunIdValid[slot] = d.devLunIdValid;
    if (slot == 0) {
        copyText(v->deviceName, d.deviceName);
    }
    if (v->lunWwn[0] == '\0') {
        copyText(v->lunWwn, d.lunWwn);
    }
}

uint32_t UIL_VLunSlotForArray(const VLunInfo& v, uint32_t arrayId)
{
    for (uint32_t slot = 0; slot < UIL_VLUN_SLOTS; ++slot) {
        if (v.slotFilled[slot] && v.arrayId[slot] == arrayId) {
            return slot;
        }
    }
    return 0;
}

namespace {

uint32_t readVLun(uint32_t vlunId, UiaPayload& payload, VLunInfo* v)
{
    payload.clear();
    payload.setU32(vlunw::kId, vlunId);
    if (UIA_Send(uia_req::GetVLunInfo, payload) != MPI_RET_SUCCESS) {
        UIL_ERR("Query vlun info by ioctl fail, vlun id {%u}", vlunId);
        return MPI_RET_VLUN_NOT_EXIST;
    }
    UIL_TransVLunInfo(payload, v);
    return MPI_RET_SUCCESS;
}

// Fills the member slots; `known` is a disk already read (nullptr if none),
// so that its record is not asked for twice.
uint32_t fillMembers(VLunInfo* v, const DiskInfo* known, UiaPayload& diskPayload, DiskInfo* scratch)
{
    uint32_t members = v->memberCount;
    if (members == 0 && known != nullptr) {
        UIL_TransVLunPrimaryInfo(*known, 0, v);  // the driver named no member: the disk itself
        return MPI_RET_SUCCESS;
    }
    uint32_t ret = MPI_RET_SUCCESS;
    for (uint32_t slot = 0; slot < members; ++slot) {
        uint32_t diskId = v->memberDiskId[slot];
        if (known != nullptr && known->diskId == diskId) {
            UIL_TransVLunPrimaryInfo(*known, slot, v);
            continue;
        }
        uint32_t one = readDisk(diskId, diskPayload, scratch);
        if (one != MPI_RET_SUCCESS) {
            ret = one;
            continue;
        }
        UIL_TransVLunPrimaryInfo(*scratch, slot, v);
    }
    return ret;
}

void freeVLunList(MPI_ListNode* head)
{
    void* block = nullptr;
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        MPI_ListInit(node);
        VLunInfo* v = MPI_ListEntry<VLunInfo>(node);
        if (v->storage == nullptr) {
            std::free(v);
        } else {
            block = v->storage;  // the records of one list share one block
        }
    }
    std::free(block);
}

// The records of one VLUN list, allocated at once: an array of n disks
// lists at most n VLUNs.
class VLunBlock {
public:
    explicit VLunBlock(uint32_t capacity)
        // Not zeroed here: next() clears each record it hands out, and a
        // listing of 16384 VLUNs would clear every byte twice.
        : m_records(static_cast<VLunInfo*>(std::malloc(sizeof(VLunInfo) * std::max<size_t>(capacity, 1)))),
          m_capacity(capacity)
    {
    }
    bool ok() const { return m_records != nullptr; }
    // The next free record, cleared; nullptr when all are used.
    VLunInfo* next()
    {
        if (m_used == m_capacity) {
            return nullptr;
        }
        VLunInfo* v = &m_records[m_used];
        std::memset(static_cast<void*>(v), 0, sizeof(*v));
        MPI_ListInit(&v->links);
        v->storage = m_records;
        return v;
    }
    void keep() { ++m_used; }
    // Hands the block over to the list once a record was kept, else frees it.
    void settle()
    {
        if (m_used == 0) {
            std::free(m_records);
        }
        m_records = nullptr;
    }
    ~VLunBlock() { settle(); }
    VLunBlock(const VLunBlock&) = delete;
    VLunBlock& operator=(const VLunBlock&) = delete;

private:
    VLunInfo* m_records;
    uint32_t m_capacity;
    uint32_t m_used = 0;
};

}  // namespace

uint32_t UIL_GetVLunPrimaryInfo(VLunInfo* v)
{
    UIL_ASSERT(v != nullptr);
    UiaPayload payload(uia_req::GetDiskInfo.size);
    DiskInfo scratch;
    return fillMembers(v, nullptr, payload, &scratch);
}

void UIL_SortVLunListByVLunID(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    std::vector<VLunInfo*> all;
    for (MPI_ListNode* node = head->next; node != head; node = node->next) {
        all.push_back(MPI_ListEntry<VLunInfo>(node));
    }
    if (std::is_sorted(all.begin(), all.end(),
                       [](const VLunInfo* a, const VLunInfo* b) { return a->vlunId < b->vlunId; })) {
        return;
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const VLunInfo* a, const VLunInfo* b) { return a->vlunId < b->vlunId; });
    MPI_ListInit(head);
    for (VLunInfo* v : all) {
        MPI_ListAddTail(&v->links, head);
    }
}

const VLunInfo* UilVLunCache::find(uint32_t vlunId) const
{
    auto it = m_vluns.find(vlunId);
    return it == m_vluns.end() ? nullptr : &it->second;
}

void UilVLunCache::keep(const VLunInfo& v)
{
    VLunInfo copy;
    std::memcpy(static_cast<void*>(&copy), &v, sizeof(copy));
    MPI_ListInit(&copy.links);
    copy.storage = nullptr;
    m_vluns.insert_or_assign(v.vlunId, copy);
}

uint32_t INTF_UIL_EnumerateVLunCachedStart(uint32_t arrayId, MPI_ListNode* head, UilVLunCache* cache)
{
    UIL_ASSERT(head != nullptr);
    MPI_ListInit(head);
    UilIdList* diskIds = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, &diskIds);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    MPI_Ended<INTF_UIL_EnumerateDiskIdsEnd> disksOwner(diskIds);
    VLunBlock block(diskIds->count);
    if (!block.ok()) {
        return MPI_RET_NO_MEMORY;
    }
    UiaPayload diskPayload(uia_req::GetDiskInfo.size);
    UiaPayload vlunPayload(uia_req::GetVLunInfo.size);
    DiskInfo current;
    DiskInfo scratch;
    // A VLUN is listed once even if several of its disks lie in this array.
    std::unordered_set<uint32_t> listed;
    for (uint32_t diskId : diskIds->view()) {
        if (readDisk(diskId, diskPayload, &current) != MPI_RET_SUCCESS) {
            UIL_ERR("Get vlun primary info fail, disk id {%d}", static_cast<int>(diskId));
            continue;
        }
        if (listed.count(current.vlunId) != 0) {
            continue;
        }
        VLunInfo* v = block.next();
        UIL_ASSERT(v != nullptr);  // never more VLUNs than disks
        const VLunInfo* known = cache != nullptr ? cache->find(current.vlunId) : nullptr;
        if (known != nullptr) {
            void* storage = v->storage;
            std::memcpy(static_cast<void*>(v), known, sizeof(*v));
            MPI_ListInit(&v->links);
            v->storage = storage;
        } else if (readVLun(current.vlunId, vlunPayload, v) != MPI_RET_SUCCESS ||
                   fillMembers(v, &current, diskPayload, &scratch) != MPI_RET_SUCCESS) {
            UIL_ERR("Get vlun primary info fail, disk id {%d}", static_cast<int>(diskId));
            continue;
        } else if (cache != nullptr && v->memberCount > 1) {
            cache->keep(*v);  // the other member's array lists it again
        }
        listed.insert(v->vlunId);
        block.keep();
        MPI_ListAddTail(&v->links, head);
    }
    block.settle();
    if (MPI_ListEmpty(head)) {
        return MPI_RET_NOT_FOUND;
    }
    UIL_SortVLunListByVLunID(head);
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_EnumerateVLunStart(uint32_t arrayId, MPI_ListNode* head)
{
    return INTF_UIL_EnumerateVLunCachedStart(arrayId, head, nullptr);
}

void INTF_UIL_EnumerateVLunEnd(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    freeVLunList(head);
}

uint32_t INTF_UIL_GetVLunInfoStart(uint32_t vlunId, VLunInfo* v)
{
    UIL_ASSERT(v != nullptr);
    std::memset(static_cast<void*>(v), 0, sizeof(*v));
    MPI_ListInit(&v->links);
    UiaPayload payload(uia_req::GetVLunInfo.size);
    return readVLun(vlunId, payload, v);
}

void INTF_UIL_GetVLunInfoEnd(VLunInfo* v)
{
    UIL_ASSERT(v != nullptr);
    MPI_ListInit(&v->links);
}
