// I/O reliability counters and the two driver switches.
//
// Counters come from the topology, per disk and per logical path:
//
//   "disks": [{"id": 0, ..., "io_counts": {
//       "error_io": 3, "error_cmd": 1, "queued_io": 12, "queued_cmd": 4,
//       "latest_ms": 7, "max_ms": 40, "latency_sum_ms": 900, "samples": 120,
//       "paths": [{"path": 0, "error_io": 2, ...}, ...]}}]
//
// Every field defaults to 0; a path of the disk that "paths" does not name
// counts nothing. Request 0x69 removes every disk's "io_counts", so all
// counters read 0 from then on. The counters are kept only while path
// reliability is on: with it off the query answers the flag 0.
//
// The switches are what the program last told the driver through the user
// configuration (request 70, common items "alarmenable" and
// "reliabilityenable"): "0" is off; any other value, or none, is on.
#include "model_pathset.h"
#include "model_objects.h"

#include <array>
#include <memory>
#include <string>
#include <unordered_map>

namespace cvsim {

namespace {

// Query payload (80 bytes).
constexpr size_t kDiskId = 0;
constexpr size_t kPathId = 4;
constexpr size_t kFlag = 8;
constexpr size_t kScope = 12;
constexpr uint32_t kScopeDisk = 0;
constexpr uint32_t kScopePath = 1;

struct CounterField {
    const char* key;
    size_t offset;
};
constexpr std::array kCounters = {
    CounterField{"error_io", 16},   CounterField{"error_cmd", 24},      CounterField{"queued_io", 32},
    CounterField{"queued_cmd", 40}, CounterField{"latest_ms", 48},      CounterField{"max_ms", 56},
    CounterField{"latency_sum_ms", 64}, CounterField{"samples", 72},
};

constexpr size_t kSwitchOff = 0;

// "0" is off, anything else (or nothing) on.
uint32_t SwitchOf(const SimContext& ctx, const char* item)
{
    const Json& driver = ctx.driver();
    auto config = driver.find("user_config");
    if (config == driver.end() || !config->is_object()) {
        return 1;
    }
    auto common = config->find("common");
    if (common == config->end() || !common->is_object()) {
        return 1;
    }
    auto value = common->find(item);
    return value != common->end() && value->is_string() && value->get_ref<const std::string&>() == "0" ? 0 : 1;
}

// The disk's document entry. A query per disk and path must not scan the
// disks, so their places are indexed once per snapshot of the objects (a
// change of the driver makes a new snapshot). Requests are serialised.
const Json* DiskEntry(const SimContext& ctx, const SimObjectsPtr& objs, uint32_t diskId)
{
    static std::weak_ptr<const SimObjects> s_of;
    static std::unordered_map<uint32_t, size_t> s_at;
    const Json& driver = ctx.driver();
    auto disks = driver.find("disks");
    if (disks == driver.end() || !disks->is_array()) {
        return nullptr;
    }
    if (s_of.lock() != objs) {
        s_at.clear();
        for (size_t i = 0; i < disks->size(); ++i) {
            const Json& d = (*disks)[i];
            auto id = d.is_object() ? d.find("id") : d.end();
            if (id != d.end() && id->is_number_unsigned()) {
                s_at.emplace(JsonU32(*id, "disks[" + std::to_string(i) + "].id"), i);
            }
        }
        s_of = objs;
    }
    auto at = s_at.find(diskId);
    return at == s_at.end() || at->second >= disks->size() ? nullptr : &(*disks)[at->second];
}

// The counters of one disk or one of its paths; null when it has none.
const Json* CountsOf(const Json& disk, uint32_t scope, uint32_t pathId, const std::string& where)
{
    const Json* counts = JsonOptionalMember(disk, "io_counts", where);
    if (counts == nullptr || scope == kScopeDisk) {
        return counts;
    }
    const Json* paths = JsonOptionalMember(*counts, "paths", where + ".io_counts");
    if (paths == nullptr) {
        return nullptr;
    }
    const Json& list = JsonArray(*paths, where + ".io_counts.paths");
    for (size_t i = 0; i < list.size(); ++i) {
        std::string here = where + ".io_counts.paths[" + std::to_string(i) + "]";
        if (JsonU32(JsonMember(list[i], "path", here), here + ".path") == pathId) {
            return &list[i];
        }
    }
    return nullptr;
}

}  // namespace

uint32_t HandleIoReliability(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const uint32_t diskId = p.u32(kDiskId);
    const uint32_t pathId = p.u32(kPathId);
    const uint32_t scope = p.u32(kScope);
    const SimDisk* disk = objs->disk(diskId);
    if (disk == nullptr || (scope != kScopeDisk && scope != kScopePath) ||
        (scope == kScopePath && !disk->onPath(pathId))) {
        return kResultInvalid;
    }
    for (const CounterField& f : kCounters) {
        p.setU64(f.offset, 0);
    }
    if (SwitchOf(ctx, "reliabilityenable") == 0) {
        p.setU32(kFlag, 0);
        return kResultSuccess;
    }
    const std::string where = "disks[id " + std::to_string(diskId) + "]";
    const Json* entry = DiskEntry(ctx, objs, diskId);
    const Json* counts = entry != nullptr ? CountsOf(*entry, scope, pathId, where) : nullptr;
    if (counts != nullptr) {
        for (const CounterField& f : kCounters) {
            const Json* v = JsonOptionalMember(*counts, f.key, where + ".io_counts");
            p.setU64(f.offset, v != nullptr ? JsonU64(*v, where + ".io_counts." + f.key) : 0);
        }
    }
    p.setU32(kFlag, 1);
    return kResultSuccess;
}

uint32_t HandleClearIoCount(SimContext& ctx, SimPayload& /*p*/)
{
    const Json& driver = ctx.driver();
    auto disks = driver.find("disks");
    if (disks == driver.end() || !disks->is_array()) {
        return kResultSuccess;
    }
    bool any = false;
    for (const Json& d : *disks) {
        any = any || (d.is_object() && d.contains("io_counts"));
    }
    if (any) {
        for (Json& d : ctx.changeDriver()["disks"]) {
            if (d.is_object()) {
                d.erase("io_counts");
            }
        }
    }
    return kResultSuccess;
}

uint32_t HandleAlarmEnable(SimContext& ctx, SimPayload& p)
{
    p.setU32(kSwitchOff, SwitchOf(ctx, "alarmenable"));
    return kResultSuccess;
}

uint32_t HandleReliabilityEnable(SimContext& ctx, SimPayload& p)
{
    p.setU32(kSwitchOff, SwitchOf(ctx, "reliabilityenable"));
    return kResultSuccess;
}

}  // namespace cvsim
