// The array and VLUN levels of the setting handlers against the simulated
// host (see support/sim_harness.h): they need the driver's arrays and VLUNs
// (serial numbers, VLUN lists, WWNs, VLUN types).
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "support/sim_harness.h"
#include "support/cfg_support.h"
#include "uil/uil.h"
#include "uil/uil_objects.h"
#include "uil/uil_setcfg.h"

namespace {

using cfgtest::deleteBytes;
using cfgtest::notifyBytes;
using cfgtest::readFile;
using cfgtest::valueAt;
using cfgtest::writeFile;
using simtest::Request;

std::string cfgFile() { return simtest::root() + "/etc/user_cfg.xml"; }

// The configuration requests (notify 70, delete 71) in the order sent.
std::vector<Request> cfgRequests()
{
    std::vector<Request> all = simtest::requests();
    std::erase_if(all, [](const Request& r) { return r.nr != 70 && r.nr != 71; });
    return all;
}

// What the object layer reports: the fixtures are taken from the driver,
// not written twice.
std::string arraySn(uint32_t arrayId)
{
    ArrayInfo array{};
    uint32_t ret = INTF_UIL_GetArrayInfoStart(arrayId, &array);
    std::string sn = ret == MPI_RET_SUCCESS || ret == MPI_RET_NOT_FOUND ? array.sn : "";
    INTF_UIL_GetArrayInfoEnd(&array);
    return sn;
}

std::vector<uint32_t> vlunsOf(uint32_t arrayId)
{
    UilIdList* ids = nullptr;
    std::vector<uint32_t> out;
    if (INTF_UIL_EnumerateArrayVlunIdsStart(arrayId, &ids) == MPI_RET_SUCCESS && ids != nullptr) {
        out.assign(ids->view().begin(), ids->view().end());
    }
    INTF_UIL_EnumerateVlunIdsEnd(ids);
    return out;
}

std::string wwnOf(uint32_t vlunId)
{
    VLunInfo vlun{};
    std::string wwn = INTF_UIL_GetVLunInfoStart(vlunId, &vlun) == MPI_RET_SUCCESS ? vlun.lunWwn : "";
    INTF_UIL_GetVLunInfoEnd(&vlun);
    return wwn;
}

// The lowest VLUN ID of a type, as text ("" when the host has none).
std::string firstVlunOfType(uint8_t type)
{
    for (uint32_t id = 0; id < 64; ++id) {
        VLunInfo vlun{};
        bool match = INTF_UIL_GetVLunInfoStart(id, &vlun) == MPI_RET_SUCCESS && vlun.type == type;
        INTF_UIL_GetVLunInfoEnd(&vlun);
        if (match) {
            return std::to_string(id);
        }
    }
    return "";
}

std::optional<std::string> lunValue(const std::string& wwn, const std::string& item)
{
    return valueAt(cfgFile(), "/cvcfg/lun/lun" + wwn + "/" + item);
}

std::optional<std::string> arrayValue(const std::string& sn, const std::string& item)
{
    return valueAt(cfgFile(), "/cvcfg/array/array" + sn + "/" + item);
}

struct LunItem {
    std::string wwn;
    std::string item;
    std::string value;
};

void writeDocument(const std::vector<LunItem>& luns)
{
    std::string doc = "<?xml version=\"1.0\"?>\n<cvcfg><common><loadbalancemode>min-queue-depth</loadbalancemode>"
                      "</common><array/><lun>";
    for (const LunItem& l : luns) {
        doc += "<lun" + l.wwn + "><" + l.item + ">" + l.value + "</" + l.item + "></lun" + l.wwn + ">";
    }
    writeFile(cfgFile(), doc + "</lun></cvcfg>\n");
}

class SetCfgSim : public simtest::SimTest {
protected:
    void SetUp() override
    {
        SimTest::SetUp();
        (void)UIL_CfgUnlockFile();
        array0 = vlunsOf(0);
        other = vlunsOf(1);
        ASSERT_GE(array0.size(), 2u) << "the default topology has VLUNs on array 0";
        ASSERT_FALSE(other.empty());
    }
    void TearDown() override
    {
        (void)UIL_CfgUnlockFile();
        SimTest::TearDown();
    }

    std::vector<uint32_t> array0;
    std::vector<uint32_t> other;
};

// Setting an array's value removes the LUN-level values of the item from
// the array's VLUNs first, then writes the array value; VLUNs of other
// arrays and other items are left alone.
TEST_F(SetCfgSim, ArrayValueRemovesLunValuesFirst)
{
    std::string kept = wwnOf(array0[0]);
    std::vector<LunItem> luns;
    for (uint32_t id : array0) {
        luns.push_back({wwnOf(id), "loadbalancemode", "min-task"});
    }
    luns.push_back({wwnOf(other[0]), "loadbalancemode", "min-task"});
    writeDocument(luns);
    // One VLUN of the array also holds another item, which stays.
    std::string doc = readFile(cfgFile());
    doc.insert(doc.find("</lun" + kept + ">"), "<lb_io_threshold>7</lb_io_threshold>");
    writeFile(cfgFile(), doc);

    UilOperLogPara record{};
    ASSERT_EQ(INTF_UIL_SetLbPolicy("CLI", "array_id", "0", "round-robin", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_ARRAY);
    EXPECT_EQ(record.uiObjId, 0u);
    EXPECT_STREQ(record.szValue, "round-robin");

    std::string sn = arraySn(0);
    ASSERT_FALSE(sn.empty());
    EXPECT_EQ(arrayValue(sn, "loadbalancemode"), "round-robin");
    for (uint32_t id : array0) {
        EXPECT_EQ(lunValue(wwnOf(id), "loadbalancemode"), std::nullopt) << "vlun " << id;
    }
    EXPECT_EQ(lunValue(wwnOf(other[0]), "loadbalancemode"), "min-task");
    EXPECT_EQ(lunValue(kept, "lb_io_threshold"), "7");

    // The driver was told of each deletion, in VLUN order, then of the value.
    std::vector<Request> sent = cfgRequests();
    ASSERT_EQ(sent.size(), array0.size() + 1);
    for (size_t i = 0; i < array0.size(); ++i) {
        EXPECT_EQ(sent[i].nr, 71u);
        EXPECT_EQ(sent[i].in, deleteBytes(MPI_OBJ_LUN, wwnOf(array0[i]), "loadbalancemode")) << i;
    }
    EXPECT_EQ(sent.back().nr, 70u);
    EXPECT_EQ(sent.back().in, notifyBytes(MPI_OBJ_ARRAY, sn, {{"loadbalancemode", "round-robin"}}));
}

// A VLUN without the item costs no request; a failed array write keeps the
// deletions already made.
TEST_F(SetCfgSim, FailedArrayWriteKeepsTheDeletions)
{
    writeDocument({{wwnOf(array0[1]), "io_timeout", "99"}});
    simtest::setFaults("70 code=1031\n");
    UilOperLogPara record{};
    EXPECT_NE(INTF_UIL_SetIoRetryTimeOut("CLI", "array_id", "0", "300", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_ARRAY);
    EXPECT_STREQ(record.szValue, "300");
    EXPECT_EQ(lunValue(wwnOf(array0[1]), "io_timeout"), std::nullopt);
    EXPECT_EQ(arrayValue(arraySn(0), "io_timeout"), std::nullopt);
    std::vector<Request> sent = cfgRequests();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].nr, 71u);
    EXPECT_EQ(sent[1].nr, 70u);
    EXPECT_EQ(sent[1].result, 1031u);
}

// An array the driver knows but that holds no disk still has its serial
// number, and no VLUN to strip.
TEST_F(SetCfgSim, ArrayWithoutDisks)
{
    std::string sn = arraySn(3);
    ASSERT_FALSE(sn.empty());
    ASSERT_TRUE(vlunsOf(3).empty());
    writeDocument({});
    UilOperLogPara record{};
    ASSERT_EQ(INTF_UIL_SetLbIOThreshold("CLI", "array_id", "3", "500", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(arrayValue(sn, "lb_io_threshold"), "500");
    ASSERT_EQ(cfgRequests().size(), 1u);
}

// A VLUN value goes under its WWN; the split size only for a dual-site VLUN
// (array and host keys are not checked for a type).
TEST_F(SetCfgSim, VlunValuesGoUnderTheirWwn)
{
    writeDocument({});
    const std::string dualId = firstVlunOfType(UIL_VLUN_TYPE_DUALSITE);
    ASSERT_FALSE(dualId.empty()) << "the default topology has a dual-site VLUN";
    const std::string wwn = wwnOf(array0[0]);
    UilOperLogPara record{};
    ASSERT_EQ(INTF_UIL_SetLUNTrespass("CLI", "vlun_id", std::to_string(array0[0]).c_str(), "0", &record),
              MPI_RET_SUCCESS);
    EXPECT_EQ(record.uiObjType, MPI_OBJ_LUN);
    EXPECT_EQ(record.uiObjId, array0[0]);
    EXPECT_EQ(lunValue(wwn, "luntrespass"), "0");
    std::vector<Request> sent = cfgRequests();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].in, notifyBytes(MPI_OBJ_LUN, wwn, {{"luntrespass", "0"}}));

    ASSERT_EQ(INTF_UIL_SetDsSpliteSize("CLI", "vlun_id", dualId.c_str(), "2048", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(lunValue(wwnOf(std::stoul(dualId)), "ds_split_size"), "2048");
    ASSERT_EQ(INTF_UIL_SetDsSpliteSize("CLI", "", "", "4096", &record), MPI_RET_SUCCESS);
    EXPECT_EQ(valueAt(cfgFile(), "/cvcfg/common/ds_split_size"), "4096");
}

// An object the driver does not know, or of the wrong type: its code, the
// record tells what was asked, nothing is sent or written.
TEST_F(SetCfgSim, RefusedObjectsChangeNothing)
{
    const std::string ordinaryId = firstVlunOfType(UIL_VLUN_TYPE_ORDINARY);
    ASSERT_FALSE(ordinaryId.empty());
    struct Case {
        const char* what;
        uint32_t (*set)(const char*, const char*, const char*, const char*, UilOperLogPara*);
        const char* key;
        std::string id;
        uint32_t code;  // 0: any failure
    };
    const Case cases[] = {
        {"unknown array", INTF_UIL_SetLbPolicy, "array_id", "77", 0},
        {"unknown vlun", INTF_UIL_SetLUNTrespass, "vlun_id", "9999", MPI_RET_VLUN_NOT_EXIST},
        {"split of an unknown vlun", INTF_UIL_SetDsSpliteSize, "vlun_id", "9999", MPI_RET_VLUN_NOT_EXIST},
        {"split of an ordinary vlun", INTF_UIL_SetDsSpliteSize, "vlun_id", ordinaryId, UIL_RET_NOT_DUALSITE},
    };
    writeDocument({});
    const std::string before = readFile(cfgFile());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        UilOperLogPara record{};
        uint32_t rc = c.set("CLI", c.key, c.id.c_str(), "1", &record);
        EXPECT_NE(rc, MPI_RET_SUCCESS);
        if (c.code != 0) {
            EXPECT_EQ(rc, c.code);
        }
        EXPECT_EQ(record.uiObjId, std::stoul(c.id));
        EXPECT_STREQ(record.szValue, "1");
        (void)UIL_CfgUnlockFile();
    }
    EXPECT_EQ(readFile(cfgFile()), before);
    EXPECT_TRUE(cfgRequests().empty());
}

}  // namespace
