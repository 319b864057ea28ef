#pragma once

#include "base/FileURL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace ombrel {

/// Where a pane is. A plain value; equality is member-wise.
class Location {
public:
    enum class Case : std::uint8_t {
        folder,
        search, ///< what a search below a folder has found
        home,   ///< the page of known folders and volumes
    };

    /// Home.
    Location() = default;
    [[nodiscard]] static Location home() { return {}; }
    [[nodiscard]] static Location folder(FileURL url) {
        Location location;
        location.case_ = Case::folder;
        location.folder_ = std::move(url);
        return location;
    }
    /// `text` as the user typed it.
    [[nodiscard]] static Location search(FileURL below, std::string text) {
        Location location = folder(std::move(below));
        location.case_ = Case::search;
        location.text_ = std::move(text);
        return location;
    }

    [[nodiscard]] Case which() const noexcept { return case_; }
    /// The folder that is shown or searched; nothing for `home`.
    [[nodiscard]] const std::optional<FileURL>& folderURL() const noexcept { return folder_; }
    /// What is searched; empty but for `search`.
    [[nodiscard]] const std::string& searchText() const noexcept { return text_; }
    /// Whether an item of that location can be among those that are listed here.
    [[nodiscard]] bool mayList(const FileURL& item) const {
        if (!folder_ || item == *folder_) return false;
        return case_ == Case::search ? item.isWithin(*folder_) : item.parent() == *folder_;
    }

    friend bool operator==(const Location&, const Location&) = default;

private:
    Case case_ = Case::home;
    std::optional<FileURL> folder_;
    std::string text_;
};

} // namespace ombrel
