// Layout of the common set request: one 608-byte payload shared by most of
// the driver-changing sub-commands. Internal to the interface layer.
#pragma once

#include <cstddef>

#include "uia/uia_request.h"

namespace uil_wire_commonset {
inline constexpr size_t kSubCommand = 0;  // u32, written by us
inline constexpr size_t kResult = 4;      // u32, the driver's answer for sub-commands that give one
inline constexpr size_t kTarget = 8;      // u32, physical path, array or other target ID
inline constexpr size_t kField12 = 12;    // u32 sub-command fields from here on
inline constexpr size_t kField16 = 16;
inline constexpr size_t kField20 = 20;
inline constexpr size_t kField24 = 24;
inline constexpr size_t kField40 = 40;
inline constexpr size_t kSize = 608;
static_assert(kSize == uia_req::CommonSet.size);
static_assert(kField40 + 4 <= kSize);
}  // namespace uil_wire_commonset
