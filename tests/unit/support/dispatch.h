// Runs one dispatch table on words given as a process would: the shell
// itself splits the words once in MPCLI_NewCmd; a test drives one table.
#pragma once

#include "cli/cli.h"

inline uint8_t DispatchWords(const char* keyword, uint32_t argc, char** argv, MPCLI_Table table)
{
    // An empty table has no storage of its own; any non-null pointer will do.
    static const MPCLI_Option s_none{"", "", nullptr, 0};
    const MPCLI_Option* rows = table.empty() ? &s_none : table.data();
    return MPCLI_ExecuteParameter(keyword, argc, argv, static_cast<uint32_t>(table.size()), rows);
}
