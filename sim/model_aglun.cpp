// Aggregated VLUNs: dual-site and migration VLUNs, built from two member
// disks. Their ID list (0x5b), the aggregation header of any VLUN (0x5c;
// an ordinary VLUN has one member), the migration attributes (0x5e) and
// the start of a migration (0x60). The dual-site attributes (0x5d) are
// answered with the storage objects.
//
// A migration VLUN keeps what the last start asked for in the document:
//   vluns[].migration: {"target_preferred": bool, "rollback": bool}
// (both false when it was never started).
#include "model_arrays.h"
#include "model_objects.h"

namespace cvsim {

namespace {

// Aggregated VLUN IDs (0x5b, 12): capacity at 0, count at 4, IDs from 8.
constexpr SimIdList kAggreIds{0, 4, 8};

// Aggregation header (0x5c, 16).
constexpr size_t kAggreVlun = 0, kAggreCount = 4, kAggreMembers = 8;

// Migration attributes (0x5e, 28) and start (0x60, 12).
constexpr size_t kMigVlun = 0, kMigTarget = 4, kMigRollback = 5;
constexpr size_t kStartStatus = 8;

// Refusals of a migration start besides an unknown VLUN.
constexpr uint32_t kResultNotMigration = 1063;
constexpr uint32_t kResultTooFewMembers = 1050;
constexpr uint32_t kResultNoActivePath = 1051;

bool Aggregated(const SimVlun& v) { return v.type == kVlunDualSite || v.type == kVlunMigration; }

bool Flag(const Json& obj, const char* key)
{
    return obj.is_object() && obj.contains(key) && obj[key].is_boolean() && obj[key].get<bool>();
}

// A disk with a logical path that is enabled and working.
bool HasActivePath(const SimObjects& objs, const SimDisk& d)
{
    for (uint32_t pathId : d.paths) {
        SimLogicalPath lp = objs.logicalPath(d, *objs.path(pathId));
        if (lp.enabled && lp.driverState == kLogicalWorking) {
            return true;
        }
    }
    return false;
}

uint32_t CheckStart(const SimObjects& objs, const SimVlun* v, uint8_t target, uint8_t rollback)
{
    if (v == nullptr) {
        return kResultNoVlun;
    }
    if (v->type != kVlunMigration) {
        return kResultNotMigration;
    }
    if (target > 1 || rollback > 1 || (rollback == 1 && target == 0)) {
        return kResultInvalid;
    }
    if (v->disks.size() < 2) {
        return kResultTooFewMembers;
    }
    // The source is the first member, the target the second.
    return HasActivePath(objs, *objs.disk(v->disks[target])) ? kResultSuccess : kResultNoActivePath;
}

}  // namespace

uint32_t HandleAggreIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    std::vector<uint32_t> ids;
    if (const Json* vluns = JsonOptionalMember(ctx.driver(), "vluns", "")) {
        for (const Json& v : JsonArray(*vluns, "vluns")) {
            const SimVlun* vlun = objs->vlun(JsonU32(JsonMember(v, "id", "vluns"), "vluns[].id"));
            if (vlun != nullptr && Aggregated(*vlun)) {
                ids.push_back(vlun->id);
            }
        }
    }
    return AnswerIdList(p, kAggreIds, ids);
}

uint32_t HandleAggreInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimVlun* v = objs->vlun(p.u32(kAggreVlun));
    if (v == nullptr) {
        return kResultNoVlun;
    }
    p.zero(kAggreCount, p.size() - kAggreCount);
    p.setU32(kAggreCount, static_cast<uint32_t>(v->disks.size()));
    for (size_t i = 0; i < v->disks.size(); ++i) {
        p.setU32(kAggreMembers + 4 * i, v->disks[i]);
    }
    return kResultSuccess;
}

uint32_t HandleMigrateInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimVlun* v = objs->vlun(p.u32(kMigVlun));
    if (v == nullptr) {
        return kResultNoVlun;
    }
    if (v->type != kVlunMigration) {
        return kResultNotMigration;
    }
    const Json& doc = ctx.driver()["vluns"][JsonIndexOf(ctx.driver(), "vluns", v->id)];
    const Json* mig = JsonOptionalMember(doc, "migration", "vluns[]");
    p.zero(kMigTarget, p.size() - kMigTarget);
    p.setU8(kMigTarget, mig != nullptr && Flag(*mig, "target_preferred") ? 1 : 0);
    p.setU8(kMigRollback, mig != nullptr && Flag(*mig, "rollback") ? 1 : 0);
    return kResultSuccess;
}

uint32_t HandleStartMigration(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const uint32_t vlunId = p.u32(kMigVlun);
    const uint8_t target = p.u8(kMigTarget);
    const uint8_t rollback = p.u8(kMigRollback);
    uint32_t code = CheckStart(*objs, objs->vlun(vlunId), target, rollback);
    p.setU32(kStartStatus, code == kResultSuccess ? 0 : code);
    if (code == kResultSuccess) {
        ctx.changeDriver()["vluns"][JsonIndexOf(ctx.driver(), "vluns", vlunId)]["migration"] = {
            {"target_preferred", target == 1}, {"rollback", rollback == 1}};
    }
    return code;
}

}  // namespace cvsim
