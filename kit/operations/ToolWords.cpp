#include "operations/ToolWords.h"

#include <array>

namespace ombrel {
namespace {

struct Phrase {
    std::string_view text;
    ArchiveFault fault;
};

// As zip, unzip, bsdtar, gzip, bzip2 and xz say it in the locales C and C.UTF-8.
constexpr std::array phrases = {
    Phrase{"assphrase", ArchiveFault::encrypted},
    Phrase{"ncrypt", ArchiveFault::encrypted},
    Phrase{"incorrect password", ArchiveFault::encrypted},
    Phrase{"Crypto codec", ArchiveFault::encrypted},
    Phrase{"Path contains '..'", ArchiveFault::unsafe},
    Phrase{"Path is absolute", ArchiveFault::unsafe},
    Phrase{"Cannot extract through symlink", ArchiveFault::unsafe},
    Phrase{"Hard-link target", ArchiveFault::unsafe},
    Phrase{"runcated", ArchiveFault::damaged},
    Phrase{"amaged", ArchiveFault::damaged},
    Phrase{"orrupt", ArchiveFault::damaged},
    Phrase{"Unrecognized archive format", ArchiveFault::damaged},
    Phrase{"decompression failed", ArchiveFault::damaged},
    Phrase{"CRC", ArchiveFault::damaged},
    Phrase{"hecksum", ArchiveFault::damaged},
    Phrase{"nexpected end of", ArchiveFault::damaged},
    Phrase{"ends unexpectedly", ArchiveFault::damaged},
    Phrase{"Premature end", ArchiveFault::damaged},
    Phrase{"premature end", ArchiveFault::damaged},
    Phrase{"not in gzip format", ArchiveFault::damaged},
    Phrase{"is not a bzip2 file", ArchiveFault::damaged},
    Phrase{"File format not recognized", ArchiveFault::damaged},
    Phrase{"invalid compressed data", ArchiveFault::damaged},
    Phrase{"data integrity error", ArchiveFault::damaged},
    Phrase{"Invalid", ArchiveFault::damaged},
    Phrase{"Malformed", ArchiveFault::damaged},
    Phrase{"bsdtar: (null)", ArchiveFault::damaged}, // of a 7z that was cut short
};

constexpr std::size_t longestWords = 1000;

} // namespace

void ToolWords::add(std::string_view line, bool isProgress) {
    // bsdtar asks in the middle of a line, again and again.
    constexpr std::string_view question = "Enter passphrase:";
    if (line.contains(question)) judge(question, question);
    if (line.size() > longestWords) line = line.substr(line.size() - longestWords);
    if (isProgress) {
        // bsdtar completes the line of an entry with what went wrong with it.
        const auto colon = line.find(": ");
        if (colon != std::string_view::npos) judge(line.substr(colon), line.substr(2));
        return;
    }
    judge(line, line);
    const auto start = line.find_first_not_of(" \t\r");
    constexpr std::size_t keptLines = 3;
    if (start == std::string_view::npos || line.contains("Error exit delayed")) return;
    last_.emplace_back(line.substr(start));
    if (last_.size() > keptLines) last_.pop_front();
}

void ToolWords::judge(std::string_view complaint, std::string_view line) {
    if (noSpace_) return;
    if (complaint.contains("No space left on device") || complaint.contains("Disk quota exceeded")) {
        noSpace_ = true;
        telling_ = line;
        return;
    }
    for (const auto& [text, fault] : phrases) {
        if (!complaint.contains(text) || (fault_ && *fault_ <= fault)) continue;
        fault_ = fault;
        telling_ = line;
        return;
    }
}

std::string ToolWords::words() const {
    if (!telling_.empty()) return telling_;
    std::string joined;
    for (const auto& line : last_)
        joined += (joined.empty() ? "" : " ") + line;
    return joined;
}

} // namespace ombrel
