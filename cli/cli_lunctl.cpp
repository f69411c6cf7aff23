// Actions on arrays, VLUNs and controllers: rebalance of LUNs, the manual
// I/O suspension of a VLUN, a controller's state and the remote
// controllers of an XVA array.
#include <string>
#include <string_view>

#include "cli/cli.h"
#include "cli/cli_arrayctl.h"
#include "cli/cli_command.h"
#include "cli/cli_helptext.h"
#include "cli/cli_operlog.h"
#include "cli/cli_token.h"
#include "mpi/mpi_scope.h"
#include "mpi/mpi_usr.h"
#include "uil/uil_array.h"
#include "uil/uil_arrayset.h"
#include "uil/uil_ids.h"
#include "uil/uil_oper.h"
#include "uil/uil_setcfg.h"
#include "uil/uil_tpg.h"
#include "uil/uil_vlun.h"
#include "uil/uil_xva.h"

namespace {

constexpr const char kSource[] = "CLI";
constexpr const char kSucceeded[] = "Succeeded in executing the command.\n";
constexpr uint32_t kInvalidTpg = 255;
constexpr uint32_t kMaxTpgArrayId = 256;  // array IDs of `set tpgstate` stay below this
constexpr uint32_t kMaxSuspendSeconds = 2592000;
constexpr uint32_t kMsPerSecond = 1000;
constexpr uint32_t kEngineNaming = 1u << 24;

uint8_t resultOf(uint32_t ret) { return ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL; }

// One ID of the given type, typed as the whole value of `word`.
bool readOneId(const MPCLI_Word& word, std::string_view key, uint32_t type, uint32_t* id)
{
    return word.key == key && word.hasValue() && MPCLI_ReadNum(word.value, id) &&
           MPCLI_ValueCheckByType(static_cast<int32_t>(*id), type) == 1;
}

bool vlunExists(uint32_t vlunId)
{
    VLunInfo vlun;
    const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&vlun);
    return INTF_UIL_GetVLunInfoStart(vlunId, &vlun) == MPI_RET_SUCCESS;
}

bool tpgOfArray(uint32_t arrayId, uint32_t tpgId)
{
    UilIdList* ids = nullptr;
    const uint32_t ret = UIL_EnumerateTpgIdsStart(arrayId, &ids);
    const MPI_Ended<UIL_EnumerateTpgIdsEnd> owner(ids);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate Tpg's Ids fail");
        return false;
    }
    return ids->contains(tpgId);
}

// ---------------------------------------------------------------------------
// Manual I/O suspension.

uint8_t suspendUsage(const char* first, const char* help)
{
    MPCLI_Print("Error: Invalid input!\n Usage:\n        %s\n%s", first, help);
    return MPCLI_RESULT_FAIL;
}

uint8_t ctrlSuspension(const MPCLI_Command& command, uint32_t vlunId, uint32_t seconds)
{
    if (!vlunExists(vlunId)) {
        MPCLI_Print("The VLUN whose ID is %u does not exist.\n", vlunId);
        return MPCLI_RESULT_FAIL;
    }
    // The start line names the time and the VLUN, the stop line only the
    // VLUN: its one parameter is the record's value.
    const std::string id = std::to_string(vlunId);
    UilOperLogPara record{};
    UIL_TransOperLogPara(UIL_KEY_VLUN, id.c_str(), seconds != 0 ? std::to_string(seconds).c_str() : id.c_str(), &record);
    const uint32_t ret = INTF_UIL_CtrlIOSus(kSource, vlunId, seconds * kMsPerSecond);
    const uint8_t result = resultOf(ret);
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("%s", kSucceeded);
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    // A failed start whose time was 0 is logged as a stop: the event follows
    // the time sent, not the verb typed.
    const uint32_t eventId = seconds != 0 ? UIL_OPER_START_IOSUSPENSION : UIL_OPER_STOP_IOSUSPENSION;
    MPCLI_OperLog(seconds != 0 ? "start" : "stop", command, eventId, result, &record);
    return result;
}

// ---------------------------------------------------------------------------
// Controller state.

struct TpgChoice {
    uint32_t id = 0;
    std::string shown;  // the controller as the operator named it
};

// The TPG that `value` names on the array: an engine-and-letter name on an
// array named that way, a number, or one of the array's own TPG names.
// Prints the reason and returns false when it names none.
bool MPCLI_TransferTpgId(const ArrayInfo& array, std::string_view value, TpgChoice* out)
{
    const std::string text(value);
    out->shown = text;
    const uint32_t engineId = MPCLI_TpgNameStr2TpgId(text.c_str());
    const bool engineNamed = (array.capability & kEngineNaming) != 0 && engineId != kInvalidTpg;
    const bool numeric = !engineNamed && (value.size() == 1 || (value.size() == 2 && array.flag442 <= 2));
    if (numeric || value.find(',') != std::string_view::npos) {
        if (value.find(',') != std::string_view::npos) {
            MPCLI_Print("Error: You can't input more than %u ids\n", 1u);
            return false;
        }
        if (!MPCLI_ReadNum(value, &out->id)) {
            MPCLI_Print("Error: Invalid input --- %s!\n", text.c_str());
            return false;
        }
        if (!tpgOfArray(array.arrayId, out->id)) {
            MPCLI_Print("The controller whose ID is %u does not exist.\n", out->id);
            return false;
        }
        return true;
    }
    uint8_t found = 0;
    if (INTF_UIL_CheckTpgNameIfExist(array.arrayId, text.c_str(), &found, &out->id) != MPI_RET_SUCCESS) {
        MPCLI_Print("Failed to query the tpg name for disk array whose ID is %u.\n", array.arrayId);
        return false;
    }
    if (found == 0 && engineNamed) {
        out->id = engineId;
        found = 1;
    }
    if (found == 0 || !tpgOfArray(array.arrayId, out->id)) {
        MPCLI_Print("The controller whose ID is %s does not exist.\n", text.c_str());
        return false;
    }
    return true;
}

uint8_t tpgUsage()
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n           -- set tpgstate={enable|disable} array_id=<ID> tpg_id=<ID>\n");
    return MPCLI_RESULT_FAIL;
}

void MPCLI_SetTpgStateSuccess(uint32_t ret, bool enable, const TpgChoice& tpg, uint32_t arrayId)
{
    if (ret == MPI_RET_SUCCESS) {
        MPCLI_Print("%s", kSucceeded);
        return;
    }
    MPCLI_Print("%s controller {%s} of array {%u} failed.\n", enable ? "Enable" : "Disable", tpg.shown.c_str(),
                arrayId);
    if (ret == UIL_RET_LAST_CONTROLLER) {
        MPCLI_Print("The target controller of the disabled operation is the last, remaining controller connected to "
                    "the device and therefore, cannot be placed in the disabled status.\n");
    } else if (ret == UIL_RET_HBA_DISABLED) {
        MPCLI_Print("The controller cannot be disabled or enable when there is any hba in disabled status.\n");
    }
}

// ---------------------------------------------------------------------------
// Remote controllers.

constexpr const char kRemoteUsage[] =
    "Error: Invalid input!\nUsage:\n    -- set remote_controller array_id=ID tpg_id=<ID1,ID2,...> [local|remote]\n";
constexpr const char kRemotePrompt[] =
    "The node is set as a remote node. Under this configuration, the Corvane does not first select paths on this "
    "node by default.\nAre you sure you want to continue? [y,n]: ";

struct RemoteRequest {
    uint32_t arrayId = 0;
    uint32_t tpgIds[MPCLI_MAX_IDS] = {};
    uint32_t count = 0;
    bool remote = true;
};

bool MPCLI_SetRemoteController_GetID(const MPCLI_Command& command, RemoteRequest* out)
{
    if (!readOneId(command[1], UIL_KEY_ARRAY, MPCLI_ID_ARRAY, &out->arrayId) || command[2].key != "tpg_id" ||
        !command[2].hasValue()) {
        return false;
    }
    const std::string list(command[2].value);
    if (MPCLI_StringSplit(list.c_str(), ",", out->tpgIds, MPCLI_MAX_IDS, &out->count) != 1 || out->count == 0) {
        return false;
    }
    for (uint32_t i = 0; i < out->count; ++i) {
        if (MPCLI_ValueCheckByType(static_cast<int32_t>(out->tpgIds[i]), MPCLI_ID_TPG) == 0) {
            return false;
        }
    }
    if (command.size() == 4) {
        if (command[3].is("local")) {
            out->remote = false;
        } else if (!command[3].is("remote")) {
            return false;
        }
    }
    return true;
}

bool MPCLI_CheckCanSetRemote(const RemoteRequest& request)
{
    ArrayInfo array;
    const uint32_t ret = INTF_UIL_GetArrayInfoStart(request.arrayId, &array);
    const MPI_Ended<INTF_UIL_GetArrayInfoEnd> owner(&array);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", request.arrayId);
        return false;
    }
    if (!UIL_IsXvaProduct(array.product)) {
        MPCLI_Print("The disk array whose ID is %u is not XVA, you can't excute the operation.\n", request.arrayId);
        return false;
    }
    for (uint32_t i = 0; i < request.count; ++i) {
        if (!tpgOfArray(request.arrayId, request.tpgIds[i])) {
            MPCLI_Print("The array tpg whose ID is %u does not exist.\n", request.tpgIds[i]);
            return false;
        }
    }
    return true;
}

}  // namespace

uint32_t MPCLI_TpgNameStr2TpgId(const char* name)
{
    if (name[0] < '0' || name[0] > '9' || (name[1] != 'A' && name[1] != 'B') || name[2] != '\0') {
        return kInvalidTpg;
    }
    return static_cast<uint32_t>(name[0] - '0') * 2 + static_cast<uint32_t>(name[1] - 'A');
}

uint8_t MPCLI_StartRebalancelun(const MPCLI_Command& command)
{
    MPCLI_ObjectId object{};
    if (command.size() > 2 || (command.size() == 2 && !MPCLI_GetObjectIdentify(command[1], &object))) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n    -- start rebalancelun [array_id=ID|vlun_id=ID]\n");
        return MPCLI_RESULT_FAIL;
    }
    const char* key = nullptr;
    const std::string id = std::to_string(object.id);
    if (command.size() == 2) {
        key = object.isArray ? UIL_KEY_ARRAY : UIL_KEY_VLUN;
    }
    UilOperLogPara record{};
    const uint32_t ret = INTF_UIL_StartRebalancelun(kSource, key, key == nullptr ? nullptr : id.c_str(), &record);
    const uint8_t result = resultOf(ret);
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("%s", kSucceeded);
    } else if (ret == MPI_RET_ARRAY_NOT_EXIST || ret == MPI_RET_VLUN_NOT_EXIST) {
        MPCLI_PrintfErrorInfo(ret, id.c_str(), 0);
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    MPCLI_OperLog("start", command, UIL_OPER_REBALANCE_LUN, result, &record);
    return result;
}

uint8_t MPCLI_StartIOSus(const MPCLI_Command& command)
{
    if (command.size() < 3) {
        MPCLI_Print("Error: Need more option\n");
        return MPCLI_RESULT_FAIL;
    }
    uint32_t vlunId = 0;
    uint32_t seconds = 0;
    bool haveVlun = false;
    bool haveTime = false;
    bool wordsOk = command.size() == 3;
    for (const MPCLI_Word& word : command.args()) {
        if (word.key == UIL_KEY_VLUN && !haveVlun) {
            haveVlun = readOneId(word, UIL_KEY_VLUN, MPCLI_ID_VLUN, &vlunId);
            wordsOk = wordsOk && haveVlun;
        } else if (word.key == "timeout" && !haveTime) {
            haveTime = word.hasValue() && MPCLI_ReadNum(word.value, &seconds) && seconds >= 1 &&
                       seconds <= kMaxSuspendSeconds;
            wordsOk = wordsOk && haveTime;
        } else {
            wordsOk = false;
        }
    }
    if (!wordsOk) {
        return suspendUsage("start iosuspension vlun_id=ID timeout=<time>", HELP_START_IOSUSPENSION);
    }
    return ctrlSuspension(command, vlunId, seconds);
}

uint8_t MPCLI_StopIOSus(const MPCLI_Command& command)
{
    if (command.size() < 2) {
        MPCLI_Print("Error: Need more option\n");
        return MPCLI_RESULT_FAIL;
    }
    uint32_t vlunId = 0;
    if (command.size() != 2 || !readOneId(command[1], UIL_KEY_VLUN, MPCLI_ID_VLUN, &vlunId)) {
        return suspendUsage("stop iosuspension vlun_id=ID", HELP_STOP_IOSUSPENSION);
    }
    return ctrlSuspension(command, vlunId, 0);
}

uint8_t MPCLI_SetTpgState(const MPCLI_Command& command)
{
    const bool enable = command[0].value == "enable";
    uint32_t arrayId = 0;
    if (command.size() != 3 || (!enable && command[0].value != "disable") || command[1].key != UIL_KEY_ARRAY ||
        !command[1].hasValue() || !MPCLI_ReadNum(command[1].value, &arrayId) || command[2].key != "tpg_id" ||
        !command[2].hasValue()) {
        return tpgUsage();
    }
    if (arrayId >= kMaxTpgArrayId) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", arrayId);
        return MPCLI_RESULT_FAIL;
    }
    ArrayInfo array;
    const uint32_t arrayRet = INTF_UIL_GetArrayInfoStart(arrayId, &array);
    MPI_Ended<INTF_UIL_GetArrayInfoEnd> owner(&array);
    if (arrayRet != MPI_RET_SUCCESS) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", arrayId);
        return MPCLI_RESULT_FAIL;
    }
    TpgChoice tpg;
    if (!MPCLI_TransferTpgId(array, command[2].value, &tpg)) {
        return MPCLI_RESULT_FAIL;
    }
    owner.reset();
    UilOperLogPara record{};
    const uint32_t ret = INTF_UIL_SetTpgState(kSource, arrayId, tpg.id, enable, &record);
    MPCLI_SetTpgStateSuccess(ret, enable, tpg, arrayId);
    const uint8_t result = resultOf(ret);
    const uint32_t eventId = result == MPCLI_RESULT_OK || enable ? UIL_OPER_CTRL_ENABLE : UIL_OPER_CTRL_DISABLE;
    MPCLI_OperLog("set", command, eventId, result, &record);
    return result;
}

uint8_t MPCLI_SetRemoteController(const MPCLI_Command& command)
{
    if (command.size() < 3) {
        MPCLI_Print("Error: Need more option\n");
        return MPCLI_RESULT_FAIL;
    }
    RemoteRequest request;
    if (command.size() > 4 || !MPCLI_SetRemoteController_GetID(command, &request)) {
        MPCLI_Print("%s", kRemoteUsage);
        return MPCLI_RESULT_FAIL;
    }
    if (!MPCLI_CheckCanSetRemote(request)) {
        return MPCLI_RESULT_FAIL;
    }
    if (request.remote && MPCLI_RiskPrompt(kRemotePrompt) == 0) {
        UIL_TRACE(MPI_LOG_INFO, "User input \"n\" to interrupt the command executing");
        return MPCLI_RESULT_OK;
    }
    UilOperLogPara record{};
    const uint32_t ret =
        INTF_UIL_SetRemoteController(kSource, request.arrayId, request.remote, request.count, request.tpgIds, &record);
    const uint8_t result = resultOf(ret);
    MPCLI_Print("%s", result == MPCLI_RESULT_OK ? kSucceeded : "Failed to set xva controller.\n");
    MPCLI_OperLog("set", command, UIL_OPER_XVA_CONTROLLER, result, &record);
    return result;
}
