#include "ui/NavigationRow.h"

#include "browser/BrowserTabsModel.h"
#include "ui/AddressBar.h"
#include "ui/GlyphButton.h"
#include "ui/HistoryMenu.h"
#include "ui/LocalizedText.h"
#include "ui/SearchField.h"
#include "ui/Theme.h"

#include <QAction>
#include <QHBoxLayout>
#include <QPainter>

namespace ombrel {

NavigationRow::NavigationRow(BrowserTabsModel& tabs, AppServices& services, const Theme& theme,
                             const FileURL& home, const Actions& actions, QWidget* parent)
    : QWidget(parent), theme_(&theme), pane_(tabs), refreshing_(actions.refresh),
      stop_(new QAction(localized("ui.tooltip.stop"), this)) {
    auto* const row = new QHBoxLayout(this);
    const auto add = [&](Glyph glyph, QAction* action) {
        auto* const button = new GlyphButton(theme, glyph, ThemeSize::navigationButton, this);
        button->follow(action);
        row->addWidget(button);
        return button;
    };
    new HistoryMenu(*add(Glyph::back, actions.back), tabs, BrowserHistory::Direction::back);
    new HistoryMenu(*add(Glyph::forward, actions.forward), tabs, BrowserHistory::Direction::forward);
    add(Glyph::up, actions.up);
    refresh_ = add(Glyph::refresh, actions.refresh);
    connect(stop_, &QAction::triggered, this, [this] { pane_->stopSearch(); });
    // Tab takes them in the order in which they are made.
    address_ = new AddressBar(tabs, services, theme, home, this);
    search_ = new SearchField(tabs, theme, this);
    row->addSpacing(theme.size(ThemeSize::space8));
    row->addWidget(address_, 1);
    row->addSpacing(theme.size(ThemeSize::space8));
    row->addWidget(search_);
    pane_.follow([this](BrowserModel& pane, QObject& context) {
        connect(&pane, &BrowserModel::listingStateChanged, &context, [this] { refreshStop(); });
        connect(&pane, &BrowserModel::locationChanged, &context, [this] { refreshStop(); });
        refreshStop();
    });
    connect(&theme, &Theme::changed, this, &NavigationRow::takeSizes);
    takeSizes();
}

void NavigationRow::refreshStop() {
    const bool isSearching = pane_->isSearching();
    refresh_->setGlyph(isSearching ? Glyph::close : Glyph::refresh);
    refresh_->follow(isSearching ? stop_ : refreshing_);
}

void NavigationRow::takeSizes() {
    const int side = theme_->size(ThemeSize::space12);
    layout()->setContentsMargins(side, 0, side, 0);
    layout()->setSpacing(theme_->size(ThemeSize::space2));
    setFixedHeight(theme_->size(ThemeSize::navigationRow));
}

void NavigationRow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), theme_->color(ThemeColor::chromeRaised));
}

} // namespace ombrel
