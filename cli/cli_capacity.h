// The capacity text of a byte count, as the object displays show it.
#pragma once

#include <cstddef>
#include <cstdint>

// Capacity text of a byte count (whole numbers where exact, so a listing
// pays no floating point per row): whole KB first, then moved up a unit
// (MB, GB, TB, PB) for as long as the value stays at least 1 with no more
// than two decimals; printed "%.2f" followed by the unit.
void MPCLI_PrintCapacity(char* out, size_t outSize, uint64_t bytes);
// True when value / 1024 may be shown in the next unit up.
bool MPCLI_CanUpConvertCapacity(double value);
// Moves value and unit index one unit up.
void MPCLI_UpConvertCapacity(uint32_t* unitIndex, double* value);
