// Commands that act on physical paths: enabling and disabling one, forcing
// one back to normal, checking them, removing an obsolete one and clearing
// their statistics.
#pragma once

#include <cstdint>

#include "cli/cli_command.h"
#include "uil/uil_path.h"

uint8_t MPCLI_SetPhyPathState(const MPCLI_Command& command);
uint8_t MPCLI_SetPhyPathNormal(const MPCLI_Command& command);
uint8_t MPCLI_StartPhyPathCheck(const MPCLI_Command& command);
uint8_t MPCLI_ClearObsoletePath(const MPCLI_Command& command);
uint8_t MPCLI_ClearPathStatistic(const MPCLI_Command& command);

// Whether the HBA behind a physical path (looked up by the path's initiator
// port) lets the path be enabled: 1 when it does; 0 after saying why (a
// disabled HBA, or a lookup that failed). Kept beside the enable checks for
// callers that must refuse on the HBA's account; `set pathstate` does not
// ask it, since the driver answers an enable over a disabled HBA itself.
uint8_t MPCLI_CheckHbaInfo(const UilPathInfo* path);
