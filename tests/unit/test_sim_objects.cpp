// The simulated driver's storage-object answers, read back at the driver's
// offsets (written out here, not taken from the model), on a small topology
// of this file; the checks on the generated largest topology follow at the end.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
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

// One field of a payload: a little-endian number of 1, 4 or 8 bytes, or a
// text of at most `len` bytes up to its NUL.
struct Field {
    bool isText;
    size_t off;
    size_t len;
    uint64_t value;
    std::string text;
};

Field U8(size_t off, uint64_t v) { return {false, off, 1, v, {}}; }
Field U32(size_t off, uint64_t v) { return {false, off, 4, v, {}}; }
Field U64(size_t off, uint64_t v) { return {false, off, 8, v, {}}; }
Field Txt(size_t off, size_t len, std::string s) { return {true, off, len, 0, std::move(s)}; }

void Put(Wire& w, const Field& f)
{
    if (f.isText) {
        w.putText(f.off, f.text);
        return;
    }
    for (size_t i = 0; i < f.len; ++i) {
        w.bytes.at(f.off + i) = static_cast<uint8_t>(f.value >> (8 * i));
    }
}

void ExpectField(const Wire& w, const Field& f)
{
    if (f.isText) {
        EXPECT_EQ(w.text(f.off, f.len), f.text) << "at " << f.off;
    } else {
        EXPECT_EQ(w.le(f.off, f.len), f.value) << "at " << f.off;
    }
}

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

// ---------------------------------------------------------------------------
// Unknown objects: refused, and the payload left alone except, for an HBA,
// the code in its result word.

struct UnknownCase {
    uint32_t nr;
    std::vector<Field> inputs;
    uint32_t code;
};

TEST_F(SimObjects, UnknownObjectsAreRefusedAndTheirPayloadLeftAlone)
{
    const std::vector<UnknownCase> cases = {
        {0x0c, {U32(0, 9)}, 1057},           {0x0d, {U32(0, 9)}, 1057},
        {0x15, {U32(0, 9), U32(8, 4)}, 1057},  {0x19, {U32(0, 9), U32(4, 4)}, 1057},
        {0x29, {U32(0, 9), U32(4, 4)}, 1057},  {0x3c, {U32(0, 9), U32(4, 4)}, 1057},
        {0x3d, {U32(0, 9), U32(4, 0)}, 1057},  {0x3e, {U32(0, 9), U32(4, 0)}, 1057},
        {0x3d, {U32(0, 3), U32(4, 7)}, 1026},  {0x3e, {U32(0, 3), U32(4, 7)}, 1026},
        {0x17, {U32(0, 99)}, 1026},          {0x16, {U32(0, 99), U32(8, 4)}, 1026},
        {0x1f, {U32(0, 99), U32(4, 4)}, 1026}, {0x20, {U32(0, 20), U32(4, 14)}, 1026},
        {0x20, {U32(0, 99), U32(4, 10)}, 1026}, {0x2a, {U32(0, 99)}, 1026},
        {0x2c, {U32(0, 99)}, 1026},          {0x5f, {U32(0, 99)}, 1039},
        {0x41, {U32(4, 99)}, 1026},          {0x40, {Txt(12, 241, "21:00:00:24:ff:00:00:99")}, 1026},
    };
    for (const UnknownCase& c : cases) {
        SCOPED_TRACE("nr " + std::to_string(c.nr) + " " + std::to_string(c.inputs[0].value));
        Wire w(DeclaredSize(c.nr) + 64);
        for (const Field& f : c.inputs) {
            Put(w, f);
        }
        Wire expected = w;
        if (c.nr == 0x40 || c.nr == 0x41) {
            expected.put32(0, c.code);
        }
        EXPECT_EQ(Send(ctx, c.nr, w), c.code);
        EXPECT_EQ(w.bytes, expected.bytes);
    }
}

// ---------------------------------------------------------------------------
// Records, read back at their offsets. A row with a clock reads a model made
// at that time (seconds since 1970).

struct RecordCase {
    const char* what;
    uint32_t nr;
    std::vector<Field> inputs;
    std::vector<Field> fields;
    long long now = 0;
    uint32_t result = 1024;
};

// Only what moves with the clock, follows the VLUN type, or has no decoder
// test of its own: the other records reach the show transcripts through the
// program's decoders, whose offsets are checked there.
const std::vector<RecordCase> kRecords = {
    // Retries grow 36 an hour from their base; the average latency steps by a
    // millisecond every five minutes, round 0, 1, 2.
    {"counters before the start", 0x2a, {U32(0, 10)}, {U64(48, 7), U64(88, 4), U64(72, 9)}, 999000},
    {"counters at the start", 0x2a, {U32(0, 10)}, {U64(48, 7), U64(88, 4), U64(72, 9)}, 1000000},
    {"counters at 299 s", 0x2a, {U32(0, 10)}, {U64(48, 9), U64(88, 4), U64(72, 9)}, 1000299},
    {"counters at 300 s", 0x2a, {U32(0, 10)}, {U64(48, 10), U64(88, 5), U64(72, 9)}, 1000300},
    {"counters at 600 s", 0x2a, {U32(0, 10)}, {U64(48, 13), U64(88, 6), U64(72, 9)}, 1000600},
    {"counters at 900 s", 0x2a, {U32(0, 10)}, {U64(48, 16), U64(88, 4), U64(72, 9)}, 1000900},
    {"counters after two hours", 0x2a, {U32(0, 10)}, {U64(48, 7 + 36 * 2)}, 1000000 + 7200},
    // The suspension of VLUN 43 (timeout 72, remaining 76, in ms) ends when its time is up.
    {"VLUN 43 before", 0x5f, {U32(0, 43)}, {U32(72, 0), U32(76, 0)}, 1000049},
    {"VLUN 43 start", 0x5f, {U32(0, 43)}, {U32(72, 100000), U32(76, 100000)}, 1000050},
    {"VLUN 43 later", 0x5f, {U32(0, 43)}, {U32(72, 100000), U32(76, 70000)}, 1000080},
    {"VLUN 43 last second", 0x5f, {U32(0, 43)}, {U32(72, 100000), U32(76, 1000)}, 1000149},
    {"VLUN 43 over", 0x5f, {U32(0, 43)}, {U32(72, 0), U32(76, 0)}, 1000150},
    // HBAs (result word 0, ID 4, SCSI host 8, WWN 12, enabled 254) and target
    // port groups (state 12 and remote 20; the name at 8, zero to the end):
    // the program has no decoder test for these.
    {"HBA by WWN", 0x40, {U32(0, 1030), Txt(12, 241, "21:00:00:24:ff:00:00:06")},
     {U32(0, 1024), U32(4, 6), U32(8, 8), Txt(12, 241, "21:00:00:24:ff:00:00:06"), U8(254, 0)}},
    {"HBA by ID", 0x41, {U32(0, 1030), U32(4, 7)}, {U32(4, 7), Txt(12, 241, "iqn.1994-05.com.example:h1"), U8(254, 1)}},
    {"TPG 1 information", 0x3d, {U32(0, 3), U32(4, 1), U32(8, 8)}, {U32(12, 1), U8(20, 1)}},
    {"TPG 2 information", 0x3d, {U32(0, 3), U32(4, 2), U32(8, 8)}, {U32(12, 2), U8(20, 0)}},
    {"TPG 1 name", 0x3e, {U32(0, 3), U32(4, 1)}, {Txt(8, 20, "CTE0.B"), U64(20, 0)}},
    {"TPG 0 name", 0x3e, {U32(0, 3), U32(4, 0)}, {U64(8, 0), U64(16, 0), U32(24, 0)}},
    // Dual-site information: working mode 4 (0, between both arrays) and the
    // SN of the first member's array; other VLUNs are refused and the payload
    // left as it came. The host's default primary (flag 26) only a driver
    // document that names one can answer.
    {"dual-site VLUN", 0x5d, {U32(0, 40), U8(26, 0)}, {U8(4, 0), Txt(5, 20, "SN000000000000000003"), U8(26, 0)}},
    {"ordinary VLUN", 0x5d, {U32(0, 41), U8(26, 0)}, {U8(4, kMarker)}, 0, 1063},
    {"unknown VLUN", 0x5d, {U32(0, 99), U8(26, 0)}, {U8(4, kMarker)}, 0, 1039},
    {"no default primary in the document", 0x5d, {U32(0, 0), U8(26, 1)}, {U8(4, kMarker)}, 0, 1},
};

TEST(SimObjectsRecords, FieldsAtTheirOffsets)
{
    EXPECT_EQ(cvsim::FindRequest(0x5f)->countOffset, 60) << "the count= fault: the VLUN's member count";
    for (const RecordCase& c : kRecords) {
        SCOPED_TRACE(c.what);
        // The model reads its clock (CVSIM_NOW) when a context is first used.
        if (c.now != 0) {
            setenv("CVSIM_NOW", std::to_string(c.now).c_str(), 1);
        } else {
            unsetenv("CVSIM_NOW");
        }
        Json doc = Json::parse(kTopology);
        SimContext ctx(doc);
        Wire w(DeclaredSize(c.nr) + 4 * 7);
        for (const Field& f : c.inputs) {
            Put(w, f);
        }
        ASSERT_EQ(Send(ctx, c.nr, w), c.result);
        for (const Field& f : c.fields) {
            ExpectField(w, f);
        }
    }
    unsetenv("CVSIM_NOW");
}

TEST_F(SimObjects, DualSiteDefaultPrimaryFromTheDocument)
{
    doc["driver"]["default_ds_primary"] = 1;
    Wire w(28);
    w.bytes[26] = 1;
    ASSERT_EQ(Send(ctx, 0x5d, w), 1024u);
    EXPECT_EQ(w.u8(4), 0);
    EXPECT_EQ(w.text(5, 20), "SN000000000000000001");
    EXPECT_EQ(w.u8(26), 0);
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
// Snapshots: the objects read back from one answer every request exactly as
// those read from the document; a changed source or a damaged file is not
// taken.

struct Probe {
    uint32_t nr;
    std::vector<std::pair<size_t, uint32_t>> in;  // input words
};

TEST(SimSnapshot, AnswersAsTheDocumentAndOnlyForItsSource)
{
    char dir[] = "/tmp/cvsim-snap-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    const std::string source = std::string(dir) + "/topology.json";
    const std::string snap = source + ".snap";
    std::ofstream(source) << kTopology;
    cvsim::SimSnapshotKey key;
    ASSERT_TRUE(cvsim::SnapshotKeyOf(source, key));
    Json doc = Json::parse(kTopology);
    cvsim::WriteSnapshot(snap, key, doc, cvsim::SimObjects::Build(doc));

    cvsim::SimSnapshotPtr opened = cvsim::OpenSnapshot(snap, key);
    ASSERT_NE(opened, nullptr);
    Json head = cvsim::SnapshotHead(*opened);
    EXPECT_FALSE(head.contains("disks"));
    EXPECT_EQ(head["driver"], doc["driver"]);
    cvsim::SimObjectsPtr fromSnap = cvsim::SnapshotObjects(opened);

    std::vector<Probe> probes = {{0x0b, {{0, 8}}}, {0x42, {{0, 8}}}, {0x29, {{0, 0x7FFFFFFF}, {4, 16}}}};
    for (uint32_t a : {1u, 3u}) {
        probes.push_back({0x0c, {{0, a}}});
        probes.push_back({0x15, {{0, a}, {8, 16}}});
        probes.push_back({0x19, {{0, a}, {4, 16}}});
        probes.push_back({0x3c, {{0, a}, {4, 16}}});
        for (uint32_t t : {0u, 1u, 2u}) {
            probes.push_back({0x3d, {{0, a}, {4, t}, {8, 8}}});
            probes.push_back({0x3e, {{0, a}, {4, t}}});
        }
    }
    for (uint32_t d = 20; d <= 26; ++d) {
        probes.push_back({0x17, {{0, d}}});
        probes.push_back({0x1f, {{0, d}, {4, 8}}});
        for (uint32_t path = 10; path <= 15; ++path) {
            probes.push_back({0x20, {{0, d}, {4, path}}});
        }
    }
    for (uint32_t id = 10; id <= 15; ++id) {
        probes.push_back({0x2a, {{0, id}}});
        probes.push_back({0x16, {{0, id}, {8, 16}}});
    }
    for (uint32_t v = 40; v <= 44; ++v) {
        probes.push_back({0x5f, {{0, v}}});
        probes.push_back({0x5d, {{0, v}}});
    }
    for (uint32_t h = 5; h <= 7; ++h) {
        probes.push_back({0x41, {{4, h}}});
        probes.push_back({0x2c, {{0, h}}});
    }
    setenv("CVSIM_NOW", "1003600", 1);
    cvsim::SimObjectsPtr built;
    SimContext fromDoc(doc, &built);
    SimContext fromSnapshot(head, &fromSnap);
    for (const Probe& probe : probes) {
        Wire a(DeclaredSize(probe.nr) + 64);
        for (auto [off, v] : probe.in) {
            a.put32(off, v);
        }
        Wire b = a;
        EXPECT_EQ(Send(fromDoc, probe.nr, a), Send(fromSnapshot, probe.nr, b)) << "nr " << probe.nr;
        EXPECT_EQ(a.bytes, b.bytes) << "nr " << probe.nr << " in " << probe.in.front().second;
    }
    // The answers a snapshot keeps ready are the handlers' own, byte for
    // byte, for every disk and VLUN but the suspended VLUN 43, whose answer
    // depends on the clock.
    std::set<std::pair<uint32_t, uint32_t>> canned;
    for (const Probe& probe : probes) {
        if (probe.nr != 0x17 && probe.nr != 0x5f) {
            continue;
        }
        Wire a(DeclaredSize(probe.nr));
        for (auto [off, v] : probe.in) {
            a.put32(off, v);
        }
        Wire c = a;
        ASSERT_EQ(Send(fromDoc, probe.nr, a), cvsim::kResultSuccess);
        cvsim::SimPayload payload(c.bytes.data(), c.bytes.size());
        if (fromSnap->cannedAnswer(probe.nr, payload)) {
            canned.insert({probe.nr, probe.in.front().second});
            EXPECT_EQ(a.bytes, c.bytes) << "nr " << probe.nr << " in " << probe.in.front().second;
        }
    }
    std::set<std::pair<uint32_t, uint32_t>> expected;
    for (uint32_t d = 20; d <= 26; ++d) {
        expected.insert({0x17, d});
    }
    for (uint32_t v : {40u, 41u, 42u, 44u}) {
        expected.insert({0x5f, v});
    }
    EXPECT_EQ(canned, expected);
    unsetenv("CVSIM_NOW");

    // Another source (rewritten: new change time), or another model build,
    // makes it stale.
    cvsim::SimSnapshotKey other = key;
    other.words[4] += 1;
    EXPECT_EQ(cvsim::OpenSnapshot(snap, other), nullptr);
    other = key;
    other.words[6] += 1;
    EXPECT_EQ(cvsim::OpenSnapshot(snap, other), nullptr);
    std::ofstream(source, std::ios::app) << "\n";
    cvsim::SimSnapshotKey rewritten;
    ASSERT_TRUE(cvsim::SnapshotKeyOf(source, rewritten));
    EXPECT_FALSE(rewritten == key);

    // Cut short anywhere, it is refused as a whole, never half read.
    std::ifstream in(snap, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (size_t cut : {size_t{0}, size_t{7}, size_t{70}, bytes.size() / 2, bytes.size() - 1}) {
        std::ofstream(snap, std::ios::binary | std::ios::trunc) << bytes.substr(0, cut);
        EXPECT_EQ(cvsim::OpenSnapshot(snap, key), nullptr) << "cut at " << cut;
    }
    std::filesystem::remove_all(dir);
}

// ---------------------------------------------------------------------------
// The generator.

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
    ASSERT_EQ(Generate("--arrays 2 --vluns 3 --controllers 16 --paths-per-controller 8 --hbas 1", out), "0");
    Json doc = LoadFile(out);
    std::remove(out.c_str());
    SimContext ctx(doc);
    EXPECT_EQ(Ids(ctx, 0x29, {{0, 0x7FFFFFFF}}, 4, 12, 16, 16384).size(), 256u);
    EXPECT_EQ(Ids(ctx, 0x3c, {{0, 1}}, 4, 8, 12, 16).size(), 16u);
    EXPECT_EQ(Ids(ctx, 0x3d, {{0, 1}, {4, 15}}, 8, 16, 24, 8).size(), 8u);
    EXPECT_EQ(Ids(ctx, 0x1f, {{0, 0}}, 4, 8, 12, 128).size(), 128u);

    // All 256 paths on one HBA: its 848-byte answer holds 210 of them.
    Wire w(848 + 16);
    w.put32(0, 0);
    ASSERT_EQ(Send(ctx, 0x2c, w), 1024u);
    EXPECT_EQ(w.u32(4), 210u);
    for (size_t off = 848; off < w.bytes.size(); ++off) {
        ASSERT_EQ(w.u8(off), kMarker) << off;
    }
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
