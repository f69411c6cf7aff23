// Wire layouts of the path records (physical 0x2a, logical 0x20, both 1080
// bytes) and of the HBA record (0x40 and 0x41, 256 bytes). Internal to the
// object layer.
#pragma once

#include "uia/uia_request.h"
#include "uia/uia_wire.h"

namespace uil_wire {

// Text fields both path records carry, at different offsets.
inline constexpr size_t kPortNameLen = 241;
inline constexpr size_t kPathArrayNameLen = 80;
inline constexpr size_t kPathVendorLen = 136;
inline constexpr size_t kPathControllerTextLen = 32;
inline constexpr size_t kPathPortIdLen = 128;
inline constexpr size_t kPathShortTextLen = 16;

namespace phy {
inline constexpr UiaField kId{0, 4};
inline constexpr UiaField kArray{4, 4};
inline constexpr UiaField kController{8, 4};
inline constexpr UiaField kLink{12, 4};
inline constexpr UiaField kIoState{16, 4};
inline constexpr UiaField kWord20{20, 4};  // check start type
inline constexpr UiaField kWord24{24, 4};
inline constexpr UiaField kPortType{28, 4};
inline constexpr UiaField kWord32{32, 4};
inline constexpr UiaField kCheckStep{36, 4};
inline constexpr UiaField kPrevCheckStep{40, 4};
inline constexpr UiaField kRetry{48, 8};
inline constexpr UiaField kFault{56, 8};
inline constexpr UiaField kWord64{64, 4};
inline constexpr UiaField kLatHigh{72, 8};
inline constexpr UiaField kLatLow{80, 8};
inline constexpr UiaField kLatAvg{88, 8};
inline constexpr UiaField kArrayName{96, kPathArrayNameLen};
inline constexpr UiaField kInitiator{184, kPortNameLen};
inline constexpr UiaField kTarget{432, kPortNameLen};
inline constexpr UiaField kVendor{680, kPathVendorLen};
inline constexpr UiaField kFlags{816, 4};
inline constexpr UiaField kText820{820, kPathShortTextLen};
inline constexpr UiaField kEnabled{844, 1};
inline constexpr UiaField kWords848{848, 20};  // five u32
inline constexpr UiaField kText868{868, kPathShortTextLen};
inline constexpr UiaField kText884{884, kPathShortTextLen};
inline constexpr UiaField kByte902{902, 1};
inline constexpr UiaField kByte903{903, 1};
inline constexpr UiaField kControllerText{904, kPathControllerTextLen};
inline constexpr UiaField kPortId{937, kPathPortIdLen};
inline constexpr UiaField kInitTcp{1068, 4};
inline constexpr UiaField kTargetTcp{1072, 4};

inline constexpr UiaField kFields[] = {
    kId,       kArray,    kController, kLink,     kIoState,  kWord20,  kWord24,          kPortType,
    kWord32,   kCheckStep, kPrevCheckStep, kRetry, kFault,   kWord64,  kLatHigh,         kLatLow,
    kLatAvg,   kArrayName, kInitiator,  kTarget,  kVendor,   kFlags,   kText820,         kEnabled,
    kWords848, kText868,  kText884,    kByte902,  kByte903,  kControllerText, kPortId, kInitTcp, kTargetTcp};
static_assert(UiaFieldsFit(kFields, uia_req::GetPhyPathInfo.size) && UiaFieldsDisjoint(kFields));
static_assert(uia_req::ClearPhyPathStatistic.size == uia_req::GetPhyPathInfo.size, "one record for both");
}  // namespace phy

namespace logical {
// Inputs: the disk and the physical path the logical path runs over.
inline constexpr UiaField kInDisk{0, 4};
inline constexpr UiaField kInPath{4, 4};

inline constexpr UiaField kId{4, 4};
inline constexpr UiaField kObject8{8, 4};
inline constexpr UiaField kObject12{12, 4};
inline constexpr UiaField kState{16, 4};
inline constexpr UiaField kWord20{20, 4};
inline constexpr UiaField kIoState{24, 4};
inline constexpr UiaField kWord28{28, 4};
inline constexpr UiaField kScsiHost{32, 4};
inline constexpr UiaField kScsiChannel{36, 4};
inline constexpr UiaField kScsiTarget{40, 4};
inline constexpr UiaField kWord44{44, 4};
inline constexpr UiaField kFlag48{48, 1};
inline constexpr UiaField kFlag49{49, 1};
inline constexpr UiaField kWord52{52, 4};
inline constexpr UiaField kWord56{56, 4};
inline constexpr UiaField kPortType{60, 4};
inline constexpr UiaField kWord64{64, 4};
inline constexpr UiaField kPathFlags{68, 4};
inline constexpr UiaField kInitTcp{72, 4};
inline constexpr UiaField kTargetTcp{80, 4};
inline constexpr UiaField kScsiLun{88, 8};
inline constexpr UiaField kByte96{96, 1};
inline constexpr UiaField kEnabled{97, 1};
inline constexpr UiaField kArrayName{170, kPathArrayNameLen};
inline constexpr UiaField kInitiator{258, kPortNameLen};
inline constexpr UiaField kTarget{506, kPortNameLen};
inline constexpr UiaField kVendor{754, kPathVendorLen};
inline constexpr UiaField kControllerText{890, kPathControllerTextLen};
inline constexpr UiaField kPortId{923, kPathPortIdLen};
inline constexpr UiaField kFlags{1052, 4};
inline constexpr UiaField kText1056{1056, kPathShortTextLen};
inline constexpr UiaField kFaulty{1073, 1};

inline constexpr UiaField kFields[] = {
    kId,       kObject8,  kObject12,  kState,    kWord20,   kIoState,  kWord28,         kScsiHost,
    kScsiChannel, kScsiTarget, kWord44, kFlag48, kFlag49,   kWord52,   kWord56,         kPortType,
    kWord64,   kPathFlags, kInitTcp,  kTargetTcp, kScsiLun, kByte96,   kEnabled,        kArrayName,
    kInitiator, kTarget,  kVendor,    kControllerText, kPortId, kFlags, kText1056,      kFaulty};
static_assert(UiaFieldsFit(kFields, uia_req::GetPathInfo.size) && UiaFieldsDisjoint(kFields));
inline constexpr UiaField kInputs[] = {kInDisk, kInPath};
static_assert(UiaFieldsFit(kInputs, uia_req::GetPathInfo.size) && UiaFieldsDisjoint(kInputs));
}  // namespace logical

// Where the address of an iSCSI initiator sits in its port-name field.
inline constexpr size_t kIpFirst = 225;
inline constexpr size_t kIpv6Only = 229;  // any of 229..240 non-zero: IPv6
inline constexpr size_t kIpEnd = 241;
static_assert(kIpEnd == kPortNameLen);

namespace hba {
inline constexpr UiaField kResult{0, 4};  // preset to 1030; the driver's code on failure
inline constexpr UiaField kId{4, 4};      // input of the by-ID query
inline constexpr UiaField kWord8{8, 4};
inline constexpr UiaField kWwn{12, 241};      // the WWN text
inline constexpr UiaField kWwnField{12, 242};  // ... and its terminator, as written
inline constexpr UiaField kEnabled{254, 1};

inline constexpr UiaField kFields[] = {kResult, kId, kWord8, kWwnField, kEnabled};
static_assert(UiaFieldsFit(kFields, uia_req::GetHbaInfoByWwn.size) && UiaFieldsDisjoint(kFields));
static_assert(uia_req::GetHbaInfoById.size == uia_req::GetHbaInfoByWwn.size, "one record for both queries");
}  // namespace hba

}  // namespace uil_wire
