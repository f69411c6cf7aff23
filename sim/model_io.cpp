// The driver's I/O statistics requests, answered from the I/O model of
// model_io.h at the model's clock.
#include "model_io.h"

#include <cstdio>

#include "model_objects.h"

namespace cvsim {

namespace {

constexpr size_t kCounterWidth = 8;
constexpr size_t kPortTextLen = 282;  // printable port names as the program shows them
constexpr size_t kIscsiCut = 223;

// Logical path statistics (0x21, 320): inputs disk ID at 0 and physical
// path ID at 4; the VLUN at 8, the counters from 16, the further one at 80.
namespace logical {
constexpr size_t kInDisk = 0, kInPath = 4, kVlun = 8, kCounters = 16, kExtra = 80;
}  // namespace logical

// Physical path performance (0x2b, 848): input path ID at 0.
namespace phy {
constexpr size_t kId = 0, kHasMaxMin = 4, kArray = 8, kController = 12, kHba = 16, kArrayName = 20,
                 kInitiator = 156, kTarget = 438, kCounters = 720, kExtra = 784;
constexpr size_t kArrayNameLen = 128;
}  // namespace phy

void putCounters(SimPayload& p, size_t counters, size_t extra, const io::Counters& c)
{
    for (size_t i = 0; i < c.v.size(); ++i) {
        p.setU64(counters + i * kCounterWidth, c.v[i]);
    }
    p.setU64(extra, c.extra);
}

std::string cut(const std::string& s, size_t n) { return s.size() > n ? s.substr(0, n) : s; }

// "a.b.c.d" for an IPv4 address, eight upper-case hex groups for IPv6.
std::string ipText(const std::array<uint8_t, 16>& ip)
{
    bool v6 = std::any_of(ip.begin() + 4, ip.end(), [](uint8_t b) { return b != 0; });
    char buf[48] = {};
    if (!v6) {
        (void)std::snprintf(buf, sizeof(buf), "%u.%u.%u.%u", ip[0], ip[1], ip[2], ip[3]);
        return buf;
    }
    std::string out;
    for (size_t i = 0; i < 16; i += 2) {
        (void)std::snprintf(buf, sizeof(buf), "%X", (ip[i] << 8) + ip[i + 1]);
        out += (i == 0 ? "" : ":") + std::string(buf);
    }
    return out;
}

std::string printableInitiator(const SimHba& hba, const SimPath& path)
{
    if (hba.portType != kPortIscsi) {
        return cut(hba.wwn, kPortTextLen - 1);
    }
    return cut(hba.wwn, kIscsiCut) + "::" + ipText(path.initiatorIp) + "::" + std::to_string(path.initiatorTcpPort);
}

std::string printableTarget(const SimHba& hba, const SimPath& path)
{
    if (hba.portType != kPortIscsi) {
        return cut(path.target, kPortTextLen - 1);
    }
    return cut(path.target, kIscsiCut) + "::" + std::to_string(path.targetTcpPort);
}

}  // namespace

uint32_t HandlePathIoStat(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objects = ctx.objects();
    uint32_t diskId = p.u32(logical::kInDisk);
    uint32_t pathId = p.u32(logical::kInPath);
    const SimDisk* disk = objects->disk(diskId);
    if (disk == nullptr || !disk->onPath(pathId)) {
        return kResultNoObject;
    }
    io::Model model = io::Model::FromDocument(ctx.driver());
    p.setU32(logical::kVlun, disk->vlunId);
    putCounters(p, logical::kCounters, logical::kExtra, model.logical(diskId, pathId, objects->elapsed(ctx.now())));
    return kResultSuccess;
}

uint32_t HandlePhyPathPerf(SimContext& ctx, SimPayload& p)
{
    SimObjectsPtr objects = ctx.objects();
    uint32_t pathId = p.u32(phy::kId);
    const SimPath* path = objects->path(pathId);
    if (path == nullptr) {
        return kResultNoObject;
    }
    const SimArray* array = objects->array(path->arrayId);
    const SimHba* hba = objects->hba(path->hbaId);
    if (array == nullptr || hba == nullptr) {
        throw SimError("path " + std::to_string(pathId) + ": its array or HBA is missing");
    }
    io::Model model = io::Model::FromDocument(ctx.driver());
    p.setU8(phy::kHasMaxMin, 0);  // the model keeps no max/min of its own
    p.setU32(phy::kArray, path->arrayId);
    p.setU32(phy::kController, path->controllerId);
    p.setU32(phy::kHba, path->hbaId);
    p.setText(phy::kArrayName, phy::kArrayNameLen, cut(array->name, phy::kArrayNameLen));
    p.setText(phy::kInitiator, kPortTextLen, printableInitiator(*hba, *path));
    p.setText(phy::kTarget, kPortTextLen, printableTarget(*hba, *path));
    putCounters(p, phy::kCounters, phy::kExtra, model.physical(pathId, objects->elapsed(ctx.now())));
    return kResultSuccess;
}

}  // namespace cvsim
