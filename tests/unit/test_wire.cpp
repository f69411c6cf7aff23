// Request codes and payload access: the codes are those of the driver's
// table, written out here from the table rather than recomputed.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>

#include "uia/uia.h"
#include "uil/uil_wire_ids.h"

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

// The ID-list layouts, written out from the driver's tables: where the
// answer's count and IDs lie, and the buffer each request really sends
// (declared size + 4 x (capacity - 1): 24 + 4 x 16383 = 65556 for the disk
// lists, whose IDs start at 20).
struct IdListCase {
    const uil_wire::IdListLayout* layout;
    uint32_t nr, declared;
    size_t countAt, idsAt;
    uint32_t capacity;
    size_t buffer;
};

TEST(WireLayouts, IdListsAsTheDriverTablesGiveThem)
{
    using namespace uil_wire;
    const IdListCase cases[] = {
        {&kArrayIds, 11, 16, 8, 12, 128, 524},           {&kArrayVlunIds, 25, 20, 12, 16, 16384, 65552},
        {&kArrayDiskIds, 21, 24, 16, 20, 16384, 65556},  {&kTpgIds, 60, 16, 8, 12, 16, 76},
        {&kTpgInfo, 61, 28, 16, 24, 8, 56},              {&kPathIds, 31, 16, 8, 12, 128, 524},
        {&kPhyPathIds, 41, 20, 12, 16, 16384, 65552},    {&kPhyPathDiskIds, 22, 24, 16, 20, 16384, 65556},
        {&kHbaIds, 66, 12, 4, 8, 64, 264},               {&kHbaPathIds, 44, 848, 4, 8, 210, 848},
    };
    for (const IdListCase& c : cases) {
        SCOPED_TRACE(c.layout->what);
        EXPECT_EQ(c.layout->req->nr, c.nr);
        EXPECT_EQ(c.layout->req->size, c.declared);
        EXPECT_EQ(c.layout->countOff, c.countAt);
        EXPECT_EQ(c.layout->idsOff, c.idsAt);
        EXPECT_EQ(c.layout->capacity, c.capacity);
        EXPECT_EQ(c.layout->bufferSize(), c.buffer);
    }
    EXPECT_EQ(LargestIdBuffer(), 65556u);
}

// The layout checks themselves: a field past the end, an empty field and
// two fields sharing a byte are caught.
TEST(WireLayouts, FitAndOverlapChecks)
{
    const UiaField fits[] = {{0, 4}, {4, 80}, {84, 1}};
    EXPECT_TRUE(UiaFieldsFit(fits, 85));
    EXPECT_FALSE(UiaFieldsFit(fits, 84));
    EXPECT_TRUE(UiaFieldsDisjoint(fits));
    const UiaField overlapping[] = {{0, 4}, {3, 2}};
    EXPECT_FALSE(UiaFieldsDisjoint(overlapping));
    const UiaField empty[] = {{8, 0}};
    EXPECT_FALSE(UiaFieldsFit(empty, 16));
    const UiaField wraps[] = {{static_cast<size_t>(-2), 4}};
    EXPECT_FALSE(UiaFieldsFit(wraps, 16));
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

TEST(Payload, FieldsReadAndWriteTheirOwnBytes)
{
    UiaPayload p(24);
    std::memset(p.data(), 0xEE, p.size());
    const UiaField word{4, 4};
    const UiaField words{8, 8};
    const UiaField name{16, 6};
    p.setU32(word, 0x01020304);
    p.setText(name, "abcdefgh");
    EXPECT_EQ(p.u32(word), 0x01020304u);
    EXPECT_EQ(p.u8(3), 0xEE) << "nothing before the field";
    EXPECT_EQ(p.u8(8), 0xEE) << "nothing after it";
    p.setU64(8, 0x0000000B0000000AULL);
    EXPECT_EQ(p.u32At(words, 0), 0xAu);
    EXPECT_EQ(p.u32At(words, 1), 0xBu);
    char out[8];
    p.text(name, out);
    EXPECT_STREQ(out, "abcde");
    EXPECT_EQ(p.u8(22), 0xEE);
    p.clearFirst(6);
    EXPECT_EQ(p.u32(0), 0u);
    EXPECT_EQ(p.u8(5), 0);
    EXPECT_EQ(p.u8(6), 0x02) << "cleared no further than asked";
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
    // A field read with the wrong width is one too.
    EXPECT_DEATH(
        {
            alarm(1);
            (void)p.u32(UiaField{0, 2});
        },
        "");
}

}  // namespace
