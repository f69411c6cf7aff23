// The help command and the full usage text the shell prints after a routing
// error.
#include <array>
#include <cstring>

#include "cli/cli.h"
#include "cli/cli_helptext.h"
#include "mpi/mpi_usr.h"

static uint8_t MPCLI_ExecuteHelpOption(const char* keyword, MPCLI_Table table);

namespace {

constexpr char kUsageHead[] = "Usage: [OPTION]\n";
constexpr char kInvalidHelp[] = "Error: Invalid input!\n Usage:\n";
constexpr char kNeedSubCommand[] = "Please input the sub command along with this command to obtain the help message.\n";
constexpr char kNotSupported[] = "Error: Input Option is not supported.\n";
constexpr char kNotAllowed[] = "Error: not allowed input\n";

// The usage text in the order operators know it: general commands, show,
// the supported-array rules, migration, the general setters, the degrade
// and special setters, stop, then the remaining commands.
constexpr auto kUsage = std::to_array<const char*>({
    HELP_HELP,
    HELP_QUESTION,
    HELP_QUIT,

    HELP_SHOW_VERSION,
    HELP_SHOW_ARRAY,
    HELP_SHOW_PATH,
    HELP_SHOW_VLUN,
    HELP_SHOW_IOSTAT,
    HELP_SHOW_SUPPORTARRAYLIST,
    HELP_SHOW_CVCONFIG,
    HELP_SHOW_EVENT,
    HELP_SHOW_ALARMENABLE,
    HELP_SHOW_PATH_RELIABILITY_ENABLE,
    HELP_SHOW_WORKERSTATE,
    HELP_SHOW_IO_COUNT,
    HELP_SHOW_IO_LATENCY,
    HELP_SHOW_IO_LATENCY_THRESHOLD,

    HELP_ADD_SUPPORTARRAYLIST,
    HELP_DEL_SUPPORTARRAYLIST,
    HELP_START_MIGRATION,

    HELP_SET_PHYPATHNORMAL,
    HELP_SET_WORKINGMODE,
    HELP_SET_LOADBALANCEMODE,
    HELP_SET_LUNTRESPASS,
    HELP_SET_FAILBACKDELAYTIME,
    HELP_SET_PATHSTATE,
    HELP_SET_TPGSTATE,
    HELP_SET_IOSUSPENSIONTIME,
    HELP_SET_IORETRY,
    HELP_SET_LB_IO_THRESHOLD,
    HELP_SET_MAX_IO_RETRY_TIMEOUT,
    HELP_SET_IO_LATENCY_THRESHOLD,
    HELP_SET_FAULTY_PATH_CHECK_INTERVAL,
    HELP_SET_IDLE_PATH_CHECK_INTERVAL,
    USAGE_SET_STOP_IOSUSPENSION,
    HELP_SET_ALARMENABLE,
    HELP_SET_PATH_RELIABILITY_ENABLE,

    HELP_SET_HLD_TIME,
    HELP_SET_HLD_THRESHOLD,
    HELP_SET_HLD_RECOVERY_TIME,
    HELP_SET_TOD_TIME,
    HELP_SET_TOD_THRESHOLD,
    HELP_SET_TOD_RECOVERY_TIME,
    HELP_SET_IED_TIME,
    HELP_SET_IED_MIN_IO,
    HELP_SET_IED_THRESHOLD,
    HELP_SET_IED_RECOVERY_TIME,
    HELP_SET_IFD_TIME,
    HELP_SET_IFD_THRESHOLD,
    HELP_SET_IFD_RECOVERY_TIME,
    HELP_SET_SDD_THRESHOLD,
    HELP_SET_SDD_RECOVERY_TIME,
    HELP_SET_REMOTE_CONTROLLER,
    HELP_SET_PERFORMANCE_RECORD,
    USAGE_SET_DUALSITE_WORKINGMODE,

    HELP_STOP_IOSUSPENSION,

    USAGE_SET_DUALSITE_SPLIT_SIZE,
    HELP_START_PATHCHECK,
    HELP_START_REBALANCELUN,
    HELP_START_IOSUSPENSION,
    HELP_CLEAR_CVCONFIG,
    HELP_CLEAR_OBSOLETE_PATH,
    HELP_CLEAR_IO_COUNT,
    HELP_CHECK_STATUS,
    HELP_GENPRKEY,
    HELP_CLEAR_PATH_STATISTIC,
});

uint8_t invalidHelpInput()
{
    MPCLI_Print("%s%s", kInvalidHelp, HELP_HELP);
    return MPCLI_RESULT_FAIL;
}

// `help <verb> [object]`: argv[0] is the verb.
uint8_t helpVerb(uint32_t argc, char** argv, MPCLI_Table table)
{
    if (argc == 1) {
        MPCLI_Print("%s", kNeedSubCommand);
        return MPCLI_RESULT_OK;
    }
    if (argc == 2 && argv != nullptr && argv[1] != nullptr) {
        return MPCLI_ExecuteHelpOption(argv[1], table);
    }
    return invalidHelpInput();
}

// A help word that takes nothing after it prints its own line.
uint8_t helpSingle(uint32_t argc, const char* text)
{
    if (argc != 1) {
        return invalidHelpInput();
    }
    MPCLI_Print("%s", text);
    return MPCLI_RESULT_OK;
}

}  // namespace

// Prints the help of one object keyword of a verb's table.
static uint8_t MPCLI_ExecuteHelpOption(const char* keyword, MPCLI_Table table)
{
    MPI_ASSERT_IN(MPI_MOD_UIL, MPI_SRC_CLI_MISC, keyword != NULL);
    for (const MPCLI_Option& row : table) {
        if (std::strcmp(keyword, row.keyword) != 0) {
            continue;
        }
        if (g_bCLIDebugCmdOn == 0 && row.flag != MPCLI_FLAG_NORMAL) {
            MPCLI_Print("%s", kNotAllowed);
            return MPCLI_RESULT_FAIL;
        }
        MPCLI_Print("%s", row.help);
        return MPCLI_RESULT_OK;
    }
    MPCLI_Print("%s", kNotSupported);
    return MPCLI_RESULT_FAIL;
}

void MPCLI_CVMUsage()
{
    if (g_bCLIDebugCmdOn != 0) {
        return;
    }
    MPCLI_Print("%s", kUsageHead);
    for (const char* block : kUsage) {
        MPCLI_Print("%s", block);
    }
    MPCLI_Print("\n");
}

// `help` or `?`, followed by at most a verb and an object keyword.
uint8_t MPCLI_Help(uint32_t argc, char** argv)
{
    if (argc == 1) {
        MPCLI_CVMUsage();
        return MPCLI_RESULT_OK;
    }
    if (argc < 2 || argc > 3 || argv == nullptr || argv[1] == nullptr) {
        return invalidHelpInput();
    }
    return MPCLI_Dispatch(argv[1], argc - 1, argv + 1, g_stCLIHelpOptionType);
}

uint8_t MPCLI_HelpHelp(uint32_t argc, char** argv)
{
    if (argv == nullptr || argv[0] == nullptr) {
        return invalidHelpInput();
    }
    return helpSingle(argc, std::strcmp(argv[0], "?") == 0 ? HELP_QUESTION : HELP_HELP);
}

uint8_t MPCLI_HelpQuit(uint32_t argc, char** /*argv*/)
{
    return helpSingle(argc, HELP_QUIT);
}

uint8_t MPCLI_HelpGenerateprkey(uint32_t argc, char** /*argv*/)
{
    return helpSingle(argc, HELP_GENPRKEY);
}

uint8_t MPCLI_HelpShow(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionShowType);
}

uint8_t MPCLI_HelpSet(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionSetType);
}

uint8_t MPCLI_HelpStart(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionStartType);
}

uint8_t MPCLI_HelpClear(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionClearType);
}

uint8_t MPCLI_HelpAdd(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionAddType);
}

uint8_t MPCLI_HelpDel(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionDelType);
}

uint8_t MPCLI_HelpCheck(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionCheckType);
}

uint8_t MPCLI_HelpStop(uint32_t argc, char** argv)
{
    return helpVerb(argc, argv, g_stCLIOptionStopType);
}
