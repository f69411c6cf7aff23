// The common set request (nr 0x32): one 608-byte payload whose first word
// names a sub-command. The driver answers a refused sub-command with its
// code twice, as the frame's result and as the payload's result word at 4;
// a sub-command carried out reads 1024 in the frame and 0 in the word.
// A sub-command the model does not know is refused with 1026.
#include "model_arrays.h"
#include "model_pathset.h"

#include <array>

namespace cvsim {

namespace {

constexpr std::array kSubCommands = {
    SimSubCommandRow{24, HandleSubPhyPathIoState},
    SimSubCommandRow{25, HandleSubPathIoState},
    SimSubCommandRow{26, HandleSubPhyPathState},
    SimSubCommandRow{27, HandleSubPhyPathError},
    SimSubCommandRow{28, HandleSubPhyPathCheck},
    SimSubCommandRow{42, HandleSubTpgState},
    SimSubCommandRow{43, HandleSubTrespassDelay},
    SimSubCommandRow{44, HandleSubBusyDelay},
    SimSubCommandRow{45, HandleSubSendIoDelay},
    SimSubCommandRow{50, HandleSubClearObsolete},
    SimSubCommandRow{51, HandleSubArrayCapability},
    SimSubCommandRow{52, HandleSubPathIoLag},
    SimSubCommandRow{57, HandleSubPotentialSwitch},
};

}  // namespace

uint32_t HandleCommonSet(SimContext& ctx, SimPayload& p)
{
    const uint32_t sub = p.u32(kCsSubCommand);
    uint32_t result = kResultInvalid;
    for (const SimSubCommandRow& row : kSubCommands) {
        if (row.sub == sub) {
            result = row.handler(ctx, p);
            break;
        }
    }
    p.setU32(kCsResult, result == kResultSuccess ? 0 : result);
    return result;
}

}  // namespace cvsim
