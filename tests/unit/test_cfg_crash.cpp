// The configuration store between processes: a writer killed at random
// instants never leaves a torn or lost document, the lock keeps two writers
// apart (the second retries once after 2 seconds, then gives up cleanly),
// and two racing writers never lose each other's saved changes.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <fcntl.h>
#include <sys/file.h>

#include <array>
#include <map>
#include <set>
#include <sstream>
#include <chrono>
#include <random>

#include "bounded/bounded.h"
#include "support/cfg_fixture.h"
#include "uil/uil_journal.h"
#include "uil/uil_oper.h"

using namespace cfgtest;

namespace {

[[maybe_unused]] testing::Environment* const kStore = testing::AddGlobalTestEnvironment(new StoreEnvironment);

const char kDoc[] =
    "<?xml version=\"1.0\"?>\n<cvcfg><common><io_timeout>1000</io_timeout>"
    "<loadbalancemode>round-robin</loadbalancemode></common>"
    "<array><arraySN1><io_timeout>200</io_timeout></arraySN1></array><lun/></cvcfg>\n";

class CfgProcesses : public StoreTest {
protected:
    CfgProcesses() : StoreTest(kDoc) {}
};

void sleepMicros(long us)
{
    timespec ts{us / 1000000, (us % 1000000) * 1000};
    nanosleep(&ts, nullptr);
}

long number(const std::optional<std::string>& text) { return text ? std::stol(*text) : -1; }

// ---------------------------------------------------------------------------

TEST_F(CfgProcesses, KilledWriterLeavesTheOldOrTheNewDocument)
{
    std::mt19937 random(20240601);
    std::uniform_int_distribution<long> delay(0, 100000);  // a save takes some 20 ms
    long last = 1000;
    for (int round = 0; round < 120; ++round) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            for (long v = last + 1;; ++v) {
                (void)UIL_SetCommonConfig("io_timeout", std::to_string(v).c_str());
            }
        }
        sleepMicros(delay(random));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);

        ASSERT_TRUE(parsesAsConfig(cfgPath())) << "round " << round;
        long now = number(valueAt(cfgPath(), "/cvcfg/common/io_timeout"));
        ASSERT_GE(now, last) << "round " << round;  // old or newer, never lost
        ASSERT_EQ(valueAt(cfgPath(), "/cvcfg/common/loadbalancemode"), "round-robin") << "round " << round;
        ASSERT_EQ(valueAt(cfgPath(), "/cvcfg/array/arraySN1/io_timeout"), "200") << "round " << round;
        if (fs::exists(bakPath())) {
            ASSERT_TRUE(parsesAsConfig(bakPath())) << "round " << round;
            ASSERT_LE(number(valueAt(bakPath(), "/cvcfg/common/io_timeout")), now) << "round " << round;
        }
        last = now;
    }
    // The killed writers' locks died with them; the next writer cleans up
    // what they left half-written.
    auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(UIL_SetCommonConfig("ioretry", "3"), MPI_RET_SUCCESS);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    for (const auto& entry : fs::directory_iterator(sandbox() + "/etc")) {
        EXPECT_EQ(entry.path().filename().string().find(".tmp."), std::string::npos) << entry.path();
    }
    // A change the last writer had sent but not saved is completed.
    const long completed = number(valueAt(cfgPath(), "/cvcfg/common/io_timeout"));
    EXPECT_TRUE(completed == last || completed == last + 1) << completed;
}

// A writer in another process holds the lock for `holdMs`.
pid_t holdLockElsewhere(int holdMs)
{
    int ready[2];
    if (pipe(ready) != 0) {
        return -1;
    }
    pid_t pid = fork();
    if (pid == 0) {
        close(ready[0]);
        bool locked = UIL_CfgOpenFile(true) == MPI_RET_SUCCESS;
        char c = locked ? 'y' : 'n';
        (void)!write(ready[1], &c, 1);
        sleepMicros(holdMs * 1000L);
        _exit(locked ? 0 : 1);
    }
    close(ready[1]);
    char c = 0;
    (void)!read(ready[0], &c, 1);
    close(ready[0]);
    return c == 'y' ? pid : -1;
}

TEST_F(CfgProcesses, SecondWriterRetriesOnceThenGivesUpCleanly)
{
    struct Case {
        int holdMs;
        uint32_t rc;
    };
    for (const Case c : {Case{3500, MPI_RET_FAIL}, Case{800, MPI_RET_SUCCESS}}) {
        restart();
        pid_t holder = holdLockElsewhere(c.holdMs);
        ASSERT_GT(holder, 0);
        auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(UIL_SetCommonConfig("io_timeout", "55"), c.rc) << c.holdMs;
        auto waited = std::chrono::steady_clock::now() - start;
        EXPECT_GE(waited, std::chrono::milliseconds(1900)) << c.holdMs;
        EXPECT_LT(waited, std::chrono::milliseconds(3000)) << c.holdMs;
        if (c.rc == MPI_RET_SUCCESS) {
            EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/io_timeout"), "55");
        } else {
            EXPECT_EQ(readFile(cfgPath()), kDoc);
            EXPECT_TRUE(FakeDriver::get().sent.empty());
        }
        int status = 0;
        waitpid(holder, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
}

// Each racer adds items of its own, one save each, and reports the results:
// a lost update would drop an item for good.
struct Change {
    const char* item;
    const char* value;
};
constexpr size_t kChanges = 10;
using Changes = std::array<Change, kChanges>;
constexpr Changes kRacerA = {{{"ioretry", "7"}, {"ioretrydelay", "3"}, {"failbackdelaytime", "100"},
                              {"tod_time", "120"}, {"tod_threshold", "5"}, {"ifd_time", "100"},
                              {"ifd_threshold", "4"}, {"hld_time", "100"}, {"sdd_recover_time", "50"},
                              {"idlepath_check_interval", "30"}}};
constexpr Changes kRacerB = {{{"ied_time", "120"}, {"ied_min_io", "6000"}, {"ied_threshold", "30"},
                              {"ied_recover_time", "2000"}, {"hld_threshold", "10"}, {"hld_recover_time", "100"},
                              {"failpath_check_interval", "20"}, {"sdd_threshold", "200"},
                              {"apd_to_pdl_timeout", "20"}, {"io_latency_threshold", "100"}}};

// The racer waits until the start pipe is closed by every writer, so it
// must not keep the write end itself.
pid_t startRacer(const Changes& changes, const int start[2], int resultFd)
{
    pid_t pid = fork();
    if (pid == 0) {
        close(start[1]);
        char go;
        (void)!read(start[0], &go, 1);
        for (const Change& c : changes) {
            uint32_t rc = UIL_SetCommonConfig(c.item, c.value);
            (void)!write(resultFd, &rc, sizeof(rc));
        }
        _exit(0);
    }
    return pid;
}

std::vector<uint32_t> collect(int fd)
{
    std::vector<uint32_t> results;
    uint32_t rc = 0;
    while (read(fd, &rc, sizeof(rc)) == static_cast<ssize_t>(sizeof(rc))) {
        results.push_back(rc);
    }
    return results;
}

TEST_F(CfgProcesses, TwoRacingWritersNeverLoseASavedChange)
{
    const Changes* racers[2] = {&kRacerA, &kRacerB};
    for (int round = 0; round < 2; ++round) {
        restart();
        int start[2];
        ASSERT_EQ(pipe(start), 0);
        int out[2][2];
        pid_t pids[2];
        for (int r = 0; r < 2; ++r) {
            ASSERT_EQ(pipe(out[r]), 0);
            pids[r] = startRacer(*racers[r], start, out[r][1]);
            close(out[r][1]);
        }
        close(start[0]);
        close(start[1]);  // both start at once
        for (int r = 0; r < 2; ++r) {
            std::vector<uint32_t> results = collect(out[r][0]);
            close(out[r][0]);
            waitpid(pids[r], nullptr, 0);
            ASSERT_EQ(results.size(), kChanges);
            for (size_t i = 0; i < kChanges; ++i) {
                const Change& c = (*racers[r])[i];
                ASSERT_TRUE(results[i] == MPI_RET_SUCCESS || results[i] == MPI_RET_FAIL) << results[i];
                std::optional<std::string> v = valueAt(cfgPath(), std::string("/cvcfg/common/") + c.item);
                if (results[i] == MPI_RET_SUCCESS) {
                    EXPECT_EQ(v, c.value) << c.item << " round " << round;
                } else {
                    EXPECT_EQ(v, std::nullopt) << c.item << " round " << round;
                }
            }
        }
        EXPECT_TRUE(parsesAsConfig(cfgPath()));
        EXPECT_TRUE(parsesAsConfig(bakPath()));
        EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/array/arraySN1/io_timeout"), "200");
    }
}

// ---------------------------------------------------------------------------
// Many writers, each change followed by its operation-log line as the shell
// writes it. The driver's state is what it was told last: every request
// is appended, in the order the driver received it, to a file the writers
// share. CVADM_STRESS_FULL=1 runs the full size (16 writers x 50 changes).

std::string driverLogPath() { return sandbox() + "/driver_requests"; }

void appendDriverRequest(const Sent& s)
{
    std::string line;
    if (s.code == kNotifyCode) {
        for (size_t i = 0; i < s.bytes[40]; ++i) {
            line += std::string(reinterpret_cast<const char*>(&s.bytes[44 + 96 * i])) + "=" +
                    reinterpret_cast<const char*>(&s.bytes[44 + 96 * i + 32]) + "\n";
        }
    } else if (s.code == kDeleteCode) {
        line = std::string(reinterpret_cast<const char*>(&s.bytes[37])) + "=\n";
    }
    int fd = open(driverLogPath().c_str(), O_WRONLY | O_APPEND | O_CREAT, 0600);
    (void)!write(fd, line.data(), line.size());
    close(fd);
}

// What the driver holds for each item after all requests.
std::map<std::string, std::string> driverState()
{
    std::map<std::string, std::string> state;
    std::istringstream in(readFile(driverLogPath()));
    for (std::string line; std::getline(in, line);) {
        size_t eq = line.find('=');
        state[line.substr(0, eq)] = line.substr(eq + 1);
    }
    return state;
}

constexpr const char* kStressItems[] = {"io_timeout", "iosuspensiontime"};

// Changes `count` values, logging each applied one; reports its successes.
[[noreturn]] void stressWriter(int writer, int count, int resultFd)
{
    FakeDriver::get().onSend = appendDriverRequest;
    uint32_t applied = 0;
    for (int i = 0; i < count; ++i) {
        const char* item = kStressItems[i % 2];
        std::string value = std::to_string(1 + writer * 1000 + i);
        if (UIL_SetCommonConfig(item, value.c_str()) == MPI_RET_SUCCESS) {
            UilOperLogPara record{};
            (void)strcpy_s(record.szValue, sizeof(record.szValue), value.c_str());
            if (UIL_OperLog("CLI", "set", (std::string(" ") + item + "=" + value).c_str(), 0x53415127, 1,
                            &record) == MPI_RET_SUCCESS) {
                ++applied;
            }
        }
    }
    (void)!write(resultFd, &applied, sizeof(applied));
    _exit(0);
}

struct LogCheck {
    size_t lines = 0;
    bool uniqueSerials = true;
};

LogCheck checkOperLog()
{
    LogCheck check;
    std::set<unsigned long> serials;
    std::istringstream in(readFile(sandbox() + "/opt/Corvane/log/oper_log"));
    for (std::string line; std::getline(in, line);) {
        ++check.lines;
        check.uniqueSerials = serials.insert(std::stoul(line.substr(1))).second && check.uniqueSerials;
    }
    return check;
}

void freshLogs()
{
    for (const auto& entry : fs::directory_iterator(sandbox() + "/etc")) {
        if (entry.path().filename().string().find(".intent.") != std::string::npos) {
            fs::remove(entry.path());
        }
    }
    fs::remove(sandbox() + "/opt/Corvane/log/oper_log");
    fs::remove(driverLogPath());
    writeFile(sandbox() + "/opt/Corvane/log/serial_oper", "0");
}

bool fullStress()
{
    const char* full = std::getenv("CVADM_STRESS_FULL");
    return full != nullptr && std::string(full) == "1";
}

TEST_F(CfgProcesses, ParallelWritersAgreeWithTheDriverAndLogEveryChange)
{
    const int writers = fullStress() ? 16 : 4;
    const int changes = fullStress() ? 50 : 10;
    freshLogs();
    int out[2];
    ASSERT_EQ(pipe(out), 0);
    std::vector<pid_t> pids;
    for (int w = 0; w < writers; ++w) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            close(out[0]);
            stressWriter(w, changes, out[1]);
        }
        pids.push_back(pid);
    }
    close(out[1]);
    uint32_t applied = 0;
    for (uint32_t n = 0; read(out[0], &n, sizeof(n)) == static_cast<ssize_t>(sizeof(n));) {
        applied += n;
    }
    close(out[0]);
    for (pid_t pid : pids) {
        waitpid(pid, nullptr, 0);
    }
    ASSERT_TRUE(parsesAsConfig(cfgPath()));
    EXPECT_GT(applied, 0u);
    std::map<std::string, std::string> driver = driverState();
    for (const char* item : kStressItems) {
        std::optional<std::string> stored = valueAt(cfgPath(), std::string("/cvcfg/common/") + item);
        EXPECT_EQ(stored.value_or(""), driver[item]) << item;
    }
    LogCheck log = checkOperLog();
    EXPECT_EQ(log.lines, applied);
    EXPECT_TRUE(log.uniqueSerials);
    EXPECT_EQ(readFile(sandbox() + "/opt/Corvane/log/serial_oper"), std::to_string(log.lines));
}

// The "[set item=value]" command of every log line, counted; a line
// written for a dead writer reads the same as the writer's own.
std::map<std::string, int> loggedChanges()
{
    std::map<std::string, int> changes;
    std::istringstream in(readFile(sandbox() + "/opt/Corvane/log/oper_log"));
    for (std::string line; std::getline(in, line);) {
        size_t at = line.find("[set ");
        if (at != std::string::npos) {
            ++changes[line.substr(at + 5, line.find(']', at) - at - 5)];
        }
    }
    return changes;
}

// Every value the driver was sent for a stress item, "item=value".
std::set<std::string> driverChanges()
{
    std::set<std::string> changes;
    std::istringstream in(readFile(driverLogPath()));
    for (std::string line; std::getline(in, line);) {
        changes.insert(line);
    }
    return changes;
}

// Writers killed at random instants, then parallel writers, then one more
// ordinary change: the document parses and agrees with the driver, every
// change the driver was sent has exactly one log line (and no line names a
// change it never got), and no serial number is used twice.
TEST_F(CfgProcesses, KilledAndParallelWritersLeaveDriverFileAndLogAgreeing)
{
    const int trials = fullStress() ? 200 : 20;
    const int writers = fullStress() ? 16 : 4;
    const int changes = fullStress() ? 50 : 10;
    freshLogs();
    std::mt19937 random(20261123);
    std::uniform_int_distribution<long> delay(0, 60000);
    for (int trial = 0; trial < trials; ++trial) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            stressWriter(trial, 1000, -1);
        }
        sleepMicros(delay(random));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        ASSERT_TRUE(parsesAsConfig(cfgPath())) << "trial " << trial;
        std::string serial = readFile(sandbox() + "/opt/Corvane/log/serial_oper");
        ASSERT_FALSE(serial.empty()) << "trial " << trial;
        ASSERT_EQ(serial.find_first_not_of("0123456789"), std::string::npos) << "trial " << trial;
    }
    std::vector<pid_t> pids;
    for (int w = 0; w < writers; ++w) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            stressWriter(trials + w, changes, -1);
        }
        pids.push_back(pid);
    }
    for (pid_t pid : pids) {
        waitpid(pid, nullptr, 0);
    }
    // The ordinary change settles whatever the killed writers left.
    FakeDriver::get().onSend = appendDriverRequest;
    ASSERT_EQ(UIL_SetCommonConfig("ioretry", "3"), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_OperLog("CLI", "set", " ioretry=3", UIL_OPER_IO_RETRY_COUNT, 1, nullptr), MPI_RET_SUCCESS);
    FakeDriver::get().onSend = nullptr;

    ASSERT_TRUE(parsesAsConfig(cfgPath()));
    std::map<std::string, std::string> driver = driverState();
    for (const char* item : kStressItems) {
        std::optional<std::string> stored = valueAt(cfgPath(), std::string("/cvcfg/common/") + item);
        EXPECT_EQ(stored.value_or(""), driver[item]) << item;
    }
    std::map<std::string, int> logged = loggedChanges();
    std::set<std::string> sent = driverChanges();
    for (const std::string& change : sent) {
        EXPECT_EQ(logged[change], 1) << change;
    }
    for (const auto& [change, lines] : logged) {
        EXPECT_TRUE(sent.count(change) == 1) << "logged but never sent: " << change;
    }
    LogCheck log = checkOperLog();
    EXPECT_TRUE(log.uniqueSerials);
    for (const auto& entry : fs::directory_iterator(sandbox() + "/etc")) {
        EXPECT_EQ(entry.path().filename().string().find(".intent."), std::string::npos) << entry.path();
    }
    // How much the journal had to do, for whoever measures a full run.
    const std::string text = readFile(sandbox() + "/opt/Corvane/log/oper_log");
    size_t completed = 0;
    for (size_t at = text.find(")Write to configuration]"); at != std::string::npos;
         at = text.find(")Write to configuration]", at + 1)) {
        ++completed;
    }
    RecordProperty("driver_changes", static_cast<int>(sent.size()));
    RecordProperty("log_lines", static_cast<int>(log.lines));
    RecordProperty("completed_for_dead_writers", static_cast<int>(completed));
}

// ---------------------------------------------------------------------------
// Records a dead writer left, completed by the next writer.

std::string intentPath(const std::string& tag) { return cfgPath() + ".intent.99999." + tag; }

UilIntent commonIntent(UilIntentPhase phase, const char* item, const char* value)
{
    UilIntent intent;
    intent.phase = phase;
    intent.sectionType = UIL_CFG_SECTION_COMMON;
    intent.item = item;
    intent.value = value;
    return intent;
}

TEST(JournalRecord, OnlyAnIntactRecordIsTrusted)
{
    UilIntent logging = commonIntent(UilIntentPhase::Logging, "io_timeout", "77");
    logging.serial = 12;
    logging.line = "[12] [date] [root] [CLI] [1] [1] [set io_timeout=77] [e] [l] [1]";
    const std::string good = UIL_JournalFormat(logging);
    UilIntent back;
    ASSERT_TRUE(UIL_JournalParse(good, &back));
    EXPECT_EQ(UIL_JournalFormat(back), good);

    std::string flipped = good;
    flipped[good.find("77")] = '8';
    std::string noSerial = UIL_JournalFormat(commonIntent(UilIntentPhase::Logging, "io_timeout", "77"));
    UilIntent badType = commonIntent(UilIntentPhase::Sent, "io_timeout", "1");
    badType.sectionType = 7;
    const struct {
        const char* name;
        std::string text;
    } bad[] = {
        {"empty", ""},
        {"torn in the middle", good.substr(0, good.size() / 2)},
        {"torn before the last newline", good.substr(0, good.size() - 1)},
        {"a value edited", flipped},
        {"trailing bytes", good + "x\n"},
        {"logging without its line", noSerial},
        {"unknown level", UIL_JournalFormat(badType)},
        {"another format", "phase=sent\n"},
    };
    for (const auto& c : bad) {
        EXPECT_FALSE(UIL_JournalParse(c.text, &back)) << c.name;
    }
}

class DeadWriter : public CfgProcesses {
protected:
    void SetUp() override
    {
        CfgProcesses::SetUp();
        freshLogs();
        (void)INTF_UIL_TakeJournalNotices();
    }
    static std::string log() { return readFile(sandbox() + "/opt/Corvane/log/oper_log"); }
    static size_t count(const std::string& text, const std::string& what)
    {
        size_t n = 0;
        for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
            ++n;
        }
        return n;
    }
};

TEST_F(DeadWriter, NextWriterCompletesWhatADeadWriterLeft)
{
    const std::string numbered = "[41] [d] [u] [CLI] [1] [1] [set io_timeout=555] [e] [l] [1]";
    UilIntent logging = commonIntent(UilIntentPhase::Logging, "io_timeout", "555");
    logging.serial = 41;
    logging.line = numbered;
    struct Case {
        const char* name;
        UilIntent intent;
        std::string logBefore;
        bool resent;          // the driver is told the value again
        const char* inFile;   // io_timeout in the file afterwards
        std::string logLine;  // must be in the log exactly once
    } cases[] = {
        {"killed before the save", commonIntent(UilIntentPhase::Sent, "io_timeout", "777"), "", true, "777",
         "[set io_timeout=777] [( io_timeout=777)Write to configuration]"},
        {"killed before the log line", commonIntent(UilIntentPhase::Saved, "io_timeout", "1000"), "", false,
         "1000", "[set io_timeout=1000]"},
        {"killed while logging", logging, "", false, "1000", numbered},
        {"killed after logging", logging, numbered + "\n", false, "1000", numbered},
    };
    for (const Case& c : cases) {
        restart();
        freshLogs();
        writeFile(sandbox() + "/opt/Corvane/log/oper_log", c.logBefore);
        writeFile(intentPath("0"), UIL_JournalFormat(c.intent));
        ASSERT_EQ(UIL_SetCommonConfig("ioretry", "4"), MPI_RET_SUCCESS) << c.name;
        ASSERT_EQ(UIL_OperLog("CLI", "set", " ioretry=4", UIL_OPER_IO_RETRY_COUNT, 1, nullptr), MPI_RET_SUCCESS);

        EXPECT_FALSE(fs::exists(intentPath("0"))) << c.name;
        EXPECT_EQ(driver().sent.size(), c.resent ? 2u : 1u) << c.name;
        EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/io_timeout"), c.inFile) << c.name;
        EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/ioretry"), "4") << c.name;
        EXPECT_EQ(count(log(), c.logLine), 1u) << c.name << "\n" << log();
        EXPECT_EQ(count(log(), "[set ioretry=4]"), 1u) << c.name;
        EXPECT_TRUE(checkOperLog().uniqueSerials) << c.name;
    }
}

TEST_F(DeadWriter, ADamagedRecordIsSetAsideAndReported)
{
    std::string text = UIL_JournalFormat(commonIntent(UilIntentPhase::Sent, "io_timeout", "777"));
    writeFile(intentPath("0"), text.substr(0, text.size() - 3));
    ASSERT_EQ(UIL_SetCommonConfig("ioretry", "4"), MPI_RET_SUCCESS);
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/io_timeout"), "1000");
    EXPECT_EQ(driver().sent.size(), 1u);
    EXPECT_FALSE(fs::exists(intentPath("0")));
    EXPECT_TRUE(fs::exists(intentPath("0.damaged")));
    std::string notices = INTF_UIL_TakeJournalNotices();
    EXPECT_EQ(count(notices, "\n"), 1u) << notices;
    EXPECT_EQ(notices.rfind(intentPath("0") + ": ", 0), 0u) << notices;
    EXPECT_EQ(INTF_UIL_TakeJournalNotices(), "");
}

// A record whose writer still lives (it holds the record's lock) is the
// writer's own to settle: completing it too would log the change twice.
TEST_F(DeadWriter, ALiveWritersRecordIsLeftAlone)
{
    writeFile(intentPath("0"), UIL_JournalFormat(commonIntent(UilIntentPhase::Saved, "io_timeout", "1000")));
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    pid_t holder = fork();
    ASSERT_GE(pid_t{holder}, 0);
    if (holder == 0) {
        int fd = open(intentPath("0").c_str(), O_RDONLY);
        char c = flock(fd, LOCK_EX) == 0 ? 'y' : 'n';
        (void)!write(ready[1], &c, 1);
        pause();
        _exit(0);
    }
    char c = 0;
    (void)!read(ready[0], &c, 1);
    ASSERT_EQ(c, 'y');
    ASSERT_EQ(UIL_SetCommonConfig("ioretry", "4"), MPI_RET_SUCCESS);
    EXPECT_TRUE(fs::exists(intentPath("0")));
    EXPECT_EQ(count(log(), "io_timeout"), 0u);
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    ASSERT_EQ(UIL_SetCommonConfig("ioretry", "5"), MPI_RET_SUCCESS);
    EXPECT_FALSE(fs::exists(intentPath("0")));
    EXPECT_EQ(count(log(), "[set io_timeout=1000]"), 1u);
    close(ready[0]);
    close(ready[1]);
}

}  // namespace
