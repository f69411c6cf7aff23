// Argument tokens of the object commands. The console texts here are what
// the operator sees for malformed input, so they are kept byte for byte.
#include "cli/cli_token.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_command.h"
#include "mpi/mpi_number.h"
#include "mpi/mpi_usr.h"

namespace {

constexpr size_t kMaxNumberLen = 9;  // keeps every accepted number below 2^31
constexpr std::string_view kBlanks = " \t";

struct IdRange {
    uint32_t type;
    int32_t max;
    const char* objects;  // tail of the trace line; the port groups' carries two blanks
};

constexpr std::array<IdRange, 4> kIdRanges = {{
    {MPCLI_ID_ARRAY, 16383, " of arrays"},
    {MPCLI_ID_VLUN, 16383, " of disks"},
    {MPCLI_ID_PATH, 16383, " of pathes"},
    {MPCLI_ID_TPG, 15, "  of tpgs"},
}};

const IdRange* findIdRange(uint32_t type)
{
    for (const IdRange& row : kIdRanges) {
        if (row.type == type) {
            return &row;
        }
    }
    return nullptr;
}

void printTooManyIds(uint32_t max) { MPCLI_Print("Error: You can't input more than %u ids\n", max); }

int printLength(std::string_view text) { return static_cast<int>(text.size()); }

// The non-empty pieces of a text between the characters of `delimiters`,
// in order: `next` gives one piece after the other, false when none is left.
class Pieces {
public:
    Pieces(std::string_view text, std::string_view delimiters) : m_text(text), m_delimiters(delimiters) {}
    bool next(std::string_view* piece)
    {
        while (m_start < m_text.size()) {
            const size_t end = std::min(m_text.find_first_of(m_delimiters, m_start), m_text.size());
            const size_t start = m_start;
            m_start = end + 1;
            if (end > start) {
                *piece = m_text.substr(start, end - start);
                return true;
            }
        }
        return false;
    }

private:
    std::string_view m_text;
    std::string_view m_delimiters;
    size_t m_start = 0;
};

}  // namespace

uint32_t MPCLI_GetStringFromEqual(const char* token, char* out, uint32_t index, size_t outSize)
{
    if (token == nullptr) {
        MPCLI_CVMUsage();
        return 0;
    }
    if (out == nullptr) {
        UIL_TRACE_NULL("pcSource");
        return 0;
    }
    const MPCLI_Word word = MPCLI_SplitWord(token);
    if (!word.hasEqual) {
        UIL_ERR("Can't Find \"=\" in pcArgv");
        return 0;
    }
    std::string_view piece = word.key;
    if (index == 1) {
        if (!word.hasValue()) {
            UIL_ERR("Find \"=\" fail");
            return 0;
        }
        piece = word.value;
    } else if (index != 0) {
        UIL_ERR("Invalid index {%u}", index);
        return 0;
    }
    if (piece.size() >= outSize) {
        UIL_ERR("Token exceed %d", static_cast<int>(outSize));
        return 0;
    }
    std::memcpy(out, piece.data(), piece.size());
    out[piece.size()] = '\0';
    return 1;
}

bool MPCLI_ReadNum(std::string_view text, uint32_t* value)
{
    if (text.empty() || text.size() > kMaxNumberLen || text.find('-') != std::string_view::npos) {
        return false;
    }
    // Leading blanks and one "+" may open the number; no digit at all ("+")
    // is 0.
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    if (text.empty()) {
        *value = 0;
        return true;
    }
    return MPI_ToU32(text, value);
}

uint32_t MPCLI_IsNum(const char* text)
{
    if (text == nullptr) {
        UIL_TRACE_NULL("pszArg");
        return 0;
    }
    const size_t length = std::strlen(text);
    if (length == 0 || length > kMaxNumberLen) {
        UIL_ERR("Invalid parameter");
        return 0;
    }
    uint32_t value = 0;
    return MPCLI_ReadNum(text, &value) ? 1 : 0;
}

uint32_t MPCLI_ValueCheckByType(int32_t value, uint32_t type)
{
    const IdRange* range = findIdRange(type);
    if (range == nullptr || (value >= 0 && value <= range->max)) {
        return 1;
    }
    UIL_ERR("Parameter is {%d}, exceed the number range%s", value, range->objects);
    return 0;
}

uint32_t MPCLI_ReadIdList(const MPCLI_Word& word, std::string_view key, uint32_t* ids, uint32_t max,
                          uint32_t* count, uint32_t type)
{
    CLI_ASSERT(ids != nullptr);
    CLI_ASSERT(count != nullptr);
    if (word.key.empty() || word.key != key) {
        MPCLI_Print("Error: Invalid input --- %.*s!\n", printLength(word.key), word.key.data());
        return 0;
    }
    uint32_t stored = 0;
    Pieces pieces(word.value, ",");
    for (std::string_view piece; pieces.next(&piece);) {
        if (stored >= max) {
            printTooManyIds(max);
            return 0;
        }
        uint32_t value = 0;
        if (!MPCLI_ReadNum(piece, &value)) {
            if (piece.size() > kMaxNumberLen) {
                UIL_ERR("Invalid parameter");
            }
            MPCLI_Print("Error: Invalid input --- %.*s\n", printLength(piece), piece.data());
            return 0;
        }
        if (MPCLI_ValueCheckByType(static_cast<int32_t>(value), type) == 0) {
            MPCLI_Print("Error: %.*s is out of range\n", printLength(piece), piece.data());
            return 0;
        }
        // The caller's array holds MPCLI_MAX_IDS IDs, even when it asks for more.
        if (stored >= MPCLI_MAX_IDS) {
            printTooManyIds(max);
            return 0;
        }
        ids[stored++] = value;
    }
    *count = stored;
    return 1;
}

uint32_t MPCLI_GetEqualDigitalValues(const char* token, const char* key, uint32_t* ids, uint32_t max,
                                     uint32_t* count, uint32_t type)
{
    CLI_ASSERT(token != nullptr);
    CLI_ASSERT(key != nullptr);
    return MPCLI_ReadIdList(MPCLI_SplitWord(token), key, ids, max, count, type);
}

uint32_t MPCLI_StringSplit(const char* text, const char* delimiter, uint32_t* ids, uint32_t max, uint32_t* count)
{
    CLI_ASSERT(text != nullptr);
    CLI_ASSERT(delimiter != nullptr);
    CLI_ASSERT(ids != nullptr);
    CLI_ASSERT(count != nullptr);

    uint32_t stored = 0;
    Pieces pieces(text, delimiter);
    for (std::string_view piece; pieces.next(&piece);) {
        if (stored >= max) {
            UIL_ERR("exceed max num %d->%d}", static_cast<int>(max), static_cast<int>(stored + 1));
            return 0;
        }
        if (!MPCLI_ReadNum(piece, &ids[stored])) {
            UIL_ERR("%.*s contain non-numeric", printLength(piece), piece.data());
            return 0;
        }
        ++stored;
    }
    *count = stored;
    return 1;
}

uint32_t MPCLI_ParseVlunIds(const char* text, uint32_t* ids, uint32_t max, uint32_t* count)
{
    CLI_ASSERT(text != nullptr);
    CLI_ASSERT(ids != nullptr);
    CLI_ASSERT(count != nullptr);

    *count = 0;
    // Only a text with a "-" can be a range; anything else goes straight to
    // the list form instead of leaving a misleading trace line behind.
    if (std::strchr(text, '-') != nullptr) {
        std::array<uint32_t, 2> bounds{};
        uint32_t pieces = 0;
        if (MPCLI_StringSplit(text, "-", bounds.data(), bounds.size(), &pieces) == 1 && pieces == bounds.size()) {
            if (bounds[0] >= bounds[1]) {
                return MPI_RET_FAIL;
            }
            const uint32_t span = bounds[1] - bounds[0] + 1;
            if (span > max) {
                return MPI_RET_FAIL;
            }
            for (uint32_t i = 0; i < span; ++i) {
                ids[i] = bounds[0] + i;
            }
            *count = span;
            return MPI_RET_SUCCESS;
        }
    }
    uint32_t listed = 0;
    if (MPCLI_StringSplit(text, ",", ids, max, &listed) != 1) {
        return MPI_RET_FAIL;
    }
    // A selection of nothing ("" or ",") selects no VLUN: refused.
    if (listed == 0) {
        return MPI_RET_FAIL;
    }
    *count = listed;
    return MPI_RET_SUCCESS;
}
