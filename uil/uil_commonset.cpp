#include "uil/uil_commonset.h"

#include "mpi/mpi_usr.h"
#include "uia/uia.h"
#include "uil/uil_wire_commonset.h"

namespace w = uil_wire_commonset;

UiaPayload UIL_CommonSetPayload(uint32_t subCommand)
{
    UiaPayload payload(w::kSize);
    payload.setU32(w::kSubCommand, subCommand);
    return payload;
}

uint32_t UIL_CommonSetSend(UiaPayload& payload, uint32_t* resultWord)
{
    UIL_ASSERT(payload.size() == w::kSize);
    const uint32_t sub = payload.u32(w::kSubCommand);
    const uint32_t frame = UIA_Send(uia_req::CommonSet, payload);
    const uint32_t word = payload.u32(w::kResult);
    if (resultWord != nullptr) {
        *resultWord = word;
    }
    if (frame == MPI_RET_SUCCESS) {
        return MPI_RET_SUCCESS;
    }
    // A refusal names its reason in the result word; a word the driver left
    // at zero (or the success code) tells nothing more than the frame did.
    const uint32_t code = (word != 0 && word != MPI_RET_SUCCESS) ? word : frame;
    UIL_ERR("Common set sub-command %u failed, ret {%u}", sub, code);
    return code;
}
