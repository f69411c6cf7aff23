// The shell's spine: start-up guards, the two ways of running (one command
// from the process arguments, or the prompt), line splitting and the
// table-driven dispatch of a verb and its object keyword.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_operlog.h"
#include "cli/cli_command.h"
#include "cli/cli_out.h"
#include "mpi/mpi_root.h"
#include "uil/uil.h"
#include "uil/uil_journal.h"

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

uint8_t needMoreOption() { return MPCLI_UsageError("Error: Need more option\n"); }

// Verbs that just dispatch their object keyword in their own table.
uint8_t dispatchObject(const MPCLI_Command& command, MPCLI_Table table)
{
    if (command.size() < 2) {
        return needMoreOption();
    }
    return MPCLI_DispatchCommand(command[1].raw, command.object(), table);
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

constexpr std::array<const char*, 3> g_stCLIPamCheckType = {"remote_controller", "phypathnormal", "dualsite"};

// Descriptors 0, 1 and 2 that are closed are opened on /dev/null before
// anything else is opened, so that no file the program opens later (the
// device node, a lock, a log) can take their place and receive what is
// meant for the terminal. False when standard output was closed.
bool openClosedStandardDescriptors()
{
    bool stdoutOpen = true;
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
        if (fcntl(fd, F_GETFD) != -1 || errno != EBADF) {
            continue;
        }
        stdoutOpen = stdoutOpen && fd != STDOUT_FILENO;
        const int opened = open("/dev/null", fd == STDIN_FILENO ? O_RDONLY : O_WRONLY);
        if (opened >= 0 && opened != fd) {
            (void)dup2(opened, fd);
            (void)close(opened);
        }
    }
    return stdoutOpen;
}

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
    if (*INTF_UIL_LastFileError() != '\0') {
        std::fprintf(stderr, "cvadm: %s\n", INTF_UIL_LastFileError());
    }
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
    // Only async-signal-safe calls here. A listing may be half-way through
    // its buffer: the complete lines go out, the unfinished one is dropped.
    // Every log line closes its file, so nothing else is pending.
    if (g_uiCLIContrlCRef == 0) {
        MPCLI_OutDrainOnSignal();
        (void)!write(STDOUT_FILENO, "\n", 1);
        INTF_UIL_ReleaseDevice();
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
    MPCLI_OutFlush();  // everything shown before the operator types

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
    if (c == EOF && read == 0) {
        return nullptr;  // end of input
    }
    // A last line without its newline is a line all the same.
    const size_t length = c == EOF ? read + 1 : read;
    if (length > kLineLen) {
        (void)MPCLI_UsageError("Error: Invalid input!\n");
        s_line[0] = '\0';
        return s_line;
    }
    s_line[length - 1] = '\0';
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
            (void)MPCLI_UsageError("Error: Input Option is not supported.\n");
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
        return MPCLI_UsageError("Error: not allowed input.\n");
    }
    if (argc > 0 && argv[0] != nullptr && g_pszCLIProgname != nullptr && std::strcmp(argv[0], g_pszCLIProgname) == 0) {
        --argc;
        ++argv;
    }
    if (argc == 0 && argv[0] == nullptr) {
        UIL_TRACE_NULL("pcOption");  // only the program's own name was given
        return MPCLI_RESULT_FAIL;
    }
    // The one place a command's words are split. A line of blanks is one
    // empty word, which no table knows.
    const MPCLI_Line line(std::max<uint32_t>(argc, 1), argv);
    const MPCLI_Command command = line.command();
    const uint8_t result = MPCLI_DispatchCommand(command[0].raw, command, g_stCLIOptionsType);
    // Damaged change records another writer left: set aside, never acted on.
    std::istringstream notices(INTF_UIL_TakeJournalNotices());
    for (std::string notice; std::getline(notices, notice);) {
        std::fprintf(stderr, "cvadm: %s\n", notice.c_str());
    }
    // A change whose log line could not be written has not fully happened.
    return MPCLI_TakeOperLogFailure() ? static_cast<uint8_t>(MPCLI_RESULT_FAIL) : result;
}

// ---------------------------------------------------------------------------
// Verbs.

uint8_t MPCLI_Show(const MPCLI_Command& command) { return dispatchObject(command, g_stCLIOptionShowType); }
uint8_t MPCLI_Start(const MPCLI_Command& command) { return dispatchObject(command, g_stCLIOptionStartType); }
uint8_t MPCLI_Clear(const MPCLI_Command& command) { return dispatchObject(command, g_stCLIOptionClearType); }
uint8_t MPCLI_Add(const MPCLI_Command& command) { return dispatchObject(command, g_stCLIOptionAddType); }
uint8_t MPCLI_Del(const MPCLI_Command& command) { return dispatchObject(command, g_stCLIOptionDelType); }
uint8_t MPCLI_Check(const MPCLI_Command& command) { return dispatchObject(command, g_stCLIOptionCheckType); }
uint8_t MPCLI_Stop(const MPCLI_Command& command) { return dispatchObject(command, g_stCLIOptionStopType); }

uint8_t MPCLI_Set(const MPCLI_Command& command)
{
    if (command.size() < 2) {
        return needMoreOption();
    }
    // The key is the text before "="; a bare word is its own key, and so is
    // a word whose key would not fit the key buffer.
    const MPCLI_Word& word = command[1];
    const bool ownKey = !word.hasEqual || word.raw == "default" || word.key.size() > kArgBufferLen;
    const std::string key(ownKey ? word.raw.substr(0, kArgBufferLen) : word.key);
    const std::string raw(word.raw);
    if (MPCLI_CheckTypeInvlaid(key.c_str(), raw.c_str()) == 0) {
        return MPCLI_UsageError("Error: Input Option is not supported.\n");
    }
    return MPCLI_DispatchCommand(key, command.object(), g_stCLIOptionSetType);
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

// ---------------------------------------------------------------------------
// The process.

int MPCLI_Main(int argc, char** argv)
{
    const bool stdoutUsable = openClosedStandardDescriptors();
    // A reader that goes away must not end a change before its log line:
    // the write fails instead, and the exit status says so.
    (void)signal(SIGPIPE, SIG_IGN);
    // The console lines of the lower layers (failed assertions, a trace log
    // that cannot open) must come after what the shell already printed.
    MPI_SetConsoleFlush(MPCLI_OutFlush);
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
    MPCLI_OutFlush();
    if (!stdoutUsable || MPCLI_OutFailed() || std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fprintf(stderr, "cvadm: write error on standard output\n");
        return 1;
    }
    return result == MPCLI_RESULT_OK ? 0 : 1;
}
