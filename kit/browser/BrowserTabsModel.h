#pragma once

#include "base/FileURL.h"
#include "browser/BrowserModel.h"
#include "browser/TabCommand.h"

#include <QObject>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace ombrel {

/// The tabs of one window, in the order of their strip, each with a pane of its own; one of them is active.
/// There is always at least one.
///
/// Main thread only. Panes are made here and nowhere else, and live until the event loop runs next after
/// their tab was closed, so a pane may close its own. All state has changed before the first signal is sent.
class BrowserTabsModel final : public QObject {
    Q_OBJECT

public:
    using MakePane = std::function<std::unique_ptr<BrowserModel>()>;
    enum class Activation : std::uint8_t { activate, stayBehind };

    /// Starts with one tab, at `startingAt`, or at home.
    explicit BrowserTabsModel(MakePane makePane, const std::optional<FileURL>& startingAt = std::nullopt,
                              QObject* parent = nullptr);
    ~BrowserTabsModel() override;

    [[nodiscard]] std::size_t count() const noexcept { return tabs_.size(); }
    [[nodiscard]] BrowserModel& tab(std::size_t index) const { return *tabs_.at(index); }
    /// Nothing for a pane whose tab has been closed.
    [[nodiscard]] std::optional<std::size_t> indexOf(const BrowserModel& pane) const noexcept;
    [[nodiscard]] std::size_t selectedIndex() const noexcept { return selectedIndex_; }
    [[nodiscard]] BrowserModel& activeTab() const { return *tabs_[selectedIndex_]; }

    /// Opens a tab to the right of the active one, at a folder, or at home; its history is empty.
    BrowserModel& addTab(const std::optional<FileURL>& at, Activation activation);
    /// The tab that takes the place of an active one becomes active: its right neighbour, or the new last
    /// one. The only tab stays; `onLastTabClosed` is called instead. Nothing for an index past the end.
    void closeTab(std::size_t index);
    void closeActiveTab() { closeTab(selectedIndex_); }
    /// Nothing for an index past the end.
    void select(std::size_t index);
    /// Takes a tab out and puts it where `to` is then; the active tab stays active. Nothing for an index past
    /// the end.
    void moveTab(std::size_t from, std::size_t to);
    void perform(TabCommand command);

    /// What the window does instead of closing its only tab; absent, nothing happens.
    std::function<void()> onLastTabClosed;

Q_SIGNALS:
    void tabAdded(std::size_t index);
    /// `pane` lives on until the event loop runs.
    void tabClosed(std::size_t index, ombrel::BrowserModel* pane);
    void tabMoved(std::size_t from, std::size_t to);
    /// Sent when another pane is active than before, wherever it stands in the strip.
    void activeTabChanged();
    /// What the tab is called may have changed.
    void titleChanged(std::size_t index);

private:
    MakePane makePane_;
    std::vector<std::unique_ptr<BrowserModel>> tabs_;
    std::size_t selectedIndex_ = 0;
};

} // namespace ombrel
