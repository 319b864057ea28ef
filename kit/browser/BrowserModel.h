#pragma once

#include "browser/BrowserHistory.h"
#include "browser/BrowserPrompter.h"
#include "browser/FileSelection.h"
#include "browser/ItemArrangement.h"
#include "browser/ListingFeed.h"
#include "browser/ListingState.h"
#include "browser/LiveReload.h"
#include "browser/Location.h"
#include "browser/ViewMode.h"
#include "listing/FileItemList.h"
#include "listing/FileSort.h"
#include "operations/OperationReport.h"
#include "services/DirectoryWatcher.h"
#include "services/VolumeMonitor.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUuid>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

class AppServices;

/// The model of one browser pane: where it is, its history, the listing it shows, what is selected and how it
/// is sorted.
///
/// Main thread only, and it never blocks: listings are read, sorted and filtered on workers and arrive whole.
/// Nothing here takes more than a few milliseconds with a million items. All state has changed before the
/// first signal of a change is sent.
///
/// The folder that is shown is watched, and read again after it has changed (`LiveReload`). When it was
/// removed or renamed away itself, its items go and the state is `invalidated` until it is refreshed or left.
/// What a search finds is shown as a listing that grows; it is not watched.
///
/// What is selected, the current row, the anchor row and the scroll row belong to items, not to row numbers:
/// they stay with their items while the listing grows, is sorted, filtered or reloaded, and follow a rename.
/// When an item goes, it leaves the selection, and a row that stood on it moves to the neighbour.
class BrowserModel final : public QObject {
    Q_OBJECT

public:
    /// Starts at `home`, loaded, sorted by name.
    explicit BrowserModel(ListingFeed::Source source, QObject* parent = nullptr);
    BrowserModel(ListingFeed::Source source, ListingFeed::SearchSource searchSource,
                 QObject* parent = nullptr);
    ~BrowserModel() override;

    /// Of the pane, and of its tab.
    [[nodiscard]] const QUuid& id() const noexcept { return id_; }
    /// What the pane does with volumes, the clipboard and grants it does from now on through these, which
    /// must outlive it. Called once, by who makes the pane.
    void setServices(AppServices& services);
    /// Nothing in a pane that stands alone.
    [[nodiscard]] AppServices* services() const noexcept { return services_; }
    /// Who puts the questions of this pane's commands; held weakly.
    [[nodiscard]] BrowserPrompter* prompter() const noexcept { return prompter_; }
    void setPrompter(BrowserPrompter* prompter) { prompter_ = prompter; }

    // ---- Where the pane is
    [[nodiscard]] const Location& location() const noexcept { return location_; }
    /// The folder that is shown, or searched; nothing at home.
    [[nodiscard]] const std::optional<FileURL>& currentURL() const noexcept { return location_.folderURL(); }
    [[nodiscard]] bool isHome() const noexcept { return location_.which() == Location::Case::home; }
    /// Whether it shows what a search has found, or finds.
    [[nodiscard]] bool showsSearch() const noexcept { return location_.which() == Location::Case::search; }
    /// The text that is searched; empty when none is.
    [[nodiscard]] const std::string& searchQuery() const noexcept { return location_.searchText(); }
    /// What a tab or window is called: the folder's name, or what its volume is called; empty at home.
    [[nodiscard]] QString title() const;
    [[nodiscard]] bool canGoBack() const noexcept { return history_.canGo(BrowserHistory::Direction::back); }
    [[nodiscard]] bool canGoForward() const noexcept {
        return history_.canGo(BrowserHistory::Direction::forward);
    }
    [[nodiscard]] bool canGoUp() const noexcept;

    void navigate(const FileURL& to, bool recordHistory = true);
    void navigateHome(bool recordHistory = true);
    /// Goes where the text of the address bar (see PathInput) says, relative to the folder that is shown.
    /// Answers why it cannot, for people; nothing when it went, or when nothing was typed.
    [[nodiscard]] std::optional<std::string> navigateToTypedPath(std::string_view text);
    /// Those of `selecting` that turn up are selected and revealed, unless the user has selected something by
    /// then. Going to where the pane is loads again and records nothing.
    void go(const Location& to, bool recordHistory, const std::vector<FileURL>& selecting);
    /// Where the history leads that way, the nearest first.
    [[nodiscard]] std::vector<Location> historyPlaces(BrowserHistory::Direction direction,
                                                      std::size_t most) const {
        return history_.places(direction, most);
    }
    /// So many steps back or forward at once; nothing where there are fewer.
    void goAlong(BrowserHistory::Direction direction, std::size_t steps = 1);
    void goBack() { goAlong(BrowserHistory::Direction::back); }
    void goForward() { goAlong(BrowserHistory::Direction::forward); }
    /// To the parent folder, with the folder that was left selected in it. Nothing at the root and at home.
    void goUp();
    /// Reads the folder again; what is shown stays until the new listing is complete. A search begins anew;
    /// at home the capacities of the volumes are read.
    void refresh();

    /// Shows what has `text` in its name below the folder that is shown. A search out of a search is one step
    /// of the history with it. Nothing at home and for an empty text.
    void search(const std::string& text);
    /// Ends the search under way; what it has found stays.
    void stopSearch();
    /// Leaves a search for the folder that was searched, with the selection that it had.
    void leaveSearch();
    [[nodiscard]] bool isSearching() const noexcept {
        return showsSearch() && state_ == ListingState::Case::loading;
    }
    /// Whether the search has ended because it found as much as a search may.
    [[nodiscard]] bool hasReachedSearchLimit() const noexcept;

    /// Lets the user grant the folder that cannot be read, and reads it again when that was done.
    void requestAccess();
    /// For whoever observes the volumes in the place of `services`.
    void handleVolumeEvent(const VolumeMonitor::Event& event);

    // ---- What it shows
    [[nodiscard]] const ListingState& listingState() const noexcept { return state_; }
    /// Every item of the listing so far, sorted.
    [[nodiscard]] const FileItemList& allItems() const noexcept { return listed_.arrangement.all; }
    /// What the views show: the items that the filter accepts. Rows are counted in this list.
    [[nodiscard]] const FileItemList& items() const noexcept { return listed_.arrangement.items; }
    [[nodiscard]] std::int64_t unreadableCount() const noexcept { return listed_.unreadableCount; }
    /// The number of the current listing request; raised by each load and reload.
    [[nodiscard]] std::uint64_t generation() const noexcept { return generation_; }

    /// The order that is wished for. The items follow when a worker has sorted them.
    [[nodiscard]] const FileSort& sort() const noexcept { return wish_.sort; }
    void setSort(const FileSort& sort);
    /// The order that the items are in.
    [[nodiscard]] const FileSort& itemsSort() const noexcept { return listed_.arrangement.wish.sort; }
    [[nodiscard]] const ItemFilter& filter() const noexcept { return wish_.filter; }
    void setFilter(const ItemFilter& filter);
    [[nodiscard]] ViewMode viewMode() const noexcept { return viewMode_; }
    void setViewMode(ViewMode mode);

    /// While it is held nothing of a listing that arrives is shown; for gestures that rows must not slip away
    /// under.
    void setHeld(bool held);

    // ---- What is selected
    [[nodiscard]] const FileSelection& selection() const noexcept { return selection_; }
    /// `selection` is of the present `items`.
    void setSelection(FileSelection selection);

    /// Whether a selection that the user makes meanwhile is respected.
    enum class Insistence : std::uint8_t { yields, insists };
    /// Selects and reveals the items once a complete listing of this place holds them: those that are there
    /// already at once or soon, others after the reload that brings them. Items that lie elsewhere are
    /// passed over. Given up when the place is left.
    void selectWhenListed(const std::vector<FileURL>& urls, Insistence insistence = Insistence::yields);

    /// A row that stays with its item.
    enum class Place : std::uint8_t {
        current, ///< where the keyboard is
        anchor,  ///< where a range of selected rows begins
        scroll,  ///< what the view keeps in its place on the screen
    };
    [[nodiscard]] std::optional<std::size_t> row(Place place) const noexcept;
    void setRow(Place place, std::optional<std::size_t> row);
    /// The row of an item of the present listing; nothing when it is filtered out.
    [[nodiscard]] std::optional<std::size_t> rowOf(ItemRef item) const noexcept;

    // ---- What else is known of it
    /// Whether a text field of the pane has the keyboard.
    [[nodiscard]] bool isTextEditing() const noexcept { return isTextEditing_; }
    void setTextEditing(bool editing);
    [[nodiscard]] bool fileViewHasFocus() const noexcept { return fileViewHasFocus_; }
    void setFileViewHasFocus(bool has);
    /// Of the last file operation that this pane gave.
    [[nodiscard]] const std::optional<OperationReport>& lastReport() const noexcept { return lastReport_; }
    void setLastReport(std::optional<OperationReport> report);

    // ---- What its owners do for it. An absent one means that nobody does.
    std::function<void()> requestAddressFocus;
    std::function<void()> requestSearchFocus;
    std::function<void()> requestQuickLook;
    /// Begins to rename the item of the row in place. It is selected, current and has been revealed.
    std::function<void(std::size_t row)> requestRename;
    /// Opens a tab beside this one: at a folder, or without one at home.
    std::function<void(const std::optional<FileURL>& at)> requestNewTab;
    std::function<void()> requestCloseTab;

Q_SIGNALS:
    /// The pane has begun to show another place, or the same one anew; its items are gone.
    void locationChanged();
    /// Sent with every load.
    void historyChanged();
    void listingStateChanged();
    /// The last moment to say by `Place::scroll` which row is to stay in its place.
    void itemsAboutToChange();
    /// A reload has brought the items under other references. Sent before `itemsChanged`.
    void itemsSucceeded(const ombrel::ItemSuccession& succession);
    /// The items, their number or their order, and with them the rows of everything that stays with its item.
    void itemsChanged();
    void sortChanged();
    void viewModeChanged();
    void filterChanged();
    void selectionChanged();
    void currentRowChanged();
    /// A selection was restored and wants to be seen.
    void revealRequested(std::size_t row);
    /// `isTextEditing` or `fileViewHasFocus`.
    void focusChanged();
    void lastReportChanged();

private:
    struct Mark {
        ItemRef item;
        std::size_t row;
    };

    /// Items that are to be selected once they are listed.
    struct PendingSelection {
        std::shared_ptr<const SelectionMemory> memory;
        Insistence insistence = Insistence::yields;
        bool isForOneListing = true; ///< given up with the first complete listing
        bool isOverruled = false;    ///< the user has selected something since
        std::size_t foundCount = 0;  ///< so many of them have been selected already
    };

    std::optional<Mark>& mark(Place place) noexcept { return marks_[static_cast<std::size_t>(place)]; }
    [[nodiscard]] HistoryEntry currentEntry() const;
    void load(const Location& to, std::shared_ptr<const SelectionMemory> selecting);
    [[nodiscard]] ListingState startListing();
    void reload(const FileURL& url);
    void handleWatcher(DirectoryWatcher::Event event);
    void abandon(ListingState state);
    void publishEmptiness();
    void clear();
    void apply(ListedItems listed);
    void follow(const FileItemList& before, const ItemSuccession* succession);
    [[nodiscard]] std::shared_ptr<const SelectionMemory> pendingMemory() const;
    [[nodiscard]] bool applyPendingSelection(const ItemSet* found);
    void fail(DirectoryError error);
    void changeWish(const ItemWish& wish);

    const QUuid id_ = QUuid::createUuid();
    AppServices* services_ = nullptr;
    QPointer<BrowserPrompter> prompter_;
    Location location_;
    ListingState state_ = ListingState::Case::loaded;
    BrowserHistory history_;
    ItemWish wish_;
    std::uint64_t generation_ = 0;
    ViewMode viewMode_ = ViewMode::details;
    bool isTextEditing_ = false;
    bool fileViewHasFocus_ = false;
    std::optional<OperationReport> lastReport_;
    std::optional<PendingSelection> pending_;
    bool isHeld_ = false;
    std::optional<ListedItems> held_; ///< the newest that arrived meanwhile
    ListedItems listed_;
    FileSelection selection_;
    std::array<std::optional<Mark>, 3> marks_;
    ListingFeed feed_;
    LiveReload live_;
    DirectoryWatcher watcher_;
};

} // namespace ombrel
