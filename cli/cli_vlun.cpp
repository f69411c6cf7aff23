// `show vlun`: the VLUN table of every array or of chosen arrays, filtered
// by VLUN type, and the detail of chosen VLUNs; and the capacity text.
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_aglun.h"
#include "cli/cli_capacity.h"
#include "cli/cli_command.h"
#include "cli/cli_grid.h"
#include "cli/cli_objects.h"
#include "cli/cli_print.h"
#include "cli/cli_token.h"
#include "uil/uil_cfg.h"
#include "mpi/mpi_scope.h"

namespace {

constexpr uint32_t kMaxListWords = 3;  // "vlun", "array_id=...", "type=..."
constexpr size_t kWordLen = 64;
constexpr uint32_t kMsPerSecond = 1000;
constexpr const char kNone[] = "--";
constexpr const char kVerbose[] = "verbose";
constexpr const char kUsage[] =
    "Error: Invalid input!\nUsage:\n"
    "            -- show vlun id=<0,1,2,...> [type=<all|dualsite|migration>] [verbose]\n"
    "            -- show vlun array_id=<0,1,2,...> [type=<all|dualsite|migration>]\n"
    "            -- show vlun type=<all|dualsite|migration>\n";

uint8_t printUsage()
{
    MPCLI_Print("%s", kUsage);
    return MPCLI_RESULT_FAIL;
}

// ---------------------------------------------------------------------------
// Words of the command.

struct VLunTypeWord {
    const char* keyword;
    uint8_t type;
};
constexpr std::array kVLunTypeWords = std::to_array<VLunTypeWord>({
    {"all", UIL_VLUN_TYPE_ALL},
    {"dualsite", UIL_VLUN_TYPE_DUALSITE},
    {"migration", UIL_VLUN_TYPE_MIGRATION},
    {"pe", UIL_VLUN_TYPE_PE},
});

bool isTypeWord(const MPCLI_Word& word) { return word.hasEqual && word.key == "type"; }

// The row of a "type=..." word; null for any other value.
const VLunTypeWord* typeFromWord(const MPCLI_Word& word)
{
    if (!word.hasValue() || word.value.size() > kWordLen) {
        return nullptr;
    }
    for (const VLunTypeWord& row : kVLunTypeWords) {
        if (word.value == row.keyword) {
            return &row;
        }
    }
    return nullptr;
}

// Words that may follow the first selector of the command.
bool MPCLI_CheckShowVLunPara(const MPCLI_Word& word) { return word.is(kVerbose) || isTypeWord(word); }

// The filter a VLUN must pass: ordinary VLUNs unless a type word says
// otherwise.
struct VLunFilter {
    uint8_t type = UIL_VLUN_TYPE_ORDINARY;
    const char* keyword = "";  // as typed, for the type-mismatch line
    bool given = false;

    bool keeps(const VLunInfo& vlun) const
    {
        return type == UIL_VLUN_TYPE_ALL || vlun.type == type || (type == UIL_VLUN_TYPE_PE && vlun.peFlag == 1);
    }
};

// Reads a type word into `filter`; false when the value is not a type or a
// second type word is given.
bool takeTypeWord(const MPCLI_Word& word, VLunFilter* filter)
{
    if (filter->given) {
        return false;
    }
    const VLunTypeWord* row = typeFromWord(word);
    filter->given = true;
    if (row == nullptr) {
        filter->type = UIL_VLUN_TYPE_INVALID;
        return false;
    }
    filter->type = row->type;
    filter->keyword = row->keyword;
    return true;
}

// ---------------------------------------------------------------------------
// Table.

enum VLunColumn : size_t { kColId, kColDisk, kColName, kColWwn, kColStatus, kColCapacity, kColCtrl,
                           kColArrayName, kColDevLunId };
// The frame is six characters wider than the cells.
constexpr uint32_t kVLunDashExtra = 6;
constexpr std::array kVLunColumns = std::to_array<MPCLI_Column>({
    {"Vlun ID", 7},
    {"Disk", 4},
    {"Name", 4},
    {"Lun WWN", 24},
    {"Status", 6},
    {"Capacity", 8, true},  // longer capacity texts overflow the column
    {"Ctrl(Own/Work)", 14, true},
    {"Array Name", 10},
    {"Dev Lun ID", 11},
});

// Widths only grow while the shell runs.
MPCLI_TableLayout& vlunLayout()
{
    static MPCLI_TableLayout layout(kVLunColumns, kVLunDashExtra);
    return layout;
}

size_t digits(uint32_t value)
{
    size_t count = 1;
    for (; value >= 10; value /= 10) {
        ++count;
    }
    return count;
}

// Text of a typical row, to size the grid once.
constexpr size_t kVLunRowBytes = 96;

size_t textLength(const char* text) { return text == nullptr ? 0 : std::strlen(text); }

// Both members of a dual-site VLUN count, whichever slot the row shows.
void MPCLI_CalcVLunFieldLen(MPCLI_TableLayout& layout, const std::vector<const VLunInfo*>& vluns)
{
    for (const VLunInfo* v : vluns) {
        layout.measureCell(kColId, digits(v->vlunId));
        layout.measureCell(kColDisk, textLength(v->deviceName));
        layout.measureCell(kColName, std::max(textLength(v->name[0]), textLength(v->name[1])));
        layout.measureCell(kColWwn, textLength(v->lunWwn));
        const size_t status = v->status[1] != nullptr ? std::max(textLength(v->status[0]), textLength(v->status[1]))
                                                      : textLength(v->status[0]);
        layout.measureCell(kColStatus, status);
        layout.measureCell(kColArrayName, std::max(textLength(v->arrayName[0]), textLength(v->arrayName[1])));
        layout.measureCell(kColDevLunId, std::max(digits(v->devLunId[0]), digits(v->devLunId[1])));
    }
}

// "owning/working" into `out`; one name lookup when both are the same
// controller (the usual case).
std::string_view controllerCell(const VLunInfo& v, uint32_t slot, UilControllerNamer& namer, char* out, size_t size)
{
    if ((v.capability[slot] & UIL_CAP_HIDE_CONTROLLERS) != 0) {
        return "--/--";
    }
    char owning[UIL_CONTROLLER_NAME_SIZE] = {};
    (void)namer.format(v.arrayId[slot], v.owningController[slot], v.capability[slot], owning, sizeof(owning));
    const size_t owningLength = std::strlen(owning);
    std::memcpy(out, owning, owningLength);
    out[owningLength] = '/';
    char* const working = out + owningLength + 1;
    const size_t room = size - owningLength - 1;
    if (v.workingController[slot] == v.owningController[slot]) {
        std::memcpy(working, owning, owningLength);
        return std::string_view(out, 2 * owningLength + 1);
    }
    (void)namer.format(v.arrayId[slot], v.workingController[slot], v.capability[slot], working, room);
    return std::string_view(out, owningLength + 1 + std::strlen(working));
}

std::string capacityText(uint64_t bytes)
{
    char text[64] = {};
    MPCLI_PrintCapacity(text, sizeof(text), bytes);
    return text;
}

void MPCLI_PrintVlunsInfoEach(MPCLI_Grid& grid, const VLunInfo& v, uint32_t slot, UilControllerNamer& namer)
{
    grid.addU32(v.vlunId);
    grid.add(v.deviceName);
    grid.add(v.name[slot]);
    grid.add(v.lunWwn);
    grid.add(v.status[slot] != nullptr ? v.status[slot] : "");
    char capacity[64];
    MPCLI_PrintCapacity(capacity, sizeof(capacity), v.capacity[slot]);
    grid.add(capacity);
    char controllers[2 * UIL_CONTROLLER_NAME_SIZE];
    grid.add(controllerCell(v, slot, namer, controllers, sizeof(controllers)));
    grid.add(v.arrayName[slot]);
    if (v.devLunIdValid[slot] != 0) {
        grid.addU32(v.devLunId[slot]);
    } else {
        grid.add(kNone);
    }
}

// One array's table; a dual-site VLUN shows its member in that array. Rows
// are built into one grid, then written a line at a time and flushed once.
void MPCLI_PrintVLunList(uint32_t arrayId, const std::vector<const VLunInfo*>& vluns, UilControllerNamer& namer)
{
    MPCLI_TableLayout& layout = vlunLayout();
    MPCLI_CalcVLunFieldLen(layout, vluns);
    MPCLI_Grid grid(kVLunColumns.size());
    grid.reserve(vluns.size(), kVLunRowBytes);
    for (const VLunInfo* v : vluns) {
        MPCLI_PrintVlunsInfoEach(grid, *v, UIL_VLunSlotForArray(*v, arrayId), namer);
    }
    // The widths above already cover every cell of the grid (both members
    // of a dual-site VLUN were measured), so the grid is written as it is.
    MPCLI_WriteMeasuredGrid(layout, grid);
}

enum class ListOutcome { kPrinted, kEmpty, kFailed };

// The namer and the cache live as long as the command: names and dual-site
// VLUNs are looked up once, whichever array lists them.
struct VLunListing {
    UilControllerNamer namer;
    UilVLunCache cache;
};

ListOutcome showVLunsOfArray(uint32_t arrayId, const VLunFilter& filter, VLunListing& listing)
{
    MPI_ListNode list;
    const uint32_t ret = INTF_UIL_EnumerateVLunCachedStart(arrayId, &list, &listing.cache);
    if (ret == MPI_RET_NOT_FOUND) {
        return ListOutcome::kEmpty;
    }
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate vlun info of array {%u} fail. ret {%u}", arrayId, ret);
        return ListOutcome::kFailed;
    }
    const MPI_Ended<INTF_UIL_EnumerateVLunEnd> owner(&list);
    std::vector<const VLunInfo*> kept;
    for (const MPI_ListNode* node = list.next; node != &list; node = node->next) {
        const VLunInfo* v = MPI_ListEntry<VLunInfo>(node);
        if (filter.keeps(*v)) {
            kept.push_back(v);
        }
    }
    if (!kept.empty()) {
        MPCLI_PrintVLunList(arrayId, kept, listing.namer);
    }
    return kept.empty() ? ListOutcome::kEmpty : ListOutcome::kPrinted;
}

uint8_t showVLunsOfNamedArrays(const uint32_t* ids, uint32_t count, const VLunFilter& filter)
{
    VLunListing listing;
    uint8_t result = MPCLI_RESULT_OK;
    for (uint32_t i = 0; i < count; ++i) {
        if (showVLunsOfArray(ids[i], filter, listing) != ListOutcome::kPrinted) {
            MPCLI_Print("The VLUN does not exist in disk array %u.\n", ids[i]);
            result = MPCLI_RESULT_FAIL;
        }
    }
    return result;
}

uint8_t showVLunsOfAllArrays(const VLunFilter& filter)
{
    uint32_t ids[UIL_MAX_ARRAYS] = {};
    uint32_t count = 0;
    if (INTF_UIL_EnumerateArrayIds(ids, UIL_MAX_ARRAYS, &count) != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate array ids fail");
        MPCLI_Print("Can't find any vluns.\n");
        return MPCLI_RESULT_FAIL;
    }
    VLunListing listing;
    bool printed = false;
    uint8_t result = MPCLI_RESULT_OK;
    for (uint32_t i = 0; i < count; ++i) {
        const ListOutcome outcome = showVLunsOfArray(ids[i], filter, listing);
        printed = printed || outcome == ListOutcome::kPrinted;
        if (outcome == ListOutcome::kFailed) {
            result = MPCLI_RESULT_FAIL;
        }
    }
    if (!printed) {
        MPCLI_Print("Can't find any vluns.\n");
    }
    return result;
}

// show vlun [array_id=<ID1,...>] [type=<...>]
uint8_t MPCLI_ShowVLunByArrayId(const MPCLI_Command& command)
{
    if (command.size() > kMaxListWords) {
        return printUsage();
    }
    VLunFilter filter;
    const MPCLI_Word* arrayWord = nullptr;
    for (const MPCLI_Word& word : command.args()) {
        if (isTypeWord(word)) {
            if (!takeTypeWord(word, &filter)) {
                return printUsage();
            }
        } else if (word.hasEqual && word.key == "array_id" && arrayWord == nullptr) {
            arrayWord = &word;
        } else {
            return printUsage();
        }
    }
    if (arrayWord == nullptr) {
        return showVLunsOfAllArrays(filter);
    }
    uint32_t ids[MPCLI_MAX_IDS] = {};
    uint32_t count = 0;
    if (MPCLI_ReadIdList(*arrayWord, "array_id", ids, MPCLI_MAX_IDS, &count, MPCLI_ID_ARRAY) != 1 || count == 0) {
        return printUsage();
    }
    return showVLunsOfNamedArrays(ids, count, filter);
}

// ---------------------------------------------------------------------------
// Detail.

bool isPeLun(const VLunInfo& v) { return v.peFlag == 1 || v.type == UIL_VLUN_TYPE_PE; }

// `config` is the VLUN's configuration when "verbose" asked for it.
void MPCLI_PrintDiskDetailInfo(const VLunInfo& v, const DiskInfo& disk, const UilFullCfg* config)
{
    UilControllerNamer namer;
    char owning[UIL_CONTROLLER_NAME_SIZE] = {};
    char working[UIL_CONTROLLER_NAME_SIZE] = {};
    MPCLI_DiskControllerNames(disk, namer, owning, working);
    MPCLI_PrintVLunTitle(v.vlunId);
    MPCLI_Print("Disk                  : %s\n", disk.deviceName);
    MPCLI_Print("Name                  : %s\n", disk.name);
    MPCLI_Print("Status                : %s\n", disk.status);
    MPCLI_Print("Capacity              : %s\n", capacityText(disk.capacity).c_str());
    MPCLI_Print("Driver                : %s\n", disk.driver);
    MPCLI_Print("Product Name          : %s\n", disk.product);
    MPCLI_Print("Vendor Name           : %s\n", disk.vendor);
    MPCLI_Print("Owning Controller     : %s\n", owning);
    MPCLI_Print("Working Controller    : %s\n", working);
    MPCLI_Print("Num of Paths          : %u\n", disk.pathCount);
    MPCLI_Print("LUN WWN               : %s\n", disk.lunWwn);
    MPCLI_Print("Array Name            : %s\n", disk.arrayName);
    MPCLI_PrintDiskControllers(disk, namer, 0);
    if (config != nullptr) {
        MPCLI_PrintConfigForVlun(*config);
    }
    MPCLI_PrintVLunSuspension(v);
    if (isPeLun(v)) {
        MPCLI_Print("Device Type       : %s\n", "PE LUN");
    }
    MPCLI_PrintDash(MPCLI_DETAIL_WIDTH);
}

bool MPCLI_ShowDiskById(const VLunInfo& v, bool verbose)
{
    const uint32_t diskId = v.memberDiskId[0];
    DiskInfo disk;
    // What the Start call filled is released whatever it answered.
    const MPI_Ended<INTF_UIL_GetDiskDetailInfoEnd> owner(&disk);
    const uint32_t ret = INTF_UIL_GetDiskDetailInfoStart(diskId, &disk);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get disk {%u} detail info fail. ret {%u}", diskId, ret);
        MPCLI_Print("The disk whose ID is %u does not exist.\n", diskId);
        return false;
    }
    UilFullCfg config{};
    if (verbose && !MPCLI_ReadVLunConfig(v.vlunId, disk.lunWwn, disk.arraySn, &config)) {
        return false;
    }
    MPCLI_PrintDiskDetailInfo(v, disk, verbose ? &config : nullptr);
    return true;
}

bool MPCLI_ShowVLunByVlunType(uint32_t vlunId, const VLunFilter& filter, bool verbose)
{
    VLunInfo v;
    const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&v);
    if (INTF_UIL_GetVLunInfoStart(vlunId, &v) != MPI_RET_SUCCESS) {
        MPCLI_Print("The VLUN whose ID is %u does not exist.\n", vlunId);
        MPCLI_PrintDash(MPCLI_DETAIL_WIDTH);
        return false;
    }
    if (filter.given && !filter.keeps(v)) {
        MPCLI_PrintTypeMissMatch(vlunId, filter.keyword);
        return false;
    }
    switch (v.type) {
    case UIL_VLUN_TYPE_DUALSITE:
        return MPCLI_ShowDSLunByVLunInfo(v, verbose);
    case UIL_VLUN_TYPE_MIGRATION:
        return MPCLI_ShowMigrateLunByVLunInfo(v);
    default:
        return MPCLI_ShowDiskById(v, verbose);
    }
}

// show vlun id=<ID1,...> [type=<...>] [verbose]
uint8_t MPCLI_ShowVLunById(const MPCLI_Command& command)
{
    uint32_t ids[MPCLI_MAX_IDS] = {};
    uint32_t count = 0;
    if (MPCLI_ReadIdList(command[1], "id", ids, MPCLI_MAX_IDS, &count, MPCLI_ID_VLUN) != 1 || count == 0) {
        return printUsage();
    }
    VLunFilter filter;
    bool verbose = false;
    for (const MPCLI_Word& word : command.args().subspan(1)) {
        if (word.is(kVerbose) && !verbose) {
            verbose = true;
        } else if (!isTypeWord(word) || !takeTypeWord(word, &filter)) {
            return printUsage();
        }
    }
    uint8_t result = MPCLI_RESULT_OK;
    for (uint32_t i = 0; i < count; ++i) {
        if (!MPCLI_ShowVLunByVlunType(ids[i], filter, verbose)) {
            result = MPCLI_RESULT_FAIL;
        }
    }
    return result;
}

}  // namespace

uint8_t MPCLI_ShowVLun(const MPCLI_Command& command)
{
    if (command[0].raw.empty()) {  // not even its own keyword
        MPCLI_Print("Error: Need more option\n");
        MPCLI_CVMUsage();
        return MPCLI_RESULT_FAIL;
    }
    if (command.size() == 1) {
        return MPCLI_ShowVLunByArrayId(command);
    }
    const MPCLI_Word& first = command[1];
    const std::string_view key = first.hasEqual ? first.key : std::string_view();
    if (key != "id" && key != "array_id" && key != "type") {
        return printUsage();
    }
    for (const MPCLI_Word& word : command.args().subspan(1)) {
        if (!MPCLI_CheckShowVLunPara(word)) {
            return printUsage();
        }
    }
    return key == "id" ? MPCLI_ShowVLunById(command) : MPCLI_ShowVLunByArrayId(command);
}

void MPCLI_PrintVLunTitle(uint32_t vlunId)
{
    const std::string title = "VLUN#" + std::to_string(vlunId) + " Information";
    MPCLI_PrintDoubleDash(MPCLI_DETAIL_WIDTH);
    MPCLI_PrintCentred(title.c_str(), MPCLI_DETAIL_WIDTH);
    MPCLI_Print("\n");
    MPCLI_PrintDoubleDash(MPCLI_DETAIL_WIDTH);
}

void MPCLI_DiskControllerNames(const DiskInfo& disk, UilControllerNamer& namer, char* owning, char* working)
{
    if ((disk.capability & UIL_CAP_HIDE_CONTROLLERS) != 0) {
        (void)strcpy_s(owning, UIL_CONTROLLER_NAME_SIZE, kNone);
        (void)strcpy_s(working, UIL_CONTROLLER_NAME_SIZE, kNone);
        return;
    }
    (void)namer.format(disk.arrayId, disk.owningController, disk.capability, owning, UIL_CONTROLLER_NAME_SIZE);
    (void)namer.format(disk.arrayId, disk.workingController, disk.capability, working, UIL_CONTROLLER_NAME_SIZE);
}

void MPCLI_PrintDiskControllers(const DiskInfo& disk, UilControllerNamer& namer, uint32_t indent)
{
    for (const MPI_ListNode* c = disk.controllers.next; c != &disk.controllers; c = c->next) {
        const UilController* controller = MPI_ListEntry<UilController>(c);
        if (MPI_ListEmpty(&controller->paths)) {
            continue;
        }
        char name[UIL_CONTROLLER_NAME_SIZE] = {};
        (void)namer.format(disk.arrayId, controller->tpgId, disk.capability, name, sizeof(name));
        MPCLI_Print("%*sController %s\n", static_cast<int>(indent), "", name);
        for (const MPI_ListNode* p = controller->paths.next; p != &controller->paths; p = p->next) {
            MPCLI_PrintDiskPath(*MPI_ListEntry<UilPathInfo>(p), indent);
        }
    }
}

void MPCLI_PrintVLunSuspension(const VLunInfo& v)
{
    if (v.suspendTimeoutMs != 0) {
        MPCLI_Print("Manual IO Suspension  : On(timeout/remain : {%u} seconds/{%u} seconds)\n",
                    v.suspendTimeoutMs / kMsPerSecond, v.suspendRemainMs / kMsPerSecond);
    } else {
        MPCLI_Print("Manual IO Suspension  : Off\n");
    }
}

bool MPCLI_ReadVLunConfig(uint32_t vlunId, const char* wwn, const char* arraySn, UilFullCfg* config)
{
    const uint32_t ret = INTF_UIL_GetFullConfig(wwn, arraySn, config);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get config of vlun {%u} failed. ret {%u}", vlunId, ret);
        MPCLI_PrintDash(MPCLI_DETAIL_WIDTH);
        MPCLI_Print("Get config information failed.\n");
        return false;
    }
    return true;
}
