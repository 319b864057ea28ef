#include "operations/ArchiveProgress.h"

#include "operations/ToolText.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <utility>

namespace ombrel {
namespace {

constexpr std::int64_t bytesPerDot = std::int64_t{1} << 20;

std::string_view trimmed(std::string_view line) {
    const auto start = line.find_first_not_of(" \t");
    return start == std::string_view::npos ? std::string_view() : line.substr(start);
}

bool isEntry(std::string_view line) {
    return line.starts_with("a ") || line.starts_with("x ");
}

/// Dots that zip has written after a name, and the name without them.
struct Dotted {
    std::string_view name;
    std::int64_t dots = 0;

    static Dotted of(std::string_view text) {
        const auto last = text.find_last_not_of('.');
        const bool hasDots = last != std::string_view::npos && last + 1 < text.size() && text[last] == ' ';
        if (!hasDots) return {text};
        return {text.substr(0, last), static_cast<std::int64_t>(text.size() - last - 1)};
    }
};

} // namespace

ArchiveProgress::ArchiveProgress(Format format, Totals totals, FileURL directory, Written written)
    : format_(format), totals_(totals), directory_(std::move(directory)), written_(std::move(written)) {}

OperationProgress ArchiveProgress::progress() {
    std::int64_t current = inFile_;
    if (format_ == Format::ditto && !isAdding_ && currentName_)
        current = std::max(current, writtenOf(*currentName_));
    reported_ = std::max(reported_, doneBytes_ + std::max<std::int64_t>(current, 0));
    if (totals_.bytes > 0) reported_ = std::min(reported_, totals_.bytes);
    OperationProgress progress;
    progress.phase = OperationProgress::Phase::copying;
    progress.totalItems = totals_.items;
    progress.completedItems = std::min(doneItems_, totals_.items);
    progress.totalBytes = totals_.bytes;
    progress.completedBytes = reported_;
    if (currentName_) progress.currentName = std::string(ToolText::lastComponent(*currentName_));
    return progress;
}

bool ArchiveProgress::consume(std::string_view line) {
    if (format_ == Format::zip) return consumeZip(line);
    return consumeEntry(line) || consumeAnswer(line);
}

bool ArchiveProgress::consumeZip(std::string_view line) {
    constexpr std::string_view word = "adding: ";
    line = trimmed(line);
    if (!line.starts_with(word)) return false;
    line.remove_prefix(word.size());
    line = line.substr(0, line.rfind(" ("));
    currentName_ = Dotted::of(line).name;
    end();
    return true;
}

bool ArchiveProgress::consumeEntry(std::string_view line) {
    if (isEntry(line)) {
        nameEntry(line);
        isTentative_ = false;
        return true;
    }
    const bool isWhole =
        line.starts_with("copying symlink ") || line.starts_with("linked ") || line.contains(" bytes for ");
    if (!isWhole) return false;
    std::int64_t bytes = 0;
    const auto place = line.find(" bytes for ");
    if (place != std::string_view::npos) {
        const auto start = line.substr(0, place).rfind(' ') + 1;
        std::from_chars(line.data() + start, line.data() + place, bytes);
    }
    ++doneItems_;
    doneBytes_ += bytes;
    return true;
}

/// "In: 1 files, 9 bytes; Out: ..." and "Current: NAME (9/200 bytes)".
bool ArchiveProgress::consumeAnswer(std::string_view line) {
    if (line.empty() || line.starts_with("In: ")) return true;
    if (!line.starts_with("Current: ")) return false;
    const auto start = line.rfind(" (");
    if (start == std::string_view::npos || !isAdding_) return true;
    std::int64_t bytes = 0;
    std::from_chars(line.data() + start + 2, line.data() + line.size(), bytes);
    inFile_ = std::max(inFile_, bytes);
    return true;
}

void ArchiveProgress::partial(std::string_view text) {
    if (format_ == Format::zip) {
        constexpr std::string_view word = "adding: ";
        text = trimmed(text);
        if (!text.starts_with(word)) return;
        const auto dotted = Dotted::of(text.substr(word.size()));
        currentName_ = dotted.name;
        inFile_ = dotted.dots * bytesPerDot;
        return;
    }
    if (!isEntry(text)) return;
    nameEntry(text);
    isTentative_ = true;
}

/// The line may have come as a beginning before.
void ArchiveProgress::nameEntry(std::string_view line) {
    isAdding_ = line.starts_with("a ");
    const auto path = ToolText::unescaped(line.substr(2));
    if (isTentative_)
        currentName_ = path;
    else
        begin(path);
}

void ArchiveProgress::begin(std::string_view path) {
    end();
    currentName_ = path;
}

void ArchiveProgress::end() {
    if (!currentName_) return;
    ++doneItems_;
    doneBytes_ += std::max(writtenOf(*currentName_), inFile_);
    inFile_ = 0;
    currentName_.reset();
}

void ArchiveProgress::finish() {
    if (format_ == Format::ditto) end();
    reported_ = std::max(reported_, totals_.bytes);
}

int ArchiveProgress::signalToAsk() const {
    return format_ == Format::ditto && isAdding_ ? SIGUSR1 : 0;
}

std::int64_t ArchiveProgress::writtenOf(const std::string& path) const {
    if (!written_ || path.empty() || path.find('\0') != std::string::npos) return 0;
    const auto url = FileURL::fromPath(directory_.path() + "/" + path);
    return url ? written_(*url) : 0;
}

} // namespace ombrel
