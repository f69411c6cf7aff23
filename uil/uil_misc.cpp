// Version, reservation key and worker threads.
#include <sys/time.h>

#include <cstring>

#include "bounded/bounded.h"
#include "uia/uia.h"
#include "uil/uil.h"
#include "uil/uil_wire_misc.h"

namespace version = uil_wire::version;
namespace worker = uil_wire::worker;

namespace {

UilWorkerTime readWorkerTime(const UiaPayload& p, UiaField at)
{
    size_t off = at.off;
    return UilWorkerTime{p.u16(off), p.u8(off + 2), p.u8(off + 3), p.u8(off + 4), p.u8(off + 5), p.u8(off + 6)};
}

}  // namespace

uint32_t INTF_UIL_GetVersion(char* out, size_t size)
{
    UIL_ASSERT(out != NULL);
    UiaPayload payload(uia_req::GetVersion.size);
    uint32_t ret = UIA_Send(uia_req::GetVersion, payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    (void)snprintf_s(out, size, size - 1, "%u.%02u.%03u", payload.u32(version::kMajor), payload.u32(version::kMinor),
                     payload.u32(version::kPatch));
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_GenClusterKey(char* out, size_t size)
{
    UIL_ASSERT(out != NULL);
    UIL_ASSERT(size >= UIL_PRKEY_BUF_LEN);
    struct timeval now;
    (void)gettimeofday(&now, nullptr);
    // Microseconds since the epoch, deliberately wrapped to 32 bits.
    uint32_t t = static_cast<uint32_t>(now.tv_sec) * 1000000u + static_cast<uint32_t>(now.tv_usec);
    uint32_t high = (t << 16) & 0xFFFF0000u;
    uint32_t low = t & 0x0000FFFFu;
    // The format's newline never fits in 20 characters: the key is exactly 20.
    (void)snprintf_s(out, UIL_PRKEY_BUF_LEN, UIL_PRKEY_BUF_LEN - 1, "%010d%010d\n", static_cast<int32_t>(high),
                     static_cast<int32_t>(low));
    return MPI_RET_SUCCESS;
}

uint32_t UIL_GetWorkerInfo(std::vector<UilWorkerInfo>* workers)
{
    UIL_ASSERT(workers != NULL);
    workers->clear();
    UiaPayload payload(uia_req::GetWorkerInfo.size);
    uint32_t count = 1;
    for (uint32_t index = 0; index < count; ++index) {
        payload.clear();
        payload.setU32(worker::kIndex, index);
        uint32_t ret = UIA_Send(uia_req::GetWorkerInfo, payload);
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Get worker {%u} info fail. Ret {%u}", index, ret);
            return ret;
        }
        count = payload.u32(worker::kCount);
        if (count > UIL_MAX_WORKERS) {
            UIL_ERR("Worker count {%u} exceed %u", count, UIL_MAX_WORKERS);
            count = UIL_MAX_WORKERS;
        }
        if (index >= count) {
            break;  // no worker at all
        }
        UilWorkerInfo info{};
        payload.text(worker::kName, info.name, sizeof(info.name));
        info.lastRefresh = readWorkerTime(payload, worker::kLastRefresh);
        info.present = readWorkerTime(payload, worker::kPresent);
        workers->push_back(info);
    }
    return MPI_RET_SUCCESS;
}
