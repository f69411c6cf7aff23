// Request codes and payload access: the codes are those of the driver's
// table, written out here from the table rather than recomputed.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>

#include "uia/uia.h"

namespace {

struct CodeCase {
    UiaRequest req;
    uint32_t code;
};

TEST(RequestCodes, MatchTheDriverTable)
{
    const CodeCase cases[] = {
        {uia_req::GetVersion, 0x800C4D01},     {uia_req::EnumArrayIds, 0x80104D0B},
        {uia_req::GetArrayInfo, 0x81BC4D0C},   {uia_req::GetDiskInfo, 0x82204D17},
        {uia_req::EnumArrayVlunIds, 0x80144D19}, {uia_req::GetPathInfo, 0x84384D20},
        {uia_req::CommonSet, 0x82604D32},      {uia_req::CfgNotify, 0x808C4D46},
        {uia_req::CfgDelete, 0x80484D47},      {uia_req::GetVLunInfo, 0x80544D5F},
        {uia_req::GetWorkerInfo, 0x80404D64},  {uia_req::ClearPhyPathStatistic, 0x84384D6C},
    };
    for (const CodeCase& c : cases) {
        EXPECT_EQ(c.req.code(), c.code) << "nr " << c.req.nr;
    }
}

TEST(Payload, LittleEndianFieldsAtTheirOffsets)
{
    UiaPayload p(16);
    p.setU32(0, 0x11223344);
    p.setU16(4, 0xA1B2);
    p.setU8(6, 0x7F);
    p.setU64(8, 0x0102030405060708ULL);
    const uint8_t expected[16] = {0x44, 0x33, 0x22, 0x11, 0xB2, 0xA1, 0x7F, 0x00,
                                  0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01};
    EXPECT_EQ(0, std::memcmp(p.data(), expected, sizeof(expected)));
    EXPECT_EQ(p.u32(0), 0x11223344u);
    EXPECT_EQ(p.u64(8), 0x0102030405060708ULL);
    EXPECT_EQ(p.u32(5), 0x08007FA1u);
}

TEST(Payload, TextsAreAlwaysTerminated)
{
    UiaPayload p(12);
    std::memset(p.data(), 'A', p.size());  // a driver that filled the field
    char out[5];
    p.text(0, 4, out, sizeof(out));
    EXPECT_STREQ(out, "AAAA");
    char small[3];
    p.text(0, 4, small, sizeof(small));
    EXPECT_STREQ(small, "AA");
    p.setText(4, 4, "toolong");
    p.text(4, 4, out, sizeof(out));
    EXPECT_STREQ(out, "too");
    EXPECT_EQ(p.u8(7), 0);
    EXPECT_EQ(p.u8(8), 'A') << "nothing written past the field";
}

TEST(PayloadDeath, OutOfBoundsAccessIsAProgrammingError)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    UiaPayload p(8);
    // The assertion parks the process forever; the death test sees it killed.
    EXPECT_DEATH(
        {
            alarm(1);
            (void)p.u32(6);
        },
        "");
}

}  // namespace
