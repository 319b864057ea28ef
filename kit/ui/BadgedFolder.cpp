#include "ui/BadgedFolder.h"

#include "ui/FileIconDrawing.h"

#include <QPainter>

namespace ombrel {

void BadgedFolder::draw(QPainter& painter, const Theme& theme, const std::optional<Badge>& badge,
                        const QRectF& box, ThemeColor behind) {
    painter.setRenderHint(QPainter::Antialiasing);
    FileIconDrawing::draw(painter, theme, FileClass::folder, box);
    if (!badge) return;
    const double side = theme.size(ThemeSize::overlayBadge), rim = theme.size(ThemeSize::space4);
    const QRectF disc(box.right() - side, box.bottom() - side, side, side);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(behind));
    painter.drawEllipse(disc);
    painter.setBrush(theme.color(badge->ground));
    painter.drawEllipse(disc.adjusted(rim, rim, -rim, -rim));
    const double glyph = theme.size(ThemeSize::glyph);
    const QRectF inside(disc.center() - QPointF(glyph / 2, glyph / 2), QSizeF(glyph, glyph));
    Glyphs::draw(painter, badge->glyph, inside, theme.color(badge->color));
}

} // namespace ombrel
