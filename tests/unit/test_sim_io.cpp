// The simulated host's I/O model: counters from the topology's constant
// loads at the model's clock, injected resets, refused documents, and the
// rates the interface layer computes from two of its samples.
#include <gtest/gtest.h>

#include <string>

#include "sim/model_io.h"
#include "uil/uil_perf.h"

namespace {

using cvsim::Json;
using cvsim::io::Counters;
using cvsim::io::Model;

const Json kDoc = Json::parse(R"({
  "io": {
    "physical": [{"path": 1, "reads": 10, "writes": 4, "read_bytes": 4096, "write_bytes": 8192,
                  "read_ms": 2, "write_ms": 5},
                 {"path": 2, "reads": 3}],
    "logical": [{"disk": 7, "path": 1, "writes": 2, "write_bytes": 1000, "write_ms": 9}],
    "resets": [{"path": 1, "at": 600}, {"path": 1, "at": 300}, {"disk": 7, "path": 1, "at": 50}]
  }
})");

TEST(SimIoModel, CountersGrowWithTheClockAndRestartAtResets)
{
    Model m = Model::FromDocument(kDoc);
    struct Case {
        const char* name;
        Counters got;
        std::array<uint64_t, 8> want;
    };
    const Case cases[] = {
        {"physical at 100 s", m.physical(1, 100), {1000, 400, 0, 0, 4096000, 3276800, 2000, 2000}},
        {"just before the first reset", m.physical(1, 299), {2990, 1196, 0, 0, 12247040, 9797632, 5980, 5980}},
        {"reset at 300 (listed out of order)", m.physical(1, 300), {0, 0, 0, 0, 0, 0, 0, 0}},
        {"after the second reset", m.physical(1, 610), {100, 40, 0, 0, 409600, 327680, 200, 200}},
        {"missing members are 0", m.physical(2, 10), {30, 0, 0, 0, 0, 0, 0, 0}},
        {"logical path keyed by disk", m.logical(7, 1, 60), {0, 20, 0, 0, 0, 20000, 0, 180}},
        {"unlisted logical path is idle", m.logical(8, 1, 60), {0, 0, 0, 0, 0, 0, 0, 0}},
        {"unlisted physical path is idle", m.physical(3, 60), {0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.got.v, c.want) << c.name;
        EXPECT_EQ(c.got.extra, 0u) << c.name;
    }
    EXPECT_EQ(Model::FromDocument(Json::parse(R"({"paths": []})")).physical(1, 100).v[0], 0u) << "no io section";
}

TEST(SimIoModel, MalformedSectionsNameThePlace)
{
    const std::pair<const char*, const char*> cases[] = {
        {R"({"io": []})", "io: not an object"},
        {R"({"io": {"physical": {}}})", "io.physical: not a list"},
        {R"({"io": {"physical": [{"reads": 1}]}})", "io.physical[0].path: missing"},
        {R"({"io": {"physical": [{"path": 1, "reads": -1}]}})", "io.physical[0].reads: not a whole number"},
        {R"({"io": {"physical": [{"path": 1}, {"path": 1}]}})", "io.physical[1]: the path is listed twice"},
        {R"({"io": {"logical": [{"path": 1}]}})", "io.logical[0].disk: missing"},
        {R"({"io": {"resets": [{"path": 4294967296, "at": 1}]}})", "io.resets[0].path: above 4294967295"},
        {R"({"io": {"resets": [{"path": 1}]}})", "io.resets[0].at: missing"},
    };
    for (const auto& [doc, want] : cases) {
        try {
            (void)Model::FromDocument(Json::parse(doc));
            ADD_FAILURE() << doc << ": accepted";
        } catch (const cvsim::SimError& e) {
            EXPECT_NE(std::string(e.what()).find(want), std::string::npos) << doc << ": " << e.what();
        }
    }
}

UilPerfInfo asInfo(const Counters& c)
{
    UilPerfInfo r{};
    for (size_t i = 0; i < c.v.size(); ++i) {
        r.v[i] = c.v[i];
    }
    return r;
}

// What a `show iostat` over the simulated host must show follows from the
// topology alone.
TEST(SimIoModel, RatesOverAnIntervalArePredictable)
{
    Model m = Model::FromDocument(kDoc);
    struct Case {
        const char* name;
        uint64_t from, to;
        std::array<uint64_t, 7> want;  // read/write IOPS, read/write KB/S, read/write/total ms
    };
    const Case cases[] = {
        {"steady", 100, 110, {10, 4, 40, 32, 2, 5, 2}},
        // Across the reset at 600 the counters went down: 10 s of load over 20 s.
        {"across a reset", 590, 610, {5, 2, 20, 16, 2, 5, 2}},
    };
    for (const Case& c : cases) {
        UilPerfInfo prev = asInfo(m.physical(1, c.from));
        UilPerfInfo cur = asInfo(m.physical(1, c.to));
        UIL_ComputePerfInfo(&cur, &prev, static_cast<uint32_t>(c.to - c.from));
        std::array<uint64_t, 7> got{cur.v[8], cur.v[9], cur.v[10], cur.v[11], cur.v[12], cur.v[13], cur.v[14]};
        EXPECT_EQ(got, c.want) << c.name;
    }
}

}  // namespace
