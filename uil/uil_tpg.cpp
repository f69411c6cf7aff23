// Controllers (target port groups): TPG requests, the controller lists of
// arrays, and controller naming.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"

static_assert(uil_wire::tpg_name::kName.len == UIL_TPG_NAME_LEN);

namespace {

constexpr const char kNoName[] = "-";

UilController* allocController()
{
    auto* controller = static_cast<UilController*>(UIL_ZMalloc(sizeof(UilController)));
    if (controller != nullptr) {
        MPI_ListInit(&controller->links);
        MPI_ListInit(&controller->paths);
    }
    return controller;
}

void freeController(UilController* controller)
{
    UIL_PathListFree(&controller->paths);
    std::free(controller);
}

void setText(char* out, size_t size, const char* text)
{
    if (size == 0) {
        return;
    }
    out[0] = '\0';
    (void)strncpy_s(out, size, text, std::min(std::strlen(text), size - 1));
}

}  // namespace

void UIL_ControllerListFree(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        MPI_ListInit(node);
        freeController(MPI_ListEntry<UilController>(node));
    }
}

uint32_t UIL_EnumerateTpgIdsStart(uint32_t arrayId, UilIdList** out)
{
    return UIL_EnumerateIds(uil_wire::kTpgIds, arrayId, out);
}
void UIL_EnumerateTpgIdsEnd(UilIdList* list) { UIL_IdListFree(list); }

uint32_t UIL_EnumerateTpgStart(uint32_t arrayId, uint32_t tpgId, UilTpgInfo** out)
{
    UIL_ASSERT(out != nullptr);
    *out = nullptr;
    auto* tpg = static_cast<UilTpgInfo*>(UIL_ZMalloc(sizeof(UilTpgInfo)));
    if (tpg == nullptr) {
        UIL_ERR("Allocate memory for ioctl tpg info fail");
        return MPI_RET_NO_MEMORY;
    }
    MPI_ScopeExit freeOnFailure([tpg] { UIL_EnumerateTpgEnd(tpg); });
    UiaPayload& payload = UIL_IdPayload(uil_wire::kTpgInfo, arrayId);
    payload.setU32(uil_wire::tpg_info::kTpgId, tpgId);
    uint32_t ret = UIL_RunIdListRequest(uil_wire::kTpgInfo, payload, &tpg->paths);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query tpg info by ioctl fail");
        return ret;
    }
    tpg->arrayId = arrayId;
    tpg->tpgId = tpgId;
    tpg->state = payload.u32(uil_wire::tpg_info::kState);
    tpg->remote = payload.u8(uil_wire::tpg_info::kRemote);
    freeOnFailure.dismiss();
    *out = tpg;
    return MPI_RET_SUCCESS;
}

void UIL_EnumerateTpgEnd(UilTpgInfo* tpg)
{
    if (tpg != nullptr) {
        UIL_IdListFree(tpg->paths);
        std::free(tpg);
    }
}

uint32_t UIL_ControllerLunCount(const MPI_ListNode* paths)
{
    UIL_ASSERT(paths != nullptr);
    if (MPI_ListEmpty(paths)) {
        return 0;
    }
    if (paths->next->next == paths) {  // a single path counts whatever its state
        return MPI_ListEntry<UilPathInfo>(paths->next)->lunCount;
    }
    bool anyAlive = false;
    uint32_t best = 0;
    uint32_t last = 0;
    for (const MPI_ListNode* node = paths->next; node != paths; node = node->next) {
        const UilPathInfo* path = MPI_ListEntry<UilPathInfo>(node);
        last = path->lunCount;
        if (std::strcmp(path->pathState, UIL_PATH_STATE_FAULT) != 0) {
            anyAlive = true;
            best = std::max(best, path->lunCount);
        }
    }
    return anyAlive ? best : last;
}

namespace {

uint32_t attachTpgPaths(const UilTpgInfo* tpg, UilController* controller, bool withLunCounts)
{
    for (uint32_t pathId : tpg->paths->view()) {
        auto* path = static_cast<UilPathInfo*>(UIL_ZMalloc(sizeof(UilPathInfo)));
        if (path == nullptr) {
            UIL_ERR("malloc for path info fail");
            return MPI_RET_NO_MEMORY;
        }
        MPI_ListInit(&path->links);
        if (INTF_UIL_GetPhyPathInfo(pathId, path) != MPI_RET_SUCCESS) {
            std::free(path);
            continue;
        }
        if (withLunCounts && UIL_CountIds(uil_wire::kPhyPathDiskIds, pathId, &path->lunCount) != MPI_RET_SUCCESS) {
            UIL_ERR("Count the luns of path {%u} fail", pathId);
        }
        MPI_ListAddTail(&path->links, &controller->paths);
    }
    controller->lunCount = UIL_ControllerLunCount(&controller->paths);
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t UIL_EnumeratePhyPathForTpg(const UilTpgInfo* tpg, UilController* controller)
{
    UIL_ASSERT(tpg != nullptr && controller != nullptr);
    return attachTpgPaths(tpg, controller, true);
}

uint32_t UIL_BuildControllerList(uint32_t arrayId, MPI_ListNode* head, bool withLunCounts)
{
    UIL_ASSERT(head != nullptr);
    MPI_ListInit(head);
    UilIdList* tpgIds = nullptr;
    uint32_t ret = UIL_EnumerateTpgIdsStart(arrayId, &tpgIds);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate Tpg's Ids fail");
        return ret;
    }
    MPI_Ended<UIL_EnumerateTpgIdsEnd> idsOwner(tpgIds);
    MPI_ScopeExit freeOnFailure([head] { UIL_ControllerListFree(head); });
    for (uint32_t tpgId : tpgIds->view()) {
        UilTpgInfo* tpg = nullptr;
        ret = UIL_EnumerateTpgStart(arrayId, tpgId, &tpg);
        if (ret == MPI_RET_NO_MEMORY) {
            return ret;
        }
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("Get Tpg info fail, tpg id {%u}", tpgId);
            continue;
        }
        MPI_Ended<UIL_EnumerateTpgEnd> tpgOwner(tpg);
        UilController* controller = allocController();
        if (controller == nullptr) {
            UIL_ERR("malloc for tpg info fail");
            return MPI_RET_NO_MEMORY;
        }
        controller->state = tpg->state;
        controller->tpgId = tpgId;
        controller->remote = tpg->remote;
        MPI_ListAddTail(&controller->links, head);
        ret = withLunCounts ? UIL_EnumeratePhyPathForTpg(tpg, controller) : attachTpgPaths(tpg, controller, false);
        if (ret != MPI_RET_SUCCESS) {
            return ret;
        }
    }
    freeOnFailure.dismiss();
    if (MPI_ListEmpty(head)) {
        UIL_ERR("Get no tpg info");
        return MPI_RET_NOT_FOUND;
    }
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_GetPhyTpgInfoStart(ArrayInfo* array)
{
    UIL_ASSERT(array != nullptr);
    return UIL_BuildControllerList(array->arrayId, &array->controllers, true);
}

void INTF_UIL_GetPhyTpgInfoEnd(ArrayInfo* array)
{
    UIL_ASSERT(array != nullptr);
    UIL_ControllerListFree(&array->controllers);
}

uint32_t INTF_UIL_GetTpgInfo(uint32_t arrayId, uint32_t tpgId, uint32_t* state)
{
    UIL_ASSERT(state != nullptr);
    UilTpgInfo* tpg = nullptr;
    uint32_t ret = UIL_EnumerateTpgStart(arrayId, tpgId, &tpg);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    MPI_Ended<UIL_EnumerateTpgEnd> owner(tpg);
    *state = tpg->state;
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_GetTpgName(uint32_t arrayId, uint32_t tpgId, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr && size > 0);
    out[0] = '\0';
    UiaPayload payload(uia_req::GetTpgName.size);
    payload.setU32(uil_wire::tpg_name::kArray, arrayId);
    payload.setU32(uil_wire::tpg_name::kTpg, tpgId);
    if (UIA_Send(uia_req::GetTpgName, payload) != MPI_RET_SUCCESS) {
        UIL_ERR("Querry tpg name info by ioctl fail, array id {%u}, tpg id {%u}", arrayId, tpgId);
        return 1;
    }
    payload.text(uil_wire::tpg_name::kName, out, size);
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_CheckTpgNameIfExist(uint32_t arrayId, const char* name, uint8_t* found, uint32_t* tpgId)
{
    UIL_ASSERT(name != nullptr && found != nullptr && tpgId != nullptr);
    *found = 0;
    UilIdList* ids = nullptr;
    uint32_t ret = UIL_EnumerateTpgIdsStart(arrayId, &ids);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate Tpg's Ids fail");
        return ret;
    }
    MPI_Ended<UIL_EnumerateTpgIdsEnd> owner(ids);
    for (uint32_t id : ids->view()) {
        char tpgName[UIL_CONTROLLER_NAME_SIZE];
        ret = INTF_UIL_GetTpgName(arrayId, id, tpgName, sizeof(tpgName));
        if (ret != MPI_RET_SUCCESS) {
            return ret;
        }
        if (tpgName[0] != '\0' && std::strcmp(tpgName, name) == 0) {
            *found = 1;
            *tpgId = id;
            return MPI_RET_SUCCESS;
        }
    }
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// Naming.

void UIL_FormatControllerName(uint32_t controllerId, const char* tpgName, uint32_t capability, char* out,
                              size_t size)
{
    UIL_ASSERT(tpgName != nullptr && out != nullptr && size > 0);
    out[0] = '\0';
    if (controllerId >= UIL_MAX_TPGS) {
        setText(out, size, kNoName);
    } else if (tpgName[0] != '\0') {
        setText(out, size, tpgName);
    } else {
        // Engine number and letter ("0A", "7B"), or the plain number; an ID
        // below the TPG limit has at most two digits, so no formatter is
        // needed (a VLUN listing names a controller on every row).
        const bool pair = (capability & UIL_CAP_PAIR_NAMING) != 0;
        char text[8] = {};
        char* end = std::to_chars(text, text + sizeof(text) - 2, pair ? controllerId / 2 : controllerId).ptr;
        if (pair) {
            *end = static_cast<char>('A' + (controllerId & 1));
        }
        setText(out, size, text);
    }
}

uint32_t UIL_strFormatControllerId(uint32_t arrayId, uint32_t controllerId, uint32_t capability, char* out,
                                   size_t size)
{
    UIL_ASSERT(out != nullptr && size > 0);
    out[0] = '\0';
    if (controllerId >= UIL_MAX_TPGS) {
        UIL_ERR("Contriller ID {%u} is unnormal!", controllerId);
        setText(out, size, kNoName);
        return MPI_RET_SUCCESS;
    }
    char name[UIL_CONTROLLER_NAME_SIZE];
    if (INTF_UIL_GetTpgName(arrayId, controllerId, name, sizeof(name)) != MPI_RET_SUCCESS) {
        UIL_ERR("Get tpg number information failed for array id %u, tpg id %u", arrayId, controllerId);
        setText(out, size, kNoName);
        return 1;
    }
    UIL_FormatControllerName(controllerId, name, capability, out, size);
    return MPI_RET_SUCCESS;
}

void UIL_ConvertControllerIdToPrintName(uint32_t controllerId, uint32_t capability, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr && size > 0);
    if (controllerId >= UIL_MAX_TPGS) {
        setText(out, size, kNoName);
        return;
    }
    const auto& table =
        (capability & UIL_CAP_PAIR_NAMING) != 0 ? g_astUILPairControllerConvert : g_astUILControllerConvert;
    setText(out, size, table[controllerId].text);
}

uint32_t UilControllerNamer::format(uint32_t arrayId, uint32_t controllerId, uint32_t capability, char* out,
                                    size_t size)
{
    UIL_ASSERT(out != nullptr && size > 0);
    if (controllerId >= UIL_MAX_TPGS) {
        return UIL_strFormatControllerId(arrayId, controllerId, capability, out, size);
    }
    uint64_t key = (static_cast<uint64_t>(arrayId) << 32) | controllerId;
    auto it = m_names.find(key);
    if (it == m_names.end()) {
        Entry entry{};
        entry.ret = INTF_UIL_GetTpgName(arrayId, controllerId, entry.name, sizeof(entry.name));
        if (entry.ret != MPI_RET_SUCCESS) {
            UIL_ERR("Get tpg number information failed for array id %u, tpg id %u", arrayId, controllerId);
        }
        it = m_names.emplace(key, entry).first;
    }
    out[0] = '\0';
    if (it->second.ret != MPI_RET_SUCCESS) {
        setText(out, size, kNoName);
        return it->second.ret;
    }
    UIL_FormatControllerName(controllerId, it->second.name, capability, out, size);
    return MPI_RET_SUCCESS;
}
