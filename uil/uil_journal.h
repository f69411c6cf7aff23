// The intent journal of configuration changes. A change reaches three
// places one after the other (the driver, the configuration file, the
// operation log), and a process killed between two of them would leave
// them disagreeing with nothing to say so. So before the driver hears of a
// change, its writer records the change durably beside the configuration;
// the record is cleared only once the log line is written. A writer that
// later takes the configuration lock completes the records of writers that
// died (UIL_CfgCompleteDeadWriters in the store).
//
// One record per change: "<configuration>.intent.<pid>.<sequence>", a
// small text file replaced atomically, held under an flock by its writer
// for as long as the writer lives, so that a record whose lock can be
// taken is known to be orphaned.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// How far a change got before its writer stopped.
enum class UilIntentPhase : uint32_t {
    Sent,     // about to go to the driver (or already there); file not saved
    Saved,    // driver and file hold it; the log line is owed
    Logging,  // the log line below, with its serial number, is being appended
};

struct UilIntent {
    UilIntentPhase phase = UilIntentPhase::Sent;
    uint32_t sectionType = 0;
    std::string key;    // array serial number or LUN WWN; "" for the host
    std::string item;   // "" with a deletion: the whole instance
    bool remove = false;
    std::string value;  // the new value of a setting
    uint32_t serial = 0;  // Logging only
    std::string line;     // Logging only, without its newline
};

// The record text and back; false for anything but a complete, intact
// record (a torn or edited one is never trusted).
std::string UIL_JournalFormat(const UilIntent& intent);
bool UIL_JournalParse(const std::string& text, UilIntent* intent);

// This process's side. Begin records a change before it is sent (false
// when it cannot be recorded: the change must then not be made). Saved
// marks the newest record saved; Drop removes it (driver and file agree
// without it). The operation log calls Logging with the line it is about
// to append and Logged once it is written: every record this process owes
// is then settled by that line.
bool UIL_JournalBegin(const UilIntent& intent);
void UIL_JournalSaved();
void UIL_JournalDrop();
void UIL_JournalLogging(uint32_t serial, const std::string& line);
void UIL_JournalLogged();

// The records of writers that died, oldest first, each with its file
// name. A damaged record is renamed "<name>.damaged" and reported in
// `notices` ("<name>: ..."); it is never acted on.
struct UilOrphanIntent {
    std::string path;
    UilIntent intent;
};
std::vector<UilOrphanIntent> UIL_JournalOrphans(std::vector<std::string>* notices);
// Removes a settled orphan record.
void UIL_JournalRemove(const std::string& path);

// Notices of damaged records found by this process, one line each, for the
// shell to show; taking them clears them.
std::string INTF_UIL_TakeJournalNotices();
