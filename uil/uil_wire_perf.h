// Wire layouts of the driver's I/O statistics requests (little-endian byte
// offsets, read and written through UiaPayload only).
#pragma once

#include <cstddef>
#include <cstdint>

#include "uia/uia_request.h"

namespace uil_perf_wire {

// Eight cumulative u64 counters in record order: read I/Os, write I/Os, two
// further counters, read bytes, write bytes, read response, write response.
inline constexpr size_t kCounterCount = 8;
inline constexpr size_t kU64 = 8;

// Physical path performance (0x2b, 848 bytes): the caller puts the physical
// path ID at 0 and the driver answers that one path.
namespace phy {
inline constexpr size_t kId = 0;
inline constexpr size_t kHasMaxMin = 4;   // u8: 1 when the driver tracks max/min itself
inline constexpr size_t kArrayId = 8;
inline constexpr size_t kControllerId = 12;
inline constexpr size_t kHbaId = 16;
inline constexpr size_t kArrayName = 20;
inline constexpr size_t kArrayNameLen = 128;
inline constexpr size_t kInitiator = 156;  // printable initiator port
inline constexpr size_t kTarget = 438;     // printable target port
inline constexpr size_t kPortLen = 282;
inline constexpr size_t kCounters = 720;
inline constexpr size_t kExtra = 784;      // the further summed counter
inline constexpr size_t kMaxMin = 792;     // max/min IOPS, KB/S, response, one spare word
inline constexpr size_t kMaxMinWords = 7;
inline constexpr size_t kSize = 848;
}  // namespace phy

static_assert(phy::kSize == uia_req::GetPhyPathPerf.size);
static_assert(phy::kArrayName + phy::kArrayNameLen <= phy::kInitiator);
static_assert(phy::kInitiator + phy::kPortLen == phy::kTarget);
static_assert(phy::kTarget + phy::kPortLen == phy::kCounters);
static_assert(phy::kCounters + kCounterCount * kU64 == phy::kExtra);
static_assert(phy::kExtra + kU64 == phy::kMaxMin);
static_assert(phy::kMaxMin + phy::kMaxMinWords * kU64 == phy::kSize);

// Logical path statistics (0x21, 320 bytes): the caller puts the disk ID at
// 0 and the physical path ID at 4; the driver answers the VLUN of the disk,
// the eight counters and the further counter of that logical path.
namespace logic {
inline constexpr size_t kDiskId = 0;
inline constexpr size_t kPathId = 4;
inline constexpr size_t kVlunId = 8;
inline constexpr size_t kCounters = 16;
inline constexpr size_t kExtra = 80;
inline constexpr size_t kSize = 320;
}  // namespace logic

static_assert(logic::kSize == uia_req::GetPathIoStat.size);
static_assert(logic::kCounters + kCounterCount * kU64 == logic::kExtra);
static_assert(logic::kExtra + kU64 <= logic::kSize);


}  // namespace uil_perf_wire
