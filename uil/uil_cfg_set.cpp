// Changing the configuration: the driver messages, setting a value in the
// open document, the whole changes (lock, set, tell the driver, save) and
// deletion. The driver always hears of a change before the file holds it,
// and a change the driver refuses is never saved.
#include <cstring>
#include <string>
#include <vector>

#include "bounded/bounded.h"
#include "mpi/mpi_scope.h"
#include "uil/uil.h"
#include "uil/uil_cfg_int.h"
#include "uil/uil_journal.h"
#include "uil/uil_oper.h"

namespace {

const char* orEmpty(const char* text) { return text != nullptr ? text : ""; }

void putItem(UiaPayload& p, size_t index, const char* name, const char* value)
{
    size_t base = uil_cfg_wire::kNotifyItems + uil_cfg_wire::kItemSize * index;
    p.setText(base + uil_cfg_wire::kItemName, UIL_CFG_ITEM_NAME_LEN, name);
    p.setText(base + uil_cfg_wire::kItemValue, UIL_CFG_ITEM_VALUE_LEN, value);
}

UiaPayload notifyPayload(uint32_t sectionType, const char* instance, size_t count)
{
    UiaPayload p(uil_cfg_wire::NotifySize(count));
    p.setU32(uil_cfg_wire::kNotifyType, sectionType);
    p.setText(uil_cfg_wire::kNotifyInstance, uil_cfg_wire::kInstanceLen, orEmpty(instance));
    p.setU32(uil_cfg_wire::kNotifyCount, static_cast<uint32_t>(count));
    return p;
}

// The child element of `parent` named exactly `name`, or null.
xmlNode* childElement(xmlNode* parent, const char* name)
{
    for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && std::strcmp(UIL_XmlName(child), name) == 0) {
            return child;
        }
    }
    return nullptr;
}

// Creates the elements of `path` that are missing, from the root down.
uint32_t createNodePath(uint32_t sectionType, const UilCfgNodePath& path, const char* item)
{
    xmlNode* node = UIL_CfgRoot();
    for (uint32_t i = 0; i < path.uiDepth; ++i) {
        xmlNode* child = childElement(node, path.apszNames[i]);
        if (child == nullptr) {
            child = xmlNewChild(node, nullptr, UIL_XmlStr(path.apszNames[i]), nullptr);
        }
        if (child == nullptr) {
            UIL_ERR("New child node %s under %s failed", path.apszNames[i], UIL_XmlName(node));
            UIL_ERR("Cfg node <%u,%s> not exist", sectionType, item);
            return MPI_RET_FAIL;
        }
        node = child;
    }
    return MPI_RET_SUCCESS;
}

uint32_t setItemText(const char* xpath, const char* value)
{
    xmlNode* node = nullptr;
    if (UIL_CfgFindNode(xpath, &node) != MPI_RET_SUCCESS) {
        UIL_ERR("Query node of %s from XML failed", xpath);
        return MPI_RET_FAIL;
    }
    UilXmlText old = UIL_CfgNodeText(node);
    if (old == nullptr) {
        UIL_ERR("Get content of node %s failed", xpath);
        return MPI_RET_FAIL;
    }
    if (std::strcmp(reinterpret_cast<const char*>(old.get()), value) == 0) {
        UIL_TRACE(MPI_LOG_INFO, "Try to set the same cfg value %s to node %s", value, xpath);
        return MPI_RET_SUCCESS;
    }
    return UIL_CfgSetNodeText(node, value) ? MPI_RET_SUCCESS : MPI_RET_FAIL;
}

// What a whole change or a deletion is about, for its messages: "common
// cfg", "array (SN) cfg", "lun (WWN) cfg".
struct Level {
    uint32_t type;
    const char* section;  // "array", "lun"
};
constexpr Level kCommon{UIL_CFG_SECTION_COMMON, "common"};
constexpr Level kArray{UIL_CFG_SECTION_ARRAY, "array"};
constexpr Level kLun{UIL_CFG_SECTION_LUN, "lun"};

// A change ends, whatever its outcome, with the document dropped and the
// lock released: a refused change must not keep other writers out.
auto endOfChange()
{
    return MPI_ScopeExit([] {
        (void)UIL_CfgCloseFile(false);
        (void)UIL_CfgUnlockFile();
    });
}

// The valid items stored under `node` (the node itself when it is an
// item): what the driver holds for it, to be told again if need be.
std::vector<UilUserCfgItem> storedItems(xmlNode* node, uint32_t sectionType, bool instance)
{
    std::vector<UilUserCfgItem> items;
    uint64_t seen = 0;
    xmlNode* first = instance ? node->children : node;
    for (xmlNode* n = first; n != nullptr; n = instance ? n->next : nullptr) {
        UilUserCfgItem item{};
        if (UIL_CfgParseOneItem(n, sectionType, &seen, &item) == MPI_RET_SUCCESS) {
            items.push_back(item);
        }
    }
    return items;
}

// The driver accepted a change that could not be saved: it is given back
// what the file still holds (the previous items, or their absence), so
// that driver and file agree again. The cause is kept for the shell.
bool giveBackToDriver(uint32_t sectionType, const char* key, const char* item, std::vector<UilUserCfgItem>& before)
{
    uint32_t rc = MPI_RET_SUCCESS;
    if (before.empty()) {
        rc = UIL_CfgDelFromDriver(sectionType, key, item);
    } else {
        MPI_ListNode list;
        MPI_ListInit(&list);
        for (UilUserCfgItem& i : before) {
            MPI_ListAddTail(&i.links, &list);
        }
        rc = UIL_CfgNotifySectionToDriver(&list, sectionType, key);
    }
    std::string cause = INTF_UIL_LastFileError();
    size_t prefix = std::strlen(UIL_CfgFilePath()) + 2;  // "<path>: "
    cause = cause.size() > prefix ? cause.substr(prefix) : "cannot be saved";
    if (rc == MPI_RET_SUCCESS) {
        UIL_ERR("Cfg file not saved, driver given back the previous value of <%u,%s>", sectionType, orEmpty(item));
        cause += "; the change was not kept";
    } else {
        UIL_ERR("Cfg file not saved, driver keeps the new value of <%u,%s>", sectionType, orEmpty(item));
        cause += "; the driver could not be given back the previous value";
    }
    UIL_FileErrorNote(UIL_CfgFilePath(), cause.c_str());
    return rc == MPI_RET_SUCCESS;
}

// What the open document holds at `item` of the level, before a change.
std::vector<UilUserCfgItem> itemBefore(uint32_t sectionType, const char* key, const char* item)
{
    const UilCfgParseStep* step = UIL_CfgGetParseStep(sectionType);
    char xpath[UIL_CFG_XPATH_LEN];
    xmlNode* node = nullptr;
    if (step == nullptr || step->pfBuildItemXPath(key, item, xpath, sizeof(xpath)) != MPI_RET_SUCCESS ||
        UIL_CfgFindNode(xpath, &node) != MPI_RET_SUCCESS) {
        return {};
    }
    return storedItems(node, sectionType, false);
}

struct What {
    char text[UIL_CFG_XPATH_LEN];
    What(const Level& level, const char* key)
    {
        if (level.type == UIL_CFG_SECTION_COMMON) {
            (void)snprintf_s(text, sizeof(text), sizeof(text) - 1, "common cfg");
        } else {
            (void)snprintf_s(text, sizeof(text), sizeof(text) - 1, "%s (%s) cfg", level.section, key);
        }
    }
};

// Finds and removes the item (or with no item the instance): 1024 removed,
// 1056 absent, 1030 the expression failed. `removed` receives the valid
// items that were there.
uint32_t removeNode(uint32_t sectionType, const char* key, const char* item, std::vector<UilUserCfgItem>* removed)
{
    const UilCfgParseStep* step = UIL_CfgGetParseStep(sectionType);
    char xpath[UIL_CFG_XPATH_LEN];
    if (step == nullptr || step->pfBuildItemXPath(key, item, xpath, sizeof(xpath)) != MPI_RET_SUCCESS) {
        return MPI_RET_FAIL;
    }
    xmlNode* node = nullptr;
    uint32_t rc = UIL_CfgFindNode(xpath, &node);
    if (rc == MPI_RET_SUCCESS) {
        *removed = storedItems(node, sectionType, item == nullptr);
        UIL_CfgDeleteNode(node);
    }
    return rc == MPI_RET_SUCCESS || rc == UIL_RET_CFG_NOT_FOUND ? rc : MPI_RET_FAIL;
}

// ---------------------------------------------------------------------------
// Completing the changes of writers that died.
//
// A record left in phase "sent" belongs to the writer that held the lock
// last (it died holding it, and nobody else could have changed anything
// since), so its value is the newest word on that item. It is rolled
// forward rather than back: the driver may already have taken it, and the
// operator asked for it; sending it again is harmless (the driver takes
// a value it already holds as it is), and then the file is saved and the
// line written. Were it rolled back instead, a driver that had taken the
// change would have to be told the old value, a second change of its own.
// A record in phase "saved" only owes its line; one in phase "logging"
// owes its numbered line unless the log has it already.

std::string deadWriterCommand(const UilIntent& intent, const char** verb)
{
    const Level& level = intent.sectionType == UIL_CFG_SECTION_ARRAY ? kArray
                         : intent.sectionType == UIL_CFG_SECTION_LUN ? kLun
                                                                     : kCommon;
    std::string where = intent.sectionType == UIL_CFG_SECTION_COMMON
                            ? std::string()
                            : std::string(" ") + level.section + " " + intent.key;
    if (intent.remove) {
        *verb = "delete";
        return where + (intent.item.empty() ? "" : " " + intent.item);
    }
    *verb = "set";
    return where + " " + intent.item + "=" + intent.value;
}

// Re-applies a dead writer's change to the open document and the driver
// and saves it; the document is open again afterwards either way. When the
// driver will not take it, it is given what the file holds.
bool reapply(const UilIntent& intent)
{
    const char* key = intent.key.c_str();
    const char* item = intent.item.empty() ? nullptr : intent.item.c_str();
    std::vector<UilUserCfgItem> before = itemBefore(intent.sectionType, key, item != nullptr ? item : "");
    bool ok = false;
    if (intent.remove) {
        std::vector<UilUserCfgItem> removed;
        ok = removeNode(intent.sectionType, key, item, &removed) != MPI_RET_FAIL &&
             UIL_CfgDelFromDriver(intent.sectionType, key, item) == MPI_RET_SUCCESS;
    } else {
        ok = UIL_SetConfig(intent.sectionType, key, item, intent.value.c_str()) == MPI_RET_SUCCESS &&
             UIL_CfgNotifyItemToDriver(intent.sectionType, key, item, intent.value.c_str()) == MPI_RET_SUCCESS;
    }
    ok = UIL_CfgCloseKeepLock(ok) == MPI_RET_SUCCESS && ok;
    if (!ok) {
        giveBackToDriver(intent.sectionType, key, item, before);
    }
    (void)UIL_CfgOpenFile(true);
    return ok;
}

}  // namespace

void UIL_CfgCompleteDeadWriters()
{
    std::vector<std::string> notices;
    for (UilOrphanIntent& orphan : UIL_JournalOrphans(&notices)) {
        const UilIntent& intent = orphan.intent;
        uint32_t rc = MPI_RET_SUCCESS;
        if (intent.phase == UilIntentPhase::Logging) {
            rc = UIL_OperLogFinishLine(intent.serial, intent.line);
        } else {
            bool ok = intent.phase == UilIntentPhase::Saved || reapply(intent);
            UIL_ERR("Completed the change <%u,%s> of a writer that died: %s", intent.sectionType,
                    intent.item.c_str(), ok ? "applied" : "not applied");
            const char* verb = "set";
            std::string command = deadWriterCommand(intent, &verb);
            rc = UIL_OperLogForDeadWriter(verb, command.c_str(), ok ? 1 : 0);
        }
        // Without its line the record stays for the next writer to finish.
        if (rc == MPI_RET_SUCCESS || rc == UIL_OPERLOG_SWITCHED_OFF) {
            UIL_JournalRemove(orphan.path);
        }
    }
    UIL_FileErrorClear();
}

namespace {

// The change about to be sent, recorded first.
bool recordIntent(const Level& level, const char* key, const char* item, const char* value)
{
    UilIntent intent;
    intent.sectionType = level.type;
    intent.key = key;
    intent.item = item != nullptr ? item : "";
    intent.remove = value == nullptr;
    intent.value = value != nullptr ? value : "";
    return UIL_JournalBegin(intent);
}

uint32_t setWhole(const Level& level, const char* key, const char* item, const char* value, bool notify)
{
    UIL_ASSERT(item != nullptr && value != nullptr);
    What what(level, key);
    UIL_FileErrorClear();
    auto end = endOfChange();
    uint32_t rc = UIL_CfgOpenFile(true);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Init XML cfg file failed");
        return rc;
    }
    UIL_CfgCompleteDeadWriters();
    std::vector<UilUserCfgItem> before = itemBefore(level.type, key, item);
    if (UIL_SetConfig(level.type, key, item, value) != MPI_RET_SUCCESS) {
        UIL_ERR("Set %s <%s=%s> failed", what.text, item, value);
        return MPI_RET_FAIL;
    }
    // A change the file alone holds needs no record: nothing else can
    // disagree with the file.
    if (notify && !recordIntent(level, key, item, value)) {
        return MPI_RET_FAIL;
    }
    if (notify && UIL_CfgNotifyItemToDriver(level.type, key, item, value) != MPI_RET_SUCCESS) {
        UIL_ERR("Notify %s <%s=%s> to driver failed", what.text, item, value);
        UIL_JournalDrop();
        return MPI_RET_FAIL;
    }
    if (UIL_CfgCloseKeepLock(true) != MPI_RET_SUCCESS) {
        UIL_ERR("Save xml file failed");
        if (notify && giveBackToDriver(level.type, key, item, before)) {
            UIL_JournalDrop();
        }
        return MPI_RET_FAIL;
    }
    if (notify) {
        UIL_JournalSaved();
    }
    return MPI_RET_SUCCESS;
}

uint32_t deleteConfig(const Level& level, uint32_t objectId, const char* key, const char* item,
                      UilOperLogPara* objectRecord)
{
    UIL_ASSERT(key != nullptr && objectRecord != nullptr);
    (void)memset_s(objectRecord, sizeof(*objectRecord), 0, sizeof(*objectRecord));
    objectRecord->uiObjType = level.type;
    objectRecord->uiObjId = objectId;

    UIL_FileErrorClear();
    auto end = endOfChange();
    uint32_t rc = UIL_CfgOpenFile(true);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Init XML cfg file failed");
        return rc;
    }
    UIL_CfgCompleteDeadWriters();
    std::vector<UilUserCfgItem> removed;
    rc = removeNode(level.type, key, item, &removed);
    if (rc == UIL_RET_CFG_NOT_FOUND) {
        UIL_TRACE(MPI_LOG_INFO, "%s cfg (%s) is not found", level.section, key);
        return MPI_RET_SUCCESS;
    }
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Delete %s cfg (%s) failed", level.section, key);
        return MPI_RET_FAIL;
    }
    if (!recordIntent(level, key, item, nullptr)) {
        return MPI_RET_FAIL;
    }
    if (UIL_CfgDelFromDriver(level.type, key, item) != MPI_RET_SUCCESS) {
        UIL_ERR("Notify driver to delete %s cfg (%s) failed", level.section, key);
        UIL_JournalDrop();
        return MPI_RET_FAIL;
    }
    if (UIL_CfgCloseKeepLock(true) != MPI_RET_SUCCESS) {
        UIL_ERR("Save xml file failed");
        if (removed.empty() || giveBackToDriver(level.type, key, item, removed)) {
            UIL_JournalDrop();
        }
        return MPI_RET_FAIL;
    }
    UIL_JournalSaved();
    return MPI_RET_SUCCESS;
}

}  // namespace

// ---------------------------------------------------------------------------
// Driver messages.

uint32_t UIL_CfgNotifyItemToDriver(uint32_t sectionType, const char* instance, const char* item, const char* value)
{
    UIL_ASSERT(item != nullptr && value != nullptr);
    UiaPayload p = notifyPayload(sectionType, instance, 1);
    putItem(p, 0, item, value);
    uint32_t rc = UIL_CfgSend(uia_req::CfgNotify, p);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Send set cfg <%s = %s> to driver failed", item, value);
        return rc;
    }
    UIL_TRACE(MPI_LOG_INFO, "Send set cfg <%s = %s> to driver succ", item, value);
    return MPI_RET_SUCCESS;
}

uint32_t UIL_CfgNotifySectionToDriver(MPI_ListNode* itemList, uint32_t sectionType, const char* instance)
{
    UIL_ASSERT(itemList != nullptr);
    size_t count = 0;
    for (MPI_ListNode* n = itemList->next; n != itemList; n = n->next) {
        ++count;
    }
    if (count == 0) {
        UIL_TRACE(MPI_LOG_INFO, "The cfg to notify driver is empty");
        return MPI_RET_SUCCESS;
    }
    UiaPayload p = notifyPayload(sectionType, instance, count);
    size_t index = 0;
    for (MPI_ListNode* n = itemList->next; n != itemList; n = n->next) {
        const UilUserCfgItem* item = MPI_ListEntry<UilUserCfgItem>(n);
        putItem(p, index++, item->szName, item->szValue);
    }
    uint32_t rc = UIL_CfgSend(uia_req::CfgNotify, p);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Send cfg type(%u, %s) to driver failed", sectionType, orEmpty(instance));
        return rc;
    }
    UIL_TRACE(MPI_LOG_INFO, "Send cfg type(%u, %s) to driver succ", sectionType, orEmpty(instance));
    return MPI_RET_SUCCESS;
}

uint32_t UIL_CfgDelFromDriver(uint32_t sectionType, const char* instance, const char* item)
{
    UiaPayload p(uil_cfg_wire::kDelSize);
    p.setU32(uil_cfg_wire::kDelType, sectionType);
    p.setText(uil_cfg_wire::kDelInstance, uil_cfg_wire::kInstanceLen, orEmpty(instance));
    p.setText(uil_cfg_wire::kDelItem, UIL_CFG_ITEM_NAME_LEN, orEmpty(item));
    uint32_t rc = UIL_CfgSend(uia_req::CfgDelete, p);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Notify driver to delete <%u,%s> failed", sectionType, orEmpty(item));
        return rc;
    }
    UIL_TRACE(MPI_LOG_INFO, "Notify driver to delete <%u,%s> succ", sectionType, orEmpty(item));
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// Setting.

uint32_t UIL_SetConfig(uint32_t sectionType, const char* instance, const char* item, const char* value)
{
    UIL_ASSERT(item != nullptr && value != nullptr);
    const UilCfgItemDef* def = UIL_CfgGetItemDef(item, sectionType);
    if (def == nullptr) {
        UIL_ERR("Cfg node %s isn't the valid item, or not belong to common region", item);
        return MPI_RET_FAIL;
    }
    if (!UIL_CfgCheckItemValue(value, def)) {
        UIL_ERR("%s isn't valid for item %s", value, item);
        return MPI_RET_FAIL;
    }
    if (UIL_CfgRoot() == nullptr) {
        UIL_ERR("No cfg file is open");
        return MPI_RET_FAIL;
    }
    const UilCfgParseStep* step = UIL_CfgGetParseStep(sectionType);
    UilCfgNodePath path{};
    if (step->pfBuildNodePath(orEmpty(instance), item, &path) != MPI_RET_SUCCESS) {
        UIL_ERR("Build XML node path for type(%u) failed", sectionType);
        return MPI_RET_FAIL;
    }
    uint32_t rc = createNodePath(sectionType, path, item);
    step->pfFreeNodePath(&path);
    if (rc != MPI_RET_SUCCESS) {
        return MPI_RET_FAIL;
    }
    char xpath[UIL_CFG_XPATH_LEN];
    rc = step->pfBuildItemXPath(orEmpty(instance), item, xpath, sizeof(xpath));
    if (rc == MPI_RET_SUCCESS) {
        rc = setItemText(xpath, value);
    }
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Set <%u,%s> value to %s failed", sectionType, item, value);
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

uint32_t UIL_SetCommonConfig(const char* item, const char* value) { return setWhole(kCommon, "", item, value, true); }

uint32_t UIL_SetArrayConfig(const char* serialNumber, const char* item, const char* value)
{
    UIL_ASSERT(serialNumber != nullptr);
    return setWhole(kArray, serialNumber, item, value, true);
}

uint32_t UIL_SetLunConfig(const char* wwn, const char* item, const char* value)
{
    UIL_ASSERT(wwn != nullptr);
    return setWhole(kLun, wwn, item, value, true);
}

uint32_t UIL_SetArrayConfigFile(const char* serialNumber, const char* item, const char* value)
{
    UIL_ASSERT(serialNumber != nullptr);
    return setWhole(kArray, serialNumber, item, value, false);
}

// ---------------------------------------------------------------------------
// Deleting.

uint32_t INTF_UIL_DelArrayConfig(const char* source, uint32_t arrayId, const char* serialNumber, const char* item,
                                 UilOperLogPara* objectRecord)
{
    UIL_ASSERT(source != nullptr);
    return deleteConfig(kArray, arrayId, serialNumber, item, objectRecord);
}

uint32_t INTF_UIL_DelLunConfig(const char* source, uint32_t vlunId, const char* wwn, const char* item,
                               UilOperLogPara* objectRecord)
{
    UIL_ASSERT(source != nullptr);
    return deleteConfig(kLun, vlunId, wwn, item, objectRecord);
}
