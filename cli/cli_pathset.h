// Commands that act on physical paths: enabling and disabling one, forcing
// one back to normal, checking them, removing an obsolete one and clearing
// their statistics.
#pragma once

#include <cstdint>

uint8_t MPCLI_SetPhyPathState(uint32_t argc, char** argv);
uint8_t MPCLI_SetPhyPathNormal(uint32_t argc, char** argv);
uint8_t MPCLI_StartPhyPathCheck(uint32_t argc, char** argv);
uint8_t MPCLI_ClearObsoletePath(uint32_t argc, char** argv);
uint8_t MPCLI_ClearPathStatistic(uint32_t argc, char** argv);
