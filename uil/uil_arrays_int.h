// Internal to the array-level entry points (uil_arrayset, uil_aglun,
// uil_xva): the operation-log record they fill for the shell.
#pragma once

#include <cstdint>

#include "uil/uil_cfg.h"

// Clears `record` and fills type, ID and the formatted value (cut to fit).
void UIL_FillOperRecord(UilOperLogPara* record, uint32_t type, uint32_t id, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
