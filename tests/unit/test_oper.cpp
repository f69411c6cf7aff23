// Operation log: the description of every event, the serial number rules,
// the line format, and reading the log back.
#include <gtest/gtest.h>
#include <iconv.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "mpi/mpi_root.h"
#include "support/test_files.h"
#include "uil/uil.h"
#include "uil/uil_oper.h"

namespace fs = std::filesystem;

namespace {

// The test main gives every run a sandbox root of its own (CVADM_ROOT);
// the log paths are resolved beneath it before the first test.
const std::string& sandbox()
{
    static const std::string root = [] {
        std::string dir = std::getenv("CVADM_ROOT");
        fs::create_directories(dir + "/opt/Corvane/log");
        UIL_GetLogPathName();
        return dir;
    }();
    return root;
}
class SandboxEnvironment : public testing::Environment {
    void SetUp() override { (void)sandbox(); }
};
[[maybe_unused]] testing::Environment* const kSandbox = testing::AddGlobalTestEnvironment(new SandboxEnvironment);

std::string logDir() { return sandbox() + "/opt/Corvane/log"; }
std::string operLog() { return logDir() + "/oper_log"; }
std::string serialFile() { return logDir() + "/serial_oper"; }

std::string readAll(const std::string& path) { return testfiles::text(path); }

void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
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

UilOperLogPara rec(uint32_t type, uint32_t id, const char* value)
{
    UilOperLogPara r{};
    r.uiObjType = type;
    r.uiObjId = id;
    std::strncpy(r.szValue, value, sizeof(r.szValue) - 1);
    return r;
}

UilOperLogPara value(const char* text) { return rec(0, 0, text); }

struct Descriptions {
    std::string english;
    std::string localised;
    uint32_t index = 0;
    uint32_t ret = 0;
};

Descriptions describe(uint32_t eventId, const UilOperLogPara& record, const char* command = "")
{
    char en[UIL_OPER_DSC_LEN];
    char zh[UIL_OPER_DSC_LEN];
    std::memset(en, 'x', sizeof(en));
    std::memset(zh, 'x', sizeof(zh));
    Descriptions d;
    d.ret = UIL_GetOperDscByEventID(eventId, command, &record, en, zh, &d.index);
    d.english = en;
    d.localised = zh;
    return d;
}

// GB2312 text that iconv can read back; empty text passes.
bool convertsFromGb2312(const std::string& text)
{
    iconv_t cd = iconv_open("UTF-8", "GB2312");
    if (cd == reinterpret_cast<iconv_t>(-1)) {
        return false;
    }
    std::string in = text;
    std::vector<char> out(text.size() * 4 + 4);
    char* src = in.data();
    size_t srcLeft = in.size();
    char* dst = out.data();
    size_t dstLeft = out.size();
    size_t r = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
    iconv_close(cd);
    return r != static_cast<size_t>(-1) && srcLeft == 0;
}

// ---------------------------------------------------------------------------
// English descriptions: the events whose text takes more than the value as
// it came (object suffixes, words for values, pairs, odd spellings). The
// plain ones are in the degrade and latency transcripts' log lines.

struct EventCase {
    uint32_t eventId;
    UilOperLogPara record;
    const char* english;
};

const EventCase kEvents[] = {
    {0x53415101, rec(101, 3, "1"), "Open LB between controller for array id 3"},
    {0x53415102, rec(100, 0, "0"), "Close LB between controller "},
    {0x53415103, value("min-queue-depth"), "Modify LB Algorithm to minimal queue depth algorithm"},
    {0x53415104, rec(102, 5, "1"), "Open Luntrespass feature for vlun id 5"},
    {0x53415105, rec(102, 5, "2"), "Unknown Str Luntrespass feature for vlun id 5"},
    {0x53415107, rec(101, 2, "60"), "Set hold on time to 60 s for array id 2"},
    {0x53415108, value("10,3"), "Set IO retry count to 10 and retry interval to 3 s"},
    {0x53415148, value("abc"), "Set resume busy delay time to 0 s"},
    {0x5341510a, rec(103, 7, "1"), "Enable physical path(path id = 7)"},
    {0x5341510b, rec(103, 7, "0"), "Disable physical path(path id = 7)"},
    {0x5341510c, value("12"), "Send path(path id = 12)health check conmand"},
    {0x5341510d, rec(101, 1, "1,0A"), "Enable controller 0A(array ID = 1)"},
    {0x5341510e, rec(101, 1, "0,3"), "Disable controller 3(array ID = 1)"},
    {0x5341510f, value("ignored"), "( cvconfig array_id=1)Write to configuration"},
    {0x53415113, rec(103, 4, "19"), "Set physical path(id = 4)iostate to normal"},
    {0x53415149, rec(103, 9, "25"), "Set logic path(path id = 9)iostate to high latency"},
    {0x53415121, value("HUAWEI;XSG1"), "Add a support array vendorid=HUAWEI,proudctid=XSG1"},
    {0x53415121, value("ACME;Box,9"), "Add a support array vendorid=ACME,proudctid=Box,9"},
    {0x53415122, value("ACME;Box 9"), "Delete a support array vendorid=ACME,proudctid=Box 9"},
    {0x53415114, value(""), "Clear alarm (serial=all)"},
    {0x5341514a, value("30,5"), "Set Alarm IO stable time to 30 and delay time to 5 s"},
    {0x53415144, rec(102, 6, "bDstIsPrior: 1, bRollBack: 0"),
     "Start migration(direction/rollback: bDstIsPrior: 1, bRollBack: 0) for vlun_id=6"},
    {0x53415145, rec(102, 6, "30"), "Start iosuspension (timeout=30 S) for vlun_id=6"},
    {0x53415124, rec(102, 3, "200"),
     "Set the number (200) of I/O to route to a path before switching to the next path for vlun id 3"},
    {0x53415127, rec(100, 0, "1800"), "Set io retry timeout 1800 s "},
    {0x53415132, rec(101, 2, "remote,0,1"), "Set xva remote controller 0,1 (XVA ID = 2)"},
    {0x5341513f, rec(102, 4, "balance,1"),
     "Set dualsite workingmode(mode=balance,primary_array_id=1) for vlun id 4"},
    {0x5341514d, rec(100, 0, "262144"), "Set dualsite split size (size=262144 *512) "},
    {0x53415141, value("round-robin"), "Modify LB Algorithm to round robin algorithm"},
    {0x5341514e, value("0"), "Disable AlarmEnable feature "},
    {0x53415151, value("1"), "Enable ReliabilityEnable feature "},
    {0x5341514f, rec(0, 2, "1"), "Enable hba ,hba id = 2)"},
    {0x53415150, rec(0, 2, "0"), "Disable hba ,hba id = 2)"},
    {0x53415163, value("1,24"), "Open performance record, duration is 24 hours"},
};

TEST(OperDescriptions, EnglishTexts)
{
    for (const EventCase& c : kEvents) {
        SCOPED_TRACE(testing::Message() << std::hex << c.eventId);
        Descriptions d = describe(c.eventId, c.record, " cvconfig array_id=1");
        EXPECT_EQ(d.ret, MPI_RET_SUCCESS);
        EXPECT_EQ(d.english, c.english);
        ASSERT_LT(d.index, g_astUILOperLogFmt.size());
        EXPECT_EQ(g_astUILOperLogFmt[d.index].eventId, c.eventId);
    }
    // Events the log records without any description.
    for (uint32_t id : {0x53415112u, 0x53415120u, 0x53415133u, 0x53415142u, 0x53415143u, 0x53415152u, 0x53415153u,
                        0x53415157u}) {
        Descriptions d = describe(id, value("1"));
        EXPECT_EQ(d.ret, MPI_RET_SUCCESS) << std::hex << id;
        EXPECT_EQ(d.english + d.localised, "") << std::hex << id;
    }
}

struct LocalCase {
    uint32_t eventId;
    UilOperLogPara record;
    const char* command;
    const char* localised;
};

// Expected bytes are the GB2312 encoding of the Chinese in the comments.
const LocalCase kLocal[] = {
    // 设置I/O超时降级时间为30秒
    {0x53415128, value("30"), "",
     "\xc9\xe8\xd6\xc3I/O\xb3\xac\xca\xb1\xbd\xb5\xbc\xb6\xca\xb1\xbc\xe4\xce\xaa" "30\xc3\xeb"},
    // 开启控制器间负载均衡针对阵列ID 3
    {0x53415101, rec(101, 3, "1"), "",
     "\xbf\xaa\xc6\xf4\xbf\xd8\xd6\xc6\xc6\xf7\xbc\xe4\xb8\xba\xd4\xd8\xbe\xf9\xba\xe2\xd5\xeb\xb6\xd4\xd5\xf3\xc1\xd0"
     "ID 3"},
    // 修改负载均衡算法为最小队列深度算法
    {0x53415103, value("min-queue-depth"), "",
     "\xd0\xde\xb8\xc4\xb8\xba\xd4\xd8\xbe\xf9\xba\xe2\xcb\xe3\xb7\xa8\xce\xaa\xd7\xee\xd0\xa1\xb6\xd3\xc1\xd0\xc9\xee"
     "\xb6\xc8\xcb\xe3\xb7\xa8"},
    // 禁用物理路径(路径ID = 7)
    {0x5341510b, rec(103, 7, "0"), "", "\xbd\xfb\xd3\xc3\xce\xef\xc0\xed\xc2\xb7\xbe\xb6(\xc2\xb7\xbe\xb6ID = 7)"},
    // 设置物理路径(ID = 4)的I/O状态为正常
    {0x53415113, rec(103, 4, "19"), "",
     "\xc9\xe8\xd6\xc3\xce\xef\xc0\xed\xc2\xb7\xbe\xb6(ID = 4)\xb5\xc4I/O\xd7\xb4\xcc\xac\xce\xaa\xd5\xfd\xb3\xa3"},
    // 清除告警(序列号=全部)
    {0x53415114, value(""), "", "\xc7\xe5\xb3\xfd\xb8\xe6\xbe\xaf(\xd0\xf2\xc1\xd0\xba\xc5=\xc8\xab\xb2\xbf)"},
    // 设置双活工作模式(模式=双阵列间读写，主阵列ID=1)针对VLUN ID 4
    {0x5341513f, rec(102, 4, "balance,1"), "",
     "\xc9\xe8\xd6\xc3\xcb\xab\xbb\xee\xb9\xa4\xd7\xf7\xc4\xa3\xca\xbd(\xc4\xa3\xca\xbd=\xcb\xab\xd5\xf3\xc1\xd0\xbc\xe4"
     "\xb6\xc1\xd0\xb4\xa3\xac\xd6\xf7\xd5\xf3\xc1\xd0ID=1)\xd5\xeb\xb6\xd4VLUN ID 4"},
    // (setcvconfig)写入配置
    {0x5341510f, value(""), "setcvconfig", "(setcvconfig)\xd0\xb4\xc8\xeb\xc5\xe4\xd6\xc3"},
    // 生成PR密钥
    {0x53415111, value(""), "", "\xc9\xfa\xb3\xc9PR\xc3\xdc\xd4\xbf"},
    // 设置I/O时延阈值为0毫秒
    {0x53415155, value("0"), "",
     "\xc9\xe8\xd6\xc3I/O\xca\xb1\xd1\xd3\xe3\xd0\xd6\xb5\xce\xaa" "0\xba\xc1\xc3\xeb"},
};

TEST(OperDescriptions, LocalisedTexts)
{
    for (const LocalCase& c : kLocal) {
        EXPECT_EQ(describe(c.eventId, c.record, c.command).localised, c.localised) << std::hex << c.eventId;
    }
}

// Values as long as a record holds: both texts are cut to 127 bytes, and
// the Chinese one never ends in half a character.
TEST(OperDescriptions, LongValuesAreCutCleanly)
{
    std::string longValue(UIL_OPER_LOG_VALUE_LEN - 1, '7');
    std::string longPair = "1," + std::string(UIL_OPER_LOG_VALUE_LEN - 3, '8');
    for (const UilOperLogFmt& row : g_astUILOperLogFmt) {
        for (const std::string& v : {longValue, longPair}) {
            SCOPED_TRACE(testing::Message() << std::hex << row.eventId << " " << v);
            Descriptions d = describe(row.eventId, rec(102, 0xFFFFFFFF, v.c_str()), longValue.c_str());
            EXPECT_LE(d.english.size(), UIL_OPER_DSC_LEN - 1);
            EXPECT_LE(d.localised.size(), UIL_OPER_DSC_LEN - 1);
            EXPECT_TRUE(convertsFromGb2312(d.localised));
            // A description in one language has one in the other.
            EXPECT_EQ(d.english.empty(), d.localised.empty());
        }
    }
    Descriptions d = describe(0x53415124, rec(102, 3, longValue.c_str()));
    EXPECT_EQ(d.english.size(), UIL_OPER_DSC_LEN - 1);
    EXPECT_EQ(d.english.substr(0, 16), "Set the number (");
}

// A value that fills the record without a terminator is cut at the record;
// an unknown event gives empty texts at row 0; an absent record reads as a
// zero one.
TEST(OperDescriptions, OddRecords)
{
    UilOperLogPara full{};
    std::memset(full.szValue, '5', sizeof(full.szValue));
    EXPECT_EQ(describe(0x53415106, full).english, "Set failback time to " + std::string(63, '5') + " s");

    Descriptions unknown = describe(0x534151ff, value("1"));
    EXPECT_EQ(unknown.ret, MPI_RET_FAIL);
    EXPECT_EQ(unknown.index, 0u);
    EXPECT_EQ(unknown.english + unknown.localised, "");

    char en[UIL_OPER_DSC_LEN];
    char zh[UIL_OPER_DSC_LEN];
    uint32_t index = 99;
    EXPECT_EQ(UIL_GetOperDscByEventID(0x53415127, nullptr, nullptr, en, zh, &index), MPI_RET_SUCCESS);
    EXPECT_STREQ(en, "Set io retry timeout  s ");
}

// Switch words match the whole key ("01" is not "1"); numbers are cut to
// their buffer.
TEST(OperConvert, WholeKeysAndCutNumbers)
{
    const auto& openClose = g_astUILOpenCloseConvert;
    EXPECT_STREQ(UIL_StrTypeConvertToStr(openClose.data(), openClose.size(), "01", UIL_LANG_ENGLISH), "Unknown Str");
    EXPECT_STREQ(UIL_StrTypeConvertToStr(openClose.data(), openClose.size(), nullptr, UIL_LANG_LOCAL), "Unknown Str");
    // A switch is its "1" or "0" row.
    EXPECT_STREQ(UIL_BoolTypeConvertToStr(openClose.data(), openClose.size(), true, UIL_LANG_ENGLISH),
                 UIL_StrTypeConvertToStr(openClose.data(), openClose.size(), "1", UIL_LANG_ENGLISH));
    EXPECT_STREQ(UIL_BoolTypeConvertToStr(openClose.data(), openClose.size(), false, UIL_LANG_ENGLISH),
                 UIL_StrTypeConvertToStr(openClose.data(), openClose.size(), "0", UIL_LANG_ENGLISH));
    EXPECT_STRNE(UIL_BoolTypeConvertToStr(openClose.data(), openClose.size(), true, UIL_LANG_ENGLISH),
                 UIL_BoolTypeConvertToStr(openClose.data(), openClose.size(), false, UIL_LANG_ENGLISH));
    char text[8];
    UIL_UintTypeConvertToStr(4294967295u, text, sizeof(text));
    EXPECT_STREQ(text, "4294967");
    UIL_IntTypeConvertToStr(-2147483647 - 1, text, sizeof(text));
    EXPECT_STREQ(text, "-214748");
    UIL_IntTypeConvertToStr(-5, text, sizeof(text));
    EXPECT_STREQ(text, "-5");
}

// ---------------------------------------------------------------------------
// Serial number file.

// The first nine digits are the number; the next one is written over them.
TEST(OperSerialFile, ReadsNineDigitsAndWritesOverTheStart)
{
    const struct {
        const char* before;
        uint32_t serial;
        const char* after;
    } cases[] = {
        {"", 1, "1"},
        {"0", 1, "1"},
        {"99", 100, "100"},
        {"123456789012", 123456790, "123456790012"},
        {"41\n", 42, "42\n"},
        {"abc", 1, "1bc"},
        {"0042", 43, "4342"},
        {"999999999", 1000000000, "1000000000"},
        // Nothing wraps: a sign or a letter first reads as 0, and only nine
        // digits are read, so the next number always fits.
        {"-5", 1, "15"},
        {"+7", 1, "17"},
        {"99999999999999999999", 1000000000, "10000000009999999999"},
        {"4294967295", 429496730, "4294967305"},
    };
    for (const auto& c : cases) {
        writeFile(serialFile(), c.before);
        uint32_t serial = 0;
        ASSERT_EQ(UIL_IncreaseAndGetOperSN(&serial), MPI_RET_SUCCESS) << c.before;
        EXPECT_EQ(serial, c.serial) << c.before;
        EXPECT_EQ(readAll(serialFile()), c.after) << c.before;
    }
}

TEST(OperSerialFile, MissingFileIsNotCreated)
{
    sandbox();
    fs::remove(serialFile());
    uint32_t serial = 7;
    EXPECT_EQ(UIL_IncreaseAndGetOperSN(&serial), MPI_RET_NOT_FOUND);
    EXPECT_EQ(serial, 7u);
    EXPECT_FALSE(fs::exists(serialFile()));
    EXPECT_EQ(UIL_IncreaseAndGetOperSN(nullptr), MPI_RET_INVALID_PARAM);
}

TEST(OperSerialFile, ReplacementKeepsModeAndLeavesNoTemporaryFile)
{
    sandbox();
    writeFile(serialFile(), "5");
    fs::permissions(serialFile(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    uint32_t serial = 0;
    ASSERT_EQ(UIL_IncreaseAndGetOperSN(&serial), MPI_RET_SUCCESS);
    EXPECT_EQ(fs::status(serialFile()).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    for (const auto& entry : fs::directory_iterator(logDir())) {
        EXPECT_EQ(entry.path().filename().string().find(".tmp."), std::string::npos) << entry.path();
    }
}

// ---------------------------------------------------------------------------
// Writing lines.

class OperLogFile : public testing::Test {
protected:
    void SetUp() override
    {
        sandbox();
        fs::remove_all(operLog());
        writeFile(serialFile(), "41");
        UIL_OperLogSetRetry({2, 0});
    }
    void TearDown() override { UIL_OperLogSetRetry(UIL_OPER_LOG_RETRY); }
};

TEST_F(OperLogFile, UnknownEventHasEmptyDescriptionsAndLevelOfRowZero)
{
    ASSERT_EQ(UIL_OperLog("CLI", "set", " x", 0x53415115, 0, nullptr), MPI_RET_SUCCESS);
    std::string text = readAll(operLog());
    EXPECT_NE(text.find("] [CLI] [0] [1396789525] [set x] [] [] [0]\n"), std::string::npos) << text;
}

TEST_F(OperLogFile, ControlCharactersNeverSplitALine)
{
    UilOperLogPara r = value("a\nb");
    ASSERT_EQ(UIL_OperLog("CLI", "set", " x=\r\n", 0x53415106, 0, &r), MPI_RET_SUCCESS);
    std::vector<std::string> got = lines(readAll(operLog()));
    ASSERT_EQ(got.size(), 1u);
    EXPECT_NE(got[0].find("[set x=  ] [Set failback time to a b s]"), std::string::npos) << got[0];
}

TEST_F(OperLogFile, LogThatCannotBeOpenedIsReported)
{
    fs::create_directories(operLog());  // a directory where the file should be
    EXPECT_EQ(UIL_OperLog("CLI", "set", " x", 0x53415111, 1, nullptr), UIL_OPERLOG_OPEN_FAIL);
    EXPECT_EQ(readAll(serialFile()), "41");  // no number was used up
    fs::remove_all(operLog());
}

TEST_F(OperLogFile, MissingLogDirectoryIsCreated)
{
    fs::remove_all(logDir());
    // The directory and the log are made, but without the serial file
    // there is no line.
    EXPECT_EQ(UIL_OperLog("CLI", "set", " x", 0x53415111, 1, nullptr), UIL_OPERLOG_SWITCHED_OFF);
    EXPECT_TRUE(fs::is_directory(logDir()));
    EXPECT_EQ(readAll(operLog()), "");
    writeFile(serialFile(), "1");
    EXPECT_EQ(UIL_OperLog("CLI", "set", " x", 0x53415111, 1, nullptr), MPI_RET_SUCCESS);
    EXPECT_EQ(lines(readAll(operLog())).size(), 1u);
}

// What is not a regular file is refused at once, never waited on: a FIFO
// with nobody at its other end would otherwise hang the command. The log
// is never written through a symbolic link. Each refusal names the file.
TEST_F(OperLogFile, OddFilesAreRefusedNotWaitedOn)
{
    struct Case {
        std::string path;
        bool fifo;  // else a symbolic link to a file elsewhere
        uint32_t rc;
    };
    const Case cases[] = {
        {operLog(), true, UIL_OPERLOG_OPEN_FAIL},
        {operLog(), false, UIL_OPERLOG_OPEN_FAIL},
        {serialFile(), true, MPI_RET_FAIL},
    };
    std::string elsewhere = sandbox() + "/elsewhere";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path + (c.fifo ? " fifo" : " link"));
        fs::remove(c.path);
        writeFile(elsewhere, "");
        if (c.fifo) {
            ASSERT_EQ(mkfifo(c.path.c_str(), 0600), 0);
        } else {
            fs::create_symlink(elsewhere, c.path);
        }
        if (c.path != serialFile()) {
            writeFile(serialFile(), "41");
        }
        pid_t pid = fork();
        if (pid == 0) {
            alarm(5);  // a hang ends the child by SIGALRM, and the test fails
            _exit(UIL_OperLog("CLI", "set", " x", 0x53415111, 1, nullptr) == c.rc &&
                          std::string(INTF_UIL_LastFileError()).rfind(c.path + ": ", 0) == 0
                      ? 0
                      : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        EXPECT_EQ(readAll(elsewhere), "");
        fs::remove(c.path);
    }
    writeFile(serialFile(), "41");
}

// A log that takes no more data: the call fails and names the file.
TEST_F(OperLogFile, LogThatCannotBeWrittenIsAFailure)
{
    pid_t pid = fork();
    if (pid == 0) {
        signal(SIGXFSZ, SIG_IGN);
        writeFile(operLog(), std::string(100, 'x'));
        rlimit limit{100, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(UIL_OperLog("CLI", "set", " x", 0x53415111, 1, nullptr) == MPI_RET_FAIL &&
                      std::string(INTF_UIL_LastFileError()).rfind(operLog() + ": File too large", 0) == 0
                  ? 0
                  : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

// Writers in several processes at once: every line stays whole.
TEST_F(OperLogFile, ConcurrentWritersNeverTearALine)
{
    constexpr int kWriters = 6;
    constexpr int kLines = 40;
    std::vector<pid_t> children;
    for (int w = 0; w < kWriters; ++w) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            for (int i = 0; i < kLines; ++i) {
                UilOperLogPara r = rec(101, static_cast<uint32_t>(w), std::string(50, static_cast<char>('a' + w)).c_str());
                (void)UIL_OperLog("CLI", "set", " hold", 0x53415107, 1, &r);
            }
            _exit(0);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    std::vector<std::string> got = lines(readAll(operLog()));
    ASSERT_EQ(got.size(), static_cast<size_t>(kWriters * kLines));
    std::regex whole(R"(\[\d+\] \[[^\]]+\] \[[^\]]*\] \[CLI\] \[1\] \[1396789511\] \[set hold\] )"
                     R"(\[Set hold on time to ([a-f])\1{49} s for array id \d\] \[[^\]]+\] \[1\])");
    for (const std::string& l : got) {
        EXPECT_TRUE(std::regex_match(l, whole)) << l;
    }
    // Every line has a number of its own: 42 up to the last one.
    std::set<uint32_t> serials;
    for (const std::string& l : got) {
        serials.insert(static_cast<uint32_t>(std::stoul(l.substr(1))));
    }
    EXPECT_EQ(serials.size(), got.size());
    EXPECT_EQ(*serials.begin(), 42u);
    EXPECT_EQ(*serials.rbegin(), 41u + kWriters * kLines);
    EXPECT_EQ(readAll(serialFile()), std::to_string(41 + kWriters * kLines));
}

// ---------------------------------------------------------------------------
// Reading back.

TEST_F(OperLogFile, ReadingBackKeepsWellFormedLinesInOrder)
{
    UilOperLogPara r = value("600");
    ASSERT_EQ(UIL_OperLog("CLI", "set", " tod_time=600", 0x53415128, 1, &r), MPI_RET_SUCCESS);
    std::ofstream(operLog(), std::ios::app)
        << "[7] [2020-01-02 03:04:05] [root] [CLI] [1] [1396789521] [set genprkey] [Generate PR key] [zh]\n"  // 9 fields
        << "[8] [only] [three]\n"                                                                            // dropped
        << "[1][2][3][4][5][6][7][8][9][10][11][12]\n"                                                        // too many
        << "garbage without brackets\n";
    ASSERT_EQ(UIL_OperLog("CLI", "clear", " io_count", 0x53415156, 0, nullptr), MPI_RET_SUCCESS);

    MPI_ListNode head;
    uint32_t count = 0;
    ASSERT_EQ(INTF_UIL_EnumerateOperLogStart(&head, &count), MPI_RET_SUCCESS);
    std::vector<std::string> entries;
    for (MPI_ListNode* n = head.next; n != &head; n = n->next) {
        const UilOperLogEntry* e = MPI_ListEntry<UilOperLogEntry>(n);
        std::ostringstream row;
        row << e->serial << '|' << std::strlen(e->date) << '|' << e->source << '|' << e->level << '|' << std::hex
            << e->eventId << std::dec << '|' << e->command << '|' << e->english << '|' << e->localised << '|'
            << e->hasResult << '|' << e->result;
        entries.push_back(row.str());
        if (e->serial == 7) {
            EXPECT_STREQ(e->date, "2020-01-02 03:04:05");
            EXPECT_STREQ(e->user, "root");
        }
    }
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(entries, (std::vector<std::string>{
                           "42|19|CLI|1|53415128|set tod_time=600|Set io timeout degrade time 600 s|"
                           "\xc9\xe8\xd6\xc3I/O\xb3\xac\xca\xb1\xbd\xb5\xbc\xb6\xca\xb1\xbc\xe4\xce\xaa"
                           "600\xc3\xeb|1|1",
                           "7|19|CLI|1|53415111|set genprkey|Generate PR key|zh|0|0",
                           "43|19|CLI|1|53415156|clear io_count|Clear I/O count|\xc7\xe5\xb3\xfdI/O\xbc\xc6\xca\xfd|1|0",
                       }));
    INTF_UIL_EnumerateOperLogEnd(&head);
    EXPECT_TRUE(MPI_ListEmpty(&head));
}

TEST_F(OperLogFile, ReadingAnEmptyOrMissingLog)
{
    MPI_ListNode head;
    uint32_t count = 9;
    EXPECT_EQ(INTF_UIL_EnumerateOperLogStart(&head, &count), UIL_OPERLOG_OPEN_FAIL);
    EXPECT_TRUE(MPI_ListEmpty(&head));
    writeFile(operLog(), "");
    EXPECT_EQ(INTF_UIL_EnumerateOperLogStart(&head, &count), MPI_RET_NOT_FOUND);
    EXPECT_EQ(count, 0u);
    INTF_UIL_EnumerateOperLogEnd(&head);
    EXPECT_EQ(INTF_UIL_EnumerateOperLogStart(nullptr, &count), MPI_RET_INVALID_PARAM);
}

}  // namespace
