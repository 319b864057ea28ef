#pragma once

#include "operations/ArchiveFacts.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// What a tool said, kept for the case that it fails.
class ToolWords {
public:
    /// One line (bytes). `isProgress` as its source judged; such lines count only where they end in a
    /// complaint.
    void add(std::string_view line, bool isProgress);

    /// What the complaints come to, the weightiest first: no room, encrypted, unsafe, damaged.
    [[nodiscard]] bool tellsOfNoSpace() const noexcept { return noSpace_; }
    [[nodiscard]] std::optional<ArchiveFault> fault() const noexcept { return fault_; }
    /// For people: the complaint that decided, or else the last lines.
    [[nodiscard]] std::string words() const;

private:
    void judge(std::string_view complaint, std::string_view line);

    bool noSpace_ = false;
    std::optional<ArchiveFault> fault_;
    std::string telling_;
    std::deque<std::string> last_;
};

} // namespace ombrel
