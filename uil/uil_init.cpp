#include <unistd.h>

#include "uia/uia.h"
#include "uil/uil.h"
#include "uil/uil_cfg.h"
#include "uil/uil_file.h"

uint32_t INTF_UIL_Init()
{
    UIL_GetLogPathName();
    UIL_FileErrorClear();
    if (UIL_LogInit() != MPI_RET_SUCCESS) {
        // Named for the shell: otherwise only the device would be blamed.
        UIL_FileErrorNote(g_pstUILLogTracePath, MPI_LogInitFailure());
        return UIL_TRACE_INIT_FAIL;
    }
    uint32_t rc = UIL_CfgInit();
    if (rc != MPI_RET_SUCCESS) {
        return rc;
    }
    return INTF_UIA_Init();
}

void INTF_UIL_Fini()
{
    INTF_UIA_Fini();
    UIL_CfgFini();
    UIL_LogFini();
}

void INTF_UIL_ReleaseDevice()
{
    if (g_uiUIAIoctlFd >= 0) {
        (void)close(g_uiUIAIoctlFd);
    }
}

void INTF_UIL_CliBegin() { INTF_UIA_CliBegin(); }

void INTF_UIL_CliEnd() { INTF_UIA_CliEnd(); }

uint32_t INTF_UIL_CheckUpgradeThread() { return INTF_UIA_CheckUpgradeThread(); }

uint32_t INTF_UIL_CliLimitCheck()
{
    if (INTF_UIA_CliLimitCheck() > UIA_MAX_INSTANCES) {
        UIL_ERR("system is busy!");
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

void INTF_UIL_CheckConfig(UilEmitFn emit) { INTF_UIA_CheckConfig(emit); }

void INTF_UIL_CheckHBAConfig(UilEmitFn emit) { INTF_UIA_CheckHBAConfig(emit); }
