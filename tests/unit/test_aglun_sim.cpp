// Aggregated VLUNs against the simulated host, on the topology of
// aggregated LUNs (sim/topology/aglun.json: dual-site VLUNs 0 and 1,
// migration VLUNs 2 and 3, ordinary VLUNs 4 and 5): the bytes sent, the
// headers and attributes as decoded, counts the driver overstates, the
// refusals of a migration start, and the split-size text.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/payload_rows.h"
#include "support/sim_harness.h"
#include "support/sim_topology.h"
#include "uil/uil_aglun.h"
#include "uil/uil_setcfg.h"

namespace {

using simtest::setFaults;
using simtest::U32;
using simtest::U8;

const auto* const kTopology = simtest::UseTopology("aglun.json");

class Aglun : public simtest::SimTest {};

std::vector<uint32_t> aggregatedIds(uint32_t* ret)
{
    UilIdList* list = nullptr;
    *ret = INTF_UIL_EnumerateAggreIdsStart(&list);
    std::vector<uint32_t> ids;
    if (list != nullptr) {
        ids.assign(list->ids, list->ids + list->count);
    }
    INTF_UIL_EnumerateAggreIdsEnd(list);
    return ids;
}

TEST_F(Aglun, EachRequestCarriesItsInputsAtTheirOffsets)
{
    UilAggreInfo aggre{};
    UilDsInfo ds{};
    UilMigrateInfo mig{};
    uint32_t ret = 0;
    simtest::expectPayloads({
        {"aggregated ids", [&] { return (aggregatedIds(&ret), ret); }, 91, 12, {U32(0, 16384)}},
        {"aggregation header", [&] { return INTF_UIL_GetAggreInfoStart(1, &aggre); }, 92, 16, {U32(0, 1)}},
        {"dual-site info", [&] { return INTF_UIL_GetDSInfoStart(1, &ds); }, 93, 28, {U32(0, 1)}},
        {"migration info", [&] { return INTF_UIL_GetMigrateInfoStart(2, &mig); }, 94, 28, {U32(0, 2)}},
        {"start migration to the target with rollback",
         [] { return INTF_UIL_StartMigration("CLI", 2, 1, 1, nullptr); }, 96, 12, {U32(0, 2), U8(4, 1), U8(5, 1)}},
        {"start migration back to the source", [] { return INTF_UIL_StartMigration("CLI", 2, 0, 0, nullptr); }, 96,
         12, {U32(0, 2)}},
    });
}

TEST_F(Aglun, AggregatedIdsAreTheDualSiteAndMigrationVLunsEachOnce)
{
    struct Row {
        const char* faults;
        uint32_t expectedRet;
        size_t expectedCount;
    } rows[] = {
        {"", 1024, 4},
        {"91 count=0\n", 1024, 0},
        // A count above what the driver filled: the room it left zeroed
        // repeats ID 0, and every ID is listed once.
        {"91 count=16384\n", 1024, 4},
        {"91 count=16385\n", 1024, 4},
        {"91 count=4294967295\n", 1024, 4},
        {"91 refuse\n", 1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.faults);
        setFaults(row.faults);
        uint32_t ret = 0;
        std::vector<uint32_t> ids = aggregatedIds(&ret);
        EXPECT_EQ(ret, row.expectedRet);
        EXPECT_EQ(ids.size(), row.expectedCount);
    }
    setFaults("");
    uint32_t ret = 0;
    EXPECT_EQ(aggregatedIds(&ret), (std::vector<uint32_t>{0, 1, 2, 3}));
}

TEST_F(Aglun, AggregationHeaderHasOneMemberForAnOrdinaryVLunAndTwoForAnAggregatedOne)
{
    struct Row {
        uint32_t vlunId;
        const char* faults;
        uint32_t expectedRet;
        std::vector<uint32_t> members;
    } rows[] = {
        {0, "", 1024, {0, 1}},
        {1, "", 1024, {3, 2}},  // members in the driver's order: the primary first
        {2, "", 1024, {4, 5}},
        {5, "", 1024, {9}},
        {99, "", 1, {}},
        {1, "92 count=3\n", 1024, {3, 2}},
        {5, "92 count=4294967295\n", 1024, {9, 0}},
        {0, "92 count=0\n", 1024, {}},
        {0, "92 refuse\n", 1, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.vlunId) + " " + row.faults);
        setFaults(row.faults);
        UilAggreInfo info;
        std::memset(&info, 0xA5, sizeof(info));
        ASSERT_EQ(INTF_UIL_GetAggreInfoStart(row.vlunId, &info), row.expectedRet);
        EXPECT_EQ(std::vector<uint32_t>(info.memberDiskId, info.memberDiskId + info.memberCount), row.members);
        INTF_UIL_GetAggreInfoEnd(&info);
    }
    EXPECT_EQ(INTF_UIL_GetAggreInfoStart(0, nullptr), 1026u);
}

TEST_F(Aglun, DualSiteAndMigrationAttributes)
{
    UilDsInfo ds{};
    ASSERT_EQ(INTF_UIL_GetDSInfoStart(1, &ds), 1024u);
    EXPECT_EQ(ds.vlunId, 1u);
    EXPECT_EQ(ds.mode, 0u);
    EXPECT_STREQ(ds.primarySn, "2102351XVA10K8000002");  // the array of its first member
    EXPECT_EQ(INTF_UIL_GetDSInfoStart(2, &ds), 1u);        // a migration VLUN
    EXPECT_EQ(INTF_UIL_GetDSInfoStart(99, &ds), 1u);
    EXPECT_EQ(INTF_UIL_GetDSInfoStart(1, nullptr), 1026u);

    UilMigrateInfo mig{};
    ASSERT_EQ(INTF_UIL_GetMigrateInfoStart(2, &mig), 1024u);
    EXPECT_EQ(mig.targetPreferred, 0u);
    EXPECT_EQ(mig.rollback, 0u);
    ASSERT_EQ(INTF_UIL_StartMigration("CLI", 2, 1, 1, nullptr), 1024u);
    ASSERT_EQ(INTF_UIL_GetMigrateInfoStart(2, &mig), 1024u);
    EXPECT_EQ(mig.targetPreferred, 1u);
    EXPECT_EQ(mig.rollback, 1u);
    ASSERT_EQ(INTF_UIL_StartMigration("CLI", 2, 0, 0, nullptr), 1024u);
    ASSERT_EQ(INTF_UIL_GetMigrateInfoStart(2, &mig), 1024u);
    EXPECT_EQ(mig.targetPreferred, 0u);
    EXPECT_EQ(INTF_UIL_GetMigrateInfoStart(0, &mig), 1u);  // dual-site
    EXPECT_EQ(INTF_UIL_GetMigrateInfoStart(2, nullptr), 1026u);
}

TEST_F(Aglun, MigrationStartRefusalsAndItsLogRecord)
{
    struct Row {
        const char* what;
        uint32_t vlunId;
        uint8_t target;
        uint8_t rollback;
        const char* faults;
        uint32_t expected;
    } rows[] = {
        {"unknown VLUN", 99, 1, 0, "", 1039},
        {"dual-site VLUN", 0, 1, 0, "", 1063},
        {"ordinary VLUN", 5, 0, 0, "", 1063},
        {"target without an active path", 3, 1, 0, "", 1051},
        {"source with an active path", 3, 0, 0, "", 1024},
        {"driver fails the request", 2, 1, 0, "96 refuse\n", 1031},
        {"frame refusal without a status word", 2, 1, 0, "96 code=1039\n", 1031},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        setFaults(row.faults);
        UilOperLogPara rec;
        std::memset(&rec, 0xA5, sizeof(rec));
        EXPECT_EQ(INTF_UIL_StartMigration("CLI", row.vlunId, row.target, row.rollback, &rec), row.expected);
        EXPECT_EQ(rec.uiObjType, 102u);
        EXPECT_EQ(rec.uiObjId, row.vlunId);
        EXPECT_EQ(std::string(rec.szValue), "bDstIsPrior: " + std::to_string(row.target) +
                                                ", bRollBack: " + std::to_string(row.rollback));
    }
}

TEST_F(Aglun, SplitSizeTextBecomesSectors)
{
    struct Row {
        const char* text;
        const char* sectors;  // null: refused, text left as it was
    } rows[] = {
        {"512B", "1"},       {"512", "1"},          {"512b", "1"},        {"1G", "2097152"},
        {"1g", "2097152"},   {"64k", "128"},        {"128M", "262144"},   {"1024M", "2097152"},
        {"1048576K", "2097152"}, {"1073741824", "2097152"}, {"2G", nullptr}, {"3M", nullptr},
        {"1000", nullptr},   {"B", nullptr},        {"", nullptr},        {"12345678901", nullptr},
        {"1T", nullptr},     {"-512", nullptr},     {"0B", nullptr},      {"256B", nullptr},
        {"1.5M", nullptr},   {" 512", nullptr},     {"2048MB", nullptr},  {"2147483648", nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        char text[32];
        std::strcpy(text, row.text);
        EXPECT_EQ(INTF_UIL_TranseSpliteSize(text, sizeof(text)), row.sectors != nullptr ? 1u : 0u);
        EXPECT_STREQ(text, row.sectors != nullptr ? row.sectors : row.text);
    }
    char small[4] = "1G";  // 2097152 does not fit
    EXPECT_EQ(INTF_UIL_TranseSpliteSize(small, sizeof(small)), 0u);
    EXPECT_STREQ(small, "1G");
    EXPECT_EQ(INTF_UIL_TranseSpliteSize(nullptr, 8), 0u);
}

// The driver applies the working mode and primary array it was told last:
// the VLUN's own values before the host's, and a primary array only when it
// is one of the VLUN's member arrays. Each row is a change and then what
// both dual-site VLUNs read.
TEST_F(Aglun, DualSiteAnswerFollowsTheSettingsSent)
{
    constexpr const char* kSiteA = "2102351XVA10K8000001";
    constexpr const char* kSiteB = "2102351XVA10K8000002";
    struct Row {
        const char* what;
        const char* id;  // "" sets the host's values; null changes nothing
        const char* mode;
        const char* primary;
        uint8_t mode0;
        const char* primary0;
        uint8_t mode1;
        const char* primary1;
    } rows[] = {
        {"nothing told: between both arrays, first member's array", nullptr, "", "", 0, kSiteA, 0, kSiteB},
        {"host values", "", "priority", kSiteB, 1, kSiteB, 1, kSiteB},
        {"VLUN 1 overrides the host", "1", "balance", kSiteA, 1, kSiteB, 0, kSiteA},
        {"a host primary outside the pair is not taken", "", "priority", "2102351MIG10K8000003", 1, kSiteA, 0,
         kSiteA},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        if (row.id != nullptr) {
            const char* key = *row.id == '\0' ? UIL_KEY_COMMON : UIL_KEY_VLUN;
            ASSERT_EQ(INTF_UIL_SetDsMode("CLI", key, row.id, row.mode), 1024u);
            ASSERT_EQ(INTF_UIL_SetDsMaster("CLI", key, row.id, row.primary), 1024u);
        }
        UilDsInfo ds{};
        ASSERT_EQ(INTF_UIL_GetDSInfoStart(0, &ds), 1024u);
        EXPECT_EQ(ds.mode, row.mode0);
        EXPECT_STREQ(ds.primarySn, row.primary0);
        ASSERT_EQ(INTF_UIL_GetDSInfoStart(1, &ds), 1024u);
        EXPECT_EQ(ds.mode, row.mode1);
        EXPECT_STREQ(ds.primarySn, row.primary1);
    }
}

}  // namespace
