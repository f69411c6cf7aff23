// Console display helpers and the shared table printer.
#include "cli/cli_print.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "mpi/mpi_usr.h"

namespace {

constexpr uint32_t kCellPad = 2;  // a cell is its column width plus 2

uint32_t textLength(const char* text) { return static_cast<uint32_t>(std::strlen(text)); }

void printLine(char c, uint32_t length)
{
    const std::string line(length, c);
    MPCLI_Print("%s\n", line.c_str());
}

}  // namespace

void MPCLI_Print(const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    std::vprintf(fmt, args);
    va_end(args);
    std::fflush(stdout);
}

void MPCLI_ClearStrEndSpace(char* str)
{
    CLI_ASSERT(str != nullptr);
    size_t length = std::strlen(str);
    while (length > 0 && (str[length - 1] == ' ' || str[length - 1] == '\t')) {
        str[--length] = '\0';
    }
}

void MPCLI_PrintCentred(const char* text, uint32_t fieldWidth)
{
    CLI_ASSERT(text != nullptr);
    const uint32_t length = textLength(text);
    const uint32_t spare = fieldWidth > length ? fieldWidth - length : 0;
    const uint32_t left = spare / 2;
    MPCLI_Print("%*s%s%*s", static_cast<int>(left), "", text, static_cast<int>(spare - left), "");
}

void MPCLI_CoutStrInMiddleSpace(const char* text, uint32_t width) { MPCLI_PrintCentred(text, width + kCellPad); }

void MPCLI_PrintDash(uint32_t length) { printLine('-', length); }

void MPCLI_PrintDoubleDash(uint32_t length) { printLine('=', length); }

void MPCLI_ConvertArrayName(const char* name, char* out, size_t outSize)
{
    CLI_ASSERT(name != nullptr);
    CLI_ASSERT(out != nullptr);
    CLI_ASSERT(outSize > 0);
    (void)strncpy_s(out, outSize, name, outSize - 1);
}

MPCLI_TableLayout::MPCLI_TableLayout(std::span<const MPCLI_Column> columns, uint32_t dashExtra)
    : columns_(columns), widths_(columns.size()), dashExtra_(dashExtra)
{
    for (size_t i = 0; i < columns_.size(); ++i) {
        const MPCLI_Column& column = columns_[i];
        widths_[i] = column.fixed ? column.minWidth : std::max(column.minWidth, textLength(column.header));
    }
}

void MPCLI_TableLayout::measureCell(size_t column, size_t length)
{
    if (column >= widths_.size() || columns_[column].fixed) {
        return;
    }
    widths_[column] = std::max(widths_[column], static_cast<uint32_t>(length));
}

void MPCLI_TableLayout::measure(std::span<const std::string> row)
{
    for (size_t i = 0; i < row.size(); ++i) {
        measureCell(i, row[i].size());
    }
}

uint32_t MPCLI_TableLayout::dashLength() const
{
    uint32_t total = dashExtra_;
    for (uint32_t width : widths_) {
        total += width + kCellPad;
    }
    return total;
}

void MPCLI_PrintTableDash(const MPCLI_TableLayout& layout) { MPCLI_PrintDash(layout.dashLength()); }

void MPCLI_PrintTableHeader(const MPCLI_TableLayout& layout)
{
    for (size_t i = 0; i < layout.columnCount(); ++i) {
        MPCLI_CoutStrInMiddleSpace(layout.header(i), layout.width(i));
    }
    MPCLI_Print("\n");
}

void MPCLI_PrintTableRow(const MPCLI_TableLayout& layout, std::span<const std::string> row)
{
    for (size_t i = 0; i < layout.columnCount(); ++i) {
        MPCLI_CoutStrInMiddleSpace(i < row.size() ? row[i].c_str() : "", layout.width(i));
    }
    MPCLI_Print("\n");
}

void MPCLI_PrintTable(MPCLI_TableLayout& layout, std::span<const MPCLI_TableRow> rows)
{
    for (const MPCLI_TableRow& row : rows) {
        layout.measure(row);
    }
    MPCLI_PrintTableDash(layout);
    MPCLI_PrintTableHeader(layout);
    for (const MPCLI_TableRow& row : rows) {
        MPCLI_PrintTableRow(layout, row);
    }
    MPCLI_PrintTableDash(layout);
}
