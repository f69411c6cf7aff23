// The common set request: a sub-command number, its fields, and the
// driver's answer. Every sender of a sub-command builds its payload with
// UIL_CommonSetPayload, fills its own fields and sends it here, so the
// answer is read the same way everywhere.
#pragma once

#include <cstdint>

#include "uia/uia_wire.h"

// A zeroed payload of the request's size with `subCommand` in place.
UiaPayload UIL_CommonSetPayload(uint32_t subCommand);

// Sends the payload. Returns 1024 when the driver carried the sub-command
// out; otherwise the driver's own code from the result word when it gave
// one (1029, 1047, 1059, ...), else the channel's failure code. `resultWord`
// (optional) receives the result word as the driver left it.
uint32_t UIL_CommonSetSend(UiaPayload& payload, uint32_t* resultWord);
