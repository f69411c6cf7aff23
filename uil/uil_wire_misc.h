// Wire layouts of the general requests: driver version (0x01, 12 bytes)
// and worker threads (0x64, 64 bytes). Internal to the interface layer.
#pragma once

#include "uia/uia_request.h"
#include "uia/uia_wire.h"

namespace uil_wire::version {
inline constexpr UiaField kMajor{0, 4};
inline constexpr UiaField kMinor{4, 4};
inline constexpr UiaField kPatch{8, 4};
inline constexpr UiaField kFields[] = {kMajor, kMinor, kPatch};
static_assert(UiaFieldsFit(kFields, uia_req::GetVersion.size) && UiaFieldsDisjoint(kFields));
}  // namespace uil_wire::version

// The program asks for one worker by index; the driver answers the number
// of workers and that worker's name and two times. A time is 7 bytes: u16
// year, then month, day, hour, minute and second as u8.
namespace uil_wire::worker {
inline constexpr size_t kTimeLen = 7;
inline constexpr UiaField kIndex{0, 4};
inline constexpr UiaField kCount{4, 4};
inline constexpr UiaField kName{8, 32};
inline constexpr UiaField kLastRefresh{40, kTimeLen};
inline constexpr UiaField kPresent{48, kTimeLen};
inline constexpr UiaField kFields[] = {kIndex, kCount, kName, kLastRefresh, kPresent};
static_assert(UiaFieldsFit(kFields, uia_req::GetWorkerInfo.size) && UiaFieldsDisjoint(kFields));
}  // namespace uil_wire::worker
