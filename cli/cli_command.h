// A command as the shell reads it: every word split once into its key and
// value, as views into the words the line or the process arguments gave.
// The line is split where it is read (MPCLI_Line); the verb, the object and
// each handler then see views of the same words (MPCLI_Command) and never
// split a word again.
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
// its arguments follow. A view: it lives no longer than the MPCLI_Line it
// came from.
class MPCLI_Command {
public:
    MPCLI_Command() = default;
    MPCLI_Command(std::span<const MPCLI_Word> words, const char* keys) : m_words(words), m_keys(keys) {}

    uint32_t size() const { return static_cast<uint32_t>(m_words.size()); }
    const MPCLI_Word& operator[](uint32_t index) const { return m_words[index]; }
    // The words after the keyword.
    std::span<const MPCLI_Word> args() const { return m_words.empty() ? m_words : m_words.subspan(1); }
    std::span<const MPCLI_Word> words() const { return m_words; }
    // The command of the object keyword that follows this command's own:
    // word 1 onwards, without the keys of this row.
    MPCLI_Command object() const { return MPCLI_Command(args(), nullptr); }
    // The same words, with the keys a dispatch row accepts.
    MPCLI_Command accepting(const char* keys) const { return MPCLI_Command(m_words, keys); }

    // True when every argument's key is one of `keys`.
    bool keysIn(std::initializer_list<std::string_view> keys) const;
    // True when every argument's key is one its dispatch row names (a row
    // that names none accepts no keyed argument).
    bool keysAccepted() const;

private:
    std::span<const MPCLI_Word> m_words;
    const char* m_keys = nullptr;  // blank-separated keys of the row
};

// The words of one typed line or of the process arguments, split once.
// Always at least one word (an empty one when there were none), so a
// command always has its keyword.
class MPCLI_Line {
public:
    MPCLI_Line(uint32_t argc, char* const* argv);
    MPCLI_Line(const MPCLI_Line&) = delete;
    MPCLI_Line& operator=(const MPCLI_Line&) = delete;

    MPCLI_Command command() const { return MPCLI_Command(m_words, nullptr); }

private:
    std::vector<MPCLI_Word> m_words;
};
