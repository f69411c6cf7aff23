// The configuration store against the simulated driver (see
// support/sim_harness.h): what the driver holds after each change matches
// the file, the exact payloads reach it, and a change or deletion it
// refuses never reaches the file.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/sim_harness.h"
#include "support/cfg_support.h"
#include "uil/uil.h"

using namespace cfgtest;
using Json = nlohmann::json;

namespace {

std::string docPath() { return simtest::root() + "/etc/user_cfg.xml"; }

// What the driver holds, as the simulated driver keeps it.
Json held(const std::string& pointer)
{
    std::string text = simtest::rootFile("sim/state.json");
    if (text.empty()) {
        return Json();
    }
    Json state = Json::parse(text);
    Json::json_pointer p("/user_config" + pointer);
    return state.contains(p) ? state[p] : Json();
}

// The items of one section or instance in the file, as the driver would hold them.
Json inFile(const std::string& xpath)
{
    Json items = Json::object();
    xmlDoc* doc = xmlReadFile(docPath().c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOBLANKS);
    xmlXPathContext* ctx = xmlXPathNewContext(doc);
    xmlXPathObject* obj = xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>((xpath + "/*").c_str()), ctx);
    for (int i = 0; obj != nullptr && obj->nodesetval != nullptr && i < obj->nodesetval->nodeNr; ++i) {
        xmlNode* node = obj->nodesetval->nodeTab[i];
        xmlChar* text = xmlNodeGetContent(node);
        items[reinterpret_cast<const char*>(node->name)] = reinterpret_cast<const char*>(text);
        xmlFree(text);
    }
    xmlXPathFreeObject(obj);
    xmlXPathFreeContext(ctx);
    xmlFreeDoc(doc);
    return items;
}

// The input bytes of the last logged request `nr` (its declared size only).
std::vector<uint8_t> lastRequestIn(uint32_t nr)
{
    std::vector<uint8_t> last;
    for (simtest::Request& r : simtest::requests()) {
        if (r.nr == nr) {
            last = std::move(r.in);
        }
    }
    return last;
}

class CfgSim : public simtest::SimTest {
protected:
    void SetUp() override
    {
        SimTest::SetUp();
        (void)UIL_CfgUnlockFile();
        (void)UIL_CfgSetDriverSender(nullptr);
        writeFile(docPath(), kSmallDoc);
    }
};

// ---------------------------------------------------------------------------

TEST_F(CfgSim, DriverHoldsWhatTheFileHolds)
{
    ASSERT_EQ(UIL_SetCommonConfig("tod_time", "900"), MPI_RET_SUCCESS);
    EXPECT_EQ(lastRequestIn(70), notifyBytes(100, "", {{"tod_time", "900"}}));
    ASSERT_EQ(UIL_SetArrayConfig("SNA1", "loadbalancemode", "min-task"), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_SetArrayConfig("SNA1", "io_timeout", "40"), MPI_RET_SUCCESS);
    ASSERT_EQ(UIL_SetLunConfig("WA1", "luntrespass", "0"), MPI_RET_SUCCESS);
    EXPECT_EQ(lastRequestIn(70), notifyBytes(102, "WA1", {{"luntrespass", "0"}}));

    EXPECT_EQ(held("/common/tod_time"), "900");
    EXPECT_EQ(held("/array/SNA1"), inFile("/cvcfg/array/arraySNA1"));
    EXPECT_EQ(held("/lun/WA1"), inFile("/cvcfg/lun/lunWA1"));

    UilOperLogPara rec{};
    ASSERT_EQ(INTF_UIL_DelArrayConfig("CLI", 1, "SNA1", "io_timeout", &rec), MPI_RET_SUCCESS);
    EXPECT_EQ(lastRequestIn(71), deleteBytes(101, "SNA1", "io_timeout"));
    EXPECT_EQ(held("/array/SNA1"), inFile("/cvcfg/array/arraySNA1"));
    ASSERT_EQ(INTF_UIL_DelLunConfig("CLI", 2, "WA1", nullptr, &rec), MPI_RET_SUCCESS);
    EXPECT_TRUE(held("/lun/WA1").is_null());
    EXPECT_TRUE(valuesAt(docPath(), "/cvcfg/lun/lunWA1").empty());
}

TEST_F(CfgSim, RefusedRequestsNeverReachTheFile)
{
    struct Case {
        const char* fault;
        uint32_t (*change)();
        const char* pointer;
    };
    const Case cases[] = {
        {"70 code=1030 1\n", [] { return UIL_SetLunConfig("WB1", "io_timeout", "30"); }, "/lun/WB1"},
        {"70 refuse 1\n", [] { return UIL_SetArrayConfig("SNB1", "io_timeout", "30"); }, "/array/SNB1"},
        {"70 untouched 1\n", [] { return UIL_SetCommonConfig("ied_time", "120"); }, "/common/ied_time"},
    };
    for (const Case& c : cases) {
        SetUp();
        simtest::setFaults(c.fault);
        EXPECT_EQ(c.change(), MPI_RET_FAIL) << c.fault;
        EXPECT_EQ(readFile(docPath()), kSmallDoc) << c.fault;
        EXPECT_TRUE(held(c.pointer).is_null()) << c.fault;
    }

    SetUp();
    ASSERT_EQ(UIL_SetLunConfig("WB2", "io_timeout", "30"), MPI_RET_SUCCESS);
    std::string saved = readFile(docPath());
    simtest::setFaults("71 refuse 1\n");
    UilOperLogPara rec{};
    EXPECT_EQ(INTF_UIL_DelLunConfig("CLI", 5, "WB2", "io_timeout", &rec), MPI_RET_FAIL);
    EXPECT_EQ(readFile(docPath()), saved);
    EXPECT_EQ(held("/lun/WB2/io_timeout"), "30");
}

TEST_F(CfgSim, StartUpParsePushesWholeSections)
{
    writeFile(docPath(), "<cvcfg><common><ioretry>5</ioretry><ioretrydelay>2</ioretrydelay><hld_time>90</hld_time>"
                         "</common><array><arraySNC1><io_timeout>9</io_timeout><luntrespass>0</luntrespass>"
                         "<bogus/></arraySNC1></array><lun><lunWC1><ds_mode>balance</ds_mode></lunWC1></lun></cvcfg>");
    ASSERT_EQ(INTF_UIL_CfgParse(), MPI_RET_SUCCESS);
    Json common = held("/common");
    Json fileCommon = inFile("/cvcfg/common");
    EXPECT_EQ(fileCommon.size(), 3u);
    for (const auto& [item, value] : fileCommon.items()) {
        EXPECT_EQ(common[item], value) << item;
    }
    EXPECT_EQ(held("/array/SNC1"), inFile("/cvcfg/array/arraySNC1"));
    EXPECT_EQ(held("/array/SNC1").size(), 2u);
    EXPECT_EQ(held("/lun/WC1"), inFile("/cvcfg/lun/lunWC1"));
}

}  // namespace
