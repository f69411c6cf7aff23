// Setting handlers: object routing, the array-over-LUN rule, the host-wide
// setters and the operation-log record they fill.
#include "uil/uil_setcfg.h"

#include "mpi/mpi_scope.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uil/uil_objects.h"

namespace {

constexpr const char kCliSource[] = "CLI";

// An object ID as typed: decimal digits only, at most INT32_MAX.
bool parseObjectId(const char* text, uint32_t* id)
{
    return text != nullptr && MPI_ParseU32(text, 0, INT32_MAX, id) == MPI_Num::Ok;
}

// An ID as atoi would read it for the log record: blanks, a sign, then the
// digits it opens with (none read 0). False for a negative ID or one past
// INT32_MAX: the record does not take those.
bool atoiLikeId(const char* text, uint32_t* id)
{
    std::string_view rest(text);
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n\v\f\r"), rest.size()));
    const bool negative = !rest.empty() && rest.front() == '-';
    if (!rest.empty() && (rest.front() == '-' || rest.front() == '+')) {
        rest.remove_prefix(1);
    }
    const std::string_view digits = rest.substr(0, std::min(rest.find_first_not_of("0123456789"), rest.size()));
    uint32_t value = 0;
    if (!digits.empty() && MPI_ParseU32(digits, 0, INT32_MAX, &value) != MPI_Num::Ok) {
        return false;
    }
    if (negative && value != 0) {
        return false;
    }
    *id = value;
    return true;
}

bool startsWith(const char* text, const char* prefix) { return std::strncmp(text, prefix, std::strlen(prefix)) == 0; }

// The WWN of a VLUN, from the driver's VLUN record.
uint32_t lunWwnOf(uint32_t vlunId, char* wwn, size_t size)
{
    VLunInfo vlun{};
    uint32_t ret = INTF_UIL_GetVLunInfoStart(vlunId, &vlun);
    if (ret == MPI_RET_SUCCESS) {
        (void)strcpy_s(wwn, size, vlun.lunWwn);
    }
    INTF_UIL_GetVLunInfoEnd(&vlun);
    return ret;
}

// The serial number of an array. An array the driver knows but that holds
// no disk still has its number (and no VLUN to strip).
uint32_t arraySnOf(uint32_t arrayId, char* sn, size_t size)
{
    ArrayInfo array{};
    uint32_t ret = INTF_UIL_GetArrayInfoStart(arrayId, &array);
    if ((ret == MPI_RET_SUCCESS || ret == MPI_RET_NOT_FOUND) && array.sn[0] != '\0') {
        (void)strcpy_s(sn, size, array.sn);
        ret = MPI_RET_SUCCESS;
    }
    INTF_UIL_GetArrayInfoEnd(&array);
    return ret;
}

// Removes `item` from the LUN level of each VLUN, in enumeration order; a
// VLUN without the item is no failure, and a failure does not stop the walk.
void removeLunLevelValues(const char* item, const UilIdList& vlunIds)
{
    for (uint32_t vlunId : vlunIds.view()) {
        char idText[16];
        (void)snprintf_s(idText, sizeof(idText), sizeof(idText) - 1, "%u", vlunId);
        char wwn[UIL_LUN_WWN_SIZE] = {};
        uint32_t ret = lunWwnOf(vlunId, wwn, sizeof(wwn));
        if (ret == MPI_RET_SUCCESS) {
            UilOperLogPara ignored{};
            ret = INTF_UIL_DelLunConfig(kCliSource, vlunId, wwn, item, &ignored);
        }
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Del %s of vlun(%s) failed while setting array cfg", item, idText);
        }
    }
}

// The keyed setter: route to the level, log, fill the record.
uint32_t setKeyed(const char* item, const char* key, const char* id, const char* value, UilOperLogPara* record)
{
    UilOperLogPara local{};
    if (value == nullptr || key == nullptr || id == nullptr || record == nullptr) {
        UIL_ERR("Input parameter is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    uint32_t ret = MPI_RET_FAIL;
    const UilObjectHandler* handler = UIL_GetObjectHandler(key);
    if (handler == nullptr) {
        UIL_ERR("Object ID key(%s) invalid", key);
    } else if (handler->pfSetHandler == nullptr) {
        UIL_ERR("pstObjectHandler->pfSetHandler is null");
    } else {
        ret = handler->pfSetHandler(item, value, id);
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Set request (%s) handle failed", item);
        } else {
            UIL_TRACE(MPI_LOG_INFO, "Set %s of %s=%s succ", item, key, id);
        }
    }
    UIL_TransOperLogPara(key, id, value, &local);
    *record = local;
    return ret;
}

// A host-wide item through the common handler, without a record.
uint32_t setCommonOnly(const char* item, const char* value)
{
    if (value == nullptr) {
        UIL_ERR("Input parameter is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    const UilObjectHandler* handler = UIL_GetObjectHandler(UIL_KEY_COMMON);
    if (handler == nullptr) {
        UIL_ERR("Object ID key invalid");
        return MPI_RET_FAIL;
    }
    if (handler->pfSetHandler == nullptr) {
        UIL_ERR("pstObjectHandler->pfSetHandler is null");
        return MPI_RET_FAIL;
    }
    uint32_t ret = handler->pfSetHandler(item, value, "");
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set request (%s) handle failed", item);
    }
    return ret;
}

// A host-wide item whose log record carries the value alone.
uint32_t setCommonWithValue(const char* item, const char* value, UilOperLogPara* record)
{
    if (value == nullptr || record == nullptr) {
        UIL_ERR("Input parameter is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    UIL_TransOperLogValue(value, record);
    uint32_t ret = UIL_SetCommonConfig(item, value);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set %s of common failed", item);
    }
    return ret;
}

}  // namespace

const std::array<UilObjectHandler, 3> g_astUILObjectHandler{{
    {UIL_KEY_COMMON, INTF_UIL_SetCommonHandler},
    {UIL_KEY_ARRAY, INTF_UIL_SetArrayHandler},
    {UIL_KEY_VLUN, INTF_UIL_SetLunHandler},
}};

const UilObjectHandler* UIL_GetObjectHandler(const char* key)
{
    if (key == nullptr) {
        return nullptr;
    }
    for (const UilObjectHandler& row : g_astUILObjectHandler) {
        if (std::strcmp(row.key, key) == 0) {
            return &row;
        }
    }
    return nullptr;
}

void UIL_TransOperLogPara(const char* key, const char* id, const char* value, UilOperLogPara* record)
{
    UIL_ASSERT(key != NULL);
    UIL_ASSERT(id != NULL);
    UIL_ASSERT(value != NULL);
    UIL_ASSERT(record != NULL);
    uint32_t objectId = 0;
    if (!atoiLikeId(id, &objectId)) {
        return;
    }
    record->uiObjType = startsWith(key, UIL_KEY_ARRAY) ? MPI_OBJ_ARRAY
                        : startsWith(key, UIL_KEY_VLUN) ? MPI_OBJ_LUN
                                                        : MPI_OBJ_COMMON;
    record->uiObjId = objectId;
    record->uiReserved = 0;
    (void)strncpy_s(record->szValue, sizeof(record->szValue), value, sizeof(record->szValue) - 1);
}

void UIL_TransOperLogValue(const char* value, UilOperLogPara* record)
{
    UIL_ASSERT(value != NULL);
    UIL_ASSERT(record != NULL);
    *record = UilOperLogPara{};
    (void)strncpy_s(record->szValue, sizeof(record->szValue), value, sizeof(record->szValue) - 1);
}

// ---------------------------------------------------------------------------
// Level handlers.

uint32_t INTF_UIL_SetCommonHandler(const char* item, const char* value, const char* /*id*/)
{
    uint32_t ret = UIL_SetCommonConfig(item, value);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set %s of common failed", item);
    }
    return ret;
}

uint32_t INTF_UIL_SetArrayHandler(const char* item, const char* value, const char* id)
{
    uint32_t arrayId = 0;
    if (!parseObjectId(id, &arrayId)) {
        UIL_ERR("Array ID(%s) invalid", id != nullptr ? id : "");
        return MPI_RET_FAIL;
    }
    char sn[UIL_ARRAY_SN_SIZE] = {};
    uint32_t ret = arraySnOf(arrayId, sn, sizeof(sn));
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get array SN of ID(%s) failed", id);
        return ret;
    }
    UilIdList* vlunIds = nullptr;
    ret = INTF_UIL_EnumerateArrayVlunIdsStart(arrayId, &vlunIds);
    {
        MPI_Ended<INTF_UIL_EnumerateVlunIdsEnd> owned(vlunIds);
        if (ret != MPI_RET_SUCCESS || vlunIds == nullptr) {
            UIL_ERR("Enumerate vlun ids of array(%u) failed", arrayId);
            return MPI_RET_FAIL;
        }
        removeLunLevelValues(item, *vlunIds);
    }
    ret = UIL_SetArrayConfig(sn, item, value);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set %s of array(%s) failed", item, sn);
    }
    return ret;
}

uint32_t INTF_UIL_SetLunHandler(const char* item, const char* value, const char* id)
{
    uint32_t vlunId = 0;
    if (!parseObjectId(id, &vlunId)) {
        UIL_ERR("Vlun ID(%s) invalid", id != nullptr ? id : "");
        return MPI_RET_FAIL;
    }
    char wwn[UIL_LUN_WWN_SIZE] = {};
    uint32_t ret = lunWwnOf(vlunId, wwn, sizeof(wwn));
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get lun SN of ID(%s) failed", id);
        return ret;
    }
    ret = UIL_SetLunConfig(wwn, item, value);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set %s of lun(%s) failed", item, wwn);
    }
    return ret;
}

// ---------------------------------------------------------------------------
// Keyed setters.

uint32_t INTF_UIL_SetLbPolicy(const char*, const char* key, const char* id, const char* value, UilOperLogPara* record)
{
    return setKeyed("loadbalancemode", key, id, value, record);
}

uint32_t INTF_UIL_SetLbController(const char*, const char* key, const char* id, const char* value,
                                  UilOperLogPara* record)
{
    return setKeyed("workingmode", key, id, value, record);
}

uint32_t INTF_UIL_SetLUNTrespass(const char*, const char* key, const char* id, const char* value,
                                 UilOperLogPara* record)
{
    return setKeyed("luntrespass", key, id, value, record);
}

uint32_t INTF_UIL_SetLbIOThreshold(const char*, const char* key, const char* id, const char* value,
                                   UilOperLogPara* record)
{
    return setKeyed("lb_io_threshold", key, id, value, record);
}

uint32_t INTF_UIL_SetIoHoldonTime(const char*, const char* key, const char* id, const char* value,
                                  UilOperLogPara* record)
{
    return setKeyed("iosuspensiontime", key, id, value, record);
}

uint32_t INTF_UIL_SetIoRetryTimeOut(const char*, const char* key, const char* id, const char* value,
                                    UilOperLogPara* record)
{
    return setKeyed("io_timeout", key, id, value, record);
}

uint32_t INTF_UIL_SetDsSpliteSize(const char*, const char* key, const char* id, const char* value,
                                  UilOperLogPara* record)
{
    if (value == nullptr || key == nullptr || id == nullptr || record == nullptr) {
        UIL_ERR("Input parameter is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    if (std::strcmp(key, UIL_KEY_VLUN) == 0) {
        uint32_t vlunId = 0;
        uint32_t ret = parseObjectId(id, &vlunId) ? MPI_RET_SUCCESS : MPI_RET_FAIL;
        VLunInfo vlun{};
        if (ret == MPI_RET_SUCCESS) {
            ret = INTF_UIL_GetVLunInfoStart(vlunId, &vlun);
        }
        uint8_t type = vlun.type;
        INTF_UIL_GetVLunInfoEnd(&vlun);
        if (ret == MPI_RET_SUCCESS && type != UIL_VLUN_TYPE_DUALSITE) {
            UIL_ERR("Vlun %s is not dualsite", id);
            ret = UIL_RET_NOT_DUALSITE;
        } else if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("The VLUN whose ID is %s does not exist", id);
        }
        if (ret != MPI_RET_SUCCESS) {
            UilOperLogPara local{};
            UIL_TransOperLogPara(key, id, value, &local);
            *record = local;
            return ret;
        }
    }
    return setKeyed("ds_split_size", key, id, value, record);
}

uint32_t INTF_UIL_SetDsMode(const char*, const char* key, const char* id, const char* value)
{
    UilOperLogPara ignored{};
    return setKeyed("ds_mode", key, id, value, &ignored);
}

uint32_t INTF_UIL_SetDsMaster(const char*, const char* key, const char* id, const char* value)
{
    UilOperLogPara ignored{};
    return setKeyed("ds_primary", key, id, value, &ignored);
}

// ---------------------------------------------------------------------------
// Host-wide settings.

uint32_t INTF_UIL_SetLUNAPDToPDL(const char*, const char* mode, const char* timeout, UilOperLogPara* record)
{
    if (mode == nullptr || record == nullptr) {
        UIL_ERR("Input parameter is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    bool withTimeout = timeout != nullptr && timeout[0] != '\0';
    UilOperLogPara local{};
    UIL_TransOperLogPara(UIL_KEY_COMMON, "", mode, &local);
    if (withTimeout) {
        UIL_TransOperLogPara(UIL_KEY_COMMON, "", timeout, &local);
    }
    *record = local;
    if (withTimeout) {
        uint32_t ret = setCommonOnly("apd_to_pdl_timeout", timeout);
        if (ret != MPI_RET_SUCCESS) {
            return ret;
        }
    }
    return setCommonOnly("apd_to_pdl_mode", mode);
}

uint32_t INTF_UIL_SetAlarmEnable(const char*, const char* value) { return setCommonOnly("alarmenable", value); }

uint32_t INTF_UIL_SetReliabilityEnable(const char*, const char* value)
{
    return setCommonOnly("reliabilityenable", value);
}

uint32_t INTF_UIL_SetFaultPathCheckInterval(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("failpath_check_interval", value, record);
}

uint32_t INTF_UIL_SetIdlePathCheckInterval(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("idlepath_check_interval", value, record);
}

uint32_t INTF_UIL_SetFailbackTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("failbackdelaytime", value, record);
}

uint32_t INTF_UIL_SetIoRetryConf(const char*, const char* retries, const char* delay, UilOperLogPara* record)
{
    if (retries == nullptr || delay == nullptr || record == nullptr) {
        UIL_ERR("Input parameter is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    const std::string both = std::string(retries) + "," + delay;
    UIL_TransOperLogValue(both.c_str(), record);
    const uint32_t ret = setCommonOnly("ioretry", retries);
    return ret != MPI_RET_SUCCESS ? ret : setCommonOnly("ioretrydelay", delay);
}

uint32_t INTF_UIL_SetTimeOutDegradedTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("tod_time", value, record);
}

uint32_t INTF_UIL_SetTimeOutDegradedThreshold(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("tod_threshold", value, record);
}

uint32_t INTF_UIL_SetTimeOutDegradedRecoverTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("tod_recover_time", value, record);
}

uint32_t INTF_UIL_SetInterErrorDegradedTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("ied_time", value, record);
}

uint32_t INTF_UIL_SetInterErrorDegradedMinIo(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("ied_min_io", value, record);
}

uint32_t INTF_UIL_SetInterErrorDegradedThreshold(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("ied_threshold", value, record);
}

uint32_t INTF_UIL_SetInterErrorDegradedRecoverTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("ied_recover_time", value, record);
}

uint32_t INTF_UIL_SetInterFaultDegradedTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("ifd_time", value, record);
}

uint32_t INTF_UIL_SetInterFaultDegradedThreshold(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("ifd_threshold", value, record);
}

uint32_t INTF_UIL_SetInterFaultDegradedRecoverTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("ifd_recover_time", value, record);
}

uint32_t INTF_UIL_SetHighLatencyDegradedTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("hld_time", value, record);
}

uint32_t INTF_UIL_SetHighLatencyDegradedThreshold(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("hld_threshold", value, record);
}

uint32_t INTF_UIL_SetHighLatencyDegradedRecoverTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("hld_recover_time", value, record);
}

uint32_t INTF_UIL_SetSensitiveDelayedThreshold(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("sdd_threshold", value, record);
}

uint32_t INTF_UIL_SetSensitiveDelayedRecoverTime(const char*, const char* value, UilOperLogPara* record)
{
    return setCommonWithValue("sdd_recover_time", value, record);
}

uint32_t INTF_UIL_SetIOLatencyThreshold(const char* value)
{
    if (value == nullptr) {
        UIL_ERR("Input parameter is NULL");
        return MPI_RET_INVALID_PARAM;
    }
    uint32_t ret = UIL_SetCommonConfig(UIL_ITEM_IO_LATENCY_THRESHOLD, value);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set %s of common failed", UIL_ITEM_IO_LATENCY_THRESHOLD);
    }
    return ret;
}

uint32_t INTF_UIL_GetIoLatencyThreshold(char* buffer, uint32_t size, int32_t* value)
{
    UIL_ASSERT(buffer != NULL);
    UIL_ASSERT(value != NULL);
    const UilCfgItemDef* item = UIL_CfgGetItemDef(UIL_ITEM_IO_LATENCY_THRESHOLD, UIL_CFG_SECTION_COMMON);
    UIL_ASSERT(item != NULL);
    uint32_t ret = UIL_GetCommonConfig(UIL_ITEM_IO_LATENCY_THRESHOLD, buffer, size, true);
    if (ret == UIL_RET_CFG_NOT_FOUND) {
        UIL_TRACE(MPI_LOG_INFO, "%s is not in the configuration, default %s is in force",
                  UIL_ITEM_IO_LATENCY_THRESHOLD, item->pszDefault);
        ret = strcpy_s(buffer, size, item->pszDefault) == EOK ? MPI_RET_SUCCESS : MPI_RET_BUFFER_SMALL;
    }
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query Io Latency Threshold  fail");
        return ret;
    }
    // The store has held the stored text to the item's rules already.
    uint32_t threshold = 0;
    if (!MPI_ToU32(buffer, &threshold)) {
        return UIL_RET_CFG_INVALID_ITEM;
    }
    *value = static_cast<int32_t>(threshold);
    return MPI_RET_SUCCESS;
}
