// Wire layouts of the disk record (request 0x17, 544 bytes) and of the VLUN
// record (requests 0x5f and 0x61, 84 bytes). Internal to the object layer.
#pragma once

#include "uia/uia_request.h"
#include "uia/uia_wire.h"

namespace uil_wire::disk {

inline constexpr UiaField kId{0, 4};
inline constexpr UiaField kVlun{4, 4};
inline constexpr UiaField kOwning{8, 4};
inline constexpr UiaField kWorking{12, 4};
inline constexpr UiaField kArray{16, 4};
inline constexpr UiaField kHostLun{20, 4};
inline constexpr UiaField kWord24{24, 4};
inline constexpr UiaField kLunCount{36, 4};
inline constexpr UiaField kCapacity{40, 8};
inline constexpr UiaField kName{48, 64};
inline constexpr UiaField kVendor{120, 8};
inline constexpr UiaField kProduct{136, 16};
inline constexpr UiaField kRevision{160, 4};
inline constexpr UiaField kWwn{168, 32};
inline constexpr UiaField kArrayName{208, 80};
inline constexpr UiaField kArraySn{296, 20};
inline constexpr UiaField kDriver{324, 129};
// The device name is read up to its own terminator, at most 64 bytes, and
// so may run over the words from 500 on; the driver ends it before them.
inline constexpr UiaField kDevice{460, 64};
inline constexpr UiaField kCapability{500, 4};
inline constexpr UiaField kByte504{504, 1};
inline constexpr UiaField kValue512{512, 8};
inline constexpr UiaField kValue520{520, 4};
inline constexpr UiaField kValue524{524, 4};
inline constexpr UiaField kByte528{528, 1};
inline constexpr UiaField kUnavailable{529, 1};
inline constexpr UiaField kDevLunId{532, 4};
inline constexpr UiaField kDevLunValid{536, 1};
inline constexpr UiaField kNormal{537, 1};
inline constexpr UiaField kDegraded{538, 1};
inline constexpr UiaField kPathCount{540, 4};

inline constexpr UiaField kFields[] = {
    kId,       kVlun,       kOwning,   kWorking,  kArray,    kHostLun,     kWord24,      kLunCount,
    kCapacity, kName,       kVendor,   kProduct,  kRevision, kWwn,         kArrayName,   kArraySn,
    kDriver,   kCapability, kByte504,  kValue512, kValue520, kValue524,    kByte528,     kUnavailable,
    kDevLunId, kDevLunValid, kNormal,  kDegraded, kPathCount};
static_assert(UiaFieldsFit(kFields, uia_req::GetDiskInfo.size) && UiaFieldsDisjoint(kFields));
inline constexpr UiaField kDeviceOnly[] = {kDevice};
static_assert(UiaFieldsFit(kDeviceOnly, uia_req::GetDiskInfo.size));

}  // namespace uil_wire::disk

namespace uil_wire::vlun {

inline constexpr UiaField kId{0, 4};
inline constexpr UiaField kWwn{4, 32};
inline constexpr UiaField kArraySn{37, 20};
inline constexpr UiaField kType{58, 1};
inline constexpr UiaField kPe{59, 1};
inline constexpr UiaField kMembers{60, 4};
inline constexpr UiaField kMemberDisks{64, 8};  // two u32
inline constexpr UiaField kSuspendTimeout{72, 4};
inline constexpr UiaField kSuspendRemain{76, 4};

inline constexpr UiaField kFields[] = {kId,      kWwn,        kArraySn,        kType,         kPe,
                                       kMembers, kMemberDisks, kSuspendTimeout, kSuspendRemain};
static_assert(UiaFieldsFit(kFields, uia_req::GetVLunInfo.size) && UiaFieldsDisjoint(kFields));
static_assert(uia_req::CtrlIoSuspension.size == uia_req::GetVLunInfo.size, "one record for both requests");

}  // namespace uil_wire::vlun
