// Argument tokens of the object commands: key=value splitting, number
// checks, ID lists and the ID ranges of each object type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

struct MPCLI_Word;

// Object types whose IDs are range-checked.
enum MPCLI_IdType : uint32_t {
    MPCLI_ID_ARRAY = 0,
    MPCLI_ID_VLUN = 1,  // VLUNs and disks share one range
    MPCLI_ID_PATH = 2,
    MPCLI_ID_TPG = 3,
};

// A key=ID1,ID2,... list never yields more IDs than this, whatever the
// caller's maximum; callers pass an array of this many IDs.
inline constexpr uint32_t MPCLI_MAX_IDS = 8;

// Copies one side of a key=value token into `out` (capacity `outSize`):
// index 0 is the text before the first "=", index 1 the text after it (which
// must be non-empty and hold no second "="). Returns 1 on success, else 0.
// An absent token prints the usage text; every other failure is only traced.
uint32_t MPCLI_GetStringFromEqual(const char* token, char* out, uint32_t index, size_t outSize);

// 1 when `text` is an unsigned decimal number: 1 to 9 characters, no "-"
// anywhere, leading blanks and one "+" allowed, then only digits. A lone "+"
// (value 0) counts as a number. Else 0.
uint32_t MPCLI_IsNum(const char* text);

// The value of a text that MPCLI_IsNum accepts (without its trace lines):
// true and the value, or false.
bool MPCLI_ReadNum(std::string_view text, uint32_t* value);

// 1 when `value` lies in the ID range of `type` (0..16383 for arrays, VLUNs,
// disks and paths; 0..15 for port groups; any other type passes), else 0
// with a trace line. Prints nothing.
uint32_t MPCLI_ValueCheckByType(int32_t value, uint32_t type);

// Parses "key=ID1,ID2,..." whose key must equal `key`, into `ids` (room for
// min(max, MPCLI_MAX_IDS) entries); every ID must be a number in the range of
// `type`. Returns 1 and writes the count (0 for an empty list), or prints
// the error and returns 0.
uint32_t MPCLI_GetEqualDigitalValues(const char* token, const char* key, uint32_t* ids, uint32_t max,
                                     uint32_t* count, uint32_t type);

// The same for a word already split: the whole list reading and its errors.
uint32_t MPCLI_ReadIdList(const MPCLI_Word& word, std::string_view key, uint32_t* ids, uint32_t max,
                          uint32_t* count, uint32_t type);

// Splits `text` at any of the characters of `delimiter` into at most `max`
// numbers. Returns 1 and the count, or 0 (traced, nothing printed).
uint32_t MPCLI_StringSplit(const char* text, const char* delimiter, uint32_t* ids, uint32_t max, uint32_t* count);

// Reads a VLUN selection "ID", "ID1,ID2,..." or the ascending range
// "ID1-ID2" into `ids`. Returns MPI_RET_SUCCESS with the count, or
// MPI_RET_FAIL. No range check by object type is made here.
uint32_t MPCLI_ParseVlunIds(const char* text, uint32_t* ids, uint32_t max, uint32_t* count);
