// The storage-object commands of the shell (arrays, VLUNs, paths) and the
// display pieces they share: controller names and the
// one-line form of a disk's path.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cli/cli_command.h"
#include "uil/uil_objects.h"

// Handlers of `show array`, `show vlun` and `show path`.
uint8_t MPCLI_ShowArray(const MPCLI_Command& command);
uint8_t MPCLI_ShowVLun(const MPCLI_Command& command);
uint8_t MPCLI_ShowPath(const MPCLI_Command& command);

// The name shown for a controller (see UIL_strFormatControllerId): the TPG's
// own name, else "0A"-style or plain numbering, "-" when it cannot be named.
// `out` is cleared first; 17 bytes hold every name.
uint32_t MPCLI_strFormatControllerId(uint32_t arrayId, uint32_t controllerId, uint32_t capability, char* out,
                                     size_t outSize);

// One path of a disk's detail, "Path %u [h:c:t:l] (dev)" then "  : state".
// `indent` blanks open the line (the aggregated members indent theirs).
void MPCLI_PrintDiskPath(const UilPathInfo& path, uint32_t indent);

struct UilFullCfg;
// Text of the working-mode byte of a configuration record.
const char* MPCLI_WorkingModeText(uint8_t lbAcrossControllers);
// The configuration blocks that "verbose" adds to an array's and to a
// VLUN's detail.
void MPCLI_PrintConfigForArray(const UilFullCfg& config);
void MPCLI_PrintConfigForVlun(const UilFullCfg& config);

// show iostat (cli_iostat.cpp).
uint8_t MPCLI_ShowIostat(const MPCLI_Command& command);
