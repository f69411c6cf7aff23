#include "mpi/mpi_number.h"

MPI_Num MPI_ParseU64(std::string_view text, uint64_t min, uint64_t max, uint64_t* out)
{
    if (text.empty()) {
        return MPI_Num::NotNumber;
    }
    uint64_t value = 0;
    bool overflow = false;
    for (char c : text) {
        if (c < '0' || c > '9') {
            return MPI_Num::NotNumber;
        }
        const auto digit = static_cast<uint64_t>(c - '0');
        // Keep scanning after an overflow: a later non-digit still makes the
        // text "not a number", which is the more useful answer.
        if (value > (UINT64_MAX - digit) / 10) {
            overflow = true;
        } else {
            value = value * 10 + digit;
        }
    }
    if (overflow || value < min || value > max) {
        return MPI_Num::OutOfRange;
    }
    if (out != nullptr) {
        *out = value;
    }
    return MPI_Num::Ok;
}

MPI_Num MPI_ParseU32(std::string_view text, uint32_t min, uint32_t max, uint32_t* out)
{
    uint64_t wide = 0;
    const MPI_Num result = MPI_ParseU64(text, min, max, &wide);
    if (result == MPI_Num::Ok && out != nullptr) {
        *out = static_cast<uint32_t>(wide);
    }
    return result;
}
