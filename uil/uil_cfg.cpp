// The configuration store's files: the path names, the inter-process lock,
// and opening and closing the one document a process works on.
#include <fcntl.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "bounded/bounded.h"
#include "mpi/mpi_root.h"
#include "uil/uil_cfg_int.h"

namespace {

constexpr unsigned kLockRetrySeconds = 2;

char g_szUILCfgFilePath[UIL_CFG_PATH_BUF_LEN];
char g_szUILCfgBakFilePath[UIL_CFG_PATH_BUF_LEN];
char g_szUILCfgLockFilePath[UIL_CFG_PATH_BUF_LEN];

// The lock belongs to the process that took it: a child made by fork
// inherits the descriptor but not the lock.
UilFd g_stUILCfgLockFd;
pid_t g_iUILCfgLockPid = -1;

// The open document. A read access remembers the bytes it parsed, so that
// rewriting it can never overwrite a newer file.
struct OpenDoc {
    UilXmlDoc doc;
    xmlNode* root = nullptr;
    bool forWrite = false;
    std::string bytes;
};
OpenDoc g_stUILCfgDoc;

bool lockHeld()
{
    if (g_stUILCfgLockFd.valid() && g_iUILCfgLockPid != getpid()) {
        g_stUILCfgLockFd.reset();  // inherited, not ours; closing it cannot drop the parent's lock
        g_iUILCfgLockPid = -1;
    }
    return g_stUILCfgLockFd.valid();
}

// The program's own name must fit 128 bytes; the root has room of its own.
uint32_t resolvePath(const char* absPath, char* out, const char* what)
{
    size_t rootLen = std::strlen(MPI_Root());
    if (MPI_RootTooLong() || std::strlen(absPath) + 1 > UIL_CFG_PATH_LEN ||
        rootLen + std::strlen(absPath) + 1 > UIL_CFG_PATH_BUF_LEN) {
        UIL_ERR("Get cfg %s path failed", what);
        out[0] = '\0';
        return MPI_RET_BUFFER_SMALL;
    }
    MPI_RootPath(absPath, out, UIL_CFG_PATH_BUF_LEN);
    return MPI_RET_SUCCESS;
}

void traceXmlGeneric(void* /*ctx*/, const char* fmt, ...)
{
    char text[512];
    va_list args;
    va_start(args, fmt);
    (void)vsnprintf_s(text, sizeof(text), sizeof(text) - 1, fmt, args);
    va_end(args);
    MPI_TraceRaw(MPI_MOD_UIL, MPI_LOG_ERROR, "libxml2", 0, "%s", text);
}

void traceXmlError(void* /*ctx*/, xmlError* error)
{
    if (error != nullptr && error->message != nullptr) {
        MPI_TraceRaw(MPI_MOD_UIL, MPI_LOG_ERROR, "libxml2", error->line, "%s", error->message);
    }
}

void dropDocument()
{
    g_stUILCfgDoc.doc.reset();
    g_stUILCfgDoc.root = nullptr;
    g_stUILCfgDoc.forWrite = false;
    g_stUILCfgDoc.bytes.clear();
}

uint32_t lockWithOneRetry()
{
    if (UIL_CfgCheckFileAlreadyOpen() == MPI_RET_SUCCESS) {
        return MPI_RET_SUCCESS;
    }
    UIL_ERR("user_cfg.xml cannot be opened, and will retry for once");
    (void)sleep(kLockRetrySeconds);
    if (UIL_CfgCheckFileAlreadyOpen() == MPI_RET_SUCCESS) {
        return MPI_RET_SUCCESS;
    }
    UIL_ERR("user_cfg.xml cannot be opened");
    return MPI_RET_FAIL;
}

mode_t documentMode()
{
    struct stat st {};
    if (stat(g_szUILCfgFilePath, &st) == 0) {
        return st.st_mode & 07777;
    }
    return 0600;
}

// A read access is rewritten only under the lock and only while the file
// still holds what was read: a newer file is never replaced by an older view.
bool readViewIsCurrent()
{
    if (UIL_CfgCheckFileAlreadyOpen() != MPI_RET_SUCCESS) {
        UIL_ERR("Cfg file %s is locked by another process, not rewritten", g_szUILCfgFilePath);
        return false;
    }
    std::string now;
    if (!UIL_CfgReadFile(g_szUILCfgFilePath, &now) || now != g_stUILCfgDoc.bytes) {
        UIL_ERR("Cfg file %s changed since it was read, not rewritten", g_szUILCfgFilePath);
        return false;
    }
    return true;
}

uint32_t saveDocument()
{
    if (g_stUILCfgDoc.doc == nullptr) {
        UIL_ERR("No cfg file is open to save");
        return MPI_RET_FAIL;
    }
    if (!g_stUILCfgDoc.forWrite && !readViewIsCurrent()) {
        return MPI_RET_SUCCESS;
    }
    xmlChar* mem = nullptr;
    int size = 0;
    xmlDocDumpFormatMemory(g_stUILCfgDoc.doc.get(), &mem, &size, 1);
    UilXmlText text(mem);
    if (text == nullptr || size <= 0) {
        UIL_ERR("Serialise xml file %s failed", g_szUILCfgFilePath);
        return MPI_RET_FAIL;
    }
    std::string bytes(reinterpret_cast<const char*>(text.get()), static_cast<size_t>(size));
    if (!UIL_CfgReplaceFile(g_szUILCfgFilePath, bytes, documentMode())) {
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

bool fileIsConfigDoc(const char* path)
{
    std::string bytes;
    if (!UIL_CfgReadFile(path, &bytes)) {
        return false;
    }
    UilXmlDoc doc(xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), path, nullptr, UIL_CFG_PARSE_OPTIONS));
    return UIL_CfgIsConfigDoc(doc.get());
}

// Saving replaces the document atomically, so a failed save leaves the
// previous document in place, which is what the backup holds or newer.
// Only a document that no longer parses is replaced by a backup that does.
void restoreFromBackup()
{
    if (fileIsConfigDoc(g_szUILCfgFilePath)) {
        return;
    }
    std::string bak;
    if (!UIL_CfgReadFile(g_szUILCfgBakFilePath, &bak) || !UIL_CfgReplaceFile(g_szUILCfgFilePath, bak, 0600)) {
        UIL_ERR("Restore xml file failed");
    }
}

}  // namespace

// ---------------------------------------------------------------------------
// Paths.

uint32_t UIL_CfgInit()
{
    xmlInitParser();
    xmlSetGenericErrorFunc(nullptr, traceXmlGeneric);
    xmlSetStructuredErrorFunc(nullptr, traceXmlError);
    uint32_t rc = resolvePath(UIL_CFG_FILE_PATH, g_szUILCfgFilePath, "file");
    if (rc == MPI_RET_SUCCESS) {
        rc = resolvePath(UIL_CFG_BAK_FILE_PATH, g_szUILCfgBakFilePath, "bak file");
    }
    if (rc == MPI_RET_SUCCESS) {
        rc = resolvePath(UIL_CFG_LOCK_FILE_PATH, g_szUILCfgLockFilePath, "lock file");
    }
    return rc;
}

void UIL_CfgFini()
{
    dropDocument();
    (void)UIL_CfgUnlockFile();
    g_szUILCfgFilePath[0] = '\0';
    g_szUILCfgBakFilePath[0] = '\0';
    g_szUILCfgLockFilePath[0] = '\0';
}

const char* UIL_CfgFilePath() { return g_szUILCfgFilePath; }

// ---------------------------------------------------------------------------
// Lock.

uint32_t UIL_LockFile(int fd)
{
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0;
    lock.l_len = 0;
    if (fcntl(fd, F_SETLK, &lock) == 0) {
        return MPI_RET_SUCCESS;
    }
    if (errno != EACCES && errno != EAGAIN) {
        UIL_ERR("can't lock %s: %s", g_szUILCfgLockFilePath, std::strerror(errno));
    }
    return MPI_RET_FAIL;
}

uint32_t UIL_UnlockFile(int fd)
{
    struct flock lock {};
    lock.l_type = F_UNLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0;
    lock.l_len = 0;
    if (fcntl(fd, F_SETLK, &lock) != 0) {
        UIL_ERR("can't unlock %s: %s", g_szUILCfgLockFilePath, std::strerror(errno));
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

uint32_t UIL_CfgCheckFileAlreadyOpen()
{
    if (lockHeld()) {
        return MPI_RET_SUCCESS;  // a second open of the file would lose the lock on its close
    }
    if (g_szUILCfgLockFilePath[0] == '\0') {
        UIL_ERR("Cfg lock file path is not set");
        return MPI_RET_FAIL;
    }
    UilFd fd = UIL_OpenRegular(g_szUILCfgLockFilePath, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (!fd.valid()) {
        UIL_ERR("can't open %s: %s", g_szUILCfgLockFilePath, std::strerror(errno));
        return MPI_RET_FAIL;
    }
    if (UIL_LockFile(fd.get()) != MPI_RET_SUCCESS) {
        return MPI_RET_FAIL;
    }
    char pid[32];
    int len = snprintf_s(pid, sizeof(pid), sizeof(pid) - 1, "%ld", static_cast<long>(getpid()));
    if (ftruncate(fd.get(), 0) == 0 && len > 0) {
        (void)!pwrite(fd.get(), pid, static_cast<size_t>(len) + 1, 0);
    }
    g_stUILCfgLockFd = std::move(fd);
    g_iUILCfgLockPid = getpid();
    return MPI_RET_SUCCESS;
}

uint32_t UIL_CfgUnlockFile()
{
    if (!lockHeld()) {
        return MPI_RET_SUCCESS;
    }
    uint32_t rc = UIL_UnlockFile(g_stUILCfgLockFd.get());
    g_stUILCfgLockFd.reset();
    g_iUILCfgLockPid = -1;
    return rc;
}

// ---------------------------------------------------------------------------
// Open and close.

xmlDoc* UIL_CfgDoc() { return g_stUILCfgDoc.doc.get(); }
xmlNode* UIL_CfgRoot() { return g_stUILCfgDoc.root; }

uint32_t UIL_CfgOpenFile(bool bForWrite)
{
    if (g_stUILCfgDoc.doc != nullptr) {
        UIL_ERR("Cfg file %s is still open, the earlier document is dropped", g_szUILCfgFilePath);
        dropDocument();
    }
    if (bForWrite) {
        if (lockWithOneRetry() != MPI_RET_SUCCESS) {
            return MPI_RET_FAIL;
        }
        UIL_RemoveStaleTemps(g_szUILCfgFilePath);
        UIL_RemoveStaleTemps(g_szUILCfgBakFilePath);
    }
    // One read serves both the backup and the parse, so the backup is
    // exactly the document this access works on.
    std::string bytes;
    if (!UIL_CfgReadFile(g_szUILCfgFilePath, &bytes)) {
        UIL_ERR("Load XML cfg file %s failed (%s)", g_szUILCfgFilePath, std::strerror(errno));
        return UIL_RET_CFG_LOAD_FAIL;
    }
    UilXmlDoc doc(xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), g_szUILCfgFilePath, nullptr,
                                UIL_CFG_PARSE_OPTIONS));
    if (doc == nullptr) {
        UIL_ERR("Load XML cfg file %s failed", g_szUILCfgFilePath);
        return UIL_RET_CFG_LOAD_FAIL;
    }
    xmlNode* root = xmlDocGetRootElement(doc.get());
    if (root == nullptr) {
        UIL_ERR("Get root node of cfg file %s failed", g_szUILCfgFilePath);
        return MPI_RET_FAIL;
    }
    if (std::strcmp(UIL_XmlName(root), UIL_CFG_ROOT_NAME) != 0) {
        UIL_ERR("Root node %s isn't right, it should be %s", UIL_XmlName(root), UIL_CFG_ROOT_NAME);
        return MPI_RET_FAIL;
    }
    // A document that is not a configuration never replaces the backup.
    if (bForWrite && !UIL_CfgReplaceFile(g_szUILCfgBakFilePath, bytes, 0600)) {
        UIL_ERR("Backup xml cfg file failed");
        return MPI_RET_FAIL;
    }
    g_stUILCfgDoc.doc = std::move(doc);
    g_stUILCfgDoc.root = root;
    g_stUILCfgDoc.forWrite = bForWrite;
    g_stUILCfgDoc.bytes = std::move(bytes);
    return MPI_RET_SUCCESS;
}

uint32_t UIL_CfgCloseKeepLock(bool bSave)
{
    uint32_t rc = bSave ? saveDocument() : MPI_RET_SUCCESS;
    dropDocument();
    if (rc != MPI_RET_SUCCESS) {
        restoreFromBackup();
    }
    return rc;
}

uint32_t UIL_CfgCloseFile(bool bSave)
{
    uint32_t rc = UIL_CfgCloseKeepLock(bSave);
    if (bSave) {
        (void)UIL_CfgUnlockFile();
    }
    return rc;
}
