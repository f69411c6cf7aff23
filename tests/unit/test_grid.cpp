// The table writer: widths over every row, centring with the odd blank on
// the right, the frame, and one table written in one piece.
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "cli/cli_grid.h"
#include "cli/cli_out.h"

namespace {

std::string written(MPCLI_TableLayout& layout, const MPCLI_Grid& grid)
{
    char name[] = "/tmp/cvadm-grid-XXXXXX";
    const int fd = mkstemp(name);
    EXPECT_GE(fd, 0);
    unlink(name);
    MPCLI_OutReset(fd);
    MPCLI_WriteGrid(layout, grid);
    MPCLI_OutReset(STDOUT_FILENO);
    std::string text(1 << 16, '\0');
    const ssize_t n = pread(fd, text.data(), text.size(), 0);
    close(fd);
    text.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return text;
}

constexpr std::array<MPCLI_Column, 3> kColumns = {{
    {"ID", 4},
    {"Name", 6},
    {"St", 2, true},
}};

TEST(Grid, CentresCellsInWidthPlusTwoWithTheOddBlankRight)
{
    MPCLI_TableLayout layout(kColumns);
    MPCLI_Grid grid(3);
    grid.addU32(7);
    grid.add("abc");
    grid.add("ok");
    grid.addU32(12345);
    grid.add("a-much-longer-name");
    grid.add("fault");  // wider than its fixed column: printed whole
    const std::string expected =
        "-------------------------------\n"
        "  ID           Name         St \n"
        "   7           abc          ok \n"
        " 12345  a-much-longer-name fault\n"
        "-------------------------------\n";
    EXPECT_EQ(written(layout, grid), expected);
}

TEST(Grid, WidthsOnlyGrowAcrossTablesAndFrameTakesTheExtra)
{
    MPCLI_TableLayout layout(kColumns, 3);
    MPCLI_Grid wide(3);
    wide.add("123456");
    wide.add("x");
    wide.add("y");
    (void)written(layout, wide);
    MPCLI_Grid narrow(3);
    narrow.add("1");
    narrow.add("");
    narrow.add("z");
    const std::string expected =
        "-----------------------\n"
        "   ID     Name   St \n"
        "   1             z  \n"
        "-----------------------\n";
    EXPECT_EQ(written(layout, narrow), expected);
}

TEST(Grid, AnEmptyGridIsAFramedHeader)
{
    MPCLI_TableLayout layout(kColumns);
    MPCLI_Grid grid(3);
    EXPECT_EQ(grid.rows(), 0u);
    EXPECT_EQ(written(layout, grid),
              "------------------\n"
              "  ID    Name   St \n"
              "------------------\n");
}

}  // namespace
