// The help command: `help`, `help <verb>`, `help <verb> <object>`.
#include <array>
#include <cstring>

#include "cli/cli.h"
#include "cli/cli_helptext.h"
#include "mpi/mpi_usr.h"

static uint8_t MPCLI_ExecuteHelpOption(std::string_view keyword, MPCLI_Table table);

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

// `help <verb> [object]`: word 0 is the verb.
uint8_t helpVerb(const MPCLI_Command& command, MPCLI_Table table)
{
    if (command.size() == 1) {
        MPCLI_Print("%s", kNeedSubCommand);
        return MPCLI_RESULT_OK;
    }
    if (command.size() == 2) {
        return MPCLI_ExecuteHelpOption(command[1].raw, table);
    }
    return invalidHelpInput();
}

// A help word that takes nothing after it prints its own line.
uint8_t helpSingle(const MPCLI_Command& command, const char* text)
{
    if (command.size() != 1) {
        return invalidHelpInput();
    }
    MPCLI_Print("%s", text);
    return MPCLI_RESULT_OK;
}

}  // namespace

// Prints the help of one object keyword of a verb's table.
static uint8_t MPCLI_ExecuteHelpOption(std::string_view keyword, MPCLI_Table table)
{
    for (const MPCLI_Option& row : table) {
        if (keyword != row.keyword) {
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
uint8_t MPCLI_Help(const MPCLI_Command& command)
{
    if (command.size() == 1) {
        MPCLI_CVMUsage();
        return MPCLI_RESULT_OK;
    }
    if (command.size() > 3) {
        return invalidHelpInput();
    }
    return MPCLI_DispatchCommand(command[1].raw, command.object(), g_stCLIHelpOptionType);
}

uint8_t MPCLI_HelpHelp(const MPCLI_Command& command)
{
    return helpSingle(command, command[0].is("?") ? HELP_QUESTION : HELP_HELP);
}

uint8_t MPCLI_HelpQuit(const MPCLI_Command& command) { return helpSingle(command, HELP_QUIT); }

uint8_t MPCLI_HelpGenerateprkey(const MPCLI_Command& command) { return helpSingle(command, HELP_GENPRKEY); }

uint8_t MPCLI_HelpShow(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionShowType); }
uint8_t MPCLI_HelpSet(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionSetType); }
uint8_t MPCLI_HelpStart(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionStartType); }
uint8_t MPCLI_HelpClear(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionClearType); }
uint8_t MPCLI_HelpAdd(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionAddType); }
uint8_t MPCLI_HelpDel(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionDelType); }
uint8_t MPCLI_HelpCheck(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionCheckType); }
uint8_t MPCLI_HelpStop(const MPCLI_Command& command) { return helpVerb(command, g_stCLIOptionStopType); }
