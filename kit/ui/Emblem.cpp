#include "ui/Emblem.h"

#include <QPainter>
#include <QPainterPath>

namespace ombrel {
namespace {

// The drawing's own grid: 56 by 56.
constexpr double grid = 56;
constexpr double top = 2, rim = 28, middle = 28;

/// One gore of the shade: from the top to the rim between two places, with a scalloped edge.
QPainterPath gore(double left, double right, double bulgeLeft, double bulgeRight) {
    QPainterPath path(QPointF(middle, top));
    path.quadTo(bulgeLeft, 10, left, rim);
    path.quadTo((left + right) / 2, rim - 6, right, rim);
    path.quadTo(bulgeRight, 10, middle, top);
    return path;
}

} // namespace

Emblem::Emblem(const Theme& theme, ThemeSize side, QWidget* parent) : QWidget(parent), theme_(&theme) {
    setFixedSize(theme.size(side), theme.size(side));
}

void Emblem::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(width() / grid, height() / grid);
    constexpr double stick = 3.5, hook = 9;
    painter.setPen(QPen(theme_->color(ThemeColor::folderBack), stick, Qt::SolidLine, Qt::RoundCap));
    QPainterPath handle(QPointF(middle, top + 2));
    handle.lineTo(middle, 48);
    handle.arcTo(QRectF(middle - hook, 48 - hook / 2, hook, hook), 0, -180);
    painter.drawPath(handle);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_->color(ThemeColor::emblemTeal));
    painter.drawPath(gore(2, 15, 6, 14));
    painter.drawPath(gore(41, 54, 42, 50));
    painter.setBrush(theme_->color(ThemeColor::emblemTeal).lighter(125));
    painter.drawPath(gore(15, 24, 14, 22));
    painter.drawPath(gore(32, 41, 34, 42));
    painter.setBrush(theme_->color(ThemeColor::folderFrontTop));
    painter.drawPath(gore(23, 33, 22, 34));
}

} // namespace ombrel
