// Layouts of the aggregated-VLUN requests (dual-site and migration VLUNs).
// Internal to the interface layer.
#pragma once

#include <cstddef>
#include <cstdint>

#include "uia/uia_request.h"
#include "uil/uil_cfg.h"
#include "uil/uil_cfg_wire.h"

namespace uil_wire_aglun {

// Aggregated VLUN IDs (0x5b): capacity in, count and IDs out; the buffer
// holds the declared size plus room for capacity - 1 more IDs.
inline constexpr size_t kIdsCapacity = 0;
inline constexpr size_t kIdsCount = 4;
inline constexpr size_t kIdsFirst = 8;
static_assert(kIdsFirst + 4 == uia_req::EnumAggreIds.size);

// Aggregation header of one VLUN (0x5c).
inline constexpr size_t kAggreVlun = 0;     // u32 in
inline constexpr size_t kAggreCount = 4;    // u32 member count
inline constexpr size_t kAggreMembers = 8;  // u32 member disk IDs at 8 and 12
inline constexpr uint32_t kAggreMaxMembers = 2;
static_assert(kAggreMembers + 4 * kAggreMaxMembers == uia_req::GetAggreInfo.size);

// Dual-site information (0x5d).
inline constexpr size_t kDsVlun = 0;
inline constexpr size_t kDsMode = 4;       // u8: 0 between both arrays, else within the primary
inline constexpr size_t kDsPrimarySn = 5;  // 20 characters
inline constexpr size_t kDsPrimarySnLen = 20;
static_assert(kDsPrimarySn == uil_cfg_wire::kDsPrimarySn);
static_assert(kDsPrimarySn + kDsPrimarySnLen <= uia_req::GetDsInfo.size);

// Migration information (0x5e).
inline constexpr size_t kMigVlun = 0;
inline constexpr size_t kMigDirection = 4;  // u8 1 = target device preferred
inline constexpr size_t kMigRollback = 5;   // u8 1 = rollback enabled
static_assert(kMigRollback + 1 <= uia_req::GetMigrateInfo.size);

// Start migration (0x60): the driver answers a refusal in the status word.
inline constexpr size_t kStartVlun = 0;
inline constexpr size_t kStartTargetPreferred = 4;  // u8
inline constexpr size_t kStartRollback = 5;         // u8
inline constexpr size_t kStartStatus = 8;           // u32
static_assert(kStartStatus + 4 == uia_req::StartMigration.size);

}  // namespace uil_wire_aglun
