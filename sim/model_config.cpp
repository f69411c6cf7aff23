// The user configuration the driver has been told: request 70 sets items of
// one section or instance, request 71 deletes one item or a whole instance.
// What the driver holds is kept in the state document, so a test can set it
// beside the program's configuration file:
//
//   "user_config": {
//     "common": {"<item>": "<value>", ...},
//     "array":  {"<serial number>": {"<item>": "<value>", ...}, ...},
//     "lun":    {"<WWN>": {"<item>": "<value>", ...}, ...}
//   }
//
// The driver does not judge item names or values (that is the program's
// item table); it refuses only malformed payloads. Either request can be
// refused through the faults file like any other.
#include "model.h"

#include <string>
#include <vector>

namespace cvsim {

namespace {

// Notify payload: 44 bytes of header, then `count` items of 96 bytes. The
// declared size is that of one item; the buffer holds all of them.
constexpr size_t kNotifyTypeOff = 0;
constexpr size_t kNotifyInstanceOff = 4;
constexpr size_t kInstanceLen = 33;
constexpr size_t kNotifyCountOff = 40;
constexpr size_t kNotifyItemsOff = 44;
constexpr size_t kItemSize = 96;
constexpr size_t kItemNameOff = 0;
constexpr size_t kItemNameLen = 32;
constexpr size_t kItemValueOff = 32;
constexpr size_t kItemValueLen = 64;
// No section holds more items than the program's item table has rows; a
// larger count is a corrupt payload, not a reason to read far past it.
constexpr uint32_t kMaxItems = 64;

// Delete payload (72 bytes).
constexpr size_t kDelTypeOff = 0;
constexpr size_t kDelInstanceOff = 4;
constexpr size_t kDelItemOff = 37;
constexpr size_t kDelItemLen = 32;

constexpr uint32_t kTypeCommon = 100;
constexpr uint32_t kTypeArray = 101;
constexpr uint32_t kTypeLun = 102;

const char* sectionKey(uint32_t type)
{
    switch (type) {
    case kTypeCommon:
        return "common";
    case kTypeArray:
        return "array";
    case kTypeLun:
        return "lun";
    default:
        return nullptr;
    }
}

// A NUL-terminated text field; false when the field has no terminator.
bool readText(const SimPayload& p, size_t off, size_t len, std::string& out)
{
    out.clear();
    for (size_t i = 0; i < len; ++i) {
        char c = static_cast<char>(p.u8(off + i));
        if (c == '\0') {
            return true;
        }
        out.push_back(c);
    }
    return false;
}

struct Item {
    std::string name;
    std::string value;
};

// The object that holds the items of one section or instance, created.
Json& itemsOf(Json& driver, const char* section, uint32_t type, const std::string& instance)
{
    Json& cfg = driver["user_config"];
    Json& sec = cfg[section];
    return type == kTypeCommon ? sec : sec[instance];
}

}  // namespace

uint32_t HandleCfgNotify(SimContext& ctx, SimPayload& p)
{
    uint32_t type = p.u32(kNotifyTypeOff);
    uint32_t count = p.u32(kNotifyCountOff);
    const char* section = sectionKey(type);
    std::string instance;
    if (section == nullptr || count == 0 || count > kMaxItems ||
        !readText(p, kNotifyInstanceOff, kInstanceLen, instance)) {
        return kResultInvalid;
    }
    SimPayload all = p.widened(kNotifyItemsOff + kItemSize * count);
    std::vector<Item> items(count);
    for (uint32_t i = 0; i < count; ++i) {
        size_t base = kNotifyItemsOff + kItemSize * i;
        if (!readText(all, base + kItemNameOff, kItemNameLen, items[i].name) || items[i].name.empty() ||
            !readText(all, base + kItemValueOff, kItemValueLen, items[i].value)) {
            return kResultInvalid;
        }
    }
    Json& held = itemsOf(ctx.changeDriver(), section, type, instance);
    for (const Item& item : items) {
        held[item.name] = item.value;
    }
    return kResultSuccess;
}

uint32_t HandleCfgDelete(SimContext& ctx, SimPayload& p)
{
    uint32_t type = p.u32(kDelTypeOff);
    const char* section = sectionKey(type);
    std::string instance;
    std::string item;
    if (section == nullptr || !readText(p, kDelInstanceOff, kInstanceLen, instance) ||
        !readText(p, kDelItemOff, kDelItemLen, item)) {
        return kResultInvalid;
    }
    // Forgetting what the driver never held is no error.
    const Json* cfg = JsonOptionalMember(ctx.driver(), "user_config", "");
    const Json* sec = cfg != nullptr && cfg->is_object() ? JsonOptionalMember(*cfg, section, "user_config") : nullptr;
    if (sec == nullptr || !sec->is_object()) {
        return kResultSuccess;
    }
    Json& held = ctx.changeDriver()["user_config"][section];
    if (type == kTypeCommon) {
        if (item.empty()) {
            held = Json::object();
        } else {
            held.erase(item);
        }
    } else if (item.empty()) {
        held.erase(instance);
    } else if (held.contains(instance) && held[instance].is_object()) {
        held[instance].erase(item);
    }
    return kResultSuccess;
}

}  // namespace cvsim
