#pragma once

#include "base/FileURL.h"
#include "browser/FolderBranch.h"
#include "browser/FolderTreeModel.h"
#include "browser/SubfolderProbes.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ombrel {

/// A row at the top of the navigation tree, or a folder below that is open. Rows of closed folders have none:
/// an index points to the node of the row above it in the tree and counts in what that has read.
struct FolderTreeNode {
    FolderTreeNode* parent = nullptr;
    int row = 0;
    FolderTreeModel::Kind kind = FolderTreeModel::Kind::folder;
    std::string key; ///< tells the rows at the top apart; of others the name
    std::optional<FileURL> url;
    std::size_t place = 0; ///< its number in the HomeModel; of a head its section
    bool hasFolders = true;
    std::vector<std::unique_ptr<FolderTreeNode>>
        children;                         ///< of the root all rows, of others those that are open
    std::unique_ptr<FolderBranch> branch; ///< while it is open
    SubfolderProbes probes;               ///< of the closed folders below
    std::set<FileURL> toReopen;           ///< was open below when this was closed
};

} // namespace ombrel
