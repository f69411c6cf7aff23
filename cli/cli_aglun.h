// Aggregated VLUNs in the shell: the detail of a dual-site or migration
// VLUN in `show vlun id=`, `set dualsite` and `start migration`; and the
// pieces of the VLUN detail that both displays share.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cli/cli_command.h"
#include "uil/uil_objects.h"

class UilControllerNamer;

// Handlers of `set dualsite ...` and `start migration ...`.
uint8_t MPCLI_SetDualsite(const MPCLI_Command& command);
uint8_t MPCLI_StartMigration(const MPCLI_Command& command);

// The detail blocks of `show vlun id=`; false when the VLUN could not be
// shown whole (the reason has been printed).
bool MPCLI_ShowDSLunByVLunInfo(const VLunInfo& vlun, bool verbose);
bool MPCLI_ShowMigrateLunByVLunInfo(const VLunInfo& vlun);
// The line for a VLUN that is not of the type the command asked for;
// `wanted` is the type keyword typed ("dualsite", "migration", "pe").
void MPCLI_PrintTypeMissMatch(uint32_t vlunId, const char* wanted);

// Shared with the ordinary VLUN detail (cli_vlun.cpp).
inline constexpr uint32_t MPCLI_DETAIL_WIDTH = 55;
// "=" frame around "VLUN#<id> Information".
void MPCLI_PrintVLunTitle(uint32_t vlunId);
// The owning and working controller names of a disk ("--" for both when the
// array hides its controllers); each buffer holds UIL_CONTROLLER_NAME_SIZE.
void MPCLI_DiskControllerNames(const DiskInfo& disk, UilControllerNamer& namer, char* owning, char* working);
// "Controller <name>" and its paths for every controller of the disk that
// has paths, each line opened by `indent` blanks.
void MPCLI_PrintDiskControllers(const DiskInfo& disk, UilControllerNamer& namer, uint32_t indent);
// "Manual IO Suspension  : ..." of the VLUN, in seconds.
void MPCLI_PrintVLunSuspension(const VLunInfo& vlun);
struct UilFullCfg;
// The configuration in force for a VLUN (its WWN and its array's SN); a
// failure is said ("Get config information failed.") and gives false.
bool MPCLI_ReadVLunConfig(uint32_t vlunId, const char* wwn, const char* arraySn, UilFullCfg* config);
