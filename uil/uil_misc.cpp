// Version, reservation key and worker threads.
#include <sys/time.h>

#include <cstring>

#include "bounded/bounded.h"
#include "uia/uia.h"
#include "uil/uil.h"

namespace {

// Driver version payload: major, minor and patch as u32.
constexpr size_t kVerMajor = 0;
constexpr size_t kVerMinor = 4;
constexpr size_t kVerPatch = 8;

// Worker payload: the program asks for one worker by index; the driver
// answers the number of workers and that worker's name and two times.
constexpr size_t kWorkerIndex = 0;
constexpr size_t kWorkerCount = 4;
constexpr size_t kWorkerName = 8;
constexpr size_t kWorkerNameLen = 32;
constexpr size_t kWorkerLastRefresh = 40;
constexpr size_t kWorkerPresent = 48;
static_assert(kWorkerPresent + 7 <= uia_req::GetWorkerInfo.size);

UilWorkerTime readWorkerTime(const UiaPayload& p, size_t off)
{
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
    (void)snprintf_s(out, size, size - 1, "%u.%02u.%03u", payload.u32(kVerMajor), payload.u32(kVerMinor),
                     payload.u32(kVerPatch));
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
        payload.setU32(kWorkerIndex, index);
        uint32_t ret = UIA_Send(uia_req::GetWorkerInfo, payload);
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Get worker {%u} info fail. Ret {%u}", index, ret);
            return ret;
        }
        count = payload.u32(kWorkerCount);
        if (count > UIL_MAX_WORKERS) {
            UIL_ERR("Worker count {%u} exceed %u", count, UIL_MAX_WORKERS);
            count = UIL_MAX_WORKERS;
        }
        if (index >= count) {
            break;  // no worker at all
        }
        UilWorkerInfo info{};
        payload.text(kWorkerName, kWorkerNameLen, info.name, sizeof(info.name));
        info.lastRefresh = readWorkerTime(payload, kWorkerLastRefresh);
        info.present = readWorkerTime(payload, kWorkerPresent);
        workers->push_back(info);
    }
    return MPI_RET_SUCCESS;
}
