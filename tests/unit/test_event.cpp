// The event log: the current kernel log file, extraction of its key events
// across runs without repeats (after rotation, trimming and a cut last
// line), the refusals, and reading the log back into records.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/test_files.h"
#include "uil/uil_event.h"

namespace fs = std::filesystem;

namespace {

std::string logDir() { return testfiles::root() + "/opt/Corvane/log/"; }
std::string eventLog() { return logDir() + "event_log"; }
std::string kernelLog(int index) { return logDir() + "xmp_log" + std::to_string(index) + ".txt"; }

void writeFile(const std::string& path, const std::string& content, std::ios::openmode extra = std::ios::trunc)
{
    std::ofstream out(path, std::ios::binary | extra);
    out << content;
}

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        out.push_back(line);
    }
    return out;
}

// A kernel log line carrying a key event, and the event log line it makes.
struct Event {
    std::string time;
    std::string text;  // from the event ID on
    std::string kernel() const { return "[" + time + "][INFO][EVENT][xmp][mp_path.c:812]" + text + "\n"; }
    std::string logged() const { return "[" + time + "]" + text; }
};

const Event kE1{"2026-11-20 10:00:01", "[11][path 3][3]Path becomes failed"};
const Event kE2{"2026-11-20 10:00:05", "[4][vlun 7][7][2]All paths for LUN are failed"};
const Event kE3{"2026-11-20 10:00:05", "[4][vlun 8][8][2]All paths for LUN are failed"};  // same second and ID
const Event kE4{"2026-11-20 10:07:00", "[10][path 3][3]Path becomes normal"};
const std::string kNoise = "[2026-11-20 10:00:02][INFO][xmp][mp_io.c:40]retry on path 3\n";

class EventLog : public testing::Test {
protected:
    void SetUp() override
    {
        fs::remove_all(logDir());
        fs::create_directories(logDir());
        UIL_GetLogPathName();
        setIndex("0");
    }
    static void setIndex(const std::string& index) { writeFile(logDir() + "cur_index", index); }
    static std::vector<std::string> logged() { return lines(testfiles::text(eventLog())); }
};

TEST_F(EventLog, CurrentKernelLogFileFromTheIndex)
{
    struct Case {
        const char* index;  // nullptr: no index file
        uint32_t rc;
        const char* file;   // expected name, or the trace text of the refusal
    };
    const Case cases[] = {
        {"0", MPI_RET_SUCCESS, "xmp_log0.txt"},
        {"2\n", MPI_RET_SUCCESS, "xmp_log2.txt"},
        {"3", MPI_RET_FAIL, "Log index (3) invalid"},
        {"a", MPI_RET_FAIL, "Log index (a) invalid"},
        {"", MPI_RET_FAIL, "read log index file"},
        {nullptr, MPI_RET_FAIL, "Open log index file"},
    };
    for (const Case& c : cases) {
        fs::remove(logDir() + "cur_index");
        if (c.index != nullptr) {
            setIndex(c.index);
        }
        char path[UIL_EVENT_PATH_LEN] = {};
        EXPECT_EQ(UIL_GetKernelLogFilePath(path, sizeof(path)), c.rc) << c.file;
        if (c.rc == MPI_RET_SUCCESS) {
            EXPECT_EQ(path, logDir() + c.file);
        } else {
            EXPECT_NE(testfiles::traceText().find(c.file), std::string::npos) << c.file;
        }
    }
    // The path and its terminator must fit.
    setIndex("1");
    std::string full = kernelLog(1);
    std::vector<char> exact(full.size() + 1);
    EXPECT_EQ(UIL_GetKernelLogFilePath(exact.data(), exact.size()), MPI_RET_SUCCESS);
    EXPECT_EQ(full, exact.data());
    EXPECT_EQ(UIL_GetKernelLogFilePath(exact.data(), full.size()), MPI_RET_BUFFER_SMALL);
}

TEST_F(EventLog, EachKeyEventIsTakenOnceAcrossRuns)
{
    writeFile(kernelLog(0), kE1.kernel() + kNoise + kE2.kernel());
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    EXPECT_EQ(logged(), (std::vector<std::string>{kE1.logged(), kE2.logged()}));

    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);  // nothing new
    EXPECT_EQ(logged().size(), 2u);

    // Same second and ID as the last recorded event, another object: a new event.
    writeFile(kernelLog(0), kNoise + kE3.kernel(), std::ios::app);
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    writeFile(kernelLog(0), kE4.kernel(), std::ios::app);
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    EXPECT_EQ(logged(), (std::vector<std::string>{kE1.logged(), kE2.logged(), kE3.logged(), kE4.logged()}));
}

TEST_F(EventLog, RotationTakesEveryEventOfTheNewFile)
{
    writeFile(kernelLog(0), kE1.kernel() + kE2.kernel());
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    writeFile(kernelLog(1), kE3.kernel() + kNoise + kE4.kernel());
    setIndex("1");
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    EXPECT_EQ(logged(), (std::vector<std::string>{kE1.logged(), kE2.logged(), kE3.logged(), kE4.logged()}));
}

TEST_F(EventLog, TrimmingKeepsTheTailAndTheRecordedPoint)
{
    // An old log just over the limit, ending with the last recorded event.
    std::string filler = "[2026-01-01 00:00:00][1][host][0]Register host to array\n";
    std::string old;
    while (old.size() + kE1.logged().size() + 1 <= UIL_EVENT_LOG_MAX) {
        old += filler;
    }
    old += kE1.logged() + "\n";
    ASSERT_GT(old.size(), UIL_EVENT_LOG_MAX);
    writeFile(eventLog(), old);
    writeFile(kernelLog(0), kE1.kernel() + kE2.kernel());

    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    std::string now = testfiles::text(eventLog());
    std::string kept = old.substr(old.size() - UIL_EVENT_LOG_KEEP);
    EXPECT_EQ(now, kept + kE2.logged() + "\n");
    EXPECT_FALSE(fs::exists(logDir() + "event_log_tmp"));
    // A first line cut in the middle is not shown as an event.
    bool cutInLine = old[old.size() - UIL_EVENT_LOG_KEEP - 1] != '\n';
    MPI_ListNode head;
    uint32_t count = 0;
    ASSERT_EQ(INTF_UIL_ShowLatestEvents(&head, 0, &count), MPI_RET_SUCCESS);
    EXPECT_EQ(count, lines(now).size() - (cutInLine ? 1 : 0));
    INTF_UIL_ShowEventEnd(&head);

    // At the limit nothing is cut.
    std::string atLimit(UIL_EVENT_LOG_MAX - kE2.logged().size() - 1, 'x');
    atLimit[UIL_EVENT_LOG_MAX - kE2.logged().size() - 2] = '\n';
    writeFile(eventLog(), atLimit + kE2.logged() + "\n");
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    EXPECT_EQ(fs::file_size(eventLog()), UIL_EVENT_LOG_MAX);
}

TEST_F(EventLog, ALastLineCutShortIsWrittenAgainInFull)
{
    writeFile(kernelLog(0), kE1.kernel() + kE2.kernel());
    writeFile(eventLog(), kE1.logged() + "\n" + kE2.logged().substr(0, 20));
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    EXPECT_EQ(testfiles::text(eventLog()), kE1.logged() + "\n" + kE2.logged() + "\n");
}

TEST_F(EventLog, LongAndOddKernelLinesAreCutTheSameWayEachRun)
{
    Event longEvent{"2026-11-20 10:09:00", "[12][path 5][5]" + std::string(700, 'L')};
    Event longTime{std::string(40, '9'), "[12][path 6][6]latency"};
    std::string unclosed = "[2026-11-20 10:10:00][INFO][EVENT][xmp]\n";  // too few fields: no event
    writeFile(kernelLog(0), longEvent.kernel() + unclosed + longTime.kernel());
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    ASSERT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_SUCCESS);
    std::vector<std::string> got = logged();
    ASSERT_EQ(got.size(), 2u);
    // The kernel line is read up to its 511th character.
    size_t textAt = longEvent.kernel().find("[12]");
    EXPECT_EQ(got[0], longEvent.logged().substr(0, longEvent.time.size() + 2 + UIL_EVENT_LINE_MAX - textAt));
    EXPECT_EQ(got[1], "[" + std::string(32, '9') + "]" + longTime.text);
}

TEST_F(EventLog, RefusalsLeaveTheEventLogAsItWas)
{
    writeFile(eventLog(), kE1.logged() + "\n");
    // No kernel log file.
    EXPECT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_FAIL);
    EXPECT_NE(testfiles::traceText().find("Open kernel log file"), std::string::npos);
    // A FIFO in place of the kernel log or of the event log: refused at once.
    ASSERT_EQ(mkfifo(kernelLog(0).c_str(), 0600), 0);
    EXPECT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_FAIL);
    fs::remove(kernelLog(0));
    writeFile(kernelLog(0), kE2.kernel());
    fs::remove(eventLog());
    ASSERT_EQ(mkfifo(eventLog().c_str(), 0600), 0);
    EXPECT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_FAIL);
    MPI_ListNode head;
    EXPECT_EQ(INTF_UIL_ShowEvent(&head), UIL_EVENT_OPEN_FAIL);
    EXPECT_EQ(INTF_UIL_ShowEvent(nullptr), MPI_RET_INVALID_PARAM);
    fs::remove(eventLog());
    // An index that names no file of the ring.
    setIndex("7");
    EXPECT_EQ(INTF_UIL_AnalyzeKeyEvent(), MPI_RET_FAIL);
    EXPECT_FALSE(fs::exists(eventLog()));
}

TEST_F(EventLog, NewLogAndMissingDirectoryAreNoFailure)
{
    fs::remove_all(logDir());
    MPI_ListNode head;
    uint32_t count = 7;
    ASSERT_EQ(INTF_UIL_ShowLatestEvents(&head, 5, &count), MPI_RET_SUCCESS);
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(MPI_ListEmpty(&head));
    INTF_UIL_ShowEventEnd(&head);
    EXPECT_TRUE(fs::is_regular_file(eventLog()));
}

TEST(EventLine, FieldsOfAnEventLogLine)
{
    struct Case {
        std::string line;
        bool ok;
        const char* time;
        uint32_t id;
        const char* object;
        uint32_t number;
        int32_t number2;
        std::string message;
    };
    const std::string longObject(30, 'o');
    const Case cases[] = {
        {"[t1][11][path 3][3]Path becomes failed", true, "t1", 11, "path 3", 3, -1, "Path becomes failed"},
        {"[t2][4][vlun 7][7][2]All paths", true, "t2", 4, "vlun 7", 7, 2, "All paths"},
        {"[t3][4][vlun 7][7][x]text", true, "t3", 4, "vlun 7", 7, -1, "[x]text"},
        {"[t4][12][p][5][1]lat [ms] high", true, "t4", 12, "p", 5, 1, "lat [ms] high"},
        {"[t5][99][p][5]", true, "t5", 99, "p", 5, -1, ""},
        {"[" + std::string(50, 'T') + "][1][" + longObject + "][0]m", true, "TTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTTT",
         1, "oooooooooooooooooooo", 0, -1, "m"},
        {"[t][11][path 3]three fields", false, "", 0, "", 0, 0, ""},
        {"[t][eleven][path 3][3]m", false, "", 0, "", 0, 0, ""},
        {"[t][11][path 3][-3]m", false, "", 0, "", 0, 0, ""},
        {"[t][11][path 3][99999999999]m", false, "", 0, "", 0, 0, ""},
        {"5 10:00:01][11][path 3][3]cut by trimming", false, "", 0, "", 0, 0, ""},
        {"", false, "", 0, "", 0, 0, ""},
    };
    for (const Case& c : cases) {
        UilEventInfo info{};
        ASSERT_EQ(UIL_ParseEventLine(c.line.c_str(), &info), c.ok) << c.line;
        if (!c.ok) {
            continue;
        }
        EXPECT_STREQ(info.time, c.time) << c.line;
        EXPECT_EQ(info.eventId, c.id) << c.line;
        EXPECT_STREQ(info.object, c.object) << c.line;
        EXPECT_EQ(info.number, c.number) << c.line;
        EXPECT_EQ(info.number2, c.number2) << c.line;
        EXPECT_EQ(info.message, c.message) << c.line;
    }
}

TEST_F(EventLog, LatestEventsInTimeOrder)
{
    std::string text = "not an event\n";
    for (int i = 1; i <= 6; ++i) {
        text += "[2026-11-20 10:00:0" + std::to_string(i) + "][" + std::to_string(i) + "][obj][" + std::to_string(i) +
                "]m\n";
    }
    writeFile(eventLog(), text);
    struct Case {
        uint32_t latest;
        std::vector<uint32_t> ids;
    };
    for (const Case& c : {Case{0, {1, 2, 3, 4, 5, 6}}, Case{2, {5, 6}}, Case{6, {1, 2, 3, 4, 5, 6}},
                          Case{10000, {1, 2, 3, 4, 5, 6}}, Case{1, {6}}}) {
        MPI_ListNode head;
        uint32_t count = 0;
        ASSERT_EQ(INTF_UIL_ShowLatestEvents(&head, c.latest, &count), MPI_RET_SUCCESS);
        std::vector<uint32_t> ids;
        for (MPI_ListNode* n = head.next; n != &head; n = n->next) {
            ids.push_back(MPI_ListEntry<UilEventInfo>(n)->eventId);
        }
        INTF_UIL_ShowEventEnd(&head);
        EXPECT_EQ(ids, c.ids) << c.latest;
        EXPECT_EQ(count, c.ids.size()) << c.latest;
    }
}

TEST(EventNames, NamedIdsAndUnknownOnes)
{
    EXPECT_STREQ(UIL_GetEventName(1), "Register host to array");
    EXPECT_STREQ(UIL_GetEventName(4), "All paths for LUN are failed");
    EXPECT_STREQ(UIL_GetEventName(12), "I/O high latency");
    EXPECT_EQ(UIL_GetEventName(0), nullptr);
    EXPECT_EQ(UIL_GetEventName(13), nullptr);
}

}  // namespace
