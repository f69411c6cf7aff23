// Layouts of the I/O reliability requests: the per-disk / per-path counter
// query (0x68), the clearing of the counters (0x69) and the two switch
// reads (0x62 alarm, 0x63 path reliability). Internal to the interface layer.
#pragma once

#include <cstddef>

#include "uia/uia_request.h"

namespace uil_wire_reliability {
inline constexpr size_t kDiskId = 0;     // u32
inline constexpr size_t kPathId = 4;     // u32, 0 for the whole disk
inline constexpr size_t kFlag = 8;       // u32 in and out; counters valid when the driver answers 1
inline constexpr size_t kScope = 12;     // u32, 0 whole disk, 1 one logical path
inline constexpr size_t kErrorIo = 16;   // u64 counters from here on
inline constexpr size_t kErrorCmd = 24;
inline constexpr size_t kQueuedIo = 32;
inline constexpr size_t kQueuedCmd = 40;
inline constexpr size_t kLatestLatency = 48;
inline constexpr size_t kMaxLatency = 56;
inline constexpr size_t kLatencySum = 64;
inline constexpr size_t kLatencySamples = 72;
inline constexpr size_t kSize = 80;
static_assert(kSize == uia_req::GetIoReliability.size);
static_assert(kLatencySamples + 8 == kSize);
// The clearing request carries a payload of the same size, all zeros.
static_assert(kSize == uia_req::ClearIoCount.size);

// The switch reads: one u32 at 0, non-zero = on.
inline constexpr size_t kSwitch = 0;
static_assert(kSwitch + 4 == uia_req::GetAlarmEnable.size);
static_assert(kSwitch + 4 == uia_req::GetReliabilityEnable.size);
}  // namespace uil_wire_reliability
