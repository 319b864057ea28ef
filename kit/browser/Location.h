#pragma once

#include "base/FileURL.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace ombrel {

/// Where a pane is. A plain value; equality is member-wise.
class Location {
public:
    enum class Case : std::uint8_t { folder, home };

    /// The page of known folders and volumes.
    Location() = default;
    [[nodiscard]] static Location home() { return {}; }
    [[nodiscard]] static Location folder(FileURL url) {
        Location location;
        location.folder_ = std::move(url);
        return location;
    }

    [[nodiscard]] Case which() const noexcept { return folder_ ? Case::folder : Case::home; }
    /// The folder that is shown; nothing for `home`.
    [[nodiscard]] const std::optional<FileURL>& folderURL() const noexcept { return folder_; }

    friend bool operator==(const Location&, const Location&) = default;

private:
    std::optional<FileURL> folder_;
};

} // namespace ombrel
