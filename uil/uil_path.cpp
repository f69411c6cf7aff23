// Paths and HBAs: state words, printable ports, the path records and the
// path and HBA requests.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"
#include "uil/uil_wire_path.h"

namespace phy = uil_wire::phy;
namespace logical = uil_wire::logical;
namespace hba = uil_wire::hba;
using uil_wire::kIpEnd;
using uil_wire::kIpFirst;
using uil_wire::kIpv6Only;

const std::array<const char*, UIL_PATH_IO_COUNT> g_apszCVPathIoState{
    "CVIOC_PATH_IO_NORMAL",      "CVIOC_PATH_IO_FAILBACK",    "CVIOC_PATH_IO_BUSY",
    "CVIOC_PATH_IO_UNKNOWN",     "CVIOC_PATH_IO_NOT_STEDAY",  "CVIOC_PATH_IO_TIMEOUT",
    "CVIOC_PATH_IO_HIGHLATENCY", "CVIOC_PATH_IO_SENSITIVE_DELAYED", "CVIOC_PATH_IO_POTENTIAL_FAULT",
};

// The parsing order: 23 and 24 are swapped against the display table.
const std::array<const char*, UIL_PATH_IO_COUNT> g_apszUIlPathIoState{
    "CVIOC_PATH_IO_NORMAL",      "CVIOC_PATH_IO_FAILBACK",    "CVIOC_PATH_IO_BUSY",
    "CVIOC_PATH_IO_UNKNOWN",     "CVIOC_PATH_IO_TIMEOUT",     "CVIOC_PATH_IO_NOT_STEDAY",
    "CVIOC_PATH_IO_HIGHLATENCY", "CVIOC_PATH_IO_SENSITIVE_DELAYED", "CVIOC_PATH_IO_POTENTIAL_FAULT",
};

namespace {

struct WordRow {
    uint32_t code;
    const char* word;
};

// Words of the I/O states that are not "Normal", shared by both rules.
constexpr WordRow kDegradedByIoState[] = {
    {UIL_PATH_IO_UNKNOWN, UIL_PATH_STATE_IO_ERROR},
    {UIL_PATH_IO_NOT_STEADY, UIL_PATH_STATE_INTERMITTENT},
    {UIL_PATH_IO_TIMEOUT, UIL_PATH_STATE_TIMEOUT},
    {UIL_PATH_IO_HIGHLATENCY, UIL_PATH_STATE_HIGH_LATENCY},
    {UIL_PATH_IO_POTENTIAL_FAULT, UIL_PATH_STATE_POTENTIAL},
};
// Only a logical path tells busy and sensitive-delayed paths apart.
constexpr WordRow kLogicalOnly[] = {
    {UIL_PATH_IO_BUSY, UIL_PATH_STATE_BUSY},
    {UIL_PATH_IO_SENSITIVE_DELAYED, UIL_PATH_STATE_SENSITIVE},
};

constexpr WordRow kCheckStartWords[] = {
    {UIL_CHECK_START_INIT, "Init"},
    {UIL_CHECK_START_AUTO, "Auto"},
    {UIL_CHECK_START_MANUAL, "Manual"},
};
constexpr WordRow kCheckStepWords[] = {
    {UIL_CHECK_STEP_INIT, "Init"},          {UIL_CHECK_STEP_CHECKING, "Checking"},
    {UIL_CHECK_STEP_WAITING, "Waiting"},    {UIL_CHECK_STEP_IGNORE, "Ignore"},
    {UIL_CHECK_STEP_NOTSTEADY, "Notsteady"}, {UIL_CHECK_STEP_SUCCEED, "Succeed"},
    {UIL_CHECK_STEP_FAIL, "Fail"},
};

// Driver path states in which a logical path carries I/O.
constexpr uint32_t kWorkingDriverStates[] = {9, 11, 12};

// Path states of a disk that count as degraded (and "Degraded" itself).
constexpr const char* kDegradedStates[] = {
    UIL_PATH_STATE_BUSY,     UIL_PATH_STATE_IO_ERROR,     UIL_PATH_STATE_INTERMITTENT, UIL_PATH_STATE_TIMEOUT,
    UIL_PATH_STATE_HIGH_LATENCY, UIL_PATH_STATE_SENSITIVE, UIL_PATH_STATE_POTENTIAL,  UIL_PATH_STATE_DEGRADED,
};

// Logical path states counted as working; "Potential fault degradation" is
// left out on purpose.
constexpr const char* kWorkingStates[] = {
    UIL_PATH_STATE_NORMAL,   UIL_PATH_STATE_TIMEOUT,      UIL_PATH_STATE_BUSY,
    UIL_PATH_STATE_IO_ERROR, UIL_PATH_STATE_INTERMITTENT, UIL_PATH_STATE_HIGH_LATENCY,
    UIL_PATH_STATE_SENSITIVE, UIL_PATH_STATE_DEGRADED,
};

template <size_t N>
const char* findWord(const WordRow (&rows)[N], uint32_t code)
{
    for (const WordRow& row : rows) {
        if (row.code == code) {
            return row.word;
        }
    }
    return nullptr;
}

bool startsWith(const char* text, const char* prefix)
{
    return text != nullptr && std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

void copyWord(const char* word, char* out, size_t size)
{
    if (size == 0) {
        return;
    }
    out[0] = '\0';
    if (word != nullptr) {
        (void)strncpy_s(out, size, word, std::min(std::strlen(word), size - 1));
    }
}

// A port name field copied up to its first zero byte and at most `limit` characters.
size_t copyPortName(char* out, size_t outSize, const uint8_t* name, size_t nameSize, size_t limit)
{
    size_t n = std::min({nameSize, limit, outSize - 1});
    const void* nul = std::memchr(name, 0, n);
    if (nul != nullptr) {
        n = static_cast<size_t>(static_cast<const uint8_t*>(nul) - name);
    }
    if (n != 0) {
        (void)memcpy_s(out, outSize, name, n);
    }
    out[n] = '\0';
    return n;
}

// The texts both path records carry.
struct PathTexts {
    UiaField arrayName, vendor, controller, portId, initiator, target;
};
constexpr PathTexts kPhyTexts{phy::kArrayName, phy::kVendor, phy::kControllerText,
                              phy::kPortId,    phy::kInitiator, phy::kTarget};
constexpr PathTexts kLogicalTexts{logical::kArrayName, logical::kVendor, logical::kControllerText,
                                  logical::kPortId,    logical::kInitiator, logical::kTarget};

// Needs the port type and the TCP ports already decoded.
void readTexts(const UiaPayload& p, UilPathInfo* path, const PathTexts& at)
{
    UIL_TransNameToGb2312(p.bytes(at.arrayName), at.arrayName.len, path->arrayName, sizeof(path->arrayName));
    p.text(at.vendor, path->vendorDriver);
    p.text(at.controller, path->controllerText);
    p.text(at.portId, path->portId);
    UIL_GetPrintableInitiatorWwn(path->initiatorPort, sizeof(path->initiatorPort), p.bytes(at.initiator),
                                 at.initiator.len, path->portType, path->initiatorTcpPort);
    UIL_GetPrintableTargetWwn(path->targetPort, sizeof(path->targetPort), p.bytes(at.target), at.target.len,
                              path->portType, path->targetTcpPort);
}

UilPathInfo* allocPath()
{
    auto* path = static_cast<UilPathInfo*>(UIL_ZMalloc(sizeof(UilPathInfo)));
    if (path != nullptr) {
        MPI_ListInit(&path->links);
    }
    return path;
}

}  // namespace

void UIL_PathListFree(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        MPI_ListInit(node);
        std::free(MPI_ListEntry<UilPathInfo>(node));
    }
}

// ---------------------------------------------------------------------------
// Rules.

const char* UIL_PhyPathStateWord(uint8_t enabled, uint32_t linkState, uint32_t ioState)
{
    if (enabled == 0) {
        return UIL_PATH_STATE_DISABLE;
    }
    if (linkState != 1) {
        return UIL_PATH_STATE_FAULT;
    }
    if (ioState == UIL_PATH_IO_NORMAL || ioState == UIL_PATH_IO_FAILBACK || ioState == UIL_PATH_IO_BUSY) {
        return UIL_PATH_STATE_NORMAL;
    }
    const char* word = findWord(kDegradedByIoState, ioState);
    return word != nullptr ? word : UIL_PATH_STATE_DEGRADED;
}

const char* UIL_LogicalPathStateWord(uint8_t enabled, uint32_t driverState, uint32_t ioState, uint8_t faulty)
{
    const char* word = nullptr;
    if (enabled == 0) {
        word = UIL_PATH_STATE_DISABLE;
    } else if (std::find(std::begin(kWorkingDriverStates), std::end(kWorkingDriverStates), driverState) ==
               std::end(kWorkingDriverStates)) {
        word = UIL_PATH_STATE_FAULT;
    } else if (ioState == UIL_PATH_IO_NORMAL || ioState == UIL_PATH_IO_FAILBACK) {
        word = UIL_PATH_STATE_NORMAL;
    } else if ((word = findWord(kLogicalOnly, ioState)) == nullptr &&
               (word = findWord(kDegradedByIoState, ioState)) == nullptr) {
        word = UIL_PATH_STATE_DEGRADED;
    }
    return faulty == 1 ? UIL_PATH_STATE_FAULT : word;
}

const char* UIL_PathIoStateWord(uint32_t ioState)
{
    if (ioState < UIL_PATH_IO_FIRST || ioState - UIL_PATH_IO_FIRST >= UIL_PATH_IO_COUNT) {
        return UIL_PATH_IO_UNKNOWN_TEXT;
    }
    return g_apszCVPathIoState[ioState - UIL_PATH_IO_FIRST];
}

uint32_t UIL_PathSzIostateToUInt(const char* word)
{
    UIL_ASSERT(word != nullptr);
    for (uint32_t i = 0; i < UIL_PATH_IO_COUNT; ++i) {
        if (std::strcmp(word, g_apszUIlPathIoState[i]) == 0) {
            return UIL_PATH_IO_FIRST + i;
        }
    }
    return UIL_PATH_IO_NONE;
}

bool UIL_IsDegradedPathState(const char* word)
{
    return word != nullptr && std::any_of(std::begin(kDegradedStates), std::end(kDegradedStates),
                                          [word](const char* s) { return std::strcmp(word, s) == 0; });
}

void UIL_TransCheckStartTypeToStr(uint32_t type, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr);
    copyWord(findWord(kCheckStartWords, type), out, size);
}

void UIL_TransCheckStepToStr(uint32_t step, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr);
    copyWord(findWord(kCheckStepWords, step), out, size);
}

void UIL_GetIPfromInitiatorWwn(const uint8_t* name, size_t nameSize, char* out, size_t outSize)
{
    UIL_ASSERT(name != nullptr && out != nullptr && outSize > 0);
    uint8_t ip[kIpEnd - kIpFirst] = {};
    if (nameSize > kIpFirst) {
        (void)memcpy_s(ip, sizeof(ip), name + kIpFirst, std::min(nameSize, kIpEnd) - kIpFirst);
    }
    bool ipv6 = std::any_of(ip + (kIpv6Only - kIpFirst), ip + sizeof(ip), [](uint8_t b) { return b != 0; });
    out[0] = '\0';
    char part[8];
    if (ipv6) {
        for (size_t i = 0; i < 8; ++i) {
            unsigned group = (static_cast<unsigned>(ip[2 * i]) << 8) + ip[2 * i + 1];
            (void)snprintf_s(part, sizeof(part), sizeof(part) - 1, i < 7 ? "%X:" : "%X", group);
            (void)strcat_s(out, outSize, part);
        }
    } else {
        for (size_t i = 0; i < 4; ++i) {
            (void)snprintf_s(part, sizeof(part), sizeof(part) - 1, i < 3 ? "%u." : "%u", ip[i]);
            (void)strcat_s(out, outSize, part);
        }
    }
}

void UIL_GetPrintableInitiatorWwn(char* out, size_t outSize, const uint8_t* name, size_t nameSize,
                                  uint32_t portType, uint32_t tcpPort)
{
    UIL_ASSERT(out != nullptr && name != nullptr && outSize > 0);
    if (portType != UIL_PORT_ISCSI) {
        (void)copyPortName(out, outSize, name, nameSize, nameSize);
        return;
    }
    size_t n = copyPortName(out, outSize, name, nameSize, UIL_ISCSI_NAME_CUT);
    char ip[UIL_IP_TEXT_SIZE];
    UIL_GetIPfromInitiatorWwn(name, nameSize, ip, sizeof(ip));
    (void)snprintf_s(out + n, outSize - n, outSize - n - 1, "::%s::%u", ip, tcpPort);
}

void UIL_GetPrintableTargetWwn(char* out, size_t outSize, const uint8_t* name, size_t nameSize, uint32_t portType,
                               uint32_t tcpPort)
{
    UIL_ASSERT(out != nullptr && name != nullptr && outSize > 0);
    if (portType != UIL_PORT_ISCSI) {
        (void)copyPortName(out, outSize, name, nameSize, nameSize);
        return;
    }
    size_t n = copyPortName(out, outSize, name, nameSize, UIL_ISCSI_NAME_CUT);
    (void)snprintf_s(out + n, outSize - n, outSize - n - 1, "::%u", tcpPort);
}

void UIL_ModifyNumforPathStatus(uint32_t* working, uint32_t* busy, const UilPathInfo* logicalPath)
{
    UIL_ASSERT(working != nullptr && busy != nullptr && logicalPath != nullptr);
    bool isWorking = std::any_of(std::begin(kWorkingStates), std::end(kWorkingStates),
                                 [logicalPath](const char* s) { return startsWith(logicalPath->pathState, s); });
    if (!isWorking) {
        return;
    }
    ++*working;
    if (startsWith(logicalPath->ioStateWord, g_apszCVPathIoState[UIL_PATH_IO_BUSY - UIL_PATH_IO_FIRST])) {
        ++*busy;
    }
}

// ---------------------------------------------------------------------------
// Decoders.

void UIL_TransPhyPathInfo(const UiaPayload& p, UilPathInfo* path)
{
    UIL_ASSERT(path != nullptr);
    path->kind = UIL_PATH_PHYSICAL;
    path->pathId = p.u32(phy::kId);
    path->arrayId = p.u32(phy::kArray);
    path->controllerId = p.u32(phy::kController);
    path->linkState = p.u32(phy::kLink);
    path->ioState = p.u32(phy::kIoState);
    path->phyWord20 = p.u32(phy::kWord20);
    path->phyWord24 = p.u32(phy::kWord24);
    path->portType = p.u32(phy::kPortType);
    path->phyWord32 = p.u32(phy::kWord32);
    path->checkStartType = path->phyWord20;
    path->checkStep = p.u32(phy::kCheckStep);
    path->prevCheckStep = p.u32(phy::kPrevCheckStep);
    path->ioRetryCount = p.u64(phy::kRetry);
    path->pathFaultCount = p.u64(phy::kFault);
    path->phyWord64 = p.u32(phy::kWord64);
    path->latencyHighMs = p.u64(phy::kLatHigh);
    path->latencyLowMs = p.u64(phy::kLatLow);
    path->latencyAvgMs = p.u64(phy::kLatAvg);
    path->arrayFlags = p.u32(phy::kFlags);
    p.text(phy::kText820, path->phyText820);
    path->enabled = p.u8(phy::kEnabled);
    for (size_t i = 0; i < 5; ++i) {
        path->phyWords848[i] = p.u32At(phy::kWords848, i);
    }
    p.text(phy::kText868, path->phyTexts868[0]);
    p.text(phy::kText884, path->phyTexts868[1]);
    path->phyBytes902[0] = p.u8(phy::kByte902);
    path->phyBytes902[1] = p.u8(phy::kByte903);
    path->initiatorTcpPort = p.u32(phy::kInitTcp);
    path->targetTcpPort = p.u32(phy::kTargetTcp);
    readTexts(p, path, kPhyTexts);
    path->pathState = UIL_PhyPathStateWord(path->enabled, path->linkState, path->ioState);
    path->ioStateWord = UIL_PathIoStateWord(path->ioState);
    UIL_TransCheckStartTypeToStr(path->checkStartType, path->checkStartWord, sizeof(path->checkStartWord));
    UIL_TransCheckStepToStr(path->checkStep, path->checkStepWord, sizeof(path->checkStepWord));
    UIL_TransCheckStepToStr(path->prevCheckStep, path->prevCheckStepWord, sizeof(path->prevCheckStepWord));
}

void UIL_TransPathInfo(const UiaPayload& p, UilPathInfo* path)
{
    UIL_ASSERT(path != nullptr);
    path->kind = UIL_PATH_LOGICAL;
    path->pathId = p.u32(logical::kId);
    path->logObject8 = p.u32(logical::kObject8);
    path->logObject12 = p.u32(logical::kObject12);
    path->driverPathState = p.u32(logical::kState);
    path->logWord20 = p.u32(logical::kWord20);
    path->ioState = p.u32(logical::kIoState);
    path->logWord28 = p.u32(logical::kWord28);
    path->scsiHost = p.u32(logical::kScsiHost);
    path->scsiChannel = p.u32(logical::kScsiChannel);
    path->scsiTarget = p.u32(logical::kScsiTarget);
    path->logWord44 = p.u32(logical::kWord44);
    path->logFlags48[0] = p.u8(logical::kFlag48);
    path->logFlags48[1] = p.u8(logical::kFlag49);
    path->logWord52 = p.u32(logical::kWord52);
    path->logWord56 = p.u32(logical::kWord56);
    path->portType = p.u32(logical::kPortType);
    path->logWord64 = p.u32(logical::kWord64);
    path->pathFlags = p.u32(logical::kPathFlags);
    path->initiatorTcpPort = p.u32(logical::kInitTcp);
    path->targetTcpPort = p.u32(logical::kTargetTcp);
    path->scsiLun = p.u64(logical::kScsiLun);
    path->logByte96 = p.u8(logical::kByte96);
    path->enabled = p.u8(logical::kEnabled);
    path->arrayFlags = p.u32(logical::kFlags);
    p.text(logical::kText1056, path->logText1056);
    path->faulty = p.u8(logical::kFaulty);
    readTexts(p, path, kLogicalTexts);
    path->pathState = UIL_LogicalPathStateWord(path->enabled, path->driverPathState, path->ioState, path->faulty);
    path->ioStateWord = UIL_PathIoStateWord(path->ioState);
}

void UIL_TransHbaInfo(const UiaPayload& p, UilHbaInfo* out)
{
    out->hbaId = p.u32(hba::kId);
    out->word8 = p.u32(hba::kWord8);
    out->enabled = p.u8(hba::kEnabled);
}

// ---------------------------------------------------------------------------
// Requests.

uint32_t UIL_EnumeratePathIdsStart(uint32_t diskId, UilIdList** out)
{
    return UIL_EnumerateIds(uil_wire::kPathIds, diskId, out);
}
void UIL_EnumeratePathIdsEnd(UilIdList* list) { UIL_IdListFree(list); }

uint32_t UIL_EnumeratePhyPathIdsStart(uint32_t arrayId, UilIdList** out)
{
    return UIL_EnumerateIds(uil_wire::kPhyPathIds, arrayId, out);
}
void UIL_EnumeratePhyPathIdsEnd(UilIdList* list) { UIL_IdListFree(list); }

uint32_t UIL_EnumeratePhyPathDiskIdsStart(uint32_t phyPathId, UilIdList** out)
{
    return UIL_EnumerateIds(uil_wire::kPhyPathDiskIds, phyPathId, out);
}
void UIL_EnumeratePhyPathDiskIdsEnd(UilIdList* list) { UIL_IdListFree(list); }

uint32_t UIL_GetPathInfo(uint32_t diskId, uint32_t pathId, UilPathInfo* out)
{
    UIL_ASSERT(out != nullptr);
    UiaPayload payload(uia_req::GetPathInfo.size);
    payload.setU32(logical::kInDisk, diskId);
    payload.setU32(logical::kInPath, pathId);
    uint32_t ret = UIA_Send(uia_req::GetPathInfo, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query path info by ioctl fail, disk id {%u}, path id {%u}", diskId, pathId);
        return ret;
    }
    UIL_TransPathInfo(payload, out);
    out->diskId = diskId;
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_GetPhyPathInfo(uint32_t pathId, UilPathInfo* out)
{
    UIL_ASSERT(out != nullptr);
    UiaPayload payload(uia_req::GetPhyPathInfo.size);
    payload.setU32(phy::kId, pathId);
    uint32_t ret = UIA_Send(uia_req::GetPhyPathInfo, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query physical path info by ioctl fail, path id {%u}", pathId);
        return ret;
    }
    UIL_TransPhyPathInfo(payload, out);
    return MPI_RET_SUCCESS;
}

namespace {

// Reads the record of every ID into `head` with `read(id, record)`; an ID
// whose record cannot be read is skipped. 1024, 2 when nothing was read,
// 1037 (the list is then left empty).
template <typename Read>
uint32_t fillPathList(const UilIdList& ids, MPI_ListNode* head, Read read)
{
    MPI_ScopeExit freeOnFailure([head] { UIL_PathListFree(head); });
    for (uint32_t pathId : ids.view()) {
        UilPathInfo* path = allocPath();
        if (path == nullptr) {
            UIL_ERR("malloc for path info fail");
            return MPI_RET_NO_MEMORY;
        }
        if (read(pathId, path) != MPI_RET_SUCCESS) {
            std::free(path);
            continue;
        }
        MPI_ListAddTail(&path->links, head);
    }
    freeOnFailure.dismiss();
    return MPI_ListEmpty(head) ? MPI_RET_NOT_FOUND : MPI_RET_SUCCESS;
}

}  // namespace

uint32_t UIL_EnumeratePathStart(uint32_t diskId, MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    MPI_ListInit(head);
    UilIdList* ids = nullptr;
    uint32_t ret = UIL_EnumeratePathIdsStart(diskId, &ids);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate path ids of disk {%u} fail. ret {%u}", diskId, ret);
        return ret;
    }
    MPI_Ended<UIL_EnumeratePathIdsEnd> owner(ids);
    return fillPathList(*ids, head, [diskId](uint32_t pathId, UilPathInfo* path) {
        return UIL_GetPathInfo(diskId, pathId, path);
    });
}

void UIL_EnumeratePathEnd(MPI_ListNode* head) { UIL_PathListFree(head); }

uint32_t INTF_UIL_EnumeratePhyPathStart(uint32_t arrayId, MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    MPI_ListInit(head);
    UilIdList* ids = nullptr;
    uint32_t ret = UIL_EnumeratePhyPathIdsStart(arrayId, &ids);
    if (ret == MPI_RET_NO_MEMORY) {
        return ret;
    }
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate physical path ids of array {%u} fail. ret {%u}", arrayId, ret);
        return UIL_RET_NO_PATH;
    }
    MPI_Ended<UIL_EnumeratePhyPathIdsEnd> owner(ids);
    return fillPathList(*ids, head, INTF_UIL_GetPhyPathInfo);
}

void INTF_UIL_EnumeratePhyPathEnd(MPI_ListNode* head) { UIL_PathListFree(head); }

uint32_t UIL_GetLogicalLunForPhyPath(UilPathInfo* phyPath)
{
    UIL_ASSERT(phyPath != nullptr);
    phyPath->workingLunCount = phyPath->busyLunCount = phyPath->readLunCount = phyPath->flaggedLunCount = 0;
    UilIdList* disks = nullptr;
    uint32_t ret = UIL_EnumeratePhyPathDiskIdsStart(phyPath->pathId, &disks);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate vlun ids fail");
        return ret;
    }
    MPI_Ended<UIL_EnumeratePhyPathDiskIdsEnd> owner(disks);
    phyPath->lunCount = disks->count;
    UilPathInfo logicalPath;
    for (uint32_t diskId : disks->view()) {
        std::memset(static_cast<void*>(&logicalPath), 0, sizeof(logicalPath));
        if (UIL_GetPathInfo(diskId, phyPath->pathId, &logicalPath) != MPI_RET_SUCCESS) {
            UIL_ERR("Get path info fail, disk id {%u}, path id {%u}", diskId, phyPath->pathId);
            continue;
        }
        ++phyPath->readLunCount;
        UIL_ModifyNumforPathStatus(&phyPath->workingLunCount, &phyPath->busyLunCount, &logicalPath);
        if ((logicalPath.pathFlags & UIL_PATH_FLAG_COUNTED) != 0) {
            ++phyPath->flaggedLunCount;
        }
    }
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// HBAs.

uint32_t INTF_UIL_GetAllHbaIds(uint32_t* ids, uint32_t capacity, uint32_t* count)
{
    UIL_ASSERT(ids != nullptr && count != nullptr);
    *count = 0;
    UilIdList* list = nullptr;
    uint32_t ret = UIL_EnumerateIds(uil_wire::kHbaIds, 0, &list);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query hba ids by ioctl fail");
        return MPI_RET_FAIL;
    }
    MPI_Ended<UIL_IdListFree> owner(list);
    if (list->count == 0) {
        UIL_ERR("There is No Hba in the HBA list");
        return MPI_RET_FAIL;
    }
    uint32_t n = UIL_ClampCount(list->count, capacity, "hba ids for the caller");
    std::copy_n(list->ids, n, ids);
    *count = n;
    return MPI_RET_SUCCESS;
}

namespace {

uint32_t queryHba(const UiaRequest& req, UiaPayload& payload, UilHbaInfo* out)
{
    uint32_t ret = UIA_Send(req, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query hba info by ioctl fail");
        // The driver leaves its own code in the record's result word.
        uint32_t code = payload.u32(hba::kResult);
        return code == MPI_RET_SUCCESS ? ret : code;
    }
    UIL_TransHbaInfo(payload, out);
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t INTF_UIL_GetHbaInfoByWwn(UilHbaInfo* out)
{
    UIL_ASSERT(out != nullptr);
    UiaPayload payload(uia_req::GetHbaInfoByWwn.size);
    payload.setU32(hba::kResult, MPI_RET_FAIL);
    // The caller's text may fill its buffer: never read past it.
    char wwn[hba::kWwnField.len] = {};
    (void)memcpy_s(wwn, sizeof(wwn), out->wwn, strnlen(out->wwn, std::min(sizeof(out->wwn), hba::kWwn.len)));
    payload.setText(hba::kWwnField, wwn);
    return queryHba(uia_req::GetHbaInfoByWwn, payload, out);
}

uint32_t INTF_UIL_GetHbaInfoById(UilHbaInfo* out)
{
    UIL_ASSERT(out != nullptr);
    UiaPayload payload(uia_req::GetHbaInfoById.size);
    payload.setU32(hba::kResult, MPI_RET_FAIL);
    payload.setU32(hba::kId, out->hbaId);
    return queryHba(uia_req::GetHbaInfoById, payload, out);
}

uint32_t INTF_UIL_GetPhyPathIdsByHbaId(uint32_t hbaId, UilIdList** out)
{
    return UIL_EnumerateIds(uil_wire::kHbaPathIds, hbaId, out);
}
void INTF_UIL_GetPhyPathIdsByHbaIdEnd(UilIdList* list) { UIL_IdListFree(list); }
