// Aggregated VLUNs: the detail of a dual-site or migration VLUN, `set
// dualsite` (working mode and primary array, or split size, for the host or
// a list of dual-site VLUNs) and `start migration`.
//
// Every argument and every named VLUN is checked before the first change,
// so a refused command changes nothing and leaves no operation-log line.
#include "cli/cli_aglun.h"

#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "bounded/bounded.h"
#include "cli/cli.h"
#include "cli/cli_capacity.h"
#include "cli/cli_command.h"
#include "cli/cli_operlog.h"
#include "cli/cli_print.h"
#include "cli/cli_token.h"
#include "mpi/mpi_number.h"
#include "mpi/mpi_scope.h"
#include "uil/uil_aglun.h"
#include "uil/uil_array.h"
#include "uil/uil_cfg.h"
#include "uil/uil_oper.h"
#include "uil/uil_setcfg.h"
#include "uil/uil_vlun.h"

namespace {

constexpr const char kSource[] = "CLI";
constexpr const char kNone[] = "--";
constexpr const char kNotAvailable[] = "N/A";
constexpr const char kWithinPrimary[] = "read write within primary array";
constexpr const char kBetweenArrays[] = "read write between both arrays";
constexpr uint32_t kMemberIndent = 4;
constexpr uint32_t kMsPerSecond = 1000;
constexpr uint32_t kMaxVluns = 16384;
constexpr size_t kSplitTextSize = 24;

// ---------------------------------------------------------------------------
// Detail.

std::string capacityText(uint64_t bytes)
{
    char text[64] = {};
    MPCLI_PrintCapacity(text, sizeof(text), bytes);
    return text;
}

// A split size kept in 512-byte sectors, in the largest unit that holds it
// whole ("128MB", "512B").
std::string splitSizeText(uint32_t sectors)
{
    static constexpr const char* kUnits[] = {"B", "KB", "MB", "GB"};
    uint64_t value = static_cast<uint64_t>(sectors) * 512;
    size_t unit = 0;
    while (value != 0 && value % 1024 == 0 && unit + 1 < std::size(kUnits)) {
        value /= 1024;
        ++unit;
    }
    return std::to_string(value) + kUnits[unit];
}

// One member disk, every line indented. `role` is the member's part in the
// aggregation, or null.
void MPCLI_PrintAggreEachMember(const DiskInfo& disk, const char* role, UilControllerNamer& namer)
{
    char owning[UIL_CONTROLLER_NAME_SIZE] = {};
    char working[UIL_CONTROLLER_NAME_SIZE] = {};
    MPCLI_DiskControllerNames(disk, namer, owning, working);
    MPCLI_Print("    Name              : %s\n", disk.name);
    MPCLI_Print("    Status            : %s\n", disk.status);
    MPCLI_Print("    Capacity          : %s\n", capacityText(disk.capacity).c_str());
    MPCLI_Print("    Aggregation Specific Attribution : %s\n", role != nullptr ? role : kNotAvailable);
    MPCLI_Print("    LUN WWN           : %s\n", disk.lunWwn);
    MPCLI_Print("    Array Name        : %s\n", disk.arrayName);
    MPCLI_Print("    Array SN          : %s\n", disk.arraySn);
    MPCLI_Print("    Driver            : %s\n", disk.driver);
    MPCLI_Print("    Product Name      : %s\n", disk.product);
    MPCLI_Print("    Vendor Name       : %s\n", disk.vendor);
    MPCLI_Print("    Owning Controller : %s\n", owning);
    MPCLI_Print("    Working Controller: %s\n", working);
    MPCLI_Print("    Num of Paths      : %u\n", disk.pathCount);
    MPCLI_PrintDiskControllers(disk, namer, kMemberIndent);
}

// The member disks named by the aggregation header, read before anything
// is printed (the first member gives the VLUN's block device).
class MemberDisks {
public:
    explicit MemberDisks(const UilAggreInfo& aggre) : m_aggre(aggre)
    {
        for (uint32_t i = 0; i < m_aggre.memberCount; ++i) {
            m_ret[i] = INTF_UIL_GetDiskDetailInfoStart(m_aggre.memberDiskId[i], &m_disk[i]);
            if (m_ret[i] != MPI_RET_SUCCESS) {
                UIL_ERR("Get member disk {%u} of vlun {%u} fail. ret {%u}", m_aggre.memberDiskId[i], m_aggre.vlunId,
                        m_ret[i]);
            }
        }
    }
    ~MemberDisks()
    {
        for (uint32_t i = 0; i < m_aggre.memberCount; ++i) {
            INTF_UIL_GetDiskDetailInfoEnd(&m_disk[i]);
        }
    }
    MemberDisks(const MemberDisks&) = delete;
    MemberDisks& operator=(const MemberDisks&) = delete;

    const char* deviceName() const
    {
        return m_aggre.memberCount > 0 && m_ret[0] == MPI_RET_SUCCESS ? m_disk[0].deviceName : "";
    }

    // Each member in turn; one whose disk could not be read is said and the
    // others are still shown. `roles` (may be null) names each member's
    // part. False when a member was missing.
    bool print(const char* const* roles) const
    {
        UilControllerNamer namer;
        bool whole = true;
        for (uint32_t i = 0; i < m_aggre.memberCount; ++i) {
            MPCLI_Print("Aggregation Member#%u Infomation\n", i);
            if (m_ret[i] != MPI_RET_SUCCESS) {
                MPCLI_Print("The disk whose ID is %u does not exist.\n", m_aggre.memberDiskId[i]);
                whole = false;
                continue;
            }
            MPCLI_PrintAggreEachMember(m_disk[i], roles != nullptr ? roles[i] : nullptr, namer);
        }
        return whole;
    }

private:
    const UilAggreInfo& m_aggre;
    DiskInfo m_disk[UIL_AGGRE_MAX_MEMBERS];
    uint32_t m_ret[UIL_AGGRE_MAX_MEMBERS] = {};
};

// The aggregation header, or the VLUN said to be missing.
bool readAggregation(uint32_t vlunId, UilAggreInfo* aggre)
{
    const uint32_t ret = INTF_UIL_GetAggreInfoStart(vlunId, aggre);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get aggre info of vlun {%u} fail. ret {%u}", vlunId, ret);
        MPCLI_Print("The vlun whose ID is %u does not exist.\n", vlunId);
        return false;
    }
    return true;
}

void MPCLI_PrintDSDetailInfo(const VLunInfo& v, const char* device, const UilDsInfo* ds)
{
    MPCLI_PrintVLunTitle(v.vlunId);
    MPCLI_Print("Disk                     : %s\n", device);
    if (v.suspendTimeoutMs != 0) {
        MPCLI_Print("Manual IO Suspension : On(timeout/remain : {%u} seconds/{%u} seconds)\n",
                    v.suspendTimeoutMs / kMsPerSecond, v.suspendRemainMs / kMsPerSecond);
    } else {
        MPCLI_Print("Manual IO Suspension     : Off\n");
    }
    MPCLI_Print("Aggregation Type         : %s\n", ds != nullptr ? "Dual Site" : kNotAvailable);
    MPCLI_Print("Aggregation Specific Attribution\n");
    MPCLI_Print("    WorkingMode            : %s\n",
                ds == nullptr ? kNotAvailable : (ds->mode != 0 ? kWithinPrimary : kBetweenArrays));
    MPCLI_Print("    Primary Array SN       : %s\n", ds != nullptr ? ds->primarySn : kNotAvailable);
}

void MPCLI_PrintMigrateDetailInfo(const VLunInfo& v, const char* device, const UilMigrateInfo* mig)
{
    MPCLI_PrintVLunTitle(v.vlunId);
    MPCLI_Print("Disk                  : %s\n", device);
    MPCLI_PrintVLunSuspension(v);
    MPCLI_Print("Aggregation Type      : Migration\n");
    MPCLI_Print("Aggregation Specific Attribution\n");
    MPCLI_Print("    IO Direction      : %s\n",
                mig == nullptr ? kNotAvailable : (mig->targetPreferred == 1 ? "Target" : "Source"));
    MPCLI_Print("    Rollback          : %s\n",
                mig == nullptr ? kNotAvailable : (mig->rollback == 1 ? "Enable" : "Disable"));
}

// ---------------------------------------------------------------------------
// Checks shared by the setters.

uint8_t printUsage(const char* text)
{
    MPCLI_Print("%s", text);
    return MPCLI_RESULT_FAIL;
}

constexpr const char kDualsiteUsage[] =
    "Error: Invalid input!\n Usage:\n"
    "    -- set dualsite workingmode={priority|balance} primary_array_id=ID "
    "[vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "    -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n";
constexpr const char kWorkingModeUsage[] =
    "Error: Invalid input!\nUsage:\n"
    "    -- set dualsite workingmode={priority|balance} primary_array_id=ID "
    "[vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "    -- priority: read write within primary array.\n"
    "    -- balance: read write between both arrays.\n";
constexpr const char kSplitSizeUsage[] =
    "Error: Invalid input!\nUsage:\n"
    "    -- set dualsite split_size=<size> [vlun_id={<ID>|<ID1,ID2,...>|<ID1-ID2>}]\n"
    "    -- size is in the range 512Byte-1GB,unit can be B,K,M,G.\n"
    "    -- size must be power of 2.\n";
constexpr const char kMigrationUsage[] =
    "Error: Invalid input!\nUsage:\n"
    "    -- start migration vlun_id=ID direction={source | target} rollback={enable | disable}\n"
    "    -- rollback=enable is allowed only with direction=target.\n";

void MPCLI_PrintDualsiteError(uint32_t code, const char* vlunId)
{
    if (code == MPI_RET_VLUN_NOT_EXIST) {
        MPCLI_Print("The VLUN whose ID is %s does not exist.\n", vlunId);
    } else if (code == UIL_RET_NOT_DUALSITE) {
        MPCLI_Print("VLUN %s is not dualsite.\n", vlunId);
    } else {
        MPCLI_Print("Failed in executing the command for vlun %s.\n", vlunId);
    }
}

// The VLUNs a "vlun_id=" word selects; false when the word is not a list.
bool readVluns(const MPCLI_Word& word, std::vector<uint32_t>* ids)
{
    if (word.key != UIL_KEY_VLUN || !word.hasValue()) {
        return false;
    }
    ids->resize(kMaxVluns);
    uint32_t count = 0;
    const std::string list(word.value);
    if (MPCLI_ParseVlunIds(list.c_str(), ids->data(), kMaxVluns, &count) != MPI_RET_SUCCESS || count == 0) {
        return false;
    }
    ids->resize(count);
    return true;
}

// The VLUN's record when it exists and is dual-site; else its error code.
uint32_t readDualsite(uint32_t vlunId, VLunInfo* v)
{
    const uint32_t ret = INTF_UIL_GetVLunInfoStart(vlunId, v);
    if (ret != MPI_RET_SUCCESS) {
        return MPI_RET_VLUN_NOT_EXIST;
    }
    return v->type == UIL_VLUN_TYPE_DUALSITE ? MPI_RET_SUCCESS : UIL_RET_NOT_DUALSITE;
}

// One change per object: the host when no VLUN is named, else each VLUN.
// `apply` makes the change and fills the record; the result is printed and
// logged per object.
template <typename Apply>
uint8_t applyEach(const std::vector<uint32_t>& ids, const MPCLI_Command& command, uint32_t eventId, Apply apply)
{
    const bool perVlunLines = ids.size() > 1;
    bool allDone = true;
    const size_t steps = ids.empty() ? 1 : ids.size();
    for (size_t i = 0; i < steps; ++i) {
        const char* key = ids.empty() ? UIL_KEY_COMMON : UIL_KEY_VLUN;
        const std::string id = ids.empty() ? std::string() : std::to_string(ids[i]);
        UilOperLogPara record{};
        const uint32_t ret = apply(key, id.c_str(), &record);
        const uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
        if (result != MPCLI_RESULT_OK) {
            allDone = false;
            if (ids.empty()) {
                MPCLI_Print("Failed to execute the command due to internal errors.\n");
            } else {
                MPCLI_PrintDualsiteError(ret, id.c_str());
            }
        } else if (perVlunLines) {
            MPCLI_Print("Succeeded in executing the command for vlun %s.\n", id.c_str());
        }
        MPCLI_OperLog("set", command, eventId, result, &record);
    }
    if (allDone && !perVlunLines) {
        MPCLI_Print("Succeeded in executing the command.\n");
    }
    return allDone ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
}

// Every named VLUN exists and is dual-site; the first that is not is said.
bool vlunsAreDualsite(const std::vector<uint32_t>& ids)
{
    for (uint32_t id : ids) {
        VLunInfo v;
        const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&v);
        const uint32_t ret = readDualsite(id, &v);
        if (ret != MPI_RET_SUCCESS) {
            MPCLI_PrintDualsiteError(ret, std::to_string(id).c_str());
            return false;
        }
    }
    return true;
}

// ---------------------------------------------------------------------------
// set dualsite workingmode=... primary_array_id=ID [vlun_id=...]

struct DsModeWord {
    const char* word;
};
constexpr DsModeWord kDsModes[] = {{"priority"}, {"balance"}};

bool MPCLI_CheckDSMode(std::string_view value)
{
    for (const DsModeWord& mode : kDsModes) {
        if (value == mode.word) {
            return true;
        }
    }
    return false;
}

// The primary array's ID; false when the word is refused (said).
bool MPCLI_GetMasterArrayID(const MPCLI_Word& word, uint32_t* arrayId)
{
    if (word.key != "primary_array_id" || !word.hasValue()) {
        printUsage(kWorkingModeUsage);
        return false;
    }
    switch (MPI_ParseU32(word.value, 0, UIL_MAX_ARRAYS - 1, arrayId)) {
    case MPI_Num::Ok:
        return true;
    case MPI_Num::OutOfRange:
        MPCLI_Print("Error: %.*s is out of range\n", static_cast<int>(word.value.size()), word.value.data());
        return false;
    default:
        printUsage(kWorkingModeUsage);
        return false;
    }
}

// The VLUN is dual-site and one of its members lies in the primary array.
bool MPCLI_CheckDSMasterSN(uint32_t vlunId, uint32_t primaryArrayId)
{
    VLunInfo v;
    const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&v);
    if (readDualsite(vlunId, &v) != MPI_RET_SUCCESS) {
        MPCLI_Print("The VLUN whose ID is %u does not exist or is not dualsite.\n", vlunId);
        return false;
    }
    for (uint32_t slot = 0; slot < v.memberCount && slot < UIL_VLUN_SLOTS; ++slot) {
        DiskInfo disk{};  // the basic form holds nothing to release
        if (INTF_UIL_GetDiskBasicInfoStart(v.memberDiskId[slot], &disk) == MPI_RET_SUCCESS &&
            disk.arrayId == primaryArrayId) {
            return true;
        }
    }
    MPCLI_Print("The VLUN whose ID is %u does not have path attached to array%u.\n", vlunId, primaryArrayId);
    return false;
}

uint8_t MPCLI_SetDsMode(const MPCLI_Command& command)
{
    if (command.size() < 3 || command.size() > 4 || command[1].key != "workingmode" || !command[1].hasValue() ||
        !MPCLI_CheckDSMode(command[1].value)) {
        return printUsage(kWorkingModeUsage);
    }
    const std::string mode(command[1].value);
    uint32_t primary = 0;
    if (!MPCLI_GetMasterArrayID(command[2], &primary)) {
        return MPCLI_RESULT_FAIL;
    }
    std::vector<uint32_t> ids;
    if (command.size() == 4 && !readVluns(command[3], &ids)) {
        return printUsage(kWorkingModeUsage);
    }
    for (uint32_t id : ids) {
        if (!MPCLI_CheckDSMasterSN(id, primary)) {
            return MPCLI_RESULT_FAIL;
        }
    }
    ArrayInfo array;
    const MPI_Ended<INTF_UIL_GetArrayInfoEnd> owner(&array);
    if (INTF_UIL_GetArrayInfoStart(primary, &array) != MPI_RET_SUCCESS) {
        MPCLI_Print("The disk array whose ID is %u does not exist.\n", primary);
        return MPCLI_RESULT_FAIL;
    }
    // The log shows the mode and the primary array's ID.
    const std::string logged = mode + "," + std::to_string(primary);
    return applyEach(ids, command, UIL_OPER_DS_MODE, [&](const char* key, const char* id, UilOperLogPara* record) {
        UIL_TransOperLogPara(key, id, logged.c_str(), record);
        const uint32_t ret = INTF_UIL_SetDsMode(kSource, key, id, mode.c_str());
        return ret != MPI_RET_SUCCESS ? ret : INTF_UIL_SetDsMaster(kSource, key, id, array.sn);
    });
}

// ---------------------------------------------------------------------------
// set dualsite split_size=<size> [vlun_id=...]

uint8_t MPCLI_SetDsSplitSize(const MPCLI_Command& command)
{
    const MPCLI_Word& size = command[1];
    if (command.size() > 3 || size.key != "split_size" || !size.hasValue() || size.value.size() >= kSplitTextSize) {
        return printUsage(kSplitSizeUsage);
    }
    char sectors[kSplitTextSize] = {};
    (void)memcpy_s(sectors, sizeof(sectors), size.value.data(), size.value.size());
    if (INTF_UIL_TranseSpliteSize(sectors, sizeof(sectors)) != 1) {
        return printUsage(kSplitSizeUsage);
    }
    std::vector<uint32_t> ids;
    if (command.size() == 3 && !readVluns(command[2], &ids)) {
        return printUsage(kSplitSizeUsage);
    }
    if (!vlunsAreDualsite(ids)) {
        return MPCLI_RESULT_FAIL;
    }
    return applyEach(ids, command, UIL_OPER_DS_SPLIT_SIZE,
                     [&](const char* key, const char* id, UilOperLogPara* record) {
                         return INTF_UIL_SetDsSpliteSize(kSource, key, id, sectors, record);
                     });
}

// ---------------------------------------------------------------------------
// start migration vlun_id=ID direction={source|target} rollback={enable|disable}

struct MigrationPara {
    uint32_t vlunId = 0;
    uint8_t targetPreferred = 0;
    uint8_t rollback = 0;
};

// Sets the two bytes from the words: the target is preferred for
// "target", rollback is on for "enable", and rollback needs the target.
bool MPCLI_StartMigrationParaCheck(std::string_view direction, std::string_view rollback, MigrationPara* para)
{
    if ((direction != "target" && direction != "source") || (rollback != "enable" && rollback != "disable")) {
        return false;
    }
    para->targetPreferred = direction == "target" ? 1 : 0;
    para->rollback = rollback == "enable" ? 1 : 0;
    return para->rollback == 0 || para->targetPreferred == 1;
}

// The three words, each once, in any order.
bool MPCLI_GetMigrationPara(const MPCLI_Command& command, MigrationPara* para)
{
    if (command.size() != 4 || !command.keysIn({"vlun_id", "direction", "rollback"})) {
        return false;
    }
    const MPCLI_Word* words[3] = {};
    constexpr std::string_view kKeys[3] = {"vlun_id", "direction", "rollback"};
    for (const MPCLI_Word& word : command.args()) {
        for (size_t k = 0; k < 3; ++k) {
            if (word.key == kKeys[k]) {
                if (words[k] != nullptr || !word.hasValue()) {
                    return false;
                }
                words[k] = &word;
            }
        }
    }
    uint32_t count = 0;
    if (MPCLI_ReadIdList(*words[0], "vlun_id", &para->vlunId, 1, &count, MPCLI_ID_VLUN) != 1 || count != 1) {
        return false;
    }
    return MPCLI_StartMigrationParaCheck(words[1]->value, words[2]->value, para);
}

// The text of a migration that did not start.
void printMigrationError(uint32_t ret, uint32_t vlunId)
{
    switch (ret) {
    case MPI_RET_VLUN_NOT_EXIST:
        MPCLI_Print("The VLUN whose ID is %u does not exist.\n", vlunId);
        break;
    case UIL_RET_NOT_MIGRATION:
        MPCLI_Print("The VLUN whose ID is %u is not a migrate lun.\n", vlunId);
        break;
    case UIL_RET_MIGRATE_MEMBERS:
        MPCLI_Print("The disk number of migrate lun is not enough.\n");
        break;
    case UIL_RET_MIGRATE_NO_PATH:
        MPCLI_Print("The direction device has no active path for The VLUN whose ID is %u.\n", vlunId);
        break;
    default:
        MPCLI_Print("Failed to execute the command due to internel errors.\n");
        break;
    }
}

}  // namespace

bool MPCLI_ShowDSLunByVLunInfo(const VLunInfo& vlun, bool verbose)
{
    UilAggreInfo aggre{};
    if (!readAggregation(vlun.vlunId, &aggre)) {
        return false;
    }
    UilFullCfg config{};
    if (verbose && !MPCLI_ReadVLunConfig(vlun.vlunId, vlun.lunWwn, vlun.arraySn, &config)) {
        return false;
    }
    UilDsInfo ds{};
    const bool dsRead = INTF_UIL_GetDSInfoStart(vlun.vlunId, &ds) == MPI_RET_SUCCESS;
    const MemberDisks members(aggre);
    MPCLI_PrintDSDetailInfo(vlun, members.deviceName(), dsRead ? &ds : nullptr);
    const bool whole = members.print(nullptr);
    if (verbose) {
        MPCLI_Print("Dualsite Primary Array SN : %s\n", config.szDsPrimary);
        MPCLI_Print("Dualsite WorkingMode : %s\n", config.uiDsMode != 0 ? kWithinPrimary : kBetweenArrays);
        MPCLI_Print("Dualsite Split Size : %s\n", splitSizeText(config.uiDsSplitSize).c_str());
    }
    MPCLI_PrintDash(MPCLI_DETAIL_WIDTH);
    return whole;
}

bool MPCLI_ShowMigrateLunByVLunInfo(const VLunInfo& vlun)
{
    UilAggreInfo aggre{};
    if (!readAggregation(vlun.vlunId, &aggre)) {
        return false;
    }
    UilMigrateInfo mig{};
    const bool migRead = INTF_UIL_GetMigrateInfoStart(vlun.vlunId, &mig) == MPI_RET_SUCCESS;
    const MemberDisks members(aggre);
    MPCLI_PrintMigrateDetailInfo(vlun, members.deviceName(), migRead ? &mig : nullptr);
    // The driver lists the source device first.
    static constexpr const char* kRoles[UIL_AGGRE_MAX_MEMBERS] = {"Source Device", "Target Device"};
    const bool whole = members.print(kRoles);
    MPCLI_PrintDash(MPCLI_DETAIL_WIDTH);
    return whole && migRead;
}

void MPCLI_PrintTypeMissMatch(uint32_t vlunId, const char* wanted)
{
    MPCLI_Print("The VLUN whose ID is %u is not a %s vlun.\n", vlunId, wanted);
    MPCLI_PrintDash(MPCLI_DETAIL_WIDTH);
}

uint8_t MPCLI_SetDualsite(const MPCLI_Command& command)
{
    if (command.size() >= 2 && command[1].raw.starts_with("workingmode")) {
        return MPCLI_SetDsMode(command);
    }
    if (command.size() >= 2 && command[1].raw.starts_with("split_size")) {
        return MPCLI_SetDsSplitSize(command);
    }
    return printUsage(kDualsiteUsage);
}

uint8_t MPCLI_StartMigration(const MPCLI_Command& command)
{
    MigrationPara para;
    if (!MPCLI_GetMigrationPara(command, &para)) {
        return printUsage(kMigrationUsage);
    }
    // What the driver would refuse for a missing or ordinary VLUN is
    // refused here, before anything is sent.
    {
        VLunInfo v;
        const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&v);
        if (INTF_UIL_GetVLunInfoStart(para.vlunId, &v) != MPI_RET_SUCCESS) {
            printMigrationError(MPI_RET_VLUN_NOT_EXIST, para.vlunId);
            return MPCLI_RESULT_FAIL;
        }
        if (v.type != UIL_VLUN_TYPE_MIGRATION) {
            printMigrationError(UIL_RET_NOT_MIGRATION, para.vlunId);
            return MPCLI_RESULT_FAIL;
        }
    }
    UilOperLogPara record{};
    const uint32_t ret =
        INTF_UIL_StartMigration(kSource, para.vlunId, para.targetPreferred, para.rollback, &record);
    const uint8_t result = ret == MPI_RET_SUCCESS ? MPCLI_RESULT_OK : MPCLI_RESULT_FAIL;
    if (result == MPCLI_RESULT_OK) {
        MPCLI_Print("Succeeded in executing the command.\n");
    } else {
        printMigrationError(ret, para.vlunId);
    }
    MPCLI_OperLog("start", command, UIL_OPER_START_MIGRATION, result, &record);
    return result;
}
