// Performance statistics: interval rates, max/min blocks, the performance
// lists with their sums per VLUN, array and initiator, and the driver's
// per-path samples.
#include "uil/uil_perf.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bounded/bounded.h"
#include "mpi/mpi_scope.h"
#include "uia/uia.h"
#include "uil/uil_array.h"
#include "uil/uil_ids.h"
#include "uil/uil_wire_perf.h"

namespace wire = uil_perf_wire;

// ---------------------------------------------------------------------------
// Interval computation.

uint64_t UIL_PerfCounterDelta(uint64_t cur, uint64_t prev) { return cur < prev ? cur : cur - prev; }

namespace {

uint64_t perIo(uint64_t resp, uint64_t ios) { return ios == 0 ? 0 : resp / ios; }

void byteRates(UilPerfInfo* r, const UilPerfInfo& cur, const UilPerfInfo& prev, uint32_t interval)
{
    r->v[UIL_PERF_READ_KBS] =
        UIL_PerfCounterDelta(cur.v[UIL_PERF_READ_BYTES], prev.v[UIL_PERF_READ_BYTES]) / interval / UIL_PERF_KB;
    r->v[UIL_PERF_WRITE_KBS] =
        UIL_PerfCounterDelta(cur.v[UIL_PERF_WRITE_BYTES], prev.v[UIL_PERF_WRITE_BYTES]) / interval / UIL_PERF_KB;
}

// Total response per I/O: the reset rule applies to the two response
// counters taken together.
uint64_t totalResponse(const UilPerfInfo& cur, const UilPerfInfo& prev)
{
    uint64_t ios = UIL_PerfCounterDelta(cur.v[UIL_PERF_READ_IO], prev.v[UIL_PERF_READ_IO]) +
                   UIL_PerfCounterDelta(cur.v[UIL_PERF_WRITE_IO], prev.v[UIL_PERF_WRITE_IO]);
    uint64_t t = cur.v[UIL_PERF_READ_RESP] + cur.v[UIL_PERF_WRITE_RESP];
    uint64_t tPrev = prev.v[UIL_PERF_READ_RESP] + prev.v[UIL_PERF_WRITE_RESP];
    return perIo(UIL_PerfCounterDelta(t, tPrev), ios);
}

}  // namespace

void UIL_GetPerfDelta(const UilPerfInfo* cur, const UilPerfInfo* prev, UilPerfDelta* out)
{
    UIL_ASSERT(cur != nullptr && prev != nullptr && out != nullptr);
    auto d = [&](size_t i) { return UIL_PerfCounterDelta(cur->v[i], prev->v[i]); };
    *out = UilPerfDelta{d(UIL_PERF_READ_IO),    d(UIL_PERF_WRITE_IO),  d(UIL_PERF_READ_BYTES),
                        d(UIL_PERF_WRITE_BYTES), d(UIL_PERF_READ_RESP), d(UIL_PERF_WRITE_RESP)};
}

void UIL_ComputeBytePerInfo(UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime)
{
    UIL_ASSERT(cur != nullptr && prev != nullptr);
    UIL_ASSERT(0 != uiIntervalTime);
    byteRates(cur, *cur, *prev, uiIntervalTime);
}

void UIL_ComputeBytePerInfoS(const UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime,
                             UilPerfInfo* out)
{
    UIL_ASSERT(cur != nullptr && prev != nullptr && out != nullptr);
    if (uiIntervalTime == 0) {
        return;
    }
    UilPerfInfo r = *cur;
    byteRates(&r, *cur, *prev, uiIntervalTime);
    *out = r;
}

void UIL_ComputeTotalResonseTime(UilPerfInfo* cur, const UilPerfInfo* prev)
{
    UIL_ASSERT(cur != nullptr && prev != nullptr);
    cur->v[UIL_PERF_TOTAL_RT] = totalResponse(*cur, *prev);
}

void UIL_GetCurPerfInfoZero(UilPerfInfo* rec)
{
    UIL_ASSERT(rec != nullptr);
    uint64_t* v = rec->v;
    if (v[UIL_PERF_READ_IOPS] == 0 || v[UIL_PERF_READ_KBS] == 0) {
        v[UIL_PERF_READ_IOPS] = v[UIL_PERF_READ_KBS] = v[UIL_PERF_READ_RT] = 0;
    }
    if (v[UIL_PERF_WRITE_IOPS] == 0 || v[UIL_PERF_WRITE_KBS] == 0) {
        v[UIL_PERF_WRITE_IOPS] = v[UIL_PERF_WRITE_KBS] = v[UIL_PERF_WRITE_RT] = 0;
    }
    if (v[UIL_PERF_READ_IOPS] == 0 && v[UIL_PERF_WRITE_IOPS] == 0) {
        v[UIL_PERF_TOTAL_RT] = 0;
    }
}

void UIL_ComputePerfInfoS(const UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime,
                          UilPerfInfo* out)
{
    UIL_ASSERT(cur != nullptr && prev != nullptr && out != nullptr);
    UIL_ASSERT(0 != uiIntervalTime);
    UilPerfDelta d{};
    UIL_GetPerfDelta(cur, prev, &d);
    UilPerfInfo r = *cur;
    r.v[UIL_PERF_READ_IOPS] = d.readIo / uiIntervalTime;
    r.v[UIL_PERF_WRITE_IOPS] = d.writeIo / uiIntervalTime;
    byteRates(&r, *cur, *prev, uiIntervalTime);
    r.v[UIL_PERF_READ_RT] = perIo(d.readResp, d.readIo);
    r.v[UIL_PERF_WRITE_RT] = perIo(d.writeResp, d.writeIo);
    r.v[UIL_PERF_TOTAL_RT] = totalResponse(*cur, *prev);
    UIL_GetCurPerfInfoZero(&r);
    *out = r;
}

void UIL_ComputePerfInfo(UilPerfInfo* cur, const UilPerfInfo* prev, uint32_t uiIntervalTime)
{
    UIL_ComputePerfInfoS(cur, prev, uiIntervalTime, cur);
}

void UIL_ComputeResponseByDelta(UilPerfInfo* rec, const UilPerfDelta* delta)
{
    UIL_ASSERT(rec != nullptr && delta != nullptr);
    rec->v[UIL_PERF_READ_RT] = perIo(delta->readResp, delta->readIo);
    rec->v[UIL_PERF_WRITE_RT] = perIo(delta->writeResp, delta->writeIo);
    rec->v[UIL_PERF_TOTAL_RT] = perIo(delta->readResp + delta->writeResp, delta->readIo + delta->writeIo);
    UIL_GetCurPerfInfoZero(rec);
}

void UIL_PerfInfoAdd(UilPerfInfo* dst, const UilPerfInfo* src)
{
    UIL_ASSERT(dst != nullptr && src != nullptr);
    for (size_t i = 0; i < UIL_PERF_VALUES; ++i) {
        dst->v[i] += src->v[i];
    }
}

void UIL_PerfInfoAverageData(UilPerfInfo* rec, uint32_t n)
{
    UIL_ASSERT(rec != nullptr);
    if (n == 0) {
        return;
    }
    for (uint64_t& value : rec->v) {
        value /= n;
    }
}

// ---------------------------------------------------------------------------
// Max/min.

void UIL_InitializePerfMaxmin(UilPerfMaxMin* mm)
{
    UIL_ASSERT(mm != nullptr);
    *mm = UilPerfMaxMin{0, UINT64_MAX, 0, UINT64_MAX, 0, UINT64_MAX};
}

void UIL_CalPerfMaxminData(const UilPerfInfo* rec, UilPerfMaxMin* mm)
{
    UIL_ASSERT(rec != nullptr && mm != nullptr);
    uint64_t iops = rec->v[UIL_PERF_READ_IOPS] + rec->v[UIL_PERF_WRITE_IOPS];
    uint64_t kbs = rec->v[UIL_PERF_READ_KBS] + rec->v[UIL_PERF_WRITE_KBS];
    uint64_t resp = rec->v[UIL_PERF_TOTAL_RT];
    mm->maxIops = std::max(mm->maxIops, iops);
    mm->minIops = std::min(mm->minIops, iops);
    mm->maxKbs = std::max(mm->maxKbs, kbs);
    mm->minKbs = std::min(mm->minKbs, kbs);
    mm->maxResp = std::max(mm->maxResp, resp);
    mm->minResp = std::min(mm->minResp, resp);
}

void UIL_PerfMaxminDataCopy(UilPerfMaxMin* dst, const UilPerfMaxMin* src)
{
    UIL_ASSERT(dst != nullptr && src != nullptr);
    *dst = *src;
}

uint64_t UIL_PerfMinValue(uint64_t min) { return min == UINT64_MAX ? 0 : min; }

// ---------------------------------------------------------------------------
// Lists.

UilPerfEntry* UIL_PerfEntryAlloc(UilPerfKind kind)
{
    auto* entry = static_cast<UilPerfEntry*>(UIL_ZMalloc(sizeof(UilPerfEntry)));
    if (entry != nullptr) {
        entry->kind = kind;
        UIL_InitializePerfMaxmin(&entry->maxmin);
    }
    return entry;
}

void UIL_PerfListFree(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    while (!MPI_ListEmpty(head)) {
        MPI_ListNode* node = head->next;
        MPI_ListDelete(node);
        std::free(MPI_ListEntry<UilPerfEntry>(node));
    }
}

uint32_t UIL_PerfListCount(const MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    uint32_t n = 0;
    for (const MPI_ListNode* node = head->next; node != head; node = node->next) {
        ++n;
    }
    return n;
}

namespace {

template <class Fn>
void forEach(MPI_ListNode* head, Fn fn)
{
    for (MPI_ListNode* node = head->next; node != head;) {
        MPI_ListNode* next = node->next;
        fn(MPI_ListEntry<UilPerfEntry>(node));
        node = next;
    }
}

// Moves every entry of `from` to the end of `to`.
void splice(MPI_ListNode* from, MPI_ListNode* to)
{
    while (!MPI_ListEmpty(from)) {
        MPI_ListNode* node = from->next;
        MPI_ListDelete(node);
        MPI_ListAddTail(node, to);
    }
}

bool sameObject(const UilPerfEntry& a, const UilPerfEntry& b)
{
    if (a.kind != b.kind) {
        return false;
    }
    switch (a.kind) {
    case UIL_PERF_LOGIC_PATH:
        return a.diskId == b.diskId && a.pathId == b.pathId;
    case UIL_PERF_PHY_PATH:
        return a.pathId == b.pathId;
    case UIL_PERF_VLUN:
        return a.vlunId == b.vlunId;
    case UIL_PERF_ARRAY:
        return a.arrayId == b.arrayId;
    case UIL_PERF_INITIATOR:
        return std::strcmp(a.initiator, b.initiator) == 0;
    }
    return false;
}

template <class Less>
void sortList(MPI_ListNode* head, Less less)
{
    std::vector<UilPerfEntry*> entries;
    entries.reserve(UIL_PerfListCount(head));
    forEach(head, [&](UilPerfEntry* e) { entries.push_back(e); });
    std::stable_sort(entries.begin(), entries.end(), [&](const UilPerfEntry* a, const UilPerfEntry* b) {
        return less(*a, *b);
    });
    MPI_ListInit(head);
    for (UilPerfEntry* e : entries) {
        MPI_ListAddTail(&e->links, head);
    }
}

// Releases a list under construction unless it was handed over.
class ListGuard {
public:
    ListGuard() { MPI_ListInit(&m_head); }
    ListGuard(const ListGuard&) = delete;
    ListGuard& operator=(const ListGuard&) = delete;
    ~ListGuard() { UIL_PerfListFree(&m_head); }
    MPI_ListNode* head() { return &m_head; }
    void handTo(MPI_ListNode* out) { splice(&m_head, out); }

private:
    MPI_ListNode m_head;
};

}  // namespace

UilPerfEntry* UIL_PerfListFind(MPI_ListNode* list, const UilPerfEntry* key)
{
    UIL_ASSERT(list != nullptr && key != nullptr);
    for (MPI_ListNode* node = list->next; node != list; node = node->next) {
        UilPerfEntry* e = MPI_ListEntry<UilPerfEntry>(node);
        if (sameObject(*e, *key)) {
            return e;
        }
    }
    return nullptr;
}

void INTF_UIL_InitPathPerfMaxMin(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    forEach(head, [](UilPerfEntry* e) { UIL_InitializePerfMaxmin(&e->maxmin); });
}

void INTF_UIL_InitPhyPathPerfMaxMin(MPI_ListNode* head) { INTF_UIL_InitPathPerfMaxMin(head); }

uint32_t UIL_ComputePerfList(MPI_ListNode* cur, MPI_ListNode* prev, uint32_t uiIntervalTime)
{
    UIL_ASSERT(cur != nullptr && prev != nullptr);
    UIL_ASSERT(0 != uiIntervalTime);
    if (MPI_ListEmpty(prev)) {
        UIL_ERR("the preperflist is empty");
        return MPI_RET_NOT_FOUND;
    }
    forEach(cur, [&](UilPerfEntry* e) {
        const UilPerfEntry* p = UIL_PerfListFind(prev, e);
        if (p == nullptr) {
            return;
        }
        UIL_GetPerfDelta(&e->perf, &p->perf, &e->delta);
        UIL_ComputePerfInfo(&e->perf, &p->perf, uiIntervalTime);
        e->hasRates = true;
    });
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// Sorting.

void UIL_PathPerfSort(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    sortList(head, [](const UilPerfEntry& a, const UilPerfEntry& b) { return a.pathId < b.pathId; });
}

void UIL_PhyPathPerfSort(MPI_ListNode* head) { UIL_PathPerfSort(head); }

void UIL_PhyPathPerfSortByArrayAndTpgId(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    sortList(head, [](const UilPerfEntry& a, const UilPerfEntry& b) {
        return a.arrayId != b.arrayId ? a.arrayId < b.arrayId : a.controllerId < b.controllerId;
    });
}

// ---------------------------------------------------------------------------
// Aggregation.

namespace {

// The sum entry of kind `kind` that path `p` belongs to (identity only).
void identityOf(const UilPerfEntry& p, UilPerfKind kind, UilPerfEntry* out)
{
    out->kind = kind;
    switch (kind) {
    case UIL_PERF_VLUN:
        out->vlunId = p.vlunId;
        out->diskId = p.diskId;
        break;
    case UIL_PERF_ARRAY:
        out->arrayId = p.arrayId;
        (void)strcpy_s(out->arrayName, sizeof(out->arrayName), p.arrayName);
        break;
    case UIL_PERF_INITIATOR:
        out->hbaId = p.hbaId;
        (void)strcpy_s(out->initiator, sizeof(out->initiator), p.initiator);
        break;
    default:
        break;
    }
}

bool belongsTo(const UilPerfEntry& p, const UilPerfEntry& sum)
{
    switch (sum.kind) {
    case UIL_PERF_VLUN:
        return p.kind == UIL_PERF_LOGIC_PATH && p.vlunId == sum.vlunId;
    case UIL_PERF_ARRAY:
        return p.kind == UIL_PERF_PHY_PATH && p.arrayId == sum.arrayId;
    case UIL_PERF_INITIATOR:
        return p.kind == UIL_PERF_PHY_PATH && std::strcmp(p.initiator, sum.initiator) == 0;
    default:
        return false;
    }
}

// Sums the paths of `paths` that belong to `sum` (whose identity is set).
uint32_t sumPaths(MPI_ListNode* paths, UilPerfEntry* sum)
{
    sum->perf = UilPerfInfo{};
    sum->delta = UilPerfDelta{};
    sum->pathCount = 0;
    sum->hasRates = false;
    forEach(paths, [&](UilPerfEntry* p) {
        if (!belongsTo(*p, *sum)) {
            return;
        }
        UIL_PerfInfoAdd(&sum->perf, &p->perf);
        UilPerfDelta& d = sum->delta;
        d.readIo += p->delta.readIo;
        d.writeIo += p->delta.writeIo;
        d.readBytes += p->delta.readBytes;
        d.writeBytes += p->delta.writeBytes;
        d.readResp += p->delta.readResp;
        d.writeResp += p->delta.writeResp;
        sum->hasRates = sum->hasRates || p->hasRates;
        ++sum->pathCount;
    });
    UIL_ComputeResponseByDelta(&sum->perf, &sum->delta);
    return sum->pathCount == 0 ? MPI_RET_NOT_FOUND : MPI_RET_SUCCESS;
}

uint32_t sumOne(MPI_ListNode* paths, UilPerfKind kind, const UilPerfEntry& key, UilPerfEntry* out)
{
    UIL_ASSERT(paths != nullptr && out != nullptr);
    identityOf(key, kind, out);
    return sumPaths(paths, out);
}

// One sum entry per distinct object of `kind` among `paths`, appended to
// `out` in key order.
uint32_t buildSums(MPI_ListNode* paths, UilPerfKind kind, MPI_ListNode* out, const char* what)
{
    UIL_ASSERT(paths != nullptr && out != nullptr);
    ListGuard built;
    uint32_t ret = MPI_RET_SUCCESS;
    forEach(paths, [&](UilPerfEntry* p) {
        UilPerfEntry key{};
        identityOf(*p, kind, &key);
        if (ret != MPI_RET_SUCCESS || !belongsTo(*p, key) || UIL_PerfListFind(built.head(), &key) != nullptr) {
            return;
        }
        UilPerfEntry* sum = UIL_PerfEntryAlloc(kind);
        if (sum == nullptr) {
            UIL_ERR("Alloc %s performance memory fail", what);
            ret = MPI_RET_FAIL;
            return;
        }
        identityOf(*p, kind, sum);
        MPI_ListAddTail(&sum->links, built.head());
    });
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    forEach(built.head(), [&](UilPerfEntry* sum) { (void)sumPaths(paths, sum); });
    sortList(built.head(), [](const UilPerfEntry& a, const UilPerfEntry& b) {
        if (a.kind == UIL_PERF_INITIATOR) {
            return std::strcmp(a.initiator, b.initiator) < 0;
        }
        return a.kind == UIL_PERF_VLUN ? a.vlunId < b.vlunId : a.arrayId < b.arrayId;
    });
    built.handTo(out);
    return MPI_RET_SUCCESS;
}

}  // namespace

void UIL_PerfEntryAverage(UilPerfEntry* entry)
{
    UIL_ASSERT(entry != nullptr);
    if (entry->accumSamples == 0) {
        return;
    }
    UilPerfInfo avg = entry->accum;
    UIL_PerfInfoAverageData(&avg, entry->accumSamples);
    for (size_t i = UIL_PERF_READ_IOPS; i <= UIL_PERF_TOTAL_RT; ++i) {
        entry->perf.v[i] = avg.v[i];
    }
}

uint32_t UIL_GetVLUNPerfInfoByPath(MPI_ListNode* paths, uint32_t vlunId, UilPerfEntry* out)
{
    UilPerfEntry key{};
    key.vlunId = vlunId;
    uint32_t ret = sumOne(paths, UIL_PERF_VLUN, key, out);
    // The disk shown beside the VLUN is that of its first path.
    bool first = true;
    forEach(paths, [&](UilPerfEntry* p) {
        if (first && belongsTo(*p, *out)) {
            out->diskId = p->diskId;
            first = false;
        }
    });
    return ret;
}

uint32_t UIL_GetVLUNPerfInfo(MPI_ListNode* paths, MPI_ListNode* vluns)
{
    return buildSums(paths, UIL_PERF_VLUN, vluns, "vlun");
}

uint32_t UIL_GetArrayPerfInfo(MPI_ListNode* phyPaths, uint32_t arrayId, UilPerfEntry* out)
{
    UilPerfEntry key{};
    key.arrayId = arrayId;
    return sumOne(phyPaths, UIL_PERF_ARRAY, key, out);
}

uint32_t UIL_ComputeSumOfInitiatorPerf(MPI_ListNode* phyPaths, const char* initiator, UilPerfEntry* out)
{
    UIL_ASSERT(initiator != nullptr);
    UilPerfEntry key{};
    (void)strcpy_s(key.initiator, sizeof(key.initiator), initiator);
    return sumOne(phyPaths, UIL_PERF_INITIATOR, key, out);
}

void UIL_ComputeArrayAveragePerf(UilPerfEntry* entry) { UIL_PerfEntryAverage(entry); }
void UIL_ComputeInitiatorAveragePerf(UilPerfEntry* entry) { UIL_PerfEntryAverage(entry); }

uint32_t INTF_UIL_GetAndCreateInitiatorsPerfByPhyPath(MPI_ListNode* phyPaths, MPI_ListNode* out)
{
    return buildSums(phyPaths, UIL_PERF_INITIATOR, out, "initiator");
}

uint32_t INTF_UIL_GetAndCreateArrayPerfByPhyPath(MPI_ListNode* phyPaths, MPI_ListNode* out)
{
    return buildSums(phyPaths, UIL_PERF_ARRAY, out, "array");
}

void UIL_ReplacePerfData(MPI_ListNode* cur, MPI_ListNode* prev)
{
    UIL_ASSERT(cur != nullptr && prev != nullptr);
    forEach(cur, [&](UilPerfEntry* e) {
        const UilPerfEntry* p = UIL_PerfListFind(prev, e);
        if (p == nullptr) {
            return;
        }
        if (!e->driverMaxMin) {
            UIL_PerfMaxminDataCopy(&e->maxmin, &p->maxmin);
        }
        e->accum = p->accum;
        e->accumSamples = p->accumSamples;
    });
    UIL_PerfListFree(prev);
    splice(cur, prev);
}

void INTF_UIL_ReplaceInitiatorPerfData(MPI_ListNode* cur, MPI_ListNode* prev) { UIL_ReplacePerfData(cur, prev); }
void INTF_UIL_ReplaceArrayPerfData(MPI_ListNode* cur, MPI_ListNode* prev) { UIL_ReplacePerfData(cur, prev); }

// ---------------------------------------------------------------------------
// Driver samples.

namespace {

void readCounters(const UiaPayload& payload, size_t counters, size_t extra, UilPerfInfo* out)
{
    *out = UilPerfInfo{};
    for (size_t i = 0; i < wire::kCounterCount; ++i) {
        out->v[i] = payload.u64(counters + i * wire::kU64);
    }
    out->v[UIL_PERF_EXTRA] = payload.u64(extra);
}

// A fresh entry in place: an entry already in a list stays linked.
void resetKeepingLinks(UilPerfEntry* e)
{
    MPI_ListNode links = e->links;
    *e = UilPerfEntry{};
    e->links = links;
}

}  // namespace

void UIL_TrasPhyPathPerfInfo(const UiaPayload& payload, UilPerfEntry* out)
{
    UIL_ASSERT(out != nullptr);
    resetKeepingLinks(out);
    out->kind = UIL_PERF_PHY_PATH;
    out->pathId = payload.u32(wire::phy::kId);
    out->arrayId = payload.u32(wire::phy::kArrayId);
    out->controllerId = payload.u32(wire::phy::kControllerId);
    out->hbaId = payload.u32(wire::phy::kHbaId);
    payload.text(wire::phy::kArrayName, wire::phy::kArrayNameLen, out->arrayName, sizeof(out->arrayName));
    payload.text(wire::phy::kInitiator, wire::phy::kPortLen, out->initiator, sizeof(out->initiator));
    payload.text(wire::phy::kTarget, wire::phy::kPortLen, out->target, sizeof(out->target));
    readCounters(payload, wire::phy::kCounters, wire::phy::kExtra, &out->perf);
    UIL_InitializePerfMaxmin(&out->maxmin);
    if (payload.u8(wire::phy::kHasMaxMin) == 1) {
        // The seventh word of the driver's block has no use here.
        uint64_t words[wire::phy::kMaxMinWords];
        for (size_t i = 0; i < wire::phy::kMaxMinWords; ++i) {
            words[i] = payload.u64(wire::phy::kMaxMin + i * wire::kU64);
        }
        out->maxmin = UilPerfMaxMin{words[0], words[1], words[2], words[3], words[4], words[5]};
        out->driverMaxMin = 1;
    }
}

uint32_t UIL_GetPhyPathPerfInfo(uint32_t pathId, UilPerfEntry* out)
{
    UIL_ASSERT(out != nullptr);
    UiaPayload payload(uia_req::GetPhyPathPerf.size);
    payload.setU32(wire::phy::kId, pathId);
    uint32_t ret = UIA_Send(uia_req::GetPhyPathPerf, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query physical path performance by ioctl fail, path id {%u}", pathId);
        return ret;
    }
    UIL_TrasPhyPathPerfInfo(payload, out);
    out->pathId = pathId;  // the entry stands for the path that was asked for
    return MPI_RET_SUCCESS;
}

void UIL_TransPathIoStatisticInfo(const UiaPayload& payload, UilPerfEntry* out)
{
    UIL_ASSERT(out != nullptr);
    resetKeepingLinks(out);
    out->kind = UIL_PERF_LOGIC_PATH;
    out->diskId = payload.u32(wire::logic::kDiskId);
    out->pathId = payload.u32(wire::logic::kPathId);
    out->vlunId = payload.u32(wire::logic::kVlunId);
    readCounters(payload, wire::logic::kCounters, wire::logic::kExtra, &out->perf);
    UIL_InitializePerfMaxmin(&out->maxmin);
}

uint32_t INTF_UIL_GetPathIoStatisticInfo(uint32_t diskId, uint32_t pathId, UilPerfEntry* out)
{
    UIL_ASSERT(out != nullptr);
    UiaPayload payload(uia_req::GetPathIoStat.size);
    payload.setU32(wire::logic::kDiskId, diskId);
    payload.setU32(wire::logic::kPathId, pathId);
    uint32_t ret = UIA_Send(uia_req::GetPathIoStat, payload);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Query path io statistic by ioctl fail, disk id {%u}, path id {%u}", diskId, pathId);
        return ret;
    }
    UIL_TransPathIoStatisticInfo(payload, out);
    out->diskId = diskId;
    out->pathId = pathId;
    return MPI_RET_SUCCESS;
}

namespace {

using SampleFn = uint32_t (*)(uint32_t owner, uint32_t pathId, UilPerfEntry* out);

uint32_t samplePhy(uint32_t /*array*/, uint32_t pathId, UilPerfEntry* out)
{
    return UIL_GetPhyPathPerfInfo(pathId, out);
}
uint32_t sampleLogic(uint32_t diskId, uint32_t pathId, UilPerfEntry* out)
{
    return INTF_UIL_GetPathIoStatisticInfo(diskId, pathId, out);
}

// Samples each listed path once (a path listed twice is sampled once) into
// `out`, in path ID order. 1024, 2 when none could be read, 1030 out of memory.
uint32_t samplePaths(const UilIdList& ids, uint32_t owner, SampleFn sample, UilPerfKind kind, const char* allocMsg,
                     MPI_ListNode* out)
{
    ListGuard built;
    for (uint32_t pathId : ids.view()) {
        UilPerfEntry key{};
        key.kind = kind;
        key.pathId = pathId;
        key.diskId = owner;
        if (UIL_PerfListFind(built.head(), &key) != nullptr) {
            continue;
        }
        UilPerfEntry* e = UIL_PerfEntryAlloc(kind);
        if (e == nullptr) {
            UIL_ERR("%s", allocMsg);
            return MPI_RET_FAIL;
        }
        if (sample(owner, pathId, e) != MPI_RET_SUCCESS) {
            std::free(e);
            continue;
        }
        MPI_ListAddTail(&e->links, built.head());
    }
    if (MPI_ListEmpty(built.head())) {
        return MPI_RET_NOT_FOUND;
    }
    UIL_PathPerfSort(built.head());
    built.handTo(out);
    return MPI_RET_SUCCESS;
}

// Lists the paths of `owner` with `Start`, samples each, releases the list.
template <auto Start, auto End>
uint32_t sampleListed(uint32_t owner, const char* what, SampleFn sample, UilPerfKind kind, const char* allocMsg,
                      MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    UilIdList* ids = nullptr;
    uint32_t ret = Start(owner, &ids);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Enumerate %s {%u} fail. ret {%u}", what, owner, ret);
        return ret;
    }
    MPI_Ended<End> idsOwner(ids);
    return samplePaths(*ids, owner, sample, kind, allocMsg, head);
}

}  // namespace

uint32_t INTF_UIL_EnumeratePhyPathPerfStart(uint32_t arrayId, MPI_ListNode* head)
{
    return sampleListed<UIL_EnumeratePhyPathIdsStart, UIL_EnumeratePhyPathIdsEnd>(
        arrayId, "physical path ids of array", samplePhy, UIL_PERF_PHY_PATH, "Alloc memory for PhyPath perf info fail",
        head);
}

uint32_t INTF_UIL_EnumeratePathPerfStart(uint32_t diskId, MPI_ListNode* head)
{
    return sampleListed<UIL_EnumeratePathIdsStart, UIL_EnumeratePathIdsEnd>(
        diskId, "path ids of disk", sampleLogic, UIL_PERF_LOGIC_PATH, "Allocate memory of path performance info fail",
        head);
}

uint32_t INTF_UIL_EnumerateAllPathPerfStart(MPI_ListNode* head)
{
    UIL_ASSERT(head != nullptr);
    UilIdList* arrays = nullptr;
    uint32_t ret = INTF_UIL_EnumerateArrayIdsStart(&arrays);
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    MPI_Ended<INTF_UIL_EnumerateArrayIdsEnd> arraysOwner(arrays);
    ListGuard built;
    std::vector<uint32_t> seen;
    for (uint32_t arrayId : arrays->view()) {
        UilIdList* disks = nullptr;
        if (INTF_UIL_EnumerateArrayDiskIdsStart(arrayId, &disks) != MPI_RET_SUCCESS) {
            continue;  // an array without disks has no logical path
        }
        MPI_Ended<INTF_UIL_EnumerateDiskIdsEnd> disksOwner(disks);
        for (uint32_t diskId : disks->view()) {
            if (std::find(seen.begin(), seen.end(), diskId) != seen.end()) {
                continue;
            }
            seen.push_back(diskId);
            ret = INTF_UIL_EnumeratePathPerfStart(diskId, built.head());
            if (ret == MPI_RET_FAIL || ret == MPI_RET_NO_MEMORY) {
                return ret;  // out of memory: nothing half-built is handed out
            }
        }
    }
    if (MPI_ListEmpty(built.head())) {
        return MPI_RET_NOT_FOUND;
    }
    built.handTo(head);
    return MPI_RET_SUCCESS;
}

