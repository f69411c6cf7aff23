// The storage objects of the simulated driver: arrays with their
// controllers (target port groups), HBAs, physical paths, disks and VLUNs,
// read from the driver document once and indexed by ID, so that a request
// on a host of 16384 VLUNs costs no more than one on a small host.
//
// The objects are a read-only snapshot. A request that changes the driver
// changes the document (SimContext::changeDriver), which drops the snapshot;
// the next request reads the document again.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model.h"

namespace cvsim {

// What the driver holds at most.
inline constexpr uint32_t kMaxArrays = 128;
inline constexpr uint32_t kMaxControllers = 16;      // TPG IDs 0..15 of one array
inline constexpr uint32_t kMaxControllerPaths = 8;   // physical paths of one TPG
inline constexpr uint32_t kMaxVluns = 16384;
inline constexpr uint32_t kMaxDisks = 16384;
inline constexpr uint32_t kMaxPhyPaths = 16384;
inline constexpr uint32_t kMaxDiskPaths = 128;       // logical paths of one disk

// Results for an object the driver does not know.
inline constexpr uint32_t kResultNoArray = 1057;
inline constexpr uint32_t kResultNoVlun = 1039;
inline constexpr uint32_t kResultNoObject = kResultInvalid;  // disk, path, controller, HBA

// Port types on the wire.
inline constexpr uint32_t kPortFc = 1;
inline constexpr uint32_t kPortSas = 2;
inline constexpr uint32_t kPortIscsi = 3;
inline constexpr uint32_t kPortFcoe = 4;
inline constexpr uint32_t kPortIb = 5;

// Path I/O states and the driver's logical path states.
inline constexpr uint32_t kIoNormal = 19;
inline constexpr uint32_t kIoFailback = 20;
inline constexpr uint32_t kLogicalWorking = 9;
inline constexpr uint32_t kLogicalFailed = 10;

// VLUN type codes.
inline constexpr uint8_t kVlunOrdinary = 37;
inline constexpr uint8_t kVlunDualSite = 38;
inline constexpr uint8_t kVlunMigration = 39;
inline constexpr uint8_t kVlunPe = 41;

// Field widths shared by several records.
inline constexpr size_t kArrayNameLen = 80;
inline constexpr size_t kArraySnLen = 20;
inline constexpr size_t kLunWwnLen = 32;
inline constexpr size_t kPortNameLen = 241;
inline constexpr size_t kIscsiNameMax = 224;  // the address follows at byte 225 of the field
inline constexpr size_t kTpgNameLen = 16;

struct SimController {
    uint32_t id = 0;
    std::string name;  // "" when the array gives none
    bool enabled = true;
    bool remote = false;
    std::vector<uint32_t> paths;  // physical path IDs, in topology order
};

struct SimArray {
    uint32_t id = 0;
    size_t jsonIndex = 0;  // place in the document's "arrays"
    std::string name;      // UTF-8
    std::string sn;
    std::string vendor;
    std::string product;
    std::string revision;
    std::string driver;    // vendor driver key
    uint32_t capability = 0;
    std::array<uint8_t, 3> flagBytes{};  // payload bytes 440, 441, 442
    std::vector<SimController> controllers;  // topology order
    std::vector<uint32_t> disks;  // disk IDs, topology order
    std::vector<uint32_t> vluns;  // VLUNs with a member disk here, each once
    std::vector<uint32_t> paths;  // physical path IDs, topology order

    const SimController* controller(uint32_t tpgId) const;
};

struct SimHba {
    uint32_t id = 0;
    std::string wwn;  // iSCSI: the initiator name
    uint32_t portType = kPortFc;
    uint32_t scsiHost = 0;
    std::string driver;  // vendor and driver name
    bool enabled = true;
    std::vector<uint32_t> paths;
};

// A counter that grows from `base` by `perHour` from the driver's start.
struct SimCounter {
    uint64_t base = 0;
    uint64_t perHour = 0;
    uint64_t at(uint64_t elapsedSeconds) const { return base + perHour * elapsedSeconds / 3600; }
};

struct SimPath {
    uint32_t id = 0;
    uint32_t arrayId = 0;
    uint32_t controllerId = 0;
    uint32_t hbaId = 0;
    bool enabled = true;  // the operator's switch; a disabled HBA disables its paths too
    bool linkUp = true;
    bool present = true;  // false: the driver keeps the record of a path that has gone
    uint32_t ioState = kIoNormal;
    uint32_t checkStart = 20;
    uint32_t checkStep = 100;
    uint32_t prevCheckStep = 100;
    SimCounter ioRetry;
    SimCounter pathFaults;
    uint64_t latencyLowMs = 0;
    uint64_t latencyAvgMs = 0;
    uint64_t latencyHighMs = 0;
    std::string target;
    std::string portId;
    bool hasInitiatorIp = false;
    std::array<uint8_t, 16> initiatorIp{};  // IPv4 in the first 4 bytes, the rest zero
    uint32_t initiatorTcpPort = 0;
    uint32_t targetTcpPort = 0;
    uint32_t scsiTarget = 0;  // SCSI target number on its HBA: the path's place in the HBA's list
    std::vector<uint32_t> disks;  // disks whose I/O runs over this path
};

struct SimDisk {
    uint32_t id = 0;
    uint32_t arrayId = 0;
    uint32_t vlunId = 0;
    std::string name;
    std::string wwn;
    uint64_t capacity = 0;  // bytes
    uint32_t owner = 0;     // controller IDs
    uint32_t worker = 0;
    uint32_t hostLun = 0;
    bool devLunIdValid = false;
    uint32_t devLunId = 0;
    bool unavailable = false;
    std::vector<uint32_t> paths;        // its logical paths, by physical path ID
    std::vector<uint32_t> faultyPaths;  // logical paths flagged faulty, sorted
    uint32_t firstLogicalPath = 0;      // host-wide number of its first logical path
    bool onPath(uint32_t pathId) const;
    bool faultyOn(uint32_t pathId) const;
};

struct SimVlun {
    uint32_t id = 0;
    uint8_t type = kVlunOrdinary;
    bool pe = false;
    std::string wwn;
    std::string device;  // host block device
    std::vector<uint32_t> disks;  // members: one, or two for dual-site and migration
    uint32_t suspendTimeoutMs = 0;  // manual I/O suspension, 0 = none
    uint64_t suspendSince = 0;
};

// A logical path (one disk over one physical path) as the driver keeps it.
struct SimLogicalPath {
    bool enabled;
    uint32_t driverState;  // kLogicalWorking or kLogicalFailed
    uint32_t ioState;
    bool faulty;
    std::string scsiDevice;  // the host's block device of this path ("sdaa", ...)
    bool normal() const;    // carrying I/O normally
    bool degraded() const;  // carrying I/O, but in a degraded I/O state
};

class SimSnapshot;

// The disks or VLUNs of a snapshot, decoded one by one at first use: a
// request about one VLUN does not pay for the 16384 others, nor does a
// process that asks only about arrays or paths.
template <typename T>
class SimLazyObjects {
public:
    // `table`: one entry per object, by ascending ID: u32 ID, u32 zero, u64
    // end of its encoding in `elements` (the encodings lie back to back).
    // `keep` keeps the mapping that both views point into.
    SimLazyObjects(std::shared_ptr<const SimSnapshot> keep, std::string_view table, std::string_view elements);
    const T* find(uint32_t id) const;

private:
    std::shared_ptr<const SimSnapshot> m_keep;
    std::string_view m_table;
    std::string_view m_elements;
    mutable std::vector<std::unique_ptr<T>> m_decoded;  // by table slot
};

class SimObjects {
public:
    // Reads the objects of the driver document. Throws SimError naming the
    // place of the first thing that is wrong.
    static std::shared_ptr<const SimObjects> Build(const Json& driver);

    const SimArray* array(uint32_t id) const { return find(m_arrays, m_arrayIndex, id); }
    const SimHba* hba(uint32_t id) const { return find(m_hbas, m_hbaIndex, id); }
    const SimHba* hbaByWwn(const std::string& wwn) const;
    const SimPath* path(uint32_t id) const { return find(m_paths, m_pathIndex, id); }
    const SimDisk* disk(uint32_t id) const
    {
        return m_lazyDisks ? m_lazyDisks->find(id) : find(m_disks, m_diskIndex, id);
    }
    const SimVlun* vlun(uint32_t id) const
    {
        return m_lazyVluns ? m_lazyVluns->find(id) : find(m_vluns, m_vlunIndex, id);
    }

    const std::vector<SimArray>& arrays() const { return m_arrays; }
    const std::vector<SimHba>& hbas() const { return m_hbas; }
    const std::vector<SimPath>& paths() const { return m_paths; }

    // Seconds the driver has been running at `now` (0 when the topology
    // gives no start): counters grow with it.
    uint64_t elapsed(std::time_t now) const;

    // The path's enabled flag as reported: the operator's switch and its HBA's.
    bool pathEnabled(const SimPath& path) const;
    // `withDevice` false leaves out the block device name (only the states
    // are wanted).
    SimLogicalPath logicalPath(const SimDisk& disk, const SimPath& path, bool withDevice = true) const;
    // Copies the snapshot's ready answer to request `nr` about the object
    // whose u32 ID the payload holds at offset 0; false when there is none
    // (the handler answers then).
    bool cannedAnswer(uint32_t nr, SimPayload& p) const;

    // Engine and letter naming when the array's capability bit 24 is set.
    static bool pairNaming(const SimArray& array);

private:
    template <typename T>
    static const T* find(const std::vector<T>& all, const std::unordered_map<uint32_t, size_t>& index,
                         uint32_t id)
    {
        // Topologies number their objects from 0 in order, mostly: then the
        // ID is the place, and no hashing is needed.
        if (id < all.size() && all[id].id == id) {
            return &all[id];
        }
        auto it = index.find(id);
        return it == index.end() ? nullptr : &all[it->second];
    }

    friend class SimObjectsReader;
    friend class SimObjectsCodec;  // snapshots (model_snapshot.cpp)

    // Rebuilds the ID indexes from the object lists.
    void reindex();

    std::vector<SimArray> m_arrays;
    std::vector<SimHba> m_hbas;
    std::vector<SimPath> m_paths;
    std::vector<SimDisk> m_disks;
    std::vector<SimVlun> m_vluns;
    std::unordered_map<uint32_t, size_t> m_arrayIndex;
    std::unordered_map<uint32_t, size_t> m_hbaIndex;
    std::unordered_map<uint32_t, size_t> m_pathIndex;
    std::unordered_map<uint32_t, size_t> m_diskIndex;
    std::unordered_map<uint32_t, size_t> m_vlunIndex;
    std::unordered_map<std::string, size_t> m_hbaWwnIndex;
    // Set instead of m_disks and m_vluns when the objects come from a snapshot.
    std::unique_ptr<SimLazyObjects<SimDisk>> m_lazyDisks;
    std::unique_ptr<SimLazyObjects<SimVlun>> m_lazyVluns;
    // Ready answers of a snapshot: per request number, a table like the
    // lazy objects' and the answers back to back, each `size` bytes.
    struct Canned {
        uint32_t nr = 0;
        size_t size = 0;
        std::string_view table;
        std::string_view answers;
    };
    std::vector<Canned> m_canned;
    std::shared_ptr<const SimSnapshot> m_cannedKeep;
    bool m_hasStart = false;
    uint64_t m_started = 0;
};

// ---------------------------------------------------------------------------
// ID-list answers: the program says how many IDs its buffer holds (the
// capacity word), the driver answers how many it wrote (never more than
// the capacity) and the IDs.
struct SimIdList {
    size_t capacityOff;  // kFixedRoom: the buffer is the declared size, no word
    size_t countOff;
    size_t idsOff;
};
inline constexpr size_t kFixedRoom = static_cast<size_t>(-1);

// Writes `ids` (clamped) and their count; returns kResultSuccess.
uint32_t AnswerIdList(SimPayload& p, const SimIdList& layout, const std::vector<uint32_t>& ids);

// ---------------------------------------------------------------------------
// Handlers of the storage-object requests.
uint32_t HandleArrayIds(SimContext& ctx, SimPayload& p);        // 0x0b, model_storage.cpp
uint32_t HandleArrayInfo(SimContext& ctx, SimPayload& p);       // 0x0c
uint32_t HandleSyncArrayInfo(SimContext& ctx, SimPayload& p);   // 0x0d
uint32_t HandleArrayDiskIds(SimContext& ctx, SimPayload& p);    // 0x15
uint32_t HandleDiskInfo(SimContext& ctx, SimPayload& p);        // 0x17
uint32_t HandleArrayVlunIds(SimContext& ctx, SimPayload& p);    // 0x19
uint32_t HandleTpgIds(SimContext& ctx, SimPayload& p);          // 0x3c
uint32_t HandleTpgInfo(SimContext& ctx, SimPayload& p);         // 0x3d
uint32_t HandleTpgName(SimContext& ctx, SimPayload& p);         // 0x3e
uint32_t HandleVlunInfo(SimContext& ctx, SimPayload& p);        // 0x5f
uint32_t HandleDsInfo(SimContext& ctx, SimPayload& p);          // 0x5d
uint32_t HandlePhyPathDiskIds(SimContext& ctx, SimPayload& p);  // 0x16, model_paths.cpp
uint32_t HandleLogicalPathIds(SimContext& ctx, SimPayload& p);  // 0x1f
uint32_t HandleLogicalPathInfo(SimContext& ctx, SimPayload& p); // 0x20
uint32_t HandlePhyPathIds(SimContext& ctx, SimPayload& p);      // 0x29
uint32_t HandlePhyPathInfo(SimContext& ctx, SimPayload& p);     // 0x2a
uint32_t HandleHbaPathIds(SimContext& ctx, SimPayload& p);      // 0x2c
uint32_t HandleHbaByWwn(SimContext& ctx, SimPayload& p);        // 0x40
uint32_t HandleHbaById(SimContext& ctx, SimPayload& p);         // 0x41
uint32_t HandleHbaIds(SimContext& ctx, SimPayload& p);          // 0x42

}  // namespace cvsim
