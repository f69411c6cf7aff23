// Console display helpers: trimming, centred cells, dash lines and the
// column widths of the tables the list commands build (cli/cli_grid.h
// writes them). MPCLI_Print itself is declared in cli/cli.h.
//
// The table convention: every cell, headers included, is centred in its
// column width plus 2, cells follow each other without separator, and the
// table is framed by dash lines. Widths are measured over the header and
// every row before anything is printed, and they only ever grow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Removes the trailing blanks (spaces and tabs) of `str` in place.
void MPCLI_ClearStrEndSpace(char* str);

// Prints `text` centred in a field of `fieldWidth` characters: the left pad
// is (fieldWidth - length) / 2 blanks, the right pad takes the rest, so an
// odd leftover blank goes to the right. A text longer than the field is
// printed whole, without padding. A cell is buffered, not flushed: the
// message that ends its line flushes it.
void MPCLI_PrintCentred(const char* text, uint32_t fieldWidth);

// Prints `text` as a table cell of column width `width`: centred in
// width + 2 (see MPCLI_PrintCentred).
void MPCLI_CoutStrInMiddleSpace(const char* text, uint32_t width);

// A line of `length` "-" (resp. "=") characters and a newline, written
// whole and left for the next message or flush to send out.
void MPCLI_PrintDash(uint32_t length);
void MPCLI_PrintDoubleDash(uint32_t length);

// The display form of an array name: the name itself, cut to what fits in
// `out` (at most outSize - 1 characters), always terminated.
void MPCLI_ConvertArrayName(const char* name, char* out, size_t outSize);

// One column of a table, as constexpr data.
struct MPCLI_Column {
    const char* header;
    uint32_t minWidth;
    bool fixed = false;  // the width stays minWidth, whatever the cells hold
};

// The widths of a table's columns. A width starts at the larger of the
// column's minimum and its header's length, and only grows as rows are
// measured. Keep the layout in a function-local static to share the widths
// across every table of one run; use a local one for a table of its own.
class MPCLI_TableLayout {
public:
    // `columns` must outlive the layout (normally a constexpr array).
    // `dashExtra` lengthens the frame beyond the cells, for tables whose
    // dash lines are drawn wider than their rows.
    explicit MPCLI_TableLayout(std::span<const MPCLI_Column> columns, uint32_t dashExtra = 0);

    // Grows one column's width to fit a cell of `length` characters.
    void measureCell(size_t column, size_t length);

    size_t columnCount() const { return widths_.size(); }
    uint32_t width(size_t column) const { return widths_[column]; }
    const char* header(size_t column) const { return columns_[column].header; }
    // Sum of (width + 2) over the columns, plus the extra.
    uint32_t dashLength() const;

private:
    std::span<const MPCLI_Column> columns_;
    std::vector<uint32_t> widths_;
    uint32_t dashExtra_;
};
