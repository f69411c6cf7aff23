// The device node and the request frame.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "mpi/mpi_root.h"
#include "uia/uia.h"

int32_t g_uiUIAIoctlFd = -1;

uint32_t INTF_UIA_Init()
{
    if (g_uiUIAIoctlFd >= 0) {
        return MPI_RET_SUCCESS;
    }
    std::string device = MPI_HostPath(UIA_DEVICE_PATH);
    int fd = open(device.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        UIA_ERR("Open device %s fail, errno:%d", device.c_str(), errno);
        return MPI_RET_FAIL;
    }
    g_uiUIAIoctlFd = fd;
    return MPI_RET_SUCCESS;
}

void INTF_UIA_Fini()
{
    if (g_uiUIAIoctlFd >= 0) {
        (void)close(g_uiUIAIoctlFd);
        g_uiUIAIoctlFd = -1;
    }
}

uint32_t INTF_UIA_Ioctl(uint32_t request, void* payload, uint32_t /*size*/)
{
    // The frame is a wire format: build it byte by byte, not as a struct.
    alignas(8) uint8_t frame[UIA_FRAME_SIZE] = {};
    uint32_t unset = UIA_RESULT_UNSET;
    uint64_t address = reinterpret_cast<uintptr_t>(payload);
    std::memcpy(frame + UIA_FRAME_RESULT, &unset, sizeof(unset));
    std::memcpy(frame + UIA_FRAME_PAYLOAD, &address, sizeof(address));

    int ret = ioctl(g_uiUIAIoctlFd, static_cast<unsigned long>(request), frame);
    int err = errno;

    uint32_t result = 0;
    std::memcpy(&result, frame + UIA_FRAME_RESULT, sizeof(result));
    if (result == MPI_RET_SUCCESS) {
        return MPI_RET_SUCCESS;
    }
    MPI_TraceRaw(MPI_MOD_UIA, MPI_LOG_ERROR, __func__, __LINE__, "Send Ioctl {%lu} fail. ret {%d}.errno:%d.--%s\n",
                 static_cast<unsigned long>(request), ret, err, std::strerror(err));
    return MPI_RET_IOCTL_FAIL;
}

uint32_t UIA_Send(const UiaRequest& req, UiaPayload& payload)
{
    UIA_ASSERT(payload.size() >= req.size);
    return INTF_UIA_Ioctl(req.code(), payload.data(), static_cast<uint32_t>(payload.size()));
}
