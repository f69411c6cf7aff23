// The set commands of the array family that are more than a value: the
// scoped setters (host, one array or a list of VLUNs) and the host-wide
// switches `alarmenable` and `path_reliability_enable`. Switches are stored
// as "1"/"0".
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "cli/cli.h"
#include "cli/cli_command.h"
#include "cli/cli_helptext.h"
#include "cli/cli_operlog.h"
#include "cli/cli_token.h"
#include "mpi/mpi_number.h"
#include "mpi/mpi_usr.h"
#include "uil/uil_array.h"
#include "uil/uil_arrayset.h"
#include "uil/uil_oper.h"
#include "uil/uil_perf.h"
#include "uil/uil_setcfg.h"

namespace {

constexpr const char kSource[] = "CLI";
constexpr const char kVerb[] = "set";

struct Switch {
    const char* help;  // shown after "Error: Invalid input!\nUsage:\n"
    uint32_t eventId;
    const char* promptOn;
    const char* promptOff;
    const char* afterOff;  // printed after a successful switch-off, or null
    uint32_t (*set)(const char* source, const char* value);
};

constexpr Switch kAlarm{
    HELP_SET_ALARMENABLE,
    UIL_OPER_ALARM_ENABLE,
    "If you open alarm enable, the host would push alarm to the array. \n"
    "Are you sure you want to continue? [y,n]: ",
    "If you close alarm enable, the host would not push alarm to the array, and the alarm in array will not be "
    "cleared. \nAre you sure you want to continue? [y,n]: ",
    "Please clear the alarm in the array manually, thanks.\n",
    INTF_UIL_SetAlarmEnable,
};

constexpr Switch kReliability{
    HELP_SET_PATH_RELIABILITY_ENABLE,
    UIL_OPER_RELIABILITY_ENABLE,
    "If you open reliability enable, this would recover the path reliability check. \n"
    "Are you sure you want to continue? [y,n]: ",
    "If you close reliability enable, this would abandon the path reliability check and may infect the "
    "performance. \nAre you sure you want to continue? [y,n]: ",
    nullptr,
    INTF_UIL_SetReliabilityEnable,
};

// One word "<keyword>=on" or "<keyword>=off"; only those two exact words are
// a switch ("ON", "yes" or the stored "1" are not).
uint8_t runSwitch(const Switch& sw, const MPCLI_Command& command)
{
    const bool on = command.size() == 1 && command[0].value == "on";
    const bool off = command.size() == 1 && command[0].value == "off";
    if (!on && !off) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n%s", sw.help);
        return MPCLI_RESULT_FAIL;
    }
    if (MPCLI_RiskPrompt(on ? sw.promptOn : sw.promptOff) == 0) {
        UIL_TRACE(MPI_LOG_INFO, "User input \"n\" to interrupt the command executing");
        return MPCLI_RESULT_OK;
    }
    const char* stored = on ? "1" : "0";
    UilOperLogPara record{};
    UIL_TransOperLogValue(stored, &record);
    const uint32_t ret = sw.set(kSource, stored);
    const uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in executing the command.\n");
        if (off && sw.afterOff != nullptr) {
            MPCLI_Print("%s", sw.afterOff);
        }
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    MPCLI_OperLog(kVerb, command, sw.eventId, result, &record);
    return result;
}

// ---------------------------------------------------------------------------
// Scoped setters: `set <keyword>=<value> [array_id=ID|vlun_id=<IDs>]`.

using KeyedSetter = uint32_t (*)(const char* source, const char* key, const char* id, const char* value,
                                 UilOperLogPara* record);

enum class ValueRule { Item, WorkingMode, OnOff };

struct Scoped {
    const char* help;
    uint32_t eventId;
    const char* item;  // the configuration item whose range checks the value
    ValueRule rule;
    bool perIdLines;   // loadbalancemode reports each ID of a list
    KeyedSetter set;
};

constexpr size_t kValueLen = 64;
constexpr uint32_t kMaxScopeIds = 16384;
constexpr const char kOverwriteArray[] =
    "The current configuration will overwrite the configuration of all VLUNs in this array. \n"
    "Are you sure you want to continue? [y,n]: ";

constexpr Scoped kWorkingMode{HELP_SET_WORKINGMODE, UIL_OPER_LB_OPEN, "workingmode", ValueRule::WorkingMode, false,
                              INTF_UIL_SetLbController};
constexpr Scoped kLbPolicy{HELP_SET_LOADBALANCEMODE, UIL_OPER_LB_POLICY, "loadbalancemode", ValueRule::Item, true,
                           INTF_UIL_SetLbPolicy};
constexpr Scoped kTrespass{HELP_SET_LUNTRESPASS, UIL_OPER_LUNTRESPASS_OPEN, "luntrespass", ValueRule::OnOff, false,
                           INTF_UIL_SetLUNTrespass};
constexpr Scoped kHoldon{HELP_SET_IOSUSPENSIONTIME, UIL_OPER_HOLDON_TIME, "iosuspensiontime", ValueRule::Item, false,
                         INTF_UIL_SetIoHoldonTime};
constexpr Scoped kLbThreshold{HELP_SET_LB_IO_THRESHOLD, UIL_OPER_LB_IO_THRESHOLD, "lb_io_threshold", ValueRule::Item,
                              false, INTF_UIL_SetLbIOThreshold};
constexpr Scoped kRetryTimeout{HELP_SET_MAX_IO_RETRY_TIMEOUT, UIL_OPER_IO_RETRY_TIMEOUT, "io_timeout", ValueRule::Item,
                               false, INTF_UIL_SetIoRetryTimeOut};

uint8_t scopedUsage(const Scoped& row)
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n%s", row.help);
    return MPCLI_RESULT_FAIL;
}

// The value as the store keeps it, or false when the typed word is refused.
bool storedValue(const Scoped& row, const MPCLI_Word& word, std::string* out)
{
    if (!word.hasValue() || word.value.size() > kValueLen) {
        return false;
    }
    switch (row.rule) {
    case ValueRule::WorkingMode:
        // Exactly "0" or "1": no sign, no leading zero, no blank.
        if (word.value != "0" && word.value != "1") {
            return false;
        }
        *out = word.value;
        return true;
    case ValueRule::OnOff:
        if (word.value != "on" && word.value != "off") {
            return false;
        }
        *out = word.value == "on" ? "1" : "0";
        return true;
    case ValueRule::Item:
        break;
    }
    *out = word.value;
    uint32_t number = 0;
    const bool numeric = std::string_view(row.item) != "loadbalancemode";
    return (!numeric || MPI_ToU32(*out, &number)) && INTF_UIL_CheckCfgValid(row.item, out->c_str());
}

bool arraysExist(const std::vector<uint32_t>& ids)
{
    bool all = true;
    for (uint32_t id : ids) {
        if (INTF_UIL_ArrayIDIsExist(id) != MPI_RET_SUCCESS) {
            MPCLI_Print("The disk array whose ID is %u does not exist.\n", id);
            all = false;
        }
    }
    return all;
}

uint8_t runScoped(const Scoped& row, const MPCLI_Command& command)
{
    std::string value;
    if (command.size() > 2 || !storedValue(row, command[0], &value)) {
        return scopedUsage(row);
    }
    const char* key = UIL_KEY_COMMON;
    std::vector<uint32_t> ids;
    if (command.size() == 2) {
        const MPCLI_Word& scope = command[1];
        if (scope.key == UIL_KEY_ARRAY) {
            key = UIL_KEY_ARRAY;
        } else if (scope.key == UIL_KEY_VLUN) {
            key = UIL_KEY_VLUN;
        } else {
            return scopedUsage(row);
        }
        ids.resize(kMaxScopeIds);
        uint32_t count = 0;
        const std::string list(scope.value);
        if (!scope.hasValue() || MPCLI_ParseVlunIds(list.c_str(), ids.data(), kMaxScopeIds, &count) != MPI_RET_SUCCESS ||
            count == 0) {
            return scopedUsage(row);
        }
        ids.resize(count);
    }
    // A missing array is named before the operator is asked anything, and
    // nothing is changed for the others of the list.
    if (key == UIL_KEY_ARRAY && !arraysExist(ids)) {
        return MPCLI_RESULT_FAIL;
    }
    if (key == UIL_KEY_ARRAY && MPCLI_RiskPrompt(kOverwriteArray) == 0) {
        UIL_TRACE(MPI_LOG_INFO, "User input \"n\" to interrupt the command executing");
        return MPCLI_RESULT_OK;
    }
    const bool perVlun = key == UIL_KEY_VLUN;
    const bool perIdLines = row.perIdLines && ids.size() > 1;
    bool allDone = true;
    // One step per object: the host alone when no scope was given.
    const size_t steps = ids.empty() ? 1 : ids.size();
    for (size_t i = 0; i < steps; ++i) {
        const std::string id = ids.empty() ? std::string() : std::to_string(ids[i]);
        UilOperLogPara record{};
        const uint32_t ret = row.set(kSource, key, id.c_str(), value.c_str(), &record);
        const uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
        if (result != MPCLI_RESULT_OK) {
            allDone = false;
            MPCLI_PrintfErrorInfo(ret, id.c_str(), perVlun ? 1 : 0);
        } else if (perIdLines) {
            MPCLI_Print("Succeeded in executing the command for %s %s.\n", perVlun ? "vlun" : key, id.c_str());
        }
        MPCLI_OperLog(kVerb, command, row.eventId, result, &record);
    }
    if (allDone && !perIdLines) {
        MPCLI_Print("Succeeded in executing the command.\n");
    }
    return allDone ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
}

// ---------------------------------------------------------------------------
// Host-wide commands with words of their own.

constexpr uint32_t kMaxRecordHours = 8760;

uint8_t finish(uint32_t ret, const MPCLI_Command& command, uint32_t eventId, const UilOperLogPara& record)
{
    const uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in executing the command.\n");
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    MPCLI_OperLog(kVerb, command, eventId, result, &record);
    return result;
}

bool itemValue(const MPCLI_Word& word, const char* item, std::string* out)
{
    uint32_t number = 0;
    if (!word.hasValue() || word.value.size() > kValueLen || !MPI_ToU32(word.value, &number)) {
        return false;
    }
    *out = word.value;
    return INTF_UIL_CheckCfgValid(item, out->c_str()) != 0;
}

}  // namespace

uint8_t MPCLI_SetIoRetryConf(const MPCLI_Command& command)
{
    if (command.size() != 2 || command[0].key != "ioretry" || command[1].key != "ioretrydelay" || !command[0].hasValue() ||
        !command[1].hasValue()) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n           -- set ioretry=<number> ioretrydelay=<time>\n");
        return MPCLI_RESULT_FAIL;
    }
    std::string retries;
    std::string delay;
    if (!itemValue(command[0], "ioretry", &retries) || !itemValue(command[1], "ioretrydelay", &delay)) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n%s", HELP_SET_IORETRY);
        return MPCLI_RESULT_FAIL;
    }
    UilOperLogPara record{};
    const uint32_t ret = INTF_UIL_SetIoRetryConf(kSource, retries.c_str(), delay.c_str(), &record);
    return finish(ret, command, UIL_OPER_IO_RETRY, record);
}

uint8_t MPCLI_SetPerformanceRecord(const MPCLI_Command& command)
{
    const bool on = command.size() >= 1 && command[0].value == "on";
    const bool off = command.size() >= 1 && command[0].value == "off";
    uint32_t hours = 0;
    bool wordsOk = (on || off) && command.size() <= 2;
    if (wordsOk && command.size() == 2) {
        const MPCLI_Word& duration = command[1];
        const std::string text(duration.value);
        wordsOk = duration.key == "duration" && duration.hasValue() && MPCLI_IsNum(text.c_str()) == 1 &&
                  MPCLI_ReadNum(duration.value, &hours) && hours <= kMaxRecordHours;
    }
    if (!wordsOk) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n%s", HELP_SET_PERFORMANCE_RECORD);
        return MPCLI_RESULT_FAIL;
    }
    if (on) {
        // Switching on twice would restart the record's clock under the
        // operator's feet; the driver's own state is what counts.
        UilDriverPerfRecord state{};
        const uint32_t ret = INTF_UIL_GetDriverPerfRecordInfo(&state);
        if (ret != MPI_RET_SUCCESS) {
            MPCLI_PrintfInternalErrorInfo(ret);
            return MPCLI_RESULT_FAIL;
        }
        if (state.enabled == 1) {
            MPCLI_Print("The command fails to be executed because the performance statistics function is on.\n");
            return MPCLI_RESULT_FAIL;
        }
    }
    UilOperLogPara record{};
    const std::string logged = std::string(on ? "1" : "0") + "," + std::to_string(hours);
    UIL_TransOperLogValue(logged.c_str(), &record);
    const uint32_t ret = INTF_UIL_SetPerfRecord(kSource, on ? 1 : 0, hours);
    return finish(ret, command, UIL_OPER_PERF_RECORD, record);
}

uint8_t MPCLI_SetStopIoSuspension(const MPCLI_Command& command)
{
    uint32_t diskId = 0;
    if (command.size() != 2 || !MPCLI_ReadNum(command[1].raw, &diskId) || MPCLI_ValueCheckByType(static_cast<int32_t>(diskId), MPCLI_ID_VLUN) == 0) {
        return MPCLI_UsageError("Error: Invalid input!\n");
    }
    UilOperLogPara record{};
    UIL_TransOperLogValue(std::to_string(diskId).c_str(), &record);
    const uint32_t ret = INTF_UIL_TurnOffIoSuspension(diskId);
    return finish(ret, command, UIL_OPER_CLOSE_IOSUSPENSION, record);
}

uint8_t MPCLI_SetLbController(const MPCLI_Command& command) { return runScoped(kWorkingMode, command); }
uint8_t MPCLI_SetLbPolicy(const MPCLI_Command& command) { return runScoped(kLbPolicy, command); }
uint8_t MPCLI_SetLunTrespass(const MPCLI_Command& command) { return runScoped(kTrespass, command); }
uint8_t MPCLI_SetHoldonTime(const MPCLI_Command& command) { return runScoped(kHoldon, command); }
uint8_t MPCLI_SetLBIOThreshold(const MPCLI_Command& command) { return runScoped(kLbThreshold, command); }
uint8_t MPCLI_SetIoRetryTimeOut(const MPCLI_Command& command) { return runScoped(kRetryTimeout, command); }

uint8_t MPCLI_SetAlarmEnable(const MPCLI_Command& command) { return runSwitch(kAlarm, command); }

uint8_t MPCLI_SetReliabilityEnable(const MPCLI_Command& command) { return runSwitch(kReliability, command); }
