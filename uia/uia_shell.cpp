#include "uia/uia_shell.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "mpi/mpi_number.h"
#include "mpi/mpi_usr.h"

namespace {

struct PipeCloser {
    void operator()(FILE* f) const { (void)pclose(f); }
};
using PipePtr = std::unique_ptr<FILE, PipeCloser>;

}  // namespace

std::string UIA_ShellQuote(const std::string& text)
{
    std::string quoted = "'";
    for (char c : text) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    quoted += '\'';
    return quoted;
}

uint32_t UIA_RunFirstNumber(const std::string& command)
{
    std::fflush(stdout);  // the child shares our standard output
    PipePtr pipe(popen(command.c_str(), "r"));
    if (!pipe) {
        UIA_ERR("Run command {%s} fail", command.c_str());
        return 0;
    }
    char line[128] = {};
    if (std::fgets(line, sizeof(line), pipe.get()) == nullptr) {
        return 0;
    }
    // The number alone: the line's end and the blanks some tools pad with
    // are not part of it; anything else makes it no number at all.
    std::string_view text(line);
    size_t first = text.find_first_not_of(" \t");
    size_t last = text.find_last_not_of(" \t\r\n");
    uint32_t number = 0;
    if (first == std::string_view::npos || !MPI_ToU32(text.substr(first, last - first + 1), &number)) {
        UIA_ERR("Output {%s} of command {%s} is not a number", line, command.c_str());
        return 0;
    }
    return number;
}
