// Path sub-commands of the common set request and the clearing of a
// physical path's statistics. What they change is written into the path's
// entry of the driver document, under the topology's own keys, so the next
// physical path record (0x2a) shows it:
//
// - 26 enables or disables a path ("enabled"). Disabling is refused with
//   1029 when a disk running over the path has no other usable path
//   (enabled, link up, present): the driver keeps a LUN reachable.
// - 24 sets the I/O state ("io_state"); refused with 1047 on a disabled path.
// - 28 starts a check: the start type becomes manual, the step moves to the
//   previous step, and the new step is "checking"; a check started while
//   one is running ends it: "succeed" on a working link, else "fail".
// - 50 removes a path the driver kept after it went: refused with 1060 when
//   the path is not faulty (link up and present), with 1059 while disks
//   still run over it.
// - 0x6c zeroes the path's retry and fault counters and its latencies; they
//   no longer grow.
// - 25, 27, 45 and 52 are checked (the objects they name exist, switches
//   are 0 or 1, I/O states 19..27) and accepted; the model keeps nothing of
//   them.
#include "model_pathset.h"
#include "model_objects.h"

#include <array>

namespace cvsim {

namespace {

// Fields of the path sub-commands.
constexpr size_t kPathId = kCsTarget;
constexpr size_t kIoState = 16;
constexpr size_t kLogicalDisk = kCsTarget;  // 25: disk at 8, path at 12
constexpr size_t kLogicalPath = 12;
constexpr size_t kSwitch = 40;              // 26 enable, 28 all-busy flag
constexpr size_t kLagSwitch = 20;           // 52

constexpr uint32_t kIoFirst = 19;
constexpr uint32_t kIoLast = 27;

constexpr uint32_t kNoBackupPath = 1029;
constexpr uint32_t kPathDisabled = 1047;
constexpr uint32_t kLogicalPathExists = 1059;
constexpr uint32_t kPathNotFault = 1060;

// The check steps as the topology names them.
constexpr uint32_t kStepChecking = 101;
constexpr uint32_t kStepSucceed = 105;
constexpr uint32_t kStepFail = 106;
constexpr std::array<const char*, 7> kStepNames = {"init",      "checking", "waiting", "ignore",
                                                   "notsteady", "succeed",  "fail"};
constexpr uint32_t kStepFirst = 100;

const char* StepName(uint32_t step)
{
    return step >= kStepFirst && step - kStepFirst < kStepNames.size() ? kStepNames[step - kStepFirst] : "init";
}

bool IsSwitch(uint32_t v) { return v == 0 || v == 1; }
bool IsIoState(uint32_t v) { return v >= kIoFirst && v <= kIoLast; }

bool Usable(const SimObjects& objs, const SimPath& path)
{
    return objs.pathEnabled(path) && path.linkUp && path.present;
}

// The path's entry in the document: paths are read in document order, so
// its place among the objects is its place in "paths".
Json& PathEntry(SimContext& ctx, const SimObjects& objs, const SimPath& path)
{
    const size_t at = static_cast<size_t>(&path - objs.paths().data());
    return ctx.changeDriver()["paths"][at];
}

// A disk over `path` that no other usable path reaches.
bool LeavesDiskWithoutPath(const SimObjects& objs, const SimPath& path)
{
    for (uint32_t diskId : path.disks) {
        const SimDisk* disk = objs.disk(diskId);
        bool backup = false;
        for (uint32_t other : disk->paths) {
            const SimPath* p = objs.path(other);
            backup = backup || (other != path.id && p != nullptr && Usable(objs, *p));
        }
        if (!backup) {
            return true;
        }
    }
    return false;
}

}  // namespace

uint32_t HandleSubPhyPathState(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimPath* path = objs->path(p.u32(kPathId));
    const uint32_t enable = p.u32(kSwitch);
    if (path == nullptr || !IsSwitch(enable)) {
        return kResultInvalid;
    }
    if (enable == 0 && LeavesDiskWithoutPath(*objs, *path)) {
        return kNoBackupPath;
    }
    if (path->enabled != (enable == 1)) {
        PathEntry(ctx, *objs, *path)["enabled"] = enable == 1;
    }
    return kResultSuccess;
}

uint32_t HandleSubPhyPathIoState(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimPath* path = objs->path(p.u32(kPathId));
    const uint32_t state = p.u32(kIoState);
    if (path == nullptr || !IsIoState(state)) {
        return kResultInvalid;
    }
    if (!objs->pathEnabled(*path)) {
        return kPathDisabled;
    }
    if (path->ioState != state) {
        PathEntry(ctx, *objs, *path)["io_state"] = state;
    }
    return kResultSuccess;
}

uint32_t HandleSubPhyPathCheck(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimPath* path = objs->path(p.u32(kPathId));
    if (path == nullptr || !IsSwitch(p.u32(kSwitch))) {
        return kResultInvalid;
    }
    uint32_t next = kStepChecking;
    if (path->checkStep == kStepChecking) {
        next = path->linkUp && path->present ? kStepSucceed : kStepFail;
    }
    Json& check = PathEntry(ctx, *objs, *path)["check"];
    check = Json{{"start", "manual"}, {"step", StepName(next)}, {"previous", StepName(path->checkStep)}};
    return kResultSuccess;
}

uint32_t HandleSubClearObsolete(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimPath* path = objs->path(p.u32(kPathId));
    if (path == nullptr) {
        return kResultInvalid;
    }
    if (path->linkUp && path->present) {
        return kPathNotFault;
    }
    if (!path->disks.empty()) {
        return kLogicalPathExists;
    }
    const size_t at = static_cast<size_t>(path - objs->paths().data());
    Json& paths = ctx.changeDriver()["paths"];
    paths.erase(paths.begin() + static_cast<std::ptrdiff_t>(at));
    return kResultSuccess;
}

uint32_t HandleSubPathIoState(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimDisk* disk = objs->disk(p.u32(kLogicalDisk));
    const uint32_t pathId = p.u32(kLogicalPath);
    return disk != nullptr && disk->onPath(pathId) && IsIoState(p.u32(kIoState)) ? kResultSuccess : kResultInvalid;
}

uint32_t HandleSubPhyPathError(SimContext& ctx, SimPayload& p)
{
    return ctx.objects()->path(p.u32(kPathId)) != nullptr ? kResultSuccess : kResultInvalid;
}

uint32_t HandleSubSendIoDelay(SimContext& ctx, SimPayload& p)
{
    return ctx.objects()->path(p.u32(kCsTarget)) != nullptr ? kResultSuccess : kResultInvalid;
}

uint32_t HandleSubPathIoLag(SimContext& ctx, SimPayload& p)
{
    const bool known = ctx.objects()->path(p.u32(kPathId)) != nullptr;
    return known && IsSwitch(p.u32(kLagSwitch)) ? kResultSuccess : kResultInvalid;
}

uint32_t HandleClearPathStatistic(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objs = ctx.objects();
    const SimPath* path = objs->path(p.u32(0));
    if (path == nullptr) {
        return kResultInvalid;
    }
    Json& entry = PathEntry(ctx, *objs, *path);
    entry["io_retry"] = Json{{"base", 0}, {"per_hour", 0}};
    entry["path_faults"] = Json{{"base", 0}, {"per_hour", 0}};
    entry["latency_ms"] = Json{{"low", 0}, {"avg", 0}, {"high", 0}};
    return kResultSuccess;
}

}  // namespace cvsim
