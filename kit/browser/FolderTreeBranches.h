#pragma once

#include "browser/FolderBranch.h"
#include "browser/FolderTreeNode.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace ombrel {

/// Fills and drops the branches of the navigation tree: has the folders of open rows read, and what lies in
/// those looked into, keeps them as the settings want them, and lets the latest of them watch for changes.
/// The rows are the model's business. Main thread only.
class FolderTreeBranches {
public:
    /// What the model does about it.
    struct Told {
        /// A branch changes; see `FolderBranch::Change`.
        std::function<void(FolderTreeNode& node, const std::function<void()>& change)> change;
        /// More is known of the closed folders below.
        std::function<void(FolderTreeNode& node)> probed;
    };
    /// What stood below a node that was closed, to be destroyed once nobody points to it any more.
    struct Dropped {
        std::vector<std::unique_ptr<FolderTreeNode>> children;
        std::unique_ptr<FolderBranch> branch;
    };

    FolderTreeBranches(ListingFeed::Source listings, const ItemFilter& filter, Told told);

    /// Begins to read the folder of `node`, until `close` or `forget`.
    void open(FolderTreeNode& node);
    /// Notes what was open below, and takes it all out of the node.
    [[nodiscard]] Dropped close(FolderTreeNode& node);
    /// `node` is to be destroyed, or its branch was taken out.
    void forget(const FolderTreeNode& node) { std::erase(open_, &node); }

    void setFilter(const ItemFilter& filter);
    /// Reads again what is not watched.
    void refresh();
    /// Looks into the folders below `node` that were asked about.
    void probe(FolderTreeNode& node);

private:
    void keepWatchesBounded();

    ListingFeed::Source listings_;
    ItemFilter filter_;
    Told told_;
    std::deque<FolderTreeNode*> open_; ///< the earliest first
};

} // namespace ombrel
