// The shell's output buffer: when bytes reach the descriptor, what a Ctrl-C
// keeps, and what a broken pipe does.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/cli_out.h"
#include "cli/cli_print.h"
#include "mpi/mpi_usr.h"

namespace {

class Out : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(pipe2(m_pipe, O_NONBLOCK), 0);
        MPCLI_OutReset(m_pipe[1]);
    }
    void TearDown() override
    {
        MPCLI_OutReset(STDOUT_FILENO);
        if (m_pipe[0] >= 0) {
            close(m_pipe[0]);
        }
        if (m_pipe[1] >= 0) {
            close(m_pipe[1]);
        }
    }
    std::string drain()
    {
        std::string text;
        char chunk[4096];
        ssize_t n = 0;
        while ((n = read(m_pipe[0], chunk, sizeof(chunk))) > 0) {
            text.append(chunk, static_cast<size_t>(n));
        }
        return text;
    }
    void put(const std::string& text) { MPCLI_OutWrite(text.data(), text.size()); }

    int m_pipe[2] = {-1, -1};
};

TEST_F(Out, NothingReachesTheDescriptorBeforeAFlush)
{
    put("row 1\n");
    put("row 2\n");
    EXPECT_EQ(drain(), "");
    MPCLI_OutFlush();
    EXPECT_EQ(drain(), "row 1\nrow 2\n");
    MPCLI_OutFlush();
    EXPECT_EQ(drain(), "");
}

TEST_F(Out, ASignalKeepsOnlyCompleteLines)
{
    put("done 1\ndone 2\nhalf");
    MPCLI_OutDrainOnSignal();
    EXPECT_EQ(drain(), "done 1\ndone 2\n");
    put("next\n");
    MPCLI_OutFlush();
    EXPECT_EQ(drain(), "next\n");
}

TEST_F(Out, LargeOutputKeepsItsOrder)
{
    // A file, not the pipe: more than the pipe could hold is written here.
    char name[] = "/tmp/cvadm-out-XXXXXX";
    const int fd = mkstemp(name);
    ASSERT_GE(fd, 0);
    unlink(name);
    MPCLI_OutReset(fd);
    std::string expected;
    for (int i = 0; i < 20000; ++i) {
        const std::string line = "line " + std::to_string(i) + "\n";
        put(line);
        expected += line;
    }
    const std::string big(70000, 'x');
    put(big);
    expected += big;
    MPCLI_OutFlush();
    EXPECT_FALSE(MPCLI_OutFailed());
    std::string got(expected.size() + 1, '\0');
    ASSERT_EQ(pread(fd, got.data(), got.size(), 0), static_cast<ssize_t>(expected.size()));
    got.resize(expected.size());
    EXPECT_EQ(got, expected);
    close(fd);
}

TEST_F(Out, ABrokenPipeIsReportedAndLaterOutputDropped)
{
    signal(SIGPIPE, SIG_IGN);
    close(m_pipe[0]);
    m_pipe[0] = -1;
    put("lost\n");
    EXPECT_FALSE(MPCLI_OutFailed());
    MPCLI_OutFlush();
    EXPECT_TRUE(MPCLI_OutFailed());
    put("also lost\n");
    MPCLI_OutFlush();
    EXPECT_TRUE(MPCLI_OutFailed());
}

// What the shell's printing calls leave in the buffer and what they send.
TEST_F(Out, MessagesFlushTablePiecesWaitForTheirEnd)
{
    MPCLI_Print("one %s\n", "message");
    EXPECT_EQ(drain(), "one message\n");

    MPCLI_PrintCentred("ab", 6);  // a cell: not a message of its own
    EXPECT_EQ(drain(), "");
    MPCLI_Print(":\n");
    EXPECT_EQ(drain(), "  ab  :\n");

}

TEST_F(Out, ALongMessageGoesOutWhole)
{
    const std::string text(3000, 'y');
    MPCLI_Print("<%s>\n", text.c_str());
    EXPECT_EQ(drain(), "<" + text + ">\n");
}

TEST_F(Out, TheLowerLayersFlushTheShellFirst)
{
    put("before\n");
    MPI_SetConsoleFlush(nullptr);
    MPI_FlushConsole();
    EXPECT_EQ(drain(), "");
    MPI_SetConsoleFlush(MPCLI_OutFlush);
    MPI_FlushConsole();
    EXPECT_EQ(drain(), "before\n");
    MPI_SetConsoleFlush(nullptr);
}

}  // namespace
