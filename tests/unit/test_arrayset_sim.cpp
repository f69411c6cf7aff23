// Array-level settings and actions against the simulated host, on the
// topology of aggregated LUNs (sim/topology/aglun.json): the bytes each
// entry point sends, the driver's refusals as they come back, and what a
// later read shows of a change.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "support/payload_rows.h"
#include "support/sim_harness.h"
#include "support/sim_topology.h"
#include "uil/uil_arrayset.h"
#include "uil/uil_objects_int.h"
#include "uil/uil_tpg.h"
#include "uil/uil_vlun.h"
#include "uil/uil_xva.h"

namespace {

using simtest::requests;
using simtest::setFaults;
using simtest::U32;
using simtest::U8;

const auto* const kTopology = simtest::UseTopology("aglun.json");

constexpr uint32_t kCommonSet = 50;

class ArraySet : public simtest::SimTest {};

UilOperLogPara blankRecord()
{
    UilOperLogPara r;
    std::memset(&r, 0xA5, sizeof(r));
    return r;
}

TEST_F(ArraySet, EachEntryPointSendsItsFieldsAtTheirOffsets)
{
    UilOperLogPara rec{};
    UilDriverPerfRecord perf{};
    simtest::expectPayloads({
        {"lun trespass delay", [] { return INTF_UIL_SetLunTresPassDelayTime("CLI", 30); }, kCommonSet, 608,
         {U32(0, 43), U32(16, 30)}},
        {"busy delay", [] { return INTF_UIL_SetBusyDelayTime(7); }, kCommonSet, 608, {U32(0, 44), U32(8, 7)}},
        {"array capability", [] { return INTF_UIL_SetArrayCapability(2, 0x01000040); }, kCommonSet, 608,
         {U32(0, 51), U32(8, 2), U32(12, 0x01000040)}},
        {"potential switch on", [] { return INTF_UIL_SetPotentialSwitch(true); }, kCommonSet, 608,
         {U32(0, 57), U8(8, 1)}},
        {"potential switch off", [] { return INTF_UIL_SetPotentialSwitch(false); }, kCommonSet, 608, {U32(0, 57)}},
        {"enable tpg", [&] { return INTF_UIL_SetTpgState("CLI", 0, 2, true, &rec); }, kCommonSet, 608,
         {U32(0, 42), U32(8, 0), U32(12, 2), U32(40, 1)}},
        {"disable tpg", [&] { return INTF_UIL_SetTpgState("CLI", 1, 1, false, &rec); }, kCommonSet, 608,
         {U32(0, 42), U32(8, 1), U32(12, 1)}},
        {"rebalance all", [&] { return INTF_UIL_StartRebalancelun("CLI", "", "", &rec); }, 81, 12, {U32(0, 100)}},
        {"rebalance array", [&] { return INTF_UIL_StartRebalancelun("CLI", "array_id", "2", &rec); }, 81, 12,
         {U32(0, 101), U32(4, 2)}},
        {"rebalance vlun", [&] { return INTF_UIL_StartRebalancelun("CLI", "vlun_id", "5", nullptr); }, 81, 12,
         {U32(0, 102), U32(4, 5)}},
        {"start io suspension", [] { return INTF_UIL_CtrlIOSus("CLI", 4, 5000); }, 97, 84,
         {U32(0, 4), U32(72, 5000)}},
        {"stop io suspension", [] { return INTF_UIL_CtrlIOSus("CLI", 4, 0); }, 97, 84, {U32(0, 4)}},
        {"turn off disk suspension", [] { return INTF_UIL_TurnOffIoSuspension(8); }, 69, 4, {U32(0, 8)}},
        {"performance record state", [&] { return INTF_UIL_GetDriverPerfRecordInfo(&perf); }, 107, 16, {}},
    });
}

// A refused sub-command names its reason in the frame and in the result
// word; a request the driver fails outright reads as the channel's failure.
TEST_F(ArraySet, ControllerStateRefusalsComeBackAsTheDriverGaveThem)
{
    struct Row {
        const char* what;
        uint32_t arrayId;
        uint32_t tpgId;
        bool enable;
        const char* faults;
        uint32_t expected;
    } rows[] = {
        {"last controller with paths", 3, 0, false, "", 1029},
        {"an HBA on its paths is disabled", 4, 1, true, "", 1047},
        {"unknown array", 9, 0, true, "", 1057},
        {"unknown controller", 2, 5, true, "", 1026},
        {"driver fails the request", 2, 0, false, "50 refuse\n", 1031},
        {"a refusal injected with its code", 2, 0, false, "50 code=1029\n", 1029},
        {"enabling the last controller", 3, 0, true, "", 1024},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        setFaults(row.faults);
        simtest::clearRequests();
        UilOperLogPara rec = blankRecord();
        EXPECT_EQ(INTF_UIL_SetTpgState("CLI", row.arrayId, row.tpgId, row.enable, &rec), row.expected);
        auto sent = requests();
        ASSERT_FALSE(sent.empty());
        EXPECT_EQ(sent.back().nr, kCommonSet);
        if (row.faults[0] == '\0') {
            EXPECT_EQ(sent.back().result, row.expected);
        }
        EXPECT_EQ(rec.uiObjType, 101u);
        EXPECT_EQ(rec.uiObjId, row.arrayId);
    }
    UilOperLogPara rec = blankRecord();
    EXPECT_EQ(INTF_UIL_SetTpgState("CLI", 0, 16, true, &rec), 1026u);
    EXPECT_STREQ(rec.szValue, "1,16");
}

TEST_F(ArraySet, ControllerStateReadsBackAndTheLogNamesTheController)
{
    UilOperLogPara rec = blankRecord();
    uint32_t state = 0;
    ASSERT_EQ(INTF_UIL_SetTpgState("CLI", 0, 2, false, &rec), 1024u);
    EXPECT_STREQ(rec.szValue, "0,2");  // no name of its own: the number, not "1A"
    ASSERT_EQ(INTF_UIL_GetTpgInfo(0, 2, &state), 1024u);
    EXPECT_NE(state, UIL_TPG_ENABLED);
    ASSERT_EQ(INTF_UIL_SetTpgState("CLI", 0, 2, true, &rec), 1024u);
    ASSERT_EQ(INTF_UIL_GetTpgInfo(0, 2, &state), 1024u);
    EXPECT_EQ(state, UIL_TPG_ENABLED);
    ASSERT_EQ(INTF_UIL_SetTpgState("CLI", 1, 0, false, &rec), 1024u);
    EXPECT_STREQ(rec.szValue, "0,CTE0.A");
    EXPECT_EQ(INTF_UIL_SetTpgState("CLI", 1, 1, false, &rec), 1029u);  // CTE0.B is now the last one
    EXPECT_EQ(INTF_UIL_SetTpgState("CLI", 1, 0, true, &rec), 1024u);
}

TEST_F(ArraySet, RebalanceRefusalsAndWhatItChanges)
{
    struct Row {
        const char* key;
        const char* value;
        const char* faults;
        uint32_t expected;
        bool sent;
    } rows[] = {
        {"array_id", "9", "", 1057, true},   {"vlun_id", "99", "", 1039, true},
        {"array", "1", "", 1026, false},     {"vlun_id", "x", "", 1026, false},
        {"vlun_id", "", "", 1026, false},    {"array_id", "4294967296", "", 1026, false},
        {"", "", "81 refuse\n", 1031, true}, {"array_id", "1", "81 code=1057\n", 1031, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.key) + "=" + row.value);
        setFaults(row.faults);
        simtest::clearRequests();
        EXPECT_EQ(INTF_UIL_StartRebalancelun("CLI", row.key, row.value, nullptr), row.expected);
        auto sent = requests();
        ASSERT_EQ(sent.size(), row.sent ? 1u : 0u);
        if (row.sent && row.faults[0] == '\0') {
            EXPECT_EQ(sent[0].result, row.expected);  // the frame agrees with the status word
        }
    }
    setFaults("");
    DiskInfo disk{};
    ASSERT_EQ(INTF_UIL_GetDiskBasicInfoStart(9, &disk), 1024u);
    ASSERT_NE(disk.workingController, disk.owningController);
    UilOperLogPara rec = blankRecord();
    ASSERT_EQ(INTF_UIL_StartRebalancelun("CLI", "vlun_id", "5", &rec), 1024u);
    EXPECT_STREQ(rec.szValue, "vlun_id=5");
    EXPECT_EQ(rec.uiObjType, 102u);
    ASSERT_EQ(INTF_UIL_GetDiskBasicInfoStart(9, &disk), 1024u);
    EXPECT_EQ(disk.workingController, disk.owningController);
    ASSERT_EQ(INTF_UIL_StartRebalancelun("CLI", nullptr, nullptr, &rec), 1024u);
    EXPECT_STREQ(rec.szValue, "all");
    ASSERT_EQ(INTF_UIL_GetDiskBasicInfoStart(8, &disk), 1024u);
    EXPECT_EQ(disk.workingController, disk.owningController);
}

TEST_F(ArraySet, ManualSuspensionShowsInTheVLunInfoUntilEnded)
{
    auto suspension = [](uint32_t vlunId) {
        VLunInfo v{};
        EXPECT_EQ(INTF_UIL_GetVLunInfoStart(vlunId, &v), 1024u);
        INTF_UIL_GetVLunInfoEnd(&v);
        return std::make_pair(v.suspendTimeoutMs, v.suspendRemainMs);
    };
    ASSERT_EQ(INTF_UIL_CtrlIOSus("CLI", 5, 60000), 1024u);
    auto [timeout, remain] = suspension(5);
    EXPECT_EQ(timeout, 60000u);
    EXPECT_GT(remain, 0u);
    EXPECT_LE(remain, 60000u);
    ASSERT_EQ(INTF_UIL_CtrlIOSus("CLI", 5, 0), 1024u);
    EXPECT_EQ(suspension(5).first, 0u);
    // The longest the driver keeps, and one millisecond more.
    ASSERT_EQ(INTF_UIL_CtrlIOSus("CLI", 5, 4294967000u), 1024u);
    EXPECT_EQ(suspension(5).first, 4294967000u);
    EXPECT_EQ(INTF_UIL_CtrlIOSus("CLI", 5, 4294967001u), 1u);
    ASSERT_EQ(INTF_UIL_CtrlIOSus("CLI", 5, 0), 1024u);

    ASSERT_EQ(INTF_UIL_CtrlIOSus("CLI", 4, 120000), 1024u);
    ASSERT_EQ(INTF_UIL_TurnOffIoSuspension(8), 1024u);  // disk 8 is VLUN 4's
    EXPECT_EQ(suspension(4).first, 0u);

    EXPECT_EQ(INTF_UIL_CtrlIOSus("CLI", 99, 1000), 1u);
    EXPECT_EQ(INTF_UIL_TurnOffIoSuspension(99), 1031u);
    setFaults("97 refuse\n");
    EXPECT_EQ(INTF_UIL_CtrlIOSus("CLI", 5, 1000), 1u);
}

TEST_F(ArraySet, PerformanceRecordStateFollowsWhatTheDriverWasTold)
{
    UilDriverPerfRecord perf{};
    ASSERT_EQ(INTF_UIL_GetDriverPerfRecordInfo(&perf), 1024u);
    EXPECT_EQ(perf.enabled, 0u);
    ASSERT_EQ(UIL_SetCommonConfig("performance_record", "1"), 1024u);
    ASSERT_EQ(UIL_SetCommonConfig("performance_record_duration", "48"), 1024u);
    ASSERT_EQ(UIL_SetCommonConfig("performance_record_startl", "1795000000"), 1024u);
    ASSERT_EQ(INTF_UIL_GetDriverPerfRecordInfo(&perf), 1024u);
    EXPECT_EQ(perf.enabled, 1u);
    EXPECT_EQ(perf.durationHours, 48u);
    EXPECT_EQ(perf.startSeconds, 1795000000u);
    ASSERT_EQ(UIL_SetCommonConfig("performance_record", "0"), 1024u);
    ASSERT_EQ(INTF_UIL_GetDriverPerfRecordInfo(&perf), 1024u);
    EXPECT_EQ(perf.enabled, 0u);

    setFaults("107 refuse\n");
    EXPECT_EQ(INTF_UIL_GetDriverPerfRecordInfo(&perf), 1031u);
    EXPECT_EQ(perf.enabled, 0u);
    EXPECT_EQ(INTF_UIL_GetDriverPerfRecordInfo(nullptr), 1026u);
}

TEST_F(ArraySet, HostWideSendersReturnTheDriversCode)
{
    EXPECT_EQ(INTF_UIL_SetArrayCapability(9, 0), 1057u);
    setFaults("50 refuse\n");
    EXPECT_EQ(INTF_UIL_SetBusyDelayTime(5), 1031u);
    EXPECT_EQ(INTF_UIL_SetLunTresPassDelayTime("CLI", 5), 1031u);
    EXPECT_EQ(INTF_UIL_SetPotentialSwitch(true), 1031u);
    setFaults("");
    // The capability the driver keeps is the one the array reports.
    ASSERT_EQ(INTF_UIL_SetArrayCapability(2, 1u << 24), 1024u);
    ArrayInfo array;
    UIL_InitArrayInfo(&array);
    ASSERT_EQ(UIL_GetArrayRecord(2, &array), 1024u);
    EXPECT_EQ(array.capability, 1u << 24);
}


std::vector<uint32_t> remoteList(uint32_t arrayId, uint32_t* ret)
{
    uint32_t ids[16];
    size_t count = 0;
    *ret = UIL_GetXvaRemoteByArrayID(arrayId, ids, 16, &count);
    return {ids, ids + count};
}

uint8_t remoteFlag(uint32_t arrayId, uint32_t tpgId)
{
    UilTpgInfo* tpg = nullptr;
    EXPECT_EQ(UIL_EnumerateTpgStart(arrayId, tpgId, &tpg), 1024u);
    uint8_t flag = tpg != nullptr ? tpg->remote : 0xFF;
    UIL_EnumerateTpgEnd(tpg);
    return flag;
}

size_t notifies()
{
    size_t n = 0;
    for (const simtest::Request& r : requests()) {
        n += r.nr == 70 ? 1 : 0;
    }
    return n;
}

TEST(Xva, AnArrayIsXvaByTheBeginningOfItsProductId)
{
    for (auto [product, xva] : {std::pair{"XVA5000", true}, {"XVA", true}, {"xva5000", false}, {"XV", false},
                                {"", false}, {" XVA5000", false}}) {
        EXPECT_EQ(UIL_IsXvaProduct(product), xva) << product;
    }
    EXPECT_FALSE(UIL_IsXvaProduct(nullptr));
}

TEST_F(ArraySet, RemoteControllersAreAddedRemovedAndReportedByTheDriver)
{
    struct Row {
        bool remote;
        std::vector<uint32_t> given;
        std::vector<uint32_t> stored;
    } rows[] = {
        {true, {1, 3}, {1, 3}},
        {true, {3, 0}, {1, 3, 0}},  // 3 is already remote
        {false, {3, 2}, {1, 0}},    // 2 was not
        {false, {1, 0}, {}},
    };
    uint32_t ret = 0;
    for (const Row& row : rows) {
        UilOperLogPara rec = blankRecord();
        ASSERT_EQ(INTF_UIL_SetRemoteController("CLI", 0, row.remote, row.given.size(), row.given.data(), &rec),
                  1024u);
        EXPECT_EQ(remoteList(0, &ret), row.stored);
        EXPECT_EQ(rec.uiObjId, 0u);
        for (uint32_t tpg = 0; tpg < 4; ++tpg) {
            bool listed = std::find(row.stored.begin(), row.stored.end(), tpg) != row.stored.end();
            EXPECT_EQ(remoteFlag(0, tpg), listed ? 1 : 0) << tpg;
        }
    }
    UilOperLogPara rec = blankRecord();
    const uint32_t two[] = {2, 12};
    ASSERT_EQ(INTF_UIL_SetRemoteController("CLI", 0, true, 2, two, &rec), 1024u);
    EXPECT_STREQ(rec.szValue, "remote,2,12");
    EXPECT_EQ(rec.uiObjType, 101u);
    ASSERT_EQ(INTF_UIL_SetRemoteController("CLI", 0, false, 2, two, &rec), 1024u);
    EXPECT_STREQ(rec.szValue, "local,2,12");
    EXPECT_EQ(remoteFlag(1, 1), 1u);  // remote in the topology itself
}

TEST_F(ArraySet, RemoteControllerRefusalsChangeNothing)
{
    const uint32_t one[] = {1};
    const uint32_t bad[] = {1, 16};
    uint32_t ret = 0;
    EXPECT_EQ(INTF_UIL_SetRemoteController("CLI", 0, true, 0, one, nullptr), 1026u);
    EXPECT_EQ(INTF_UIL_SetRemoteController("CLI", 0, true, 2, bad, nullptr), 1026u);
    EXPECT_EQ(INTF_UIL_SetRemoteController("CLI", 0, true, 1, nullptr, nullptr), 1026u);
    EXPECT_NE(INTF_UIL_SetRemoteController("CLI", 9, true, 1, one, nullptr), 1024u);
    EXPECT_EQ(INTF_UIL_SetRemoteController("CLI", 2, false, 1, one, nullptr), 1024u);  // nothing stored
    EXPECT_EQ(notifies(), 0u);

    ASSERT_EQ(UIL_SetArrayConfig("2102351XVA10K8000002", "xva_remote", "1,x"), 1024u);
    EXPECT_TRUE(remoteList(1, &ret).empty());
    EXPECT_EQ(ret, 1030u);
    simtest::clearRequests();
    EXPECT_EQ(INTF_UIL_SetRemoteController("CLI", 1, true, 1, one, nullptr), 1030u);
    EXPECT_EQ(notifies(), 0u);
    ASSERT_EQ(UIL_SetArrayConfig("2102351XVA10K8000002", "xva_remote", ""), 1024u);
}

}  // namespace
