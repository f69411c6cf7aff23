// Performance statistics: the rate arithmetic, max/min, sums, sorts, the
// wire layouts of the two statistics requests, and the periodic record
// driven through its own clocks.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "support/test_files.h"
#include "uil/uil_oper.h"
#include "uil/uil_perf.h"

namespace fs = std::filesystem;

namespace {

// The log directory beneath the run's sandbox root, resolved before the
// first test; the record's stop writes an operation-log line.
class SandboxEnvironment : public testing::Environment {
    void SetUp() override
    {
        fs::create_directories(testfiles::root() + "/opt/Corvane/log");
        UIL_GetLogPathName();
        setenv("TZ", "UTC", 1);
        tzset();
    }
};
[[maybe_unused]] testing::Environment* const kSandbox = testing::AddGlobalTestEnvironment(new SandboxEnvironment);

using Counters = std::array<uint64_t, 8>;
// Expected computed values 8..14: read/write IOPS, read/write KB/S,
// read/write/total response.
using Rates = std::array<uint64_t, 7>;

UilPerfInfo info(const Counters& c)
{
    UilPerfInfo r{};
    for (size_t i = 0; i < c.size(); ++i) {
        r.v[i] = c[i];
    }
    return r;
}

Rates ratesOf(const UilPerfInfo& r) { return {r.v[8], r.v[9], r.v[10], r.v[11], r.v[12], r.v[13], r.v[14]}; }

// ---------------------------------------------------------------------------
// Rate arithmetic.

struct RateCase {
    const char* name;
    Counters prev;  // read io, write io, -, -, read bytes, write bytes, read resp, write resp
    Counters cur;
    uint32_t interval;
    Rates want;
};

const RateCase kRateCases[] = {
    // 500 reads and 1000 writes in 5 s; 4 KB reads and writes, 2 ms and 3 ms each;
    // total 4000 ms over 1500 I/Os truncates to 2.
    {"normal", {100, 200, 0, 0, 409600, 819200, 1000, 4000},
     {600, 1200, 0, 0, 409600 + 2048000, 819200 + 4096000, 2000, 7000}, 5, {100, 200, 409, 819, 2, 3, 2}},
    // Counters went down: the current values are the deltas.
    {"counter reset", {1000, 1000, 0, 0, 1000000000, 1000000000, 50000, 50000}, {50, 0, 0, 0, 204800, 0, 100, 0}, 1,
     {50, 0, 204, 0, 2, 0, 2}},
    // One 4096-byte read in 5 s: below one I/O per second, no response time at all.
    {"trickle", {10, 0, 0, 0, 40960, 0, 30, 0}, {11, 0, 0, 0, 45056, 0, 37, 0}, 5, {0, 0, 0, 0, 0, 0, 0}},
    {"no io", {7, 8, 1, 2, 9000, 8000, 70, 80}, {7, 8, 1, 2, 9000, 8000, 70, 80}, 3, {0, 0, 0, 0, 0, 0, 0}},
    // Ten small reads a second make 800 B/s: KB/S 0 silences the read side,
    // the write side and the total stay.
    {"reads below one KB/s", {0, 0, 0, 0, 0, 0, 0, 0}, {50, 10, 0, 0, 4000, 20480, 500, 100}, 5,
     {0, 2, 0, 4, 0, 10, 10}},
    // Bytes are divided by the interval first, then by 1000 (KB = 1000 bytes).
    {"kilobytes of 1000", {0, 0, 0, 0, 0, 0, 0, 0}, {30, 30, 0, 0, 5999, 2999999, 30, 90}, 3,
     {10, 10, 1, 999, 1, 3, 2}},
};

TEST(PerfRates, TableOfIntervals)
{
    for (const RateCase& c : kRateCases) {
        UilPerfInfo prev = info(c.prev);
        UilPerfInfo cur = info(c.cur);
        UilPerfInfo copy = cur;
        UilPerfInfo out{};
        UIL_ComputePerfInfoS(&cur, &prev, c.interval, &out);
        EXPECT_EQ(ratesOf(out), c.want) << c.name;
        EXPECT_EQ(std::memcmp(&cur, &copy, sizeof(cur)), 0) << c.name << ": the S variant leaves cur alone";
        for (size_t i = 0; i < UIL_PERF_COUNTERS; ++i) {
            EXPECT_EQ(out.v[i], c.cur[i]) << c.name << ": counters carried";
        }
        UIL_ComputePerfInfo(&cur, &prev, c.interval);
        EXPECT_EQ(ratesOf(cur), c.want) << c.name;
    }
}

// The total response time on its own is the response time added over both
// directions per I/O, before any side is silenced for a low rate: the
// trickle's one read of 7 ms counts here.
TEST(PerfRates, TotalResponseTimeAlone)
{
    const std::pair<const char*, uint64_t> totals[] = {
        {"normal", 2}, {"counter reset", 2}, {"trickle", 7}, {"no io", 0}, {"reads below one KB/s", 10},
    };
    for (auto [name, total] : totals) {
        const RateCase* c = nullptr;
        for (const RateCase& r : kRateCases) {
            c = std::string(r.name) == name ? &r : c;
        }
        ASSERT_NE(c, nullptr) << name;
        UilPerfInfo prev = info(c->prev);
        UilPerfInfo cur = info(c->cur);
        UIL_ComputeTotalResonseTime(&cur, &prev);
        EXPECT_EQ(cur.v[UIL_PERF_TOTAL_RT], total) << name;
    }
}

TEST(PerfRates, ByteRatesAloneAndZeroIntervalOfTheSVariant)
{
    UilPerfInfo prev = info({0, 0, 0, 0, 1000, 0, 0, 0});
    UilPerfInfo cur = info({0, 0, 0, 0, 9000, 500000, 0, 0});
    UilPerfInfo out{};
    out.v[UIL_PERF_READ_KBS] = 77;
    UIL_ComputeBytePerInfoS(&cur, &prev, 0, &out);
    EXPECT_EQ(out.v[UIL_PERF_READ_KBS], 77u) << "interval 0: nothing happens";
    UIL_ComputeBytePerInfoS(&cur, &prev, 2, &out);
    EXPECT_EQ(out.v[UIL_PERF_READ_KBS], 4u);
    EXPECT_EQ(out.v[UIL_PERF_WRITE_KBS], 250u);
    EXPECT_EQ(cur.v[UIL_PERF_READ_KBS], 0u);
    UIL_ComputeBytePerInfo(&cur, &prev, 2);
    EXPECT_EQ(cur.v[UIL_PERF_WRITE_KBS], 250u);
}

TEST(PerfRatesDeath, ZeroIntervalIsAProgrammingError)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    UilPerfInfo a{};
    UilPerfInfo b{};
    EXPECT_DEATH(
        {
            alarm(1);
            UIL_ComputePerfInfo(&a, &b, 0);
        },
        "");
    EXPECT_NE(testfiles::traceText().find("0 != uiIntervalTime"), std::string::npos);
}

TEST(PerfRates, AddAndAverageCoverSixteenValues)
{
    UilPerfInfo a{};
    UilPerfInfo b{};
    for (size_t i = 0; i < UIL_PERF_VALUES; ++i) {
        a.v[i] = 10 * (i + 1);
        b.v[i] = i + 1;
    }
    UIL_PerfInfoAdd(&a, &b);
    EXPECT_EQ(a.v[0], 11u);
    EXPECT_EQ(a.v[UIL_PERF_EXTRA], 176u);
    UIL_PerfInfoAverageData(&a, 0);
    EXPECT_EQ(a.v[UIL_PERF_EXTRA], 176u) << "n = 0 leaves the record";
    UIL_PerfInfoAverageData(&a, 4);
    EXPECT_EQ(a.v[0], 2u);
    EXPECT_EQ(a.v[UIL_PERF_EXTRA], 44u);
}

// ---------------------------------------------------------------------------
// Max/min.

TEST(PerfMaxMin, TracksTotalsAndResets)
{
    struct Sample {
        uint64_t readIops, writeIops, readKbs, writeKbs, totalRt;
    };
    const Sample samples[] = {{10, 5, 40, 20, 3}, {2, 0, 8, 0, 9}, {30, 30, 100, 100, 1}, {0, 0, 0, 0, 0}};
    UilPerfMaxMin mm{};
    UIL_InitializePerfMaxmin(&mm);
    EXPECT_EQ(UIL_PerfMinValue(mm.minIops), 0u) << "a reset minimum reads 0";
    for (const Sample& s : samples) {
        UilPerfInfo r{};
        r.v[8] = s.readIops;
        r.v[9] = s.writeIops;
        r.v[10] = s.readKbs;
        r.v[11] = s.writeKbs;
        r.v[14] = s.totalRt;
        UIL_CalPerfMaxminData(&r, &mm);
    }
    EXPECT_EQ((std::array<uint64_t, 6>{mm.maxIops, mm.minIops, mm.maxKbs, mm.minKbs, mm.maxResp, mm.minResp}),
              (std::array<uint64_t, 6>{60, 0, 200, 0, 9, 0}));

    UilPerfMaxMin copy{};
    UIL_PerfMaxminDataCopy(&copy, &mm);
    EXPECT_EQ(copy.maxKbs, 200u);

    // After a reset the first sample is both maximum and minimum.
    UIL_InitializePerfMaxmin(&mm);
    UilPerfInfo r{};
    r.v[8] = 4;
    r.v[14] = 6;
    UIL_CalPerfMaxminData(&r, &mm);
    EXPECT_EQ(mm.maxIops, 4u);
    EXPECT_EQ(mm.minIops, 4u);
    EXPECT_EQ(mm.maxResp, 6u);
    EXPECT_EQ(mm.minResp, 6u);
}

// ---------------------------------------------------------------------------
// Lists, sums and sorts.

struct PathRow {
    UilPerfKind kind;
    uint32_t pathId, arrayId, controllerId, diskId, vlunId;
    const char* initiator;
};

UilPerfEntry* addEntry(MPI_ListNode* head, const PathRow& s, const Counters& c)
{
    UilPerfEntry* e = UIL_PerfEntryAlloc(s.kind);
    e->pathId = s.pathId;
    e->arrayId = s.arrayId;
    e->controllerId = s.controllerId;
    e->diskId = s.diskId;
    e->vlunId = s.vlunId;
    (void)snprintf(e->initiator, sizeof(e->initiator), "%s", s.initiator);
    e->perf = info(c);
    MPI_ListAddTail(&e->links, head);
    return e;
}

std::vector<UilPerfEntry*> entries(MPI_ListNode* head)
{
    std::vector<UilPerfEntry*> out;
    for (MPI_ListNode* n = head->next; n != head; n = n->next) {
        out.push_back(MPI_ListEntry<UilPerfEntry>(n));
    }
    return out;
}

struct PerfLists : testing::Test {
    MPI_ListNode prev, cur, sums;
    void SetUp() override
    {
        MPI_ListInit(&prev);
        MPI_ListInit(&cur);
        MPI_ListInit(&sums);
    }
    void TearDown() override
    {
        UIL_PerfListFree(&prev);
        UIL_PerfListFree(&cur);
        UIL_PerfListFree(&sums);
    }
    // Paths 1 and 2 on array 0, path 3 on array 1; initiators a (1, 3) and b (2).
    // Over 10 s: path 1 reads 100 x 4096 B at 2 ms and writes 40 x 8192 B at 5 ms;
    // path 2 reads 20 x 1000 B at 7 ms; path 3 is idle.
    void fillPhysical()
    {
        const PathRow paths[] = {{UIL_PERF_PHY_PATH, 3, 1, 0, 0, 0, "iqn.a"},
                                  {UIL_PERF_PHY_PATH, 1, 0, 1, 0, 0, "iqn.a"},
                                  {UIL_PERF_PHY_PATH, 2, 0, 0, 0, 0, "iqn.b"}};
        const Counters before[] = {{5, 5, 0, 0, 500, 500, 5, 5}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}};
        const Counters after[] = {{5, 5, 0, 0, 500, 500, 5, 5},
                                  {100, 40, 0, 0, 409600, 327680, 200, 200},
                                  {20, 0, 0, 0, 20000, 0, 140, 0}};
        for (size_t i = 0; i < 3; ++i) {
            addEntry(&prev, paths[i], before[i]);
            addEntry(&cur, paths[i], after[i]);
        }
        ASSERT_EQ(UIL_ComputePerfList(&cur, &prev, 10), MPI_RET_SUCCESS);
    }
};

TEST_F(PerfLists, RatesPerPathMatchedByIdentity)
{
    fillPhysical();
    auto got = entries(&cur);
    EXPECT_EQ(ratesOf(got[1]->perf), (Rates{10, 4, 40, 32, 2, 5, 2}));
    EXPECT_EQ(ratesOf(got[2]->perf), (Rates{2, 0, 2, 0, 7, 0, 7}));
    EXPECT_EQ(ratesOf(got[0]->perf), (Rates{0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(got[0]->hasRates);

    // A path without a previous sample keeps no rates.
    UilPerfEntry* fresh = addEntry(&cur, {UIL_PERF_PHY_PATH, 9, 0, 0, 0, 0, "iqn.c"}, {50, 0, 0, 0, 0, 0, 0, 0});
    ASSERT_EQ(UIL_ComputePerfList(&cur, &prev, 10), MPI_RET_SUCCESS);
    EXPECT_FALSE(fresh->hasRates);
    EXPECT_EQ(fresh->perf.v[UIL_PERF_READ_IOPS], 0u);
}

TEST_F(PerfLists, EmptyPreviousListComputesNothing)
{
    addEntry(&cur, {UIL_PERF_PHY_PATH, 1, 0, 0, 0, 0, "i"}, {100, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(UIL_ComputePerfList(&cur, &prev, 1), MPI_RET_NOT_FOUND);
    EXPECT_FALSE(entries(&cur)[0]->hasRates);
    EXPECT_NE(testfiles::traceText().find("the preperflist is empty."), std::string::npos);
}

TEST_F(PerfLists, SumsPerArrayAndInitiatorWeighResponseByIo)
{
    fillPhysical();
    ASSERT_EQ(INTF_UIL_GetAndCreateArrayPerfByPhyPath(&cur, &sums), MPI_RET_SUCCESS);
    auto arrays = entries(&sums);
    ASSERT_EQ(arrays.size(), 2u);
    EXPECT_EQ(arrays[0]->arrayId, 0u);
    EXPECT_EQ(arrays[0]->pathCount, 2u);
    // 340 ms over 120 reads is 2, 200 ms over 40 writes 5, 540 over 160 is 3.
    EXPECT_EQ(ratesOf(arrays[0]->perf), (Rates{12, 4, 42, 32, 2, 5, 3}));
    EXPECT_EQ(arrays[0]->perf.v[UIL_PERF_READ_IO], 120u) << "cumulative counters summed too";
    EXPECT_EQ(arrays[1]->arrayId, 1u);
    EXPECT_EQ(ratesOf(arrays[1]->perf), (Rates{0, 0, 0, 0, 0, 0, 0}));

    UIL_PerfListFree(&sums);
    ASSERT_EQ(INTF_UIL_GetAndCreateInitiatorsPerfByPhyPath(&cur, &sums), MPI_RET_SUCCESS);
    auto inits = entries(&sums);
    ASSERT_EQ(inits.size(), 2u);
    EXPECT_STREQ(inits[0]->initiator, "iqn.a");
    EXPECT_EQ(inits[0]->pathCount, 2u);
    EXPECT_EQ(ratesOf(inits[0]->perf), (Rates{10, 4, 40, 32, 2, 5, 2}));
    EXPECT_STREQ(inits[1]->initiator, "iqn.b");

    UilPerfEntry one{};
    EXPECT_EQ(UIL_GetArrayPerfInfo(&cur, 0, &one), MPI_RET_SUCCESS);
    EXPECT_EQ(one.perf.v[UIL_PERF_READ_IOPS], 12u);
    EXPECT_EQ(UIL_GetArrayPerfInfo(&cur, 5, &one), MPI_RET_NOT_FOUND);
    EXPECT_EQ(UIL_ComputeSumOfInitiatorPerf(&cur, "iqn.b", &one), MPI_RET_SUCCESS);
    EXPECT_EQ(one.perf.v[UIL_PERF_READ_RT], 7u);
    EXPECT_EQ(UIL_ComputeSumOfInitiatorPerf(&cur, "iqn.z", &one), MPI_RET_NOT_FOUND);
}

TEST_F(PerfLists, VlunSumsItsLogicalPaths)
{
    // VLUN 3 (disk 7) over paths 1 and 2, VLUN 4 (disk 8) over path 1.
    const PathRow paths[] = {{UIL_PERF_LOGIC_PATH, 1, 0, 0, 8, 4, ""},
                              {UIL_PERF_LOGIC_PATH, 1, 0, 0, 7, 3, ""},
                              {UIL_PERF_LOGIC_PATH, 2, 0, 0, 7, 3, ""}};
    const Counters after[] = {{0, 10, 0, 0, 0, 10000, 0, 90}, {60, 0, 0, 0, 245760, 0, 120, 0},
                              {40, 0, 0, 0, 163840, 0, 120, 0}};
    for (size_t i = 0; i < 3; ++i) {
        addEntry(&prev, paths[i], {});
        addEntry(&cur, paths[i], after[i]);
    }
    ASSERT_EQ(UIL_ComputePerfList(&cur, &prev, 10), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_GetVLUNPerfInfo(&cur, &sums), MPI_RET_SUCCESS);
    auto vluns = entries(&sums);
    ASSERT_EQ(vluns.size(), 2u);
    EXPECT_EQ(vluns[0]->vlunId, 3u);
    EXPECT_EQ(vluns[0]->diskId, 7u);
    // 240 ms over 100 reads: 2 ms, not the 2 + 3 of the two paths.
    EXPECT_EQ(ratesOf(vluns[0]->perf), (Rates{10, 0, 40, 0, 2, 0, 2}));
    EXPECT_EQ(vluns[1]->vlunId, 4u);
    EXPECT_EQ(ratesOf(vluns[1]->perf), (Rates{0, 1, 0, 1, 0, 9, 9}));

    UilPerfEntry one{};
    EXPECT_EQ(UIL_GetVLUNPerfInfoByPath(&cur, 3, &one), MPI_RET_SUCCESS);
    EXPECT_EQ(one.pathCount, 2u);
    EXPECT_EQ(one.diskId, 7u);
    EXPECT_EQ(UIL_GetVLUNPerfInfoByPath(&cur, 99, &one), MPI_RET_NOT_FOUND);
}

TEST_F(PerfLists, SortsAreStableAndKeyed)
{
    struct SortCase {
        const char* name;
        void (*sort)(MPI_ListNode*);
        std::vector<uint32_t> want;  // path IDs in the expected order
    };
    // path, array, controller: 5(1,0) 2(0,1) 9(0,0) 2'(1,1) 1(0,1)
    const SortCase cases[] = {
        {"logical by path", UIL_PathPerfSort, {1, 2, 2, 5, 9}},
        {"physical by path", UIL_PhyPathPerfSort, {1, 2, 2, 5, 9}},
        {"by array and controller", UIL_PhyPathPerfSortByArrayAndTpgId, {9, 2, 1, 5, 2}},
    };
    for (const SortCase& c : cases) {
        UIL_PerfListFree(&cur);
        const PathRow rows[] = {{UIL_PERF_PHY_PATH, 5, 1, 0, 0, 0, "first"},
                                  {UIL_PERF_PHY_PATH, 2, 0, 1, 0, 0, "second"},
                                  {UIL_PERF_PHY_PATH, 9, 0, 0, 0, 0, ""},
                                  {UIL_PERF_PHY_PATH, 2, 1, 1, 0, 0, "fourth"},
                                  {UIL_PERF_PHY_PATH, 1, 0, 1, 0, 0, ""}};
        for (const PathRow& s : rows) {
            addEntry(&cur, s, {});
        }
        c.sort(&cur);
        std::vector<uint32_t> got;
        for (UilPerfEntry* e : entries(&cur)) {
            got.push_back(e->pathId);
        }
        EXPECT_EQ(got, c.want) << c.name;
        EXPECT_EQ(UIL_PerfListCount(&cur), 5u) << c.name;
    }
    // Equal keys keep their order.
    UIL_PathPerfSort(&cur);
    EXPECT_STREQ(entries(&cur)[1]->initiator, "second");
    EXPECT_STREQ(entries(&cur)[2]->initiator, "fourth");
}

// The array and the initiator sums are carried from one interval to the
// next, reset and averaged alike.
TEST_F(PerfLists, ReplaceCarriesBlocksAndEmptiesCurrent)
{
    struct Family {
        UilPerfKind kind;
        void (*replace)(MPI_ListNode*, MPI_ListNode*);
        void (*resetMaxMin)(MPI_ListNode*);
        void (*average)(UilPerfEntry*);
    };
    const Family families[] = {
        {UIL_PERF_ARRAY, INTF_UIL_ReplaceArrayPerfData, INTF_UIL_InitPathPerfMaxMin, UIL_ComputeArrayAveragePerf},
        {UIL_PERF_INITIATOR, INTF_UIL_ReplaceInitiatorPerfData, INTF_UIL_InitPhyPathPerfMaxMin,
         UIL_ComputeInitiatorAveragePerf},
    };
    for (const Family& f : families) {
        SCOPED_TRACE(f.kind);
        UIL_PerfListFree(&prev);
        UIL_PerfListFree(&cur);
        const bool byName = f.kind == UIL_PERF_INITIATOR;
        // An array is known by its ID, an initiator by its name.
        auto row = [&](uint32_t id) {
            static const char* const kNames[] = {"iqn.4", "iqn.5", "iqn.6"};
            return PathRow{f.kind, 0, byName ? 0 : id, 0, 0, 0, byName ? kNames[id - 4] : ""};
        };
        UilPerfEntry* old = addEntry(&prev, row(4), {});
        old->maxmin = UilPerfMaxMin{90, 10, 900, 100, 9, 1};
        old->accum.v[UIL_PERF_READ_IOPS] = 33;
        old->accumSamples = 3;
        addEntry(&prev, row(6), {});  // gone from the new sample
        UilPerfEntry* kept = addEntry(&cur, row(4), {1, 0, 0, 0, 0, 0, 0, 0});
        UilPerfEntry* added = addEntry(&cur, row(5), {});

        f.replace(&cur, &prev);
        EXPECT_TRUE(MPI_ListEmpty(&cur));
        auto now = entries(&prev);
        ASSERT_EQ(now.size(), 2u);
        EXPECT_EQ(now[0], kept);
        EXPECT_EQ(now[1], added);
        EXPECT_EQ(kept->maxmin.maxIops, 90u);
        EXPECT_EQ(kept->accumSamples, 3u);
        EXPECT_EQ(kept->perf.v[0], 1u) << "the new sample stays";
        EXPECT_EQ(added->maxmin.minIops, UINT64_MAX) << "a new object starts with a reset block";

        f.resetMaxMin(&prev);
        EXPECT_EQ(kept->maxmin.maxIops, 0u);
        kept->accum.v[UIL_PERF_WRITE_RT] = 10;
        kept->accum.v[UIL_PERF_READ_IOPS] = 35;
        kept->accumSamples = 5;
        f.average(kept);
        EXPECT_EQ(kept->perf.v[UIL_PERF_READ_IOPS], 7u);
        EXPECT_EQ(kept->perf.v[UIL_PERF_WRITE_RT], 2u);
        EXPECT_EQ(kept->perf.v[0], 1u) << "averages touch only the computed values";
    }
}

// ---------------------------------------------------------------------------
// Wire layouts, written here from the documented offsets.

TEST(PerfWire, PhysicalPathPerformanceAnswer)
{
    for (uint8_t hasMaxMin : {uint8_t{0}, uint8_t{1}, uint8_t{2}}) {
        UiaPayload p(848);
        p.setU32(0, 17);
        p.setU8(4, hasMaxMin);
        p.setU32(8, 3);
        p.setU32(12, 1);
        p.setU32(16, 6);
        p.setText(20, 128, "Array-A");
        p.setText(156, 282, "iqn.1994-05.com.host:init");
        p.setText(438, 282, "21:00:00:24:ff:00:00:01");
        for (size_t i = 0; i < 8; ++i) {
            p.setU64(720 + 8 * i, 1000 + i);
        }
        p.setU64(784, 4242);
        for (size_t i = 0; i < 7; ++i) {
            p.setU64(792 + 8 * i, 50 + i);
        }
        UilPerfEntry e{};
        UIL_TrasPhyPathPerfInfo(p, &e);
        EXPECT_EQ(e.kind, UIL_PERF_PHY_PATH);
        EXPECT_EQ(e.pathId, 17u);
        EXPECT_EQ(e.arrayId, 3u);
        EXPECT_EQ(e.controllerId, 1u);
        EXPECT_EQ(e.hbaId, 6u);
        EXPECT_STREQ(e.arrayName, "Array-A");
        EXPECT_STREQ(e.initiator, "iqn.1994-05.com.host:init");
        EXPECT_STREQ(e.target, "21:00:00:24:ff:00:00:01");
        EXPECT_EQ(e.perf.v[0], 1000u);
        EXPECT_EQ(e.perf.v[7], 1007u);
        EXPECT_EQ(e.perf.v[UIL_PERF_EXTRA], 4242u);
        EXPECT_EQ(ratesOf(e.perf), (Rates{0, 0, 0, 0, 0, 0, 0}));
        if (hasMaxMin == 1) {
            EXPECT_EQ(e.driverMaxMin, 1);
            EXPECT_EQ(e.maxmin.maxIops, 50u);
            EXPECT_EQ(e.maxmin.minResp, 55u);
        } else {
            EXPECT_EQ(e.driverMaxMin, 0) << int(hasMaxMin);
            EXPECT_EQ(e.maxmin.maxIops, 0u);
            EXPECT_EQ(e.maxmin.minIops, UINT64_MAX);
        }
    }
}

TEST(PerfWire, LogicalPathStatisticsAnswer)
{
    UiaPayload p(320);
    p.setU32(0, 7);
    p.setU32(4, 2);
    p.setU32(8, 3);
    for (size_t i = 0; i < 8; ++i) {
        p.setU64(16 + 8 * i, 10 * (i + 1));
    }
    p.setU64(80, 99);
    UilPerfEntry e{};
    UIL_TransPathIoStatisticInfo(p, &e);
    EXPECT_EQ(e.kind, UIL_PERF_LOGIC_PATH);
    EXPECT_EQ(e.diskId, 7u);
    EXPECT_EQ(e.pathId, 2u);
    EXPECT_EQ(e.vlunId, 3u);
    EXPECT_EQ(e.perf.v[0], 10u);
    EXPECT_EQ(e.perf.v[7], 80u);
    EXPECT_EQ(e.perf.v[UIL_PERF_EXTRA], 99u);
}

TEST(PerfRecordLine, EachKindEndsWithItsObject)
{
    UilPerfEntry e{};
    e.perf.v[8] = 12;
    e.perf.v[9] = 4;
    e.perf.v[10] = 42;
    e.perf.v[11] = 32;
    e.perf.v[12] = 2;
    e.perf.v[13] = 5;
    e.perf.v[14] = 3;
    e.maxmin = UilPerfMaxMin{20, 1, 80, 2, 9, UINT64_MAX};
    e.arrayId = 2;
    e.pathId = 11;
    e.diskId = 7;
    e.vlunId = 3;
    (void)snprintf(e.initiator, sizeof(e.initiator), "iqn.x");
    const std::string head =
        "[4][2026-01-02 03:04:05] {Max,Min,Total,Read,Write}:IOPS{20,1,16,12,4},KB/S{80,2,74,42,32},"
        "delay(ms){9,0,3,2,5}";
    const std::pair<UilPerfKind, const char*> kinds[] = {
        {UIL_PERF_ARRAY, "||<ArrayID 2>\n"},
        {UIL_PERF_INITIATOR, "||<Initiator WWN: iqn.x>\n"},
        {UIL_PERF_PHY_PATH, "||<ArrayID 2,pathID 11>\n"},
        {UIL_PERF_VLUN, "||<VlunID 3,DiskID 7>\n"},
        {UIL_PERF_LOGIC_PATH, "||<VlunID 3,DiskID 7,pathID 11>\n"},
    };
    for (const auto& [kind, tail] : kinds) {
        e.kind = kind;
        char line[UIL_PERF_LINE_SIZE];
        ASSERT_EQ(UIL_FormatPerfRecordLine(4, "2026-01-02 03:04:05", &e, line, sizeof(line)), MPI_RET_SUCCESS);
        EXPECT_EQ(std::string(line), head + tail);
    }
    char small[40];
    EXPECT_EQ(UIL_FormatPerfRecordLine(4, "t", &e, small, sizeof(small)), MPI_RET_BUFFER_SMALL);
    EXPECT_STREQ(small, "");
}

// ---------------------------------------------------------------------------
// The periodic record, on a host whose counters grow with a fake clock.

struct FakePath {
    UilPerfKind kind;
    uint32_t pathId, arrayId, controllerId, diskId, vlunId;
    const char* initiator;
    Counters perSecond;
    uint64_t doubleFrom;  // the rates double from this clock value on (0: never)
};

constexpr uint64_t kStartMono = 1000;
constexpr uint64_t kWall = 1767323045;  // 2026-01-02 03:04:05 UTC

const FakePath kPhysical[] = {
    {UIL_PERF_PHY_PATH, 1, 0, 1, 0, 0, "iqn.a", {10, 4, 0, 0, 40960, 32768, 20, 20}, 0},
    {UIL_PERF_PHY_PATH, 2, 0, 0, 0, 0, "iqn.b", {2, 0, 0, 0, 2000, 0, 14, 0}, 1450},
    {UIL_PERF_PHY_PATH, 3, 1, 0, 0, 0, "iqn.a", {0, 0, 0, 0, 0, 0, 0, 0}, 0},
};
const FakePath kLogical[] = {
    {UIL_PERF_LOGIC_PATH, 1, 0, 0, 7, 3, "", {6, 0, 0, 0, 24576, 0, 12, 0}, 0},
    {UIL_PERF_LOGIC_PATH, 2, 0, 0, 7, 3, "", {4, 0, 0, 0, 16384, 0, 12, 0}, 0},
    {UIL_PERF_LOGIC_PATH, 3, 0, 0, 8, 4, "", {0, 1, 0, 0, 0, 1000, 0, 9}, 0},
};

struct FakeHost {
    uint64_t mono = kStartMono;
    uint64_t wall = kWall;
    UilDriverPerfRecord setting{1, 2, static_cast<uint32_t>(kWall - 100)};
    uint32_t settingRet = MPI_RET_SUCCESS;
    uint32_t sampleRet = MPI_RET_SUCCESS;
    uint32_t setCalls = 0;
    uint32_t setEnable = 99;
    uint32_t setHours = 99;
    uint32_t setRet = MPI_RET_SUCCESS;
};
FakeHost g_host;

uint32_t sample(const FakePath* paths, size_t n, MPI_ListNode* head)
{
    if (g_host.sampleRet != MPI_RET_SUCCESS) {
        return g_host.sampleRet;
    }
    for (size_t i = 0; i < n; ++i) {
        const FakePath& f = paths[i];
        uint64_t seconds = g_host.mono - kStartMono;
        if (f.doubleFrom != 0 && g_host.mono > f.doubleFrom) {
            seconds += g_host.mono - f.doubleFrom;
        }
        Counters c{};
        for (size_t k = 0; k < c.size(); ++k) {
            c[k] = f.perSecond[k] * seconds;
        }
        addEntry(head, {f.kind, f.pathId, f.arrayId, f.controllerId, f.diskId, f.vlunId, f.initiator}, c);
    }
    return MPI_RET_SUCCESS;
}

const UilPerfRecordOps kFakeOps{
    [](UilDriverPerfRecord* out) {
        *out = g_host.setting;
        return g_host.settingRet;
    },
    [](const char* source, uint32_t enable, uint32_t hours) {
        EXPECT_STREQ(source, "CLI");
        ++g_host.setCalls;
        g_host.setEnable = enable;
        g_host.setHours = hours;
        return g_host.setRet;
    },
    [](MPI_ListNode* head) { return sample(kPhysical, std::size(kPhysical), head); },
    [](MPI_ListNode* head) { return sample(kLogical, std::size(kLogical), head); },
    [] { return g_host.wall; },
    [] { return g_host.mono; },
};

struct PerfRecord : testing::Test {
    UilPerfRecordContext ctx;
    std::string logDir = testfiles::root() + "/opt/Corvane/log";
    void SetUp() override
    {
        g_host = FakeHost{};
        fs::remove_all(logDir + "/perf_log");
        fs::remove(logDir + "/oper_log");
        std::ofstream(logDir + "/serial_oper") << "7";
        UIL_OperLogSetRetry({2, 0});
        INTF_UIL_PerfRecordContextInit(&ctx, &kFakeOps);
    }
    void TearDown() override
    {
        INTF_UIL_PerfListRelease(&ctx);
        UIL_OperLogSetRetry(UIL_OPER_LOG_RETRY);
    }
    std::string recordText()
    {
        char path[1024];
        UIL_PerfRecordFilePath(path, sizeof(path));
        return testfiles::text(path);
    }
    // Steps the record every 5 s of the fake clock until `until`.
    void runUntil(uint64_t until)
    {
        for (; g_host.mono <= until; g_host.mono += 5) {
            ASSERT_EQ(INTF_UIL_PerformanceRecord(&ctx), MPI_RET_SUCCESS) << g_host.mono;
        }
    }
    uint32_t listed() const
    {
        return UIL_PerfListCount(&ctx.phyPaths) + UIL_PerfListCount(&ctx.logicPaths) + UIL_PerfListCount(&ctx.arrays) +
               UIL_PerfListCount(&ctx.initiators) + UIL_PerfListCount(&ctx.vluns);
    }
};

std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> out;
    size_t start = 0;
    for (size_t nl; (nl = text.find('\n', start)) != std::string::npos; start = nl + 1) {
        out.push_back(text.substr(start, nl - start + 1));
    }
    EXPECT_EQ(start, text.size()) << "every line is whole";
    return out;
}

TEST_F(PerfRecord, WritesEachPeriodsAveragesWithMaxMinAndStartsAfresh)
{
    runUntil(kStartMono + 290);
    EXPECT_EQ(recordText(), "") << "nothing before the first 295 s";
    runUntil(kStartMono + 295);
    const std::string t = "][2026-01-02 03:04:05] {Max,Min,Total,Read,Write}:";
    const std::vector<std::string> first = {
        "[1" + t + "IOPS{16,16,16,12,4},KB/S{74,74,74,42,32},delay(ms){3,3,3,2,5}||<ArrayID 0>\n",
        "[1" + t + "IOPS{0,0,0,0,0},KB/S{0,0,0,0,0},delay(ms){0,0,0,0,0}||<ArrayID 1>\n",
        "[1" + t + "IOPS{14,14,14,10,4},KB/S{72,72,72,40,32},delay(ms){2,2,2,2,5}||<Initiator WWN: iqn.a>\n",
        "[1" + t + "IOPS{2,2,2,2,0},KB/S{2,2,2,2,0},delay(ms){7,7,7,7,0}||<Initiator WWN: iqn.b>\n",
        "[1" + t + "IOPS{2,2,2,2,0},KB/S{2,2,2,2,0},delay(ms){7,7,7,7,0}||<ArrayID 0,pathID 2>\n",
        "[1" + t + "IOPS{14,14,14,10,4},KB/S{72,72,72,40,32},delay(ms){2,2,2,2,5}||<ArrayID 0,pathID 1>\n",
        "[1" + t + "IOPS{0,0,0,0,0},KB/S{0,0,0,0,0},delay(ms){0,0,0,0,0}||<ArrayID 1,pathID 3>\n",
        "[1" + t + "IOPS{10,10,10,10,0},KB/S{40,40,40,40,0},delay(ms){2,2,2,2,0}||<VlunID 3,DiskID 7>\n",
        "[1" + t + "IOPS{6,6,6,6,0},KB/S{24,24,24,24,0},delay(ms){2,2,2,2,0}||<VlunID 3,DiskID 7,pathID 1>\n",
        "[1" + t + "IOPS{4,4,4,4,0},KB/S{16,16,16,16,0},delay(ms){3,3,3,3,0}||<VlunID 3,DiskID 7,pathID 2>\n",
        "[1" + t + "IOPS{1,1,1,0,1},KB/S{1,1,1,0,1},delay(ms){9,9,9,0,9}||<VlunID 4,DiskID 8>\n",
        "[1" + t + "IOPS{1,1,1,0,1},KB/S{1,1,1,0,1},delay(ms){9,9,9,0,9}||<VlunID 4,DiskID 8,pathID 3>\n",
    };
    EXPECT_EQ(splitLines(recordText()), first);

    // Second period: path 2 reads twice as fast from 1450 on (7 samples at
    // 2/s, 5 at 4/s): the average truncates, max and min show both rates.
    runUntil(kStartMono + 590);
    std::vector<std::string> lines = splitLines(recordText());
    ASSERT_EQ(lines.size(), 24u);
    EXPECT_EQ(lines[12], "[2" + t + "IOPS{18,16,16,12,4},KB/S{76,74,74,42,32},delay(ms){3,3,3,2,5}||<ArrayID 0>\n");
    EXPECT_EQ(lines[16], "[2" + t + "IOPS{4,2,2,2,0},KB/S{4,2,2,2,0},delay(ms){7,7,7,7,0}||<ArrayID 0,pathID 2>\n");

    // Third period: the maxima and minima were reset, the new rate is both.
    runUntil(kStartMono + 885);
    lines = splitLines(recordText());
    ASSERT_EQ(lines.size(), 36u);
    EXPECT_EQ(lines[24], "[3" + t + "IOPS{18,18,18,14,4},KB/S{76,76,76,44,32},delay(ms){3,3,3,3,5}||<ArrayID 0>\n");
}

TEST_F(PerfRecord, StopsAtTheEndOfTheDurationWithAnOperationLogLine)
{
    runUntil(kStartMono + 50);
    g_host.wall = g_host.setting.startSeconds + 2 * 3600 - 1;
    ASSERT_EQ(INTF_UIL_PerformanceRecord(&ctx), MPI_RET_SUCCESS);
    EXPECT_EQ(g_host.setCalls, 0u);
    EXPECT_GT(listed(), 0u);

    g_host.wall += 1;
    ASSERT_EQ(INTF_UIL_PerformanceRecord(&ctx), MPI_RET_SUCCESS);
    EXPECT_EQ(g_host.setCalls, 1u);
    EXPECT_EQ(g_host.setEnable, 0u);
    EXPECT_EQ(g_host.setHours, 2u);
    EXPECT_EQ(listed(), 0u);
    EXPECT_FALSE(ctx.started);
    EXPECT_NE(testfiles::traceText().find("performance_record arrive at the stop time.\n"), std::string::npos);
    std::string oper = testfiles::text(logDir + "/oper_log");
    EXPECT_NE(oper.find("[8] ["), std::string::npos) << oper;
    EXPECT_NE(oper.find("] [CLI] [1] [1396789603] [setCorvane Service] [Close performance record, duration is 2 "
                        "hours] ["),
              std::string::npos)
        << oper;
    EXPECT_EQ(oper.substr(oper.size() - 4), "[1]\n") << "the switch-off succeeded";

    // A refused switch-off is recorded as a failure.
    g_host.setRet = MPI_RET_IOCTL_FAIL;
    EXPECT_EQ(INTF_UIL_PerformanceRecord(&ctx), MPI_RET_IOCTL_FAIL);
    oper = testfiles::text(logDir + "/oper_log");
    EXPECT_EQ(oper.substr(oper.size() - 4), "[0]\n");
    EXPECT_EQ(recordText(), "");
}

TEST_F(PerfRecord, DisabledOrUnreadableSettingAndFailedSamples)
{
    struct Case {
        const char* name;
        void (*setUp)();
        uint32_t want;
        bool listsKept;
    };
    const Case cases[] = {
        {"recording off releases the lists", [] { g_host.setting.enabled = 0; }, MPI_RET_SUCCESS, false},
        {"no duration never stops", [] {
             g_host.setting.durationHours = 0;
             g_host.wall = kWall + 100 * 3600;
         }, MPI_RET_SUCCESS, true},
        {"setting unreadable changes nothing", [] { g_host.settingRet = MPI_RET_IOCTL_FAIL; }, MPI_RET_IOCTL_FAIL,
         true},
        {"a failed sample keeps the last one", [] { g_host.sampleRet = MPI_RET_IOCTL_FAIL; }, MPI_RET_IOCTL_FAIL,
         true},
    };
    for (const Case& c : cases) {
        g_host = FakeHost{};
        INTF_UIL_PerfListRelease(&ctx);
        runUntil(kStartMono + 25);
        uint32_t before = listed();
        ASSERT_GT(before, 0u) << c.name;
        c.setUp();
        g_host.mono += 25;
        EXPECT_EQ(INTF_UIL_PerformanceRecord(&ctx), c.want) << c.name;
        EXPECT_EQ(listed(), c.listsKept ? before : 0u) << c.name;
        EXPECT_EQ(g_host.setCalls, 0u) << c.name;
    }
    // A first sample that fails leaves the context unstarted.
    g_host = FakeHost{};
    INTF_UIL_PerfListRelease(&ctx);
    g_host.sampleRet = MPI_RET_IOCTL_FAIL;
    EXPECT_EQ(INTF_UIL_PerformanceRecord(&ctx), MPI_RET_IOCTL_FAIL);
    EXPECT_FALSE(ctx.started);
}

}  // namespace
