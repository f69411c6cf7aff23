#include "uil/uil_arrayset.h"

#include <cstdarg>
#include <cstring>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uia/uia.h"
#include "uil/uil_arrays_int.h"
#include "uil/uil_commonset.h"
#include "uil/uil_tpg.h"
#include "uil/uil_wire_arrayset.h"

namespace w = uil_wire_arrayset;

namespace {

constexpr uint32_t kMaxTpgId = 15;

// One sub-command with one u32 field.
uint32_t sendU32(uint32_t sub, size_t offset, uint32_t value)
{
    UiaPayload payload = UIL_CommonSetPayload(sub);
    payload.setU32(offset, value);
    return UIL_CommonSetSend(payload, nullptr);
}

}  // namespace

void UIL_FillOperRecord(UilOperLogPara* record, uint32_t type, uint32_t id, const char* format, ...)
{
    UIL_ASSERT(record != nullptr && format != nullptr);
    (void)memset_s(record, sizeof(*record), 0, sizeof(*record));
    record->uiObjType = type;
    record->uiObjId = id;
    va_list args;
    va_start(args, format);
    (void)vsnprintf_s(record->szValue, sizeof(record->szValue), sizeof(record->szValue) - 1, format, args);
    va_end(args);
}

uint32_t INTF_UIL_SetLunTresPassDelayTime(const char* source, uint32_t seconds)
{
    UIL_ASSERT(source != nullptr);
    uint32_t ret = sendU32(w::kSubTrespassDelay, w::kTrespassDelay, seconds);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set lun trespass delay time {%u} failed, ret {%u}", seconds, ret);
    }
    return ret;
}

uint32_t INTF_UIL_SetBusyDelayTime(uint32_t seconds)
{
    uint32_t ret = sendU32(w::kSubBusyDelay, w::kBusyDelay, seconds);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set busy delay time {%u} failed, ret {%u}", seconds, ret);
    }
    return ret;
}

uint32_t INTF_UIL_SetArrayCapability(uint32_t arrayId, uint32_t capability)
{
    UiaPayload payload = UIL_CommonSetPayload(w::kSubArrayCapability);
    payload.setU32(w::kCapabilityArray, arrayId);
    payload.setU32(w::kCapabilityValue, capability);
    uint32_t ret = UIL_CommonSetSend(payload, nullptr);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set capability {0x%x} of array {%u} failed, ret {%u}", capability, arrayId, ret);
    }
    return ret;
}

uint32_t INTF_UIL_SetPotentialSwitch(bool on)
{
    UiaPayload payload = UIL_CommonSetPayload(w::kSubPotentialSwitch);
    payload.setU8(w::kPotentialSwitch, on ? 1 : 0);
    uint32_t ret = UIL_CommonSetSend(payload, nullptr);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set potential fault switch {%u} failed, ret {%u}", on ? 1u : 0u, ret);
    }
    return ret;
}

uint32_t INTF_UIL_SetTpgState(const char* source, uint32_t arrayId, uint32_t tpgId, bool enable,
                              UilOperLogPara* record)
{
    UIL_ASSERT(source != nullptr && record != nullptr);
    // The log names the controller as the operator knows it.
    char name[UIL_CONTROLLER_NAME_SIZE] = "";
    if (tpgId > kMaxTpgId || INTF_UIL_GetTpgName(arrayId, tpgId, name, sizeof(name)) != MPI_RET_SUCCESS ||
        name[0] == '\0') {
        (void)snprintf_s(name, sizeof(name), sizeof(name) - 1, "%u", tpgId);
    }
    UIL_FillOperRecord(record, MPI_OBJ_ARRAY, arrayId, "%u,%s", enable ? 1u : 0u, name);
    if (tpgId > kMaxTpgId) {
        UIL_ERR("Tpg id {%u} of array {%u} is out of range", tpgId, arrayId);
        return MPI_RET_INVALID_PARAM;
    }
    UiaPayload payload = UIL_CommonSetPayload(w::kSubTpgState);
    payload.setU32(w::kTpgArray, arrayId);
    payload.setU32(w::kTpgId, tpgId);
    payload.setU32(w::kTpgEnable, enable ? 1 : 0);
    uint32_t ret = UIL_CommonSetSend(payload, nullptr);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("%s tpg {%s} of array {%u} failed, ret {%u}", enable ? "Enable" : "Disable", name, arrayId, ret);
    }
    return ret;
}

uint32_t INTF_UIL_StartRebalancelun(const char* source, const char* key, const char* value,
                                    UilOperLogPara* record)
{
    UIL_ASSERT(source != nullptr);
    uint32_t scope = MPI_OBJ_COMMON;
    uint32_t id = 0;
    if (key != nullptr && key[0] != '\0') {
        if (std::strcmp(key, "array_id") == 0) {
            scope = MPI_OBJ_ARRAY;
        } else if (std::strcmp(key, "vlun_id") == 0) {
            scope = MPI_OBJ_LUN;
        } else {
            UIL_ERR("Rebalance key {%s} is invalid", key);
            return MPI_RET_INVALID_PARAM;
        }
        if (value == nullptr || !MPI_ToU32(value, &id)) {
            UIL_ERR("Rebalance %s {%s} is not an id", key, value != nullptr ? value : "");
            return MPI_RET_INVALID_PARAM;
        }
    }
    if (record != nullptr && scope == MPI_OBJ_COMMON) {
        UIL_FillOperRecord(record, scope, id, "all");
    } else if (record != nullptr) {
        UIL_FillOperRecord(record, scope, id, "%s=%u", key, id);
    }
    UiaPayload payload(w::kRebalanceSize);
    payload.setU32(w::kRebalanceScope, scope);
    payload.setU32(w::kRebalanceId, id);
    uint32_t ret = UIA_Send(uia_req::StartRebalanceLun, payload);
    if (ret == MPI_RET_SUCCESS) {
        return ret;
    }
    // The driver names a missing array or VLUN in its status word.
    uint32_t status = payload.u32(w::kRebalanceStatus);
    if (status == MPI_RET_ARRAY_NOT_EXIST || status == MPI_RET_VLUN_NOT_EXIST) {
        ret = status;
    }
    UIL_ERR("IOCTL start lun trespass fail. ret is {%d}", static_cast<int>(ret));
    return ret;
}

uint32_t INTF_UIL_CtrlIOSus(const char* source, uint32_t vlunId, uint32_t milliseconds)
{
    UIL_ASSERT(source != nullptr);
    UiaPayload payload(w::kIoSusSize);
    payload.setU32(w::kIoSusVlun, vlunId);
    payload.setU32(w::kIoSusTimeMs, milliseconds);
    if (UIA_Send(uia_req::CtrlIoSuspension, payload) != MPI_RET_SUCCESS) {
        UIL_ERR("Querry vlun info by ioctl fail, vlun id {%d}", static_cast<int>(vlunId));
        return 1;
    }
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_TurnOffIoSuspension(uint32_t diskId)
{
    UIL_TRACE(MPI_LOG_INFO, "Turnoff IO suspension: disk ID is %u", diskId);
    UiaPayload payload(w::kTurnOffSize);
    payload.setU32(w::kTurnOffDisk, diskId);
    uint32_t ret = UIA_Send(uia_req::TurnOffIoSuspension, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Turnoff IO suspension time for ID{%u} failed", diskId);
    }
    return ret;
}

uint32_t INTF_UIL_GetDriverPerfRecordInfo(UilDriverPerfRecord* out)
{
    if (out == nullptr) {
        UIL_TRACE_NULL("out");
        return MPI_RET_INVALID_PARAM;
    }
    *out = {};
    UiaPayload payload(w::kPerfSize);
    uint32_t ret = UIA_Send(uia_req::GetDriverPerfRecord, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get performance record info from driver failed, ret {%u}", ret);
        return ret;
    }
    out->enabled = payload.u32(w::kPerfEnabled);
    out->durationHours = payload.u32(w::kPerfDuration);
    out->startSeconds = payload.u32(w::kPerfStart);
    return MPI_RET_SUCCESS;
}
