// Files that must survive: every replacement goes through a temporary file
// in the same directory that is synced, re-read and renamed over the old
// one, so a writer killed at any instant leaves the old or the new file.
// Also the node lookups on the open document and the driver sender.
#include <dirent.h>
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

constexpr const char kTempInfix[] = ".tmp.";
constexpr size_t kTempSuffixLen = 6;     // mkstemp's XXXXXX
constexpr size_t kMaxFileSize = 16 << 20;  // far beyond any real configuration

UilCfgSendFn g_pfUILCfgSend = nullptr;

std::string dirOf(const char* path)
{
    std::string_view p(path);
    size_t slash = p.rfind('/');
    if (slash == std::string_view::npos) {
        return ".";
    }
    return slash == 0 ? "/" : std::string(p.substr(0, slash));
}

std::string baseOf(const char* path)
{
    std::string_view p(path);
    size_t slash = p.rfind('/');
    return std::string(slash == std::string_view::npos ? p : p.substr(slash + 1));
}

bool writeAll(int fd, const std::string& bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

bool syncDirectory(const std::string& dir)
{
    UilFd fd(open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd.valid() && fsync(fd.get()) == 0;
}

// Removes the temporary file unless it was renamed into place.
class TempFile {
public:
    explicit TempFile(std::string name) : m_name(std::move(name)) {}
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile()
    {
        if (!m_kept) {
            (void)unlink(m_name.c_str());
        }
    }
    const char* name() const { return m_name.c_str(); }
    void keep() { m_kept = true; }

private:
    std::string m_name;
    bool m_kept = false;
};

bool writeTemp(int fd, const std::string& bytes, mode_t mode)
{
    if (!writeAll(fd, bytes) || fchmod(fd, mode) != 0 || fsync(fd) != 0) {
        return false;
    }
    return true;
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
    UilFd fd(open(path, O_RDONLY | O_CLOEXEC));
    if (!fd.valid()) {
        return false;
    }
    struct stat st {};
    if (fstat(fd.get(), &st) != 0) {
        return false;
    }
    if (!S_ISREG(st.st_mode) || static_cast<size_t>(st.st_size) > kMaxFileSize) {
        errno = EINVAL;
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
    std::string name = std::string(path) + kTempInfix + std::string(kTempSuffixLen, 'X');
    int raw = mkostemp(name.data(), O_CLOEXEC);
    if (raw < 0) {
        UIL_ERR("Create temporary file for %s failed: %s", path, std::strerror(errno));
        return false;
    }
    TempFile temp(name);
    UilFd fd(raw);
    if (!writeTemp(fd.get(), bytes, mode)) {
        UIL_ERR("Write temporary file %s failed: %s", temp.name(), std::strerror(errno));
        return false;
    }
    if (close(fd.release()) != 0) {
        UIL_ERR("Close temporary file %s failed: %s", temp.name(), std::strerror(errno));
        return false;
    }
    // What reached the disk must read back as a configuration document.
    UilXmlDoc check(xmlReadFile(temp.name(), nullptr, UIL_CFG_PARSE_OPTIONS));
    if (!UIL_CfgIsConfigDoc(check.get())) {
        UIL_ERR("Temporary file %s does not read back as a cfg document", temp.name());
        return false;
    }
    if (rename(temp.name(), path) != 0) {
        UIL_ERR("Rename %s to %s failed: %s", temp.name(), path, std::strerror(errno));
        return false;
    }
    temp.keep();
    if (!syncDirectory(dirOf(path))) {
        // The new file is in place; only its durability across a power cut is in doubt.
        UIL_ERR("Sync directory of %s failed: %s", path, std::strerror(errno));
    }
    return true;
}

void UIL_CfgRemoveStaleTemps(const char* path)
{
    std::string dir = dirOf(path);
    std::string prefix = baseOf(path) + kTempInfix;
    DIR* d = opendir(dir.c_str());
    if (d == nullptr) {
        return;
    }
    while (const dirent* entry = readdir(d)) {
        std::string_view entryName(entry->d_name);
        if (entryName.size() == prefix.size() + kTempSuffixLen && entryName.starts_with(prefix)) {
            std::string full = dir + "/" + std::string(entryName);
            if (unlink(full.c_str()) == 0) {
                UIL_TRACE(MPI_LOG_WARN, "Removed %s left by an interrupted save", full.c_str());
            }
        }
    }
    (void)closedir(d);
}

// ---------------------------------------------------------------------------
// Nodes.

void UIL_CfgDeleteNode(xmlNode* node)
{
    xmlUnlinkNode(node);
    xmlFreeNode(node);
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
    xmlNode* text = xmlNewText(UIL_XmlStr(value));
    if (text == nullptr) {
        return false;
    }
    if (xmlAddChild(node, text) == nullptr) {
        xmlFreeNode(text);
        return false;
    }
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
