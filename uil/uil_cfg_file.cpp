// Reading the configuration files and replacing them safely (a replacement
// must read back as a configuration document before it is renamed into
// place); the node lookups on the open document and the driver sender.
#include <fcntl.h>
#include <libxml/parser.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include "uia/uia.h"
#include "uil/uil_cfg_int.h"

namespace {

constexpr size_t kMaxFileSize = 16 << 20;  // far beyond any real configuration

UilCfgSendFn g_pfUILCfgSend = nullptr;

// What reached the disk must read back as a configuration document.
bool readsBackAsConfig(const char* tempName)
{
    UilXmlDoc check(xmlReadFile(tempName, nullptr, UIL_CFG_PARSE_OPTIONS));
    return UIL_CfgIsConfigDoc(check.get());
}

}  // namespace

bool UIL_CfgIsConfigDoc(const xmlDoc* doc)
{
    if (doc == nullptr) {
        return false;
    }
    const xmlNode* root = xmlDocGetRootElement(const_cast<xmlDoc*>(doc));
    return root != nullptr && std::strcmp(UIL_XmlName(root), UIL_CFG_ROOT_NAME) == 0;
}

bool UIL_CfgReadFile(const char* path, std::string* bytes)
{
    bytes->clear();
    UilFd fd = UIL_OpenRegular(path, O_RDONLY);
    if (!fd.valid()) {
        return false;
    }
    struct stat st {};
    if (fstat(fd.get(), &st) != 0) {
        return false;
    }
    if (static_cast<size_t>(st.st_size) > kMaxFileSize) {
        UIL_FileErrorNote(path, "too large for a configuration file");
        errno = EFBIG;
        return false;
    }
    char chunk[4096];
    for (;;) {
        ssize_t n = read(fd.get(), chunk, sizeof(chunk));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return false;
        }
        if (n == 0) {
            return true;
        }
        bytes->append(chunk, static_cast<size_t>(n));
        if (bytes->size() > kMaxFileSize) {
            errno = EFBIG;
            return false;
        }
    }
}

bool UIL_CfgReplaceFile(const char* path, const std::string& bytes, mode_t mode)
{
    return UIL_ReplaceFile(path, bytes, mode, readsBackAsConfig);
}

// ---------------------------------------------------------------------------
// Nodes.

void UIL_CfgDeleteNode(xmlNode* node)
{
    xmlUnlinkNode(node);
    UilXmlNode owned(node);
}

UilXPathObj UIL_CfgEval(xmlXPathContext* ctx, const char* xpath)
{
    return UilXPathObj(xmlXPathEvalExpression(UIL_XmlStr(xpath), ctx));
}

int UIL_CfgNodeCount(const xmlXPathObject* obj)
{
    if (obj == nullptr || obj->type != XPATH_NODESET || obj->nodesetval == nullptr) {
        return 0;
    }
    return obj->nodesetval->nodeNr;
}

uint32_t UIL_CfgFindNode(const char* xpath, xmlNode** node)
{
    UIL_ASSERT(xpath != nullptr && node != nullptr);
    *node = nullptr;
    if (UIL_CfgDoc() == nullptr) {
        UIL_ERR("No cfg file is open");
        return MPI_RET_FAIL;
    }
    UilXPathCtx ctx(xmlXPathNewContext(UIL_CfgDoc()));
    if (ctx == nullptr) {
        UIL_ERR("New XPath context failed");
        return MPI_RET_FAIL;
    }
    UilXPathObj result = UIL_CfgEval(ctx.get(), xpath);
    if (result == nullptr) {
        UIL_ERR("Query node set of %s from XML failed", xpath);
        return MPI_RET_FAIL;
    }
    if (UIL_CfgNodeCount(result.get()) == 0) {
        UIL_TRACE(MPI_LOG_INFO, "%s not exist in XML", xpath);
        return UIL_RET_CFG_NOT_FOUND;
    }
    *node = result->nodesetval->nodeTab[0];
    return MPI_RET_SUCCESS;
}

UilXmlText UIL_CfgNodeText(const xmlNode* node) { return UilXmlText(xmlNodeGetContent(node)); }

bool UIL_CfgSetNodeText(xmlNode* node, const char* value)
{
    // Not xmlNodeSetContent: it would read "&...;" in the value as entity
    // references, and the value is plain text.
    while (node->children != nullptr) {
        UIL_CfgDeleteNode(node->children);
    }
    if (value[0] == '\0') {
        return true;
    }
    UilXmlNode text(xmlNewText(UIL_XmlStr(value)));
    if (text == nullptr || xmlAddChild(node, text.get()) == nullptr) {
        return false;
    }
    (void)text.release();  // the node owns its text now
    return true;
}

// ---------------------------------------------------------------------------
// The driver.

UilCfgSendFn UIL_CfgSetDriverSender(UilCfgSendFn sender)
{
    UilCfgSendFn old = g_pfUILCfgSend;
    g_pfUILCfgSend = sender;
    return old;
}

uint32_t UIL_CfgSend(const UiaRequest& req, UiaPayload& payload)
{
    return g_pfUILCfgSend != nullptr ? g_pfUILCfgSend(req, payload) : UIA_Send(req, payload);
}
