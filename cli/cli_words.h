// Handlers still written against the argument words, run from a parsed
// command: the words go over as they were typed. Only for the handlers not
// yet moved to MPCLI_Command.
#pragma once

#include <vector>

#include "cli/cli.h"

template <uint8_t (*Handler)(uint32_t, char**)>
uint8_t MPCLI_WordsHandler(const MPCLI_Command& command)
{
    std::vector<char*> argv;
    argv.reserve(command.size() + 1);
    for (const MPCLI_Word& word : command.words()) {
        argv.push_back(const_cast<char*>(word.raw.data()));  // each a whole NUL-terminated word
    }
    argv.push_back(nullptr);
    return Handler(command.size(), argv.data());
}
