// A command as the shell reads it: every word split once into its key and
// value, as views into the words the line or the process arguments gave.
// Handlers look at these words and never split a word again.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

struct MPCLI_Word {
    std::string_view key;    // the text before the first "="; the whole word without one
    std::string_view value;  // the text after the first "="; "" without one
    bool hasEqual = false;
    std::string_view raw;    // the word as typed

    // A key=value word whose value is present and holds no second "=".
    bool hasValue() const { return hasEqual && !value.empty() && value.find('=') == std::string_view::npos; }
    bool is(std::string_view word) const { return raw == word; }
};

MPCLI_Word MPCLI_SplitWord(std::string_view raw);

// The words of one handler's command: word 0 is the handler's own keyword,
// its arguments follow.
class MPCLI_Command {
public:
    MPCLI_Command(uint32_t argc, char* const* argv);

    uint32_t size() const { return static_cast<uint32_t>(m_words.size()); }
    const MPCLI_Word& operator[](uint32_t index) const { return m_words[index]; }
    // The words after the keyword.
    std::span<const MPCLI_Word> args() const { return std::span<const MPCLI_Word>(m_words).subspan(1); }
    // True when every argument's key is one of `keys`.
    bool keysIn(std::initializer_list<std::string_view> keys) const;

private:
    std::vector<MPCLI_Word> m_words;
};
