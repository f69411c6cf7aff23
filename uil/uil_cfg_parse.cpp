// Start-up parse and upgrade merge. The parse cleans the document of
// everything the driver must not be told (duplicate sections and items,
// unknown nodes, invalid values, excess instances), pushes the rest to the
// driver section by section and saves the cleaned document. The merge adds
// to an older document the common items it lacks, with their defaults.
#include <libxml/parser.h>

#include <cstdlib>
#include <cstring>

#include "bounded/bounded.h"
#include "uil/uil_cfg_int.h"

namespace {

void freeItems(MPI_ListNode* list)
{
    while (!MPI_ListEmpty(list)) {
        MPI_ListNode* n = list->next;
        MPI_ListDelete(n);
        std::free(MPI_ListEntry<UilUserCfgItem>(n));
    }
}

struct InstanceSection {
    uint32_t type;
    const char* prefix;  // of the instance elements: "array", "lun"
    const char* title;   // "Array", "Lun" at the start of a message
};
constexpr InstanceSection kArrays{UIL_CFG_SECTION_ARRAY, "array", "Array"};
constexpr InstanceSection kLuns{UIL_CFG_SECTION_LUN, "lun", "Lun"};

// At most 128 instance elements survive; invalid children count towards
// the limit as well.
uint32_t parseInstances(xmlNode* section, const InstanceSection& kind)
{
    UIL_ASSERT(section != nullptr);
    size_t prefixLen = std::strlen(kind.prefix);
    uint32_t count = 0;
    xmlNode* next = nullptr;
    for (xmlNode* child = section->children; child != nullptr; child = next) {
        next = child->next;
        if (++count > UIL_CFG_MAX_INSTANCES) {
            UIL_ERR("The %s instance count exceed limit, delete exceeded instance", kind.prefix);
            UIL_CfgDeleteNode(child);
            continue;
        }
        const char* name = UIL_XmlName(child);
        if (child->type != XML_ELEMENT_NODE || std::strncmp(name, kind.prefix, prefixLen) != 0) {
            UIL_ERR("%s node name (%s) invalid, delete it", kind.title, name);
            UIL_CfgDeleteNode(child);
            continue;
        }
        const char* instance = name + prefixLen;
        uint32_t rc = UIL_CfgParseSection(child, kind.type, instance);
        if (rc != MPI_RET_SUCCESS) {
            UIL_ERR("Parse instance(%s) of %s cfg failed", instance, kind.prefix);
            return rc;
        }
        UIL_TRACE(MPI_LOG_INFO, "Instance(%s) of %s cfg notified to driver", instance, kind.prefix);
    }
    UIL_TRACE(MPI_LOG_INFO, "All instances of %s cfg have been notified to driver", kind.prefix);
    return MPI_RET_SUCCESS;
}

// Walks the section table over the open document.
uint32_t parseSections(xmlXPathContext* ctx)
{
    uint32_t rc = MPI_RET_SUCCESS;
    for (const UilCfgParseStep& step : UIL_sastUserCfgParseSteps) {
        UilXPathObj found = UIL_CfgEval(ctx, step.pszXPath);
        if (found == nullptr) {
            UIL_ERR("Search %s in XML failed", step.pszXPath);
            continue;
        }
        int count = UIL_CfgNodeCount(found.get());
        if (count == 0) {
            UIL_TRACE(MPI_LOG_INFO, "There is no %s in XML", step.pszXPath);
            continue;
        }
        for (int i = 1; i < count; ++i) {
            UIL_CfgDeleteNode(found->nodesetval->nodeTab[i]);  // the first section wins
        }
        rc = step.pfParse(found->nodesetval->nodeTab[0]);
        if (rc != MPI_RET_SUCCESS) {
            UIL_ERR("Parse XML file abort at step %s", step.pszXPath);
            break;
        }
    }
    return rc;
}

xmlNode* childElement(xmlNode* parent, const char* name)
{
    for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && std::strcmp(UIL_XmlName(child), name) == 0) {
            return child;
        }
    }
    return nullptr;
}

// A new element `name` holding `text`; null (reported) when it cannot be made.
UilXmlNode newItemElement(const char* name, const char* text)
{
    UilXmlNode node(xmlNewNode(nullptr, UIL_XmlStr(name)));
    if (node == nullptr) {
        xmlGenericError(xmlGenericErrorContext, "New Node fail.\n");
        return nullptr;
    }
    UilXmlNode content(xmlNewText(UIL_XmlStr(text)));
    if (content == nullptr) {
        xmlGenericError(xmlGenericErrorContext, "New text fail.\n");
        return nullptr;
    }
    if (xmlAddChild(node.get(), content.get()) == nullptr) {
        xmlGenericError(xmlGenericErrorContext, "Add child text fail.\n");
        return nullptr;
    }
    (void)content.release();  // the node owns its text now
    return node;
}

// The section mask is not consulted: whatever is invalid for common is
// removed by the next start-up parse.
bool addMissingCommonItems(xmlNode* common)
{
    bool allAdded = true;
    for (const UilCfgItemDef& row : UIL_sastUserCfgItems) {
        if (childElement(common, row.pszName) != nullptr) {
            continue;
        }
        UIL_TRACE(MPI_LOG_INFO, "The new configuration %s is not exsit in the older version.", row.pszName);
        UilXmlNode node = newItemElement(row.pszName, row.pszDefault);
        if (node == nullptr) {
            UIL_ERR("Old user xml initialization fail.");
            allAdded = false;
            continue;
        }
        if (xmlAddChild(common, node.get()) == nullptr) {
            UIL_ERR("Add user xml new child node fail.");
            allAdded = false;
            continue;
        }
        (void)node.release();  // now owned by the document
    }
    return allAdded;
}

xmlNode* findMergeCommon()
{
    char xpath[32];
    (void)snprintf_s(xpath, sizeof(xpath), sizeof(xpath) - 1, "/cvcfg/%s", "common");
    UilXPathCtx ctx(xmlXPathNewContext(UIL_CfgDoc()));
    if (ctx == nullptr) {
        UIL_ERR("New XPath context failed.");
        return nullptr;
    }
    UilXPathObj found = UIL_CfgEval(ctx.get(), xpath);
    if (found == nullptr) {
        UIL_ERR("Search %s in XML failed", xpath);
        return nullptr;
    }
    if (UIL_CfgNodeCount(found.get()) == 0) {
        UIL_ERR("There is no %s in XML", xpath);
        return nullptr;
    }
    return found->nodesetval->nodeTab[0];
}

}  // namespace

uint32_t UIL_CfgParseCommon(xmlNode* section) { return UIL_CfgParseSection(section, UIL_CFG_SECTION_COMMON, ""); }

uint32_t UIL_CfgParseArrays(xmlNode* section) { return parseInstances(section, kArrays); }

uint32_t UIL_CfgParseLuns(xmlNode* section) { return parseInstances(section, kLuns); }

uint32_t UIL_CfgParseOneItem(xmlNode* node, uint32_t sectionType, uint64_t* seenMask, UilUserCfgItem* item)
{
    UIL_ASSERT(node != nullptr && seenMask != nullptr && item != nullptr);
    const char* name = UIL_XmlName(node);
    const UilCfgItemDef* def = node->type == XML_ELEMENT_NODE ? UIL_CfgGetItemDef(name, sectionType) : nullptr;
    if (def == nullptr) {
        UIL_ERR("Cfg node %s isn't the valid item, or not belong to type %u", name, sectionType);
        return UIL_RET_CFG_INVALID_ITEM;
    }
    if ((*seenMask & def->ullItemBit) != 0) {
        UIL_ERR("Cfg node %s duplicate", name);
        return UIL_RET_CFG_INVALID_ITEM;
    }
    UilXmlText text = UIL_CfgNodeText(node);
    if (text == nullptr) {
        UIL_ERR("Cfg node %s no content", name);
        return UIL_RET_CFG_INVALID_ITEM;
    }
    const char* value = reinterpret_cast<const char*>(text.get());
    if (!UIL_CfgCheckItemValue(value, def)) {
        UIL_ERR("The value %s of cfg node %s isn't valid", value, name);
        return UIL_RET_CFG_INVALID_ITEM;
    }
    (void)strcpy_s(item->szName, sizeof(item->szName), def->pszName);
    (void)strcpy_s(item->szValue, sizeof(item->szValue), value);
    *seenMask |= def->ullItemBit;
    return MPI_RET_SUCCESS;
}

uint32_t UIL_CfgParseSection(xmlNode* element, uint32_t sectionType, const char* instance)
{
    UIL_ASSERT(element != nullptr && instance != nullptr);
    MPI_ListNode items;
    MPI_ListInit(&items);
    uint64_t seen = 0;
    xmlNode* next = nullptr;
    for (xmlNode* child = element->children; child != nullptr; child = next) {
        next = child->next;
        auto* item = static_cast<UilUserCfgItem*>(UIL_ZMalloc(sizeof(UilUserCfgItem)));
        if (item == nullptr) {
            freeItems(&items);
            return MPI_RET_FAIL;
        }
        if (UIL_CfgParseOneItem(child, sectionType, &seen, item) == MPI_RET_SUCCESS) {
            MPI_ListAddTail(&item->links, &items);
        } else {
            std::free(item);
            UIL_CfgDeleteNode(child);
        }
    }
    uint32_t rc = UIL_CfgNotifySectionToDriver(&items, sectionType, instance);
    freeItems(&items);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Notify user cfgs to driver failed");
    }
    return rc;
}

uint32_t INTF_UIL_CfgParse()
{
    uint32_t rc = UIL_CfgOpenFile(true);
    if (rc != MPI_RET_SUCCESS) {
        UIL_ERR("Init XML cfg file failed");
        return rc;
    }
    UIL_CfgCompleteDeadWriters();
    {
        UilXPathCtx ctx(xmlXPathNewContext(UIL_CfgDoc()));
        if (ctx == nullptr) {
            UIL_ERR("New XPath context failed");
            (void)UIL_CfgCloseFile(false);
            (void)UIL_CfgUnlockFile();
            return MPI_RET_FAIL;
        }
        rc = parseSections(ctx.get());
    }
    // Saved also after an abort, so that what was deleted on the way is gone.
    uint32_t saved = UIL_CfgCloseFile(true);
    return rc != MPI_RET_SUCCESS ? rc : saved;
}

uint32_t INTF_UIL_MergeUserCfgXml()
{
    if (UIL_CfgOpenFile(true) != MPI_RET_SUCCESS) {
        UIL_ERR("Open xml file (%s) failed.", UIL_CfgFilePath());
        return MPI_RET_FAIL;
    }
    UIL_CfgCompleteDeadWriters();
    bool merged = false;
    xmlNode* common = findMergeCommon();
    if (common == nullptr) {
        UIL_ERR("Get R8 old xml common node failed.");
    } else {
        merged = addMissingCommonItems(common);
    }
    uint32_t saved = UIL_CfgCloseFile(true);
    if (!merged || saved != MPI_RET_SUCCESS) {
        UIL_ERR("Merge new cfg to old xml failed.");
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}
