// The rules of the object layer that need no driver: path state words,
// I/O state tables, check words, printable ports, controller naming, disk
// status, clamping, name conversion, and the decoders read at the offsets of
// the written wire layouts.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/test_files.h"
#include "uil/uil_objects_int.h"

namespace {

using testfiles::traceText;

class ObjectRules : public ::testing::Test {};

// ---------------------------------------------------------------------------
// Path state words. A physical path reads enabled, link and I/O state; a
// logical one enabled, driver state, I/O state and its faulty byte.

struct StateCase {
    bool logical;
    uint8_t enabled;
    uint32_t state;  // link of a physical path, driver state of a logical one
    uint32_t io;
    uint8_t faulty;
    const char* word;
};

TEST_F(ObjectRules, PathStateWords)
{
    const StateCase cases[] = {
        {false, 0, 1, 19, 0, "Disable"},  {false, 0, 0, 22, 0, "Disable"},  // disabled wins over everything
        {false, 1, 0, 19, 0, "Fault"},    {false, 1, 2, 19, 0, "Fault"},    // link not connected
        {false, 1, 1, 19, 0, "Normal"},   {false, 1, 1, 20, 0, "Normal"},
        {false, 1, 1, 21, 0, "Normal"},  // busy reads Normal on a physical path
        {false, 1, 1, 22, 0, "I/O discrete error degradation"},
        {false, 1, 1, 23, 0, "Intermittent failure degradation"}, {false, 1, 1, 24, 0, "I/O timeout degradation"},
        {false, 1, 1, 25, 0, "High latency degradation"},
        {false, 1, 1, 26, 0, "Degraded"},  // sensitive delay has no word of its own here
        {false, 1, 1, 27, 0, "Potential fault degradation"},
        {false, 1, 1, 18, 0, "Degraded"}, {false, 1, 1, 28, 0, "Degraded"}, {true, 0, 9, 19, 0, "Disable"},
        {true, 1, 10, 19, 0, "Fault"},  {true, 1, 8, 19, 0, "Fault"},  {true, 1, 13, 19, 0, "Fault"},  // 9, 11, 12 work
        {true, 1, 9, 19, 0, "Normal"},  {true, 1, 11, 20, 0, "Normal"},
        {true, 1, 12, 21, 0, "BUSY degradation"},  // unlike the physical rule
        {true, 1, 9, 22, 0, "I/O discrete error degradation"},
        {true, 1, 9, 23, 0, "Intermittent failure degradation"}, {true, 1, 9, 24, 0, "I/O timeout degradation"},
        {true, 1, 9, 25, 0, "High latency degradation"}, {true, 1, 9, 26, 0, "Sensitive delayed degradation"},
        {true, 1, 9, 27, 0, "Potential fault degradation"}, {true, 1, 9, 28, 0, "Degraded"},
        {true, 1, 9, 19, 1, "Fault"},  {true, 0, 9, 19, 1, "Fault"},  // the faulty byte overrides the word
        {true, 1, 9, 19, 2, "Normal"},  // only the value 1 marks it faulty
    };
    for (const StateCase& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.logical ? "logical" : "physical") << " enabled " << int(c.enabled)
                                        << " state " << c.state << " io " << c.io << " faulty " << int(c.faulty));
        EXPECT_STREQ(c.logical ? UIL_LogicalPathStateWord(c.enabled, c.state, c.io, c.faulty)
                               : UIL_PhyPathStateWord(c.enabled, c.state, c.io),
                     c.word);
    }
}

// Display and parsing orders differ at 23 and 24 on purpose; the ends of
// the range and what lies outside it.
TEST_F(ObjectRules, IoStateDisplayAndParsingOrders)
{
    const struct {
        uint32_t code;
        const char* display;
        const char* parsing;
    } rows[] = {
        {19, "CVIOC_PATH_IO_NORMAL", "CVIOC_PATH_IO_NORMAL"},
        {23, "CVIOC_PATH_IO_NOT_STEDAY", "CVIOC_PATH_IO_TIMEOUT"},
        {24, "CVIOC_PATH_IO_TIMEOUT", "CVIOC_PATH_IO_NOT_STEDAY"},
        {27, "CVIOC_PATH_IO_POTENTIAL_FAULT", "CVIOC_PATH_IO_POTENTIAL_FAULT"},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(UIL_PathIoStateWord(row.code), row.display) << row.code;
        EXPECT_EQ(UIL_PathSzIostateToUInt(row.parsing), row.code) << row.parsing;
    }
    EXPECT_EQ(UIL_PathSzIostateToUInt("CVIOC_PATH_IO_BUS"), UIL_PATH_IO_NONE);
    EXPECT_EQ(UIL_PathSzIostateToUInt(""), UIL_PATH_IO_NONE);
    for (uint32_t code : {0u, 18u, 28u, 0xFFFFFFFFu}) {
        EXPECT_STREQ(UIL_PathIoStateWord(code), "Unknown path io state") << code;
    }
}

TEST_F(ObjectRules, CheckStartAndStepWords)
{
    const struct {
        bool step;
        uint32_t value;
        const char* word;
    } cases[] = {
        {false, 20, "Init"},     {false, 21, "Auto"},      {false, 22, "Manual"},  {false, 19, ""},
        {false, 23, ""},         {false, 100, ""},         {true, 100, "Init"},    {true, 101, "Checking"},
        {true, 102, "Waiting"},  {true, 103, "Ignore"},    {true, 104, "Notsteady"}, {true, 105, "Succeed"},
        {true, 106, "Fail"},     {true, 99, ""},           {true, 107, ""},        {true, 21, ""},
    };
    for (const auto& c : cases) {
        char out[UIL_CHECK_WORD_SIZE];
        std::memset(out, 'x', sizeof(out));
        if (c.step) {
            UIL_TransCheckStepToStr(c.value, out, sizeof(out));
        } else {
            UIL_TransCheckStartTypeToStr(c.value, out, sizeof(out));
        }
        EXPECT_STREQ(out, c.word) << (c.step ? "step " : "start ") << c.value;
    }
    char small[5];
    UIL_TransCheckStepToStr(UIL_CHECK_STEP_CHECKING, small, sizeof(small));
    EXPECT_STREQ(small, "Chec") << "a longer word is cut to the buffer";
}

// ---------------------------------------------------------------------------
// Printable ports: the name field, and for iSCSI the address from byte 225.

struct PortCase {
    const char* label;
    std::string name;
    std::vector<uint8_t> ip;
    uint32_t type;
    uint32_t tcp;
    std::string initiator;
    std::string target;
};

TEST_F(ObjectRules, PrintablePorts)
{
    const std::string iqn = "iqn.1994-05.com.redhat:host1";
    const std::string longName(224, 'n');
    const std::string cut(223, 'n');
    const PortCase cases[] = {
        {"fc", "21000024ff3a1b2c", {}, UIL_PORT_FC, 3260, "21000024ff3a1b2c", "21000024ff3a1b2c"},
        {"sas", "500605b00a1b2c3d", {}, UIL_PORT_SAS, 0, "500605b00a1b2c3d", "500605b00a1b2c3d"},
        {"fcoe keeps a long name", longName, {}, UIL_PORT_FCOE, 0, longName, longName},
        {"iscsi ipv4", iqn, {192, 168, 10, 21}, UIL_PORT_ISCSI, 3260, iqn + "::192.168.10.21::3260", iqn + "::3260"},
        {"iscsi zero ipv4", iqn, {}, UIL_PORT_ISCSI, 0, iqn + "::0.0.0.0::0", iqn + "::0"},
        {"iscsi ipv6", iqn, {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0x02, 0x1b, 0x21, 0xff, 0xfe, 0x3a, 0x00, 0x01},
         UIL_PORT_ISCSI, 51234, iqn + "::FE80:0:0:0:21B:21FF:FE3A:1::51234", iqn + "::51234"},
        {"iscsi ipv6 from its last byte", iqn, {10, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, UIL_PORT_ISCSI, 1,
         iqn + "::A00:1:0:0:0:0:0:1::1", iqn + "::1"},
        {"iscsi cut at 223", longName, {}, UIL_PORT_ISCSI, 3260, cut + "::0.0.0.0::3260", cut + "::3260"},
    };
    for (const PortCase& c : cases) {
        std::vector<uint8_t> field(UIL_PORT_NAME_LEN, 0);
        std::copy(c.name.begin(), c.name.end(), field.begin());
        std::copy(c.ip.begin(), c.ip.end(), field.begin() + 225);
        char initiator[UIL_PORT_TEXT_SIZE];
        char target[UIL_PORT_TEXT_SIZE];
        UIL_GetPrintableInitiatorWwn(initiator, sizeof(initiator), field.data(), field.size(), c.type, c.tcp);
        UIL_GetPrintableTargetWwn(target, sizeof(target), field.data(), field.size(), c.type, c.tcp);
        EXPECT_EQ(std::string(initiator), c.initiator) << c.label;
        EXPECT_EQ(std::string(target), c.target) << c.label;
    }
}

TEST_F(ObjectRules, PrintablePortsNeverOverflow)
{
    // A full field without a terminator, every address byte set: the longest answer.
    std::vector<uint8_t> field(UIL_PORT_NAME_LEN, 0xFF);
    std::memset(field.data(), 'x', 225);
    char out[UIL_PORT_TEXT_SIZE];
    UIL_GetPrintableInitiatorWwn(out, sizeof(out), field.data(), field.size(), UIL_PORT_ISCSI, 0xFFFFFFFF);
    EXPECT_EQ(std::string(out), std::string(223, 'x') + "::FFFF:FFFF:FFFF:FFFF:FFFF:FFFF:FFFF:FFFF::4294967295");
    char tiny[8];
    UIL_GetPrintableInitiatorWwn(tiny, sizeof(tiny), field.data(), field.size(), UIL_PORT_ISCSI, 1);
    EXPECT_EQ(std::strlen(tiny), 7u);
    UIL_GetPrintableTargetWwn(tiny, sizeof(tiny), field.data(), field.size(), UIL_PORT_FC, 1);
    EXPECT_STREQ(tiny, "xxxxxxx");
}

// ---------------------------------------------------------------------------
// Controller naming, switches and load-balance words.

TEST_F(ObjectRules, ControllerNaming)
{
    const struct {
        uint32_t id;
        const char* tpgName;
        uint32_t capability;
        const char* text;
    } cases[] = {
        {0, "", UIL_CAP_PAIR_NAMING, "0A"}, {1, "", UIL_CAP_PAIR_NAMING, "0B"},
        {2, "", UIL_CAP_PAIR_NAMING | 0x40, "1A"}, {3, "", 0xFFFFFFFF, "1B"}, {15, "", UIL_CAP_PAIR_NAMING, "7B"},
        {0, "", 0, "0"},
        {15, "", UIL_CAP_PAIR_NAMING >> 1, "15"},  // only bit 24 selects the letters
        {3, "CtrlEast", UIL_CAP_PAIR_NAMING, "CtrlEast"}, {3, "SixteenCharsLong", 0, "SixteenCharsLong"},
        {16, "", UIL_CAP_PAIR_NAMING, "-"}, {16, "named", 0, "-"}, {0xFFFFFFFF, "", 0, "-"},
    };
    for (const auto& c : cases) {
        char out[UIL_CONTROLLER_NAME_SIZE];
        UIL_FormatControllerName(c.id, c.tpgName, c.capability, out, sizeof(out));
        EXPECT_STREQ(out, c.text) << "id " << c.id << " name '" << c.tpgName << "'";
        if (c.tpgName[0] == '\0') {
            char printName[UIL_CONTROLLER_NAME_SIZE];
            UIL_ConvertControllerIdToPrintName(c.id, c.capability, printName, sizeof(printName));
            EXPECT_STREQ(printName, c.text) << "print name of id " << c.id;
        }
    }
}

TEST_F(ObjectRules, SwitchAndPolicyTexts)
{
    struct BoolCase {
        const char* text;
        uint32_t ret;
        uint8_t value;  // 7: left as it was
    };
    for (const BoolCase& c : {BoolCase{"on", MPI_RET_SUCCESS, 1}, BoolCase{"off", MPI_RET_SUCCESS, 0},
                              BoolCase{"On", MPI_RET_INVALID_PARAM, 7}, BoolCase{"1", MPI_RET_INVALID_PARAM, 7},
                              BoolCase{"", MPI_RET_INVALID_PARAM, 7}, BoolCase{nullptr, MPI_RET_INVALID_PARAM, 7}}) {
        uint8_t value = 7;
        EXPECT_EQ(UIL_ConvertStrToBool(c.text, &value), c.ret) << (c.text ? c.text : "(null)");
        EXPECT_EQ(value, c.value) << (c.text ? c.text : "(null)");
    }
    EXPECT_STREQ(UIL_ConvertBoolToStr(0), "off");
    EXPECT_STREQ(UIL_ConvertBoolToStr(2), "on");
    EXPECT_STREQ(UIL_LbPolicyDescription("round-robin"), "round robin algorithm");
    EXPECT_STREQ(UIL_LbPolicyDescription("min-task"), "minimal task algotithm");
    EXPECT_STREQ(UIL_LbPolicyDescription("min"), "min");  // no prefix match
    EXPECT_STREQ(UIL_LbPolicyDescription(""), "");
}

// ---------------------------------------------------------------------------
// Disk status and LUN counts.

TEST_F(ObjectRules, DiskBasicStatus)
{
    const struct {
        uint8_t normal, degraded, unavailable;
        const char* status;
    } cases[] = {
        {1, 0, 0, "Normal"},      {1, 1, 0, "Normal"},      {0, 1, 0, "Degraded"},
        {0, 0, 0, "Fault"},       {2, 2, 0, "Fault"},       {1, 0, 1, "Unavailable"},
        {0, 1, 1, "Unavailable"}, {0, 0, 1, "Unavailable"}, {1, 0, 2, "Normal"},
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(UIL_DiskBasicStatus(c.normal, c.degraded, c.unavailable), c.status)
            << int(c.normal) << int(c.degraded) << int(c.unavailable);
    }
}

// Builds a detailed disk record: one controller per group of path states.
class DetailDisk {
public:
    DetailDisk(const std::vector<std::vector<const char*>>& groups, uint8_t unavailable)
    {
        UIL_InitDiskInfo(&disk);
        disk.unavailable = unavailable;
        for (const auto& states : groups) {
            auto* controller = static_cast<UilController*>(UIL_ZMalloc(sizeof(UilController)));
            MPI_ListInit(&controller->paths);
            for (const char* state : states) {
                auto* path = static_cast<UilPathInfo*>(UIL_ZMalloc(sizeof(UilPathInfo)));
                path->pathState = state;
                MPI_ListAddTail(&path->links, &controller->paths);
            }
            MPI_ListAddTail(&controller->links, &disk.controllers);
        }
    }
    ~DetailDisk() { INTF_UIL_GetDiskDetailInfoEnd(&disk); }

    std::vector<std::string> states() const
    {
        std::vector<std::string> out;
        for (MPI_ListNode* c = disk.controllers.next; c != &disk.controllers; c = c->next) {
            UilController* controller = MPI_ListEntry<UilController>(c);
            for (MPI_ListNode* p = controller->paths.next; p != &controller->paths; p = p->next) {
                out.push_back(MPI_ListEntry<UilPathInfo>(p)->pathState);
            }
        }
        return out;
    }

    DiskInfo disk;
};

TEST_F(ObjectRules, DiskDetailStatus)
{
    using V = std::vector<std::string>;
    const struct {
        const char* label;
        std::vector<std::vector<const char*>> groups;
        uint8_t unavailable;
        const char* status;
        uint32_t paths;
        V after;
    } cases[] = {
        {"one normal path is enough", {{"Fault", "Fault"}, {"Normal"}}, 0, "Normal", 3,
         {"Fault", "Fault", "Normal"}},
        {"busy logical path degrades", {{"BUSY degradation"}, {"Fault"}}, 0, "Degraded", 2,
         {"BUSY degradation", "Fault"}},
        {"potential fault degrades", {{"Potential fault degradation"}}, 0, "Degraded", 1, {"Potential fault degradation"}},
        {"sensitive delay degrades", {{"Disable", "Sensitive delayed degradation"}}, 0, "Degraded", 2,
         {"Disable", "Sensitive delayed degradation"}},
        {"plain degraded", {{"Degraded"}}, 0, "Degraded", 1, {"Degraded"}},
        {"only faulty and disabled", {{"Fault"}, {"Disable"}}, 0, "Fault", 2, {"Fault", "Disable"}},
        {"no path at all", {}, 0, "Fault", 0, {}},
        {"unavailable relabels", {{"Normal", "Disable"}, {"I/O timeout degradation"}}, 1, "Unavailable", 3,
         {"Fault", "Disable", "Fault"}},
    };
    for (const auto& c : cases) {
        DetailDisk d(c.groups, c.unavailable);
        d.disk.pathCount = 99;
        UIL_DiskDetailStatus(&d.disk);
        EXPECT_STREQ(d.disk.status, c.status) << c.label;
        EXPECT_EQ(d.disk.pathCount, c.paths) << c.label;
        EXPECT_EQ(d.states(), c.after) << c.label;
    }
}

TEST_F(ObjectRules, WorkingAndBusyLogicalPaths)
{
    const struct {
        const char* state;
        const char* io;
        uint32_t working, busy;
    } cases[] = {
        {"Normal", "CVIOC_PATH_IO_NORMAL", 1, 0}, {"BUSY degradation", "CVIOC_PATH_IO_BUSY", 1, 1},
        {"Normal", "CVIOC_PATH_IO_BUSY", 1, 1}, {"I/O timeout degradation", "CVIOC_PATH_IO_TIMEOUT", 1, 0},
        {"I/O discrete error degradation", "CVIOC_PATH_IO_UNKNOWN", 1, 0},
        {"Intermittent failure degradation", "CVIOC_PATH_IO_NOT_STEDAY", 1, 0},
        {"High latency degradation", "CVIOC_PATH_IO_HIGHLATENCY", 1, 0},
        {"Sensitive delayed degradation", "CVIOC_PATH_IO_SENSITIVE_DELAYED", 1, 0},
        {"Degraded", "Unknown path io state", 1, 0},
        {"Potential fault degradation", "CVIOC_PATH_IO_BUSY", 0, 0},  // left out on purpose
        {"Fault", "CVIOC_PATH_IO_BUSY", 0, 0}, {"Disable", "CVIOC_PATH_IO_NORMAL", 0, 0},
    };
    for (const auto& c : cases) {
        UilPathInfo path{};
        path.pathState = c.state;
        path.ioStateWord = c.io;
        uint32_t working = 10;
        uint32_t busy = 20;
        UIL_ModifyNumforPathStatus(&working, &busy, &path);
        EXPECT_EQ(working - 10, c.working) << c.state << " / " << c.io;
        EXPECT_EQ(busy - 20, c.busy) << c.state << " / " << c.io;
    }
}

// ---------------------------------------------------------------------------
// Clamping, sorting, ID lists.

TEST_F(ObjectRules, CountsAreClampedAndTraced)
{
    const struct {
        uint32_t count, capacity, result;
        bool traced;
    } cases[] = {
        {0, 128, 0, false},     {128, 128, 128, false}, {129, 128, 128, true},
        {0xFFFFFFFF, 16, 16, true}, {3, 2, 2, true},    {2, 2, 2, false},
    };
    for (const auto& c : cases) {
        std::string before = traceText();
        std::string what = "clamp case " + std::to_string(c.count);
        EXPECT_EQ(UIL_ClampCount(c.count, c.capacity, what.c_str()), c.result);
        std::string added = traceText().substr(before.size());
        EXPECT_EQ(added.find(what) != std::string::npos, c.traced) << added;
    }
}

TEST_F(ObjectRules, IdListsSortAndSearch)
{
    UilIdList* list = UIL_IdListAlloc(8);
    ASSERT_NE(list, nullptr);
    const uint32_t ids[] = {7, 3, 0xFFFFFFFF, 0, 3, 12};
    std::copy(std::begin(ids), std::end(ids), list->ids);
    list->count = 6;
    UIL_BubbleSort(list->ids, list->count);
    EXPECT_EQ(std::vector<uint32_t>(list->view().begin(), list->view().end()),
              (std::vector<uint32_t>{0, 3, 3, 7, 12, 0xFFFFFFFF}));
    EXPECT_TRUE(list->contains(12));
    EXPECT_TRUE(list->contains(0xFFFFFFFF));
    EXPECT_FALSE(list->contains(5));
    UIL_IdListFree(list);
    UIL_IdListFree(nullptr);
}

TEST_F(ObjectRules, VLunListSortsByVLunId)
{
    MPI_ListNode head;
    MPI_ListInit(&head);
    for (uint32_t id : {9u, 2u, 16383u, 0u, 2u}) {
        auto* v = static_cast<VLunInfo*>(UIL_ZMalloc(sizeof(VLunInfo)));
        v->vlunId = id;
        MPI_ListAddTail(&v->links, &head);
    }
    UIL_SortVLunListByVLunID(&head);
    std::vector<uint32_t> order;
    for (MPI_ListNode* n = head.next; n != &head; n = n->next) {
        order.push_back(MPI_ListEntry<VLunInfo>(n)->vlunId);
    }
    EXPECT_EQ(order, (std::vector<uint32_t>{0, 2, 2, 9, 16383}));
    INTF_UIL_EnumerateVLunEnd(&head);
    EXPECT_TRUE(MPI_ListEmpty(&head));
}

// ---------------------------------------------------------------------------
// Names: trailing zero bytes stripped, UTF-8 to GB2312.

TEST_F(ObjectRules, NamesToGb2312)
{
    std::string wide;  // 26 CJK characters (78 bytes) and two letters fill the 80-byte field
    std::string wideGb;
    for (int i = 0; i < 26; ++i) {
        wide += "\xe9\x98\xb5";
        wideGb += "\xd5\xf3";
    }
    wide += "xy";
    const struct {
        const char* label;
        std::string raw;
        size_t room;
        std::string expected;
    } cases[] = {
        {"ascii", std::string("Array_East\0\0\0", 13), UIL_ARRAY_NAME_SIZE, "Array_East"},
        {"chinese", "\xe5\xad\x98\xe5\x82\xa8\xe9\x98\xb5\xe5\x88\x97" "1", UIL_ARRAY_NAME_SIZE,
         "\xb4\xe6\xb4\xa2\xd5\xf3\xc1\xd0" "1"},
        {"no gb2312 form", "A\xf0\x9f\x98\x80" "B", UIL_ARRAY_NAME_SIZE, "A?B"},
        {"not utf-8", "A\xff" "B", UIL_ARRAY_NAME_SIZE, "A?B"},
        {"cut sequence", "AB\xe5\xad", UIL_ARRAY_NAME_SIZE, "AB?"},
        {"stray continuation", "\xe5" "A", UIL_ARRAY_NAME_SIZE, "?A"},
        {"empty", std::string(80, '\0'), UIL_ARRAY_NAME_SIZE, ""},
        {"full field", wide, UIL_ARRAY_NAME_SIZE, wideGb + "xy"},
        {"room for two characters and one byte", wide, 6, "\xd5\xf3\xd5\xf3"},
    };
    for (const auto& c : cases) {
        std::vector<char> out(c.room, 'z');
        UIL_TransNameToGb2312(reinterpret_cast<const uint8_t*>(c.raw.data()), c.raw.size(), out.data(), out.size());
        EXPECT_EQ(std::string(out.data()), c.expected) << c.label;
    }
}

// ---------------------------------------------------------------------------
// Decoders, against bytes placed at the offsets of the written layouts.
// Numbers hold 1000 plus their offset, so a field read from the wrong place
// shows which place it came from.

uint64_t at(size_t off) { return 1000 + off; }

void putNumbers(UiaPayload& p, std::initializer_list<size_t> u32s, std::initializer_list<size_t> u64s = {})
{
    for (size_t off : u32s) {
        p.setU32(off, static_cast<uint32_t>(at(off)));
    }
    for (size_t off : u64s) {
        p.setU64(off, at(off));
    }
}

void putTexts(UiaPayload& p, std::initializer_list<std::pair<size_t, std::string>> texts,
              std::initializer_list<std::pair<size_t, uint8_t>> bytes = {})
{
    for (const auto& [off, text] : texts) {
        std::memcpy(p.data() + off, text.data(), text.size());
    }
    for (auto [off, b] : bytes) {
        p.setU8(off, b);
    }
}

using Decoded = std::pair<uint64_t, uint64_t>;  // what the record holds, what it should
using DecodedText = std::pair<std::string, std::string>;

void expectDecoded(std::initializer_list<Decoded> numbers, std::initializer_list<DecodedText> texts)
{
    for (const auto& [got, want] : numbers) {
        EXPECT_EQ(got, want);
    }
    for (const auto& [got, want] : texts) {
        EXPECT_EQ(got, want);
    }
}

TEST_F(ObjectRules, ArrayPayloadDecodes)
{
    UiaPayload p(444);
    putNumbers(p, {0, 268, 404, 424, 428, 432});
    // The vendor fills its 8-byte field, with no terminator.
    putTexts(p, {{4, "East"}, {85, "CORVANE8"}, {94, "XVA5000         "}, {111, "V500"}, {116, "2102351QWE10K8000001"},
                 {137, "cvdrv_xva"}, {272, "text at 272"}},
             {{266, 6}, {440, 0}, {441, 1}, {442, 2}});
    p.setU32(436, UIL_CAP_PAIR_NAMING | 1);
    ArrayInfo a;
    UIL_InitArrayInfo(&a);
    UIL_TransArrayInfo(p, &a);
    expectDecoded({{a.arrayId, at(0)}, {a.value268, at(268)}, {a.words404[0], at(404)}, {a.words404[5], at(424)},
                   {a.value428, at(428)}, {a.value432, at(432)}, {a.flag266, 6}, {a.flag442, 2},
                   {a.capability, UIL_CAP_PAIR_NAMING | 1}},
                  {{a.name, "East"}, {a.vendor, "CORVANE8"}, {a.product, "XVA5000         "}, {a.revision, "V500"},
                   {a.sn, "2102351QWE10K8000001"}, {a.driver, "cvdrv_xva"}, {a.text272, "text at 272"}});
    EXPECT_TRUE(UIL_ArraySupportsPathState(a));
    a.flag441 = 0;
    EXPECT_FALSE(UIL_ArraySupportsPathState(a));
}

TEST_F(ObjectRules, DiskPayloadDecodes)
{
    UiaPayload p(544);
    putNumbers(p, {0, 4, 8, 12, 16, 20, 24, 36, 500, 520, 524, 532, 540}, {40, 512});
    putTexts(p, {{48, std::string(64, 'L')}, {120, "CORVANE"}, {136, "XVA5000"}, {160, "V500"},
                 {168, "6a0b1c2d3e4f50617283940a1b2c3d4e"}, {208, "West"}, {296, "SNWEST"}, {324, "cvdrv"},
                 {460, "sdc"}},
             {{504, 4}, {528, 8}, {529, 0}, {536, 1}, {537, 0}, {538, 1}});
    DiskInfo d;
    UIL_InitDiskInfo(&d);
    UIL_TransDiskInfo(p, &d);
    expectDecoded({{d.diskId, at(0)}, {d.vlunId, at(4)}, {d.owningController, at(8)}, {d.workingController, at(12)},
                   {d.arrayId, at(16)}, {d.hostLun, at(20)}, {d.word24, at(24)}, {d.lunCountWord, at(36)},
                   {d.capacity, at(40)}, {d.capability, at(500)}, {d.byte504, 4}, {d.value512, at(512)},
                   {d.value520, at(520)}, {d.value524, at(524)}, {d.byte528, 8}, {d.devLunId, at(532)},
                   {d.devLunIdValid, 1}, {d.pathCount, at(540)}},
                  {{d.name, std::string(64, 'L')}, {d.vendor, "CORVANE"}, {d.product, "XVA5000"},
                   {d.revision, "V500"}, {d.lunWwn, "6a0b1c2d3e4f50617283940a1b2c3d4e"}, {d.arrayName, "West"},
                   {d.arraySn, "SNWEST"}, {d.driver, "cvdrv"}, {d.deviceName, "sdc"}, {d.status, "Degraded"}});
    p.setU8(529, 1);
    UIL_TransDiskInfo(p, &d);
    EXPECT_STREQ(d.status, "Unavailable");

    VLunInfo v{};
    UIL_TransVLunPrimaryInfo(d, 1, &v);
    EXPECT_EQ(v.slotFilled[0], 0);
    EXPECT_EQ(v.hostLun[1], at(20));
    EXPECT_STREQ(v.arrayName[1], "West");
    EXPECT_STREQ(v.deviceName, "") << "the device name is slot 0's";
    EXPECT_STREQ(v.lunWwn, "6a0b1c2d3e4f50617283940a1b2c3d4e");
    EXPECT_EQ(UIL_VLunSlotForArray(v, at(16)), 1u);
    EXPECT_EQ(UIL_VLunSlotForArray(v, 4), 0u);
    VLunInfo before = v;
    UIL_TransVLunPrimaryInfo(d, 2, &v);
    EXPECT_EQ(0, std::memcmp(&before, &v, sizeof(v))) << "slot 2 is ignored";
}

TEST_F(ObjectRules, VLunPayloadDecodes)
{
    UiaPayload p(84);
    putNumbers(p, {0, 64, 68, 72, 76});
    putTexts(p, {{4, "6a0b1c2d3e4f50617283940a1b2c3d4e"}, {37, "2102351QWE10K8000001"}},
             {{58, UIL_VLUN_TYPE_DUALSITE}, {59, 1}});
    p.setU32(60, 2);
    VLunInfo v{};
    UIL_TransVLunInfo(p, &v);
    expectDecoded({{v.vlunId, at(0)}, {v.type, UIL_VLUN_TYPE_DUALSITE}, {v.peFlag, 1}, {v.memberCount, 2},
                   {v.memberDiskId[0], at(64)}, {v.memberDiskId[1], at(68)}, {v.suspendTimeoutMs, at(72)},
                   {v.suspendRemainMs, at(76)}},
                  {{v.lunWwn, "6a0b1c2d3e4f50617283940a1b2c3d4e"}, {v.arraySn, "2102351QWE10K8000001"}});
    p.setU32(60, 7);
    UIL_TransVLunInfo(p, &v);
    EXPECT_EQ(v.memberCount, 2u) << "a member count above the two slots is clamped";
}

TEST_F(ObjectRules, PhysicalPathPayloadDecodes)
{
    UiaPayload p(1080);
    putNumbers(p, {0, 4, 8, 24, 32, 64, 864}, {48, 56, 72, 80, 88});
    p.setU32(12, 1);   // link connected
    p.setU32(16, 21);  // busy
    p.setU32(20, 22);  // checked by hand
    p.setU32(28, UIL_PORT_ISCSI);
    p.setU32(36, 105);
    p.setU32(40, 101);
    p.setU32(816, UIL_CAP_PAIR_NAMING);
    p.setU32(1068, 3260);
    p.setU32(1072, 3261);
    putTexts(p, {{96, "East"}, {184, "iqn.init"}, {184 + 225, "\x0a\x01\x02\x03"}, {432, "iqn.target"},
                 {680, "QLogic qla2xxx"}, {820, "t820"}, {868, "a868"}, {884, "b884"}, {904, "ctrl text"},
                 {937, "enclosure 1 slot 2"}},
             {{844, 1}, {903, 9}});
    UilPathInfo path{};
    UIL_TransPhyPathInfo(p, &path);
    expectDecoded({{path.kind, UIL_PATH_PHYSICAL}, {path.pathId, at(0)}, {path.arrayId, at(4)},
                   {path.controllerId, at(8)}, {path.phyWord24, at(24)}, {path.phyWord32, at(32)},
                   {path.ioRetryCount, at(48)}, {path.pathFaultCount, at(56)}, {path.phyWord64, at(64)},
                   {path.latencyHighMs, at(72)}, {path.latencyLowMs, at(80)}, {path.latencyAvgMs, at(88)},
                   {path.arrayFlags, UIL_CAP_PAIR_NAMING}, {path.enabled, 1}, {path.phyWords848[4], at(864)},
                   {path.phyBytes902[1], 9}},
                  {{path.pathState, "Normal"},  // a busy physical path
                   {path.ioStateWord, "CVIOC_PATH_IO_BUSY"}, {path.checkStartWord, "Manual"},
                   {path.checkStepWord, "Succeed"}, {path.prevCheckStepWord, "Checking"}, {path.arrayName, "East"},
                   {path.initiatorPort, "iqn.init::10.1.2.3::3260"}, {path.targetPort, "iqn.target::3261"},
                   {path.vendorDriver, "QLogic qla2xxx"}, {path.phyText820, "t820"}, {path.phyTexts868[0], "a868"},
                   {path.phyTexts868[1], "b884"}, {path.controllerText, "ctrl text"},
                   {path.portId, "enclosure 1 slot 2"}});
}

TEST_F(ObjectRules, LogicalPathPayloadDecodes)
{
    UiaPayload p(1080);
    putNumbers(p, {4, 8, 12, 32, 40, 1052}, {88});
    p.setU32(16, 11);  // a working driver state
    p.setU32(24, 21);  // busy
    p.setU32(60, UIL_PORT_FC);
    p.setU32(68, 16 | 1);
    putTexts(p, {{170, "East"}, {258, "10000090fa1b2c3d"}, {506, "2100001b32a1b2c3"}, {754, "Emulex lpfc"},
                 {890, "A"}, {923, "port 0"}, {1056, "t1056"}},
             {{97, 1}});
    UilPathInfo path{};
    UIL_TransPathInfo(p, &path);
    expectDecoded({{path.kind, UIL_PATH_LOGICAL}, {path.pathId, at(4)}, {path.logObject8, at(8)},
                   {path.logObject12, at(12)}, {path.scsiHost, at(32)}, {path.scsiTarget, at(40)},
                   {path.scsiLun, at(88)}, {path.pathFlags & UIL_PATH_FLAG_COUNTED, UIL_PATH_FLAG_COUNTED},
                   {path.arrayFlags, at(1052)}},
                  {{path.pathState, "BUSY degradation"}, {path.initiatorPort, "10000090fa1b2c3d"},
                   {path.targetPort, "2100001b32a1b2c3"}, {path.vendorDriver, "Emulex lpfc"},
                   {path.controllerText, "A"}, {path.portId, "port 0"}, {path.logText1056, "t1056"}});
    p.setU8(1073, 1);
    UIL_TransPathInfo(p, &path);
    EXPECT_STREQ(path.pathState, "Fault");
    p.setU8(97, 0);
    p.setU8(1073, 0);
    UIL_TransPathInfo(p, &path);
    EXPECT_STREQ(path.pathState, "Disable");
}

}  // namespace
