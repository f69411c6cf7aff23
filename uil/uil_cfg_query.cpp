// Reading the configuration: the value stored at one level, the effective
// value of a LUN (LUN, then array, then common), the full configuration
// record and the default dual-site primary the driver proposes.
#include <cstring>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uil/uil_cfg_int.h"

namespace {

bool given(const char* key) { return key != nullptr && key[0] != '\0'; }

uint32_t getAtLevel(uint32_t sectionType, const char* key, const char* item, char* buffer, uint32_t size, bool bOpen)
{
    if (bOpen) {
        uint32_t rc = UIL_CfgOpenFile(false);
        if (rc != MPI_RET_SUCCESS) {
            UIL_ERR("Init XML cfg file failed");
            return rc;
        }
    }
    uint32_t rc = UIL_QueryConfig(sectionType, key, item, buffer, size);
    if (bOpen) {
        (void)UIL_CfgCloseFile(false);
    }
    return rc;
}

template <typename T>
void putField(UilFullCfg* cfg, size_t offset, T value)
{
    (void)memcpy_s(reinterpret_cast<char*>(cfg) + offset, sizeof(UilFullCfg) - offset, &value, sizeof(value));
}

char* textField(UilFullCfg* cfg, size_t offset) { return reinterpret_cast<char*>(cfg) + offset; }

// A short or missing primary is replaced by the driver's default, else by
// "Not configured".
void convertDsPrimary(const char* value, char* out)
{
    if (std::strlen(value) >= UIL_CFG_DS_SN_LEN) {
        (void)strncpy_s(out, UIL_CFG_DS_PRIMARY_LEN, value, UIL_CFG_DS_PRIMARY_LEN - 1);
        return;
    }
    UiaPayload info(uil_cfg_wire::kDsInfoSize);
    char sn[UIL_CFG_DS_SN_LEN + 1] = "";
    if (UIL_GetDefaultDSInfo(&info) == MPI_RET_SUCCESS) {
        info.text(uil_cfg_wire::kDsPrimarySn, UIL_CFG_DS_SN_LEN, sn, sizeof(sn));
    }
    (void)strcpy_s(out, UIL_CFG_DS_PRIMARY_LEN, std::strlen(sn) == UIL_CFG_DS_SN_LEN ? sn : UIL_CFG_NOT_CONFIGURED);
}

// The number a stored digital value holds; an absent value (empty) is 0.
// Stored values were checked when they were read, so anything else here
// is refused rather than converted to a made-up number.
bool storedNumber(const char* value, uint32_t* number)
{
    if (value[0] == '\0') {
        *number = 0;
        return true;
    }
    return MPI_ToU32(value, number);
}

bool convertField(const UilFullCfgItem& row, const char* value, UilFullCfg* cfg)
{
    uint32_t number = 0;
    switch (row.eConv) {
    case UilFullCfgConv::AcrossCtrl:
        if (!storedNumber(value, &number)) {
            return false;
        }
        putField<uint8_t>(cfg, row.uiOffset, number == 0 ? 1 : 0);
        break;
    case UilFullCfgConv::LbPolicy:
        if (std::strlen(value) + 1 > UIL_CFG_LB_POLICY_LEN) {
            UIL_ERR("String buffer size (%u) too small", static_cast<uint32_t>(UIL_CFG_LB_POLICY_LEN));
            break;
        }
        (void)strcpy_s(textField(cfg, row.uiOffset), UIL_CFG_LB_POLICY_LEN, value);
        break;
    case UilFullCfgConv::U8:
        if (!storedNumber(value, &number) || number > UINT8_MAX) {
            return false;
        }
        putField<uint8_t>(cfg, row.uiOffset, static_cast<uint8_t>(number));
        break;
    case UilFullCfgConv::U32:
        if (!storedNumber(value, &number)) {
            return false;
        }
        putField<uint32_t>(cfg, row.uiOffset, number);
        break;
    case UilFullCfgConv::DsMode:
        putField<uint32_t>(cfg, row.uiOffset, std::strcmp(value, "balance") == 0 ? 0 : 1);
        break;
    case UilFullCfgConv::DsPrimary:
        convertDsPrimary(value, textField(cfg, row.uiOffset));
        break;
    }
    return true;
}

// A stored value is held to the rules of a typed one: the operator must
// hear of a damaged value, not see it as 0 or as whatever atoi makes of it.
// An item that does not belong to the level was never stored there.
uint32_t checkStored(uint32_t sectionType, const char* item, const char* value)
{
    const UilCfgItemDef* def = UIL_CfgGetItemDef(item, sectionType);
    if (def == nullptr) {
        UIL_ERR("Cfg node %s isn't the valid item, or not belong to type %u", item, sectionType);
        return UIL_RET_CFG_NOT_FOUND;
    }
    if (!UIL_CfgCheckItemValue(value, def)) {
        UIL_ERR("The value %s of cfg node %s isn't valid", value, item);
        return UIL_RET_CFG_INVALID_ITEM;
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t UIL_QueryConfig(uint32_t sectionType, const char* instance, const char* item, char* buffer, uint32_t size)
{
    UIL_ASSERT(item != nullptr && buffer != nullptr);
    const UilCfgParseStep* step = UIL_CfgGetParseStep(sectionType);
    if (step == nullptr) {
        UIL_ERR("Cfg type(%u) invalid", sectionType);
        return MPI_RET_INVALID_PARAM;
    }
    // A key that cannot name an element was never stored.
    char xpath[UIL_CFG_XPATH_LEN];
    xmlNode* node = nullptr;
    if (step->pfBuildItemXPath(instance != nullptr ? instance : "", item, xpath, sizeof(xpath)) != MPI_RET_SUCCESS ||
        UIL_CfgFindNode(xpath, &node) != MPI_RET_SUCCESS) {
        UIL_TRACE(MPI_LOG_INFO, "Query XML node of %s failed", item);
        return UIL_RET_CFG_NOT_FOUND;
    }
    UilXmlText text = UIL_CfgNodeText(node);
    if (text == nullptr) {
        UIL_ERR("Get content of node %s failed", xpath);
        return MPI_RET_FAIL;
    }
    const char* value = reinterpret_cast<const char*>(text.get());
    size_t need = std::strlen(value) + 1;
    if (need > size) {
        UIL_ERR("Buffer size %u insufficient, need %u", size, static_cast<uint32_t>(need));
        return MPI_RET_FAIL;
    }
    // A damaged value is handed back too, so that the caller can name it.
    (void)strcpy_s(buffer, size, value);
    uint32_t rc = checkStored(sectionType, item, value);
    if (rc != MPI_RET_SUCCESS) {
        return rc;
    }
    UIL_TRACE(MPI_LOG_INFO, "Query config <%u,%s> succ, value %s", sectionType, item, value);
    return MPI_RET_SUCCESS;
}

uint32_t UIL_GetCommonConfig(const char* item, char* buffer, uint32_t size, bool bOpen)
{
    return getAtLevel(UIL_CFG_SECTION_COMMON, "", item, buffer, size, bOpen);
}

uint32_t UIL_GetArrayConfig(const char* serialNumber, const char* item, char* buffer, uint32_t size, bool bOpen)
{
    if (!given(serialNumber)) {
        UIL_ERR("Got empty SN when query array config");
        return MPI_RET_INVALID_PARAM;
    }
    return getAtLevel(UIL_CFG_SECTION_ARRAY, serialNumber, item, buffer, size, bOpen);
}

uint32_t UIL_GetLunConfig(const char* wwn, const char* item, char* buffer, uint32_t size, bool bOpen)
{
    if (!given(wwn)) {
        UIL_ERR("Got empty WWN when query lun config");
        return MPI_RET_INVALID_PARAM;
    }
    return getAtLevel(UIL_CFG_SECTION_LUN, wwn, item, buffer, size, bOpen);
}

uint32_t UIL_GetOneOfFullConfig(const char* wwn, const char* serialNumber, const char* item, char* buffer,
                                uint32_t size)
{
    UIL_ASSERT(item != nullptr && buffer != nullptr && size > 0);
    buffer[0] = '\0';
    if (given(wwn)) {
        uint32_t rc = UIL_GetLunConfig(wwn, item, buffer, size, false);
        if (rc == MPI_RET_SUCCESS) {
            return rc;
        }
        if (rc != UIL_RET_CFG_NOT_FOUND) {
            UIL_ERR("Query cfg %s of VLun %s failed", item, wwn);
            return rc;
        }
    }
    if (given(serialNumber)) {
        uint32_t rc = UIL_GetArrayConfig(serialNumber, item, buffer, size, false);
        if (rc == MPI_RET_SUCCESS) {
            return rc;
        }
        if (rc != UIL_RET_CFG_NOT_FOUND) {
            UIL_ERR("Query cfg %s of array %s failed", item, serialNumber);
            return rc;
        }
    }
    uint32_t rc = UIL_GetCommonConfig(item, buffer, size, false);
    if (rc == UIL_RET_CFG_NOT_FOUND) {
        buffer[0] = '\0';
        return MPI_RET_SUCCESS;
    }
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Query cfg %s of common failed", item);
    }
    return rc;
}

uint32_t INTF_UIL_GetFullConfig(const char* wwn, const char* serialNumber, UilFullCfg* fullConfig)
{
    if (wwn == nullptr || fullConfig == nullptr) {
        UIL_ERR("There is parameter invalid <%p, %p, %p>", static_cast<const void*>(wwn),
                static_cast<const void*>(serialNumber), static_cast<const void*>(fullConfig));
        return MPI_RET_INVALID_PARAM;
    }
    (void)memset_s(fullConfig, sizeof(*fullConfig), 0, sizeof(*fullConfig));
    uint32_t rc = UIL_CfgOpenFile(false);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Init XML cfg file failed");
        return rc;
    }
    for (const UilFullCfgItem& row : UIL_sastFullCfgItems) {
        char value[UIL_CFG_ITEM_VALUE_LEN];
        rc = UIL_GetOneOfFullConfig(wwn, serialNumber, row.pszItem, value, sizeof(value));
        if (rc != MPI_RET_SUCCESS) {
            UIL_ERR("Get item %s failed when get full config", row.pszItem);
            (void)UIL_CfgCloseFile(true);
            return rc;
        }
        if (!convertField(row, value, fullConfig)) {
            UIL_ERR("The value %s of cfg node %s isn't valid", value, row.pszItem);
            (void)UIL_CfgCloseFile(false);
            return UIL_RET_CFG_INVALID_ITEM;
        }
    }
    (void)UIL_CfgCloseFile(false);
    return MPI_RET_SUCCESS;
}

bool INTF_UIL_CfgValueCmp(const char* wwn, const char* serialNumber, const char* item, const char* expected)
{
    if (wwn == nullptr || serialNumber == nullptr || item == nullptr || expected == nullptr) {
        UIL_ERR("Get NULL input <%p, %p, %p, %p>", static_cast<const void*>(wwn),
                static_cast<const void*>(serialNumber), static_cast<const void*>(item),
                static_cast<const void*>(expected));
        return false;
    }
    if (UIL_CfgOpenFile(false) != MPI_RET_SUCCESS) {
        UIL_ERR("Init XML cfg file failed");
        return false;
    }
    char value[UIL_CFG_ITEM_VALUE_LEN];
    uint32_t rc = UIL_GetOneOfFullConfig(wwn, serialNumber, item, value, sizeof(value));
    (void)UIL_CfgCloseFile(false);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Query cfg value of key(%s) failed", item);
        return false;
    }
    return std::strcmp(value, expected) == 0;
}

uint32_t UIL_GetDefaultDSInfo(UiaPayload* record)
{
    if (record == nullptr || record->size() < uil_cfg_wire::kDsInfoSize) {
        UIL_TRACE_NULL("record");
        return MPI_RET_INVALID_PARAM;
    }
    record->clear();
    record->setU8(uil_cfg_wire::kDsDefaultFlag, 1);
    if (UIL_CfgSend(uia_req::GetDsInfo, *record) != MPI_RET_SUCCESS) {
        return 1;
    }
    return MPI_RET_SUCCESS;
}
