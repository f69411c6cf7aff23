// The configuration store in the run's sandbox, for the tests that drive it
// with the recording fake driver.
//
// A test binary registers StoreEnvironment once (the store is opened for
// the whole run) and derives its fixtures from StoreTest, naming the
// document every test starts from.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "cfg_support.h"

namespace cfgtest {

class StoreEnvironment : public testing::Environment {
public:
    void SetUp() override
    {
        (void)sandbox();
        ASSERT_EQ(UIL_CfgInit(), MPI_RET_SUCCESS);
    }
    void TearDown() override { UIL_CfgFini(); }
};

// Each test (and each restart() of a table-driven one) begins with the
// lock free, no backup, the start document in place and a fresh driver;
// whatever a test leaves open or locked is released after it.
class StoreTest : public testing::Test {
protected:
    explicit StoreTest(std::string startDocument) : start_(std::move(startDocument)) {}

    void SetUp() override { restart(); }
    void TearDown() override { release(); }

    void restart()
    {
        release();
        fs::remove(bakPath());
        writeFile(cfgPath(), start_);
        FakeDriver::get().reset();
    }
    static void release()
    {
        (void)UIL_CfgCloseFile(false);
        (void)UIL_CfgUnlockFile();
    }
    static FakeDriver& driver() { return FakeDriver::get(); }
    const std::string& startDocument() const { return start_; }

private:
    std::string start_;
};

}  // namespace cfgtest
