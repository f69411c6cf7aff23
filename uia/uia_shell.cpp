#include "uia/uia_shell.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

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

long UIA_RunFirstNumber(const std::string& command)
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
    return std::strtol(line, nullptr, 10);
}
