// The object layer against the simulated host (see support/sim_harness.h).
// The listings themselves, and the check status records with their
// severities, are checked byte for byte by the show and check transcripts;
// here: what is sent to the driver, how often, and what comes back when the
// driver misbehaves. Under the sanitizers, leaks are reported when the run
// ends, after every failure path below has run.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/sim_harness.h"
#include "uil/uil.h"
#include "uil/uil_objects_int.h"
#include "uil/uil_status.h"
#include "mpi/mpi_scope.h"

namespace {

using simtest::clearRequests;
using simtest::le32;
using simtest::Request;
using simtest::requests;
using simtest::setFaults;

std::string traceText() { return simtest::rootFile("opt/Corvane/log/cli_uil_log.txt"); }

std::map<uint32_t, size_t> requestCounts()
{
    std::map<uint32_t, size_t> counts;
    for (const Request& r : requests()) {
        ++counts[r.nr];
    }
    return counts;
}

// ---------------------------------------------------------------------------
// Small owners for the records under test.

// A list filled by a Start routine and released by its End routine.
template <void (*End)(MPI_ListNode*)>
struct Listed {
    MPI_ListNode head;
    uint32_t ret;
    template <typename Start, typename... Args>
    explicit Listed(Start start, Args... args) : ret(start(args..., &head)) {}
    ~Listed() { End(&head); }
};
struct ArrayList : Listed<INTF_UIL_EnumerateArrayEnd> {
    ArrayList() : Listed(INTF_UIL_EnumerateArrayStart) {}
};
struct VLunList : Listed<INTF_UIL_EnumerateVLunEnd> {
    explicit VLunList(uint32_t arrayId) : Listed(INTF_UIL_EnumerateVLunStart, arrayId) {}
};
struct PathList : Listed<INTF_UIL_EnumeratePhyPathEnd> {
    explicit PathList(uint32_t arrayId) : Listed(INTF_UIL_EnumeratePhyPathStart, arrayId) {}
};
struct StatusList : Listed<INTF_UIL_CheckStatusEnd> {
    StatusList() : Listed(INTF_UIL_CheckArrayPathDiskStatus) {}
};
struct DetailDisk {
    DiskInfo disk;
    uint32_t ret;
    explicit DetailDisk(uint32_t diskId) : ret(INTF_UIL_GetDiskDetailInfoStart(diskId, &disk)) {}
    ~DetailDisk() { INTF_UIL_GetDiskDetailInfoEnd(&disk); }
};

template <typename T>
std::vector<T*> entries(MPI_ListNode* head)
{
    std::vector<T*> out;
    for (MPI_ListNode* n = head->next; n != head; n = n->next) {
        out.push_back(MPI_ListEntry<T>(n));
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

using ObjectsSim = simtest::SimTest;

// ---------------------------------------------------------------------------
// Arrays and controllers.

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
    EXPECT_EQ(le32(log[0].in, 0), 128u) << "capacity word";
}

TEST_F(ObjectsSim, ArrayInfoOfUnknownArrayAndSync)
{
    ArrayInfo unknown;
    EXPECT_EQ(INTF_UIL_GetArrayInfoStart(9999, &unknown), UIL_RET_QUERY_FAIL);
    INTF_UIL_GetArrayInfoEnd(&unknown);
    EXPECT_NE(traceText().find("Get Array {9999} info fail"), std::string::npos);
    EXPECT_NE(INTF_UIL_ArrayIDIsExist(9999), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_GetArrayInfoStart(0, nullptr), MPI_RET_INVALID_PARAM);

    // The sync request carries the ID at 0 and the serial number at 116.
    uint32_t id = arrayIds().front();
    EXPECT_EQ(INTF_UIL_ArrayIDIsExist(id), MPI_RET_SUCCESS);
    ArrayInfo a;
    ASSERT_EQ(UIL_GetArrayRecord(id, &a), MPI_RET_SUCCESS);
    clearRequests();
    ASSERT_EQ(INTF_UIL_SyncArrayInfo(id, a.sn), MPI_RET_SUCCESS);
    std::vector<Request> log = requests();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].nr, 13u);
    EXPECT_EQ(le32(log[0].in, 0), id);
    ASSERT_GE(log[0].in.size(), 136u);
    EXPECT_EQ(std::string(log[0].in.begin() + 116, log[0].in.begin() + 136), std::string(a.sn));
    EXPECT_EQ(INTF_UIL_SyncArrayInfo(id, nullptr), MPI_RET_INVALID_PARAM);
    setFaults("13 refuse 1\n");
    EXPECT_EQ(INTF_UIL_SyncArrayInfo(id, a.sn), MPI_RET_FAIL);
}

// The names themselves are in the show transcripts. Here: the cache agrees
// with the uncached call and asks each (array, controller) name once, a
// name finds its controller, an ID of 16 is never asked, and a refused name
// request gives "-".
TEST_F(ObjectsSim, ControllerNames)
{
    ArrayList arrays;
    ASSERT_EQ(arrays.ret, MPI_RET_SUCCESS);
    UilControllerNamer namer;
    bool named = false;
    for (int round = 0; round < 3; ++round) {
        if (round == 1) {
            clearRequests();
        }
        for (ArrayInfo* a : entries<ArrayInfo>(&arrays.head)) {
            for (UilController* c : entries<UilController>(&a->controllers)) {
                char cached[UIL_CONTROLLER_NAME_SIZE];
                namer.format(a->arrayId, c->tpgId, a->capability, cached, sizeof(cached));
                if (round > 0) {
                    continue;
                }
                char direct[UIL_CONTROLLER_NAME_SIZE];
                EXPECT_EQ(UIL_strFormatControllerId(a->arrayId, c->tpgId, a->capability, direct, sizeof(direct)),
                          MPI_RET_SUCCESS);
                EXPECT_STREQ(cached, direct);
                char tpgName[UIL_CONTROLLER_NAME_SIZE];
                ASSERT_EQ(INTF_UIL_GetTpgName(a->arrayId, c->tpgId, tpgName, sizeof(tpgName)), MPI_RET_SUCCESS);
                named = named || tpgName[0] != '\0';
                uint8_t found = 9;
                uint32_t foundId = 99;
                const char* lookFor = tpgName[0] != '\0' ? tpgName : "no such controller";
                ASSERT_EQ(INTF_UIL_CheckTpgNameIfExist(a->arrayId, lookFor, &found, &foundId), MPI_RET_SUCCESS);
                EXPECT_EQ(found, tpgName[0] != '\0' ? 1 : 0) << lookFor;
                EXPECT_EQ(foundId, found == 1 ? c->tpgId : 99u) << lookFor;
            }
        }
    }
    EXPECT_TRUE(named) << "the default topology names some controllers";
    EXPECT_EQ(requestCounts()[62], 0u) << "all cached already";

    char out[UIL_CONTROLLER_NAME_SIZE];
    EXPECT_EQ(UIL_strFormatControllerId(0, 16, 0, out, sizeof(out)), MPI_RET_SUCCESS);
    EXPECT_STREQ(out, "-");
    EXPECT_EQ(requestCounts()[62], 0u) << "an ID of 16 is never asked";
    setFaults("62 refuse 1\n");
    EXPECT_EQ(UIL_strFormatControllerId(0, 0, UIL_CAP_PAIR_NAMING, out, sizeof(out)), 1u);
    EXPECT_STREQ(out, "-");
    EXPECT_NE(traceText().find("Get tpg number information failed for array id 0, tpg id 0"), std::string::npos);
}

// ---------------------------------------------------------------------------
// VLUNs and disks: one request per record, never more.

TEST_F(ObjectsSim, VLunListsReadEachRecordOnce)
{
    for (uint32_t arrayId : arrayIds()) {
        UilIdList* disks = nullptr;
        ASSERT_EQ(INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, &disks), MPI_RET_SUCCESS);
        uint32_t diskCount = disks->count;
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
        std::vector<uint32_t> ids;
        size_t foreignMembers = 0;
        for (VLunInfo* v : entries<VLunInfo>(&vluns.head)) {
            ids.push_back(v->vlunId);
            uint32_t slot = UIL_VLunSlotForArray(*v, arrayId);
            EXPECT_EQ(v->arrayId[slot], arrayId) << "vlun " << v->vlunId;
            for (uint32_t m = 0; m < v->memberCount; ++m) {
                EXPECT_EQ(v->slotFilled[m], 1) << "vlun " << v->vlunId << " member " << m;
                foreignMembers += v->arrayId[m] != arrayId;
            }
        }
        EXPECT_EQ(ids, expectedIds) << "one row per VLUN of the array, by VLUN ID";
        std::map<uint32_t, size_t> counts = requestCounts();
        EXPECT_EQ(counts[21], 1u);
        EXPECT_EQ(counts[95], ids.size()) << "one VLUN-info request per VLUN";
        EXPECT_EQ(counts[23], diskCount + foreignMembers) << "each disk record read once";
    }
    VLunInfo one;
    ASSERT_EQ(INTF_UIL_GetVLunInfoStart(0, &one), MPI_RET_SUCCESS);
    EXPECT_EQ(one.slotFilled[0], 0) << "slots are filled on request only";
    INTF_UIL_GetVLunInfoEnd(&one);
}

// Listing every array with one cache reads a dual-site VLUN once: the
// second array takes it from the cache, and its rows are those an uncached
// listing gives (links and storage aside).
TEST_F(ObjectsSim, DualSiteVLunsAreReadOncePerCommand)
{
    auto body = [](const VLunInfo& v) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(&v);
        return std::vector<uint8_t>(bytes + offsetof(VLunInfo, vlunId), bytes + offsetof(VLunInfo, storage));
    };
    std::map<uint32_t, std::vector<std::vector<uint8_t>>> plain;
    size_t plainInfos = 0;
    std::set<uint32_t> distinct;
    size_t dualSite = 0;
    clearRequests();
    for (uint32_t arrayId : arrayIds()) {
        VLunList vluns(arrayId);
        for (VLunInfo* v : entries<VLunInfo>(&vluns.head)) {
            plain[arrayId].push_back(body(*v));
            distinct.insert(v->vlunId);
            dualSite += v->memberCount == 2;
        }
    }
    plainInfos = requestCounts()[95];
    ASSERT_GT(dualSite, 0u) << "the default topology has dual-site VLUNs in two arrays";

    UilVLunCache cache;
    clearRequests();
    for (uint32_t arrayId : arrayIds()) {
        MPI_ListNode head;
        uint32_t ret = INTF_UIL_EnumerateVLunCachedStart(arrayId, &head, &cache);
        MPI_Ended<INTF_UIL_EnumerateVLunEnd> owner(&head);
        if (plain.count(arrayId) == 0) {
            EXPECT_NE(ret, MPI_RET_SUCCESS);
            continue;
        }
        ASSERT_EQ(ret, MPI_RET_SUCCESS);
        std::vector<std::vector<uint8_t>> cached;
        for (VLunInfo* v : entries<VLunInfo>(&head)) {
            cached.push_back(body(*v));
        }
        EXPECT_EQ(cached, plain[arrayId]) << "array " << arrayId;
    }
    EXPECT_EQ(requestCounts()[95], distinct.size()) << "each VLUN's record asked once";
    EXPECT_LT(requestCounts()[95], plainInfos);
}

// A disk's detail reads the disk, its path list and each of its paths once
// (the status words themselves are in the show vlun transcript).
TEST_F(ObjectsSim, DiskDetailReadsEachPathOnce)
{
    for (uint32_t arrayId : arrayIds()) {
        VLunList vluns(arrayId);
        for (VLunInfo* v : entries<VLunInfo>(&vluns.head)) {
            clearRequests();
            DetailDisk d(v->diskId[UIL_VLunSlotForArray(*v, arrayId)]);
            ASSERT_EQ(d.ret, MPI_RET_SUCCESS) << "vlun " << v->vlunId;
            uint32_t paths = 0;
            for (UilController* c : entries<UilController>(&d.disk.controllers)) {
                for (UilPathInfo* p : entries<UilPathInfo>(&c->paths)) {
                    EXPECT_EQ(p->controllerId, c->tpgId);
                    ++paths;
                }
            }
            EXPECT_EQ(d.disk.pathCount, paths);
            std::map<uint32_t, size_t> counts = requestCounts();
            EXPECT_EQ(counts[23], 1u);
            EXPECT_EQ(counts[31], 1u);
            EXPECT_EQ(counts[32], paths) << "one logical path request per path";
        }
    }
}

// ---------------------------------------------------------------------------
// Paths and HBAs.

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
// A misbehaving driver.

TEST_F(ObjectsSim, EachRequestRefusedOnce)
{
    // Every request of the object layer fails once somewhere inside a full
    // walk: nothing may crash or leak, and the fault must have been used.
    for (uint32_t nr : {11u, 12u, 21u, 22u, 23u, 25u, 31u, 32u, 41u, 42u, 44u, 60u, 61u, 62u, 64u, 65u, 66u, 95u}) {
        for (const char* action : {"refuse", "untouched", "code=1031"}) {
            setFaults(std::to_string(nr) + " " + action + " 1\n");
            walkEverything();
            EXPECT_EQ(simtest::faults().find(std::to_string(nr) + " "), std::string::npos) << "nr " << nr << " " << action;
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
    // A refused request clears the out pointer and leaves lists empty.
    auto idList = [](const std::function<uint32_t(UilIdList**)>& start) {
        UilIdList* out = reinterpret_cast<UilIdList*>(1);
        uint32_t ret = start(&out);
        EXPECT_EQ(out, nullptr) << "the out pointer is cleared";
        return ret;
    };
    auto emptied = [](const MPI_ListNode& head, uint32_t ret) {
        EXPECT_TRUE(MPI_ListEmpty(&head));
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
        return emptied(d.disk.controllers, d.ret);
    };
    auto hbaIds = [] {
        uint32_t h[4];
        uint32_t n = 9;
        uint32_t ret = INTF_UIL_GetAllHbaIds(h, 4, &n);
        EXPECT_EQ(n, 0u);
        return ret;
    };
    const RefusedCase cases[] = {
        {11, "array ids", [=] { return idList([](UilIdList** o) { return INTF_UIL_EnumerateArrayIdsStart(o); }); },
         UIL_RET_QUERY_FAIL},
        {11, "array list", [=] { ArrayList a; return emptied(a.head, a.ret); }, UIL_RET_QUERY_FAIL},
        {12, "array info", arrayInfo, UIL_RET_QUERY_FAIL},
        {21, "array info, disk check", arrayInfo, UIL_RET_QUERY_FAIL},
        {60, "array info, controllers", arrayInfo, UIL_RET_QUERY_FAIL},
        {21, "disk ids",
         [=] { return idList([=](UilIdList** o) { return INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, o); }); }, 1},
        {25, "vlun ids",
         [=] { return idList([=](UilIdList** o) { return INTF_UIL_EnumerateArrayVlunIdsStart(arrayId, o); }); }, 1},
        {21, "vlun list", [=] { VLunList v(arrayId); return emptied(v.head, v.ret); }, 1},
        {23, "disk detail", diskDetail, MPI_RET_IOCTL_FAIL},
        {31, "disk detail, paths", diskDetail, MPI_RET_IOCTL_FAIL},
        {60, "disk detail, controllers", diskDetail, MPI_RET_IOCTL_FAIL},
        {95, "vlun info", [] { VLunInfo v; return INTF_UIL_GetVLunInfoStart(0, &v); }, MPI_RET_VLUN_NOT_EXIST},
        {41, "physical paths", [=] { PathList p(arrayId); return emptied(p.head, p.ret); }, UIL_RET_NO_PATH},
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

std::vector<uint32_t> idsOf(uint32_t (*start)(uint32_t, UilIdList**), uint32_t id)
{
    UilIdList* list = nullptr;
    EXPECT_EQ(start(id, &list), MPI_RET_SUCCESS);
    std::vector<uint32_t> out;
    if (list != nullptr) {
        out.assign(list->view().begin(), list->view().end());
    }
    UIL_IdListFree(list);
    return out;
}

// What each ID-list request carries, written out from the driver's tables:
// its declared size, the object asked about and the capacity word.
struct SentCase {
    uint32_t nr, declared;
    size_t objectAt;  // SIZE_MAX: no object
    size_t capacityAt;  // SIZE_MAX: no capacity word
    uint32_t capacity;
    std::function<void(uint32_t)> send;
};

TEST_F(ObjectsSim, IdListRequestsCarryTheirInputsWhereTheDriverReadsThem)
{
    constexpr size_t kNo = SIZE_MAX;
    auto list = [](uint32_t (*start)(uint32_t, UilIdList**)) {
        return [start](uint32_t id) { (void)idsOf(start, id); };
    };
    const SentCase cases[] = {
        {11, 16, kNo, 0, 128, [](uint32_t) { (void)arrayIds(); }},
        {21, 24, 0, 8, 16384, list(INTF_UIL_EnumerateArrayDiskIdsStart)},
        {25, 20, 0, 4, 16384, list(INTF_UIL_EnumerateArrayVlunIdsStart)},
        {60, 16, 0, 4, 16, list(UIL_EnumerateTpgIdsStart)},
        {41, 20, 0, 4, 16384, list(UIL_EnumeratePhyPathIdsStart)},
        {22, 24, 0, 8, 16384, list(UIL_EnumeratePhyPathDiskIdsStart)},
        {31, 16, 0, 4, 128, list(UIL_EnumeratePathIdsStart)},
        {44, 848, 0, kNo, 0, list(INTF_UIL_GetPhyPathIdsByHbaId)},
    };
    const uint32_t object = 3;
    for (const SentCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "nr " << c.nr);
        clearRequests();
        c.send(object);
        std::vector<Request> log = requests();
        ASSERT_EQ(log.size(), 1u);
        EXPECT_EQ(log[0].nr, c.nr);
        EXPECT_EQ(log[0].size, c.declared);
        ASSERT_EQ(log[0].in.size(), c.declared);
        if (c.objectAt != kNo) {
            EXPECT_EQ(le32(log[0].in, c.objectAt), object);
        }
        if (c.capacityAt != kNo) {
            EXPECT_EQ(le32(log[0].in, c.capacityAt), c.capacity);
        }
        size_t nonZero = 0;
        for (size_t i = 0; i < log[0].in.size(); ++i) {
            bool input = (c.objectAt != kNo && i / 4 == c.objectAt / 4) ||
                         (c.capacityAt != kNo && i / 4 == c.capacityAt / 4);
            nonZero += !input && log[0].in[i] != 0;
        }
        EXPECT_EQ(nonZero, 0u) << "everything but the inputs is sent cleared";
    }
}

// A count above the capacity is clamped; the slots the driver did not fill
// (zero) and any ID it repeats are listed once. So whatever the count, a
// list holds the IDs of the honest answer, plus 0 once when the answer
// claimed more than it wrote; and its reported count is the one answered.
struct ClampCase {
    uint32_t nr;
    uint32_t capacity;
    std::function<std::vector<uint32_t>()> listed;
};

TEST_F(ObjectsSim, CountsAboveTheCapacityAreClampedAndRepeatsListedOnce)
{
    uint32_t arrayId = arrayIds().front();
    std::vector<UilPathInfo> paths = allPhysicalPaths();
    ASSERT_FALSE(paths.empty());
    uint32_t pathId = paths.front().pathId;
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
             std::vector<uint32_t> out;
             if (t != nullptr) {
                 out.assign(t->paths->view().begin(), t->paths->view().end());
             }
             UIL_EnumerateTpgEnd(t);
             return out;
         }},
        {66, 64, [&] {
             uint32_t h[UIL_MAX_HBAS];
             uint32_t n = 0;
             EXPECT_EQ(INTF_UIL_GetAllHbaIds(h, UIL_MAX_HBAS, &n), MPI_RET_SUCCESS);
             return std::vector<uint32_t>(h, h + n);
         }},
    };
    for (const ClampCase& c : cases) {
        std::vector<uint32_t> honest = c.listed();
        ASSERT_FALSE(honest.empty()) << "nr " << c.nr;
        ASSERT_LT(honest.size(), c.capacity) << "nr " << c.nr << ": the topology leaves room to fill";
        std::set<uint32_t> expected(honest.begin(), honest.end());
        expected.insert(0);
        for (uint64_t answered : {uint64_t{honest.size()} + 1, uint64_t{c.capacity}, uint64_t{c.capacity} + 1,
                                  uint64_t{0xFFFFFFFF}}) {
            SCOPED_TRACE(testing::Message() << "nr " << c.nr << " count " << answered);
            std::string before = traceText();
            setFaults(std::to_string(c.nr) + " count=" + std::to_string(answered) + " 1\n");
            std::vector<uint32_t> ids = c.listed();
            EXPECT_EQ(ids, std::vector<uint32_t>(expected.begin(), expected.end()));
            std::string added = traceText().substr(before.size());
            EXPECT_EQ(added.find("more than the capacity") != std::string::npos, answered > c.capacity);
            bool zeroIsReal = honest.front() == 0;
            bool repeats = answered > honest.size() + (zeroIsReal ? 0 : 1);
            EXPECT_EQ(added.find("repeated") != std::string::npos, repeats) << added;
        }
    }
}

// The driver claims 200 arrays and writes five: every array is read and
// listed once, and the caller still learns the count as answered (the
// rule of `show path` refuses a count above 128).
TEST_F(ObjectsSim, ArrayCountAboveTheCapacityListsEachArrayOnce)
{
    std::vector<uint32_t> honest = arrayIds();
    ArrayList plain;
    ASSERT_EQ(plain.ret, MPI_RET_SUCCESS);
    std::vector<uint32_t> listedPlain;
    for (ArrayInfo* a : entries<ArrayInfo>(&plain.head)) {
        listedPlain.push_back(a->arrayId);
    }

    setFaults("11 count=200 1\n");
    clearRequests();
    ArrayList arrays;
    ASSERT_EQ(arrays.ret, MPI_RET_SUCCESS);
    std::vector<uint32_t> listed;
    for (ArrayInfo* a : entries<ArrayInfo>(&arrays.head)) {
        listed.push_back(a->arrayId);
    }
    EXPECT_EQ(listed, listedPlain);
    std::set<uint32_t> asked;
    size_t infoRequests = 0;
    for (const Request& r : requests()) {
        if (r.nr == 12) {
            ++infoRequests;
            asked.insert(le32(r.in, 0));
        }
    }
    EXPECT_EQ(infoRequests, asked.size()) << "no array is asked for twice";

    for (uint32_t answered : {200u, 128u, 129u, 0u}) {
        setFaults("11 count=" + std::to_string(answered) + " 1\n");
        uint32_t ids[UIL_MAX_ARRAYS];
        uint32_t count = 99;
        uint32_t reported = 99;
        ASSERT_EQ(INTF_UIL_EnumerateArrayIdsCounted(ids, UIL_MAX_ARRAYS, &count, &reported), MPI_RET_SUCCESS);
        EXPECT_EQ(reported, answered);
        EXPECT_LE(count, honest.size() + 1) << "the honest IDs and the unfilled slots' 0, once";
        EXPECT_TRUE(std::is_sorted(ids, ids + count));
        EXPECT_EQ(std::adjacent_find(ids, ids + count), ids + count) << "count " << answered;
        if (answered == 0) {
            EXPECT_EQ(count, 0u);
        }
    }
    // A caller with less room gets what fits; the answered count is kept.
    setFaults("11 count=200 1\n");
    uint32_t two[2];
    uint32_t count = 0;
    uint32_t reported = 0;
    ASSERT_EQ(INTF_UIL_EnumerateArrayIdsCounted(two, 2, &count, &reported), MPI_RET_SUCCESS);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(reported, 200u);
}

}  // namespace
