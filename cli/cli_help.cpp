// The help command: `help`, `help <verb>`, `help <verb> <object>`.
#include <array>
#include <cstring>

#include "cli/cli.h"
#include "cli/cli_helptext.h"
#include "mpi/mpi_usr.h"

static uint8_t MPCLI_ExecuteHelpOption(const char* keyword, MPCLI_Table table);

namespace {

constexpr char kInvalidHelp[] = "Error: Invalid input!\n Usage:\n";
constexpr char kNeedSubCommand[] = "Please input the sub command along with this command to obtain the help message.\n";
constexpr char kNotSupported[] = "Error: Input Option is not supported.\n";
constexpr char kNotAllowed[] = "Error: not allowed input\n";

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

uint8_t MPCLI_HelpShow(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionShowType); }
uint8_t MPCLI_HelpSet(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionSetType); }
uint8_t MPCLI_HelpStart(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionStartType); }
uint8_t MPCLI_HelpClear(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionClearType); }
uint8_t MPCLI_HelpAdd(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionAddType); }
uint8_t MPCLI_HelpDel(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionDelType); }
uint8_t MPCLI_HelpCheck(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionCheckType); }
uint8_t MPCLI_HelpStop(uint32_t argc, char** argv) { return helpVerb(argc, argv, g_stCLIOptionStopType); }
