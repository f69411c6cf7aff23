// The driver's requests: each is _IOR('M', nr, size), the size being the
// payload's declared size. This table is the one place request codes come
// from; payload layouts are constexpr tables of fields, one internal header
// per request family (uil/uil_wire_*.h), each checked against the size here.
#pragma once

#include <cstdint>

struct UiaRequest {
    uint32_t nr;
    uint32_t size;  // declared payload size, part of the code
    constexpr uint32_t code() const;
};

inline constexpr uint32_t UIA_IOC_READ = 2;
inline constexpr uint32_t UIA_IOC_TYPE = 'M';

constexpr uint32_t UIA_IOR(uint32_t nr, uint32_t size)
{
    return (UIA_IOC_READ << 30) | ((size & 0x3FFF) << 16) | (UIA_IOC_TYPE << 8) | (nr & 0xFF);
}
constexpr uint32_t UiaRequest::code() const { return UIA_IOR(nr, size); }

namespace uia_req {
inline constexpr UiaRequest GetVersion{1, 12};
inline constexpr UiaRequest EnumArrayIds{11, 16};
inline constexpr UiaRequest GetArrayInfo{12, 444};
inline constexpr UiaRequest SyncArrayInfo{13, 444};
inline constexpr UiaRequest EnumArrayDiskIds{21, 24};
inline constexpr UiaRequest EnumPhyPathDiskIds{22, 24};
inline constexpr UiaRequest GetDiskInfo{23, 544};
inline constexpr UiaRequest GetVLunIoStat{24, 136};
inline constexpr UiaRequest EnumArrayVlunIds{25, 20};
inline constexpr UiaRequest EnumPathIds{31, 16};
inline constexpr UiaRequest GetPathInfo{32, 1080};
inline constexpr UiaRequest GetPathIoStat{33, 320};
inline constexpr UiaRequest CheckAttachWorkStatus{34, 12};
inline constexpr UiaRequest EnumPhyPathIds{41, 20};
inline constexpr UiaRequest GetPhyPathInfo{42, 1080};
inline constexpr UiaRequest GetPhyPathPerf{43, 848};
inline constexpr UiaRequest GetPhyPathIdsByHba{44, 848};
inline constexpr UiaRequest CommonSet{50, 608};
inline constexpr UiaRequest EnumTpgIds{60, 16};
inline constexpr UiaRequest GetTpgInfo{61, 28};
inline constexpr UiaRequest GetTpgName{62, 28};
inline constexpr UiaRequest GetHbaInfoByWwn{64, 256};
inline constexpr UiaRequest GetHbaInfoById{65, 256};
inline constexpr UiaRequest GetAllHbaIds{66, 12};
inline constexpr UiaRequest GetRegisterHostInfo{67, 276};
inline constexpr UiaRequest TurnOffIoSuspension{69, 4};
inline constexpr UiaRequest CfgNotify{70, 140};
inline constexpr UiaRequest CfgDelete{71, 72};
inline constexpr UiaRequest StartRebalanceLun{81, 12};
inline constexpr UiaRequest EnumAggreIds{91, 12};
inline constexpr UiaRequest GetAggreInfo{92, 16};
inline constexpr UiaRequest GetDsInfo{93, 28};
inline constexpr UiaRequest GetMigrateInfo{94, 28};
inline constexpr UiaRequest GetVLunInfo{95, 84};
inline constexpr UiaRequest StartMigration{96, 12};
inline constexpr UiaRequest CtrlIoSuspension{97, 84};
inline constexpr UiaRequest GetAlarmEnable{98, 4};
inline constexpr UiaRequest GetReliabilityEnable{99, 4};
inline constexpr UiaRequest GetWorkerInfo{100, 64};
inline constexpr UiaRequest GetMemoryInfo{101, 8};
inline constexpr UiaRequest StartMemory{102, 4};
inline constexpr UiaRequest ShowCmdTrace{103, 4};
inline constexpr UiaRequest GetIoReliability{104, 80};
inline constexpr UiaRequest ClearIoCount{105, 80};
inline constexpr UiaRequest ShowFollowRef{106, 4};
inline constexpr UiaRequest GetDriverPerfRecord{107, 16};
inline constexpr UiaRequest ClearPhyPathStatistic{108, 1080};
}  // namespace uia_req

static_assert(uia_req::GetVersion.code() == 0x800C4D01);
static_assert(uia_req::CfgNotify.code() == 0x808C4D46);
static_assert(uia_req::CfgDelete.code() == 0x80484D47);
static_assert(uia_req::CommonSet.code() == 0x82604D32);
