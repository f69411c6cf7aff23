// The operation types of the command keywords: the codes the operation log
// knows each change by.
#include <array>
#include <cstring>
#include <string_view>

#include "cli/cli.h"
#include "cli/cli_settings.h"
#include "uil/uil_oper.h"

namespace {

struct OperType {
    const char* keyword;
    uint32_t type;
};

// Types that no event of the log carries are numbered from the base.
constexpr uint32_t kOperBase = 0x53415100;

// The rows are searched in order for the first keyword that begins with the
// text asked for. The second "iosuspension" and "cvRescan" rows can never
// match; they stay so the table keeps its shape.
constexpr std::array<OperType, 56> g_stGetOperType = {{
    {"workingmode", kOperBase + 0x16},
    {"loadbalancemode", UIL_OPER_LB_POLICY},
    {"luntrespass", UIL_OPER_LUNTRESPASS_OPEN},
    {"failbackdelaytime", UIL_OPER_FAILBACK_TIME},
    {"iosuspensiontime", UIL_OPER_HOLDON_TIME},
    {"ioretry", UIL_OPER_IO_RETRY},
    {"pathstate", kOperBase + 0x17},
    {"pathcheck", UIL_OPER_PATH_CHECK},
    {"updatetimezone", UIL_OPER_TIME_ZONE},
    {"phypathnormal", UIL_OPER_PHY_PATH_IOSTATE},
    {"tpgstate", kOperBase + 0x18},
    {"serial", UIL_OPER_CLEAR_ALARM},
    {"timeoutluntrespassdelaytime", UIL_OPER_FAILOVER_DELAY_TIME},
    {"busydelaytime", UIL_OPER_BUSY_DELAY_TIME},
    {"pathiostate", UIL_OPER_LOGIC_PATH_IOSTATE},
    {"stabletime", UIL_OPER_ALARM_STABLE_TIME},
    {"alarmenable", UIL_OPER_ALARM_ENABLE},
    {"path_reliability_enable", UIL_OPER_RELIABILITY_ENABLE},
    {"stop_iosuspension", UIL_OPER_CLOSE_IOSUSPENSION},
    {"rebalancelun", UIL_OPER_REBALANCE_LUN},
    {"lb_io_threshold", UIL_OPER_LB_IO_THRESHOLD},
    {"faulty_path_check_interval", UIL_OPER_FAULTY_PATH_CHECK},
    {"idle_path_check_interval", UIL_OPER_IDLE_PATH_CHECK},
    {"max_io_retry_timeout", UIL_OPER_IO_RETRY_TIMEOUT},
    {"tod_time", UIL_OPER_TOD_TIME},
    {"tod_threshold", UIL_OPER_TOD_THRESHOLD},
    {"tod_recovery_time", UIL_OPER_TOD_RECOVER_TIME},
    {"ied_time", UIL_OPER_IED_TIME},
    {"ied_min_io", UIL_OPER_IED_MIN_IO},
    {"ied_threshold", UIL_OPER_IED_THRESHOLD},
    {"ied_recovery_time", UIL_OPER_IED_RECOVER_TIME},
    {"ifd_time", UIL_OPER_IFD_TIME},
    {"ifd_threshold", UIL_OPER_IFD_THRESHOLD},
    {"ifd_recovery_time", UIL_OPER_IFD_RECOVER_TIME},
    {"obsolete_path", UIL_OPER_CLEAR_OBSOLETE_PATH},
    {"remote_controller", UIL_OPER_XVA_CONTROLLER},
    {"hld_time", UIL_OPER_HLD_TIME},
    {"hld_threshold", UIL_OPER_HLD_THRESHOLD},
    {"hld_recovery_time", UIL_OPER_HLD_RECOVER_TIME},
    {"io_latency_threshold", UIL_OPER_IO_LATENCY_THRESHOLD},
    {"io_count", UIL_OPER_CLEAR_IO_COUNT},
    {"cvconfig", UIL_OPER_CLEAR_CONFIG},
    {"performance_record", UIL_OPER_PERF_RECORD},
    {"path_statistic", UIL_OPER_CLEAR_PATH_STATISTIC},
    {"install Corvane service", UIL_OPER_INSTALL_SERVICE},
    {"uninstall Corvane service", UIL_OPER_UNINSTALL_SERVICE},
    {"start Corvane service", UIL_OPER_START_SERVICE},
    {"stop Corvane service", UIL_OPER_STOP_SERVICE},
    {"cvRescan", UIL_OPER_SCAN_DISK},
    {"dualsite", UIL_OPER_DS_MODE},
    {"migration", UIL_OPER_START_MIGRATION},
    {"iosuspension", UIL_OPER_START_IOSUSPENSION},
    {"iosuspension", UIL_OPER_STOP_IOSUSPENSION},
    {"cvRescan", UIL_OPER_SCAN_DISK},
    {"sdd_threshold", UIL_OPER_SDD_THRESHOLD},
    {"sdd_recovery_time", UIL_OPER_SDD_RECOVER_TIME},
}};

constexpr const OperType* findOperType(std::string_view keyword)
{
    for (const OperType& row : g_stGetOperType) {
        if (std::string_view(row.keyword).starts_with(keyword)) {
            return &row;
        }
    }
    return nullptr;
}

// A setting logs its changes under the operation type of its keyword.
constexpr bool settingsLogTheirOperType()
{
    for (const MPCLI_Setting& setting : g_stCLISettings) {
        const OperType* row = findOperType(setting.keyword);
        if (row == nullptr || row->type != setting.eventId) {
            return false;
        }
    }
    return true;
}
static_assert(settingsLogTheirOperType(), "a setting's event differs from its operation type");

}  // namespace

uint32_t MPCLI_GetOperType(const char* keyword, uint32_t* operType)
{
    CLI_ASSERT(keyword != NULL);
    CLI_ASSERT(operType != NULL);
    *operType = UIL_OPER_UNKNOWN;
    const OperType* row = findOperType(keyword);
    if (row == nullptr) {
        return MPI_RET_FAIL;
    }
    *operType = row->type;
    return MPI_RET_SUCCESS;
}
