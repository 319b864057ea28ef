#include "browser/DropPlan.h"

#include "base/IsolatedName.h"
#include "operations/FileOperationError.h"

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

using Case = DropPlan::Case;
using Wish = DropPlan::Wish;

/// What is done where nothing forbids it; nothing when the other program allows neither.
std::optional<Case> actionFor(const DraggedItems& dragged, const FileURL& folder,
                              const DropTargetFacts& facts, Wish wish) {
    const auto& offer = dragged.offer();
    const bool mayCopy = !offer || offer->copy;
    const bool mayMove = !offer || offer->move;
    if (wish == Wish::move && mayMove) return Case::move;
    if (wish == Wish::copy && mayCopy) return Case::copy;
    if (offer) {
        if (mayCopy) return Case::copy;
        return mayMove ? std::optional(Case::move) : std::nullopt;
    }
    // Until the folder has been looked at, what lies beside the items is taken to be where they are.
    const bool isNear = dragged.areSomeIn(folder) || dragged.areSomeIn(folder.parent());
    const bool isSameVolume = facts.device ? dragged.areAllOn(*facts.device) : isNear;
    return isSameVolume ? Case::move : Case::copy;
}

} // namespace

DraggedItems::DraggedItems(std::vector<FileReference> items) : items_(std::move(items)) {
    for (const auto& item : items_) {
        if (!item.url.isRoot()) parents_.insert(item.url.parent());
        if (item.identity)
            devices_.insert(item.identity->device);
        else
            areDevicesKnown_ = false;
    }
}

DraggedItems::DraggedItems(std::vector<FileReference> items, Offer offer) : DraggedItems(std::move(items)) {
    offer_ = offer;
}

bool DraggedItems::hold(const FileURL& folder) const {
    for (FileURL above = folder;; above = above.parent()) {
        const auto isIt = [&](const FileReference& item) { return item.url == above; };
        if ((above.isRoot() || parents_.contains(above.parent())) && std::ranges::any_of(items_, isIt))
            return true;
        if (above.isRoot()) return false;
    }
}

bool DraggedItems::areAllIn(const FileURL& folder) const {
    return parents_.size() == 1 && *parents_.begin() == folder;
}

bool DraggedItems::areAllOn(std::uint64_t device) const {
    return areDevicesKnown_ && devices_.size() == 1 && *devices_.begin() == device;
}

DropPlan DropPlan::of(const DraggedItems& dragged, const FileURL& folder, const DropTargetFacts& facts,
                      Wish wish) {
    using Error = FileOperationError;
    if (dragged.items().empty()) return {};
    if (dragged.hold(folder)) return {Case::forbidden, Text{"ui.drop.intoItself"}};
    if (facts.obstacle) return {Case::forbidden, facts.obstacle};
    const auto action = actionFor(dragged, folder, facts, wish);
    if (!action) return {};
    if (*action == Case::move && dragged.areAllIn(folder))
        return {Case::forbidden, Error(Error::Case::sameLocation).text()};
    return {*action, std::nullopt};
}

std::optional<Text> DropPlan::label(const FileURL& folder) const {
    const auto name = isolated(folder.title());
    switch (which) {
    case Case::copy: return Text{"ui.drop.copyTo", {name}};
    case Case::move: return Text{"ui.drop.moveTo", {name}};
    case Case::forbidden: return reason;
    }
    std::unreachable();
}

} // namespace ombrel
