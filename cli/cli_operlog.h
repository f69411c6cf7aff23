// The operation-log line of a command run from the shell.
#pragma once

#include <cstddef>
#include <cstdint>

#include "uil/uil_oper.h"

class MPCLI_Command;

// The command text of the line: each word of the handler's command (the
// words after the verb), each preceded by a blank (" tod_time=30"), cut to
// what `out` holds.
void MPCLI_BuildCommandText(const MPCLI_Command& command, char* out, size_t size);

// Writes the line for a command of the shell (source "CLI"): `verb` ("set",
// "clear", ...), the words of the handler's command, the event, the result flag (1
// succeeded, 0 failed) and the record (null: an all-zero record). A line
// that cannot be written is said on standard error with its cause, and the
// command then fails: a change must never pass unrecorded in silence.
void MPCLI_OperLog(const char* verb, const MPCLI_Command& command, uint32_t eventId, uint8_t result,
                   const UilOperLogPara* record);

// True once since the last call when an operation-log line of the current
// command could not be written; the shell turns the command into a failure.
bool MPCLI_TakeOperLogFailure();
