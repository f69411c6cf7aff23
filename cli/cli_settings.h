// The value settings of `set <keyword>=<value>`: one row each. The set
// dispatch rows, the handlers, the help of each keyword, the check of the
// value and the operation-log event all come from this table, so a new
// setting is one more row here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "cli/cli.h"
#include "cli/cli_helptext.h"
#include "uil/uil_oper.h"
#include "uil/uil_setcfg.h"

using MPCLI_SettingSetter = uint32_t (*)(const char* source, const char* value, UilOperLogPara* record);

struct MPCLI_Setting {
    const char* keyword;    // as typed after `set`
    const char* configKey;  // the item of the configuration that holds it
    uint32_t eventId;       // its operation-log event
    const char* help;       // its rows of the help and usage texts
    const char* valueWord;  // shown in the short usage: "time", "number", "ratio"
    const char* rangeText;  // shown after "Error: Invalid input!\nUsage:\n" for a bad value
    MPCLI_SettingSetter set;
};

// The latency threshold has a setter of its own, without a record.
uint32_t MPCLI_SetIoLatencyThresholdValue(const char* source, const char* value, UilOperLogPara* record);

namespace mpcli_settings {

// Three settings answer a bad value with words of their own rather than
// their help text.
inline constexpr char kIoLatencyRange[] =
    "set io_latency_threshold=<time>        --  set io latency threshold.\n"
    "                                       --  time is in the range 0~120000, unit is ms.\n"
    "                                       --  0 means do not print the I/O latency event.\n"
    "                                       --  Default is 20.\n";
inline constexpr char kSddThresholdRange[] =
    "set sdd_threshold=<time>               --  set sensitive delayed degraded threshold.\n"
    "                                       --  time is in the range 100~60000, unit is ms.\n"
    "                                       --  Default is 30000.\n";
inline constexpr char kSddRecoveryRange[] =
    "set sdd_recovery_time=<time>           --  set sensitive delayed degraded recovery time.\n"
    "                                       --  time is in the range 1~2592000, unit is s.\n"
    "                                       --  Default is 120.\n";

// The keywords ending in "_recovery_time" are stored under items ending in
// "_recover_time": the driver knows them by those names.
inline constexpr auto kSettings = std::to_array<MPCLI_Setting>({
    {"hld_time", "hld_time", UIL_OPER_HLD_TIME, HELP_SET_HLD_TIME, "time", HELP_SET_HLD_TIME,
     INTF_UIL_SetHighLatencyDegradedTime},
    {"hld_threshold", "hld_threshold", UIL_OPER_HLD_THRESHOLD, HELP_SET_HLD_THRESHOLD, "time",
     HELP_SET_HLD_THRESHOLD, INTF_UIL_SetHighLatencyDegradedThreshold},
    {"hld_recovery_time", "hld_recover_time", UIL_OPER_HLD_RECOVER_TIME, HELP_SET_HLD_RECOVERY_TIME, "time",
     HELP_SET_HLD_RECOVERY_TIME, INTF_UIL_SetHighLatencyDegradedRecoverTime},
    {"io_latency_threshold", "io_latency_threshold", UIL_OPER_IO_LATENCY_THRESHOLD, HELP_SET_IO_LATENCY_THRESHOLD,
     "time", kIoLatencyRange, MPCLI_SetIoLatencyThresholdValue},
    {"tod_time", "tod_time", UIL_OPER_TOD_TIME, HELP_SET_TOD_TIME, "time", HELP_SET_TOD_TIME,
     INTF_UIL_SetTimeOutDegradedTime},
    {"tod_threshold", "tod_threshold", UIL_OPER_TOD_THRESHOLD, HELP_SET_TOD_THRESHOLD, "number",
     HELP_SET_TOD_THRESHOLD, INTF_UIL_SetTimeOutDegradedThreshold},
    {"tod_recovery_time", "tod_recover_time", UIL_OPER_TOD_RECOVER_TIME, HELP_SET_TOD_RECOVERY_TIME, "time",
     HELP_SET_TOD_RECOVERY_TIME, INTF_UIL_SetTimeOutDegradedRecoverTime},
    {"ied_time", "ied_time", UIL_OPER_IED_TIME, HELP_SET_IED_TIME, "time", HELP_SET_IED_TIME,
     INTF_UIL_SetInterErrorDegradedTime},
    {"ied_min_io", "ied_min_io", UIL_OPER_IED_MIN_IO, HELP_SET_IED_MIN_IO, "number", HELP_SET_IED_MIN_IO,
     INTF_UIL_SetInterErrorDegradedMinIo},
    {"ied_threshold", "ied_threshold", UIL_OPER_IED_THRESHOLD, HELP_SET_IED_THRESHOLD, "ratio",
     HELP_SET_IED_THRESHOLD, INTF_UIL_SetInterErrorDegradedThreshold},
    {"ied_recovery_time", "ied_recover_time", UIL_OPER_IED_RECOVER_TIME, HELP_SET_IED_RECOVERY_TIME, "time",
     HELP_SET_IED_RECOVERY_TIME, INTF_UIL_SetInterErrorDegradedRecoverTime},
    {"ifd_time", "ifd_time", UIL_OPER_IFD_TIME, HELP_SET_IFD_TIME, "time", HELP_SET_IFD_TIME,
     INTF_UIL_SetInterFaultDegradedTime},
    {"ifd_threshold", "ifd_threshold", UIL_OPER_IFD_THRESHOLD, HELP_SET_IFD_THRESHOLD, "number",
     HELP_SET_IFD_THRESHOLD, INTF_UIL_SetInterFaultDegradedThreshold},
    {"ifd_recovery_time", "ifd_recover_time", UIL_OPER_IFD_RECOVER_TIME, HELP_SET_IFD_RECOVERY_TIME, "time",
     HELP_SET_IFD_RECOVERY_TIME, INTF_UIL_SetInterFaultDegradedRecoverTime},
    {"sdd_threshold", "sdd_threshold", UIL_OPER_SDD_THRESHOLD, HELP_SET_SDD_THRESHOLD, "time", kSddThresholdRange,
     INTF_UIL_SetSensitiveDelayedThreshold},
    {"sdd_recovery_time", "sdd_recover_time", UIL_OPER_SDD_RECOVER_TIME, HELP_SET_SDD_RECOVERY_TIME, "time",
     kSddRecoveryRange, INTF_UIL_SetSensitiveDelayedRecoverTime},
    // Host-wide driver behaviour: failback and the path checker's intervals.
    {"failbackdelaytime", "failbackdelaytime", UIL_OPER_FAILBACK_TIME, HELP_SET_FAILBACKDELAYTIME, "time",
     HELP_SET_FAILBACKDELAYTIME, INTF_UIL_SetFailbackTime},
    {"faulty_path_check_interval", "failpath_check_interval", UIL_OPER_FAULTY_PATH_CHECK,
     HELP_SET_FAULTY_PATH_CHECK_INTERVAL, "time", HELP_SET_FAULTY_PATH_CHECK_INTERVAL,
     INTF_UIL_SetFaultPathCheckInterval},
    {"idle_path_check_interval", "idlepath_check_interval", UIL_OPER_IDLE_PATH_CHECK,
     HELP_SET_IDLE_PATH_CHECK_INTERVAL, "time", HELP_SET_IDLE_PATH_CHECK_INTERVAL,
     INTF_UIL_SetIdlePathCheckInterval},
});

}  // namespace mpcli_settings

inline constexpr const auto& g_stCLISettings = mpcli_settings::kSettings;

// Runs `set <keyword>=<value>` for one row: word 0 is the key=value word.
uint8_t MPCLI_RunSetting(const MPCLI_Setting& row, const MPCLI_Command& command);

template <size_t Row>
uint8_t MPCLI_SettingHandler(const MPCLI_Command& command)
{
    return MPCLI_RunSetting(g_stCLISettings[Row], command);
}

// The place of a keyword's row; a keyword not in the table does not compile.
consteval size_t MPCLI_SettingRow(std::string_view keyword)
{
    for (size_t i = 0; i < g_stCLISettings.size(); ++i) {
        if (keyword == g_stCLISettings[i].keyword) {
            return i;
        }
    }
    throw "no setting of that keyword";
}

// The handlers of the value settings by their own names: each is the
// generated handler of its row, so the name and the dispatch row cannot
// come apart.
inline constexpr MPCLI_Handler MPCLI_SetFailbackTime = MPCLI_SettingHandler<MPCLI_SettingRow("failbackdelaytime")>;
inline constexpr MPCLI_Handler MPCLI_SetFaultyPathCheckInterval =
    MPCLI_SettingHandler<MPCLI_SettingRow("faulty_path_check_interval")>;
inline constexpr MPCLI_Handler MPCLI_SetIdlePathCheckInterval =
    MPCLI_SettingHandler<MPCLI_SettingRow("idle_path_check_interval")>;
inline constexpr MPCLI_Handler MPCLI_SetIOLatencyThreshold =
    MPCLI_SettingHandler<MPCLI_SettingRow("io_latency_threshold")>;
inline constexpr MPCLI_Handler MPCLI_SetHighLatencyDegradeTime = MPCLI_SettingHandler<MPCLI_SettingRow("hld_time")>;
inline constexpr MPCLI_Handler MPCLI_SetHighLatencyDegradeThreshold =
    MPCLI_SettingHandler<MPCLI_SettingRow("hld_threshold")>;
inline constexpr MPCLI_Handler MPCLI_SetHighLatencyDegradeRecovery =
    MPCLI_SettingHandler<MPCLI_SettingRow("hld_recovery_time")>;
inline constexpr MPCLI_Handler MPCLI_SetTimeOutDegradeTime = MPCLI_SettingHandler<MPCLI_SettingRow("tod_time")>;
inline constexpr MPCLI_Handler MPCLI_SetTimeOutDegradeThreshold =
    MPCLI_SettingHandler<MPCLI_SettingRow("tod_threshold")>;
inline constexpr MPCLI_Handler MPCLI_SetTimeOutDegradeRecovery =
    MPCLI_SettingHandler<MPCLI_SettingRow("tod_recovery_time")>;
inline constexpr MPCLI_Handler MPCLI_SetInterErrorDegradeTime = MPCLI_SettingHandler<MPCLI_SettingRow("ied_time")>;
inline constexpr MPCLI_Handler MPCLI_SetInterErrorDegradeMinIOCount =
    MPCLI_SettingHandler<MPCLI_SettingRow("ied_min_io")>;
inline constexpr MPCLI_Handler MPCLI_SetInterErrorDegradeThreshold =
    MPCLI_SettingHandler<MPCLI_SettingRow("ied_threshold")>;
inline constexpr MPCLI_Handler MPCLI_SetInterErrorDegradeRecovery =
    MPCLI_SettingHandler<MPCLI_SettingRow("ied_recovery_time")>;
inline constexpr MPCLI_Handler MPCLI_SetInterFaultDegradeTime = MPCLI_SettingHandler<MPCLI_SettingRow("ifd_time")>;
inline constexpr MPCLI_Handler MPCLI_SetInterFaultDegradeThreshold =
    MPCLI_SettingHandler<MPCLI_SettingRow("ifd_threshold")>;
inline constexpr MPCLI_Handler MPCLI_SetInterFaultDegradeRecovery =
    MPCLI_SettingHandler<MPCLI_SettingRow("ifd_recovery_time")>;
inline constexpr MPCLI_Handler MPCLI_SetSensitiveDelayedThreshold =
    MPCLI_SettingHandler<MPCLI_SettingRow("sdd_threshold")>;
inline constexpr MPCLI_Handler MPCLI_SetSensitiveDelayedRecovery =
    MPCLI_SettingHandler<MPCLI_SettingRow("sdd_recovery_time")>;

// The set dispatch rows of every setting, in table order.
template <size_t... Rows>
constexpr auto MPCLI_SettingOptions(std::index_sequence<Rows...>)
{
    return std::array<MPCLI_Option, sizeof...(Rows)>{{
        {g_stCLISettings[Rows].keyword, g_stCLISettings[Rows].help, MPCLI_SettingHandler<Rows>, MPCLI_FLAG_NORMAL}...,
    }};
}
inline constexpr auto g_stCLISettingOptions =
    MPCLI_SettingOptions(std::make_index_sequence<std::tuple_size_v<std::remove_cvref_t<decltype(g_stCLISettings)>>>{});

// `show io_latency_threshold`: the stored threshold, or an error when the
// file holds something that is not a valid threshold.
uint8_t MPCLI_ShowIoLatencyThreshold(const MPCLI_Command& command);
