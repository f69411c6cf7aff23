// Aggregated VLUNs: a dual-site VLUN (members on two arrays, a primary
// array and a working mode) or a migration VLUN (a source and a target
// device). Their listing, their headers and attributes as the driver
// reports them, the start of a migration and the split-size text of the
// dual-site setting. Nothing here prints.
#pragma once

#include <cstddef>
#include <cstdint>

#include "uil/uil_cfg.h"  // UilOperLogPara
#include "uil/uil_ids.h"

// Codes the driver gives when it refuses to start a migration.
inline constexpr uint32_t UIL_RET_NOT_MIGRATION = 1063;  // the VLUN is not a migration VLUN
inline constexpr uint32_t UIL_RET_MIGRATE_MEMBERS = 1050;  // fewer than two member disks
inline constexpr uint32_t UIL_RET_MIGRATE_NO_PATH = 1051;  // no active path to the preferred device

inline constexpr uint32_t UIL_AGGRE_MAX_MEMBERS = 2;
inline constexpr size_t UIL_DS_SN_SIZE = 21;  // 20 characters and the terminator

// IDs of every dual-site and migration VLUN, sorted ascending (capacity
// 16384). 1024; 1037 when memory runs out; 1 when the request fails.
uint32_t INTF_UIL_EnumerateAggreIdsStart(UilIdList** out);
void INTF_UIL_EnumerateAggreIdsEnd(UilIdList* list);

// The aggregation header of a VLUN: an ordinary VLUN has one member.
struct UilAggreInfo {
    uint32_t vlunId;
    uint32_t memberCount;  // never above UIL_AGGRE_MAX_MEMBERS
    uint32_t memberDiskId[UIL_AGGRE_MAX_MEMBERS];
};
// 1024; 1026 for a null record; 1 when the request fails.
uint32_t INTF_UIL_GetAggreInfoStart(uint32_t vlunId, UilAggreInfo* out);
void INTF_UIL_GetAggreInfoEnd(UilAggreInfo* info);

// Dual-site attributes.
struct UilDsInfo {
    uint32_t vlunId;
    uint8_t mode;  // 0 read write between both arrays, else within the primary array
    char primarySn[UIL_DS_SN_SIZE];
};
// 1024; 1026 for a null record; 1 when the request fails.
uint32_t INTF_UIL_GetDSInfoStart(uint32_t vlunId, UilDsInfo* out);

// Migration attributes.
struct UilMigrateInfo {
    uint32_t vlunId;
    uint8_t targetPreferred;  // 1 = I/O goes to the target device
    uint8_t rollback;         // 1 = rollback enabled
};
// 1024; 1026 for a null record; 1 when the request fails.
uint32_t INTF_UIL_GetMigrateInfoStart(uint32_t vlunId, UilMigrateInfo* out);

// Starts moving the VLUN's I/O to its target (targetPreferred 1) or back
// to its source, with or without rollback. `record` (optional) gets the
// VLUN ID and "bDstIsPrior: %d, bRollBack: %d" of the two bytes sent.
// 1024; the driver's 1039, 1063, 1050 or 1051; the channel's code.
uint32_t INTF_UIL_StartMigration(const char* source, uint32_t vlunId, uint8_t targetPreferred, uint8_t rollback,
                                 UilOperLogPara* record);

// A split-size text ("512B", "64k", "128M", "1G", or bytes without a
// unit; a power of two from 512 bytes to 1 GB) is replaced in place by its
// count of 512-byte sectors. `size` is the capacity of `text`. 1 when the
// text was valid (and replaced), 0 otherwise (left as it was).
uint32_t INTF_UIL_TranseSpliteSize(char* text, size_t size);
