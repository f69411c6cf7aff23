// Base services: log codes, trace line format, full names, allocation,
// the guarded counter and the intrusive list.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "mpi/mpi_root.h"
#include "mpi/mpi_usr.h"
#include "support/test_files.h"
#include "uil/uil.h"

namespace fs = std::filesystem;

namespace {

// The test main gives every run a sandbox root of its own.
const std::string& sandbox()
{
    static const std::string root = std::getenv("CVADM_ROOT");
    return root;
}

std::string traceFile() { return sandbox() + "/opt/Corvane/log/cli_uil_log.txt"; }

std::string readAll(const std::string& path) { return testfiles::text(path); }

std::string lastLine(const std::string& text)
{
    size_t end = text.size();
    if (end > 0 && text[end - 1] == '\n') {
        --end;
    }
    size_t start = text.rfind('\n', end ? end - 1 : 0);
    return text.substr(start == std::string::npos ? 0 : start + 1, end - (start == std::string::npos ? 0 : start + 1));
}

TEST(LogCode, WritesExactlyWidthHexDigits)
{
    const struct {
        uint32_t value;
        uint32_t width;
        const char* expected;
    } cases[] = {
        {0x1ab6, 4, "1ab6"}, {0x13, 2, "13"}, {0, 4, "0000"}, {0x5342, 8, "00005342"},
        {0xC0, 2, "c0"},     {0xF, 1, "f"},   {0x12345, 4, "2345"},
    };
    for (const auto& c : cases) {
        char out[16];
        std::memset(out, 'x', sizeof(out));
        UIL_GenerateLogCode(c.value, c.width, out);
        EXPECT_EQ(std::string(out, c.width), c.expected);
        EXPECT_EQ(out[c.width], 'x') << "no terminator and nothing beyond the field";
    }
    EXPECT_EQ(UIL_NumToHexadecimalChar(10), 'a');
    EXPECT_EQ(UIL_NumToHexadecimalChar(16), '0') << "out of range";
    EXPECT_EQ(UIL_NumToHexadecimalChar(0xFFFFFFFF), '0');
}

TEST(TraceLog, LineFormatAndMissingDirectory)
{
    fs::remove_all(sandbox() + "/opt");
    int line = __LINE__ + 1;
    MPI_TraceMsg(MPI_MOD_UIL, MPI_LOG_ERROR, "SomeFunction", line, "Value {%d} refused", 7);
    ASSERT_TRUE(fs::exists(traceFile())) << "the first line creates the log directory";
    EXPECT_EQ(fs::status(sandbox() + "/opt/Corvane/log").permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    char code[5] = {};
    UIL_GenerateLogCode(static_cast<uint32_t>(line), 4, code);
    std::regex pattern("^\\[\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2}\\] \\[0000534213c0" + std::string(code) +
                       "\\] \\[ERROR\\] \\[UIL   \\] \\[SomeFunction: " + std::to_string(line) +
                       " \\] Value \\{7\\} refused\\.$");
    EXPECT_TRUE(std::regex_match(lastLine(readAll(traceFile())), pattern)) << readAll(traceFile());
}

TEST(TraceLog, RawTailKeepsItsOwnEnding)
{
    MPI_TraceRaw(MPI_MOD_UIA, MPI_LOG_WARN, "F", 6838, "Pointer \"%s\" is NULL.\n", "pcOption");
    EXPECT_TRUE(std::regex_match(lastLine(readAll(traceFile())),
                                 std::regex(R"(^\[[^\]]+\] \[0000534212c01ab6\] \[WARN\] \[UIA   \] \[F: 6838 \] Pointer "pcOption" is NULL\.$)")));
}

TEST(FullName, KindsAndTheBufferKeptForUnknownKinds)
{
    EXPECT_EQ(std::string(MPI_GetFullName(MPI_NAME_LOG, "oper_log")), sandbox() + "/opt/Corvane/log/oper_log");
    EXPECT_EQ(std::string(MPI_GetFullName(MPI_NAME_CFG, "a.conf")), sandbox() + "/etc/Corvane/a.conf");
    // An unknown kind appends to whatever the buffer held last.
    EXPECT_EQ(std::string(MPI_GetFullName(7, ".bak")), sandbox() + "/etc/Corvane/a.conf.bak");
    std::string longName(600, 'n');
    EXPECT_EQ(std::strlen(MPI_GetFullName(MPI_NAME_LOG, longName.c_str())), MPI_PATH_BUF_LEN - 1);
}

TEST(LogPaths, LogFilesLieUnderTheLogDirectory)
{
    UIL_GetLogPathName();
    std::string dir = sandbox() + "/opt/Corvane/log/";
    EXPECT_EQ(dir + "event_log", g_pstUILLogEventPath);
    EXPECT_EQ(dir + "alarm_time_log.txt", g_pstUILLogTimePath);
}

// A trace log that cannot be used fails the start-up with its fixed text,
// and the cause names the file, not the device; a FIFO in its place is
// refused at once. Run in a child: the child's output is its own.
TEST(LogInit, UnusableTraceLogNamesTheFile)
{
    struct Case {
        const char* what;
        void (*make)(const std::string& path);
        const char* reason;
    };
    const Case cases[] = {
        {"directory", [](const std::string& p) { fs::create_directories(p); }, "not a regular file"},
        {"fifo", [](const std::string& p) { (void)mkfifo(p.c_str(), 0600); }, "not a regular file"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        UIL_GetLogPathName();
        fs::remove_all(traceFile());
        c.make(traceFile());
        pid_t pid = fork();
        if (pid == 0) {
            alarm(5);
            bool ok = INTF_UIL_Init() == UIL_TRACE_INIT_FAIL && MPI_LogInitFailure() != nullptr &&
                      std::string(INTF_UIL_LastFileError()) == traceFile() + ": " + c.reason;
            _exit(ok ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        fs::remove_all(traceFile());
    }
    EXPECT_EQ(UIL_LogInit(), MPI_RET_SUCCESS);
    EXPECT_EQ(MPI_LogInitFailure(), nullptr);
}

// The local time as asctime writes it, without its newline; the file
// lookup has nothing to find on this system and says so.
TEST(Util, TimeTextAndFileLookup)
{
    const std::string text = UTIL_GetTime();
    ASSERT_EQ(text.size(), 24u) << text;
    EXPECT_TRUE(std::regex_match(text, std::regex(R"([A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]\d \d\d:\d\d:\d\d \d{4})")))
        << text;
    EXPECT_EQ(MPI_FindFile("/etc/passwd"), 0);
    EXPECT_EQ(MPI_FindFile(nullptr), 0);
}

TEST(ZMalloc, LimitsAndZeroFill)
{
    size_t before = readAll(traceFile()).size();
    EXPECT_EQ(UIL_ZMalloc(0), nullptr);
    EXPECT_EQ(MPCLI_ZMalloc(0x40000001), nullptr);
    std::string added = readAll(traceFile()).substr(before);
    EXPECT_EQ(std::count(added.begin(), added.end(), '\n'), 2);
    EXPECT_NE(added.find("Invalid parameter."), std::string::npos);

    auto* block = static_cast<unsigned char*>(UIL_ZMalloc(64));
    ASSERT_NE(block, nullptr);
    for (int i = 0; i < 64; ++i) {
        EXPECT_EQ(block[i], 0);
    }
    std::free(block);
}

TEST(Atomic, ReturnsTheValueBeforeTheChange)
{
    MPI_Atomic counter;
    MPI_AtomicInit(&counter, 5);
    EXPECT_EQ(MPI_AtomicIncrease(&counter), 5);
    EXPECT_EQ(MPI_AtomicRead(&counter), 6);
    EXPECT_EQ(MPI_AtomicDecrease(&counter), 6);
    EXPECT_EQ(MPI_AtomicRead(&counter), 5);
    MPI_AtomicDestroy(&counter);
    EXPECT_EQ(counter.state, MPI_ATOMIC_DESTROYED);
}

TEST(AtomicDeath, UseAfterDestroyAndBeforeInitPanic)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    MPI_Atomic counter;
    MPI_AtomicInit(&counter, 0);
    MPI_AtomicDestroy(&counter);
    EXPECT_EXIT(MPI_AtomicRead(&counter), testing::ExitedWithCode(255), "");
    MPI_Atomic fresh;
    EXPECT_EXIT(MPI_AtomicIncrease(&fresh), testing::ExitedWithCode(255), "");
}

struct Item {
    int value;
    MPI_ListNode links;
};

std::vector<int> values(MPI_ListNode* head)
{
    std::vector<int> out;
    for (MPI_ListNode* n = head->next; n != head; n = n->next) {
        out.push_back(MPI_ListEntry<Item>(n)->value);
    }
    return out;
}

TEST(List, HeadTailAndDelete)
{
    MPI_ListNode head;
    MPI_ListInit(&head);
    EXPECT_TRUE(MPI_ListEmpty(&head));
    Item a{1, {}}, b{2, {}}, c{3, {}};
    MPI_ListAddTail(&a.links, &head);
    MPI_ListAddTail(&b.links, &head);
    MPI_ListAddHead(&c.links, &head);
    EXPECT_EQ(values(&head), (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(head.prev, &b.links);
    MPI_ListDelete(&a.links);
    EXPECT_EQ(values(&head), (std::vector<int>{3, 2}));
    EXPECT_EQ(c.links.next, &b.links);
    EXPECT_EQ(b.links.prev, &c.links);
}

struct RootCase {
    const char* abs;
    const char* expectedTail;
};

TEST(Root, EveryAbsolutePathGoesBeneathTheSandbox)
{
    for (const RootCase& c : {RootCase{"/dev/cvdrv", "/dev/cvdrv"}, RootCase{"/etc/user_cfg.xml", "/etc/user_cfg.xml"}}) {
        EXPECT_EQ(MPI_HostPath(c.abs), sandbox() + c.expectedTail);
        char out[MPI_PATH_BUF_LEN];
        MPI_RootPath(c.abs, out, sizeof(out));
        EXPECT_EQ(std::string(out), sandbox() + c.expectedTail);
    }
    char small[8];
    MPI_RootPath("/etc/user_cfg.xml", small, sizeof(small));
    EXPECT_EQ(std::strlen(small), sizeof(small) - 1) << "cut to fit, always terminated";
}

}  // namespace
