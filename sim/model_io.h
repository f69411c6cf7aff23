// The simulated driver's I/O model: every physical and logical path named
// in the topology's "io" section carries a constant load, and the
// cumulative counters the driver reports are that load times the seconds
// the driver has run, so a test predicts exact IOPS, KB/S and response
// times over any interval. A counter reset is injected by listing its model
// time under "resets": the counters of that path start again from zero then.
//
//   "io": {
//     "physical": [{"path": 1, "reads": 10, "writes": 4, "read_bytes": 4096,
//                   "write_bytes": 8192, "read_ms": 2, "write_ms": 5}],
//     "logical":  [{"disk": 7, "path": 1, "reads": 6, ...}],
//     "resets":   [{"path": 1, "at": 600}, {"disk": 7, "path": 1, "at": 600}]
//   }
//
// Rates are per second, bytes and milliseconds per I/O; a missing member is
// 0 and a path not listed is idle. "at" is in seconds since the driver's
// start, the model's clock (CVSIM_NOW moves it without sleeping).
//
// The core below is header-only and depends on nothing but the document,
// so it can be checked on its own; the two request handlers live in
// model_io.cpp.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "model.h"

namespace cvsim {

namespace io {

struct Rate {
    uint64_t reads = 0;  // per second
    uint64_t writes = 0;
    uint64_t readBytes = 0;  // per I/O
    uint64_t writeBytes = 0;
    uint64_t readMs = 0;  // per I/O
    uint64_t writeMs = 0;
};

// The driver's eight cumulative counters in wire order (read I/Os, write
// I/Os, two unused, read bytes, write bytes, read response ms, write
// response ms) and the further counter (unused: 0).
struct Counters {
    std::array<uint64_t, 8> v{};
    uint64_t extra = 0;
};

inline Counters CountersAt(const Rate& r, uint64_t seconds)
{
    Counters c;
    uint64_t reads = r.reads * seconds;
    uint64_t writes = r.writes * seconds;
    c.v = {reads, writes, 0, 0, reads * r.readBytes, writes * r.writeBytes, reads * r.readMs, writes * r.writeMs};
    return c;
}

// Physical paths are keyed with kPhysical as their disk.
inline constexpr uint64_t kPhysical = UINT64_MAX;
using Key = std::pair<uint64_t, uint32_t>;  // disk (or kPhysical), physical path

class Model {
public:
    // Reads the document's "io" section (none: every path idle). Throws
    // SimError naming the place of a malformed entry.
    static Model FromDocument(const Json& driver)
    {
        Model m;
        auto it = driver.find("io");
        if (it == driver.end()) {
            return m;
        }
        const Json& io = *it;
        if (!io.is_object()) {
            throw SimError("io: not an object");
        }
        m.readRates(io, "physical", false);
        m.readRates(io, "logical", true);
        if (auto resets = io.find("resets"); resets != io.end()) {
            size_t i = 0;
            for (const Json& r : list(*resets, "io.resets")) {
                std::string where = "io.resets[" + std::to_string(i++) + "]";
                m.m_resets[keyOf(r, where, r.contains("disk"))].push_back(number(r, "at", where));
            }
        }
        for (auto& [key, times] : m.m_resets) {
            std::sort(times.begin(), times.end());
        }
        return m;
    }

    // The counters of a path at `elapsed` seconds of the model's clock.
    Counters physical(uint32_t pathId, uint64_t elapsed) const { return at({kPhysical, pathId}, elapsed); }
    Counters logical(uint32_t diskId, uint32_t pathId, uint64_t elapsed) const { return at({diskId, pathId}, elapsed); }

private:
    static const Json& list(const Json& v, const std::string& where)
    {
        if (!v.is_array()) {
            throw SimError(where + ": not a list");
        }
        return v;
    }
    static uint64_t number(const Json& obj, const char* key, const std::string& where, bool required = true)
    {
        auto it = obj.find(key);
        if (it == obj.end()) {
            if (required) {
                throw SimError(where + "." + key + ": missing");
            }
            return 0;
        }
        if (!it->is_number_unsigned()) {
            throw SimError(where + "." + key + ": not a whole number of at least 0");
        }
        return it->get<uint64_t>();
    }
    static Key keyOf(const Json& obj, const std::string& where, bool logical)
    {
        if (!obj.is_object()) {
            throw SimError(where + ": not an object");
        }
        uint64_t path = number(obj, "path", where);
        if (path > UINT32_MAX) {
            throw SimError(where + ".path: above 4294967295");
        }
        return {logical ? number(obj, "disk", where) : kPhysical, static_cast<uint32_t>(path)};
    }
    void readRates(const Json& io, const char* member, bool logical)
    {
        auto it = io.find(member);
        if (it == io.end()) {
            return;
        }
        std::string base = std::string("io.") + member;
        size_t i = 0;
        for (const Json& e : list(*it, base)) {
            std::string where = base + "[" + std::to_string(i++) + "]";
            Key key = keyOf(e, where, logical);
            Rate r{number(e, "reads", where, false),     number(e, "writes", where, false),
                   number(e, "read_bytes", where, false), number(e, "write_bytes", where, false),
                   number(e, "read_ms", where, false),    number(e, "write_ms", where, false)};
            if (!m_rates.emplace(key, r).second) {
                throw SimError(where + ": the path is listed twice");
            }
        }
    }
    Counters at(const Key& key, uint64_t elapsed) const
    {
        auto rate = m_rates.find(key);
        if (rate == m_rates.end()) {
            return {};
        }
        uint64_t since = 0;  // the last reset at or before `elapsed`
        if (auto resets = m_resets.find(key); resets != m_resets.end()) {
            for (uint64_t t : resets->second) {
                if (t <= elapsed) {
                    since = t;
                }
            }
        }
        return CountersAt(rate->second, elapsed - since);
    }

    std::map<Key, Rate> m_rates;
    std::map<Key, std::vector<uint64_t>> m_resets;
};

}  // namespace io

// Requests 0x21 (logical path statistics, 320 bytes) and 0x2b (physical
// path performance, 848 bytes), answered from the model above.
uint32_t HandlePathIoStat(SimContext& ctx, SimPayload& p);
uint32_t HandlePhyPathPerf(SimContext& ctx, SimPayload& p);

}  // namespace cvsim
