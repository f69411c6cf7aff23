// Requests about paths and HBAs: physical paths (one initiator port to one
// target port of a controller), logical paths (one disk over one physical
// path), the disks of a path and the HBAs. Payload offsets are the
// driver's; every answer is read from the indexed storage objects.
//
// An ID the driver does not know answers kResultNoObject (1026), an array
// kResultNoArray (1057); the payload is then left as it came, except that
// the HBA queries also leave the code in their record's result word.
#include <algorithm>
#include <cstdio>

#include "model_objects.h"

namespace cvsim {

namespace {

constexpr size_t kInObjectId = 0;

// Physical path IDs (0x29, 20): array ID at 0, or every array.
constexpr uint32_t kAllArrays = 0x7FFFFFFF;
constexpr SimIdList kPhyPathIds{4, 12, 16};
// Disks over a physical path (0x16, 24).
constexpr SimIdList kPhyPathDiskIds{8, 16, 20};
// Logical paths of a disk (0x1f, 16): the IDs are those of the physical paths.
constexpr SimIdList kLogicalPathIds{4, 8, 12};
// Physical paths of an HBA (0x2c, 848): room for 210 IDs, no capacity word.
constexpr SimIdList kHbaPathIds{kFixedRoom, 4, 8};
// All HBA IDs (0x42, 12).
constexpr SimIdList kHbaIds{0, 4, 8};

constexpr size_t kPathRecordSize = 1080;
constexpr size_t kHbaDriverLen = 136;
constexpr size_t kControllerTextLen = 32;
constexpr size_t kPortIdLen = 128;
constexpr size_t kIscsiIpOff = 225;  // within a port name field

constexpr uint32_t kLinkConnected = 1;
constexpr uint32_t kLinkDown = 2;

// Physical path record (0x2a, 1080 bytes).
namespace phy {
constexpr size_t kId = 0, kArray = 4, kController = 8, kLink = 12, kIoState = 16, kCheckStart = 20, kPresent = 24,
                 kPortType = 28, kLunCount = 32, kCheckStep = 36, kPrevCheckStep = 40, kRetry = 48, kFaults = 56,
                 kLatHigh = 72, kLatLow = 80, kLatAvg = 88, kArrayName = 96, kInitiator = 184, kTarget = 432,
                 kHbaDriver = 680, kArrayFlags = 816, kEnabled = 844, kControllerText = 904, kPortId = 937,
                 kInitTcp = 1068, kTargetTcp = 1072;
}  // namespace phy

// Logical path record (0x20, 1080 bytes); inputs disk ID at 0 and physical
// path ID at 4.
namespace logical {
constexpr size_t kInDisk = 0, kInPath = 4;
constexpr size_t kId = 4, kDisk = 8, kVlun = 12, kState = 16, kIoState = 24, kScsiHost = 32, kScsiChannel = 36,
                 kScsiTarget = 40, kPortType = 60, kFlags = 68, kInitTcp = 72, kTargetTcp = 80, kScsiLun = 88,
                 kEnabled = 97, kArrayName = 170, kInitiator = 258, kTarget = 506, kHbaDriver = 754,
                 kControllerText = 890, kPortId = 923, kArrayFlags = 1052, kDevice = 1056, kFaulty = 1073;
constexpr size_t kDeviceLen = 16;
constexpr size_t kFirstOut = 8;
// Flags bit: the path goes through the controller that owns the LUN.
constexpr uint32_t kOwnerPath = 1u << 4;
}  // namespace logical

// HBA record (0x40 by WWN, 0x41 by ID; 256 bytes).
namespace hba {
constexpr size_t kResult = 0, kId = 4, kHost = 8, kWwn = 12, kEnabled = 254;
constexpr size_t kSize = 256;
}  // namespace hba

// The initiator port name field: for iSCSI the initiator name, then the
// initiator's address in bytes 225..240.
void PutInitiator(SimPayload& p, size_t off, const SimHba& h, const SimPath& path)
{
    if (h.portType != kPortIscsi) {
        p.setText(off, kPortNameLen, h.wwn);
        return;
    }
    p.setText(off, kIscsiIpOff, h.wwn);
    for (size_t i = 0; i < path.initiatorIp.size(); ++i) {
        p.setU8(off + kIscsiIpOff + i, path.initiatorIp[i]);
    }
}

// The driver's own text for the controller: its name, else its number in
// the array's naming.
std::string ControllerText(const SimArray& a, uint32_t tpgId)
{
    const SimController* c = a.controller(tpgId);
    if (c != nullptr && !c->name.empty()) {
        return c->name;
    }
    char buf[16];
    if (SimObjects::pairNaming(a)) {
        std::snprintf(buf, sizeof buf, "%u%c", tpgId / 2, static_cast<char>('A' + (tpgId & 1)));
    } else {
        std::snprintf(buf, sizeof buf, "%u", tpgId);
    }
    return buf;
}

// Latency figures as they move: the average wobbles by up to 2 ms every
// five minutes and drags the extremes along.
struct Latency {
    uint64_t low, avg, high;
};
Latency LatencyAt(const SimPath& path, uint64_t elapsed)
{
    Latency l{path.latencyLowMs, path.latencyAvgMs, path.latencyHighMs};
    if (l.avg != 0) {
        l.avg += (elapsed / 300) % 3;
        l.high = std::max(l.high, l.avg);
    }
    return l;
}

void PutPhyPath(SimPayload& p, const SimObjects& objs, const SimPath& path, uint64_t elapsed)
{
    const SimArray& a = *objs.array(path.arrayId);
    const SimHba& h = *objs.hba(path.hbaId);
    Latency lat = LatencyAt(path, elapsed);
    p.zero(0, kPathRecordSize);
    p.setU32(phy::kId, path.id);
    p.setU32(phy::kArray, path.arrayId);
    p.setU32(phy::kController, path.controllerId);
    p.setU32(phy::kLink, path.linkUp ? kLinkConnected : kLinkDown);
    p.setU32(phy::kIoState, path.ioState);
    p.setU32(phy::kCheckStart, path.checkStart);
    p.setU32(phy::kPresent, path.present ? 1 : 0);
    p.setU32(phy::kPortType, h.portType);
    p.setU32(phy::kLunCount, static_cast<uint32_t>(path.disks.size()));
    p.setU32(phy::kCheckStep, path.checkStep);
    p.setU32(phy::kPrevCheckStep, path.prevCheckStep);
    p.setU64(phy::kRetry, path.ioRetry.at(elapsed));
    p.setU64(phy::kFaults, path.pathFaults.at(elapsed));
    p.setU64(phy::kLatHigh, lat.high);
    p.setU64(phy::kLatLow, lat.low);
    p.setU64(phy::kLatAvg, lat.avg);
    p.setText(phy::kArrayName, kArrayNameLen, a.name);
    PutInitiator(p, phy::kInitiator, h, path);
    p.setText(phy::kTarget, kPortNameLen, path.target);
    p.setText(phy::kHbaDriver, kHbaDriverLen, h.driver);
    p.setU32(phy::kArrayFlags, a.capability);
    p.setU8(phy::kEnabled, objs.pathEnabled(path) ? 1 : 0);
    p.setText(phy::kControllerText, kControllerTextLen, ControllerText(a, path.controllerId));
    p.setText(phy::kPortId, kPortIdLen, path.portId);
    p.setU32(phy::kInitTcp, path.initiatorTcpPort);
    p.setU32(phy::kTargetTcp, path.targetTcpPort);
}

void PutLogicalPath(SimPayload& p, const SimObjects& objs, const SimDisk& d, const SimPath& path)
{
    const SimArray& a = *objs.array(path.arrayId);
    const SimHba& h = *objs.hba(path.hbaId);
    SimLogicalPath lp = objs.logicalPath(d, path);
    p.zero(logical::kFirstOut, kPathRecordSize - logical::kFirstOut);
    p.setU32(logical::kId, path.id);
    p.setU32(logical::kDisk, d.id);
    p.setU32(logical::kVlun, d.vlunId);
    p.setU32(logical::kState, lp.driverState);
    p.setU32(logical::kIoState, lp.ioState);
    p.setU32(logical::kScsiHost, h.scsiHost);
    p.setU32(logical::kScsiChannel, 0);
    p.setU32(logical::kScsiTarget, path.scsiTarget);
    p.setU32(logical::kPortType, h.portType);
    p.setU32(logical::kFlags, path.controllerId == d.owner ? logical::kOwnerPath : 0);
    p.setU32(logical::kInitTcp, path.initiatorTcpPort);
    p.setU32(logical::kTargetTcp, path.targetTcpPort);
    p.setU64(logical::kScsiLun, d.hostLun);
    p.setU8(logical::kEnabled, lp.enabled ? 1 : 0);
    p.setText(logical::kArrayName, kArrayNameLen, a.name);
    PutInitiator(p, logical::kInitiator, h, path);
    p.setText(logical::kTarget, kPortNameLen, path.target);
    p.setText(logical::kHbaDriver, kHbaDriverLen, h.driver);
    p.setText(logical::kControllerText, kControllerTextLen, ControllerText(a, path.controllerId));
    p.setText(logical::kPortId, kPortIdLen, path.portId);
    p.setU32(logical::kArrayFlags, a.capability);
    p.setText(logical::kDevice, logical::kDeviceLen, lp.scsiDevice);
    p.setU8(logical::kFaulty, lp.faulty ? 1 : 0);
}

uint32_t AnswerHba(SimPayload& p, const SimHba* h)
{
    if (h == nullptr) {
        p.setU32(hba::kResult, kResultNoObject);
        return kResultNoObject;
    }
    p.zero(0, hba::kSize);
    p.setU32(hba::kResult, kResultSuccess);
    p.setU32(hba::kId, h->id);
    p.setU32(hba::kHost, h->scsiHost);
    p.setText(hba::kWwn, kPortNameLen, h->wwn);
    p.setU8(hba::kEnabled, h->enabled ? 1 : 0);
    return kResultSuccess;
}

}  // namespace

uint32_t HandlePhyPathIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    uint32_t arrayId = p.u32(kInObjectId);
    if (arrayId != kAllArrays) {
        const SimArray* a = objs->array(arrayId);
        return a == nullptr ? kResultNoArray : AnswerIdList(p, kPhyPathIds, a->paths);
    }
    std::vector<uint32_t> ids;
    ids.reserve(objs->paths().size());
    for (const SimPath& path : objs->paths()) {
        ids.push_back(path.id);
    }
    return AnswerIdList(p, kPhyPathIds, ids);
}

uint32_t HandlePhyPathInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimPath* path = objs->path(p.u32(phy::kId));
    if (path == nullptr) {
        return kResultNoObject;
    }
    PutPhyPath(p, *objs, *path, objs->elapsed(ctx.now()));
    return kResultSuccess;
}

uint32_t HandlePhyPathDiskIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimPath* path = objs->path(p.u32(kInObjectId));
    return path == nullptr ? kResultNoObject : AnswerIdList(p, kPhyPathDiskIds, path->disks);
}

uint32_t HandleLogicalPathIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimDisk* d = objs->disk(p.u32(kInObjectId));
    return d == nullptr ? kResultNoObject : AnswerIdList(p, kLogicalPathIds, d->paths);
}

uint32_t HandleLogicalPathInfo(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimDisk* d = objs->disk(p.u32(logical::kInDisk));
    const SimPath* path = objs->path(p.u32(logical::kInPath));
    if (d == nullptr || path == nullptr || !d->onPath(path->id)) {
        return kResultNoObject;
    }
    PutLogicalPath(p, *objs, *d, *path);
    return kResultSuccess;
}

uint32_t HandleHbaPathIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimHba* h = objs->hba(p.u32(kInObjectId));
    return h == nullptr ? kResultNoObject : AnswerIdList(p, kHbaPathIds, h->paths);
}

uint32_t HandleHbaByWwn(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    std::string wwn;
    for (size_t i = 0; i < kPortNameLen && p.u8(hba::kWwn + i) != 0; ++i) {
        wwn.push_back(static_cast<char>(p.u8(hba::kWwn + i)));
    }
    return AnswerHba(p, objs->hbaByWwn(wwn));
}

uint32_t HandleHbaById(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    return AnswerHba(p, objs->hba(p.u32(hba::kId)));
}

uint32_t HandleHbaIds(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    std::vector<uint32_t> ids;
    for (const SimHba& h : objs->hbas()) {
        ids.push_back(h.id);
    }
    return AnswerIdList(p, kHbaIds, ids);
}

}  // namespace cvsim
