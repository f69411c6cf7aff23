// `set pathstate`, `set phypathnormal`, `start pathcheck`,
// `clear obsolete_path` and `clear path_statistic`: the commands used in the
// middle of an incident. Every argument is checked before anything is sent,
// and a path that cannot be read is never acted on.
#include "cli/cli_pathset.h"

#include <array>
#include <cstring>
#include <string>

#include "cli/cli.h"
#include "cli/cli_command.h"
#include "cli/cli_operlog.h"
#include "cli/cli_token.h"
#include "bounded/bounded.h"
#include "mpi/mpi_scope.h"
#include "mpi/mpi_usr.h"
#include "uil/uil_array.h"
#include "uil/uil_pathset.h"

namespace {

constexpr const char kSource[] = "CLI";
constexpr const char kSet[] = "set";
constexpr const char kClear[] = "clear";
constexpr const char kStart[] = "start";
constexpr const char kPathIdKey[] = "path_id";
constexpr const char kArrayIdKey[] = "array_id";
constexpr const char kSucceeded[] = "Succeeded in executing the command.\n";
constexpr const char kNoPath[] = "The path whose ID is %u does not exist.\n";
constexpr const char kNormalWord[] = "CVIOC_PATH_IO_NORMAL";
constexpr const char kDeclined[] = "User input \"n\" to interrupt the command executing";
// Seven words of at most 63 characters, each with its blank.
constexpr size_t kCommandLen = 7 * 64 + 1;

constexpr const char kPathStateUsage[] = "           -- set pathstate={enable|disable} path_id=<ID>\n";
constexpr const char kNormalUsage[] = "           -- set phypathnormal path_id=<ID>\n";
constexpr const char kCheckUsage[] = "           -- start pathcheck path_id=<ID1,ID2,...>\n";
constexpr const char kObsoleteUsage[] = "           -- clear obsolete_path path_id=<ID>\n";
constexpr const char kStatisticUsage[] =
    "   -- clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]\n";

constexpr const char kCheckPrompt[] =
    "The path check will last about 3 minutes and will consume some bandwidth resources. \n"
    "Are you sure you want to continue? [y,n]: ";
constexpr const char kNormalPrompt[] =
    "Please check whether the fault has been rectified. If the fault persists and you forcibly recover the "
    "path, the performance may be decreased. \nAre you sure you want to continue? [y,n]: ";

uint8_t usage(const char* line)
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n%s", line);
    return MPCLI_RESULT_FAIL;
}

// The ID list of `word` under `key`: 1 to `max` IDs in the range of `type`.
bool readIds(const MPCLI_Word& word, const char* key, uint32_t max, uint32_t type, uint32_t* ids,
             uint32_t* count)
{
    *count = 0;
    return MPCLI_ReadIdList(word, key, ids, max, count, type) == 1 && *count > 0;
}

// `<keyword> path_id=<ID>`: exactly one argument holding one path ID.
bool readOnePath(const MPCLI_Command& command, uint32_t* pathId)
{
    std::array<uint32_t, MPCLI_MAX_IDS> ids{};
    uint32_t count = 0;
    if (command.size() != 2 || !readIds(command[1], kPathIdKey, 1, MPCLI_ID_PATH, ids.data(), &count)) {
        return false;
    }
    *pathId = ids[0];
    return true;
}

uint8_t outcome(bool ok) { return ok ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL; }

// ---------------------------------------------------------------------------
// set pathstate

void printStateRefusal(const UilPathStateCheck& check, uint32_t pathId, bool enable)
{
    switch (check.refusal) {
    case UIL_PATHSTATE_NO_PATH:
        MPCLI_Print(kNoPath, pathId);
        break;
    case UIL_PATHSTATE_ISCSI:
        MPCLI_Print("%s an iSCSI path is not supported.\n", enable ? "Enabling" : "Disabling");
        break;
    case UIL_PATHSTATE_NO_ARRAY:
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", check.arrayId);
        break;
    case UIL_PATHSTATE_NOT_SUPPORTED:
        MPCLI_Print("The disk array of this version does not support this function.\n");
        break;
    case UIL_PATHSTATE_NO_CONTROLLER:
        MPCLI_Print("The controller whose ID is %u does not exist.\n", check.controllerId);
        break;
    case UIL_PATHSTATE_CONTROLLER_DISABLED:
        MPCLI_Print("The path cannot be enabled since the controller is in the disabled state.\n");
        break;
    case UIL_PATHSTATE_OK:
        break;
    }
}

// "enable" or "disable", nothing else.
bool readSwitch(const MPCLI_Word& word, bool* enable)
{
    if (word.key != "pathstate" || !word.hasValue()) {
        return false;
    }
    *enable = word.value == "enable";
    return *enable || word.value == "disable";
}

}  // namespace

uint8_t MPCLI_CheckHbaInfo(const UilPathInfo* path)
{
    CLI_ASSERT(path != nullptr);
    UilHbaInfo hba{};
    (void)strncpy_s(hba.wwn, sizeof(hba.wwn), path->initiatorPort, sizeof(hba.wwn) - 1);
    const uint32_t ret = INTF_UIL_GetHbaInfoByWwn(&hba);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_PrintfInternalErrorInfo(ret);
        return MPCLI_RESULT_FAIL;
    }
    if (hba.enabled == 0) {
        MPCLI_Print("The path cannot be enabled since the HBA is in disabled state.\n");
        return MPCLI_RESULT_FAIL;
    }
    return MPCLI_RESULT_OK;
}

uint8_t MPCLI_SetPhyPathState(const MPCLI_Command& command)
{
    bool enable = false;
    uint32_t pathId = 0;
    if (!readSwitch(command[0], &enable) || !readOnePath(command, &pathId)) {
        return usage(kPathStateUsage);
    }
    const uint32_t event = enable ? UIL_OPER_PATH_ENABLE : UIL_OPER_PATH_DISABLE;
    UilOperLogPara record{};
    UIL_PathOperRecord(pathId, enable ? "1" : "0", &record);
    const UilPathStateCheck check = UIL_CanSetPhyPathState(pathId, enable);
    if (check.refusal != UIL_PATHSTATE_OK) {
        printStateRefusal(check, pathId, enable);
        MPCLI_OperLog(kSet, command, event, MPCLI_RESULT_FAIL, &record);
        return MPCLI_RESULT_FAIL;
    }
    const uint32_t ret = INTF_UIL_SetPhyPathState(kSource, pathId, enable, &record);
    const bool ok = ret == MPI_RET_SUCCESS;
    if (ok) {
        MPCLI_Print("%s", kSucceeded);
        if (!enable) {
            MPCLI_Print("After a host is restarted, the path that is disabled can be automatically enabled. "
                        "Otherwise, you need to manually enable the path.\n");
        }
    } else {
        MPCLI_Print(enable ? "Enable path {%u} failed.\n" : "Disable path {%u} failed.\n", pathId);
        if (ret == UIL_RET_NO_BACKUP_PATH) {
            MPCLI_Print("Please ensure that it has an available backup path to keep the continuity of "
                        "application.\n");
        }
    }
    MPCLI_OperLog(kSet, command, event, outcome(ok), &record);
    return outcome(ok);
}

uint8_t MPCLI_SetPhyPathNormal(const MPCLI_Command& command)
{
    uint32_t pathId = 0;
    if (!command[0].is("phypathnormal") || !readOnePath(command, &pathId)) {
        return usage(kNormalUsage);
    }
    // A refusal's record names the state asked for, as the sender's does.
    UilOperLogPara record{};
    const std::string normal = std::to_string(UIL_PathSzIostateToUInt(kNormalWord));
    UIL_PathOperRecord(pathId, normal.c_str(), &record);
    UilPathInfo path{};
    const bool found = INTF_UIL_GetPhyPathInfo(pathId, &path) == MPI_RET_SUCCESS && path.phyWord24 != 0;
    const char* refusal = nullptr;
    if (!found) {
        refusal = kNoPath;
    } else if (std::strcmp(path.pathState, UIL_PATH_STATE_FAULT) == 0) {
        refusal = "The state of the path %u is fault and cannot be set to normal.\n";
    } else if (std::strcmp(path.pathState, UIL_PATH_STATE_DISABLE) == 0) {
        refusal = "The state of the path %u is disable and cannot be set to normal.\n";
    }
    if (refusal != nullptr) {
        MPCLI_Print(refusal, pathId);
        MPCLI_OperLog(kSet, command, UIL_OPER_PHY_PATH_IOSTATE, MPCLI_RESULT_FAIL, &record);
        return MPCLI_RESULT_FAIL;
    }
    if (MPCLI_RiskPrompt(kNormalPrompt) == 0) {
        UIL_ERR("%s", kDeclined);
        return MPCLI_RESULT_OK;
    }
    const uint32_t ret = INTF_UIL_SetPhyPathIoState(kSource, pathId, kNormalWord, &record);
    if (ret == MPI_RET_SUCCESS) {
        MPCLI_Print("%s", kSucceeded);
    } else if (ret == UIL_RET_PATH_DISABLED) {
        MPCLI_Print("A disabled path cannot be recovered by this command. Please run the set pathstate command "
                    "to clear the status of the path first.");
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    // The driver refusing a disabled path is an answer the operator acts
    // on, not a failure of the command; the log still says nothing changed.
    MPCLI_OperLog(kSet, command, UIL_OPER_PHY_PATH_IOSTATE, outcome(ret == MPI_RET_SUCCESS), &record);
    return outcome(ret == MPI_RET_SUCCESS || ret == UIL_RET_PATH_DISABLED);
}

uint8_t MPCLI_StartPhyPathCheck(const MPCLI_Command& command)
{
    std::array<uint32_t, MPCLI_MAX_IDS> ids{};
    uint32_t count = 0;
    if (command.size() != 2 || !readIds(command[1], kPathIdKey, MPCLI_MAX_IDS, MPCLI_ID_PATH, ids.data(), &count)) {
        return usage(kCheckUsage);
    }
    if (MPCLI_RiskPrompt(kCheckPrompt) == 0) {
        UIL_ERR("%s", kDeclined);
        return MPCLI_RESULT_OK;
    }
    char text[kCommandLen];
    MPCLI_BuildCommandText(command, text, sizeof(text));
    bool all = true;
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t state = UIL_PATH_CHECK_NOT_SENT;
        (void)INTF_UIL_StartPhyPathCheck(kSource, kStart, text, ids[i], &state);
        if (state != UIL_PATH_CHECK_SENT) {
            MPCLI_Print("Failed to start the phypath %u health status check.\n", ids[i]);
            all = false;
        }
    }
    MPCLI_Print(all ? "Check path command send on all pathes successfully, use \"show path\"command to "
                      "investigate the check result.\n"
                    : "Check path command send on some specific pathes unsuccessfully, use \"show path\"command "
                      "to investigate the check result.\n");
    return outcome(all);
}

uint8_t MPCLI_ClearObsoletePath(const MPCLI_Command& command)
{
    uint32_t pathId = 0;
    if (!command[0].is("obsolete_path") || !readOnePath(command, &pathId)) {
        return usage(kObsoleteUsage);
    }
    UilOperLogPara record{};
    UIL_PathOperRecordId(pathId, &record);
    UilPathInfo path{};
    if (INTF_UIL_GetPhyPathInfo(pathId, &path) != MPI_RET_SUCCESS) {
        MPCLI_Print(kNoPath, pathId);
        MPCLI_OperLog(kClear, command, UIL_OPER_CLEAR_OBSOLETE_PATH, MPCLI_RESULT_FAIL, &record);
        return MPCLI_RESULT_FAIL;
    }
    const uint32_t ret = INTF_UIL_ClearObsoletePath(kSource, pathId, &record);
    if (ret == MPI_RET_SUCCESS) {
        MPCLI_Print("%s", kSucceeded);
    } else if (ret == UIL_RET_LOGIC_PATH_EXIST) {
        MPCLI_Print("Logic Path is exist, Please delete it before you do this command.\n");
    } else if (ret == UIL_RET_PATH_NOT_FAULT) {
        MPCLI_Print("Physic path is not fault, can't execute this command.\n");
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    MPCLI_OperLog(kClear, command, UIL_OPER_CLEAR_OBSOLETE_PATH, outcome(ret == MPI_RET_SUCCESS), &record);
    return outcome(ret == MPI_RET_SUCCESS);
}

// ---------------------------------------------------------------------------
// clear path_statistic

namespace {

// Clears one path that exists; each path tried gets its log line.
bool clearPathStatistic(const MPCLI_Command& command, uint32_t pathId)
{
    UilOperLogPara record{};
    UIL_PathOperRecordId(pathId, &record);
    UilPathInfo path{};
    const bool ok = INTF_UIL_GetPhyPathInfo(pathId, &path) == MPI_RET_SUCCESS &&
                    INTF_UIL_ClearPhyPathStatistic(pathId, &record) == MPI_RET_SUCCESS;
    if (!ok) {
        MPCLI_Print(kNoPath, pathId);
    }
    MPCLI_OperLog(kClear, command, UIL_OPER_CLEAR_PATH_STATISTIC, outcome(ok), &record);
    return ok;
}

// Every physical path of an array. `quietEmpty`: an array without paths is
// no failure (the whole-host form).
bool clearArrayStatistic(const MPCLI_Command& command, uint32_t arrayId, bool quietEmpty)
{
    if (INTF_UIL_ArrayIDIsExist(arrayId) != MPI_RET_SUCCESS) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", arrayId);
        return false;
    }
    UilIdList* list = nullptr;
    const uint32_t ret = UIL_EnumeratePhyPathIdsStart(arrayId, &list);
    MPI_Ended<UIL_EnumeratePhyPathIdsEnd> owner(list);
    if (ret != MPI_RET_SUCCESS || list == nullptr || list->count == 0) {
        if (quietEmpty) {
            return ret == MPI_RET_SUCCESS;
        }
        MPCLI_Print("There is no path on the disk array whose ID is %u.\n", arrayId);
        return false;
    }
    bool all = true;
    for (uint32_t pathId : list->view()) {
        all = clearPathStatistic(command, pathId) && all;
    }
    return all;
}

}  // namespace

uint8_t MPCLI_ClearPathStatistic(const MPCLI_Command& command)
{
    if (command.size() > 2 || !command[0].is("path_statistic") || !command.keysIn({kPathIdKey, kArrayIdKey})) {
        return usage(kStatisticUsage);
    }
    std::array<uint32_t, MPCLI_MAX_IDS> ids{};
    uint32_t count = 0;
    bool all = true;
    if (command.size() == 2 && command[1].key == kPathIdKey) {
        if (!readIds(command[1], kPathIdKey, MPCLI_MAX_IDS, MPCLI_ID_PATH, ids.data(), &count)) {
            return usage(kStatisticUsage);
        }
        for (uint32_t i = 0; i < count; ++i) {
            all = clearPathStatistic(command, ids[i]) && all;
        }
        MPCLI_Print(all ? "Statistics of all specified paths cleared successfully.\n"
                        : "Statistics of some specified paths cleared unsuccessfully.\n");
        return outcome(all);
    }
    if (command.size() == 2) {
        if (!readIds(command[1], kArrayIdKey, MPCLI_MAX_IDS, MPCLI_ID_ARRAY, ids.data(), &count)) {
            return usage(kStatisticUsage);
        }
        for (uint32_t i = 0; i < count; ++i) {
            all = clearArrayStatistic(command, ids[i], false) && all;
        }
        MPCLI_Print(all ? "Statistics of all specified arrays cleared successfully.\n"
                        : "Statistics of some specified arrays cleared unsuccessfully.\n");
        return outcome(all);
    }
    std::array<uint32_t, UIL_MAX_ARRAYS> arrays{};
    uint32_t arrayCount = 0;
    if (INTF_UIL_EnumerateArrayIds(arrays.data(), UIL_MAX_ARRAYS, &arrayCount) != MPI_RET_SUCCESS ||
        arrayCount == 0) {
        MPCLI_Print("Can't find any array.\n");
        return MPCLI_RESULT_FAIL;
    }
    for (uint32_t i = 0; i < arrayCount && i < arrays.size(); ++i) {
        all = clearArrayStatistic(command, arrays[i], true) && all;
    }
    MPCLI_Print(all ? "Statistics of all paths cleared successfully.\n"
                    : "Statistics of some paths cleared unsuccessfully.\n");
    return outcome(all);
}
