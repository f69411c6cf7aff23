// Splitting the words of a command, once.
#include "cli/cli_command.h"

#include <algorithm>

MPCLI_Word MPCLI_SplitWord(std::string_view raw)
{
    MPCLI_Word word;
    word.raw = raw;
    const size_t equal = raw.find('=');
    if (equal == std::string_view::npos) {
        word.key = raw;
        return word;
    }
    word.hasEqual = true;
    word.key = raw.substr(0, equal);
    word.value = raw.substr(equal + 1);
    return word;
}

MPCLI_Line::MPCLI_Line(uint32_t argc, char* const* argv)
{
    m_words.reserve(std::max<uint32_t>(argc, 1));
    for (uint32_t i = 0; i < argc && argv != nullptr && argv[i] != nullptr; ++i) {
        m_words.push_back(MPCLI_SplitWord(argv[i]));
    }
    if (m_words.empty()) {
        m_words.emplace_back();  // a handler always has its keyword word, if only an empty one
    }
}

bool MPCLI_Command::keysIn(std::initializer_list<std::string_view> keys) const
{
    return std::all_of(args().begin(), args().end(), [&](const MPCLI_Word& word) {
        return std::find(keys.begin(), keys.end(), word.key) != keys.end();
    });
}

bool MPCLI_Command::keysAccepted() const
{
    const std::string_view keys = m_keys != nullptr ? m_keys : "";
    return std::all_of(args().begin(), args().end(), [&](const MPCLI_Word& word) {
        // Each key of the row is a whole blank-separated word of the list.
        for (size_t at = 0; at < keys.size();) {
            const size_t end = std::min(keys.find(' ', at), keys.size());
            if (!word.key.empty() && keys.substr(at, end - at) == word.key) {
                return true;
            }
            at = end + 1;
        }
        return false;
    });
}
