#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// The names that a folder's ".hidden" file hides: one bare name a line, no patterns, as GLib and the KDE
/// file manager read it. A value; any thread.
class HiddenNames {
public:
    /// Hides nothing.
    HiddenNames() = default;
    /// From the text of such a file.
    explicit HiddenNames(std::string text);

    /// Reads the file of an open folder. A missing, unreadable, special or overlong file hides nothing.
    /// Blocking.
    [[nodiscard]] static HiddenNames read(int folder);

    [[nodiscard]] bool contains(std::string_view name) const noexcept;
    [[nodiscard]] bool empty() const noexcept { return names_.empty(); }

private:
    std::vector<std::string> names_; // sorted
};

} // namespace ombrel
