// Runs the tests of a simulated-host binary on another bundled topology
// (sim/topology/<name>) instead of the default one. Register it at
// namespace scope:
//
//     const auto* const kTopology = simtest::UseTopology("aglun.json");
//
// Before the first test the topology becomes the driver's saved state, so
// the first request of the process reads it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "sim_harness.h"
#include "test_files.h"

namespace simtest {

class TopologyEnvironment : public testing::Environment {
public:
    explicit TopologyEnvironment(std::string name) : m_name(std::move(name)) {}

    void SetUp() override
    {
        namespace fs = std::filesystem;
        // The source path as the compiler saw it: absolute, or relative to
        // the build directory, two levels above this test's executable.
        fs::path source = __FILE__;
        if (source.is_relative()) {
            source = fs::read_symlink("/proc/self/exe").parent_path().parent_path() / source;
        }
        fs::path file = source.parent_path() / "../../../sim/topology" / m_name;
        std::string text = testfiles::text(file.string());
        ASSERT_FALSE(text.empty()) << "no topology at " << file;
        std::ofstream(root() + "/sim/state.json", std::ios::binary | std::ios::trunc) << text;
    }

private:
    std::string m_name;
};

inline testing::Environment* UseTopology(const char* name)
{
    return testing::AddGlobalTestEnvironment(new TopologyEnvironment(name));
}

}  // namespace simtest
