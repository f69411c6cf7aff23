// Requests about arrays, their controllers (target port groups), disks and
// VLUNs. Payload offsets are the driver's; every answer is read from the
// indexed storage objects (model_objects.h).
//
// An ID the driver does not know answers kResultNoArray (1057) for an
// array, kResultNoVlun (1039) for a VLUN and kResultNoObject (1026) for a
// disk or a controller; the payload is then left as it came.
#include <algorithm>
#include <string>

#include "model_arrays.h"
#include "model_objects.h"

namespace cvsim {

namespace {

// Array IDs (0x0b, declared 16).
constexpr SimIdList kArrayIds{0, 8, 12};

// Array record (0x0c and the sync request 0x0d, 444 bytes). Every text is
// followed by a byte that stays zero.
namespace array {
constexpr size_t kId = 0, kName = 4, kVendor = 85, kProduct = 94, kRevision = 111, kSn = 116, kDriver = 137,
                 kCapability = 436, kFlagBytes = 440;
constexpr size_t kVendorLen = 8, kProductLen = 16, kRevisionLen = 4, kDriverLen = 129;
}  // namespace array

// ID lists of one array: VLUNs (0x19, 20) and disks (0x15, 24).
constexpr size_t kInArrayId = 0;
constexpr SimIdList kArrayVlunIds{4, 12, 16};
constexpr SimIdList kArrayDiskIds{8, 16, 20};

// TPGs: IDs (0x3c, 16), info (0x3d, 28), name (0x3e, 28).
constexpr size_t kInTpgId = 4;
constexpr SimIdList kTpgIds{4, 8, 12};
constexpr SimIdList kTpgPaths{8, 16, 24};
constexpr size_t kTpgState = 12;
constexpr size_t kTpgRemote = 20;
constexpr size_t kTpgName = 8;
constexpr size_t kTpgNameField = 17;  // the name and its terminator
constexpr uint32_t kTpgEnabled = 1;
constexpr uint32_t kTpgDisabled = 2;

// Disk record (0x17, 544 bytes).
namespace disk {
constexpr size_t kId = 0, kVlun = 4, kOwner = 8, kWorker = 12, kArray = 16, kHostLun = 20, kLunCount = 36,
                 kCapacity = 40, kName = 48, kVendor = 120, kProduct = 136, kRevision = 160, kWwn = 168,
                 kArrayName = 208, kArraySn = 296, kDriver = 324, kDevice = 460, kCapability = 500,
                 kUnavailable = 529, kDevLunId = 532, kDevLunValid = 536, kNormal = 537, kDegraded = 538,
                 kPathCount = 540;
constexpr size_t kNameLen = 64, kVendorLen = 8, kProductLen = 16, kRevisionLen = 4, kDriverLen = 129,
                 kDeviceLen = 40;
constexpr size_t kSize = 544;
}  // namespace disk

// VLUN record (0x5f, 84 bytes).
namespace vlun {
constexpr size_t kId = 0, kWwn = 4, kArraySn = 37, kType = 58, kPe = 59, kMembers = 60, kMemberDisks = 64,
                 kSuspendTimeout = 72, kSuspendRemain = 76;
constexpr size_t kSize = 84;
}  // namespace vlun

constexpr size_t kArraySize = 444;

// Dual-site information (0x5d, 28 bytes): u32 VLUN ID at 0 unless the
// default flag at 26 asks for the host's default primary array.
namespace ds {
constexpr size_t kVlunId = 0, kMode = 4, kPrimarySn = 5, kDefaultFlag = 26;
constexpr size_t kSize = 28;
}  // namespace ds
// A VLUN that is not a dual-site VLUN.
constexpr uint32_t kResultNotDualSite = 1063;
// No default primary array is set (the driver's generic failure).
constexpr uint32_t kResultNoDefault = 1;

std::vector<uint32_t> ControllerIds(const SimArray& a)
{
    std::vector<uint32_t> ids;
    ids.reserve(a.controllers.size());
    for (const SimController& c : a.controllers) {
        ids.push_back(c.id);
    }
    return ids;
}

// Keeps the input words, clears the rest of the record.
void ClearAfter(SimPayload& p, size_t off, size_t size) { p.zero(off, size - off); }

void PutArray(SimPayload& p, const SimArray& a)
{
    p.zero(0, kArraySize);
    p.setU32(array::kId, a.id);
    p.setText(array::kName, kArrayNameLen, a.name);
    p.setText(array::kVendor, array::kVendorLen, a.vendor);
    p.setText(array::kProduct, array::kProductLen, a.product);
    p.setText(array::kRevision, array::kRevisionLen, a.revision);
    p.setText(array::kSn, kArraySnLen, a.sn);
    p.setText(array::kDriver, array::kDriverLen, a.driver);
    p.setU32(array::kCapability, a.capability);
    for (size_t i = 0; i < a.flagBytes.size(); ++i) {
        p.setU8(array::kFlagBytes + i, a.flagBytes[i]);
    }
}

// The serial number the program sends: printable ASCII up to the first NUL.
bool ReadSn(const SimPayload& p, std::string& sn)
{
    sn.clear();
    for (size_t i = 0; i < kArraySnLen; ++i) {
        uint8_t c = p.u8(array::kSn + i);
        if (c == 0) {
            break;
        }
        if (c < 0x20 || c > 0x7E) {
            return false;
        }
        sn.push_back(static_cast<char>(c));
    }
    return !sn.empty();
}

void PutDisk(SimPayload& p, const SimObjects& objs, const SimDisk& d)
{
    const SimArray& a = *objs.array(d.arrayId);
    bool normal = false;
    bool degraded = false;
    for (uint32_t pathId : d.paths) {
        SimLogicalPath lp = objs.logicalPath(d, *objs.path(pathId), false);
        normal = normal || lp.normal();
        degraded = degraded || lp.degraded();
    }
    p.zero(0, disk::kSize);
    p.setU32(disk::kId, d.id);
    p.setU32(disk::kVlun, d.vlunId);
    p.setU32(disk::kOwner, d.owner);
    p.setU32(disk::kWorker, d.worker);
    p.setU32(disk::kArray, d.arrayId);
    p.setU32(disk::kHostLun, d.hostLun);
    p.setU32(disk::kLunCount, static_cast<uint32_t>(a.disks.size()));
    p.setU64(disk::kCapacity, d.capacity);
    p.setText(disk::kName, disk::kNameLen, d.name);
    p.setText(disk::kVendor, disk::kVendorLen, a.vendor);
    p.setText(disk::kProduct, disk::kProductLen, a.product);
    p.setText(disk::kRevision, disk::kRevisionLen, a.revision);
    p.setText(disk::kWwn, kLunWwnLen, d.wwn);
    p.setText(disk::kArrayName, kArrayNameLen, a.name);
    p.setText(disk::kArraySn, kArraySnLen, a.sn);
    p.setText(disk::kDriver, disk::kDriverLen, a.driver);
    p.setText(disk::kDevice, disk::kDeviceLen, objs.vlun(d.vlunId)->device);
    p.setU32(disk::kCapability, a.capability);
    p.setU8(disk::kUnavailable, d.unavailable ? 1 : 0);
    p.setU32(disk::kDevLunId, d.devLunId);
    p.setU8(disk::kDevLunValid, d.devLunIdValid ? 1 : 0);
    p.setU8(disk::kNormal, normal ? 1 : 0);
    p.setU8(disk::kDegraded, degraded ? 1 : 0);
    p.setU32(disk::kPathCount, static_cast<uint32_t>(d.paths.size()));
}

// Manual I/O suspension: the timeout while it lasts, and what remains.
void PutSuspension(SimPayload& p, const SimVlun& v, std::time_t now)
{
    uint64_t t = now < 0 ? 0 : static_cast<uint64_t>(now);
    if (v.suspendTimeoutMs == 0 || t < v.suspendSince) {
        return;
    }
    uint64_t passedMs = (t - v.suspendSince) * 1000;
    if (passedMs >= v.suspendTimeoutMs) {
        return;  // over: the driver has resumed I/O
    }
    p.setU32(vlun::kSuspendTimeout, v.suspendTimeoutMs);
    p.setU32(vlun::kSuspendRemain, static_cast<uint32_t>(v.suspendTimeoutMs - passedMs));
}

}  // namespace

uint32_t HandleArrayIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    std::vector<uint32_t> ids;
    for (const SimArray& a : objs->arrays()) {
        ids.push_back(a.id);
    }
    return AnswerIdList(p, kArrayIds, ids);
}

uint32_t HandleArrayInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(array::kId));
    if (a == nullptr) {
        return kResultNoArray;
    }
    PutArray(p, *a);
    return kResultSuccess;
}

// The program tells the driver the array's serial number; the driver keeps
// it and reports it from then on.
uint32_t HandleSyncArrayInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(array::kId));
    if (a == nullptr) {
        return kResultNoArray;
    }
    std::string sn;
    if (!ReadSn(p, sn)) {
        return kResultInvalid;
    }
    if (sn != a->sn) {
        ctx.changeDriver()["arrays"][a->jsonIndex]["sn"] = sn;
    }
    return kResultSuccess;
}

uint32_t HandleArrayVlunIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(kInArrayId));
    return a == nullptr ? kResultNoArray : AnswerIdList(p, kArrayVlunIds, a->vluns);
}

uint32_t HandleArrayDiskIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(kInArrayId));
    return a == nullptr ? kResultNoArray : AnswerIdList(p, kArrayDiskIds, a->disks);
}

uint32_t HandleTpgIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(kInArrayId));
    return a == nullptr ? kResultNoArray : AnswerIdList(p, kTpgIds, ControllerIds(*a));
}

uint32_t HandleTpgInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(kInArrayId));
    if (a == nullptr) {
        return kResultNoArray;
    }
    const SimController* c = a->controller(p.u32(kInTpgId));
    if (c == nullptr) {
        return kResultNoObject;
    }
    p.setU32(kTpgState, c->enabled ? kTpgEnabled : kTpgDisabled);
    p.setU8(kTpgRemote, c->remote || XvaRemote(ctx.driver(), *a, c->id) ? 1 : 0);
    return AnswerIdList(p, kTpgPaths, c->paths);
}

uint32_t HandleTpgName(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* a = objs->array(p.u32(kInArrayId));
    if (a == nullptr) {
        return kResultNoArray;
    }
    const SimController* c = a->controller(p.u32(kInTpgId));
    if (c == nullptr) {
        return kResultNoObject;
    }
    ClearAfter(p, kTpgName, p.size());
    p.setText(kTpgName, kTpgNameField, c->name);
    return kResultSuccess;
}

uint32_t HandleDiskInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimDisk* d = objs->disk(p.u32(disk::kId));
    if (d == nullptr) {
        return kResultNoObject;
    }
    PutDisk(p, *objs, *d);
    return kResultSuccess;
}

uint32_t HandleVlunInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimVlun* v = objs->vlun(p.u32(vlun::kId));
    if (v == nullptr) {
        return kResultNoVlun;
    }
    const SimDisk& first = *objs->disk(v->disks[0]);
    ClearAfter(p, vlun::kWwn, vlun::kSize);
    p.setText(vlun::kWwn, kLunWwnLen, v->wwn);
    p.setText(vlun::kArraySn, kArraySnLen, objs->array(first.arrayId)->sn);
    p.setU8(vlun::kType, v->type);
    p.setU8(vlun::kPe, v->pe ? 1 : 0);
    p.setU32(vlun::kMembers, static_cast<uint32_t>(v->disks.size()));
    for (size_t i = 0; i < v->disks.size(); ++i) {
        p.setU32(vlun::kMemberDisks + 4 * i, v->disks[i]);
    }
    if (v->suspendTimeoutMs != 0) {  // the clock only for a suspended VLUN: reading it costs
        PutSuspension(p, *v, ctx.now());
    }
    return kResultSuccess;
}

namespace {

// The value of a dual-site item the program last told the driver for this
// VLUN: its LUN-level value, else that of its first member's array, else the
// host's; "" when none was told.
std::string DsItem(const Json& driver, const SimVlun& v, const std::string& arraySn, const char* item)
{
    const Json* cfg = JsonOptionalMember(driver, "user_config", "");
    if (cfg == nullptr || !cfg->is_object()) {
        return "";
    }
    auto held = [&](const char* section, const std::string& instance) -> std::string {
        const Json* sec = JsonOptionalMember(*cfg, section, "user_config");
        if (sec == nullptr || !sec->is_object()) {
            return "";
        }
        const Json* items = sec;
        if (!instance.empty()) {
            if (!sec->contains(instance) || !(*sec)[instance].is_object()) {
                return "";
            }
            items = &(*sec)[instance];
        }
        return items->contains(item) && (*items)[item].is_string() ? (*items)[item].get<std::string>() : "";
    };
    for (const std::string& value : {held("lun", v.wwn), held("array", arraySn), held("common", "")}) {
        if (!value.empty()) {
            return value;
        }
    }
    return "";
}

}  // namespace

// The default primary array is the driver document's optional
// "default_ds_primary" (an array ID). A dual-site VLUN reads as working
// between both arrays with the array of its first member as primary, until
// the program tells the driver a mode ("balance" or another word) and a
// primary array (one of the VLUN's member arrays) through its configuration.
uint32_t HandleDsInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimArray* primary = nullptr;
    uint8_t mode = 0;
    if (p.u8(ds::kDefaultFlag) == 1) {
        const Json* id = JsonOptionalMember(JsonMember(ctx.driver(), "driver", ""), "default_ds_primary", "driver");
        if (id == nullptr) {
            return kResultNoDefault;
        }
        primary = objs->array(JsonU32(*id, "driver.default_ds_primary"));
        if (primary == nullptr) {
            throw SimError("driver.default_ds_primary: no such array");
        }
    } else {
        const SimVlun* v = objs->vlun(p.u32(ds::kVlunId));
        if (v == nullptr) {
            return kResultNoVlun;
        }
        if (v->type != kVlunDualSite) {
            return kResultNotDualSite;
        }
        primary = objs->array(objs->disk(v->disks[0])->arrayId);
        const std::string firstSn = primary->sn;
        const std::string told = DsItem(ctx.driver(), *v, firstSn, "ds_primary");
        for (uint32_t diskId : v->disks) {
            const SimArray* member = objs->array(objs->disk(diskId)->arrayId);
            if (member->sn == told) {
                primary = member;
            }
        }
        const std::string toldMode = DsItem(ctx.driver(), *v, firstSn, "ds_mode");
        mode = toldMode.empty() || toldMode == "balance" ? 0 : 1;
    }
    ClearAfter(p, ds::kMode, ds::kSize);
    p.setU8(ds::kMode, mode);
    p.setText(ds::kPrimarySn, kArraySnLen, primary->sn);
    return kResultSuccess;
}

}  // namespace cvsim
