// `set <keyword>=<value>` for the value settings of the settings table, and
// `show io_latency_threshold`.
#include "cli/cli_settings.h"

#include <cstdio>
#include <string>

#include "cli/cli_command.h"
#include "cli/cli_operlog.h"
#include "mpi/mpi_number.h"

namespace {

constexpr size_t kValueLen = 64;
constexpr const char kSource[] = "CLI";
constexpr const char kVerb[] = "set";

uint8_t printShortUsage(const MPCLI_Setting& row)
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n           --set %s=<%s>\n", row.keyword, row.valueWord);
    return MPCLI_RESULT_FAIL;
}

// The value rule of every setting: a decimal number that fits 32 bits (so
// nothing wraps on its way to the driver) and that the item's own range
// accepts.
bool valueAllowed(const MPCLI_Setting& row, const std::string& value)
{
    uint32_t number = 0;
    return MPI_ToU32(value, &number) && INTF_UIL_CheckCfgValid(row.configKey, value.c_str());
}

}  // namespace

uint32_t MPCLI_SetIoLatencyThresholdValue(const char* /*source*/, const char* value, UilOperLogPara* record)
{
    UIL_TransOperLogValue(value, record);
    return INTF_UIL_SetIOLatencyThreshold(value);
}

uint8_t MPCLI_RunSetting(const MPCLI_Setting& row, const MPCLI_Command& command)
{
    const MPCLI_Word& word = command[0];
    if (command.size() != 1 || !word.hasValue() || word.value.size() > kValueLen) {
        return printShortUsage(row);
    }
    const std::string value(word.value);
    if (!valueAllowed(row, value)) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n%s", row.rangeText);
        return MPCLI_RESULT_FAIL;
    }
    UilOperLogPara record{};
    const uint32_t ret = row.set(kSource, value.c_str(), &record);
    const uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in executing the command.\n");
    } else {
        MPCLI_PrintfInternalErrorInfo(ret);
    }
    MPCLI_OperLog(kVerb, command, row.eventId, result, &record);
    return result;
}

uint8_t MPCLI_ShowIoLatencyThreshold(const MPCLI_Command& command)
{
    if (command.size() != 1) {
        MPCLI_Print("Error: Invalid input!\nUsage:\n    -- show io_latency_threshold\n");
        return MPCLI_RESULT_FAIL;
    }
    char text[kValueLen] = {};
    int32_t threshold = 0;
    const uint32_t ret = INTF_UIL_GetIoLatencyThreshold(text, sizeof(text), &threshold);
    if (ret != MPI_RET_SUCCESS) {
        MPCLI_PrintfInternalErrorInfo(ret);
        if (ret == UIL_RET_CFG_INVALID_ITEM) {
            std::fprintf(stderr, "cvadm: the stored io_latency_threshold \"%s\" is not a valid value.\n", text);
        }
        return MPCLI_RESULT_FAIL;
    }
    MPCLI_Print("io_latency_threshold : %d\n", threshold);
    return MPCLI_RESULT_OK;
}
