// The I/O reliability commands: error, queue and latency counters per disk
// and per path, their clearing, and the alarm and path reliability switches.
#pragma once

#include <cstdint>

uint8_t MPCLI_ShowIoCount(uint32_t argc, char** argv);
uint8_t MPCLI_ShowIoLatency(uint32_t argc, char** argv);
uint8_t MPCLI_ShowAlarmEnable(uint32_t argc, char** argv);
uint8_t MPCLI_ShowReliabilityEnable(uint32_t argc, char** argv);
uint8_t MPCLI_ClearIoCount(uint32_t argc, char** argv);
