// Path-changing requests and the I/O reliability counters against the
// simulated host (see support/sim_harness.h): the bytes each request puts
// on the wire, the driver's refusals and how they come back, what a change
// does to the next path record, and the counter lists against the counters
// this file gives the topology.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/cli_pathset.h"
#include "cli/cli_reliability.h"
#include "support/sim_harness.h"
#include "uil/uil.h"
#include "uil/uil_setcfg.h"
#include "uil/uil_oper.h"
#include "uil/uil_pathset.h"
#include "uil/uil_reliability.h"
#include "support/dispatch.h"

namespace {

using simtest::clearRequests;
using simtest::le32;
using simtest::Request;
using simtest::requests;
using simtest::setFaults;

// ---------------------------------------------------------------------------
// The topology of this run: the default host, with reliability counters on
// disks 0 (VLUN 0), 1 (VLUN 1, no latency samples), 3 and 10 (the two
// members of dual-site VLUN 3), and path 19 on array 3: gone, no disks, so
// it can be cleared as obsolete.
const char kCounters[] = R"({
  "0":  {"error_io": 11, "error_cmd": 12, "queued_io": 13, "queued_cmd": 14, "latest_ms": 15, "max_ms": 160,
         "latency_sum_ms": 1000, "samples": 7,
         "paths": [{"path": 18, "error_io": 3, "latest_ms": 9, "latency_sum_ms": 50, "samples": 10},
                   {"path": 2, "error_io": 5, "error_cmd": 6, "queued_io": 7, "queued_cmd": 8,
                    "latest_ms": 40, "max_ms": 1900, "latency_sum_ms": 900, "samples": 4},
                   {"path": 0, "queued_io": 2, "latency_sum_ms": 30}]},
  "1":  {"error_io": 1, "latest_ms": 4, "max_ms": 8, "latency_sum_ms": 500, "samples": 0},
  "3":  {"error_io": 31, "latency_sum_ms": 33, "samples": 3},
  "10": {"error_io": 101, "latency_sum_ms": 100, "samples": 4}
})";

class Sandbox : public testing::Environment {
public:
    void SetUp() override
    {
        nlohmann::ordered_json doc = nlohmann::ordered_json::parse(simtest::rootFile("sim/topology.json"));
        const nlohmann::json counters = nlohmann::json::parse(kCounters);
        for (auto& disk : doc["disks"]) {
            const std::string id = std::to_string(disk["id"].get<uint32_t>());
            if (counters.contains(id)) {
                disk["io_counts"] = counters[id];
            }
        }
        doc["paths"].push_back({{"id", 19}, {"array", 3}, {"controller", 0}, {"hba", 2},
                                {"target", "500a0b8a4c7e0b09"}, {"link", "down"}, {"present", false}});
        std::ofstream(simtest::root() + "/sim/state.json") << doc.dump();
        std::ofstream(simtest::root() + "/opt/Corvane/log/serial_oper") << "0";
    }
};
const testing::Environment* const g_sandbox = testing::AddGlobalTestEnvironment(new Sandbox);

const Request& lastRequest()
{
    static Request last;
    std::vector<Request> all = requests();
    EXPECT_FALSE(all.empty());
    last = all.empty() ? Request{} : all.back();
    return last;
}

// The payload as the test expects it: `size` bytes, zero but for the words given.
std::vector<uint8_t> payload(uint32_t size, std::map<size_t, uint32_t> words)
{
    std::vector<uint8_t> bytes(size, 0);
    for (const auto& [off, v] : words) {
        for (size_t i = 0; i < 4; ++i) {
            bytes[off + i] = static_cast<uint8_t>(v >> (8 * i));
        }
    }
    return bytes;
}

struct PathRecord {
    UilPathInfo info{};
    uint32_t ret;
    explicit PathRecord(uint32_t id) : ret(INTF_UIL_GetPhyPathInfo(id, &info)) {}
    std::string state() const { return ret == MPI_RET_SUCCESS ? info.pathState : "(none)"; }
};

// ---------------------------------------------------------------------------
// Every request on the wire, byte for byte.

TEST(PathSetWire, EachRequestCarriesItsFieldsAtTheirOffsets)
{
    struct Row {
        const char* what;
        std::function<uint32_t()> send;
        uint32_t nr;
        uint32_t size;
        std::map<size_t, uint32_t> words;
    };
    const std::vector<Row> rows = {
        {"enable path 4", [] { return INTF_UIL_SetPhyPathState("CLI", 4, true, nullptr); }, 50, 608,
         {{0, 26}, {8, 4}, {40, 1}}},
        {"normal on path 1", [] { return INTF_UIL_SetPhyPathIoState("CLI", 1, "CVIOC_PATH_IO_NORMAL", nullptr); },
         50, 608, {{0, 24}, {8, 1}, {16, 19}}},
        // The parsing table reads "TIMEOUT" as 23 (the display table as 24).
        {"logical timeout", [] { return INTF_UIL_SetPathIoState("CLI", 5, 8, "CVIOC_PATH_IO_TIMEOUT"); }, 50, 608,
         {{0, 25}, {8, 5}, {12, 8}, {16, 23}}},
        {"unknown error", [] { return INTF_UIL_SetPhyPathIoUnknownError(6, 5); }, 50, 608,
         {{0, 27}, {8, 6}, {16, 5}}},
        {"send io delay", [] { return INTF_UIL_SetSendioDelayTime(8, 250); }, 50, 608, {{0, 45}, {8, 8}, {24, 250}}},
        {"io lag", [] { return INTF_UIL_SetPathIOLag(12, 30, true); }, 50, 608,
         {{0, 52}, {8, 12}, {16, 30}, {20, 1}}},
        {"clear statistic", [] { return INTF_UIL_ClearPhyPathStatistic(11, nullptr); }, 108, 1080, {{0, 11}}},
        {"reliability of a path",
         [] {
             UilIoReliability r{};
             r.scope = UIL_RELIABILITY_PATH;
             r.flag = UIL_RELIABILITY_VALID;
             return INTF_UIL_GetIoReliabilityById(5, 9, &r);
         },
         104, 80, {{0, 5}, {4, 9}, {8, 1}, {12, 1}}},
        {"alarm switch", [] { uint32_t on; return UIL_Alarm_GetEnable(&on); }, 98, 4, {}},
        {"reliability switch", [] { uint32_t on; return UIL_GetReliabilitySwitch(&on); }, 99, 4, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        clearRequests();
        EXPECT_EQ(row.send(), MPI_RET_SUCCESS);
        ASSERT_EQ(requests().size(), 1u);
        const Request& r = lastRequest();
        EXPECT_EQ(r.nr, row.nr);
        EXPECT_EQ(r.size, row.size);
        EXPECT_EQ(r.in, payload(row.size, row.words));
    }
}

TEST(PathSetWire, AWordThatIsNoIoStateSendsNothing)
{
    clearRequests();
    EXPECT_EQ(INTF_UIL_SetPhyPathIoState("CLI", 1, "normal", nullptr), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(INTF_UIL_SetPathIoState("CLI", 5, 8, "CVIOC_PATH_IO_BOGUS"), MPI_RET_INVALID_PARAM);
    EXPECT_TRUE(requests().empty());
}

// ---------------------------------------------------------------------------
// Refusals: the code comes back from the result word; a frame failure
// without a word is the channel's failure.

class PathSetSim : public simtest::SimTest {};

TEST_F(PathSetSim, RefusalsComeBackWithTheDriversCode)
{
    struct Row {
        const char* what;
        std::function<uint32_t()> send;
        const char* faults;
        uint32_t expected;
    };
    const std::vector<Row> rows = {
        // Disk 6 runs over path 7 alone.
        {"disable the only path", [] { return INTF_UIL_SetPhyPathState("CLI", 7, false, nullptr); }, "", 1029},
        {"normal on a disabled path",
         [] { return INTF_UIL_SetPhyPathIoState("CLI", 3, "CVIOC_PATH_IO_NORMAL", nullptr); }, "", 1047},
        {"obsolete but disks run over it", [] { return INTF_UIL_ClearObsoletePath("CLI", 9, nullptr); }, "", 1059},
        {"obsolete but not faulty", [] { return INTF_UIL_ClearObsoletePath("CLI", 0, nullptr); }, "", 1060},
        {"unknown path", [] { return INTF_UIL_SetPhyPathState("CLI", 999, true, nullptr); }, "", 1026},
        {"refused frame", [] { return INTF_UIL_SetPhyPathState("CLI", 4, true, nullptr); }, "50 refuse 1", 1031},
        // Injected codes arrive in the frame and the result word, as the
        // driver's own refusals do.
        {"injected 1059", [] { return INTF_UIL_ClearObsoletePath("CLI", 19, nullptr); }, "50 code=1059 1", 1059},
        {"injected 1060", [] { return INTF_UIL_ClearObsoletePath("CLI", 19, nullptr); }, "50 code=1060 1", 1060},
        {"injected 1029", [] { return INTF_UIL_SetPhyPathState("CLI", 4, false, nullptr); }, "50 code=1029 1", 1029},
        {"injected 1047",
         [] { return INTF_UIL_SetPhyPathIoState("CLI", 4, "CVIOC_PATH_IO_NORMAL", nullptr); }, "50 code=1047 1", 1047},
        {"statistic request fails", [] { return INTF_UIL_ClearPhyPathStatistic(0, nullptr); }, "108 code=1030 1",
         UIL_RET_CLEAR_STAT_FAIL},
        {"clearing refused", [] { return INTF_UIL_ClearIoCount(); }, "105 refuse 1", 1031},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        setFaults(row.faults);
        clearRequests();
        EXPECT_EQ(row.send(), row.expected);
        const Request& r = lastRequest();
        if (r.nr == 50 && std::strlen(row.faults) == 0) {
            EXPECT_EQ(r.result, row.expected);  // the frame carries it as well
        }
    }
    // Nothing of the refused changes reached the driver.
    EXPECT_EQ(PathRecord(7).state(), UIL_PATH_STATE_NORMAL);
    EXPECT_EQ(PathRecord(19).ret, MPI_RET_SUCCESS);
}

TEST_F(PathSetSim, ChangesShowInTheNextPathRecord)
{
    UilOperLogPara record;
    ASSERT_EQ(INTF_UIL_SetPhyPathState("CLI", 0, false, &record), MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjType, 103u);
    EXPECT_EQ(record.uiObjId, 0u);
    EXPECT_STREQ(record.szValue, "0");
    EXPECT_EQ(PathRecord(0).state(), UIL_PATH_STATE_DISABLE);
    ASSERT_EQ(INTF_UIL_SetPhyPathState("CLI", 0, true, &record), MPI_RET_SUCCESS);
    EXPECT_STREQ(record.szValue, "1");
    EXPECT_EQ(PathRecord(0).state(), UIL_PATH_STATE_NORMAL);

    EXPECT_EQ(PathRecord(2).state(), UIL_PATH_STATE_TIMEOUT);
    ASSERT_EQ(INTF_UIL_SetPhyPathIoState("CLI", 2, "CVIOC_PATH_IO_NORMAL", &record), MPI_RET_SUCCESS);
    EXPECT_STREQ(record.szValue, "19");
    EXPECT_EQ(PathRecord(2).state(), UIL_PATH_STATE_NORMAL);

    ASSERT_EQ(INTF_UIL_ClearObsoletePath("CLI", 19, &record), MPI_RET_SUCCESS);
    EXPECT_STREQ(record.szValue, "19");
    EXPECT_NE(PathRecord(19).ret, MPI_RET_SUCCESS);

    ASSERT_EQ(INTF_UIL_ClearPhyPathStatistic(9, nullptr), MPI_RET_SUCCESS);
    PathRecord cleared(9);
    EXPECT_EQ(cleared.info.ioRetryCount, 0u);
    EXPECT_EQ(cleared.info.pathFaultCount, 0u);
}

// ---------------------------------------------------------------------------
// The checks before a state change, one case per check, in their order.

TEST_F(PathSetSim, StateChangeChecksStopAtTheFirstThatFails)
{
    struct Row {
        const char* what;
        uint32_t path;
        bool enable;
        const char* faults;
        UilPathStateRefusal refusal;
        uint32_t arrayId;
        uint32_t controllerId;
    };
    const Row rows[] = {
        {"no such path", 4242, true, "", UIL_PATHSTATE_NO_PATH, 0, 0},
        {"iSCSI, enabling", 10, true, "", UIL_PATHSTATE_ISCSI, 2, 0},
        {"iSCSI, disabling", 11, false, "", UIL_PATHSTATE_ISCSI, 2, 1},
        // Array 3 lists no disk: a disable is refused there...
        {"array without disks, disabling", 15, false, "", UIL_PATHSTATE_NO_ARRAY, 3, 0},
        {"array unreadable", 0, false, "12 code=1057 1", UIL_PATHSTATE_NO_ARRAY, 0, 0},
        // ... an enable of its LUN-less path goes on, to find no support.
        {"array without disks, enabling", 15, true, "", UIL_PATHSTATE_NOT_SUPPORTED, 3, 0},
        // Reading the array asks for its controllers first (answered
        // empty here); the third controller query is the check's own.
        {"controller missing", 6, true, "61 code=1024 2\n61 refuse 1", UIL_PATHSTATE_NO_CONTROLLER, 1, 0},
        {"controller missing, disabling", 6, false, "61 code=1024 2\n61 refuse 1", UIL_PATHSTATE_OK, 1, 0},
        {"controller disabled", 14, true, "", UIL_PATHSTATE_CONTROLLER_DISABLED, 4, 1},
        {"controller disabled, disabling", 14, false, "", UIL_PATHSTATE_OK, 4, 1},
        {"all well", 6, true, "", UIL_PATHSTATE_OK, 1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        setFaults(row.faults);
        clearRequests();
        const UilPathStateCheck check = UIL_CanSetPhyPathState(row.path, row.enable);
        EXPECT_EQ(check.refusal, row.refusal);
        if (row.refusal != UIL_PATHSTATE_NO_PATH) {
            EXPECT_EQ(check.arrayId, row.arrayId);
            EXPECT_EQ(check.controllerId, row.controllerId);
        }
        for (const Request& r : requests()) {
            EXPECT_NE(r.nr, 50u);  // checking never changes anything
        }
    }
}

// The HBA check looks the HBA up by the path's initiator port: path 0 runs
// over HBA 0, path 4 over the disabled HBA 1.
TEST_F(PathSetSim, HbaCheckRefusesADisabledHbaAndAFailedLookup)
{
    const std::string internal = "Failed to execute the command due to internal errors.\n";
    struct Row {
        const char* what;
        uint32_t path;
        const char* faults;
        uint8_t result;
        std::string printed;
    };
    const Row rows[] = {
        {"enabled HBA", 0, "", 1, ""},
        {"disabled HBA", 4, "", 0, "The path cannot be enabled since the HBA is in disabled state.\n"},
        {"lookup refused", 0, "64 refuse 1", 0, internal},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        PathRecord path(row.path);
        ASSERT_EQ(path.ret, MPI_RET_SUCCESS);
        setFaults(row.faults);
        clearRequests();
        testing::internal::CaptureStdout();
        const uint8_t result = MPCLI_CheckHbaInfo(&path.info);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.printed);
        EXPECT_EQ(result, row.result);
        ASSERT_EQ(requests().size(), 1u);
        EXPECT_EQ(requests()[0].nr, 64u);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(requests()[0].in.data() + 12)), path.info.initiatorPort);
    }
}

// ---------------------------------------------------------------------------
// Path check: the all-busy flag at 40, the step it starts, the log line.

TEST(PathCheckRule, AllBusyOnlyForANormalPathWithWorkingPathsAllBusy)
{
    struct Row {
        const char* state;
        uint32_t working;
        uint32_t busy;
        uint32_t expected;
    };
    const Row rows[] = {
        {UIL_PATH_STATE_NORMAL, 2, 2, 1},   {UIL_PATH_STATE_NORMAL, 3, 2, 0},
        {UIL_PATH_STATE_NORMAL, 0, 0, 0},   {UIL_PATH_STATE_DISABLE, 2, 2, 0},
        {UIL_PATH_STATE_TIMEOUT, 1, 1, 0},  {UIL_PATH_STATE_FAULT, 1, 1, 0},
    };
    for (const Row& row : rows) {
        UilPathInfo path{};
        path.pathState = row.state;
        path.workingLunCount = row.working;
        path.busyLunCount = row.busy;
        EXPECT_EQ(UIL_PathCheckAllBusy(path), row.expected) << row.state << " " << row.working << "/" << row.busy;
    }
}

TEST_F(PathSetSim, PathCheckSendsTheBusyFlagAndAdvancesTheStep)
{
    struct Row {
        uint32_t path;
        uint32_t flag;
    };
    // 7: busy, both its logical paths busy; 8: normal, not busy; 15: no
    // disks; 9: down; 16: its HBA is disabled.
    const Row rows[] = {{7, 1}, {8, 0}, {15, 0}, {9, 0}, {16, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const uint32_t before = PathRecord(row.path).info.checkStep;
        clearRequests();
        uint32_t state = 0;
        EXPECT_EQ(INTF_UIL_StartPhyPathCheck("CLI", "start", " pathcheck path_id=x", row.path, &state),
                  MPI_RET_SUCCESS);
        EXPECT_EQ(state, UIL_PATH_CHECK_SENT);
        const Request& r = lastRequest();
        EXPECT_EQ(r.in, payload(608, {{0, 28}, {8, row.path}, {40, row.flag}}));
        PathRecord after(row.path);
        EXPECT_EQ(after.info.checkStep, before == UIL_CHECK_STEP_CHECKING
                                            ? uint32_t(row.path == 9 ? UIL_CHECK_STEP_FAIL : UIL_CHECK_STEP_SUCCEED)
                                            : uint32_t(UIL_CHECK_STEP_CHECKING));
        EXPECT_EQ(after.info.prevCheckStep, before);
        EXPECT_EQ(after.info.checkStartType, uint32_t(UIL_CHECK_START_MANUAL));
    }
    // A second check of path 7 ends the one running: its link is up.
    uint32_t state = 0;
    ASSERT_EQ(INTF_UIL_StartPhyPathCheck("CLI", "start", " pathcheck path_id=7", 7, &state), MPI_RET_SUCCESS);
    EXPECT_EQ(PathRecord(7).info.checkStep, uint32_t(UIL_CHECK_STEP_SUCCEED));
}

TEST_F(PathSetSim, APathCheckIsLoggedWithItsOutcomeAndAMissingPathIsNeverSent)
{
    const std::string logPath = "opt/Corvane/log/oper_log";
    const size_t before = simtest::rootFile(logPath).size();
    uint32_t state = 0;
    EXPECT_EQ(INTF_UIL_StartPhyPathCheck("CLI", "start", " pathcheck path_id=6", 6, &state), MPI_RET_SUCCESS);
    EXPECT_EQ(state, UIL_PATH_CHECK_SENT);
    clearRequests();
    EXPECT_NE(INTF_UIL_StartPhyPathCheck("CLI", "start", " pathcheck path_id=4242", 4242, &state),
              MPI_RET_SUCCESS);
    EXPECT_EQ(state, UIL_PATH_CHECK_NOT_SENT);
    for (const Request& r : requests()) {
        EXPECT_NE(r.nr, 50u);
    }
    const std::string added = simtest::rootFile(logPath).substr(before);
    const std::string event = "[" + std::to_string(UIL_OPER_PATH_CHECK) + "]";
    EXPECT_NE(added.find(event + " [start pathcheck path_id=6] [Send path(path id = 6)health check conmand]"),
              std::string::npos)
        << added;
    auto lineWith = [&added](const std::string& text) {
        const size_t at = added.find(text);
        if (at == std::string::npos) {
            return std::string();
        }
        const size_t start = added.rfind('\n', at);
        return added.substr(start == std::string::npos ? 0 : start + 1,
                            added.find('\n', at) - (start == std::string::npos ? 0 : start + 1));
    };
    EXPECT_TRUE(lineWith("path_id=6]").ends_with(" [1]")) << added;
    EXPECT_TRUE(lineWith("path_id=4242]").ends_with(" [0]")) << added;
}

// ---------------------------------------------------------------------------
// Reliability counters.

struct Reliability {
    MPI_ListNode head;
    uint32_t ret;
    Reliability(UilReliabilityKind kind, uint32_t vlunId)
        : ret(INTF_UIL_EnumerateIoReliabilityStart(kind, vlunId, &head))
    {
    }
    ~Reliability() { INTF_UIL_EnumerateIoReliabilityEnd(&head); }
    std::vector<const UilIoReliability*> rows() const
    {
        std::vector<const UilIoReliability*> out;
        for (const MPI_ListNode* n = head.next; n != &head; n = n->next) {
            out.push_back(reinterpret_cast<const UilIoReliability*>(n));
        }
        return out;
    }
};

TEST(ReliabilityRule, AverageIsSumOverSamplesAndZeroWithoutSamples)
{
    EXPECT_EQ(UIL_CalAverageIoLatency(1000, 7), 142u);
    EXPECT_EQ(UIL_CalAverageIoLatency(6, 7), 0u);
    EXPECT_EQ(UIL_CalAverageIoLatency(500, 0), 0u);
    EXPECT_EQ(UIL_CalAverageIoLatency(UINT64_MAX, 1), UINT64_MAX);
}

TEST(ReliabilityRule, SortsAreAscendingAndStable)
{
    // (vlun, path) in the order a dual-site VLUN whose second member has the
    // lower path IDs would be read.
    const std::pair<uint32_t, uint32_t> input[] = {{7, 12}, {3, 4}, {7, 2}, {3, 9}, {5, 4}};
    std::vector<UilIoReliability> records(std::size(input));
    MPI_ListNode head;
    MPI_ListInit(&head);
    for (size_t i = 0; i < records.size(); ++i) {
        records[i].vlunId = input[i].first;
        records[i].pathId = input[i].second;
        MPI_ListAddTail(&records[i].links, &head);
    }
    auto order = [&head] {
        std::vector<std::pair<uint32_t, uint32_t>> out;
        for (MPI_ListNode* n = head.next; n != &head; n = n->next) {
            const auto* r = reinterpret_cast<const UilIoReliability*>(n);
            out.emplace_back(r->vlunId, r->pathId);
        }
        return out;
    };
    INTF_UIL_SortReliabilityListByPathID(&head);
    EXPECT_EQ(order(), (std::vector<std::pair<uint32_t, uint32_t>>{{7, 2}, {3, 4}, {5, 4}, {3, 9}, {7, 12}}));
    INTF_UIL_SortReliabilityListByVLunID(&head);
    EXPECT_EQ(order(), (std::vector<std::pair<uint32_t, uint32_t>>{{3, 4}, {3, 9}, {5, 4}, {7, 2}, {7, 12}}));
}

TEST_F(PathSetSim, WholeDiskCountersOfEveryVlunInVlunOrder)
{
    Reliability all(UIL_RELIABILITY_ALL_VLUNS, 0);
    ASSERT_EQ(all.ret, MPI_RET_SUCCESS);
    std::vector<uint32_t> vluns;
    std::map<uint32_t, const UilIoReliability*> byDisk;
    for (const UilIoReliability* r : all.rows()) {
        vluns.push_back(r->vlunId);
        EXPECT_EQ(r->scope, uint32_t(UIL_RELIABILITY_DISK));
        EXPECT_EQ(r->pathId, 0u);
        EXPECT_TRUE(byDisk.emplace(r->diskId, r).second) << "disk " << r->diskId << " shown twice";
    }
    // Every VLUN, in order; the dual-site and migration VLUNs with both members.
    EXPECT_EQ(vluns, (std::vector<uint32_t>{0, 1, 2, 3, 3, 4, 5, 6, 7, 7, 8, 9, 10, 11}));
    ASSERT_TRUE(byDisk.count(0) && byDisk.count(1) && byDisk.count(3) && byDisk.count(10));
    const UilIoReliability& d0 = *byDisk[0];
    EXPECT_STREQ(d0.diskName, "prod_db_data");
    EXPECT_EQ(d0.flag, UIL_RELIABILITY_VALID);
    const uint64_t got[] = {d0.errorIo,   d0.errorCmd,      d0.queuedIo,   d0.queuedCmd,      d0.latestLatency,
                            d0.maxLatency, d0.latencySum, d0.latencySamples, d0.averageLatency};
    const uint64_t want[] = {11, 12, 13, 14, 15, 160, 1000, 7, 142};
    EXPECT_TRUE(std::equal(std::begin(got), std::end(got), std::begin(want)));
    EXPECT_EQ(byDisk[1]->errorIo, 1u);
    EXPECT_EQ(byDisk[1]->averageLatency, 0u);  // no samples
    EXPECT_EQ(byDisk[3]->averageLatency, 11u);
    EXPECT_EQ(byDisk[10]->averageLatency, 25u);
    EXPECT_EQ(byDisk[5]->errorIo + byDisk[5]->latencySum, 0u);  // no counters in the topology
}

TEST_F(PathSetSim, PerPathCountersOfOneVlunInPathOrder)
{
    Reliability one(UIL_RELIABILITY_ONE_VLUN, 0);
    ASSERT_EQ(one.ret, MPI_RET_SUCCESS);
    std::vector<uint32_t> paths;
    std::map<uint32_t, const UilIoReliability*> byPath;
    for (const UilIoReliability* r : one.rows()) {
        paths.push_back(r->pathId);
        byPath[r->pathId] = r;
        EXPECT_EQ(r->vlunId, 0u);
        EXPECT_STREQ(r->diskName, "prod_db_data");
    }
    EXPECT_EQ(paths, (std::vector<uint32_t>{0, 1, 2, 3, 4, 5, 18}));
    const UilIoReliability& p2 = *byPath[2];
    EXPECT_EQ(p2.errorIo, 5u);
    EXPECT_EQ(p2.errorCmd, 6u);
    EXPECT_EQ(p2.queuedIo, 7u);
    EXPECT_EQ(p2.queuedCmd, 8u);
    EXPECT_EQ(p2.latestLatency, 40u);
    EXPECT_EQ(p2.maxLatency, 1900u);
    EXPECT_EQ(p2.averageLatency, 225u);
    EXPECT_EQ(byPath[18]->averageLatency, 5u);
    EXPECT_EQ(byPath[0]->queuedIo, 2u);
    EXPECT_EQ(byPath[0]->averageLatency, 0u);  // a sum without samples
    EXPECT_EQ(byPath[1]->errorIo, 0u);

    Reliability missing(UIL_RELIABILITY_ONE_VLUN, 4242);
    EXPECT_EQ(missing.ret, MPI_RET_VLUN_NOT_EXIST);
    EXPECT_TRUE(missing.rows().empty());
}

TEST_F(PathSetSim, AFailedQueryLeavesOnlyThatLineOut)
{
    setFaults("104 code=1030 1");
    Reliability one(UIL_RELIABILITY_ONE_VLUN, 1);
    ASSERT_EQ(one.ret, MPI_RET_SUCCESS);
    std::vector<uint32_t> paths;
    for (const UilIoReliability* r : one.rows()) {
        paths.push_back(r->pathId);
    }
    EXPECT_EQ(paths, (std::vector<uint32_t>{1, 2, 3, 4, 5, 18}));
}

// A handler called without even its own keyword asks for more and reads
// nothing.
TEST_F(PathSetSim, CounterDisplaysWithoutTheirKeywordNeedMore)
{
    char* none[] = {nullptr};
    for (const char* show : {"io_count", "io_latency"}) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(DispatchWords(show, 0, none, g_stCLIOptionShowType), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("Error: Need more option\nUsage: [OPTION]\n", 0), 0u);
        EXPECT_TRUE(requests().empty());
    }
}

TEST_F(PathSetSim, SwitchesReadWhatWasStoredAndClearingZeroesEveryCounter)
{
    char text[64];
    ASSERT_EQ(INTF_UIL_GetAlarmEnable(text, sizeof(text)), MPI_RET_SUCCESS);
    EXPECT_STREQ(text, "alarmenable: on");
    ASSERT_EQ(INTF_UIL_GetReliabilityEnable(text, sizeof(text)), MPI_RET_SUCCESS);
    EXPECT_STREQ(text, "path reliabilityenable: on");
    ASSERT_EQ(INTF_UIL_SetAlarmEnable("CLI", "0"), MPI_RET_SUCCESS);
    ASSERT_EQ(INTF_UIL_GetAlarmEnable(text, sizeof(text)), MPI_RET_SUCCESS);
    EXPECT_STREQ(text, "alarmenable: off");

    // With path reliability off the driver keeps no counters: the flag says so.
    ASSERT_EQ(INTF_UIL_SetReliabilityEnable("CLI", "0"), MPI_RET_SUCCESS);
    ASSERT_EQ(INTF_UIL_GetReliabilityEnable(text, sizeof(text)), MPI_RET_SUCCESS);
    EXPECT_STREQ(text, "path reliabilityenable: off");
    UilIoReliability r{};
    r.flag = UIL_RELIABILITY_VALID;
    ASSERT_EQ(INTF_UIL_GetIoReliabilityById(0, 0, &r), MPI_RET_SUCCESS);
    EXPECT_EQ(r.flag, 0u);
    EXPECT_EQ(r.errorIo, 0u);
    ASSERT_EQ(INTF_UIL_SetReliabilityEnable("CLI", "1"), MPI_RET_SUCCESS);
    ASSERT_EQ(INTF_UIL_SetAlarmEnable("CLI", "1"), MPI_RET_SUCCESS);

    setFaults("99 refuse 1");
    EXPECT_EQ(INTF_UIL_GetReliabilityEnable(text, sizeof(text)), MPI_RET_IOCTL_FAIL);
    setFaults("");

    clearRequests();
    ASSERT_EQ(INTF_UIL_ClearIoCount(), MPI_RET_SUCCESS);
    EXPECT_EQ(lastRequest().nr, 105u);
    EXPECT_EQ(lastRequest().in, payload(80, {}));
    Reliability all(UIL_RELIABILITY_ALL_VLUNS, 0);
    ASSERT_EQ(all.ret, MPI_RET_SUCCESS);
    for (const UilIoReliability* row : all.rows()) {
        EXPECT_EQ(row->flag, UIL_RELIABILITY_VALID);
        EXPECT_EQ(row->errorIo + row->errorCmd + row->queuedIo + row->queuedCmd + row->latencySum, 0u)
            << "disk " << row->diskId;
    }
}

}  // namespace
