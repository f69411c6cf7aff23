// The driver parameter file: the parameter tables, the value check, the
// reading and safe rewriting of the file, and its common keys.
#include "uil/uil_drvcfg.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "mpi/mpi_root.h"
#include "uil/uil_drvcfg_int.h"
#include "uil/uil_textfile.h"

namespace {

constexpr UilParamDef number(const char* key, int32_t def, int32_t minimum, int32_t maximum)
{
    return UilParamDef{key, def, nullptr, UIL_PARAM_NUMBER, minimum, maximum, {}, 0, 0, 1};
}

constexpr UilParamDef text(const char* key, const char* def, std::array<const char*, UIL_PARAM_MAX_ALLOWED> allowed,
                           uint32_t allowedCount, uint32_t maxLength, int32_t defaultNumber = 0)
{
    return UilParamDef{key, defaultNumber, def, UIL_PARAM_TEXT, 0, 0, allowed, allowedCount, maxLength, 1};
}

constexpr std::array<const char*, UIL_PARAM_MAX_ALLOWED> kAny{};
constexpr std::array<const char*, UIL_PARAM_MAX_ALLOWED> kAutoManual{"auto", "manual", "disable"};

}  // namespace

const std::array<UilParamDef, 34> g_astUILCommonParam = {{
    number("version", 2, 2, 65535),
    number("max_usi_threads", 6, 1, 16),
    number("usi_step_size", 3, 1, 256),
    text("vlun_vendor_id", "copy", kAny, 0, 8),
    text("vlun_product_id", "copy", kAny, 0, 16),
    text("vlun_revision_id", "copy", kAny, 0, 4),
    number("non_vlun_cmd_stack_size", 120, 128, 65535),
    number("vlun_cmd_stack_size", 120, 1024, 65535),
    number("disk_timeout", 120, 0, 65535),
    number("max_qdepth_per_disk", 1024, 16, 8192),
    number("max_busy_retries", 30, 0, 128),
    number("busy_retry_delay", 10, 1, 300),
    number("ping_delay", 20, 1, 120),
    number("failback_interval", 60, 10, 360),
    number("failover_interval", 60, 10, 360),
    text("default_failback", "auto", kAutoManual, 3, 64),
    text("default_failover", "auto", kAutoManual, 3, 64),
    text("cluster_support", "disable", {"enable", "disable"}, 2, 64),
    text("log_disk", "disable", kAny, 0, 64),
    number("vlun_attach_interval", 10, 1, 360),
    number("vlun_detach_interval", 10, 1, 360),
    number("path_discovery_interval", 10, 1, 360),
    number("cmd_array_timeout", 1800, 1, 3600),
    number("cmd_tpg_timeout", 600, 1, 3600),
    text("lb_controller", "off", {"0", "1"}, 2, 64),
    text("default_loadbalance", "round-robin", {"disable", "round-robin", "min-queue-depth", "min-task"}, 4, 64),
    text("lun_trespass", "on", {"on", "off"}, 3, 64),
    number("path_failback_time", 600, 0, 1200),
    number("holdon_timeout", 600, 0, 600),
    number("max_cmd_retries", 15, 0, 128),
    number("cmd_retry_delay", 5, 1, 120),
    text("pr_key", nullptr, kAny, 0, 64, 1234),
    number("timezone_offset", 0, -1440, 1440),
    number("lb_min_io", 1, 1, 1024),
}};

const std::array<UilParamDef, 4> g_astUILVendorParam = {{
    text(UIL_VENDOR_KEY_RULER, "Ruler_XMP_stub", kAny, 0, UIL_RULER_NAME_LEN),
    text(UIL_VENDOR_KEY_VENDOR, "XMP", kAny, 0, UIL_VENDOR_ID_LEN),
    text(UIL_VENDOR_KEY_PRODUCT, "VIRTUAL-DISK", kAny, 0, UIL_PRODUCT_ID_LEN),
    text(UIL_VENDOR_KEY_DRIVER, UIL_VENDOR_DEFAULT_DRIVER, kAny, 0, UIL_VENDOR_DRIVER_LEN),
}};

// ---------------------------------------------------------------------------
// Definitions and the value check.

namespace {

template <size_t N>
const UilParamDef* findIn(const std::array<UilParamDef, N>& table, const char* key)
{
    if (key == nullptr) {
        return nullptr;
    }
    for (const UilParamDef& row : table) {
        if (std::strcmp(row.key, key) == 0) {
            return &row;
        }
    }
    return nullptr;
}

bool textValid(const UilParamDef& def, const char* value)
{
    size_t len = std::strlen(value);
    if (len > def.maxLength) {
        UIL_ERR("The len of the value is beyond the upper limit=%u", def.maxLength);
        return false;
    }
    if (def.allowedCount == 0) {
        return true;
    }
    // The value's own length decides: a prefix of an allowed text passes.
    for (uint32_t i = 0; i < def.allowedCount && i < UIL_PARAM_MAX_ALLOWED; ++i) {
        if (def.allowed[i] != nullptr && std::strncmp(value, def.allowed[i], len) == 0) {
            return true;
        }
    }
    return false;
}

bool numberValid(const UilParamDef& def, const char* value)
{
    int32_t n = 0;
    if (!UIL_IsNum(value, &n)) {
        UIL_ERR("The value %s isn't digital", value);
        return false;
    }
    if (n < def.minimum || n > def.maximum) {
        UIL_ERR("The checked value=%d ,The vaild value should in [%d , %d]", n, def.minimum, def.maximum);
        return false;
    }
    return true;
}

}  // namespace

const UilParamDef* UIL_FindParam(const char* key) { return findIn(g_astUILCommonParam, key); }

const UilParamDef* INTF_UIL_GetParam(const char* key) { return UIL_FindParam(key); }

const UilParamDef* UIL_FindVendorParam(const char* key) { return findIn(g_astUILVendorParam, key); }

bool UIL_IsNum(const char* text, int32_t* value)
{
    if (text == nullptr) {
        return false;
    }
    bool negative = text[0] == '-';
    std::string_view digits(text + (negative ? 1 : 0));
    uint32_t magnitude = 0;
    uint32_t limit = negative ? 2147483648u : static_cast<uint32_t>(INT32_MAX);
    if (digits.size() > 10 || MPI_ParseU32(digits, 0, limit, &magnitude) != MPI_Num::Ok) {
        return false;
    }
    if (value != nullptr) {
        *value = static_cast<int32_t>(negative ? -static_cast<int64_t>(magnitude) : static_cast<int64_t>(magnitude));
    }
    return true;
}

uint32_t INTF_UIL_IsParamValueValid(const UilParamDef* def, const char* value)
{
    if (def == nullptr || value == nullptr) {
        return 0;
    }
    uint32_t type = def->type;
    if (type == UIL_PARAM_NUMBER_OR_TEXT) {
        type = UIL_IsNum(value, nullptr) ? UIL_PARAM_NUMBER : UIL_PARAM_TEXT;
    }
    switch (type) {
    case UIL_PARAM_NUMBER:
        return numberValid(*def, value) ? 1 : 0;
    case UIL_PARAM_TEXT:
        return textValid(*def, value) ? 1 : 0;
    default:
        return 0;
    }
}

uint32_t UIL_GetParamDefaultValue(const UilParamDef* def, char* out, size_t size)
{
    UIL_ASSERT(def != nullptr && out != nullptr && size > 0);
    int written = 0;
    if (def->type == UIL_PARAM_NUMBER) {
        written = snprintf_s(out, size, size - 1, "%d", def->defaultNumber);
    } else if (def->defaultText != nullptr) {
        written = snprintf_s(out, size, size - 1, "%s", def->defaultText);
    } else {
        UIL_ERR("The key %s has no default value", def->key);
        return MPI_RET_FAIL;
    }
    return written < 0 ? MPI_RET_BUFFER_SMALL : MPI_RET_SUCCESS;
}

uint32_t UIL_CfgLineFilter(char* line, uint32_t mode)
{
    UIL_ASSERT(line != nullptr);
    char* out = line;
    for (const char* in = line; *in != '\0' && *in != '#'; ++in) {
        auto c = static_cast<unsigned char>(*in);
        bool keep = c >= 33 && c != 127 && c != ';';
        if (c == ' ' || c == '"') {
            keep = mode == 1;
        }
        if (keep) {
            *out++ = static_cast<char>(c);
        }
    }
    *out = '\0';
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// The file.

namespace uil_drvcfg {

namespace {

std::string g_confPath;
std::string g_bakPath;

void splitLines(CfgText* text)
{
    text->lines.clear();
    std::string_view all(text->bytes);
    text->endsWithNewline = !all.empty() && all.back() == '\n';
    while (!all.empty()) {
        size_t nl = all.find('\n');
        text->lines.push_back(all.substr(0, nl));
        all = nl == std::string_view::npos ? std::string_view() : all.substr(nl + 1);
    }
}

// The value of a filtered `key=value` line when its key token is a prefix
// of `key` (an empty token names no key).
const char* matchKey(char* filtered, const char* key)
{
    char* eq = std::strchr(filtered, '=');
    if (eq == nullptr || eq == filtered) {
        return nullptr;
    }
    *eq = '\0';
    bool match = std::strncmp(filtered, key, std::strlen(filtered)) == 0;
    return match ? eq + 1 : nullptr;
}

// What reached the disk must be exactly what was meant to.
std::string_view g_expected;
bool readsBackAsWritten(const char* tempName)
{
    std::string bytes;
    return UIL_ReadRegular(tempName, UIL_DRVCFG_MAX_SIZE, &bytes) == UilOpenResult::Ok && bytes == g_expected;
}

bool replaceFile(const char* path, std::string_view bytes, mode_t mode)
{
    g_expected = bytes;
    bool ok = UIL_ReplaceFile(path, bytes, mode, readsBackAsWritten);
    g_expected = {};
    return ok;
}

bool fileSize(const char* path, uint64_t* size)
{
    struct stat st {};
    if (stat(path, &st) != 0) {
        UIL_ERR("Fail to get file %s size !", path);
        return false;
    }
    *size = static_cast<uint64_t>(st.st_size);
    return true;
}

}  // namespace

uint32_t loadCfg(const char* path, CfgText* text)
{
    UilOpenResult result = UIL_ReadRegular(path, UIL_DRVCFG_MAX_SIZE, &text->bytes);
    if (result != UilOpenResult::Ok) {
        UIL_ERR("%s: Fail to open file %s!", __func__, path);
        return UIL_RET_DRVCFG_NO_FILE;
    }
    struct stat st {};
    if (stat(path, &st) == 0) {
        text->mode = st.st_mode & 07777;
    }
    splitLines(text);
    return MPI_RET_SUCCESS;
}

// One line in a 512-byte buffer, filtered; false for a line too long.
bool filteredLine(std::string_view line, uint32_t mode, char (&buf)[UIL_DRVCFG_LINE_BUF])
{
    if (line.size() >= UIL_DRVCFG_LINE_BUF) {
        return false;
    }
    std::memcpy(buf, line.data(), line.size());
    buf[line.size()] = '\0';
    (void)UIL_CfgLineFilter(buf, mode);
    return true;
}

// The file as a change starts from: an empty file is first restored from
// a non-empty backup.
uint32_t loadForChange(CfgText* text)
{
    const char* path = UIL_GetConfFileNamePath();
    const char* bak = UIL_GetBakConfFileNamePath();
    UIL_RemoveStaleTemps(path);
    UIL_RemoveStaleTemps(bak);
    uint32_t ret = loadCfg(path, text);
    if (ret != MPI_RET_SUCCESS || UIL_IsNeedCopyBakFileToSourceFile(path, bak) == 0) {
        return ret;
    }
    UIL_TRACE(MPI_LOG_WARN, "Copy bak file %s to empty file %s !", bak, path);
    CfgText backup;
    if (loadCfg(bak, &backup) != MPI_RET_SUCCESS || !replaceFile(path, backup.bytes, text->mode)) {
        UIL_ERR("Fail copy bak file %s to empty file %s !", bak, path);
        UIL_ERR(" Fail to process empty config file %s ", path);
        return MPI_RET_FAIL;
    }
    backup.mode = text->mode;
    *text = std::move(backup);
    splitLines(text);  // the views must point into the moved bytes
    return MPI_RET_SUCCESS;
}

// Saves a change: the old content becomes the backup, then the new content
// replaces the file. When either step fails the file is as it was.
uint32_t saveChange(const CfgText& old, const std::string& bytes)
{
    const char* path = UIL_GetConfFileNamePath();
    const char* bak = UIL_GetBakConfFileNamePath();
    if (!replaceFile(bak, old.bytes, old.mode)) {
        UIL_ERR(" Fail to copy file from %s to %s!", path, bak);
        UIL_ERR(" Fail to backup file %s and modify it!", path);
        return MPI_RET_FAIL;
    }
    if (!replaceFile(path, bytes, old.mode)) {
        UIL_ERR(" Fail to backup file %s and modify it!", path);
        return MPI_RET_FAIL;
    }
    return MPI_RET_SUCCESS;
}

void appendLine(std::string* out, const CfgText& text, size_t index)
{
    out->append(text.lines[index]);
    if (index + 1 < text.lines.size() || text.endsWithNewline) {
        out->push_back('\n');
    }
}

}  // namespace uil_drvcfg

using namespace uil_drvcfg;

const char* UIL_GetConfFileNamePath()
{
    if (g_confPath.empty()) {
        g_confPath = MPI_HostPath(UIL_DRVCFG_PATH);
    }
    return g_confPath.c_str();
}

const char* UIL_GetBakConfFileNamePath()
{
    if (g_bakPath.empty()) {
        g_bakPath = MPI_HostPath(UIL_DRVCFG_BAK_PATH);
    }
    return g_bakPath.c_str();
}

uint32_t UIL_IsNeedCopyBakFileToSourceFile(const char* file, const char* backup)
{
    UIL_ASSERT(file != nullptr && backup != nullptr);
    uint64_t fileBytes = 0;
    uint64_t backupBytes = 0;
    if (!fileSize(file, &fileBytes) || !fileSize(backup, &backupBytes)) {
        return 0;
    }
    return fileBytes == 0 && backupBytes > 0 ? 1 : 0;
}

// ---------------------------------------------------------------------------
// Common keys.

uint32_t UIL_GetCommonParamValueFromCfg(const UilParamDef* def, char* out, size_t size)
{
    UIL_ASSERT(def != nullptr && out != nullptr && size > 0);
    CfgText text;
    uint32_t ret = loadCfg(UIL_GetConfFileNamePath(), &text);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    char buf[UIL_DRVCFG_LINE_BUF];
    for (std::string_view line : text.lines) {
        if (!filteredLine(line, 0, buf) || buf[0] == '\0') {
            continue;
        }
        const char* value = matchKey(buf, def->key);
        if (value != nullptr && INTF_UIL_IsParamValueValid(def, value) == 1) {
            (void)strncpy_s(out, size, value, size - 1);
            return MPI_RET_SUCCESS;
        }
    }
    UIL_ERR("%s: match failed", __func__);
    return MPI_RET_FAIL;
}

uint32_t UIL_MatchAndModifyCommonParam(const UilParamDef* def, const char* value, const char* line,
                                       std::string* output)
{
    UIL_ASSERT(def != nullptr && value != nullptr && line != nullptr && output != nullptr);
    char buf[UIL_DRVCFG_LINE_BUF];
    if (!filteredLine(line, 0, buf) || matchKey(buf, def->key) == nullptr) {
        return 0;
    }
    const char* semicolon = std::strchr(line, ';');
    output->assign(def->key);
    output->append(" = \"");
    output->append(value);
    output->append("\";");
    output->append(semicolon != nullptr ? semicolon + 1 : "");
    output->push_back('\n');
    return 1;
}

namespace uil_drvcfg {

// A value the file can hold between its quotes.
bool valueFitsLine(const char* value)
{
    for (const char* c = value; *c != '\0'; ++c) {
        auto u = static_cast<unsigned char>(*c);
        if (u < 32 || u == 127 || u == '"' || u == ';' || u == '#') {
            return false;
        }
    }
    return true;
}

}  // namespace uil_drvcfg

namespace {

// UIL_SetCommonParamValueToCfg: the value checked, the file rewritten line
// by line (matching lines replaced, every other line copied as it was).
uint32_t setCommonParam(const UilParamDef* def, const char* value)
{
    if (INTF_UIL_IsParamValueValid(def, value) != 1 || !valueFitsLine(value)) {
        UIL_ERR("%s: the value \"%s\" is invalid", __func__, value);
        return MPI_RET_INVALID_PARAM;
    }
    CfgText text;
    uint32_t ret = loadForChange(&text);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    std::string bytes;
    std::string rewritten;
    bool changed = false;
    for (size_t i = 0; i < text.lines.size(); ++i) {
        std::string line(text.lines[i]);
        if (UIL_MatchAndModifyCommonParam(def, value, line.c_str(), &rewritten) == 1) {
            bytes += rewritten;
            changed = true;
        } else {
            appendLine(&bytes, text, i);
        }
    }
    if (!changed) {
        UIL_ERR("%s: no line for %s in %s", __func__, def->key, UIL_GetConfFileNamePath());
        return UIL_RET_DRVCFG_NO_KEY;
    }
    return saveChange(text, bytes);
}

const UilParamDef* paramOrTrace(const char* key)
{
    const UilParamDef* def = UIL_FindParam(key);
    if (def == nullptr) {
        UIL_ERR("Can't find the key %s", key != nullptr ? key : "(null)");
    }
    return def;
}

}  // namespace

uint32_t INTF_UIL_GetConfigCommonKey(const char* key, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr);
    const UilParamDef* def = paramOrTrace(key);
    return def == nullptr ? MPI_RET_INVALID_PARAM : UIL_GetCommonParamValueFromCfg(def, out, size);
}

uint32_t INTF_UIL_GetConfigCommonKeyDefault(const char* key, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr);
    const UilParamDef* def = paramOrTrace(key);
    return def == nullptr ? MPI_RET_INVALID_PARAM : UIL_GetParamDefaultValue(def, out, size);
}

uint32_t INTF_UIL_SetConfigCommonKey(const char* key, const char* value)
{
    UIL_ASSERT(value != nullptr);
    const UilParamDef* def = paramOrTrace(key);
    return def == nullptr ? MPI_RET_INVALID_PARAM : setCommonParam(def, value);
}

uint32_t INTF_UIL_SetConfigCommonKeyDefault(const char* key)
{
    const UilParamDef* def = paramOrTrace(key);
    if (def == nullptr) {
        return MPI_RET_INVALID_PARAM;
    }
    char value[UIL_DRVCFG_LINE_BUF];
    uint32_t ret = UIL_GetParamDefaultValue(def, value, sizeof(value));
    return ret != MPI_RET_SUCCESS ? ret : setCommonParam(def, value);
}

uint32_t INTF_UIL_SetCommonCfg(const char* key, const char* value)
{
    UIL_ASSERT(value != nullptr);
    uint32_t ret = std::strcmp(value, "default") == 0 ? INTF_UIL_SetConfigCommonKeyDefault(key)
                                                       : INTF_UIL_SetConfigCommonKey(key, value);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Set configuration failed");
    }
    return ret;
}

