// Expected request payloads written as data: the fields a request must
// carry, each at its offset, with every other byte zero.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "sim_harness.h"

namespace simtest {

struct Field {
    size_t offset;
    size_t width;  // 1 or 4
    uint32_t value;
};
inline Field U8(size_t offset, uint8_t value) { return {offset, 1, value}; }
inline Field U32(size_t offset, uint32_t value) { return {offset, 4, value}; }

inline std::vector<uint8_t> bytesOf(size_t size, const std::vector<Field>& fields)
{
    std::vector<uint8_t> bytes(size, 0);
    for (const Field& f : fields) {
        for (size_t i = 0; i < f.width; ++i) {
            bytes.at(f.offset + i) = static_cast<uint8_t>(f.value >> (8 * i));
        }
    }
    return bytes;
}

// One call and the one request of number `nr` it must send, byte for byte.
struct PayloadRow {
    const char* what;
    std::function<uint32_t()> call;
    uint32_t nr;
    uint32_t size;
    std::vector<Field> fields;
};

// The driver takes every request without carrying it out, so no row
// changes what the tests after it see.
inline void expectPayloads(const std::vector<PayloadRow>& rows)
{
    setFaults("* code=1024\n");
    for (const PayloadRow& row : rows) {
        SCOPED_TRACE(row.what);
        clearRequests();
        (void)row.call();
        std::vector<Request> sent;
        for (const Request& r : requests()) {
            if (r.nr == row.nr) {
                sent.push_back(r);
            }
        }
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ(sent[0].size, row.size);
        EXPECT_EQ(sent[0].in, bytesOf(row.size, row.fields));
    }
    setFaults("");
}

}  // namespace simtest
