// The shell's standard output. Every message and table row is formatted
// once and appended here; the bytes reach the terminal or pipe in large
// writes: at the end of a complete message or table, before input is read,
// before a child process starts, and at exit. Never per cell.
#pragma once

#include <cstddef>

// Appends `len` bytes. When the buffer is full it is written out first.
void MPCLI_OutWrite(const char* data, size_t len);
// Writes out everything buffered. SIGINT is held off meanwhile, so the
// Ctrl-C handler never sees a half-finished write.
void MPCLI_OutFlush();
// For the SIGINT handler only (async-signal-safe): writes out the complete
// lines buffered so far, so a listing stopped by Ctrl-C loses no line that
// was complete, and drops the unfinished one.
void MPCLI_OutDrainOnSignal();
// True once a write failed (a closed or broken standard output): later
// output is dropped, and the command must end with a failure status.
bool MPCLI_OutFailed();
// Tests only: the descriptor written to (standard output by default); also
// forgets what was buffered and any earlier failure.
void MPCLI_OutReset(int fd);
