#pragma once

#include "base/FileURL.h"

#include <QPersistentModelIndex>

#include <optional>
#include <set>
#include <string>

namespace ombrel {

class FolderTreeModel;

/// Finds the folder that a pane shows among the rows of the tree, and opens what it lies in, unless the user
/// has closed that by hand. Main thread only.
class FolderTreeFollower {
public:
    /// `model` must outlive it.
    explicit FolderTreeFollower(FolderTreeModel& model) : model_(&model) {}

    /// Nothing for the home page. `advance` then goes there.
    void follow(const std::optional<FileURL>& folder);
    /// Until the pane goes elsewhere, its folder is looked for below the row at the top that `index` lies
    /// below, and not below another one that is as near.
    void setOrigin(const QModelIndex& index);
    void noteOpened(const QModelIndex& index) { closedByHand_.erase(keyOf(index)); }
    void noteClosedByHand(const QModelIndex& index) { closedByHand_.insert(keyOf(index)); }

    /// Goes as far as the rows that are there lead, and opens what must be read to go on. Answers whether
    /// `current` or `isSearching` has changed.
    bool advance();
    [[nodiscard]] QModelIndex current() const { return current_; }
    [[nodiscard]] bool isSearching() const noexcept { return isSearching_; }

private:
    struct Reached {
        QModelIndex row;
        bool isSearching = false; ///< whether more rows may lead on
    };
    struct Origin {
        std::string top; ///< see keyOf
        FileURL url;
    };

    [[nodiscard]] QModelIndex rootFor(const FileURL& target) const;
    [[nodiscard]] bool awaitsLocation(const FileURL& target) const;
    [[nodiscard]] Reached walk(const FileURL& target);
    [[nodiscard]] QModelIndex topOf(QModelIndex index) const;
    [[nodiscard]] std::string keyOf(const QModelIndex& index) const;

    FolderTreeModel* model_;
    std::set<std::string> closedByHand_; ///< see keyOf
    std::optional<FileURL> target_;
    bool follows_ = false; ///< whether there is anything to be followed yet
    std::optional<Origin> origin_;
    QPersistentModelIndex current_;
    bool isSearching_ = false;
    bool isAdvancing_ = false;
};

} // namespace ombrel
