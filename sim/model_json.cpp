// Checked reading of the topology and state documents: every error names
// the place in the document, e.g. "workers[2].age_seconds".
#include "model.h"

#include <limits>

namespace cvsim {

namespace {

[[noreturn]] void Bad(const std::string& where, const char* expected)
{
    throw SimError(where + ": expected " + expected);
}

}  // namespace

const Json* JsonOptionalMember(const Json& obj, const char* key, const std::string& where)
{
    if (!obj.is_object()) {
        Bad(where.empty() ? std::string("document") : where, "an object");
    }
    auto it = obj.find(key);
    return it == obj.end() ? nullptr : &*it;
}

const Json& JsonMember(const Json& obj, const char* key, const std::string& where)
{
    const Json* v = JsonOptionalMember(obj, key, where);
    if (v == nullptr) {
        throw SimError((where.empty() ? std::string(key) : where + "." + key) + ": missing");
    }
    return *v;
}

// A document parsed from text holds non-negative integers as unsigned; one
// changed in memory may hold them signed (a handler assigning an int).
uint64_t JsonU64(const Json& v, const std::string& where)
{
    if (v.is_number_unsigned()) {
        return v.get<uint64_t>();
    }
    if (!v.is_number_integer() || v.get<int64_t>() < 0) {
        Bad(where, "a non-negative integer");
    }
    return static_cast<uint64_t>(v.get<int64_t>());
}

uint32_t JsonU32(const Json& v, const std::string& where)
{
    uint64_t n = JsonU64(v, where);
    if (n > std::numeric_limits<uint32_t>::max()) {
        Bad(where, "an integer of at most 4294967295");
    }
    return static_cast<uint32_t>(n);
}

const std::string& JsonString(const Json& v, const std::string& where)
{
    if (!v.is_string()) {
        Bad(where, "a string");
    }
    return v.get_ref<const std::string&>();
}

const Json& JsonArray(const Json& v, const std::string& where)
{
    if (!v.is_array()) {
        Bad(where, "an array");
    }
    return v;
}

}  // namespace cvsim
