// The command shell: dispatch rows, verb and object tables, shared printing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "cli/cli_command.h"

// A command handler: word 0 of the command is its own keyword, the
// arguments follow, already split. Returns 1 when the command succeeded.
using MPCLI_Handler = uint8_t (*)(const MPCLI_Command& command);

enum : uint8_t { MPCLI_RESULT_FAIL = 0, MPCLI_RESULT_OK = 1 };
enum : uint8_t { MPCLI_FLAG_NORMAL = 1, MPCLI_FLAG_DEBUG = 0 };

struct MPCLI_Option {
    const char* keyword;
    const char* help;  // usage lines of the command; "" for hidden rows
    MPCLI_Handler handler;
    uint8_t flag;      // 1: allowed in normal mode; anything else: debug only
    // The keys of the argument words the command takes, blank-separated (a
    // bare word such as "verbose" is its own key); the handler refuses any
    // other with its own usage text (MPCLI_Command::keysAccepted).
    const char* keys = nullptr;
};

using MPCLI_Table = std::span<const MPCLI_Option>;

extern uint8_t g_bCLIDebugCmdOn;
extern char* g_pszCLIProgname;
extern volatile uint32_t g_uiCLIContrlCRef;

// Dispatch tables (cli_tables.cpp).
extern const MPCLI_Table g_stCLIOptionsType;
extern const MPCLI_Table g_stCLIOptionShowType;
extern const MPCLI_Table g_stCLIOptionSetType;
extern const MPCLI_Table g_stCLIOptionStartType;
extern const MPCLI_Table g_stCLIOptionClearType;
extern const MPCLI_Table g_stCLIOptionAddType;
extern const MPCLI_Table g_stCLIOptionDelType;
extern const MPCLI_Table g_stCLIOptionCheckType;
extern const MPCLI_Table g_stCLIOptionStopType;
extern const MPCLI_Table g_stCLIHelpOptionType;

// Shell spine (cli_main.cpp).
uint32_t MPCLI_Init(int argc, char** argv);
void MPCLI_Fini();
uint8_t MPCLI_DoMain(int argc, char** argv);
uint8_t MPCLI_CliExe(char** argBuffers);
char* MPCLI_Readline(const char* promptFormat, ...) __attribute__((format(printf, 1, 2)));
uint32_t MPCLI_IsOneLineCmd(const char* token);
uint8_t MPCLI_NewCmd(uint32_t argc, char** argv);
uint8_t MPCLI_ExecuteParameter(const char* keyword, uint32_t argc, char** argv, uint32_t rows, const MPCLI_Option* table);
// Runs the row of `keyword` in `table` on the words of `command`, whose
// word 0 is the keyword's own word.
uint8_t MPCLI_DispatchCommand(std::string_view keyword, const MPCLI_Command& command, MPCLI_Table table);
uint8_t MPCLI_JudgeEnvironment(const MPCLI_Option* row);
uint8_t MPCLI_CheckTypeInvlaid(const char* key, const char* raw);
uint32_t MPCLI_GetOperType(const char* keyword, uint32_t* operType);
void MPCLI_ControlC(int signo);
int MPCLI_Main(int argc, char** argv);

// Verb handlers.
uint8_t MPCLI_Show(const MPCLI_Command& command);
uint8_t MPCLI_Set(const MPCLI_Command& command);
uint8_t MPCLI_Start(const MPCLI_Command& command);
uint8_t MPCLI_Clear(const MPCLI_Command& command);
uint8_t MPCLI_Add(const MPCLI_Command& command);
uint8_t MPCLI_Del(const MPCLI_Command& command);
uint8_t MPCLI_Check(const MPCLI_Command& command);
uint8_t MPCLI_Stop(const MPCLI_Command& command);

// Help and general commands (cli_help.cpp, cli_misc.cpp).
void MPCLI_CVMUsage();
// Prints `text`, then the usage text; returns MPCLI_RESULT_FAIL.
uint8_t MPCLI_UsageError(const char* text);
uint8_t MPCLI_Help(const MPCLI_Command& command);
uint8_t MPCLI_HelpHelp(const MPCLI_Command& command);
uint8_t MPCLI_HelpQuit(const MPCLI_Command& command);
uint8_t MPCLI_HelpShow(const MPCLI_Command& command);
uint8_t MPCLI_HelpSet(const MPCLI_Command& command);
uint8_t MPCLI_HelpStart(const MPCLI_Command& command);
uint8_t MPCLI_HelpClear(const MPCLI_Command& command);
uint8_t MPCLI_HelpAdd(const MPCLI_Command& command);
uint8_t MPCLI_HelpDel(const MPCLI_Command& command);
uint8_t MPCLI_HelpCheck(const MPCLI_Command& command);
uint8_t MPCLI_HelpGenerateprkey(const MPCLI_Command& command);
uint8_t MPCLI_HelpStop(const MPCLI_Command& command);
uint8_t MPCLI_ShowVersion(const MPCLI_Command& command);
uint8_t MPCLI_GenClusterKey(const MPCLI_Command& command);
uint8_t MPCLI_CheckStatus(const MPCLI_Command& command);
uint8_t MPCLI_ShowWorker(const MPCLI_Command& command);
uint8_t MPCLI_StartDiskDriverUpdate(const MPCLI_Command& command);
uint8_t MPCLI_RiskPrompt(const char* prompt);

// Shared reporters of a failed code.
void MPCLI_PrintfErrorInfo(uint32_t code, const char* objectId, uint8_t perVlun);
void MPCLI_PrintfInternalErrorInfo(uint32_t code);
struct UilStatusRecord;
void MPCLI_FormatCheckStatus(const UilStatusRecord* rec, char* out, size_t size);

// Prints a text to standard output and flushes it: every user-visible
// message goes through here.
void MPCLI_Print(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

// Driver events and supported-array rules (cli_event.cpp, cli_vendor.cpp).
uint8_t MPCLI_ShowEvent(const MPCLI_Command& command);
uint8_t MPCLI_ShowSupportArrayList(const MPCLI_Command& command);
uint8_t MPCLI_AddSupportArrayList(const MPCLI_Command& command);
uint8_t MPCLI_DelSupportArrayList(const MPCLI_Command& command);
