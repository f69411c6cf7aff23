#include "cli/cli_operlog.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_command.h"
#include "uil/uil.h"

namespace {

constexpr const char kSource[] = "CLI";
// Seven words of at most 63 characters, each with its blank.
constexpr size_t kCommandLen = 7 * 64 + 1;

bool g_bOperLogFailed = false;

}  // namespace

void MPCLI_BuildCommandText(const MPCLI_Command& command, char* out, size_t size)
{
    CLI_ASSERT(out != NULL);
    if (size == 0) {
        return;
    }
    std::string text;
    for (const MPCLI_Word& word : command.words()) {
        text += ' ';
        text += word.raw;
    }
    (void)strncpy_s(out, size, text.c_str(), size - 1);
}

namespace {

void writeLine(const char* verb, const char* command, uint32_t eventId, uint8_t result, const UilOperLogPara* record)
{
    const uint32_t ret = UIL_OperLog(kSource, verb, command, eventId, result, record);
    if (ret == MPI_RET_SUCCESS || ret == UIL_OPERLOG_SWITCHED_OFF) {
        return;
    }
    if (ret == UIL_OPERLOG_OPEN_FAIL) {
        MPCLI_Print("Warn: Open oper log file fail.\n");
    }
    const char* cause = INTF_UIL_LastFileError();
    std::fprintf(stderr, "cvadm: the operation log line was not written%s%s\n", *cause != '\0' ? ": " : ".",
                 cause);
    g_bOperLogFailed = true;
}

}  // namespace

void MPCLI_OperLog(const char* verb, const MPCLI_Command& command, uint32_t eventId, uint8_t result,
                   const UilOperLogPara* record)
{
    char text[kCommandLen];
    MPCLI_BuildCommandText(command, text, sizeof(text));
    writeLine(verb, text, eventId, result, record);
}

bool MPCLI_TakeOperLogFailure()
{
    const bool failed = g_bOperLogFailed;
    g_bOperLogFailed = false;
    return failed;
}
