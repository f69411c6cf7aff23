// Console display helpers and the shared table printer.
#include "cli/cli_print.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_grid.h"
#include "cli/cli_out.h"
#include "mpi/mpi_usr.h"

namespace {

constexpr uint32_t kCellPad = 2;  // a cell is its column width plus 2

uint32_t textLength(const char* text) { return static_cast<uint32_t>(std::strlen(text)); }

// A frame line: formatted once, written without a flush (it belongs to the
// table around it, which flushes at its end).
void printLine(char c, uint32_t length)
{
    std::string line(length, c);
    line.push_back('\n');
    MPCLI_OutWrite(line.data(), line.size());
}

void appendCentred(std::string& line, const char* text, uint32_t fieldWidth)
{
    MPCLI_AppendCentred(line, std::string_view(text), fieldWidth);
}

}  // namespace

void MPCLI_Print(const char* fmt, ...)
{
    // Most messages fit the stack buffer; a longer one is formatted again
    // into one of its exact size, so it still goes out in one piece.
    char small[512];
    va_list args;
    va_start(args, fmt);
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(small, sizeof(small), fmt, args);
    va_end(args);
    if (length > 0 && static_cast<size_t>(length) < sizeof(small)) {
        MPCLI_OutWrite(small, static_cast<size_t>(length));
    } else if (length > 0) {
        std::string big(static_cast<size_t>(length) + 1, '\0');
        (void)std::vsnprintf(big.data(), big.size(), fmt, again);
        MPCLI_OutWrite(big.data(), static_cast<size_t>(length));
    }
    va_end(again);
    MPCLI_OutFlush();
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
    // A cell is not a message of its own: it waits in the buffer for the
    // end of its line.
    std::string cell;
    appendCentred(cell, text, fieldWidth);
    MPCLI_OutWrite(cell.data(), cell.size());
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

uint32_t MPCLI_TableLayout::dashLength() const
{
    uint32_t total = dashExtra_;
    for (uint32_t width : widths_) {
        total += width + kCellPad;
    }
    return total;
}

