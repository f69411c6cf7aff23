// Handlers of the array family's `set`, `start`, `stop` and `clear`
// commands that are not plain value settings.
#pragma once

#include <cstdint>

uint8_t MPCLI_SetAlarmEnable(const MPCLI_Command& command);
uint8_t MPCLI_SetReliabilityEnable(const MPCLI_Command& command);
// Scoped setters: the host, array_id=ID or vlun_id=<ID|ID1,ID2,...|ID1-ID2>.
uint8_t MPCLI_SetLbController(const MPCLI_Command& command);  // workingmode
uint8_t MPCLI_SetLbPolicy(const MPCLI_Command& command);      // loadbalancemode
uint8_t MPCLI_SetLunTrespass(const MPCLI_Command& command);
uint8_t MPCLI_SetHoldonTime(const MPCLI_Command& command);    // iosuspensiontime
uint8_t MPCLI_SetLBIOThreshold(const MPCLI_Command& command);
uint8_t MPCLI_SetIoRetryTimeOut(const MPCLI_Command& command);  // max_io_retry_timeout
// Host-wide: `set ioretry=<n> ioretrydelay=<t>`, `set performance_record=
// {on|off} [duration=<hours>]`, `set stop_iosuspension <disk_id>`.
uint8_t MPCLI_SetIoRetryConf(const MPCLI_Command& command);
uint8_t MPCLI_SetPerformanceRecord(const MPCLI_Command& command);
uint8_t MPCLI_SetStopIoSuspension(const MPCLI_Command& command);
