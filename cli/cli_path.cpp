// `show path`: the physical paths of every array or of one array as a
// table, or chosen paths in detail; and the controller name and path line
// that the other object displays share.
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_command.h"
#include "cli/cli_grid.h"
#include "cli/cli_objects.h"
#include "cli/cli_print.h"
#include "cli/cli_token.h"
#include "mpi/mpi_scope.h"

namespace {

constexpr uint32_t kMaxWords = 2;  // "path" and one selector
constexpr uint32_t kDetailWidth = 40;
constexpr size_t kKeyLen = 64;
constexpr uint32_t kDiskPathField = 16;
constexpr const char kUsageLine[] = "   -- show path [id=<ID1,ID2,...>|array_id=ID]\n";
constexpr const char kIdUsageLine[] = "      -- show path [id=<ID1,ID2,...>|array_id=ID]\n";
constexpr const char kNone[] = "--";
constexpr const char kCheckInit[] = "Init";

struct PortTypeText {
    uint32_t type;
    const char* text;
};
constexpr std::array kPortTypes = std::to_array<PortTypeText>({
    {UIL_PORT_FC, "FC"},
    {UIL_PORT_SAS, "SAS"},
    {UIL_PORT_ISCSI, "iSCSI"},
    {UIL_PORT_FCOE, "FCOE"},
    {UIL_PORT_IB, "IB"},
});

const char* portTypeText(uint32_t type)
{
    for (const PortTypeText& row : kPortTypes) {
        if (row.type == type) {
            return row.text;
        }
    }
    return kNone;
}

const char* checkStateText(const UilPathInfo& path)
{
    return std::strcmp(path.checkStepWord, kCheckInit) == 0 ? kNone : path.checkStepWord;
}

const char* portIdText(const UilPathInfo& path) { return path.portId[0] == '\0' ? kNone : path.portId; }

uint8_t printInvalidUsage()
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n%s", kUsageLine);
    return MPCLI_RESULT_FAIL;
}

// ---------------------------------------------------------------------------
// List view.

enum PathColumn : size_t { kColId, kColInitiator, kColArrayName, kColController, kColTarget, kColState,
                           kColCheck, kColPortType, kColPortId };
// The frame is four characters wider than the cells.
constexpr uint32_t kPathDashExtra = 4;
constexpr std::array kPathColumns = std::to_array<MPCLI_Column>({
    {"Path ID", 7},
    {"Initiator Port", 14},
    {"Array Name", 10},
    {"Controller", 10},
    {"Target Port", 11},
    {"Path State", 10},
    {"Check State", 11},
    {"Port Type", 9, true},
    {"Port ID", 7},
});

MPCLI_TableLayout& pathLayout()
{
    static MPCLI_TableLayout layout(kPathColumns, kPathDashExtra);
    return layout;
}

// Appends one path's row to the grid and grows the widths to fit it. Every
// cell sets its column's width, except the controller's: that column is as
// wide as the plain print name of the controller, whatever name the cell
// shows.
void addPathRow(MPCLI_Grid& grid, MPCLI_TableLayout& layout, const UilPathInfo& path, UilControllerNamer& namer)
{
    const size_t first = grid.cellCount();
    char controller[UIL_CONTROLLER_NAME_SIZE] = {};
    (void)namer.format(path.arrayId, path.controllerId, path.arrayFlags, controller, sizeof(controller));
    grid.addU32(path.pathId);
    grid.add(path.initiatorPort);
    grid.add(path.arrayName);
    grid.add(controller);
    grid.add(path.targetPort);
    grid.add(path.pathState);
    grid.add(checkStateText(path));
    grid.add(portTypeText(path.portType));
    grid.add(portIdText(path));
    const size_t row = first / grid.columns();
    for (size_t column = 0; column < grid.columns(); ++column) {
        if (column != kColController) {
            layout.measureCell(column, grid.cell(row, column).size());
        }
    }
    char printName[UIL_CONTROLLER_NAME_SIZE] = {};
    UIL_ConvertControllerIdToPrintName(path.controllerId, path.arrayFlags, printName, sizeof(printName));
    layout.measureCell(kColController, std::strlen(printName));
}

// One array's paths: heading, rows, closing dash line, flushed once.
// Returns the number of rows printed.
size_t printPathList(const MPI_ListNode& paths, UilControllerNamer& namer)
{
    MPCLI_TableLayout& layout = pathLayout();
    MPCLI_Grid grid(kPathColumns.size());
    for (const MPI_ListNode* node = paths.next; node != &paths; node = node->next) {
        addPathRow(grid, layout, *MPI_ListEntry<UilPathInfo>(node), namer);
    }
    if (grid.rows() == 0) {
        return 0;
    }
    MPCLI_WriteMeasuredGrid(layout, grid);
    return grid.rows();
}

uint8_t showPathsOfArray(uint32_t arrayId)
{
    MPI_ListNode paths;
    const uint32_t ret = INTF_UIL_EnumeratePhyPathStart(arrayId, &paths);
    if (ret == UIL_RET_NO_PATH || ret == MPI_RET_NOT_FOUND) {
        MPCLI_Print("There is no path or vlun on the disk array whose ID is %u.\n", arrayId);
        return MPCLI_RESULT_FAIL;
    }
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate ArrayId {%u} Phy path info fail. ret {%d}", arrayId, static_cast<int>(ret));
        MPCLI_PrintfInternalErrorInfo(ret);
        return MPCLI_RESULT_FAIL;
    }
    const MPI_Ended<INTF_UIL_EnumeratePhyPathEnd> owner(&paths);
    UilControllerNamer namer;
    (void)printPathList(paths, namer);
    return MPCLI_RESULT_OK;
}

uint8_t MPCLI_ShowPathAll()
{
    uint32_t arrayIds[UIL_MAX_ARRAYS] = {};
    uint32_t arrays = 0;
    uint32_t reported = 0;
    if (INTF_UIL_EnumerateArrayIdsCounted(arrayIds, UIL_MAX_ARRAYS, &arrays, &reported) != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate array ids fail");
        return MPCLI_RESULT_FAIL;
    }
    // The driver's own count decides: one above what it may hold means its
    // answer cannot be trusted, even though the IDs were clamped.
    if (reported == 0 || reported > UIL_MAX_ARRAYS || arrays == 0) {
        MPCLI_Print("Can't find any path.\n");
        return MPCLI_RESULT_OK;
    }
    UilControllerNamer namer;
    uint32_t noPath = 0;
    size_t printed = 0;
    uint8_t result = MPCLI_RESULT_OK;
    for (uint32_t i = 0; i < arrays; ++i) {
        MPI_ListNode paths;
        const uint32_t ret = INTF_UIL_EnumeratePhyPathStart(arrayIds[i], &paths);
        if (ret == UIL_RET_NO_PATH) {
            ++noPath;
            continue;
        }
        if (ret == MPI_RET_NOT_FOUND) {
            continue;
        }
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Enumerate ArrayId {%u} Phy path info fail. ret {%d}", arrayIds[i], static_cast<int>(ret));
            MPCLI_PrintfInternalErrorInfo(ret);
            result = MPCLI_RESULT_FAIL;
            continue;
        }
        const MPI_Ended<INTF_UIL_EnumeratePhyPathEnd> owner(&paths);
        printed += printPathList(paths, namer);
    }
    if (noPath == arrays || printed == 0) {
        MPCLI_Print("Can't find any pathes.\n");
    }
    return result;
}

// ---------------------------------------------------------------------------
// Detail view.

void printTextLine(const char* label, const char* text) { MPCLI_Print("%-16s:  %s\n", label, text); }

void printCountLine(const char* label, uint64_t count)
{
    MPCLI_Print("%-16s:  %llu\n", label, static_cast<unsigned long long>(count));
}

void MPCLI_PrintPhyPathForDetail(const UilPathInfo& path)
{
    const std::string title = "Path#" + std::to_string(path.pathId) + " Information";
    MPCLI_PrintDoubleDash(kDetailWidth);
    MPCLI_PrintCentred(title.c_str(), kDetailWidth);
    MPCLI_Print("\n");
    MPCLI_PrintDoubleDash(kDetailWidth);

    char controller[UIL_CONTROLLER_NAME_SIZE] = {};
    (void)MPCLI_strFormatControllerId(path.arrayId, path.controllerId, path.arrayFlags, controller,
                                      sizeof(controller));
    printTextLine("Initiator Port", path.initiatorPort);
    printTextLine("Array Name", path.arrayName);
    printTextLine("Controller", controller);
    printTextLine("Target Port", path.targetPort);
    printTextLine("Path State", path.pathState);
    printTextLine("Check State", checkStateText(path));
    printTextLine("Port Type", portTypeText(path.portType));
    printCountLine("I/O Retry count", path.ioRetryCount);
    printCountLine("Path Fault count", path.pathFaultCount);
    printCountLine("Latency-Low(ms)", path.latencyLowMs);
    printCountLine("Latency-High(ms)", path.latencyHighMs);
    printCountLine("Latency-avg(ms) ", path.latencyAvgMs);
    printTextLine("Port ID", portIdText(path));
    MPCLI_PrintDoubleDash(kDetailWidth);
}

// Each path that exists is shown; a missing one is reported and the others
// are still shown, and the command succeeds whatever was found.
uint8_t showPathsById(const MPCLI_Word& word)
{
    uint32_t ids[MPCLI_MAX_IDS] = {};
    uint32_t count = 0;
    if (MPCLI_ReadIdList(word, "id", ids, MPCLI_MAX_IDS, &count, MPCLI_ID_PATH) != 1 || count == 0) {
        MPCLI_Print("Usage:\n");
        MPCLI_Print("%s", kIdUsageLine);
        return MPCLI_RESULT_FAIL;
    }
    UilPathInfo path;
    for (uint32_t i = 0; i < count; ++i) {
        std::memset(static_cast<void*>(&path), 0, sizeof(path));
        if (INTF_UIL_GetPhyPathInfo(ids[i], &path) != MPI_RET_SUCCESS) {
            MPCLI_Print("The path whose ID is %u does not exist.\n", ids[i]);
            continue;
        }
        MPCLI_PrintPhyPathForDetail(path);
    }
    return MPCLI_RESULT_OK;
}

// One array, by the same number and range rules as every other array ID.
uint8_t showPathsByArrayWord(const MPCLI_Word& word)
{
    uint32_t arrayId = 0;
    if (!word.hasValue() || !MPCLI_ReadNum(word.value, &arrayId)) {
        return printInvalidUsage();
    }
    if (MPCLI_ValueCheckByType(static_cast<int32_t>(arrayId), MPCLI_ID_ARRAY) == 0) {
        MPCLI_Print("Error: %.*s is out of range\n", static_cast<int>(word.value.size()), word.value.data());
        return printInvalidUsage();
    }
    return showPathsOfArray(arrayId);
}

}  // namespace

uint32_t MPCLI_strFormatControllerId(uint32_t arrayId, uint32_t controllerId, uint32_t capability, char* out,
                                     size_t outSize)
{
    CLI_ASSERT(out != nullptr);
    CLI_ASSERT(outSize > 0);
    return UIL_strFormatControllerId(arrayId, controllerId, capability, out, outSize);
}

void MPCLI_PrintDiskPath(const UilPathInfo& path, uint32_t indent)
{
    char text[UIL_PORT_TEXT_SIZE] = {};
    (void)snprintf_s(text, sizeof(text), sizeof(text) - 1, "Path %u [%u:%u:%u:%llu] (%s)", path.pathId,
                     path.scsiHost, path.scsiChannel, path.scsiTarget,
                     static_cast<unsigned long long>(path.scsiLun), path.logText1056);
    MPCLI_Print("%*s", static_cast<int>(indent), "");
    MPCLI_PrintCentred(text, kDiskPathField);
    MPCLI_Print("  : %s\n", path.pathState);
}

uint8_t MPCLI_ShowPath(const MPCLI_Command& command)
{
    if (command[0].raw.empty()) {  // not even its own keyword
        MPCLI_Print("Error: Need more option\n");
        MPCLI_CVMUsage();
        return MPCLI_RESULT_FAIL;
    }
    if (command.size() == 1) {
        return MPCLI_ShowPathAll();
    }
    if (command.size() > kMaxWords) {
        return printInvalidUsage();
    }
    const MPCLI_Word& word = command[1];
    if (!word.hasEqual || word.key.size() > kKeyLen || !command.keysAccepted()) {
        return printInvalidUsage();
    }
    if (word.key == "id") {
        return showPathsById(word);
    }
    if (word.key == "array_id") {
        return showPathsByArrayWord(word);
    }
    return printInvalidUsage();
}
