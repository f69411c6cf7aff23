// Routing rules of the shell that transcripts cannot reach: operation
// types, the bare-keyword guard of `set`, and dispatch of debug-only rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "mpi/mpi_usr.h"
#include "support/dispatch.h"

namespace {

struct OperCase {
    const char* keyword;
    uint32_t type;
    uint32_t ret;
};

TEST(OperType, FirstRowThatBeginsWithTheTextWins)
{
    const OperCase cases[] = {
        {"workingmode", 0x53415116, MPI_RET_SUCCESS},
        {"loadbalancemode", 0x53415103, MPI_RET_SUCCESS},
        {"ied_min_io", 0x5341512C, MPI_RET_SUCCESS},
        {"sdd_recovery_time", 0x53415161, MPI_RET_SUCCESS},
        {"performance_record", 0x53415163, MPI_RET_SUCCESS},
        {"start Corvane service", 0x5341513D, MPI_RET_SUCCESS},
        // A prefix of a keyword matches its first row.
        {"io", 0x53415107, MPI_RET_SUCCESS},           // iosuspensiontime is the first row so begun
        {"iosuspension", 0x53415107, MPI_RET_SUCCESS}, // and it shadows both iosuspension rows
        {"io_", 0x53415155, MPI_RET_SUCCESS},          // io_latency_threshold comes before io_count
        {"cvRescan", 0x53415120, MPI_RET_SUCCESS},
        {"", 0x53415116, MPI_RET_SUCCESS},             // the empty text matches the first row
        {"workingmode2", 0x53415115, MPI_RET_FAIL},    // longer than every keyword
        {"nothing", 0x53415115, MPI_RET_FAIL},
    };
    for (const OperCase& c : cases) {
        uint32_t type = 0;
        EXPECT_EQ(MPCLI_GetOperType(c.keyword, &type), c.ret) << c.keyword;
        EXPECT_EQ(type, c.type) << c.keyword;
    }
}

struct GuardCase {
    const char* key;
    const char* raw;
    uint8_t allowed;
};

TEST(SetGuard, BareKeywordCommandsRefuseKeyValue)
{
    const GuardCase cases[] = {
        {"phypathnormal", "phypathnormal", 1},
        {"phypathnormal", "phypathnormal=1", 0},
        {"remote_controller", "remote_controller", 1},
        {"remote_controller", "remote_controller=1", 0},
        {"dualsite", "dualsite", 1},
        {"dualsite", "dualsite=x", 0},
        {"phy", "phy", 1},            // a key that begins a bare-keyword command is judged by it
        {"phy", "phy=1", 0},
        {"tod_time", "tod_time=30", 1},
        {"workingmode", "workingmode=1", 1},
        {"", "=5", 0},                // the empty key begins the first word, which "=5" does not
    };
    for (const GuardCase& c : cases) {
        EXPECT_EQ(MPCLI_CheckTypeInvlaid(c.key, c.raw), c.allowed) << c.key << " / " << c.raw;
    }
    EXPECT_EQ(MPCLI_CheckTypeInvlaid(nullptr, "x"), 0);
}

TEST(OneLineCmd, OnlyTheExactWord)
{
    EXPECT_EQ(MPCLI_IsOneLineCmd("supportarraylist"), 1u);
    EXPECT_EQ(MPCLI_IsOneLineCmd("supportarraylists"), 0u);
    EXPECT_EQ(MPCLI_IsOneLineCmd("supportarray"), 0u);
    EXPECT_EQ(MPCLI_IsOneLineCmd(nullptr), 0u);
}

uint32_t g_calls = 0;
uint8_t countingHandler(const MPCLI_Command& command)
{
    ++g_calls;
    // The handler's own result passes through the shell unchanged.
    return static_cast<uint8_t>(command.size() + command[1].raw.size() + 2);
}

// 1 when the row accepts every key of the arguments.
uint8_t keysHandler(const MPCLI_Command& command) { return command.keysAccepted() ? 1 : 0; }

constexpr std::array kRows = std::to_array<MPCLI_Option>({
    {"normal", "", countingHandler, MPCLI_FLAG_NORMAL},
    {"hidden", "", countingHandler, MPCLI_FLAG_DEBUG},
    {"normal", "", nullptr, MPCLI_FLAG_NORMAL},  // never reached: the first equal row wins
});

TEST(Dispatch, ExactKeywordDebugRowsAndResults)
{
    char a0[] = "normal";
    char a1[] = "x=1";
    char* argv[] = {a0, a1, nullptr};
    g_calls = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(DispatchWords("normal", 2, argv, kRows), 7);
    EXPECT_EQ(DispatchWords("hidden", 2, argv, kRows), 0);
    EXPECT_EQ(DispatchWords("Normal", 2, argv, kRows), 0);  // case-sensitive
    EXPECT_EQ(DispatchWords("norm", 2, argv, kRows), 0);    // no prefix matching
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(g_calls, 1u);
    EXPECT_EQ(out.rfind("Error: not allowed input\nUsage: [OPTION]\n", 0), 0u) << out.substr(0, 80);
    EXPECT_NE(out.find("Error: Input Option is not supported.\n"), std::string::npos);

    g_bCLIDebugCmdOn = 1;  // the switch no command sets: debug rows run and usage is silent
    testing::internal::CaptureStdout();
    EXPECT_EQ(DispatchWords("hidden", 2, argv, kRows), 7);
    EXPECT_EQ(DispatchWords("absent", 2, argv, kRows), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error: Input Option is not supported.\n");
    g_bCLIDebugCmdOn = 0;
}

// The keys a row names are those its handler accepts: whole keys of the
// blank-separated list, a bare word being its own key.
TEST(Dispatch, RowNamesTheKeysItsHandlerAccepts)
{
    constexpr std::array rows = std::to_array<MPCLI_Option>({
        {"keyed", "", keysHandler, MPCLI_FLAG_NORMAL, "id verbose"},
        {"bare", "", keysHandler, MPCLI_FLAG_NORMAL},
    });
    struct Case {
        const char* row;
        std::vector<std::string> args;
        uint8_t accepted;
    };
    const Case cases[] = {
        {"keyed", {}, 1},
        {"keyed", {"id=3"}, 1},
        {"keyed", {"id=3", "verbose"}, 1},
        {"keyed", {"verbose=1"}, 1},  // the key is right; the handler judges the form
        {"keyed", {"x=1"}, 0},
        {"keyed", {"i=3"}, 0},        // a part of a key is not the key
        {"keyed", {"d"}, 0},
        {"keyed", {"id verbose"}, 0},
        {"keyed", {"id=3", "bogus"}, 0},
        {"keyed", {"=3"}, 0},
        {"bare", {}, 1},
        {"bare", {"id=3"}, 0},
    };
    for (const Case& c : cases) {
        std::vector<std::string> words{c.row};
        words.insert(words.end(), c.args.begin(), c.args.end());
        std::vector<char*> argv;
        for (std::string& w : words) {
            argv.push_back(w.data());
        }
        argv.push_back(nullptr);
        EXPECT_EQ(DispatchWords(c.row, static_cast<uint32_t>(words.size()), argv.data(), rows), c.accepted)
            << c.row << " " << (c.args.empty() ? "" : c.args.back());
    }
}

// Every row of the shell that takes keyed arguments names them.
TEST(Dispatch, EveryCommandWithKeyedArgumentsNamesItsKeys)
{
    const std::pair<MPCLI_Table, const char*> keyed[] = {
        {g_stCLIOptionShowType, "array"}, {g_stCLIOptionShowType, "vlun"}, {g_stCLIOptionShowType, "path"},
        {g_stCLIOptionShowType, "iostat"}, {g_stCLIOptionSetType, "loadbalancemode"},
        {g_stCLIOptionClearType, "path_statistic"}, {g_stCLIOptionAddType, "supportarraylist"},
    };
    for (auto [table, keyword] : keyed) {
        const MPCLI_Option* row = nullptr;
        for (const MPCLI_Option& option : table) {
            row = std::string(option.keyword) == keyword ? &option : row;
        }
        ASSERT_NE(row, nullptr) << keyword;
        EXPECT_NE(row->keys, nullptr) << keyword;
    }
}

TEST(Dispatch, AbsentKeywordTableOrArguments)
{
    char a0[] = "normal";
    char* argv[] = {a0, nullptr};
    testing::internal::CaptureStdout();
    EXPECT_EQ(MPCLI_ExecuteParameter(nullptr, 1, argv, 3, kRows.data()), 0);
    EXPECT_EQ(MPCLI_ExecuteParameter("normal", 1, argv, 3, nullptr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "absent pointers are traced, not printed";
    testing::internal::CaptureStdout();
    EXPECT_EQ(MPCLI_ExecuteParameter("normal", 1, nullptr, 3, kRows.data()), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("Error: Need more option\n", 0), 0u);
}

}  // namespace
