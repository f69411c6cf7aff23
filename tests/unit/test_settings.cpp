// The settings table: every row's help and refusal texts state the range
// the configuration item enforces, its event is the operation type of its
// keyword, and the set table is exactly the settings.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

#include "cli/cli.h"
#include "cli/cli_settings.h"
#include "uil/uil_cfg.h"
#include "support/dispatch.h"

namespace {

const UilCfgItemDef* itemOf(const char* name)
{
    for (const UilCfgItemDef& item : UIL_sastUserCfgItems) {
        if (std::string(item.pszName) == name) {
            return &item;
        }
    }
    return nullptr;
}

// "min max" of the text's "in the range A-B" or "A~B".
std::string rangeIn(const char* text)
{
    static const std::regex kRange(R"(in the range (\d+)[-~](\d+))");
    std::cmatch match;
    return std::regex_search(text, match, kRange) ? match[1].str() + " " + match[2].str() : "no range";
}

TEST(Settings, TextsStateTheRangeOfTheirItem)
{
    for (const MPCLI_Setting& row : g_stCLISettings) {
        SCOPED_TRACE(row.keyword);
        const UilCfgItemDef* item = itemOf(row.configKey);
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->uiType, UIL_CFG_TYPE_DIGITAL);
        const std::string range = std::to_string(item->uiMin) + " " + std::to_string(item->uiMax);
        EXPECT_EQ(rangeIn(row.help), range) << row.help;
        EXPECT_EQ(rangeIn(row.rangeText), range) << row.rangeText;
        EXPECT_EQ(std::string(row.help).rfind(std::string("set ") + row.keyword + "=<" + row.valueWord + ">", 0), 0u)
            << "the help opens with the keyword and its value word";
    }
}

TEST(Settings, EventIsTheOperationTypeOfTheKeyword)
{
    std::set<uint32_t> events;
    for (const MPCLI_Setting& row : g_stCLISettings) {
        uint32_t type = 0;
        EXPECT_EQ(MPCLI_GetOperType(row.keyword, &type), MPI_RET_SUCCESS) << row.keyword;
        EXPECT_EQ(type, row.eventId) << row.keyword;
        EXPECT_TRUE(events.insert(row.eventId).second) << "two settings share an event: " << row.keyword;
    }
}

// The set table opens with one row per setting, in order; the commands of
// the set verb follow. No keyword appears twice.
TEST(Settings, SetTableIsOneRowPerSetting)
{
    ASSERT_GE(g_stCLIOptionSetType.size(), g_stCLISettings.size());
    for (size_t i = 0; i < g_stCLISettings.size(); ++i) {
        const MPCLI_Option& option = g_stCLIOptionSetType[i];
        EXPECT_STREQ(option.keyword, g_stCLISettings[i].keyword);
        EXPECT_EQ(option.help, g_stCLISettings[i].help);
    }
    std::set<std::string> keywords;
    for (const MPCLI_Option& option : g_stCLIOptionSetType) {
        EXPECT_EQ(option.flag, MPCLI_FLAG_NORMAL);
        EXPECT_NE(option.handler, nullptr);
        EXPECT_TRUE(keywords.insert(option.keyword).second) << "keyword twice: " << option.keyword;
    }
}

// Each named handler is the one its keyword dispatches to.
TEST(Settings, NamedHandlersAreTheRowsOfTheirKeywords)
{
    const std::pair<const char*, MPCLI_Handler> named[] = {
        {"failbackdelaytime", MPCLI_SetFailbackTime},
        {"faulty_path_check_interval", MPCLI_SetFaultyPathCheckInterval},
        {"idle_path_check_interval", MPCLI_SetIdlePathCheckInterval},
        {"io_latency_threshold", MPCLI_SetIOLatencyThreshold},
        {"hld_time", MPCLI_SetHighLatencyDegradeTime},
        {"hld_threshold", MPCLI_SetHighLatencyDegradeThreshold},
        {"hld_recovery_time", MPCLI_SetHighLatencyDegradeRecovery},
        {"tod_time", MPCLI_SetTimeOutDegradeTime},
        {"tod_threshold", MPCLI_SetTimeOutDegradeThreshold},
        {"tod_recovery_time", MPCLI_SetTimeOutDegradeRecovery},
        {"ied_time", MPCLI_SetInterErrorDegradeTime},
        {"ied_min_io", MPCLI_SetInterErrorDegradeMinIOCount},
        {"ied_threshold", MPCLI_SetInterErrorDegradeThreshold},
        {"ied_recovery_time", MPCLI_SetInterErrorDegradeRecovery},
        {"ifd_time", MPCLI_SetInterFaultDegradeTime},
        {"ifd_threshold", MPCLI_SetInterFaultDegradeThreshold},
        {"ifd_recovery_time", MPCLI_SetInterFaultDegradeRecovery},
        {"sdd_threshold", MPCLI_SetSensitiveDelayedThreshold},
        {"sdd_recovery_time", MPCLI_SetSensitiveDelayedRecovery},
    };
    std::set<MPCLI_Handler> distinct;
    for (const auto& [keyword, handler] : named) {
        SCOPED_TRACE(keyword);
        const MPCLI_Option* row = nullptr;
        for (const MPCLI_Option& option : g_stCLIOptionSetType) {
            row = std::string(option.keyword) == keyword ? &option : row;
        }
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->handler, handler);
        EXPECT_TRUE(distinct.insert(handler).second);
    }
}

TEST(Settings, MalformedWordGetsTheShortUsageWithoutTouchingTheStore)
{
    char word[] = "tod_time=";
    char extra[] = "x";
    char* one[] = {word, nullptr};
    char* two[] = {word, extra, nullptr};
    const std::string usage = "Error: Invalid input!\nUsage:\n           --set tod_time=<time>\n";
    for (auto [argc, argv] : {std::pair{1u, one}, std::pair{2u, two}}) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(DispatchWords("tod_time", argc, argv, g_stCLIOptionSetType), MPCLI_RESULT_FAIL);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), usage);
    }
}

}  // namespace
