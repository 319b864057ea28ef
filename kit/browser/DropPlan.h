#pragma once

#include "base/FileURL.h"
#include "base/Text.h"
#include "listing/FileReference.h"

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

namespace ombrel {

/// Items that are being dragged, with what of them decides where they may be dropped.
class DraggedItems {
public:
    /// What the program that they come from, if it is another one, lets be done with them.
    struct Offer {
        bool copy = true;
        bool move = false;
    };

    /// Items of this program, as its listings know them.
    explicit DraggedItems(std::vector<FileReference> items);
    DraggedItems(std::vector<FileReference> items, Offer offer);

    [[nodiscard]] const std::vector<FileReference>& items() const noexcept { return items_; }
    [[nodiscard]] const std::optional<Offer>& offer() const noexcept { return offer_; }
    /// Whether one of them is `folder` or holds it.
    [[nodiscard]] bool hold(const FileURL& folder) const;
    /// Whether all of them lie in `folder` itself.
    [[nodiscard]] bool areAllIn(const FileURL& folder) const;
    /// Whether some lie in `folder` itself, so that it is on a volume of theirs.
    [[nodiscard]] bool areSomeIn(const FileURL& folder) const { return parents_.contains(folder); }
    /// Whether all of them are on that device, as far as that is known.
    [[nodiscard]] bool areAllOn(std::uint64_t device) const;

private:
    std::vector<FileReference> items_;
    std::optional<Offer> offer_;
    std::set<FileURL> parents_;
    std::set<std::uint64_t> devices_;
    bool areDevicesKnown_ = true;
};

/// What is known of a folder that something may be dropped on.
struct DropTargetFacts {
    std::optional<std::uint64_t> device = std::nullopt; ///< nothing as long as nobody has looked
    /// Why nothing can be put there.
    std::optional<Text> obstacle = std::nullopt;

    friend bool operator==(const DropTargetFacts&, const DropTargetFacts&) = default;
};

/// What a drop of items on a folder would do. Plain values and text: the disk is not looked at; any thread.
struct DropPlan {
    enum class Case : std::uint8_t { copy, move, forbidden };
    /// What the keys that are held say.
    enum class Wish : std::uint8_t {
        none,
        copy, ///< Ctrl
        move, ///< Shift
    };

    Case which = Case::forbidden;
    /// Why it is forbidden, where that is worth a word.
    std::optional<Text> reason = std::nullopt;

    [[nodiscard]] static DropPlan of(const DraggedItems& dragged, const FileURL& folder,
                                     const DropTargetFacts& facts, Wish wish);

    /// "Copy to Reports", or the reason why not.
    [[nodiscard]] std::optional<Text> label(const FileURL& folder) const;

    friend bool operator==(const DropPlan&, const DropPlan&) = default;
};

} // namespace ombrel
