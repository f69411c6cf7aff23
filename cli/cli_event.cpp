// `show event [count=N]`: the driver's key events, oldest first, as one
// table (time, event, object, the two numbers, the message). The event log
// is brought up to date with the current kernel log first; when that fails
// the operator is told and the log is shown as it stands.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/cli_command.h"
#include "cli/cli_helptext.h"
#include "cli/cli_objects.h"
#include "mpi/mpi_number.h"
#include "mpi/mpi_scope.h"
#include "uil/uil_event.h"

namespace {

constexpr uint32_t kCountMin = 1;
constexpr uint32_t kCountMax = 10000;
constexpr char kCountKey[] = "count";

constexpr size_t kColumns = 6;
constexpr std::array<const char*, kColumns> kHeaders = {"Time", "Event", "Object", "Number", "Number2", "Message"};

uint8_t eventUsage()
{
    MPCLI_Print("Error: Invalid input!\n Usage:\n%s", HELP_SHOW_EVENT);
    return MPCLI_RESULT_FAIL;
}

using EventRow = std::array<std::string, kColumns>;

EventRow rowOf(const UilEventInfo& e)
{
    const char* name = UIL_GetEventName(e.eventId);
    return {e.time,
            name != nullptr ? name : std::to_string(e.eventId),
            e.object,
            std::to_string(e.number),
            e.number2 < 0 ? std::string("-") : std::to_string(e.number2),
            e.message};
}

// The table as one text: every column but the last padded to its widest
// cell, two blanks between columns, framed by dash lines.
std::string formatTable(const std::vector<EventRow>& rows)
{
    std::array<size_t, kColumns> widths{};
    for (size_t c = 0; c < kColumns; ++c) {
        widths[c] = std::strlen(kHeaders[c]);
    }
    for (const EventRow& row : rows) {
        for (size_t c = 0; c < kColumns; ++c) {
            widths[c] = std::max(widths[c], row[c].size());
        }
    }
    size_t dashLength = 0;
    for (size_t c = 0; c < kColumns; ++c) {
        dashLength += widths[c] + (c + 1 < kColumns ? 2 : 0);
    }
    const std::string dash = std::string(dashLength, '-') + "\n";
    auto line = [&](const auto& cells) {
        std::string text;
        for (size_t c = 0; c < kColumns; ++c) {
            std::string cell(cells[c]);
            if (c + 1 < kColumns) {
                cell.resize(widths[c] + 2, ' ');
            }
            text += cell;
        }
        while (!text.empty() && text.back() == ' ') {
            text.pop_back();
        }
        return text + "\n";
    };
    std::string table = dash + line(kHeaders) + dash;
    for (const EventRow& row : rows) {
        table += line(row);
    }
    return table + dash;
}

}  // namespace

uint8_t MPCLI_ShowEvent(const MPCLI_Command& command)
{
    uint32_t latest = 0;  // all
    if (command.size() > 2) {
        return eventUsage();
    }
    if (command.size() == 2) {
        const MPCLI_Word& word = command[1];
        if (word.key != kCountKey || !word.hasValue() ||
            MPI_ParseU32(word.value, kCountMin, kCountMax, &latest) != MPI_Num::Ok) {
            return eventUsage();
        }
    }
    if (INTF_UIL_AnalyzeKeyEvent() != MPI_RET_SUCCESS) {
        MPCLI_Print("Warning: Failed to read the new events of the kernel log; the events recorded so far are "
                    "shown.\n");
    }
    MPI_ListNode head;
    MPI_ListInit(&head);
    uint32_t count = 0;
    uint32_t ret = INTF_UIL_ShowLatestEvents(&head, latest, &count);
    MPI_Ended<INTF_UIL_ShowEventEnd> owner(&head);
    if (ret == UIL_EVENT_OPEN_FAIL) {
        MPCLI_Print("Error: The event log cannot be opened.\n");
        return MPCLI_RESULT_FAIL;
    }
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_PrintfInternalErrorInfo(ret);
        return MPCLI_RESULT_FAIL;
    }
    if (count == 0) {
        MPCLI_Print("There is no event.\n");
        return MPCLI_RESULT_OK;
    }
    std::vector<EventRow> rows;
    rows.reserve(count);
    for (const MPI_ListNode* n = head.next; n != &head; n = n->next) {
        rows.push_back(rowOf(*MPI_ListEntry<UilEventInfo>(n)));
    }
    MPCLI_Print("%s", formatTable(rows).c_str());
    return MPCLI_RESULT_OK;
}
