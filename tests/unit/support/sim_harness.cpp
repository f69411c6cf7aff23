// The main of the unit tests that run against the simulated host: see
// sim_harness.h. CVSIM_SCRIPT and CVSIM_LIBRARY name the built cvadm-sim
// script and preload library.
#include "sim_harness.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "test_files.h"
#include "uil/uil.h"

extern char** environ;

namespace fs = std::filesystem;

namespace simtest {

namespace {

constexpr const char kChildMark[] = "CVADM_SIM_TEST_CHILD";

// A broken invariant in the code under test pauses the process for good;
// the run then ends on this alarm instead of waiting for ctest's timeout.
constexpr unsigned kWatchdogSeconds = 300;

void writeRootFile(const std::string& relative, const std::string& text)
{
    std::ofstream out(root() + "/" + relative, std::ios::binary | std::ios::trunc);
    out << text;
}

std::vector<uint8_t> bytesOfHex(const std::string& hex)
{
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

int spawnAndWait(const std::vector<std::string>& args)
{
    std::vector<char*> argv;
    for (const std::string& a : args) {
        argv.push_back(const_cast<char*>(a.c_str()));
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
        return -1;
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Only returns on failure.
int relaunchUnderSim(const char* name, char** argv)
{
    if (!fs::exists(CVSIM_SCRIPT) || !fs::exists(CVSIM_LIBRARY)) {
        std::fprintf(stderr, "%s: %s or %s is not built\n", name, CVSIM_SCRIPT, CVSIM_LIBRARY);
        return 1;
    }
    std::string dir = (fs::temp_directory_path() / "cvadm-simtest-XXXXXX").string();
    if (mkdtemp(dir.data()) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    unsetenv("CVADM_ROOT");
    if (spawnAndWait({CVSIM_SCRIPT, "--setup", dir}) != 0) {
        std::fprintf(stderr, "%s: %s --setup %s failed\n", name, CVSIM_SCRIPT, dir.c_str());
        std::error_code ignored;
        fs::remove_all(dir, ignored);
        return 1;
    }
    setenv("CVADM_ROOT", dir.c_str(), 1);
    setenv("LD_PRELOAD", CVSIM_LIBRARY, 1);
    // The preloaded library comes before the sanitizer runtime.
    std::string asan = "verify_asan_link_order=0";
    if (const char* old = std::getenv("ASAN_OPTIONS")) {
        asan += std::string(":") + old;
    }
    setenv("ASAN_OPTIONS", asan.c_str(), 1);
    setenv(kChildMark, "1", 1);
    execv("/proc/self/exe", argv);
    std::perror("execv");
    return 1;
}

}  // namespace

std::string root() { return testfiles::root(); }

std::string rootFile(const std::string& relative) { return testfiles::text(root() + "/" + relative); }

void setFaults(const std::string& lines) { writeRootFile("sim/faults", lines); }
std::string faults() { return rootFile("sim/faults"); }
void clearRequests() { writeRootFile("sim/requests.log", ""); }

std::vector<Request> requests()
{
    static const std::regex kLine(R"(nr=(\d+) code=\S+ size=(\d+) result=(\d+) in=([0-9a-f]*) out=)");
    std::vector<Request> all;
    std::istringstream lines(rootFile("sim/requests.log"));
    for (std::string line; std::getline(lines, line);) {
        std::smatch m;
        if (std::regex_search(line, m, kLine)) {
            all.push_back({static_cast<uint32_t>(std::stoul(m[1])), static_cast<uint32_t>(std::stoul(m[2])),
                           static_cast<uint32_t>(std::stoul(m[3])), bytesOfHex(m[4])});
        }
    }
    return all;
}

uint32_t le32(const std::vector<uint8_t>& bytes, size_t offset)
{
    uint32_t v = 0;
    for (size_t i = 0; i < 4 && offset + i < bytes.size(); ++i) {
        v |= static_cast<uint32_t>(bytes[offset + i]) << (8 * i);
    }
    return v;
}

}  // namespace simtest

int main(int argc, char** argv)
{
    const std::string name = fs::read_symlink("/proc/self/exe").filename().string();
    if (std::getenv(simtest::kChildMark) == nullptr) {
        return simtest::relaunchUnderSim(name.c_str(), argv);
    }
    testing::InitGoogleTest(&argc, argv);
    if (INTF_UIL_Init() != MPI_RET_SUCCESS) {
        std::fprintf(stderr, "%s: the simulated device cannot be opened under %s\n", name.c_str(),
                     simtest::root().c_str());
        return 1;
    }
    alarm(simtest::kWatchdogSeconds);
    int rc = RUN_ALL_TESTS();
    alarm(0);
    INTF_UIL_Fini();
    std::error_code ignored;
    fs::remove_all(simtest::root(), ignored);
    return rc;
}
