// Layouts of the array-level driver requests: the common set sub-commands
// of arrays and controllers, the rebalance and I/O suspension requests and
// the performance-record query. Internal to the interface layer.
#pragma once

#include <cstddef>
#include <cstdint>

#include "uia/uia_request.h"
#include "uil/uil_wire_commonset.h"

namespace uil_wire_arrayset {

namespace cs = uil_wire_commonset;

// Common set sub-commands and their fields.
inline constexpr uint32_t kSubTpgState = 42;
inline constexpr uint32_t kSubTrespassDelay = 43;
inline constexpr uint32_t kSubBusyDelay = 44;
inline constexpr uint32_t kSubArrayCapability = 51;
inline constexpr uint32_t kSubPotentialSwitch = 57;

inline constexpr size_t kTpgArray = cs::kTarget;    // u32 array ID
inline constexpr size_t kTpgId = cs::kField12;      // u32 TPG ID
inline constexpr size_t kTpgEnable = cs::kField40;  // u32 1 = enable, 0 = disable
inline constexpr size_t kTrespassDelay = cs::kField16;  // u32 seconds
inline constexpr size_t kBusyDelay = cs::kTarget;       // u32 seconds
inline constexpr size_t kCapabilityArray = cs::kTarget;   // u32 array ID
inline constexpr size_t kCapabilityValue = cs::kField12;  // u32 capability bits
inline constexpr size_t kPotentialSwitch = cs::kTarget;   // u8 1 = on

// End the I/O suspension of a disk (0x45): the disk ID only.
inline constexpr size_t kTurnOffDisk = 0;
inline constexpr size_t kTurnOffSize = 4;
static_assert(kTurnOffSize == uia_req::TurnOffIoSuspension.size);
static_assert(kTurnOffDisk + 4 == kTurnOffSize);

// Rebalance (0x51): scope and object ID in, the driver's status word out.
inline constexpr size_t kRebalanceScope = 0;   // u32 100 all, 101 array, 102 VLUN
inline constexpr size_t kRebalanceId = 4;      // u32
inline constexpr size_t kRebalanceStatus = 8;  // u32 1057 / 1039 when refused
inline constexpr size_t kRebalanceSize = 12;
static_assert(kRebalanceSize == uia_req::StartRebalanceLun.size);
static_assert(kRebalanceStatus + 4 == kRebalanceSize);

// Manual I/O suspension of a VLUN (0x61): VLUN ID and the time in ms.
inline constexpr size_t kIoSusVlun = 0;
inline constexpr size_t kIoSusTimeMs = 72;  // 0 ends the suspension
inline constexpr size_t kIoSusSize = 84;
static_assert(kIoSusSize == uia_req::CtrlIoSuspension.size);
static_assert(kIoSusTimeMs + 4 <= kIoSusSize);

// Performance-record state (0x6b).
inline constexpr size_t kPerfEnabled = 0;   // u32 1 = recording
inline constexpr size_t kPerfDuration = 4;  // u32 hours, 0 = no end
inline constexpr size_t kPerfStart = 8;     // u32 start, seconds
inline constexpr size_t kPerfValue = 12;    // u32
inline constexpr size_t kPerfSize = 16;
static_assert(kPerfSize == uia_req::GetDriverPerfRecord.size);
static_assert(kPerfValue + 4 == kPerfSize);

static_assert(kTpgEnable + 4 <= cs::kSize && kTrespassDelay + 4 <= cs::kSize);

}  // namespace uil_wire_arrayset
