#include "ui/ItemPainting.h"

#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionButton>

#include <algorithm>
#include <optional>

namespace ombrel {

double ItemPainting::opacityOf(const RowFacts::Facts& facts) {
    if (facts.isCut) return cutOpacity;
    return facts.isHidden ? hiddenOpacity : 1;
}

void ItemPainting::background(QPainter& painter, const Theme& theme, const QRect& rect,
                              const FileView::RowState& state) {
    const int radius = theme.size(ThemeSize::radiusRow);
    const auto ground = [&state]() -> std::optional<ThemeColor> {
        if (state.isDropTarget) return ThemeColor::selection;
        if (!state.isSelected) return state.isHovered ? std::optional(ThemeColor::hover) : std::nullopt;
        if (!state.isActive) return ThemeColor::selectionInactive;
        return state.isHovered ? ThemeColor::selectionHover : ThemeColor::selection;
    }();
    if (ground) {
        const bool isOutlined = state.isHovered && theme.appearance().isHighContrast;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(isOutlined
                           ? QPen(theme.color(ThemeColor::borderStrong), theme.size(ThemeSize::hairline))
                           : QPen(Qt::NoPen));
        painter.setBrush(theme.color(*ground));
        painter.drawRoundedRect(isOutlined ? QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5) : QRectF(rect),
                                radius, radius);
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
    if (state.isCurrent || state.isDropTarget)
        OmbrelStyle::drawInnerRing(painter, theme, rect, radius, ground);
}

QColor ItemPainting::nameColor(const Theme& theme, const RowFacts::Facts& facts,
                               const FileView::RowState& state) {
    const bool isOnSelection = (state.isSelected && state.isActive) || state.isDropTarget;
    if (facts.isCut && !(isOnSelection && theme.appearance().isHighContrast))
        return theme.color(ThemeColor::textSecondary);
    return theme.color(isOnSelection ? ThemeColor::onSelection : ThemeColor::text);
}

void ItemPainting::checkBox(QPainter& painter, const FileView& view, QPoint at, bool isChecked) {
    const int side = view.theme().size(ThemeSize::checkBox);
    QStyleOptionButton box;
    box.initFrom(&view);
    box.state.setFlag(QStyle::State_On, isChecked);
    box.rect = QRect(at, QSize(side, side));
    view.style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, &painter, &view);
}

QRect ItemPainting::thumbnail(QPainter& painter, const Theme& theme, const QImage& image, const QRect& box) {
    const QSize size = image.deviceIndependentSize().toSize().boundedTo(box.size());
    const QRect place(box.left() + (box.width() - size.width()) / 2,
                      box.top() + (box.height() - size.height()) / 2, size.width(), size.height());
    painter.drawImage(place.topLeft(), image);
    painter.setPen(QPen(theme.color(ThemeColor::thumbnailEdge), theme.size(ThemeSize::hairline)));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5));
    return place;
}

void ItemPainting::playBadge(QPainter& painter, const Theme& theme, const QRect& thumbnail) {
    const double room = std::min(thumbnail.width(), thumbnail.height());
    const double side = std::min<double>(theme.size(ThemeSize::thumbnailBadge), room);
    const QPointF middle = QRectF(thumbnail).center();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(ThemeColor::badgeGround));
    painter.drawEllipse(middle, side / 2, side / 2);
    // The triangle's middle is a third from its base, so it stands a little to the right.
    const double reach = side / 5;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(
        QPen(theme.color(ThemeColor::onBadge), side / 16, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolygon(QPolygonF{middle + QPointF(-reach * 0.7, -reach), middle + QPointF(reach, 0),
                                  middle + QPointF(-reach * 0.7, reach)});
    painter.setRenderHint(QPainter::Antialiasing, false);
}

} // namespace ombrel
