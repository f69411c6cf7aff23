// Setting handlers over the configuration store in a sandbox, with a
// recording fake driver: object routing, the log record fill rules, what a
// refused setting leaves behind, APD-to-PDL and the switches. Each setting
// at both ends of its range is in the degrade and latency transcripts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "support/cfg_fixture.h"
#include "uil/uil_setcfg.h"

using namespace cfgtest;

namespace {

[[maybe_unused]] testing::Environment* const kStore = testing::AddGlobalTestEnvironment(new StoreEnvironment);

// A host configuration as the installer writes it: every host item with
// its default.
std::string defaultDocument()
{
    std::string doc = "<?xml version=\"1.0\"?>\n<cvcfg><common>";
    for (const UilCfgItemDef& item : UIL_sastUserCfgItems) {
        if ((item.ullSectionMask & UIL_CFG_SEC_COMMON) != 0 && item.pszDefault[0] != '\0') {
            doc += std::string("<") + item.pszName + ">" + item.pszDefault + "</" + item.pszName + ">";
        }
    }
    return doc + "</common><array/><lun/></cvcfg>\n";
}

std::optional<std::string> common(const std::string& item) { return valueAt(cfgPath(), "/cvcfg/common/" + item); }

// A record that shows whether a setter touched it.
UilOperLogPara sentinel()
{
    UilOperLogPara r;
    std::memset(&r, 0x5A, sizeof(r));
    return r;
}

bool isSentinel(const UilOperLogPara& r)
{
    UilOperLogPara s = sentinel();
    return std::memcmp(&r, &s, sizeof(r)) == 0;
}

class SetCfg : public StoreTest {
protected:
    SetCfg() : StoreTest(defaultDocument()) {}
    size_t notifies() { return driver().count(kNotifyCode); }
};

// ---------------------------------------------------------------------------
// Object handler table.

struct KeyCase {
    const char* key;
    UilSetHandler handler;  // null: no row
};

TEST(ObjectHandler, KeysMatchExactly)
{
    const KeyCase cases[] = {
        {"", INTF_UIL_SetCommonHandler}, {"array_id", INTF_UIL_SetArrayHandler}, {"vlun_id", INTF_UIL_SetLunHandler},
        {"array_idx", nullptr},          {"array", nullptr},                     {"ARRAY_ID", nullptr},
        {"vlun_id ", nullptr},           {"path_id", nullptr},                   {nullptr, nullptr},
    };
    for (const KeyCase& c : cases) {
        const UilObjectHandler* row = UIL_GetObjectHandler(c.key);
        SCOPED_TRACE(c.key != nullptr ? c.key : "(null)");
        if (c.handler == nullptr) {
            EXPECT_EQ(row, nullptr);
        } else {
            ASSERT_NE(row, nullptr);
            EXPECT_EQ(row->pfSetHandler, c.handler);
        }
    }
}

// ---------------------------------------------------------------------------
// The 76-byte record.

struct RecordCase {
    const char* key;
    const char* id;
    const char* value;
    bool filled;
    uint32_t type;
    uint32_t objId;
    const char* storedValue;
};

TEST(OperLogRecord, FillRules)
{
    const std::string longValue(70, 'v');
    const RecordCase cases[] = {
        {"", "", "round-robin", true, 100, 0, "round-robin"},
        {"array_id", "3", "1", true, 101, 3, "1"},
        {"array_idx", "4", "1", true, 101, 4, "1"},  // classified by prefix
        {"vlun_id", "16383", "60", true, 102, 16383, "60"},
        {"vlun_ids", "2", "60", true, 102, 2, "60"},
        {"path_id", "7", "x", true, 100, 7, "x"},
        {"vlun_id", "12abc", "5", true, 102, 12, "5"},  // converted as atoi reads it
        {"vlun_id", "abc", "5", true, 102, 0, "5"},
        {"array_id", "-1", "1", false, 0, 0, ""},
        {"vlun_id", "-20", "1", false, 0, 0, ""},
        {"vlun_id", " +9x", "1", true, 102, 9, "1"},
        {"vlun_id", "-0", "1", true, 102, 0, "1"},
        {"vlun_id", "2147483647", "1", true, 102, 2147483647, "1"},
        {"vlun_id", "2147483648", "1", false, 0, 0, ""},     // past what atoi holds: not wrapped
        {"vlun_id", "4294967301", "1", false, 0, 0, ""},
        {"", "", longValue.c_str(), true, 100, 0, nullptr},
    };
    for (const RecordCase& c : cases) {
        SCOPED_TRACE(testing::Message() << c.key << " " << c.id);
        UilOperLogPara r = sentinel();
        UIL_TransOperLogPara(c.key, c.id, c.value, &r);
        if (!c.filled) {
            EXPECT_TRUE(isSentinel(r));
            continue;
        }
        EXPECT_EQ(r.uiObjType, c.type);
        EXPECT_EQ(r.uiObjId, c.objId);
        EXPECT_EQ(r.uiReserved, 0u);
        std::string expected = c.storedValue != nullptr ? c.storedValue : longValue.substr(0, 63);
        EXPECT_EQ(std::string(r.szValue), expected);
    }
}

TEST(OperLogRecord, ValueOnly)
{
    UilOperLogPara r = sentinel();
    UIL_TransOperLogValue("600", &r);
    EXPECT_EQ(r.uiObjType, 0u);
    EXPECT_EQ(r.uiObjId, 0u);
    EXPECT_EQ(r.uiReserved, 0u);
    EXPECT_STREQ(r.szValue, "600");
    EXPECT_EQ(std::count(r.szValue + 4, r.szValue + sizeof(r.szValue), 0), static_cast<long>(sizeof(r.szValue) - 4));
}

// ---------------------------------------------------------------------------
// Keyed setters at the host level (array and VLUN levels need the driver's
// objects and are covered against the simulated host).

using KeyedSetter = uint32_t (*)(const char*, const char*, const char*, const char*, UilOperLogPara*);

struct KeyedCase {
    KeyedSetter set;
    const char* item;
    const char* good;
    const char* bad;
};

const KeyedCase kKeyed[] = {
    {INTF_UIL_SetLbPolicy, "loadbalancemode", "round-robin", "Round-Robin"},
    {INTF_UIL_SetLbController, "workingmode", "0", "2"},
    {INTF_UIL_SetLUNTrespass, "luntrespass", "0", "-1"},
    {INTF_UIL_SetLbIOThreshold, "lb_io_threshold", "10000", "10001"},
    {INTF_UIL_SetIoHoldonTime, "iosuspensiontime", "2592000", "2592001"},
    {INTF_UIL_SetIoRetryTimeOut, "io_timeout", "1", "0"},
    {INTF_UIL_SetDsSpliteSize, "ds_split_size", "2097152", "2097153"},
};

TEST_F(SetCfg, KeyedSettersAtTheHostLevel)
{
    for (const KeyedCase& c : kKeyed) {
        SCOPED_TRACE(c.item);
        restart();
        ASSERT_NE(common(c.item), c.good) << "the value must differ from the default";

        // Refused by the driver, by the item, or for an unknown key: nothing
        // is saved, and the record still tells what was asked.
        driver().resultByNr[uia_req::CfgNotify.nr] = MPI_RET_IOCTL_FAIL;
        UilOperLogPara r = sentinel();
        EXPECT_NE(c.set("CLI", "", "", c.good, &r), MPI_RET_SUCCESS);
        EXPECT_STREQ(r.szValue, c.good);
        release();
        r = sentinel();
        EXPECT_NE(c.set("CLI", "", "", c.bad, &r), MPI_RET_SUCCESS);
        EXPECT_EQ(r.uiObjType, 100u);
        EXPECT_STREQ(r.szValue, c.bad);
        release();
        r = sentinel();
        EXPECT_EQ(c.set("CLI", "array_idx", "1", c.good, &r), MPI_RET_FAIL);
        EXPECT_EQ(r.uiObjType, 101u);  // the record classifies by prefix
        EXPECT_EQ(r.uiObjId, 1u);
        EXPECT_STREQ(r.szValue, c.good);
        EXPECT_EQ(readFile(cfgPath()), startDocument());
        EXPECT_EQ(driver().sent.size(), 1u) << "only the value the driver refused was sent";

        driver().sent.clear();
        driver().resultByNr.clear();
        r = sentinel();
        ASSERT_EQ(c.set("CLI", "", "", c.good, &r), MPI_RET_SUCCESS);
        EXPECT_EQ(common(c.item), c.good);
        ASSERT_EQ(driver().sent.size(), 1u);
        EXPECT_EQ(driver().sent[0].bytes, notifyBytes(100, "", {{c.item, c.good}}));
        EXPECT_EQ(r.uiObjType, 100u);
        EXPECT_EQ(r.uiObjId, 0u);
        EXPECT_STREQ(r.szValue, c.good);

        // Missing arguments leave the record alone.
        r = sentinel();
        EXPECT_EQ(c.set("CLI", nullptr, "", c.good, &r), MPI_RET_INVALID_PARAM);
        EXPECT_EQ(c.set("CLI", "", nullptr, c.good, &r), MPI_RET_INVALID_PARAM);
        EXPECT_EQ(c.set("CLI", "", "", nullptr, &r), MPI_RET_INVALID_PARAM);
        EXPECT_TRUE(isSentinel(r));
        EXPECT_EQ(c.set("CLI", "", "", c.good, nullptr), MPI_RET_INVALID_PARAM);
    }
}

// An array or VLUN ID that is no non-negative number is refused before the
// driver is asked for the object.
TEST_F(SetCfg, BadObjectIdsAreRefused)
{
    const char* ids[] = {"-1", "abc", "", "1x", "99999999999"};
    for (const char* id : ids) {
        SCOPED_TRACE(id);
        EXPECT_EQ(INTF_UIL_SetArrayHandler("loadbalancemode", "round-robin", id), MPI_RET_FAIL);
        EXPECT_EQ(INTF_UIL_SetLunHandler("loadbalancemode", "round-robin", id), MPI_RET_FAIL);
    }
    UilOperLogPara r = sentinel();
    EXPECT_EQ(INTF_UIL_SetLbPolicy("CLI", "vlun_id", "-1", "round-robin", &r), MPI_RET_FAIL);
    // The negative ID fills nothing: the record is the cleared one.
    EXPECT_EQ(r.uiObjType, 0u);
    EXPECT_EQ(r.uiObjId, 0u);
    EXPECT_STREQ(r.szValue, "");
    r = sentinel();
    EXPECT_EQ(INTF_UIL_SetDsSpliteSize("CLI", "vlun_id", "x1", "1024", &r), MPI_RET_FAIL);
    EXPECT_EQ(r.uiObjType, 102u);
    EXPECT_STREQ(r.szValue, "1024");
    EXPECT_EQ(driver().sent.size(), 0u);
    EXPECT_EQ(readFile(cfgPath()), defaultDocument());
}

// ---------------------------------------------------------------------------
// Host-only settings. The degrade and latency settings at and beyond both
// ends of their ranges are in the degrade and latency transcripts; the path
// check intervals are not, and every setter must refuse a missing value.

using ValueSetter = uint32_t (*)(const char*, const char*, UilOperLogPara*);

uint32_t setLatency(const char*, const char* value, UilOperLogPara* record)
{
    if (value != nullptr) {
        UIL_TransOperLogValue(value, record);
    }
    return INTF_UIL_SetIOLatencyThreshold(value);
}

TEST_F(SetCfg, PathCheckIntervals)
{
    const std::pair<ValueSetter, const char*> kIntervals[] = {
        {INTF_UIL_SetFaultPathCheckInterval, "failpath_check_interval"},
        {INTF_UIL_SetIdlePathCheckInterval, "idlepath_check_interval"},
    };
    for (const auto& [set, item] : kIntervals) {
        SCOPED_TRACE(item);
        for (const char* good : {"1", "2592000"}) {
            driver().sent.clear();
            UilOperLogPara r = sentinel();
            ASSERT_EQ(set("CLI", good, &r), MPI_RET_SUCCESS) << good;
            EXPECT_EQ(common(item), good);
            ASSERT_EQ(driver().sent.size(), 1u);
            EXPECT_EQ(driver().sent[0].bytes, notifyBytes(100, "", {{item, good}}));
            EXPECT_EQ(r.uiObjType, 0u);
            EXPECT_STREQ(r.szValue, good);
        }
        driver().sent.clear();
        const std::string saved = readFile(cfgPath());
        for (const char* bad : {"0", "2592001", "", "1.5", " 70", "+70", "70s"}) {
            UilOperLogPara r{};
            EXPECT_NE(set("CLI", bad, &r), MPI_RET_SUCCESS) << "'" << bad << "'";
            release();
            EXPECT_STREQ(r.szValue, bad);
        }
        EXPECT_EQ(readFile(cfgPath()), saved);
        EXPECT_TRUE(driver().sent.empty());
    }
}

TEST_F(SetCfg, EveryHostSetterRefusesAMissingValue)
{
    const ValueSetter kSetters[] = {
        INTF_UIL_SetTimeOutDegradedTime,           INTF_UIL_SetTimeOutDegradedThreshold,
        INTF_UIL_SetTimeOutDegradedRecoverTime,    INTF_UIL_SetInterErrorDegradedTime,
        INTF_UIL_SetInterErrorDegradedMinIo,       INTF_UIL_SetInterErrorDegradedThreshold,
        INTF_UIL_SetInterErrorDegradedRecoverTime, INTF_UIL_SetInterFaultDegradedTime,
        INTF_UIL_SetInterFaultDegradedThreshold,   INTF_UIL_SetInterFaultDegradedRecoverTime,
        INTF_UIL_SetHighLatencyDegradedTime,       INTF_UIL_SetHighLatencyDegradedThreshold,
        INTF_UIL_SetHighLatencyDegradedRecoverTime, INTF_UIL_SetSensitiveDelayedThreshold,
        INTF_UIL_SetSensitiveDelayedRecoverTime,   INTF_UIL_SetFaultPathCheckInterval,
        INTF_UIL_SetIdlePathCheckInterval,         setLatency,
    };
    for (size_t i = 0; i < std::size(kSetters); ++i) {
        UilOperLogPara r = sentinel();
        EXPECT_EQ(kSetters[i]("CLI", nullptr, &r), MPI_RET_INVALID_PARAM) << "setter " << i;
    }
    EXPECT_TRUE(driver().sent.empty());
}

// ---------------------------------------------------------------------------
// APD-to-PDL, switches and dual-site words.

TEST_F(SetCfg, ApdToPdlSetsTheTimeoutFirst)
{
    UilOperLogPara r = sentinel();
    ASSERT_EQ(INTF_UIL_SetLUNAPDToPDL("CLI", "1", "30", &r), MPI_RET_SUCCESS);
    ASSERT_EQ(driver().sent.size(), 2u);
    EXPECT_EQ(driver().sent[0].bytes, notifyBytes(100, "", {{"apd_to_pdl_timeout", "30"}}));
    EXPECT_EQ(driver().sent[1].bytes, notifyBytes(100, "", {{"apd_to_pdl_mode", "1"}}));
    EXPECT_STREQ(r.szValue, "30");  // the record ends with the timeout
    EXPECT_EQ(r.uiObjType, 100u);

    r = sentinel();
    ASSERT_EQ(INTF_UIL_SetLUNAPDToPDL("CLI", "0", "", &r), MPI_RET_SUCCESS);
    EXPECT_STREQ(r.szValue, "0");
    EXPECT_EQ(common("apd_to_pdl_mode"), "0");
    EXPECT_EQ(common("apd_to_pdl_timeout"), "30");

    // A bad timeout ends the operation before the mode is touched.
    driver().sent.clear();
    r = sentinel();
    EXPECT_NE(INTF_UIL_SetLUNAPDToPDL("CLI", "1", "141", &r), MPI_RET_SUCCESS);
    (void)UIL_CfgUnlockFile();
    EXPECT_STREQ(r.szValue, "141");
    EXPECT_EQ(common("apd_to_pdl_mode"), "0");
    EXPECT_TRUE(driver().sent.empty());

    r = sentinel();
    EXPECT_EQ(INTF_UIL_SetLUNAPDToPDL("CLI", nullptr, "30", &r), MPI_RET_INVALID_PARAM);
    EXPECT_TRUE(isSentinel(r));
}

TEST_F(SetCfg, SwitchesAndDualSiteWords)
{
    EXPECT_EQ(INTF_UIL_SetAlarmEnable("CLI", "0"), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_SetReliabilityEnable("CLI", "0"), MPI_RET_SUCCESS);
    EXPECT_EQ(common("alarmenable"), "0");
    EXPECT_EQ(common("reliabilityenable"), "0");
    EXPECT_NE(INTF_UIL_SetAlarmEnable("CLI", "on"), MPI_RET_SUCCESS);
    (void)UIL_CfgUnlockFile();
    EXPECT_EQ(INTF_UIL_SetAlarmEnable("CLI", nullptr), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(INTF_UIL_SetReliabilityEnable("CLI", nullptr), MPI_RET_INVALID_PARAM);

    EXPECT_EQ(INTF_UIL_SetDsMode("CLI", "", "", "balance"), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_SetDsMaster("CLI", "", "", "00000000000000000001"), MPI_RET_SUCCESS);
    EXPECT_EQ(common("ds_mode"), "balance");
    EXPECT_EQ(common("ds_primary"), "00000000000000000001");
    EXPECT_EQ(INTF_UIL_SetDsMode("CLI", "", nullptr, "balance"), MPI_RET_INVALID_PARAM);
    EXPECT_EQ(INTF_UIL_SetDsMaster("CLI", "array_idx", "1", "x"), MPI_RET_FAIL);
    EXPECT_EQ(notifies(), 4u);
}

// The latency threshold as read back: a buffer too small for the value is
// an error, not a cut number.
TEST_F(SetCfg, LatencyThresholdReadBack)
{
    ASSERT_EQ(INTF_UIL_SetIOLatencyThreshold("120000"), MPI_RET_SUCCESS);
    char text[64];
    int32_t value = -1;
    ASSERT_EQ(INTF_UIL_GetIoLatencyThreshold(text, sizeof(text), &value), MPI_RET_SUCCESS);
    EXPECT_EQ(value, 120000);
    EXPECT_STREQ(text, "120000");
    char small[4];
    EXPECT_NE(INTF_UIL_GetIoLatencyThreshold(small, sizeof(small), &value), MPI_RET_SUCCESS);
    EXPECT_EQ(INTF_UIL_SetIOLatencyThreshold(nullptr), MPI_RET_INVALID_PARAM);
}

}  // namespace
