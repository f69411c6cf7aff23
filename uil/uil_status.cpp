// `check status`: walks every array, its controllers and physical paths and
// its disks with their logical paths, and records each problem found.
//
// Rules, per array that has disks:
//  - Path down (critical): a physical path that reads "Fault" (link lost).
//  - Path disabled (warning): a physical path disabled by the operator.
//  - Unstable path (major): a physical path in any degraded state.
//  - LUN abnormal (critical): a disk whose status is "Fault" or "Unavailable".
//  - All path down (critical): a LUN none of whose logical paths can carry
//    I/O (each one "Fault" or "Disable", or no logical path at all); the
//    paths of an unavailable disk read "Fault" unless disabled, as in the
//    disk's detail.
//  - Unstable path of LUN (warning): a logical path in a degraded state
//    (busy, sensitive delay, ...) whose physical path reads "Normal"; a
//    degraded physical path is reported once, as an unstable path.
//  - No redundant controllers (major): when the usable paths of an array
//    (neither "Fault" nor "Disable", on an enabled controller) all go
//    through one controller, one record for the array (no LUN); otherwise
//    one record per LUN whose usable logical paths all go through one
//    controller. A LUN whose paths are all down is not reported again here.
#include "uil/uil_status.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_map>
#include <unordered_set>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"

namespace {

bool isUsable(const char* state)
{
    return std::strcmp(state, UIL_PATH_STATE_FAULT) != 0 && std::strcmp(state, UIL_PATH_STATE_DISABLE) != 0;
}

template <size_t N>
void copyText(char (&out)[N], const char* text)
{
    (void)strncpy_s(out, N, text, std::min(std::strlen(text), N - 1));
}

class StatusCollector {
public:
    explicit StatusCollector(MPI_ListNode* head) : m_head(head) {}

    uint32_t scanArray(uint32_t arrayId);

private:
    uint32_t scanPaths(const ArrayInfo& array);
    uint32_t scanDisk(const ArrayInfo& array, uint32_t diskId, bool arrayRedundant);
    UilStatusRecord* add(uint32_t severity, uint32_t type, const ArrayInfo& array);
    void describePath(UilStatusRecord* rec, const ArrayInfo& array, const UilPathInfo& path, uint32_t controllerId);

    MPI_ListNode* m_head;
    UilControllerNamer m_namer;
    // Physical paths of the array being scanned, by path ID.
    std::unordered_map<uint32_t, const UilPathInfo*> m_paths;
};

UilStatusRecord* StatusCollector::add(uint32_t severity, uint32_t type, const ArrayInfo& array)
{
    auto* rec = static_cast<UilStatusRecord*>(UIL_ZMalloc(sizeof(UilStatusRecord)));
    if (rec == nullptr) {
        return nullptr;
    }
    rec->severity = severity;
    rec->type = type;
    rec->arrayId = array.arrayId;
    copyText(rec->arrayName, array.name);
    MPI_ListAddTail(&rec->links, m_head);
    return rec;
}

void StatusCollector::describePath(UilStatusRecord* rec, const ArrayInfo& array, const UilPathInfo& path,
                                   uint32_t controllerId)
{
    rec->pathId = path.pathId;
    copyText(rec->initiatorWwn, path.initiatorPort);
    copyText(rec->targetWwn, path.targetPort);
    (void)m_namer.format(array.arrayId, controllerId, array.capability, rec->controller, sizeof(rec->controller));
}

uint32_t StatusCollector::scanPaths(const ArrayInfo& array)
{
    const MPI_ListNode* controllers = &array.controllers;
    for (const MPI_ListNode* c = controllers->next; c != controllers; c = c->next) {
        const UilController* controller = MPI_ListEntry<UilController>(c);
        for (const MPI_ListNode* p = controller->paths.next; p != &controller->paths; p = p->next) {
            const UilPathInfo* path = MPI_ListEntry<UilPathInfo>(p);
            m_paths[path->pathId] = path;
            uint32_t type = 0;
            uint32_t severity = 0;
            if (std::strcmp(path->pathState, UIL_PATH_STATE_FAULT) == 0) {
                type = UIL_STATUS_PATH_DOWN;
                severity = UIL_SEVERITY_CRITICAL;
            } else if (std::strcmp(path->pathState, UIL_PATH_STATE_DISABLE) == 0) {
                type = UIL_STATUS_PATH_DISABLED;
                severity = UIL_SEVERITY_WARNING;
            } else if (std::strcmp(path->pathState, UIL_PATH_STATE_NORMAL) != 0) {
                type = UIL_STATUS_PATH_UNSTABLE;
                severity = UIL_SEVERITY_MAJOR;
            } else {
                continue;
            }
            UilStatusRecord* rec = add(severity, type, array);
            if (rec == nullptr) {
                return MPI_RET_NO_MEMORY;
            }
            describePath(rec, array, *path, controller->tpgId);
        }
    }
    return MPI_RET_SUCCESS;
}

// Number of enabled controllers that still have a usable path.
uint32_t usableControllers(const ArrayInfo& array)
{
    uint32_t count = 0;
    for (const MPI_ListNode* c = array.controllers.next; c != &array.controllers; c = c->next) {
        const UilController* controller = MPI_ListEntry<UilController>(c);
        if (controller->state != UIL_TPG_ENABLED) {
            continue;
        }
        for (const MPI_ListNode* p = controller->paths.next; p != &controller->paths; p = p->next) {
            if (isUsable(MPI_ListEntry<UilPathInfo>(p)->pathState)) {
                ++count;
                break;
            }
        }
    }
    return count;
}

uint32_t StatusCollector::scanDisk(const ArrayInfo& array, uint32_t diskId, bool arrayRedundant)
{
    DiskInfo disk;
    if (INTF_UIL_GetDiskBasicInfoStart(diskId, &disk) != MPI_RET_SUCCESS) {
        UIL_ERR("Get disk info fail, disk id {%u}", diskId);
        return MPI_RET_SUCCESS;
    }
    auto lunRecord = [&](uint32_t severity, uint32_t type) {
        UilStatusRecord* rec = add(severity, type, array);
        if (rec != nullptr) {
            copyText(rec->lunWwn, disk.lunWwn);
        }
        return rec;
    };
    if (std::strcmp(disk.status, UIL_DISK_FAULT) == 0 || std::strcmp(disk.status, UIL_DISK_UNAVAILABLE) == 0) {
        if (lunRecord(UIL_SEVERITY_CRITICAL, UIL_STATUS_LUN_ABNORMAL) == nullptr) {
            return MPI_RET_NO_MEMORY;
        }
    }
    MPI_ListNode paths;
    uint32_t ret = UIL_EnumeratePathStart(diskId, &paths);
    if (ret == MPI_RET_NO_MEMORY) {
        return ret;
    }
    if (ret != MPI_RET_SUCCESS && ret != MPI_RET_NOT_FOUND) {
        UIL_ERR("Get paths of disk {%u} fail. ret {%u}", diskId, ret);  // unknown, not down
        return MPI_RET_SUCCESS;
    }
    MPI_Ended<UIL_EnumeratePathEnd> pathsOwner(&paths);
    std::unordered_set<uint32_t> controllers;
    bool anyUsable = false;
    for (MPI_ListNode* p = paths.next; p != &paths; p = p->next) {
        UilPathInfo* path = MPI_ListEntry<UilPathInfo>(p);
        if (disk.unavailable == 1 && std::strcmp(path->pathState, UIL_PATH_STATE_DISABLE) != 0) {
            path->pathState = UIL_PATH_STATE_FAULT;  // as the disk's detail shows it
        }
        auto phys = m_paths.find(path->pathId);
        if (isUsable(path->pathState)) {
            anyUsable = true;
            if (phys != m_paths.end()) {
                controllers.insert(phys->second->controllerId);
            }
        }
        bool degraded = isUsable(path->pathState) && std::strcmp(path->pathState, UIL_PATH_STATE_NORMAL) != 0;
        bool physNormal =
            phys == m_paths.end() || std::strcmp(phys->second->pathState, UIL_PATH_STATE_NORMAL) == 0;
        if (degraded && physNormal) {
            UilStatusRecord* rec = lunRecord(UIL_SEVERITY_WARNING, UIL_STATUS_LUN_PATH_UNSTABLE);
            if (rec == nullptr) {
                return MPI_RET_NO_MEMORY;
            }
            uint32_t controllerId = phys != m_paths.end() ? phys->second->controllerId : UIL_MAX_TPGS;
            describePath(rec, array, *path, controllerId);
        }
    }
    if (!anyUsable) {
        return lunRecord(UIL_SEVERITY_CRITICAL, UIL_STATUS_ALL_PATH_DOWN) != nullptr ? MPI_RET_SUCCESS
                                                                                       : MPI_RET_NO_MEMORY;
    }
    if (arrayRedundant && controllers.size() == 1) {
        if (lunRecord(UIL_SEVERITY_MAJOR, UIL_STATUS_NO_REDUNDANT_CTRL) == nullptr) {
            return MPI_RET_NO_MEMORY;
        }
    }
    return MPI_RET_SUCCESS;
}

uint32_t StatusCollector::scanArray(uint32_t arrayId)
{
    ArrayInfo array;
    if (UIL_GetArrayRecord(arrayId, &array) != MPI_RET_SUCCESS) {
        UIL_ERR("Get Array info fail, array id {%u}", arrayId);
        return MPI_RET_SUCCESS;
    }
    UilIdList* diskIds = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, &diskIds);
    if (ret == MPI_RET_NO_MEMORY) {
        return ret;
    }
    MPI_Ended<INTF_UIL_EnumerateDiskIdsEnd> disksOwner(diskIds);
    if (ret != MPI_RET_SUCCESS || diskIds->count == 0) {
        UIL_ERR("there is no vlun in Array {%u}", arrayId);
        return MPI_RET_SUCCESS;
    }
    ret = UIL_BuildControllerList(arrayId, &array.controllers, false);
    MPI_Ended<INTF_UIL_GetPhyTpgInfoEnd> controllersOwner(&array);
    if (ret == MPI_RET_NO_MEMORY) {
        return ret;
    }
    m_paths.clear();
    MPI_ScopeExit forgetPaths([this] { m_paths.clear(); });
    ret = scanPaths(array);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    uint32_t usable = usableControllers(array);
    if (usable == 1 && add(UIL_SEVERITY_MAJOR, UIL_STATUS_NO_REDUNDANT_CTRL, array) == nullptr) {
        return MPI_RET_NO_MEMORY;
    }
    for (uint32_t diskId : diskIds->view()) {
        ret = scanDisk(array, diskId, usable > 1);
        if (ret != MPI_RET_SUCCESS) {
            return ret;
        }
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t INTF_UIL_CheckArrayPathDiskStatus(MPI_ListNode* head)
{
    UIL_ASSERT(head != NULL);
    MPI_ListInit(head);
    UilIdList* arrays = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayIdsStart(&arrays);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    MPI_Ended<INTF_UIL_EnumerateArrayIdsEnd> arraysOwner(arrays);
    if (arrays->count == 0) {
        return MPI_RET_NOT_FOUND;
    }
    StatusCollector collector(head);
    for (uint32_t arrayId : arrays->view()) {
        ret = collector.scanArray(arrayId);
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Check status of array {%u} fail. ret {%u}", arrayId, ret);
            INTF_UIL_CheckStatusEnd(head);
            return ret;
        }
    }
    return MPI_RET_SUCCESS;
}

void INTF_UIL_CheckStatusEnd(MPI_ListNode* head)
{
    UIL_ASSERT(head != NULL);
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        MPI_ListInit(node);
        std::free(MPI_ListEntry<UilStatusRecord>(node));
    }
}
