#include "ui/FieldFrame.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace ombrel {

FieldFrame::FieldFrame(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    connect(&theme, &Theme::changed, this, [this] { arrange(); });
}

void FieldFrame::paintFrame(QPainter& painter, ThemeColor outline, bool hasKeyboard) const {
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = theme_->size(hasKeyboard ? ThemeSize::focusRing : ThemeSize::hairline);
    painter.setPen(QPen(theme_->color(outline), line));
    painter.setBrush(theme_->color(ThemeColor::surface));
    const double half = line / 2;
    const int radius = theme_->size(ThemeSize::radiusField);
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius, radius);
}

QRect FieldFrame::mirrored(const QRect& part) const {
    return QStyle::visualRect(layoutDirection(), rect(), part);
}

void FieldFrame::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void FieldFrame::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) arrange();
}

} // namespace ombrel
