#include "browser/FolderTreeBranches.h"

#include <utility>

namespace ombrel {

namespace {

/// More than anybody opens by hand.
constexpr std::size_t mostReopened = 256;

/// Notes in `node` what is open below `above`.
void noteOpenBelow(const FolderTreeNode& above, FolderTreeNode& node) {
    for (const auto& child : above.children) {
        if (node.toReopen.size() < mostReopened) node.toReopen.insert(*child->url);
        noteOpenBelow(*child, node);
    }
}

} // namespace

FolderTreeBranches::FolderTreeBranches(ListingFeed::Source listings, const ItemFilter& filter, Told told)
    : listings_(std::move(listings)), filter_(filter), told_(std::move(told)) {}

void FolderTreeBranches::open(FolderTreeNode& node) {
    node.branch = std::make_unique<FolderBranch>(
        *node.url, listings_, filter_,
        [this, &node](const std::function<void()>& change) { told_.change(node, change); });
    open_.push_back(&node);
    keepWatchesBounded();
}

FolderTreeBranches::Dropped FolderTreeBranches::close(FolderTreeNode& node) {
    node.hasFolders = !node.branch->isComplete() || !node.branch->items().empty();
    node.toReopen.clear();
    noteOpenBelow(node, node);
    node.probes.forget();
    forget(node);
    return {std::exchange(node.children, {}), std::move(node.branch)};
}

void FolderTreeBranches::keepWatchesBounded() {
    constexpr auto most = FolderTreeModel::mostWatched;
    const std::size_t unwatched = open_.size() > most ? open_.size() - most : 0;
    for (std::size_t i = 0; i < unwatched; ++i)
        open_[i]->branch->setWatched(false);
}

void FolderTreeBranches::setFilter(const ItemFilter& filter) {
    if (filter == filter_) return;
    filter_ = filter;
    for (FolderTreeNode* const node : open_)
        node->branch->setFilter(filter);
}

void FolderTreeBranches::refresh() {
    for (FolderTreeNode* const node : std::deque(open_))
        if (!node->branch->isWatched()) node->branch->refresh();
}

void FolderTreeBranches::probe(FolderTreeNode& node) {
    node.probes.begin(*node.url, filter_, [this, &node](const SubfolderProbes::Answers& answers) {
        if (node.branch) {
            node.probes.keep(answers);
            told_.probed(node);
        }
        probe(node);
    });
}

} // namespace ombrel
