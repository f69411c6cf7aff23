// Host checks of `check status`: the product's own scripts inspect the
// installed modules, configuration files, background process and HBAs.
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "mpi/mpi_root.h"
#include "uia/uia.h"
#include "uia/uia_shell.h"

namespace {

struct ExitText {
    int code;
    const char* text;
};

constexpr std::array<ExitText, 8> stModulesContent = {{
    {1, "kernelModules file is not exist;"},
    {2, "cvdrv.ko is not exist;"},
    {3, "cvdrvext_a.ko is not exist;"},
    {4, "cvdrvext_b.ko is not exist;"},
    {5, "cvdrv.ko and cvdrvext_a.ko are not exist;"},
    {6, "cvdrv.ko and cvdrvext_b.ko are not exist;"},
    {7, "cvdrv.ko,cvdrvext_a.ko,cvdrvext_b.ko are not exist;"},
    {8, "cvdrvext_a.ko and cvdrvext_b.ko are not exist;"},
}};

constexpr std::array<ExitText, 3> stConfContent = {{
    {1, "cv.conf are not exist;"},
    {2, "user_cfg.xml are not exist;"},
    {3, "user_cfg.xml and cv.conf are not exist;"},
}};

constexpr std::array<ExitText, 1> stProcessContent = {{
    {1, "backgroud process is not exist;"},
}};

constexpr const char kToolDir[] = "/Corvane/install/linuxTools/toolLib/";

struct ScriptCheck {
    const char* script;
    std::span<const ExitText> texts;
};

const std::array<ScriptCheck, 3> kConfigChecks = {{
    {"t221_checkModules.sh", stModulesContent},
    {"t222_checkConf.sh", stConfContent},
    {"t223_checkbackgroundProcess.sh", stProcessContent},
}};

// Runs one script with the system shell; false when it did not end
// normally (killed by a signal, or the shell could not be started).
bool runScript(const char* script, int* exitCode)
{
    std::string command = "sh " + UIA_ShellQuote(MPI_HostPath(kToolDir) + script);
    std::fflush(stdout);  // the script prints on our standard output
    int status = std::system(command.c_str());
    if (status == -1 || !WIFEXITED(status)) {
        UIA_ERR("Run script %s fail, status %d", script, status);
        return false;
    }
    *exitCode = WEXITSTATUS(status);
    return true;
}

const char* textFor(std::span<const ExitText> texts, int code)
{
    for (const ExitText& row : texts) {
        if (row.code == code) {
            return row.text;
        }
    }
    return nullptr;
}

}  // namespace

void INTF_UIA_CheckConfig(UiaEmitFn emit)
{
    bool problem = false;
    for (const ScriptCheck& check : kConfigChecks) {
        int code = 0;
        if (!runScript(check.script, &code)) {
            return;
        }
        // An exit code without a text of ours is still a failed check:
        // the script has said what it found, and "Pass" would be a lie.
        if (const char* text = textFor(check.texts, code)) {
            emit(text);
            emit("\n");
        }
        problem = problem || code != 0;
    }
    if (!problem) {
        emit("Pass\n");
    }
}

void INTF_UIA_CheckHBAConfig(UiaEmitFn emit)
{
    int code = 0;
    if (runScript("t224_checkHBAInfo.sh", &code) && code == 0) {
        emit("Pass\n");
    }
}
