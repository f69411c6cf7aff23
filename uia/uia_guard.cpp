// Guards checked before any command runs: the upgrade lock, the number of
// running instances and the SAN-boot flag.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "mpi/mpi_file.h"
#include "mpi/mpi_root.h"
#include "uia/uia.h"
#include "uia/uia_shell.h"

uint32_t INTF_UIA_CheckUpgradeThread()
{
    // The descriptor is deliberately kept open: the shared lock must last
    // until the process ends, so that an upgrade waits for us.
    static int s_lockFd = -1;
    std::string path = MPI_HostPath(UIA_UPGRADE_LOCK_PATH);
    const char* reason = "";
    s_lockFd = MPI_OpenRegular(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW, 0600, &reason);
    if (s_lockFd < 0) {
        UIA_ERR("Open lock file %s fail: %s", path.c_str(), reason);
        return MPI_RET_INTERNAL_ERROR;
    }
    if (flock(s_lockFd, LOCK_SH | LOCK_NB) != 0) {
        UIA_ERR("Lock file %s is held by an upgrade", path.c_str());
        return MPI_RET_UPGRADE_RUNNING;
    }
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIA_CliLimitCheck()
{
    return UIA_RunFirstNumber("ps -e | grep -Ew 'cvadm|cvadmin' | wc -l");
}

void INTF_UIA_CliBegin() {}

void INTF_UIA_CliEnd() {}

uint32_t INTF_UIA_CliQVXSanbootCheck()
{
    std::string command = "cat " + UIA_ShellQuote(MPI_HostPath(UIA_PACKAGES_INFO_PATH)) +
                          " 2>/dev/null | grep -c 'qvx_sanboot_flag=fs_sanboot'";
    return UIA_RunFirstNumber(command) == 1 ? 1 : 0;
}
