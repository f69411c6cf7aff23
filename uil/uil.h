// The user interface layer: what the shell calls. It talks to the driver
// and keeps the files; it never prints to the console.
#pragma once

#include <cstdint>
#include <vector>

#include "mpi/mpi_usr.h"

// Start-up and shut-down.
uint32_t INTF_UIL_Init();
void INTF_UIL_Fini();
// Closes the device node and nothing else: safe in a signal handler that is
// about to end the process.
void INTF_UIL_ReleaseDevice();
void INTF_UIL_CliBegin();
void INTF_UIL_CliEnd();
uint32_t INTF_UIL_CheckUpgradeThread();
uint32_t INTF_UIL_CliLimitCheck();

inline constexpr uint32_t UIL_TRACE_INIT_FAIL = 26;

// What the last failed change or log write could not do to which file, as
// "<path>: <reason>" ("" when none): the shell adds it on standard error
// to its fixed failure text. Each change clears it when it begins.
const char* INTF_UIL_LastFileError();  // INTF_UIL_Init when the trace log cannot be opened

// Versions.
inline constexpr const char UIL_SOFTWARE_VERSION[] = "21.01.025";
inline constexpr const char UIL_PRODUCT_VERSION[] = "21.0.1";
inline constexpr size_t UIL_VERSION_LEN = 32;
uint32_t INTF_UIL_GetVersion(char* out, size_t size);

// Persistent-reservation key of a cluster: exactly 20 characters.
inline constexpr size_t UIL_PRKEY_BUF_LEN = 21;
uint32_t INTF_UIL_GenClusterKey(char* out, size_t size);

// Driver worker threads.
struct UilWorkerTime {
    uint32_t year, month, day, hour, minute, second;
};
struct UilWorkerInfo {
    char name[33];
    UilWorkerTime lastRefresh;
    UilWorkerTime present;
};
inline constexpr uint32_t UIL_MAX_WORKERS = 64;
uint32_t UIL_GetWorkerInfo(std::vector<UilWorkerInfo>* workers);

// Host checks (scripts); texts handed to `emit` in order.
using UilEmitFn = void (*)(const char* text);
void INTF_UIL_CheckConfig(UilEmitFn emit);
void INTF_UIL_CheckHBAConfig(UilEmitFn emit);
