// The driver parameter file: the value check table, the line filter,
// reading and rewriting common keys, the empty-file restore, the vendor
// rules with their driver notification, refusals that leave the files
// byte-identical, and writers killed in the middle of a save.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/test_files.h"
#include "uia/uia_request.h"
#include "uil/uil_drvcfg.h"

namespace fs = std::filesystem;

namespace {

std::string etc() { return testfiles::root() + "/etc/"; }
std::string conf() { return etc() + "cv.conf"; }
std::string bak() { return etc() + "cv.conf.bak"; }

void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

const std::string kRuleA =
    "ruler_name = \"Ruler_CORVANE_Dorado\", vendor_id = \"CORVANE\", product_id = \"Dorado\", driver = \"alua\";\n";
const std::string kRuleB =
    "ruler_name = \"Ruler_HPE_MSA 2040\", vendor_id = \"HPE\", product_id = \"MSA 2040\", driver = \"dft\";\n";
const std::string kHead =
    "# Corvane multipath driver parameters\n"
    "version = \"2\";\n"
    "max_busy = \"999\";\n"
    "max_busy_retries = \"30\"; # retries on busy\n"
    "busy_retry_delay = \"10\"\n"
    "default_loadbalance = \"round-robin\";\n"
    "timezone_offset = \"-60\";\n"
    "\n";
const std::string kVendors = "[vendors]\n" + kRuleA + kRuleB;
const std::string kTail = "\n# end of rules\n";
const std::string kConf = kHead + kVendors + kTail;

// What the driver was sent.
struct Sent {
    uint32_t request;
    uint32_t subCommand;
    std::string vendor, product, driver;
};
std::vector<Sent> g_sent;
uint32_t g_driverAnswer = MPI_RET_SUCCESS;

std::string field(const uint8_t* p, size_t off, size_t len)
{
    return std::string(reinterpret_cast<const char*>(p + off), strnlen(reinterpret_cast<const char*>(p + off), len));
}

uint32_t recordSend(uint32_t request, void* payload, uint32_t size)
{
    EXPECT_EQ(size, uia_req::CommonSet.size);
    const auto* p = static_cast<const uint8_t*>(payload);
    uint32_t sub = 0;
    std::memcpy(&sub, p, sizeof(sub));
    g_sent.push_back({request, sub, field(p, UIL_VENDOR_NOTIFY_VENDOR, 9), field(p, UIL_VENDOR_NOTIFY_PRODUCT, 17),
                      field(p, UIL_VENDOR_NOTIFY_DRIVER, 65)});
    return g_driverAnswer;
}

class DrvCfg : public testing::Test {
protected:
    void SetUp() override
    {
        fs::remove_all(etc());
        fs::create_directories(etc());
        writeFile(conf(), kConf);
        g_sent.clear();
        g_driverAnswer = MPI_RET_SUCCESS;
        (void)UIL_DrvCfgSetDriverSender(recordSend);
    }
    void TearDown() override { (void)UIL_DrvCfgSetDriverSender(nullptr); }

    static std::optional<std::string> common(const char* key)
    {
        char value[64] = {};
        if (INTF_UIL_GetConfigCommonKey(key, value, sizeof(value)) != MPI_RET_SUCCESS) {
            return std::nullopt;
        }
        return std::string(value);
    }
    static std::vector<std::string> rules()
    {
        MPI_ListNode head;
        uint32_t count = 0;
        std::vector<std::string> out;
        if (INTF_UIL_StartShowVendor(&head, &count) != MPI_RET_SUCCESS) {
            return {"(failed)"};
        }
        for (MPI_ListNode* n = head.next; n != &head; n = n->next) {
            const UilVendorRule* r = MPI_ListEntry<UilVendorRule>(n);
            out.push_back(std::string(r->vendor) + "|" + r->product + "|" + r->driver);
        }
        EXPECT_EQ(count, out.size());
        INTF_UIL_EndShowVendor(&head);
        return out;
    }
};

// ---------------------------------------------------------------------------
// The tables and the value check.

TEST(DrvCfgParams, ValueCheck)
{
    static const std::string kKey64(64, 'k');
    static const std::string kKey65(65, 'k');
    struct Case {
        const char* key;
        const char* value;
        uint32_t valid;
    };
    const Case cases[] = {
        // numbers: range, signs, digits only
        {"busy_retry_delay", "1", 1}, {"busy_retry_delay", "300", 1}, {"busy_retry_delay", "0", 0},
        {"busy_retry_delay", "301", 0}, {"busy_retry_delay", "3x", 0}, {"busy_retry_delay", "", 0},
        {"busy_retry_delay", "+5", 0}, {"busy_retry_delay", " 5", 0}, {"version", "99999999999", 0},
        {"timezone_offset", "-1440", 1}, {"timezone_offset", "1440", 1}, {"timezone_offset", "1441", 0},
        {"timezone_offset", "-1441", 0}, {"timezone_offset", "-", 0}, {"disk_timeout", "0", 1},
        {"timezone_offset", "-2147483648", 0}, {"max_qdepth_per_disk", "8192", 1}, {"max_qdepth_per_disk", "15", 0},
        // texts: the prefix rule
        {"default_loadbalance", "min", 1}, {"default_loadbalance", "round-robin", 1},
        {"default_loadbalance", "Round-Robin", 0}, {"default_loadbalance", "min-task", 1},
        {"default_loadbalance", "min-task-x", 0}, {"default_loadbalance", "", 1},
        {"default_failback", "man", 1}, {"default_failover", "auto ", 0}, {"cluster_support", "en", 1},
        // lengths
        {"vlun_vendor_id", "ABCDEFGH", 1}, {"vlun_vendor_id", "ABCDEFGHI", 0}, {"vlun_product_id", "0123456789abcdef", 1},
        {"vlun_product_id", "0123456789abcdefg", 0}, {"vlun_revision_id", "12345", 0}, {"log_disk", "anything", 1},
        {"pr_key", kKey64.c_str(), 1}, {"pr_key", kKey65.c_str(), 0},
        // the inconsistent rows, as they stand
        {"non_vlun_cmd_stack_size", "120", 0}, {"non_vlun_cmd_stack_size", "128", 1},
        {"vlun_cmd_stack_size", "120", 0}, {"lb_controller", "off", 0}, {"lb_controller", "1", 1},
        {"lun_trespass", "on", 1}, {"lun_trespass", "of", 1}, {"lun_trespass", "x", 0},
    };
    for (const Case& c : cases) {
        const UilParamDef* def = INTF_UIL_GetParam(c.key);
        ASSERT_NE(def, nullptr) << c.key;
        EXPECT_EQ(INTF_UIL_IsParamValueValid(def, c.value), c.valid) << c.key << "=\"" << c.value << "\"";
    }
    EXPECT_EQ(INTF_UIL_IsParamValueValid(nullptr, "1"), 0u);
    EXPECT_EQ(INTF_UIL_IsParamValueValid(INTF_UIL_GetParam("version"), nullptr), 0u);
    EXPECT_EQ(INTF_UIL_GetParam("Version"), nullptr);
    EXPECT_EQ(INTF_UIL_GetParam("ruler_name"), nullptr);
    EXPECT_NE(UIL_FindVendorParam("ruler_name"), nullptr);

    // Number-or-text rows decide per value.
    UilParamDef either = *INTF_UIL_GetParam("lb_controller");
    either.type = UIL_PARAM_NUMBER_OR_TEXT;
    either.minimum = 5;
    either.maximum = 9;
    EXPECT_EQ(INTF_UIL_IsParamValueValid(&either, "7"), 1u);
    EXPECT_EQ(INTF_UIL_IsParamValueValid(&either, "1"), 0u);  // a number, out of range
    either.type = 124;
    EXPECT_EQ(INTF_UIL_IsParamValueValid(&either, "1"), 0u);
}

TEST(DrvCfgParams, DefaultsAsText)
{
    struct Case {
        const char* key;
        uint32_t rc;
        const char* text;
        uint32_t passesOwnCheck;
    };
    const Case cases[] = {
        {"max_qdepth_per_disk", MPI_RET_SUCCESS, "1024", 1}, {"timezone_offset", MPI_RET_SUCCESS, "0", 1},
        {"default_loadbalance", MPI_RET_SUCCESS, "round-robin", 1}, {"lun_trespass", MPI_RET_SUCCESS, "on", 1},
        {"non_vlun_cmd_stack_size", MPI_RET_SUCCESS, "120", 0}, {"lb_controller", MPI_RET_SUCCESS, "off", 0},
        {"pr_key", MPI_RET_FAIL, "", 0},
    };
    for (const Case& c : cases) {
        char text[16] = {};
        EXPECT_EQ(INTF_UIL_GetConfigCommonKeyDefault(c.key, text, sizeof(text)), c.rc) << c.key;
        EXPECT_STREQ(text, c.text) << c.key;
        if (c.rc == MPI_RET_SUCCESS) {
            EXPECT_EQ(INTF_UIL_IsParamValueValid(INTF_UIL_GetParam(c.key), text), c.passesOwnCheck) << c.key;
        }
    }
    char small[4];
    EXPECT_EQ(INTF_UIL_GetConfigCommonKeyDefault("default_loadbalance", small, sizeof(small)), MPI_RET_BUFFER_SMALL);
    char vendorDefault[20] = {};
    ASSERT_EQ(UIL_GetParamDefaultValue(UIL_FindVendorParam("product_id"), vendorDefault, sizeof(vendorDefault)),
              MPI_RET_SUCCESS);
    EXPECT_STREQ(vendorDefault, "VIRTUAL-DISK");
}

TEST(DrvCfgParams, LineFilterInBothModes)
{
    struct Case {
        std::string line;
        const char* mode0;
        const char* mode1;
    };
    const Case cases[] = {
        {"max_busy_retries = \"30\"; # retries\n", "max_busy_retries=30", "max_busy_retries = \"30\" "},
        {"\tkey\t=\r\"a b\";;\n", "key=ab", "key=\"a b\""},
        {"# only a comment", "", ""},
        {"a\x7f" "b\x01" "c", "abc", "abc"},
        {"caf\xc3\xa9 = \"x\"", "caf\xc3\xa9=x", "caf\xc3\xa9 = \"x\""},
    };
    for (const Case& c : cases) {
        std::string zero = c.line;
        std::string one = c.line;
        EXPECT_EQ(UIL_CfgLineFilter(zero.data(), 0), MPI_RET_SUCCESS);
        EXPECT_EQ(UIL_CfgLineFilter(one.data(), 1), MPI_RET_SUCCESS);
        EXPECT_STREQ(zero.c_str(), c.mode0) << c.line;
        EXPECT_STREQ(one.c_str(), c.mode1) << c.line;
    }
}

// ---------------------------------------------------------------------------
// Common keys.

TEST_F(DrvCfg, ReadingACommonKey)
{
    EXPECT_EQ(common("version"), "2");
    // "max_busy" is a prefix of the key; its value is out of range and passed over.
    EXPECT_EQ(common("max_busy_retries"), "30");
    EXPECT_EQ(common("busy_retry_delay"), "10");  // no ";" needed
    EXPECT_EQ(common("timezone_offset"), "-60");
    EXPECT_EQ(common("ping_delay"), std::nullopt);  // no line
    char value[8];
    EXPECT_EQ(INTF_UIL_GetConfigCommonKey("no_such_key", value, sizeof(value)), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(INTF_UIL_GetConfigCommonKey("ping_delay", value, sizeof(value)), MPI_RET_FAIL);
    char cut[5];
    ASSERT_EQ(INTF_UIL_GetConfigCommonKey("default_loadbalance", cut, sizeof(cut)), MPI_RET_SUCCESS);
    EXPECT_STREQ(cut, "roun");
}

TEST_F(DrvCfg, RewritingACommonKeyKeepsEveryOtherByte)
{
    ASSERT_EQ(INTF_UIL_SetConfigCommonKey("max_busy_retries", "50"), MPI_RET_SUCCESS);
    std::string expected = kConf;
    // Both lines whose key is a prefix of the key are rewritten; the comment survives.
    expected.replace(expected.find("max_busy = \"999\";\n"), 18, "max_busy_retries = \"50\";\n");
    expected.replace(expected.find("max_busy_retries = \"30\"; # retries on busy"), 42,
                     "max_busy_retries = \"50\"; # retries on busy");
    EXPECT_EQ(testfiles::text(conf()), expected);
    EXPECT_EQ(testfiles::text(bak()), kConf);

    // A line without ";" gets one; "default" restores the default.
    ASSERT_EQ(INTF_UIL_SetCommonCfg("busy_retry_delay", "default"), MPI_RET_SUCCESS);
    EXPECT_NE(testfiles::text(conf()).find("\nbusy_retry_delay = \"10\";\ndefault_loadbalance"), std::string::npos);
    EXPECT_EQ(testfiles::text(bak()), expected);
}

TEST_F(DrvCfg, RefusedChangesLeaveBothFilesAsTheyWere)
{
    writeFile(bak(), "old backup\n");
    struct Case {
        const char* key;
        const char* value;  // nullptr: restore the default
        uint32_t rc;
    };
    const Case cases[] = {
        {"busy_retry_delay", "301", MPI_RET_INVALID_PARAM},
        {"default_loadbalance", "fastest", MPI_RET_INVALID_PARAM},
        {"log_disk", "a\"b", MPI_RET_INVALID_PARAM},
        {"log_disk", "a;b", MPI_RET_INVALID_PARAM},
        {"log_disk", "a#b", MPI_RET_INVALID_PARAM},
        {"log_disk", "a\nb", MPI_RET_INVALID_PARAM},
        {"no_such_key", "1", MPI_RET_INVALID_PARAM},
        {"ping_delay", "20", UIL_RET_DRVCFG_NO_KEY},
        {"non_vlun_cmd_stack_size", nullptr, MPI_RET_INVALID_PARAM},  // its default fails its own range
        {"pr_key", nullptr, MPI_RET_FAIL},                             // no default text
    };
    for (const Case& c : cases) {
        uint32_t rc = c.value != nullptr ? INTF_UIL_SetCommonCfg(c.key, c.value) : INTF_UIL_SetConfigCommonKeyDefault(c.key);
        EXPECT_EQ(rc, c.rc) << c.key;
        EXPECT_EQ(testfiles::text(conf()), kConf) << c.key;
        EXPECT_EQ(testfiles::text(bak()), "old backup\n") << c.key;
    }
}

TEST_F(DrvCfg, MatchAndModifyOneLine)
{
    const UilParamDef* def = INTF_UIL_GetParam("max_busy_retries");
    struct Case {
        std::string line;
        uint32_t matched;
        const char* output;
    };
    const Case cases[] = {
        {"max_busy_retries = \"30\"; # keep", 1, "max_busy_retries = \"50\"; # keep\n"},
        {"max_busy_retries=30", 1, "max_busy_retries = \"50\";\n"},
        {"  max_busy_retries = \"30\";;x", 1, "max_busy_retries = \"50\";;x\n"},
        {"max = \"1\";", 1, "max_busy_retries = \"50\";\n"},
        {"max_busy_retries_x = \"30\";", 0, ""},
        {"# max_busy_retries = \"30\";", 0, ""},
        {"= \"30\";", 0, ""},
        {"busy_retry_delay = \"10\";", 0, ""},
        {"max_busy_retries = \"" + std::string(490, '3') + "\";", 0, ""},  // 512 characters
    };
    for (const Case& c : cases) {
        std::string out;
        EXPECT_EQ(UIL_MatchAndModifyCommonParam(def, "50", c.line.c_str(), &out), c.matched) << c.line;
        EXPECT_EQ(out, c.output) << c.line;
    }
}

TEST_F(DrvCfg, AnEmptyFileIsRestoredFromTheBackupFirst)
{
    std::string saved = kHead + kVendors;
    writeFile(conf(), "");
    writeFile(bak(), saved);
    EXPECT_EQ(UIL_IsNeedCopyBakFileToSourceFile(conf().c_str(), bak().c_str()), 1u);
    ASSERT_EQ(INTF_UIL_SetConfigCommonKey("version", "3"), MPI_RET_SUCCESS);
    std::string expected = saved;
    expected.replace(expected.find("version = \"2\";"), 14, "version = \"3\";");
    EXPECT_EQ(testfiles::text(conf()), expected);
    EXPECT_EQ(testfiles::text(bak()), saved);

    // The same before a vendor rule is added.
    writeFile(conf(), "");
    writeFile(bak(), saved);
    ASSERT_EQ(INTF_UIL_AddVendor("NEW", "Box", nullptr), MPI_RET_SUCCESS);
    EXPECT_EQ(testfiles::text(bak()), saved);
    EXPECT_EQ(rules().size(), 3u);

    struct Case {
        const char* file;  // nullptr: missing
        const char* backup;
        uint32_t need;
    };
    for (const Case& c : {Case{"", "", 0}, Case{"x", "y", 0}, Case{"x", "", 0}, Case{"", nullptr, 0},
                          Case{nullptr, "y", 0}}) {
        fs::remove(conf());
        fs::remove(bak());
        if (c.file != nullptr) {
            writeFile(conf(), c.file);
        }
        if (c.backup != nullptr) {
            writeFile(bak(), c.backup);
        }
        EXPECT_EQ(UIL_IsNeedCopyBakFileToSourceFile(conf().c_str(), bak().c_str()), c.need);
    }
}

TEST_F(DrvCfg, MissingOrUnreadableFileIsRefusedAndNothingIsCreated)
{
    auto allRefused = [](uint32_t rc) {
        char value[16];
        MPI_ListNode head;
        uint32_t count = 0;
        EXPECT_EQ(INTF_UIL_GetConfigCommonKey("version", value, sizeof(value)), rc);
        EXPECT_EQ(INTF_UIL_SetConfigCommonKey("version", "3"), rc);
        EXPECT_EQ(INTF_UIL_AddVendor("NEW", "Box", "dft"), rc);
        EXPECT_EQ(INTF_UIL_DelVendor("HPE", "MSA 2040"), rc);
        EXPECT_EQ(INTF_UIL_StartShowVendor(&head, &count), rc);
        EXPECT_EQ(INTF_UIL_GetKernelDrivername("HPE", "MSA 2040", value, sizeof(value)), rc);
        EXPECT_TRUE(g_sent.empty());
    };
    fs::remove(conf());
    allRefused(UIL_RET_DRVCFG_NO_FILE);
    EXPECT_FALSE(fs::exists(conf()));
    EXPECT_FALSE(fs::exists(bak()));

    // Neither a FIFO (which would block a reader) nor a directory is read.
    ASSERT_EQ(mkfifo(conf().c_str(), 0600), 0);
    allRefused(UIL_RET_DRVCFG_NO_FILE);
    EXPECT_TRUE(fs::is_fifo(conf()));
    fs::remove(conf());
    fs::create_directory(conf());
    allRefused(UIL_RET_DRVCFG_NO_FILE);
    EXPECT_TRUE(fs::is_empty(conf()));
    EXPECT_FALSE(fs::exists(bak()));
}

// ---------------------------------------------------------------------------
// Vendor rules.

TEST_F(DrvCfg, AddingARuleAfterTheExistingOnes)
{
    ASSERT_EQ(INTF_UIL_AddVendor("ACME", "Box Q", nullptr), MPI_RET_SUCCESS);
    const std::string added =
        "ruler_name = \"Ruler_ACME_Box Q\", vendor_id = \"ACME\", product_id = \"Box Q\", driver = \"dft\";\n";
    EXPECT_EQ(testfiles::text(conf()), kHead + kVendors + added + kTail);
    EXPECT_EQ(testfiles::text(bak()), kConf);
    ASSERT_EQ(g_sent.size(), 1u);
    EXPECT_EQ(g_sent[0].request, 0x82604D32u);
    EXPECT_EQ(g_sent[0].subCommand, UIL_SETCMD_ADD_VENDOR);
    EXPECT_EQ(g_sent[0].vendor, "ACME");
    EXPECT_EQ(g_sent[0].product, "Box Q");
    EXPECT_EQ(g_sent[0].driver, "dft");
    EXPECT_EQ(rules(), (std::vector<std::string>{"CORVANE|Dorado|alua", "HPE|MSA 2040|dft", "ACME|Box Q|dft"}));
    char driver[8] = {};
    EXPECT_EQ(INTF_UIL_GetKernelDrivername("CORVANE", "Dorado", driver, sizeof(driver)), MPI_RET_SUCCESS);
    EXPECT_STREQ(driver, "alua");
    EXPECT_EQ(INTF_UIL_GetKernelDrivername("CORVANE", "Box", driver, sizeof(driver)), UIL_RET_VENDOR_NOT_EXIST);

    // Exists already: refused, nothing written, the driver not told.
    std::string before = testfiles::text(conf());
    EXPECT_EQ(INTF_UIL_AddVendor("ACME", "Box Q", "alua"), UIL_RET_VENDOR_EXIST);
    EXPECT_EQ(INTF_UIL_AddVendor("HPE", "MSA 2040", nullptr), UIL_RET_VENDOR_EXIST);
    EXPECT_EQ(testfiles::text(conf()), before);
    EXPECT_EQ(testfiles::text(bak()), kConf);
    EXPECT_EQ(g_sent.size(), 1u);
    // Case matters.
    EXPECT_EQ(INTF_UIL_AddVendor("acme", "Box Q", "alua"), MPI_RET_SUCCESS);
}

TEST_F(DrvCfg, WhereANewRuleGoes)
{
    const std::string rule =
        "ruler_name = \"Ruler_N_P\", vendor_id = \"N\", product_id = \"P\", driver = \"x\";\n";
    struct Case {
        std::string file;
        std::string expected;
    };
    const Case cases[] = {
        {kHead + "[vendors]\n", kHead + "[vendors]\n" + rule},
        {kHead + "[vendors] # rules\n" + kRuleA + "[other]\nk = \"v\";\n",
         kHead + "[vendors] # rules\n" + kRuleA + rule + "[other]\nk = \"v\";\n"},
        {kHead + "[vendors]\n" + kRuleA.substr(0, kRuleA.size() - 1), kHead + "[vendors]\n" + kRuleA + rule},
        {kHead, kHead + "[vendors]\n" + rule},
        {"version = \"2\";", "version = \"2\";\n[vendors]\n" + rule},
        {"", "[vendors]\n" + rule},
    };
    for (const Case& c : cases) {
        writeFile(conf(), c.file);
        fs::remove(bak());
        ASSERT_EQ(INTF_UIL_AddVendor("N", "P", "x"), MPI_RET_SUCCESS) << c.file;
        EXPECT_EQ(testfiles::text(conf()), c.expected) << c.file;
        EXPECT_EQ(testfiles::text(bak()), c.file);
    }
}

TEST_F(DrvCfg, DeletingRemovesExactlyItsLine)
{
    ASSERT_EQ(INTF_UIL_DelVendor("CORVANE", "Dorado"), MPI_RET_SUCCESS);
    EXPECT_EQ(testfiles::text(conf()), kHead + "[vendors]\n" + kRuleB + kTail);
    EXPECT_EQ(testfiles::text(bak()), kConf);
    ASSERT_EQ(g_sent.size(), 1u);
    EXPECT_EQ(g_sent[0].subCommand, UIL_SETCMD_DEL_VENDOR);
    EXPECT_EQ(g_sent[0].vendor, "CORVANE");
    EXPECT_EQ(g_sent[0].product, "Dorado");

    std::string before = testfiles::text(conf());
    EXPECT_EQ(INTF_UIL_DelVendor("CORVANE", "Dorado"), UIL_RET_VENDOR_NOT_EXIST);
    EXPECT_EQ(INTF_UIL_DelVendor("HPE", "MSA"), UIL_RET_VENDOR_NOT_EXIST);
    EXPECT_EQ(testfiles::text(conf()), before);
    EXPECT_EQ(g_sent.size(), 1u);

    // A rule standing twice goes with both of its lines; the last line of
    // a file without a final newline.
    writeFile(conf(), kHead + kVendors + kRuleA.substr(0, kRuleA.size() - 1));
    ASSERT_EQ(INTF_UIL_DelVendor("CORVANE", "Dorado"), MPI_RET_SUCCESS);
    EXPECT_EQ(testfiles::text(conf()), kHead + "[vendors]\n" + kRuleB);
    EXPECT_EQ(rules(), (std::vector<std::string>{"HPE|MSA 2040|dft"}));
}

TEST_F(DrvCfg, BadTextsAreRefusedBeforeAnythingIsWritten)
{
    writeFile(bak(), "backup\n");
    const std::string nine(9, 'V');
    const std::string seventeen(17, 'P');
    struct Case {
        std::string vendor, product, driver;
    };
    std::vector<Case> cases = {
        {nine, "P", "dft"}, {"V", seventeen, "dft"}, {"V", "P", std::string(65, 'd')}, {"", "P", "dft"},
        {"V", "", "dft"},   {" V", "P", "dft"},      {"V", "P ", "dft"},
    };
    for (const char* bad : {"\"", ";", "#", "=", ",", "\t", "\n", "\x7f", "\x01"}) {
        cases.push_back({std::string("V") + bad, "P", "dft"});
        cases.push_back({"V", std::string("P") + bad + "Q", "dft"});
        cases.push_back({"V", "P", std::string("d") + bad});
    }
    for (const Case& c : cases) {
        EXPECT_EQ(INTF_UIL_AddVendor(c.vendor.c_str(), c.product.c_str(), c.driver.c_str()), MPI_RET_INVALID_PARAM)
            << c.vendor << "|" << c.product << "|" << c.driver;
        if (c.driver == "dft") {
            EXPECT_EQ(INTF_UIL_DelVendor(c.vendor.c_str(), c.product.c_str()), MPI_RET_INVALID_PARAM)
                << c.vendor << "|" << c.product;
        }
    }
    EXPECT_EQ(INTF_UIL_AddVendor(nullptr, "P", "dft"), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(INTF_UIL_DelVendor("V", nullptr), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(testfiles::text(conf()), kConf);
    EXPECT_EQ(testfiles::text(bak()), "backup\n");
    EXPECT_TRUE(g_sent.empty());
    // At the limits the texts are taken.
    EXPECT_EQ(INTF_UIL_AddVendor(std::string(8, 'V').c_str(), std::string(16, 'P').c_str(),
                                 std::string(64, 'd').c_str()),
              MPI_RET_SUCCESS);
}

TEST_F(DrvCfg, RulesAsTheFileHoldsThem)
{
    writeFile(conf(), kHead + "[vendors]\n" + kRuleA +
                          "vendor_id=\"NODRV\",product_id=\"X\"\n"          // no driver: "dft"
                          "ruler_name = \"Ruler_only\"\n"                      // no vendor: not a rule
                          "vendor_id = \"TOOLONGVENDOR\", product_id = \"X\";\n"  // too long: not a rule
                          "garbage without pairs\n"
                          "a=1,b=2,c=3,d=4,e=5,f=6,g=7,h=8,i=9,vendor_id=\"K\",product_id=\"K\"\n"  // too many keys
                          "\n# a comment\n" +
                          kRuleB + "[other]\n" + "vendor_id = \"OUT\", product_id = \"SIDE\";\n");
    EXPECT_EQ(rules(), (std::vector<std::string>{"CORVANE|Dorado|alua", "NODRV|X|dft", "HPE|MSA 2040|dft"}));
    MPI_ListNode head;
    EXPECT_EQ(INTF_UIL_StartShowVendor(&head, nullptr), MPI_RET_INVALID_PARAM);
    writeFile(conf(), kHead);
    EXPECT_TRUE(rules().empty());
}

// Each entry as "line: key=value; key=value".
std::vector<std::string> entries(uint32_t (*start)(MPI_ListNode*, uint32_t*), void (*end)(MPI_ListNode*))
{
    MPI_ListNode head;
    uint32_t count = 0;
    const uint32_t ret = start(&head, &count);
    if (ret != MPI_RET_SUCCESS) {
        return {"(failed " + std::to_string(ret) + ")"};
    }
    std::vector<std::string> out;
    for (MPI_ListNode* n = head.next; n != &head; n = n->next) {
        const UilParamEntry* e = MPI_ListEntry<UilParamEntry>(n);
        std::string text = std::to_string(e->line) + ":";
        for (uint32_t i = 0; i < e->count; ++i) {
            text += std::string(i == 0 ? " " : "; ") + e->pairs[i].key + "=" + e->pairs[i].value;
        }
        out.push_back(text);
    }
    EXPECT_EQ(count, out.size());
    end(&head);
    return out;
}

TEST_F(DrvCfg, WholeFileAsCommonAndVendorEntries)
{
    writeFile(conf(), kHead + "no pair here\n=\"keyless\"\n" + std::string(600, 'x') + "=1\n" + "[vendors]\n" +
                          kRuleA + "garbage without pairs\n" +
                          "a=1,b=2,c=3,d=4,e=5,f=6,g=7,h=8,i=9\n"  // too many pairs
                          "vendor_id = \"Q\" , extra = \"\"\n" +
                          kRuleB + "[other]\nvendor_id = \"OUT\";\n");
    const std::vector<std::string> common = {
        "2: version=2",
        "3: max_busy=999",  // not a key of the table: listed all the same
        "4: max_busy_retries=30",
        "5: busy_retry_delay=10",
        "6: default_loadbalance=round-robin",
        "7: timezone_offset=-60",
    };
    EXPECT_EQ(entries(INTF_UIL_EnumerateConfigStart, INTF_UIL_EnumerateConfigEnd), common);
    const std::vector<std::string> vendors = {
        "13: ruler_name=Ruler_CORVANE_Dorado; vendor_id=CORVANE; product_id=Dorado; driver=alua",
        "16: vendor_id=Q; extra=",
        "17: ruler_name=Ruler_HPE_MSA 2040; vendor_id=HPE; product_id=MSA 2040; driver=dft",
    };
    EXPECT_EQ(entries(INTF_UIL_EnumerateVendorConfigStart, INTF_UIL_EnumerateVendorConfigEnd), vendors);

    writeFile(conf(), "");
    EXPECT_TRUE(entries(INTF_UIL_EnumerateConfigStart, INTF_UIL_EnumerateConfigEnd).empty());
    EXPECT_TRUE(entries(INTF_UIL_EnumerateVendorConfigStart, INTF_UIL_EnumerateVendorConfigEnd).empty());
    fs::remove(conf());
    const std::vector<std::string> missing = {"(failed " + std::to_string(UIL_RET_DRVCFG_NO_FILE) + ")"};
    EXPECT_EQ(entries(INTF_UIL_EnumerateConfigStart, INTF_UIL_EnumerateConfigEnd), missing);
    EXPECT_EQ(entries(INTF_UIL_EnumerateVendorConfigStart, INTF_UIL_EnumerateVendorConfigEnd), missing);
    EXPECT_FALSE(fs::exists(conf()));
    uint32_t count = 0;
    EXPECT_EQ(INTF_UIL_EnumerateConfigStart(nullptr, &count), MPI_RET_INVALID_PARAM);
}

TEST_F(DrvCfg, ADriverThatRefusesLeavesTheSavedRule)
{
    g_driverAnswer = MPI_RET_IOCTL_FAIL;
    EXPECT_EQ(INTF_UIL_AddVendor("ACME", "Box", "dft"), UIL_RET_VENDOR_NOTIFY_FAIL);
    EXPECT_EQ(rules().size(), 3u);
    EXPECT_EQ(INTF_UIL_DelVendor("ACME", "Box"), UIL_RET_VENDOR_NOTIFY_FAIL);
    EXPECT_EQ(testfiles::text(conf()), kConf);
    EXPECT_NE(testfiles::traceText().find("Add supportlist of array fail, Ret={1031}."), std::string::npos);
    EXPECT_NE(testfiles::traceText().find("Delete supportlist of array fail, Ret={1031}."), std::string::npos);
}

TEST(DrvCfgTexts, RuleLineOperationRecordAndDriverColumn)
{
    char line[256];
    ASSERT_EQ(UIL_FormatRulerToBuf("V", "P Q", "alua", line, sizeof(line)), MPI_RET_SUCCESS);
    EXPECT_STREQ(line, "ruler_name = \"Ruler_V_P Q\", vendor_id = \"V\", product_id = \"P Q\", driver = \"alua\";\n");
    EXPECT_EQ(UIL_FormatRulerToBuf("V", "P", "alua", line, 20), MPI_RET_BUFFER_SMALL);
    EXPECT_EQ(UIL_FormatRulerToBuf("V", "P", nullptr, line, sizeof(line)), MPI_RET_INVALID_PARAM);
    EXPECT_NE(testfiles::traceText().find("Driver not exist"), std::string::npos);
    UilVendorRule rule;
    ASSERT_TRUE(UIL_ParseVendorLine("ruler_name = \"Ruler_V_P Q\", vendor_id = \"V\", product_id = \"P Q\", driver = "
                                    "\"alua\";",
                                    &rule));
    EXPECT_STREQ(rule.ruler, "Ruler_V_P Q");
    EXPECT_STREQ(rule.product, "P Q");

    UilOperLogPara record{};
    UIL_VendorOperRecord("ACME", "Box Q", &record);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_COMMON);
    EXPECT_STREQ(record.szValue, "ACME;Box Q");

    char shown[8];
    INTF_UIL_TransVendorDriverNamePrint("alua", shown, sizeof(shown));
    EXPECT_STREQ(shown, "alua");
    INTF_UIL_TransVendorDriverNamePrint("very-long-driver", shown, sizeof(shown));
    EXPECT_STREQ(shown, "very-lo");
}

// ---------------------------------------------------------------------------
// A writer killed at any instant leaves the old or the new file.

void sleepMicros(long us)
{
    timespec ts{us / 1000000, (us % 1000000) * 1000};
    nanosleep(&ts, nullptr);
}

TEST_F(DrvCfg, KilledWriterLeavesTheOldOrTheNewFile)
{
    const std::string withRule =
        kHead + kVendors +
        "ruler_name = \"Ruler_KILL_Box Q\", vendor_id = \"KILL\", product_id = \"Box Q\", driver = \"dft\";\n" + kTail;
    std::mt19937 random(20261123);
    std::uniform_int_distribution<long> delay(0, 20000);
    for (int round = 0; round < 60; ++round) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            for (;;) {
                (void)INTF_UIL_AddVendor("KILL", "Box Q", nullptr);
                (void)INTF_UIL_DelVendor("KILL", "Box Q");
            }
        }
        sleepMicros(delay(random));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);

        std::string now = testfiles::text(conf());
        ASSERT_TRUE(now == kConf || now == withRule) << "round " << round << ":\n" << now;
        if (fs::exists(bak())) {
            std::string backup = testfiles::text(bak());
            ASSERT_TRUE(backup == kConf || backup == withRule) << "round " << round << ":\n" << backup;
        }
    }
    // The next writer clears what the killed ones left half-written.
    ASSERT_EQ(INTF_UIL_SetConfigCommonKey("version", "4"), MPI_RET_SUCCESS);
    for (const auto& entry : fs::directory_iterator(etc())) {
        EXPECT_EQ(entry.path().filename().string().find(".tmp."), std::string::npos) << entry.path();
    }
    EXPECT_EQ(common("version"), "4");
}

}  // namespace
