#include "uil/uil_journal.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <sstream>

#include "bounded/bounded.h"
#include "mpi/mpi_number.h"
#include "uil/uil.h"
#include "uil/uil_cfg.h"
#include "uil/uil_file.h"

namespace {

constexpr const char kMagic[] = "cvadm intent 1";
constexpr const char kInfix[] = ".intent.";
constexpr const char kDamaged[] = ".damaged";
constexpr size_t kRecordMax = 4096;

// A record this process owes: its name and the descriptor whose flock
// tells other writers that its owner is alive.
struct Owed {
    std::string path;
    UilFd fd;
    UilIntent intent;
};
std::vector<Owed> g_astOwed;
pid_t g_iOwedPid = -1;
uint32_t g_uiSequence = 0;
std::string g_strNotices;

// A child made by fork owes nothing of its parent's: the parent's records
// are the parent's to settle.
std::vector<Owed>& owed()
{
    if (g_iOwedPid != getpid()) {
        // Closing our copy leaves the parent's flock in place: it lasts
        // while any descriptor of that open file remains.
        g_astOwed.clear();
        g_iOwedPid = getpid();
        g_uiSequence = 0;
    }
    return g_astOwed;
}

std::string dirOf(const std::string& path)
{
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

void syncDir(const std::string& path)
{
    UilFd dir(open(dirOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.valid()) {
        (void)fsync(dir.get());
    }
}

// FNV-1a: enough to tell a record that was torn or edited by hand.
uint64_t checksum(const std::string& text)
{
    uint64_t h = 1469598103934665603ull;
    for (unsigned char c : text) {
        h = (h ^ c) * 1099511628211ull;
    }
    return h;
}

const char* phaseName(UilIntentPhase phase)
{
    switch (phase) {
    case UilIntentPhase::Sent:
        return "sent";
    case UilIntentPhase::Saved:
        return "saved";
    case UilIntentPhase::Logging:
        return "logging";
    }
    return "?";
}

bool phaseOf(const std::string& name, UilIntentPhase* phase)
{
    for (UilIntentPhase p : {UilIntentPhase::Sent, UilIntentPhase::Saved, UilIntentPhase::Logging}) {
        if (name == phaseName(p)) {
            *phase = p;
            return true;
        }
    }
    return false;
}

bool hasNewline(const std::string& s) { return s.find_first_of("\r\n") != std::string::npos; }

// Writes the record as a new file and puts it in place of `path`, the
// flock taken before the rename so that no other writer ever sees the
// record unlocked while its owner lives. Returns the locked descriptor.
UilFd writeLocked(const std::string& path, const UilIntent& intent)
{
    std::string temp = path + UIL_TEMP_INFIX + "XXXXXX";
    UilFd fd(mkostemp(temp.data(), O_CLOEXEC));
    if (!fd.valid()) {
        UIL_ERR("Create journal record %s failed: %s", temp.c_str(), std::strerror(errno));
        return UilFd();
    }
    bool ok = flock(fd.get(), LOCK_EX | LOCK_NB) == 0 && UIL_WriteAll(fd.get(), UIL_JournalFormat(intent)) &&
              fsync(fd.get()) == 0 && rename(temp.c_str(), path.c_str()) == 0;
    if (!ok) {
        UIL_ERR("Write journal record %s failed: %s", path.c_str(), std::strerror(errno));
        (void)unlink(temp.c_str());
        return UilFd();
    }
    syncDir(path);
    return fd;
}

void removeRecord(const std::string& path)
{
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        UIL_ERR("Remove journal record %s failed: %s", path.c_str(), std::strerror(errno));
        return;
    }
    syncDir(path);
}

void noteDamaged(const std::string& path, const char* why, std::vector<std::string>* notices)
{
    std::string aside = path + kDamaged;
    std::string notice = path + ": " + why;
    if (rename(path.c_str(), aside.c_str()) == 0) {
        notice += ", set aside as " + aside;
    } else {
        notice += ", could not be set aside (" + std::string(std::strerror(errno)) + ")";
    }
    UIL_ERR("Journal record %s", notice.c_str());
    notices->push_back(notice);
    g_strNotices += notice + "\n";
}

bool readRecord(int fd, std::string* text)
{
    char buf[kRecordMax + 1];
    size_t got = 0;
    while (got < sizeof(buf)) {
        ssize_t n = read(fd, buf + got, sizeof(buf) - got);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break;
        }
        got += static_cast<size_t>(n);
    }
    if (got > kRecordMax) {
        return false;
    }
    text->assign(buf, got);
    return true;
}

}  // namespace

// ---------------------------------------------------------------------------
// The record text.

std::string UIL_JournalFormat(const UilIntent& intent)
{
    std::ostringstream out;
    out << kMagic << "\n"
        << "phase=" << phaseName(intent.phase) << "\n"
        << "type=" << intent.sectionType << "\n"
        << "key=" << intent.key << "\n"
        << "item=" << intent.item << "\n"
        << "op=" << (intent.remove ? "delete" : "set") << "\n"
        << "value=" << intent.value << "\n"
        << "serial=" << intent.serial << "\n"
        << "line=" << intent.line << "\n";
    std::string body = out.str();
    char sum[32];
    (void)snprintf_s(sum, sizeof(sum), sizeof(sum) - 1, "sum=%016llx\n",
                     static_cast<unsigned long long>(checksum(body)));
    return body + sum;
}

bool UIL_JournalParse(const std::string& text, UilIntent* intent)
{
    static constexpr const char* kFields[] = {"phase", "type", "key", "item", "op", "value", "serial", "line", "sum"};
    std::istringstream in(text);
    std::string line;
    if (!std::getline(in, line) || line != kMagic) {
        return false;
    }
    std::string values[std::size(kFields)];
    size_t bodyEnd = 0;
    for (size_t i = 0; i < std::size(kFields); ++i) {
        if (i + 1 == std::size(kFields)) {
            bodyEnd = static_cast<size_t>(in.tellg());
        }
        std::string prefix = std::string(kFields[i]) + "=";
        if (!std::getline(in, line) || in.eof() || line.rfind(prefix, 0) != 0) {
            return false;  // a field missing, out of order, or the last newline torn off
        }
        values[i] = line.substr(prefix.size());
    }
    if (in.peek() != EOF) {
        return false;
    }
    char sum[17];
    (void)snprintf_s(sum, sizeof(sum), sizeof(sum) - 1, "%016llx",
                        static_cast<unsigned long long>(checksum(text.substr(0, bodyEnd))));
    UilIntent parsed;
    if (values[8] != sum || !phaseOf(values[0], &parsed.phase) ||
        MPI_ParseU32(values[1].c_str(), 0, UINT32_MAX, &parsed.sectionType) != MPI_Num::Ok ||
        MPI_ParseU32(values[6].c_str(), 0, UINT32_MAX, &parsed.serial) != MPI_Num::Ok ||
        (values[4] != "set" && values[4] != "delete")) {
        return false;
    }
    parsed.key = values[2];
    parsed.item = values[3];
    parsed.remove = values[4] == "delete";
    parsed.value = values[5];
    parsed.line = values[7];
    if (UIL_CfgSectionBit(parsed.sectionType) == 0 || (!parsed.remove && parsed.item.empty()) ||
        (parsed.phase == UilIntentPhase::Logging && (parsed.serial == 0 || parsed.line.empty()))) {
        return false;
    }
    *intent = std::move(parsed);
    return true;
}

// ---------------------------------------------------------------------------
// This process's records.

bool UIL_JournalBegin(const UilIntent& intent)
{
    UilIntent record = intent;
    record.phase = UilIntentPhase::Sent;
    if (hasNewline(record.key) || hasNewline(record.item) || hasNewline(record.value)) {
        UIL_ERR("Journal record of <%u,%s> refused: a line break in a field", record.sectionType,
                record.item.c_str());
        return false;
    }
    std::string path = std::string(UIL_CfgFilePath()) + kInfix + std::to_string(getpid()) + "." +
                       std::to_string(g_uiSequence++);
    UilFd fd = writeLocked(path, record);
    if (!fd.valid()) {
        UIL_FileErrorNote(path.c_str(), "the change could not be recorded before it was made");
        return false;
    }
    owed().push_back(Owed{path, std::move(fd), record});
    return true;
}

void UIL_JournalSaved()
{
    if (owed().empty()) {
        return;
    }
    Owed& last = owed().back();
    last.intent.phase = UilIntentPhase::Saved;
    UilFd fd = writeLocked(last.path, last.intent);
    if (fd.valid()) {
        last.fd = std::move(fd);
    }
    // Not marked saved: a recovering writer re-applies the same value,
    // which the file and the driver already hold; no harm done.
}

void UIL_JournalDrop()
{
    if (owed().empty()) {
        return;
    }
    removeRecord(owed().back().path);
    owed().pop_back();
}

void UIL_JournalLogging(uint32_t serial, const std::string& line)
{
    for (Owed& o : owed()) {
        o.intent.phase = UilIntentPhase::Logging;
        o.intent.serial = serial;
        o.intent.line = line;
        UilFd fd = writeLocked(o.path, o.intent);
        if (fd.valid()) {
            o.fd = std::move(fd);
        }
    }
}

void UIL_JournalLogged()
{
    for (Owed& o : owed()) {
        removeRecord(o.path);
    }
    owed().clear();
}

// ---------------------------------------------------------------------------
// Orphans.

std::vector<UilOrphanIntent> UIL_JournalOrphans(std::vector<std::string>* notices)
{
    const std::string cfg = UIL_CfgFilePath();
    const std::string dir = dirOf(cfg);
    const std::string prefix = cfg.substr(cfg.rfind('/') + 1) + kInfix;
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
        while (const dirent* entry = readdir(d)) {
            std::string name = entry->d_name;
            if (name.rfind(prefix, 0) == 0 && !name.ends_with(kDamaged)) {
                names.push_back(dir + "/" + name);
            }
        }
        (void)closedir(d);
    }
    std::sort(names.begin(), names.end());
    std::vector<UilOrphanIntent> orphans;
    for (const std::string& path : names) {
        if (std::any_of(owed().begin(), owed().end(), [&](const Owed& o) { return o.path == path; })) {
            continue;
        }
        UilFd fd = UIL_OpenRegular(path.c_str(), O_RDONLY | O_NOFOLLOW);
        if (!fd.valid()) {
            if (errno != ENOENT) {
                noteDamaged(path, "not a regular file", notices);
            }
            continue;
        }
        if (flock(fd.get(), LOCK_SH | LOCK_NB) != 0) {
            continue;  // its writer is alive and will settle it
        }
        if (path.find(UIL_TEMP_INFIX) != std::string::npos) {
            (void)unlink(path.c_str());  // a record its dead writer never put in place
            continue;
        }
        std::string text;
        UilOrphanIntent orphan{path, {}};
        if (!readRecord(fd.get(), &text) || !UIL_JournalParse(text, &orphan.intent)) {
            noteDamaged(path, "damaged journal record", notices);
            continue;
        }
        orphans.push_back(std::move(orphan));
    }
    return orphans;
}

void UIL_JournalRemove(const std::string& path) { removeRecord(path); }

std::string INTF_UIL_TakeJournalNotices()
{
    std::string notices;
    notices.swap(g_strNotices);
    return notices;
}
