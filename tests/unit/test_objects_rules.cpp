// The rules of the object layer that need no driver: path state words,
// I/O state tables, check words, printable ports, controller naming, disk
// status, LUN counts, clamping, name conversion, and the decoders read at
// the offsets of the written wire layouts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "uil/uil_objects_int.h"

namespace fs = std::filesystem;

namespace {

// Traces go beneath the run's sandbox root, never to the host's log directory.
const std::string& sandbox()
{
    static const std::string root = []() -> std::string {
        if (const char* given = std::getenv("CVADM_ROOT")) {
            return given;
        }
        std::string dir = fs::temp_directory_path() / ("cvadm-objrules-" + std::to_string(getpid()));
        fs::remove_all(dir);
        fs::create_directories(dir);
        setenv("CVADM_ROOT", dir.c_str(), 1);
        return dir;
    }();
    return root;
}

std::string traceText()
{
    std::ifstream in(sandbox() + "/opt/Corvane/log/cli_uil_log.txt");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class ObjectRules : public ::testing::Test {
protected:
    static void SetUpTestSuite() { (void)sandbox(); }
};

// ---------------------------------------------------------------------------
// Path state words.

struct PhyStateCase {
    uint8_t enabled;
    uint32_t link;
    uint32_t io;
    const char* word;
};

TEST_F(ObjectRules, PhysicalPathStateWord)
{
    const PhyStateCase cases[] = {
        {0, 1, 19, "Disable"},  // disabled wins over everything
        {0, 0, 22, "Disable"},
        {1, 0, 19, "Fault"},    // link not connected
        {1, 2, 19, "Fault"},
        {1, 1, 19, "Normal"},
        {1, 1, 20, "Normal"},
        {1, 1, 21, "Normal"},   // busy reads Normal on a physical path
        {1, 1, 22, "I/O discrete error degradation"},
        {1, 1, 23, "Intermittent failure degradation"},
        {1, 1, 24, "I/O timeout degradation"},
        {1, 1, 25, "High latency degradation"},
        {1, 1, 26, "Degraded"},  // sensitive delay has no word of its own here
        {1, 1, 27, "Potential fault degradation"},
        {1, 1, 18, "Degraded"},
        {1, 1, 28, "Degraded"},
    };
    for (const PhyStateCase& c : cases) {
        EXPECT_STREQ(UIL_PhyPathStateWord(c.enabled, c.link, c.io), c.word)
            << "enabled " << int(c.enabled) << " link " << c.link << " io " << c.io;
    }
}

struct LogicalStateCase {
    uint8_t enabled;
    uint32_t driverState;
    uint32_t io;
    uint8_t faulty;
    const char* word;
};

TEST_F(ObjectRules, LogicalPathStateWord)
{
    const LogicalStateCase cases[] = {
        {0, 9, 19, 0, "Disable"},
        {1, 10, 19, 0, "Fault"},  // only 9, 11 and 12 are working states
        {1, 8, 19, 0, "Fault"},
        {1, 13, 19, 0, "Fault"},
        {1, 9, 19, 0, "Normal"},
        {1, 11, 20, 0, "Normal"},
        {1, 12, 21, 0, "BUSY degradation"},  // unlike the physical rule
        {1, 9, 22, 0, "I/O discrete error degradation"},
        {1, 9, 23, 0, "Intermittent failure degradation"},
        {1, 9, 24, 0, "I/O timeout degradation"},
        {1, 9, 25, 0, "High latency degradation"},
        {1, 9, 26, 0, "Sensitive delayed degradation"},
        {1, 9, 27, 0, "Potential fault degradation"},
        {1, 9, 28, 0, "Degraded"},
        {1, 9, 19, 1, "Fault"},  // the faulty byte overrides the word
        {0, 9, 19, 1, "Fault"},
        {1, 9, 19, 2, "Normal"},  // only the value 1 marks it faulty
    };
    for (const LogicalStateCase& c : cases) {
        EXPECT_STREQ(UIL_LogicalPathStateWord(c.enabled, c.driverState, c.io, c.faulty), c.word)
            << "enabled " << int(c.enabled) << " state " << c.driverState << " io " << c.io << " faulty "
            << int(c.faulty);
    }
}

// ---------------------------------------------------------------------------
// I/O state tables.

TEST_F(ObjectRules, IoStateDisplayAndParsingOrders)
{
    const struct {
        uint32_t code;
        const char* display;
        const char* parsing;
    } rows[] = {
        {19, "CVIOC_PATH_IO_NORMAL", "CVIOC_PATH_IO_NORMAL"},
        {20, "CVIOC_PATH_IO_FAILBACK", "CVIOC_PATH_IO_FAILBACK"},
        {21, "CVIOC_PATH_IO_BUSY", "CVIOC_PATH_IO_BUSY"},
        {22, "CVIOC_PATH_IO_UNKNOWN", "CVIOC_PATH_IO_UNKNOWN"},
        {23, "CVIOC_PATH_IO_NOT_STEDAY", "CVIOC_PATH_IO_TIMEOUT"},
        {24, "CVIOC_PATH_IO_TIMEOUT", "CVIOC_PATH_IO_NOT_STEDAY"},
        {25, "CVIOC_PATH_IO_HIGHLATENCY", "CVIOC_PATH_IO_HIGHLATENCY"},
        {26, "CVIOC_PATH_IO_SENSITIVE_DELAYED", "CVIOC_PATH_IO_SENSITIVE_DELAYED"},
        {27, "CVIOC_PATH_IO_POTENTIAL_FAULT", "CVIOC_PATH_IO_POTENTIAL_FAULT"},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(UIL_PathIoStateWord(row.code), row.display) << row.code;
        EXPECT_STREQ(g_apszUIlPathIoState[row.code - 19], row.parsing) << row.code;
        EXPECT_EQ(UIL_PathSzIostateToUInt(row.parsing), row.code) << row.parsing;
    }
    // Parsing a display word of 23 gives 24 and back: the swap is deliberate.
    EXPECT_EQ(UIL_PathSzIostateToUInt("CVIOC_PATH_IO_NOT_STEDAY"), 24u);
    EXPECT_EQ(UIL_PathSzIostateToUInt("CVIOC_PATH_IO_TIMEOUT"), 23u);
    EXPECT_EQ(UIL_PathSzIostateToUInt("CVIOC_PATH_IO_BUS"), UIL_PATH_IO_NONE);
    EXPECT_EQ(UIL_PathSzIostateToUInt(""), UIL_PATH_IO_NONE);
    for (uint32_t code : {0u, 18u, 28u, 0xFFFFFFFFu}) {
        EXPECT_STREQ(UIL_PathIoStateWord(code), "Unknown path io state") << code;
    }
}

TEST_F(ObjectRules, PhyPathIoStateConversionTable)
{
    const char* codes[] = {"19", "21", "22", "23", "24", "25"};
    const char* words[] = {"normal", "busy", "unknown error", "not steady", "timeout", "high latency"};
    ASSERT_EQ(g_astUILPhyPathIOStateConvert.size(), 6u);
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_STREQ(g_astUILPhyPathIOStateConvert[i].code, codes[i]);
        EXPECT_STREQ(g_astUILPhyPathIOStateConvert[i].english, words[i]);
        EXPECT_GT(std::strlen(g_astUILPhyPathIOStateConvert[i].chinese), 0u);
    }
}

// ---------------------------------------------------------------------------
// Check words.

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
// Printable ports.

std::vector<uint8_t> nameField(const std::string& name, std::initializer_list<uint8_t> ip = {})
{
    std::vector<uint8_t> field(UIL_PORT_NAME_LEN, 0);
    std::memcpy(field.data(), name.data(), std::min(name.size(), field.size()));
    size_t at = 225;
    for (uint8_t b : ip) {
        field[at++] = b;
    }
    return field;
}

struct PortCase {
    const char* label;
    std::string name;
    std::vector<uint8_t> ip;  // bytes from 225
    uint32_t type;
    uint32_t tcp;
    std::string initiator;
    std::string target;
};

TEST_F(ObjectRules, PrintablePorts)
{
    const std::string iqn = "iqn.1994-05.com.redhat:host1";
    const std::string longName(300, 'n');
    const std::string cut(223, 'n');
    const PortCase cases[] = {
        {"fc", "21000024ff3a1b2c", {}, UIL_PORT_FC, 3260, "21000024ff3a1b2c", "21000024ff3a1b2c"},
        {"sas", "500605b00a1b2c3d", {}, UIL_PORT_SAS, 0, "500605b00a1b2c3d", "500605b00a1b2c3d"},
        {"fcoe keeps a long name", longName.substr(0, 224), {}, UIL_PORT_FCOE, 0, longName.substr(0, 224),
         longName.substr(0, 224)},
        {"iscsi ipv4", iqn, {192, 168, 10, 21}, UIL_PORT_ISCSI, 3260, iqn + "::192.168.10.21::3260", iqn + "::3260"},
        {"iscsi zero ipv4", iqn, {}, UIL_PORT_ISCSI, 0, iqn + "::0.0.0.0::0", iqn + "::0"},
        {"iscsi ipv6",
         iqn,
         {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0x02, 0x1b, 0x21, 0xff, 0xfe, 0x3a, 0x00, 0x01},
         UIL_PORT_ISCSI,
         51234,
         iqn + "::FE80:0:0:0:21B:21FF:FE3A:1::51234",
         iqn + "::51234"},
        {"iscsi ipv6 from its last byte",
         iqn,
         {10, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
         UIL_PORT_ISCSI,
         1,
         iqn + "::A00:1:0:0:0:0:0:1::1",
         iqn + "::1"},
        {"iscsi cut at 223", longName.substr(0, 224), {}, UIL_PORT_ISCSI, 3260, cut + "::0.0.0.0::3260",
         cut + "::3260"},
    };
    for (const PortCase& c : cases) {
        std::vector<uint8_t> field = nameField(c.name);
        for (size_t i = 0; i < c.ip.size(); ++i) {
            field[225 + i] = c.ip[i];
        }
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
// Controller naming.

TEST_F(ObjectRules, ControllerNaming)
{
    const struct {
        uint32_t id;
        const char* tpgName;
        uint32_t capability;
        const char* text;
    } cases[] = {
        {0, "", UIL_CAP_PAIR_NAMING, "0A"},
        {1, "", UIL_CAP_PAIR_NAMING, "0B"},
        {2, "", UIL_CAP_PAIR_NAMING | 0x40, "1A"},
        {3, "", 0xFFFFFFFF, "1B"},
        {15, "", UIL_CAP_PAIR_NAMING, "7B"},
        {0, "", 0, "0"},
        {15, "", UIL_CAP_PAIR_NAMING >> 1, "15"},  // only bit 24 selects the letters
        {3, "CtrlEast", UIL_CAP_PAIR_NAMING, "CtrlEast"},
        {3, "SixteenCharsLong", 0, "SixteenCharsLong"},
        {16, "", UIL_CAP_PAIR_NAMING, "-"},
        {16, "named", 0, "-"},
        {0xFFFFFFFF, "", 0, "-"},
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

TEST_F(ObjectRules, ControllerTables)
{
    for (uint32_t id = 0; id < 16; ++id) {
        EXPECT_EQ(g_astUILControllerConvert[id].number, id);
        EXPECT_EQ(std::string(g_astUILControllerConvert[id].text), std::to_string(id));
        EXPECT_EQ(g_astUILPairControllerConvert[id].number, id);
        std::string pair = std::to_string(id / 2) + char('A' + id % 2);
        EXPECT_EQ(std::string(g_astUILPairControllerConvert[id].text), pair);
        EXPECT_EQ(std::string(UIL_gacControllerId[id][0]), std::to_string(id) + "A");
        EXPECT_EQ(std::string(UIL_gacControllerId[id][1]), std::to_string(id) + "B");
    }
    EXPECT_STREQ(g_astUILLbConvert[2].english, "minimal task algotithm");
    EXPECT_STREQ(g_astUILOpenLB[1].english, "for array id %u");
    EXPECT_EQ(g_astUILOpenLB[3].objectType, MPI_OBJ_PATH);
}

// The words an operator types and reads for switches and load-balance modes.
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
    EXPECT_STREQ(UIL_ConvertBoolToStr(1), "on");
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
            UilController* controller = MPI_LIST_ENTRY(c, UilController, links);
            for (MPI_ListNode* p = controller->paths.next; p != &controller->paths; p = p->next) {
                out.push_back(MPI_LIST_ENTRY(p, UilPathInfo, links)->pathState);
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

TEST_F(ObjectRules, ControllerLunCount)
{
    struct P {
        const char* state;
        uint32_t luns;
    };
    const struct {
        const char* label;
        std::vector<P> paths;
        uint32_t count;
    } cases[] = {
        {"no path", {}, 0},
        {"single faulty path counts", {{"Fault", 7}}, 7},
        {"largest of the live paths", {{"Normal", 3}, {"Fault", 9}, {"Degraded", 5}}, 5},
        {"disabled path is not faulty", {{"Disable", 4}, {"Fault", 8}}, 4},
        {"all faulty: the last one", {{"Fault", 9}, {"Fault", 2}}, 2},
    };
    for (const auto& c : cases) {
        MPI_ListNode head;
        MPI_ListInit(&head);
        for (const P& p : c.paths) {
            auto* path = static_cast<UilPathInfo*>(UIL_ZMalloc(sizeof(UilPathInfo)));
            path->pathState = p.state;
            path->lunCount = p.luns;
            MPI_ListAddTail(&path->links, &head);
        }
        EXPECT_EQ(UIL_ControllerLunCount(&head), c.count) << c.label;
        UIL_PathListFree(&head);
        EXPECT_TRUE(MPI_ListEmpty(&head));
    }
}

TEST_F(ObjectRules, WorkingAndBusyLogicalPaths)
{
    const struct {
        const char* state;
        const char* io;
        uint32_t working, busy;
    } cases[] = {
        {"Normal", "CVIOC_PATH_IO_NORMAL", 1, 0},
        {"BUSY degradation", "CVIOC_PATH_IO_BUSY", 1, 1},
        {"Normal", "CVIOC_PATH_IO_BUSY", 1, 1},
        {"I/O timeout degradation", "CVIOC_PATH_IO_TIMEOUT", 1, 0},
        {"I/O discrete error degradation", "CVIOC_PATH_IO_UNKNOWN", 1, 0},
        {"Intermittent failure degradation", "CVIOC_PATH_IO_NOT_STEDAY", 1, 0},
        {"High latency degradation", "CVIOC_PATH_IO_HIGHLATENCY", 1, 0},
        {"Sensitive delayed degradation", "CVIOC_PATH_IO_SENSITIVE_DELAYED", 1, 0},
        {"Degraded", "Unknown path io state", 1, 0},
        {"Potential fault degradation", "CVIOC_PATH_IO_BUSY", 0, 0},  // left out on purpose
        {"Fault", "CVIOC_PATH_IO_BUSY", 0, 0},
        {"Disable", "CVIOC_PATH_IO_NORMAL", 0, 0},
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

TEST_F(ObjectRules, EnumerationBuffersHoldTheirCapacity)
{
    // Declared size plus room for capacity - 1 more IDs, exactly covering the IDs.
    const struct {
        const uil_wire::IdListLayout* layout;
        size_t buffer;
        uint32_t capacity;
    } cases[] = {
        {&uil_wire::kArrayIds, 524, 128},        {&uil_wire::kArrayVlunIds, 65552, 16384},
        {&uil_wire::kArrayDiskIds, 65556, 16384}, {&uil_wire::kTpgIds, 76, 16},
        {&uil_wire::kTpgInfo, 56, 8},            {&uil_wire::kPhyPathIds, 65552, 16384},
        {&uil_wire::kPhyPathDiskIds, 65556, 16384}, {&uil_wire::kPathIds, 524, 128},
        {&uil_wire::kHbaIds, 264, 64},           {&uil_wire::kHbaPathIds, 848, 210},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.layout->bufferSize(), c.buffer) << c.layout->what;
        EXPECT_EQ(c.layout->capacity, c.capacity) << c.layout->what;
        EXPECT_LE(c.layout->idsOff + 4 * size_t{c.capacity}, c.buffer) << c.layout->what;
    }
}

// ---------------------------------------------------------------------------
// Names: trailing zero bytes stripped, UTF-8 to GB2312.

TEST_F(ObjectRules, NamesToGb2312)
{
    const struct {
        const char* label;
        std::string raw;
        std::string expected;
    } cases[] = {
        {"ascii", std::string("Array_East\0\0\0", 13), "Array_East"},
        {"chinese", "\xe5\xad\x98\xe5\x82\xa8\xe9\x98\xb5\xe5\x88\x97" "1", "\xb4\xe6\xb4\xa2\xd5\xf3\xc1\xd0" "1"},
        {"no gb2312 form", "A\xf0\x9f\x98\x80" "B", "A?B"},
        {"not utf-8", "A\xff" "B", "A?B"},
        {"cut sequence", "AB\xe5\xad", "AB?"},
        {"stray continuation", "\xe5" "A", "?A"},
        {"empty", std::string(80, '\0'), ""},
    };
    for (const auto& c : cases) {
        char out[UIL_ARRAY_NAME_SIZE];
        std::memset(out, 'z', sizeof(out));
        UIL_TransNameToGb2312(reinterpret_cast<const uint8_t*>(c.raw.data()), c.raw.size(), out, sizeof(out));
        EXPECT_EQ(std::string(out), c.expected) << c.label;
    }
}

TEST_F(ObjectRules, LongNamesAreCutNotOverflowed)
{
    // 26 CJK characters (78 bytes) and two ASCII letters fill the 80-byte field.
    std::string raw;
    for (int i = 0; i < 26; ++i) {
        raw += "\xe9\x98\xb5";
    }
    raw += "xy";
    char out[UIL_ARRAY_NAME_SIZE];
    UIL_TransNameToGb2312(reinterpret_cast<const uint8_t*>(raw.data()), raw.size(), out, sizeof(out));
    EXPECT_EQ(std::strlen(out), 54u);
    char small[6];  // room for two GB2312 characters and one byte
    UIL_TransNameToGb2312(reinterpret_cast<const uint8_t*>(raw.data()), raw.size(), small, sizeof(small));
    EXPECT_EQ(std::string(small), "\xd5\xf3\xd5\xf3");
}

// ---------------------------------------------------------------------------
// Decoders, against bytes placed at the offsets of the written layouts.

void putText(UiaPayload& p, size_t off, const std::string& text)
{
    std::memcpy(p.data() + off, text.data(), text.size());
}

TEST_F(ObjectRules, ArrayPayloadDecodes)
{
    UiaPayload p(444);
    p.setU32(0, 5);
    putText(p, 4, "East");
    putText(p, 85, "CORVANE8");  // full 8-byte field, no terminator
    putText(p, 94, "XVA5000         ");
    putText(p, 111, "V500");
    putText(p, 116, "2102351QWE10K8000001");
    putText(p, 137, "cvdrv_xva");
    p.setU8(266, 6);
    p.setU32(268, 268);
    putText(p, 272, "text at 272");
    for (uint32_t i = 0; i < 6; ++i) {
        p.setU32(404 + 4 * i, 100 + i);
    }
    p.setU32(428, 428);
    p.setU32(432, 432);
    p.setU32(436, UIL_CAP_PAIR_NAMING | 1);
    p.setU8(440, 0);
    p.setU8(441, 1);
    p.setU8(442, 2);
    ArrayInfo a;
    UIL_InitArrayInfo(&a);
    UIL_TransArrayInfo(p, &a);
    EXPECT_EQ(a.arrayId, 5u);
    EXPECT_STREQ(a.name, "East");
    EXPECT_STREQ(a.vendor, "CORVANE8");
    EXPECT_STREQ(a.product, "XVA5000         ");
    EXPECT_STREQ(a.revision, "V500");
    EXPECT_STREQ(a.sn, "2102351QWE10K8000001");
    EXPECT_STREQ(a.driver, "cvdrv_xva");
    EXPECT_EQ(a.flag266, 6);
    EXPECT_EQ(a.value268, 268u);
    EXPECT_STREQ(a.text272, "text at 272");
    EXPECT_EQ(a.words404[5], 105u);
    EXPECT_EQ(a.value428, 428u);
    EXPECT_EQ(a.value432, 432u);
    EXPECT_EQ(a.capability, UIL_CAP_PAIR_NAMING | 1);
    EXPECT_TRUE(UIL_ArraySupportsPathState(a));
    EXPECT_EQ(a.flag442, 2);
    a.flag441 = 0;
    EXPECT_FALSE(UIL_ArraySupportsPathState(a));
}

TEST_F(ObjectRules, DiskPayloadDecodes)
{
    UiaPayload p(544);
    p.setU32(0, 17);
    p.setU32(4, 9);
    p.setU32(8, 1);
    p.setU32(12, 2);
    p.setU32(16, 3);
    p.setU32(20, 20);
    p.setU32(24, 24);
    p.setU32(36, 36);
    p.setU64(40, 10737418240ULL);
    putText(p, 48, std::string(64, 'L'));  // full name field
    putText(p, 120, "CORVANE");
    putText(p, 136, "XVA5000");
    putText(p, 160, "V500");
    putText(p, 168, "6a0b1c2d3e4f50617283940a1b2c3d4e");
    putText(p, 208, "West");
    putText(p, 296, "SNWEST");
    putText(p, 324, "cvdrv");
    putText(p, 460, "sdc");
    p.setU32(500, 0x40);
    p.setU8(504, 4);
    p.setU64(512, 512);
    p.setU32(520, 520);
    p.setU32(524, 524);
    p.setU8(528, 8);
    p.setU8(529, 0);
    p.setU32(532, 31);
    p.setU8(536, 1);
    p.setU8(537, 0);
    p.setU8(538, 1);
    p.setU32(540, 4);
    DiskInfo d;
    UIL_InitDiskInfo(&d);
    UIL_TransDiskInfo(p, &d);
    EXPECT_EQ(d.diskId, 17u);
    EXPECT_EQ(d.vlunId, 9u);
    EXPECT_EQ(d.owningController, 1u);
    EXPECT_EQ(d.workingController, 2u);
    EXPECT_EQ(d.arrayId, 3u);
    EXPECT_EQ(d.hostLun, 20u);
    EXPECT_EQ(d.word24, 24u);
    EXPECT_EQ(d.lunCountWord, 36u);
    EXPECT_EQ(d.capacity, 10737418240ULL);
    EXPECT_EQ(std::string(d.name), std::string(64, 'L'));
    EXPECT_STREQ(d.vendor, "CORVANE");
    EXPECT_STREQ(d.product, "XVA5000");
    EXPECT_STREQ(d.revision, "V500");
    EXPECT_STREQ(d.lunWwn, "6a0b1c2d3e4f50617283940a1b2c3d4e");
    EXPECT_STREQ(d.arrayName, "West");
    EXPECT_STREQ(d.arraySn, "SNWEST");
    EXPECT_STREQ(d.driver, "cvdrv");
    EXPECT_STREQ(d.deviceName, "sdc");
    EXPECT_EQ(d.capability, 0x40u);
    EXPECT_EQ(d.byte504, 4);
    EXPECT_EQ(d.value512, 512u);
    EXPECT_EQ(d.value520, 520u);
    EXPECT_EQ(d.value524, 524u);
    EXPECT_EQ(d.byte528, 8);
    EXPECT_EQ(d.devLunId, 31u);
    EXPECT_EQ(d.devLunIdValid, 1);
    EXPECT_EQ(d.pathCount, 4u);
    EXPECT_STREQ(d.status, "Degraded");
    p.setU8(529, 1);
    UIL_TransDiskInfo(p, &d);
    EXPECT_STREQ(d.status, "Unavailable");

    VLunInfo v{};
    UIL_TransVLunPrimaryInfo(d, 1, &v);
    EXPECT_EQ(v.slotFilled[0], 0);
    EXPECT_EQ(v.hostLun[1], 20u);
    EXPECT_STREQ(v.arrayName[1], "West");
    EXPECT_STREQ(v.deviceName, "") << "the device name is slot 0's";
    EXPECT_STREQ(v.lunWwn, "6a0b1c2d3e4f50617283940a1b2c3d4e");
    EXPECT_EQ(UIL_VLunSlotForArray(v, 3), 1u);
    EXPECT_EQ(UIL_VLunSlotForArray(v, 4), 0u);
    VLunInfo before = v;
    UIL_TransVLunPrimaryInfo(d, 2, &v);
    EXPECT_EQ(0, std::memcmp(&before, &v, sizeof(v))) << "slot 2 is ignored";
}

TEST_F(ObjectRules, VLunPayloadDecodes)
{
    UiaPayload p(84);
    p.setU32(0, 4097);
    putText(p, 4, "6a0b1c2d3e4f50617283940a1b2c3d4e");
    putText(p, 37, "2102351QWE10K8000001");
    p.setU8(58, UIL_VLUN_TYPE_DUALSITE);
    p.setU8(59, 1);
    p.setU32(60, 2);
    p.setU32(64, 11);
    p.setU32(68, 12);
    p.setU32(72, 60000);
    p.setU32(76, 1500);
    VLunInfo v{};
    UIL_TransVLunInfo(p, &v);
    EXPECT_EQ(v.vlunId, 4097u);
    EXPECT_STREQ(v.lunWwn, "6a0b1c2d3e4f50617283940a1b2c3d4e");
    EXPECT_STREQ(v.arraySn, "2102351QWE10K8000001");
    EXPECT_EQ(v.type, UIL_VLUN_TYPE_DUALSITE);
    EXPECT_EQ(v.peFlag, 1);
    EXPECT_EQ(v.memberCount, 2u);
    EXPECT_EQ(v.memberDiskId[0], 11u);
    EXPECT_EQ(v.memberDiskId[1], 12u);
    EXPECT_EQ(v.suspendTimeoutMs, 60000u);
    EXPECT_EQ(v.suspendRemainMs, 1500u);
    p.setU32(60, 7);
    UIL_TransVLunInfo(p, &v);
    EXPECT_EQ(v.memberCount, 2u) << "a member count above the two slots is clamped";
}

TEST_F(ObjectRules, PhysicalPathPayloadDecodes)
{
    UiaPayload p(1080);
    p.setU32(0, 40);
    p.setU32(4, 2);
    p.setU32(8, 3);
    p.setU32(12, 1);
    p.setU32(16, 21);
    p.setU32(20, 22);
    p.setU32(24, 1);
    p.setU32(28, UIL_PORT_ISCSI);
    p.setU32(32, 32);
    p.setU32(36, 105);
    p.setU32(40, 101);
    p.setU64(48, 48);
    p.setU64(56, 56);
    p.setU32(64, 64);
    p.setU64(72, 72);
    p.setU64(80, 80);
    p.setU64(88, 88);
    putText(p, 96, "East");
    putText(p, 184, "iqn.init");
    const uint8_t ip[] = {10, 1, 2, 3};
    std::memcpy(p.data() + 184 + 225, ip, sizeof(ip));
    putText(p, 432, "iqn.target");
    putText(p, 680, "QLogic qla2xxx");
    p.setU32(816, UIL_CAP_PAIR_NAMING);
    putText(p, 820, "t820");
    p.setU8(844, 1);
    p.setU32(848 + 16, 5);
    putText(p, 868, "a868");
    putText(p, 884, "b884");
    p.setU8(903, 9);
    putText(p, 904, "ctrl text");
    putText(p, 937, "enclosure 1 slot 2");
    p.setU32(1068, 3260);
    p.setU32(1072, 3261);
    UilPathInfo path{};
    UIL_TransPhyPathInfo(p, &path);
    EXPECT_EQ(path.kind, UIL_PATH_PHYSICAL);
    EXPECT_EQ(path.pathId, 40u);
    EXPECT_EQ(path.arrayId, 2u);
    EXPECT_EQ(path.controllerId, 3u);
    EXPECT_STREQ(path.pathState, "Normal") << "busy physical path";
    EXPECT_STREQ(path.ioStateWord, "CVIOC_PATH_IO_BUSY");
    EXPECT_STREQ(path.checkStartWord, "Manual");
    EXPECT_EQ(path.phyWord24, 1u);
    EXPECT_EQ(path.phyWord32, 32u);
    EXPECT_STREQ(path.checkStepWord, "Succeed");
    EXPECT_STREQ(path.prevCheckStepWord, "Checking");
    EXPECT_EQ(path.ioRetryCount, 48u);
    EXPECT_EQ(path.pathFaultCount, 56u);
    EXPECT_EQ(path.phyWord64, 64u);
    EXPECT_EQ(path.latencyHighMs, 72u);
    EXPECT_EQ(path.latencyLowMs, 80u);
    EXPECT_EQ(path.latencyAvgMs, 88u);
    EXPECT_STREQ(path.arrayName, "East");
    EXPECT_STREQ(path.initiatorPort, "iqn.init::10.1.2.3::3260");
    EXPECT_STREQ(path.targetPort, "iqn.target::3261");
    EXPECT_STREQ(path.vendorDriver, "QLogic qla2xxx");
    EXPECT_EQ(path.arrayFlags, UIL_CAP_PAIR_NAMING);
    EXPECT_STREQ(path.phyText820, "t820");
    EXPECT_EQ(path.enabled, 1);
    EXPECT_EQ(path.phyWords848[4], 5u);
    EXPECT_STREQ(path.phyTexts868[0], "a868");
    EXPECT_STREQ(path.phyTexts868[1], "b884");
    EXPECT_EQ(path.phyBytes902[1], 9);
    EXPECT_STREQ(path.controllerText, "ctrl text");
    EXPECT_STREQ(path.portId, "enclosure 1 slot 2");
}

TEST_F(ObjectRules, LogicalPathPayloadDecodes)
{
    UiaPayload p(1080);
    p.setU32(4, 40);
    p.setU32(8, 8);
    p.setU32(12, 12);
    p.setU32(16, 11);
    p.setU32(24, 21);
    p.setU32(32, 5);
    p.setU32(36, 0);
    p.setU32(40, 2);
    p.setU32(60, UIL_PORT_FC);
    p.setU32(68, 16 | 1);
    p.setU32(72, 1);
    p.setU32(80, 2);
    p.setU64(88, 7);
    p.setU8(97, 1);
    putText(p, 170, "East");
    putText(p, 258, "10000090fa1b2c3d");
    putText(p, 506, "2100001b32a1b2c3");
    putText(p, 754, "Emulex lpfc");
    putText(p, 890, "A");
    putText(p, 923, "port 0");
    p.setU32(1052, 1);
    putText(p, 1056, "t1056");
    UilPathInfo path{};
    UIL_TransPathInfo(p, &path);
    EXPECT_EQ(path.kind, UIL_PATH_LOGICAL);
    EXPECT_EQ(path.pathId, 40u);
    EXPECT_EQ(path.logObject8, 8u);
    EXPECT_EQ(path.logObject12, 12u);
    EXPECT_STREQ(path.pathState, "BUSY degradation");
    EXPECT_EQ(path.scsiHost, 5u);
    EXPECT_EQ(path.scsiTarget, 2u);
    EXPECT_EQ(path.scsiLun, 7u);
    EXPECT_EQ(path.pathFlags & UIL_PATH_FLAG_COUNTED, UIL_PATH_FLAG_COUNTED);
    EXPECT_STREQ(path.initiatorPort, "10000090fa1b2c3d");
    EXPECT_STREQ(path.targetPort, "2100001b32a1b2c3");
    EXPECT_STREQ(path.vendorDriver, "Emulex lpfc");
    EXPECT_STREQ(path.controllerText, "A");
    EXPECT_STREQ(path.portId, "port 0");
    EXPECT_EQ(path.arrayFlags, 1u);
    EXPECT_STREQ(path.logText1056, "t1056");
    p.setU8(1073, 1);
    UIL_TransPathInfo(p, &path);
    EXPECT_STREQ(path.pathState, "Fault");
    p.setU8(97, 0);
    p.setU8(1073, 0);
    UIL_TransPathInfo(p, &path);
    EXPECT_STREQ(path.pathState, "Disable");
}

TEST_F(ObjectRules, VLunListSortsByVLunId)
{
    MPI_ListNode head;
    MPI_ListInit(&head);
    for (uint32_t id : {9u, 2u, 16383u, 0u, 2u}) {
        auto* v = static_cast<VLunInfo*>(UIL_ZMalloc(sizeof(VLunInfo)));
        v->vlunId = id;
        v->diskId[0] = id * 10 + static_cast<uint32_t>(MPI_ListEmpty(&head));
        MPI_ListAddTail(&v->links, &head);
    }
    UIL_SortVLunListByVLunID(&head);
    std::vector<uint32_t> order;
    for (MPI_ListNode* n = head.next; n != &head; n = n->next) {
        order.push_back(MPI_LIST_ENTRY(n, VLunInfo, links)->vlunId);
    }
    EXPECT_EQ(order, (std::vector<uint32_t>{0, 2, 2, 9, 16383}));
    INTF_UIL_EnumerateVLunEnd(&head);
    EXPECT_TRUE(MPI_ListEmpty(&head));
}

}  // namespace
