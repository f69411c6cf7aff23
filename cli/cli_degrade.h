// The path degradation settings and the I/O latency threshold: one `set`
// handler per keyword, and `show io_latency_threshold`.
#pragma once

#include <cstdint>

uint8_t MPCLI_SetTimeOutDegradeTime(uint32_t argc, char** argv);
uint8_t MPCLI_SetTimeOutDegradeThreshold(uint32_t argc, char** argv);
uint8_t MPCLI_SetTimeOutDegradeRecovery(uint32_t argc, char** argv);
uint8_t MPCLI_SetInterErrorDegradeTime(uint32_t argc, char** argv);
uint8_t MPCLI_SetInterErrorDegradeMinIOCount(uint32_t argc, char** argv);
uint8_t MPCLI_SetInterErrorDegradeThreshold(uint32_t argc, char** argv);
uint8_t MPCLI_SetInterErrorDegradeRecovery(uint32_t argc, char** argv);
uint8_t MPCLI_SetInterFaultDegradeTime(uint32_t argc, char** argv);
uint8_t MPCLI_SetInterFaultDegradeThreshold(uint32_t argc, char** argv);
uint8_t MPCLI_SetInterFaultDegradeRecovery(uint32_t argc, char** argv);
uint8_t MPCLI_SetHighLatencyDegradeTime(uint32_t argc, char** argv);
uint8_t MPCLI_SetHighLatencyDegradeThreshold(uint32_t argc, char** argv);
uint8_t MPCLI_SetHighLatencyDegradeRecovery(uint32_t argc, char** argv);
uint8_t MPCLI_SetSensitiveDelayedThreshold(uint32_t argc, char** argv);
uint8_t MPCLI_SetSensitiveDelayedRecovery(uint32_t argc, char** argv);
uint8_t MPCLI_SetIOLatencyThreshold(uint32_t argc, char** argv);

uint8_t MPCLI_ShowIoLatencyThreshold(uint32_t argc, char** argv);
