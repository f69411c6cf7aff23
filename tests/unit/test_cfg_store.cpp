// The configuration store over files in a private sandbox, with a recording
// fake driver: value rules, opening broken files, setting and its ordering
// against the driver, deletion, the effective value and the full record,
// the start-up parse, the upgrade merge, and the file-safety rules.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <functional>
#include <set>

#include "support/cfg_fixture.h"
#include "uil/uil.h"
#include "uil/uil_cfg_int.h"

using namespace cfgtest;

namespace {

[[maybe_unused]] testing::Environment* const kStore = testing::AddGlobalTestEnvironment(new StoreEnvironment);

class CfgStore : public StoreTest {
protected:
    CfgStore() : StoreTest(kSmallDoc) {}
};

// Whether `check` holds when run in another process: closing any
// descriptor of the lock file in this process would drop the lock it holds.
bool inOtherProcess(const std::function<bool()>& check)
{
    pid_t pid = fork();
    if (pid == 0) {
        _exit(check() ? 0 : 1);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool lockFreeForOthers()
{
    return inOtherProcess([] {
        int fd = open(lockPath().c_str(), O_RDWR | O_CREAT, 0600);
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        return fd >= 0 && fcntl(fd, F_SETLK, &lock) == 0;
    });
}

// ---------------------------------------------------------------------------
// Value rules.

// An item is valid in its own sections only; its value by its rule.
TEST_F(CfgStore, ItemValueRules)
{
    enum Want { kValid, kInvalid, kNoItem };
    struct Case {
        const char* item;
        uint32_t section;
        std::string value;
        Want want;
    };
    const Case cases[] = {
        {"io_timeout", 100, "0", kInvalid},          {"io_timeout", 100, "1", kValid},
        {"io_timeout", 100, "2592000", kValid},      {"io_timeout", 100, "2592001", kInvalid},
        {"io_timeout", 100, "+5", kInvalid},         {"io_timeout", 100, "-1", kInvalid},
        {"io_timeout", 100, "5 ", kInvalid},         {"io_timeout", 100, " 5", kInvalid},
        {"io_timeout", 100, "", kInvalid},           {"io_timeout", 102, "30", kValid},
        // Nothing wraps: beyond 2^32-1 is out of range like any value above the maximum.
        {"io_timeout", 100, "4294967296", kInvalid}, {"workingmode", 100, "4294967296", kInvalid},
        {"io_latency_threshold", 100, "4294967296", kInvalid}, {"tod_time", 100, "4294967896", kInvalid},
        {"performance_record_startl", 100, "4294967296", kInvalid},
        {"performance_record_startl", 100, "18446744073709551616", kInvalid},
        {"workingmode", 100, "00000000000000000000001", kValid},
        {"workingmode", 100, "2", kInvalid},
        {"loadbalancemode", 101, "round-robin", kValid}, {"loadbalancemode", 101, "min-task", kValid},
        {"loadbalancemode", 101, "Round-Robin", kInvalid}, {"loadbalancemode", 101, "", kInvalid},
        {"tod_recover_time", 100, "1799", kInvalid}, {"tod_recover_time", 100, "1800", kValid},
        {"io_latency_threshold", 100, "0", kValid},  {"io_latency_threshold", 100, "120001", kInvalid},
        {"performance_record_starth", 100, "2147483647", kValid},
        {"performance_record_starth", 100, "2147483648", kInvalid},
        {"performance_record_startl", 100, "4294967295", kValid},
        {"ds_mode", 102, "balance", kValid},         {"ds_mode", 102, "", kValid},
        {"ds_primary", 100, std::string(63, 'x'), kValid}, {"ds_primary", 100, std::string(64, 'x'), kInvalid},
        {"xva_remote", 101, "anything", kValid},     {"manual_io_timeout", 100, "", kInvalid},
        {"apd_to_pdl_timeout", 100, "141", kInvalid}, {"sdd_threshold", 100, "99", kInvalid},
        {"xva_remote", 100, "", kNoItem},            {"tod_time", 101, "", kNoItem},
        {"tod_time", 103, "", kNoItem},              {"Io_timeout", 100, "", kNoItem},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.item << "@" << c.section << "=" << c.value);
        const UilCfgItemDef* def = UIL_CfgGetItemDef(c.item, c.section);
        ASSERT_EQ(def == nullptr, c.want == kNoItem);
        if (def != nullptr) {
            EXPECT_EQ(UIL_CfgCheckItemValue(c.value.c_str(), def), c.want == kValid);
        }
    }
    EXPECT_TRUE(INTF_UIL_CheckCfgValid("ioretry", "60"));
    EXPECT_FALSE(INTF_UIL_CheckCfgValid("ioretry", "61"));
    EXPECT_FALSE(INTF_UIL_CheckCfgValid("xva_remote", "x"));  // not a common item
    EXPECT_FALSE(INTF_UIL_CheckCfgValid(nullptr, "1"));
    EXPECT_FALSE(INTF_UIL_CheckCfgValid("ioretry", nullptr));
}

// Each item has a bit of its own (33 and 36 stay free), and every field of
// the full record is read from an item that exists.
TEST_F(CfgStore, ItemBitsAreUniqueAndFullConfigNamesExist)
{
    uint64_t seen = (uint64_t{1} << 33) | (uint64_t{1} << 36);
    for (const UilCfgItemDef& row : UIL_sastUserCfgItems) {
        EXPECT_EQ(row.ullItemBit & (row.ullItemBit - 1), 0u) << row.pszName;
        EXPECT_EQ(seen & row.ullItemBit, 0u) << row.pszName;
        seen |= row.ullItemBit;
    }
    std::set<size_t> offsets;
    for (const UilFullCfgItem& row : UIL_sastFullCfgItems) {
        EXPECT_NE(UIL_CfgGetItemDef(row.pszItem, 100), nullptr) << row.pszItem;
        EXPECT_TRUE(offsets.insert(row.uiOffset).second) << row.pszItem;
    }
}

// ---------------------------------------------------------------------------
// Opening.

struct BrokenCase {
    const char* name;
    std::optional<std::string> content;  // nullopt: no file
    uint32_t rc;
};

TEST_F(CfgStore, BrokenDocumentsGiveCodesAndNeverReplaceTheBackup)
{
    const BrokenCase cases[] = {
        {"missing", std::nullopt, UIL_RET_CFG_LOAD_FAIL},
        {"empty", "", UIL_RET_CFG_LOAD_FAIL},
        {"torn", "<?xml version=\"1.0\"?>\n<cvcfg><common><workingmode>1</work", UIL_RET_CFG_LOAD_FAIL},
        {"not xml", "workingmode=1\n", UIL_RET_CFG_LOAD_FAIL},
        {"wrong root", "<config><common/></config>", MPI_RET_FAIL},
    };
    for (const BrokenCase& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(bakPath(), kSmallDoc);
        fs::remove(cfgPath());
        if (c.content) {
            writeFile(cfgPath(), *c.content);
        }
        EXPECT_EQ(UIL_CfgOpenFile(false), c.rc);
        EXPECT_EQ(UIL_CfgOpenFile(true), c.rc);
        EXPECT_EQ(UIL_SetCommonConfig("ioretry", "5"), c.rc);
        EXPECT_EQ(readFile(bakPath()), kSmallDoc);
        EXPECT_EQ(fs::exists(cfgPath()), c.content.has_value());
        if (c.content) {
            EXPECT_EQ(readFile(cfgPath()), *c.content);
        }
        EXPECT_TRUE(driver().sent.empty());
        (void)UIL_CfgUnlockFile();
    }
}

TEST_F(CfgStore, WriteAccessLocksWithProcessIdAndBacksUp)
{
    ASSERT_EQ(UIL_CfgOpenFile(true), MPI_RET_SUCCESS);
    const std::string pid = std::to_string(getpid()) + std::string(1, '\0');
    EXPECT_TRUE(inOtherProcess([&] { return readFile(lockPath()) == pid; })) << "the lock file holds the process ID";
    struct stat st {};
    ASSERT_EQ(stat(lockPath().c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    ASSERT_EQ(stat(bakPath().c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_EQ(readFile(bakPath()), kSmallDoc);
    EXPECT_FALSE(lockFreeForOthers());
    EXPECT_EQ(UIL_CfgCloseFile(false), MPI_RET_SUCCESS);
    EXPECT_FALSE(lockFreeForOthers());  // closing without saving keeps the lock
    EXPECT_EQ(UIL_CfgUnlockFile(), MPI_RET_SUCCESS);
    EXPECT_TRUE(lockFreeForOthers());
}

// ---------------------------------------------------------------------------
// Setting.

struct LevelCase {
    const char* name;
    uint32_t (*set)(const char* key, const char* item, const char* value);
    uint32_t type;
    const char* key;
    const char* xpath;
};

uint32_t setCommon(const char*, const char* item, const char* value) { return UIL_SetCommonConfig(item, value); }

const LevelCase kLevels[] = {
    {"common", setCommon, 100, "", "/cvcfg/common/io_timeout"},
    {"array", UIL_SetArrayConfig, 101, "21000022A1B2C3D4E5F6", "/cvcfg/array/array21000022A1B2C3D4E5F6/io_timeout"},
    {"lun", UIL_SetLunConfig, 102, "6001405abcdef0123456789abcdef012",
     "/cvcfg/lun/lun6001405abcdef0123456789abcdef012/io_timeout"},
};

// At each level the driver hears of the change while the file still holds
// the old document, and a change it refuses never reaches the file.
TEST_F(CfgStore, DriverHearsBeforeTheFileHoldsTheChange)
{
    for (const LevelCase& c : kLevels) {
        SCOPED_TRACE(c.name);
        restart();
        ASSERT_EQ(c.set(c.key, "io_timeout", "77"), MPI_RET_SUCCESS);
        ASSERT_EQ(driver().sent.size(), 1u);
        const Sent& s = driver().sent[0];
        EXPECT_EQ(s.code, kNotifyCode);
        EXPECT_EQ(s.bytes, notifyBytes(c.type, c.key, {{"io_timeout", "77"}}));
        EXPECT_EQ(s.fileAtSend, kSmallDoc);
        EXPECT_EQ(valueAt(cfgPath(), c.xpath), "77");
        EXPECT_EQ(readFile(bakPath()), kSmallDoc);
        EXPECT_TRUE(lockFreeForOthers());

        restart();
        driver().resultByNr[70] = MPI_RET_IOCTL_FAIL;
        EXPECT_EQ(c.set(c.key, "io_timeout", "77"), MPI_RET_FAIL);
        EXPECT_EQ(driver().count(kNotifyCode), 1u);
        EXPECT_EQ(readFile(cfgPath()), kSmallDoc);
        // A refused change ends like any other: the lock is free again.
        EXPECT_TRUE(lockFreeForOthers());
    }
}

TEST_F(CfgStore, InvalidChangesAreRefusedBeforeTheDriver)
{
    struct Case {
        uint32_t (*set)(const char*, const char*, const char*);
        const char* key;
        const char* item;
        const char* value;
    };
    const Case cases[] = {
        {setCommon, "", "io_timeout", "0"},
        {setCommon, "", "loadbalancemode", "Round-Robin"},
        {setCommon, "", "xva_remote", "x"},  // array-only item
        {setCommon, "", "no_such_item", "1"},
        {UIL_SetArrayConfig, "SN1", "tod_time", "600"},  // common-only item
        {UIL_SetArrayConfig, "../common", "io_timeout", "5"},
        {UIL_SetLunConfig, "wwn]/x", "io_timeout", "5"},
        {UIL_SetLunConfig, "0123456789abcdef0123456789abcdef0", "io_timeout", "5"},  // 33 characters
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.set(c.key, c.item, c.value), MPI_RET_FAIL) << c.key << " " << c.item << "=" << c.value;
        EXPECT_EQ(readFile(cfgPath()), kSmallDoc);
        EXPECT_TRUE(lockFreeForOthers());
    }
    EXPECT_TRUE(driver().sent.empty());
}

TEST_F(CfgStore, EqualValueStillTellsTheDriverAndSaves)
{
    ASSERT_EQ(UIL_SetCommonConfig("loadbalancemode", "round-robin"), MPI_RET_SUCCESS);
    EXPECT_EQ(driver().count(kNotifyCode), 1u);
    EXPECT_NE(readFile(cfgPath()), kSmallDoc);  // rewritten, indented
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/loadbalancemode"), "round-robin");
    EXPECT_NE(traceText().find("Try to set the same cfg value round-robin to node /cvcfg/common/loadbalancemode"),
              std::string::npos);
}

TEST_F(CfgStore, TextValuesAreStoredLiterally)
{
    ASSERT_EQ(UIL_SetLunConfig("W1", "ds_mode", "a&amp;<b>"), MPI_RET_SUCCESS);
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/lun/lunW1/ds_mode"), "a&amp;<b>");
    char value[64];
    EXPECT_EQ(UIL_GetLunConfig("W1", "ds_mode", value, sizeof(value), true), MPI_RET_SUCCESS);
    EXPECT_STREQ(value, "a&amp;<b>");
}

TEST_F(CfgStore, FileOnlyArrayChangeSkipsTheDriver)
{
    ASSERT_EQ(UIL_SetArrayConfigFile("SN7", "xva_remote", "SN8"), MPI_RET_SUCCESS);
    EXPECT_TRUE(driver().sent.empty());
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/array/arraySN7/xva_remote"), "SN8");
}

TEST_F(CfgStore, PayloadFieldsAreCutToTheirWidths)
{
    const std::string instance(40, 'I');
    const std::string name(40, 'n');
    const std::string value(70, 'v');
    ASSERT_EQ(UIL_CfgNotifyItemToDriver(101, instance.c_str(), name.c_str(), value.c_str()), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_CfgDelFromDriver(102, instance.c_str(), name.c_str()), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_CfgDelFromDriver(101, "SN1", nullptr), MPI_RET_SUCCESS);
    ASSERT_EQ(driver().sent.size(), 3u);
    EXPECT_EQ(driver().sent[0].bytes, notifyBytes(101, std::string(32, 'I'), {{std::string(31, 'n'), std::string(63, 'v')}}));
    EXPECT_EQ(driver().sent[1].code, kDeleteCode);
    EXPECT_EQ(driver().sent[1].bytes, deleteBytes(102, std::string(32, 'I'), std::string(31, 'n')));
    EXPECT_EQ(driver().sent[2].bytes, deleteBytes(101, "SN1", ""));
}

// ---------------------------------------------------------------------------
// Deleting.

const char kLevelsDoc[] =
    "<cvcfg><common><io_timeout>100</io_timeout></common>"
    "<array><arraySN1><io_timeout>200</io_timeout><loadbalancemode>min-task</loadbalancemode></arraySN1></array>"
    "<lun><lunW1><io_timeout>300</io_timeout><luntrespass>0</luntrespass></lunW1></lun></cvcfg>";

// A file system that takes no more data: the save of every write fails
// from the first driver request of a change on, until the next request.
struct FullDisk {
    static void onSend(const Sent&)
    {
        static bool full = false;
        full = !full;
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = full ? 1 : limit.rlim_max;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk()
    {
        signal(SIGXFSZ, SIG_IGN);
        FakeDriver::get().onSend = onSend;
    }
};

// When the driver took a change that cannot be saved, it is given back what
// the file still holds (the previous value, or its absence), the change
// fails, the lock is free and the cause names the file.
TEST_F(CfgStore, UnsavedChangeIsGivenBackToTheDriver)
{
    struct Case {
        const char* name;
        std::function<uint32_t()> change;
        std::vector<uint8_t> givenBack;
    };
    UilOperLogPara rec{};
    const Case cases[] = {
        {"absent before", [] { return UIL_SetCommonConfig("io_timeout", "77"); }, deleteBytes(100, "", "io_timeout")},
        {"common value", [] { return UIL_SetCommonConfig("io_timeout", "77"); },
         notifyBytes(100, "", {{"io_timeout", "100"}})},
        {"array value", [] { return UIL_SetArrayConfig("SN1", "loadbalancemode", "round-robin"); },
         notifyBytes(101, "SN1", {{"loadbalancemode", "min-task"}})},
        {"lun item deleted", [&] { return INTF_UIL_DelLunConfig("CLI", 4, "W1", "luntrespass", &rec); },
         notifyBytes(102, "W1", {{"luntrespass", "0"}})},
        {"lun instance deleted", [&] { return INTF_UIL_DelLunConfig("CLI", 4, "W1", nullptr, &rec); },
         notifyBytes(102, "W1", {{"io_timeout", "300"}, {"luntrespass", "0"}})},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        restart();
        std::string doc = c.name == std::string("absent before") ? kSmallDoc : kLevelsDoc;
        writeFile(cfgPath(), doc);
        FullDisk full;
        EXPECT_EQ(c.change(), MPI_RET_FAIL);
        ASSERT_EQ(driver().sent.size(), 2u);
        EXPECT_EQ(driver().sent[1].bytes, c.givenBack);
        EXPECT_EQ(readFile(cfgPath()), doc);
        EXPECT_TRUE(lockFreeForOthers());
        std::string cause = INTF_UIL_LastFileError();
        EXPECT_EQ(cause.rfind(cfgPath() + ": File too large; the change was not kept", 0), 0u) << cause;
    }
    // The cause belongs to the change that failed: the next one clears it.
    restart();
    ASSERT_EQ(UIL_SetCommonConfig("io_timeout", "77"), MPI_RET_SUCCESS);
    EXPECT_STREQ(INTF_UIL_LastFileError(), "");
}

// A FIFO in place of the document or of its lock is refused at once (it
// would otherwise hang the change, holding the lock), and named.
TEST_F(CfgStore, OddFilesAreRefusedNotWaitedOn)
{
    struct Case {
        std::string path;
        uint32_t rc;
    };
    for (const Case& c : {Case{cfgPath(), UIL_RET_CFG_LOAD_FAIL}, Case{lockPath(), MPI_RET_FAIL}}) {
        SCOPED_TRACE(c.path);
        restart();
        fs::remove(c.path);
        ASSERT_EQ(mkfifo(c.path.c_str(), 0600), 0);
        bool done = inOtherProcess([&] {
            alarm(5);
            return UIL_SetCommonConfig("io_timeout", "77") == c.rc &&
                   std::string(INTF_UIL_LastFileError()) == c.path + ": not a regular file";
        });
        EXPECT_TRUE(done);
        fs::remove(c.path);
    }
}

TEST_F(CfgStore, Deleting)
{
    writeFile(cfgPath(), kLevelsDoc);
    UilOperLogPara rec{};
    ASSERT_EQ(INTF_UIL_DelLunConfig("CLI", 4, "W1", "io_timeout", &rec), MPI_RET_SUCCESS);
    EXPECT_EQ(rec.uiObjType, 102u);
    EXPECT_EQ(rec.uiObjId, 4u);
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/lun/lunW1/io_timeout"), std::nullopt);
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/lun/lunW1/luntrespass"), "0");
    ASSERT_EQ(INTF_UIL_DelArrayConfig("CLI", 1, "SN1", nullptr, &rec), MPI_RET_SUCCESS);
    EXPECT_TRUE(valuesAt(cfgPath(), "/cvcfg/array/arraySN1").empty());
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/io_timeout"), "100");
    ASSERT_EQ(driver().sent.size(), 2u);
    EXPECT_EQ(driver().sent[0].bytes, deleteBytes(102, "W1", "io_timeout"));
    EXPECT_EQ(driver().sent[0].fileAtSend, kLevelsDoc);
    EXPECT_EQ(driver().sent[1].bytes, deleteBytes(101, "SN1", ""));

    // What is not there: success, no request, the file and the lock as they
    // were, and a record of the object alone.
    restart();
    writeFile(cfgPath(), kLevelsDoc);
    std::memset(&rec, 0x5A, sizeof(rec));
    EXPECT_EQ(INTF_UIL_DelLunConfig("CLI", 9, "W1", "ioretry", &rec), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_DelLunConfig("CLI", 9, "W2", nullptr, &rec), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_DelArrayConfig("CLI", 3, "SN2", "io_timeout", &rec), MPI_RET_SUCCESS);
    EXPECT_TRUE(driver().sent.empty());
    EXPECT_EQ(readFile(cfgPath()), kLevelsDoc);
    EXPECT_TRUE(lockFreeForOthers());
    UilOperLogPara expected{};
    expected.uiObjType = 101;
    expected.uiObjId = 3;
    EXPECT_EQ(std::memcmp(&rec, &expected, sizeof(rec)), 0);

    restart();
    writeFile(cfgPath(), kLevelsDoc);
    driver().resultByNr[71] = MPI_RET_IOCTL_FAIL;
    EXPECT_EQ(INTF_UIL_DelLunConfig("CLI", 4, "W1", nullptr, &rec), MPI_RET_FAIL);
    EXPECT_EQ(readFile(cfgPath()), kLevelsDoc) << "a refused delete leaves the file";
    EXPECT_TRUE(lockFreeForOthers());
}

// ---------------------------------------------------------------------------
// Reading.

TEST_F(CfgStore, EffectiveValueFallsBackFromLunToArrayToCommon)
{
    writeFile(cfgPath(), kLevelsDoc);
    struct Case {
        const char* wwn;
        const char* sn;
        const char* item;
        const char* expected;
    };
    const Case cases[] = {
        {"W1", "SN1", "io_timeout", "300"},         {"W2", "SN1", "io_timeout", "200"},
        {"W2", "SN2", "io_timeout", "100"},         {"", nullptr, "io_timeout", "100"},
        {"W1", "SN1", "loadbalancemode", "min-task"}, {"W1", "SN1", "ioretry", ""},  // nowhere
        {"bad/wwn", "SN1", "io_timeout", "200"},
    };
    ASSERT_EQ(UIL_CfgOpenFile(false), MPI_RET_SUCCESS);
    for (const Case& c : cases) {
        char value[64] = "junk";
        EXPECT_EQ(UIL_GetOneOfFullConfig(c.wwn, c.sn, c.item, value, sizeof(value)), MPI_RET_SUCCESS) << c.wwn;
        EXPECT_STREQ(value, c.expected) << c.wwn << "/" << (c.sn ? c.sn : "-") << "/" << c.item;
    }
    char small[3];
    EXPECT_EQ(UIL_QueryConfig(102, "W1", "io_timeout", small, sizeof(small)), MPI_RET_FAIL);
    EXPECT_EQ(UIL_QueryConfig(102, "W1", "ioretry", small, sizeof(small)), UIL_RET_CFG_NOT_FOUND);
    EXPECT_EQ(UIL_GetArrayConfig("", "io_timeout", small, sizeof(small), false), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(UIL_GetLunConfig(nullptr, "io_timeout", small, sizeof(small), false), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(UIL_CfgCloseFile(false), MPI_RET_SUCCESS);

    EXPECT_TRUE(INTF_UIL_CfgValueCmp("W2", "SN1", "io_timeout", "200"));
    EXPECT_FALSE(INTF_UIL_CfgValueCmp("W1", "SN1", "io_timeout", "200"));
    EXPECT_FALSE(INTF_UIL_CfgValueCmp("W1", nullptr, "io_timeout", "300"));
    EXPECT_TRUE(driver().sent.empty());
}

TEST_F(CfgStore, FullConfigOfAnEmptyDocument)
{
    writeFile(cfgPath(), "<cvcfg/>");
    driver().resultByNr[93] = MPI_RET_IOCTL_FAIL;
    UilFullCfg cfg;
    std::memset(&cfg, 0x5A, sizeof(cfg));
    ASSERT_EQ(INTF_UIL_GetFullConfig("W1", nullptr, &cfg), MPI_RET_SUCCESS);
    UilFullCfg expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.ucLbAcrossCtrl = 1;
    expected.uiDsMode = 1;
    std::strcpy(expected.szDsPrimary, "Not configured");
    EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0);
    ASSERT_EQ(driver().count(kDsInfoCode), 1u);
    std::vector<uint8_t> query(28, 0);
    query[26] = 1;  // default flag
    EXPECT_EQ(driver().sent[0].bytes, query);
    EXPECT_EQ(readFile(cfgPath()), "<cvcfg/>");
    EXPECT_EQ(INTF_UIL_GetFullConfig(nullptr, "SN", &cfg), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(INTF_UIL_GetFullConfig("W1", "SN", nullptr), MPI_RET_INVALID_PARAM);
}

TEST_F(CfgStore, FullConfigConversions)
{
    writeFile(cfgPath(),
              "<cvcfg><common><workingmode>1</workingmode><loadbalancemode>min-queue-depth</loadbalancemode>"
              "<tod_time>900</tod_time><ds_mode>balance</ds_mode><apd_to_pdl_mode>1</apd_to_pdl_mode>"
              "<performance_record>1</performance_record></common>"
              "<array><arraySN1><ds_primary>short</ds_primary><ds_split_size>4096</ds_split_size></arraySN1></array>"
              "<lun><lunW1><ds_primary>2100112233445566778899</ds_primary><ds_mode>other</ds_mode>"
              "</lunW1></lun></cvcfg>");
    driver().defaultPrimarySn = "ABCDEFGHIJ0123456789";
    UilFullCfg cfg{};
    ASSERT_EQ(INTF_UIL_GetFullConfig("W9", "SN1", &cfg), MPI_RET_SUCCESS);
    EXPECT_EQ(cfg.ucLbAcrossCtrl, 0);
    EXPECT_STREQ(cfg.szLbPolicy, "min-queue-depth");
    EXPECT_EQ(cfg.uiTodTime, 900u);
    EXPECT_EQ(cfg.uiDsMode, 0u);
    EXPECT_EQ(cfg.ucApdToPdlMode, 1);
    EXPECT_EQ(cfg.uiPerformanceRecord, 1u);
    EXPECT_EQ(cfg.uiDsSplitSize, 4096u);
    EXPECT_STREQ(cfg.szDsPrimary, "ABCDEFGHIJ0123456789");  // short value: the driver's default

    driver().defaultPrimarySn = "SHORT";
    ASSERT_EQ(INTF_UIL_GetFullConfig("W8", "SN1", &cfg), MPI_RET_SUCCESS);
    EXPECT_STREQ(cfg.szDsPrimary, "Not configured");

    ASSERT_EQ(INTF_UIL_GetFullConfig("W1", "SN1", &cfg), MPI_RET_SUCCESS);
    EXPECT_STREQ(cfg.szDsPrimary, "2100112233445566778899");  // 20 or more characters: as it is
    EXPECT_EQ(cfg.uiDsMode, 1u);
}

// A stored value is held to the rules of a typed one: a damaged value is
// reported (1025), never read as 0 or as what atoi makes of it.
TEST_F(CfgStore, InvalidStoredValuesAreReportedNotConverted)
{
    const struct {
        const char* doc;
        const char* item;
    } cases[] = {
        {"<common><io_latency_threshold>twenty</io_latency_threshold></common>", "io_latency_threshold"},
        {"<common><io_latency_threshold></io_latency_threshold></common>", "io_latency_threshold"},
        {"<common><io_latency_threshold>-5</io_latency_threshold></common>", "io_latency_threshold"},
        {"<common><io_latency_threshold>4294967316</io_latency_threshold></common>", "io_latency_threshold"},
        {"<common><tod_time>30</tod_time></common>", "tod_time"},
        {"<lun><lunW1><loadbalancemode>round-robin-extended</loadbalancemode></lunW1></lun>", "loadbalancemode"},
        {"<array><arraySN1><workingmode>2</workingmode></arraySN1></array>", "workingmode"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.doc);
        writeFile(cfgPath(), std::string("<cvcfg>") + c.doc + "</cvcfg>");
        char value[UIL_CFG_ITEM_VALUE_LEN] = "unset";
        ASSERT_EQ(UIL_CfgOpenFile(false), MPI_RET_SUCCESS);
        EXPECT_EQ(UIL_GetOneOfFullConfig("W1", "SN1", c.item, value, sizeof(value)), UIL_RET_CFG_INVALID_ITEM);
        (void)UIL_CfgCloseFile(false);
        UilFullCfg cfg{};
        uint32_t want = UIL_RET_CFG_INVALID_ITEM;
        if (c.item == std::string("io_latency_threshold")) {
            want = MPI_RET_SUCCESS;  // not a field of the record
        }
        EXPECT_EQ(INTF_UIL_GetFullConfig("W1", "SN1", &cfg), want);
    }
    // An item that does not belong to a level was never stored there.
    writeFile(cfgPath(), "<cvcfg><lun><lunW1><tod_time>90</tod_time></lunW1></lun></cvcfg>");
    char value[UIL_CFG_ITEM_VALUE_LEN] = "unset";
    EXPECT_EQ(UIL_GetLunConfig("W1", "tod_time", value, sizeof(value), true), UIL_RET_CFG_NOT_FOUND);
}

// A read access that fails half-way rewrites the file, but never over a
// newer one saved in the meantime by another writer.
TEST_F(CfgStore, FailedReadNeverOverwritesANewerFile)
{
    writeFile(cfgPath(), "<cvcfg><common><performance_record>" + std::string(70, '1') +
                             "</performance_record></common></cvcfg>");
    driver().onSend = [](const Sent&) { writeFile(cfgPath(), kSmallDoc); };  // during the read
    UilFullCfg cfg{};
    EXPECT_EQ(INTF_UIL_GetFullConfig("W1", "SN1", &cfg), MPI_RET_FAIL);
    EXPECT_EQ(readFile(cfgPath()), kSmallDoc);
    EXPECT_TRUE(lockFreeForOthers());
}

// ---------------------------------------------------------------------------
// Start-up parse.

TEST_F(CfgStore, ParseCleansTheDocumentAndPushesEachSection)
{
    writeFile(cfgPath(),
              "<cvcfg>"
              "<common><!-- note --><ioretry>5</ioretry><bogus>1</bogus><ioretry>6</ioretry>"
              "<io_timeout>0</io_timeout><xva_remote>x</xva_remote><ds_mode/><loadbalancemode>min-task</loadbalancemode>"
              "</common>"
              "<common><ioretry>9</ioretry></common>"
              "<array><arrays><io_timeout>5</io_timeout></arrays><foo/><arraySN1><xva_remote>SN2</xva_remote>"
              "<tod_time>600</tod_time></arraySN1><arraySN3/></array>"
              "<lun><lunW1><luntrespass>0</luntrespass></lunW1>text<lunW2><io_timeout>x</io_timeout></lunW2></lun>"
              "</cvcfg>");
    ASSERT_EQ(INTF_UIL_CfgParse(), MPI_RET_SUCCESS);

    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/common").size(), 1u);
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/common/*").size(), 3u);
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/common/ioretry"), std::vector<std::string>{"5"});
    EXPECT_TRUE(valuesAt(cfgPath(), "//comment()").empty());
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/array/*").size(), 3u);
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/array/arraySN1/xva_remote"), "SN2");
    EXPECT_TRUE(valuesAt(cfgPath(), "/cvcfg/array/arraySN1/tod_time").empty());
    EXPECT_TRUE(valuesAt(cfgPath(), "/cvcfg/array/foo").empty());
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/lun/text()").size(), 0u);
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/lun/lunW2/*").size(), 0u);
    EXPECT_TRUE(parsesAsConfig(bakPath()));

    // Empty sections and instances are not sent.
    std::vector<std::vector<uint8_t>> expected = {
        notifyBytes(100, "", {{"ioretry", "5"}, {"ds_mode", ""}, {"loadbalancemode", "min-task"}}),
        notifyBytes(101, "s", {{"io_timeout", "5"}}),
        notifyBytes(101, "SN1", {{"xva_remote", "SN2"}}),
        notifyBytes(102, "W1", {{"luntrespass", "0"}}),
    };
    ASSERT_EQ(driver().sent.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(driver().sent[i].code, kNotifyCode);
        EXPECT_EQ(driver().sent[i].bytes, expected[i]) << "request " << i;
    }
}

TEST_F(CfgStore, ParseKeepsAtMost128Instances)
{
    std::string doc = "<cvcfg><array><!-- counts too -->";
    for (int i = 1; i <= 130; ++i) {
        doc += "<arrayA" + std::to_string(i) + "><io_timeout>" + std::to_string(i) + "</io_timeout></arrayA" +
               std::to_string(i) + ">";
    }
    writeFile(cfgPath(), doc + "</array></cvcfg>");
    ASSERT_EQ(INTF_UIL_CfgParse(), MPI_RET_SUCCESS);
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/array/*").size(), 127u);
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/array/arrayA127/io_timeout"), "127");
    EXPECT_TRUE(valuesAt(cfgPath(), "/cvcfg/array/arrayA128").empty());
    EXPECT_EQ(driver().count(kNotifyCode), 127u);
}

TEST_F(CfgStore, ParseAbortsOnARefusalButSavesWhatItCleaned)
{
    writeFile(cfgPath(), "<cvcfg><common><ioretry>5</ioretry><bogus/></common><common/>"
                         "<lun><lunW1><luntrespass>0</luntrespass></lunW1></lun></cvcfg>");
    driver().resultByNr[70] = MPI_RET_IOCTL_FAIL;
    EXPECT_EQ(INTF_UIL_CfgParse(), MPI_RET_IOCTL_FAIL);
    EXPECT_EQ(driver().count(kNotifyCode), 1u);  // common only
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/common").size(), 1u);
    EXPECT_TRUE(valuesAt(cfgPath(), "/cvcfg/common/bogus").empty());
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/lun/lunW1/luntrespass"), "0");
    EXPECT_TRUE(lockFreeForOthers());
}

// ---------------------------------------------------------------------------
// Upgrade merge.

TEST_F(CfgStore, MergeAddsMissingCommonItemsWithDefaults)
{
    writeFile(cfgPath(), "<cvcfg><common><ioretry>7</ioretry></common></cvcfg>");
    ASSERT_EQ(INTF_UIL_MergeUserCfgXml(), MPI_RET_SUCCESS);
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/common/*").size(), 40u);
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/ioretry"), "7");
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/hld_time"), "300");
    EXPECT_EQ(valueAt(cfgPath(), "/cvcfg/common/xva_remote"), "");
    EXPECT_TRUE(driver().sent.empty());

    ASSERT_EQ(INTF_UIL_CfgParse(), MPI_RET_SUCCESS);  // what is invalid for common goes
    EXPECT_EQ(valuesAt(cfgPath(), "/cvcfg/common/*").size(), 38u);
    EXPECT_TRUE(valuesAt(cfgPath(), "/cvcfg/common/xva_remote").empty());
    EXPECT_TRUE(valuesAt(cfgPath(), "/cvcfg/common/manual_io_timeout").empty());

    writeFile(cfgPath(), "<cvcfg><array/></cvcfg>");
    EXPECT_EQ(INTF_UIL_MergeUserCfgXml(), MPI_RET_FAIL);
    EXPECT_TRUE(parsesAsConfig(cfgPath()));
}

// ---------------------------------------------------------------------------
// File safety.

TEST_F(CfgStore, ReplacingRefusesContentThatDoesNotReadBack)
{
    const std::string target = sandbox() + "/etc/replace.xml";
    writeFile(target, kSmallDoc);
    EXPECT_FALSE(UIL_CfgReplaceFile(target.c_str(), "<cvcfg><common>", 0600));
    EXPECT_FALSE(UIL_CfgReplaceFile(target.c_str(), "<other/>", 0600));
    EXPECT_EQ(readFile(target), kSmallDoc);
    EXPECT_TRUE(UIL_CfgReplaceFile(target.c_str(), "<cvcfg/>", 0640));
    EXPECT_EQ(readFile(target), "<cvcfg/>");
    for (const auto& entry : fs::directory_iterator(sandbox() + "/etc")) {
        EXPECT_EQ(entry.path().filename().string().find(".tmp."), std::string::npos) << entry.path();
    }
    fs::remove(target);
}

TEST_F(CfgStore, WriteAccessRemovesTempsOfAKilledWriter)
{
    const std::string stale = cfgPath() + ".tmp.Ab12Cd";
    const std::string staleBak = bakPath() + ".tmp.Zz9999";
    const std::string other = cfgPath() + ".tmp.keepme-not-ours";
    writeFile(stale, "<cvcfg><com");
    writeFile(staleBak, "");
    writeFile(other, "x");
    ASSERT_EQ(UIL_SetCommonConfig("ioretry", "3"), MPI_RET_SUCCESS);
    EXPECT_FALSE(fs::exists(stale));
    EXPECT_FALSE(fs::exists(staleBak));
    EXPECT_TRUE(fs::exists(other));
    fs::remove(other);
}

}  // namespace
