// The main of every unit test binary: each run gets a sandbox root of its
// own, so no test ever touches the host's /etc, /opt or /dev, and the
// sandbox is removed when the run ends. Children re-executed by death tests
// inherit the root and leave it to their parent; a root chosen before main
// (by the caller or a test's own set-up) is kept as it is.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    std::string owned;
    if (std::getenv("CVADM_TEST_SANDBOX") == nullptr && std::getenv("CVADM_ROOT") == nullptr) {
        std::string tmpl = (std::filesystem::temp_directory_path() / "cvadm-unit-XXXXXX").string();
        if (mkdtemp(tmpl.data()) == nullptr) {
            return 2;
        }
        owned = tmpl;
        setenv("CVADM_TEST_SANDBOX", owned.c_str(), 1);
        setenv("CVADM_ROOT", owned.c_str(), 1);
    }
    int result = RUN_ALL_TESTS();
    if (!owned.empty() && std::getenv("CVADM_KEEP_SANDBOX") == nullptr) {
        std::error_code ignored;
        std::filesystem::remove_all(owned, ignored);
    }
    return result;
}
