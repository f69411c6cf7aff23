// The one number reader of the program. Every number that comes from a
// person, a file or another program (typed IDs and values, stored settings,
// serial numbers, exit codes of helper scripts) is read here: decimal digits
// only, no sign, no blanks, no overflow, and the whole value checked against
// the caller's range before it is narrowed. Nothing wraps.
#pragma once

#include <cstdint>
#include <string_view>

enum class MPI_Num : uint8_t {
    Ok,
    NotNumber,   // empty, a sign, a blank or any non-digit
    OutOfRange,  // all digits, but above 2^64-1 or outside [min, max]
};

// Reads `text` into `out` when it is a decimal number in [min, max].
// `out` is written only on success.
MPI_Num MPI_ParseU64(std::string_view text, uint64_t min, uint64_t max, uint64_t* out);
MPI_Num MPI_ParseU32(std::string_view text, uint32_t min, uint32_t max, uint32_t* out);

// The same for a caller that only needs a yes or no: full 32-bit range.
inline bool MPI_ToU32(std::string_view text, uint32_t* out)
{
    return MPI_ParseU32(text, 0, UINT32_MAX, out) == MPI_Num::Ok;
}
