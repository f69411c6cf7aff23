// Requests about the driver itself: its version and its worker threads.
//
// Topology:
//   "driver":  {"version": [major, minor, patch]}
//   "workers": [{"name": "...", "age_seconds": N}, ...]
// A worker last refreshed age_seconds before the present time.
#include "model.h"

namespace cvsim {

namespace {

// Version payload (12 bytes): u32 major, minor, patch.
constexpr size_t kVersionMajorOff = 0;
constexpr size_t kVersionMinorOff = 4;
constexpr size_t kVersionPatchOff = 8;

// Worker table payload (64 bytes), one worker per request.
constexpr size_t kWorkerIndexOff = 0;  // in
constexpr size_t kWorkerCountOff = 4;  // out
constexpr size_t kWorkerNameOff = 8;
constexpr size_t kWorkerNameLen = 32;
constexpr size_t kWorkerRefreshOff = 40;
constexpr size_t kWorkerPresentOff = 48;
constexpr size_t kWorkerRecordOff = kWorkerNameOff;  // everything after the count
constexpr size_t kWorkerPayloadLen = 64;

const Json& Workers(const Json& driver)
{
    static const Json kNone = Json::array();
    const Json* w = JsonOptionalMember(driver, "workers", "");
    return w == nullptr ? kNone : JsonArray(*w, "workers");
}

}  // namespace

uint32_t HandleVersion(SimContext& ctx, SimPayload& p)
{
    const Json& drv = JsonMember(ctx.driver(), "driver", "");
    const Json& v = JsonArray(JsonMember(drv, "version", "driver"), "driver.version");
    if (v.size() != 3) {
        throw SimError("driver.version: expected [major, minor, patch]");
    }
    p.setU32(kVersionMajorOff, JsonU32(v[0], "driver.version[0]"));
    p.setU32(kVersionMinorOff, JsonU32(v[1], "driver.version[1]"));
    p.setU32(kVersionPatchOff, JsonU32(v[2], "driver.version[2]"));
    return kResultSuccess;
}

// An index past the table answers the count and an empty record; that is a
// success only when the table is empty, so a caller walking the indexes
// stops either way.
uint32_t HandleWorkerTable(SimContext& ctx, SimPayload& p)
{
    const Json& workers = Workers(ctx.driver());
    uint32_t index = p.u32(kWorkerIndexOff);
    uint32_t count = static_cast<uint32_t>(workers.size());
    p.setU32(kWorkerCountOff, count);
    p.zero(kWorkerRecordOff, kWorkerPayloadLen - kWorkerRecordOff);
    if (index >= count) {
        return count == 0 ? kResultSuccess : kResultInvalid;
    }
    std::string where = "workers[" + std::to_string(index) + "]";
    const Json& w = workers[index];
    const std::string& name = JsonString(JsonMember(w, "name", where), where + ".name");
    if (name.size() > kWorkerNameLen) {
        throw SimError(where + ".name: longer than " + std::to_string(kWorkerNameLen) + " bytes");
    }
    uint64_t age = JsonU64(JsonMember(w, "age_seconds", where), where + ".age_seconds");
    std::time_t now = ctx.now();
    if (age > static_cast<uint64_t>(now)) {
        throw SimError(where + ".age_seconds: reaches before 1970 at the present time");
    }
    p.setText(kWorkerNameOff, kWorkerNameLen, name);
    PutWireTime(p, kWorkerRefreshOff, now - static_cast<std::time_t>(age));
    PutWireTime(p, kWorkerPresentOff, now);
    return kResultSuccess;
}

}  // namespace cvsim
