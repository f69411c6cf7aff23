// Scripted faults: $CVADM_ROOT/sim/faults holds lines "<nr> <action> [times]"
// (nr may be "*" for every request). The file is read again at every
// request, so a test can change it between two commands at the prompt.
// A line with a count is consumed one request at a time and removed once
// used up; the file is rewritten atomically.
#include "model.h"

#include <array>
#include <charconv>
#include <optional>
#include <sstream>
#include <vector>

namespace cvsim {

namespace {

struct ActionRow {
    std::string_view name;
    bool takesValue;  // written "<name>=<N>"
    FaultKind kind;
};

constexpr std::array kActions = {
    ActionRow{"refuse", false, FaultKind::Refuse},
    ActionRow{"untouched", false, FaultKind::Untouched},
    ActionRow{"code", true, FaultKind::Code},
    ActionRow{"count", true, FaultKind::Count},
};

struct FaultLine {
    bool anyNr = false;
    uint32_t nr = 0;
    std::string nrText;
    std::string actionText;
    Fault fault{};
    std::optional<uint32_t> times;
};

std::optional<uint32_t> ParseU32(std::string_view s)
{
    uint32_t v = 0;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v, 10);
    if (s.empty() || ec != std::errc() || end != s.data() + s.size()) {
        return std::nullopt;
    }
    return v;
}

bool IsBlankOrComment(const std::string& line)
{
    size_t i = line.find_first_not_of(" \t\r");
    return i == std::string::npos || line[i] == '#';
}

// Throws SimError with the reason when the line is malformed.
FaultLine ParseFaultLine(const std::string& line)
{
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string w; in >> w;) {
        words.push_back(w);
    }
    if (words.size() < 2 || words.size() > 3) {
        throw SimError("expected \"<nr> <action> [times]\"");
    }
    FaultLine f;
    f.nrText = words[0];
    if (words[0] == "*") {
        f.anyNr = true;
    } else {
        auto nr = ParseU32(words[0]);
        if (!nr || *nr > 255) {
            throw SimError("request number \"" + words[0] + "\" is not 0..255 or *");
        }
        f.nr = *nr;
    }
    f.actionText = words[1];
    std::string_view action = words[1];
    size_t eq = action.find('=');
    std::string_view name = action.substr(0, eq);
    const ActionRow* row = nullptr;
    for (const auto& r : kActions) {
        if (r.name == name) {
            row = &r;
        }
    }
    if (row == nullptr) {
        throw SimError("unknown action \"" + std::string(action) + "\"");
    }
    if (row->takesValue != (eq != std::string_view::npos)) {
        throw SimError(row->takesValue ? "action \"" + std::string(name) + "\" needs =<N>"
                                       : "action \"" + std::string(name) + "\" takes no value");
    }
    f.fault.kind = row->kind;
    if (row->takesValue) {
        auto v = ParseU32(action.substr(eq + 1));
        if (!v) {
            throw SimError("value of \"" + std::string(action) + "\" is not a 32-bit number");
        }
        f.fault.value = *v;
    }
    if (words.size() == 3) {
        f.times = ParseU32(words[2]);
        if (!f.times) {
            throw SimError("times \"" + words[2] + "\" is not a number");
        }
    }
    return f;
}

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

void WriteBack(const SimPaths& paths, const std::vector<std::string>& lines)
{
    std::string text;
    for (const auto& l : lines) {
        text += l;
        text += '\n';
    }
    WriteFileAtomic(paths.faults, text);
}

}  // namespace

// Every malformed line is reported at every request, not only those before
// the line that applies, so a typo cannot hide behind a working line.
bool TakeFault(const SimPaths& paths, uint32_t nr, Fault& out)
{
    std::string text;
    if (!ReadFile(paths.faults, text)) {
        return false;
    }
    std::vector<std::string> lines = SplitLines(text);
    std::optional<size_t> chosen;
    FaultLine chosenLine;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (IsBlankOrComment(lines[i])) {
            continue;
        }
        FaultLine f;
        try {
            f = ParseFaultLine(lines[i]);
        } catch (const SimError& e) {
            Complain(paths, "faults line " + std::to_string(i + 1) + " ignored: " + e.what());
            continue;
        }
        bool applies = (f.anyNr || f.nr == nr) && !(f.times && *f.times == 0);
        if (applies && !chosen) {
            chosen = i;
            chosenLine = f;
        }
    }
    if (!chosen) {
        return false;
    }
    out = chosenLine.fault;
    if (chosenLine.times) {
        uint32_t left = *chosenLine.times - 1;
        if (left == 0) {
            lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(*chosen));
        } else {
            lines[*chosen] = chosenLine.nrText + " " + chosenLine.actionText + " " + std::to_string(left);
        }
        WriteBack(paths, lines);
    }
    return true;
}

}  // namespace cvsim
