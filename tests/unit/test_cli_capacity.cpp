// Capacity texts of the VLUN displays: whole KB, moved up a unit only while
// the value stays at least 1 with at most two decimals.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

#include "cli/cli_capacity.h"

namespace {

constexpr uint64_t KB = 1024;
constexpr uint64_t MB = KB * 1024;
constexpr uint64_t GB = MB * 1024;
constexpr uint64_t TB = GB * 1024;
constexpr uint64_t PB = TB * 1024;

struct CapacityCase {
    uint64_t bytes;
    const char* text;
};

constexpr std::array kCapacityCases = std::to_array<CapacityCase>({
    {0, "0.00KB"},
    {1023, "0.00KB"},                  // less than a KB
    {KB, "1.00KB"},
    {KB + 1023, "1.00KB"},             // bytes below a KB are dropped
    {1100 * KB, "1100.00KB"},          // 1100 / 1024 has more than two decimals
    {1023 * KB, "1023.00KB"},          // below 1 MB
    {1536 * KB, "1.50MB"},
    {MB, "1.00MB"},
    {GB, "1.00GB"},
    {GB + 512, "1.00GB"},
    {5 * GB / 4, "1.25GB"},
    {9 * GB / 8, "1152.00MB"},         // 1.125 GB: three decimals
    {10 * GB, "10.00GB"},
    {3 * TB, "3.00TB"},
    {TB / 2, "512.00GB"},
    {PB, "1.00PB"},
    {2048 * PB, "2048.00PB"},          // no unit above PB
});

TEST(CapacityText, FollowsTheUnitRule)
{
    for (const CapacityCase& c : kCapacityCases) {
        char text[64] = {};
        MPCLI_PrintCapacity(text, sizeof(text), c.bytes);
        EXPECT_STREQ(text, c.text) << c.bytes << " bytes";
    }
}

TEST(CapacityText, UpConversionNeedsOneWholeUnitAndTwoDecimals)
{
    struct Case {
        double value;
        bool up;
    };
    constexpr std::array kCases = std::to_array<Case>({
        {0, false}, {1023, false}, {1024, true}, {1536, true}, {1280, true}, {1100, false}, {1152, false},
        {3072, true},
    });
    for (const Case& c : kCases) {
        EXPECT_EQ(MPCLI_CanUpConvertCapacity(c.value), c.up) << c.value;
    }
    uint32_t unit = 1;
    double value = 1536;
    MPCLI_UpConvertCapacity(&unit, &value);
    EXPECT_EQ(unit, 2u);
    EXPECT_DOUBLE_EQ(value, 1.5);
}

}  // namespace
