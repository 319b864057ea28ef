#include "cli/ProgressLine.h"

#include "base/FileName.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <vector>

namespace ombrel::cli {
namespace {

constexpr std::chrono::milliseconds quietStart(500);

int terminalColumns() {
    constexpr int usual = 80;
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

/// As much of `text` as fits into so many columns of a terminal. Characters that the process's locale cannot
/// measure count as two.
std::string fitting(const std::string& text, int columns) {
    std::mbstate_t state{};
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        wchar_t character = 0;
        const auto length = std::mbrtowc(&character, text.data() + at, text.size() - at, &state);
        const bool isKnown =
            length != 0 && length != static_cast<std::size_t>(-1) && length != static_cast<std::size_t>(-2);
        const int width = isKnown ? ::wcwidth(character) : -1;
        columns -= width < 0 ? 2 : width;
        if (columns < 0) break;
        const auto taken = isKnown ? length : 1;
        result.append(text, at, taken);
        at += taken;
        if (!isKnown) state = {};
    }
    return result;
}

std::string bar(double fraction, int width) {
    const int filled = static_cast<int>(std::floor(fraction * width));
    return "[" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(width - filled), '.') + "]";
}

} // namespace

ProgressLine::ProgressLine(const Session& session)
    : session_(session), start_(std::chrono::steady_clock::now()) {}

void ProgressLine::show(const OperationProgress& progress) {
    const auto elapsed = std::chrono::steady_clock::now() - start_;
    speed_.apply(progress, std::chrono::duration<double>(elapsed).count());
    if (elapsed >= quietStart) session_.output.status(text(progress, terminalColumns()));
}

std::string ProgressLine::text(const OperationProgress& progress, int columns) {
    constexpr int widestBar = 30, leastForName = 8, gap = 2;
    std::vector<std::string> parts;
    if (progress.phase == OperationProgress::Phase::preparing) {
        parts.push_back(textOf(progress.phase).localized());
        if (progress.totalItems > 0) parts.push_back(std::to_string(progress.totalItems));
    } else {
        percent_ = std::max(percent_, static_cast<int>(progress.fraction() * 100));
        parts.push_back(bar(percent_ / 100.0, std::clamp(columns / 4, 5, widestBar)) + " " +
                        std::to_string(percent_) + "%");
        parts.push_back(amounts(progress));
        if (progress.phase != OperationProgress::Phase::copying)
            parts.push_back(textOf(progress.phase).localized());
        else if (const auto speed = speed_.speed())
            parts.push_back(sizeWords(static_cast<std::int64_t>(*speed), session_) +
                            Texts::localized("progress.perSecond"));
        if (progress.phase == OperationProgress::Phase::copying && progress.totalBytes > 0)
            parts.push_back(remainingTimeText(speed_.remainingSeconds(progress)).localized());
    }
    std::string line;
    for (const auto& part : parts)
        line += (line.empty() ? "" : "  ") + part;
    // What stands before the name is in few bytes more than columns; the last column stays free lest the line
    // wraps.
    line = fitting(line, columns - 1);
    const int left = columns - 1 - gap - static_cast<int>(line.size());
    if (progress.currentName && left >= leastForName)
        line += "  " + fitting(FileName::displayText(*progress.currentName), left);
    return line;
}

std::string ProgressLine::amounts(const OperationProgress& progress) const {
    if (progress.totalBytes > 0)
        return Texts::localized("cli.progress.of", {sizeWords(progress.completedBytes, session_),
                                                    sizeWords(progress.totalBytes, session_)});
    return Texts::localized("cli.progress.of",
                            {std::to_string(progress.completedItems), std::to_string(progress.totalItems)});
}

} // namespace ombrel::cli
