// The simulated multipath driver. The preload hands every ioctl aimed at the
// sandbox's device node to cvsim::DeviceIoctl, which decodes the request
// code, applies any scripted fault, answers from the driver model, and
// appends one line to the request log.
//
// Adding a request: write its handler in a model_<family>.cpp file, declare
// it below, and add one row to the table in model_table.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace cvsim {

using Json = nlohmann::ordered_json;  // keeps the topology's key order in state.json

// Result codes the model writes into the request frame.
inline constexpr uint32_t kResultSuccess = 1024;
inline constexpr uint32_t kResultInvalid = 1026;
// What the frame holds when the model did not touch it: the program presets it.
inline constexpr uint32_t kResultUntouched = 0xFFFFFFFF;

// Any failure of the model itself (unreadable topology, bad payload access,
// a broken sandbox). Caught at DeviceIoctl and never crosses into the program.
class SimError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// ---------------------------------------------------------------------------
// Payload access: little-endian fields at byte offsets, bounds-checked
// against the size the request declares. The model keeps its own helpers
// instead of sharing the program's, so a layout slip on one side shows up
// as a mismatch on the other.
class SimPayload {
public:
    SimPayload(uint8_t* base, size_t size) : m_base(base), m_size(size) {}

    size_t size() const { return m_size; }

    uint8_t u8(size_t off) const { return static_cast<uint8_t>(get(off, 1)); }
    uint16_t u16(size_t off) const { return static_cast<uint16_t>(get(off, 2)); }
    uint32_t u32(size_t off) const { return static_cast<uint32_t>(get(off, 4)); }
    uint64_t u64(size_t off) const { return get(off, 8); }

    void setU8(size_t off, uint8_t v) { put(off, 1, v); }
    void setU16(size_t off, uint16_t v) { put(off, 2, v); }
    void setU32(size_t off, uint32_t v) { put(off, 4, v); }
    void setU64(size_t off, uint64_t v) { put(off, 8, v); }

    // A fixed text field of `len` bytes: the text, then NUL padding. A text
    // of exactly `len` bytes fills the field with no terminator, as the
    // driver may; a longer one is a topology error.
    void setText(size_t off, size_t len, std::string_view text);
    void zero(size_t off, size_t len);

    // Enumerations pass a buffer larger than the declared size and say how
    // large in the payload itself (a capacity word); the driver trusts it.
    SimPayload widened(size_t size) const { return SimPayload(m_base, size); }
    // The whole payload: for answers kept ready in a snapshot.
    std::span<uint8_t> bytes() const { return {m_base, m_size}; }

private:
    // Inline: a large listing answers tens of thousands of requests of a
    // dozen fields each, and the model must stay out of cvadm's figures.
    void check(size_t off, size_t width) const
    {
        if (off > m_size || width > m_size - off) [[unlikely]] {
            outOfBounds(off, width);
        }
    }
    uint64_t get(size_t off, size_t width) const
    {
        check(off, width);
        uint64_t v = 0;
        for (size_t i = 0; i < width; ++i) {
            v |= static_cast<uint64_t>(m_base[off + i]) << (8 * i);
        }
        return v;
    }
    void put(size_t off, size_t width, uint64_t v)
    {
        check(off, width);
        for (size_t i = 0; i < width; ++i) {
            m_base[off + i] = static_cast<uint8_t>(v >> (8 * i));
        }
    }
    [[noreturn]] void outOfBounds(size_t off, size_t width) const;

    uint8_t* m_base;
    size_t m_size;
};

// ---------------------------------------------------------------------------
// The storage objects read from the driver document (model_objects.h).
class SimObjects;
using SimObjectsPtr = std::shared_ptr<const SimObjects>;

// A driver document loaded from a snapshot (model_snapshot.cpp) holds
// everything but the storage object lists, whose objects come ready-made
// from the snapshot; the source completes the document when a request
// needs it whole (to change it).
class SimDocumentSource {
public:
    virtual ~SimDocumentSource() = default;
    // Replaces the partial document by the whole one; nothing when whole.
    virtual void completeDocument() = 0;
    // The snapshot's objects, or null when the document is whole (they are
    // then read from it).
    virtual SimObjectsPtr snapshotObjects() = 0;
};

// What a handler sees of the driver: its state document (the topology as
// first loaded, then whatever the requests changed) and the clock.
class SimContext {
public:
    // `objects` keeps the storage objects read from `driver` from one
    // request to the next (the process keeps one slot per document);
    // without it the context reads them for itself. `source`, when given,
    // completes a partial `driver` (see SimDocumentSource).
    explicit SimContext(Json& driver, SimObjectsPtr* objects = nullptr, SimDocumentSource* source = nullptr)
        : m_driver(driver), m_objects(objects != nullptr ? objects : &m_ownObjects), m_source(source)
    {
    }
    SimContext(const SimContext&) = delete;
    SimContext& operator=(const SimContext&) = delete;

    // Its storage object lists may be absent: read those through objects().
    const Json& driver() const { return m_driver; }
    // For requests that change the driver: the state is saved after the
    // request. Check the request fully before changing anything: a handler
    // that fails half-way leaves its changes in this process's state.
    // The storage objects are read again at their next use; a handler's
    // own SimObjectsPtr stays the snapshot it took.
    Json& changeDriver()
    {
        if (m_source != nullptr) {
            m_source->completeDocument();
        }
        m_changed = true;
        m_objects->reset();
        return m_driver;
    }
    bool changed() const { return m_changed; }
    // Read once per request, so every time in one answer agrees.
    std::time_t now();
    // True once now() was read: the answer depends on the clock.
    bool readClock() const { return m_now.has_value(); }
    // The arrays, paths, disks, VLUNs and HBAs of the driver document,
    // indexed by ID (model_objects.cpp).
    SimObjectsPtr objects();

private:
    Json& m_driver;
    SimObjectsPtr m_ownObjects;
    SimObjectsPtr* m_objects;
    SimDocumentSource* m_source;
    std::optional<std::time_t> m_now;
    bool m_changed = false;
};

using SimHandler = uint32_t (*)(SimContext& ctx, SimPayload& payload);

inline constexpr int32_t kNoCountField = -1;

struct SimRequestRow {
    uint32_t nr;
    uint32_t size;        // declared payload size, carried in the request code
    SimHandler handler;
    int32_t countOffset;  // u32 count the answer carries (for the count= fault), or kNoCountField
};

const SimRequestRow* FindRequest(uint32_t nr);

// The request code as the driver decodes it: _IOR('M', nr, size).
struct SimCode {
    uint32_t dir;
    uint32_t type;
    uint32_t nr;
    uint32_t size;
};
inline constexpr uint32_t kDirRead = 2;
inline constexpr uint32_t kTypeLetter = 0x4D;  // 'M'
SimCode DecodeCode(unsigned long code);

// ---------------------------------------------------------------------------
// Snapshots (model_snapshot.cpp): the parsed driver document cached beside
// its JSON file, so that a large topology is not parsed and checked again
// by every process. A snapshot names the file it was made from by device,
// inode, size, modification and change times, and the model library by
// size and modification time: any change to either makes it stale.
struct SimSnapshotKey {
    uint64_t words[7] = {};
    bool operator==(const SimSnapshotKey&) const = default;
};
// False when `source` does not exist.
bool SnapshotKeyOf(const std::string& source, SimSnapshotKey& key);
// Documents smaller than this are parsed faster than a snapshot is read.
inline constexpr uint64_t kSnapshotMinSource = 64 * 1024;

class SimSnapshot;
void CloseSnapshot(SimSnapshot* snap);
struct SimSnapshotCloser {
    void operator()(SimSnapshot* s) const { CloseSnapshot(s); }
};
// Shared: objects decoded lazily from the mapping keep it alive.
using SimSnapshotPtr = std::shared_ptr<SimSnapshot>;
// The snapshot at `path` made from the source `key` names; null when
// there is none, or it is stale or damaged.
SimSnapshotPtr OpenSnapshot(const std::string& path, const SimSnapshotKey& key);
// Writes the snapshot of `doc` (whose storage objects are `objects`) with
// the ready answers of the read-only record requests; a failure only
// costs speed and is not reported.
void WriteSnapshot(const std::string& path, const SimSnapshotKey& key, Json& doc,
                   const SimObjectsPtr& objects) noexcept;
// True for the requests whose answers a snapshot keeps ready.
bool SnapshotKeepsAnswers(uint32_t nr);
// The snapshot's document without its storage object lists.
Json SnapshotHead(const SimSnapshot& snap);
// Its objects; throws SimError when they cannot be read back.
SimObjectsPtr SnapshotObjects(const SimSnapshotPtr& snap);

// ---------------------------------------------------------------------------
// Reading the topology and state documents with errors that name the place.
const Json& JsonMember(const Json& obj, const char* key, const std::string& where);
const Json* JsonOptionalMember(const Json& obj, const char* key, const std::string& where);
uint32_t JsonU32(const Json& v, const std::string& where);
uint64_t JsonU64(const Json& v, const std::string& where);
const std::string& JsonString(const Json& v, const std::string& where);
const Json& JsonArray(const Json& v, const std::string& where);

// Broken-down UTC time as the driver reports it: u16 year, u8 month (1-12),
// u8 day, u8 hour, u8 minute, u8 second.
inline constexpr size_t kWireTimeLen = 7;
void PutWireTime(SimPayload& p, size_t off, std::time_t t);

// ---------------------------------------------------------------------------
// Sandbox files ($CVADM_ROOT/sim/...).
struct SimPaths {
    std::string root;
    std::string simDir;
    std::string topology;
    std::string state;
    std::string requestLog;
    std::string faults;
    std::string diagLog;
    std::string lock;
};
SimPaths MakePaths(const std::string& root);

bool ReadFile(const std::string& path, std::string& out);  // false when absent
int OpenAppend(const std::string& path);  // throws SimError
void WriteLine(int fd, std::string_view line, const std::string& path);  // one write(2); throws SimError
void WriteFileAtomic(const std::string& path, std::string_view data);
void AppendLine(const std::string& path, std::string_view line);
// A problem with the simulation's own setup: stderr and sim.log.
void Complain(const SimPaths& paths, const std::string& msg);

// ---------------------------------------------------------------------------
// The request log (sim/requests.log), one line per request:
//   nr=<nr> code=0x<code> size=<declared> result=<result> in=<hex> out=<hex>
// CVSIM_REQUEST_LOG picks how much is written: `full` (the default),
// `brief` (the line without its payload bytes, enough to count requests)
// or `off` (nothing: for timing the program, not the model).
enum class RequestLogMode { Full, Brief, Off };
// Reports an unknown value on stderr once and keeps the default.
RequestLogMode RequestLogModeFromEnv();

struct SimLoggedRequest {
    uint32_t nr;
    unsigned long code;
    uint32_t size;
    uint32_t result;
    std::span<const uint8_t> in;   // the logged bytes before the request
    std::span<const uint8_t> out;  // and after
};
// The request's line, newline included, into `line` (its memory reused).
void FormatRequestLine(std::string& line, const SimLoggedRequest& req, RequestLogMode mode);

// ---------------------------------------------------------------------------
// Scripted faults ($CVADM_ROOT/sim/faults).
enum class FaultKind { Refuse, Untouched, Code, Count };
struct Fault {
    FaultKind kind;
    uint32_t value;  // Code: the result; Count: the count
};
// Takes the first fault that applies to request `nr` (consuming one of its
// times); false when none does.
bool TakeFault(const SimPaths& paths, uint32_t nr, Fault& out);

// ---------------------------------------------------------------------------
// Clock: CVSIM_NOW=<unix seconds> fixes it, otherwise the real time. With
// CVSIM_FASTCLOCK=1 the preload turns the program's sleeps into advances of
// a shared offset instead of waiting; SimNow and the program's clocks all
// add that offset, so a run of many intervals takes no real time.
std::time_t SimNow();
// Whole seconds the fast clock has been advanced so far.
int64_t SimClockOffsetSec();
// Advances the fast clock by `ns` nanoseconds.
void SimClockAdvance(int64_t ns);
// Nanoseconds the fast clock has been advanced so far.
int64_t SimClockOffsetNs();

// ---------------------------------------------------------------------------
// The entry used by the preload: `arg` is the request frame. Returns what
// ioctl returns and sets errno on failure.
int DeviceIoctl(const char* root, unsigned long code, void* arg) noexcept;

// ---------------------------------------------------------------------------
// Handlers, one family per file.
uint32_t HandleVersion(SimContext& ctx, SimPayload& p);      // model_general.cpp
uint32_t HandleWorkerTable(SimContext& ctx, SimPayload& p);  // model_general.cpp
uint32_t HandleCfgNotify(SimContext& ctx, SimPayload& p);    // model_config.cpp
uint32_t HandleCfgDelete(SimContext& ctx, SimPayload& p);    // model_config.cpp

}  // namespace cvsim
