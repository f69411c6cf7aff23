// The object layer against the simulated host.
//
// How it runs: started plainly (as ctest does), the binary makes a fresh
// sandbox with `<build>/cvadm-sim --setup DIR` (default topology) and
// re-executes itself with CVADM_ROOT=DIR and LD_PRELOAD=<build>/sim/libcvsim.so,
// so that its driver requests reach the driver model exactly as cvadm's do.
// The child runs the tests and removes the sandbox. Faults are scripted
// through DIR/sim/faults and requests counted in DIR/sim/requests.log. Under
// the sanitizers, leaks are reported when the child exits, after every
// failure path below has run.
#include <gtest/gtest.h>

#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "uil/uil.h"
#include "uil/uil_objects_int.h"
#include "uil/uil_status.h"

extern char** environ;

namespace fs = std::filesystem;

namespace {

constexpr const char kChildMark[] = "CVOBJ_SIM_CHILD";

// ---------------------------------------------------------------------------
// The simulated host.

std::string root() { return std::getenv("CVADM_ROOT"); }

std::string readFile(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::trunc);
    out << text;
}

void setFaults(const std::string& lines) { writeFile(root() + "/sim/faults", lines); }
std::string faults() { return readFile(root() + "/sim/faults"); }
void clearRequests() { writeFile(root() + "/sim/requests.log", ""); }
std::string traceText() { return readFile(root() + "/opt/Corvane/log/cli_uil_log.txt"); }

struct Request {
    uint32_t nr;
    uint32_t size;
    uint32_t result;
    std::string in;  // hex of the declared bytes before the request
};

std::vector<Request> requests()
{
    std::vector<Request> all;
    std::istringstream lines(readFile(root() + "/sim/requests.log"));
    std::string line;
    static const std::regex kLine(R"(nr=(\d+) code=\S+ size=(\d+) result=(\d+) in=([0-9a-f]*) out=)");
    while (std::getline(lines, line)) {
        std::smatch m;
        if (std::regex_search(line, m, kLine)) {
            all.push_back({static_cast<uint32_t>(std::stoul(m[1])), static_cast<uint32_t>(std::stoul(m[2])),
                           static_cast<uint32_t>(std::stoul(m[3])), m[4]});
        }
    }
    return all;
}

std::map<uint32_t, size_t> requestCounts()
{
    std::map<uint32_t, size_t> counts;
    for (const Request& r : requests()) {
        ++counts[r.nr];
    }
    return counts;
}

// A little-endian u32 read from the hex of a logged payload.
uint32_t hexU32(const std::string& hex, size_t off)
{
    uint32_t v = 0;
    for (size_t i = 0; i < 4; ++i) {
        v |= static_cast<uint32_t>(std::stoul(hex.substr(2 * (off + i), 2), nullptr, 16)) << (8 * i);
    }
    return v;
}

// ---------------------------------------------------------------------------
// Small owners for the records under test.

struct ArrayList {
    MPI_ListNode head;
    uint32_t ret;
    ArrayList() : ret(INTF_UIL_EnumerateArrayStart(&head)) {}
    ~ArrayList() { INTF_UIL_EnumerateArrayEnd(&head); }
};

struct VLunList {
    MPI_ListNode head;
    uint32_t ret;
    explicit VLunList(uint32_t arrayId) : ret(INTF_UIL_EnumerateVLunStart(arrayId, &head)) {}
    ~VLunList() { INTF_UIL_EnumerateVLunEnd(&head); }
};

struct PathList {
    MPI_ListNode head;
    uint32_t ret;
    explicit PathList(uint32_t arrayId) : ret(INTF_UIL_EnumeratePhyPathStart(arrayId, &head)) {}
    ~PathList() { INTF_UIL_EnumeratePhyPathEnd(&head); }
};

struct DetailDisk {
    DiskInfo disk;
    uint32_t ret;
    explicit DetailDisk(uint32_t diskId) : ret(INTF_UIL_GetDiskDetailInfoStart(diskId, &disk)) {}
    ~DetailDisk() { INTF_UIL_GetDiskDetailInfoEnd(&disk); }
};

struct StatusList {
    MPI_ListNode head;
    uint32_t ret;
    StatusList() : ret(INTF_UIL_CheckArrayPathDiskStatus(&head)) {}
    ~StatusList() { INTF_UIL_CheckStatusEnd(&head); }
};

template <typename T>
std::vector<T*> entries(MPI_ListNode* head)
{
    std::vector<T*> out;
    for (MPI_ListNode* n = head->next; n != head; n = n->next) {
        out.push_back(reinterpret_cast<T*>(n));  // every record opens with its links
    }
    return out;
}

std::vector<uint32_t> arrayIds()
{
    UilIdList* ids = nullptr;
    EXPECT_EQ(INTF_UIL_EnumerateArrayIdsStart(&ids), MPI_RET_SUCCESS);
    std::vector<uint32_t> out;
    if (ids != nullptr) {
        out.assign(ids->view().begin(), ids->view().end());
    }
    INTF_UIL_EnumerateArrayIdsEnd(ids);
    return out;
}

// Every physical path of every array, in array order.
std::vector<UilPathInfo> allPhysicalPaths()
{
    std::vector<UilPathInfo> out;
    for (uint32_t arrayId : arrayIds()) {
        PathList paths(arrayId);
        for (UilPathInfo* p : entries<UilPathInfo>(&paths.head)) {
            out.push_back(*p);
        }
    }
    return out;
}

// Reads everything the show and check commands read: used by the fault
// matrix, where any request may fail at any point.
void walkEverything()
{
    {
        ArrayList arrays;
    }
    uint32_t arrays[UIL_MAX_ARRAYS];
    uint32_t arrayCount = 0;
    (void)INTF_UIL_EnumerateArrayIds(arrays, UIL_MAX_ARRAYS, &arrayCount);
    for (uint32_t arrayId : std::vector<uint32_t>(arrays, arrays + arrayCount)) {
        VLunList vluns(arrayId);
        for (VLunInfo* v : entries<VLunInfo>(&vluns.head)) {
            DetailDisk disk(v->diskId[0]);
            VLunInfo one;
            (void)INTF_UIL_GetVLunInfoStart(v->vlunId, &one);
            (void)UIL_GetVLunPrimaryInfo(&one);
            INTF_UIL_GetVLunInfoEnd(&one);
            break;
        }
        UilIdList* vlunIds = nullptr;
        (void)INTF_UIL_EnumerateArrayVlunIdsStart(arrayId, &vlunIds);
        INTF_UIL_EnumerateVlunIdsEnd(vlunIds);
        PathList paths(arrayId);
        for (UilPathInfo* p : entries<UilPathInfo>(&paths.head)) {
            UilHbaInfo hba{};
            std::snprintf(hba.wwn, sizeof(hba.wwn), "%.*s", static_cast<int>(sizeof(hba.wwn) - 1), p->initiatorPort);
            (void)INTF_UIL_GetHbaInfoByWwn(&hba);
            (void)UIL_GetLogicalLunForPhyPath(p);
            char name[UIL_CONTROLLER_NAME_SIZE];
            (void)UIL_strFormatControllerId(arrayId, p->controllerId, p->arrayFlags, name, sizeof(name));
        }
    }
    {
        StatusList status;
    }
    uint32_t hbas[UIL_MAX_HBAS];
    uint32_t count = 0;
    if (INTF_UIL_GetAllHbaIds(hbas, UIL_MAX_HBAS, &count) == MPI_RET_SUCCESS) {
        for (uint32_t i = 0; i < count; ++i) {
            UilHbaInfo hba{};
            hba.hbaId = hbas[i];
            (void)INTF_UIL_GetHbaInfoById(&hba);
            UilIdList* paths = nullptr;
            (void)INTF_UIL_GetPhyPathIdsByHbaId(hbas[i], &paths);
            INTF_UIL_GetPhyPathIdsByHbaIdEnd(paths);
        }
    }
}

class ObjectsSim : public ::testing::Test {
protected:
    void SetUp() override
    {
        setFaults("");
        clearRequests();
    }
    void TearDown() override { setFaults(""); }
};

// ---------------------------------------------------------------------------
// Arrays, controllers and their LUN counts.

TEST_F(ObjectsSim, ArrayIdsAreSortedAndSentWithTheirCapacity)
{
    std::vector<uint32_t> ids = arrayIds();
    ASSERT_GE(ids.size(), 2u);
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
    EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
    std::vector<Request> log = requests();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].nr, 11u);
    EXPECT_EQ(log[0].size, 16u) << "declared 16 bytes, whatever the buffer";
    EXPECT_EQ(hexU32(log[0].in, 0), 128u) << "capacity word";
}

TEST_F(ObjectsSim, ArraysWithControllersPathsAndLunCounts)
{
    ArrayList arrays;
    ASSERT_EQ(arrays.ret, MPI_RET_SUCCESS);
    std::vector<ArrayInfo*> list = entries<ArrayInfo>(&arrays.head);
    ASSERT_GE(list.size(), 2u);
    bool pairNaming = false;
    bool plainNaming = false;
    for (size_t i = 0; i < list.size(); ++i) {
        ArrayInfo* a = list[i];
        if (i > 0) {
            EXPECT_LT(list[i - 1]->arrayId, a->arrayId);
        }
        EXPECT_NE(a->name[0], '\0') << a->arrayId;
        EXPECT_EQ(std::strlen(a->sn), 20u) << a->arrayId;
        ((a->capability & UIL_CAP_PAIR_NAMING) ? pairNaming : plainNaming) = true;
        std::vector<UilController*> controllers = entries<UilController>(&a->controllers);
        ASSERT_FALSE(controllers.empty()) << a->arrayId;
        for (size_t c = 0; c < controllers.size(); ++c) {
            UilController* ctrl = controllers[c];
            if (c > 0) {
                EXPECT_LT(controllers[c - 1]->tpgId, ctrl->tpgId);
            }
            std::vector<UilPathInfo*> paths = entries<UilPathInfo>(&ctrl->paths);
            EXPECT_LE(paths.size(), UIL_MAX_TPG_PATHS);
            for (size_t p = 0; p < paths.size(); ++p) {
                if (p > 0) {
                    EXPECT_LT(paths[p - 1]->pathId, paths[p]->pathId);
                }
                EXPECT_EQ(paths[p]->arrayId, a->arrayId);
                EXPECT_EQ(paths[p]->controllerId, ctrl->tpgId);
                UilIdList* disks = nullptr;
                ASSERT_EQ(UIL_EnumeratePhyPathDiskIdsStart(paths[p]->pathId, &disks), MPI_RET_SUCCESS);
                EXPECT_EQ(paths[p]->lunCount, disks->count) << "path " << paths[p]->pathId;
                UIL_EnumeratePhyPathDiskIdsEnd(disks);
            }
            EXPECT_EQ(ctrl->lunCount, UIL_ControllerLunCount(&ctrl->paths));
        }
    }
    EXPECT_TRUE(pairNaming) << "an array with engine and letter naming";
    EXPECT_TRUE(plainNaming) << "an array with numeric naming";
}

TEST_F(ObjectsSim, ArrayInfoOfUnknownArray)
{
    ArrayInfo a;
    EXPECT_EQ(INTF_UIL_GetArrayInfoStart(9999, &a), UIL_RET_QUERY_FAIL);
    INTF_UIL_GetArrayInfoEnd(&a);
    EXPECT_NE(traceText().find("Get Array {9999} info fail"), std::string::npos);
    EXPECT_NE(INTF_UIL_ArrayIDIsExist(9999), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_ArrayIDIsExist(arrayIds().front()), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_GetArrayInfoStart(0, nullptr), MPI_RET_INVALID_PARAM);
}

TEST_F(ObjectsSim, SyncArrayInfoSendsIdAndSn)
{
    uint32_t id = arrayIds().front();
    ArrayInfo a;
    ASSERT_EQ(UIL_GetArrayRecord(id, &a), MPI_RET_SUCCESS);
    clearRequests();
    ASSERT_EQ(INTF_UIL_SyncArrayInfo(id, a.sn), MPI_RET_SUCCESS);
    std::vector<Request> log = requests();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].nr, 13u);
    EXPECT_EQ(hexU32(log[0].in, 0), id);
    std::string sn;
    for (size_t i = 0; i < 20; ++i) {
        sn += static_cast<char>(std::stoul(log[0].in.substr(2 * (116 + i), 2), nullptr, 16));
    }
    EXPECT_EQ(sn, std::string(a.sn));
    EXPECT_EQ(INTF_UIL_SyncArrayInfo(id, nullptr), MPI_RET_INVALID_PARAM);
    setFaults("13 refuse 1\n");
    EXPECT_EQ(INTF_UIL_SyncArrayInfo(id, a.sn), MPI_RET_FAIL);
}

// ---------------------------------------------------------------------------
// Controller naming.

TEST_F(ObjectsSim, ControllerNamesFollowTheRule)
{
    ArrayList arrays;
    ASSERT_EQ(arrays.ret, MPI_RET_SUCCESS);
    std::set<std::string> kinds;
    UilControllerNamer namer;
    size_t pairs = 0;
    for (ArrayInfo* a : entries<ArrayInfo>(&arrays.head)) {
        for (UilController* c : entries<UilController>(&a->controllers)) {
            char tpgName[UIL_CONTROLLER_NAME_SIZE];
            ASSERT_EQ(INTF_UIL_GetTpgName(a->arrayId, c->tpgId, tpgName, sizeof(tpgName)), MPI_RET_SUCCESS);
            char expected[UIL_CONTROLLER_NAME_SIZE];
            UIL_FormatControllerName(c->tpgId, tpgName, a->capability, expected, sizeof(expected));
            char direct[UIL_CONTROLLER_NAME_SIZE];
            EXPECT_EQ(UIL_strFormatControllerId(a->arrayId, c->tpgId, a->capability, direct, sizeof(direct)),
                      MPI_RET_SUCCESS);
            EXPECT_STREQ(direct, expected);
            char cached[UIL_CONTROLLER_NAME_SIZE];
            namer.format(a->arrayId, c->tpgId, a->capability, cached, sizeof(cached));
            EXPECT_STREQ(cached, expected);
            ++pairs;
            if (tpgName[0] != '\0') {
                kinds.insert("named");
            } else if (a->capability & UIL_CAP_PAIR_NAMING) {
                kinds.insert("pair");
            } else {
                kinds.insert("numeric");
            }
            uint8_t found = 0;
            uint32_t tpgId = 99;
            if (tpgName[0] != '\0') {
                ASSERT_EQ(INTF_UIL_CheckTpgNameIfExist(a->arrayId, tpgName, &found, &tpgId), MPI_RET_SUCCESS);
                EXPECT_EQ(found, 1);
                EXPECT_EQ(tpgId, c->tpgId);
            }
        }
        uint8_t found = 1;
        uint32_t tpgId = 0;
        ASSERT_EQ(INTF_UIL_CheckTpgNameIfExist(a->arrayId, "no such controller", &found, &tpgId), MPI_RET_SUCCESS);
        EXPECT_EQ(found, 0);
    }
    EXPECT_EQ(kinds, (std::set<std::string>{"named", "numeric", "pair"}));

    // The cache asks each (array, controller) name once, however many rows.
    clearRequests();
    for (int round = 0; round < 3; ++round) {
        for (ArrayInfo* a : entries<ArrayInfo>(&arrays.head)) {
            for (UilController* c : entries<UilController>(&a->controllers)) {
                char out[UIL_CONTROLLER_NAME_SIZE];
                namer.format(a->arrayId, c->tpgId, a->capability, out, sizeof(out));
            }
        }
    }
    EXPECT_EQ(requestCounts()[62], 0u) << "all cached already";

    char out[UIL_CONTROLLER_NAME_SIZE];
    EXPECT_EQ(UIL_strFormatControllerId(0, 16, 0, out, sizeof(out)), MPI_RET_SUCCESS);
    EXPECT_STREQ(out, "-");
    EXPECT_EQ(requestCounts()[62], 0u) << "an ID of 16 is never asked";
    setFaults("62 refuse 1\n");
    EXPECT_EQ(UIL_strFormatControllerId(0, 0, UIL_CAP_PAIR_NAMING, out, sizeof(out)), 1u);
    EXPECT_STREQ(out, "-");
    EXPECT_NE(traceText().find("Get tpg number information failed for array id 0, tpg id 0"), std::string::npos);
    EXPECT_GT(pairs, 0u);
}

// ---------------------------------------------------------------------------
// VLUNs and disks.

TEST_F(ObjectsSim, VLunListsAreSortedAndRequestedOnce)
{
    std::set<uint8_t> types;
    bool unavailable = false;
    for (uint32_t arrayId : arrayIds()) {
        UilIdList* disks = nullptr;
        ASSERT_EQ(INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, &disks), MPI_RET_SUCCESS);
        uint32_t diskCount = disks->count;
        EXPECT_TRUE(std::is_sorted(disks->view().begin(), disks->view().end()));
        INTF_UIL_EnumerateDiskIdsEnd(disks);
        UilIdList* vlunIds = nullptr;
        ASSERT_EQ(INTF_UIL_EnumerateArrayVlunIdsStart(arrayId, &vlunIds), MPI_RET_SUCCESS);
        std::vector<uint32_t> expectedIds(vlunIds->view().begin(), vlunIds->view().end());
        INTF_UIL_EnumerateVlunIdsEnd(vlunIds);

        clearRequests();
        VLunList vluns(arrayId);
        if (diskCount == 0) {
            EXPECT_EQ(vluns.ret, MPI_RET_NOT_FOUND);
            continue;
        }
        ASSERT_EQ(vluns.ret, MPI_RET_SUCCESS) << arrayId;
        std::vector<VLunInfo*> list = entries<VLunInfo>(&vluns.head);
        std::vector<uint32_t> ids;
        size_t foreignMembers = 0;
        for (VLunInfo* v : list) {
            ids.push_back(v->vlunId);
            types.insert(v->type);
            uint32_t slot = UIL_VLunSlotForArray(*v, arrayId);
            EXPECT_EQ(v->slotFilled[slot], 1) << "vlun " << v->vlunId;
            EXPECT_EQ(v->arrayId[slot], arrayId) << "vlun " << v->vlunId;
            EXPECT_NE(v->status[slot], nullptr);
            unavailable = unavailable || std::strcmp(v->status[slot], UIL_DISK_UNAVAILABLE) == 0;
            for (uint32_t m = 0; m < v->memberCount; ++m) {
                EXPECT_EQ(v->slotFilled[m], 1) << "vlun " << v->vlunId << " member " << m;
                foreignMembers += v->arrayId[m] != arrayId;
            }
            if (v->type == UIL_VLUN_TYPE_DUALSITE) {
                EXPECT_EQ(v->memberCount, 2u);
                EXPECT_NE(v->arrayId[0], v->arrayId[1]);
            }
        }
        EXPECT_EQ(ids, expectedIds) << "one row per VLUN of the array, by VLUN ID";
        std::map<uint32_t, size_t> counts = requestCounts();
        EXPECT_EQ(counts[21], 1u);
        EXPECT_EQ(counts[95], list.size()) << "one VLUN-info request per VLUN";
        EXPECT_EQ(counts[23], diskCount + foreignMembers) << "each disk record read once";
    }
    for (uint8_t type : {UIL_VLUN_TYPE_ORDINARY, UIL_VLUN_TYPE_DUALSITE, UIL_VLUN_TYPE_MIGRATION}) {
        EXPECT_EQ(types.count(type), 1u) << "type " << int(type);
    }
    EXPECT_TRUE(unavailable) << "an unavailable disk";
}

TEST_F(ObjectsSim, VLunInfoAndItsMembers)
{
    uint32_t arrayId = arrayIds().front();
    VLunList vluns(arrayId);
    ASSERT_EQ(vluns.ret, MPI_RET_SUCCESS);
    bool pe = false;
    for (VLunInfo* listed : entries<VLunInfo>(&vluns.head)) {
        VLunInfo v;
        ASSERT_EQ(INTF_UIL_GetVLunInfoStart(listed->vlunId, &v), MPI_RET_SUCCESS);
        EXPECT_EQ(v.vlunId, listed->vlunId);
        EXPECT_EQ(v.type, listed->type);
        EXPECT_STREQ(v.lunWwn, listed->lunWwn);
        EXPECT_EQ(v.slotFilled[0], 0) << "slots are filled on request only";
        ASSERT_EQ(UIL_GetVLunPrimaryInfo(&v), MPI_RET_SUCCESS);
        for (uint32_t m = 0; m < v.memberCount; ++m) {
            EXPECT_EQ(v.diskId[m], listed->diskId[m]);
            EXPECT_STREQ(v.name[m], listed->name[m]);
        }
        pe = pe || v.peFlag == 1 || v.type == UIL_VLUN_TYPE_PE;
        INTF_UIL_GetVLunInfoEnd(&v);
    }
    VLunInfo none;
    EXPECT_EQ(INTF_UIL_GetVLunInfoStart(16383, &none), MPI_RET_VLUN_NOT_EXIST);
    (void)pe;
}

TEST_F(ObjectsSim, DiskDetailStatusFromItsPaths)
{
    bool sawUnavailable = false;
    for (uint32_t arrayId : arrayIds()) {
        VLunList vluns(arrayId);
        for (VLunInfo* v : entries<VLunInfo>(&vluns.head)) {
            uint32_t slot = UIL_VLunSlotForArray(*v, arrayId);
            clearRequests();
            DetailDisk d(v->diskId[slot]);
            ASSERT_EQ(d.ret, MPI_RET_SUCCESS) << "disk " << v->diskId[slot];
            uint32_t paths = 0;
            bool normal = false;
            bool degraded = false;
            for (UilController* c : entries<UilController>(&d.disk.controllers)) {
                for (UilPathInfo* p : entries<UilPathInfo>(&c->paths)) {
                    ++paths;
                    EXPECT_EQ(p->kind, UIL_PATH_LOGICAL);
                    EXPECT_EQ(p->controllerId, c->tpgId);
                    EXPECT_EQ(p->diskId, d.disk.diskId);
                    const char* rule = UIL_LogicalPathStateWord(p->enabled, p->driverPathState, p->ioState, p->faulty);
                    if (d.disk.unavailable == 1 && std::strcmp(rule, "Disable") != 0) {
                        EXPECT_STREQ(p->pathState, "Fault") << "relabelled";
                    } else {
                        EXPECT_STREQ(p->pathState, rule);
                    }
                    normal = normal || std::strcmp(rule, "Normal") == 0;
                    degraded = degraded || UIL_IsDegradedPathState(rule);
                }
            }
            EXPECT_EQ(d.disk.pathCount, paths);
            const char* expected = d.disk.unavailable == 1 ? "Unavailable"
                                   : normal                 ? "Normal"
                                   : degraded               ? "Degraded"
                                                            : "Fault";
            EXPECT_STREQ(d.disk.status, expected) << "disk " << d.disk.diskId;
            sawUnavailable = sawUnavailable || d.disk.unavailable == 1;
            std::map<uint32_t, size_t> counts = requestCounts();
            EXPECT_EQ(counts[23], 1u);
            EXPECT_EQ(counts[31], 1u);
            EXPECT_EQ(counts[32], paths) << "one logical path request per path";
        }
    }
    EXPECT_TRUE(sawUnavailable);
}

// ---------------------------------------------------------------------------
// Paths and HBAs.

TEST_F(ObjectsSim, PhysicalPathStatesAndPorts)
{
    std::vector<UilPathInfo> paths = allPhysicalPaths();
    ASSERT_FALSE(paths.empty());
    std::set<std::string> states;
    std::set<uint32_t> portTypes;
    bool busyNormal = false;
    bool ipv4 = false;
    bool ipv6 = false;
    static const std::regex kIpv4(R"(::\d+\.\d+\.\d+\.\d+::\d+$)");
    static const std::regex kIpv6(R"(::([0-9A-F]{1,4}:){7}[0-9A-F]{1,4}::\d+$)");
    for (const UilPathInfo& p : paths) {
        EXPECT_STREQ(p.pathState, UIL_PhyPathStateWord(p.enabled, p.linkState, p.ioState)) << p.pathId;
        EXPECT_STREQ(p.ioStateWord, UIL_PathIoStateWord(p.ioState));
        states.insert(p.pathState);
        portTypes.insert(p.portType);
        busyNormal = busyNormal || (p.ioState == UIL_PATH_IO_BUSY && std::strcmp(p.pathState, "Normal") == 0);
        if (p.portType == UIL_PORT_ISCSI) {
            ipv4 = ipv4 || std::regex_search(p.initiatorPort, kIpv4);
            ipv6 = ipv6 || std::regex_search(p.initiatorPort, kIpv6);
            EXPECT_TRUE(std::regex_search(p.targetPort, std::regex(R"(::\d+$)"))) << p.targetPort;
        }
        UilPathInfo again{};
        ASSERT_EQ(INTF_UIL_GetPhyPathInfo(p.pathId, &again), MPI_RET_SUCCESS);
        EXPECT_STREQ(again.initiatorPort, p.initiatorPort);
    }
    EXPECT_EQ(states.count("Disable"), 1u);
    EXPECT_EQ(states.count("Fault"), 1u);
    EXPECT_TRUE(busyNormal) << "a busy path reads Normal";
    EXPECT_TRUE(std::any_of(states.begin(), states.end(), [](const std::string& s) {
        return UIL_IsDegradedPathState(s.c_str()) && s != "BUSY degradation";
    })) << "a degraded path";
    for (uint32_t type : {UIL_PORT_FC, UIL_PORT_SAS, UIL_PORT_ISCSI}) {
        EXPECT_EQ(portTypes.count(type), 1u) << "port type " << type;
    }
    EXPECT_TRUE(ipv4);
    EXPECT_TRUE(ipv6);

    PathList none(9999);
    EXPECT_EQ(none.ret, UIL_RET_NO_PATH);
}

TEST_F(ObjectsSim, LogicalLunsOfPhysicalPaths)
{
    for (UilPathInfo p : allPhysicalPaths()) {
        ASSERT_EQ(UIL_GetLogicalLunForPhyPath(&p), MPI_RET_SUCCESS) << p.pathId;
        EXPECT_EQ(p.readLunCount, p.lunCount) << p.pathId;
        EXPECT_LE(p.workingLunCount, p.readLunCount);
        EXPECT_LE(p.busyLunCount, p.workingLunCount);
        EXPECT_LE(p.flaggedLunCount, p.readLunCount);
        // The logical paths of this physical path, read by disk.
        MPI_ListNode head;
        UilIdList* disks = nullptr;
        ASSERT_EQ(UIL_EnumeratePhyPathDiskIdsStart(p.pathId, &disks), MPI_RET_SUCCESS);
        for (uint32_t diskId : disks->view()) {
            ASSERT_EQ(UIL_EnumeratePathStart(diskId, &head), MPI_RET_SUCCESS);
            bool found = false;
            for (UilPathInfo* l : entries<UilPathInfo>(&head)) {
                found = found || l->pathId == p.pathId;
            }
            EXPECT_TRUE(found) << "disk " << diskId << " lists path " << p.pathId;
            UIL_EnumeratePathEnd(&head);
        }
        UIL_EnumeratePhyPathDiskIdsEnd(disks);
    }
}

TEST_F(ObjectsSim, HbasByIdAndByWwn)
{
    uint32_t ids[UIL_MAX_HBAS];
    uint32_t count = 0;
    ASSERT_EQ(INTF_UIL_GetAllHbaIds(ids, UIL_MAX_HBAS, &count), MPI_RET_SUCCESS);
    ASSERT_GE(count, 2u);
    EXPECT_TRUE(std::is_sorted(ids, ids + count));
    std::set<uint32_t> physical;
    for (const UilPathInfo& p : allPhysicalPaths()) {
        physical.insert(p.pathId);
    }
    bool disabled = false;
    for (uint32_t i = 0; i < count; ++i) {
        UilHbaInfo byId{};
        byId.hbaId = ids[i];
        ASSERT_EQ(INTF_UIL_GetHbaInfoById(&byId), MPI_RET_SUCCESS);
        EXPECT_EQ(byId.hbaId, ids[i]);
        disabled = disabled || byId.enabled == 0;
        UilIdList* paths = nullptr;
        ASSERT_EQ(INTF_UIL_GetPhyPathIdsByHbaId(ids[i], &paths), MPI_RET_SUCCESS);
        for (uint32_t pathId : paths->view()) {
            EXPECT_EQ(physical.count(pathId), 1u) << "hba " << ids[i] << " path " << pathId;
            UilPathInfo path{};
            ASSERT_EQ(INTF_UIL_GetPhyPathInfo(pathId, &path), MPI_RET_SUCCESS);
            if (path.portType != UIL_PORT_ISCSI) {
                UilHbaInfo byWwn{};
                std::snprintf(byWwn.wwn, sizeof(byWwn.wwn), "%.*s", static_cast<int>(sizeof(byWwn.wwn) - 1), path.initiatorPort);
                ASSERT_EQ(INTF_UIL_GetHbaInfoByWwn(&byWwn), MPI_RET_SUCCESS) << byWwn.wwn;
                EXPECT_EQ(byWwn.hbaId, ids[i]);
                EXPECT_EQ(byWwn.enabled, byId.enabled);
            }
        }
        INTF_UIL_GetPhyPathIdsByHbaIdEnd(paths);
    }
    EXPECT_TRUE(disabled) << "a disabled HBA";
}

// ---------------------------------------------------------------------------
// check status.

TEST_F(ObjectsSim, CheckStatusReportsEveryProblemPath)
{
    StatusList status;
    ASSERT_EQ(status.ret, MPI_RET_SUCCESS);
    std::vector<UilStatusRecord*> records = entries<UilStatusRecord>(&status.head);
    ASSERT_FALSE(records.empty());
    auto has = [&](uint32_t type, uint32_t pathId) {
        return std::any_of(records.begin(), records.end(), [&](UilStatusRecord* r) {
            return r->type == type && r->pathId == pathId;
        });
    };
    for (const UilPathInfo& p : allPhysicalPaths()) {
        if (std::strcmp(p.pathState, "Fault") == 0) {
            EXPECT_TRUE(has(UIL_STATUS_PATH_DOWN, p.pathId)) << p.pathId;
        } else if (std::strcmp(p.pathState, "Disable") == 0) {
            EXPECT_TRUE(has(UIL_STATUS_PATH_DISABLED, p.pathId)) << p.pathId;
        } else if (std::strcmp(p.pathState, "Normal") != 0) {
            EXPECT_TRUE(has(UIL_STATUS_PATH_UNSTABLE, p.pathId)) << p.pathId;
        } else {
            EXPECT_FALSE(has(UIL_STATUS_PATH_DOWN, p.pathId) || has(UIL_STATUS_PATH_UNSTABLE, p.pathId));
        }
    }
    bool abnormal = false;
    for (UilStatusRecord* r : records) {
        EXPECT_NE(r->arrayName[0], '\0');
        abnormal = abnormal || r->type == UIL_STATUS_LUN_ABNORMAL;
        const uint32_t expected = r->type == UIL_STATUS_PATH_DOWN || r->type == UIL_STATUS_ALL_PATH_DOWN ||
                                          r->type == UIL_STATUS_LUN_ABNORMAL
                                      ? UIL_SEVERITY_CRITICAL
                                  : r->type == UIL_STATUS_PATH_UNSTABLE || r->type == UIL_STATUS_NO_REDUNDANT_CTRL
                                      ? UIL_SEVERITY_MAJOR
                                      : UIL_SEVERITY_WARNING;
        EXPECT_EQ(r->severity, expected) << "type " << r->type;
    }
    EXPECT_TRUE(abnormal) << "the unavailable disk is reported";

    setFaults("11 refuse 1\n");
    StatusList failed;
    EXPECT_EQ(failed.ret, UIL_RET_QUERY_FAIL);
    EXPECT_TRUE(MPI_ListEmpty(&failed.head));
    setFaults("11 count=0 1\n");
    StatusList empty;
    EXPECT_EQ(empty.ret, MPI_RET_NOT_FOUND);
}

// ---------------------------------------------------------------------------
// A misbehaving driver.

TEST_F(ObjectsSim, EachRequestRefusedOnce)
{
    // Every request of the object layer fails once somewhere inside a full
    // walk: nothing may crash or leak, and the fault must have been used.
    for (uint32_t nr : {11u, 12u, 21u, 22u, 23u, 25u, 31u, 32u, 41u, 42u, 44u, 60u, 61u, 62u, 64u, 65u, 66u, 95u}) {
        for (const char* action : {"refuse", "untouched", "code=1031"}) {
            setFaults(std::to_string(nr) + " " + action + " 1\n");
            walkEverything();
            EXPECT_EQ(faults().find(std::to_string(nr) + " "), std::string::npos) << "nr " << nr << " " << action;
        }
    }
}

struct RefusedCase {
    uint32_t nr;
    const char* what;
    std::function<uint32_t()> call;
    uint32_t code;
};

TEST_F(ObjectsSim, RefusedRequestsGiveTheStatedCodes)
{
    uint32_t arrayId = arrayIds().front();
    UilIdList* disks = nullptr;
    ASSERT_EQ(INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, &disks), MPI_RET_SUCCESS);
    uint32_t diskId = disks->ids[0];
    INTF_UIL_EnumerateDiskIdsEnd(disks);
    auto ids = [](uint32_t (*start)(uint32_t, UilIdList**), uint32_t id) {
        UilIdList* out = reinterpret_cast<UilIdList*>(1);
        uint32_t ret = start(id, &out);
        EXPECT_EQ(out, nullptr) << "the out pointer is cleared";
        return ret;
    };
    auto arrayIdList = [] {
        UilIdList* out = reinterpret_cast<UilIdList*>(1);
        uint32_t ret = INTF_UIL_EnumerateArrayIdsStart(&out);
        EXPECT_EQ(out, nullptr) << "the out pointer is cleared";
        return ret;
    };
    auto arrayInfo = [=] {
        ArrayInfo a;
        uint32_t ret = INTF_UIL_GetArrayInfoStart(arrayId, &a);
        EXPECT_TRUE(MPI_ListEmpty(&a.controllers));
        INTF_UIL_GetArrayInfoEnd(&a);
        return ret;
    };
    auto diskDetail = [=] {
        DetailDisk d(diskId);
        EXPECT_TRUE(MPI_ListEmpty(&d.disk.controllers));
        return d.ret;
    };
    auto vlunList = [=] {
        VLunList v(arrayId);
        EXPECT_TRUE(MPI_ListEmpty(&v.head));
        return v.ret;
    };
    auto pathList = [=] {
        PathList p(arrayId);
        EXPECT_TRUE(MPI_ListEmpty(&p.head));
        return p.ret;
    };
    auto hbaIds = [] {
        uint32_t h[4];
        uint32_t n = 9;
        uint32_t ret = INTF_UIL_GetAllHbaIds(h, 4, &n);
        EXPECT_EQ(n, 0u);
        return ret;
    };
    const RefusedCase cases[] = {
        {11, "array ids", arrayIdList, UIL_RET_QUERY_FAIL},
        {11, "array list", [] { ArrayList a; return a.ret; }, UIL_RET_QUERY_FAIL},
        {12, "array info", arrayInfo, UIL_RET_QUERY_FAIL},
        {21, "array info, disk check", arrayInfo, UIL_RET_QUERY_FAIL},
        {60, "array info, controllers", arrayInfo, UIL_RET_QUERY_FAIL},
        {21, "disk ids", [=] { return ids(INTF_UIL_EnumerateArrayDiskIdsStart, arrayId); }, 1},
        {25, "vlun ids", [=] { return ids(INTF_UIL_EnumerateArrayVlunIdsStart, arrayId); }, 1},
        {21, "vlun list", vlunList, 1},
        {23, "disk detail", diskDetail, MPI_RET_IOCTL_FAIL},
        {31, "disk detail, paths", diskDetail, MPI_RET_IOCTL_FAIL},
        {60, "disk detail, controllers", diskDetail, MPI_RET_IOCTL_FAIL},
        {95, "vlun info", [] { VLunInfo v; return INTF_UIL_GetVLunInfoStart(0, &v); }, MPI_RET_VLUN_NOT_EXIST},
        {41, "physical paths", pathList, UIL_RET_NO_PATH},
        {62, "tpg name", [=] { char n[17]; return INTF_UIL_GetTpgName(arrayId, 0, n, sizeof(n)); }, 1},
        {61, "tpg state", [=] { uint32_t s = 0; return INTF_UIL_GetTpgInfo(arrayId, 0, &s); }, MPI_RET_IOCTL_FAIL},
        {66, "hba ids", hbaIds, MPI_RET_FAIL},
        {65, "hba by id", [] { UilHbaInfo h{}; return INTF_UIL_GetHbaInfoById(&h); }, MPI_RET_FAIL},
        {64, "hba by wwn", [] { UilHbaInfo h{}; return INTF_UIL_GetHbaInfoByWwn(&h); }, MPI_RET_FAIL},
    };
    for (const RefusedCase& c : cases) {
        setFaults(std::to_string(c.nr) + " refuse 1\n");
        EXPECT_EQ(c.call(), c.code) << c.what;
    }
    setFaults("");
    ArrayList ok;
    EXPECT_EQ(ok.ret, MPI_RET_SUCCESS);
}

struct ClampCase {
    uint32_t nr;
    uint32_t capacity;
    std::function<uint32_t()> countListed;
};

TEST_F(ObjectsSim, CountsAboveTheCapacityAreClamped)
{
    uint32_t arrayId = arrayIds().front();
    std::vector<UilPathInfo> paths = allPhysicalPaths();
    ASSERT_FALSE(paths.empty());
    uint32_t pathId = paths.front().pathId;
    auto idsOf = [](uint32_t (*start)(uint32_t, UilIdList**), uint32_t id) {
        UilIdList* list = nullptr;
        EXPECT_EQ(start(id, &list), MPI_RET_SUCCESS);
        uint32_t n = list != nullptr ? list->count : 0;
        UIL_IdListFree(list);
        return n;
    };
    auto arrayIdsStart = [](uint32_t, UilIdList** out) { return INTF_UIL_EnumerateArrayIdsStart(out); };
    const ClampCase cases[] = {
        {11, 128, [&] { return idsOf(arrayIdsStart, 0); }},
        {21, 16384, [&] { return idsOf(INTF_UIL_EnumerateArrayDiskIdsStart, arrayId); }},
        {25, 16384, [&] { return idsOf(INTF_UIL_EnumerateArrayVlunIdsStart, arrayId); }},
        {60, 16, [&] { return idsOf(UIL_EnumerateTpgIdsStart, arrayId); }},
        {41, 16384, [&] { return idsOf(UIL_EnumeratePhyPathIdsStart, arrayId); }},
        {22, 16384, [&] { return idsOf(UIL_EnumeratePhyPathDiskIdsStart, pathId); }},
        {31, 128, [&] { return idsOf(UIL_EnumeratePathIdsStart, 0); }},
        {44, 210, [&] { return idsOf(INTF_UIL_GetPhyPathIdsByHbaId, 0); }},
        {61, 8, [&] {
             UilTpgInfo* t = nullptr;
             EXPECT_EQ(UIL_EnumerateTpgStart(arrayId, 0, &t), MPI_RET_SUCCESS);
             uint32_t n = t != nullptr ? t->paths->count : 0;
             UIL_EnumerateTpgEnd(t);
             return n;
         }},
        {66, 64, [&] {
             uint32_t h[UIL_MAX_HBAS];
             uint32_t n = 0;
             EXPECT_EQ(INTF_UIL_GetAllHbaIds(h, UIL_MAX_HBAS, &n), MPI_RET_SUCCESS);
             return n;
         }},
    };
    for (const ClampCase& c : cases) {
        for (uint64_t answered : {uint64_t{c.capacity}, uint64_t{c.capacity} + 1, uint64_t{0xFFFFFFFF}}) {
            std::string before = traceText();
            setFaults(std::to_string(c.nr) + " count=" + std::to_string(answered) + " 1\n");
            uint32_t n = c.countListed();
            EXPECT_EQ(n, c.capacity) << "nr " << c.nr << " count " << answered;
            bool traced = traceText().size() > before.size() &&
                          traceText().substr(before.size()).find("more than the capacity") != std::string::npos;
            EXPECT_EQ(traced, answered > c.capacity) << "nr " << c.nr << " count " << answered;
        }
    }
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
        std::fprintf(stderr, "test_objects_sim: cvadm-sim or sim/libcvsim.so not found above %s\n",
                     self.parent_path().c_str());
        return 1;
    }
    char dir[] = "/tmp/cvadm-objsim-XXXXXX";
    if (mkdtemp(dir) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    unsetenv("CVADM_ROOT");
    if (spawnAndWait({script, "--setup", dir}) != 0) {
        std::fprintf(stderr, "test_objects_sim: %s --setup %s failed\n", script.c_str(), dir);
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
        std::fprintf(stderr, "test_objects_sim: the simulated device cannot be opened under %s\n", root().c_str());
        return 1;
    }
    int rc = RUN_ALL_TESTS();
    INTF_UIL_Fini();
    std::error_code ignored;
    fs::remove_all(root(), ignored);
    return rc;
}
