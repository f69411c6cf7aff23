// `show io_count`, `show io_latency`, `clear io_count` and the two switch
// displays: the driver's per-disk and per-path error, queue and latency
// counters.
#include "cli/cli_reliability.h"

#include <array>
#include <charconv>

#include "cli/cli.h"
#include "cli/cli_command.h"
#include "cli/cli_grid.h"
#include "cli/cli_operlog.h"
#include "cli/cli_token.h"
#include "mpi/mpi_scope.h"
#include "uil/uil_oper.h"
#include "uil/uil_reliability.h"

namespace {

constexpr const char kVlunIdKey[] = "vlun_id";
constexpr size_t kSwitchTextLen = 64;
// What the list builder answers for a VLUN the driver does not know.
constexpr uint32_t kVlunNotExist = 1039;

enum class Table { Count, Latency };

constexpr std::array kCountAll = std::to_array<MPCLI_Column>({
    {"Vlun ID", 0}, {"Disk Name", 0}, {"Error I/O Count", 0}, {"Queue I/O Count", 0},
    {"Error Command Count", 0}, {"Queue Command Count", 0},
});
constexpr std::array kCountByVlun = std::to_array<MPCLI_Column>({
    {"Vlun ID", 0}, {"Disk Name", 0}, {"Path ID", 0}, {"Error I/O Count", 0}, {"Queue I/O Count", 0},
    {"Error Command Count", 0}, {"Queue Command Count", 0},
});
constexpr std::array kLatencyAll = std::to_array<MPCLI_Column>({
    {"Vlun ID", 0}, {"Disk Name", 0}, {"Latest I/O Latency", 0}, {"Max I/O Latency", 0},
    {"Average I/O Latency", 0},
});
constexpr std::array kLatencyByVlun = std::to_array<MPCLI_Column>({
    {"Vlun ID", 0}, {"Disk Name", 0}, {"Path ID", 0}, {"Latest I/O Latency", 0}, {"Max I/O Latency", 0},
    {"Average I/O Latency", 0},
});

std::span<const MPCLI_Column> columnsOf(Table table, bool byVlun)
{
    if (table == Table::Count) {
        return byVlun ? std::span<const MPCLI_Column>(kCountByVlun) : std::span<const MPCLI_Column>(kCountAll);
    }
    return byVlun ? std::span<const MPCLI_Column>(kLatencyByVlun) : std::span<const MPCLI_Column>(kLatencyAll);
}

void addU64(MPCLI_Grid& grid, uint64_t value)
{
    char text[24];
    const auto end = std::to_chars(text, text + sizeof(text), value).ptr;
    grid.add(std::string_view(text, static_cast<size_t>(end - text)));
}

// One row per record. The count table shows error I/O, queued I/O, error
// command, queued command: not the order the driver answers them in.
void addRows(MPCLI_Grid& grid, const MPI_ListNode& head, Table table, bool byVlun)
{
    for (const MPI_ListNode* node = head.next; node != &head; node = node->next) {
        const auto* rec = reinterpret_cast<const UilIoReliability*>(node);
        grid.addU32(rec->vlunId);
        grid.add(rec->diskName);
        if (byVlun) {
            grid.addU32(rec->pathId);
        }
        if (table == Table::Count) {
            addU64(grid, rec->errorIo);
            addU64(grid, rec->queuedIo);
            addU64(grid, rec->errorCmd);
            addU64(grid, rec->queuedCmd);
        } else {
            addU64(grid, rec->latestLatency);
            addU64(grid, rec->maxLatency);
            addU64(grid, rec->averageLatency);
        }
    }
}

// The table of one list; nothing for an empty one.
void printList(const MPI_ListNode& head, Table table, bool byVlun)
{
    if (head.next == &head) {
        UIL_ERR("Reliability list is empty");
        return;
    }
    const std::span<const MPCLI_Column> columns = columnsOf(table, byVlun);
    MPCLI_TableLayout layout(columns);
    MPCLI_Grid grid(columns.size());
    addRows(grid, head, table, byVlun);
    MPCLI_WriteGrid(layout, grid);
    if (byVlun) {
        MPCLI_Print("\n");
    }
}

uint8_t printUsage(const char* keyword)
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n    -- show %s [vlun_id={<ID>|<ID1,ID2,...>}]\n", keyword);
    return MPCLI_RESULT_FAIL;
}

uint8_t showReliability(const MPCLI_Command& command, const char* keyword, Table table)
{
    if (command[0].raw.empty()) {  // not even its own keyword
        MPCLI_Print("Error: Need more option\n");
        MPCLI_CVMUsage();
        return MPCLI_RESULT_FAIL;
    }
    if (command.size() > 2 || !command.keysAccepted()) {
        return printUsage(keyword);
    }
    if (command.size() == 1) {
        MPI_ListNode head;
        const uint32_t ret = INTF_UIL_EnumerateIoReliabilityStart(UIL_RELIABILITY_ALL_VLUNS, 0, &head);
        MPI_Ended<INTF_UIL_EnumerateIoReliabilityEnd> owner(&head);
        if (ret != MPI_RET_SUCCESS && ret != MPI_RET_NOT_FOUND) {
            MPCLI_PrintfInternalErrorInfo(ret);
            return MPCLI_RESULT_FAIL;
        }
        INTF_UIL_SortReliabilityListByVLunID(&head);
        printList(head, table, false);
        return MPCLI_RESULT_OK;
    }
    std::array<uint32_t, MPCLI_MAX_IDS> ids{};
    uint32_t count = 0;
    if (MPCLI_ReadIdList(command[1], kVlunIdKey, ids.data(), MPCLI_MAX_IDS, &count, MPCLI_ID_VLUN) != 1 ||
        count == 0) {
        return printUsage(keyword);
    }
    for (uint32_t i = 0; i < count; ++i) {
        MPI_ListNode head;
        const uint32_t ret = INTF_UIL_EnumerateIoReliabilityStart(UIL_RELIABILITY_ONE_VLUN, ids[i], &head);
        MPI_Ended<INTF_UIL_EnumerateIoReliabilityEnd> owner(&head);
        if (ret == kVlunNotExist) {
            MPCLI_Print("The VLUN whose ID is %u does not exist.\n", ids[i]);
            continue;
        }
        if (ret != MPI_RET_SUCCESS && ret != MPI_RET_NOT_FOUND) {
            MPCLI_PrintfInternalErrorInfo(ret);
            continue;
        }
        INTF_UIL_SortReliabilityListByPathID(&head);
        printList(head, table, true);
    }
    return MPCLI_RESULT_OK;
}

uint8_t showSwitch(const MPCLI_Command& command, const char* keyword, uint32_t (*get)(char*, size_t))
{
    if (command.size() != 1) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n    -- show %s\n", keyword);
        return MPCLI_RESULT_FAIL;
    }
    char text[kSwitchTextLen] = {};
    const uint32_t ret = get(text, sizeof(text));
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_PrintfInternalErrorInfo(ret);
        return MPCLI_RESULT_FAIL;
    }
    MPCLI_Print("%s\n", text);
    return MPCLI_RESULT_OK;
}

}  // namespace

uint8_t MPCLI_ShowIoCount(const MPCLI_Command& command)
{
    return showReliability(command, "io_count", Table::Count);
}

uint8_t MPCLI_ShowIoLatency(const MPCLI_Command& command)
{
    return showReliability(command, "io_latency", Table::Latency);
}

uint8_t MPCLI_ShowAlarmEnable(const MPCLI_Command& command)
{
    return showSwitch(command, "alarmenable", INTF_UIL_GetAlarmEnable);
}

uint8_t MPCLI_ShowReliabilityEnable(const MPCLI_Command& command)
{
    return showSwitch(command, "path_reliability_enable", INTF_UIL_GetReliabilityEnable);
}

uint8_t MPCLI_ClearIoCount(const MPCLI_Command& command)
{
    if (command.size() != 1) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n    -- clear io_count\n");
        return MPCLI_RESULT_FAIL;
    }
    const uint32_t ret = INTF_UIL_ClearIoCount();
    const bool ok = ret == MPI_RET_SUCCESS;
    if (ok) {
        MPCLI_Print("Succeeded in executing the command.\n");
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    MPCLI_OperLog("clear", command, UIL_OPER_CLEAR_IO_COUNT, ok ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL, nullptr);
    return ok ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
}
