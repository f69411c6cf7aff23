// Argument tokens, ID lists and value checks; centred cells and the shared
// table printer.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_print.h"
#include "cli/cli_token.h"
#include "mpi/mpi_usr.h"

namespace fs = std::filesystem;

namespace {

// The test main gives every run a sandbox root of its own.
const std::string& sandboxRoot()
{
    static const std::string root = std::getenv("CVADM_ROOT");
    return root;
}

std::string traceText()
{
    std::ifstream in(sandboxRoot() + "/opt/Corvane/log/cli_uil_log.txt");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// "[date] [code] [level] [module] [func: line ] message"
const std::regex kTraceLine(R"(^(?:\[[^\]]*\] ){4}\[\w+: \d+ \] (.*)$)");

// The messages traced since `before` bytes.
std::vector<std::string> tracedSince(size_t before)
{
    std::vector<std::string> messages;
    std::istringstream lines(traceText().substr(before));
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        messages.push_back(std::regex_match(line, match, kTraceLine) ? match[1].str() : line);
    }
    return messages;
}

std::vector<uint32_t> firstIds(const std::vector<uint32_t>& ids, uint32_t count)
{
    return std::vector<uint32_t>(ids.begin(), ids.begin() + std::min<size_t>(count, ids.size()));
}

// ---------------------------------------------------------------------------
struct IsNumCase {
    const char* text;
    uint32_t expected;
};

class IsNum : public testing::TestWithParam<IsNumCase> {};

TEST_P(IsNum, AcceptsOnlyShortUnsignedDecimals)
{
    EXPECT_EQ(MPCLI_IsNum(GetParam().text), GetParam().expected) << "\"" << GetParam().text << "\"";
}

INSTANTIATE_TEST_SUITE_P(Table, IsNum,
                         testing::Values(IsNumCase{"0", 1}, IsNumCase{"16383", 1}, IsNumCase{"123456789", 1},
                                         IsNumCase{"000000001", 1}, IsNumCase{"1234567890", 0},
                                         IsNumCase{"", 0}, IsNumCase{"+", 1}, IsNumCase{"+5", 1},
                                         IsNumCase{"  7", 1}, IsNumCase{" +7", 1}, IsNumCase{"++1", 0},
                                         IsNumCase{"+ 5", 0}, IsNumCase{"-1", 0}, IsNumCase{"1-", 0},
                                         IsNumCase{"-", 0}, IsNumCase{"12a", 0}, IsNumCase{"7 ", 0},
                                         IsNumCase{"0x1F", 0}, IsNumCase{"1,2", 0}, IsNumCase{"1.5", 0}));

TEST(IsNumTrace, AbsentEmptyAndTooLongAreTraced)
{
    const size_t before = traceText().size();
    EXPECT_EQ(MPCLI_IsNum(nullptr), 0u);
    EXPECT_EQ(MPCLI_IsNum(""), 0u);
    EXPECT_EQ(MPCLI_IsNum("1234567890"), 0u);
    EXPECT_EQ(MPCLI_IsNum("-3"), 0u);  // refused without a trace line
    EXPECT_EQ(tracedSince(before), (std::vector<std::string>{"Pointer \"pszArg\" is NULL.", "Invalid parameter.",
                                                              "Invalid parameter."}));
}

// ---------------------------------------------------------------------------
struct RangeCase {
    int32_t value;
    uint32_t type;
    const char* trace;  // nullptr: accepted
};

class ValueCheck : public testing::TestWithParam<RangeCase> {};

TEST_P(ValueCheck, BoundariesPerTypeAndTheirTraceLines)
{
    const RangeCase& c = GetParam();
    const size_t before = traceText().size();
    testing::internal::CaptureStdout();
    const uint32_t ok = MPCLI_ValueCheckByType(c.value, c.type);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "the caller prints, not the check";
    EXPECT_EQ(ok, c.trace == nullptr ? 1u : 0u) << c.value << " type " << c.type;
    const std::vector<std::string> traced = tracedSince(before);
    if (c.trace == nullptr) {
        EXPECT_TRUE(traced.empty());
    } else {
        EXPECT_EQ(traced, std::vector<std::string>{c.trace});
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, ValueCheck,
    testing::Values(RangeCase{0, MPCLI_ID_ARRAY, nullptr}, RangeCase{16383, MPCLI_ID_ARRAY, nullptr},
                    RangeCase{16384, MPCLI_ID_ARRAY, "Parameter is {16384}, exceed the number range of arrays."},
                    RangeCase{-1, MPCLI_ID_ARRAY, "Parameter is {-1}, exceed the number range of arrays."},
                    RangeCase{16383, MPCLI_ID_VLUN, nullptr},
                    RangeCase{16384, MPCLI_ID_VLUN, "Parameter is {16384}, exceed the number range of disks."},
                    RangeCase{0, MPCLI_ID_PATH, nullptr},
                    RangeCase{16384, MPCLI_ID_PATH, "Parameter is {16384}, exceed the number range of pathes."},
                    RangeCase{15, MPCLI_ID_TPG, nullptr},
                    RangeCase{16, MPCLI_ID_TPG, "Parameter is {16}, exceed the number range  of tpgs."},
                    RangeCase{INT_MIN, MPCLI_ID_TPG, "Parameter is {-2147483648}, exceed the number range  of tpgs."},
                    RangeCase{99999, 4, nullptr}, RangeCase{-7, 0xFFFFFFFF, nullptr}));

// ---------------------------------------------------------------------------
struct EqualCase {
    const char* token;
    uint32_t index;
    size_t size;
    uint32_t expected;
    const char* out;    // what `out` holds afterwards ("X" = untouched)
    const char* trace;  // nullptr: nothing traced
};

class GetStringFromEqual : public testing::TestWithParam<EqualCase> {};

TEST_P(GetStringFromEqual, SplitsOneSideOrRefuses)
{
    const EqualCase& c = GetParam();
    std::vector<char> out(c.size + 1, '\0');
    out[0] = 'X';
    const size_t before = traceText().size();
    EXPECT_EQ(MPCLI_GetStringFromEqual(c.token, out.data(), c.index, c.size), c.expected) << c.token;
    EXPECT_STREQ(out.data(), c.out);
    const std::vector<std::string> traced = tracedSince(before);
    if (c.trace == nullptr) {
        EXPECT_TRUE(traced.empty());
    } else {
        EXPECT_EQ(traced, std::vector<std::string>{c.trace});
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, GetStringFromEqual,
    testing::Values(EqualCase{"vlun_id=3", 0, 64, 1, "vlun_id", nullptr}, EqualCase{"vlun_id=3", 1, 64, 1, "3", nullptr},
                    EqualCase{"a=b=c", 0, 64, 1, "a", nullptr}, EqualCase{"a=b=c", 1, 64, 0, "X", "Find \"=\" fail."},
                    EqualCase{"key=", 1, 64, 0, "X", "Find \"=\" fail."}, EqualCase{"=5", 0, 64, 1, "", nullptr},
                    EqualCase{"=5", 1, 64, 1, "5", nullptr},
                    EqualCase{"default", 0, 64, 0, "X", "Can't Find \"=\" in pcArgv."},
                    EqualCase{"abcd=1", 0, 5, 1, "abcd", nullptr},
                    EqualCase{"abcde=1", 0, 5, 0, "X", "Token exceed 5."},
                    EqualCase{"k=12345", 1, 5, 0, "X", "Token exceed 5."},
                    EqualCase{"k=1", 2, 64, 0, "X", "Invalid index {2}."}));

TEST(GetStringFromEqualArgs, AbsentTokenPrintsUsageAbsentOutIsTraced)
{
    char out[8] = "X";
    testing::internal::CaptureStdout();
    EXPECT_EQ(MPCLI_GetStringFromEqual(nullptr, out, 0, sizeof(out)), 0u);
    EXPECT_NE(testing::internal::GetCapturedStdout(), "") << "the usage text";
    const size_t before = traceText().size();
    EXPECT_EQ(MPCLI_GetStringFromEqual("a=b", nullptr, 0, 8), 0u);
    EXPECT_EQ(tracedSince(before), std::vector<std::string>{"Pointer \"pcSource\" is NULL."});
    EXPECT_STREQ(out, "X");
}

// ---------------------------------------------------------------------------
struct ListCase {
    const char* token;
    const char* key;
    uint32_t max;
    uint32_t type;
    uint32_t expected;
    std::vector<uint32_t> ids;
    const char* printed;
};

class EqualDigitalValues : public testing::TestWithParam<ListCase> {};

TEST_P(EqualDigitalValues, ParsesTheListOrPrintsWhyNot)
{
    const ListCase& c = GetParam();
    // Exactly the room the callers give: ASan catches a write past it.
    std::vector<uint32_t> ids(std::min(c.max, MPCLI_MAX_IDS) + (c.max == 0 ? 1 : 0), 0xFFFFFFFF);
    uint32_t count = 0xFFFF;
    testing::internal::CaptureStdout();
    const uint32_t ok = MPCLI_GetEqualDigitalValues(c.token, c.key, ids.data(), c.max, &count, c.type);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed) << c.token;
    ASSERT_EQ(ok, c.expected) << c.token;
    if (ok == 1) {
        EXPECT_EQ(firstIds(ids, count), c.ids);
        EXPECT_EQ(count, c.ids.size());
    }
}

const char kNine[] = "vlun_id=1,2,3,4,5,6,7,8,9";

INSTANTIATE_TEST_SUITE_P(
    Table, EqualDigitalValues,
    testing::Values(
        ListCase{"vlun_id=1,2,3", "vlun_id", 8, MPCLI_ID_VLUN, 1, {1, 2, 3}, ""},
        ListCase{"vlun_id=5,1,5", "vlun_id", 8, MPCLI_ID_VLUN, 1, {5, 1, 5}, ""},
        ListCase{"vlun_id=", "vlun_id", 8, MPCLI_ID_VLUN, 1, {}, ""},
        ListCase{"vlun_id", "vlun_id", 8, MPCLI_ID_VLUN, 1, {}, ""},
        ListCase{"vlun_id=1,2,3,4,5,6,7,8", "vlun_id", 8, MPCLI_ID_VLUN, 1, {1, 2, 3, 4, 5, 6, 7, 8}, ""},
        ListCase{"vlun_id=+,16383", "vlun_id", 8, MPCLI_ID_VLUN, 1, {0, 16383}, ""},
        ListCase{"vlun_id=1,-2", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- -2\n"},
        ListCase{"vlun_id=16384", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: 16384 is out of range\n"},
        ListCase{"array_id=16384", "array_id", 8, MPCLI_ID_ARRAY, 0, {}, "Error: 16384 is out of range\n"},
        ListCase{"tpg_id=16", "tpg_id", 8, MPCLI_ID_TPG, 0, {}, "Error: 16 is out of range\n"},
        ListCase{"tpg_id=0,15", "tpg_id", 8, MPCLI_ID_TPG, 1, {0, 15}, ""},
        ListCase{"vlun_id=1234567890", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- 1234567890\n"},
        ListCase{"vlun_id=1=2", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- 1=2\n"},
        ListCase{kNine, "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 8 ids\n"},
        // Never more than 8 IDs, whatever the caller asks for.
        ListCase{kNine, "vlun_id", 16, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 16 ids\n"},
        ListCase{"vlun_id=1,2,3,4,5,6,7,8,x", "vlun_id", 16, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- x\n"},
        ListCase{"vlun_id=1,2,3", "vlun_id", 2, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 2 ids\n"},
        ListCase{"vlun_id=1,2,x", "vlun_id", 2, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 2 ids\n"},
        ListCase{"vlun_id=1", "vlun_id", 0, MPCLI_ID_VLUN, 0, {}, "Error: You can't input more than 0 ids\n"},
        ListCase{"id=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- id!\n"},
        ListCase{"vlun_idx=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- vlun_idx!\n"},
        ListCase{"VLUN_ID=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- VLUN_ID!\n"},
        ListCase{"=1", "vlun_id", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- !\n"},
        ListCase{"", "", 8, MPCLI_ID_VLUN, 0, {}, "Error: Invalid input --- !\n"}));

// ---------------------------------------------------------------------------
struct SplitCase {
    const char* text;
    const char* delimiter;
    uint32_t max;
    uint32_t expected;
    std::vector<uint32_t> ids;
    const char* trace;
};

class StringSplit : public testing::TestWithParam<SplitCase> {};

TEST_P(StringSplit, NumbersUpToMaxTracedNeverPrinted)
{
    const SplitCase& c = GetParam();
    std::vector<uint32_t> ids(c.max);
    uint32_t count = 0xFFFF;
    const size_t before = traceText().size();
    testing::internal::CaptureStdout();
    const uint32_t ok = MPCLI_StringSplit(c.text, c.delimiter, ids.data(), c.max, &count);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    ASSERT_EQ(ok, c.expected) << c.text;
    if (ok == 1) {
        EXPECT_EQ(firstIds(ids, count), c.ids);
        EXPECT_EQ(count, c.ids.size());
    }
    const std::vector<std::string> traced = tracedSince(before);
    if (c.trace == nullptr) {
        EXPECT_TRUE(traced.empty()) << traced.front();
    } else {
        ASSERT_FALSE(traced.empty());
        EXPECT_EQ(traced.back(), c.trace);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, StringSplit,
                         testing::Values(SplitCase{"1,2,3", ",", 8, 1, {1, 2, 3}, nullptr},
                                         SplitCase{"1,2,3", ",", 2, 0, {}, "exceed max num 2->3}."},
                                         SplitCase{"1,x", ",", 8, 0, {}, "x contain non-numeric."},
                                         SplitCase{"1,1234567890", ",", 8, 0, {}, "1234567890 contain non-numeric."},
                                         SplitCase{"", ",", 8, 1, {}, nullptr},
                                         SplitCase{"4-9", "-", 2, 1, {4, 9}, nullptr},
                                         SplitCase{"1,,2", ",", 8, 1, {1, 2}, nullptr},
                                         SplitCase{"20,30", ",", 1, 0, {}, "exceed max num 1->2}."},
                                         SplitCase{"16384,99999", ",", 8, 1, {16384, 99999}, nullptr}));

// ---------------------------------------------------------------------------
struct VlunIdsCase {
    const char* text;
    uint32_t max;
    uint32_t expected;
    std::vector<uint32_t> ids;
};

class ParseVlunIds : public testing::TestWithParam<VlunIdsCase> {};

TEST_P(ParseVlunIds, SingleListOrAscendingRange)
{
    const VlunIdsCase& c = GetParam();
    std::vector<uint32_t> ids(c.max + 1);  // one spare so max 0 still has an array
    uint32_t count = 0xFFFF;
    testing::internal::CaptureStdout();
    const uint32_t ret = MPCLI_ParseVlunIds(c.text, ids.data(), c.max, &count);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    ASSERT_EQ(ret, c.expected) << c.text;
    EXPECT_EQ(count, c.ids.size()) << c.text;
    EXPECT_EQ(firstIds(ids, count), c.ids);
}

INSTANTIATE_TEST_SUITE_P(Table, ParseVlunIds,
                         testing::Values(VlunIdsCase{"5", 8, MPI_RET_SUCCESS, {5}},
                                         VlunIdsCase{"1,2,5", 8, MPI_RET_SUCCESS, {1, 2, 5}},
                                         VlunIdsCase{"3-6", 8, MPI_RET_SUCCESS, {3, 4, 5, 6}},
                                         VlunIdsCase{"0-7", 8, MPI_RET_SUCCESS, {0, 1, 2, 3, 4, 5, 6, 7}},
                                         VlunIdsCase{"16384", 8, MPI_RET_SUCCESS, {16384}},
                                         VlunIdsCase{"0-8", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"5-5", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"7-3", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"1-2,5", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"1-2-3", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"-5", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"5-", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"1,2,3", 2, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"a", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{",", 8, MPI_RET_FAIL, {}},
                                         VlunIdsCase{"4", 0, MPI_RET_FAIL, {}}));

// ---------------------------------------------------------------------------
struct CentreCase {
    const char* text;
    uint32_t width;
    const char* printed;
};

class CentredCell : public testing::TestWithParam<CentreCase> {};

TEST_P(CentredCell, WidthPlusTwoOddBlankOnTheRight)
{
    testing::internal::CaptureStdout();
    MPCLI_CoutStrInMiddleSpace(GetParam().text, GetParam().width);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(Table, CentredCell,
                         testing::Values(CentreCase{"ab", 2, " ab "}, CentreCase{"5", 7, "    5    "},
                                         CentreCase{"123", 8, "   123    "}, CentreCase{"Array ID", 8, " Array ID "},
                                         CentreCase{"", 0, "  "}, CentreCase{"toolong", 3, "toolong"},
                                         CentreCase{"abcd", 3, "abcd "}));

struct TrimCase {
    const char* text;
    const char* trimmed;
};

class ClearStrEndSpace : public testing::TestWithParam<TrimCase> {};

TEST_P(ClearStrEndSpace, OnlyTrailingBlanksGo)
{
    std::string buffer = GetParam().text;
    MPCLI_ClearStrEndSpace(buffer.data());
    EXPECT_STREQ(buffer.c_str(), GetParam().trimmed);
}

INSTANTIATE_TEST_SUITE_P(Table, ClearStrEndSpace,
                         testing::Values(TrimCase{"HV-Array   ", "HV-Array"}, TrimCase{"  ", ""}, TrimCase{"", ""},
                                         TrimCase{" a b \t ", " a b"}, TrimCase{"abc", "abc"}));

TEST(ConvertArrayName, PassesThroughAndCutsToTheField)
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

TEST(DashLines, LengthAndCharacter)
{
    testing::internal::CaptureStdout();
    MPCLI_PrintDash(5);
    MPCLI_PrintDoubleDash(3);
    MPCLI_PrintDash(0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "-----\n===\n\n");
}

// ---------------------------------------------------------------------------
constexpr std::array<MPCLI_Column, 4> kMeasured = {{
    {"Array ID", 8},
    {"Array Name", 10},
    {"Vendor", 4},  // the header is wider than the minimum
    {"Capacity", 8, true},
}};

TEST(TableLayout, WidthsStartAtHeaderOrMinimumAndOnlyGrow)
{
    MPCLI_TableLayout layout(kMeasured);
    EXPECT_EQ(layout.width(0), 8u);
    EXPECT_EQ(layout.width(1), 10u);
    EXPECT_EQ(layout.width(2), 6u);
    EXPECT_EQ(layout.width(3), 8u);
    layout.measure(MPCLI_TableRow{"12345678901", "x", "VendorName!", "1100.00KB", "spare cell"});
    layout.measure(MPCLI_TableRow{"1", "y"});
    EXPECT_EQ(layout.width(0), 11u);
    EXPECT_EQ(layout.width(1), 10u);
    EXPECT_EQ(layout.width(2), 11u);
    EXPECT_EQ(layout.width(3), 8u) << "a fixed column keeps its width";
    EXPECT_EQ(layout.dashLength(), 11u + 10 + 11 + 8 + 4 * 2);
}

constexpr std::array<MPCLI_Column, 5> kArrayColumns = {{
    {"Array ID", 8},
    {"Array Name", 10},
    {"Array SN", 20},
    {"Vendor Name", 11},
    {"Product Name", 12},
}};

TEST(TableLayout, ExtraDashWidensOnlyTheFrame)
{
    // Five columns drawn with a frame of the widths plus 12.
    MPCLI_TableLayout layout(kArrayColumns, 2);
    EXPECT_EQ(layout.dashLength(), 8u + 10 + 20 + 11 + 12 + 12);
}

constexpr std::array<MPCLI_Column, 2> kSmall = {{{"ID", 4}, {"Name", 4}}};

TEST(TablePrinter, MeasuresFirstThenPrintsCentredAndFramed)
{
    MPCLI_TableLayout layout(kSmall);
    const std::vector<MPCLI_TableRow> rows = {{"1", "alpha"}, {"22"}};
    testing::internal::CaptureStdout();
    MPCLI_PrintTable(layout, rows);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "-------------\n"
              "  ID   Name  \n"
              "  1    alpha \n"
              "  22         \n"
              "-------------\n");
}

// A process-wide layout: a later table is at least as wide as an earlier one.
std::string printWithSharedLayout(const std::vector<MPCLI_TableRow>& rows)
{
    static MPCLI_TableLayout s_layout(kSmall);
    testing::internal::CaptureStdout();
    MPCLI_PrintTable(s_layout, rows);
    return testing::internal::GetCapturedStdout();
}

TEST(TablePrinter, SharedWidthsGrowAcrossTablesAndNeverShrink)
{
    EXPECT_EQ(printWithSharedLayout({{"7", "a-much-longer-name"}}),
              "--------------------------\n"
              "  ID          Name        \n"
              "  7    a-much-longer-name \n"
              "--------------------------\n");
    EXPECT_EQ(printWithSharedLayout({{"123456", "b"}}),
              "----------------------------\n"
              "   ID           Name        \n"
              " 123456          b          \n"
              "----------------------------\n");
    // A table of its own starts narrow again.
    MPCLI_TableLayout fresh(kSmall);
    fresh.measure(MPCLI_TableRow{"1", "b"});
    EXPECT_EQ(fresh.dashLength(), 12u);
}

}  // namespace
