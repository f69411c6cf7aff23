// The descriptions of the operation log: the format of every event in
// English and in Chinese (GB2312 bytes, written as escapes so that the
// source stays plain ASCII), and the builders that fill them from a
// setter's parameter record.
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uil/uil_convert.h"
#include "uil/uil_oper.h"

namespace {

constexpr std::array<UilOperLogFmt, UIL_OPER_FMT_ROWS> kOperLogFmt{{
    {0, UIL_OPER_LB_OPEN, "%s LB between controller %s",
     "%s\xbf\xd8\xd6\xc6\xc6\xf7\xbc\xe4\xb8\xba\xd4\xd8\xbe\xf9\xba\xe2%s"},
    {0, UIL_OPER_LB_CLOSE, "%s LB between controller %s",
     "%s\xbf\xd8\xd6\xc6\xc6\xf7\xbc\xe4\xb8\xba\xd4\xd8\xbe\xf9\xba\xe2%s"},
    {1, UIL_OPER_LB_POLICY, "Modify LB Algorithm to %s",
     "\xd0\xde\xb8\xc4\xb8\xba\xd4\xd8\xbe\xf9\xba\xe2\xcb\xe3\xb7\xa8\xce\xaa%s"},
    {1, UIL_OPER_LUNTRESPASS_OPEN, "%s Luntrespass feature %s",
     "%sLUN\xb9\xe9\xca\xf4\xc7\xd0\xbb\xbb\xcc\xd8\xd0\xd4%s"},
    {1, UIL_OPER_LUNTRESPASS_CLOSE, "%s Luntrespass feature %s",
     "%sLUN\xb9\xe9\xca\xf4\xc7\xd0\xbb\xbb\xcc\xd8\xd0\xd4%s"},
    {1, UIL_OPER_FAILBACK_TIME, "Set failback time to %s s",
     "\xc9\xe8\xd6\xc3\xb9\xca\xd5\xcf\xbb\xd8\xc7\xd0\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_HOLDON_TIME, "Set hold on time to %s s %s",
     "\xc9\xe8\xd6\xc3I/O\xb9\xd2\xc6\xf0\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb%s"},
    {1, UIL_OPER_IO_RETRY, "Set IO retry count to %s and retry interval to %s s",
     "\xc9\xe8\xd6\xc3I/O\xd6\xd8\xca\xd4\xb4\xce\xca\xfd\xce\xaa%s\xa3\xac\xd6\xd8\xca\xd4\xbc\xe4\xb8\xf4\xce\xaa%s\xc3\xeb"},
    {0, UIL_OPER_FAILOVER_DELAY_TIME, "Set resume failover delay time to %u s",
     "\xc9\xe8\xd6\xc3\xbb\xd6\xb8\xb4\xb9\xca\xd5\xcf\xc7\xd0\xbb\xbb\xd1\xd3\xb3\xd9\xca\xb1\xbc\xe4\xce\xaa%u\xc3\xeb"},
    {0, UIL_OPER_BUSY_DELAY_TIME, "Set resume busy delay time to %u s",
     "\xc9\xe8\xd6\xc3\xbb\xd6\xb8\xb4\xc3\xa6\xd1\xd3\xb3\xd9\xca\xb1\xbc\xe4\xce\xaa%u\xc3\xeb"},
    {1, UIL_OPER_PATH_ENABLE, "%s physical path(path id = %u)",
     "%s\xce\xef\xc0\xed\xc2\xb7\xbe\xb6(\xc2\xb7\xbe\xb6ID = %u)"},
    {2, UIL_OPER_PATH_DISABLE, "%s physical path(path id = %u)",
     "%s\xce\xef\xc0\xed\xc2\xb7\xbe\xb6(\xc2\xb7\xbe\xb6ID = %u)"},
    {0, UIL_OPER_PATH_CHECK, "Send path(path id = %s)health check conmand",
     "\xcf\xc2\xb7\xa2\xc2\xb7\xbe\xb6(\xc2\xb7\xbe\xb6ID = %s)\xbd\xa1\xbf\xb5\xbc\xec\xb2\xe9\xc3\xfc\xc1\xee"},
    {1, UIL_OPER_CTRL_ENABLE, "%s controller %s(array ID = %u)",
     "%s\xbf\xd8\xd6\xc6\xc6\xf7%s(\xd5\xf3\xc1\xd0ID = %u)"},
    {2, UIL_OPER_CTRL_DISABLE, "%s controller %s(array ID = %u)",
     "%s\xbf\xd8\xd6\xc6\xc6\xf7%s(\xd5\xf3\xc1\xd0ID = %u)"},
    {1, UIL_OPER_WRITE_CONFIG, "(%s)Write to configuration",
     "(%s)\xd0\xb4\xc8\xeb\xc5\xe4\xd6\xc3"},
    {1, UIL_OPER_TIME_ZONE, "Set time zone to %d hour",
     "\xc9\xe8\xd6\xc3\xca\xb1\xc7\xf8\xce\xaa%d\xd0\xa1\xca\xb1"},
    {1, UIL_OPER_GEN_PRKEY, "Generate PR key",
     "\xc9\xfa\xb3\xc9PR\xc3\xdc\xd4\xbf"},
    {1, UIL_OPER_UPDATE_DISK_DRIVER, "Update disk driver",
     "\xb8\xfc\xd0\xc2\xb4\xc5\xc5\xcc\xc7\xfd\xb6\xaf"},
    {1, UIL_OPER_PHY_PATH_IOSTATE, "Set physical path(id = %u)iostate to %s",
     "\xc9\xe8\xd6\xc3\xce\xef\xc0\xed\xc2\xb7\xbe\xb6(ID = %u)\xb5\xc4I/O\xd7\xb4\xcc\xac\xce\xaa%s"},
    {1, UIL_OPER_LOGIC_PATH_IOSTATE, "Set logic path(path id = %u)iostate to %s",
     "\xc9\xe8\xd6\xc3\xc2\xdf\xbc\xad\xc2\xb7\xbe\xb6(\xc2\xb7\xbe\xb6ID = %u)\xb5\xc4I/O\xd7\xb4\xcc\xac\xce\xaa%s"},
    {1, UIL_OPER_ADD_VENDOR, "Add a support array vendorid=%s,proudctid=%s",
     "\xcc\xed\xbc\xd3\xd6\xa7\xb3\xd6\xb5\xc4\xd5\xf3\xc1\xd0\xa3\xac\xb3\xa7\xc9\xccID=%s\xa3\xac\xb2\xfa\xc6\xb7ID=%s"},
    {1, UIL_OPER_DEL_VENDOR, "Delete a support array vendorid=%s,proudctid=%s",
     "\xc9\xbe\xb3\xfd\xd6\xa7\xb3\xd6\xb5\xc4\xd5\xf3\xc1\xd0\xa3\xac\xb3\xa7\xc9\xccID=%s\xa3\xac\xb2\xfa\xc6\xb7ID=%s"},
    {1, UIL_OPER_CLEAR_ALARM, "Clear alarm (serial=%s)",
     "\xc7\xe5\xb3\xfd\xb8\xe6\xbe\xaf(\xd0\xf2\xc1\xd0\xba\xc5=%s)"},
    {1, UIL_OPER_ALARM_STABLE_TIME, "Set Alarm IO stable time to %s and delay time to %s s",
     "\xc9\xe8\xd6\xc3\xb8\xe6\xbe\xafI/O\xce\xc8\xb6\xa8\xca\xb1\xbc\xe4\xce\xaa%s\xa3\xac\xd1\xd3\xb3\xd9\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_START_MIGRATION, "Start migration(direction/rollback: %s) for vlun_id=%s",
     "\xc6\xf4\xb6\xaf\xc7\xa8\xd2\xc6(\xb7\xbd\xcf\xf2/\xbb\xd8\xb9\xf6\xa3\xba%s)\xa3\xacVLUN ID=%s"},
    {1, UIL_OPER_START_IOSUSPENSION, "Start iosuspension (timeout=%s S) for vlun_id=%s",
     "\xc6\xf4\xb6\xafI/O\xb9\xd2\xc6\xf0(\xb3\xac\xca\xb1\xca\xb1\xbc\xe4=%s\xc3\xeb)\xa3\xacVLUN ID=%s"},
    {1, UIL_OPER_STOP_IOSUSPENSION, "Stop iosuspension vlun_id=%s",
     "\xcd\xa3\xd6\xb9I/O\xb9\xd2\xc6\xf0\xa3\xacVLUN ID=%s"},
    {1, UIL_OPER_REBALANCE_LUN, "Start rebalancelun %s",
     "\xc6\xf4\xb6\xafLUN\xd6\xd8\xd0\xc2\xbe\xf9\xba\xe2%s"},
    {1, UIL_OPER_LB_IO_THRESHOLD, "Set the number (%s) of I/O to route to a path before switching to the next path %s",
     "\xc9\xe8\xd6\xc3\xc7\xd0\xbb\xbb\xb5\xbd\xcf\xc2\xd2\xbb\xcc\xf5\xc2\xb7\xbe\xb6\xc7\xb0\xb5\xa5\xcc\xf5\xc2\xb7\xbe\xb6\xcf\xc2\xb7\xa2\xb5\xc4I/O\xca\xfd\xce\xaa%s%s"},
    {1, UIL_OPER_FAULTY_PATH_CHECK, "Set faulty path check interval %s s",
     "\xc9\xe8\xd6\xc3\xb9\xca\xd5\xcf\xc2\xb7\xbe\xb6\xbc\xec\xb2\xe2\xbc\xe4\xb8\xf4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_IDLE_PATH_CHECK, "Set idle path check interval %s s",
     "\xc9\xe8\xd6\xc3\xbf\xd5\xcf\xd0\xc2\xb7\xbe\xb6\xbc\xec\xb2\xe2\xbc\xe4\xb8\xf4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_IO_RETRY_TIMEOUT, "Set io retry timeout %s s %s",
     "\xc9\xe8\xd6\xc3I/O\xd6\xd8\xca\xd4\xb3\xac\xca\xb1\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb%s"},
    {1, UIL_OPER_TOD_TIME, "Set io timeout degrade time %s s",
     "\xc9\xe8\xd6\xc3I/O\xb3\xac\xca\xb1\xbd\xb5\xbc\xb6\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_TOD_THRESHOLD, "Set io timeout degrade threshold %s times",
     "\xc9\xe8\xd6\xc3I/O\xb3\xac\xca\xb1\xbd\xb5\xbc\xb6\xe3\xd0\xd6\xb5\xce\xaa%s\xb4\xce"},
    {1, UIL_OPER_TOD_RECOVER_TIME, "Set io timeout degrade recovery time %s s",
     "\xc9\xe8\xd6\xc3I/O\xb3\xac\xca\xb1\xbd\xb5\xbc\xb6\xbb\xd6\xb8\xb4\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_IED_TIME, "Set io intermittent error degrade time %s s",
     "\xc9\xe8\xd6\xc3I/O\xbc\xe4\xd0\xaa\xd0\xd4\xb4\xed\xce\xf3\xbd\xb5\xbc\xb6\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_IED_MIN_IO, "Set io intermittent error degrade min io count %s",
     "\xc9\xe8\xd6\xc3I/O\xbc\xe4\xd0\xaa\xd0\xd4\xb4\xed\xce\xf3\xbd\xb5\xbc\xb6\xd7\xee\xd0\xa1I/O\xca\xfd\xce\xaa%s"},
    {1, UIL_OPER_IED_THRESHOLD, "Set io intermittent error degrade threshold %s",
     "\xc9\xe8\xd6\xc3I/O\xbc\xe4\xd0\xaa\xd0\xd4\xb4\xed\xce\xf3\xbd\xb5\xbc\xb6\xe3\xd0\xd6\xb5\xce\xaa%s"},
    {1, UIL_OPER_IED_RECOVER_TIME, "Set io intermittent error degrade recovery time %s s",
     "\xc9\xe8\xd6\xc3I/O\xbc\xe4\xd0\xaa\xd0\xd4\xb4\xed\xce\xf3\xbd\xb5\xbc\xb6\xbb\xd6\xb8\xb4\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_IFD_TIME, "Set io intermittent fault degrade time %s s",
     "\xc9\xe8\xd6\xc3I/O\xbc\xe4\xd0\xaa\xd0\xd4\xb9\xca\xd5\xcf\xbd\xb5\xbc\xb6\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_IFD_THRESHOLD, "Set io intermittent fault degrade threshold %s times",
     "\xc9\xe8\xd6\xc3I/O\xbc\xe4\xd0\xaa\xd0\xd4\xb9\xca\xd5\xcf\xbd\xb5\xbc\xb6\xe3\xd0\xd6\xb5\xce\xaa%s\xb4\xce"},
    {1, UIL_OPER_IFD_RECOVER_TIME, "Set io intermittent fault degrade recovery time %s s",
     "\xc9\xe8\xd6\xc3I/O\xbc\xe4\xd0\xaa\xd0\xd4\xb9\xca\xd5\xcf\xbd\xb5\xbc\xb6\xbb\xd6\xb8\xb4\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_CLEAR_OBSOLETE_PATH, "Clear obsolete path(path id = %s)",
     "\xc7\xe5\xb3\xfd\xca\xa7\xd0\xa7\xc2\xb7\xbe\xb6(\xc2\xb7\xbe\xb6ID = %s)"},
    {1, UIL_OPER_XVA_CONTROLLER, "Set xva %s controller %s (XVA ID = %u)",
     "\xc9\xe8\xd6\xc3XVA%s\xbf\xd8\xd6\xc6\xc6\xf7%s(XVA ID = %u)"},
    {1, UIL_OPER_DS_MODE, "Set dualsite workingmode(mode=%s,primary_array_id=%u) %s",
     "\xc9\xe8\xd6\xc3\xcb\xab\xbb\xee\xb9\xa4\xd7\xf7\xc4\xa3\xca\xbd(\xc4\xa3\xca\xbd=%s\xa3\xac\xd6\xf7\xd5\xf3\xc1\xd0ID=%u)%s"},
    {1, UIL_OPER_DS_SPLIT_SIZE, "Set dualsite split size (size=%s *512) %s",
     "\xc9\xe8\xd6\xc3\xcb\xab\xbb\xee\xb7\xd6\xc6\xac\xb4\xf3\xd0\xa1(\xb4\xf3\xd0\xa1=%s *512)%s"},
    {1, UIL_OPER_SCSI2_TO_SCSI3, "Set scis2 to scsi3 switch.",
     "\xc9\xe8\xd6\xc3SCSI2\xb5\xbdSCSI3\xc7\xd0\xbb\xbb\xa1\xa3"},
    {1, UIL_OPER_HLD_TIME, "Set high latency degraded time %s s",
     "\xc9\xe8\xd6\xc3\xb8\xdf\xca\xb1\xd1\xd3\xbd\xb5\xbc\xb6\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_HLD_THRESHOLD, "Set high latency degraded threshold %s ms",
     "\xc9\xe8\xd6\xc3\xb8\xdf\xca\xb1\xd1\xd3\xbd\xb5\xbc\xb6\xe3\xd0\xd6\xb5\xce\xaa%s\xba\xc1\xc3\xeb"},
    {1, UIL_OPER_HLD_RECOVER_TIME, "Set high latency degraded recovery time %s s",
     "\xc9\xe8\xd6\xc3\xb8\xdf\xca\xb1\xd1\xd3\xbd\xb5\xbc\xb6\xbb\xd6\xb8\xb4\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_IO_LATENCY_THRESHOLD, "Set IO latency threshold time %s ms",
     "\xc9\xe8\xd6\xc3I/O\xca\xb1\xd1\xd3\xe3\xd0\xd6\xb5\xce\xaa%s\xba\xc1\xc3\xeb"},
    {1, UIL_OPER_CLEAR_IO_COUNT, "Clear I/O count",
     "\xc7\xe5\xb3\xfdI/O\xbc\xc6\xca\xfd"},
    {1, UIL_OPER_CLEAR_CONFIG, "Clear config %s",
     "\xc7\xe5\xb3\xfd\xc5\xe4\xd6\xc3%s"},
    {1, UIL_OPER_IO_RETRY_COUNT, "Set IO retry count to %s",
     "\xc9\xe8\xd6\xc3I/O\xd6\xd8\xca\xd4\xb4\xce\xca\xfd\xce\xaa%s"},
    {1, UIL_OPER_IO_RETRY_INTERVAL, "Set IO retry interval to %s s",
     "\xc9\xe8\xd6\xc3I/O\xd6\xd8\xca\xd4\xbc\xe4\xb8\xf4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_SDD_THRESHOLD, "Set I/O sensitive delayed degrade threshold time %s ms",
     "\xc9\xe8\xd6\xc3I/O\xc3\xf4\xb8\xd0\xca\xb1\xd1\xd3\xbd\xb5\xbc\xb6\xe3\xd0\xd6\xb5\xca\xb1\xbc\xe4\xce\xaa%s\xba\xc1\xc3\xeb"},
    {1, UIL_OPER_SDD_RECOVER_TIME, "Set I/O sensitive delayed degrade recovery time %s s",
     "\xc9\xe8\xd6\xc3I/O\xc3\xf4\xb8\xd0\xca\xb1\xd1\xd3\xbd\xb5\xbc\xb6\xbb\xd6\xb8\xb4\xca\xb1\xbc\xe4\xce\xaa%s\xc3\xeb"},
    {1, UIL_OPER_INSTALL_SERVICE, "Install Corvane service",
     "\xb0\xb2\xd7\xb0" "Corvane\xb7\xfe\xce\xf1"},
    {1, UIL_OPER_UNINSTALL_SERVICE, "Uninstall Corvane service",
     "\xd0\xb6\xd4\xd8" "Corvane\xb7\xfe\xce\xf1"},
    {1, UIL_OPER_START_SERVICE, "Start Corvane service",
     "\xc6\xf4\xb6\xaf" "Corvane\xb7\xfe\xce\xf1"},
    {1, UIL_OPER_STOP_SERVICE, "Stop Corvane service",
     "\xcd\xa3\xd6\xb9" "Corvane\xb7\xfe\xce\xf1"},
    {1, UIL_OPER_SCAN_DISK, "Scan disk device",
     "\xc9\xa8\xc3\xe8\xb4\xc5\xc5\xcc\xc9\xe8\xb1\xb8"},
    {1, UIL_OPER_LB_POLICY_ALT, "Modify LB Algorithm to %s",
     "\xd0\xde\xb8\xc4\xb8\xba\xd4\xd8\xbe\xf9\xba\xe2\xcb\xe3\xb7\xa8\xce\xaa%s"},
    {1, UIL_OPER_REMOVE_DISKS, "Remove disks by array",
     "\xb0\xb4\xd5\xf3\xc1\xd0\xc9\xbe\xb3\xfd\xb4\xc5\xc5\xcc"},
    {1, UIL_OPER_REMOVE_DISKS_BY_ARRAY, "Remove disks by array id=%s",
     "\xb0\xb4\xd5\xf3\xc1\xd0\xc9\xbe\xb3\xfd\xb4\xc5\xc5\xcc\xa3\xac\xd5\xf3\xc1\xd0ID=%s"},
    {1, UIL_OPER_REMOVE_DISKS_BY_VLUN, "Remove disks by vlun_id=%s %s",
     "\xb0\xb4VLUN\xc9\xbe\xb3\xfd\xb4\xc5\xc5\xcc\xa3\xacVLUN ID=%s%s"},
    {1, UIL_OPER_REGISTER_HOST, "Register host",
     "\xd7\xa2\xb2\xe1\xd6\xf7\xbb\xfa"},
    {1, UIL_OPER_APD_TO_PDL, "Set APDtoPDL feature mode=%s",
     "\xc9\xe8\xd6\xc3" "APD\xd7\xaaPDL\xcc\xd8\xd0\xd4\xc4\xa3\xca\xbd\xce\xaa%s"},
    {1, UIL_OPER_ALARM_ENABLE, "%s AlarmEnable feature ",
     "%s\xb8\xe6\xbe\xaf\xc9\xcf\xb1\xa8\xcc\xd8\xd0\xd4"},
    {1, UIL_OPER_RELIABILITY_ENABLE, "%s ReliabilityEnable feature ",
     "%s\xc2\xb7\xbe\xb6\xbf\xc9\xbf\xbf\xd0\xd4\xbc\xec\xb2\xe2\xcc\xd8\xd0\xd4"},
    {1, UIL_OPER_HBA_ENABLE, "%s hba ,hba id = %u)",
     "%sHBA(HBA ID = %u)"},
    {2, UIL_OPER_HBA_DISABLE, "%s hba ,hba id = %u)",
     "%sHBA(HBA ID = %u)"},
    {1, UIL_OPER_CLOSE_IOSUSPENSION, "Close {%s} io suspension",
     "\xb9\xd8\xb1\xd5{%s}\xb5\xc4I/O\xb9\xd2\xc6\xf0"},
    {1, UIL_OPER_CLEAR_RECORD_PROCESSES, "clear all record I/O subprocess",
     "\xc7\xe5\xb3\xfd\xcb\xf9\xd3\xd0\xbc\xc7\xc2\xbcI/O\xb5\xc4\xd7\xd3\xbd\xf8\xb3\xcc"},
    {1, UIL_OPER_CREATE_RECORD_PROCESS, "create a record I/O subprocess",
     "\xb4\xb4\xbd\xa8\xbc\xc7\xc2\xbcI/O\xb5\xc4\xd7\xd3\xbd\xf8\xb3\xcc"},
    {1, UIL_OPER_WRITE_PERF_REPORT, "Start writing performance data to report",
     "\xbf\xaa\xca\xbc\xbd\xab\xd0\xd4\xc4\xdc\xca\xfd\xbe\xdd\xd0\xb4\xc8\xeb\xb1\xa8\xb8\xe6"},
    {1, UIL_OPER_PERF_RECORD, "%s performance record, duration is %s hours",
     "%s\xd0\xd4\xc4\xdc\xbc\xc7\xc2\xbc\xa3\xac\xb3\xd6\xd0\xf8\xca\xb1\xbc\xe4\xce\xaa%s\xd0\xa1\xca\xb1"},
    {1, UIL_OPER_CLEAR_PATH_STATISTIC, "Clear path statistic %s",
     "\xc7\xe5\xb3\xfd\xc2\xb7\xbe\xb6\xcd\xb3\xbc\xc6%s"},
}};

// Words the builders put into the descriptions.
constexpr const char kOpenZh[] = "\xbf\xaa\xc6\xf4";
constexpr const char kCloseZh[] = "\xb9\xd8\xb1\xd5";
constexpr const char kEnableZh[] = "\xc6\xf4\xd3\xc3";
constexpr const char kDisableZh[] = "\xbd\xfb\xd3\xc3";

constexpr std::array<UilStrConvert, 2> kDsModeConvert{{
    {"balance", "balance", "\xcb\xab\xd5\xf3\xc1\xd0\xbc\xe4\xb6\xc1\xd0\xb4"},
    {"priority", "priority", "\xd6\xf7\xd5\xf3\xc1\xd0\xc4\xda\xb6\xc1\xd0\xb4"},
}};

constexpr std::array<UilStrConvert, 2> kXvaSideConvert{{
    {"local", "local", "\xb1\xbe\xb5\xd8"},
    {"remote", "remote", "\xd4\xb6\xb6\xcb"},
}};

constexpr const char kAllSerials[] = "all";
constexpr const char kAllSerialsZh[] = "\xc8\xab\xb2\xbf";

constexpr size_t kDsc = UIL_OPER_DSC_LEN;
constexpr size_t kWord = UIL_OPER_LOG_VALUE_LEN;

// A GB2312 character is two bytes of 0xA1..0xFE; a text cut to fit must
// not end in the first half of one.
void dropTornGb2312Tail(char* text)
{
    size_t i = 0;
    while (text[i] != '\0') {
        if (static_cast<unsigned char>(text[i]) < 0x80) {
            ++i;
        } else if (text[i + 1] == '\0') {
            text[i] = '\0';
            return;
        } else {
            i += 2;
        }
    }
}

// Formats one description, cut to the description size.
template <typename... Args>
void formatDsc(char* out, const char* format, Args... args)
{
    (void)snprintf_s(out, kDsc, kDsc - 1, format, args...);
}

template <typename... Args>
void formatLocalDsc(char* out, const char* format, Args... args)
{
    formatDsc(out, format, args...);
    dropTornGb2312Tail(out);
}

const char* pick(UilLang lang, const char* english, const char* chinese)
{
    return lang == UIL_LANG_ENGLISH ? english : chinese;
}

template <typename Row, size_t N, typename KeyOf>
const char* convertWord(const std::array<Row, N>& table, const char* key, UilLang lang, KeyOf keyOf)
{
    if (key != nullptr) {
        for (const Row& row : table) {
            if (std::strcmp(keyOf(row), key) == 0) {
                return pick(lang, row.english, row.chinese);
            }
        }
    }
    return UIL_UNKNOWN_STR;
}

const char* convertWord(const std::array<UilStrConvert, 2>& table, const char* key, UilLang lang)
{
    return UIL_StrTypeConvertToStr(table.data(), table.size(), key, lang);
}

// The object a setting was made for: "for array id 3", "for vlun id 5",
// "for path id 7"; nothing for the whole host or an unknown type.
void objectPhrase(const UilOperLogPara& record, UilLang lang, char* out, size_t size)
{
    out[0] = '\0';
    for (const UilOpenLb& row : g_astUILOpenLB) {
        if (row.objectType == record.uiObjType) {
            (void)snprintf_s(out, size, size - 1, pick(lang, row.english, row.chinese), record.uiObjId);
            return;
        }
    }
}

// The record's value, always terminated whatever the caller left in it.
struct Value {
    char text[kWord];
    explicit Value(const UilOperLogPara& record)
    {
        (void)memcpy_s(text, sizeof(text), record.szValue, sizeof(record.szValue));
        text[sizeof(text) - 1] = '\0';
    }
};

// "first,second" split at the first separator (a comma unless said
// otherwise); none: all of it is first.
struct Pair {
    char first[kWord] = {};
    char second[kWord] = {};
    explicit Pair(const UilOperLogPara& record, char separator = ',')
    {
        Value value(record);
        char* comma = std::strchr(value.text, separator);
        if (comma != nullptr) {
            *comma = '\0';
            (void)strcpy_s(second, sizeof(second), comma + 1);
        }
        (void)strcpy_s(first, sizeof(first), value.text);
    }
};

// Decimal text of the value; what is not a number reads 0.
uint32_t valueAsUint(const char* text)
{
    uint32_t value = 0;
    return MPI_ToU32(text, &value) ? value : 0;
}

// The same with an optional "-"; what does not fit 32 signed bits reads 0.
int32_t valueAsInt(const char* text)
{
    const std::string_view digits = text[0] == '-' ? std::string_view(text + 1) : std::string_view(text);
    const uint32_t limit = text[0] == '-' ? uint32_t{INT32_MAX} + 1 : uint32_t{INT32_MAX};
    uint32_t magnitude = 0;
    if (MPI_ParseU32(digits, 0, limit, &magnitude) != MPI_Num::Ok) {
        return 0;
    }
    return text[0] == '-' ? static_cast<int32_t>(-static_cast<int64_t>(magnitude)) : static_cast<int32_t>(magnitude);
}

// Both descriptions from one word per language and the object phrase.
void switchAndObject(const UilOperLogFmt& row, const UilOperLogPara& record, const std::array<UilStrConvert, 2>& words,
                     char* english, char* localised)
{
    Value value(record);
    char objEn[kWord];
    char objZh[kWord];
    objectPhrase(record, UIL_LANG_ENGLISH, objEn, sizeof(objEn));
    objectPhrase(record, UIL_LANG_LOCAL, objZh, sizeof(objZh));
    formatDsc(english, row.english, convertWord(words, value.text, UIL_LANG_ENGLISH), objEn);
    formatLocalDsc(localised, row.localised, convertWord(words, value.text, UIL_LANG_LOCAL), objZh);
}

void delayTime(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    uint32_t seconds = valueAsUint(Value(record).text);
    formatDsc(english, row.english, seconds);
    formatLocalDsc(localised, row.localised, seconds);
}

}  // namespace

const std::array<UilOperLogFmt, UIL_OPER_FMT_ROWS> g_astUILOperLogFmt = kOperLogFmt;

const std::array<UilStrConvert, 2> g_astUILOpenCloseConvert{{
    {"1", "Open", kOpenZh},
    {"0", "Close", kCloseZh},
}};

const std::array<UilStrConvert, 2> g_astUILEnableDisableConvert{{
    {"1", "Enable", kEnableZh},
    {"0", "Disable", kDisableZh},
}};

// ---------------------------------------------------------------------------
// Value-to-text routines.

const char* UIL_StrTypeConvertToStr(const UilStrConvert* table, size_t rows, const char* key, UilLang lang)
{
    if (table == nullptr || key == nullptr) {
        return UIL_UNKNOWN_STR;
    }
    for (size_t i = 0; i < rows; ++i) {
        if (std::strcmp(table[i].keyword, key) == 0) {
            return pick(lang, table[i].english, table[i].chinese);
        }
    }
    return UIL_UNKNOWN_STR;
}

const char* UIL_BoolTypeConvertToStr(const UilStrConvert* table, size_t rows, bool value, UilLang lang)
{
    return UIL_StrTypeConvertToStr(table, rows, value ? "1" : "0", lang);
}

void UIL_IntTypeConvertToStr(int32_t value, char* out, size_t size)
{
    UIL_ASSERT(out != NULL);
    (void)snprintf_s(out, size, size - 1, "%d", value);
}

void UIL_UintTypeConvertToStr(uint32_t value, char* out, size_t size)
{
    UIL_ASSERT(out != NULL);
    (void)snprintf_s(out, size, size - 1, "%u", value);
}

// ---------------------------------------------------------------------------
// Builders.

void UIL_GetOperDscWithNoneParam(const UilOperLogFmt& row, const UilOperLogPara&, char* english, char* localised)
{
    formatDsc(english, "%s", row.english);
    formatLocalDsc(localised, "%s", row.localised);
}

void UIL_GetOperOneParam(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    Value value(record);
    formatDsc(english, row.english, value.text);
    formatLocalDsc(localised, row.localised, value.text);
}

void UIL_GetOperTwoParam(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    Value value(record);
    char objEn[kWord];
    char objZh[kWord];
    objectPhrase(record, UIL_LANG_ENGLISH, objEn, sizeof(objEn));
    objectPhrase(record, UIL_LANG_LOCAL, objZh, sizeof(objZh));
    formatDsc(english, row.english, value.text, objEn);
    formatLocalDsc(localised, row.localised, value.text, objZh);
}

void UIL_OpenCloseDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    switchAndObject(row, record, g_astUILOpenCloseConvert, english, localised);
}

// Load balancing between controllers: the value is that switch itself
// ("1" when balancing between the controllers is on).
void UIL_OpenCloseLBDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    switchAndObject(row, record, g_astUILOpenCloseConvert, english, localised);
}

void UIL_EnableDisableDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    Value value(record);
    formatDsc(english, row.english, convertWord(g_astUILEnableDisableConvert, value.text, UIL_LANG_ENGLISH),
              record.uiObjId);
    formatLocalDsc(localised, row.localised, convertWord(g_astUILEnableDisableConvert, value.text, UIL_LANG_LOCAL),
                   record.uiObjId);
}

void UIL_OpenClosePerfRecordDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                                char* localised)
{
    Pair pair(record);
    formatDsc(english, row.english, convertWord(g_astUILOpenCloseConvert, pair.first, UIL_LANG_ENGLISH),
              pair.second);
    formatLocalDsc(localised, row.localised, convertWord(g_astUILOpenCloseConvert, pair.first, UIL_LANG_LOCAL),
                   pair.second);
}

void UIL_GetOperLBDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    Value value(record);
    auto keyOf = [](const UilLbConvert& r) { return r.keyword; };
    formatDsc(english, row.english, convertWord(g_astUILLbConvert, value.text, UIL_LANG_ENGLISH, keyOf));
    formatLocalDsc(localised, row.localised, convertWord(g_astUILLbConvert, value.text, UIL_LANG_LOCAL, keyOf));
}

void UIL_GetOperDsModeDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    Pair pair(record);
    uint32_t primary = valueAsUint(pair.second);
    char objEn[kWord];
    char objZh[kWord];
    objectPhrase(record, UIL_LANG_ENGLISH, objEn, sizeof(objEn));
    objectPhrase(record, UIL_LANG_LOCAL, objZh, sizeof(objZh));
    formatDsc(english, row.english, convertWord(kDsModeConvert, pair.first, UIL_LANG_ENGLISH), primary, objEn);
    formatLocalDsc(localised, row.localised, convertWord(kDsModeConvert, pair.first, UIL_LANG_LOCAL), primary, objZh);
}

void UIL_GetOperIORetryTimeDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                               char* localised)
{
    Pair pair(record);
    formatDsc(english, row.english, pair.first, pair.second);
    formatLocalDsc(localised, row.localised, pair.first, pair.second);
}

void UIL_GetOperTimeZoneDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    int32_t hours = valueAsInt(Value(record).text);
    formatDsc(english, row.english, hours);
    formatLocalDsc(localised, row.localised, hours);
}

void UIL_GetOperPathIoStateDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                               char* localised)
{
    Value value(record);
    auto keyOf = [](const UilPhyPathIoStateConvert& r) { return r.code; };
    formatDsc(english, row.english, record.uiObjId,
              convertWord(g_astUILPhyPathIOStateConvert, value.text, UIL_LANG_ENGLISH, keyOf));
    formatLocalDsc(localised, row.localised, record.uiObjId,
                   convertWord(g_astUILPhyPathIOStateConvert, value.text, UIL_LANG_LOCAL, keyOf));
}

void UIL_GetOperClearAlarmDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                              char* localised)
{
    Value value(record);
    bool all = value.text[0] == '\0';
    formatDsc(english, row.english, all ? kAllSerials : value.text);
    formatLocalDsc(localised, row.localised, all ? kAllSerialsZh : value.text);
}

void UIL_GetCtrlOper(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    Pair pair(record);
    formatDsc(english, row.english, convertWord(g_astUILEnableDisableConvert, pair.first, UIL_LANG_ENGLISH),
              pair.second, record.uiObjId);
    formatLocalDsc(localised, row.localised,
                   convertWord(g_astUILEnableDisableConvert, pair.first, UIL_LANG_LOCAL), pair.second,
                   record.uiObjId);
}

void UIL_GetXvaLocalRemoteCtrlParam(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                                    char* localised)
{
    Pair pair(record);
    formatDsc(english, row.english, convertWord(kXvaSideConvert, pair.first, UIL_LANG_ENGLISH), pair.second,
              record.uiObjId);
    formatLocalDsc(localised, row.localised, convertWord(kXvaSideConvert, pair.first, UIL_LANG_LOCAL), pair.second,
                   record.uiObjId);
}

void UIL_AddDelSupportArray(const UilOperLogFmt& row, const UilOperLogPara& record, char* english, char* localised)
{
    // The record of a rule is "vendor;product" (UIL_VendorOperRecord): a
    // product may hold a comma, never a ";".
    Pair pair(record, ';');
    formatDsc(english, row.english, pair.first, pair.second);
    formatLocalDsc(localised, row.localised, pair.first, pair.second);
}

void UIL_GetOperArrayVlunIDParam(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                                 char* localised)
{
    Value value(record);
    char id[16];
    UIL_UintTypeConvertToStr(record.uiObjId, id, sizeof(id));
    formatDsc(english, row.english, value.text, id);
    formatLocalDsc(localised, row.localised, value.text, id);
}

void UIL_GetOperFailoverDelayTimeDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                                     char* localised)
{
    delayTime(row, record, english, localised);
}

void UIL_GetOperBusyDelayTimeDsc(const UilOperLogFmt& row, const UilOperLogPara& record, char* english,
                                 char* localised)
{
    delayTime(row, record, english, localised);
}

// ---------------------------------------------------------------------------
// The builder of each event. Events without a row get empty descriptions:
// "Write to configuration" is formatted from the command text instead, and
// the others are operations of host tools that this program never runs.

namespace {

constexpr std::array<UilOperCmdExcute, UIL_OPER_BUILDER_ROWS> kOperCmdExcute{{
    {UIL_OPER_LB_OPEN, UIL_OpenCloseLBDsc},
    {UIL_OPER_LB_CLOSE, UIL_OpenCloseLBDsc},
    {UIL_OPER_LB_POLICY, UIL_GetOperLBDsc},
    {UIL_OPER_LUNTRESPASS_OPEN, UIL_OpenCloseDsc},
    {UIL_OPER_LUNTRESPASS_CLOSE, UIL_OpenCloseDsc},
    {UIL_OPER_FAILBACK_TIME, UIL_GetOperOneParam},
    {UIL_OPER_HOLDON_TIME, UIL_GetOperTwoParam},
    {UIL_OPER_IO_RETRY, UIL_GetOperIORetryTimeDsc},
    {UIL_OPER_FAILOVER_DELAY_TIME, UIL_GetOperFailoverDelayTimeDsc},
    {UIL_OPER_BUSY_DELAY_TIME, UIL_GetOperBusyDelayTimeDsc},
    {UIL_OPER_PATH_ENABLE, UIL_EnableDisableDsc},
    {UIL_OPER_PATH_DISABLE, UIL_EnableDisableDsc},
    {UIL_OPER_PATH_CHECK, UIL_GetOperOneParam},
    {UIL_OPER_CTRL_ENABLE, UIL_GetCtrlOper},
    {UIL_OPER_CTRL_DISABLE, UIL_GetCtrlOper},
    {UIL_OPER_TIME_ZONE, UIL_GetOperTimeZoneDsc},
    {UIL_OPER_GEN_PRKEY, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_PHY_PATH_IOSTATE, UIL_GetOperPathIoStateDsc},
    {UIL_OPER_LOGIC_PATH_IOSTATE, UIL_GetOperPathIoStateDsc},
    {UIL_OPER_ADD_VENDOR, UIL_AddDelSupportArray},
    {UIL_OPER_DEL_VENDOR, UIL_AddDelSupportArray},
    {UIL_OPER_CLEAR_ALARM, UIL_GetOperClearAlarmDsc},
    {UIL_OPER_ALARM_STABLE_TIME, UIL_GetOperIORetryTimeDsc},
    {UIL_OPER_START_MIGRATION, UIL_GetOperArrayVlunIDParam},
    {UIL_OPER_START_IOSUSPENSION, UIL_GetOperArrayVlunIDParam},
    {UIL_OPER_STOP_IOSUSPENSION, UIL_GetOperOneParam},
    {UIL_OPER_REBALANCE_LUN, UIL_GetOperOneParam},
    {UIL_OPER_LB_IO_THRESHOLD, UIL_GetOperTwoParam},
    {UIL_OPER_FAULTY_PATH_CHECK, UIL_GetOperOneParam},
    {UIL_OPER_IDLE_PATH_CHECK, UIL_GetOperOneParam},
    {UIL_OPER_IO_RETRY_TIMEOUT, UIL_GetOperTwoParam},
    {UIL_OPER_TOD_TIME, UIL_GetOperOneParam},
    {UIL_OPER_TOD_THRESHOLD, UIL_GetOperOneParam},
    {UIL_OPER_TOD_RECOVER_TIME, UIL_GetOperOneParam},
    {UIL_OPER_IED_TIME, UIL_GetOperOneParam},
    {UIL_OPER_IED_MIN_IO, UIL_GetOperOneParam},
    {UIL_OPER_IED_THRESHOLD, UIL_GetOperOneParam},
    {UIL_OPER_IED_RECOVER_TIME, UIL_GetOperOneParam},
    {UIL_OPER_IFD_TIME, UIL_GetOperOneParam},
    {UIL_OPER_IFD_THRESHOLD, UIL_GetOperOneParam},
    {UIL_OPER_IFD_RECOVER_TIME, UIL_GetOperOneParam},
    {UIL_OPER_CLEAR_OBSOLETE_PATH, UIL_GetOperOneParam},
    {UIL_OPER_XVA_CONTROLLER, UIL_GetXvaLocalRemoteCtrlParam},
    {UIL_OPER_DS_MODE, UIL_GetOperDsModeDsc},
    {UIL_OPER_DS_SPLIT_SIZE, UIL_GetOperTwoParam},
    {UIL_OPER_HLD_TIME, UIL_GetOperOneParam},
    {UIL_OPER_HLD_THRESHOLD, UIL_GetOperOneParam},
    {UIL_OPER_HLD_RECOVER_TIME, UIL_GetOperOneParam},
    {UIL_OPER_IO_LATENCY_THRESHOLD, UIL_GetOperOneParam},
    {UIL_OPER_CLEAR_IO_COUNT, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_CLEAR_CONFIG, UIL_GetOperOneParam},
    {UIL_OPER_IO_RETRY_COUNT, UIL_GetOperOneParam},
    {UIL_OPER_IO_RETRY_INTERVAL, UIL_GetOperOneParam},
    {UIL_OPER_SDD_THRESHOLD, UIL_GetOperOneParam},
    {UIL_OPER_SDD_RECOVER_TIME, UIL_GetOperOneParam},
    {UIL_OPER_INSTALL_SERVICE, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_UNINSTALL_SERVICE, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_START_SERVICE, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_STOP_SERVICE, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_LB_POLICY_ALT, UIL_GetOperLBDsc},
    {UIL_OPER_APD_TO_PDL, UIL_GetOperOneParam},
    {UIL_OPER_ALARM_ENABLE, UIL_EnableDisableDsc},
    {UIL_OPER_RELIABILITY_ENABLE, UIL_EnableDisableDsc},
    {UIL_OPER_HBA_ENABLE, UIL_EnableDisableDsc},
    {UIL_OPER_HBA_DISABLE, UIL_EnableDisableDsc},
    {UIL_OPER_CLOSE_IOSUSPENSION, UIL_GetOperOneParam},
    {UIL_OPER_CREATE_RECORD_PROCESS, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_WRITE_PERF_REPORT, UIL_GetOperDscWithNoneParam},
    {UIL_OPER_PERF_RECORD, UIL_OpenClosePerfRecordDsc},
    {UIL_OPER_CLEAR_PATH_STATISTIC, UIL_GetOperOneParam},
}};

// What each builder hands to the formats, in order: s text, u unsigned,
// d signed. A format may use fewer arguments, never more nor others; the
// check below holds every row of both languages to that at compile time.
struct BuilderArgs {
    UilOperDscBuilder build;
    const char* kinds;
};

constexpr BuilderArgs kBuilderArgs[] = {
    {UIL_GetOperDscWithNoneParam, ""},
    {UIL_GetOperOneParam, "s"},
    {UIL_GetOperTwoParam, "ss"},
    {UIL_OpenCloseDsc, "ss"},
    {UIL_OpenCloseLBDsc, "ss"},
    {UIL_EnableDisableDsc, "su"},
    {UIL_OpenClosePerfRecordDsc, "ss"},
    {UIL_GetOperLBDsc, "s"},
    {UIL_GetOperDsModeDsc, "sus"},
    {UIL_GetOperIORetryTimeDsc, "ss"},
    {UIL_GetOperTimeZoneDsc, "d"},
    {UIL_GetOperPathIoStateDsc, "us"},
    {UIL_GetOperClearAlarmDsc, "s"},
    {UIL_GetCtrlOper, "ssu"},
    {UIL_GetXvaLocalRemoteCtrlParam, "ssu"},
    {UIL_AddDelSupportArray, "ss"},
    {UIL_GetOperArrayVlunIDParam, "ss"},
    {UIL_GetOperFailoverDelayTimeDsc, "u"},
    {UIL_GetOperBusyDelayTimeDsc, "u"},
};

constexpr const char* builderKinds(UilOperDscBuilder build)
{
    for (const BuilderArgs& b : kBuilderArgs) {
        if (b.build == build) {
            return b.kinds;
        }
    }
    return nullptr;
}

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Whether the conversions of `format` take, in order, a prefix of `kinds`.
constexpr bool formatFits(const char* format, const char* kinds)
{
    size_t next = 0;
    for (size_t i = 0; format[i] != '\0'; ++i) {
        if (format[i] != '%') {
            continue;
        }
        ++i;
        if (format[i] == '%') {
            continue;
        }
        while (format[i] == '-' || format[i] == '+' || format[i] == ' ' || format[i] == '#' || format[i] == '0') {
            ++i;
        }
        while (isDigit(format[i]) || format[i] == '.') {
            ++i;
        }
        char conv = format[i];
        if (conv == 'i') {
            conv = 'd';
        }
        if (kinds[next] == '\0' || kinds[next] != conv) {
            return false;
        }
        ++next;
    }
    return true;
}

// Every byte above 0x7F is half of a GB2312 pair.
constexpr bool isGb2312(const char* text)
{
    for (size_t i = 0; text[i] != '\0'; ++i) {
        auto lead = static_cast<unsigned char>(text[i]);
        if (lead < 0x80) {
            continue;
        }
        auto trail = static_cast<unsigned char>(text[i + 1]);
        if (lead < 0xA1 || lead > 0xF7 || trail < 0xA1 || trail > 0xFE) {
            return false;
        }
        ++i;
    }
    return true;
}

constexpr const UilOperLogFmt* findFmt(uint32_t eventId)
{
    for (const UilOperLogFmt& row : kOperLogFmt) {
        if (row.eventId == eventId) {
            return &row;
        }
    }
    return nullptr;
}

constexpr bool buildersFitTheirFormats()
{
    for (const UilOperCmdExcute& row : kOperCmdExcute) {
        const UilOperLogFmt* fmt = findFmt(row.eventId);
        const char* kinds = builderKinds(row.build);
        if (fmt == nullptr || kinds == nullptr || !formatFits(fmt->english, kinds) ||
            !formatFits(fmt->localised, kinds)) {
            return false;
        }
    }
    return true;
}

constexpr bool eventIdsUnique()
{
    for (size_t i = 0; i < kOperLogFmt.size(); ++i) {
        for (size_t j = i + 1; j < kOperLogFmt.size(); ++j) {
            if (kOperLogFmt[i].eventId == kOperLogFmt[j].eventId) {
                return false;
            }
        }
    }
    for (size_t i = 0; i < kOperCmdExcute.size(); ++i) {
        for (size_t j = i + 1; j < kOperCmdExcute.size(); ++j) {
            if (kOperCmdExcute[i].eventId == kOperCmdExcute[j].eventId) {
                return false;
            }
        }
    }
    return true;
}

constexpr bool localisedFormatsAreGb2312()
{
    for (const UilOperLogFmt& row : kOperLogFmt) {
        if (!isGb2312(row.localised)) {
            return false;
        }
    }
    return true;
}

static_assert(buildersFitTheirFormats(), "a builder hands a format other arguments than it takes");
static_assert(eventIdsUnique(), "an event has two description rows or two builders");
static_assert(localisedFormatsAreGb2312(), "a localised format is not GB2312");
static_assert(!formatFits("%s %u", "ss") && formatFits("%s", "su") && !formatFits("%d", ""));

}  // namespace

const std::array<UilOperCmdExcute, UIL_OPER_BUILDER_ROWS> g_stUILCvOperCmdExcute = kOperCmdExcute;

uint32_t UIL_GetOperDscByEventID(uint32_t eventId, const char* command, const UilOperLogPara* record,
                                 char* english, char* localised, uint32_t* index)
{
    UIL_ASSERT(english != NULL);
    UIL_ASSERT(localised != NULL);
    UIL_ASSERT(index != NULL);
    english[0] = '\0';
    localised[0] = '\0';
    *index = 0;
    const UilOperLogFmt* fmt = nullptr;
    for (size_t i = 0; i < g_astUILOperLogFmt.size(); ++i) {
        if (g_astUILOperLogFmt[i].eventId == eventId) {
            fmt = &g_astUILOperLogFmt[i];
            *index = static_cast<uint32_t>(i);
            break;
        }
    }
    if (fmt == nullptr) {
        UIL_ERR("Event id (%u) has no description", eventId);
        return MPI_RET_FAIL;
    }
    if (eventId == UIL_OPER_WRITE_CONFIG) {
        const char* text = command != nullptr ? command : "";
        formatDsc(english, fmt->english, text);
        formatLocalDsc(localised, fmt->localised, text);
        return MPI_RET_SUCCESS;
    }
    UilOperLogPara none{};
    for (const UilOperCmdExcute& row : g_stUILCvOperCmdExcute) {
        if (row.eventId == eventId) {
            row.build(*fmt, record != nullptr ? *record : none, english, localised);
            break;
        }
    }
    return MPI_RET_SUCCESS;
}
