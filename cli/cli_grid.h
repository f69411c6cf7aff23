// Tables at listing speed: the cells of a whole table kept in one text
// buffer (no string per cell), widths measured over every row first, then
// each line formatted once and handed to the output buffer in one call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cli/cli_print.h"

class MPCLI_Grid {
public:
    explicit MPCLI_Grid(size_t columns) : m_columns(columns) {}

    void reserve(size_t rows, size_t bytesPerRow)
    {
        m_text.reserve(rows * bytesPerRow);
        m_ends.reserve(rows * m_columns);
    }
    // Appends the next cell; a row is complete after `columns` cells.
    void add(std::string_view text)
    {
        m_text.append(text);
        m_ends.push_back(static_cast<uint32_t>(m_text.size()));
    }
    void addU32(uint32_t value);

    size_t columns() const { return m_columns; }
    size_t cellCount() const { return m_ends.size(); }
    size_t rows() const { return m_columns == 0 ? 0 : m_ends.size() / m_columns; }
    std::string_view cell(size_t row, size_t column) const
    {
        const size_t index = row * m_columns + column;
        const size_t begin = index == 0 ? 0 : m_ends[index - 1];
        return std::string_view(m_text).substr(begin, m_ends[index] - begin);
    }

private:
    size_t m_columns;
    std::string m_text;
    std::vector<uint32_t> m_ends;
};

// Grows the layout's widths over every complete row of the grid.
void MPCLI_MeasureGrid(MPCLI_TableLayout& layout, const MPCLI_Grid& grid);
// Appends `text` centred in a field of `field` characters (the left pad is
// (field - length) / 2, the odd blank goes right; a longer text is not cut).
void MPCLI_AppendCentred(std::string& line, std::string_view text, uint32_t field);
// Appends a dash line of the layout's frame length, with its newline.
void MPCLI_AppendDash(std::string& line, const MPCLI_TableLayout& layout);
// Appends the header line.
void MPCLI_AppendHeader(std::string& line, const MPCLI_TableLayout& layout);
// Appends one row of the grid as a table line (missing cells blank).
void MPCLI_AppendGridRow(std::string& line, const MPCLI_TableLayout& layout, const MPCLI_Grid& grid, size_t row);
// Writes dash, header, rows and dash with the widths as they are (the caller
// measured every cell already), one write per line, and flushes once.
void MPCLI_WriteMeasuredGrid(const MPCLI_TableLayout& layout, const MPCLI_Grid& grid);
// Measures, then writes dash, header, rows and dash, one write per line,
// and flushes standard output once at the end.
void MPCLI_WriteGrid(MPCLI_TableLayout& layout, const MPCLI_Grid& grid);
