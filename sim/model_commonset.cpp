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

// Supported-array rule notifications: the vendor at 16 (9 bytes), the
// product at 32 (17) and, for an added rule, the driver at 64 (65), each
// NUL-terminated inside its field. The model keeps no rule list: the
// request log is what tests read; it refuses a field that is empty or not
// terminated, which is how a layout slip on the program's side shows.
constexpr size_t kVendorAt = 16;
constexpr size_t kVendorField = 9;
constexpr size_t kProductAt = 32;
constexpr size_t kProductField = 17;
constexpr size_t kDriverAt = 64;
constexpr size_t kDriverField = 65;

bool TextFieldSet(const SimPayload& p, size_t off, size_t len)
{
    if (p.u8(off) == 0) {
        return false;
    }
    for (size_t i = 1; i < len; ++i) {
        if (p.u8(off + i) == 0) {
            return true;
        }
    }
    return false;
}

uint32_t HandleSubAddVendor(SimContext& /*ctx*/, SimPayload& p)
{
    return TextFieldSet(p, kVendorAt, kVendorField) && TextFieldSet(p, kProductAt, kProductField) &&
                   TextFieldSet(p, kDriverAt, kDriverField)
               ? kResultSuccess
               : kResultInvalid;
}

uint32_t HandleSubDelVendor(SimContext& /*ctx*/, SimPayload& p)
{
    return TextFieldSet(p, kVendorAt, kVendorField) && TextFieldSet(p, kProductAt, kProductField) ? kResultSuccess
                                                                                                  : kResultInvalid;
}

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
    SimSubCommandRow{58, HandleSubAddVendor},
    SimSubCommandRow{59, HandleSubDelVendor},
};

}  // namespace

void WriteCommonSetResult(SimPayload& p, uint32_t result)
{
    p.setU32(kCsResult, result == kResultSuccess ? 0 : result);
}

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
    WriteCommonSetResult(p, result);
    return result;
}

}  // namespace cvsim
