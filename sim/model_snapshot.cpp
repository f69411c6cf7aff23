// Snapshots of the parsed driver document (see model.h). The file:
//
//   magic "cvsimsn3", the key (7 u64), u64 length + the document without
//   its storage object lists (JSON text), u64 length + the storage objects
//   (the fields of model_objects.h in declaration order: integers
//   little-endian as stored, texts and lists as a u64 count and their
//   elements), except that disks and VLUNs come last as two lookup
//   sections: u64 length + a table of {u32 ID, u32 0, u64 end} by
//   ascending ID, u64 length + the objects' encodings back to back; then
//   u64 count of ready-answer kinds, each u32 request nr, u32 payload size
//   and two sections like those (table, answers back to back).
//
// It is mapped, not read: a request that needs no storage object (the
// driver version) touches only its first page, and a disk or VLUN is
// decoded only when a request asks for it.
#include "model_objects.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>

namespace cvsim {

namespace {

constexpr char kMagic[8] = {'c', 'v', 's', 'i', 'm', 's', 'n', '3'};
constexpr size_t kKeyWords = std::size(SimSnapshotKey{}.words);
constexpr size_t kHeaderSize = sizeof kMagic + 8 * kKeyWords;

// The storage object kinds named by the document's top-level keys.
constexpr const char* kObjectKeys[] = {"hbas", "arrays", "paths", "disks", "vluns"};

uint64_t Nanos(const struct timespec& t)
{
    return static_cast<uint64_t>(t.tv_sec) * 1000000000u + static_cast<uint64_t>(t.tv_nsec);
}

// The file of this library (or of the program it is linked into): a model
// built anew makes every snapshot stale, whatever it changed.
bool ModelFileStat(struct stat& st)
{
    static const int kAnchor = 0;
    Dl_info info{};
    return dladdr(&kAnchor, &info) != 0 && info.dli_fname != nullptr && ::stat(info.dli_fname, &st) == 0;
}

}  // namespace

// A lookup table of the snapshot: one 16-byte entry per object, by
// ascending ID: u32 ID, u32 zero, u64 end of its bytes in the section that
// follows. The bytes of `id`, or false when the table has no such ID.
bool LookUp(std::string_view table, std::string_view data, uint32_t id, std::string_view& out, size_t* slot = nullptr)
{
    constexpr size_t kEntry = 16;
    const size_t count = table.size() / kEntry;
    auto idAt = [&](size_t i) {
        uint32_t v = 0;
        std::memcpy(&v, table.data() + i * kEntry, sizeof v);
        return v;
    };
    auto endAt = [&](size_t i) {
        uint64_t v = 0;
        std::memcpy(&v, table.data() + i * kEntry + 8, sizeof v);
        return v;
    };
    // IDs are mostly dense from 0: try the entry of the same number first.
    size_t lo = 0;
    size_t hi = count;
    if (id < count && idAt(id) == id) {
        lo = hi = id;
    }
    while (lo < hi) {
        size_t mid = lo + (hi - lo) / 2;
        if (idAt(mid) < id) {
            lo = mid + 1;
        } else {
            hi = mid;
        }
    }
    if (lo == count || idAt(lo) != id) {
        return false;
    }
    uint64_t begin = lo == 0 ? 0 : endAt(lo - 1);
    uint64_t end = endAt(lo);
    if (begin > end || end > data.size()) {
        throw SimError("snapshot: a damaged object table");
    }
    out = data.substr(begin, end - begin);
    if (slot != nullptr) {
        *slot = lo;
    }
    return true;
}

// The read-only record requests whose answers a snapshot keeps ready: the
// disk record (0x17) and the VLUN record (0x5f), the two requests a VLUN
// listing sends per VLUN. The model's share of such a listing is then its
// request handling alone, so that a measurement shows the program's cost.
struct CannedRequest {
    uint32_t nr;
    bool vluns;  // the IDs asked about: VLUNs, else disks
};
constexpr CannedRequest kCannedRequests[] = {{0x17, false}, {0x5f, true}};

// Writes and reads the fields of SimObjects. One visitor per structure
// serves both directions, so the two cannot disagree on the layout.
class SimObjectsCodec {
public:
    class Writer {
    public:
        std::string out;

        void raw(const void* p, size_t n) { out.append(static_cast<const char*>(p), n); }
        void operator()(uint64_t v) { raw(&v, sizeof v); }
        void operator()(uint32_t v) { raw(&v, sizeof v); }
        void operator()(uint8_t v) { raw(&v, sizeof v); }
        void operator()(bool v) { (*this)(static_cast<uint8_t>(v ? 1 : 0)); }
        template <size_t N>
        void operator()(const std::array<uint8_t, N>& v) { raw(v.data(), N); }
        void operator()(const std::string& s)
        {
            (*this)(static_cast<uint64_t>(s.size()));
            raw(s.data(), s.size());
        }
        void operator()(const std::vector<uint32_t>& v)
        {
            (*this)(static_cast<uint64_t>(v.size()));
            raw(v.data(), 4 * v.size());
        }
        template <typename T>
        void operator()(const std::vector<T>& v)
        {
            (*this)(static_cast<uint64_t>(v.size()));
            for (const T& x : v) {
                Visit(*this, x);
            }
        }
    };

    class Reader {
    public:
        explicit Reader(std::string_view in) : m_in(in) {}
        bool done() const { return m_at == m_in.size(); }

        void raw(void* p, size_t n)
        {
            if (n == 0) {
                return;  // an empty list may have no storage at all
            }
            if (n > m_in.size() - m_at) {
                throw SimError("snapshot: objects cut short");
            }
            std::memcpy(p, m_in.data() + m_at, n);
            m_at += n;
        }
        void operator()(uint64_t& v) { fixed(v); }
        void operator()(uint32_t& v) { fixed(v); }
        void operator()(uint8_t& v) { fixed(v); }
        void operator()(bool& v)
        {
            uint8_t b = 0;
            (*this)(b);
            v = b != 0;
        }
        template <size_t N>
        void operator()(std::array<uint8_t, N>& v) { fixed(v); }
        void operator()(std::string& s)
        {
            s.resize(count(1));
            raw(s.data(), s.size());
        }
        void operator()(std::vector<uint32_t>& v)
        {
            v.resize(count(4));
            raw(v.data(), 4 * v.size());
        }
        template <typename T>
        void operator()(std::vector<T>& v)
        {
            v.resize(count(1));
            for (T& x : v) {
                Visit(*this, x);
            }
        }
        // A u64 length and that many bytes, left where they are.
        void section(std::string_view& out)
        {
            size_t n = count(1);
            out = m_in.substr(m_at, n);
            m_at += n;
        }

    private:
        // A field of a size known here: copied without a call, as a
        // listing decodes a few hundred thousand of them.
        template <typename T>
        void fixed(T& v)
        {
            if (sizeof v > m_in.size() - m_at) {
                throw SimError("snapshot: objects cut short");
            }
            std::memcpy(&v, m_in.data() + m_at, sizeof v);
            m_at += sizeof v;
        }

        // An element count that the rest of the input can hold.
        size_t count(size_t minElementSize)
        {
            uint64_t n = 0;
            (*this)(n);
            if (n > (m_in.size() - m_at) / minElementSize) {
                throw SimError("snapshot: a count past the end");
            }
            return static_cast<size_t>(n);
        }

        std::string_view m_in;
        size_t m_at = 0;
    };

    // An answer kept ready: the request, the object's ID, the payload.
    struct CannedAnswer {
        uint32_t nr;
        uint32_t id;
        std::vector<uint8_t> bytes;
    };

    static std::string Encode(const SimObjects& o, const std::vector<CannedAnswer>& canned)
    {
        Writer w;
        // The writer only reads; the visitors take the objects as mutable
        // so that the reader can share them.
        SimObjects& m = const_cast<SimObjects&>(o);
        Fields(w, m.m_hasStart, m.m_started, m.m_arrays, m.m_hbas, m.m_paths);
        LookupSection(w, m.m_disks);
        LookupSection(w, m.m_vluns);
        w(static_cast<uint64_t>(std::size(kCannedRequests)));
        for (const CannedRequest& req : kCannedRequests) {
            const SimRequestRow* row = FindRequest(req.nr);
            w(req.nr);
            w(static_cast<uint32_t>(row != nullptr ? row->size : 0));
            Writer table;
            Writer answers;
            for (const CannedAnswer& a : canned) {  // by request, then ascending ID
                if (a.nr == req.nr) {
                    answers.raw(a.bytes.data(), a.bytes.size());
                    table(a.id);
                    table(uint32_t{0});
                    table(static_cast<uint64_t>(answers.out.size()));
                }
            }
            PutSection(w, table.out);
            PutSection(w, answers.out);
        }
        return std::move(w.out);
    }

    static SimObjectsPtr Decode(std::string_view in, const SimSnapshotPtr& keep)
    {
        auto o = std::make_shared<SimObjects>();
        Reader r(in);
        Fields(r, o->m_hasStart, o->m_started, o->m_arrays, o->m_hbas, o->m_paths);
        std::string_view table;
        std::string_view elements;
        r.section(table);
        r.section(elements);
        o->m_lazyDisks = std::make_unique<SimLazyObjects<SimDisk>>(keep, table, elements);
        r.section(table);
        r.section(elements);
        o->m_lazyVluns = std::make_unique<SimLazyObjects<SimVlun>>(keep, table, elements);
        uint64_t kinds = 0;
        r(kinds);
        for (uint64_t i = 0; i < kinds && i < std::size(kCannedRequests); ++i) {
            SimObjects::Canned c;
            uint32_t size = 0;
            r(c.nr);
            r(size);
            c.size = size;
            r.section(c.table);
            r.section(c.answers);
            o->m_canned.push_back(c);
        }
        o->m_cannedKeep = keep;
        if (!r.done()) {
            throw SimError("snapshot: bytes after the objects");
        }
        o->reindex();
        return o;
    }

    // One disk or VLUN of a lookup section.
    template <typename T>
    static void DecodeOne(std::string_view in, T& out)
    {
        Reader r(in);
        Visit(r, out);
        if (!r.done()) {
            throw SimError("snapshot: a damaged object");
        }
    }

private:
    template <typename T>
    static void LookupSection(Writer& w, std::vector<T>& all)
    {
        std::vector<const T*> byId;
        byId.reserve(all.size());
        for (const T& x : all) {
            byId.push_back(&x);
        }
        std::sort(byId.begin(), byId.end(), [](const T* a, const T* b) { return a->id < b->id; });
        Writer table;
        Writer elements;
        for (const T* x : byId) {
            Visit(elements, *x);
            table(x->id);
            table(uint32_t{0});
            table(static_cast<uint64_t>(elements.out.size()));
        }
        PutSection(w, table.out);
        PutSection(w, elements.out);
    }

    static void PutSection(Writer& w, const std::string& bytes)
    {
        w(static_cast<uint64_t>(bytes.size()));
        w.raw(bytes.data(), bytes.size());
    }

    template <typename IO, typename... F>
    static void Fields(IO& io, F&... f)
    {
        (io(f), ...);
    }

    template <typename IO, typename T>
    static void Visit(IO& io, const T& x)
    {
        Visit(io, const_cast<T&>(x));
    }

    template <typename IO>
    static void Visit(IO& io, SimController& c)
    {
        Fields(io, c.id, c.name, c.enabled, c.remote, c.paths);
    }
    template <typename IO>
    static void Visit(IO& io, SimArray& a)
    {
        uint64_t jsonIndex = a.jsonIndex;
        Fields(io, a.id, jsonIndex, a.name, a.sn, a.vendor, a.product, a.revision, a.driver, a.capability,
               a.flagBytes, a.controllers, a.disks, a.vluns, a.paths);
        a.jsonIndex = static_cast<size_t>(jsonIndex);
    }
    template <typename IO>
    static void Visit(IO& io, SimHba& h)
    {
        Fields(io, h.id, h.wwn, h.portType, h.scsiHost, h.driver, h.enabled, h.paths);
    }
    template <typename IO>
    static void Visit(IO& io, SimPath& p)
    {
        Fields(io, p.id, p.arrayId, p.controllerId, p.hbaId, p.enabled, p.linkUp, p.present, p.ioState,
               p.checkStart, p.checkStep, p.prevCheckStep, p.ioRetry.base, p.ioRetry.perHour, p.pathFaults.base,
               p.pathFaults.perHour, p.latencyLowMs, p.latencyAvgMs, p.latencyHighMs, p.target, p.portId,
               p.hasInitiatorIp, p.initiatorIp, p.initiatorTcpPort, p.targetTcpPort, p.scsiTarget, p.disks);
    }
    template <typename IO>
    static void Visit(IO& io, SimDisk& d)
    {
        Fields(io, d.id, d.arrayId, d.vlunId, d.name, d.wwn, d.capacity, d.owner, d.worker, d.hostLun,
               d.devLunIdValid, d.devLunId, d.unavailable, d.paths, d.faultyPaths, d.firstLogicalPath);
    }
    template <typename IO>
    static void Visit(IO& io, SimVlun& v)
    {
        Fields(io, v.id, v.type, v.pe, v.wwn, v.device, v.disks, v.suspendTimeoutMs, v.suspendSince);
    }
};

class SimSnapshot {
public:
    SimSnapshot(const void* map, size_t size) : m_map(map), m_size(size) {}
    SimSnapshot(const SimSnapshot&) = delete;
    SimSnapshot& operator=(const SimSnapshot&) = delete;
    ~SimSnapshot() { ::munmap(const_cast<void*>(m_map), m_size); }

    std::string_view bytes() const { return {static_cast<const char*>(m_map), m_size}; }
    std::string_view head;
    std::string_view objects;

private:
    const void* m_map;
    size_t m_size;
};

void CloseSnapshot(SimSnapshot* snap) { delete snap; }

bool SnapshotKeyOf(const std::string& source, SimSnapshotKey& key)
{
    struct stat src{};
    if (::stat(source.c_str(), &src) != 0) {
        if (errno == ENOENT) {
            return false;
        }
        throw SimError("cannot read " + source + ": " + std::strerror(errno));
    }
    struct stat model{};
    if (!ModelFileStat(model)) {
        model = {};
    }
    key = SimSnapshotKey{{static_cast<uint64_t>(src.st_dev), static_cast<uint64_t>(src.st_ino),
                          static_cast<uint64_t>(src.st_size), Nanos(src.st_mtim), Nanos(src.st_ctim),
                          static_cast<uint64_t>(model.st_size), Nanos(model.st_mtim)}};
    return true;
}

namespace {

// A u64 length and that many bytes at `at`; false when they do not fit.
bool Section(std::string_view all, size_t& at, std::string_view& out)
{
    uint64_t n = 0;
    if (all.size() - at < sizeof n) {
        return false;
    }
    std::memcpy(&n, all.data() + at, sizeof n);
    at += sizeof n;
    if (n > all.size() - at) {
        return false;
    }
    out = all.substr(at, static_cast<size_t>(n));
    at += static_cast<size_t>(n);
    return true;
}

void PutSection(std::string& out, std::string_view data)
{
    uint64_t n = data.size();
    out.append(reinterpret_cast<const char*>(&n), sizeof n);
    out.append(data);
}

}  // namespace

SimSnapshotPtr OpenSnapshot(const std::string& path, const SimSnapshotKey& key)
{
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return nullptr;
    }
    struct stat st{};
    void* map = MAP_FAILED;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && static_cast<size_t>(st.st_size) >= kHeaderSize) {
        map = ::mmap(nullptr, static_cast<size_t>(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    }
    ::close(fd);
    if (map == MAP_FAILED) {
        return nullptr;
    }
    SimSnapshotPtr snap(new SimSnapshot(map, static_cast<size_t>(st.st_size)), SimSnapshotCloser{});
    std::string_view all = snap->bytes();
    SimSnapshotKey stored;
    std::memcpy(stored.words, all.data() + sizeof kMagic, sizeof stored.words);
    size_t at = kHeaderSize;
    if (std::memcmp(all.data(), kMagic, sizeof kMagic) != 0 || !(stored == key) ||
        !Section(all, at, snap->head) || !Section(all, at, snap->objects) || at != all.size()) {
        return nullptr;
    }
    return snap;
}

namespace {

// The answers of kCannedRequests for every disk and VLUN of the arrays, as
// the handlers give them. An answer that read the clock (a suspended VLUN)
// or failed is not kept: the handler answers it each time.
std::vector<SimObjectsCodec::CannedAnswer> CannedAnswers(Json& doc, const SimObjectsPtr& objects)
{
    std::vector<SimObjectsCodec::CannedAnswer> out;
    std::set<uint32_t> disks;
    std::set<uint32_t> vluns;
    for (const SimArray& a : objects->arrays()) {
        disks.insert(a.disks.begin(), a.disks.end());
        vluns.insert(a.vluns.begin(), a.vluns.end());
    }
    SimObjectsPtr slot = objects;
    for (const CannedRequest& req : kCannedRequests) {
        const SimRequestRow* row = FindRequest(req.nr);
        if (row == nullptr) {
            continue;
        }
        for (uint32_t id : req.vluns ? vluns : disks) {
            std::vector<uint8_t> bytes(row->size);
            SimPayload p(bytes.data(), bytes.size());
            p.setU32(0, id);
            SimContext ctx(doc, &slot);
            try {
                if (row->handler(ctx, p) == kResultSuccess && !ctx.readClock() && !ctx.changed()) {
                    out.push_back({req.nr, id, std::move(bytes)});
                }
            } catch (const SimError&) {
                // answered by the handler, which reports it
            }
        }
    }
    return out;
}

}  // namespace

void WriteSnapshot(const std::string& path, const SimSnapshotKey& key, Json& doc,
                   const SimObjectsPtr& objects) noexcept
{
    try {
        Json head = doc;
        for (const char* k : kObjectKeys) {
            head.erase(k);
        }
        std::string out(kMagic, sizeof kMagic);
        out.append(reinterpret_cast<const char*>(key.words), sizeof key.words);
        PutSection(out, head.dump());
        PutSection(out, SimObjectsCodec::Encode(*objects, CannedAnswers(doc, objects)));
        // No fsync: a snapshot lost or cut short by a crash is only stale.
        std::string tmp = path + ".tmp." + std::to_string(::getpid());
        int fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644);
        if (fd < 0) {
            return;
        }
        bool ok = ::write(fd, out.data(), out.size()) == static_cast<ssize_t>(out.size());
        ok = ::close(fd) == 0 && ok;
        if (!ok || ::rename(tmp.c_str(), path.c_str()) != 0) {
            ::unlink(tmp.c_str());
        }
    } catch (...) {
        // no memory for the copy: the next process parses the JSON again
    }
}

bool SnapshotKeepsAnswers(uint32_t nr)
{
    return std::any_of(std::begin(kCannedRequests), std::end(kCannedRequests),
                       [nr](const CannedRequest& req) { return req.nr == nr; });
}

Json SnapshotHead(const SimSnapshot& snap)
{
    Json head = Json::parse(snap.head, nullptr, false);
    if (head.is_discarded() || !head.is_object()) {
        throw SimError("snapshot: damaged document");
    }
    return head;
}

SimObjectsPtr SnapshotObjects(const SimSnapshotPtr& snap) { return SimObjectsCodec::Decode(snap->objects, snap); }

template <typename T>
SimLazyObjects<T>::SimLazyObjects(std::shared_ptr<const SimSnapshot> keep, std::string_view table,
                                  std::string_view elements)
    : m_keep(std::move(keep)), m_table(table), m_elements(elements)
{
}

template <typename T>
const T* SimLazyObjects<T>::find(uint32_t id) const
{
    std::string_view bytes;
    size_t slot = 0;
    if (!LookUp(m_table, m_elements, id, bytes, &slot)) {
        return nullptr;
    }
    if (m_decoded.empty()) {
        m_decoded.resize(m_table.size() / 16);
    }
    if (!m_decoded[slot]) {
        auto obj = std::make_unique<T>();
        SimObjectsCodec::DecodeOne(bytes, *obj);
        m_decoded[slot] = std::move(obj);
    }
    return m_decoded[slot].get();
}

bool SimObjects::cannedAnswer(uint32_t nr, SimPayload& p) const
{
    for (const Canned& c : m_canned) {
        if (c.nr != nr || c.size != p.size()) {
            continue;
        }
        std::string_view answer;
        if (!LookUp(c.table, c.answers, p.u32(0), answer) || answer.size() != c.size) {
            return false;
        }
        std::memcpy(p.bytes().data(), answer.data(), answer.size());
        return true;
    }
    return false;
}

template class SimLazyObjects<SimDisk>;
template class SimLazyObjects<SimVlun>;

}  // namespace cvsim
