#include "browser/BrowserTabsModel.h"

#include "services/AppServices.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace ombrel {

BrowserTabsModel::BrowserTabsModel(MakePane makePane, const std::optional<FileURL>& startingAt,
                                   QObject* parent)
    : QObject(parent), makePane_(std::move(makePane)) {
    addTab(startingAt, Activation::activate);
}

BrowserTabsModel::~BrowserTabsModel() = default;

std::optional<std::size_t> BrowserTabsModel::indexOf(const BrowserModel& pane) const noexcept {
    const auto found = std::ranges::find(tabs_, &pane, &std::unique_ptr<BrowserModel>::get);
    if (found == tabs_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - tabs_.begin());
}

BrowserModel& BrowserTabsModel::addTab(const std::optional<FileURL>& at, Activation activation) {
    auto made = makePane_();
    BrowserModel& pane = *made;
    // A closed pane may outlive this for a moment.
    const QPointer<BrowserTabsModel> self(this);
    pane.requestNewTab = [self](const std::optional<FileURL>& folder) {
        if (self) self->addTab(folder, Activation::activate);
    };
    pane.requestCloseTab = [self, closed = &pane] {
        if (!self) return;
        if (const auto index = self->indexOf(*closed)) self->closeTab(*index);
    };
    const std::size_t index = tabs_.empty() ? 0 : selectedIndex_ + 1;
    tabs_.insert(tabs_.begin() + static_cast<std::ptrdiff_t>(index), std::move(made));
    if (at)
        pane.navigate(*at, false);
    else
        pane.navigateHome(false);
    connect(&pane, &BrowserModel::locationChanged, this, [this, named = &pane] {
        if (const auto where = indexOf(*named)) Q_EMIT titleChanged(*where);
    });
    // A volume may be called otherwise than before.
    if (AppServices* const services = pane.services())
        connect(&services->volumes(), &VolumeMonitor::volumesChanged, &pane, [self, named = &pane] {
            if (const auto where = self ? self->indexOf(*named) : std::nullopt)
                Q_EMIT self->titleChanged(*where);
        });
    const bool activates = activation == Activation::activate;
    if (activates) selectedIndex_ = index;
    Q_EMIT tabAdded(index);
    if (activates) Q_EMIT activeTabChanged();
    return pane;
}

void BrowserTabsModel::closeTab(std::size_t index) {
    if (index >= tabs_.size()) return;
    if (tabs_.size() == 1) {
        if (onLastTabClosed) onLastTabClosed();
        return;
    }
    const bool wasActive = index == selectedIndex_;
    BrowserModel* const closed = tabs_[index].release();
    tabs_.erase(tabs_.begin() + static_cast<std::ptrdiff_t>(index));
    closed->disconnect(this);
    if (selectedIndex_ >= tabs_.size())
        selectedIndex_ = tabs_.size() - 1;
    else if (index < selectedIndex_)
        --selectedIndex_;
    Q_EMIT tabClosed(index, closed);
    // What observers delete later on hearing it goes first.
    closed->deleteLater();
    if (wasActive) Q_EMIT activeTabChanged();
}

void BrowserTabsModel::select(std::size_t index) {
    if (index >= tabs_.size() || index == selectedIndex_) return;
    selectedIndex_ = index;
    Q_EMIT activeTabChanged();
}

void BrowserTabsModel::moveTab(std::size_t from, std::size_t to) {
    if (from >= tabs_.size() || to >= tabs_.size() || from == to) return;
    const BrowserModel& active = activeTab();
    auto moved = std::move(tabs_[from]);
    tabs_.erase(tabs_.begin() + static_cast<std::ptrdiff_t>(from));
    tabs_.insert(tabs_.begin() + static_cast<std::ptrdiff_t>(to), std::move(moved));
    selectedIndex_ = *indexOf(active);
    Q_EMIT tabMoved(from, to);
}

void BrowserTabsModel::perform(TabCommand command) {
    switch (command.which()) {
    case TabCommand::Case::index: return select(command.position());
    case TabCommand::Case::next: return select((selectedIndex_ + 1) % count());
    case TabCommand::Case::previous: return select((selectedIndex_ + count() - 1) % count());
    case TabCommand::Case::last: return select(count() - 1);
    }
    std::unreachable();
}

} // namespace ombrel
