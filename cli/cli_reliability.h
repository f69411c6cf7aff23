// The I/O reliability commands: error, queue and latency counters per disk
// and per path, their clearing, and the alarm and path reliability switches.
#pragma once

#include <cstdint>

#include "cli/cli_command.h"

uint8_t MPCLI_ShowIoCount(const MPCLI_Command& command);
uint8_t MPCLI_ShowIoLatency(const MPCLI_Command& command);
uint8_t MPCLI_ShowAlarmEnable(const MPCLI_Command& command);
uint8_t MPCLI_ShowReliabilityEnable(const MPCLI_Command& command);
uint8_t MPCLI_ClearIoCount(const MPCLI_Command& command);
