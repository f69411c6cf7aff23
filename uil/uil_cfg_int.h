// Inside the configuration store: owners of the libxml2 objects, the open
// document, node lookup, the safe file writes and the driver sender. Only
// the uil_cfg*.cpp units include this.
#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "uil/uil_cfg.h"
#include "uil/uil_cfg_wire.h"
#include "uil/uil_file.h"

// ---------------------------------------------------------------------------
// How each field of the full configuration record is filled: the item it
// comes from, the field's place in UilFullCfg and the conversion.
enum class UilFullCfgConv : uint8_t {
    AcrossCtrl,  // u8: 1 when the number gives 0, else 0
    LbPolicy,    // char[16], left unchanged when the value does not fit
    U8,          // the number
    U32,         // the number
    DsMode,      // u32: 0 for "balance", else 1
    DsPrimary,   // char[24]: see UilFullCfg
};
struct UilFullCfgItem {
    const char* pszItem;
    size_t uiOffset;  // of the field in UilFullCfg
    UilFullCfgConv eConv;
};
inline constexpr size_t UIL_FULL_CFG_ITEM_COUNT = 32;
extern const std::array<UilFullCfgItem, UIL_FULL_CFG_ITEM_COUNT> UIL_sastFullCfgItems;

// ---------------------------------------------------------------------------
// Owners.
struct UilXmlDocFree {
    void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};
struct UilXPathCtxFree {
    void operator()(xmlXPathContext* ctx) const { xmlXPathFreeContext(ctx); }
};
struct UilXPathObjFree {
    void operator()(xmlXPathObject* obj) const { xmlXPathFreeObject(obj); }
};
struct UilXmlCharFree {
    void operator()(xmlChar* text) const { xmlFree(text); }
};
struct UilXmlNodeFree {
    void operator()(xmlNode* node) const { xmlFreeNode(node); }
};
using UilXmlDoc = std::unique_ptr<xmlDoc, UilXmlDocFree>;
using UilXPathCtx = std::unique_ptr<xmlXPathContext, UilXPathCtxFree>;
using UilXPathObj = std::unique_ptr<xmlXPathObject, UilXPathObjFree>;
using UilXmlText = std::unique_ptr<xmlChar, UilXmlCharFree>;
using UilXmlNode = std::unique_ptr<xmlNode, UilXmlNodeFree>;

inline const char* UIL_XmlName(const xmlNode* node)
{
    return node->name != nullptr ? reinterpret_cast<const char*>(node->name) : "";
}
inline const xmlChar* UIL_XmlStr(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

// Unlinks a node from the document and frees it with its subtree.
void UIL_CfgDeleteNode(xmlNode* node);

// ---------------------------------------------------------------------------
// The open document (null when none is open).

// UIL_CfgCloseFile without dropping the lock: a change whose save failed
// still holds it while it gives the driver the previous state back.
uint32_t UIL_CfgCloseKeepLock(bool bSave);
xmlDoc* UIL_CfgDoc();
xmlNode* UIL_CfgRoot();

// The first node `xpath` selects in the open document: 1024 with *node set;
// 1056 when nothing matches ("%s not exist in XML"); 1030 when the
// expression cannot be evaluated ("Query node set of %s from XML failed").
uint32_t UIL_CfgFindNode(const char* xpath, xmlNode** node);
// Evaluates `xpath` in `ctx`; null on an evaluation error.
UilXPathObj UIL_CfgEval(xmlXPathContext* ctx, const char* xpath);
// The nodes an XPath result holds (0 for none or a non-set result).
int UIL_CfgNodeCount(const xmlXPathObject* obj);

// The text of a node (xmlNodeGetContent); null when it has none.
UilXmlText UIL_CfgNodeText(const xmlNode* node);
// Replaces the node's children with one text node, taken literally.
bool UIL_CfgSetNodeText(xmlNode* node, const char* value);

// ---------------------------------------------------------------------------
// Files.

// Parse options: blank text nodes dropped, never the network, never
// entity substitution; problems reach the trace log, not the console.
inline constexpr int UIL_CFG_PARSE_OPTIONS = XML_PARSE_NONET | XML_PARSE_NOBLANKS | XML_PARSE_NOERROR |
                                            XML_PARSE_NOWARNING;
// Whether `doc` is a configuration document (root element cvcfg).
bool UIL_CfgIsConfigDoc(const xmlDoc* doc);
// The whole file; false when it cannot be read (errno kept).
bool UIL_CfgReadFile(const char* path, std::string* bytes);
// Replaces `path` atomically by `bytes` (UIL_ReplaceFile), once the
// temporary file reads back as a configuration document. On failure `path`
// is as it was.
bool UIL_CfgReplaceFile(const char* path, const std::string& bytes, mode_t mode);

// ---------------------------------------------------------------------------
// The driver.
uint32_t UIL_CfgSend(const UiaRequest& req, UiaPayload& payload);

// ---------------------------------------------------------------------------
// Section operations used by the section table.
uint32_t UIL_CfgParseCommon(xmlNode* section);
uint32_t UIL_CfgParseArrays(xmlNode* section);
uint32_t UIL_CfgParseLuns(xmlNode* section);

// Completes the changes of writers that died half-way (the intent
// journal); the caller holds the lock and has the document open for write,
// and has it open again afterwards.
void UIL_CfgCompleteDeadWriters();
