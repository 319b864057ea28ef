#include "ui/JobBar.h"

#include "ui/PartsAccessible.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace ombrel {
namespace {

int quarterOf(double share) {
    constexpr int quarters = 4;
    return static_cast<int>(share * quarters);
}

} // namespace

JobBar::JobBar(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    PartsAccessible::install();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
    connect(&motion_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        shown_ = value.toDouble();
        update();
    });
}

void JobBar::setShare(double share) {
    share = std::clamp(share, 0.0, 1.0);
    if (share == share_) return;
    const bool isTold = quarterOf(share) != quarterOf(share_);
    share_ = share;
    motion_.stop();
    const int duration = theme_->duration(ThemeDuration::progress);
    if (duration == 0 || !isVisible()) {
        shown_ = share;
        update();
    } else {
        motion_.setDuration(duration);
        motion_.setStartValue(shown_);
        motion_.setEndValue(share);
        motion_.start();
    }
    if (isTold) PartsAccessible::tellShare(*this);
}

void JobBar::setResting(bool isResting) {
    isResting_ = isResting;
    update();
}

QSize JobBar::sizeHint() const {
    return {theme_->size(ThemeSize::progressMinimumWidth) / 2, theme_->size(ThemeSize::jobBar)};
}

void JobBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double radius = height() / 2.0;
    painter.setBrush(theme_->color(ThemeColor::track));
    painter.drawRoundedRect(rect(), radius, radius);
    QRectF fill(rect());
    fill.setWidth(fill.width() * shown_);
    if (fill.width() < 1) return;
    if (layoutDirection() == Qt::RightToLeft) fill.moveRight(width());
    painter.setBrush(theme_->color(isResting_ ? ThemeColor::borderStrong : ThemeColor::accent));
    painter.drawRoundedRect(fill, radius, radius);
}

} // namespace ombrel
