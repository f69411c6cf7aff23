// The array and VLUN levels of the setting handlers against the simulated
// host: they need the driver's arrays and VLUNs (serial numbers, VLUN
// lists, WWNs, VLUN types).
//
// How it runs: started plainly (as ctest does), the binary makes a fresh
// sandbox with `<build>/cvadm-sim --setup DIR` and re-executes itself with
// CVADM_ROOT=DIR and LD_PRELOAD=<build>/sim/libcvsim.so, so that its driver
// requests reach the driver model as cvadm's do. The child runs the tests
// and removes the sandbox.
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "test_cfg_support.h"
#include "uil/uil.h"
#include "uil/uil_objects.h"
#include "uil/uil_setcfg.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
using cfgtest::deleteBytes;
using cfgtest::notifyBytes;
using cfgtest::readFile;
using cfgtest::valueAt;
using cfgtest::writeFile;

constexpr const char kChildMark[] = "CVSETCFG_SIM_CHILD";

std::string root() { return std::getenv("CVADM_ROOT"); }
std::string cfgFile() { return root() + "/etc/user_cfg.xml"; }
void setFaults(const std::string& lines) { writeFile(root() + "/sim/faults", lines); }
void clearRequests() { writeFile(root() + "/sim/requests.log", ""); }

struct Request {
    uint32_t nr;
    uint32_t result;
    std::vector<uint8_t> in;
};

// The configuration requests (notify 70, delete 71) in the order sent.
std::vector<Request> cfgRequests()
{
    std::vector<Request> all;
    std::istringstream lines(readFile(root() + "/sim/requests.log"));
    static const std::regex kLine(R"(nr=(\d+) code=\S+ size=\d+ result=(\d+) in=([0-9a-f]*) out=)");
    for (std::string line; std::getline(lines, line);) {
        std::smatch m;
        if (!std::regex_search(line, m, kLine)) {
            continue;
        }
        uint32_t nr = static_cast<uint32_t>(std::stoul(m[1]));
        if (nr != 70 && nr != 71) {
            continue;
        }
        std::string hex = m[3];
        std::vector<uint8_t> bytes;
        for (size_t i = 0; i + 1 < hex.size(); i += 2) {
            bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
        }
        all.push_back({nr, static_cast<uint32_t>(std::stoul(m[2])), bytes});
    }
    return all;
}

// What the object layer reports: the fixtures are taken from the driver,
// not written twice.
std::string arraySn(uint32_t arrayId)
{
    ArrayInfo array{};
    uint32_t ret = INTF_UIL_GetArrayInfoStart(arrayId, &array);
    std::string sn = ret == MPI_RET_SUCCESS || ret == MPI_RET_NOT_FOUND ? array.sn : "";
    INTF_UIL_GetArrayInfoEnd(&array);
    return sn;
}

std::vector<uint32_t> vlunsOf(uint32_t arrayId)
{
    UilIdList* ids = nullptr;
    std::vector<uint32_t> out;
    if (INTF_UIL_EnumerateArrayVlunIdsStart(arrayId, &ids) == MPI_RET_SUCCESS && ids != nullptr) {
        out.assign(ids->view().begin(), ids->view().end());
    }
    INTF_UIL_EnumerateVlunIdsEnd(ids);
    return out;
}

std::string wwnOf(uint32_t vlunId)
{
    VLunInfo vlun{};
    std::string wwn = INTF_UIL_GetVLunInfoStart(vlunId, &vlun) == MPI_RET_SUCCESS ? vlun.lunWwn : "";
    INTF_UIL_GetVLunInfoEnd(&vlun);
    return wwn;
}

uint8_t typeOf(uint32_t vlunId)
{
    VLunInfo vlun{};
    uint8_t type = INTF_UIL_GetVLunInfoStart(vlunId, &vlun) == MPI_RET_SUCCESS ? vlun.type : 0;
    INTF_UIL_GetVLunInfoEnd(&vlun);
    return type;
}

std::optional<std::string> lunValue(const std::string& wwn, const std::string& item)
{
    return valueAt(cfgFile(), "/cvcfg/lun/lun" + wwn + "/" + item);
}

std::optional<std::string> arrayValue(const std::string& sn, const std::string& item)
{
    return valueAt(cfgFile(), "/cvcfg/array/array" + sn + "/" + item);
}

struct LunItem {
    std::string wwn;
    std::string item;
    std::string value;
};

void writeDocument(const std::vector<LunItem>& luns)
{
    std::string doc = "<?xml version=\"1.0\"?>\n<cvcfg><common><loadbalancemode>min-queue-depth</loadbalancemode>"
                      "</common><array/><lun>";
    for (const LunItem& l : luns) {
        doc += "<lun" + l.wwn + "><" + l.item + ">" + l.value + "</" + l.item + "></lun" + l.wwn + ">";
    }
    writeFile(cfgFile(), doc + "</lun></cvcfg>\n");
}

class SetCfgSim : public testing::Test {
protected:
    void SetUp() override
    {
        (void)UIL_CfgUnlockFile();
        setFaults("");
        clearRequests();
        array0 = vlunsOf(0);
        other = vlunsOf(1);
        ASSERT_GE(array0.size(), 2u) << "the default topology has VLUNs on array 0";
        ASSERT_FALSE(other.empty());
    }
    void TearDown() override { (void)UIL_CfgUnlockFile(); }

    std::vector<uint32_t> array0;
    std::vector<uint32_t> other;
};

// Setting an array's value removes the LUN-level values of the item from
// the array's VLUNs first, then writes the array value; VLUNs of other
// arrays and other items are left alone.
TEST_F(SetCfgSim, ArrayValueRemovesLunValuesFirst)
{
    std::string kept = wwnOf(array0[0]);
    std::vector<LunItem> luns;
    for (uint32_t id : array0) {
        luns.push_back({wwnOf(id), "loadbalancemode", "min-task"});
    }
    luns.push_back({wwnOf(other[0]), "loadbalancemode", "min-task"});
    writeDocument(luns);
    // One VLUN of the array also holds another item, which stays.
    std::string doc = readFile(cfgFile());
    doc.insert(doc.find("</lun" + kept + ">"), "<lb_io_threshold>7</lb_io_threshold>");
    writeFile(cfgFile(), doc);

    UilOperLogPara record{};
    ASSERT_EQ(INTF_UIL_SetLbPolicy("CLI", "array_id", "0", "round-robin", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_ARRAY);
    EXPECT_EQ(record.uiObjId, 0u);
    EXPECT_STREQ(record.szValue, "round-robin");

    std::string sn = arraySn(0);
    ASSERT_FALSE(sn.empty());
    EXPECT_EQ(arrayValue(sn, "loadbalancemode"), "round-robin");
    for (uint32_t id : array0) {
        EXPECT_EQ(lunValue(wwnOf(id), "loadbalancemode"), std::nullopt) << "vlun " << id;
    }
    EXPECT_EQ(lunValue(wwnOf(other[0]), "loadbalancemode"), "min-task");
    EXPECT_EQ(lunValue(kept, "lb_io_threshold"), "7");

    // The driver was told of each deletion, in VLUN order, then of the value.
    std::vector<Request> sent = cfgRequests();
    ASSERT_EQ(sent.size(), array0.size() + 1);
    for (size_t i = 0; i < array0.size(); ++i) {
        EXPECT_EQ(sent[i].nr, 71u);
        EXPECT_EQ(sent[i].in, deleteBytes(MPI_OBJ_LUN, wwnOf(array0[i]), "loadbalancemode")) << i;
    }
    EXPECT_EQ(sent.back().nr, 70u);
    EXPECT_EQ(sent.back().in, notifyBytes(MPI_OBJ_ARRAY, sn, {{"loadbalancemode", "round-robin"}}));
}

// A VLUN without the item costs no request; a failed array write keeps the
// deletions already made.
TEST_F(SetCfgSim, FailedArrayWriteKeepsTheDeletions)
{
    writeDocument({{wwnOf(array0[1]), "io_timeout", "99"}});
    setFaults("70 code=1031\n");
    UilOperLogPara record{};
    EXPECT_NE(INTF_UIL_SetIoRetryTimeOut("CLI", "array_id", "0", "300", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_ARRAY);
    EXPECT_STREQ(record.szValue, "300");
    EXPECT_EQ(lunValue(wwnOf(array0[1]), "io_timeout"), std::nullopt);
    EXPECT_EQ(arrayValue(arraySn(0), "io_timeout"), std::nullopt);
    std::vector<Request> sent = cfgRequests();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].nr, 71u);
    EXPECT_EQ(sent[1].nr, 70u);
    EXPECT_EQ(sent[1].result, 1031u);
}

TEST_F(SetCfgSim, UnknownArrayChangesNothing)
{
    writeDocument({});
    std::string before = readFile(cfgFile());
    UilOperLogPara record{};
    EXPECT_NE(INTF_UIL_SetLbPolicy("CLI", "array_id", "77", "round-robin", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjId, 77u);
    EXPECT_EQ(readFile(cfgFile()), before);
    EXPECT_TRUE(cfgRequests().empty());
}

// An array the driver knows but that holds no disk still has its serial
// number, and no VLUN to strip.
TEST_F(SetCfgSim, ArrayWithoutDisks)
{
    std::string sn = arraySn(3);
    ASSERT_FALSE(sn.empty());
    ASSERT_TRUE(vlunsOf(3).empty());
    writeDocument({});
    UilOperLogPara record{};
    ASSERT_EQ(INTF_UIL_SetLbIOThreshold("CLI", "array_id", "3", "500", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(arrayValue(sn, "lb_io_threshold"), "500");
    ASSERT_EQ(cfgRequests().size(), 1u);
}

TEST_F(SetCfgSim, VlunValueGoesUnderItsWwn)
{
    writeDocument({});
    std::string wwn = wwnOf(array0[0]);
    ASSERT_FALSE(wwn.empty());
    char id[16];
    std::snprintf(id, sizeof(id), "%u", array0[0]);
    UilOperLogPara record{};
    ASSERT_EQ(INTF_UIL_SetLUNTrespass("CLI", "vlun_id", id, "0", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_LUN);
    EXPECT_EQ(record.uiObjId, array0[0]);
    EXPECT_EQ(lunValue(wwn, "luntrespass"), "0");
    std::vector<Request> sent = cfgRequests();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].in, notifyBytes(MPI_OBJ_LUN, wwn, {{"luntrespass", "0"}}));

    // A VLUN the driver does not know: its code, nothing written.
    std::string before = readFile(cfgFile());
    EXPECT_EQ(INTF_UIL_SetLUNTrespass("CLI", "vlun_id", "9999", "0", &record), MPI_RET_VLUN_NOT_EXIST);
    EXPECT_EQ(record.uiObjId, 9999u);
    EXPECT_EQ(readFile(cfgFile()), before);
    EXPECT_EQ(cfgRequests().size(), 1u);
}

// The split size of a VLUN is only for a dual-site VLUN.
TEST_F(SetCfgSim, SplitSizeNeedsADualSiteVlun)
{
    writeDocument({});
    uint32_t dualsite = 0;
    uint32_t ordinary = 0;
    bool haveDual = false;
    bool haveOrdinary = false;
    for (uint32_t id = 0; id < 64; ++id) {
        uint8_t type = typeOf(id);
        if (type == UIL_VLUN_TYPE_DUALSITE && !haveDual) {
            dualsite = id;
            haveDual = true;
        } else if (type == UIL_VLUN_TYPE_ORDINARY && !haveOrdinary) {
            ordinary = id;
            haveOrdinary = true;
        }
    }
    ASSERT_TRUE(haveDual && haveOrdinary) << "the default topology has both kinds";
    std::string ordinaryId = std::to_string(ordinary);
    std::string dualId = std::to_string(dualsite);

    UilOperLogPara record{};
    EXPECT_EQ(INTF_UIL_SetDsSpliteSize("CLI", "vlun_id", ordinaryId.c_str(), "2048", &record), UIL_RET_NOT_DUALSITE);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_LUN);
    EXPECT_STREQ(record.szValue, "2048");
    EXPECT_EQ(INTF_UIL_SetDsSpliteSize("CLI", "vlun_id", "9999", "2048", &record), MPI_RET_VLUN_NOT_EXIST);
    EXPECT_TRUE(cfgRequests().empty());

    ASSERT_EQ(INTF_UIL_SetDsSpliteSize("CLI", "vlun_id", dualId.c_str(), "2048", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(lunValue(wwnOf(dualsite), "ds_split_size"), "2048");
    // Array and host keys are not checked for a type.
    ASSERT_EQ(INTF_UIL_SetDsSpliteSize("CLI", "", "", "4096", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(valueAt(cfgFile(), "/cvcfg/common/ds_split_size"), "4096");
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
        std::fprintf(stderr, "test_setcfg_sim: cvadm-sim or sim/libcvsim.so not found above %s\n",
                     self.parent_path().c_str());
        return 1;
    }
    char dir[] = "/tmp/cvadm-setcfgsim-XXXXXX";
    if (mkdtemp(dir) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    unsetenv("CVADM_ROOT");
    if (spawnAndWait({script, "--setup", dir}) != 0) {
        std::fprintf(stderr, "test_setcfg_sim: %s --setup %s failed\n", script.c_str(), dir);
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
        std::fprintf(stderr, "test_setcfg_sim: the simulated device cannot be opened under %s\n", root().c_str());
        return 1;
    }
    int rc = RUN_ALL_TESTS();
    INTF_UIL_Fini();
    std::error_code ignored;
    fs::remove_all(root(), ignored);
    return rc;
}
