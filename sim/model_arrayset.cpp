// Array-level requests: the common set request (nr 50) with the
// sub-commands of arrays and controllers, the rebalance of LUNs, the
// manual I/O suspension of a VLUN or of a disk's VLUN, and the
// performance-record state.
//
// Common set (608 bytes): sub-command at 0; the driver answers in the
// frame and, when it refuses, also in the result word at 4 (0 when it
// carried the sub-command out).
//
// What a set leaves in the driver document:
//   arrays[].controllers[].enabled          sub-command 42
//   arrays[].capability_bits                sub-command 51
//   "driver_settings": {"lun_trespass_delay_seconds", "busy_delay_seconds",
//                       "potential_fault_switch"}   sub-commands 43, 44, 57
//   disks[].worker = owner                  rebalance (0x51)
//   vluns[].io_suspension {timeout_seconds, since}  0x61 and 0x45
// A controller reads remote when the topology says so or when the program
// listed it in the array's "xva_remote" configuration item.
#include <algorithm>

#include "model_arrays.h"
#include "model_objects.h"

namespace cvsim {

namespace {

// Common set layout.
namespace cs {
constexpr size_t kSub = 0, kResult = 4, kTarget = 8, kField12 = 12, kField16 = 16, kField40 = 40;
}  // namespace cs

// Rebalance (0x51, 12 bytes).
namespace rebalance {
constexpr size_t kScope = 0, kId = 4, kStatus = 8;
constexpr uint32_t kAll = 100, kArray = 101, kVlun = 102;
}  // namespace rebalance

// Manual I/O suspension (0x61, 84 bytes) and the disk form (0x45, 4 bytes).
constexpr size_t kSusVlun = 0, kSusTimeMs = 72, kTurnOffDisk = 0;
// The longest suspension the driver keeps: its timeout in ms is a u32.
constexpr uint32_t kSusMaxMs = 4294967000u;

// Performance-record state (0x6b, 16 bytes).
constexpr size_t kPerfEnabled = 0, kPerfDuration = 4, kPerfStart = 8;

// The driver's refusals of a controller state change.
constexpr uint32_t kResultLastController = 1029;
constexpr uint32_t kResultHbaDisabled = 1047;

Json& Settings(SimContext& ctx) { return ctx.changeDriver()["driver_settings"]; }

uint32_t SetTrespassDelay(SimContext& ctx, SimPayload& p)
{
    Settings(ctx)["lun_trespass_delay_seconds"] = p.u32(cs::kField16);
    return kResultSuccess;
}

uint32_t SetBusyDelay(SimContext& ctx, SimPayload& p)
{
    Settings(ctx)["busy_delay_seconds"] = p.u32(cs::kTarget);
    return kResultSuccess;
}

uint32_t SetPotentialSwitch(SimContext& ctx, SimPayload& p)
{
    uint8_t on = p.u8(cs::kTarget);
    if (on > 1) {
        return kResultInvalid;
    }
    Settings(ctx)["potential_fault_switch"] = on == 1;
    return kResultSuccess;
}

uint32_t SetArrayCapability(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(cs::kTarget));
    if (a == nullptr) {
        return kResultNoArray;
    }
    uint32_t word = p.u32(cs::kField12);
    Json bits = Json::array();
    for (uint32_t bit = 0; bit < 32; ++bit) {
        if ((word >> bit) & 1u) {
            bits.push_back(bit);
        }
    }
    ctx.changeDriver()["arrays"][a->jsonIndex]["capability_bits"] = bits;
    return kResultSuccess;
}

// A controller is switched only while every HBA on its paths is enabled,
// and the last enabled controller with paths is never disabled.
uint32_t SetTpgState(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(cs::kTarget));
    if (a == nullptr) {
        return kResultNoArray;
    }
    const uint32_t tpgId = p.u32(cs::kField12);
    const uint32_t enable = p.u32(cs::kField40);
    auto it = std::find_if(a->controllers.begin(), a->controllers.end(),
                           [tpgId](const SimController& c) { return c.id == tpgId; });
    if (it == a->controllers.end() || enable > 1) {
        return kResultNoObject;
    }
    for (uint32_t pathId : it->paths) {
        if (!objs->hba(objs->path(pathId)->hbaId)->enabled) {
            return kResultHbaDisabled;
        }
    }
    if (enable == 0 && it->enabled) {
        bool other = std::any_of(a->controllers.begin(), a->controllers.end(), [tpgId](const SimController& c) {
            return c.id != tpgId && c.enabled && !c.paths.empty();
        });
        if (!other) {
            return kResultLastController;
        }
    }
    if (it->enabled != (enable == 1)) {
        size_t index = static_cast<size_t>(it - a->controllers.begin());
        ctx.changeDriver()["arrays"][a->jsonIndex]["controllers"][index]["enabled"] = enable == 1;
    }
    return kResultSuccess;
}

// The disks a rebalance covers, or the code of a scope the driver refuses.
uint32_t RebalanceDisks(const SimObjects& objs, uint32_t scope, uint32_t id, std::vector<uint32_t>& disks)
{
    switch (scope) {
    case rebalance::kAll:
        for (const SimArray& a : objs.arrays()) {
            disks.insert(disks.end(), a.disks.begin(), a.disks.end());
        }
        return kResultSuccess;
    case rebalance::kArray:
        if (objs.array(id) == nullptr) {
            return kResultNoArray;
        }
        disks = objs.array(id)->disks;
        return kResultSuccess;
    case rebalance::kVlun:
        if (objs.vlun(id) == nullptr) {
            return kResultNoVlun;
        }
        disks = objs.vlun(id)->disks;
        return kResultSuccess;
    default:
        return kResultInvalid;
    }
}

uint32_t DigitsOr(const Json* held, const char* item, uint32_t fallback)
{
    if (held == nullptr || !held->is_object() || !held->contains(item) || !(*held)[item].is_string()) {
        return fallback;
    }
    const std::string& text = (*held)[item].get_ref<const std::string&>();
    uint64_t v = 0;
    for (char c : text) {
        if (c < '0' || c > '9' || v > UINT32_MAX) {
            return fallback;
        }
        v = v * 10 + static_cast<uint64_t>(c - '0');
    }
    return text.empty() || v > UINT32_MAX ? fallback : static_cast<uint32_t>(v);
}

}  // namespace

bool XvaRemote(const Json& driver, const SimArray& array, uint32_t tpgId)
{
    const Json* cfg = JsonOptionalMember(driver, "user_config", "");
    const Json* arrays = cfg != nullptr && cfg->is_object() ? JsonOptionalMember(*cfg, "array", "user_config")
                                                            : nullptr;
    if (arrays == nullptr || !arrays->is_object() || !arrays->contains(array.sn)) {
        return false;
    }
    const Json& held = (*arrays)[array.sn];
    if (!held.is_object() || !held.contains("xva_remote") || !held["xva_remote"].is_string()) {
        return false;
    }
    const std::string& list = held["xva_remote"].get_ref<const std::string&>();
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = std::min(list.find(',', start), list.size());
        if (list.substr(start, end - start) == std::to_string(tpgId)) {
            return true;
        }
        start = end + 1;
    }
    return false;
}

size_t JsonIndexOf(const Json& driver, const char* key, uint32_t id)
{
    const Json& list = JsonArray(JsonMember(driver, key, ""), key);
    for (size_t i = 0; i < list.size(); ++i) {
        if (JsonU32(JsonMember(list[i], "id", key), std::string(key) + "[].id") == id) {
            return i;
        }
    }
    throw SimError(std::string(key) + ": no id " + std::to_string(id));
}

// The working controller of every disk in scope becomes its owner.
uint32_t HandleRebalance(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    std::vector<uint32_t> disks;
    uint32_t code = RebalanceDisks(*objs, p.u32(rebalance::kScope), p.u32(rebalance::kId), disks);
    p.setU32(rebalance::kStatus, code == kResultSuccess ? 0 : code);
    if (code != kResultSuccess) {
        return code;
    }
    for (uint32_t id : disks) {
        const SimDisk* d = objs->disk(id);
        if (d->worker != d->owner) {
            ctx.changeDriver()["disks"][JsonIndexOf(ctx.driver(), "disks", id)]["worker"] = d->owner;
        }
    }
    return kResultSuccess;
}

uint32_t HandleCtrlIoSuspension(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const uint32_t vlunId = p.u32(kSusVlun);
    const uint32_t ms = p.u32(kSusTimeMs);
    if (objs->vlun(vlunId) == nullptr) {
        return kResultNoVlun;
    }
    if (ms > kSusMaxMs) {
        return kResultInvalid;
    }
    Json& v = ctx.changeDriver()["vluns"][JsonIndexOf(ctx.driver(), "vluns", vlunId)];
    if (ms == 0) {
        v.erase("io_suspension");
    } else {
        uint64_t seconds = (static_cast<uint64_t>(ms) + 999) / 1000;
        v["io_suspension"] = {{"timeout_seconds", seconds}, {"since", static_cast<uint64_t>(ctx.now())}};
    }
    return kResultSuccess;
}

uint32_t HandleTurnOffIoSuspension(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimDisk* d = objs->disk(p.u32(kTurnOffDisk));
    if (d == nullptr) {
        return kResultNoObject;
    }
    if (objs->vlun(d->vlunId)->suspendTimeoutMs != 0) {
        ctx.changeDriver()["vluns"][JsonIndexOf(ctx.driver(), "vluns", d->vlunId)].erase("io_suspension");
    }
    return kResultSuccess;
}

// The driver records what the program last told it in the common
// configuration (performance_record, ..._duration, ..._startl).
uint32_t HandlePerfRecord(SimContext& ctx, SimPayload& p)
{
    const Json* cfg = JsonOptionalMember(ctx.driver(), "user_config", "");
    const Json* common = cfg != nullptr && cfg->is_object() ? JsonOptionalMember(*cfg, "common", "user_config")
                                                            : nullptr;
    p.zero(0, p.size());
    p.setU32(kPerfEnabled, DigitsOr(common, "performance_record", 0) == 1 ? 1 : 0);
    p.setU32(kPerfDuration, DigitsOr(common, "performance_record_duration", 0));
    p.setU32(kPerfStart, DigitsOr(common, "performance_record_startl", 0));
    return kResultSuccess;
}


// Array and controller sub-commands of the common set request; the one
// table of sub-commands is in model_commonset.cpp.
uint32_t HandleSubTpgState(SimContext& ctx, SimPayload& p) { return SetTpgState(ctx, p); }
uint32_t HandleSubTrespassDelay(SimContext& ctx, SimPayload& p) { return SetTrespassDelay(ctx, p); }
uint32_t HandleSubBusyDelay(SimContext& ctx, SimPayload& p) { return SetBusyDelay(ctx, p); }
uint32_t HandleSubArrayCapability(SimContext& ctx, SimPayload& p) { return SetArrayCapability(ctx, p); }
uint32_t HandleSubPotentialSwitch(SimContext& ctx, SimPayload& p) { return SetPotentialSwitch(ctx, p); }

}  // namespace cvsim
