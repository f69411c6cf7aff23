// The dispatch tables: a verb, then an object keyword, to a handler.
#include <array>

#include "cli/cli.h"
#include "cli/cli_aglun.h"
#include "cli/cli_arrayctl.h"
#include "cli/cli_arrayset.h"
#include "cli/cli_helptext.h"
#include "cli/cli_objects.h"
#include "cli/cli_pathset.h"
#include "cli/cli_reliability.h"
#include "cli/cli_settings.h"

namespace {

constexpr uint8_t N = MPCLI_FLAG_NORMAL;

// A row is keyword, help, handler, flag and the keys of the argument words
// the command takes (none when absent).

constexpr std::array kOptions = std::to_array<MPCLI_Option>({
    {"help", HELP_HELP, MPCLI_Help, N},
    {"?", HELP_QUESTION, MPCLI_Help, N},
    {"show", "", MPCLI_Show, N},
    {"set", "", MPCLI_Set, N},
    {"start", "", MPCLI_Start, N},
    {"clear", "", MPCLI_Clear, N},
    {"add", "", MPCLI_Add, N},
    {"del", "", MPCLI_Del, N},
    {"genprkey", HELP_GENPRKEY, MPCLI_GenClusterKey, N},
    {"check", "", MPCLI_Check, N},
    {"stop", "", MPCLI_Stop, N},
});

constexpr std::array kShow = std::to_array<MPCLI_Option>({
    {"version", HELP_SHOW_VERSION, MPCLI_ShowVersion, N, "verbose"},
    {"array", HELP_SHOW_ARRAY, MPCLI_ShowArray, N, "id verbose"},
    {"path", HELP_SHOW_PATH, MPCLI_ShowPath, N, "id array_id"},
    {"vlun", HELP_SHOW_VLUN, MPCLI_ShowVLun, N, "id array_id type verbose"},
    {"io_latency_threshold", HELP_SHOW_IO_LATENCY_THRESHOLD, MPCLI_ShowIoLatencyThreshold, N},
    {"workerstate", HELP_SHOW_WORKERSTATE, MPCLI_ShowWorker, N},
    // Driver events and supported-array rules.
    {"event", HELP_SHOW_EVENT, MPCLI_ShowEvent, N, "count"},
    {"supportarraylist", HELP_SHOW_SUPPORTARRAYLIST, MPCLI_ShowSupportArrayList, N},
    // I/O rates per VLUN or array, and CSV performance reports.
    {"iostat", HELP_SHOW_IOSTAT, MPCLI_ShowIostat, N, "vlun_id array_id type interval file_name archive_time duration"},
    // I/O reliability.
    {"io_count", HELP_SHOW_IO_COUNT, MPCLI_ShowIoCount, N, "vlun_id"},
    {"io_latency", HELP_SHOW_IO_LATENCY, MPCLI_ShowIoLatency, N, "vlun_id"},
    {"alarmenable", HELP_SHOW_ALARMENABLE, MPCLI_ShowAlarmEnable, N},
    {"path_reliability_enable", HELP_SHOW_PATH_RELIABILITY_ENABLE, MPCLI_ShowReliabilityEnable, N},
    // Effective configuration.
    {"cvconfig", HELP_SHOW_CVCONFIG, MPCLI_ShowCvConfig, N, "array_id vlun_id"},
});

// Rows of two tables as one.
template <size_t A, size_t B>
constexpr std::array<MPCLI_Option, A + B> joinRows(const std::array<MPCLI_Option, A>& first,
                                                   const std::array<MPCLI_Option, B>& second)
{
    std::array<MPCLI_Option, A + B> rows{};
    for (size_t i = 0; i < A; ++i) {
        rows[i] = first[i];
    }
    for (size_t i = 0; i < B; ++i) {
        rows[A + i] = second[i];
    }
    return rows;
}

// The set commands that are more than a value: switches with a prompt,
// scoped setters, actions.
constexpr std::array kSetCommands = std::to_array<MPCLI_Option>({
    // The array family.
    {"workingmode", HELP_SET_WORKINGMODE, MPCLI_SetLbController, N, "array_id vlun_id"},
    {"loadbalancemode", HELP_SET_LOADBALANCEMODE, MPCLI_SetLbPolicy, N, "array_id vlun_id"},
    {"luntrespass", HELP_SET_LUNTRESPASS, MPCLI_SetLunTrespass, N, "array_id vlun_id"},
    {"iosuspensiontime", HELP_SET_IOSUSPENSIONTIME, MPCLI_SetHoldonTime, N, "array_id vlun_id"},
    {"lb_io_threshold", HELP_SET_LB_IO_THRESHOLD, MPCLI_SetLBIOThreshold, N, "array_id vlun_id"},
    {"max_io_retry_timeout", HELP_SET_MAX_IO_RETRY_TIMEOUT, MPCLI_SetIoRetryTimeOut, N, "array_id vlun_id"},
    {"ioretry", HELP_SET_IORETRY, MPCLI_SetIoRetryConf, N, "ioretrydelay"},
    {"performance_record", HELP_SET_PERFORMANCE_RECORD, MPCLI_SetPerformanceRecord, N, "duration"},
    // Listed only in the full usage text.
    {"stop_iosuspension", "", MPCLI_SetStopIoSuspension, N},
    {"alarmenable", HELP_SET_ALARMENABLE, MPCLI_SetAlarmEnable, N},
    {"path_reliability_enable", HELP_SET_PATH_RELIABILITY_ENABLE, MPCLI_SetReliabilityEnable, N},
    // Path commands.
    {"pathstate", HELP_SET_PATHSTATE, MPCLI_SetPhyPathState, N, "path_id"},
    {"phypathnormal", HELP_SET_PHYPATHNORMAL, MPCLI_SetPhyPathNormal, N, "path_id"},
    // Aggregated VLUNs.
    {"dualsite", HELP_SET_DUALSITE, MPCLI_SetDualsite, N, "workingmode primary_array_id split_size vlun_id"},
    // Controllers.
    {"tpgstate", HELP_SET_TPGSTATE, MPCLI_SetTpgState, N, "array_id tpg_id"},
    {"remote_controller", HELP_SET_REMOTE_CONTROLLER, MPCLI_SetRemoteController, N, "array_id tpg_id local remote"},
});

// The value settings first, in the settings table's order.
constexpr auto kSet = joinRows(g_stCLISettingOptions, kSetCommands);

constexpr std::array kStart = std::to_array<MPCLI_Option>({
    {"diskdriverupdate", "", MPCLI_StartDiskDriverUpdate, N},
    // Path commands.
    {"pathcheck", HELP_START_PATHCHECK, MPCLI_StartPhyPathCheck, N, "path_id"},
    // Aggregated VLUNs.
    {"migration", HELP_START_MIGRATION, MPCLI_StartMigration, N, "vlun_id direction rollback"},
    // LUN actions.
    {"rebalancelun", HELP_START_REBALANCELUN, MPCLI_StartRebalancelun, N, "array_id vlun_id"},
    {"iosuspension", HELP_START_IOSUSPENSION, MPCLI_StartIOSus, N, "vlun_id timeout"},
});

// Supported-array rules.
constexpr std::array kAdd = std::to_array<MPCLI_Option>({
    {"supportarraylist", HELP_ADD_SUPPORTARRAYLIST, MPCLI_AddSupportArrayList, N, "vendor product driver"},
});
constexpr std::array kDel = std::to_array<MPCLI_Option>({
    {"supportarraylist", HELP_DEL_SUPPORTARRAYLIST, MPCLI_DelSupportArrayList, N, "vendor product"},
});
constexpr std::array kClear = std::to_array<MPCLI_Option>({
    // Path commands.
    {"obsolete_path", HELP_CLEAR_OBSOLETE_PATH, MPCLI_ClearObsoletePath, N, "path_id"},
    {"path_statistic", HELP_CLEAR_PATH_STATISTIC, MPCLI_ClearPathStatistic, N, "path_id array_id"},
    // I/O reliability.
    {"io_count", HELP_CLEAR_IO_COUNT, MPCLI_ClearIoCount, N},
    // Effective configuration.
    {"cvconfig", HELP_CLEAR_CVCONFIG, MPCLI_ClearCvconfig, N, "array_id vlun_id"},
});

constexpr std::array kCheck = std::to_array<MPCLI_Option>({
    {"status", HELP_CHECK_STATUS, MPCLI_CheckStatus, N},
});

constexpr std::array kStop = std::to_array<MPCLI_Option>({
    // LUN actions.
    {"iosuspension", HELP_STOP_IOSUSPENSION, MPCLI_StopIOSus, N, "vlun_id"},
});

constexpr std::array kHelp = std::to_array<MPCLI_Option>({
    {"help", HELP_HELP, MPCLI_HelpHelp, N},
    {"?", HELP_QUESTION, MPCLI_HelpHelp, N},
    {"quit", HELP_QUIT, MPCLI_HelpQuit, N},
    {"show", "", MPCLI_HelpShow, N},
    {"set", "", MPCLI_HelpSet, N},
    {"start", "", MPCLI_HelpStart, N},
    {"clear", "", MPCLI_HelpClear, N},
    {"add", "", MPCLI_HelpAdd, N},
    {"del", "", MPCLI_HelpDel, N},
    {"check", "", MPCLI_HelpCheck, N},
    {"genprkey", HELP_GENPRKEY, MPCLI_HelpGenerateprkey, N},
    {"stop", "", MPCLI_HelpStop, N},
});

}  // namespace

constinit const MPCLI_Table g_stCLIOptionsType{kOptions};
constinit const MPCLI_Table g_stCLIOptionShowType{kShow};
constinit const MPCLI_Table g_stCLIOptionSetType{kSet};
constinit const MPCLI_Table g_stCLIOptionStartType{kStart};
constinit const MPCLI_Table g_stCLIOptionClearType{kClear};
constinit const MPCLI_Table g_stCLIOptionAddType{kAdd};
constinit const MPCLI_Table g_stCLIOptionDelType{kDel};
constinit const MPCLI_Table g_stCLIOptionCheckType{kCheck};
constinit const MPCLI_Table g_stCLIOptionStopType{kStop};
constinit const MPCLI_Table g_stCLIHelpOptionType{kHelp};
