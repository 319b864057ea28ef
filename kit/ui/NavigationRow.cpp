#include "ui/NavigationRow.h"

#include "browser/BrowserTabsModel.h"
#include "ui/AddressBar.h"
#include "ui/GlyphButton.h"
#include "ui/Theme.h"

#include <QHBoxLayout>
#include <QPainter>

namespace ombrel {

NavigationRow::NavigationRow(BrowserTabsModel& tabs, AppServices& services, const Theme& theme,
                             const FileURL& home, const Actions& actions, QWidget* parent)
    : QWidget(parent), theme_(&theme), address_(new AddressBar(tabs, services, theme, home, this)) {
    auto* const row = new QHBoxLayout(this);
    const auto add = [&](Glyph glyph, QAction* action) {
        auto* const button = new GlyphButton(theme, glyph, ThemeSize::navigationButton, this);
        button->follow(action);
        row->addWidget(button);
    };
    add(Glyph::back, actions.back);
    add(Glyph::forward, actions.forward);
    add(Glyph::up, actions.up);
    add(Glyph::refresh, actions.refresh);
    row->addSpacing(theme.size(ThemeSize::space8));
    row->addWidget(address_, 1);
    connect(&theme, &Theme::changed, this, &NavigationRow::takeSizes);
    takeSizes();
}

void NavigationRow::takeSizes() {
    const int side = theme_->size(ThemeSize::space12);
    layout()->setContentsMargins(side, 0, side, 0);
    layout()->setSpacing(theme_->size(ThemeSize::space2));
    setFixedHeight(theme_->size(ThemeSize::navigationRow));
}

void NavigationRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_->color(ThemeColor::chromeRaised));
    const int hairline = theme_->size(ThemeSize::hairline);
    painter.fillRect(QRect(0, height() - hairline, width(), hairline), theme_->color(ThemeColor::border));
}

} // namespace ombrel
