// Capacity texts of the VLUN displays: whole KB, moved up a unit only while
// the value stays at least 1 with at most two decimals.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <random>
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
    // Around each power of 1024: one KB off never moves up a unit.
    {MB - 1, "1023.00KB"},
    {MB + KB, "1025.00KB"},
    {GB - KB, "1048575.00KB"},
    {GB + KB, "1048577.00KB"},
    {TB - KB, "1073741823.00KB"},
    {TB + KB, "1073741825.00KB"},
    {PB - KB, "1099511627775.00KB"},
    {PB + KB, "1099511627777.00KB"},
    {1024 * PB - KB, "1125899906842623.00KB"},
    {1024 * PB, "1024.00PB"},
    // Stops at each unit with two decimals.
    {1280 * MB + 256 * KB, "1280.25MB"},
    {5 * TB / 4, "1.25TB"},
    {7 * TB / 4 + 256 * GB, "2.00TB"},
    {7 * PB / 4, "1.75PB"},
    // Where whole numbers end being exact in a double: the text stays the
    // one the double computation gave, rounding included.
    {((uint64_t{1} << 53) / 25 - 1) * KB, "360287970189638.00KB"},
    {((uint64_t{1} << 53) / 25) * KB, "360287970189639.00KB"},
    {414340338055383 * KB, "404629236382.21MB"},
    {((uint64_t{1} << 53) - 1) * KB, "9007199254740991.00KB"},
    {(uint64_t{1} << 53) * KB, "8192.00PB"},
    {UINT64_MAX / KB * KB, "16384.00PB"},
    {UINT64_MAX, "16384.00PB"},
});

TEST(CapacityText, FollowsTheUnitRule)
{
    for (const CapacityCase& c : kCapacityCases) {
        char text[64] = {};
        MPCLI_PrintCapacity(text, sizeof(text), c.bytes);
        EXPECT_STREQ(text, c.text) << c.bytes << " bytes";
    }
}

// The text has always come from double arithmetic; the whole-number path must
// agree with it everywhere, so compare against that computation directly.
std::string doubleText(uint64_t bytes)
{
    constexpr std::array<const char*, 6> kUnits = {"B", "KB", "MB", "GB", "TB", "PB"};
    uint32_t unit = 1;
    double value = static_cast<double>(bytes / KB);
    while (unit < 5 && MPCLI_CanUpConvertCapacity(value)) {
        MPCLI_UpConvertCapacity(&unit, &value);
    }
    char text[64];
    (void)std::snprintf(text, sizeof(text), "%.2f%s", value, kUnits[unit]);
    return text;
}

TEST(CapacityText, SameTextAsTheDoubleComputation)
{
    std::mt19937_64 random(9);
    for (uint32_t bits = 1; bits <= 64; ++bits) {
        for (uint32_t i = 0; i < 2000; ++i) {
            uint64_t bytes = bits == 64 ? random() : random() & ((uint64_t{1} << bits) - 1);
            if (i % 2 == 0) {
                bytes &= ~((uint64_t{1} << (random() % bits)) - 1);  // many trailing zeros: deep units
            }
            char text[64] = {};
            MPCLI_PrintCapacity(text, sizeof(text), bytes);
            ASSERT_EQ(text, doubleText(bytes)) << bytes << " bytes";
        }
    }
}

TEST(CapacityText, CutToTheBuffer)
{
    char text[5] = {'x', 'x', 'x', 'x', 'x'};
    MPCLI_PrintCapacity(text, sizeof(text), 1536 * KB);
    EXPECT_STREQ(text, "1.50");
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
