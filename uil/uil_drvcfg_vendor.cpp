// The supported-array (vendor) rules of the driver parameter file, the
// driver's notification of added and deleted rules, the driver column, and
// the whole file read back as entries of key/value pairs.
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bounded/bounded.h"
#include "uia/uia.h"
#include "uil/uil_drvcfg_int.h"

using namespace uil_drvcfg;

namespace {

UilDrvCfgSendFn g_pfSend = nullptr;

}  // namespace

uint32_t UIL_CheckVendorText(const char* what, const char* text, size_t maxLength)
{
    UIL_ASSERT(what != nullptr);
    if (text == nullptr || text[0] == '\0') {
        UIL_ERR("%s not exist", what);
        return MPI_RET_INVALID_PARAM;
    }
    size_t len = std::strlen(text);
    if (len > maxLength) {
        UIL_ERR("The len of %s (%zu) is beyond the upper limit=%zu", what, len, maxLength);
        return MPI_RET_INVALID_PARAM;
    }
    // Blanks inside are kept; at either end the file would lose them.
    if (!valueFitsLine(text) || std::strpbrk(text, "=,") != nullptr || text[0] == ' ' || text[len - 1] == ' ') {
        UIL_ERR("%s \"%s\" has a character the configuration file cannot hold", what, text);
        return MPI_RET_INVALID_PARAM;
    }
    return MPI_RET_SUCCESS;
}

uint32_t UIL_FormatRulerToBuf(const char* vendor, const char* product, const char* driver, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr && size > 0);
    const char* missing = vendor == nullptr ? "Vendor" : product == nullptr ? "Product" : driver == nullptr ? "Driver" : nullptr;
    if (missing != nullptr) {
        UIL_ERR("%s not exist", missing);
        return MPI_RET_INVALID_PARAM;
    }
    int n = snprintf_s(out, size, size - 1, "%s = \"Ruler_%s_%s\", %s = \"%s\", %s = \"%s\", %s = \"%s\";\n",
                       UIL_VENDOR_KEY_RULER, vendor, product, UIL_VENDOR_KEY_VENDOR, vendor, UIL_VENDOR_KEY_PRODUCT,
                       product, UIL_VENDOR_KEY_DRIVER, driver);
    return n < 0 ? MPI_RET_BUFFER_SMALL : MPI_RET_SUCCESS;
}

namespace {

// A character at either end dropped, as often as it stands there
// (UIL_FilterBeginEndSpace for blanks, UIL_FilterBeginEndChar for quotes).
std::string_view trimEnds(std::string_view s, char c)
{
    size_t begin = s.find_first_not_of(c);
    return begin == std::string_view::npos ? std::string_view() : s.substr(begin, s.find_last_not_of(c) - begin + 1);
}

// The rule field a vendor key fills.
char* ruleField(UilVendorRule* rule, const char* key, size_t* capacity)
{
    struct Slot {
        const char* key;
        size_t offset;
        size_t capacity;
    };
    static constexpr Slot kSlots[] = {
        {UIL_VENDOR_KEY_RULER, offsetof(UilVendorRule, ruler), sizeof(UilVendorRule::ruler)},
        {UIL_VENDOR_KEY_VENDOR, offsetof(UilVendorRule, vendor), sizeof(UilVendorRule::vendor)},
        {UIL_VENDOR_KEY_PRODUCT, offsetof(UilVendorRule, product), sizeof(UilVendorRule::product)},
        {UIL_VENDOR_KEY_DRIVER, offsetof(UilVendorRule, driver), sizeof(UilVendorRule::driver)},
    };
    for (const Slot& slot : kSlots) {
        if (std::strcmp(slot.key, key) == 0) {
            *capacity = slot.capacity;
            return reinterpret_cast<char*>(rule) + slot.offset;
        }
    }
    return nullptr;
}

}  // namespace

namespace {

// Splits a line into its `key = "value"` pairs, separated by ",", with the
// blanks and quotes at either end of keys and values dropped. False (traced)
// for a line too long, a pair without "=", an empty key, a key or value
// that does not fit, or more than UIL_PARAM_ENTRY_MAX_KEYS pairs.
bool splitPairs(std::string_view line, UilParamEntry* entry)
{
    entry->count = 0;
    char buf[UIL_DRVCFG_LINE_BUF];
    if (!filteredLine(line, 1, buf)) {
        UIL_ERR("%s: Key or value too long.", __func__);
        return false;
    }
    std::string_view rest(buf);
    while (!trimEnds(rest, ' ').empty()) {
        if (entry->count == UIL_PARAM_ENTRY_MAX_KEYS) {
            UIL_ERR("beyound max num keys for vendor");
            return false;
        }
        size_t comma = rest.find(',');
        std::string_view pair = rest.substr(0, comma);
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
        size_t eq = pair.find('=');
        if (eq == std::string_view::npos) {
            UIL_ERR("%s: no \"=\" in \"%s\"", __func__, buf);
            return false;
        }
        std::string_view key = trimEnds(trimEnds(pair.substr(0, eq), ' '), '"');
        std::string_view value = trimEnds(trimEnds(pair.substr(eq + 1), ' '), '"');
        UilParamPair& out = entry->pairs[entry->count];
        if (key.empty() || key.size() >= sizeof(out.key) || value.size() >= sizeof(out.value)) {
            UIL_ERR("%s: Key or value too long.", __func__);
            return false;
        }
        (void)memcpy_s(out.key, sizeof(out.key), key.data(), key.size());
        out.key[key.size()] = '\0';
        (void)memcpy_s(out.value, sizeof(out.value), value.data(), value.size());
        out.value[value.size()] = '\0';
        ++entry->count;
    }
    return true;
}

}  // namespace

bool UIL_ParseVendorLine(const char* line, UilVendorRule* rule)
{
    UIL_ASSERT(line != nullptr && rule != nullptr);
    *rule = UilVendorRule{};
    UilParamEntry entry;
    if (!splitPairs(line, &entry)) {
        return false;
    }
    for (uint32_t i = 0; i < entry.count; ++i) {
        const UilParamPair& pair = entry.pairs[i];
        size_t capacity = 0;
        char* field = ruleField(rule, pair.key, &capacity);
        if (field == nullptr) {
            continue;  // a key this program does not use
        }
        if (INTF_UIL_IsParamValueValid(UIL_FindVendorParam(pair.key), pair.value) != 1 ||
            std::strlen(pair.value) >= capacity) {
            UIL_ERR("%s: Key or value too long.", __func__);
            return false;
        }
        (void)strcpy_s(field, capacity, pair.value);
    }
    if (rule->vendor[0] == '\0' || rule->product[0] == '\0') {
        UIL_ERR("%s: \"%s\" names no vendor or product", __func__, line);
        return false;
    }
    if (rule->driver[0] == '\0') {
        (void)strcpy_s(rule->driver, sizeof(rule->driver), UIL_VENDOR_DEFAULT_DRIVER);
    }
    return true;
}

namespace {

// The "[vendors]" section of the file: the rules and their line numbers.
struct VendorSection {
    bool found = false;
    size_t header = 0;    // the "[vendors]" line
    size_t lastRule = 0;  // the header when there is no rule
    std::vector<std::pair<size_t, UilVendorRule>> rules;
};

VendorSection readVendorSection(const CfgText& text)
{
    VendorSection section;
    char buf[UIL_DRVCFG_LINE_BUF];
    for (size_t i = 0; i < text.lines.size(); ++i) {
        bool readable = filteredLine(text.lines[i], 0, buf);
        if (readable && buf[0] == '[') {
            if (section.found) {
                break;  // the next section
            }
            section.found = std::strcmp(buf, UIL_DRVCFG_VENDORS) == 0;
            section.header = section.lastRule = i;
            continue;
        }
        if (!section.found || (readable && buf[0] == '\0')) {
            continue;
        }
        UilVendorRule rule;
        if (UIL_ParseVendorLine(std::string(text.lines[i]).c_str(), &rule)) {
            section.rules.emplace_back(i, rule);
            section.lastRule = i;
        }
    }
    return section;
}

bool sameRule(const UilVendorRule& rule, const char* vendor, const char* product)
{
    return std::strcmp(rule.vendor, vendor) == 0 && std::strcmp(rule.product, product) == 0;
}

uint32_t notifyVendor(uint32_t subCommand, const char* vendor, const char* product, const char* driver)
{
    UiaPayload payload(uia_req::CommonSet.size);
    payload.setU32(UIL_VENDOR_NOTIFY_CMD, subCommand);
    payload.setText(UIL_VENDOR_NOTIFY_VENDOR, UIL_VENDOR_ID_LEN + 1, vendor);
    payload.setText(UIL_VENDOR_NOTIFY_PRODUCT, UIL_PRODUCT_ID_LEN + 1, product);
    payload.setText(UIL_VENDOR_NOTIFY_DRIVER, UIL_VENDOR_DRIVER_LEN + 1, driver);
    UilDrvCfgSendFn send = g_pfSend != nullptr ? g_pfSend : INTF_UIA_Ioctl;
    return send(uia_req::CommonSet.code(), payload.data(), static_cast<uint32_t>(payload.size()));
}

uint32_t checkRuleTexts(const char* vendor, const char* product)
{
    uint32_t ret = UIL_CheckVendorText("Vendor", vendor, UIL_VENDOR_ID_LEN);
    return ret != MPI_RET_SUCCESS ? ret : UIL_CheckVendorText("Product", product, UIL_PRODUCT_ID_LEN);
}

}  // namespace

UilDrvCfgSendFn UIL_DrvCfgSetDriverSender(UilDrvCfgSendFn sender)
{
    UilDrvCfgSendFn old = g_pfSend;
    g_pfSend = sender;
    return old;
}

uint32_t UIL_NotifyDriverAddVendor(const char* vendor, const char* product, const char* driver)
{
    uint32_t ret = notifyVendor(UIL_SETCMD_ADD_VENDOR, vendor, product, driver);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Add supportlist of array fail, Ret={%u}.", ret);
    }
    return ret;
}

uint32_t UIL_NotifyDriverDelVendor(const char* vendor, const char* product)
{
    uint32_t ret = notifyVendor(UIL_SETCMD_DEL_VENDOR, vendor, product, "");
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Delete supportlist of array fail, Ret={%u}.", ret);
    }
    return ret;
}

uint32_t INTF_UIL_AddVendor(const char* vendor, const char* product, const char* driver)
{
    if (driver == nullptr || driver[0] == '\0') {
        driver = UIL_VENDOR_DEFAULT_DRIVER;
    }
    uint32_t ret = checkRuleTexts(vendor, product);
    if (ret == MPI_RET_SUCCESS) {
        ret = UIL_CheckVendorText("Driver", driver, UIL_VENDOR_DRIVER_LEN);
    }
    CfgText text;
    if (ret != MPI_RET_SUCCESS || (ret = loadForChange(&text)) != MPI_RET_SUCCESS) {
        return ret;
    }
    VendorSection section = readVendorSection(text);
    for (const auto& [line, rule] : section.rules) {
        if (sameRule(rule, vendor, product)) {
            UIL_ERR("Vendor (%s, %s) already exist.", vendor, product);
            return UIL_RET_VENDOR_EXIST;
        }
    }
    char ruleLine[UIL_DRVCFG_LINE_BUF];
    if ((ret = UIL_FormatRulerToBuf(vendor, product, driver, ruleLine, sizeof(ruleLine))) != MPI_RET_SUCCESS) {
        return ret;
    }
    // UIL_VendorRulerWriteToCfgFile: the rule after the last one (after the
    // header when there is none); a file without the section gets one.
    std::string bytes;
    for (size_t i = 0; i < text.lines.size(); ++i) {
        appendLine(&bytes, text, i);
        if (section.found && i == section.lastRule) {
            if (!bytes.empty() && bytes.back() != '\n') {
                bytes.push_back('\n');
            }
            bytes += ruleLine;
        }
    }
    if (!section.found) {
        if (!bytes.empty() && bytes.back() != '\n') {
            bytes.push_back('\n');
        }
        bytes += std::string(UIL_DRVCFG_VENDORS) + "\n" + ruleLine;
    }
    if (saveChange(text, bytes) != MPI_RET_SUCCESS) {
        UIL_ERR("%s: Write vendor rule back failed.", __func__);
        return MPI_RET_FAIL;
    }
    return UIL_NotifyDriverAddVendor(vendor, product, driver) == MPI_RET_SUCCESS ? MPI_RET_SUCCESS
                                                                                  : UIL_RET_VENDOR_NOTIFY_FAIL;
}

uint32_t INTF_UIL_DelVendor(const char* vendor, const char* product)
{
    uint32_t ret = checkRuleTexts(vendor, product);
    CfgText text;
    if (ret != MPI_RET_SUCCESS || (ret = loadForChange(&text)) != MPI_RET_SUCCESS) {
        return ret;
    }
    VendorSection section = readVendorSection(text);
    std::vector<bool> drop(text.lines.size(), false);
    bool found = false;
    for (const auto& [line, rule] : section.rules) {
        if (sameRule(rule, vendor, product)) {
            drop[line] = found = true;  // every line of the rule, should it stand twice
        }
    }
    if (!found) {
        UIL_ERR("Vendor (%s, %s) to delete not exist.", vendor, product);
        return UIL_RET_VENDOR_NOT_EXIST;
    }
    std::string bytes;
    for (size_t i = 0; i < text.lines.size(); ++i) {
        if (!drop[i]) {
            appendLine(&bytes, text, i);
        }
    }
    if (saveChange(text, bytes) != MPI_RET_SUCCESS) {
        UIL_ERR("%s: Copy back to config file failed.", __func__);
        return MPI_RET_FAIL;
    }
    return UIL_NotifyDriverDelVendor(vendor, product) == MPI_RET_SUCCESS ? MPI_RET_SUCCESS
                                                                         : UIL_RET_VENDOR_NOTIFY_FAIL;
}

namespace {

// Unlinks and frees every record of a list built here; safe on a head
// that was never initialised by a Start.
template <typename Record>
void freeRecords(MPI_ListNode* head)
{
    if (head == nullptr || head->next == nullptr) {
        return;
    }
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        std::free(MPI_ListEntry<Record>(node));
    }
}

}  // namespace

void INTF_UIL_EndShowVendor(MPI_ListNode* head) { freeRecords<UilVendorRule>(head); }

uint32_t INTF_UIL_StartShowVendor(MPI_ListNode* head, uint32_t* count)
{
    if (head == nullptr || count == nullptr) {
        UIL_ERR("Enumerate vendor info failed");
        return MPI_RET_INVALID_PARAM;
    }
    MPI_ListInit(head);
    *count = 0;
    CfgText text;
    uint32_t ret = loadCfg(UIL_GetConfFileNamePath(), &text);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate vendor info failed");
        return ret;
    }
    for (const auto& [line, rule] : readVendorSection(text).rules) {
        auto* record = static_cast<UilVendorRule*>(UIL_ZMalloc(sizeof(UilVendorRule)));
        if (record == nullptr) {
            UIL_ERR("Get vendor & product from one vendor failed");
            INTF_UIL_EndShowVendor(head);
            *count = 0;
            return MPI_RET_NO_MEMORY;
        }
        *record = rule;
        MPI_ListAddTail(&record->links, head);
        ++*count;
    }
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_GetKernelDrivername(const char* vendor, const char* product, char* out, size_t size)
{
    UIL_ASSERT(out != nullptr && size > 0);
    uint32_t ret = checkRuleTexts(vendor, product);
    CfgText text;
    if (ret != MPI_RET_SUCCESS || (ret = loadCfg(UIL_GetConfFileNamePath(), &text)) != MPI_RET_SUCCESS) {
        return ret;
    }
    for (const auto& [line, rule] : readVendorSection(text).rules) {
        if (sameRule(rule, vendor, product)) {
            (void)strncpy_s(out, size, rule.driver, size - 1);
            return MPI_RET_SUCCESS;
        }
    }
    return UIL_RET_VENDOR_NOT_EXIST;
}

namespace {

// Which lines an enumeration takes: the common lines before the first
// section, or the lines of the "[vendors]" section.
enum class Part { Common, Vendors };

// The common line in `buf` (filtered in mode 0) as one pair.
bool commonPair(const char* buf, UilParamEntry* entry)
{
    const char* eq = std::strchr(buf, '=');
    UilParamPair& out = entry->pairs[0];
    const size_t keyLen = eq == nullptr ? 0 : static_cast<size_t>(eq - buf);
    if (keyLen == 0 || keyLen >= sizeof(out.key)) {
        UIL_ERR("%s: \"%s\" is no key = value line", __func__, buf);
        return false;
    }
    (void)memcpy_s(out.key, sizeof(out.key), buf, keyLen);
    out.key[keyLen] = '\0';
    (void)strcpy_s(out.value, sizeof(out.value), eq + 1);  // shorter than the line buffer it came from
    entry->count = 1;
    return true;
}

uint32_t enumerateEntries(Part part, MPI_ListNode* head, uint32_t* count)
{
    if (head == nullptr || count == nullptr) {
        UIL_ERR("Enumerate config entries failed: null argument");
        return MPI_RET_INVALID_PARAM;
    }
    MPI_ListInit(head);
    *count = 0;
    CfgText text;
    uint32_t ret = loadCfg(UIL_GetConfFileNamePath(), &text);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    bool inVendors = false;
    char buf[UIL_DRVCFG_LINE_BUF];
    for (size_t i = 0; i < text.lines.size(); ++i) {
        const bool readable = filteredLine(text.lines[i], 0, buf);
        if (readable && buf[0] == '[') {
            if (part == Part::Common || inVendors) {
                break;  // the common lines, or the vendors section, end here
            }
            inVendors = std::strcmp(buf, UIL_DRVCFG_VENDORS) == 0;
            continue;
        }
        if ((readable && buf[0] == '\0') || (part == Part::Vendors && !inVendors)) {
            continue;
        }
        auto* entry = static_cast<UilParamEntry*>(UIL_ZMalloc(sizeof(UilParamEntry)));
        if (entry == nullptr) {
            UIL_ERR("Allocate memory of config entry fail");
            freeRecords<UilParamEntry>(head);
            *count = 0;
            return MPI_RET_NO_MEMORY;
        }
        const bool ok = part == Part::Vendors ? splitPairs(text.lines[i], entry)
                                              : readable ? commonPair(buf, entry) : false;
        if (!ok) {
            if (!readable) {
                UIL_ERR("%s: line %zu too long", __func__, i + 1);
            }
            std::free(entry);
            continue;
        }
        entry->line = static_cast<uint32_t>(i + 1);
        MPI_ListAddTail(&entry->links, head);
        ++*count;
    }
    return MPI_RET_SUCCESS;
}

}  // namespace

uint32_t INTF_UIL_EnumerateConfigStart(MPI_ListNode* head, uint32_t* count)
{
    return enumerateEntries(Part::Common, head, count);
}

void INTF_UIL_EnumerateConfigEnd(MPI_ListNode* head) { freeRecords<UilParamEntry>(head); }

uint32_t INTF_UIL_EnumerateVendorConfigStart(MPI_ListNode* head, uint32_t* count)
{
    return enumerateEntries(Part::Vendors, head, count);
}

void INTF_UIL_EnumerateVendorConfigEnd(MPI_ListNode* head) { freeRecords<UilParamEntry>(head); }

void UIL_VendorOperRecord(const char* vendor, const char* product, UilOperLogPara* record)
{
    UIL_ASSERT(vendor != nullptr && product != nullptr && record != nullptr);
    *record = UilOperLogPara{MPI_OBJ_COMMON, 0, 0, {}};
    (void)snprintf_s(record->szValue, sizeof(record->szValue), sizeof(record->szValue) - 1, "%s;%s", vendor,
                     product);
}

// The driver column of arrays and disks. The driver gives its vendor driver
// key as the name to show ("alua", "dft", ...): no table renames it, so
// the key is printed exactly as given, cut to the caller's buffer.
void INTF_UIL_TransVendorDriverNamePrint(const char* driverKey, char* out, size_t size)
{
    UIL_ASSERT(driverKey != nullptr && out != nullptr && size > 0);
    (void)strncpy_s(out, size, driverKey, size - 1);
}
