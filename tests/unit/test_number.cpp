// The number reader every input goes through: what is a number, where the
// range ends, and that nothing wraps.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "mpi/mpi_number.h"
#include "mpi/mpi_scope.h"

namespace {

struct Case {
    const char* text;
    uint64_t min;
    uint64_t max;
    MPI_Num want;
    uint64_t value;
};

TEST(Number, ReadsOnlyPlainDecimalsInRange)
{
    const Case cases[] = {
        {"0", 0, 10, MPI_Num::Ok, 0},
        {"10", 0, 10, MPI_Num::Ok, 10},
        {"007", 0, 10, MPI_Num::Ok, 7},
        {"11", 0, 10, MPI_Num::OutOfRange, 0},
        {"59", 60, 2592000, MPI_Num::OutOfRange, 0},
        {"", 0, 10, MPI_Num::NotNumber, 0},
        {"+1", 0, 10, MPI_Num::NotNumber, 0},
        {"-1", 0, 10, MPI_Num::NotNumber, 0},
        {" 1", 0, 10, MPI_Num::NotNumber, 0},
        {"1 ", 0, 10, MPI_Num::NotNumber, 0},
        {"1a", 0, 10, MPI_Num::NotNumber, 0},
        {"0x1", 0, 10, MPI_Num::NotNumber, 0},
        {"18446744073709551615", 0, UINT64_MAX, MPI_Num::Ok, UINT64_MAX},
        {"18446744073709551616", 0, UINT64_MAX, MPI_Num::OutOfRange, 0},
        {"99999999999999999999999x", 0, UINT64_MAX, MPI_Num::NotNumber, 0},
    };
    for (const Case& c : cases) {
        uint64_t value = 12345;
        EXPECT_EQ(MPI_ParseU64(c.text, c.min, c.max, &value), c.want) << c.text;
        EXPECT_EQ(value, c.want == MPI_Num::Ok ? c.value : 12345u) << c.text;
    }
}

TEST(Number, ThirtyTwoBitValuesNeverWrap)
{
    const Case cases[] = {
        {"4294967295", 0, UINT32_MAX, MPI_Num::Ok, UINT32_MAX},
        {"4294967296", 0, UINT32_MAX, MPI_Num::OutOfRange, 0},
        {"4294967896", 60, 2592000, MPI_Num::OutOfRange, 0},
        {"4294967316", 0, 120000, MPI_Num::OutOfRange, 0},
    };
    for (const Case& c : cases) {
        uint32_t value = 7;
        EXPECT_EQ(MPI_ParseU32(c.text, static_cast<uint32_t>(c.min), static_cast<uint32_t>(c.max), &value), c.want)
            << c.text;
        EXPECT_EQ(value, c.want == MPI_Num::Ok ? c.value : 7u) << c.text;
    }
    uint32_t value = 0;
    EXPECT_FALSE(MPI_ToU32("4294967296", &value));
    EXPECT_TRUE(MPI_ToU32("4294967295", &value));
}

int g_ended = 0;
void endCounter(int* counter)
{
    ++*counter;
    ++g_ended;
}

TEST(Scope, EndRunsOnceAndOnlyWhenOwned)
{
    int counter = 0;
    g_ended = 0;
    {
        MPI_Ended<endCounter> unowned;
    }
    EXPECT_EQ(g_ended, 0);
    {
        MPI_Ended<endCounter> owned(&counter);
        owned.reset();
    }
    EXPECT_EQ(counter, 1);
    bool ran = false;
    {
        MPI_ScopeExit done([&] { ran = true; });
    }
    EXPECT_TRUE(ran);
    ran = false;
    {
        MPI_ScopeExit done([&] { ran = true; });
        done.dismiss();
    }
    EXPECT_FALSE(ran);
}

}  // namespace
