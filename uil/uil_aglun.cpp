#include "uil/uil_aglun.h"

#include <bit>
#include <cstring>
#include <string_view>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uil/uil_arrays_int.h"
#include "uil/uil_objects_int.h"
#include "uil/uil_wire_aglun.h"

namespace w = uil_wire_aglun;

namespace {

const uil_wire::IdListLayout kAggreIds{&uia_req::EnumAggreIds, uil_wire::kNone, w::kIdsCapacity, w::kIdsCount, w::kIdsFirst,
                                       UIL_MAX_VLUNS, "aggregated vlun ids"};

// One VLUN-keyed request: the payload with the ID in place, sent. false
// when the driver refused.
bool askVlun(const UiaRequest& req, uint32_t vlunId, UiaPayload& payload)
{
    payload.setU32(0, vlunId);
    return UIA_Send(req, payload) == MPI_RET_SUCCESS;
}

// The steps every per-VLUN query shares: the record cleared, the request
// sent, the record's ID set. 1024; 1026 for a null record; 1 when the
// driver refuses. `what` names the record in the trace ("ds", ...).
template <typename Record>
uint32_t queryVlun(const UiaRequest& req, uint32_t vlunId, Record* out, const char* what, UiaPayload& payload)
{
    if (out == nullptr) {
        UIL_ERR("Input pointer of %s info is NULL", what);
        return MPI_RET_INVALID_PARAM;
    }
    *out = {};
    if (!askVlun(req, vlunId, payload)) {
        UIL_ERR("Querry %s info by ioctl fail, vlun id {%u}", what, vlunId);
        return 1;
    }
    out->vlunId = vlunId;
    return MPI_RET_SUCCESS;
}

// Units of the split size: the letter, its factor and the largest number.
struct SplitUnit {
    char letter;
    uint64_t factor;
    uint64_t maxNumber;
};
constexpr uint64_t kGiB = 1ULL << 30;
constexpr SplitUnit kSplitUnits[] = {
    {'B', 1, kGiB},
    {'K', 1ULL << 10, 1ULL << 20},
    {'M', 1ULL << 20, 1ULL << 10},
    {'G', kGiB, 1},
};
constexpr size_t kSplitMaxLen = 10;

// What the driver may name in the status word of a refused migration.
constexpr uint32_t kMigrationRefusals[] = {MPI_RET_VLUN_NOT_EXIST, UIL_RET_NOT_MIGRATION, UIL_RET_MIGRATE_MEMBERS,
                                           UIL_RET_MIGRATE_NO_PATH};
constexpr unsigned kSectorShift = 9;

const SplitUnit* splitUnit(char last)
{
    if (last >= '0' && last <= '9') {
        return &kSplitUnits[0];
    }
    char upper = (last >= 'a' && last <= 'z') ? static_cast<char>(last - 'a' + 'A') : last;
    for (const SplitUnit& u : kSplitUnits) {
        if (u.letter == upper) {
            return &u;
        }
    }
    return nullptr;
}

}  // namespace

uint32_t INTF_UIL_EnumerateAggreIdsStart(UilIdList** out)
{
    UIL_ASSERT(out != nullptr);
    UiaPayload payload(kAggreIds.bufferSize());
    uint32_t ret = UIL_RunIdListRequest(kAggreIds, payload, out);
    if (ret == MPI_RET_NO_MEMORY) {
        UIL_ERR("Allocate memory for ioctl ds ids fail");
        return ret;
    }
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Querry ds ids by ioctl fail");
        return 1;
    }
    return MPI_RET_SUCCESS;
}

void INTF_UIL_EnumerateAggreIdsEnd(UilIdList* list) { UIL_IdListFree(list); }

uint32_t INTF_UIL_GetAggreInfoStart(uint32_t vlunId, UilAggreInfo* out)
{
    UiaPayload payload(uia_req::GetAggreInfo.size);
    uint32_t ret = queryVlun(uia_req::GetAggreInfo, vlunId, out, "aggre", payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    out->memberCount = UIL_ClampCount(payload.u32(w::kAggreCount), w::kAggreMaxMembers, "members of a vlun");
    for (uint32_t i = 0; i < out->memberCount; ++i) {
        out->memberDiskId[i] = payload.u32(w::kAggreMembers + 4 * static_cast<size_t>(i));
    }
    return MPI_RET_SUCCESS;
}

void INTF_UIL_GetAggreInfoEnd(UilAggreInfo* info)
{
    if (info != nullptr) {
        *info = {};
    }
}

uint32_t INTF_UIL_GetDSInfoStart(uint32_t vlunId, UilDsInfo* out)
{
    UiaPayload payload(uia_req::GetDsInfo.size);
    uint32_t ret = queryVlun(uia_req::GetDsInfo, vlunId, out, "ds", payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    out->mode = payload.u8(w::kDsMode);
    payload.text(w::kDsPrimarySn, w::kDsPrimarySnLen, out->primarySn, sizeof(out->primarySn));
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_GetMigrateInfoStart(uint32_t vlunId, UilMigrateInfo* out)
{
    UiaPayload payload(uia_req::GetMigrateInfo.size);
    uint32_t ret = queryVlun(uia_req::GetMigrateInfo, vlunId, out, "migrate", payload);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    out->targetPreferred = payload.u8(w::kMigDirection);
    out->rollback = payload.u8(w::kMigRollback);
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_StartMigration(const char* source, uint32_t vlunId, uint8_t targetPreferred, uint8_t rollback,
                                 UilOperLogPara* record)
{
    UIL_ASSERT(source != nullptr);
    if (record != nullptr) {
        UIL_FillOperRecord(record, MPI_OBJ_LUN, vlunId, "bDstIsPrior: %d, bRollBack: %d", targetPreferred, rollback);
    }
    UiaPayload payload(uia_req::StartMigration.size);
    payload.setU8(w::kStartTargetPreferred, targetPreferred);
    payload.setU8(w::kStartRollback, rollback);
    if (askVlun(uia_req::StartMigration, vlunId, payload)) {
        return MPI_RET_SUCCESS;
    }
    uint32_t status = payload.u32(w::kStartStatus);
    uint32_t ret = MPI_RET_IOCTL_FAIL;
    for (uint32_t known : kMigrationRefusals) {
        if (status == known) {
            ret = status;
        }
    }
    UIL_ERR("Start migration of vlun {%u} failed, ret {%u}", vlunId, ret);
    return ret;
}

uint32_t INTF_UIL_TranseSpliteSize(char* text, size_t size)
{
    if (text == nullptr) {
        UIL_TRACE_NULL("text");
        return 0;
    }
    const size_t len = strnlen(text, size);
    if (len == 0 || len == size) {
        UIL_ERR("input is empty or not terminated");
        return 0;
    }
    if (len > kSplitMaxLen) {
        UIL_ERR("input is to long");
        return 0;
    }
    const char last = text[len - 1];
    const SplitUnit* unit = splitUnit(last);
    if (unit == nullptr) {
        UIL_ERR("unit {%c} is invalid", last);
        return 0;
    }
    std::string_view digits(text, (last >= '0' && last <= '9') ? len : len - 1);
    if (digits.empty()) {
        UIL_ERR("only input unit");
        return 0;
    }
    uint64_t number = 0;
    MPI_Num num = MPI_ParseU64(digits, 0, unit->maxNumber, &number);
    if (num != MPI_Num::Ok) {
        UIL_ERR("input {%s} is %s", text, num == MPI_Num::NotNumber ? "not a number" : "out of range");
        return 0;
    }
    if (!std::has_single_bit(number)) {
        UIL_ERR("input must be power of 2");
        return 0;
    }
    const uint64_t bytes = number * unit->factor;
    if (bytes < (1ULL << kSectorShift)) {
        UIL_ERR("input is less than 512 bytes");
        return 0;
    }
    char sectors[24];
    (void)snprintf_s(sectors, sizeof(sectors), sizeof(sectors) - 1, "%llu",
                     static_cast<unsigned long long>(bytes >> kSectorShift));
    if (std::strlen(sectors) >= size) {
        UIL_ERR("buffer of %u bytes is too small for %s", static_cast<uint32_t>(size), sectors);
        return 0;
    }
    (void)strcpy_s(text, size, sectors);
    return 1;
}
