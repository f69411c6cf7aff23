// Handlers of the array-level requests (model_arrayset.cpp: the common set
// request and its array and controller sub-commands, rebalance, manual I/O
// suspension, performance-record state) and of the aggregated VLUNs
// (model_aglun.cpp).
#pragma once

#include "model.h"

namespace cvsim {

// Sub-commands of the common set request (50, 0x32).
uint32_t HandleSubTpgState(SimContext& ctx, SimPayload& p);         // 42
uint32_t HandleSubTrespassDelay(SimContext& ctx, SimPayload& p);    // 43
uint32_t HandleSubBusyDelay(SimContext& ctx, SimPayload& p);        // 44
uint32_t HandleSubArrayCapability(SimContext& ctx, SimPayload& p);  // 51
uint32_t HandleSubPotentialSwitch(SimContext& ctx, SimPayload& p);  // 57
uint32_t HandleTurnOffIoSuspension(SimContext& ctx, SimPayload& p);  // 0x45
uint32_t HandleRebalance(SimContext& ctx, SimPayload& p);        // 0x51
uint32_t HandleCtrlIoSuspension(SimContext& ctx, SimPayload& p); // 0x61
uint32_t HandlePerfRecord(SimContext& ctx, SimPayload& p);       // 0x6b
uint32_t HandleAggreIds(SimContext& ctx, SimPayload& p);         // 0x5b
uint32_t HandleAggreInfo(SimContext& ctx, SimPayload& p);        // 0x5c
uint32_t HandleMigrateInfo(SimContext& ctx, SimPayload& p);      // 0x5e
uint32_t HandleStartMigration(SimContext& ctx, SimPayload& p);   // 0x60

// Whether the program marked the array's TPG remote: the array's
// configuration as the driver was told it ("xva_remote", TPG IDs
// separated by ",").
struct SimArray;
bool XvaRemote(const Json& driver, const SimArray& array, uint32_t tpgId);

// The place of an object in the document's list `key` ("disks", "vluns")
// by its ID; throws SimError when it is not there.
size_t JsonIndexOf(const Json& driver, const char* key, uint32_t id);

}  // namespace cvsim
