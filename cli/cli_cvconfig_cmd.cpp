// `show cvconfig` and `clear cvconfig`: the effective configuration of the
// host, of one array or of one VLUN, and the removal of an array's or a
// VLUN's own section.
#include <cinttypes>
#include <cstdio>
#include <string>

#include "cli/cli.h"
#include "cli/cli_arrayctl.h"
#include "cli/cli_command.h"
#include "cli/cli_objects.h"
#include "cli/cli_operlog.h"
#include "cli/cli_print.h"
#include "cli/cli_token.h"
#include "mpi/mpi_scope.h"
#include "mpi/mpi_usr.h"
#include "uil/uil_aglun.h"
#include "uil/uil_array.h"
#include "uil/uil_cfg.h"
#include "uil/uil_convert.h"
#include "uil/uil_oper.h"
#include "uil/uil_setcfg.h"
#include "uil/uil_vlun.h"

namespace {

constexpr uint32_t kWidth = 55;
constexpr uint32_t kSectorBytes = 512;
constexpr const char kShowUsage[] = "Error: Invalid input!\nUsage:\n    -- show cvconfig [array_id=ID|vlun_id=ID]\n";
constexpr const char kClearUsage[] = "Error: Invalid input!\nUsage:\n    -- clear cvconfig array_id=ID|vlun_id=ID\n";

void printTitle()
{
    MPCLI_PrintDoubleDash(kWidth);
    MPCLI_PrintCentred("Corvane Configuration", kWidth);
    MPCLI_Print("\n");
    MPCLI_PrintDoubleDash(kWidth);
}

const char* dsModeText(uint32_t mode)
{
    return mode != 0 ? "read write within primary array" : "read write between both arrays";
}

// Bytes in the largest unit that divides them exactly: "128MB", "512B".
std::string byteText(uint64_t bytes)
{
    static constexpr const char* kUnits[] = {"B", "KB", "MB", "GB", "TB"};
    size_t unit = 0;
    while (unit + 1 < std::size(kUnits) && bytes != 0 && bytes % 1024 == 0) {
        bytes /= 1024;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof(text), "%" PRIu64 "%s", bytes, kUnits[unit]);
    return text;
}

std::string splitSizeText(const UilFullCfg& c) { return byteText(uint64_t{c.uiDsSplitSize} * kSectorBytes); }

void printGlobal(const UilFullCfg& c)
{
    printTitle();
    MPCLI_Print("Basic Configuration\n");
    MPCLI_Print("    Working Mode : %s\n", MPCLI_WorkingModeText(c.ucLbAcrossCtrl));
    MPCLI_Print("    LoadBalance Mode : %s\n", UIL_LbPolicyDescription(c.szLbPolicy));
    MPCLI_Print("    Loadbanlance io threshold : %u\n", c.uiLbIoThreshold);
    MPCLI_Print("    LUN Trespass : %s\n", UIL_ConvertBoolToStr(c.ucLunTrespass));
    MPCLI_Print("\nAdvanced Configuration\n");
    MPCLI_Print("    Io Retry Times : %u\n", c.uiIoRetry);
    MPCLI_Print("    Io Retry Delay : %u\n", c.uiIoRetryDelay);
    MPCLI_Print("    Faulty path check interval : %u\n", c.uiFailPathCheckInterval);
    MPCLI_Print("    Idle path check interval : %u\n", c.uiIdlePathCheckInterval);
    MPCLI_Print("    Failback Delay Time : %u\n", c.uiFailbackDelay);
    MPCLI_Print("    Io Suspension Time : %u\n", c.uiIoSuspensionTime);
    MPCLI_Print("    Max io retry timeout : %u\n", c.uiIoTimeout);
    MPCLI_Print("    Performance Record : %s\n", c.uiPerformanceRecord == 1 ? "on" : "off");
    MPCLI_Print("\nPath reliability configuration\n");
    const struct {
        const char* label;
        uint32_t value;
    } reliability[] = {
        {"Timeout degraded statistical time", c.uiTodTime},
        {"Timeout degraded threshold", c.uiTodThreshold},
        {"Timeout degraded path recovery time", c.uiTodRecoverTime},
        {"Intermittent IO error degraded statistical time", c.uiIedTime},
        {"Min. I/Os for intermittent IO error degraded statistical", c.uiIedMinIo},
        {"Intermittent IO error degraded threshold", c.uiIedThreshold},
        {"Intermittent IO error degraded path recovery time", c.uiIedRecoverTime},
        {"Intermittent fault degraded statistical time", c.uiIfdTime},
        {"Intermittent fault degraded threshold", c.uiIfdThreshold},
        {"Intermittent fault degraded path recovery time", c.uiIfdRecoverTime},
        {"High latency degraded statistical time", c.uiHldTime},
        {"High latency degraded threshold", c.uiHldThreshold},
        {"High latency degraded path recovery time", c.uiHldRecoverTime},
        {"Sensitive delayed degraded threshold", c.uiSddThreshold},
        {"Sensitive delayed degraded recovery time", c.uiSddRecoverTime},
    };
    for (const auto& line : reliability) {
        MPCLI_Print("    %s : %u\n", line.label, line.value);
    }
    MPCLI_Print("\nDualsite configuration\n");
    MPCLI_Print("    Dualsite Primary Array SN : %s\n", c.szDsPrimary);
    MPCLI_Print("    Dualsite WorkingMode : %s\n", dsModeText(c.uiDsMode));
    MPCLI_Print("    Dualsite Split Size : %s\n", splitSizeText(c).c_str());
}

void printForObject(const UilFullCfg& c)
{
    printTitle();
    MPCLI_Print("Working Mode : %s\n", MPCLI_WorkingModeText(c.ucLbAcrossCtrl));
    MPCLI_Print("LoadBalance Mode : %s\n", UIL_LbPolicyDescription(c.szLbPolicy));
    MPCLI_Print("Loadbanlance io threshold : %u\n", c.uiLbIoThreshold);
    MPCLI_Print("LUN Trespass : %s\n", UIL_ConvertBoolToStr(c.ucLunTrespass));
    MPCLI_Print("Io Suspension Time : %u\n", c.uiIoSuspensionTime);
    MPCLI_Print("Max io retry timeout : %u\n", c.uiIoTimeout);
    if (c.uiDsSplitSize != 0) {
        MPCLI_Print("Dualsite Primary Array SN : %s\n", c.szDsPrimary);
        MPCLI_Print("Dualsite WorkingMode : %s\n", dsModeText(c.uiDsMode));
        MPCLI_Print("Dualsite Split Size : %s\n", splitSizeText(c).c_str());
    }
}

uint8_t configFailed(uint32_t ret)
{
    UIL_ERR("Get full config failed. ret {%u}", ret);
    MPCLI_PrintfInternalErrorInfo(ret);
    return MPCLI_RESULT_FAIL;
}

uint8_t showArray(uint32_t arrayId)
{
    ArrayInfo array;
    const uint32_t ret = INTF_UIL_GetArrayInfoStart(arrayId, &array);
    const MPI_Ended<INTF_UIL_GetArrayInfoEnd> owner(&array);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", arrayId);
        return MPCLI_RESULT_FAIL;
    }
    UilFullCfg config{};
    const uint32_t cfgRet = INTF_UIL_GetFullConfig("", array.sn, &config);
    if (cfgRet != MPI_RET_SUCCESS) {
        return configFailed(cfgRet);
    }
    printForObject(config);
    return MPCLI_RESULT_OK;
}

// The VLUN's own WWN with the serial number of its array, so that what the
// array holds shows through where the VLUN holds nothing of its own.
uint8_t showVlun(uint32_t vlunId)
{
    VLunInfo vlun;
    const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&vlun);
    if (INTF_UIL_GetVLunInfoStart(vlunId, &vlun) != MPI_RET_SUCCESS) {
        MPCLI_Print("The VLUN whose ID is %u does not exist.\n", vlunId);
        return MPCLI_RESULT_FAIL;
    }
    UilFullCfg config{};
    const uint32_t cfgRet = INTF_UIL_GetFullConfig(vlun.lunWwn, vlun.arraySn, &config);
    if (cfgRet != MPI_RET_SUCCESS) {
        return configFailed(cfgRet);
    }
    if (vlun.type == UIL_VLUN_TYPE_DUALSITE) {
        UilDsInfo ds{};
        const uint32_t dsRet = INTF_UIL_GetDSInfoStart(vlunId, &ds);
        if (dsRet != MPI_RET_SUCCESS) {
            return configFailed(dsRet);
        }
        std::snprintf(config.szDsPrimary, sizeof(config.szDsPrimary), "%s", ds.primarySn);
    }
    printForObject(config);
    return MPCLI_RESULT_OK;
}

uint8_t clearArray(const MPCLI_Command& command, uint32_t arrayId)
{
    ArrayInfo array;
    const uint32_t ret = INTF_UIL_GetArrayInfoStart(arrayId, &array);
    MPI_Ended<INTF_UIL_GetArrayInfoEnd> owner(&array);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", arrayId);
        return MPCLI_RESULT_FAIL;
    }
    UilOperLogPara record{};
    const uint32_t delRet = INTF_UIL_DelArrayConfig("CLI", arrayId, array.sn, nullptr, &record);
    owner.reset();
    const uint8_t result = delRet == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in executing the command.\n");
    } else {
        MPCLI_Print("Clear config information for array id %u failed.\n", arrayId);
    }
    MPCLI_OperLog("clear", command, UIL_OPER_CLEAR_CONFIG, result, &record);
    return result;
}

uint8_t clearVlun(const MPCLI_Command& command, uint32_t vlunId)
{
    VLunInfo vlun;
    const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&vlun);
    if (INTF_UIL_GetVLunInfoStart(vlunId, &vlun) != MPI_RET_SUCCESS) {
        MPCLI_Print("The VLUN whose ID is %u does not exist.\n", vlunId);
        return MPCLI_RESULT_FAIL;
    }
    UilOperLogPara record{};
    const uint32_t delRet = INTF_UIL_DelLunConfig("CLI", vlunId, vlun.lunWwn, nullptr, &record);
    const uint8_t result = delRet == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in executing the command.\n");
    } else {
        MPCLI_Print("Clear config information for vlun id %u failed.\n", vlunId);
    }
    MPCLI_OperLog("clear", command, UIL_OPER_CLEAR_CONFIG, result, &record);
    return result;
}

}  // namespace

bool MPCLI_GetObjectIdentify(const MPCLI_Word& word, MPCLI_ObjectId* out)
{
    uint32_t type = 0;
    if (word.key == UIL_KEY_ARRAY) {
        out->isArray = true;
        type = MPCLI_ID_ARRAY;
    } else if (word.key == UIL_KEY_VLUN) {
        out->isArray = false;
        type = MPCLI_ID_VLUN;
    } else {
        return false;
    }
    return word.hasValue() && MPCLI_ReadNum(word.value, &out->id) &&
           MPCLI_ValueCheckByType(static_cast<int32_t>(out->id), type) == 1;
}

uint8_t MPCLI_ShowArrayCvConfig(uint32_t arrayId) { return showArray(arrayId); }

uint8_t MPCLI_ShowVlunCvConfig(uint32_t vlunId) { return showVlun(vlunId); }

uint8_t MPCLI_ShowCvConfig(const MPCLI_Command& command)
{
    if (command.size() > 2) {
        MPCLI_Print("%s", kShowUsage);
        return MPCLI_RESULT_FAIL;
    }
    if (command.size() == 2) {
        MPCLI_ObjectId object{};
        if (!MPCLI_GetObjectIdentify(command[1], &object)) {
            MPCLI_Print("%s", kShowUsage);
            return MPCLI_RESULT_FAIL;
        }
        return object.isArray ? MPCLI_ShowArrayCvConfig(object.id) : MPCLI_ShowVlunCvConfig(object.id);
    }
    UilFullCfg config{};
    const uint32_t ret = INTF_UIL_GetFullConfig("", nullptr, &config);
    if (ret != MPI_RET_SUCCESS) {
        return configFailed(ret);
    }
    printGlobal(config);
    return MPCLI_RESULT_OK;
}

uint8_t MPCLI_ClearArrayCvconfig(const MPCLI_Command& command, uint32_t arrayId)
{
    return clearArray(command, arrayId);
}

uint8_t MPCLI_ClearVlunCvconfig(const MPCLI_Command& command, uint32_t vlunId)
{
    return clearVlun(command, vlunId);
}

uint8_t MPCLI_ClearCvconfig(const MPCLI_Command& command)
{
    MPCLI_ObjectId object{};
    if (command.size() != 2 || !MPCLI_GetObjectIdentify(command[1], &object)) {
        MPCLI_Print("%s", kClearUsage);
        return MPCLI_RESULT_FAIL;
    }
    return object.isArray ? MPCLI_ClearArrayCvconfig(command, object.id)
                          : MPCLI_ClearVlunCvconfig(command, object.id);
}
