// Shared by the two halves of the driver parameter file (common keys and
// vendor rules): the file as lines, loading it for a change and saving one.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "uil/uil_drvcfg.h"

namespace uil_drvcfg {

// The file's lines, without their newlines.
struct CfgText {
    std::string bytes;
    std::vector<std::string_view> lines;
    bool endsWithNewline = false;
    mode_t mode = 0644;
};

// The file; UIL_RET_DRVCFG_NO_FILE when it is missing, not a regular file
// or unreadable.
uint32_t loadCfg(const char* path, CfgText* text);
// The file as a change starts from: an empty file is first restored from a
// non-empty backup (stale temporary files of killed writers removed).
uint32_t loadForChange(CfgText* text);
// The old content becomes the backup, then `bytes` replaces the file; on
// failure (1030) the file is as it was.
uint32_t saveChange(const CfgText& old, const std::string& bytes);
// Line `index` with its newline as the file had it.
void appendLine(std::string* out, const CfgText& text, size_t index);
// The line in a 512-byte buffer, filtered in `mode`; false for a line of
// 512 characters or more.
bool filteredLine(std::string_view line, uint32_t mode, char (&buf)[UIL_DRVCFG_LINE_BUF]);
// A value the file can hold between its quotes: no double quote, ";", "#"
// or control character.
bool valueFitsLine(const char* value);

}  // namespace uil_drvcfg
