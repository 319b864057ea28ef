#include "listing/HiddenNames.h"

#include "listing/POSIX.h"

#include <fcntl.h>

#include <algorithm>

namespace ombrel {
namespace {

/// More than any person writes; a longer file is something else.
constexpr std::size_t longestFile = std::size_t{1} << 20;

} // namespace

HiddenNames::HiddenNames(std::string text) {
    for (std::size_t start = 0; start < text.size();) {
        auto end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        auto line = text.substr(start, end - start);
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty() && line.find('/') == std::string::npos) names_.push_back(std::move(line));
        start = end + 1;
    }
    std::ranges::sort(names_);
}

HiddenNames HiddenNames::read(int folder) {
    auto file = POSIX::open({folder, ".hidden"}, O_RDONLY | O_NONBLOCK);
    if (!file) return {};
    const auto status = POSIX::status(file->get());
    if (!status || !status->isRegular()) return {};
    std::string text;
    char buffer[4096];
    for (;;) {
        const auto count = POSIX::read(file->get(), buffer, sizeof buffer);
        if (!count || text.size() > longestFile) return {};
        if (*count == 0) return HiddenNames(std::move(text));
        text.append(buffer, *count);
    }
}

bool HiddenNames::contains(std::string_view name) const noexcept {
    return std::ranges::binary_search(names_, name);
}

} // namespace ombrel
