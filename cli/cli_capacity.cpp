// The capacity text of a byte count, shared by the object displays.
#include "cli/cli_capacity.h"

#include <array>
#include <charconv>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "bounded/bounded.h"
#include "mpi/mpi_usr.h"

namespace {

constexpr std::array<const char*, 6> kCapacityUnits = {"B", "KB", "MB", "GB", "TB", "PB"};
constexpr uint32_t kUnitKb = 1;
constexpr uint32_t kLastUnit = kCapacityUnits.size() - 1;
constexpr double kUnitStep = 1024.0;
constexpr uint64_t kStep = 1024;
// Below this many KB the double computation is exact at every step (kb * 25,
// the numerator of value * 100, fits a double's 53-bit mantissa), so whole
// numbers give the very same text. Above it the double rounding decides
// (it may move up a unit where exact arithmetic would not), so the text is
// computed the double way to stay what it always was.
constexpr uint64_t kExactKbLimit = (uint64_t{1} << 53) / 25;

void printCapacityDouble(char* out, size_t outSize, uint64_t kb)
{
    uint32_t unit = kUnitKb;
    double value = static_cast<double>(kb);
    while (unit < kLastUnit && MPCLI_CanUpConvertCapacity(value)) {
        MPCLI_UpConvertCapacity(&unit, &value);
    }
    (void)snprintf_s(out, outSize, outSize - 1, "%.2f%s", value, kCapacityUnits[unit]);
}

}  // namespace

bool MPCLI_CanUpConvertCapacity(double value)
{
    const double next = value / kUnitStep;
    if (next < 1.0) {
        return false;
    }
    // At most two decimals, exactly: nothing left below the hundredths.
    const double hundredths = next * 100.0;
    const double below = hundredths - std::floor(hundredths);
    return static_cast<uint64_t>(below * 10000.0) == 0;
}

void MPCLI_UpConvertCapacity(uint32_t* unitIndex, double* value)
{
    CLI_ASSERT(unitIndex != nullptr);
    CLI_ASSERT(value != nullptr);
    *value /= kUnitStep;
    ++*unitIndex;
}

void MPCLI_PrintCapacity(char* out, size_t outSize, uint64_t bytes)
{
    CLI_ASSERT(out != nullptr);
    CLI_ASSERT(outSize > 0);
    const uint64_t kb = bytes / kStep;
    if (kb >= kExactKbLimit) {
        printCapacityDouble(out, outSize, kb);
        return;
    }
    // The next unit is taken when the value there is at least 1 and kb * 100
    // divides evenly by it (two decimals at most).
    uint32_t unit = kUnitKb;
    uint64_t divisor = 1;
    while (unit < kLastUnit) {
        const uint64_t next = divisor * kStep;
        if (kb < next || (kb * 100) % next != 0) {
            break;
        }
        divisor = next;
        ++unit;
    }
    char text[40];
    char* const end = text + sizeof(text);
    char* cursor = std::to_chars(text, end, kb / divisor).ptr;
    const uint64_t hundredths = (kb % divisor) * 100 / divisor;
    *cursor++ = '.';
    *cursor++ = static_cast<char>('0' + hundredths / 10);
    *cursor++ = static_cast<char>('0' + hundredths % 10);
    for (const char* u = kCapacityUnits[unit]; *u != '\0'; ++u) {
        *cursor++ = *u;
    }
    const size_t length = std::min(static_cast<size_t>(cursor - text), outSize - 1);
    std::memcpy(out, text, length);
    out[length] = '\0';
}
