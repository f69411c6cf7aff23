// Path-changing requests: enabling and disabling a physical path, forcing
// its I/O state back to normal, starting a path check, clearing an obsolete
// path and a path's statistics, and the other path sub-commands of the
// common set request. Each sender builds its payload, sends it and hands
// back the driver's code; the senders that the shell logs fill the
// operation-log record for it.
#pragma once

#include <cstdint>

#include "uil/uil_cfg.h"  // UilOperLogPara
#include "uil/uil_path.h"

// Codes the driver answers to path sub-commands.
enum : uint32_t {
    UIL_RET_NO_BACKUP_PATH = 1029,     // 26: disabling would leave a LUN without a path
    UIL_RET_PATH_DISABLED = 1047,      // 24: a disabled path cannot be forced to normal
    UIL_RET_LOGIC_PATH_EXIST = 1059,   // 50: logical paths still run over it
    UIL_RET_PATH_NOT_FAULT = 1060,     // 50: the path is not faulty
};
// What INTF_UIL_ClearPhyPathStatistic answers when the request fails.
inline constexpr uint32_t UIL_RET_CLEAR_STAT_FAIL = 21;
// Check states INTF_UIL_StartPhyPathCheck reports to its caller.
enum : uint32_t { UIL_PATH_CHECK_SENT = 200, UIL_PATH_CHECK_NOT_SENT = 201 };

// ---------------------------------------------------------------------------
// Records for the operation log (object type 103, the path ID as object):
// the switch "1"/"0" for enable/disable, the I/O state code for a forced
// state, the path ID as decimal text for a check, an obsolete path and a
// statistics clearing.
void UIL_PathOperRecord(uint32_t pathId, const char* value, UilOperLogPara* record);
void UIL_PathOperRecordId(uint32_t pathId, UilOperLogPara* record);

// ---------------------------------------------------------------------------
// Senders. `source` names the origin ("CLI") for the trace. Every sender
// returns 1024 when the driver carried the request out, otherwise the
// driver's code (1029, 1047, 1059, 1060, ...) or the channel's failure code.

// 26: enable or disable a physical path. `record` (optional) is filled
// whatever the outcome.
uint32_t INTF_UIL_SetPhyPathState(const char* source, uint32_t pathId, bool enable, UilOperLogPara* record);

// 24: the I/O state of a physical path, given as its parsing word
// ("CVIOC_PATH_IO_NORMAL", ...); 1026 for a word that is no I/O state
// (nothing sent). `record` (optional) gets the code as decimal text.
uint32_t INTF_UIL_SetPhyPathIoState(const char* source, uint32_t pathId, const char* ioStateWord,
                                    UilOperLogPara* record);

// 25: the I/O state of one logical path (disk `diskId` over physical path
// `pathId`); word as above.
uint32_t INTF_UIL_SetPathIoState(const char* source, uint32_t diskId, uint32_t pathId, const char* ioStateWord);

// 27: has the driver count an unknown I/O error of kind `error` on a path.
uint32_t INTF_UIL_SetPhyPathIoUnknownError(uint32_t pathId, uint32_t error);

// 45: delay (ms) before I/O is sent to `target`.
uint32_t INTF_UIL_SetSendioDelayTime(uint32_t target, uint32_t delayMs);

// 52: artificial I/O lag (ms) on a physical path, switched on or off.
uint32_t INTF_UIL_SetPathIOLag(uint32_t pathId, uint32_t lagMs, bool on);

// 28: the value the check request carries at its offset 40: 1 when the
// physical path reads "Normal" and its working logical paths, at least one,
// are all busy (counts from UIL_GetLogicalLunForPhyPath), else 0.
uint32_t UIL_PathCheckAllBusy(const UilPathInfo& phyPath);

// 28: reads the path, counts its logical paths, sends the check and writes
// the operation-log line (`verb` and `command` as typed; outcome 1 when the
// check was sent, 0 otherwise). `checkState` gets UIL_PATH_CHECK_SENT or
// UIL_PATH_CHECK_NOT_SENT. A path that cannot be read is never sent.
uint32_t INTF_UIL_StartPhyPathCheck(const char* source, const char* verb, const char* command, uint32_t pathId,
                                    uint32_t* checkState);

// 50: removes a path the driver keeps after it has gone. A result word the
// driver left non-zero (other than the success code) is the answer, even
// when the frame reads success: 1059, 1060 or another refusal.
uint32_t INTF_UIL_ClearObsoletePath(const char* source, uint32_t pathId, UilOperLogPara* record);

// 0x6c: clears one physical path's statistics. 1024, or
// UIL_RET_CLEAR_STAT_FAIL when the request fails.
uint32_t INTF_UIL_ClearPhyPathStatistic(uint32_t pathId, UilOperLogPara* record);

// ---------------------------------------------------------------------------
// The checks before a path is enabled or disabled, in their order; the
// first that fails names the refusal (the shell words it):
//   1. the path exists;
//   2. it is not iSCSI (neither direction is supported);
//   3. its array exists; an array the driver lists without disks is let
//      through when enabling a path that carries no LUN (the record's word
//      after the port type is 0);
//   4. the array supports switching path states (capability byte 440 or 441);
//   5. when enabling: its controller exists and is enabled.
enum UilPathStateRefusal : uint32_t {
    UIL_PATHSTATE_OK = 0,
    UIL_PATHSTATE_NO_PATH,
    UIL_PATHSTATE_ISCSI,
    UIL_PATHSTATE_NO_ARRAY,
    UIL_PATHSTATE_NOT_SUPPORTED,
    UIL_PATHSTATE_NO_CONTROLLER,
    UIL_PATHSTATE_CONTROLLER_DISABLED,
};
struct UilPathStateCheck {
    UilPathStateRefusal refusal;
    uint32_t arrayId;       // the path's array (checks 3 on)
    uint32_t controllerId;  // the path's controller (check 5)
};
UilPathStateCheck UIL_CanSetPhyPathState(uint32_t pathId, bool enable);
