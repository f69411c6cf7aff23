// Help texts, the full usage text and the help command.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/cli.h"
#include "cli/cli_helptext.h"

namespace {

constexpr size_t kField = 39;  // syntax field; "--" starts in column 40
const std::string kBlankField(kField, ' ');
constexpr char kNeedSub[] = "Please input the sub command along with this command to obtain the help message.\n";
constexpr char kInvalid[] = "Error: Invalid input!\n Usage:\n";
constexpr char kNotSupported[] = "Error: Input Option is not supported.\n";

struct Named {
    const char* name;
    const char* text;
};

#define NAMED(c) Named{#c, c}
// The blocks of the usage text in the order operators rely on.
constexpr auto kUsageOrder = std::to_array<Named>({
    NAMED(HELP_HELP), NAMED(HELP_QUESTION), NAMED(HELP_QUIT),
    // show
    NAMED(HELP_SHOW_VERSION), NAMED(HELP_SHOW_ARRAY), NAMED(HELP_SHOW_PATH), NAMED(HELP_SHOW_VLUN),
    NAMED(HELP_SHOW_IOSTAT), NAMED(HELP_SHOW_SUPPORTARRAYLIST), NAMED(HELP_SHOW_CVCONFIG), NAMED(HELP_SHOW_EVENT),
    NAMED(HELP_SHOW_ALARMENABLE), NAMED(HELP_SHOW_PATH_RELIABILITY_ENABLE), NAMED(HELP_SHOW_WORKERSTATE),
    NAMED(HELP_SHOW_IO_COUNT), NAMED(HELP_SHOW_IO_LATENCY), NAMED(HELP_SHOW_IO_LATENCY_THRESHOLD),
    // supported arrays, migration
    NAMED(HELP_ADD_SUPPORTARRAYLIST), NAMED(HELP_DEL_SUPPORTARRAYLIST), NAMED(HELP_START_MIGRATION),
    // general setters
    NAMED(HELP_SET_PHYPATHNORMAL), NAMED(HELP_SET_WORKINGMODE), NAMED(HELP_SET_LOADBALANCEMODE),
    NAMED(HELP_SET_LUNTRESPASS), NAMED(HELP_SET_FAILBACKDELAYTIME), NAMED(HELP_SET_PATHSTATE),
    NAMED(HELP_SET_TPGSTATE), NAMED(HELP_SET_IOSUSPENSIONTIME), NAMED(HELP_SET_IORETRY),
    NAMED(HELP_SET_LB_IO_THRESHOLD), NAMED(HELP_SET_MAX_IO_RETRY_TIMEOUT), NAMED(HELP_SET_IO_LATENCY_THRESHOLD),
    NAMED(HELP_SET_FAULTY_PATH_CHECK_INTERVAL), NAMED(HELP_SET_IDLE_PATH_CHECK_INTERVAL),
    NAMED(USAGE_SET_STOP_IOSUSPENSION), NAMED(HELP_SET_ALARMENABLE), NAMED(HELP_SET_PATH_RELIABILITY_ENABLE),
    // degrade, remote controller, performance record, dual-site working mode
    NAMED(HELP_SET_HLD_TIME), NAMED(HELP_SET_HLD_THRESHOLD), NAMED(HELP_SET_HLD_RECOVERY_TIME),
    NAMED(HELP_SET_TOD_TIME), NAMED(HELP_SET_TOD_THRESHOLD), NAMED(HELP_SET_TOD_RECOVERY_TIME),
    NAMED(HELP_SET_IED_TIME), NAMED(HELP_SET_IED_MIN_IO), NAMED(HELP_SET_IED_THRESHOLD),
    NAMED(HELP_SET_IED_RECOVERY_TIME), NAMED(HELP_SET_IFD_TIME), NAMED(HELP_SET_IFD_THRESHOLD),
    NAMED(HELP_SET_IFD_RECOVERY_TIME), NAMED(HELP_SET_SDD_THRESHOLD), NAMED(HELP_SET_SDD_RECOVERY_TIME),
    NAMED(HELP_SET_REMOTE_CONTROLLER), NAMED(HELP_SET_PERFORMANCE_RECORD), NAMED(USAGE_SET_DUALSITE_WORKINGMODE),
    // stop
    NAMED(HELP_STOP_IOSUSPENSION),
    // the last block
    NAMED(USAGE_SET_DUALSITE_SPLIT_SIZE), NAMED(HELP_START_PATHCHECK), NAMED(HELP_START_REBALANCELUN),
    NAMED(HELP_START_IOSUSPENSION), NAMED(HELP_CLEAR_CVCONFIG), NAMED(HELP_CLEAR_OBSOLETE_PATH),
    NAMED(HELP_CLEAR_IO_COUNT), NAMED(HELP_CHECK_STATUS), NAMED(HELP_GENPRKEY), NAMED(HELP_CLEAR_PATH_STATISTIC),
});
#undef NAMED

std::string usageText()
{
    testing::internal::CaptureStdout();
    MPCLI_CVMUsage();
    return testing::internal::GetCapturedStdout();
}

struct Outcome {
    uint8_t result;
    std::string out;
};

Outcome run(MPCLI_Handler handler, std::vector<std::string> words)
{
    std::vector<char*> argv;
    for (std::string& w : words) {
        argv.push_back(w.data());
    }
    argv.push_back(nullptr);
    testing::internal::CaptureStdout();
    const MPCLI_Line line(static_cast<uint32_t>(words.size()), argv.data());
    uint8_t result = handler(line.command());
    return {result, testing::internal::GetCapturedStdout()};
}

// Splits a text into its lines; the text must end in a newline.
std::vector<std::string> linesOf(std::string_view text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t nl = text.find('\n'); nl != std::string_view::npos; nl = text.find('\n', start)) {
        lines.emplace_back(text.substr(start, nl - start));
        start = nl + 1;
    }
    EXPECT_EQ(start, text.size()) << "text does not end in a newline: " << text;
    return lines;
}

bool isContinuation(const std::string& line, std::string_view dash)
{
    return line.size() > kField + dash.size() && line.compare(0, kField, kBlankField) == 0 &&
           line.compare(kField, dash.size(), dash) == 0 && line[kField + dash.size()] != ' ';
}

// A syntax padded to the field: text from column 1, at least one blank
// before the "--  " in column 40.
bool isPaddedSyntax(const std::string& line)
{
    if (line.size() <= kField + 4 || line[0] == ' ' || line.compare(kField, 4, "--  ") != 0 ||
        line[kField + 4] == ' ') {
        return false;
    }
    std::string_view field(line.data(), kField);
    return field.back() == ' ' && field.find("--") == std::string_view::npos;
}

// A syntax too long for the field: alone on its line, no description.
bool isLongSyntax(const std::string& line)
{
    return line.size() >= kField && line[0] != ' ' && line.find(" --") == std::string::npos;
}

// Checks the layout of a run of help lines; returns the failures.
std::vector<std::string> layoutFaults(const std::vector<std::string>& lines)
{
    std::vector<std::string> faults;
    bool inSplitSize = false;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        if (line[0] != ' ') {
            inSplitSize = line.starts_with("set dualsite split_size=");
        }
        if (isPaddedSyntax(line) || isContinuation(line, "--  ")) {
            continue;
        }
        if (inSplitSize && isContinuation(line, "-- ")) {
            continue;  // the split-size lines keep their single blank
        }
        if (isLongSyntax(line) && i + 1 < lines.size() && isContinuation(lines[i + 1], inSplitSize ? "-- " : "--  ")) {
            continue;
        }
        faults.push_back(line);
    }
    return faults;
}

TEST(HelpTexts, EveryTextIsWholeLinesInTheColumnLayout)
{
    std::vector<Named> texts(kUsageOrder.begin(), kUsageOrder.end());
    texts.push_back(Named{"HELP_SET_DUALSITE", HELP_SET_DUALSITE});
    for (const Named& t : texts) {
        SCOPED_TRACE(t.name);
        std::string_view text(t.text);
        ASSERT_FALSE(text.empty());
        EXPECT_TRUE(text.ends_with('\n'));
        EXPECT_EQ(text.find("\n\n"), std::string_view::npos);
        EXPECT_NE(text[0], ' ') << "a help text begins with its syntax";
        EXPECT_EQ(layoutFaults(linesOf(text)), std::vector<std::string>{});
    }
}

TEST(HelpTexts, UsageHoldsEveryBlockOnceInOrder)
{
    const std::string usage = usageText();
    size_t previous = 0;
    const char* previousName = "Usage: [OPTION]";
    for (const Named& block : kUsageOrder) {
        SCOPED_TRACE(block.name);
        size_t at = usage.find(block.text);
        ASSERT_NE(at, std::string::npos);
        EXPECT_EQ(usage.find(block.text, at + 1), std::string::npos) << "printed twice";
        EXPECT_GT(at, previous) << block.name << " must follow " << previousName;
        previous = at;
        previousName = block.name;
    }
    // Nothing else is printed: the head, the blocks and one empty line
    // account for every character, so the layout of each block is the
    // layout of the whole text.
    size_t total = std::string_view("Usage: [OPTION]\n").size() + 1;
    for (const Named& block : kUsageOrder) {
        total += std::string_view(block.text).size();
    }
    EXPECT_EQ(usage.size(), total);
}

// Lines whose spacing or wording is easy to get wrong, and no transcript shows.
TEST(HelpTexts, FixedLinesArePrintedByteForByte)
{
    const std::string cont = kBlankField;
    const std::vector<std::string> fixed = {
        "set stop_iosuspension <disk_id>        --  Cancel I/O suspension of the disk that corresponds to specific "
        "scsi_disk.\n",
        "show iostat vlun_id=<ID1,ID2,...> [type=<all|dualsite|migration>] [interval=<time>] [file_name=<name> "
        "[archive_time=<archive_time>] [duration=<duration>]]\n" +
            cont + "--  Display the specific vlun's iostate.\n",
        "show iostat array_id=<ID1,ID2,...> [interval=<time>] [file_name=<name> [archive_time=<archive_time>] "
        "[duration=<duration>]]\n" +
            cont + "--  Display all pathes's iostate of the specific array.\n",
        "set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n",
        cont + "-- size is in the range 512Byte-1GB,unit can be B,K,M,G.\n" + cont + "-- size must be power of 2.\n",
        cont + "--  Notice: In the first three times, I/O will retry immediately.\n",
    };
    const std::string usage = usageText();
    for (const std::string& text : fixed) {
        size_t at = usage.find(text);
        EXPECT_TRUE(at != std::string::npos && (at == 0 || usage[at - 1] == '\n')) << "missing: " << text;
    }
    for (const char* word : {"pathes", "splite", "recommendatory"}) {
        EXPECT_NE(usage.find(word), std::string::npos) << word;
    }
}

struct TableCase {
    const char* verb;  // "" for the verb and help tables, whose keywords are commands
    const MPCLI_Table* table;
};

// Whatever rows the dispatch tables hold, a row's help is empty or is the
// usage of that very command, and the usage text shows it.
TEST(HelpTexts, DispatchRowsCarryTheirOwnCommandsHelp)
{
    const std::vector<TableCase> tables = {
        {"", &g_stCLIOptionsType},           {"", &g_stCLIHelpOptionType},
        {"show", &g_stCLIOptionShowType},    {"set", &g_stCLIOptionSetType},
        {"start", &g_stCLIOptionStartType},  {"clear", &g_stCLIOptionClearType},
        {"add", &g_stCLIOptionAddType},      {"del", &g_stCLIOptionDelType},
        {"check", &g_stCLIOptionCheckType},  {"stop", &g_stCLIOptionStopType},
    };
    const std::string usage = usageText();
    for (const TableCase& t : tables) {
        for (const MPCLI_Option& row : *t.table) {
            std::string command = *t.verb ? std::string(t.verb) + " " + row.keyword : row.keyword;
            SCOPED_TRACE(command);
            std::string_view help(row.help);
            if (help.empty()) {
                continue;
            }
            EXPECT_TRUE(help.ends_with('\n'));
            ASSERT_TRUE(help.starts_with(command));
            EXPECT_NE(std::string_view(" =\n").find(help[command.size()]), std::string_view::npos);
            if (std::string_view(row.help) == HELP_SET_DUALSITE) {
                continue;  // shown in two blocks, checked by the order test
            }
            EXPECT_NE(usage.find(row.help), std::string::npos) << "not in the usage text";
        }
    }
}

TEST(HelpTexts, UsageIsSilentInDebugMode)
{
    g_bCLIDebugCmdOn = 1;
    std::string out = usageText();
    g_bCLIDebugCmdOn = 0;
    EXPECT_EQ(out, "");
}

struct HelpCase {
    std::vector<std::string> words;
    uint8_t result;
    std::string out;
};

TEST(HelpCommand, AnswersAsDocumented)
{
    const std::string invalid = std::string(kInvalid) + HELP_HELP;
    const std::vector<HelpCase> cases = {
        {{"?", "check"}, 1, kNeedSub},
        {{"help", "show", "Version"}, 0, kNotSupported},
        {{"help", "start", "diskdriverupdate"}, 1, ""},
        {{"help", "genprkey", "x"}, 0, invalid},
    };
    for (const HelpCase& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.words));
        Outcome r = run(MPCLI_Help, c.words);
        EXPECT_EQ(r.result, c.result);
        EXPECT_EQ(r.out, c.out);
    }
}

TEST(HelpCommand, VerbHelpRefusesExtraWords)
{
    const std::string invalid = std::string(kInvalid) + HELP_HELP;
    for (MPCLI_Handler verb : {MPCLI_HelpShow, MPCLI_HelpSet, MPCLI_HelpStart, MPCLI_HelpClear, MPCLI_HelpAdd,
                               MPCLI_HelpDel, MPCLI_HelpCheck, MPCLI_HelpStop}) {
        Outcome alone = run(verb, {"verb"});
        EXPECT_EQ(alone.result, 1);
        EXPECT_EQ(alone.out, kNeedSub);
        Outcome extra = run(verb, {"verb", "object", "more"});
        EXPECT_EQ(extra.result, 0);
        EXPECT_EQ(extra.out, invalid);
        Outcome unknown = run(verb, {"verb", "no_such_object"});
        EXPECT_EQ(unknown.result, 0);
        EXPECT_EQ(unknown.out, kNotSupported);
    }
    Outcome tooMany = run(MPCLI_Help, {"help", "show", "array", "more"});
    EXPECT_EQ(tooMany.result, 0);
    EXPECT_EQ(tooMany.out, invalid);
}

}  // namespace
