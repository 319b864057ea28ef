#include "browser/FolderTreeFollower.h"

#include "browser/FolderTreeModel.h"

#include <algorithm>
#include <string_view>

namespace ombrel {

using Kind = FolderTreeModel::Kind;

QModelIndex FolderTreeFollower::topOf(QModelIndex index) const {
    while (index.parent().isValid())
        index = index.parent();
    return index;
}

/// The same folder may be shown below several rows at the top.
std::string FolderTreeFollower::keyOf(const QModelIndex& index) const {
    const auto top = model_->entry(topOf(index)), shown = model_->entry(index);
    return std::to_string(static_cast<int>(top.kind)) + (top.url ? top.url->path() : std::string()) + '\n' +
           (shown.url ? shown.url->path() : std::string());
}

void FolderTreeFollower::setOrigin(const QModelIndex& index) {
    const auto shown = model_->entry(index);
    if (!shown.url) return origin_.reset();
    origin_ = Origin{keyOf(topOf(index)), *shown.url};
}

void FolderTreeFollower::follow(const std::optional<FileURL>& folder) {
    target_ = folder ? std::optional(folder->standardized()) : std::nullopt;
    follows_ = true;
    if (origin_ && (!target_ || !target_->isWithin(origin_->url))) origin_.reset();
}

QModelIndex FolderTreeFollower::rootFor(const FileURL& target) const {
    // Among roots that are equally near: a row of the folder itself is the user's own choice where it is
    // pinned, what lies below is at home in its location.
    const auto rankOf = [](Kind kind, bool isItself) {
        if (kind == Kind::volume) return 2;
        return (kind == Kind::pin) == isItself ? 0 : 1;
    };
    QModelIndex best;
    std::size_t nearest = 0;
    int bestRank = 0;
    for (int i = 0; i < model_->rowCount(); ++i) {
        const QModelIndex row = model_->index(i, 0);
        const auto entry = model_->entry(row);
        if (!entry.url || !entry.isOpenable()) continue;
        const FileURL folder = entry.url->standardized();
        if (!target.isWithin(folder)) continue;
        if (origin_ && target.isWithin(origin_->url) && origin_->top == keyOf(row)) return row;
        const std::size_t length = folder.path().size();
        const int rank = rankOf(entry.kind, folder == target);
        const bool isBetter = length > nearest || (length == nearest && rank < bestRank);
        if (best.isValid() && !isBetter) continue;
        best = row;
        nearest = length;
        bestRank = rank;
    }
    return best;
}

/// Whether a granted folder is still being looked for that `target` may turn out to lie in.
bool FolderTreeFollower::awaitsLocation(const FileURL& target) const {
    return std::ranges::any_of(model_->home().locations(), [&](const GrantedPlace& place) {
        const bool isLookedFor = !place.isActive() && !place.needsPermission() && place.reason.isEmpty();
        return isLookedFor && (!place.url || target.isWithin(place.url->standardized()));
    });
}

FolderTreeFollower::Reached FolderTreeFollower::walk(const FileURL& target) {
    QModelIndex row = rootFor(target);
    if (!row.isValid()) return {row};
    const auto root = model_->entry(row);
    // The branches of a volume would stand open below for good when the location is found a moment later.
    if (root.kind == Kind::volume && awaitsLocation(target)) return {current_, true};
    FileURL folder = root.url->standardized();
    while (folder != target) {
        if (!model_->isOpen(row)) {
            if (closedByHand_.contains(keyOf(row))) return {row};
            model_->open(row);
            if (!model_->isOpen(row)) return {row};
        }
        const std::string_view below = target.pathBelow(folder);
        const std::string_view name = below.substr(0, below.find('/'));
        const QModelIndex next = model_->child(row, name);
        if (!next.isValid()) return {row, model_->isReading(row)};
        row = next;
        folder = folder.appending(name);
    }
    return {row};
}

bool FolderTreeFollower::advance() {
    if (!follows_ || isAdvancing_) return false;
    isAdvancing_ = true;
    const Reached reached = target_ ? walk(*target_) : Reached{model_->index(0, 0)};
    isAdvancing_ = false;
    const bool isNew = current_ != reached.row || isSearching_ != reached.isSearching;
    current_ = reached.row;
    isSearching_ = reached.isSearching;
    return isNew;
}

} // namespace ombrel
