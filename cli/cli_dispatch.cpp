// Table-driven dispatch: a keyword to the handler of its row.
#include <cstring>

#include "cli/cli.h"
#include "mpi/mpi_usr.h"

namespace {

uint8_t runRows(std::string_view keyword, const MPCLI_Command& command, std::span<const MPCLI_Option> rows)
{
    for (const MPCLI_Option& row : rows) {
        if (keyword != row.keyword) {
            continue;
        }
        if (g_bCLIDebugCmdOn == 0 && row.flag != MPCLI_FLAG_NORMAL) {
            return MPCLI_UsageError("Error: not allowed input\n");
        }
        uint8_t judged = MPCLI_JudgeEnvironment(&row);
        return judged == 1 ? row.handler(command.accepting(row.keys)) : judged;
    }
    return MPCLI_UsageError("Error: Input Option is not supported.\n");
}

}  // namespace

uint8_t MPCLI_ExecuteParameter(const char* keyword, uint32_t argc, char** argv, uint32_t rows,
                               const MPCLI_Option* table)
{
    if (keyword == nullptr) {
        UIL_TRACE_NULL("pcOption");
        return MPCLI_RESULT_FAIL;
    }
    if (table == nullptr) {
        UIL_TRACE_NULL("pOptionStruc");
        return MPCLI_RESULT_FAIL;
    }
    if (argv == nullptr) {
        return MPCLI_UsageError("Error: Need more option\n");
    }
    // Words that come in as the process or a line gave them are split here,
    // once; everything below sees the split words.
    const MPCLI_Line line(argc, argv);
    return runRows(keyword, line.command(), std::span<const MPCLI_Option>(table, rows));
}

uint8_t MPCLI_DispatchCommand(std::string_view keyword, const MPCLI_Command& command, MPCLI_Table table)
{
    return runRows(keyword, command, table);
}

uint8_t MPCLI_JudgeEnvironment(const MPCLI_Option* row)
{
    CLI_ASSERT(row != NULL);
    return 1;
}
