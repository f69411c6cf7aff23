// Help and usage texts of every command. Each HELP_<VERB>_<KEYWORD> is the
// help field of that keyword's dispatch row: the command's usage lines, each
// ending in a newline. The syntax stands in a 39-wide field and "--  " starts
// in column 40; a syntax too long for the field stands on its own line and
// its description follows on continuation lines. The texts are part of the
// interface that scripts and operators read: change them byte for byte
// deliberately, misspellings included.
#pragma once

#include <string_view>

// The verbs help, ?, quit and genprkey.
inline constexpr char HELP_HELP[] =
    "help [command] [subcommand]            --  Print help message.\n";

inline constexpr char HELP_QUESTION[] =
    "? [command] [subcommand]               --  Print help message.\n";

inline constexpr char HELP_QUIT[] =
    "quit                                   --  Quit Corvane command line.\n";

inline constexpr char HELP_GENPRKEY[] =
    "genprkey                               --  Generate a persistent reservation key for the cluster.\n";

// show
inline constexpr char HELP_SHOW_VERSION[] =
    "show version [verbose]                 --  Display the software and driver versions.\n"
    "                                       --  verbose also displays the product version.\n";

inline constexpr char HELP_SHOW_ARRAY[] =
    "show array [id=<ID1,ID2,...> [verbose]]\n"
    "                                       --  Display the array information.\n"
    "                                       --  verbose also displays the configuration of the array.\n";

inline constexpr char HELP_SHOW_PATH[] =
    "show path [id=<ID1,ID2,...>|array_id=ID]\n"
    "                                       --  Display the physical path information.\n";

inline constexpr char HELP_SHOW_VLUN[] =
    "show vlun id=<0,1,2,...> [type=<all|dualsite|migration>] [verbose]\n"
    "                                       --  Display the detail information of the specific vlun.\n"
    "show vlun array_id=<0,1,2,...> [type=<all|dualsite|migration>]\n"
    "                                       --  Display the vluns of the specific array.\n"
    "show vlun type=<all|dualsite|migration>\n"
    "                                       --  Display the vluns of the specific type.\n"
    "                                       --  Without type, only ordinary vluns are displayed.\n";

inline constexpr char HELP_SHOW_IOSTAT[] =
    "show iostat vlun_id=<ID1,ID2,...> [type=<all|dualsite|migration>] [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]]\n"
    "                                       --  Display the specific vlun's iostate.\n"
    "show iostat array_id=<ID1,ID2,...> [interval=<time>] [file_name=<name> [archive_time=<archive_time>] [duration=<duration>]]\n"
    "                                       --  Display all pathes's iostate of the specific array.\n"
    "                                       --  interval is in the range 1-60, unit is second. Default is 1.\n"
    "                                       --  file_name saves the statistics into the report file <name>.csv.\n"
    "                                       --  archive_time can be 5|60|120|300|600|1800|3600, unit is second. Default is 60.\n"
    "                                       --  duration is in the range 60-259200, unit is second. Default is 900.\n"
    "                                       --  Press Ctrl+C to stop.\n";

inline constexpr char HELP_SHOW_SUPPORTARRAYLIST[] =
    "show supportarraylist                  --  Display the supported array list.\n";

inline constexpr char HELP_SHOW_CVCONFIG[] =
    "show cvconfig [array_id=ID|vlun_id=ID] --  Display the configuration of Corvane, the array or the vlun.\n";

inline constexpr char HELP_SHOW_EVENT[] =
    "show event [count=<number>]            --  Display the key events of the driver.\n"
    "                                       --  count limits the display to the latest events.\n";

inline constexpr char HELP_SHOW_ALARMENABLE[] =
    "show alarmenable                       --  Display whether the alarm push is enabled.\n";

inline constexpr char HELP_SHOW_PATH_RELIABILITY_ENABLE[] =
    "show path_reliability_enable           --  Display whether the path reliability check is enabled.\n";

inline constexpr char HELP_SHOW_WORKERSTATE[] =
    "show workerstate                       --  Display the state of the driver worker threads.\n";

inline constexpr char HELP_SHOW_IO_COUNT[] =
    "show io_count [vlun_id={<ID>|<ID1,ID2,...>}]\n"
    "                                       --  Display the error and queued I/O counts of vluns.\n";

inline constexpr char HELP_SHOW_IO_LATENCY[] =
    "show io_latency [vlun_id={<ID>|<ID1,ID2,...>}]\n"
    "                                       --  Display the I/O latency of vluns.\n";

inline constexpr char HELP_SHOW_IO_LATENCY_THRESHOLD[] =
    "show io_latency_threshold              --  Display the I/O latency threshold.\n";

// set: the key is the text before "=".
inline constexpr char HELP_SET_PHYPATHNORMAL[] =
    "set phypathnormal path_id=<ID>         --  Set the physical path to the normal state.\n";

inline constexpr char HELP_SET_WORKINGMODE[] =
    "set workingmode={0|1} [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the working mode.\n"
    "                                       --  0: load balancing between controllers.\n"
    "                                       --  1: load balancing within controller.\n"
    "                                       --  Default is 1.\n";

inline constexpr char HELP_SET_LOADBALANCEMODE[] =
    "set loadbalancemode={round-robin|min-queue-depth|min-task} [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the load balance mode.\n"
    "                                       --  Default is min-queue-depth, which is recommendatory.\n";

inline constexpr char HELP_SET_LUNTRESPASS[] =
    "set luntrespass={on|off} [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the LUN trespass switch.\n"
    "                                       --  Default is on.\n";

inline constexpr char HELP_SET_FAILBACKDELAYTIME[] =
    "set failbackdelaytime=<time>           --  Set the failback delay time.\n"
    "                                       --  time is in the range 0-3600, unit is second.\n"
    "                                       --  Default is 600.\n";

inline constexpr char HELP_SET_PATHSTATE[] =
    "set pathstate={enable|disable} path_id=<ID>\n"
    "                                       --  Enable or disable the physical path.\n";

inline constexpr char HELP_SET_TPGSTATE[] =
    "set tpgstate={enable|disable} array_id=<ID> tpg_id=<ID>\n"
    "                                       --  Enable or disable all paths of the controller.\n"
    "                                       --  tpg_id can also be the controller name, such as 0A.\n";

inline constexpr char HELP_SET_IOSUSPENSIONTIME[] =
    "set iosuspensiontime=<time> [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the I/O suspension time.\n"
    "                                       --  time is in the range 0-2592000, unit is second.\n"
    "                                       --  Default is 60.\n";

inline constexpr char HELP_SET_IORETRY[] =
    "set ioretry=<number> ioretrydelay=<time>\n"
    "                                       --  Set the I/O retry times and the I/O retry delay time.\n"
    "                                       --  number is in the range 0-60. Default is 10.\n"
    "                                       --  time is in the range 0-10, unit is second. Default is 0.\n"
    "                                       --  Notice: In the first three times, I/O will retry immediately.\n";

inline constexpr char HELP_SET_LB_IO_THRESHOLD[] =
    "set lb_io_threshold=<number> [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the number of I/Os sent on one path before switching to the next.\n"
    "                                       --  number is in the range 1-10000.\n"
    "                                       --  Default is 100.\n";

inline constexpr char HELP_SET_HLD_TIME[] =
    "set hld_time=<time>                    --  Set high latency degrade time.\n"
    "                                       --  time is in the range 60-18000, unit is second.\n"
    "                                       --  Default is 300.\n";

inline constexpr char HELP_SET_HLD_THRESHOLD[] =
    "set hld_threshold=<time>               --  Set high latency degrade threshold.\n"
    "                                       --  time is in the range 0-65535, unit is millisecond.\n"
    "                                       --  Default is 1000.\n";

inline constexpr char HELP_SET_HLD_RECOVERY_TIME[] =
    "set hld_recovery_time=<time>           --  Set high latency degrade recovery time.\n"
    "                                       --  time is in the range 60-2592000, unit is second.\n"
    "                                       --  Default is 3600.\n";

inline constexpr char HELP_SET_MAX_IO_RETRY_TIMEOUT[] =
    "set max_io_retry_timeout=<time> [array_id=ID|vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the maximum I/O retry timeout.\n"
    "                                       --  time is in the range 1-2592000, unit is second.\n"
    "                                       --  Default is 1800.\n";

inline constexpr char HELP_SET_IO_LATENCY_THRESHOLD[] =
    "set io_latency_threshold=<time>        --  Set the I/O latency threshold.\n"
    "                                       --  time is in the range 0-120000, unit is millisecond.\n"
    "                                       --  0 means do not print the I/O latency event.\n"
    "                                       --  Default is 20.\n";

inline constexpr char HELP_SET_FAULTY_PATH_CHECK_INTERVAL[] =
    "set faulty_path_check_interval=<time>  --  Set the check interval of faulty paths.\n"
    "                                       --  time is in the range 1-2592000, unit is second.\n"
    "                                       --  Default is 10.\n";

inline constexpr char HELP_SET_IDLE_PATH_CHECK_INTERVAL[] =
    "set idle_path_check_interval=<time>    --  Set the check interval of idle paths.\n"
    "                                       --  time is in the range 1-2592000, unit is second.\n"
    "                                       --  Default is 60.\n";

inline constexpr char HELP_SET_TOD_TIME[] =
    "set tod_time=<time>                    --  Set I/O timeout degrade time.\n"
    "                                       --  time is in the range 60-2592000, unit is second.\n"
    "                                       --  Default is 600.\n";

inline constexpr char HELP_SET_TOD_THRESHOLD[] =
    "set tod_threshold=<number>             --  Set I/O timeout degrade threshold.\n"
    "                                       --  number is in the range 0-65535.\n"
    "                                       --  Default is 1.\n";

inline constexpr char HELP_SET_TOD_RECOVERY_TIME[] =
    "set tod_recovery_time=<time>           --  Set I/O timeout degrade recovery time.\n"
    "                                       --  time is in the range 1800-2592000, unit is second.\n"
    "                                       --  Default is 1800.\n";

inline constexpr char HELP_SET_IED_TIME[] =
    "set ied_time=<time>                    --  Set intermittent I/O error degrade time.\n"
    "                                       --  time is in the range 60-2592000, unit is second.\n"
    "                                       --  Default is 300.\n";

inline constexpr char HELP_SET_IED_MIN_IO[] =
    "set ied_min_io=<number>                --  Set the minimum I/O count of intermittent I/O error degrade.\n"
    "                                       --  number is in the range 5000-65535.\n"
    "                                       --  Default is 5000.\n";

inline constexpr char HELP_SET_IED_THRESHOLD[] =
    "set ied_threshold=<ratio>              --  Set intermittent I/O error degrade threshold.\n"
    "                                       --  ratio is in the range 0-100, unit is percent.\n"
    "                                       --  Default is 20.\n";

inline constexpr char HELP_SET_IED_RECOVERY_TIME[] =
    "set ied_recovery_time=<time>           --  Set intermittent I/O error degrade recovery time.\n"
    "                                       --  time is in the range 1800-2592000, unit is second.\n"
    "                                       --  Default is 1800.\n";

inline constexpr char HELP_SET_IFD_TIME[] =
    "set ifd_time=<time>                    --  Set intermittent fault degrade time.\n"
    "                                       --  time is in the range 60-2592000, unit is second.\n"
    "                                       --  Default is 1800.\n";

inline constexpr char HELP_SET_IFD_THRESHOLD[] =
    "set ifd_threshold=<number>             --  Set intermittent fault degrade threshold.\n"
    "                                       --  number is in the range 0-65535.\n"
    "                                       --  Default is 3.\n";

inline constexpr char HELP_SET_IFD_RECOVERY_TIME[] =
    "set ifd_recovery_time=<time>           --  Set intermittent fault degrade recovery time.\n"
    "                                       --  time is in the range 60-2592000, unit is second.\n"
    "                                       --  Default is 3600.\n";

inline constexpr char HELP_SET_SDD_THRESHOLD[] =
    "set sdd_threshold=<time>               --  Set sensitive delayed degrade threshold.\n"
    "                                       --  time is in the range 100-60000, unit is millisecond.\n"
    "                                       --  Default is 30000.\n";

inline constexpr char HELP_SET_SDD_RECOVERY_TIME[] =
    "set sdd_recovery_time=<time>           --  Set sensitive delayed degrade recovery time.\n"
    "                                       --  time is in the range 1-2592000, unit is second.\n"
    "                                       --  Default is 120.\n";

inline constexpr char HELP_SET_REMOTE_CONTROLLER[] =
    "set remote_controller array_id=ID tpg_id=<ID1,ID2,...> [local|remote]\n"
    "                                       --  Set the controllers of the XVA array as remote or local.\n"
    "                                       --  Paths on a remote controller are not selected first.\n";

inline constexpr char HELP_SET_DUALSITE[] =
    "set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the working mode of dualsite vluns.\n"
    "                                       --  priority: read write within primary array.\n"
    "                                       --  balance: read write between both arrays.\n"
    "set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       -- Set the splite size of dualsite vluns.\n"
    "                                       -- size is in the range 512Byte-1GB,unit can be B,K,M,G.\n"
    "                                       -- size must be power of 2.\n"
    "                                       -- Default is 128MB.\n";

inline constexpr char HELP_SET_ALARMENABLE[] =
    "set alarmenable={on|off}               --  Enable or disable the alarm push to the array.\n"
    "                                       --  Default is on.\n";

inline constexpr char HELP_SET_PATH_RELIABILITY_ENABLE[] =
    "set path_reliability_enable={on|off}   --  Enable or disable the path reliability check.\n"
    "                                       --  Default is on.\n";

inline constexpr char HELP_SET_PERFORMANCE_RECORD[] =
    "set performance_record={on|off} [duration=<time>]\n"
    "                                       --  Turn the performance record on or off.\n"
    "                                       --  time is in the range 0-8760, unit is hour.\n"
    "                                       --  0 means record all the time.\n"
    "                                       --  Default is 0.\n";

// start
inline constexpr char HELP_START_PATHCHECK[] =
    "start pathcheck path_id=<ID1,ID2,...>  --  Check the link stability of the physical paths.\n";

inline constexpr char HELP_START_IOSUSPENSION[] =
    "start iosuspension vlun_id=ID timeout=<time>\n"
    "                                       --  Suspend I/O of the vlun for a time.\n"
    "                                       --  time is in the range 1-2592000, unit is second.\n";

inline constexpr char HELP_START_REBALANCELUN[] =
    "start rebalancelun [array_id=ID|vlun_id=ID]\n"
    "                                       --  Trespass LUNs back to their owning controllers.\n"
    "                                       --  Without an object, the LUNs of all arrays are rebalanced.\n";

inline constexpr char HELP_START_MIGRATION[] =
    "start migration vlun_id=ID direction={source | target} rollback={enable | disable}\n"
    "                                       --  Start the migration of the migration vlun.\n"
    "                                       --  rollback=enable is allowed only with direction=target.\n";

// clear
inline constexpr char HELP_CLEAR_OBSOLETE_PATH[] =
    "clear obsolete_path path_id=<ID>       --  Clear the obsolete physical path.\n";

inline constexpr char HELP_CLEAR_PATH_STATISTIC[] =
    "clear path_statistic [path_id=<ID1,ID2,...>|array_id=<ID1,ID2,...>]\n"
    "                                       --  Clear the statistics of the paths, of the paths of the arrays,\n"
    "                                       --  or of all paths.\n";

inline constexpr char HELP_CLEAR_CVCONFIG[] =
    "clear cvconfig array_id=ID|vlun_id=ID  --  Clear the configuration of the array or the vlun.\n";

inline constexpr char HELP_CLEAR_IO_COUNT[] =
    "clear io_count                         --  Clear the I/O counts of all vluns.\n";

// add, del, check, stop
inline constexpr char HELP_ADD_SUPPORTARRAYLIST[] =
    "add supportarraylist vendor=<vendor> product=<product> [driver=<driver>]\n"
    "                                       --  Add the array model to the supported array list.\n"
    "                                       --  driver is the driver key of the model. Default is dft.\n";

inline constexpr char HELP_DEL_SUPPORTARRAYLIST[] =
    "del supportarraylist vendor=<vendor> product=<product>\n"
    "                                       --  Delete the array model from the supported array list.\n";

inline constexpr char HELP_CHECK_STATUS[] =
    "check status                           --  Check the status of paths and disks, the environment, the config and the HBAs.\n";

inline constexpr char HELP_STOP_IOSUSPENSION[] =
    "stop iosuspension vlun_id=ID           --  Stop the I/O suspension of the vlun.\n";

// Pieces printed only by the full usage text. `set stop_iosuspension` has an
// empty help field of its own; the dual-site setter's help is split in two
// because the usage lists its working mode and its split size in different
// blocks.
inline constexpr char USAGE_SET_STOP_IOSUSPENSION[] =
    "set stop_iosuspension <disk_id>        --  Cancel I/O suspension of the disk that corresponds to specific scsi_disk.\n";

inline constexpr char USAGE_SET_DUALSITE_WORKINGMODE[] =
    "set dualsite workingmode={priority|balance} primary_array_id=ID [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       --  Set the working mode of dualsite vluns.\n"
    "                                       --  priority: read write within primary array.\n"
    "                                       --  balance: read write between both arrays.\n";

inline constexpr char USAGE_SET_DUALSITE_SPLIT_SIZE[] =
    "set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "                                       -- Set the splite size of dualsite vluns.\n"
    "                                       -- size is in the range 512Byte-1GB,unit can be B,K,M,G.\n"
    "                                       -- size must be power of 2.\n"
    "                                       -- Default is 128MB.\n";

static_assert(std::string_view(HELP_SET_DUALSITE).size() ==
                  std::string_view(USAGE_SET_DUALSITE_WORKINGMODE).size() +
                      std::string_view(USAGE_SET_DUALSITE_SPLIT_SIZE).size() &&
                  std::string_view(HELP_SET_DUALSITE).starts_with(USAGE_SET_DUALSITE_WORKINGMODE) &&
                  std::string_view(HELP_SET_DUALSITE).ends_with(USAGE_SET_DUALSITE_SPLIT_SIZE),
              "the dual-site help is its working-mode lines followed by its split-size lines");
