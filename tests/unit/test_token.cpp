// Argument tokens, ID lists and value checks; centred cells and the shared
// table widths.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_command.h"
#include "cli/cli_out.h"
#include "cli/cli_print.h"
#include "cli/cli_token.h"
#include "mpi/mpi_usr.h"
#include "support/test_files.h"

namespace {

using testfiles::traceText;

// "[date] [code] [level] [module] [func: line ] message"
const std::regex kTraceLine(R"(^(?:\[[^\]]*\] ){4}\[\w+: \d+ \] (.*)$)");

// What one call returned, printed and traced (the messages without their heads).
struct Seen {
    uint32_t result;
    std::string printed;
    std::vector<std::string> traced;
};

template <typename Call>
Seen watch(Call call)
{
    const size_t before = traceText().size();
    testing::internal::CaptureStdout();
    Seen seen{call(), "", {}};
    seen.printed = testing::internal::GetCapturedStdout();
    std::istringstream lines(traceText().substr(before));
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        seen.traced.push_back(std::regex_match(line, match, kTraceLine) ? match[1].str() : line);
    }
    return seen;
}

// Nothing traced for nullptr, else `trace` as the last line.
void expectTraced(const Seen& seen, const char* trace)
{
    if (trace == nullptr) {
        EXPECT_TRUE(seen.traced.empty()) << seen.traced.front();
    } else {
        ASSERT_FALSE(seen.traced.empty()) << "expected: " << trace;
        EXPECT_EQ(seen.traced.back(), trace);
    }
}

std::vector<uint32_t> firstIds(const std::vector<uint32_t>& ids, uint32_t count)
{
    return std::vector<uint32_t>(ids.begin(), ids.begin() + std::min<size_t>(count, ids.size()));
}

// ---------------------------------------------------------------------------
TEST(Token, IsNumAcceptsOnlyShortUnsignedDecimals)
{
    const struct {
        const char* text;
        uint32_t expected;
        const char* trace;
    } cases[] = {
        {"0", 1, nullptr},     {"16383", 1, nullptr}, {"123456789", 1, nullptr}, {"000000001", 1, nullptr},
        {"+", 1, nullptr},     {"+5", 1, nullptr},    {"  7", 1, nullptr},       {" +7", 1, nullptr},
        {"++1", 0, nullptr},   {"+ 5", 0, nullptr},   {"-1", 0, nullptr},        {"1-", 0, nullptr},
        {"-", 0, nullptr},     {"12a", 0, nullptr},   {"7 ", 0, nullptr},        {"0x1F", 0, nullptr},
        {"1,2", 0, nullptr},   {"1.5", 0, nullptr},   {"-3", 0, nullptr},
        {"", 0, "Invalid parameter."}, {"1234567890", 0, "Invalid parameter."},
        {nullptr, 0, "Pointer \"pszArg\" is NULL."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text ? c.text : "(null)");
        Seen seen = watch([&] { return MPCLI_IsNum(c.text); });
        EXPECT_EQ(seen.result, c.expected);
        EXPECT_EQ(seen.printed, "");
        expectTraced(seen, c.trace);
    }
}

TEST(Token, ReadNumGivesTheValueOfWhatIsNumAccepts)
{
    const struct {
        const char* text;
        bool read;
        uint32_t value;
    } cases[] = {
        {"0", true, 0},           {"16383", true, 16383}, {"999999999", true, 999999999}, {"000000042", true, 42},
        {"+", true, 0},           {" +7", true, 7},       {"  ", true, 0},               {"1234567890", false, 0},
        {"-0", false, 0},         {"7 ", false, 0},       {"0x1F", false, 0},            {"", false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        uint32_t value = 0xDEAD;
        EXPECT_EQ(MPCLI_ReadNum(c.text, &value), c.read);
        EXPECT_EQ(MPCLI_IsNum(c.text), c.read ? 1u : 0u);
        if (c.read) {
            EXPECT_EQ(value, c.value);
        }
    }
}

TEST(Words, EachWordIsSplitOnceAtItsFirstEqualSign)
{
    char w0[] = "vlun";
    char w1[] = "id=1,2";
    char w2[] = "type=";
    char w3[] = "verbose";
    char w4[] = "a=b=c";
    char* argv[] = {w0, w1, w2, w3, w4, nullptr};
    const MPCLI_Line line(5, argv);
    const MPCLI_Command command = line.command();
    ASSERT_EQ(command.size(), 5u);
    ASSERT_EQ(command.args().size(), 4u);
    const struct {
        const char* key;
        const char* value;
        bool hasEqual;
        bool hasValue;
    } expected[] = {
        {"vlun", "", false, false},
        {"id", "1,2", true, true},
        {"type", "", true, false},
        {"verbose", "", false, false},
        {"a", "b=c", true, false},  // a second "=" leaves no usable value
    };
    for (uint32_t i = 0; i < command.size(); ++i) {
        SCOPED_TRACE(argv[i]);
        EXPECT_EQ(command[i].key, expected[i].key);
        EXPECT_EQ(command[i].value, expected[i].value);
        EXPECT_EQ(command[i].hasEqual, expected[i].hasEqual);
        EXPECT_EQ(command[i].hasValue(), expected[i].hasValue);
        EXPECT_EQ(command[i].raw, argv[i]);
        // Views into the words themselves, not copies.
        EXPECT_EQ(command[i].raw.data(), argv[i]);
    }
    EXPECT_TRUE(command.keysIn({"id", "type", "verbose", "a"}));
    EXPECT_FALSE(command.keysIn({"id", "type"}));
    const MPCLI_Line noLine(0, nullptr);
    const MPCLI_Command none = noLine.command();
    EXPECT_EQ(none.size(), 1u) << "a handler always has its keyword word";
    EXPECT_TRUE(none.args().empty());
}

TEST(Token, ValueCheckBoundariesPerTypeAndTheirTraceLines)
{
    const struct {
        int32_t value;
        uint32_t type;
        const char* trace;  // nullptr: accepted
    } cases[] = {
        {0, MPCLI_ID_ARRAY, nullptr},
        {16383, MPCLI_ID_ARRAY, nullptr},
        {16384, MPCLI_ID_ARRAY, "Parameter is {16384}, exceed the number range of arrays."},
        {-1, MPCLI_ID_ARRAY, "Parameter is {-1}, exceed the number range of arrays."},
        {16383, MPCLI_ID_VLUN, nullptr},
        {16384, MPCLI_ID_VLUN, "Parameter is {16384}, exceed the number range of disks."},
        {0, MPCLI_ID_PATH, nullptr},
        {16384, MPCLI_ID_PATH, "Parameter is {16384}, exceed the number range of pathes."},
        {15, MPCLI_ID_TPG, nullptr},
        {16, MPCLI_ID_TPG, "Parameter is {16}, exceed the number range  of tpgs."},
        {INT_MIN, MPCLI_ID_TPG, "Parameter is {-2147483648}, exceed the number range  of tpgs."},
        {99999, 4, nullptr},
        {-7, 0xFFFFFFFF, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " type " << c.type);
        Seen seen = watch([&] { return MPCLI_ValueCheckByType(c.value, c.type); });
        EXPECT_EQ(seen.result, c.trace == nullptr ? 1u : 0u);
        EXPECT_EQ(seen.printed, "") << "the caller prints, not the check";
        expectTraced(seen, c.trace);
    }
}

TEST(Token, GetStringFromEqualSplitsOneSideOrRefuses)
{
    const struct {
        const char* token;
        uint32_t index;
        size_t size;
        uint32_t expected;
        const char* out;    // what `out` holds afterwards ("X" = untouched)
        const char* trace;  // nullptr: nothing traced
    } cases[] = {
        {"vlun_id=3", 0, 64, 1, "vlun_id", nullptr},
        {"vlun_id=3", 1, 64, 1, "3", nullptr},
        {"a=b=c", 0, 64, 1, "a", nullptr},
        {"a=b=c", 1, 64, 0, "X", "Find \"=\" fail."},
        {"key=", 1, 64, 0, "X", "Find \"=\" fail."},
        {"=5", 0, 64, 1, "", nullptr},
        {"=5", 1, 64, 1, "5", nullptr},
        {"default", 0, 64, 0, "X", "Can't Find \"=\" in pcArgv."},
        {"abcd=1", 0, 5, 1, "abcd", nullptr},
        {"abcde=1", 0, 5, 0, "X", "Token exceed 5."},
        {"k=12345", 1, 5, 0, "X", "Token exceed 5."},
        {"k=1", 2, 64, 0, "X", "Invalid index {2}."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.token << " side " << c.index << " size " << c.size);
        std::vector<char> out(c.size + 1, '\0');
        out[0] = 'X';
        Seen seen = watch([&] { return MPCLI_GetStringFromEqual(c.token, out.data(), c.index, c.size); });
        EXPECT_EQ(seen.result, c.expected);
        EXPECT_EQ(seen.printed, "");
        EXPECT_STREQ(out.data(), c.out);
        expectTraced(seen, c.trace);
    }

    // An absent token prints the usage; an absent output is only traced.
    char out[8] = "X";
    Seen usage = watch([&] { return MPCLI_GetStringFromEqual(nullptr, out, 0, sizeof(out)); });
    EXPECT_EQ(usage.result, 0u);
    EXPECT_NE(usage.printed, "");
    Seen absent = watch([] { return MPCLI_GetStringFromEqual("a=b", nullptr, 0, 8); });
    EXPECT_EQ(absent.result, 0u);
    EXPECT_EQ(absent.printed, "");
    expectTraced(absent, "Pointer \"pcSource\" is NULL.");
    EXPECT_STREQ(out, "X");
}

// ---------------------------------------------------------------------------
// ID lists: `key=ID1,ID2,...` with its errors printed, the plain split with
// its errors traced, and the VLUN list or range.

TEST(IdList, EqualDigitalValuesParsesTheListOrPrintsWhyNot)
{
    const char* nine = "vlun_id=1,2,3,4,5,6,7,8,9";
    const struct {
        const char* token;
        const char* key;
        uint32_t max;
        uint32_t type;
        uint32_t expected;
        std::vector<uint32_t> ids;
        const char* printed;
    } cases[] = {
        {"vlun_id=1,2,3", "vlun_id", 8, MPCLI_ID_VLUN, 1, {1, 2, 3}, ""},
        {"vlun_id=5,1,5", "vlun_id", 8, MPCLI_ID_VLUN, 1, {5, 1, 5}, ""},
        {"vlun_id=", "vlun_id", 8, MPCLI_ID_VLUN, 1, {}, ""},
        {"vlun_id", "vlun_id", 8, MPCLI_ID_VLUN, 1, {}, ""},
        {"vlun_id=1,2,3,4,5,6,7,8", "vlun_id", 8, MPCLI_ID_VLUN, 1, {1, 2, 3, 4, 5, 6, 7, 8}, ""},
        {"vlun_id=+,16383", "vlun_id", 8, MPCLI_ID_VLUN, 1, {0, 16383}, ""},
        {"vlun_id=1,-2", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- -2\n"},
        {"array_id=16384", "array_id", 8, MPCLI_ID_ARRAY, 0, {}, "Error: 16384 is out of range\n"},
        {"tpg_id=16", "tpg_id", 8, MPCLI_ID_TPG, 0, {}, "Error: 16 is out of range\n"},
        {"tpg_id=0,15", "tpg_id", 8, MPCLI_ID_TPG, 1, {0, 15}, ""},
        {"vlun_id=1234567890", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- 1234567890\n"},
        {"vlun_id=1=2", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- 1=2\n"},
        {"vlun_id=,1,,2,", "vlun_id", 8, MPCLI_ID_VLUN, 1, {1, 2}, ""},  // empty pieces are skipped
        {"vlun_id=999999999", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: 999999999 is out of range\n"},
        {nine, "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 8 ids\n"},
        // Never more than 8 IDs, whatever the caller asks for.
        {nine, "vlun_id", 16, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 16 ids\n"},
        {"vlun_id=1,2,3,4,5,6,7,8,x", "vlun_id", 16, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- x\n"},
        {"vlun_id=1,2,3", "vlun_id", 2, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 2 ids\n"},
        {"vlun_id=1,2,x", "vlun_id", 2, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 2 ids\n"},
        {"vlun_id=1", "vlun_id", 0, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 0 ids\n"},
        {"id=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- id!\n"},
        {"vlun_idx=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- vlun_idx!\n"},
        {"VLUN_ID=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- VLUN_ID!\n"},
        {"=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- !\n"},
        {"", "", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- !\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.token << " max " << c.max);
        // Exactly the room the callers give: ASan catches a write past it.
        std::vector<uint32_t> ids(std::min(c.max, MPCLI_MAX_IDS) + (c.max == 0 ? 1 : 0), 0xFFFFFFFF);
        uint32_t count = 0xFFFF;
        Seen seen = watch([&] { return MPCLI_GetEqualDigitalValues(c.token, c.key, ids.data(), c.max, &count, c.type); });
        EXPECT_EQ(seen.printed, c.printed);
        ASSERT_EQ(seen.result, c.expected);
        if (seen.result == 1) {
            EXPECT_EQ(firstIds(ids, count), c.ids);
            EXPECT_EQ(count, c.ids.size());
        }
    }
}

TEST(IdList, StringSplitNumbersUpToMaxTracedNeverPrinted)
{
    const struct {
        const char* text;
        const char* delimiter;
        uint32_t max;
        uint32_t expected;
        std::vector<uint32_t> ids;
        const char* trace;
    } cases[] = {
        {"1,2,3", ",", 8, 1, {1, 2, 3}, nullptr},
        {"1,2,3", ",", 2, 0, {}, "exceed max num 2->3}."},
        {"1,x", ",", 8, 0, {}, "x contain non-numeric."},
        {"1,1234567890", ",", 8, 0, {}, "1234567890 contain non-numeric."},
        {"", ",", 8, 1, {}, nullptr},
        {"4-9", "-", 2, 1, {4, 9}, nullptr},
        {"1,,2", ",", 8, 1, {1, 2}, nullptr},
        {"20,30", ",", 1, 0, {}, "exceed max num 1->2}."},
        {"16384,99999", ",", 8, 1, {16384, 99999}, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " max " << c.max);
        std::vector<uint32_t> ids(c.max);
        uint32_t count = 0xFFFF;
        Seen seen = watch([&] { return MPCLI_StringSplit(c.text, c.delimiter, ids.data(), c.max, &count); });
        EXPECT_EQ(seen.printed, "");
        ASSERT_EQ(seen.result, c.expected);
        if (seen.result == 1) {
            EXPECT_EQ(firstIds(ids, count), c.ids);
            EXPECT_EQ(count, c.ids.size());
        }
        expectTraced(seen, c.trace);
    }
}

TEST(IdList, VlunIdsAreASingleListOrAnAscendingRange)
{
    const struct {
        const char* text;
        uint32_t max;
        std::vector<uint32_t> ids;  // empty: refused
    } cases[] = {
        {"5", 8, {5}},         {"1,2,5", 8, {1, 2, 5}}, {"3-6", 8, {3, 4, 5, 6}},
        {"0-7", 8, {0, 1, 2, 3, 4, 5, 6, 7}},           {"16384", 8, {16384}},
        {"0-8", 8, {}},        {"5-5", 8, {}},          {"7-3", 8, {}},
        {"1-2,5", 8, {}},      {"1-2-3", 8, {}},        {"-5", 8, {}},
        {"5-", 8, {}},         {"1,2,3", 2, {}},        {"a", 8, {}},
        {"", 8, {}},           {",", 8, {}},            {"4", 0, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " max " << c.max);
        std::vector<uint32_t> ids(c.max + 1);  // one spare so max 0 still has an array
        uint32_t count = 0xFFFF;
        Seen seen = watch([&] { return MPCLI_ParseVlunIds(c.text, ids.data(), c.max, &count); });
        EXPECT_EQ(seen.printed, "");
        ASSERT_EQ(seen.result, c.ids.empty() ? MPI_RET_FAIL : MPI_RET_SUCCESS);
        EXPECT_EQ(count, c.ids.size());
        EXPECT_EQ(firstIds(ids, count), c.ids);
    }
}

// ---------------------------------------------------------------------------
// Cells and names.

TEST(Cells, CentredInWidthPlusTwoOddBlankOnTheRight)
{
    const struct {
        const char* text;
        uint32_t width;
        const char* printed;
    } cases[] = {
        {"ab", 2, " ab "},      {"5", 7, "    5    "}, {"123", 8, "   123    "}, {"Array ID", 8, " Array ID "},
        {"", 0, "  "},          {"toolong", 3, "toolong"}, {"abcd", 3, "abcd "},
    };
    for (const auto& c : cases) {
        Seen seen = watch([&] {
            MPCLI_CoutStrInMiddleSpace(c.text, c.width);
            MPCLI_OutFlush();  // a cell waits in the buffer for the end of its line
            return 0u;
        });
        EXPECT_EQ(seen.printed, c.printed) << c.text << " in " << c.width;
    }
}

TEST(Cells, ClearStrEndSpaceTakesOnlyTrailingBlanks)
{
    for (auto [text, trimmed] : {std::pair{"HV-Array   ", "HV-Array"}, {"  ", ""}, {"", ""}, {" a b \t ", " a b"},
                                 {"abc", "abc"}}) {
        std::string buffer = text;
        MPCLI_ClearStrEndSpace(buffer.data());
        EXPECT_STREQ(buffer.c_str(), trimmed) << '"' << text << '"';
    }
}

TEST(Cells, ConvertArrayNamePassesThroughAndCutsToTheField)
{
    char out[81];
    MPCLI_ConvertArrayName("Array_01", out, sizeof(out));
    EXPECT_STREQ(out, "Array_01");
    const std::string longName(100, 'n');
    MPCLI_ConvertArrayName(longName.c_str(), out, sizeof(out));
    EXPECT_EQ(std::string(out), std::string(80, 'n'));
    char tiny[1];
    MPCLI_ConvertArrayName("abc", tiny, sizeof(tiny));
    EXPECT_STREQ(tiny, "");
}

// ---------------------------------------------------------------------------
// Table widths: measured over header and rows (that process-wide widths only
// grow from one table to the next, the show path transcript shows).

constexpr std::array<MPCLI_Column, 4> kMeasured = {{
    {"Array ID", 8},
    {"Array Name", 10},
    {"Vendor", 4},  // the header is wider than the minimum
    {"Capacity", 8, true},
}};

TEST(TableLayout, WidthsStartAtHeaderOrMinimumAndOnlyGrow)
{
    MPCLI_TableLayout layout(kMeasured);
    EXPECT_EQ(layout.width(2), 6u);
    for (const std::vector<std::string>& row : {std::vector<std::string>{"12345678901", "x", "VendorName!", "1100.00KB"},
                                                std::vector<std::string>{"1", "y"}}) {
        for (size_t column = 0; column < row.size(); ++column) {
            layout.measureCell(column, row[column].size());
        }
    }
    EXPECT_EQ(layout.width(0), 11u);
    EXPECT_EQ(layout.width(1), 10u);
    EXPECT_EQ(layout.width(2), 11u);
    EXPECT_EQ(layout.width(3), 8u) << "a fixed column keeps its width";
    EXPECT_EQ(layout.dashLength(), 11u + 10 + 11 + 8 + 4 * 2);
    // Extra dashes lengthen the frame, not the columns.
    MPCLI_TableLayout framed(kMeasured, 2);
    EXPECT_EQ(framed.dashLength(), 8u + 10 + 6 + 8 + 4 * 2 + 2);
    EXPECT_EQ(framed.width(2), 6u);
}

}  // namespace
