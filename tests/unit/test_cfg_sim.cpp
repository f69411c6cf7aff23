// The configuration store against the simulated driver: what the driver
// holds after each change matches the file, the exact payloads reach it,
// and a change or deletion it refuses never reaches the file.
//
// Started plainly (as ctest does), the binary makes a sandbox with
// `<build>/cvadm-sim --setup DIR` and re-executes itself with CVADM_ROOT=DIR
// and LD_PRELOAD=<build>/sim/libcvsim.so; the child runs the tests.
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <regex>

#include "test_cfg_support.h"
#include "uil/uil.h"

extern char** environ;

using namespace cfgtest;
using Json = nlohmann::json;

namespace {

constexpr const char kChildMark[] = "CVCFG_SIM_CHILD";

std::string root() { return std::getenv("CVADM_ROOT"); }
std::string docPath() { return root() + "/etc/user_cfg.xml"; }
void setFaults(const std::string& lines) { writeFile(root() + "/sim/faults", lines); }

// What the driver holds, as the simulated driver keeps it.
Json held(const std::string& pointer)
{
    std::string text = readFile(root() + "/sim/state.json");
    if (text.empty()) {
        return Json();
    }
    Json state = Json::parse(text);
    Json::json_pointer p("/user_config" + pointer);
    return state.contains(p) ? state[p] : Json();
}

// The items of one section or instance in the file, as the driver would hold them.
Json inFile(const std::string& xpath)
{
    Json items = Json::object();
    xmlDoc* doc = xmlReadFile(docPath().c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOBLANKS);
    xmlXPathContext* ctx = xmlXPathNewContext(doc);
    xmlXPathObject* obj = xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>((xpath + "/*").c_str()), ctx);
    for (int i = 0; obj != nullptr && obj->nodesetval != nullptr && i < obj->nodesetval->nodeNr; ++i) {
        xmlNode* node = obj->nodesetval->nodeTab[i];
        xmlChar* text = xmlNodeGetContent(node);
        items[reinterpret_cast<const char*>(node->name)] = reinterpret_cast<const char*>(text);
        xmlFree(text);
    }
    xmlXPathFreeObject(obj);
    xmlXPathFreeContext(ctx);
    xmlFreeDoc(doc);
    return items;
}

// The input bytes of the last logged request `nr` (its declared size only).
std::string lastRequestIn(uint32_t nr)
{
    std::istringstream lines(readFile(root() + "/sim/requests.log"));
    static const std::regex kLine(R"(nr=(\d+) code=\S+ size=\d+ result=\d+ in=([0-9a-f]*) out=)");
    std::string line;
    std::string last;
    while (std::getline(lines, line)) {
        std::smatch m;
        if (std::regex_search(line, m, kLine) && std::stoul(m[1]) == nr) {
            last = m[2];
        }
    }
    return last;
}

std::string hex(const std::vector<uint8_t>& bytes)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    for (uint8_t b : bytes) {
        out += kDigits[b >> 4];
        out += kDigits[b & 15];
    }
    return out;
}

class CfgSim : public testing::Test {
protected:
    void SetUp() override
    {
        (void)UIL_CfgUnlockFile();
        (void)UIL_CfgSetDriverSender(nullptr);
        setFaults("");
        writeFile(docPath(), kSmallDoc);
    }
};

// ---------------------------------------------------------------------------

TEST_F(CfgSim, DriverHoldsWhatTheFileHolds)
{
    ASSERT_EQ(UIL_SetCommonConfig("tod_time", "900"), MPI_RET_SUCCESS);
    EXPECT_EQ(lastRequestIn(70), hex(notifyBytes(100, "", {{"tod_time", "900"}})));
    ASSERT_EQ(UIL_SetArrayConfig("SNA1", "loadbalancemode", "min-task"), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_SetArrayConfig("SNA1", "io_timeout", "40"), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_SetLunConfig("WA1", "luntrespass", "0"), MPI_RET_SUCCESS);
    EXPECT_EQ(lastRequestIn(70), hex(notifyBytes(102, "WA1", {{"luntrespass", "0"}})));

    EXPECT_EQ(held("/common/tod_time"), "900");
    EXPECT_EQ(held("/array/SNA1"), inFile("/cvcfg/array/arraySNA1"));
    EXPECT_EQ(held("/lun/WA1"), inFile("/cvcfg/lun/lunWA1"));

    UilOperLogPara rec{};
    ASSERT_EQ(INTF_UIL_DelArrayConfig("CLI", 1, "SNA1", "io_timeout", &rec), MPI_RET_SUCCESS);
    EXPECT_EQ(lastRequestIn(71), hex(deleteBytes(101, "SNA1", "io_timeout")));
    EXPECT_EQ(held("/array/SNA1"), inFile("/cvcfg/array/arraySNA1"));
    ASSERT_EQ(INTF_UIL_DelLunConfig("CLI", 2, "WA1", nullptr, &rec), MPI_RET_SUCCESS);
    EXPECT_TRUE(held("/lun/WA1").is_null());
    EXPECT_TRUE(valuesAt(docPath(), "/cvcfg/lun/lunWA1").empty());
}

TEST_F(CfgSim, RefusedRequestsNeverReachTheFile)
{
    struct Case {
        const char* fault;
        uint32_t (*change)();
        const char* pointer;
    };
    const Case cases[] = {
        {"70 code=1030 1\n", [] { return UIL_SetLunConfig("WB1", "io_timeout", "30"); }, "/lun/WB1"},
        {"70 refuse 1\n", [] { return UIL_SetArrayConfig("SNB1", "io_timeout", "30"); }, "/array/SNB1"},
        {"70 untouched 1\n", [] { return UIL_SetCommonConfig("ied_time", "120"); }, "/common/ied_time"},
    };
    for (const Case& c : cases) {
        SetUp();
        setFaults(c.fault);
        EXPECT_EQ(c.change(), MPI_RET_FAIL) << c.fault;
        EXPECT_EQ(readFile(docPath()), kSmallDoc) << c.fault;
        EXPECT_TRUE(held(c.pointer).is_null()) << c.fault;
    }

    SetUp();
    ASSERT_EQ(UIL_SetLunConfig("WB2", "io_timeout", "30"), MPI_RET_SUCCESS);
    std::string saved = readFile(docPath());
    setFaults("71 refuse 1\n");
    UilOperLogPara rec{};
    EXPECT_EQ(INTF_UIL_DelLunConfig("CLI", 5, "WB2", "io_timeout", &rec), MPI_RET_FAIL);
    EXPECT_EQ(readFile(docPath()), saved);
    EXPECT_EQ(held("/lun/WB2/io_timeout"), "30");
}

TEST_F(CfgSim, StartUpParsePushesWholeSections)
{
    writeFile(docPath(), "<cvcfg><common><ioretry>5</ioretry><ioretrydelay>2</ioretrydelay><hld_time>90</hld_time>"
                         "</common><array><arraySNC1><io_timeout>9</io_timeout><luntrespass>0</luntrespass>"
                         "<bogus/></arraySNC1></array><lun><lunWC1><ds_mode>balance</ds_mode></lunWC1></lun></cvcfg>");
    ASSERT_EQ(INTF_UIL_CfgParse(), MPI_RET_SUCCESS);
    Json common = held("/common");
    Json fileCommon = inFile("/cvcfg/common");
    EXPECT_EQ(fileCommon.size(), 3u);
    for (const auto& [item, value] : fileCommon.items()) {
        EXPECT_EQ(common[item], value) << item;
    }
    EXPECT_EQ(held("/array/SNC1"), inFile("/cvcfg/array/arraySNC1"));
    EXPECT_EQ(held("/array/SNC1").size(), 2u);
    EXPECT_EQ(held("/lun/WC1"), inFile("/cvcfg/lun/lunWC1"));
}

// ---------------------------------------------------------------------------
// Start-up under the simulated host.

std::string findBuildFile(const fs::path& from, const char* name)
{
    for (fs::path dir = from; !dir.empty() && dir != dir.root_path(); dir = dir.parent_path()) {
        if (fs::exists(dir / name)) {
            return dir / name;
        }
    }
    return "";
}

int spawnAndWait(const std::vector<std::string>& args)
{
    std::vector<char*> argv;
    for (const std::string& a : args) {
        argv.push_back(const_cast<char*>(a.c_str()));
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
        return -1;
    }
    int status = 0;
    if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

int relaunchUnderSim(char** argv)
{
    fs::path self = fs::read_symlink("/proc/self/exe");
    std::string script = findBuildFile(self.parent_path(), "cvadm-sim");
    std::string library = script.empty() ? "" : (fs::path(script).parent_path() / "sim" / "libcvsim.so").string();
    if (script.empty() || !fs::exists(library)) {
        std::fprintf(stderr, "test_cfg_sim: cvadm-sim or sim/libcvsim.so not found above %s\n",
                     self.parent_path().c_str());
        return 1;
    }
    char dir[] = "/tmp/cvadm-cfgsim-XXXXXX";
    if (mkdtemp(dir) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    unsetenv("CVADM_ROOT");
    if (spawnAndWait({script, "--setup", dir}) != 0) {
        std::fprintf(stderr, "test_cfg_sim: %s --setup %s failed\n", script.c_str(), dir);
        return 1;
    }
    setenv("CVADM_ROOT", dir, 1);
    setenv("LD_PRELOAD", library.c_str(), 1);
    std::string asan = "verify_asan_link_order=0";
    if (const char* old = std::getenv("ASAN_OPTIONS")) {
        asan += std::string(":") + old;
    }
    setenv("ASAN_OPTIONS", asan.c_str(), 1);
    setenv(kChildMark, "1", 1);
    execv(self.c_str(), argv);
    std::perror("execv");
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    if (std::getenv(kChildMark) == nullptr) {
        return relaunchUnderSim(argv);
    }
    ::testing::InitGoogleTest(&argc, argv);
    if (INTF_UIL_Init() != MPI_RET_SUCCESS) {
        std::fprintf(stderr, "test_cfg_sim: the simulated device cannot be opened under %s\n", root().c_str());
        return 1;
    }
    // The sandbox comes with a configuration the store accepts.
    if (!parsesAsConfig(docPath())) {
        std::fprintf(stderr, "test_cfg_sim: the sandbox has no usable %s\n", docPath().c_str());
        return 1;
    }
    int rc = RUN_ALL_TESTS();
    INTF_UIL_Fini();
    std::error_code ignored;
    fs::remove_all(root(), ignored);
    return rc;
}
