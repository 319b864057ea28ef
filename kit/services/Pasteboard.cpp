#include "services/Pasteboard.h"

#include <algorithm>
#include <utility>

namespace ombrel {

void PrivatePasteboard::write(std::vector<Entry> entries) {
    entries_ = std::move(entries);
    Q_EMIT changed();
}

bool PrivatePasteboard::has(std::string_view format) const {
    return std::ranges::any_of(entries_, [&](const Entry& entry) { return entry.format == format; });
}

std::optional<std::string> PrivatePasteboard::read(std::string_view format) const {
    const auto found = std::ranges::find(entries_, format, &Entry::format);
    return found == entries_.end() ? std::nullopt : std::optional(found->bytes());
}

} // namespace ombrel
