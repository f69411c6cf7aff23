// Running the host's shell commands and scripts.
#pragma once

#include <cstdint>
#include <string>

// `text` quoted for /bin/sh.
std::string UIA_ShellQuote(const std::string& text);
// Runs a pipeline and returns its first output line (at most 128 bytes) as
// a decimal number; 0 when it cannot be started or prints no number.
uint32_t UIA_RunFirstNumber(const std::string& command);
