// Unit tests that run against the simulated host.
//
// A test binary linked with the harness gets its main from it: started
// plainly (as ctest does), it makes a fresh sandbox with `cvadm-sim --setup`
// and re-executes itself with CVADM_ROOT set to it and the simulated driver
// preloaded, so that its driver requests reach the driver model exactly as
// cvadm's do. The child opens the device, runs the tests and removes the
// sandbox. Faults are scripted through sim/faults and every request is
// logged in sim/requests.log, both under the sandbox.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace simtest {

// The sandbox root of this run.
std::string root();

// The text of a file under the sandbox root ("" when absent).
std::string rootFile(const std::string& relative);

// The fault script: one "<nr> <action> [<times>]" line per fault; a used-up
// fault is removed from it.
void setFaults(const std::string& lines);
std::string faults();

struct Request {
    uint32_t nr;
    uint32_t size;               // as declared by the caller
    uint32_t result;
    std::vector<uint8_t> in;     // the declared bytes as they were sent
};

// Every request logged since the last clearRequests(), in order.
std::vector<Request> requests();
void clearRequests();

// A little-endian u32 of a logged payload.
uint32_t le32(const std::vector<uint8_t>& bytes, size_t offset);

// Each test starts with no fault scripted and an empty request log, and
// leaves no fault behind for the next.
class SimTest : public testing::Test {
protected:
    void SetUp() override
    {
        setFaults("");
        clearRequests();
    }
    void TearDown() override { setFaults(""); }
};

}  // namespace simtest
