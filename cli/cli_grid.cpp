#include "cli/cli_grid.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "cli/cli_out.h"

namespace {

constexpr uint32_t kCellPad = 2;  // a cell is its column width plus 2

void emit(std::string& line)
{
    MPCLI_OutWrite(line.data(), line.size());
    line.clear();
}

}  // namespace

void MPCLI_Grid::addU32(uint32_t value)
{
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    add(std::string_view(digits, static_cast<size_t>(end - digits)));
}

void MPCLI_MeasureGrid(MPCLI_TableLayout& layout, const MPCLI_Grid& grid)
{
    const size_t columns = std::min(grid.columns(), layout.columnCount());
    for (size_t row = 0; row < grid.rows(); ++row) {
        for (size_t column = 0; column < columns; ++column) {
            layout.measureCell(column, grid.cell(row, column).size());
        }
    }
}

void MPCLI_AppendCentred(std::string& line, std::string_view text, uint32_t field)
{
    const size_t spare = field > text.size() ? field - text.size() : 0;
    const size_t left = spare / 2;
    line.append(left, ' ');
    line.append(text);
    line.append(spare - left, ' ');
}

void MPCLI_AppendDash(std::string& line, const MPCLI_TableLayout& layout)
{
    line.append(layout.dashLength(), '-');
    line.push_back('\n');
}

void MPCLI_AppendHeader(std::string& line, const MPCLI_TableLayout& layout)
{
    for (size_t column = 0; column < layout.columnCount(); ++column) {
        MPCLI_AppendCentred(line, layout.header(column), layout.width(column) + kCellPad);
    }
    line.push_back('\n');
}

void MPCLI_AppendGridRow(std::string& line, const MPCLI_TableLayout& layout, const MPCLI_Grid& grid, size_t row)
{
    // The row is laid out in one piece, as MPCLI_AppendCentred would per
    // cell: blanks over its whole width first, then each text copied to its
    // place. A listing of 16384 rows of nine cells spent more on appending
    // pads than on anything else it does.
    auto cellText = [&](size_t column) {
        return column < grid.columns() ? grid.cell(row, column) : std::string_view();
    };
    size_t total = 1;  // the newline
    for (size_t column = 0; column < layout.columnCount(); ++column) {
        total += std::max<size_t>(layout.width(column) + kCellPad, cellText(column).size());
    }
    size_t at = line.size();
    line.resize(at + total, ' ');
    char* out = line.data();
    for (size_t column = 0; column < layout.columnCount(); ++column) {
        const std::string_view text = cellText(column);
        const size_t field = layout.width(column) + kCellPad;
        const size_t spare = field > text.size() ? field - text.size() : 0;
        std::memcpy(out + at + spare / 2, text.data(), text.size());
        at += spare + text.size();
    }
    out[at] = '\n';
}

void MPCLI_WriteGrid(MPCLI_TableLayout& layout, const MPCLI_Grid& grid)
{
    MPCLI_MeasureGrid(layout, grid);
    MPCLI_WriteMeasuredGrid(layout, grid);
}

void MPCLI_WriteMeasuredGrid(const MPCLI_TableLayout& layout, const MPCLI_Grid& grid)
{
    std::string line;
    line.reserve(layout.dashLength() + 1);
    MPCLI_AppendDash(line, layout);
    emit(line);
    MPCLI_AppendHeader(line, layout);
    emit(line);
    for (size_t row = 0; row < grid.rows(); ++row) {
        MPCLI_AppendGridRow(line, layout, grid, row);
        emit(line);
    }
    MPCLI_AppendDash(line, layout);
    emit(line);
    MPCLI_OutFlush();
}
