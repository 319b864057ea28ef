#pragma once

#include "browser/ItemSet.h"
#include "listing/FileItemList.h"
#include "listing/FileSort.h"

#include <memory>

namespace ombrel {

/// Which of a folder's entries a pane lists.
struct ItemFilter {
    bool showsHidden = false;
    bool showsProtected = false; ///< the systems' own items

    [[nodiscard]] bool accepts(FileItemView item) const noexcept {
        return (showsHidden || !item.isHidden()) && (showsProtected || !item.isProtected());
    }
    /// Those of a listing's items that are accepted.
    [[nodiscard]] ItemSet accepted(const FileItemList& items) const;

    friend bool operator==(const ItemFilter&, const ItemFilter&) = default;
};

/// How a pane wants its items.
struct ItemWish {
    FileSort sort;
    ItemFilter filter;

    friend bool operator==(const ItemWish&, const ItemWish&) = default;
};

/// A listing's items as a pane wants them. Made on a worker, because it takes time in proportion to the
/// listing. Copies share everything.
struct ItemArrangement {
    ItemWish wish;
    FileItemList all;   ///< every item
    FileItemList items; ///< those that the filter accepts
    std::shared_ptr<const ItemSet> members = std::make_shared<const ItemSet>(); ///< `items` as a set

    /// `all` is in the order of `sortOfAll`.
    [[nodiscard]] static ItemArrangement make(FileItemList all, const FileSort& sortOfAll,
                                              const ItemWish& wish);
};

} // namespace ombrel
