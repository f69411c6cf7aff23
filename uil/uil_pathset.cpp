#include "uil/uil_pathset.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "bounded/bounded.h"
#include "mpi/mpi_scope.h"
#include "mpi/mpi_usr.h"
#include "uia/uia.h"
#include "uil/uil_array.h"
#include "uil/uil_commonset.h"
#include "uil/uil_oper.h"
#include "uil/uil_tpg.h"
#include "uil/uil_wire_pathset.h"

namespace w = uil_wire_pathset;

void UIL_PathOperRecord(uint32_t pathId, const char* value, UilOperLogPara* record)
{
    UIL_ASSERT(value != nullptr);
    UIL_ASSERT(record != nullptr);
    *record = UilOperLogPara{};
    record->uiObjType = MPI_OBJ_PATH;
    record->uiObjId = pathId;
    (void)strncpy_s(record->szValue, sizeof(record->szValue), value, sizeof(record->szValue) - 1);
}

void UIL_PathOperRecordId(uint32_t pathId, UilOperLogPara* record)
{
    char id[16];
    UIL_UintTypeConvertToStr(pathId, id, sizeof(id));
    UIL_PathOperRecord(pathId, id, record);
}

namespace {

// Sends a path sub-command; the trace names the path so that a refusal in
// the log can be tied to the command that caused it.
uint32_t sendPathSub(const char* what, uint32_t pathId, UiaPayload& payload, uint32_t* resultWord = nullptr)
{
    const uint32_t ret = UIL_CommonSetSend(payload, resultWord);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("%s of path {%u} failed, ret {%u}", what, pathId, ret);
    }
    return ret;
}

using PathPtr = std::unique_ptr<UilPathInfo, void (*)(void*)>;

// One physical path record, read into a record of its own; `ret` gets the
// answer (the record is null unless it is 1024).
PathPtr readPhyPath(uint32_t pathId, uint32_t* ret)
{
    PathPtr path(static_cast<UilPathInfo*>(UIL_ZMalloc(sizeof(UilPathInfo))), std::free);
    *ret = path == nullptr ? MPI_RET_NO_MEMORY : INTF_UIL_GetPhyPathInfo(pathId, path.get());
    if (*ret != MPI_RET_SUCCESS) {
        path.reset();
    }
    return path;
}

// The code of an I/O state word, or UIL_PATH_IO_NONE (traced).
uint32_t ioStateCode(const char* word)
{
    const uint32_t code = UIL_PathSzIostateToUInt(word);
    if (code == UIL_PATH_IO_NONE) {
        UIL_ERR("Invalid path io state {%s}", word);
    }
    return code;
}

}  // namespace

uint32_t INTF_UIL_SetPhyPathState(const char* source, uint32_t pathId, bool enable, UilOperLogPara* record)
{
    UIL_ASSERT(source != nullptr);
    if (record != nullptr) {
        UIL_PathOperRecord(pathId, enable ? "1" : "0", record);
    }
    UiaPayload payload = UIL_CommonSetPayload(w::kSubPhyPathState);
    payload.setU32(w::kPhyPathId, pathId);
    payload.setU32(w::kSwitch, enable ? 1 : 0);
    return sendPathSub(enable ? "Enable" : "Disable", pathId, payload);
}

uint32_t INTF_UIL_SetPhyPathIoState(const char* source, uint32_t pathId, const char* ioStateWord,
                                    UilOperLogPara* record)
{
    UIL_ASSERT(source != nullptr);
    UIL_ASSERT(ioStateWord != nullptr);
    const uint32_t code = ioStateCode(ioStateWord);
    if (code == UIL_PATH_IO_NONE) {
        return MPI_RET_INVALID_PARAM;
    }
    if (record != nullptr) {
        char value[16];
        UIL_UintTypeConvertToStr(code, value, sizeof(value));
        UIL_PathOperRecord(pathId, value, record);
    }
    UiaPayload payload = UIL_CommonSetPayload(w::kSubPhyPathIoState);
    payload.setU32(w::kPhyPathId, pathId);
    payload.setU32(w::kPhyIoState, code);
    return sendPathSub("Set io state", pathId, payload);
}

uint32_t INTF_UIL_SetPathIoState(const char* source, uint32_t diskId, uint32_t pathId, const char* ioStateWord)
{
    UIL_ASSERT(source != nullptr);
    UIL_ASSERT(ioStateWord != nullptr);
    const uint32_t code = ioStateCode(ioStateWord);
    if (code == UIL_PATH_IO_NONE) {
        return MPI_RET_INVALID_PARAM;
    }
    UiaPayload payload = UIL_CommonSetPayload(w::kSubPathIoState);
    payload.setU32(w::kLogicalDiskId, diskId);
    payload.setU32(w::kLogicalPathId, pathId);
    payload.setU32(w::kLogicalIoState, code);
    return sendPathSub("Set logical io state", pathId, payload);
}

uint32_t INTF_UIL_SetPhyPathIoUnknownError(uint32_t pathId, uint32_t error)
{
    UiaPayload payload = UIL_CommonSetPayload(w::kSubPhyPathUnknownError);
    payload.setU32(w::kPhyPathId, pathId);
    payload.setU32(w::kUnknownError, error);
    return sendPathSub("Set unknown error", pathId, payload);
}

uint32_t INTF_UIL_SetSendioDelayTime(uint32_t target, uint32_t delayMs)
{
    UiaPayload payload = UIL_CommonSetPayload(w::kSubSendIoDelayTime);
    payload.setU32(w::kDelayTarget, target);
    payload.setU32(w::kDelayTime, delayMs);
    return sendPathSub("Set send io delay time", target, payload);
}

uint32_t INTF_UIL_SetPathIOLag(uint32_t pathId, uint32_t lagMs, bool on)
{
    UiaPayload payload = UIL_CommonSetPayload(w::kSubPathIoLag);
    payload.setU32(w::kPhyPathId, pathId);
    payload.setU32(w::kLagMs, lagMs);
    payload.setU32(w::kLagSwitch, on ? 1 : 0);
    return sendPathSub("Set io lag", pathId, payload);
}

uint32_t UIL_PathCheckAllBusy(const UilPathInfo& phyPath)
{
    const bool normal = phyPath.pathState != nullptr && std::strcmp(phyPath.pathState, UIL_PATH_STATE_NORMAL) == 0;
    return (normal && phyPath.workingLunCount != 0 && phyPath.workingLunCount == phyPath.busyLunCount) ? 1 : 0;
}

namespace {

uint32_t sendPathCheck(uint32_t pathId)
{
    uint32_t ret = MPI_RET_SUCCESS;
    PathPtr path = readPhyPath(pathId, &ret);
    if (path == nullptr) {
        UIL_ERR("Get phy path info fail, path id {%u}, ret {%u}", pathId, ret);
        return ret;
    }
    // The counts only decide the busy flag: a path whose logical paths
    // cannot be listed is still checked, as one that is not all busy.
    if (UIL_GetLogicalLunForPhyPath(path.get()) != MPI_RET_SUCCESS) {
        path->workingLunCount = path->busyLunCount = 0;
    }
    UiaPayload payload = UIL_CommonSetPayload(w::kSubPhyPathCheck);
    payload.setU32(w::kPhyPathId, pathId);
    payload.setU32(w::kAllBusy, UIL_PathCheckAllBusy(*path));
    return sendPathSub("Start check", pathId, payload);
}

}  // namespace

uint32_t INTF_UIL_StartPhyPathCheck(const char* source, const char* verb, const char* command, uint32_t pathId,
                                    uint32_t* checkState)
{
    UIL_ASSERT(source != nullptr);
    UIL_ASSERT(verb != nullptr);
    UIL_ASSERT(command != nullptr);
    UIL_ASSERT(checkState != nullptr);
    const uint32_t ret = sendPathCheck(pathId);
    *checkState = ret == MPI_RET_SUCCESS ? UIL_PATH_CHECK_SENT : UIL_PATH_CHECK_NOT_SENT;
    UilOperLogPara record;
    UIL_PathOperRecordId(pathId, &record);
    (void)UIL_OperLog(source, verb, command, UIL_OPER_PATH_CHECK, ret == MPI_RET_SUCCESS ? 1 : 0, &record);
    return ret;
}

uint32_t INTF_UIL_ClearObsoletePath(const char* source, uint32_t pathId, UilOperLogPara* record)
{
    UIL_ASSERT(source != nullptr);
    if (record != nullptr) {
        UIL_PathOperRecordId(pathId, record);
    }
    UiaPayload payload = UIL_CommonSetPayload(w::kSubClearObsoletePath);
    payload.setU32(w::kPhyPathId, pathId);
    uint32_t word = 0;
    const uint32_t ret = sendPathSub("Clear obsolete", pathId, payload, &word);
    if (ret == MPI_RET_SUCCESS && word != 0 && word != MPI_RET_SUCCESS) {
        UIL_ERR("Clear obsolete path {%u} refused, result {%u}", pathId, word);
        return word;
    }
    return ret;
}

uint32_t INTF_UIL_ClearPhyPathStatistic(uint32_t pathId, UilOperLogPara* record)
{
    if (record != nullptr) {
        UIL_PathOperRecordId(pathId, record);
    }
    UiaPayload payload(w::kClearStatSize);
    payload.setU32(w::kClearStatPathId, pathId);
    if (UIA_Send(uia_req::ClearPhyPathStatistic, payload) != MPI_RET_SUCCESS) {
        UIL_ERR("Clear physical path statistic by ioctl fail, physical path id {%u}", pathId);
        return UIL_RET_CLEAR_STAT_FAIL;
    }
    return MPI_RET_SUCCESS;
}

UilPathStateCheck UIL_CanSetPhyPathState(uint32_t pathId, bool enable)
{
    UilPathStateCheck check{UIL_PATHSTATE_NO_PATH, 0, 0};
    uint32_t ret = MPI_RET_SUCCESS;
    PathPtr path = readPhyPath(pathId, &ret);
    if (path == nullptr) {
        return check;
    }
    check.arrayId = path->arrayId;
    check.controllerId = path->controllerId;
    if (path->portType == UIL_PORT_ISCSI) {
        check.refusal = UIL_PATHSTATE_ISCSI;
        return check;
    }
    ArrayInfo array;
    ret = INTF_UIL_GetArrayInfoStart(path->arrayId, &array);
    MPI_Ended<INTF_UIL_GetArrayInfoEnd> arrayOwner(&array);  // End is safe after any result
    const bool arrayKnown =
        ret == MPI_RET_SUCCESS || (ret == MPI_RET_NOT_FOUND && enable && path->phyWord32 == 0);
    if (!arrayKnown) {
        check.refusal = UIL_PATHSTATE_NO_ARRAY;
        return check;
    }
    if (!UIL_ArraySupportsPathState(array)) {
        check.refusal = UIL_PATHSTATE_NOT_SUPPORTED;
        return check;
    }
    if (enable) {
        uint32_t state = 0;
        if (INTF_UIL_GetTpgInfo(path->arrayId, path->controllerId, &state) != MPI_RET_SUCCESS) {
            check.refusal = UIL_PATHSTATE_NO_CONTROLLER;
            return check;
        }
        if (state != UIL_TPG_ENABLED) {
            check.refusal = UIL_PATHSTATE_CONTROLLER_DISABLED;
            return check;
        }
    }
    check.refusal = UIL_PATHSTATE_OK;
    return check;
}
