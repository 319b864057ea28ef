#include "operations/ReadProgress.h"

#include "listing/POSIXFiles.h"
#include "operations/ToolText.h"

#include <algorithm>
#include <utility>

namespace ombrel {

ReadProgress::ReadProgress(int input, std::int64_t total, Names names)
    : input_(input), total_(total), names_(std::move(names)) {
    if (const auto* single = std::get_if<Single>(&names_)) currentName_ = single->name;
}

OperationProgress ReadProgress::progress() {
    if (finished_)
        reported_ = total_;
    else if (isUnderWay())
        reported_ = std::max(reported_, std::min(POSIX::position(input_).value_or(0), total_));
    OperationProgress progress;
    progress.phase = OperationProgress::Phase::copying;
    progress.totalItems = 1;
    progress.completedItems = finished_ ? 1 : 0;
    progress.totalBytes = total_;
    progress.completedBytes = reported_;
    progress.currentName = currentName_;
    return progress;
}

/// Formats with a table of contents at their end are first read there.
bool ReadProgress::isUnderWay() const {
    return currentName_ || !std::holds_alternative<BSDTar>(names_);
}

bool ReadProgress::consume(std::string_view line) {
    if (!std::holds_alternative<BSDTar>(names_) || !line.starts_with("x ")) return false;
    const auto path = ToolText::unescaped(line.substr(2));
    currentName_ = std::string(ToolText::lastComponent(path));
    return true;
}

void ReadProgress::partial(std::string_view text) {
    (void)consume(text);
}

void ReadProgress::finish() {
    finished_ = true;
}

} // namespace ombrel
