// Argument tokens of the object commands. The console texts here are what
// the operator sees for malformed input, so they are kept byte for byte.
#include "cli/cli_token.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "mpi/mpi_usr.h"

namespace {

constexpr size_t kMaxNumberLen = 9;  // keeps every accepted number below 2^31
constexpr const char kBlanks[] = " \t";
constexpr const char kDigits[] = "0123456789";

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};
using HeapText = std::unique_ptr<char, FreeText>;

// A private, writable copy of `text` for splitting; empty on allocation failure.
HeapText copyToHeap(const char* text, size_t* size)
{
    *size = std::strlen(text) + 1;
    HeapText copy(static_cast<char*>(MPCLI_ZMalloc(*size)));
    if (copy && strcpy_s(copy.get(), *size, text) != EOK) {
        copy.reset();
    }
    return copy;
}

// Where the digits of a number start: after leading blanks and one "+".
const char* skipSign(const char* text)
{
    text += std::strspn(text, kBlanks);
    return *text == '+' ? text + 1 : text;
}

// The value of a text that MPCLI_IsNum accepted.
uint32_t numberValue(const char* text)
{
    uint32_t value = 0;
    for (const char* digit = skipSign(text); *digit != '\0'; ++digit) {
        value = value * 10 + static_cast<uint32_t>(*digit - '0');
    }
    return value;
}

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
    size_t size = 0;
    HeapText copy = copyToHeap(token, &size);
    if (!copy) {
        UIL_ERR("Allocate memory for \"%s\" fail", token);
        return 0;
    }
    char* equal = std::strchr(copy.get(), '=');
    if (equal == nullptr) {
        UIL_ERR("Can't Find \"=\" in pcArgv");
        return 0;
    }
    *equal = '\0';
    const char* piece = copy.get();
    if (index == 1) {
        piece = equal + 1;
        if (*piece == '\0' || std::strchr(piece, '=') != nullptr) {
            UIL_ERR("Find \"=\" fail");
            return 0;
        }
    } else if (index != 0) {
        UIL_ERR("Invalid index {%u}", index);
        return 0;
    }
    if (std::strlen(piece) >= outSize) {
        UIL_ERR("Token exceed %d", static_cast<int>(outSize));
        return 0;
    }
    return strcpy_s(out, outSize, piece) == EOK ? 1 : 0;
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
    if (std::strchr(text, '-') != nullptr) {
        return 0;
    }
    // Nothing but digits may follow the sign; no digit at all ("+") is 0.
    const char* digits = skipSign(text);
    return digits[std::strspn(digits, kDigits)] == '\0' ? 1 : 0;
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

uint32_t MPCLI_GetEqualDigitalValues(const char* token, const char* key, uint32_t* ids, uint32_t max,
                                     uint32_t* count, uint32_t type)
{
    CLI_ASSERT(token != nullptr);
    CLI_ASSERT(key != nullptr);
    CLI_ASSERT(ids != nullptr);
    CLI_ASSERT(count != nullptr);

    size_t size = 0;
    HeapText copy = copyToHeap(token, &size);
    if (!copy) {
        UIL_ERR("Allocate memory for \"%s\" fail", token);
        return 0;
    }
    // The key is the text before the first "="; a token without one is all key.
    char* list = copy.get() + std::strcspn(copy.get(), "=");
    if (*list == '=') {
        *list++ = '\0';
    }
    const char* given = copy.get();
    if (*given == '\0' || std::strcmp(given, key) != 0) {
        MPCLI_Print("Error: Invalid input --- %s!\n", given);
        return 0;
    }

    uint32_t stored = 0;
    char* context = nullptr;
    for (char* piece = strtok_s(list, ",", &context); piece != nullptr; piece = strtok_s(nullptr, ",", &context)) {
        if (stored >= max) {
            printTooManyIds(max);
            return 0;
        }
        if (MPCLI_IsNum(piece) == 0) {
            MPCLI_Print("Error: Invalid input --- %s\n", piece);
            return 0;
        }
        const uint32_t value = numberValue(piece);
        if (MPCLI_ValueCheckByType(static_cast<int32_t>(value), type) == 0) {
            MPCLI_Print("Error: %s is out of range\n", piece);
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

uint32_t MPCLI_StringSplit(const char* text, const char* delimiter, uint32_t* ids, uint32_t max, uint32_t* count)
{
    CLI_ASSERT(text != nullptr);
    CLI_ASSERT(delimiter != nullptr);
    CLI_ASSERT(ids != nullptr);
    CLI_ASSERT(count != nullptr);

    size_t size = 0;
    HeapText copy = copyToHeap(text, &size);
    if (!copy) {
        UIL_ERR("alloc memory size{%u} failed", static_cast<uint32_t>(size));
        return 0;
    }
    uint32_t stored = 0;
    char* context = nullptr;
    for (char* piece = strtok_s(copy.get(), delimiter, &context); piece != nullptr;
         piece = strtok_s(nullptr, delimiter, &context)) {
        if (stored >= max) {
            UIL_ERR("exceed max num %d->%d}", static_cast<int>(max), static_cast<int>(stored + 1));
            return 0;
        }
        if (MPCLI_IsNum(piece) == 0) {
            UIL_ERR("%s contain non-numeric", piece);
            return 0;
        }
        ids[stored++] = numberValue(piece);
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
