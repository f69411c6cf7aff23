// Layouts of the path-changing requests: the fields each path sub-command
// of the common set request carries, and the physical path statistic
// clearing request. Internal to the interface layer.
#pragma once

#include <cstddef>

#include "uia/uia_request.h"
#include "uil/uil_wire_commonset.h"

namespace uil_wire_pathset {
namespace cs = uil_wire_commonset;

// Sub-commands of the common set request that act on paths.
inline constexpr uint32_t kSubPhyPathIoState = 24;
inline constexpr uint32_t kSubPathIoState = 25;
inline constexpr uint32_t kSubPhyPathState = 26;
inline constexpr uint32_t kSubPhyPathUnknownError = 27;
inline constexpr uint32_t kSubPhyPathCheck = 28;
inline constexpr uint32_t kSubSendIoDelayTime = 45;
inline constexpr uint32_t kSubClearObsoletePath = 50;
inline constexpr uint32_t kSubPathIoLag = 52;

// 24: physical path at 8, the I/O state code at 16.
inline constexpr size_t kPhyPathId = cs::kTarget;
inline constexpr size_t kPhyIoState = cs::kField16;
// 25: the logical path is named by its disk (8) and its physical path (12).
inline constexpr size_t kLogicalDiskId = cs::kTarget;
inline constexpr size_t kLogicalPathId = cs::kField12;
inline constexpr size_t kLogicalIoState = cs::kField16;
// 26: 1 enables, 0 disables. 28: 1 when every working logical path is busy.
inline constexpr size_t kSwitch = cs::kField40;
inline constexpr size_t kAllBusy = cs::kField40;
// 27: the error the driver is to count against the path.
inline constexpr size_t kUnknownError = cs::kField16;
// 45: the target at 8, the delay at 24 (ms).
inline constexpr size_t kDelayTarget = cs::kTarget;
inline constexpr size_t kDelayTime = cs::kField24;
// 52: physical path at 8, lag at 16 (ms), switch at 20.
inline constexpr size_t kLagMs = cs::kField16;
inline constexpr size_t kLagSwitch = cs::kField20;

static_assert(kSwitch + 4 <= uia_req::CommonSet.size);
static_assert(kDelayTime + 4 <= uia_req::CommonSet.size);

// Clearing a physical path's statistics (0x6c): the path ID at 0 of a
// physical-path-sized record.
inline constexpr size_t kClearStatPathId = 0;
inline constexpr size_t kClearStatSize = 1080;
static_assert(kClearStatSize == uia_req::ClearPhyPathStatistic.size);
}  // namespace uil_wire_pathset
