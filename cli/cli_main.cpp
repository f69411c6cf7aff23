// The shell's spine: start-up guards, the two ways of running (one command
// from the process arguments, or the prompt), line splitting and the
// table-driven dispatch of a verb and its object keyword.
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_token.h"
#include "mpi/mpi_root.h"
#include "uia/uia.h"
#include "uil/uil.h"

uint8_t g_bCLIDebugCmdOn = 0;
char* g_pszCLIProgname = nullptr;
volatile uint32_t g_uiCLIContrlCRef = 0;

namespace {

struct sigaction gpfSigalDispositionOld;
bool g_bSigalDispositionSaved = false;

constexpr uint32_t kArgBuffers = 7;     // tokens of one typed line
constexpr size_t kArgBufferLen = 64;    // so at most 63 characters each
constexpr size_t kLineLen = 256;        // typed line, terminator included
constexpr uint32_t kMaxArgs = 8;        // arguments of one command
constexpr size_t kJoinLen = 513;
constexpr size_t kJoinPieceLen = 64;
constexpr const char kFileNameKey[] = "file_name=";
constexpr const char kPrompt[] = "\nCorvane CLI #%u >";

void printUsageError(const char* text)
{
    MPCLI_Print("%s", text);
    MPCLI_CVMUsage();
}

uint8_t needMoreOption()
{
    printUsageError("Error: Need more option\n");
    return MPCLI_RESULT_FAIL;
}

// Verbs that just dispatch their object keyword in their own table.
uint8_t dispatchObject(uint32_t argc, char** argv, MPCLI_Table table)
{
    if (argc < 2 || argv == nullptr || argv[1] == nullptr) {
        return needMoreOption();
    }
    return MPCLI_Dispatch(argv[1], argc - 1, argv + 1, table);
}

bool installSigint(struct sigaction* old)
{
    struct sigaction action {};
    action.sa_handler = MPCLI_ControlC;
    sigemptyset(&action.sa_mask);
    return sigaction(SIGINT, &action, old) == 0;
}

bool restoreSigint()
{
    if (!g_bSigalDispositionSaved) {
        return true;
    }
    g_bSigalDispositionSaved = false;
    return sigaction(SIGINT, &gpfSigalDispositionOld, nullptr) == 0;
}

// One line of the prompt: split at single blanks into the argument buffers.
// Returns the number of tokens, or -1 when the line cannot be taken (a
// token over 63 characters, or more than 7 tokens).
int splitLine(char* line, char** buffers)
{
    char copy[kLineLen] = {};
    (void)strncpy_s(copy, sizeof(copy), line, kLineLen - 1);
    char* context = nullptr;
    int count = 0;
    const char* previous = nullptr;
    for (char* token = strtok_s(line, " ", &context); token != nullptr; token = strtok_s(nullptr, " ", &context)) {
        if (count == static_cast<int>(kArgBuffers) || std::strlen(token) >= kArgBufferLen) {
            return -1;
        }
        if (MPCLI_IsOneLineCmd(previous)) {
            // The rest of the line, blanks included, is one argument.
            const char* rest = copy + (token - line);
            (void)strncpy_s(buffers[count], kArgBufferLen, rest, kArgBufferLen - 1);
            return count + 1;
        }
        (void)strcpy_s(buffers[count], kArgBufferLen, token);
        previous = buffers[count];
        ++count;
    }
    return count;
}

// True when the command's arguments may be run: at most 8, and none over 63
// characters unless it names a file (the scan stops at that argument).
bool argumentsAllowed(uint32_t argc, char** argv)
{
    char joined[kJoinLen] = {};
    for (uint32_t i = 0; i < argc && std::strlen(joined) <= kJoinLen - 2; ++i) {
        char piece[kJoinPieceLen + 2] = {};
        (void)snprintf_s(piece, sizeof(piece), kJoinPieceLen, " %s", argv[i] ? argv[i] : "");
        (void)strncat_s(joined, sizeof(joined), piece, sizeof(joined) - 1 - std::strlen(joined));
    }
    if (argc > kMaxArgs) {
        return false;
    }
    for (uint32_t i = 0; i < argc && argv[i] != nullptr; ++i) {
        if (std::strstr(argv[i], kFileNameKey) != nullptr) {
            break;
        }
        if (std::strlen(argv[i]) >= kArgBufferLen) {
            return false;
        }
    }
    return true;
}

struct ArgBuffers {
    char** table = nullptr;

    ArgBuffers() = default;
    ArgBuffers(const ArgBuffers&) = delete;
    ArgBuffers& operator=(const ArgBuffers&) = delete;
    ~ArgBuffers()
    {
        if (table == nullptr) {
            return;
        }
        for (uint32_t i = 0; i < kArgBuffers; ++i) {
            std::free(table[i]);
        }
        std::free(table);
    }

    bool allocate()
    {
        table = static_cast<char**>(MPCLI_ZMalloc(sizeof(char*) * kArgBuffers));
        if (table == nullptr) {
            return false;
        }
        for (uint32_t i = 0; i < kArgBuffers; ++i) {
            table[i] = static_cast<char*>(MPCLI_ZMalloc(kArgBufferLen));
            if (table[i] == nullptr) {
                return false;
            }
        }
        return true;
    }
};

struct OperType {
    const char* keyword;
    uint32_t type;
};

constexpr uint32_t kOperBase = 0x53415100;
constexpr uint32_t kOperUnknown = 0x53415115;

// Operation identifiers of the operation log. The second "iosuspension" and
// "cvRescan" rows can never match; they stay so the table keeps its shape.
constexpr std::array<OperType, 56> g_stGetOperType = {{
    {"workingmode", kOperBase + 0x16},
    {"loadbalancemode", kOperBase + 0x03},
    {"luntrespass", kOperBase + 0x04},
    {"failbackdelaytime", kOperBase + 0x06},
    {"iosuspensiontime", kOperBase + 0x07},
    {"ioretry", kOperBase + 0x08},
    {"pathstate", kOperBase + 0x17},
    {"pathcheck", kOperBase + 0x0C},
    {"updatetimezone", kOperBase + 0x10},
    {"phypathnormal", kOperBase + 0x13},
    {"tpgstate", kOperBase + 0x18},
    {"serial", kOperBase + 0x14},
    {"timeoutluntrespassdelaytime", kOperBase + 0x4C},
    {"busydelaytime", kOperBase + 0x48},
    {"pathiostate", kOperBase + 0x49},
    {"stabletime", kOperBase + 0x4A},
    {"alarmenable", kOperBase + 0x4E},
    {"path_reliability_enable", kOperBase + 0x51},
    {"stop_iosuspension", kOperBase + 0x54},
    {"rebalancelun", kOperBase + 0x23},
    {"lb_io_threshold", kOperBase + 0x24},
    {"faulty_path_check_interval", kOperBase + 0x25},
    {"idle_path_check_interval", kOperBase + 0x26},
    {"max_io_retry_timeout", kOperBase + 0x27},
    {"tod_time", kOperBase + 0x28},
    {"tod_threshold", kOperBase + 0x29},
    {"tod_recovery_time", kOperBase + 0x2A},
    {"ied_time", kOperBase + 0x2B},
    {"ied_min_io", kOperBase + 0x2C},
    {"ied_threshold", kOperBase + 0x2D},
    {"ied_recovery_time", kOperBase + 0x2E},
    {"ifd_time", kOperBase + 0x2F},
    {"ifd_threshold", kOperBase + 0x30},
    {"ifd_recovery_time", kOperBase + 0x31},
    {"obsolete_path", kOperBase + 0x3A},
    {"remote_controller", kOperBase + 0x32},
    {"hld_time", kOperBase + 0x34},
    {"hld_threshold", kOperBase + 0x35},
    {"hld_recovery_time", kOperBase + 0x36},
    {"io_latency_threshold", kOperBase + 0x55},
    {"io_count", kOperBase + 0x56},
    {"cvconfig", kOperBase + 0x37},
    {"performance_record", kOperBase + 0x63},
    {"path_statistic", kOperBase + 0x64},
    {"install Corvane service", kOperBase + 0x3B},
    {"uninstall Corvane service", kOperBase + 0x3C},
    {"start Corvane service", kOperBase + 0x3D},
    {"stop Corvane service", kOperBase + 0x3E},
    {"cvRescan", kOperBase + 0x20},
    {"dualsite", kOperBase + 0x3F},
    {"migration", kOperBase + 0x44},
    {"iosuspension", kOperBase + 0x45},
    {"iosuspension", kOperBase + 0x46},
    {"cvRescan", kOperBase + 0x20},
    {"sdd_threshold", kOperBase + 0x60},
    {"sdd_recovery_time", kOperBase + 0x61},
}};

constexpr std::array<const char*, 3> g_stCLIPamCheckType = {"remote_controller", "phypathnormal", "dualsite"};

}  // namespace

// ---------------------------------------------------------------------------
// Start-up and shut-down.

uint32_t MPCLI_Init(int argc, char** argv)
{
    if (argv == nullptr || argv[0] == nullptr || argc < 1) {
        UIL_ERR("Parameter error: argv = %p, argc = %d", static_cast<void*>(argv), argc);
        return MPI_RET_FAIL;
    }
    size_t len = std::strlen(argv[0]) + 1;
    g_pszCLIProgname = static_cast<char*>(MPCLI_ZMalloc(len));
    if (g_pszCLIProgname == nullptr) {
        UIL_ERR("Program malloc fail, CLI exit");
        return MPI_RET_FAIL;
    }
    (void)strcpy_s(g_pszCLIProgname, len, argv[0]);

    if (installSigint(&gpfSigalDispositionOld)) {
        g_bSigalDispositionSaved = true;
    } else {
        UIL_TRACE(MPI_LOG_WARN, "Set SIGINT fail");
    }

    if (INTF_UIL_Init() == MPI_RET_SUCCESS) {
        return MPI_RET_SUCCESS;
    }
    MPCLI_Print("Unable to detect Corvane device node, exit\n");
    if (!restoreSigint()) {
        MPCLI_Print("Unable to set the signal, exit\n");
    }
    std::free(g_pszCLIProgname);
    g_pszCLIProgname = nullptr;
    INTF_UIL_Fini();
    return MPI_RET_FAIL;
}

void MPCLI_Fini()
{
    std::free(g_pszCLIProgname);
    g_pszCLIProgname = nullptr;
    INTF_UIL_Fini();
    (void)restoreSigint();
}

void MPCLI_ControlC(int /*signo*/)
{
    // Only async-signal-safe calls here. Every message is flushed when it
    // is printed and every log line closes its file, so nothing is pending:
    // ending the process needs no more than releasing the device.
    if (g_uiCLIContrlCRef == 0) {
        (void)!write(STDOUT_FILENO, "\n", 1);
        if (g_uiUIAIoctlFd >= 0) {
            (void)close(g_uiUIAIoctlFd);
        }
        _exit(0);
    }
    // A repeating display is running: it sees the count drop and ends. The
    // handler stays installed (no SA_RESETHAND), so the prompt goes on.
    g_uiCLIContrlCRef = g_uiCLIContrlCRef - 1;
}

// ---------------------------------------------------------------------------
// Running commands.

uint8_t MPCLI_DoMain(int argc, char** argv)
{
    if (argc < 2) {
        ArgBuffers buffers;
        if (!buffers.allocate()) {
            return MPCLI_RESULT_FAIL;
        }
        return MPCLI_CliExe(buffers.table);
    }
    if (std::strcmp(argv[1], "quit") == 0) {
        return MPCLI_RESULT_OK;
    }
    if (std::strcmp(argv[1], "debug") == 0) {
        // The word only drops out of the line; it does not enable debug rows.
        if (argc < 3) {
            return MPCLI_RESULT_OK;
        }
        return MPCLI_NewCmd(static_cast<uint32_t>(argc - 2), argv + 2);
    }
    return MPCLI_NewCmd(static_cast<uint32_t>(argc - 1), argv + 1);
}

char* MPCLI_Readline(const char* promptFormat, ...)
{
    static char s_line[kLineLen];
    va_list args;
    va_start(args, promptFormat);
    (void)vsnprintf_s(s_line, sizeof(s_line), sizeof(s_line) - 1, promptFormat, args);
    va_end(args);
    MPCLI_Print("%s", s_line);

    size_t read = 0;
    int c = 0;
    while ((c = std::getchar()) != EOF) {
        if (read < kLineLen) {
            s_line[read] = static_cast<char>(c);
        }
        ++read;
        if (c == '\n') {
            break;
        }
    }
    if (c == EOF) {
        return nullptr;  // end of input: an unfinished line is not a command
    }
    if (read > kLineLen) {
        printUsageError("Error: Invalid input!\n");
        s_line[0] = '\0';
        return s_line;
    }
    s_line[read - 1] = '\0';
    return s_line;
}

uint8_t MPCLI_CliExe(char** argBuffers)
{
    CLI_ASSERT(argBuffers != NULL);
    uint32_t counter = 0;
    for (;;) {
        char* line = MPCLI_Readline(kPrompt, counter);
        if (line == nullptr) {
            // End of input ends the session as quit does.
            MPCLI_Print("\n");
            return MPCLI_RESULT_OK;
        }
        if (line[0] == '\0') {
            continue;
        }
        if (std::strcmp(line, "quit") == 0) {
            return MPCLI_RESULT_OK;
        }
        for (uint32_t i = 0; i < kArgBuffers; ++i) {
            (void)memset_s(argBuffers[i], kArgBufferLen, 0, kArgBufferLen);
        }
        int count = splitLine(line, argBuffers);
        if (count < 0) {
            printUsageError("Error: Input Option is not supported.\n");
            continue;
        }
        (void)MPCLI_NewCmd(static_cast<uint32_t>(count), argBuffers);
        ++counter;
    }
}

uint32_t MPCLI_IsOneLineCmd(const char* token)
{
    return (token != nullptr && std::strcmp(token, "supportarraylist") == 0) ? 1 : 0;
}

uint8_t MPCLI_NewCmd(uint32_t argc, char** argv)
{
    if (argv == nullptr) {
        return needMoreOption();
    }
    if (!argumentsAllowed(argc, argv)) {
        printUsageError("Error: not allowed input.\n");
        return MPCLI_RESULT_FAIL;
    }
    if (argc > 0 && argv[0] != nullptr && g_pszCLIProgname != nullptr && std::strcmp(argv[0], g_pszCLIProgname) == 0) {
        --argc;
        ++argv;
    }
    return MPCLI_Dispatch(argv[0], argc, argv, g_stCLIOptionsType);
}

uint8_t MPCLI_ExecuteParameter(const char* keyword, uint32_t argc, char** argv, uint32_t rows,
                               const MPCLI_Option* table)
{
    if (keyword == nullptr) {
        UIL_TRACE_NULL("pcOption");
        return MPCLI_RESULT_FAIL;
    }
    if (table == nullptr) {
        UIL_TRACE_NULL("pOptionStruc");
        return MPCLI_RESULT_FAIL;
    }
    if (argv == nullptr) {
        return needMoreOption();
    }
    for (uint32_t i = 0; i < rows; ++i) {
        const MPCLI_Option& row = table[i];
        if (std::strcmp(keyword, row.keyword) != 0) {
            continue;
        }
        if (g_bCLIDebugCmdOn == 0 && row.flag != MPCLI_FLAG_NORMAL) {
            printUsageError("Error: not allowed input\n");
            return MPCLI_RESULT_FAIL;
        }
        uint8_t judged = MPCLI_JudgeEnvironment(&row);
        return judged == 1 ? row.handler(argc, argv) : judged;
    }
    printUsageError("Error: Input Option is not supported.\n");
    return MPCLI_RESULT_FAIL;
}

uint8_t MPCLI_Dispatch(const char* keyword, uint32_t argc, char** argv, MPCLI_Table table)
{
    // An empty table has no storage of its own; any non-null pointer will do.
    static const MPCLI_Option s_none{"", "", nullptr, 0};
    const MPCLI_Option* rows = table.empty() ? &s_none : table.data();
    return MPCLI_ExecuteParameter(keyword, argc, argv, static_cast<uint32_t>(table.size()), rows);
}

uint8_t MPCLI_JudgeEnvironment(const MPCLI_Option* row)
{
    CLI_ASSERT(row != NULL);
    return 1;
}

// ---------------------------------------------------------------------------
// Verbs.

uint8_t MPCLI_Show(uint32_t argc, char** argv) { return dispatchObject(argc, argv, g_stCLIOptionShowType); }
uint8_t MPCLI_Start(uint32_t argc, char** argv) { return dispatchObject(argc, argv, g_stCLIOptionStartType); }
uint8_t MPCLI_Clear(uint32_t argc, char** argv) { return dispatchObject(argc, argv, g_stCLIOptionClearType); }
uint8_t MPCLI_Add(uint32_t argc, char** argv) { return dispatchObject(argc, argv, g_stCLIOptionAddType); }
uint8_t MPCLI_Del(uint32_t argc, char** argv) { return dispatchObject(argc, argv, g_stCLIOptionDelType); }
uint8_t MPCLI_Check(uint32_t argc, char** argv) { return dispatchObject(argc, argv, g_stCLIOptionCheckType); }
uint8_t MPCLI_Stop(uint32_t argc, char** argv) { return dispatchObject(argc, argv, g_stCLIOptionStopType); }

uint8_t MPCLI_Set(uint32_t argc, char** argv)
{
    if (argc < 2 || argv == nullptr || argv[1] == nullptr) {
        return needMoreOption();
    }
    // The key is the text before "="; a bare word is its own key.
    char key[kArgBufferLen + 1] = {};
    if (std::strchr(argv[1], '=') == nullptr || std::strcmp(argv[1], "default") == 0 ||
        MPCLI_GetStringFromEqual(argv[1], key, 0, sizeof(key)) != 1) {
        (void)strncpy_s(key, sizeof(key), argv[1], kArgBufferLen);
    }
    if (MPCLI_CheckTypeInvlaid(key, argv[1]) == 0) {
        printUsageError("Error: Input Option is not supported.\n");
        return MPCLI_RESULT_FAIL;
    }
    return MPCLI_Dispatch(key, argc - 1, argv + 1, g_stCLIOptionSetType);
}

uint8_t MPCLI_CheckTypeInvlaid(const char* key, const char* raw)
{
    if (raw == nullptr) {
        return needMoreOption();
    }
    if (key == nullptr) {
        UIL_TRACE_NULL("pcString");
        return 0;
    }
    // Commands that take a bare keyword may not be written as key=value.
    size_t keyLen = std::strlen(key);
    for (const char* word : g_stCLIPamCheckType) {
        if (std::strncmp(key, word, keyLen) == 0) {
            return std::strncmp(raw, word, std::strlen(raw)) == 0 ? 1 : 0;
        }
    }
    return 1;
}

uint32_t MPCLI_GetOperType(const char* keyword, uint32_t* operType)
{
    CLI_ASSERT(keyword != NULL);
    CLI_ASSERT(operType != NULL);
    *operType = kOperUnknown;
    size_t len = std::strlen(keyword);
    for (const OperType& row : g_stGetOperType) {
        if (std::strncmp(row.keyword, keyword, len) == 0) {
            *operType = row.type;
            return MPI_RET_SUCCESS;
        }
    }
    return MPI_RET_FAIL;
}

// ---------------------------------------------------------------------------
// The process.

int MPCLI_Main(int argc, char** argv)
{
    if (argv == nullptr) {
        std::printf("*** Assertion on file \"%s\" function \"%s\" line %d  exception \"%s\"\n", MPI_SRC_CLI_MAIN,
                    __func__, __LINE__, "argv != NULL");
        std::printf("*** System panic at file \"%s\" function \"%s\" line %d.\n", MPI_SRC_CLI_MAIN, __func__,
                    __LINE__);
        std::fflush(stdout);
        return -1;
    }
    uint8_t result = MPCLI_RESULT_FAIL;
    INTF_UIL_CliBegin();
    if (MPI_RootTooLong()) {
        MPCLI_Print("Error: CVADM_ROOT must be shorter than %zu characters.\n", MPI_ROOT_MAX);
    } else if (uint32_t lock = INTF_UIL_CheckUpgradeThread(); lock != MPI_RET_SUCCESS) {
        MPCLI_Print("%s", lock == MPI_RET_UPGRADE_RUNNING ? "The non-disruptive upgrade is running, exit\n"
                                                          : "exec cvadmin failed due to internal error, exit\n");
    } else if (getuid() != 0) {
        MPCLI_Print("please exit and run as root!\n");
    } else if (MPCLI_Init(argc, argv) == MPI_RET_SUCCESS) {
        if (INTF_UIL_CliLimitCheck() != MPI_RET_SUCCESS) {
            MPCLI_Print("system is busy now, please try again later!\n");
        } else {
            result = MPCLI_DoMain(argc, argv);
        }
        MPCLI_Fini();
    }
    INTF_UIL_CliEnd();
    return result == MPCLI_RESULT_OK ? 0 : 1;
}
