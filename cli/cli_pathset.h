// Commands that act on physical paths: enabling and disabling one, forcing
// one back to normal, checking them, removing an obsolete one and clearing
// their statistics.
#pragma once

#include <cstdint>

#include "uil/uil_path.h"

uint8_t MPCLI_SetPhyPathState(uint32_t argc, char** argv);
uint8_t MPCLI_SetPhyPathNormal(uint32_t argc, char** argv);
uint8_t MPCLI_StartPhyPathCheck(uint32_t argc, char** argv);
uint8_t MPCLI_ClearObsoletePath(uint32_t argc, char** argv);
uint8_t MPCLI_ClearPathStatistic(uint32_t argc, char** argv);

// Whether the HBA behind a physical path (looked up by the path's initiator
// port) lets the path be enabled: 1 when it does; 0 after saying why (a
// disabled HBA, or a lookup that failed). Kept beside the enable checks for
// callers that must refuse on the HBA's account; `set pathstate` does not
// ask it, since the driver answers an enable over a disabled HBA itself.
uint8_t MPCLI_CheckHbaInfo(const UilPathInfo* path);
