// `show array`: the table of every array, and the detail block of chosen
// arrays with their controllers and paths.
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "mpi/mpi_scope.h"
#include "cli/cli_grid.h"
#include "cli/cli_objects.h"
#include "cli/cli_print.h"
#include "cli/cli_token.h"
#include "uil/uil_cfg.h"

namespace {

constexpr uint32_t kMaxWords = 3;  // "array", "id=...", "verbose"
constexpr uint32_t kDetailWidth = 55;
constexpr size_t kNameCut = 80;
constexpr const char kUsageLine[] = "    -- show array [id=<ID1,ID2,...> [verbose]]\n";

// The frame is two characters wider than the cells.
constexpr uint32_t kArrayDashExtra = 2;
constexpr std::array kArrayColumns = std::to_array<MPCLI_Column>({
    {"Array ID", 8},
    {"Array Name", 10},
    {"Array SN", 20},
    {"Vendor Name", 11},
    {"Product Name", 12},
});

// Widths only grow while the shell runs, so that tables shown one after the
// other at the prompt line up.
MPCLI_TableLayout& arrayLayout()
{
    static MPCLI_TableLayout layout(kArrayColumns, kArrayDashExtra);
    return layout;
}

uint8_t printInvalidUsage()
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n%s", kUsageLine);
    return MPCLI_RESULT_FAIL;
}

// ---------------------------------------------------------------------------
// Table.

void addArrayRow(MPCLI_Grid& grid, const ArrayInfo& array)
{
    char name[kNameCut + 1] = {};
    MPCLI_ConvertArrayName(array.name, name, sizeof(name));
    MPCLI_ClearStrEndSpace(name);
    grid.addU32(array.arrayId);
    grid.add(name);
    grid.add(array.sn);
    grid.add(array.vendor);
    grid.add(array.product);
}

uint8_t showArrayTable()
{
    MPI_ListNode arrays;
    const uint32_t ret = INTF_UIL_EnumerateArrayStart(&arrays);
    if (ret == MPI_RET_NOT_FOUND) {
        MPCLI_Print("can't find any arrays.\n");
        return MPCLI_RESULT_OK;
    }
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_Print("Can't lookup any arrays information\n");
        return MPCLI_RESULT_FAIL;
    }
    MPCLI_Grid grid(kArrayColumns.size());
    {
        MPI_Ended<INTF_UIL_EnumerateArrayEnd> owned(&arrays);
        for (const MPI_ListNode* node = arrays.next; node != &arrays; node = node->next) {
            addArrayRow(grid, *MPI_ListEntry<ArrayInfo>(node));
        }
    }
    MPCLI_WriteGrid(arrayLayout(), grid);
    return MPCLI_RESULT_OK;
}

// ---------------------------------------------------------------------------
// Detail.

void printDetailTitle(uint32_t arrayId)
{
    const std::string title = "Array#" + std::to_string(arrayId) + " Information";
    MPCLI_PrintDoubleDash(kDetailWidth);
    MPCLI_PrintCentred(title.c_str(), kDetailWidth);
    MPCLI_Print("\n");
    MPCLI_PrintDoubleDash(kDetailWidth);
}

void printController(const ArrayInfo& array, const UilController& controller, UilControllerNamer& namer)
{
    char name[UIL_CONTROLLER_NAME_SIZE] = {};
    (void)namer.format(array.arrayId, controller.tpgId, array.capability, name, sizeof(name));
    MPCLI_Print("Controller %s\n", name);
    MPCLI_Print("       Status  : %s", controller.state == UIL_TPG_ENABLED ? "Enable" : "Disable");
    if (controller.remote == UIL_TPG_REMOTE) {
        MPCLI_Print("(Remote)");
    }
    MPCLI_Print("\n");
    MPCLI_Print("       LunCount: %u\n", controller.lunCount);
    MPCLI_Print("       PathInfo: \n");
    for (const MPI_ListNode* node = controller.paths.next; node != &controller.paths; node = node->next) {
        const UilPathInfo* path = MPI_ListEntry<UilPathInfo>(node);
        if (path->lunCount != 0) {
            MPCLI_Print("                Path%u: %s\n", path->pathId, path->pathState);
        }
    }
}

// Controllers that carry no LUN are left out.
void MPCLI_PrintArraysForDetail(const ArrayInfo& array)
{
    printDetailTitle(array.arrayId);
    MPCLI_Print("Array Name     : %s\n", array.name);
    MPCLI_Print("Array SN       : %s\n", array.sn);
    MPCLI_Print("Vendor Name    : %s\n", array.vendor);
    MPCLI_Print("Product Name   : %s\n", array.product);
    UilControllerNamer namer;
    for (const MPI_ListNode* node = array.controllers.next; node != &array.controllers; node = node->next) {
        const UilController* controller = MPI_ListEntry<UilController>(node);
        if (controller->lunCount != 0) {
            printController(array, *controller, namer);
        }
    }
}

// Returns false when the array does not exist (an array without disks is
// not shown either) or, with `verbose`, when its configuration cannot be
// read: the array is then skipped.
bool showOneArray(uint32_t arrayId, bool verbose)
{
    ArrayInfo array;
    const uint32_t ret = INTF_UIL_GetArrayInfoStart(arrayId, &array);
    MPI_Ended<INTF_UIL_GetArrayInfoEnd> owned(&array);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", arrayId);
        return false;
    }
    UilFullCfg config{};
    if (verbose) {
        const uint32_t cfgRet = INTF_UIL_GetFullConfig("", array.sn, &config);
        if (cfgRet != MPI_RET_SUCCESS) {
            UIL_ERR("Get config of array {%u} failed. ret {%u}", arrayId, cfgRet);
            MPCLI_Print("Get config information failed.\n");
            return false;
        }
    }
    MPCLI_PrintArraysForDetail(array);
    owned.reset();
    if (verbose) {
        MPCLI_PrintConfigForArray(config);
    }
    MPCLI_PrintDoubleDash(kDetailWidth);
    return true;
}

uint8_t showArrayDetails(const MPCLI_Command& command)
{
    uint32_t ids[MPCLI_MAX_IDS] = {};
    uint32_t count = 0;
    if (MPCLI_ReadIdList(command[1], "id", ids, MPCLI_MAX_IDS, &count, MPCLI_ID_ARRAY) != 1) {
        MPCLI_Print("Usage:\n%s", kUsageLine);
        return MPCLI_RESULT_FAIL;
    }
    if (count == 0) {
        return printInvalidUsage();
    }
    const bool verbose = command.size() == kMaxWords;
    if (verbose && (!command.keysAccepted() || !command[2].is("verbose"))) {
        return printInvalidUsage();
    }
    uint8_t result = MPCLI_RESULT_OK;
    for (uint32_t i = 0; i < count; ++i) {
        if (!showOneArray(ids[i], verbose)) {
            result = MPCLI_RESULT_FAIL;
        }
    }
    return result;
}

}  // namespace

uint8_t MPCLI_ShowArray(const MPCLI_Command& command)
{
    if (command.size() == 0) {
        MPCLI_Print("Error: Need more option\n");
        MPCLI_CVMUsage();
        return MPCLI_RESULT_FAIL;
    }
    if (command.size() > kMaxWords) {
        return printInvalidUsage();
    }
    if (command.size() == 1) {
        return showArrayTable();
    }
    return showArrayDetails(command);
}
