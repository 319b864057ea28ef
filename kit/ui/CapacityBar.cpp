#include "ui/CapacityBar.h"

#include "ui/PartsAccessible.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <optional>
#include <utility>

namespace ombrel {
namespace {

struct Colors {
    ThemeColor track;
    ThemeColor filling;
    std::optional<ThemeColor> outline;
};

Colors colorsOn(CapacityBar::Ground ground, const CapacityBar::Level& level, const Theme& theme) {
    const ThemeColor filling = level.isNearlyFull ? ThemeColor::danger : ThemeColor::accent;
    switch (ground) {
    case CapacityBar::Ground::plain: return {ThemeColor::track, filling, std::nullopt};
    case CapacityBar::Ground::selection:
        // There the selection has the colour of the filling.
        if (theme.appearance().isHighContrast)
            return {ThemeColor::selection, ThemeColor::onSelection, ThemeColor::onSelection};
        return {ThemeColor::surface, filling, std::nullopt};
    case CapacityBar::Ground::selectionInactive: return {ThemeColor::surface, filling, std::nullopt};
    }
    std::unreachable();
}

} // namespace

CapacityBar::CapacityBar(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    PartsAccessible::install();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
}

void CapacityBar::setLevel(const Level& level, const QString& name) {
    level_ = level;
    setAccessibleName(name);
    setToolTip(name);
    update();
}

QSize CapacityBar::sizeHint() const {
    return {theme_->size(ThemeSize::buttonMinimumWidth), theme_->size(ThemeSize::capacityBar)};
}

void CapacityBar::paint(QPainter& painter, const Theme& theme, const QRect& track, const Level& level,
                        Ground ground, Qt::LayoutDirection direction) {
    const Colors colors = colorsOn(ground, level, theme);
    const double radius = track.height() / 2.0;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(colors.track));
    painter.drawRoundedRect(track, radius, radius);
    if (level.used > 0) {
        QRect filled = track;
        filled.setWidth(
            std::clamp(static_cast<int>(track.width() * level.used), track.height(), track.width()));
        painter.setBrush(theme.color(colors.filling));
        painter.drawRoundedRect(QStyle::visualRect(direction, track, filled), radius, radius);
    }
    if (!colors.outline) return;
    painter.setPen(QPen(theme.color(*colors.outline), theme.size(ThemeSize::hairline)));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(track).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void CapacityBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paint(painter, *theme_, rect(), level_, Ground::plain, layoutDirection());
}

} // namespace ombrel
