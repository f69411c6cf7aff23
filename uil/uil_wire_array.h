// Wire layout of the array record (requests 0x0c and 0x0d, 444 bytes).
// Internal to the object layer.
#pragma once

#include "uia/uia_request.h"
#include "uia/uia_wire.h"

namespace uil_wire::array {

inline constexpr UiaField kId{0, 4};
inline constexpr UiaField kName{4, 80};  // a NUL at 84 follows it
inline constexpr UiaField kVendor{85, 8};
inline constexpr UiaField kProduct{94, 16};
inline constexpr UiaField kRevision{111, 4};
inline constexpr UiaField kSn{116, 20};       // also the input of the sync request
inline constexpr UiaField kSnField{116, 21};  // the SN with its terminator, as written back
inline constexpr UiaField kDriver{137, 129};
inline constexpr UiaField kFlag266{266, 1};
inline constexpr UiaField kValue268{268, 4};
inline constexpr UiaField kText272{272, 128};
inline constexpr UiaField kWords404{404, 24};  // six u32
inline constexpr UiaField kValue428{428, 4};
inline constexpr UiaField kValue432{432, 4};
inline constexpr UiaField kCapability{436, 4};
inline constexpr UiaField kFlag440{440, 1};
inline constexpr UiaField kFlag441{441, 1};
inline constexpr UiaField kFlag442{442, 1};

inline constexpr UiaField kFields[] = {kId,       kName,      kVendor,    kProduct,   kRevision, kSnField,
                                       kDriver,   kFlag266,   kValue268,  kText272,   kWords404, kValue428,
                                       kValue432, kCapability, kFlag440, kFlag441, kFlag442};
static_assert(UiaFieldsFit(kFields, uia_req::GetArrayInfo.size) && UiaFieldsDisjoint(kFields));
static_assert(uia_req::SyncArrayInfo.size == uia_req::GetArrayInfo.size, "one record for both requests");

}  // namespace uil_wire::array
