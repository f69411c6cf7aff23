// The requests the simulated driver answers: number, declared payload size
// (part of the request code) and handler. A request code whose size does
// not match its row is refused, which catches a wrong code in the program.
#include "model.h"

#include <array>

namespace cvsim {

uint32_t HandleCfgNotify(SimContext& ctx, SimPayload& p);  // model_config.cpp
uint32_t HandleCfgDelete(SimContext& ctx, SimPayload& p);  // model_config.cpp

namespace {

constexpr std::array kRequests = {
    SimRequestRow{1, 12, HandleVersion, kNoCountField},
    SimRequestRow{70, 140, HandleCfgNotify, kNoCountField},
    SimRequestRow{71, 72, HandleCfgDelete, kNoCountField},
    SimRequestRow{100, 64, HandleWorkerTable, 4},
};

}  // namespace

const SimRequestRow* FindRequest(uint32_t nr)
{
    for (const auto& row : kRequests) {
        if (row.nr == nr) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace cvsim
