// Reading back what the program wrote: whole files, and the trace log of
// the run's sandbox root (set by the test main, or by the simulated-host
// harness).
#pragma once

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace testfiles {

// The whole file; empty when it cannot be read.
inline std::string text(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

inline std::string root()
{
    const char* dir = std::getenv("CVADM_ROOT");
    return dir != nullptr ? dir : "";
}

inline std::string traceText() { return text(root() + "/opt/Corvane/log/cli_uil_log.txt"); }

}  // namespace testfiles
