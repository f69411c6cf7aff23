// I/O reliability: the driver's per-disk and per-path counters of failed
// and queued I/Os and commands with their latencies, the clearing of those
// counters, and the two driver switches (alarm push, path reliability).
#pragma once

#include <cstddef>
#include <cstdint>

#include "mpi/mpi_usr.h"
#include "uil/uil_vlun.h"  // UIL_LUN_NAME_SIZE

// What a record counts: the whole disk, or one logical path of it.
enum UilReliabilityScope : uint32_t { UIL_RELIABILITY_DISK = 0, UIL_RELIABILITY_PATH = 1 };
// The flag the driver answers when the counters it returned are valid.
inline constexpr uint32_t UIL_RELIABILITY_VALID = 1;

// One line of `show io_count` / `show io_latency`. Allocated zero-filled,
// chained through `links`, released by INTF_UIL_EnumerateIoReliabilityEnd.
struct UilIoReliability {
    MPI_ListNode links;
    uint32_t vlunId;
    uint32_t diskId;
    char diskName[UIL_LUN_NAME_SIZE];
    uint32_t pathId;    // 0 for a whole-disk record
    uint32_t scope;     // UilReliabilityScope
    uint32_t flag;      // in: what the caller asks; out: UIL_RELIABILITY_VALID when counted
    uint64_t errorIo;
    uint64_t errorCmd;
    uint64_t queuedIo;
    uint64_t queuedCmd;
    uint64_t latestLatency;
    uint64_t maxLatency;
    uint64_t latencySum;
    uint64_t latencySamples;
    uint64_t averageLatency;  // UIL_CalAverageIoLatency of the two above
};

// Sum / samples (integer division); 0 without samples.
uint64_t UIL_CalAverageIoLatency(uint64_t latencySum, uint64_t samples);

// One query (request 0x68): disk, path, flag and scope are sent from
// `record`; when the driver answers the flag UIL_RELIABILITY_VALID the
// counters and the average are taken over, otherwise they are left as
// they were. The answered flag is stored in the record either way.
// 1024, or the request's failure code.
uint32_t INTF_UIL_GetIoReliabilityById(uint32_t diskId, uint32_t pathId, UilIoReliability* record);

// What a list holds.
enum UilReliabilityKind : uint32_t {
    UIL_RELIABILITY_ALL_VLUNS = 0,  // one whole-disk record per member disk of every VLUN, by VLUN ID
    UIL_RELIABILITY_ONE_VLUN = 1,   // one record per logical path of the VLUN's disks, by path ID
};

// Builds the list into `head` (initialised here). `vlunId` is read for
// UIL_RELIABILITY_ONE_VLUN only. 1024; 2 when there is nothing to show;
// 1039 when the VLUN does not exist; the code of an enumeration that
// failed; 1037 out of memory. A disk or path whose counters cannot be read
// is left out (traced); after any result `head` may be passed to ...End.
uint32_t INTF_UIL_EnumerateIoReliabilityStart(UilReliabilityKind kind, uint32_t vlunId, MPI_ListNode* head);
void INTF_UIL_EnumerateIoReliabilityEnd(MPI_ListNode* head);

// Stable sorts, ascending.
void INTF_UIL_SortReliabilityListByPathID(MPI_ListNode* head);
void INTF_UIL_SortReliabilityListByVLunID(MPI_ListNode* head);

// Clears every counter (request 0x69). 1024, or the request's failure code.
uint32_t INTF_UIL_ClearIoCount();

// The switches: `on` is 1 or 0 (requests 0x62 and 0x63).
uint32_t UIL_Alarm_GetEnable(uint32_t* on);
uint32_t UIL_GetReliabilitySwitch(uint32_t* on);
// The same as the text the shell shows: "alarmenable: on|off",
// "path reliabilityenable: on|off".
uint32_t INTF_UIL_GetAlarmEnable(char* text, size_t size);
uint32_t INTF_UIL_GetReliabilityEnable(char* text, size_t size);
