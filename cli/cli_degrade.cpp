// The settings that tune how the driver degrades a misbehaving path, and
// the I/O latency threshold: `set <keyword>=<value>`, one row each.
#include "cli/cli_degrade.h"

#include <array>
#include <cstring>

#include "cli/cli.h"
#include "cli/cli_helptext.h"
#include "cli/cli_operlog.h"
#include "cli/cli_token.h"
#include "uil/uil_setcfg.h"

namespace {

using DegradeSetter = uint32_t (*)(const char* source, const char* value, UilOperLogPara* record);

struct DegradeSetting {
    const char* keyword;    // as typed after `set`
    const char* configKey;  // the item of the configuration
    const char* valueWord;  // shown in the short usage: "<time>", "<number>", "<ratio>"
    const char* rangeText;  // shown after "Error: Invalid input!\nUsage:\n" for a bad value
    uint32_t eventId;
    DegradeSetter set;
};

// The latency threshold has a setter of its own, without a record.
uint32_t setIoLatencyThreshold(const char* /*source*/, const char* value, UilOperLogPara* record)
{
    UIL_TransOperLogValue(value, record);
    return INTF_UIL_SetIOLatencyThreshold(value);
}

// Three settings answer a bad value with words of their own rather than
// their help text.
constexpr const char kIoLatencyRange[] =
    "set io_latency_threshold=<time>        --  set io latency threshold.\n"
    "                                       --  time is in the range 0~120000, unit is ms.\n"
    "                                       --  0 means do not print the I/O latency event.\n"
    "                                       --  Default is 20.\n";
constexpr const char kSddThresholdRange[] =
    "set sdd_threshold=<time>               --  set sensitive delayed degraded threshold.\n"
    "                                       --  time is in the range 100~60000, unit is ms.\n"
    "                                       --  Default is 30000.\n";
constexpr const char kSddRecoveryRange[] =
    "set sdd_recovery_time=<time>           --  set sensitive delayed degraded recovery time.\n"
    "                                       --  time is in the range 1~2592000, unit is s.\n"
    "                                       --  Default is 120.\n";

// The keywords ending in "_recovery_time" are stored under items ending in
// "_recover_time": the driver knows them by those names.
constexpr std::array kSettings = std::to_array<DegradeSetting>({
    {"tod_time", "tod_time", "time", HELP_SET_TOD_TIME, UIL_OPER_TOD_TIME, INTF_UIL_SetTimeOutDegradedTime},
    {"tod_threshold", "tod_threshold", "number", HELP_SET_TOD_THRESHOLD, UIL_OPER_TOD_THRESHOLD,
     INTF_UIL_SetTimeOutDegradedThreshold},
    {"tod_recovery_time", "tod_recover_time", "time", HELP_SET_TOD_RECOVERY_TIME, UIL_OPER_TOD_RECOVER_TIME,
     INTF_UIL_SetTimeOutDegradedRecoverTime},
    {"ied_time", "ied_time", "time", HELP_SET_IED_TIME, UIL_OPER_IED_TIME, INTF_UIL_SetInterErrorDegradedTime},
    {"ied_min_io", "ied_min_io", "number", HELP_SET_IED_MIN_IO, UIL_OPER_IED_MIN_IO,
     INTF_UIL_SetInterErrorDegradedMinIo},
    {"ied_threshold", "ied_threshold", "ratio", HELP_SET_IED_THRESHOLD, UIL_OPER_IED_THRESHOLD,
     INTF_UIL_SetInterErrorDegradedThreshold},
    {"ied_recovery_time", "ied_recover_time", "time", HELP_SET_IED_RECOVERY_TIME, UIL_OPER_IED_RECOVER_TIME,
     INTF_UIL_SetInterErrorDegradedRecoverTime},
    {"ifd_time", "ifd_time", "time", HELP_SET_IFD_TIME, UIL_OPER_IFD_TIME, INTF_UIL_SetInterFaultDegradedTime},
    {"ifd_threshold", "ifd_threshold", "number", HELP_SET_IFD_THRESHOLD, UIL_OPER_IFD_THRESHOLD,
     INTF_UIL_SetInterFaultDegradedThreshold},
    {"ifd_recovery_time", "ifd_recover_time", "time", HELP_SET_IFD_RECOVERY_TIME, UIL_OPER_IFD_RECOVER_TIME,
     INTF_UIL_SetInterFaultDegradedRecoverTime},
    {"hld_time", "hld_time", "time", HELP_SET_HLD_TIME, UIL_OPER_HLD_TIME, INTF_UIL_SetHighLatencyDegradedTime},
    {"hld_threshold", "hld_threshold", "time", HELP_SET_HLD_THRESHOLD, UIL_OPER_HLD_THRESHOLD,
     INTF_UIL_SetHighLatencyDegradedThreshold},
    {"hld_recovery_time", "hld_recover_time", "time", HELP_SET_HLD_RECOVERY_TIME, UIL_OPER_HLD_RECOVER_TIME,
     INTF_UIL_SetHighLatencyDegradedRecoverTime},
    {"sdd_threshold", "sdd_threshold", "time", kSddThresholdRange, UIL_OPER_SDD_THRESHOLD,
     INTF_UIL_SetSensitiveDelayedThreshold},
    {"sdd_recovery_time", "sdd_recover_time", "time", kSddRecoveryRange, UIL_OPER_SDD_RECOVER_TIME,
     INTF_UIL_SetSensitiveDelayedRecoverTime},
    {"io_latency_threshold", "io_latency_threshold", "time", kIoLatencyRange, UIL_OPER_IO_LATENCY_THRESHOLD,
     setIoLatencyThreshold},
});

constexpr size_t kValueLen = 64;
constexpr const char kSource[] = "CLI";
constexpr const char kVerb[] = "set";

const DegradeSetting& settingOf(const char* keyword)
{
    for (const DegradeSetting& row : kSettings) {
        if (std::strcmp(row.keyword, keyword) == 0) {
            return row;
        }
    }
    CLI_ASSERT(!"a degrade handler without its row");
}

uint8_t printShortUsage(const DegradeSetting& row)
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n           --set %s=<%s>\n", row.keyword, row.valueWord);
    return MPCLI_RESULT_FAIL;
}

uint8_t setDegrade(const char* keyword, uint32_t argc, char** argv)
{
    const DegradeSetting& row = settingOf(keyword);
    char value[kValueLen + 1] = {};
    if (argc != 1 || argv == nullptr || argv[0] == nullptr ||
        MPCLI_GetStringFromEqual(argv[0], value, 1, sizeof(value)) != 1) {
        return printShortUsage(row);
    }
    if (!INTF_UIL_CheckCfgValid(row.configKey, value)) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n%s", row.rangeText);
        return MPCLI_RESULT_FAIL;
    }
    UilOperLogPara record{};
    uint32_t ret = row.set(kSource, value, &record);
    uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in executing the command.\n");
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    MPCLI_OperLog(kVerb, argc, argv, row.eventId, result, &record);
    return result;
}

}  // namespace

uint8_t MPCLI_SetTimeOutDegradeTime(uint32_t argc, char** argv) { return setDegrade("tod_time", argc, argv); }
uint8_t MPCLI_SetTimeOutDegradeThreshold(uint32_t argc, char** argv)
{
    return setDegrade("tod_threshold", argc, argv);
}
uint8_t MPCLI_SetTimeOutDegradeRecovery(uint32_t argc, char** argv)
{
    return setDegrade("tod_recovery_time", argc, argv);
}
uint8_t MPCLI_SetInterErrorDegradeTime(uint32_t argc, char** argv) { return setDegrade("ied_time", argc, argv); }
uint8_t MPCLI_SetInterErrorDegradeMinIOCount(uint32_t argc, char** argv)
{
    return setDegrade("ied_min_io", argc, argv);
}
uint8_t MPCLI_SetInterErrorDegradeThreshold(uint32_t argc, char** argv)
{
    return setDegrade("ied_threshold", argc, argv);
}
uint8_t MPCLI_SetInterErrorDegradeRecovery(uint32_t argc, char** argv)
{
    return setDegrade("ied_recovery_time", argc, argv);
}
uint8_t MPCLI_SetInterFaultDegradeTime(uint32_t argc, char** argv) { return setDegrade("ifd_time", argc, argv); }
uint8_t MPCLI_SetInterFaultDegradeThreshold(uint32_t argc, char** argv)
{
    return setDegrade("ifd_threshold", argc, argv);
}
uint8_t MPCLI_SetInterFaultDegradeRecovery(uint32_t argc, char** argv)
{
    return setDegrade("ifd_recovery_time", argc, argv);
}
uint8_t MPCLI_SetHighLatencyDegradeTime(uint32_t argc, char** argv) { return setDegrade("hld_time", argc, argv); }
uint8_t MPCLI_SetHighLatencyDegradeThreshold(uint32_t argc, char** argv)
{
    return setDegrade("hld_threshold", argc, argv);
}
uint8_t MPCLI_SetHighLatencyDegradeRecovery(uint32_t argc, char** argv)
{
    return setDegrade("hld_recovery_time", argc, argv);
}
uint8_t MPCLI_SetSensitiveDelayedThreshold(uint32_t argc, char** argv)
{
    return setDegrade("sdd_threshold", argc, argv);
}
uint8_t MPCLI_SetSensitiveDelayedRecovery(uint32_t argc, char** argv)
{
    return setDegrade("sdd_recovery_time", argc, argv);
}
uint8_t MPCLI_SetIOLatencyThreshold(uint32_t argc, char** argv)
{
    return setDegrade("io_latency_threshold", argc, argv);
}

uint8_t MPCLI_ShowIoLatencyThreshold(uint32_t argc, char** /*argv*/)
{
    if (argc != 1) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n    -- show io_latency_threshold\n");
        return MPCLI_RESULT_FAIL;
    }
    char text[kValueLen] = {};
    int32_t threshold = 0;
    uint32_t ret = INTF_UIL_GetIoLatencyThreshold(text, sizeof(text), &threshold);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_PrintfInternalErrorInfo(ret);
        return MPCLI_RESULT_FAIL;
    }
    MPCLI_Print("io_latency_threshold : %d\n", threshold);
    return MPCLI_RESULT_OK;
}
