// Handlers of the configuration display and removal (`show cvconfig`,
// `clear cvconfig`) and of the actions on arrays, VLUNs and controllers
// (`start rebalancelun`, `start`/`stop iosuspension`, `set tpgstate`,
// `set remote_controller`).
#pragma once

#include <cstdint>

struct MPCLI_Word;

// An object named by "array_id=ID" or "vlun_id=ID" (one ID in its range).
struct MPCLI_ObjectId {
    bool isArray;
    uint32_t id;
};
// False (nothing printed) for any other key, a missing value, a list or an
// ID out of range.
bool MPCLI_GetObjectIdentify(const MPCLI_Word& word, MPCLI_ObjectId* out);

uint8_t MPCLI_ShowCvConfig(const MPCLI_Command& command);
uint8_t MPCLI_ShowArrayCvConfig(uint32_t arrayId);
uint8_t MPCLI_ShowVlunCvConfig(uint32_t vlunId);
uint8_t MPCLI_ClearCvconfig(const MPCLI_Command& command);
uint8_t MPCLI_ClearArrayCvconfig(const MPCLI_Command& command, uint32_t arrayId);
uint8_t MPCLI_ClearVlunCvconfig(const MPCLI_Command& command, uint32_t vlunId);

uint8_t MPCLI_StartRebalancelun(const MPCLI_Command& command);
uint8_t MPCLI_StartIOSus(const MPCLI_Command& command);
uint8_t MPCLI_StopIOSus(const MPCLI_Command& command);

uint8_t MPCLI_SetTpgState(const MPCLI_Command& command);
uint8_t MPCLI_SetRemoteController(const MPCLI_Command& command);

// The TPG ID of an engine-and-letter name: "0A" is 0, "1B" is 3; 255 for
// anything else than a digit followed by 'A' or 'B'.
uint32_t MPCLI_TpgNameStr2TpgId(const char* name);
