// Disks and VLUNs: disk records (basic and detailed), VLUN records and the
// VLUN list of an array.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unordered_set>
#include <vector>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"

namespace {

// Disk record (request 0x17, 544 bytes).
namespace disk {
constexpr size_t kId = 0, kVlun = 4, kOwning = 8, kWorking = 12, kArray = 16, kHostLun = 20, kWord24 = 24,
                 kLunCount = 36, kCapacity = 40, kName = 48, kVendor = 120, kProduct = 136, kRevision = 160,
                 kWwn = 168, kArrayName = 208, kArraySn = 296, kDriver = 324, kDevice = 460, kCapability = 500,
                 kByte504 = 504, kValue512 = 512, kValue520 = 520, kValue524 = 524, kByte528 = 528,
                 kUnavailable = 529, kDevLunId = 532, kDevLunValid = 536, kNormal = 537, kDegraded = 538,
                 kPathCount = 540;
constexpr size_t kNameLen = 64, kVendorLen = 8, kProductLen = 16, kRevisionLen = 4, kWwnLen = 32,
                 kArrayNameLen = 80, kArraySnLen = 20, kDriverLen = 129, kDeviceLen = 64;
}  // namespace disk

// VLUN record (request 0x5f, 84 bytes).
namespace vlunw {
constexpr size_t kId = 0, kWwn = 4, kArraySn = 37, kType = 58, kPe = 59, kMembers = 60, kMemberDisks = 64,
                 kSuspendTimeout = 72, kSuspendRemain = 76;
constexpr size_t kWwnLen = 32, kArraySnLen = 20;
}  // namespace vlunw

template <size_t N>
void copyText(char (&out)[N], const char* text)
{
    (void)strncpy_s(out, N, text, std::min(std::strlen(text), N - 1));
}

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
template <typename T>
using ZPtr = std::unique_ptr<T, FreeDeleter>;

template <typename T>
ZPtr<T> zalloc()
{
    return ZPtr<T>(static_cast<T*>(UIL_ZMalloc(sizeof(T))));
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
        UilController* controller = MPI_LIST_ENTRY(c, UilController, links);
        for (MPI_ListNode* p = controller->paths.next; p != &controller->paths; p = p->next) {
            UilPathInfo* path = MPI_LIST_ENTRY(p, UilPathInfo, links);
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
    p.text(disk::kName, disk::kNameLen, d->name, sizeof(d->name));
    p.text(disk::kVendor, disk::kVendorLen, d->vendor, sizeof(d->vendor));
    p.text(disk::kProduct, disk::kProductLen, d->product, sizeof(d->product));
    p.text(disk::kRevision, disk::kRevisionLen, d->revision, sizeof(d->revision));
    p.text(disk::kWwn, disk::kWwnLen, d->lunWwn, sizeof(d->lunWwn));
    UIL_TransNameToGb2312(p.data() + disk::kArrayName, disk::kArrayNameLen, d->arrayName, sizeof(d->arrayName));
    p.text(disk::kArraySn, disk::kArraySnLen, d->arraySn, sizeof(d->arraySn));
    p.text(disk::kDriver, disk::kDriverLen, d->driver, sizeof(d->driver));
    p.text(disk::kDevice, disk::kDeviceLen, d->deviceName, sizeof(d->deviceName));
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
    auto controller = zalloc<UilController>();
    if (!controller) {
        UIL_ERR("malloc for tpg info fail");
        return MPI_RET_NO_MEMORY;
    }
    MPI_ListInit(&controller->links);
    MPI_ListInit(&controller->paths);
    controller->state = tpg.state;
    controller->tpgId = tpg.tpgId;
    controller->remote = tpg.remote;
    for (uint32_t pathId : tpg.paths->view()) {
        if (!diskPaths.contains(pathId)) {
            continue;
        }
        auto path = zalloc<UilPathInfo>();
        if (!path) {
            UIL_ERR("malloc for path info fail");
            UIL_PathListFree(&controller->paths);
            return MPI_RET_NO_MEMORY;
        }
        if (UIL_GetPathInfo(d.diskId, pathId, path.get()) != MPI_RET_SUCCESS) {
            UIL_ERR("Get path info fail, disk id {%u}, path id {%u}", d.diskId, pathId);
            continue;
        }
        path->arrayId = d.arrayId;
        path->controllerId = tpg.tpgId;
        MPI_ListAddTail(&path.release()->links, &controller->paths);
    }
    if (!MPI_ListEmpty(&controller->paths)) {
        *out = controller.release();
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
    UilIdList* tpgIds = nullptr;
    ret = UIL_EnumerateTpgIdsStart(d->arrayId, &tpgIds);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate Tpg's Ids fail");
        UIL_EnumeratePathIdsEnd(diskPaths);
        return ret;
    }
    for (uint32_t tpgId : tpgIds->view()) {
        UilTpgInfo* tpg = nullptr;
        ret = UIL_EnumerateTpgStart(d->arrayId, tpgId, &tpg);
        if (ret == MPI_RET_NO_MEMORY) {
            break;
        }
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Get Tpg info fail, tpg id {%u}", tpgId);
            ret = MPI_RET_SUCCESS;
            continue;
        }
        UilController* controller = nullptr;
        ret = buildDiskController(*d, *tpg, *diskPaths, &controller);
        UIL_EnumerateTpgEnd(tpg);
        if (ret != MPI_RET_SUCCESS) {
            break;
        }
        if (controller != nullptr) {
            MPI_ListAddTail(&controller->links, &d->controllers);
        }
    }
    UIL_EnumerateTpgIdsEnd(tpgIds);
    UIL_EnumeratePathIdsEnd(diskPaths);
    return ret;
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
    p.text(vlunw::kWwn, vlunw::kWwnLen, v->lunWwn, sizeof(v->lunWwn));
    p.text(vlunw::kArraySn, vlunw::kArraySnLen, v->arraySn, sizeof(v->arraySn));
    v->type = p.u8(vlunw::kType);
    v->peFlag = p.u8(vlunw::kPe);
    v->memberCount = UIL_ClampCount(p.u32(vlunw::kMembers), UIL_VLUN_SLOTS, "members of a vlun");
    for (uint32_t i = 0; i < UIL_VLUN_SLOTS; ++i) {
        v->memberDiskId[i] = p.u32(vlunw::kMemberDisks + 4 * i);
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
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        MPI_ListInit(node);
        std::free(MPI_LIST_ENTRY(node, VLunInfo, links));
    }
}

}  // namespace

uint32_t UIL_GetVLunPrimaryInfo(VLunInfo* v)
{
    UIL_ASSERT(v != nullptr);
    UiaPayload payload(uia_req::GetDiskInfo.size);
    auto scratch = zalloc<DiskInfo>();
    if (!scratch) {
        return MPI_RET_NO_MEMORY;
    }
    return fillMembers(v, nullptr, payload, scratch.get());
}

void UIL_SortVLunListByVLunID(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    std::vector<VLunInfo*> all;
    for (MPI_ListNode* node = head->next; node != head; node = node->next) {
        all.push_back(MPI_LIST_ENTRY(node, VLunInfo, links));
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const VLunInfo* a, const VLunInfo* b) { return a->vlunId < b->vlunId; });
    MPI_ListInit(head);
    for (VLunInfo* v : all) {
        MPI_ListAddTail(&v->links, head);
    }
}

uint32_t INTF_UIL_EnumerateVLunStart(uint32_t arrayId, MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    MPI_ListInit(head);
    UilIdList* diskIds = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, &diskIds);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    auto current = zalloc<DiskInfo>();
    auto scratch = zalloc<DiskInfo>();
    if (!current || !scratch) {
        INTF_UIL_EnumerateDiskIdsEnd(diskIds);
        return MPI_RET_NO_MEMORY;
    }
    UiaPayload diskPayload(uia_req::GetDiskInfo.size);
    UiaPayload vlunPayload(uia_req::GetVLunInfo.size);
    // A VLUN is listed once even if several of its disks lie in this array.
    std::unordered_set<uint32_t> listed;
    ret = MPI_RET_SUCCESS;
    for (uint32_t diskId : diskIds->view()) {
        if (readDisk(diskId, diskPayload, current.get()) != MPI_RET_SUCCESS) {
            UIL_ERR("Get vlun primary info fail, disk id {%d}", static_cast<int>(diskId));
            continue;
        }
        if (listed.count(current->vlunId) != 0) {
            continue;
        }
        auto v = zalloc<VLunInfo>();
        if (!v) {
            ret = MPI_RET_NO_MEMORY;
            break;
        }
        MPI_ListInit(&v->links);
        if (readVLun(current->vlunId, vlunPayload, v.get()) != MPI_RET_SUCCESS ||
            fillMembers(v.get(), current.get(), diskPayload, scratch.get()) != MPI_RET_SUCCESS) {
            UIL_ERR("Get vlun primary info fail, disk id {%d}", static_cast<int>(diskId));
            continue;
        }
        listed.insert(v->vlunId);
        MPI_ListAddTail(&v.release()->links, head);
    }
    INTF_UIL_EnumerateDiskIdsEnd(diskIds);
    if (ret != MPI_RET_SUCCESS) {
        freeVLunList(head);
        return ret;
    }
    if (MPI_ListEmpty(head)) {
        return MPI_RET_NOT_FOUND;
    }
    UIL_SortVLunListByVLunID(head);
    return MPI_RET_SUCCESS;
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
