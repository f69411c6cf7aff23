// The requests the simulated driver answers: number, declared payload size
// (part of the request code) and handler. A request code whose size does
// not match its row is refused, which catches a wrong code in the program.
#include "model.h"
#include "model_objects.h"
#include "model_arrays.h"
#include "model_io.h"
#include "model_pathset.h"

#include <array>

namespace cvsim {

namespace {

constexpr std::array kRequests = {
    SimRequestRow{1, 12, HandleVersion, kNoCountField},
    // Storage objects: the count offset is that of the count the answer
    // carries before its IDs.
    SimRequestRow{0x0b, 16, HandleArrayIds, 8},
    SimRequestRow{0x0c, 444, HandleArrayInfo, kNoCountField},
    SimRequestRow{0x0d, 444, HandleSyncArrayInfo, kNoCountField},
    SimRequestRow{0x15, 24, HandleArrayDiskIds, 16},
    SimRequestRow{0x16, 24, HandlePhyPathDiskIds, 16},
    SimRequestRow{0x17, 544, HandleDiskInfo, kNoCountField},
    SimRequestRow{0x19, 20, HandleArrayVlunIds, 12},
    SimRequestRow{0x1f, 16, HandleLogicalPathIds, 8},
    SimRequestRow{0x20, 1080, HandleLogicalPathInfo, kNoCountField},
    SimRequestRow{0x21, 320, HandlePathIoStat, kNoCountField},
    SimRequestRow{0x29, 20, HandlePhyPathIds, 12},
    SimRequestRow{0x2a, 1080, HandlePhyPathInfo, kNoCountField},
    SimRequestRow{0x2b, 848, HandlePhyPathPerf, kNoCountField},
    SimRequestRow{0x2c, 848, HandleHbaPathIds, 4},
    SimRequestRow{0x3c, 16, HandleTpgIds, 8},
    SimRequestRow{0x3d, 28, HandleTpgInfo, 16},
    SimRequestRow{0x3e, 28, HandleTpgName, kNoCountField},
    SimRequestRow{0x40, 256, HandleHbaByWwn, kNoCountField},
    SimRequestRow{0x41, 256, HandleHbaById, kNoCountField},
    SimRequestRow{0x42, 12, HandleHbaIds, 4},
    SimRequestRow{70, 140, HandleCfgNotify, kNoCountField},
    SimRequestRow{71, 72, HandleCfgDelete, kNoCountField},
    SimRequestRow{0x5d, 28, HandleDsInfo, kNoCountField},
    SimRequestRow{0x5f, 84, HandleVlunInfo, 60},  // member count and member disks
    SimRequestRow{100, 64, HandleWorkerTable, 4},
    // Paths and I/O reliability (model_pathset.h).
    SimRequestRow{0x32, kCommonSetSize, HandleCommonSet, kNoCountField},
    SimRequestRow{0x62, 4, HandleAlarmEnable, kNoCountField},
    SimRequestRow{0x63, 4, HandleReliabilityEnable, kNoCountField},
    SimRequestRow{0x68, 80, HandleIoReliability, kNoCountField},
    SimRequestRow{0x69, 80, HandleClearIoCount, kNoCountField},
    SimRequestRow{0x6c, 1080, HandleClearPathStatistic, kNoCountField},
    // Array-level requests and aggregated VLUNs (model_arrays.h).
    SimRequestRow{0x45, 4, HandleTurnOffIoSuspension, kNoCountField},
    SimRequestRow{0x51, 12, HandleRebalance, kNoCountField},
    SimRequestRow{0x5b, 12, HandleAggreIds, 4},
    SimRequestRow{0x5c, 16, HandleAggreInfo, 4},
    SimRequestRow{0x5e, 28, HandleMigrateInfo, kNoCountField},
    SimRequestRow{0x60, 12, HandleStartMigration, kNoCountField},
    SimRequestRow{0x61, 84, HandleCtrlIoSuspension, kNoCountField},
    SimRequestRow{0x6b, 16, HandlePerfRecord, kNoCountField},
};

}  // namespace

const SimRequestRow* FindRequest(uint32_t nr)
{
    // Looked up once per request: a request number is one byte of the code.
    static constexpr auto kByNr = [] {
        std::array<const SimRequestRow*, 256> by{};
        for (const auto& row : kRequests) {
            if (row.nr < by.size() && by[row.nr] == nullptr) {
                by[row.nr] = &row;
            }
        }
        return by;
    }();
    return nr < kByNr.size() ? kByNr[nr] : nullptr;
}

}  // namespace cvsim
