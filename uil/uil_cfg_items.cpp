// The tables of the configuration store and the checks made against them:
// item lookups, value rules, the per-section node paths and XPaths, and the
// rows of the full configuration record.
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uil/uil_cfg_int.h"

namespace {

constexpr size_t kMaxInstanceLen = uil_cfg_wire::kInstanceLen - 1;  // what the driver payloads carry

// Instance keys (array serial numbers, LUN WWNs) and item names become
// element names and XPath steps: letters, digits, '.', '-' and '_' only, so
// neither can change what an expression selects.
bool isNameChar(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '-' ||
           c == '_';
}

bool validKey(const char* key, size_t maxLen)
{
    size_t len = std::strlen(key);
    if (len > maxLen) {
        return false;
    }
    for (size_t i = 0; i < len; ++i) {
        if (!isNameChar(key[i])) {
            return false;
        }
    }
    return true;
}

bool validItemName(const char* item) { return item[0] != '\0' && validKey(item, UIL_CFG_ITEM_NAME_LEN - 1); }

uint32_t checkKeys(const char* instance, const char* item)
{
    if (instance != nullptr && !validKey(instance, kMaxInstanceLen)) {
        UIL_ERR("Cfg instance name %s invalid", instance);
        return MPI_RET_INVALID_PARAM;
    }
    if (item != nullptr && !validItemName(item)) {
        UIL_ERR("Cfg item name %s invalid", item);
        return MPI_RET_INVALID_PARAM;
    }
    return MPI_RET_SUCCESS;
}

uint32_t printXPath(char* out, size_t size, const char* fmt, const char* a, const char* b)
{
    int n = b != nullptr ? snprintf_s(out, size, size - 1, fmt, a, b) : snprintf_s(out, size, size - 1, fmt, a);
    if (n < 0) {
        // A cut expression could select another node: refuse it.
        UIL_ERR("XPath of <%s, %s> too long", a, b != nullptr ? b : "");
        out[0] = '\0';
        return MPI_RET_BUFFER_SMALL;
    }
    return MPI_RET_SUCCESS;
}

// ---- common ----

uint32_t buildCommonNodePath(const char* /*instance*/, const char* item, UilCfgNodePath* path)
{
    UIL_ASSERT(item != nullptr && path != nullptr);
    *path = UilCfgNodePath{};
    if (checkKeys(nullptr, item) != MPI_RET_SUCCESS) {
        return MPI_RET_FAIL;
    }
    path->uiDepth = 2;
    path->apszNames[0] = "common";
    path->apszNames[1] = item;
    return MPI_RET_SUCCESS;
}

uint32_t buildCommonItemXPath(const char* /*instance*/, const char* item, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr && size > 0);
    out[0] = '\0';
    if (item == nullptr) {
        UIL_ERR("The common section has no instance");
        return MPI_RET_FAIL;
    }
    uint32_t rc = checkKeys(nullptr, item);
    return rc != MPI_RET_SUCCESS ? rc : printXPath(out, size, "/cvcfg/common/%s", item, nullptr);
}

// ---- array and lun: section element, instance element, item ----

uint32_t buildInstanceNodePath(const char* section, const char* instance, const char* item, UilCfgNodePath* path)
{
    UIL_ASSERT(instance != nullptr && item != nullptr && path != nullptr);
    *path = UilCfgNodePath{};
    if (checkKeys(instance, item) != MPI_RET_SUCCESS) {
        return MPI_RET_FAIL;
    }
    size_t size = std::strlen(instance) + 6;  // the longer prefix "array" and the NUL
    auto* name = static_cast<char*>(UIL_ZMalloc(size));
    if (name == nullptr) {
        return MPI_RET_FAIL;
    }
    if (snprintf_s(name, size, size - 1, "%s%s", section, instance) < 0) {
        std::free(name);
        return MPI_RET_FAIL;
    }
    path->uiDepth = 3;
    path->apszNames[0] = section;
    path->apszNames[1] = name;
    path->apszNames[2] = item;
    path->pszInstance = name;
    return MPI_RET_SUCCESS;
}

uint32_t buildArrayNodePath(const char* instance, const char* item, UilCfgNodePath* path)
{
    return buildInstanceNodePath("array", instance, item, path);
}

uint32_t buildLunNodePath(const char* instance, const char* item, UilCfgNodePath* path)
{
    return buildInstanceNodePath("lun", instance, item, path);
}

void freeNodePath(UilCfgNodePath* path)
{
    UIL_ASSERT(path != nullptr);
    std::free(path->pszInstance);
    *path = UilCfgNodePath{};
}

uint32_t buildInstanceXPath(const char* itemFmt, const char* instanceFmt, const char* instance, const char* item,
                            char* out, size_t size)
{
    UIL_ASSERT(instance != nullptr && out != nullptr && size > 0);
    out[0] = '\0';
    uint32_t rc = checkKeys(instance, item);
    if (rc != MPI_RET_SUCCESS) {
        return rc;
    }
    return item != nullptr ? printXPath(out, size, itemFmt, instance, item)
                           : printXPath(out, size, instanceFmt, instance, nullptr);
}

uint32_t buildArrayItemXPath(const char* instance, const char* item, char* out, size_t size)
{
    return buildInstanceXPath("/cvcfg/array/array%s/%s", "/cvcfg/array/array%s", instance, item, out, size);
}

uint32_t buildLunItemXPath(const char* instance, const char* item, char* out, size_t size)
{
    return buildInstanceXPath("/cvcfg/lun/lun%s/%s", "/cvcfg/lun/lun%s", instance, item, out, size);
}

}  // namespace

// ---------------------------------------------------------------------------
// Tables.

const std::array<UilCfgParseStep, UIL_CFG_SECTION_COUNT> UIL_sastUserCfgParseSteps{{
    {UIL_CFG_SECTION_COMMON, "/cvcfg/common", UIL_CfgParseCommon, buildCommonNodePath, freeNodePath,
     buildCommonItemXPath},
    {UIL_CFG_SECTION_ARRAY, "/cvcfg/array", UIL_CfgParseArrays, buildArrayNodePath, freeNodePath,
     buildArrayItemXPath},
    {UIL_CFG_SECTION_LUN, "/cvcfg/lun", UIL_CfgParseLuns, buildLunNodePath, freeNodePath, buildLunItemXPath},
}};

#define UIL_FULL_CFG_ROW(item, field, conv) \
    UilFullCfgItem { item, offsetof(UilFullCfg, field), UilFullCfgConv::conv }

// Fetched in this order, which is not the record's.
const std::array<UilFullCfgItem, UIL_FULL_CFG_ITEM_COUNT> UIL_sastFullCfgItems{{
    UIL_FULL_CFG_ROW("workingmode", ucLbAcrossCtrl, AcrossCtrl),
    UIL_FULL_CFG_ROW("loadbalancemode", szLbPolicy, LbPolicy),
    UIL_FULL_CFG_ROW("lb_io_threshold", uiLbIoThreshold, U32),
    UIL_FULL_CFG_ROW("luntrespass", ucLunTrespass, U8),
    UIL_FULL_CFG_ROW("failbackdelaytime", uiFailbackDelay, U32),
    UIL_FULL_CFG_ROW("ioretry", uiIoRetry, U32),
    UIL_FULL_CFG_ROW("ioretrydelay", uiIoRetryDelay, U32),
    UIL_FULL_CFG_ROW("iosuspensiontime", uiIoSuspensionTime, U32),
    UIL_FULL_CFG_ROW("io_timeout", uiIoTimeout, U32),
    UIL_FULL_CFG_ROW("tod_time", uiTodTime, U32),
    UIL_FULL_CFG_ROW("tod_threshold", uiTodThreshold, U32),
    UIL_FULL_CFG_ROW("tod_recover_time", uiTodRecoverTime, U32),
    UIL_FULL_CFG_ROW("ied_time", uiIedTime, U32),
    UIL_FULL_CFG_ROW("ied_min_io", uiIedMinIo, U32),
    UIL_FULL_CFG_ROW("ied_threshold", uiIedThreshold, U32),
    UIL_FULL_CFG_ROW("ied_recover_time", uiIedRecoverTime, U32),
    UIL_FULL_CFG_ROW("ifd_time", uiIfdTime, U32),
    UIL_FULL_CFG_ROW("ifd_threshold", uiIfdThreshold, U32),
    UIL_FULL_CFG_ROW("ifd_recover_time", uiIfdRecoverTime, U32),
    UIL_FULL_CFG_ROW("failpath_check_interval", uiFailPathCheckInterval, U32),
    UIL_FULL_CFG_ROW("idlepath_check_interval", uiIdlePathCheckInterval, U32),
    UIL_FULL_CFG_ROW("hld_time", uiHldTime, U32),
    UIL_FULL_CFG_ROW("hld_threshold", uiHldThreshold, U32),
    UIL_FULL_CFG_ROW("hld_recover_time", uiHldRecoverTime, U32),
    UIL_FULL_CFG_ROW("ds_mode", uiDsMode, DsMode),
    UIL_FULL_CFG_ROW("ds_primary", szDsPrimary, DsPrimary),
    UIL_FULL_CFG_ROW("apd_to_pdl_mode", ucApdToPdlMode, U8),
    UIL_FULL_CFG_ROW("apd_to_pdl_timeout", uiApdToPdlTimeout, U32),
    UIL_FULL_CFG_ROW("ds_split_size", uiDsSplitSize, U32),
    UIL_FULL_CFG_ROW("sdd_threshold", uiSddThreshold, U32),
    UIL_FULL_CFG_ROW("sdd_recover_time", uiSddRecoverTime, U32),
    UIL_FULL_CFG_ROW("performance_record", uiPerformanceRecord, U32),
}};

#undef UIL_FULL_CFG_ROW

const UilCfgParseStep* UIL_CfgGetParseStep(uint32_t sectionType)
{
    for (const UilCfgParseStep& step : UIL_sastUserCfgParseSteps) {
        if (step.uiSectionType == sectionType) {
            return &step;
        }
    }
    return nullptr;
}

// ---------------------------------------------------------------------------
// Items and values.

const UilCfgItemDef* UIL_CfgGetItemDef(const char* name, uint32_t sectionType)
{
    UIL_ASSERT(name != nullptr);
    uint64_t bit = UIL_CfgSectionBit(sectionType);
    for (const UilCfgItemDef& row : UIL_sastUserCfgItems) {
        if ((row.ullSectionMask & bit) != 0 && std::strcmp(row.pszName, name) == 0) {
            return &row;
        }
    }
    return nullptr;
}

bool UIL_CfgIsValidDigital(const char* value, const UilCfgItemDef* item)
{
    UIL_ASSERT(value != nullptr && item != nullptr);
    if (value[0] == '\0') {
        return false;
    }
    // The driver reads the value with atoi: only a value it reads back
    // unchanged (digits, within 0..2^32-1 and the item's range) is taken.
    switch (MPI_ParseU32(value, item->uiMin, item->uiMax, nullptr)) {
    case MPI_Num::Ok:
        return true;
    case MPI_Num::NotNumber:
        UIL_ERR("The value %s of cfg item %s is not digital", value, item->pszName);
        return false;
    case MPI_Num::OutOfRange:
        break;
    }
    UIL_ERR("The value %s of cfg item %s isn't in right region", value, item->pszName);
    return false;
}

bool UIL_CfgIsValidString(const char* value, const UilCfgItemDef* item)
{
    UIL_ASSERT(value != nullptr && item != nullptr);
    bool anyListed = false;
    for (const char* allowed : item->apszValues) {
        if (allowed == nullptr) {
            continue;
        }
        anyListed = true;
        if (std::strcmp(allowed, value) == 0) {
            return true;
        }
    }
    return !anyListed;
}

bool UIL_CfgCheckItemValue(const char* value, const UilCfgItemDef* item)
{
    UIL_ASSERT(value != nullptr && item != nullptr);
    bool valid = false;
    if (std::strlen(value) < UIL_CFG_ITEM_VALUE_LEN) {
        if (item->uiType == UIL_CFG_TYPE_DIGITAL) {
            valid = UIL_CfgIsValidDigital(value, item);
        } else if (item->uiType == UIL_CFG_TYPE_STRING) {
            valid = UIL_CfgIsValidString(value, item);
        }
    }
    if (!valid) {
        UIL_ERR("The value %s of cfg item %s isn't valid", value, item->pszName);
    }
    return valid;
}

bool INTF_UIL_CheckCfgValid(const char* item, const char* value)
{
    if (item == nullptr || value == nullptr) {
        UIL_ERR("There is NULL parameter <%p, %p>", static_cast<const void*>(item), static_cast<const void*>(value));
        return false;
    }
    const UilCfgItemDef* def = UIL_CfgGetItemDef(item, UIL_CFG_SECTION_COMMON);
    if (def == nullptr) {
        UIL_ERR("Cfg value %s of node %s isn't the valid item", value, item);
        return false;
    }
    if (!UIL_CfgCheckItemValue(value, def)) {
        UIL_ERR("The value %s of cfg node %s isn't valid", value, item);
        return false;
    }
    return true;
}
