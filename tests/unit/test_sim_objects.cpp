// The simulated driver's storage-object answers, read back byte for byte at
// the driver's offsets (written out here, not taken from the model), on a
// small topology of this file; the checks on the bundled default topology
// and on the generated largest one follow at the end.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "model_objects.h"

namespace {

using cvsim::Json;
using cvsim::SimContext;

constexpr uint8_t kMarker = 0xA5;  // what the program's buffer holds where the driver must not write

// Started at 1000000; tests place the clock after it.
const char* const kTopology = R"({
  "driver": {"version": [21, 1, 30], "started": 1000000},
  "hbas": [
    {"id": 5, "type": "FC", "wwn": "21:00:00:24:ff:00:00:05", "host": 7, "driver": "QLogic qla2xxx"},
    {"id": 6, "type": "FC", "wwn": "21:00:00:24:ff:00:00:06", "host": 8, "enabled": false},
    {"id": 7, "type": "iSCSI", "wwn": "iqn.1994-05.com.example:h1", "host": 9}
  ],
  "arrays": [
    {"id": 3, "name": "Alpha", "sn": "SN000000000000000003", "vendor": "CORVANE", "product": "Dorado",
     "revision": "6.1", "driver": "alua", "capability_bits": [24, 6], "flag_bytes": [1, 0, 2],
     "controllers": [{"id": 1, "name": "CTE0.B", "remote": true}, {"id": 0}, {"id": 2, "enabled": false}]},
    {"id": 1, "name": "\u5b58\u50a8", "sn": "SN000000000000000001", "controllers": [{"id": 0}]}
  ],
  "paths": [
    {"id": 10, "array": 3, "controller": 0, "hba": 5, "target": "20:00:00:00:00:00:00:10", "port_id": "P10",
     "io_retry": {"base": 7, "per_hour": 36}, "path_faults": {"base": 2},
     "latency_ms": {"low": 1, "avg": 4, "high": 9}, "check": {"start": "manual", "step": "checking", "previous": "fail"}},
    {"id": 11, "array": 3, "controller": 1, "hba": 5, "target": "20:00:00:00:00:00:00:11", "io_state": "busy"},
    {"id": 12, "array": 3, "controller": 1, "hba": 6, "target": "20:00:00:00:00:00:00:12"},
    {"id": 13, "array": 3, "controller": 2, "hba": 5, "target": "20:00:00:00:00:00:00:13", "link": "down"},
    {"id": 14, "array": 1, "controller": 0, "hba": 7, "target": "iqn.2006-08.com.example:t",
     "initiator_ip": "10.1.2.3", "initiator_tcp_port": 40000, "target_tcp_port": 3260},
    {"id": 15, "array": 1, "controller": 0, "hba": 7, "target": "iqn.2006-08.com.example:t",
     "initiator_ip": "fd00::1:2", "initiator_tcp_port": 40001}
  ],
  "disks": [
    {"id": 20, "array": 3, "name": "normal", "wwn": "60000000000000000000000000000020", "capacity": 5000000000123,
     "owner": 1, "worker": 0, "host_lun": 4, "dev_lun_id": 9},
    {"id": 21, "array": 3, "name": "busy", "wwn": "60000000000000000000000000000021", "capacity": 1, "owner": 1, "paths": [11]},
    {"id": 22, "array": 3, "name": "down", "wwn": "60000000000000000000000000000022", "capacity": 1, "owner": 2, "paths": [13]},
    {"id": 23, "array": 3, "name": "off", "wwn": "60000000000000000000000000000023", "capacity": 1, "owner": 1, "paths": [12]},
    {"id": 24, "array": 3, "name": "faulty", "wwn": "60000000000000000000000000000024", "capacity": 1, "owner": 0,
     "paths": [10], "faulty_paths": [10]},
    {"id": 25, "array": 3, "name": "gone", "wwn": "60000000000000000000000000000025", "capacity": 1, "owner": 0,
     "paths": [10], "unavailable": true},
    {"id": 26, "array": 1, "name": "remote", "wwn": "60000000000000000000000000000020", "capacity": 5000000000123, "owner": 0}
  ],
  "vluns": [
    {"id": 40, "type": "dualsite", "disks": [20, 26], "device": "sdq"},
    {"id": 41, "disks": [21], "device": "sdr"},
    {"id": 42, "type": "pe", "disks": [22], "device": "sds"},
    {"id": 43, "pe": true, "disks": [23], "device": "sdt", "io_suspension": {"timeout_seconds": 100, "since": 1000050}},
    {"id": 44, "type": "migration", "disks": [24, 25], "device": "sdu"}
  ]
})";

// A program-side request buffer: the marker everywhere, inputs written at
// their offsets, read back little-endian.
struct Wire {
    std::vector<uint8_t> bytes;

    explicit Wire(size_t size) : bytes(size, kMarker) {}
    Wire& put32(size_t off, uint32_t v)
    {
        for (size_t i = 0; i < 4; ++i) {
            bytes.at(off + i) = static_cast<uint8_t>(v >> (8 * i));
        }
        return *this;
    }
    Wire& putText(size_t off, const std::string& s)
    {
        for (size_t i = 0; i <= s.size(); ++i) {
            bytes.at(off + i) = i < s.size() ? static_cast<uint8_t>(s[i]) : 0;
        }
        return *this;
    }
    uint8_t u8(size_t off) const { return bytes.at(off); }
    uint64_t le(size_t off, size_t width) const
    {
        uint64_t v = 0;
        for (size_t i = 0; i < width; ++i) {
            v |= static_cast<uint64_t>(bytes.at(off + i)) << (8 * i);
        }
        return v;
    }
    uint32_t u32(size_t off) const { return static_cast<uint32_t>(le(off, 4)); }
    uint64_t u64(size_t off) const { return le(off, 8); }
    // The text at `off`, up to its NUL or `len` bytes.
    std::string text(size_t off, size_t len) const
    {
        std::string s;
        for (size_t i = 0; i < len && bytes.at(off + i) != 0; ++i) {
            s.push_back(static_cast<char>(bytes.at(off + i)));
        }
        return s;
    }
};

// Sends one request as the model's table routes it, with the payload the
// size the request declares (an ID list reaches further by its capacity).
uint32_t Send(SimContext& ctx, uint32_t nr, Wire& w)
{
    const cvsim::SimRequestRow* row = cvsim::FindRequest(nr);
    if (row == nullptr || w.bytes.size() < row->size) {
        ADD_FAILURE() << "nr " << nr << ": no row, or a buffer under its declared size";
        return 0;
    }
    cvsim::SimPayload p(w.bytes.data(), row->size);
    return row->handler(ctx, p);
}

uint32_t DeclaredSize(uint32_t nr) { return cvsim::FindRequest(nr)->size; }

// Fixes the model's clock (CVSIM_NOW) for its lifetime; contexts made then
// read it at their first use.
class ClockAt {
public:
    explicit ClockAt(long long unixSeconds)
    {
        const char* old = std::getenv("CVSIM_NOW");
        m_had = old != nullptr;
        m_old = m_had ? old : "";
        setenv("CVSIM_NOW", std::to_string(unixSeconds).c_str(), 1);
    }
    ClockAt(const ClockAt&) = delete;
    ClockAt& operator=(const ClockAt&) = delete;
    ~ClockAt()
    {
        if (m_had) {
            setenv("CVSIM_NOW", m_old.c_str(), 1);
        } else {
            unsetenv("CVSIM_NOW");
        }
    }

private:
    bool m_had;
    std::string m_old;
};

class SimObjects : public testing::Test {
protected:
    Json doc = Json::parse(kTopology);
    cvsim::SimObjectsPtr slot;
    SimContext ctx{doc, &slot};
};

// ---------------------------------------------------------------------------
// ID lists.

struct IdListCase {
    const char* what;
    uint32_t nr;
    std::vector<std::pair<size_t, uint32_t>> inputs;
    int capacityOff;  // -1: the buffer's room is fixed
    size_t countOff;
    size_t idsOff;
    std::vector<uint32_t> ids;
};

const std::vector<IdListCase> kIdLists = {
    {"array IDs", 0x0b, {}, 0, 8, 12, {3, 1}},
    {"disks of an array", 0x15, {{0, 3}}, 8, 16, 20, {20, 21, 22, 23, 24, 25}},
    {"VLUNs of an array, each once", 0x19, {{0, 3}}, 4, 12, 16, {40, 41, 42, 43, 44}},
    {"VLUNs of the second site", 0x19, {{0, 1}}, 4, 12, 16, {40}},
    {"disks over a path", 0x16, {{0, 10}}, 8, 16, 20, {20, 24, 25}},
    {"logical paths of a disk", 0x1f, {{0, 20}}, 4, 8, 12, {10, 11, 12, 13}},
    {"physical paths of an array", 0x29, {{0, 3}}, 4, 12, 16, {10, 11, 12, 13}},
    {"physical paths of every array", 0x29, {{0, 0x7FFFFFFF}}, 4, 12, 16, {10, 11, 12, 13, 14, 15}},
    {"TPGs of an array", 0x3c, {{0, 3}}, 4, 8, 12, {1, 0, 2}},
    {"paths of a TPG", 0x3d, {{0, 3}, {4, 1}}, 8, 16, 24, {11, 12}},
    {"HBA IDs", 0x42, {}, 0, 4, 8, {5, 6, 7}},
    {"paths of an HBA", 0x2c, {{0, 5}}, -1, 4, 8, {10, 11, 13}},
};

TEST_F(SimObjects, IdListsAnswerAtTheirOffsetsWithinTheCapacity)
{
    for (const IdListCase& c : kIdLists) {
        SCOPED_TRACE(c.what);
        // The count= fault rewrites the count where this row says it is.
        EXPECT_EQ(cvsim::FindRequest(c.nr)->countOffset, static_cast<int32_t>(c.countOff));
        std::vector<uint32_t> capacities = {static_cast<uint32_t>(c.ids.size()) + 3};
        if (c.capacityOff >= 0) {
            capacities.push_back(1);
            capacities.push_back(0);
        }
        for (uint32_t capacity : capacities) {
            SCOPED_TRACE("capacity " + std::to_string(capacity));
            size_t declared = DeclaredSize(c.nr);
            size_t room = c.capacityOff < 0 ? declared : declared + 4 * (std::max(capacity, 1u) - 1);
            Wire w(room + 16);
            for (auto [off, v] : c.inputs) {
                w.put32(off, v);
            }
            if (c.capacityOff >= 0) {
                w.put32(static_cast<size_t>(c.capacityOff), capacity);
            }
            ASSERT_EQ(Send(ctx, c.nr, w), 1024u);
            size_t expected = std::min<size_t>(c.ids.size(), capacity);
            ASSERT_EQ(w.u32(c.countOff), expected);
            for (size_t i = 0; i < expected; ++i) {
                EXPECT_EQ(w.u32(c.idsOff + 4 * i), c.ids[i]) << "ID " << i;
            }
            for (size_t off = c.idsOff + 4 * expected; off < w.bytes.size(); ++off) {
                ASSERT_EQ(w.u8(off), kMarker) << "written past the IDs at " << off;
            }
        }
    }
}

// The 848-byte answer holds 210 IDs, whatever the HBA carries.
TEST(SimObjectsLimits, PathsOfAnHbaStopAtTheRoomOfTheirPayload)
{
    Json doc = Json::parse(R"({"driver": {"version": [1, 0, 0]},
        "hbas": [{"id": 0, "wwn": "w"}], "arrays": [], "paths": []})");
    uint32_t pathId = 0;
    for (uint32_t a = 0; a < 2; ++a) {
        Json array = {{"id", a}, {"name", "A"}, {"sn", "S"}, {"controllers", Json::array()}};
        for (uint32_t c = 0; c < 16; ++c) {
            array["controllers"].push_back({{"id", c}});
            for (uint32_t k = 0; k < 8; ++k) {
                doc["paths"].push_back({{"id", pathId++}, {"array", a}, {"controller", c}, {"hba", 0}, {"target", "t"}});
            }
        }
        doc["arrays"].push_back(array);
    }
    SimContext ctx(doc);
    Wire w(848 + 16);
    w.put32(0, 0);
    ASSERT_EQ(Send(ctx, 0x2c, w), 1024u);
    EXPECT_EQ(w.u32(4), 210u);
    EXPECT_EQ(w.u32(8 + 4 * 209), 209u);
    for (size_t off = 848; off < w.bytes.size(); ++off) {
        ASSERT_EQ(w.u8(off), kMarker) << off;
    }
}

// ---------------------------------------------------------------------------
// Unknown objects.

struct UnknownCase {
    uint32_t nr;
    std::vector<std::pair<size_t, uint32_t>> inputs;
    uint32_t code;
};

TEST_F(SimObjects, UnknownObjectsAreRefusedAndTheirPayloadLeftAlone)
{
    const std::vector<UnknownCase> cases = {
        {0x0c, {{0, 9}}, 1057},         {0x0d, {{0, 9}}, 1057},          {0x15, {{0, 9}, {8, 4}}, 1057},
        {0x19, {{0, 9}, {4, 4}}, 1057}, {0x29, {{0, 9}, {4, 4}}, 1057}, {0x3c, {{0, 9}, {4, 4}}, 1057},
        {0x3d, {{0, 9}, {4, 0}}, 1057}, {0x3e, {{0, 9}, {4, 0}}, 1057}, {0x3d, {{0, 3}, {4, 7}}, 1026},
        {0x3e, {{0, 3}, {4, 7}}, 1026}, {0x17, {{0, 99}}, 1026},        {0x16, {{0, 99}, {8, 4}}, 1026},
        {0x1f, {{0, 99}, {4, 4}}, 1026}, {0x20, {{0, 20}, {4, 14}}, 1026}, {0x20, {{0, 99}, {4, 10}}, 1026},
        {0x2a, {{0, 99}}, 1026},        {0x2c, {{0, 99}}, 1026},         {0x5f, {{0, 99}}, 1039},
    };
    for (const UnknownCase& c : cases) {
        SCOPED_TRACE("nr " + std::to_string(c.nr) + " " + std::to_string(c.inputs[0].second));
        Wire w(DeclaredSize(c.nr) + 64);
        for (auto [off, v] : c.inputs) {
            w.put32(off, v);
        }
        Wire before = w;
        EXPECT_EQ(Send(ctx, c.nr, w), c.code);
        EXPECT_EQ(w.bytes, before.bytes);
    }
}

TEST_F(SimObjects, UnknownHbaLeavesTheCodeInItsResultWord)
{
    Wire byId(256);
    byId.put32(4, 99);
    EXPECT_EQ(Send(ctx, 0x41, byId), 1026u);
    EXPECT_EQ(byId.u32(0), 1026u);
    Wire byWwn(256);
    byWwn.putText(12, "21:00:00:24:ff:00:00:99");
    EXPECT_EQ(Send(ctx, 0x40, byWwn), 1026u);
    EXPECT_EQ(byWwn.u32(0), 1026u);
    EXPECT_EQ(byWwn.u8(254), kMarker);
}

// ---------------------------------------------------------------------------
// Records.

TEST_F(SimObjects, ArrayRecordAtItsOffsets)
{
    Wire w(444);
    w.put32(0, 3);
    ASSERT_EQ(Send(ctx, 0x0c, w), 1024u);
    EXPECT_EQ(w.u32(0), 3u);
    EXPECT_EQ(w.text(4, 80), "Alpha");
    EXPECT_EQ(w.text(85, 8), "CORVANE");
    EXPECT_EQ(w.text(94, 16), "Dorado");
    EXPECT_EQ(w.text(111, 4), "6.1");
    EXPECT_EQ(w.text(116, 20), "SN000000000000000003");
    EXPECT_EQ(w.text(137, 129), "alua");
    EXPECT_EQ(w.u32(436), (1u << 24) | (1u << 6));
    EXPECT_EQ(w.u8(440), 1);
    EXPECT_EQ(w.u8(441), 0);
    EXPECT_EQ(w.u8(442), 2);
    // Every text is followed by a zero byte, and what the topology does not
    // give is zero.
    for (size_t off : {84u, 93u, 110u, 115u, 136u, 266u, 268u, 272u, 404u, 428u, 432u, 443u}) {
        EXPECT_EQ(w.u8(off), 0) << off;
    }
}

TEST_F(SimObjects, SyncKeepsTheSerialNumberItWasSent)
{
    Wire sync(444);
    sync.put32(0, 3).putText(116, "NEWSN0000000000003");
    ASSERT_EQ(Send(ctx, 0x0d, sync), 1024u);
    EXPECT_EQ(doc["arrays"][0]["sn"], "NEWSN0000000000003");
    Wire info(444);
    info.put32(0, 3);
    ASSERT_EQ(Send(ctx, 0x0c, info), 1024u);
    EXPECT_EQ(info.text(116, 20), "NEWSN0000000000003");

    for (const std::string& bad : {std::string(), std::string("SN\x01")}) {
        Wire w(444);
        w.put32(0, 3).putText(116, bad);
        EXPECT_EQ(Send(ctx, 0x0d, w), 1026u);
        EXPECT_EQ(doc["arrays"][0]["sn"], "NEWSN0000000000003");
    }
}

TEST_F(SimObjects, DiskRecordAtItsOffsets)
{
    Wire w(544);
    w.put32(0, 20);
    ASSERT_EQ(Send(ctx, 0x17, w), 1024u);
    EXPECT_EQ(w.u32(0), 20u);
    EXPECT_EQ(w.u32(4), 40u) << "VLUN";
    EXPECT_EQ(w.u32(8), 1u) << "owning controller";
    EXPECT_EQ(w.u32(12), 0u) << "working controller";
    EXPECT_EQ(w.u32(16), 3u) << "array";
    EXPECT_EQ(w.u32(20), 4u) << "host LUN";
    EXPECT_EQ(w.u32(36), 6u) << "disks of its array";
    EXPECT_EQ(w.u64(40), 5000000000123u) << "capacity in bytes";
    EXPECT_EQ(w.text(48, 64), "normal");
    EXPECT_EQ(w.text(120, 8), "CORVANE");
    EXPECT_EQ(w.text(136, 16), "Dorado");
    EXPECT_EQ(w.text(160, 4), "6.1");
    EXPECT_EQ(w.text(168, 32), "60000000000000000000000000000020");
    EXPECT_EQ(w.text(208, 80), "Alpha");
    EXPECT_EQ(w.text(296, 20), "SN000000000000000003");
    EXPECT_EQ(w.text(324, 129), "alua");
    EXPECT_EQ(w.text(460, 64), "sdq") << "the VLUN's device, terminated before 500";
    EXPECT_EQ(w.u32(500), (1u << 24) | (1u << 6));
    EXPECT_EQ(w.u32(532), 9u);
    EXPECT_EQ(w.u8(536), 1) << "device LUN ID valid";
    EXPECT_EQ(w.u32(540), 4u) << "paths";

    Wire second(544);
    second.put32(0, 26);
    ASSERT_EQ(Send(ctx, 0x17, second), 1024u);
    EXPECT_EQ(second.text(208, 80), "\xe5\xad\x98\xe5\x82\xa8") << "array name as UTF-8";
    EXPECT_EQ(second.u8(536), 0) << "no device LUN ID";
}

struct DiskStatusCase {
    uint32_t disk;
    uint8_t normal;       // 537
    uint8_t degraded;     // 538
    uint8_t unavailable;  // 529
};

TEST_F(SimObjects, DiskStatusBytesFollowItsLogicalPaths)
{
    const std::vector<DiskStatusCase> cases = {
        {20, 1, 1, 0},  // one normal and one busy path among a disabled and a down one
        {21, 0, 1, 0},  // busy only
        {22, 0, 0, 0},  // down only
        {23, 0, 0, 0},  // through a disabled HBA only
        {24, 0, 0, 0},  // its only logical path flagged faulty
        {25, 1, 0, 1},  // unavailable, on a normal path
    };
    for (const DiskStatusCase& c : cases) {
        Wire w(544);
        w.put32(0, c.disk);
        ASSERT_EQ(Send(ctx, 0x17, w), 1024u);
        EXPECT_EQ(w.u8(537), c.normal) << "disk " << c.disk;
        EXPECT_EQ(w.u8(538), c.degraded) << "disk " << c.disk;
        EXPECT_EQ(w.u8(529), c.unavailable) << "disk " << c.disk;
    }
}

struct VlunCase {
    uint32_t vlun;
    uint8_t type;
    uint8_t pe;
    uint32_t members;
    uint32_t disk0;
    uint32_t disk1;
    const char* wwn;
    const char* sn;
};

TEST_F(SimObjects, VlunRecordAtItsOffsets)
{
    const std::vector<VlunCase> cases = {
        {40, 38, 0, 2, 20, 26, "60000000000000000000000000000020", "SN000000000000000003"},
        {41, 37, 0, 1, 21, 0, "60000000000000000000000000000021", "SN000000000000000003"},
        {42, 41, 1, 1, 22, 0, "60000000000000000000000000000022", "SN000000000000000003"},
        {43, 37, 1, 1, 23, 0, "60000000000000000000000000000023", "SN000000000000000003"},
        {44, 39, 0, 2, 24, 25, "60000000000000000000000000000024", "SN000000000000000003"},
    };
    ClockAt clock(1000080);
    for (const VlunCase& c : cases) {
        SCOPED_TRACE("VLUN " + std::to_string(c.vlun));
        Wire w(84);
        w.put32(0, c.vlun);
        ASSERT_EQ(Send(ctx, 0x5f, w), 1024u);
        EXPECT_EQ(w.u32(0), c.vlun);
        EXPECT_EQ(w.text(4, 32), c.wwn);
        EXPECT_EQ(w.u8(36), 0);
        EXPECT_EQ(w.text(37, 20), c.sn);
        EXPECT_EQ(w.u8(57), 0);
        EXPECT_EQ(w.u8(58), c.type);
        EXPECT_EQ(w.u8(59), c.pe);
        EXPECT_EQ(w.u32(60), c.members);
        EXPECT_EQ(cvsim::FindRequest(0x5f)->countOffset, 60) << "the count= fault: the member count";
        EXPECT_EQ(w.u32(64), c.disk0);
        EXPECT_EQ(w.u32(68), c.disk1);
        bool suspended = c.vlun == 43;
        EXPECT_EQ(w.u32(72), suspended ? 100000u : 0u) << "suspension timeout, ms";
        EXPECT_EQ(w.u32(76), suspended ? 70000u : 0u) << "remaining, ms";
    }
}

// Dual-site information: one VLUN's, or the host's default primary array
// (flag at 26), which only a driver document that names one can answer.
TEST_F(SimObjects, DualSiteInfoOfAVlunAndTheDefault)
{
    struct DsCase {
        const char* what;
        uint32_t vlun;
        uint8_t defaultFlag;
        uint32_t result;
        const char* sn;  // nullptr: the payload stays as it came
    };
    const DsCase cases[] = {
        {"dual-site VLUN: its first member's array", 40, 0, 1024, "SN000000000000000003"},
        {"ordinary VLUN", 41, 0, 1063, nullptr},
        {"unknown VLUN", 99, 0, 1039, nullptr},
        {"no default primary in the document", 0, 1, 1, nullptr},
    };
    for (const DsCase& c : cases) {
        SCOPED_TRACE(c.what);
        Wire w(28);
        w.put32(0, c.vlun);
        w.bytes[26] = c.defaultFlag;
        ASSERT_EQ(Send(ctx, 0x5d, w), c.result);
        if (c.sn == nullptr) {
            EXPECT_EQ(w.u8(4), kMarker);
            continue;
        }
        EXPECT_EQ(w.u8(4), 0) << "working mode: between both arrays";
        EXPECT_EQ(w.text(5, 20), c.sn);
        EXPECT_EQ(w.u8(26), 0);
    }
    doc["driver"]["default_ds_primary"] = 1;
    Wire w(28);
    w.bytes[26] = 1;
    ASSERT_EQ(Send(ctx, 0x5d, w), 1024u);
    EXPECT_EQ(w.text(5, 20), "SN000000000000000001");
}

TEST(SimObjectsClock, SuspensionEndsWhenItsTimeIsUp)
{
    Json doc = Json::parse(kTopology);
    for (auto [now, remain] : {std::pair{1000049LL, 0u}, {1000050LL, 100000u}, {1000149LL, 1000u}, {1000150LL, 0u}}) {
        ClockAt clock(now);
        SimContext ctx(doc);
        Wire w(84);
        w.put32(0, 43);
        ASSERT_EQ(Send(ctx, 0x5f, w), 1024u);
        EXPECT_EQ(w.u32(76), remain) << "at " << now;
        EXPECT_EQ(w.u32(72), remain == 0 ? 0u : 100000u) << "at " << now;
    }
}

TEST_F(SimObjects, TpgInfoAndNameAtTheirOffsets)
{
    struct Case {
        uint32_t tpg;
        uint32_t state;
        uint8_t remote;
        const char* name;
    };
    for (const Case& c : {Case{1, 1, 1, "CTE0.B"}, Case{0, 1, 0, ""}, Case{2, 2, 0, ""}}) {
        Wire info(28 + 4 * 7);
        info.put32(0, 3).put32(4, c.tpg).put32(8, 8);
        ASSERT_EQ(Send(ctx, 0x3d, info), 1024u);
        EXPECT_EQ(info.u32(12), c.state) << "TPG " << c.tpg;
        EXPECT_EQ(info.u8(20), c.remote) << "TPG " << c.tpg;

        Wire name(28);
        name.put32(0, 3).put32(4, c.tpg);
        ASSERT_EQ(Send(ctx, 0x3e, name), 1024u);
        EXPECT_EQ(name.text(8, 17), c.name);
        for (size_t off = 8 + std::string(c.name).size(); off < 28; ++off) {
            EXPECT_EQ(name.u8(off), 0) << "TPG " << c.tpg << " byte " << off;
        }
    }
}

TEST_F(SimObjects, PhysicalPathRecordAtItsOffsets)
{
    ClockAt clock(1000000 + 7200);
    Wire w(1080);
    w.put32(0, 10);
    ASSERT_EQ(Send(ctx, 0x2a, w), 1024u);
    EXPECT_EQ(w.u32(0), 10u);
    EXPECT_EQ(w.u32(4), 3u) << "array";
    EXPECT_EQ(w.u32(8), 0u) << "controller";
    EXPECT_EQ(w.u32(12), 1u) << "link connected";
    EXPECT_EQ(w.u32(16), 19u) << "I/O state";
    EXPECT_EQ(w.u32(20), 22u) << "check started by hand";
    EXPECT_EQ(w.u32(24), 1u) << "present";
    EXPECT_EQ(w.u32(28), 1u) << "FC";
    EXPECT_EQ(w.u32(32), 3u) << "LUNs over it";
    EXPECT_EQ(w.u32(36), 101u) << "checking";
    EXPECT_EQ(w.u32(40), 106u) << "previous check failed";
    EXPECT_EQ(w.u64(48), 7u + 36u * 2) << "retries: base + 36 an hour, two hours on";
    EXPECT_EQ(w.u64(56), 2u) << "faults";
    EXPECT_EQ(w.u64(72), 9u) << "latency high";
    EXPECT_EQ(w.u64(80), 1u) << "latency low";
    EXPECT_EQ(w.u64(88), 4u) << "latency average";
    EXPECT_EQ(w.text(96, 80), "Alpha");
    EXPECT_EQ(w.text(184, 241), "21:00:00:24:ff:00:00:05");
    EXPECT_EQ(w.text(432, 241), "20:00:00:00:00:00:00:10");
    EXPECT_EQ(w.text(680, 136), "QLogic qla2xxx");
    EXPECT_EQ(w.u32(816), (1u << 24) | (1u << 6));
    EXPECT_EQ(w.u8(844), 1) << "enabled";
    EXPECT_EQ(w.text(904, 32), "0A") << "engine and letter, no name";
    EXPECT_EQ(w.text(937, 128), "P10");

    struct Case {
        uint32_t path;
        uint32_t link;
        uint8_t enabled;
        const char* controller;
    };
    for (const Case& c : {Case{11, 1, 1, "CTE0.B"}, Case{12, 1, 0, "CTE0.B"}, Case{13, 2, 1, "1A"}}) {
        Wire p(1080);
        p.put32(0, c.path);
        ASSERT_EQ(Send(ctx, 0x2a, p), 1024u);
        EXPECT_EQ(p.u32(12), c.link) << "path " << c.path;
        EXPECT_EQ(p.u8(844), c.enabled) << "path " << c.path;
        EXPECT_EQ(p.text(904, 32), c.controller) << "path " << c.path;
    }
}

TEST(SimObjectsClock, PathCountersMoveWithTheClock)
{
    Json doc = Json::parse(kTopology);
    struct Sample {
        long long now;
        uint64_t retries;
        uint64_t avg;
        uint64_t high;
    };
    // Retries grow 36 an hour (one per 100 s); the average latency steps by
    // a millisecond every five minutes, round 0, 1, 2.
    for (const Sample& s : {Sample{999000, 7, 4, 9}, Sample{1000000, 7, 4, 9}, Sample{1000299, 9, 4, 9},
                            Sample{1000300, 10, 5, 9}, Sample{1000600, 13, 6, 9}, Sample{1000900, 16, 4, 9}}) {
        ClockAt clock(s.now);
        SimContext ctx(doc);
        Wire w(1080);
        w.put32(0, 10);
        ASSERT_EQ(Send(ctx, 0x2a, w), 1024u);
        EXPECT_EQ(w.u64(48), s.retries) << "at " << s.now;
        EXPECT_EQ(w.u64(88), s.avg) << "at " << s.now;
        EXPECT_EQ(w.u64(72), s.high) << "at " << s.now;
    }
}

TEST_F(SimObjects, IscsiInitiatorsCarryTheirAddressInTheNameField)
{
    struct Case {
        uint32_t path;
        std::vector<uint8_t> address;  // bytes 225..240 of the field
        uint32_t tcpPort;
    };
    const std::vector<Case> cases = {
        {14, {10, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 40000},
        {15, {0xfd, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 2}, 40001},
    };
    for (const Case& c : cases) {
        Wire w(1080);
        w.put32(0, c.path);
        ASSERT_EQ(Send(ctx, 0x2a, w), 1024u);
        EXPECT_EQ(w.u32(28), 3u) << "iSCSI";
        EXPECT_EQ(w.text(184, 225), "iqn.1994-05.com.example:h1");
        EXPECT_EQ(std::vector<uint8_t>(w.bytes.begin() + 184 + 225, w.bytes.begin() + 184 + 241), c.address);
        EXPECT_EQ(w.u32(1068), c.tcpPort);
        EXPECT_EQ(w.u32(1072), 3260u);

        Wire logical(1080);
        logical.put32(0, 26).put32(4, c.path);
        ASSERT_EQ(Send(ctx, 0x20, logical), 1024u);
        EXPECT_EQ(std::vector<uint8_t>(logical.bytes.begin() + 258 + 225, logical.bytes.begin() + 258 + 241),
                  c.address);
        EXPECT_EQ(logical.u32(72), c.tcpPort);
        EXPECT_EQ(logical.u32(80), 3260u);
    }
}

struct LogicalCase {
    uint32_t disk;
    uint32_t path;
    uint32_t state;    // 16
    uint32_t io;       // 24
    uint8_t enabled;   // 97
    uint8_t faulty;    // 1073
    uint32_t flags;    // 68: bit 4 through the owning controller
    uint32_t target;   // 40: the path's place on its HBA
};

TEST_F(SimObjects, LogicalPathRecordAtItsOffsets)
{
    const std::vector<LogicalCase> cases = {
        {20, 10, 9, 19, 1, 0, 0, 0},   {20, 11, 9, 21, 1, 0, 16, 1}, {20, 12, 9, 19, 0, 0, 16, 0},
        {20, 13, 10, 19, 1, 0, 0, 2},  {24, 10, 9, 19, 1, 1, 16, 0},
    };
    std::set<std::string> devices;
    for (const LogicalCase& c : cases) {
        SCOPED_TRACE("disk " + std::to_string(c.disk) + " path " + std::to_string(c.path));
        Wire w(1080);
        w.put32(0, c.disk).put32(4, c.path);
        ASSERT_EQ(Send(ctx, 0x20, w), 1024u);
        EXPECT_EQ(w.u32(0), c.disk) << "input kept";
        EXPECT_EQ(w.u32(4), c.path);
        EXPECT_EQ(w.u32(8), c.disk);
        EXPECT_EQ(w.u32(12), c.disk == 20 ? 40u : 44u) << "VLUN";
        EXPECT_EQ(w.u32(16), c.state);
        EXPECT_EQ(w.u32(24), c.io);
        EXPECT_EQ(w.u32(32), c.path == 12 ? 8u : 7u) << "SCSI host";
        EXPECT_EQ(w.u32(36), 0u);
        EXPECT_EQ(w.u32(40), c.target);
        EXPECT_EQ(w.u32(60), 1u) << "FC";
        EXPECT_EQ(w.u32(68), c.flags);
        EXPECT_EQ(w.u64(88), c.disk == 20 ? 4u : 0u) << "SCSI LUN";
        EXPECT_EQ(w.u8(97), c.enabled);
        EXPECT_EQ(w.text(170, 80), "Alpha");
        EXPECT_EQ(w.text(506, 241), "20:00:00:00:00:00:00:" + std::to_string(c.path));
        EXPECT_EQ(w.u32(1052), (1u << 24) | (1u << 6));
        EXPECT_EQ(w.u8(1073), c.faulty);
        std::string device = w.text(1056, 16);
        EXPECT_EQ(device.rfind("sd", 0), 0u) << device;
        EXPECT_TRUE(devices.insert(device).second) << device << " twice";
    }
}

TEST_F(SimObjects, HbaByWwnAndById)
{
    Wire byWwn(256);
    byWwn.put32(0, 1030).putText(12, "21:00:00:24:ff:00:00:06");
    ASSERT_EQ(Send(ctx, 0x40, byWwn), 1024u);
    EXPECT_EQ(byWwn.u32(0), 1024u);
    EXPECT_EQ(byWwn.u32(4), 6u);
    EXPECT_EQ(byWwn.u32(8), 8u) << "SCSI host";
    EXPECT_EQ(byWwn.text(12, 241), "21:00:00:24:ff:00:00:06");
    EXPECT_EQ(byWwn.u8(254), 0) << "disabled";

    Wire byId(256);
    byId.put32(0, 1030).put32(4, 7);
    ASSERT_EQ(Send(ctx, 0x41, byId), 1024u);
    EXPECT_EQ(byId.u32(4), 7u);
    EXPECT_EQ(byId.text(12, 241), "iqn.1994-05.com.example:h1");
    EXPECT_EQ(byId.u8(254), 1);
}

// ---------------------------------------------------------------------------
// A topology the driver could not hold is refused, naming the place.

struct BrokenCase {
    std::function<void(Json&)> breakIt;
    const char* message;
};

TEST(SimObjectsTopology, MistakesNameTheirPlace)
{
    const std::vector<BrokenCase> cases = {
        {[](Json& d) { d["arrays"][1]["id"] = 3; }, "arrays[1].id: a second array 3"},
        {[](Json& d) { d["arrays"][0]["controllers"][0]["id"] = 16; }, "arrays[0].controllers[0].id: 16 is above"},
        {[](Json& d) { d["arrays"][0]["name"] = std::string(81, 'n'); }, "arrays[0].name: longer than 80 bytes"},
        {[](Json& d) { d["arrays"][0]["sn"] = std::string(21, 's'); }, "arrays[0].sn: longer than 20 bytes"},
        {[](Json& d) { d["arrays"][0]["flag_bytes"] = {1, 2}; }, "arrays[0].flag_bytes: expected three bytes"},
        {[](Json& d) { d["paths"][0]["controller"] = 7; }, "paths[0].controller: array 3 has no controller 7"},
        {[](Json& d) { d["paths"][0]["hba"] = 9; }, "paths[0].hba: no HBA 9"},
        {[](Json& d) { d["paths"][0]["io_state"] = "sleepy"; }, "paths[0].io_state: expected one of"},
        {[](Json& d) { d["paths"][0]["initiator_ip"] = "10.0.0.1"; }, "paths[0].initiator_ip: only iSCSI paths"},
        {[](Json& d) { d["paths"][4].erase("initiator_ip"); }, "paths[4].initiator_ip: missing"},
        {[](Json& d) { d["paths"][4]["initiator_ip"] = "10.0.0"; }, "is not an IPv4 or IPv6 address"},
        {[](Json& d) { d["paths"][1]["id"] = 10; }, "paths[1].id: a second path 10"},
        {[](Json& d) { d["disks"][1]["paths"] = {14}; }, "disks[1].paths: 14 is not a path of array 3"},
        {[](Json& d) { d["disks"][1]["paths"] = {11, 11}; }, "disks[1].paths: a path given twice"},
        {[](Json& d) { d["disks"][1]["faulty_paths"] = {10}; }, "disks[1].faulty_paths: 10 is not one of"},
        {[](Json& d) { d["disks"][0]["owner"] = 5; }, "disks[0].owner: array 3 has no controller 5"},
        {[](Json& d) { d["vluns"][1]["disks"] = {20}; }, "vluns[1].disks: disk 20 is in another VLUN"},
        {[](Json& d) { d["vluns"][0]["disks"] = {20}; }, "vluns[0].disks: a VLUN of this type has 2 disks"},
        {[](Json& d) { d["vluns"].erase(1); }, "disks[1]: disk 21 is in no VLUN"},
        {[](Json& d) { d["vluns"][1]["device"] = std::string(40, 'd'); }, "vluns[1].device: longer than 39"},
        {[](Json& d) { d["hbas"][2]["wwn"] = std::string(225, 'i'); }, "hbas[2].wwn: longer than 224 bytes"},
        {[](Json& d) {
             for (uint32_t id = 50; id < 57; ++id) {
                 d["paths"].push_back({{"id", id}, {"array", 3}, {"controller", 1}, {"hba", 5}, {"target", "t"}});
             }
         },
         "already has the driver's 8 paths"},
    };
    for (const BrokenCase& c : cases) {
        Json doc = Json::parse(kTopology);
        c.breakIt(doc);
        try {
            cvsim::SimObjects::Build(doc);
            ADD_FAILURE() << "accepted; expected: " << c.message;
        } catch (const cvsim::SimError& e) {
            EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos) << e.what();
        }
    }
}

// ---------------------------------------------------------------------------
// The bundled default topology shows every rule of the storage-object
// commands; these checks fail when an edit loses one.

Json LoadFile(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    Json doc = Json::parse(text.str(), nullptr, false);
    EXPECT_FALSE(doc.is_discarded()) << path;
    return doc;
}

std::vector<uint32_t> Ids(SimContext& ctx, uint32_t nr, std::vector<std::pair<size_t, uint32_t>> inputs,
                          size_t capacityOff, size_t countOff, size_t idsOff, uint32_t capacity)
{
    Wire w(DeclaredSize(nr) + 4 * (capacity - 1));
    for (auto [off, v] : inputs) {
        w.put32(off, v);
    }
    w.put32(capacityOff, capacity);
    EXPECT_EQ(Send(ctx, nr, w), 1024u) << "nr " << nr;
    std::vector<uint32_t> ids;
    for (uint32_t i = 0; i < w.u32(countOff); ++i) {
        ids.push_back(w.u32(idsOff + 4 * i));
    }
    return ids;
}

TEST(SimObjectsDefault, ShowsEveryRule)
{
    Json doc = LoadFile(CVSIM_DEFAULT_TOPOLOGY);
    ClockAt clock(1795000000);
    cvsim::SimObjectsPtr slot;
    SimContext ctx(doc, &slot);

    std::set<std::string> arrayKinds;
    std::set<uint32_t> vlunTypes;
    bool peFlagOnOrdinary = false;
    bool unavailable = false;
    bool emptyArray = false;
    for (uint32_t a : Ids(ctx, 0x0b, {}, 0, 8, 12, 128)) {
        Wire info(444);
        info.put32(0, a);
        ASSERT_EQ(Send(ctx, 0x0c, info), 1024u);
        bool named = false;
        for (uint32_t t : Ids(ctx, 0x3c, {{0, a}}, 4, 8, 12, 16)) {
            Wire name(28);
            name.put32(0, a).put32(4, t);
            ASSERT_EQ(Send(ctx, 0x3e, name), 1024u);
            named = named || !name.text(8, 17).empty();
        }
        arrayKinds.insert(named ? "named" : (info.u32(436) & (1u << 24)) != 0 ? "pair" : "numeric");
        std::vector<uint32_t> disks = Ids(ctx, 0x15, {{0, a}}, 8, 16, 20, 16384);
        emptyArray = emptyArray || disks.empty();
        for (uint32_t d : disks) {
            Wire disk(544);
            disk.put32(0, d);
            ASSERT_EQ(Send(ctx, 0x17, disk), 1024u);
            unavailable = unavailable || disk.u8(529) == 1;
            Wire vlun(84);
            vlun.put32(0, disk.u32(4));
            ASSERT_EQ(Send(ctx, 0x5f, vlun), 1024u);
            vlunTypes.insert(vlun.u8(58));
            peFlagOnOrdinary = peFlagOnOrdinary || (vlun.u8(58) == 37 && vlun.u8(59) == 1);
        }
    }
    EXPECT_EQ(arrayKinds, (std::set<std::string>{"named", "numeric", "pair"}));
    EXPECT_EQ(vlunTypes, (std::set<uint32_t>{37, 38, 39, 41}));
    EXPECT_TRUE(peFlagOnOrdinary);
    EXPECT_TRUE(unavailable);
    EXPECT_TRUE(emptyArray);

    std::set<std::string> seen;
    for (uint32_t p : Ids(ctx, 0x29, {{0, 0x7FFFFFFF}}, 4, 12, 16, 16384)) {
        Wire w(1080);
        w.put32(0, p);
        ASSERT_EQ(Send(ctx, 0x2a, w), 1024u);
        seen.insert("type " + std::to_string(w.u32(28)));
        if (w.u32(28) == 3) {
            bool v6 = false;
            for (size_t i = 229; i < 241; ++i) {
                v6 = v6 || w.u8(184 + i) != 0;
            }
            seen.insert(v6 ? "IPv6" : "IPv4");
        }
        if (w.u8(844) == 0) {
            seen.insert("disabled");
        } else if (w.u32(12) != 1) {
            seen.insert("faulty");
        } else if (w.u32(16) == 21) {
            seen.insert("busy");
        } else if (w.u32(16) >= 22 && w.u32(16) <= 27) {
            seen.insert("degraded");
        }
        ClockAt later(1795000000 + 3600);
        SimContext next(doc, &slot);
        Wire again(1080);
        again.put32(0, p);
        ASSERT_EQ(Send(next, 0x2a, again), 1024u);
        if (again.u64(48) != w.u64(48)) {
            seen.insert("counters move");
        }
    }
    EXPECT_EQ(seen, (std::set<std::string>{"type 1", "type 2", "type 3", "IPv4", "IPv6", "disabled", "faulty",
                                           "busy", "degraded", "counters move"}));

    std::vector<uint32_t> hbas = Ids(ctx, 0x42, {}, 0, 4, 8, 64);
    EXPECT_GE(hbas.size(), 2u);
    int disabledHbas = 0;
    for (uint32_t h : hbas) {
        Wire w(256);
        w.put32(4, h);
        ASSERT_EQ(Send(ctx, 0x41, w), 1024u);
        disabledHbas += w.u8(254) == 0 ? 1 : 0;
    }
    EXPECT_EQ(disabledHbas, 1);
}

// ---------------------------------------------------------------------------
// The generator.

std::string Generate(const std::string& args, const std::string& out)
{
    std::string cmd = std::string("'") + CVSIM_PYTHON + "' '" + CVSIM_GEN_TOPOLOGY + "' '" + out + "' " + args +
                      " 2>/dev/null";
    int status = std::system(cmd.c_str());
    return WIFEXITED(status) ? std::to_string(WEXITSTATUS(status)) : "signal";
}

TEST(SimObjectsGenerator, WritesTheLargestTopologyTheModelLoads)
{
    std::string out = testing::TempDir() + "cvsim-largest.json";
    ASSERT_EQ(Generate("", out), "0");
    Json doc = LoadFile(out);
    std::remove(out.c_str());
    cvsim::SimObjectsPtr slot;
    SimContext ctx(doc, &slot);

    std::vector<uint32_t> arrays = Ids(ctx, 0x0b, {}, 0, 8, 12, 128);
    EXPECT_EQ(arrays.size(), 128u);
    std::set<uint32_t> vluns;
    size_t disks = 0;
    for (uint32_t a : arrays) {
        for (uint32_t v : Ids(ctx, 0x19, {{0, a}}, 4, 12, 16, 16384)) {
            EXPECT_TRUE(vluns.insert(v).second) << "VLUN " << v << " in two arrays";
        }
        for (uint32_t d : Ids(ctx, 0x15, {{0, a}}, 8, 16, 20, 16384)) {
            Wire w(544);
            w.put32(0, d);
            ASSERT_EQ(Send(ctx, 0x17, w), 1024u);
            ++disks;
        }
    }
    EXPECT_EQ(vluns.size(), 16384u);
    EXPECT_EQ(disks, 16384u);
    EXPECT_EQ(Ids(ctx, 0x29, {{0, 0x7FFFFFFF}}, 4, 12, 16, 16384).size(), 1024u);
}

TEST(SimObjectsGenerator, EveryPathTheDriverHolds)
{
    std::string out = testing::TempDir() + "cvsim-paths.json";
    ASSERT_EQ(Generate("--arrays 2 --vluns 3 --controllers 16 --paths-per-controller 8", out), "0");
    Json doc = LoadFile(out);
    std::remove(out.c_str());
    SimContext ctx(doc);
    EXPECT_EQ(Ids(ctx, 0x29, {{0, 0x7FFFFFFF}}, 4, 12, 16, 16384).size(), 256u);
    EXPECT_EQ(Ids(ctx, 0x3c, {{0, 1}}, 4, 8, 12, 16).size(), 16u);
    EXPECT_EQ(Ids(ctx, 0x3d, {{0, 1}, {4, 15}}, 8, 16, 24, 8).size(), 8u);
    EXPECT_EQ(Ids(ctx, 0x1f, {{0, 0}}, 4, 8, 12, 128).size(), 128u);
}

TEST(SimObjectsGenerator, RefusesWhatTheDriverCannotHold)
{
    std::string out = testing::TempDir() + "cvsim-refused.json";
    for (const char* args : {"--arrays 129", "--arrays 0", "--vluns 16385", "--controllers 17",
                             "--paths-per-controller 9", "--arrays 4 --vluns 3", "--hbas 65"}) {
        EXPECT_EQ(Generate(args, out), "2") << args;
    }
    std::remove(out.c_str());
}

}  // namespace
