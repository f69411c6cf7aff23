// Conversion tables shared by the object layer, the operation log and the
// configuration texts. Each row starts with its keyword; the Chinese texts
// are GB2312 bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct UilLbConvert {
    const char* keyword;  // as typed: "round-robin", ...
    const char* english;
    const char* chinese;
};
extern const std::array<UilLbConvert, 3> g_astUILLbConvert;

// Suffix added to an operation description for the object it applies to.
struct UilOpenLb {
    uint32_t objectType;  // MPI_OBJ_COMMON .. MPI_OBJ_PATH
    const char* english;  // "" for the whole host, else "for array id %u", ...
    const char* chinese;
};
extern const std::array<UilOpenLb, 4> g_astUILOpenLB;

struct UilControllerConvert {
    uint32_t number;
    const char* text;
};
// Plain naming: 0 -> "0" ... 15 -> "15".
extern const std::array<UilControllerConvert, 16> g_astUILControllerConvert;
// Engine and letter naming: number = engine * 2 + letter, 0 -> "0A" ... 15 -> "7B".
extern const std::array<UilControllerConvert, 16> g_astUILPairControllerConvert;
// Controller names of engines 0..15: [engine][0] = "<engine>A", [engine][1] = "<engine>B".
extern const char* const UIL_gacControllerId[16][2];

// Physical-path I/O states as shown by the performance code: decimal code,
// English word, Chinese word.
struct UilPhyPathIoStateConvert {
    const char* code;
    const char* english;
    const char* chinese;
};
extern const std::array<UilPhyPathIoStateConvert, 6> g_astUILPhyPathIOStateConvert;

// "on" -> 1, "off" -> 0 (exact words); anything else is refused with
// MPI_RET_INVALID_PARAM and leaves *value alone.
uint32_t UIL_ConvertStrToBool(const char* text, uint8_t* value);
// 0 -> "off", anything else -> "on".
const char* UIL_ConvertBoolToStr(uint32_t value);
// The English description of a load-balance keyword ("round-robin" ->
// "round robin algorithm"); a keyword of no row is returned as it is.
const char* UIL_LbPolicyDescription(const char* keyword);
