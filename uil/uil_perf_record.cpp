// The periodic performance record: every 25 seconds the paths are sampled
// and each object's interval rates fold into its max/min block and period
// accumulator; every 295 seconds the period's averages are written, one
// line per array, initiator, physical path, VLUN and logical path; at the
// end of the configured duration recording switches itself off.
#include <fcntl.h>

#include <algorithm>
#include <cinttypes>
#include <ctime>
#include <filesystem>
#include <string>

#include "bounded/bounded.h"
#include "mpi/mpi_root.h"
#include "mpi/mpi_scope.h"
#include "uia/uia.h"
#include "uil/uil_cfg.h"
#include "uil/uil_file.h"
#include "uil/uil_oper.h"
#include "uil/uil_perf.h"
#include "uil/uil_setcfg.h"
#include "uil/uil_wire_perf.h"

namespace wire = uil_perf_wire;

uint64_t UIL_GetTimecount() { return static_cast<uint64_t>(time(nullptr)); }

uint64_t UIL_GetMonotonicSec()
{
    struct timespec ts {};
    (void)clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<uint64_t>(ts.tv_sec);
}

uint32_t INTF_UIL_SetPerfRecord(const char* source, uint32_t enable, uint32_t hours)
{
    UIL_ASSERT(source != nullptr);
    char hoursText[16] = {};
    char low[16] = {};
    char high[16] = {};
    uint64_t now = UIL_GetTimecount();
    (void)snprintf_s(hoursText, sizeof(hoursText), sizeof(hoursText) - 1, "%d", static_cast<int>(hours));
    (void)snprintf_s(low, sizeof(low), sizeof(low) - 1, "%u", static_cast<uint32_t>(now));
    (void)snprintf_s(high, sizeof(high), sizeof(high) - 1, "%u", static_cast<uint32_t>(now >> 32));
    const char* const items[][2] = {
        {"performance_record", enable != 0 ? "1" : "0"},
        {"performance_record_duration", hoursText},
        {"performance_record_startl", low},
        {"performance_record_starth", high},
    };
    for (const auto& item : items) {
        uint32_t ret = INTF_UIL_SetCommonHandler(item[0], item[1], "");
        if (ret != MPI_RET_SUCCESS) {
            UIL_ERR("%s: set %s fail. ret {%u}", source, item[0], ret);
            return ret;
        }
    }
    return MPI_RET_SUCCESS;
}

// ---------------------------------------------------------------------------
// Context.

namespace {

uint32_t sampleAllPhyPaths(MPI_ListNode* head) { return INTF_UIL_EnumeratePhyPathPerfStart(UIL_ALL_ARRAYS, head); }

template <class Fn>
void forEachEntry(MPI_ListNode* head, Fn fn)
{
    for (MPI_ListNode* node = head->next; node != head; node = node->next) {
        fn(MPI_ListEntry<UilPerfEntry>(node));
    }
}

MPI_ListNode* contextLists(UilPerfRecordContext* ctx, size_t i)
{
    MPI_ListNode* lists[] = {&ctx->phyPaths, &ctx->logicPaths, &ctx->arrays, &ctx->initiators, &ctx->vluns};
    return lists[i];
}
constexpr size_t kContextLists = 5;

// The interval's rates of one entry into its block and its accumulator.
void fold(UilPerfEntry* e)
{
    if (!e->hasRates) {
        return;
    }
    if (!e->driverMaxMin) {
        UIL_CalPerfMaxminData(&e->perf, &e->maxmin);
    }
    UIL_PerfInfoAdd(&e->accum, &e->perf);
    ++e->accumSamples;
}

void startPeriod(UilPerfEntry* e)
{
    e->accum = UilPerfInfo{};
    e->accumSamples = 0;
    if (!e->driverMaxMin) {
        UIL_InitializePerfMaxmin(&e->maxmin);
    }
}

bool isUsable(uint32_t sampleRet) { return sampleRet == MPI_RET_SUCCESS || sampleRet == MPI_RET_NOT_FOUND; }

// The record file, opened for appending; its directory is made when missing.
UilFd openRecordFile()
{
    char path[MPI_PATH_BUF_LEN + sizeof(UIL_PERF_RECORD_FILE)] = {};
    UIL_PerfRecordFilePath(path, sizeof(path));
    std::error_code ignored;
    std::filesystem::create_directories(MPI_HostPath(UIL_PERF_RECORD_DIR), ignored);
    UilFd fd(open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640));
    if (!fd.valid()) {
        UIL_ERR("Open performance record file {%s} fail", path);
    }
    return fd;
}

// Averages and writes one entry's line in one write, when it took samples
// in the period.
bool writeEntry(int fd, uint32_t recordNo, const char* time, UilPerfEntry* e)
{
    if (e->accumSamples == 0) {
        return true;
    }
    UIL_PerfEntryAverage(e);
    char line[UIL_PERF_LINE_SIZE];
    if (UIL_FormatPerfRecordLine(recordNo, time, e, line, sizeof(line)) != MPI_RET_SUCCESS ||
        !UIL_WriteAll(fd, line)) {
        UIL_ERR("Write performance record line fail");
        return false;
    }
    return true;
}

void wallTimeText(uint64_t sec, char* out, size_t size)
{
    time_t t = static_cast<time_t>(sec);
    struct tm local {};
    if (localtime_r(&t, &local) == nullptr || strftime(out, size, "%Y-%m-%d %H:%M:%S", &local) == 0) {
        (void)strcpy_s(out, size, "-");
    }
}

}  // namespace

void INTF_UIL_PerfRecordContextInit(UilPerfRecordContext* ctx, const UilPerfRecordOps* ops)
{
    UIL_ASSERT(ctx != nullptr);
    *ctx = UilPerfRecordContext{};
    if (ops != nullptr) {
        ctx->ops = *ops;
    }
    UilPerfRecordOps& o = ctx->ops;
    o.getSetting = o.getSetting ? o.getSetting : INTF_UIL_GetDriverPerfRecordInfo;
    o.setPerfRecord = o.setPerfRecord ? o.setPerfRecord : INTF_UIL_SetPerfRecord;
    o.samplePhyPaths = o.samplePhyPaths ? o.samplePhyPaths : sampleAllPhyPaths;
    o.sampleLogicPaths = o.sampleLogicPaths ? o.sampleLogicPaths : INTF_UIL_EnumerateAllPathPerfStart;
    o.wallSec = o.wallSec ? o.wallSec : UIL_GetTimecount;
    o.monotonicSec = o.monotonicSec ? o.monotonicSec : UIL_GetMonotonicSec;
    for (size_t i = 0; i < kContextLists; ++i) {
        MPI_ListInit(contextLists(ctx, i));
    }
}

void INTF_UIL_PerfListRelease(UilPerfRecordContext* ctx)
{
    UIL_ASSERT(ctx != nullptr);
    for (size_t i = 0; i < kContextLists; ++i) {
        UIL_PerfListFree(contextLists(ctx, i));
    }
    ctx->started = false;
}

void UIL_PerfRecordFilePath(char* out, size_t size)
{
    UIL_ASSERT(out != nullptr);
    std::string path = MPI_HostPath(UIL_PERF_RECORD_DIR) + UIL_PERF_RECORD_FILE;
    (void)strcpy_s(out, size, path.c_str());
}

uint32_t UIL_FormatPerfRecordLine(uint32_t recordNo, const char* time, const UilPerfEntry* entry, char* out,
                                  size_t size)
{
    UIL_ASSERT(time != nullptr && entry != nullptr && out != nullptr && size > 0);
    const uint64_t* v = entry->perf.v;
    const UilPerfMaxMin& mm = entry->maxmin;
    using ull = unsigned long long;
    int head = snprintf_s(
        out, size, size - 1,
        "[%u][%-19s] {Max,Min,Total,Read,Write}:IOPS{%llu,%llu,%llu,%llu,%llu},KB/S{%llu,%llu,%llu,%llu,%llu},"
        "delay(%s){%llu,%llu,%llu,%llu,%llu}",
        recordNo, time, ull(mm.maxIops), ull(UIL_PerfMinValue(mm.minIops)),
        ull(v[UIL_PERF_READ_IOPS] + v[UIL_PERF_WRITE_IOPS]), ull(v[UIL_PERF_READ_IOPS]), ull(v[UIL_PERF_WRITE_IOPS]),
        ull(mm.maxKbs), ull(UIL_PerfMinValue(mm.minKbs)), ull(v[UIL_PERF_READ_KBS] + v[UIL_PERF_WRITE_KBS]),
        ull(v[UIL_PERF_READ_KBS]), ull(v[UIL_PERF_WRITE_KBS]), UIL_PERF_DELAY_UNIT, ull(mm.maxResp),
        ull(UIL_PerfMinValue(mm.minResp)), ull(v[UIL_PERF_TOTAL_RT]), ull(v[UIL_PERF_READ_RT]),
        ull(v[UIL_PERF_WRITE_RT]));
    if (head < 0) {
        out[0] = '\0';
        return MPI_RET_BUFFER_SMALL;
    }
    char* tail = out + head;
    size_t room = size - static_cast<size_t>(head);
    int n = -1;
    switch (entry->kind) {
    case UIL_PERF_ARRAY:
        n = snprintf_s(tail, room, room - 1, "||<ArrayID %u>\n", entry->arrayId);
        break;
    case UIL_PERF_INITIATOR:
        n = snprintf_s(tail, room, room - 1, "||<Initiator WWN: %s>\n", entry->initiator);
        break;
    case UIL_PERF_PHY_PATH:
        n = snprintf_s(tail, room, room - 1, "||<ArrayID %u,pathID %u>\n", entry->arrayId, entry->pathId);
        break;
    case UIL_PERF_VLUN:
        n = snprintf_s(tail, room, room - 1, "||<VlunID %u,DiskID %u>\n", entry->vlunId, entry->diskId);
        break;
    case UIL_PERF_LOGIC_PATH:
        n = snprintf_s(tail, room, room - 1, "||<VlunID %u,DiskID %u,pathID %u>\n", entry->vlunId, entry->diskId,
                       entry->pathId);
        break;
    }
    if (n < 0) {
        out[0] = '\0';
        return MPI_RET_BUFFER_SMALL;
    }
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_EnumerateInitAndArrayPerfMaxMin(UilPerfRecordContext* ctx)
{
    UIL_ASSERT(ctx != nullptr);
    uint64_t now = ctx->ops.monotonicSec();
    MPI_ListNode phy, logic, arrays, initiators, vluns;
    MPI_ListNode* fresh[] = {&phy, &logic, &arrays, &initiators, &vluns};
    for (MPI_ListNode* head : fresh) {
        MPI_ListInit(head);
    }
    MPI_ScopeExit release([&] {
        for (MPI_ListNode* head : fresh) {
            UIL_PerfListFree(head);
        }
    });
    uint32_t ret = ctx->ops.samplePhyPaths(&phy);
    if (!isUsable(ret)) {
        UIL_ERR("Sample physical path performance fail. ret {%u}", ret);
        return ret;
    }
    ret = ctx->ops.sampleLogicPaths(&logic);
    if (!isUsable(ret)) {
        UIL_ERR("Sample logical path performance fail. ret {%u}", ret);
        return ret;
    }
    if (ctx->started && now > ctx->lastSampleSec) {
        uint32_t interval = static_cast<uint32_t>(std::min<uint64_t>(now - ctx->lastSampleSec, UINT32_MAX));
        (void)UIL_ComputePerfList(&phy, &ctx->phyPaths, interval);
        (void)UIL_ComputePerfList(&logic, &ctx->logicPaths, interval);
    }
    ret = INTF_UIL_GetAndCreateArrayPerfByPhyPath(&phy, &arrays);
    if (ret == MPI_RET_SUCCESS) {
        ret = INTF_UIL_GetAndCreateInitiatorsPerfByPhyPath(&phy, &initiators);
    }
    if (ret == MPI_RET_SUCCESS) {
        ret = UIL_GetVLUNPerfInfo(&logic, &vluns);
    }
    if (ret != MPI_RET_SUCCESS) {
        return ret;
    }
    for (size_t i = 0; i < kContextLists; ++i) {
        UIL_ReplacePerfData(fresh[i], contextLists(ctx, i));
        forEachEntry(contextLists(ctx, i), fold);
    }
    ctx->started = true;
    ctx->lastSampleSec = now;
    return MPI_RET_SUCCESS;
}

uint32_t INTF_UIL_PerformanceRecordPhyPath(UilPerfRecordContext* ctx, const char* time)
{
    UIL_ASSERT(ctx != nullptr && time != nullptr);
    UilFd fd = openRecordFile();
    if (!fd.valid()) {
        return MPI_RET_FAIL;
    }
    UIL_PhyPathPerfSortByArrayAndTpgId(&ctx->phyPaths);
    bool ok = true;
    for (MPI_ListNode* list : {&ctx->arrays, &ctx->initiators, &ctx->phyPaths}) {
        forEachEntry(list, [&](UilPerfEntry* e) {
            ok = writeEntry(fd.get(), ctx->recordNo, time, e) && ok;
            startPeriod(e);
        });
    }
    return ok ? MPI_RET_SUCCESS : MPI_RET_FAIL;
}

uint32_t INTF_UIL_PerformanceRecordLogicPath(UilPerfRecordContext* ctx, const char* time)
{
    UIL_ASSERT(ctx != nullptr && time != nullptr);
    UilFd fd = openRecordFile();
    if (!fd.valid()) {
        return MPI_RET_FAIL;
    }
    bool ok = true;
    // Each VLUN's line, then those of its paths.
    forEachEntry(&ctx->vluns, [&](UilPerfEntry* vlun) {
        ok = writeEntry(fd.get(), ctx->recordNo, time, vlun) && ok;
        forEachEntry(&ctx->logicPaths, [&](UilPerfEntry* path) {
            if (path->vlunId == vlun->vlunId) {
                ok = writeEntry(fd.get(), ctx->recordNo, time, path) && ok;
            }
        });
    });
    forEachEntry(&ctx->vluns, startPeriod);
    forEachEntry(&ctx->logicPaths, startPeriod);
    return ok ? MPI_RET_SUCCESS : MPI_RET_FAIL;
}

uint32_t INTF_UIL_PerformanceRecord(UilPerfRecordContext* ctx)
{
    UIL_ASSERT(ctx != nullptr);
    UilDriverPerfRecord setting{};
    uint32_t ret = ctx->ops.getSetting(&setting);
    if (ret != MPI_RET_SUCCESS) {
        UIL_ERR("Get performance record setting fail. ret {%u}", ret);
        return ret;
    }
    if (setting.enabled != 1) {
        INTF_UIL_PerfListRelease(ctx);
        return MPI_RET_SUCCESS;
    }
    uint64_t wall = ctx->ops.wallSec();
    uint64_t stopAt = uint64_t{setting.startSeconds} + uint64_t{setting.durationHours} * 3600;
    if (setting.durationHours != 0 && wall >= stopAt) {
        INTF_UIL_PerfListRelease(ctx);
        ret = ctx->ops.setPerfRecord("CLI", 0, setting.durationHours);
        UIL_TRACE(MPI_LOG_INFO, "performance_record arrive at the stop time");
        UilOperLogPara record{};
        record.uiObjType = MPI_OBJ_COMMON;
        (void)snprintf_s(record.szValue, sizeof(record.szValue), sizeof(record.szValue) - 1, "0,%u",
                         setting.durationHours);
        (void)UIL_OperLog("CLI", "set", "Corvane Service", UIL_OPER_PERF_RECORD_EVENT,
                          ret == MPI_RET_SUCCESS ? 1 : 0, &record);
        return ret;
    }
    uint64_t now = ctx->ops.monotonicSec();
    if (!ctx->started) {
        // The first sample only sets the base of the rates.
        ret = INTF_UIL_EnumerateInitAndArrayPerfMaxMin(ctx);
        ctx->lastMaxMinSec = ctx->lastRecordSec = now;
        return ret;
    }
    if (now >= ctx->lastMaxMinSec + UIL_PERF_MAXMIN_PERIOD) {
        ret = INTF_UIL_EnumerateInitAndArrayPerfMaxMin(ctx);
        ctx->lastMaxMinSec = now;
    }
    if (now >= ctx->lastRecordSec + UIL_PERF_RECORD_PERIOD) {
        char time[32];
        wallTimeText(wall, time, sizeof(time));
        ++ctx->recordNo;
        uint32_t r1 = INTF_UIL_PerformanceRecordPhyPath(ctx, time);
        uint32_t r2 = INTF_UIL_PerformanceRecordLogicPath(ctx, time);
        ctx->lastRecordSec = now;
        ret = r1 != MPI_RET_SUCCESS ? r1 : r2;
    }
    return ret;
}
