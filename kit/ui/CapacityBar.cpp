#include "ui/CapacityBar.h"

#include "ui/PartsAccessible.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace ombrel {

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
                        Qt::LayoutDirection direction) {
    const double radius = track.height() / 2.0;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(ThemeColor::track));
    painter.drawRoundedRect(track, radius, radius);
    if (level.used <= 0) return;
    QRect filled = track;
    filled.setWidth(std::clamp(static_cast<int>(track.width() * level.used), track.height(), track.width()));
    painter.setBrush(theme.color(level.isNearlyFull ? ThemeColor::danger : ThemeColor::accent));
    painter.drawRoundedRect(QStyle::visualRect(direction, track, filled), radius, radius);
}

void CapacityBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paint(painter, *theme_, rect(), level_, layoutDirection());
}

} // namespace ombrel
