// show iostat: live IOPS, KB/S and response times per VLUN (with its
// logical paths) or per array (with its physical paths), sampled once a
// second and shown every `interval` seconds until Ctrl-C; with file_name=
// the figures averaged over `archive_time` are appended to a CSV report
// for at most `duration` seconds.
#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <string>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

#include "cli/cli.h"
#include "cli/cli_command.h"
#include "cli/cli_helptext.h"
#include "cli/cli_objects.h"
#include "cli/cli_operlog.h"
#include "cli/cli_token.h"
#include "mpi/mpi_usr.h"
#include "mpi/mpi_root.h"
#include "mpi/mpi_scope.h"
#include "uil/uil_array.h"
#include "uil/uil_oper.h"
#include "uil/uil_path.h"
#include "uil/uil_perf.h"
#include "uil/uil_tpg.h"
#include "uil/uil_vlun.h"

namespace {

constexpr uint32_t kMaxMonitored = 4;  // IDs of one run: what a 16 KB block of rows holds
constexpr uint32_t kIntervalDefault = 1;
constexpr uint32_t kIntervalMax = 60;
constexpr uint32_t kArchiveDefault = 60;
constexpr uint32_t kArchiveTimes[] = {5, 60, 120, 300, 600, 1800, 3600};
constexpr uint32_t kDurationDefault = 900;
constexpr uint32_t kDurationMin = 60;
constexpr uint32_t kDurationMax = 259200;
constexpr size_t kFileNameMax = 256;
constexpr uint64_t kFreeSpaceMinKb = 184320;
constexpr size_t kRowBufferSize = 16384;
constexpr char kForbidden[] = "<>:\"\\|?*";
constexpr char kDefaultDir[] = "/opt/Corvane/log/perf_log/";
constexpr char kInvalidPath[] = "The path or file name contains invalid characters or the path does not exist.\n";
constexpr char kLowSpace[] = "The specified disk space is less than 180M or get disk space failed.\n";
constexpr char kInternalError[] = "error: some system errors happened! please try again\n";

constexpr char kCsvHead[] = "%-21s,%-9s,%-12s,%-8s,%-8s,%-8s,%-8s,%-8s,%-8s,%-8s,%-18s,%-18s,%-18s\n";
constexpr char kCsvValues[] = "%-8llu,%-8llu,%-8llu,%-8llu,%-8llu,%-8llu,%-18llu,%-18llu,%-18llu\n";
constexpr char kScreenValues[] = "%-8llu|%-8llu|%-8llu%-8llu|%-8llu|%-8llu%-8llu|%-8llu|%-8llu \n";

uint8_t printUsage()
{
    MPCLI_Print("Error: Invalid input!\nUsage:\n%s", HELP_SHOW_IOSTAT);
    return MPCLI_RESULT_FAIL;
}

struct IostatArgs {
    bool byArray = false;
    uint32_t ids[MPCLI_MAX_IDS] = {};
    uint32_t count = 0;
    uint8_t vlunType = UIL_VLUN_TYPE_ALL;
    uint32_t interval = kIntervalDefault;
    uint32_t archive = kArchiveDefault;
    uint32_t duration = kDurationDefault;
    bool toFile = false;
    std::string shownFile;  // as the operator named it
    std::string hostFile;   // where it is written
};

// ---------------------------------------------------------------------------
// Parameters.

// The ID list word: vlun_id= or array_id=.
bool MPCLI_InputIdsParser(const MPCLI_Command& command, IostatArgs* args)
{
    if (command.size() < 2) {
        MPCLI_Print("Error: Invalid option is NULL!\n");
        return false;
    }
    const MPCLI_Word& word = command[1];
    uint32_t type = MPCLI_ID_VLUN;
    if (word.key == "array_id") {
        args->byArray = true;
        type = MPCLI_ID_ARRAY;
    } else if (word.key != "vlun_id") {
        MPCLI_Print("Error: Invalid option --- {%.*s}!\n", static_cast<int>(word.raw.size()), word.raw.data());
        return false;
    }
    if (!word.hasValue()) {
        printUsage();
        return false;
    }
    if (MPCLI_ReadIdList(word, word.key, args->ids, MPCLI_MAX_IDS, &args->count, type) != 1) {
        return false;
    }
    if (args->count == 0) {
        printUsage();
        return false;
    }
    if (args->count > kMaxMonitored) {
        MPCLI_Print("A maximum of %d disk arrays or LUNs can be monitored at the same time.\n",
                    static_cast<int>(kMaxMonitored));
        return false;
    }
    return true;
}

bool MPCLI_ArchiveTimeIsValid(uint32_t value)
{
    return std::find(std::begin(kArchiveTimes), std::end(kArchiveTimes), value) != std::end(kArchiveTimes);
}

// interval=: 1..60; not a number is a usage error.
bool MPCLI_CheckIntervalArgv(const MPCLI_Word& word, uint32_t* interval)
{
    if (!MPCLI_ReadNum(word.value, interval)) {
        printUsage();
        return false;
    }
    if (*interval == 0) {
        MPCLI_Print("The time interval cannot be 0.\n");
        return false;
    }
    if (*interval > kIntervalMax) {
        MPCLI_Print("The time interval cannot be longer than %d.\n", static_cast<int>(kIntervalMax));
        return false;
    }
    return true;
}

uint64_t MPICLI_GetDiskFreeSpace(const char* dir)
{
    struct statvfs st {};
    int ret = statvfs(dir, &st);
    if (ret != 0) {
        UIL_ERR("Read filesystem space of [%s] failed,return value[%d]. ", dir, ret);
        return 0;
    }
    return (static_cast<uint64_t>(st.f_bavail) * st.f_bsize) >> 10;
}

bool isDirectory(const std::string& path)
{
    struct stat st {};
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// file_name=: the report's directory and name, checked before any sampling.
bool MPCLI_GetPerfFilePath(std::string_view value, IostatArgs* args)
{
    if (value.size() > kFileNameMax || value.find_first_of(kForbidden) != std::string_view::npos) {
        MPCLI_Print("%s", kInvalidPath);
        return false;
    }
    std::string shownDir;
    std::string hostDir;
    std::string name;
    size_t slash = value.rfind('/');
    if (slash == std::string_view::npos) {
        shownDir = kDefaultDir;
        hostDir = MPI_HostPath(kDefaultDir);
        name = value;
    } else {
        shownDir = slash == 0 ? "/" : std::string(value.substr(0, slash));
        hostDir = shownDir.front() == '/' ? MPI_HostPath(shownDir.c_str()) : shownDir;
        name = value.substr(slash + 1);
    }
    if (name.empty()) {
        UIL_ERR("Please enter the performance file name.");
        MPCLI_Print("Please enter the report name.\n");
        return false;
    }
    if (slash == std::string_view::npos) {
        std::error_code ec;
        std::filesystem::create_directories(hostDir, ec);
        if (ec) {
            UIL_ERR("Create default default directory fail");
        }
    }
    if (!isDirectory(hostDir)) {
        MPCLI_Print("%s", kInvalidPath);
        return false;
    }
    UIL_TRACE(MPI_LOG_INFO, "Perf File save to directory {%s}.", shownDir.c_str());
    auto join = [&name](const std::string& dir) {
        return dir.back() == '/' ? dir + name + ".csv" : dir + "/" + name + ".csv";
    };
    args->shownFile = join(shownDir);
    args->hostFile = join(hostDir);
    struct stat st {};
    if (lstat(args->hostFile.c_str(), &st) == 0) {
        MPCLI_Print("Performance report file {%s} already exists.\n", args->shownFile.c_str());
        return false;
    }
    if (MPICLI_GetDiskFreeSpace(hostDir.c_str()) <= kFreeSpaceMinKb) {
        UIL_ERR("The specified disk space is less than 180M.");
        MPCLI_Print("%s", kLowSpace);
        return false;
    }
    args->toFile = true;
    return true;
}

bool takeVlunType(std::string_view value, uint8_t* type)
{
    if (value == "all") {
        *type = UIL_VLUN_TYPE_ALL;
    } else if (value == "dualsite") {
        *type = UIL_VLUN_TYPE_DUALSITE;
    } else if (value == "migration") {
        *type = UIL_VLUN_TYPE_MIGRATION;
    } else {
        return false;
    }
    return true;
}

// Every word after the ID list; each key at most once. The file name is
// checked last, so a refused number never leaves a directory behind.
bool MPCLI_GetPerfArgFromArgv(const MPCLI_Command& command, IostatArgs* args)
{
    const MPCLI_Word* seen[5] = {};
    static constexpr std::string_view kKeys[] = {"type", "interval", "file_name", "archive_time", "duration"};
    for (const MPCLI_Word& word : command.args().subspan(1)) {
        auto it = std::find(std::begin(kKeys), std::end(kKeys), word.key);
        size_t k = static_cast<size_t>(it - std::begin(kKeys));
        if (it == std::end(kKeys) || !word.hasValue() || seen[k] != nullptr || (k == 0 && args->byArray)) {
            printUsage();
            return false;
        }
        seen[k] = &word;
    }
    if (seen[0] != nullptr && !takeVlunType(seen[0]->value, &args->vlunType)) {
        printUsage();
        return false;
    }
    if (seen[1] != nullptr && !MPCLI_CheckIntervalArgv(*seen[1], &args->interval)) {
        return false;
    }
    if (seen[2] == nullptr && (seen[3] != nullptr || seen[4] != nullptr)) {
        printUsage();
        return false;
    }
    if (seen[3] != nullptr &&
        (!MPCLI_ReadNum(seen[3]->value, &args->archive) || !MPCLI_ArchiveTimeIsValid(args->archive))) {
        MPCLI_Print("archive_time specifies the performance data collection interval in seconds. The value must be "
                    "5|60|120|300|1800|3600.\n");
        return false;
    }
    if (seen[4] != nullptr && (!MPCLI_ReadNum(seen[4]->value, &args->duration) || args->duration < kDurationMin ||
                               args->duration > kDurationMax)) {
        MPCLI_Print("duration specifies the performance monitoring period in seconds. The value is in the range "
                    "60-259200.\n");
        return false;
    }
    return seen[2] == nullptr || MPCLI_GetPerfFilePath(seen[2]->value, args);
}

// ---------------------------------------------------------------------------
// What is monitored: per requested ID, its name lines and where its paths
// are sampled.

struct Monitored {
    uint32_t id = 0;
    bool found = false;
    std::vector<uint32_t> disks;  // VLUN: its member disks
    std::string where;            // VLUN: "Lun  Array ..." and "Controller ..." lines
};

bool arrayExists(uint32_t arrayId, bool* exists)
{
    UilIdList* arrays = nullptr;
    if (INTF_UIL_EnumerateArrayIdsStart(&arrays) != MPI_RET_SUCCESS) {
        *exists = false;
        return true;  // no array at all
    }
    const MPI_Ended<INTF_UIL_EnumerateArrayIdsEnd> owner(arrays);
    auto view = arrays->view();
    *exists = std::find(view.begin(), view.end(), arrayId) != view.end();
    return true;
}

void describeVlun(const VLunInfo& v, Monitored* m)
{
    for (uint32_t slot = 0; slot < UIL_VLUN_SLOTS && slot < v.memberCount; ++slot) {
        if (!v.slotFilled[slot]) {
            continue;
        }
        m->disks.push_back(v.diskId[slot]);
        char ctrl[UIL_CONTROLLER_NAME_SIZE] = {};
        (void)UIL_strFormatControllerId(v.arrayId[slot], v.workingController[slot], v.capability[slot], ctrl,
                                        sizeof(ctrl));
        m->where += std::string("Lun  Array ") + v.arrayName[slot] + "\nController " + ctrl + "\n";
    }
}

// Reads the VLUNs or checks the arrays. false: refused (message printed).
bool prepare(const IostatArgs& args, std::vector<Monitored>* out)
{
    for (uint32_t i = 0; i < args.count; ++i) {
        Monitored m;
        m.id = args.ids[i];
        if (args.byArray) {
            bool exists = false;
            (void)arrayExists(m.id, &exists);
            if (!exists) {
                MPCLI_Print("The disk array whose ID is %u does not exist.\n", m.id);
                return false;
            }
            m.found = true;
        } else {
            VLunInfo v;
            const MPI_Ended<INTF_UIL_GetVLunInfoEnd> owner(&v);
            if (INTF_UIL_GetVLunInfoStart(m.id, &v) == MPI_RET_SUCCESS &&
                (args.vlunType == UIL_VLUN_TYPE_ALL || v.type == args.vlunType) &&
                UIL_GetVLunPrimaryInfo(&v) == MPI_RET_SUCCESS) {
                describeVlun(v, &m);
                m.found = !m.disks.empty();
            }
        }
        out->push_back(std::move(m));
    }
    return true;
}

// ---------------------------------------------------------------------------
// Samples and accumulators.

class PerfList {
public:
    PerfList() { MPI_ListInit(&m_head); }
    PerfList(const PerfList&) = delete;
    PerfList& operator=(const PerfList&) = delete;
    ~PerfList() { UIL_PerfListFree(&m_head); }
    MPI_ListNode* head() { return &m_head; }
    void swap(PerfList& other)
    {
        PerfList tmp;
        move(&m_head, &tmp.m_head);
        move(&other.m_head, &m_head);
        move(&tmp.m_head, &other.m_head);
    }
    void clear() { UIL_PerfListFree(&m_head); }

private:
    static void move(MPI_ListNode* from, MPI_ListNode* to)
    {
        while (!MPI_ListEmpty(from)) {
            MPI_ListNode* n = from->next;
            MPI_ListDelete(n);
            MPI_ListAddTail(n, to);
        }
    }
    MPI_ListNode m_head;
};

// One row of an accumulator: a VLUN or array total, or one of its paths.
struct AccRow {
    bool total;
    uint32_t owner;  // VLUN or array ID
    uint32_t pathId;
    uint32_t arrayId;
    uint32_t controllerId;
    UilPerfInfo sum;
};

struct Accumulator {
    std::vector<AccRow> rows;
    uint32_t samples = 0;

    void add(const AccRow& row)
    {
        for (AccRow& r : rows) {
            if (r.total == row.total && r.owner == row.owner && r.pathId == row.pathId) {
                UIL_PerfInfoAdd(&r.sum, &row.sum);
                return;
            }
        }
        rows.push_back(row);
    }
    void average()
    {
        for (AccRow& r : rows) {
            UIL_PerfInfoAverageData(&r.sum, samples);
        }
    }
    void reset()
    {
        rows.clear();
        samples = 0;
    }
};

// Samples the paths of one monitored object into `head`.
uint32_t samplePaths(const IostatArgs& args, const Monitored& m, MPI_ListNode* head)
{
    if (args.byArray) {
        uint32_t ret = INTF_UIL_EnumeratePhyPathPerfStart(m.id, head);
        return ret == 2 ? MPI_RET_SUCCESS : ret;  // an array without paths shows nothing
    }
    for (uint32_t disk : m.disks) {
        uint32_t ret = INTF_UIL_EnumeratePathPerfStart(disk, head);
        if (ret != MPI_RET_SUCCESS && ret != 2) {
            return ret;
        }
    }
    return MPI_RET_SUCCESS;
}

template <class Fn>
void forEachEntry(MPI_ListNode* head, Fn fn)
{
    for (MPI_ListNode* node = head->next; node != head; node = node->next) {
        fn(*MPI_ListEntry<UilPerfEntry>(node));
    }
}

// Adds the rates of one sample (the total, then its paths in path order)
// to both accumulators.
void addSample(const IostatArgs& args, const Monitored& m, MPI_ListNode* cur, Accumulator* shown, Accumulator* kept)
{
    UilPerfEntry total{};
    uint32_t ret = args.byArray ? UIL_GetArrayPerfInfo(cur, m.id, &total) : UIL_GetVLUNPerfInfoByPath(cur, m.id, &total);
    if (ret != MPI_RET_SUCCESS) {
        return;
    }
    AccRow row{true, m.id, 0, total.arrayId, 0, total.perf};
    shown->add(row);
    kept->add(row);
    forEachEntry(cur, [&](const UilPerfEntry& e) {
        if (!e.hasRates || (!args.byArray && e.vlunId != m.id)) {
            return;
        }
        AccRow path{false, m.id, e.pathId, e.arrayId, e.controllerId, e.perf};
        shown->add(path);
        kept->add(path);
    });
}

// The nine shown values of a row: IOPS, KB/S, response time; each total,
// read, write.
struct Nine {
    unsigned long long v[9];
};

Nine nineOf(const UilPerfInfo& p)
{
    const uint64_t* v = p.v;
    return {{v[UIL_PERF_READ_IOPS] + v[UIL_PERF_WRITE_IOPS], v[UIL_PERF_READ_IOPS], v[UIL_PERF_WRITE_IOPS],
             v[UIL_PERF_READ_KBS] + v[UIL_PERF_WRITE_KBS], v[UIL_PERF_READ_KBS], v[UIL_PERF_WRITE_KBS],
             v[UIL_PERF_TOTAL_RT], v[UIL_PERF_READ_RT], v[UIL_PERF_WRITE_RT]}};
}

// Appends a formatted piece to a block; false when it does not fit.
bool appendf(std::string* block, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
bool appendf(std::string* block, const char* fmt, ...)
{
    char line[1024];
    va_list ap;
    va_start(ap, fmt);
    int n = vsnprintf(line, sizeof(line), fmt, ap);
    va_end(ap);
    if (n < 0 || static_cast<size_t>(n) >= sizeof(line)) {
        return false;
    }
    block->append(line, static_cast<size_t>(n));
    return true;
}

std::string values(const char* fmt, const UilPerfInfo& p)
{
    Nine n = nineOf(p);
    std::string s;
    (void)appendf(&s, fmt, n.v[0], n.v[1], n.v[2], n.v[3], n.v[4], n.v[5], n.v[6], n.v[7], n.v[8]);
    return s;
}

// The screen: heading, then per object its total, where it lives and its
// paths; printed in one piece.
void MPCLI_PrintPerf(const IostatArgs& args, const std::vector<Monitored>& objects, const Accumulator& acc)
{
    std::string out = "IO Performance Information\n"
                      "                     IOPS                      KB/S                 response time(ms)\n"
                      "            Total   |Read    |Write   Total   |Read    |Write   Total   |Read    |Write\n";
    for (const Monitored& m : objects) {
        auto total = std::find_if(acc.rows.begin(), acc.rows.end(),
                                  [&](const AccRow& r) { return r.total && r.owner == m.id; });
        if (!m.found || total == acc.rows.end()) {
            (void)appendf(&out, "warning: Can't find IO performance information by id %u!\n", m.id);
            continue;
        }
        (void)appendf(&out, args.byArray ? "Array %-3u   " : "VLUN %-2u     ", m.id);
        out += values(kScreenValues, total->sum);
        out += m.where;
        for (const AccRow& r : acc.rows) {
            if (!r.total && r.owner == m.id) {
                (void)appendf(&out, args.byArray ? "Phypath %-3u:" : "Path %-2u    :", r.pathId);
                out += values(kScreenValues, r.sum);
            }
        }
    }
    MPCLI_Print("%s", out.c_str());
}

// "YYYY-MM-DD HH:MM:SS" of the wall clock.
void timeText(char* out, size_t size)
{
    time_t now = time(nullptr);
    struct tm tmv {};
    (void)localtime_r(&now, &tmv);
    if (strftime(out, size, "%Y-%m-%d %H:%M:%S", &tmv) == 0) {
        out[0] = '\0';
    }
}

// The controller of each path, as its physical path record names it
// (logical paths are known by their physical path's ID). A path keeps its
// controller while it exists, so each is asked once per run; a failed
// lookup prints "-" and is asked again at the next period.
class PathControllers {
public:
    std::string name(uint32_t pathId)
    {
        auto it = m_names.find(pathId);
        if (it != m_names.end()) {
            return it->second;
        }
        UilPathInfo path{};
        char ctrl[UIL_CONTROLLER_NAME_SIZE] = "-";
        if (INTF_UIL_GetPhyPathInfo(pathId, &path) != MPI_RET_SUCCESS ||
            m_namer.format(path.arrayId, path.controllerId, path.arrayFlags, ctrl, sizeof(ctrl)) !=
                MPI_RET_SUCCESS) {
            return "-";
        }
        return m_names.emplace(pathId, ctrl).first->second;
    }

private:
    UilControllerNamer m_namer;
    std::map<uint32_t, std::string> m_names;
};

// The CSV rows of one archive period; whole rows only.
std::string formatRows(const IostatArgs& args, const std::vector<Monitored>& objects, const Accumulator& acc,
                       PathControllers* controllers)
{
    char when[32];
    timeText(when, sizeof(when));
    std::string block;
    block.reserve(kRowBufferSize);
    for (const Monitored& m : objects) {
        for (const AccRow& r : acc.rows) {
            if (r.owner != m.id) {
                continue;
            }
            Nine n = nineOf(r.sum);
            std::string row;
            char owner[16];
            (void)snprintf(owner, sizeof(owner), args.byArray ? "Array%4u" : "VLUN%5u", m.id);
            if (r.total && args.byArray) {
                // The array total's IOPS field is written "%8-llu" in the report
                // format operators' tools already parse; the C library prints
                // that field as it stands and shifts the values after it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
                (void)appendf(&row,
                              "[%-19s],Array%4u,%-12s,%-8s,%8-llu,%-8llu,%-8llu,%-8llu,%-8llu,%-8llu,%-18llu,%-18llu,"
                              "%-18llu\n",
                              when, m.id, "-", "-", n.v[0], n.v[1], n.v[2], n.v[3], n.v[4], n.v[5], n.v[6], n.v[7],
                              n.v[8]);
#pragma GCC diagnostic pop
            } else if (r.total) {
                (void)appendf(&row,
                              "[%-19s],VLUN%5u,%-12s,%-8s,%-8llu,%-8llu,%-8llu,%-8llu,%-8llu,%-8llu,%-18llu,%-18llu,"
                              "%-18llu\n",
                              when, m.id, "-", "-", n.v[0], n.v[1], n.v[2], n.v[3], n.v[4], n.v[5], n.v[6], n.v[7],
                              n.v[8]);
            } else {
                const std::string ctrl = controllers->name(r.pathId);
                (void)appendf(&row, "[%-19s],%-9s,%-12s,%-8u,", when, owner, ctrl.c_str(), r.pathId);
                (void)appendf(&row, kCsvValues, n.v[0], n.v[1], n.v[2], n.v[3], n.v[4], n.v[5], n.v[6], n.v[7],
                              n.v[8]);
            }
            block += row;
        }
    }
    return block;
}

// Appends a whole block with one write; false when the file cannot take it.
bool writeBlock(const std::string& file, const std::string& block)
{
    int fd = open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640);
    if (fd < 0) {
        UIL_ERR("Open perflog file path {%s} failed. Try again!", file.c_str());
        std::error_code ec;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path(), ec);
        fd = open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640);
        if (fd < 0) {
            UIL_ERR("fopen %s file error.", file.c_str());
            return false;
        }
    }
    const MPI_ScopeExit closer([fd] { (void)close(fd); });
    ssize_t n;
    do {
        n = write(fd, block.data(), block.size());
    } while (n < 0 && errno == EINTR);
    if (n != static_cast<ssize_t>(block.size())) {
        if (n > 0) {
            // Never leave a partial row: cut what this write added.
            struct stat st {};
            if (fstat(fd, &st) == 0) {
                (void)ftruncate(fd, st.st_size - n);
            }
        }
        UIL_ERR("Write perflog file {%s} fail", file.c_str());
        return false;
    }
    return fsync(fd) == 0;
}

std::string fileHead(bool byArray)
{
    std::string head;
    (void)appendf(&head, kCsvHead, "-", "-", "-", "-", "IOPS", "IOPS", "IOPS", "KB/S", "KB/S", "KB/S",
                  "response time(ms)", "response time(ms)", "response time(ms)");
    (void)appendf(&head, kCsvHead, "Time", byArray ? "ArrayID" : "VlunId", "Controller", "PathId", "Total", "Read",
                  "Write", "Total", "Read", "Write", "Total", "Read", "Write");
    return head;
}

uint64_t monotonicSec()
{
    struct timespec ts {};
    (void)clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<uint64_t>(ts.tv_sec);
}

void sleepOneSecond()
{
    struct timespec req {1, 0};
    (void)nanosleep(&req, nullptr);  // Ctrl-C cuts it short; the loop then sees the count drop
}

// Set by SIGTERM during a run: the run ends as after Ctrl-C (whole rows,
// the file synced, the operation log written), then the termination goes on.
volatile sig_atomic_t g_termRequested = 0;

void onTerm(int /*signo*/) { g_termRequested = 1; }

// A run of the display loop: raises the interrupt count (Ctrl-C lowers it)
// and takes SIGTERM over; on the way out the count and the previous SIGTERM
// disposition are put back.
class RunGuard {
public:
    RunGuard() : m_start(g_uiCLIContrlCRef)
    {
        g_termRequested = 0;
        struct sigaction action {};
        action.sa_handler = onTerm;
        sigemptyset(&action.sa_mask);
        m_termTaken = sigaction(SIGTERM, &action, &m_oldTerm) == 0;
        g_uiCLIContrlCRef = m_start + 1;
    }
    RunGuard(const RunGuard&) = delete;
    RunGuard& operator=(const RunGuard&) = delete;
    ~RunGuard()
    {
        if (g_uiCLIContrlCRef > m_start) {
            g_uiCLIContrlCRef = m_start;
        }
        if (m_termTaken) {
            (void)sigaction(SIGTERM, &m_oldTerm, nullptr);
        }
    }
    bool interrupted() const { return g_uiCLIContrlCRef <= m_start || g_termRequested != 0; }

private:
    uint32_t m_start;
    bool m_termTaken = false;
    struct sigaction m_oldTerm {};
};

enum class Ended { Interrupted, TimeUp, Failed };

Ended MPCLI_GetIoStatusBySecondsAndWrite(const IostatArgs& args, const std::vector<Monitored>& objects,
                                         bool* wroteAll)
{
    const uint64_t start = monotonicSec();
    const RunGuard ref;
    std::vector<PerfList> prev(objects.size());
    std::vector<PerfList> cur(objects.size());
    Accumulator shown;
    Accumulator kept;
    PathControllers controllers;
    bool writing = args.toFile;
    uint64_t lastSample = start;
    uint64_t lastWrite = start;
    for (size_t i = 0; i < objects.size(); ++i) {
        if (objects[i].found && samplePaths(args, objects[i], prev[i].head()) != MPI_RET_SUCCESS) {
            return Ended::Failed;
        }
    }
    while (!ref.interrupted()) {
        sleepOneSecond();
        if (ref.interrupted()) {
            break;
        }
        uint64_t now = monotonicSec();
        uint32_t elapsed = static_cast<uint32_t>(std::max<uint64_t>(now - lastSample, 1));
        lastSample = now;
        for (size_t i = 0; i < objects.size(); ++i) {
            if (!objects[i].found) {
                continue;
            }
            cur[i].clear();
            if (samplePaths(args, objects[i], cur[i].head()) != MPI_RET_SUCCESS) {
                return Ended::Failed;
            }
            (void)UIL_ComputePerfList(cur[i].head(), prev[i].head(), elapsed);
            addSample(args, objects[i], cur[i].head(), &shown, &kept);
            prev[i].swap(cur[i]);
        }
        ++shown.samples;
        ++kept.samples;
        if (shown.samples >= args.interval) {
            shown.average();
            MPCLI_PrintPerf(args, objects, shown);
            shown.reset();
        }
        if (writing && now - lastWrite >= args.archive) {
            kept.average();
            std::string block = formatRows(args, objects, kept, &controllers);
            if (access(args.hostFile.c_str(), F_OK) != 0) {
                block.insert(0, fileHead(args.byArray));
            }
            if (!writeBlock(args.hostFile, block)) {
                *wroteAll = false;
                writing = false;
            }
            kept.reset();
            lastWrite = now;
            std::string dir = std::filesystem::path(args.hostFile).parent_path().string();
            if (writing && MPICLI_GetDiskFreeSpace(dir.c_str()) <= kFreeSpaceMinKb) {
                // The display goes on; the report stops short of its duration.
                UIL_ERR("The specified disk space is less than 180M.");
                MPCLI_Print("%s", kLowSpace);
                *wroteAll = false;
                writing = false;
            }
        }
        if (args.toFile && now - start >= args.duration) {
            return Ended::TimeUp;
        }
    }
    return Ended::Interrupted;
}

}  // namespace

// show iostat vlun_id=<ID1,...> [type=...] [interval=] [file_name= [archive_time=] [duration=]]
// show iostat array_id=<ID1,...> [interval=] [file_name= [archive_time=] [duration=]]
uint8_t MPCLI_ShowIostat(const MPCLI_Command& command)
{
    IostatArgs args;
    if (!MPCLI_InputIdsParser(command, &args)) {
        return MPCLI_RESULT_FAIL;
    }
    std::vector<Monitored> objects;
    if (!prepare(args, &objects)) {
        return MPCLI_RESULT_FAIL;
    }
    if (!MPCLI_GetPerfArgFromArgv(command, &args)) {
        return MPCLI_RESULT_FAIL;
    }
    bool wroteAll = true;
    Ended ended = MPCLI_GetIoStatusBySecondsAndWrite(args, objects, &wroteAll);
    if (ended == Ended::Failed) {
        MPCLI_Print("%s", kInternalError);
    }
    if (ended == Ended::TimeUp) {
        MPCLI_Print("\n%s\n", "[show iostat file_name] has reached the maximum running time.");
    }
    bool ok = ended != Ended::Failed && wroteAll;
    if (args.toFile) {
        // Word 0 is "iostat": the logged command text is every word after the verb.
        MPCLI_OperLog("show", command, UIL_OPER_WRITE_PERF_REPORT, ok ? 1 : 0, nullptr);
    }
    if (g_termRequested != 0) {
        // Everything of the run is out; now end as the sender asked, under
        // the disposition the process had before the run.
        MPI_FlushConsole();
        (void)raise(SIGTERM);
    }
    return ended == Ended::Failed ? MPCLI_RESULT_FAIL : MPCLI_RESULT_OK;
}
