// Commands that belong to no storage object: version, reservation key,
// host status, worker threads; and the shared error reporters.
#include <cstdio>
#include <cstring>
#include <vector>

#include "cli/cli.h"
#include "cli/cli_helptext.h"
#include "cli/cli_operlog.h"
#include "cli/cli_out.h"
#include "uil/uil.h"
#include "uil/uil_cfg.h"
#include "uil/uil_status.h"
#include "mpi/mpi_scope.h"

namespace {

constexpr int kStatusDashes = 60;

const char* severityText(uint32_t severity)
{
    switch (severity) {
    case UIL_SEVERITY_CRITICAL: return "Critical";
    case UIL_SEVERITY_MAJOR: return "Major";
    case UIL_SEVERITY_WARNING: return "Warning";
    default: return "--";
    }
}

struct StatusText {
    uint32_t type;
    const char* name;
};

constexpr StatusText kStatusTypes[] = {
    {UIL_STATUS_PATH_DOWN, "Path down"},
    {UIL_STATUS_PATH_UNSTABLE, "Unstable path"},
    {UIL_STATUS_ALL_PATH_DOWN, "All path down"},
    {UIL_STATUS_LUN_ABNORMAL, "LUN abnormal"},
    {UIL_STATUS_PATH_DISABLED, "Path disabled"},
    {UIL_STATUS_NO_REDUNDANT_CTRL, "No redundant controllers"},
    {UIL_STATUS_LUN_PATH_UNSTABLE, "Unstable path of LUN"},
};

const char* statusTypeName(uint32_t type)
{
    for (const StatusText& row : kStatusTypes) {
        if (row.type == type) {
            return row.name;
        }
    }
    return "--";
}

void printDashLine()
{
    char line[kStatusDashes + 2];
    std::memset(line, '-', kStatusDashes);
    line[kStatusDashes] = '\n';
    line[kStatusDashes + 1] = '\0';
    MPCLI_Print("%s", line);
}

// The host scripts' lines: each one is out before the next script starts.
void printText(const char* text)
{
    MPCLI_Print("%s", text);
    MPCLI_OutFlush();
}

void printStatusSection()
{
    MPI_ListNode records;
    uint32_t ret = INTF_UIL_CheckArrayPathDiskStatus(&records);
    const MPI_Ended<INTF_UIL_CheckStatusEnd> owner(&records);
    printDashLine();
    MPCLI_Print("Checking path status:\n");
    if (MPI_ListEmpty(&records)) {
        if (ret == MPI_RET_SUCCESS) {
            MPCLI_Print("Pass\n");
        } else if (ret == MPI_RET_NOT_FOUND) {
            MPCLI_Print("Failed to check array path and disk status because there is no array information.\n");
        } else {
            MPCLI_Print("Failed to check status due to internal errors.\n");
        }
        return;
    }
    MPCLI_Print("%-13s%-25s%-25s%-128s\n", "Serverity", "Array", "Type", "Description");
    for (MPI_ListNode* node = records.next; node != &records; node = node->next) {
        const UilStatusRecord* rec = MPI_ListEntry<UilStatusRecord>(node);
        char description[512];
        MPCLI_FormatCheckStatus(rec, description, sizeof(description));
        MPCLI_Print("%-13s%-25s%-25s%-128s\n", severityText(rec->severity), rec->arrayName,
                    statusTypeName(rec->type), description);
    }
}

}  // namespace

void MPCLI_FormatCheckStatus(const UilStatusRecord* rec, char* out, size_t size)
{
    switch (rec->type) {
    case UIL_STATUS_PATH_DOWN:
        std::snprintf(out, size, "The path (initiator wwn:%s, controller:%s, target wwn:%s) is down.\n",
                      rec->initiatorWwn, rec->controller, rec->targetWwn);
        break;
    case UIL_STATUS_PATH_UNSTABLE:
        std::snprintf(out, size, "The path (initiator wwn:%s, controller:%s, target wwn:%s) is in the unstable state.\n",
                      rec->initiatorWwn, rec->controller, rec->targetWwn);
        break;
    case UIL_STATUS_ALL_PATH_DOWN:
        std::snprintf(out, size, "All paths of LUN (wwn:%s) are down.\n", rec->lunWwn);
        break;
    case UIL_STATUS_LUN_ABNORMAL:
        std::snprintf(out, size, "The LUN (wwn:%s) is abnormal.\n", rec->lunWwn);
        break;
    case UIL_STATUS_PATH_DISABLED:
        std::snprintf(out, size,
                      "The path (initiator wwn:%s, controller:%s, target wwn:%s) is in the disabled state.\n",
                      rec->initiatorWwn, rec->controller, rec->targetWwn);
        break;
    case UIL_STATUS_NO_REDUNDANT_CTRL:
        if (rec->lunWwn[0] == '\0') {
            std::snprintf(out, size, "No redundant controllers.");
        } else {
            std::snprintf(out, size, "The LUN (wwn:%s) cannot be accessed through a redundant controller.\n",
                          rec->lunWwn);
        }
        break;
    case UIL_STATUS_LUN_PATH_UNSTABLE:
        std::snprintf(out, size,
                      "The path (id:%u, initiator wwn:%s, controller:%s, target wwn:%s) of LUN (wwn:%s) is in the "
                      "unstable state.\n",
                      rec->pathId, rec->initiatorWwn, rec->controller, rec->targetWwn, rec->lunWwn);
        break;
    default:
        std::snprintf(out, size, "--");
        break;
    }
}

// The text on standard output is the same whatever the code, since scripts
// match it; the one cause an operator can mend himself, a configuration
// file that is gone or damaged, is named on standard error as well.
void MPCLI_PrintfInternalErrorInfo(uint32_t code)
{
    MPCLI_Print("Failed to execute the command due to internal errors.\n");
    if (code == UIL_RET_CFG_LOAD_FAIL) {
        std::fprintf(stderr, "cvadm: the configuration file %s is missing or cannot be parsed.\n",
                     UIL_CfgFilePath());
    } else if (*INTF_UIL_LastFileError() != '\0') {
        std::fprintf(stderr, "cvadm: %s\n", INTF_UIL_LastFileError());
    }
}

void MPCLI_PrintfErrorInfo(uint32_t code, const char* objectId, uint8_t perVlun)
{
    if (code == MPI_RET_ARRAY_NOT_EXIST) {
        MPCLI_Print("The disk array whose ID is %s does not exist.\n", objectId);
    } else if (code == MPI_RET_VLUN_NOT_EXIST) {
        MPCLI_Print("The VLUN whose ID is %s does not exist.\n", objectId);
    } else if (perVlun) {
        MPCLI_Print("Failed in executing the command for vlun %s.\n", objectId);
    } else {
        MPCLI_PrintfInternalErrorInfo(code);
    }
}

uint8_t MPCLI_ShowVersion(const MPCLI_Command& command)
{
    // "verbose" is a bare word, not a key with a value.
    if (command.size() > 2 || !command.keysAccepted() || (command.size() == 2 && command[1].hasEqual)) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n            -- show version [verbose]\n");
        return MPCLI_RESULT_FAIL;
    }
    char driverVersion[UIL_VERSION_LEN] = {};
    if (INTF_UIL_GetVersion(driverVersion, sizeof(driverVersion)) != MPI_RET_SUCCESS) {
        UIL_ERR("Get Version info fail");
        return MPCLI_RESULT_FAIL;
    }
    MPCLI_Print("Software Version   : %s\n", UIL_SOFTWARE_VERSION);
    MPCLI_Print("Driver   Version   : %s\n", driverVersion);
    if (command.size() == 2) {
        MPCLI_Print("Product  Version   : %s\n", UIL_PRODUCT_VERSION);
    }
    return MPCLI_RESULT_OK;
}

uint8_t MPCLI_GenClusterKey(const MPCLI_Command& command)
{
    if (command.size() > 1) {
        MPCLI_Print("Error: Invalid input!\n Usage:\n    -- genprkey\n");
        return MPCLI_RESULT_FAIL;
    }
    char key[UIL_PRKEY_BUF_LEN] = {};
    (void)INTF_UIL_GenClusterKey(key, sizeof(key));
    MPCLI_Print("%s\n", key);
    UIL_TRACE(MPI_LOG_INFO, "Generate pr key {%s} execute succeed", key);
    MPCLI_OperLog("set", command, UIL_OPER_GEN_PRKEY, MPCLI_RESULT_OK, nullptr);
    return MPCLI_RESULT_OK;
}

uint8_t MPCLI_CheckStatus(const MPCLI_Command& command)
{
    if (command.size() > 1) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n    -- check status\n");
        return MPCLI_RESULT_FAIL;
    }
    printStatusSection();
    printDashLine();
    MPCLI_Print("Checking environment and config:\n");
    MPCLI_OutFlush();  // the checks run child processes that share our stdout
    INTF_UIL_CheckConfig(printText);
    printDashLine();
    MPCLI_Print("Checking HBA Information:\n");
    MPCLI_OutFlush();
    INTF_UIL_CheckHBAConfig(printText);
    printDashLine();
    return MPCLI_RESULT_OK;
}

uint8_t MPCLI_ShowWorker(const MPCLI_Command& command)
{
    if (command.size() > 1) {
        MPCLI_Print("Error: Invalid input!\n Usage:\n%s", HELP_SHOW_WORKERSTATE);
        return MPCLI_RESULT_FAIL;
    }
    std::vector<UilWorkerInfo> workers;
    uint32_t ret = UIL_GetWorkerInfo(&workers);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_PrintfInternalErrorInfo(ret);
        return MPCLI_RESULT_FAIL;
    }
    for (const UilWorkerInfo& w : workers) {
        const UilWorkerTime& l = w.lastRefresh;
        const UilWorkerTime& p = w.present;
        MPCLI_Print("worker name: %-25s\tlast refresh time: %-4u-%02u-%02u %02u:%02u:%02u\tpresent time: "
                    "%-4u-%02u-%02u %02u:%02u:%02u\n",
                    w.name, l.year, l.month, l.day, l.hour, l.minute, l.second, p.year, p.month, p.day, p.hour,
                    p.minute, p.second);
    }
    return MPCLI_RESULT_OK;
}

uint8_t MPCLI_StartDiskDriverUpdate(const MPCLI_Command& /*command*/)
{
    UIL_ERR("This function is only for Windows OS");
    return MPCLI_RESULT_FAIL;
}

uint8_t MPCLI_RiskPrompt(const char* pszRiskPrompt)
{
    MPI_ASSERT_IN(MPI_MOD_UIL, MPI_SRC_CLI_MISC, pszRiskPrompt != NULL);
    int first = 0;
    int second = 0;
    for (;;) {
        MPCLI_Print("\n");
        if (first == 'y' && second == '\n') {
            return 1;
        }
        if (first == 'n' && second == '\n') {
            return 0;
        }
        MPCLI_Print("%s", pszRiskPrompt);
        first = std::getchar();
        second = first == EOF ? EOF : std::getchar();
        if (first == EOF || second == EOF) {
            return 0;  // nobody is there to confirm: the risky step is not taken
        }
        if (second != '\n') {
            int c = 0;
            while ((c = std::getchar()) != '\n' && c != EOF) {
            }
        }
    }
}
