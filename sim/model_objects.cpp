// Reads the storage objects of the driver document into SimObjects: checks
// every field, links the objects to each other (an array knows its disks,
// a path the disks that run over it) and indexes them by ID. Runs once per
// process and document; the requests then only look things up.
#include "model_objects.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <limits>
#include <string_view>

namespace cvsim {

namespace {

constexpr uint32_t kMaxObjectId = 16383;  // arrays, VLUNs, disks and paths
constexpr size_t kVendorLen = 8;
constexpr size_t kProductLen = 16;
constexpr size_t kRevisionLen = 4;
constexpr size_t kArrayDriverLen = 129;
constexpr size_t kHbaDriverLen = 136;
constexpr size_t kPortIdLen = 128;
constexpr size_t kLunNameLen = 64;
// The disk payload leaves 40 bytes to the device name (460..499) and the
// program reads it up to its terminator: 39 characters at most.
constexpr size_t kDeviceNameMax = 39;

constexpr uint32_t kCapabilityPairNaming = 1u << 24;

struct NamedCode {
    std::string_view name;
    uint32_t code;
};

constexpr std::array kPortTypes = {
    NamedCode{"FC", kPortFc}, NamedCode{"SAS", kPortSas}, NamedCode{"iSCSI", kPortIscsi},
    NamedCode{"FCoE", kPortFcoe}, NamedCode{"IB", kPortIb},
};

constexpr std::array kIoStates = {
    NamedCode{"normal", 19},       NamedCode{"failback", 20},          NamedCode{"busy", 21},
    NamedCode{"unknown", 22},      NamedCode{"not_steady", 23},        NamedCode{"timeout", 24},
    NamedCode{"high_latency", 25}, NamedCode{"sensitive_delayed", 26}, NamedCode{"potential_fault", 27},
};

constexpr std::array kCheckStarts = {
    NamedCode{"init", 20},
    NamedCode{"auto", 21},
    NamedCode{"manual", 22},
};

constexpr std::array kCheckSteps = {
    NamedCode{"init", 100},   NamedCode{"checking", 101},  NamedCode{"waiting", 102}, NamedCode{"ignore", 103},
    NamedCode{"notsteady", 104}, NamedCode{"succeed", 105}, NamedCode{"fail", 106},
};

constexpr std::array kVlunTypes = {
    NamedCode{"ordinary", kVlunOrdinary},
    NamedCode{"dualsite", kVlunDualSite},
    NamedCode{"migration", kVlunMigration},
    NamedCode{"pe", kVlunPe},
};

std::string At(const std::string& where, const char* key) { return where + "." + key; }

std::string Item(const char* list, size_t i) { return std::string(list) + "[" + std::to_string(i) + "]"; }

bool OptBool(const Json& obj, const char* key, const std::string& where, bool dflt)
{
    const Json* v = JsonOptionalMember(obj, key, where);
    if (v == nullptr) {
        return dflt;
    }
    if (!v->is_boolean()) {
        throw SimError(At(where, key) + ": expected true or false");
    }
    return v->get<bool>();
}

uint32_t OptU32(const Json& obj, const char* key, const std::string& where, uint32_t dflt)
{
    const Json* v = JsonOptionalMember(obj, key, where);
    return v == nullptr ? dflt : JsonU32(*v, At(where, key));
}

uint64_t OptU64(const Json& obj, const char* key, const std::string& where, uint64_t dflt)
{
    const Json* v = JsonOptionalMember(obj, key, where);
    return v == nullptr ? dflt : JsonU64(*v, At(where, key));
}

uint32_t Id(const Json& obj, const char* key, const std::string& where, uint32_t max)
{
    uint32_t id = JsonU32(JsonMember(obj, key, where), At(where, key));
    if (id > max) {
        throw SimError(At(where, key) + ": " + std::to_string(id) + " is above the driver's " +
                       std::to_string(max));
    }
    return id;
}

// A text that must fit a wire field of `maxLen` bytes.
std::string Text(const Json& v, const std::string& where, size_t maxLen)
{
    const std::string& s = JsonString(v, where);
    if (s.size() > maxLen) {
        throw SimError(where + ": longer than " + std::to_string(maxLen) + " bytes");
    }
    if (s.find('\0') != std::string::npos) {
        throw SimError(where + ": holds a NUL character");
    }
    return s;
}

std::string ReqText(const Json& obj, const char* key, const std::string& where, size_t maxLen)
{
    return Text(JsonMember(obj, key, where), At(where, key), maxLen);
}

std::string OptText(const Json& obj, const char* key, const std::string& where, size_t maxLen)
{
    const Json* v = JsonOptionalMember(obj, key, where);
    return v == nullptr ? std::string() : Text(*v, At(where, key), maxLen);
}

// A code given by name (or, where `numbers` allows, as its number).
template <size_t N>
uint32_t Code(const Json& obj, const char* key, const std::string& where, const std::array<NamedCode, N>& table,
              uint32_t dflt, bool numbers = false)
{
    const Json* v = JsonOptionalMember(obj, key, where);
    if (v == nullptr) {
        return dflt;
    }
    if (numbers && v->is_number_unsigned()) {
        return JsonU32(*v, At(where, key));
    }
    std::string expected;
    if (v->is_string()) {
        const std::string& s = v->get_ref<const std::string&>();
        for (const NamedCode& row : table) {
            if (row.name == s) {
                return row.code;
            }
        }
    }
    for (const NamedCode& row : table) {
        expected += (expected.empty() ? "\"" : ", \"") + std::string(row.name) + "\"";
    }
    throw SimError(At(where, key) + ": expected one of " + expected + (numbers ? " or a number" : ""));
}

SimCounter Counter(const Json& obj, const char* key, const std::string& where)
{
    SimCounter c;
    const Json* v = JsonOptionalMember(obj, key, where);
    if (v != nullptr) {
        std::string here = At(where, key);
        c.base = OptU64(*v, "base", here, 0);
        c.perHour = OptU32(*v, "per_hour", here, 0);
    }
    return c;
}

// IPv4 in the first four bytes (the rest zero), IPv6 as its 16 bytes.
std::array<uint8_t, 16> Address(const Json& v, const std::string& where)
{
    const std::string& text = JsonString(v, where);
    std::array<uint8_t, 16> ip{};
    if (inet_pton(AF_INET, text.c_str(), ip.data()) == 1 || inet_pton(AF_INET6, text.c_str(), ip.data()) == 1) {
        return ip;
    }
    throw SimError(where + ": \"" + text + "\" is not an IPv4 or IPv6 address");
}

std::vector<uint32_t> IdList(const Json& v, const std::string& where)
{
    std::vector<uint32_t> ids;
    const Json& list = JsonArray(v, where);
    for (size_t i = 0; i < list.size(); ++i) {
        ids.push_back(JsonU32(list[i], where + "[" + std::to_string(i) + "]"));
    }
    return ids;
}

const Json& OptList(const Json& doc, const char* key)
{
    static const Json kNone = Json::array();
    const Json* v = JsonOptionalMember(doc, key, "");
    return v == nullptr ? kNone : JsonArray(*v, key);
}

}  // namespace

// Fills a SimObjects from the document, one object kind after the other,
// each linked to the kinds read before it.
class SimObjectsReader {
public:
    SimObjectsReader(const Json& doc, SimObjects& out) : m_doc(doc), m_out(out) {}

    void read()
    {
        readStart();
        readHbas();
        readArrays();
        readPaths();
        readDisks();
        readVluns();
    }

private:
    template <typename T>
    void index(std::unordered_map<uint32_t, size_t>& map, const std::vector<T>& all, const std::string& where,
               const char* what)
    {
        if (!map.emplace(all.back().id, all.size() - 1).second) {
            throw SimError(where + ".id: a second " + what + " " + std::to_string(all.back().id));
        }
    }

    void readStart()
    {
        const Json* driver = JsonOptionalMember(m_doc, "driver", "");
        const Json* started = driver == nullptr ? nullptr : JsonOptionalMember(*driver, "started", "driver");
        if (started != nullptr) {
            m_out.m_hasStart = true;
            m_out.m_started = JsonU64(*started, "driver.started");
        }
    }

    void readHbas()
    {
        const Json& list = OptList(m_doc, "hbas");
        for (size_t i = 0; i < list.size(); ++i) {
            std::string where = Item("hbas", i);
            const Json& h = list[i];
            SimHba hba;
            hba.id = JsonU32(JsonMember(h, "id", where), At(where, "id"));
            hba.portType = Code(h, "type", where, kPortTypes, kPortFc);
            hba.wwn = ReqText(h, "wwn", where, hba.portType == kPortIscsi ? kIscsiNameMax : kPortNameLen);
            hba.scsiHost = OptU32(h, "host", where, 0);
            hba.driver = OptText(h, "driver", where, kHbaDriverLen);
            hba.enabled = OptBool(h, "enabled", where, true);
            m_out.m_hbas.push_back(std::move(hba));
            index(m_out.m_hbaIndex, m_out.m_hbas, where, "HBA");
            if (!m_out.m_hbaWwnIndex.emplace(m_out.m_hbas.back().wwn, m_out.m_hbas.size() - 1).second) {
                throw SimError(At(where, "wwn") + ": a second HBA with this name");
            }
        }
    }

    void readControllers(const Json& a, const std::string& where, SimArray& array)
    {
        const Json& list = JsonArray(JsonMember(a, "controllers", where), At(where, "controllers"));
        for (size_t i = 0; i < list.size(); ++i) {
            std::string here = where + Item(".controllers", i);
            const Json& c = list[i];
            SimController ctrl;
            ctrl.id = Id(c, "id", here, kMaxControllers - 1);
            ctrl.name = OptText(c, "name", here, kTpgNameLen);
            ctrl.enabled = OptBool(c, "enabled", here, true);
            ctrl.remote = OptBool(c, "remote", here, false);
            if (array.controller(ctrl.id) != nullptr) {
                throw SimError(here + ".id: a second controller " + std::to_string(ctrl.id));
            }
            array.controllers.push_back(std::move(ctrl));
        }
    }

    void readArrays()
    {
        const Json& list = OptList(m_doc, "arrays");
        if (list.size() > kMaxArrays) {
            throw SimError("arrays: more than the driver's " + std::to_string(kMaxArrays));
        }
        for (size_t i = 0; i < list.size(); ++i) {
            std::string where = Item("arrays", i);
            const Json& a = list[i];
            SimArray array;
            array.id = Id(a, "id", where, kMaxObjectId);
            array.jsonIndex = i;
            array.name = ReqText(a, "name", where, kArrayNameLen);
            array.sn = ReqText(a, "sn", where, kArraySnLen);
            array.vendor = OptText(a, "vendor", where, kVendorLen);
            array.product = OptText(a, "product", where, kProductLen);
            array.revision = OptText(a, "revision", where, kRevisionLen);
            array.driver = OptText(a, "driver", where, kArrayDriverLen);
            if (const Json* bits = JsonOptionalMember(a, "capability_bits", where)) {
                for (uint32_t bit : IdList(*bits, At(where, "capability_bits"))) {
                    if (bit > 31) {
                        throw SimError(At(where, "capability_bits") + ": bit " + std::to_string(bit) +
                                       " of a 32-bit word");
                    }
                    array.capability |= 1u << bit;
                }
            }
            if (const Json* flags = JsonOptionalMember(a, "flag_bytes", where)) {
                std::vector<uint32_t> bytes = IdList(*flags, At(where, "flag_bytes"));
                if (bytes.size() != array.flagBytes.size() ||
                    std::any_of(bytes.begin(), bytes.end(), [](uint32_t b) { return b > 255; })) {
                    throw SimError(At(where, "flag_bytes") + ": expected three bytes (payload 440, 441, 442)");
                }
                std::copy(bytes.begin(), bytes.end(), array.flagBytes.begin());
            }
            readControllers(a, where, array);
            m_out.m_arrays.push_back(std::move(array));
            index(m_out.m_arrayIndex, m_out.m_arrays, where, "array");
        }
    }

    SimArray& arrayOf(uint32_t id, const std::string& where)
    {
        auto it = m_out.m_arrayIndex.find(id);
        if (it == m_out.m_arrayIndex.end()) {
            throw SimError(where + ": no array " + std::to_string(id));
        }
        return m_out.m_arrays[it->second];
    }

    SimController& controllerOf(SimArray& array, uint32_t id, const std::string& where)
    {
        for (SimController& c : array.controllers) {
            if (c.id == id) {
                return c;
            }
        }
        throw SimError(where + ": array " + std::to_string(array.id) + " has no controller " + std::to_string(id));
    }

    void readPathPort(const Json& p, const std::string& where, const SimHba& hba, SimPath& path)
    {
        path.target = ReqText(p, "target", where, kPortNameLen);
        path.portId = OptText(p, "port_id", where, kPortIdLen);
        const Json* ip = JsonOptionalMember(p, "initiator_ip", where);
        if (hba.portType == kPortIscsi) {
            if (ip == nullptr) {
                throw SimError(At(where, "initiator_ip") + ": missing (an iSCSI path)");
            }
            path.hasInitiatorIp = true;
            path.initiatorIp = Address(*ip, At(where, "initiator_ip"));
            path.initiatorTcpPort = OptU32(p, "initiator_tcp_port", where, 0);
            path.targetTcpPort = OptU32(p, "target_tcp_port", where, 3260);
        } else if (ip != nullptr) {
            throw SimError(At(where, "initiator_ip") + ": only iSCSI paths carry an address");
        }
    }

    void readPathState(const Json& p, const std::string& where, SimPath& path)
    {
        path.enabled = OptBool(p, "enabled", where, true);
        path.present = OptBool(p, "present", where, true);
        const Json* link = JsonOptionalMember(p, "link", where);
        if (link != nullptr) {
            const std::string& s = JsonString(*link, At(where, "link"));
            if (s != "up" && s != "down") {
                throw SimError(At(where, "link") + ": expected \"up\" or \"down\"");
            }
            path.linkUp = s == "up";
        }
        path.ioState = Code(p, "io_state", where, kIoStates, kIoNormal, true);
        if (const Json* check = JsonOptionalMember(p, "check", where)) {
            std::string here = At(where, "check");
            path.checkStart = Code(*check, "start", here, kCheckStarts, 20);
            path.checkStep = Code(*check, "step", here, kCheckSteps, 100);
            path.prevCheckStep = Code(*check, "previous", here, kCheckSteps, 100);
        }
        path.ioRetry = Counter(p, "io_retry", where);
        path.pathFaults = Counter(p, "path_faults", where);
        if (const Json* lat = JsonOptionalMember(p, "latency_ms", where)) {
            std::string here = At(where, "latency_ms");
            path.latencyLowMs = OptU64(*lat, "low", here, 0);
            path.latencyAvgMs = OptU64(*lat, "avg", here, path.latencyLowMs);
            path.latencyHighMs = OptU64(*lat, "high", here, path.latencyAvgMs);
            if (path.latencyLowMs > path.latencyAvgMs || path.latencyAvgMs > path.latencyHighMs) {
                throw SimError(here + ": expected low <= avg <= high");
            }
        }
    }

    void readPaths()
    {
        const Json& list = OptList(m_doc, "paths");
        if (list.size() > kMaxPhyPaths) {
            throw SimError("paths: more than the driver's " + std::to_string(kMaxPhyPaths));
        }
        for (size_t i = 0; i < list.size(); ++i) {
            std::string where = Item("paths", i);
            const Json& p = list[i];
            SimPath path;
            path.id = Id(p, "id", where, kMaxObjectId);
            path.arrayId = JsonU32(JsonMember(p, "array", where), At(where, "array"));
            path.controllerId = JsonU32(JsonMember(p, "controller", where), At(where, "controller"));
            path.hbaId = JsonU32(JsonMember(p, "hba", where), At(where, "hba"));
            auto hba = m_out.m_hbaIndex.find(path.hbaId);
            if (hba == m_out.m_hbaIndex.end()) {
                throw SimError(At(where, "hba") + ": no HBA " + std::to_string(path.hbaId));
            }
            SimHba& owner = m_out.m_hbas[hba->second];
            readPathPort(p, where, owner, path);
            readPathState(p, where, path);
            SimArray& array = arrayOf(path.arrayId, At(where, "array"));
            SimController& ctrl = controllerOf(array, path.controllerId, At(where, "controller"));
            if (ctrl.paths.size() == kMaxControllerPaths) {
                throw SimError(where + ": controller " + std::to_string(ctrl.id) + " of array " +
                               std::to_string(array.id) + " already has the driver's " +
                               std::to_string(kMaxControllerPaths) + " paths");
            }
            path.scsiTarget = static_cast<uint32_t>(owner.paths.size());
            ctrl.paths.push_back(path.id);
            array.paths.push_back(path.id);
            owner.paths.push_back(path.id);
            m_out.m_paths.push_back(std::move(path));
            index(m_out.m_pathIndex, m_out.m_paths, where, "path");
        }
    }

    void readDiskPaths(const Json& d, const std::string& where, const SimArray& array, SimDisk& disk)
    {
        const Json* paths = JsonOptionalMember(d, "paths", where);
        disk.paths = paths == nullptr ? array.paths : IdList(*paths, At(where, "paths"));
        if (disk.paths.size() > kMaxDiskPaths) {
            throw SimError(At(where, "paths") + ": more than the driver's " + std::to_string(kMaxDiskPaths));
        }
        std::vector<uint32_t> seen;
        for (uint32_t id : disk.paths) {
            const SimPath* path = m_out.path(id);
            if (path == nullptr || path->arrayId != array.id) {
                throw SimError(At(where, "paths") + ": " + std::to_string(id) + " is not a path of array " +
                               std::to_string(array.id));
            }
            seen.push_back(id);
        }
        std::sort(seen.begin(), seen.end());
        if (std::adjacent_find(seen.begin(), seen.end()) != seen.end()) {
            throw SimError(At(where, "paths") + ": a path given twice");
        }
        if (const Json* faulty = JsonOptionalMember(d, "faulty_paths", where)) {
            disk.faultyPaths = IdList(*faulty, At(where, "faulty_paths"));
            std::sort(disk.faultyPaths.begin(), disk.faultyPaths.end());
            for (uint32_t id : disk.faultyPaths) {
                if (!std::binary_search(seen.begin(), seen.end(), id)) {
                    throw SimError(At(where, "faulty_paths") + ": " + std::to_string(id) +
                                   " is not one of the disk's paths");
                }
            }
        }
    }

    void readDisks()
    {
        const Json& list = OptList(m_doc, "disks");
        if (list.size() > kMaxDisks) {
            throw SimError("disks: more than the driver's " + std::to_string(kMaxDisks));
        }
        m_diskWhere.clear();
        for (size_t i = 0; i < list.size(); ++i) {
            std::string where = Item("disks", i);
            const Json& d = list[i];
            SimDisk disk;
            disk.id = Id(d, "id", where, kMaxObjectId);
            disk.arrayId = JsonU32(JsonMember(d, "array", where), At(where, "array"));
            SimArray& array = arrayOf(disk.arrayId, At(where, "array"));
            disk.name = ReqText(d, "name", where, kLunNameLen);
            disk.wwn = ReqText(d, "wwn", where, kLunWwnLen);
            disk.capacity = JsonU64(JsonMember(d, "capacity", where), At(where, "capacity"));
            disk.owner = controllerOf(array, JsonU32(JsonMember(d, "owner", where), At(where, "owner")),
                                      At(where, "owner")).id;
            disk.worker = controllerOf(array, OptU32(d, "worker", where, disk.owner), At(where, "worker")).id;
            disk.hostLun = OptU32(d, "host_lun", where, 0);
            if (const Json* lun = JsonOptionalMember(d, "dev_lun_id", where)) {
                disk.devLunIdValid = true;
                disk.devLunId = JsonU32(*lun, At(where, "dev_lun_id"));
            }
            disk.unavailable = OptBool(d, "unavailable", where, false);
            readDiskPaths(d, where, array, disk);
            disk.firstLogicalPath = m_logicalPaths;
            m_logicalPaths += static_cast<uint32_t>(disk.paths.size());
            for (uint32_t id : disk.paths) {
                m_out.m_paths[m_out.m_pathIndex.at(id)].disks.push_back(disk.id);
            }
            array.disks.push_back(disk.id);
            m_out.m_disks.push_back(std::move(disk));
            index(m_out.m_diskIndex, m_out.m_disks, where, "disk");
            m_diskWhere.push_back(false);
        }
    }

    void readVlunMembers(const Json& v, const std::string& where, SimVlun& vlun)
    {
        vlun.disks = IdList(JsonMember(v, "disks", where), At(where, "disks"));
        size_t members = vlun.type == kVlunDualSite || vlun.type == kVlunMigration ? 2 : 1;
        if (vlun.disks.size() != members) {
            throw SimError(At(where, "disks") + ": a VLUN of this type has " + std::to_string(members) +
                           (members == 1 ? " disk" : " disks"));
        }
        for (uint32_t id : vlun.disks) {
            auto it = m_out.m_diskIndex.find(id);
            if (it == m_out.m_diskIndex.end()) {
                throw SimError(At(where, "disks") + ": no disk " + std::to_string(id));
            }
            if (m_diskWhere[it->second]) {
                throw SimError(At(where, "disks") + ": disk " + std::to_string(id) + " is in another VLUN");
            }
            m_diskWhere[it->second] = true;
            SimDisk& disk = m_out.m_disks[it->second];
            disk.vlunId = vlun.id;
            SimArray& array = m_out.m_arrays[m_out.m_arrayIndex.at(disk.arrayId)];
            if (array.vluns.empty() || array.vluns.back() != vlun.id) {
                array.vluns.push_back(vlun.id);
            }
        }
    }

    void readVluns()
    {
        const Json& list = OptList(m_doc, "vluns");
        if (list.size() > kMaxVluns) {
            throw SimError("vluns: more than the driver's " + std::to_string(kMaxVluns));
        }
        for (size_t i = 0; i < list.size(); ++i) {
            std::string where = Item("vluns", i);
            const Json& v = list[i];
            SimVlun vlun;
            vlun.id = Id(v, "id", where, kMaxObjectId);
            vlun.type = static_cast<uint8_t>(Code(v, "type", where, kVlunTypes, kVlunOrdinary));
            vlun.pe = OptBool(v, "pe", where, vlun.type == kVlunPe);
            vlun.device = ReqText(v, "device", where, kDeviceNameMax);
            readVlunMembers(v, where, vlun);
            const Json* wwn = JsonOptionalMember(v, "wwn", where);
            vlun.wwn = wwn != nullptr ? Text(*wwn, At(where, "wwn"), kLunWwnLen) : m_out.disk(vlun.disks[0])->wwn;
            if (const Json* sus = JsonOptionalMember(v, "io_suspension", where)) {
                std::string here = At(where, "io_suspension");
                uint32_t seconds = JsonU32(JsonMember(*sus, "timeout_seconds", here), At(here, "timeout_seconds"));
                if (seconds == 0 || seconds > std::numeric_limits<uint32_t>::max() / 1000) {
                    throw SimError(At(here, "timeout_seconds") + ": expected 1..4294967 seconds");
                }
                vlun.suspendTimeoutMs = seconds * 1000;
                vlun.suspendSince = JsonU64(JsonMember(*sus, "since", here), At(here, "since"));
            }
            m_out.m_vluns.push_back(std::move(vlun));
            index(m_out.m_vlunIndex, m_out.m_vluns, where, "VLUN");
        }
        for (size_t i = 0; i < m_diskWhere.size(); ++i) {
            if (!m_diskWhere[i]) {
                throw SimError(Item("disks", i) + ": disk " + std::to_string(m_out.m_disks[i].id) +
                               " is in no VLUN");
            }
        }
    }

    const Json& m_doc;
    SimObjects& m_out;
    std::vector<bool> m_diskWhere;  // per disk: a VLUN has claimed it
    uint32_t m_logicalPaths = 0;    // logical paths numbered so far
};

// ---------------------------------------------------------------------------

const SimController* SimArray::controller(uint32_t tpgId) const
{
    for (const SimController& c : controllers) {
        if (c.id == tpgId) {
            return &c;
        }
    }
    return nullptr;
}

bool SimDisk::onPath(uint32_t pathId) const
{
    return std::find(paths.begin(), paths.end(), pathId) != paths.end();
}

bool SimDisk::faultyOn(uint32_t pathId) const
{
    return std::binary_search(faultyPaths.begin(), faultyPaths.end(), pathId);
}

bool SimLogicalPath::normal() const
{
    return enabled && driverState == kLogicalWorking && !faulty && (ioState == kIoNormal || ioState == kIoFailback);
}

bool SimLogicalPath::degraded() const
{
    return enabled && driverState == kLogicalWorking && !faulty && ioState != kIoNormal && ioState != kIoFailback;
}

std::shared_ptr<const SimObjects> SimObjects::Build(const Json& driver)
{
    auto objects = std::make_shared<SimObjects>();
    SimObjectsReader(driver, *objects).read();
    return objects;
}

const SimHba* SimObjects::hbaByWwn(const std::string& wwn) const
{
    auto it = m_hbaWwnIndex.find(wwn);
    return it == m_hbaWwnIndex.end() ? nullptr : &m_hbas[it->second];
}

uint64_t SimObjects::elapsed(std::time_t now) const
{
    if (!m_hasStart || now < 0 || static_cast<uint64_t>(now) <= m_started) {
        return 0;
    }
    return static_cast<uint64_t>(now) - m_started;
}

bool SimObjects::pathEnabled(const SimPath& path) const
{
    const SimHba* h = hba(path.hbaId);
    return path.enabled && h != nullptr && h->enabled;
}

namespace {

// Block device names as the SCSI layer hands them out: "sd" and a
// bijective base-26 number (a..z, aa..zz, aaa...). Logical paths start at
// "sdaa", clear of the VLUNs' own devices.
std::string ScsiDeviceName(uint32_t ordinal)
{
    uint64_t n = static_cast<uint64_t>(ordinal) + 26 + 1;  // 1 is "a", 27 is "aa"
    std::string letters;
    while (n > 0) {
        --n;
        letters.insert(letters.begin(), static_cast<char>('a' + n % 26));
        n /= 26;
    }
    return "sd" + letters;
}

}  // namespace

SimLogicalPath SimObjects::logicalPath(const SimDisk& disk, const SimPath& path, bool withDevice) const
{
    SimLogicalPath lp{};
    lp.enabled = pathEnabled(path);
    lp.driverState = path.linkUp && path.present ? kLogicalWorking : kLogicalFailed;
    lp.ioState = path.ioState;
    lp.faulty = disk.faultyOn(path.id);
    if (!withDevice) {
        return lp;
    }
    auto at = std::find(disk.paths.begin(), disk.paths.end(), path.id);
    lp.scsiDevice = ScsiDeviceName(disk.firstLogicalPath + static_cast<uint32_t>(at - disk.paths.begin()));
    return lp;
}

bool SimObjects::pairNaming(const SimArray& array) { return (array.capability & kCapabilityPairNaming) != 0; }

SimObjectsPtr SimContext::objects()
{
    if (!*m_objects && m_source != nullptr) {
        *m_objects = m_source->snapshotObjects();
    }
    if (!*m_objects) {
        *m_objects = SimObjects::Build(m_driver);
    }
    return *m_objects;
}

// ---------------------------------------------------------------------------

uint32_t AnswerIdList(SimPayload& p, const SimIdList& layout, const std::vector<uint32_t>& ids)
{
    size_t capacity = layout.capacityOff == kFixedRoom ? (p.size() - layout.idsOff) / 4 : p.u32(layout.capacityOff);
    size_t count = std::min(ids.size(), capacity);
    SimPayload room = p.widened(std::max(p.size(), layout.idsOff + 4 * count));
    room.setU32(layout.countOff, static_cast<uint32_t>(count));
    for (size_t i = 0; i < count; ++i) {
        room.setU32(layout.idsOff + 4 * i, ids[i]);
    }
    return kResultSuccess;
}

}  // namespace cvsim

namespace cvsim {

void SimObjects::reindex()
{
    auto fill = [](auto& map, const auto& all) {
        map.clear();
        map.reserve(all.size());
        for (size_t i = 0; i < all.size(); ++i) {
            map.emplace(all[i].id, i);
        }
    };
    fill(m_arrayIndex, m_arrays);
    fill(m_hbaIndex, m_hbas);
    fill(m_pathIndex, m_paths);
    fill(m_diskIndex, m_disks);
    fill(m_vlunIndex, m_vluns);
    m_hbaWwnIndex.clear();
    for (size_t i = 0; i < m_hbas.size(); ++i) {
        m_hbaWwnIndex.emplace(m_hbas[i].wwn, i);
    }
}

}  // namespace cvsim
