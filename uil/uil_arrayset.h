// Array-level driver settings and actions that go to the driver directly,
// without the configuration store: the resume delays, an array's
// capability bits, the potential-fault switch, a controller's state, the
// rebalance of LUNs, the manual I/O suspension of a VLUN or a disk, and
// the driver's performance-record state. Nothing here prints.
#pragma once

#include <cstdint>

#include "uil/uil_cfg.h"  // UilOperLogPara

// Codes the driver gives when it refuses to change a controller's state.
inline constexpr uint32_t UIL_RET_LAST_CONTROLLER = 1029;  // the last controller that reaches the LUNs
inline constexpr uint32_t UIL_RET_HBA_DISABLED = 1047;     // an HBA is disabled

// Common set sub-commands. 1024, or the driver's code (its result word,
// else the channel's failure code).
uint32_t INTF_UIL_SetLunTresPassDelayTime(const char* source, uint32_t seconds);
uint32_t INTF_UIL_SetBusyDelayTime(uint32_t seconds);
uint32_t INTF_UIL_SetArrayCapability(uint32_t arrayId, uint32_t capability);
uint32_t INTF_UIL_SetPotentialSwitch(bool on);

// Enables or disables every path through one controller of an array.
// `record` (the operation-log record) is filled in every outcome: array
// ID, and "1,<name>" or "0,<name>" with the TPG's own name, else its
// number. 1026 for a TPG ID above 15; else as the senders above, so 1029
// and 1047 come back as such.
uint32_t INTF_UIL_SetTpgState(const char* source, uint32_t arrayId, uint32_t tpgId, bool enable,
                              UilOperLogPara* record);

// Rebalances the LUNs of every array (key "" or null), of one array
// ("array_id") or of one VLUN ("vlun_id"); `value` is the ID as decimal
// text. `record` (optional) gets the scope text ("all", "array_id=3").
// 1024; 1026 for another key or an ID that is not a number; 1057 or 1039
// when the driver does not know the object; the channel's code otherwise.
uint32_t INTF_UIL_StartRebalancelun(const char* source, const char* key, const char* value,
                                    UilOperLogPara* record);

// Starts (milliseconds > 0) or ends (0) the manual I/O suspension of a
// VLUN. 1024, or 1 when the driver refuses.
uint32_t INTF_UIL_CtrlIOSus(const char* source, uint32_t vlunId, uint32_t milliseconds);
// Ends the I/O suspension of the disk. 1024, or the channel's code.
uint32_t INTF_UIL_TurnOffIoSuspension(uint32_t diskId);

// The driver's performance-record state.
struct UilDriverPerfRecord {
    uint32_t enabled;        // 1 = recording
    uint32_t durationHours;  // 0 = until switched off
    uint32_t startSeconds;
};
// 1024, 1026 for a null record, or the channel's code.
uint32_t INTF_UIL_GetDriverPerfRecordInfo(UilDriverPerfRecord* out);
