// Display of effective configuration records: the blocks that the detail
// views of arrays and VLUNs append.
#include <cstdio>

#include "cli/cli.h"
#include "cli/cli_objects.h"
#include "uil/uil_cfg.h"
#include "uil/uil_convert.h"

namespace {

// Label columns of a block: the first three lines of the array block and
// of the VLUN block are aligned differently; the last three share theirs.
struct ConfigLabelWidths {
    int workingMode;
    int lunTrespass;
    int lbPolicy;
};
constexpr int kTailWidth = 26;
constexpr ConfigLabelWidths kArrayWidths{15, 15, kTailWidth};
constexpr ConfigLabelWidths kVlunWidths{18, 18, 18};

void printConfigBlock(const UilFullCfg& config, const ConfigLabelWidths& widths)
{
    MPCLI_Print("%-*s: %s\n", widths.workingMode, "Working Mode", MPCLI_WorkingModeText(config.ucLbAcrossCtrl));
    MPCLI_Print("%-*s: %s\n", widths.lunTrespass, "LUN Trespass", UIL_ConvertBoolToStr(config.ucLunTrespass));
    MPCLI_Print("%-*s: %s\n", widths.lbPolicy, "LoadBalance Mode", UIL_LbPolicyDescription(config.szLbPolicy));
    MPCLI_Print("%-*s: %u\n", kTailWidth, "Loadbanlance io threshold", config.uiLbIoThreshold);
    MPCLI_Print("%-*s: %u\n", kTailWidth, "Io Suspension Time", config.uiIoSuspensionTime);
    MPCLI_Print("%-*s: %u\n", kTailWidth, "Max io retry timeout", config.uiIoTimeout);
}

}  // namespace

const char* MPCLI_WorkingModeText(uint8_t lbAcrossControllers)
{
    return lbAcrossControllers == 1 ? "load balancing between controllers" : "load balancing within controller";
}

void MPCLI_PrintConfigForArray(const UilFullCfg& config) { printConfigBlock(config, kArrayWidths); }

void MPCLI_PrintConfigForVlun(const UilFullCfg& config) { printConfigBlock(config, kVlunWidths); }
