#pragma once

#include "listing/FileItem.h"
#include "listing/FileItemList.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ombrel {

/// How a list is ordered: the one comparison that every list and view uses. Any thread.
///
/// Folders (and links to folders) first where asked, in both directions; then the key; then the name by the
/// locale's rules; then the name's bytes. Names in one folder are unique, so the order is total. Items whose
/// size or date has no value sink to the end of a size or date sort in both directions.
struct FileSort {
    enum class Key : std::uint8_t { name, kind, size, modificationDate };
    static constexpr Key allKeys[] = {Key::name, Key::kind, Key::size, Key::modificationDate};

    Key key = Key::name;
    bool ascending = true;
    bool foldersFirst = true;

    [[nodiscard]] static std::string_view rawValue(Key key) noexcept;
    [[nodiscard]] static std::optional<Key> keyFromRawValue(std::string_view raw) noexcept;

    /// Whether `a` goes before `b`. For `kind` it makes both kind texts; `sorted` makes them once per type.
    [[nodiscard]] bool areInIncreasingOrder(FileItemView a, FileItemView b) const;
    /// The comparison itself; `typeNames` are the two kind texts, given only for `kind`.
    [[nodiscard]] bool inOrder(FileItemView a, FileItemView b,
                               const std::optional<std::pair<std::string, std::string>>& typeNames) const;
    /// Whether the item has a usable value for the key.
    [[nodiscard]] static bool isKnown(FileItemView item, Key key) noexcept;

    /// The same items in this order.
    [[nodiscard]] FileItemList sorted(const FileItemList& items) const;
    /// One list in order out of two that are.
    [[nodiscard]] FileItemList merge(const FileItemList& accumulated, const FileItemList& batch) const;

    friend bool operator==(const FileSort&, const FileSort&) = default;
};

} // namespace ombrel
