// Handlers of the array family's `set`, `start`, `stop` and `clear`
// commands that are not plain value settings.
#pragma once

#include <cstdint>

uint8_t MPCLI_SetAlarmEnable(uint32_t argc, char** argv);
uint8_t MPCLI_SetReliabilityEnable(uint32_t argc, char** argv);
// Scoped setters: the host, array_id=ID or vlun_id=<ID|ID1,ID2,...|ID1-ID2>.
uint8_t MPCLI_SetLbController(uint32_t argc, char** argv);  // workingmode
uint8_t MPCLI_SetLbPolicy(uint32_t argc, char** argv);      // loadbalancemode
uint8_t MPCLI_SetLunTrespass(uint32_t argc, char** argv);
uint8_t MPCLI_SetHoldonTime(uint32_t argc, char** argv);    // iosuspensiontime
uint8_t MPCLI_SetLBIOThreshold(uint32_t argc, char** argv);
uint8_t MPCLI_SetIoRetryTimeOut(uint32_t argc, char** argv);  // max_io_retry_timeout
// Host-wide: `set ioretry=<n> ioretrydelay=<t>`, `set performance_record=
// {on|off} [duration=<hours>]`, `set stop_iosuspension <disk_id>`.
uint8_t MPCLI_SetIoRetryConf(uint32_t argc, char** argv);
uint8_t MPCLI_SetPerformanceRecord(uint32_t argc, char** argv);
uint8_t MPCLI_SetStopIoSuspension(uint32_t argc, char** argv);
