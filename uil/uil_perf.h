// Performance statistics: rates from two samples of the driver's cumulative
// per-path counters, their sums per VLUN, array and initiator, maxima and
// minima between recordings, and the periodic performance record.
#pragma once

#include "uil/uil_arrayset.h"

#include <cstddef>
#include <cstdint>

#include "mpi/mpi_usr.h"
#include "uia/uia_wire.h"
#include "uil/uil_path.h"

// ---------------------------------------------------------------------------
// Performance record: the same sixteen u64 for paths, VLUNs, arrays and
// initiators. 0..7 are cumulative driver counters, 8..14 are computed by
// UIL_ComputePerfInfo, 15 is a further cumulative counter carried along.
enum : size_t {
    UIL_PERF_READ_IO = 0,
    UIL_PERF_WRITE_IO = 1,
    UIL_PERF_CUM2 = 2,
    UIL_PERF_CUM3 = 3,
    UIL_PERF_READ_BYTES = 4,
    UIL_PERF_WRITE_BYTES = 5,
    UIL_PERF_READ_RESP = 6,
    UIL_PERF_WRITE_RESP = 7,
    UIL_PERF_READ_IOPS = 8,
    UIL_PERF_WRITE_IOPS = 9,
    UIL_PERF_READ_KBS = 10,
    UIL_PERF_WRITE_KBS = 11,
    UIL_PERF_READ_RT = 12,   // ms per read
    UIL_PERF_WRITE_RT = 13,  // ms per write
    UIL_PERF_TOTAL_RT = 14,  // ms per I/O
    UIL_PERF_EXTRA = 15,
    UIL_PERF_VALUES = 16,
};
inline constexpr size_t UIL_PERF_COUNTERS = 8;  // cumulative 0..7
inline constexpr uint64_t UIL_PERF_KB = 1000;

struct UilPerfInfo {
    uint64_t v[UIL_PERF_VALUES];
};

// Maxima and minima of the totals (IOPS = 8 + 9, KB/S = 10 + 11, response
// = 14) since the last reset. A reset block holds maxima 0 and minima
// UINT64_MAX, so the first update sets both.
struct UilPerfMaxMin {
    uint64_t maxIops;
    uint64_t minIops;
    uint64_t maxKbs;
    uint64_t minKbs;
    uint64_t maxResp;
    uint64_t minResp;
};

// What one interval added to a path's counters (after the reset rule); a
// sum of paths recomputes its response times from these, so a VLUN's
// response time is the I/O-weighted mean of its paths', not their sum.
struct UilPerfDelta {
    uint64_t readIo;
    uint64_t writeIo;
    uint64_t readBytes;
    uint64_t writeBytes;
    uint64_t readResp;
    uint64_t writeResp;
};

// ---------------------------------------------------------------------------
// Interval computation. `uiIntervalTime` is in seconds and never 0 (an
// assertion); divisions truncate; a counter below its previous value means
// the driver reset it, and the current value is taken as the delta.

uint64_t UIL_PerfCounterDelta(uint64_t cur, uint64_t prev);
// Read and write KB/S (KB = 1000 bytes) into cur[10], cur[11].
void UIL_ComputeBytePerInfo(UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime);
// The same into `out` (a copy of cur with the two rates); nothing happens
// when the interval is 0.
void UIL_ComputeBytePerInfoS(const UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime,
                             UilPerfInfo* out);
// cur[14]: the response time added over both directions per I/O.
void UIL_ComputeTotalResonseTime(UilPerfInfo* cur, const UilPerfInfo* prev);
// A direction whose IOPS or KB/S is 0 reports no rate and no response
// time; with no I/O in either direction the total response is 0 too.
void UIL_GetCurPerfInfoZero(UilPerfInfo* rec);
// Indices 8..14 of cur from cur and prev.
void UIL_ComputePerfInfo(UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime);
// The same into `out`, cur left untouched (out may be cur).
void UIL_ComputePerfInfoS(const UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime,
                          UilPerfInfo* out);
// The deltas behind a computation (same reset rule).
void UIL_GetPerfDelta(const UilPerfInfo* cur, const UilPerfInfo* prev, UilPerfDelta* out);
// Response times 12..14 of `rec` from summed deltas, then the zeroing rule.
void UIL_ComputeResponseByDelta(UilPerfInfo* rec, const UilPerfDelta* delta);

// dst += src over all sixteen values; rec /= n (nothing when n is 0).
void UIL_PerfInfoAdd(UilPerfInfo* dst, const UilPerfInfo* src);
void UIL_PerfInfoAverageData(UilPerfInfo* rec, uint32_t n);

// ---------------------------------------------------------------------------
// Max/min.
void UIL_InitializePerfMaxmin(UilPerfMaxMin* mm);
void UIL_CalPerfMaxminData(const UilPerfInfo* rec, UilPerfMaxMin* mm);
void UIL_PerfMaxminDataCopy(UilPerfMaxMin* dst, const UilPerfMaxMin* src);
// A minimum that was never set reads 0.
uint64_t UIL_PerfMinValue(uint64_t min);

// ---------------------------------------------------------------------------
// Performance list entries: one layout for every kind, chained through
// `links`, allocated zero-filled and released by UIL_PerfListFree.
enum UilPerfKind : uint32_t {
    UIL_PERF_LOGIC_PATH = 1,
    UIL_PERF_PHY_PATH = 2,
    UIL_PERF_VLUN = 3,
    UIL_PERF_ARRAY = 4,
    UIL_PERF_INITIATOR = 5,
};
inline constexpr size_t UIL_PERF_ARRAY_NAME_SIZE = 129;

struct UilPerfEntry {
    MPI_ListNode links;
    UilPerfKind kind;
    uint32_t pathId;        // paths: the physical path ID
    uint32_t diskId;        // logical paths and VLUNs
    uint32_t vlunId;        // logical paths and VLUNs
    uint32_t arrayId;       // physical paths and arrays
    uint32_t controllerId;  // physical paths
    uint32_t hbaId;         // physical paths
    uint32_t pathCount;     // sums: the paths added into `perf`
    uint8_t driverMaxMin;   // physical paths: `maxmin` comes from the driver
    char arrayName[UIL_PERF_ARRAY_NAME_SIZE];
    char initiator[UIL_PORT_TEXT_SIZE];  // physical paths and initiators
    char target[UIL_PORT_TEXT_SIZE];
    UilPerfInfo perf;     // the latest sample and its rates
    UilPerfDelta delta;   // what the latest interval added
    bool hasRates;        // perf[8..14] and delta were computed
    UilPerfMaxMin maxmin;
    UilPerfInfo accum;    // rates added over a recording period
    uint32_t accumSamples;
};

UilPerfEntry* UIL_PerfEntryAlloc(UilPerfKind kind);
void UIL_PerfListFree(MPI_ListNode* head);
uint32_t UIL_PerfListCount(const MPI_ListNode* head);
// The entry of `list` that stands for the same object as `key` (same kind
// and IDs, or same initiator name), or null.
UilPerfEntry* UIL_PerfListFind(MPI_ListNode* list, const UilPerfEntry* key);

// Resets the max/min block of every entry of a list.
void INTF_UIL_InitPathPerfMaxMin(MPI_ListNode* head);
void INTF_UIL_InitPhyPathPerfMaxMin(MPI_ListNode* head);

// Rates of every entry of `cur` against its namesake in `prev`; an entry
// without one keeps no rates. An empty `prev` is traced ("the preperflist
// is empty") and nothing is computed. 1024, or 2 for an empty prev.
uint32_t UIL_ComputePerfList(MPI_ListNode* cur, MPI_ListNode* prev, uint32_t uiIntervalTime);

// ---------------------------------------------------------------------------
// Sorting (stable: equal keys keep their order).
void UIL_PathPerfSort(MPI_ListNode* head);                     // by path ID
void UIL_PhyPathPerfSort(MPI_ListNode* head);                  // by path ID
void UIL_PhyPathPerfSortByArrayAndTpgId(MPI_ListNode* head);   // by array, then controller ID

// ---------------------------------------------------------------------------
// Aggregation. Sums add the sixteen values of each path and recompute the
// response times from the summed deltas; `pathCount` counts the paths.

// The logical paths of one VLUN summed into `out` (kind VLUN, the disk of
// its first path). 1024, or 2 when the VLUN has no path in the list.
uint32_t UIL_GetVLUNPerfInfoByPath(MPI_ListNode* paths, uint32_t vlunId, UilPerfEntry* out);
// One VLUN entry per VLUN of the logical path list, in VLUN ID order.
uint32_t UIL_GetVLUNPerfInfo(MPI_ListNode* paths, MPI_ListNode* vluns);
// The physical paths of one array summed into `out`. 1024, or 2.
uint32_t UIL_GetArrayPerfInfo(MPI_ListNode* phyPaths, uint32_t arrayId, UilPerfEntry* out);
// The physical paths of one initiator port summed into `out`. 1024, or 2.
uint32_t UIL_ComputeSumOfInitiatorPerf(MPI_ListNode* phyPaths, const char* initiator, UilPerfEntry* out);
// Averages of a recording period: the accumulated rates divided by the
// samples taken (into `perf[8..14]`); nothing without samples.
void UIL_PerfEntryAverage(UilPerfEntry* entry);
void UIL_ComputeArrayAveragePerf(UilPerfEntry* entry);
void UIL_ComputeInitiatorAveragePerf(UilPerfEntry* entry);

// The array and initiator lists of a physical path list (array ID order,
// initiator name order). 1024; 1030 out of memory, `out` left empty.
uint32_t INTF_UIL_GetAndCreateInitiatorsPerfByPhyPath(MPI_ListNode* phyPaths, MPI_ListNode* out);
uint32_t INTF_UIL_GetAndCreateArrayPerfByPhyPath(MPI_ListNode* phyPaths, MPI_ListNode* out);
// Carries `cur` over as the previous list of the next interval: each entry
// keeps the max/min block and the period accumulator of its namesake in
// `prev`, then `prev` is released and takes cur's entries (cur is left empty).
void INTF_UIL_ReplaceInitiatorPerfData(MPI_ListNode* cur, MPI_ListNode* prev);
void INTF_UIL_ReplaceArrayPerfData(MPI_ListNode* cur, MPI_ListNode* prev);
void UIL_ReplacePerfData(MPI_ListNode* cur, MPI_ListNode* prev);

// ---------------------------------------------------------------------------
// Driver samples.

// One physical path (request 0x2b): entry fields from the answer, rates 0.
void UIL_TrasPhyPathPerfInfo(const UiaPayload& payload, UilPerfEntry* out);
uint32_t UIL_GetPhyPathPerfInfo(uint32_t pathId, UilPerfEntry* out);
// One logical path: disk `diskId` over physical path `pathId` (request 0x21).
void UIL_TransPathIoStatisticInfo(const UiaPayload& payload, UilPerfEntry* out);
uint32_t INTF_UIL_GetPathIoStatisticInfo(uint32_t diskId, uint32_t pathId, UilPerfEntry* out);

// The physical paths of an array (UIL_ALL_ARRAYS: of every array), listed
// with 0x29 and sampled one by one with 0x2b, in path ID order. A path that
// cannot be read is skipped (traced). 1024; 2 when none could be read; the
// listing's code; 1030 out of memory (nothing left in the list). Like every
// list of samples, the list is released with UIL_PerfListFree.
uint32_t INTF_UIL_EnumeratePhyPathPerfStart(uint32_t arrayId, MPI_ListNode* head);
// The logical paths of one disk appended to `head`. Same codes.
uint32_t INTF_UIL_EnumeratePathPerfStart(uint32_t diskId, MPI_ListNode* head);
// The logical paths of every disk of every array. Same codes.
uint32_t INTF_UIL_EnumerateAllPathPerfStart(MPI_ListNode* head);

// ---------------------------------------------------------------------------
// Periodic performance record.

// The driver's performance-record state is read by
// INTF_UIL_GetDriverPerfRecordInfo (uil_arrayset.h).
// Stores the switch ("1"/"0"), the duration in hours and the current time
// as the start (low and high halves), stopping at the first failure.
uint32_t INTF_UIL_SetPerfRecord(const char* source, uint32_t enable, uint32_t hours);

// Seconds on the wall clock (record start and stop, line times) and on the
// monotonic clock (the cadence of samples and records).
uint64_t UIL_GetTimecount();
uint64_t UIL_GetMonotonicSec();

inline constexpr uint64_t UIL_PERF_MAXMIN_PERIOD = 25;
inline constexpr uint64_t UIL_PERF_RECORD_PERIOD = 295;
inline constexpr uint32_t UIL_OPER_PERF_RECORD_EVENT = 0x53415163;
inline constexpr const char UIL_PERF_RECORD_DIR[] = "/opt/Corvane/log/perf_log/";
inline constexpr const char UIL_PERF_RECORD_FILE[] = "performance_record.txt";
inline constexpr const char UIL_PERF_DELAY_UNIT[] = "ms";
inline constexpr size_t UIL_PERF_LINE_SIZE = 1024;

// What the record reaches outside itself. A null member takes the default:
// request 0x6b, INTF_UIL_SetPerfRecord, the driver samples above, the C
// library's clocks, and the record file beneath the performance log
// directory. Tests replace the members they need to control.
struct UilPerfRecordOps {
    uint32_t (*getSetting)(UilDriverPerfRecord* out);
    uint32_t (*setPerfRecord)(const char* source, uint32_t enable, uint32_t hours);
    uint32_t (*samplePhyPaths)(MPI_ListNode* head);
    uint32_t (*sampleLogicPaths)(MPI_ListNode* head);
    uint64_t (*wallSec)();
    uint64_t (*monotonicSec)();
};

struct UilPerfRecordContext {
    UilPerfRecordOps ops;
    MPI_ListNode phyPaths;    // the latest sample of each kind, carrying the
    MPI_ListNode logicPaths;  // max/min blocks and period accumulators
    MPI_ListNode arrays;
    MPI_ListNode initiators;
    MPI_ListNode vluns;
    bool started;
    uint64_t lastSampleSec;   // monotonic
    uint64_t lastMaxMinSec;
    uint64_t lastRecordSec;
    uint32_t recordNo;        // leading number of the lines of one record
};

void INTF_UIL_PerfRecordContextInit(UilPerfRecordContext* ctx, const UilPerfRecordOps* ops);
void INTF_UIL_PerfListRelease(UilPerfRecordContext* ctx);

// One step of the periodic record; the caller runs it every few seconds.
// 1024; the setting query's code when it fails.
uint32_t INTF_UIL_PerformanceRecord(UilPerfRecordContext* ctx);

// Samples the paths and folds the interval's rates into every entry's
// max/min block and period accumulator.
uint32_t INTF_UIL_EnumerateInitAndArrayPerfMaxMin(UilPerfRecordContext* ctx);
// Writes the record lines of the period (arrays, initiators, physical
// paths; VLUNs with their logical paths), then starts a new period.
uint32_t INTF_UIL_PerformanceRecordPhyPath(UilPerfRecordContext* ctx, const char* time);
uint32_t INTF_UIL_PerformanceRecordLogicPath(UilPerfRecordContext* ctx, const char* time);

// One record line of an entry (averaged period values), "\n" included.
// 1024; 1038 when it does not fit.
uint32_t UIL_FormatPerfRecordLine(uint32_t recordNo, const char* time, const UilPerfEntry* entry, char* out,
                                  size_t size);
// The record file's full name beneath the sandbox root.
void UIL_PerfRecordFilePath(char* out, size_t size);
