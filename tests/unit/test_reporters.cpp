// The shell's shared reporters of a failed code, and the risk confirmation
// that later commands ask before they can cut access to storage.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <string>

#include "cli/cli.h"
#include "mpi/mpi_usr.h"

namespace {

TEST(Reporters, ErrorInfoNamesTheObjectOrFallsBackToTheInternalText)
{
    const std::string internal = "Failed to execute the command due to internal errors.\n";
    const struct {
        uint32_t code;
        uint8_t perVlun;
        std::string printed;
    } cases[] = {
        {MPI_RET_ARRAY_NOT_EXIST, 0, "The disk array whose ID is 7 does not exist.\n"},
        {MPI_RET_ARRAY_NOT_EXIST, 1, "The disk array whose ID is 7 does not exist.\n"},
        {MPI_RET_VLUN_NOT_EXIST, 1, "The VLUN whose ID is 7 does not exist.\n"},
        {MPI_RET_FAIL, 1, "Failed in executing the command for vlun 7.\n"},
        {MPI_RET_FAIL, 0, internal},
        {MPI_RET_IOCTL_FAIL, 0, internal},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.code << " per vlun " << int(c.perVlun));
        testing::internal::CaptureStdout();
        MPCLI_PrintfErrorInfo(c.code, "7", c.perVlun);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed);
    }
}

// Answers `typed` to the prompt; the result and what was printed.
std::pair<uint8_t, std::string> answer(const std::string& typed)
{
    char path[] = "/tmp/riskXXXXXX";
    const int fd = mkstemp(path);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(write(fd, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    close(fd);
    EXPECT_NE(std::freopen(path, "r", stdin), nullptr);
    testing::internal::CaptureStdout();
    const uint8_t result = MPCLI_RiskPrompt("Sure? ");
    const std::string printed = testing::internal::GetCapturedStdout();
    unlink(path);
    return {result, printed};
}

TEST(Reporters, RiskPromptTakesOnlyALoneLowercaseYOrN)
{
    const struct {
        const char* typed;
        uint8_t result;
        const char* printed;
    } cases[] = {
        {"y\n", 1, "\nSure? \n"},
        {"n\n", 0, "\nSure? \n"},
        {"Y\ny\n", 1, "\nSure? \nSure? \n"},
        {"yes\nn\n", 0, "\nSure? \nSure? \n"},  // the rest of a longer line is dropped
        {"\n\ny\n", 1, "\nSure? \nSure? \n"},    // an empty line asks again
        {"", 0, "\nSure? "},                     // nobody answers: not confirmed
        {"y", 0, "\nSure? "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        const auto [result, printed] = answer(c.typed);
        EXPECT_EQ(result, c.result);
        EXPECT_EQ(printed, c.printed);
    }
}

}  // namespace
