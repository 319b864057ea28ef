#pragma once

#include "browser/FolderBranch.h"
#include "browser/HomeModel.h"
#include "listing/KnownFolder.h"

#include <QAbstractItemModel>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ombrel {

class FolderTreeBranches;
class FolderTreeFollower;
struct FolderTreeNode;

/// The rows of the navigation tree: the home page, and below a head each the pinned folders, the granted
/// locations and the volumes; below every one of these its folders, as far as they have been opened.
///
/// Main thread only, and it never blocks. A folder is read when it is opened, given up when it is closed, and
/// costs nothing for the folders in it that are closed. Folders that are open are watched, the latest
/// `mostWatched` of them.
class FolderTreeModel final : public QAbstractItemModel {
    Q_OBJECT

public:
    static constexpr std::size_t mostWatched = 24;

    enum class Kind : std::uint8_t {
        home,
        head, ///< of a section; cannot be selected
        pin,
        location,
        volume,
        folder,
        notice, ///< says what becomes of a branch without folders: it is being read, or cannot be
    };

    /// What a row stands for.
    struct Entry {
        Kind kind = Kind::notice;
        QString title = {};
        std::optional<FileURL> url = std::nullopt;
        std::optional<KnownFolder> known = std::nullopt; ///< of a pin
        std::optional<std::size_t> place =
            std::nullopt;                       ///< of a pin, location or volume: its number in the HomeModel
        const GrantedPlace* location = nullptr; ///< valid until the HomeModel changes; so is the next
        const VolumePlace* volume = nullptr;

        /// Whether a pane can go there.
        [[nodiscard]] bool isOpenable() const noexcept {
            return kind == Kind::home || (url && (!location || location->isActive()));
        }
    };

    /// `services` and `home` must outlive it.
    FolderTreeModel(AppServices& services, HomeModel& home, const ListingFeed::Source& listings,
                    QObject* parent = nullptr);
    ~FolderTreeModel() override;

    [[nodiscard]] Entry entry(const QModelIndex& index) const;
    [[nodiscard]] HomeModel& home() const noexcept { return home_; }

    // ---- Branches
    [[nodiscard]] bool isOpen(const QModelIndex& index) const;
    /// Whether an open branch is still being read.
    [[nodiscard]] bool isReading(const QModelIndex& index) const;
    /// The folder of that name in an open branch, as far as it has been read.
    [[nodiscard]] QModelIndex child(const QModelIndex& parent, std::string_view name) const;
    /// Reads the folders of a row. Nothing for a row that has none.
    void open(const QModelIndex& index);
    enum class By : std::uint8_t { hand, program };
    /// What the user has closed by hand is not opened for the folder that is shown. What was open below is
    /// opened again with it.
    void close(const QModelIndex& index, By who);
    /// The rows that can be seen: finds out which of them have folders.
    void look(const QModelIndexList& rows);
    /// Reads again what is open and not watched; when the window comes to the front.
    void refresh();

    // ---- The folder that is shown
    /// Finds the row of the folder that the pane shows, nothing for the home page, and opens what it lies in.
    void follow(const std::optional<FileURL>& folder);
    /// The pane was sent to the folder of `index` from here, so it is this row that is to be followed and not
    /// another one of the same folder.
    void setOrigin(const QModelIndex& index);
    /// The row of the folder that is shown, or of what it lies in as long, or as far, as it cannot be
    /// reached.
    [[nodiscard]] QModelIndex current() const;
    /// What the pane has found in `folder`, which it shows: an arrow comes or goes with its first folder.
    void tellOfFolders(const FileURL& folder, bool hasFolders);
    /// Whether `current` still moves towards the folder that is shown.
    [[nodiscard]] bool isSearching() const noexcept;

    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    /// A row was opened, whoever did it.
    void opened(const QModelIndex& index);
    void currentChanged();

private:
    using Node = FolderTreeNode;
    using Nodes = std::vector<std::unique_ptr<Node>>;

    [[nodiscard]] Kind kindOf(const QModelIndex& index) const;
    [[nodiscard]] Node* nodeOf(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex indexOf(const Node& node) const;
    [[nodiscard]] bool canOpen(const QModelIndex& index) const;
    [[nodiscard]] Nodes topRows() const;
    void rebuildTop();
    void change(Node& node, const std::function<void()>& change);
    void move(Node& node, const std::vector<std::pair<QModelIndex, std::string>>& held, Nodes& gone);
    void invalidate(const Nodes& gone);
    void reopen(Node& node);
    void handleProbed(Node& node);
    void advance();

    HomeModel& home_;
    std::unique_ptr<Node> root_;
    std::unique_ptr<FolderTreeBranches> branches_;
    std::unique_ptr<FolderTreeFollower> follower_;
};

} // namespace ombrel
