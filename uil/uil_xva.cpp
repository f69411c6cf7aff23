#include "uil/uil_xva.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uil/uil_arrays_int.h"
#include "uil/uil_objects_int.h"

namespace {

constexpr uint32_t kMaxTpgId = 15;
constexpr size_t kMaxTpgs = kMaxTpgId + 1;
constexpr char kSeparator = ',';

// "0,3,5": each ID once, 0..15.
bool parseList(std::string_view text, uint32_t* ids, size_t capacity, size_t* count)
{
    *count = 0;
    while (!text.empty()) {
        size_t end = text.find(kSeparator);
        uint32_t id = 0;
        if (MPI_ParseU32(text.substr(0, end), 0, kMaxTpgId, &id) != MPI_Num::Ok || *count == capacity ||
            std::find(ids, ids + *count, id) != ids + *count) {
            return false;
        }
        ids[(*count)++] = id;
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return true;
}

void joinList(const uint32_t* ids, size_t count, char* out, size_t size)
{
    out[0] = '\0';
    for (size_t i = 0; i < count; ++i) {
        char one[12];
        (void)snprintf_s(one, sizeof(one), sizeof(one) - 1, i == 0 ? "%u" : ",%u", ids[i]);
        (void)strcat_s(out, size, one);
    }
}

// The array record (for its SN) and its remote TPG IDs.
uint32_t remoteOf(uint32_t arrayId, ArrayInfo* array, uint32_t* ids, size_t capacity, size_t* count)
{
    UIL_ASSERT(ids != nullptr && count != nullptr);
    *count = 0;
    UIL_InitArrayInfo(array);
    uint32_t ret = UIL_GetArrayRecord(arrayId, array);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get array information by array id %u failed. iRet {%d}", arrayId, static_cast<int>(ret));
        return ret;
    }
    char text[UIL_CFG_ITEM_VALUE_LEN] = "";
    ret = UIL_GetArrayConfig(array->sn, UIL_ITEM_XVA_REMOTE, text, sizeof(text), true);
    if (ret == UIL_RET_CFG_NOT_FOUND) {
        UIL_ERR("Get config information failed by array sn %s failed,there is no config information. iRet {%d}",
                array->sn, static_cast<int>(ret));
        return MPI_RET_SUCCESS;
    }
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get config information failed by array sn %s failed. iRet {%d}", array->sn, static_cast<int>(ret));
        return ret;
    }
    if (!parseList(text, ids, capacity, count)) {
        UIL_ERR("The remote controllers {%s} of array sn %s are not a list of tpg ids", text, array->sn);
        *count = 0;
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

bool UIL_IsXvaProduct(const char* product)
{
    return product != nullptr && std::strncmp(product, "XVA", 3) == 0;
}

uint32_t UIL_GetXvaRemoteByArrayID(uint32_t arrayId, uint32_t* ids, size_t capacity, size_t* count)
{
    ArrayInfo array;
    return remoteOf(arrayId, &array, ids, capacity, count);
}

uint32_t INTF_UIL_SetRemoteController(const char* source, uint32_t arrayId, bool remote, size_t count,
                                      const uint32_t* tpgIds, UilOperLogPara* record)
{
    UIL_ASSERT(source != nullptr);
    if (tpgIds == nullptr || count == 0 || count > kMaxTpgs ||
        std::any_of(tpgIds, tpgIds + count, [](uint32_t id) { return id > kMaxTpgId; })) {
        UIL_ERR("The tpg ids to set %s are invalid", remote ? "remote" : "local");
        return MPI_RET_INVALID_PARAM;
    }
    if (record != nullptr) {
        char given[UIL_CFG_ITEM_VALUE_LEN];
        joinList(tpgIds, count, given, sizeof(given));
        UIL_FillOperRecord(record, MPI_OBJ_ARRAY, arrayId, "%s,%s", remote ? "remote" : "local", given);
    }
    ArrayInfo array;
    uint32_t held[kMaxTpgs];
    size_t heldCount = 0;
    uint32_t ret = remoteOf(arrayId, &array, held, kMaxTpgs, &heldCount);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    if (!remote && heldCount == 0) {
        UIL_TRACE(MPI_LOG_INFO, "Set the local controller when there is no remote controller in the xml");
        return MPI_RET_SUCCESS;
    }
    for (size_t i = 0; i < count; ++i) {
        uint32_t* end = held + heldCount;
        uint32_t* at = std::find(held, end, tpgIds[i]);
        if (remote && at == end) {
            held[heldCount++] = tpgIds[i];
        } else if (!remote && at != end) {
            std::copy(at + 1, end, at);
            --heldCount;
        }
    }
    char text[UIL_CFG_ITEM_VALUE_LEN];
    joinList(held, heldCount, text, sizeof(text));
    ret = UIL_SetArrayConfig(array.sn, UIL_ITEM_XVA_REMOTE, text);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("IOCTL set xva remote controller id {%s} fail. iRet {%d}", text, static_cast<int>(ret));
    }
    return ret;
}
