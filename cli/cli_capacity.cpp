// The capacity text of a byte count, shared by the object displays.
#include "cli/cli_capacity.h"

#include <array>
#include <cmath>

#include "bounded/bounded.h"
#include "mpi/mpi_usr.h"

namespace {

constexpr std::array<const char*, 6> kCapacityUnits = {"B", "KB", "MB", "GB", "TB", "PB"};
constexpr uint32_t kUnitKb = 1;
constexpr uint32_t kLastUnit = kCapacityUnits.size() - 1;
constexpr double kUnitStep = 1024.0;

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
    uint32_t unit = kUnitKb;
    double value = static_cast<double>(bytes / 1024);
    while (unit < kLastUnit && MPCLI_CanUpConvertCapacity(value)) {
        MPCLI_UpConvertCapacity(&unit, &value);
    }
    (void)snprintf_s(out, outSize, outSize - 1, "%.2f%s", value, kCapacityUnits[unit]);
}
