// The requests that act on paths and read the I/O reliability counters:
// the common set request (nr 0x32) with its path sub-commands, the clearing
// of a physical path's statistics, the reliability counters and their
// clearing, and the alarm and path reliability switches.
#pragma once

#include "model.h"

namespace cvsim {

// Common set request: offsets shared by every sub-command.
inline constexpr uint32_t kCommonSetSize = 608;
inline constexpr size_t kCsSubCommand = 0;
inline constexpr size_t kCsResult = 4;  // the driver's answer, 0 when carried out
inline constexpr size_t kCsTarget = 8;
inline constexpr uint32_t kCommonSetNr = 0x32;

// The driver's answer as the result word carries it: the refusal code, or 0
// when the sub-command was carried out. The frame carries the code as well.
void WriteCommonSetResult(SimPayload& p, uint32_t result);

// One sub-command of the common set request: returns the result code,
// which the dispatcher also writes into the result word.
using SimSubHandler = uint32_t (*)(SimContext& ctx, SimPayload& p);
struct SimSubCommandRow {
    uint32_t sub;
    SimSubHandler handler;
};

uint32_t HandleCommonSet(SimContext& ctx, SimPayload& p);           // 0x32, model_commonset.cpp

uint32_t HandleSubPhyPathIoState(SimContext& ctx, SimPayload& p);   // sub 24, model_pathset.cpp
uint32_t HandleSubPathIoState(SimContext& ctx, SimPayload& p);      // sub 25
uint32_t HandleSubPhyPathState(SimContext& ctx, SimPayload& p);     // sub 26
uint32_t HandleSubPhyPathError(SimContext& ctx, SimPayload& p);     // sub 27
uint32_t HandleSubPhyPathCheck(SimContext& ctx, SimPayload& p);     // sub 28
uint32_t HandleSubSendIoDelay(SimContext& ctx, SimPayload& p);      // sub 45
uint32_t HandleSubClearObsolete(SimContext& ctx, SimPayload& p);    // sub 50
uint32_t HandleSubPathIoLag(SimContext& ctx, SimPayload& p);        // sub 52
uint32_t HandleClearPathStatistic(SimContext& ctx, SimPayload& p);  // 0x6c

uint32_t HandleAlarmEnable(SimContext& ctx, SimPayload& p);         // 0x62, model_reliability.cpp
uint32_t HandleReliabilityEnable(SimContext& ctx, SimPayload& p);   // 0x63
uint32_t HandleIoReliability(SimContext& ctx, SimPayload& p);       // 0x68
uint32_t HandleClearIoCount(SimContext& ctx, SimPayload& p);        // 0x69

}  // namespace cvsim
