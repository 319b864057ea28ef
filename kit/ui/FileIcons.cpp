#include "ui/FileIcons.h"

#include "ui/FileIconDrawing.h"
#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QPainter>

#include <cmath>
#include <utility>

namespace ombrel {
namespace {

/// The badge's side in parts of the icon's.
constexpr double badgePart = 0.5;

void drawBadge(QPainter& painter, const Theme& theme, IconBadge badge, double side) {
    if (badge == IconBadge::none) return;
    const double size = side * badgePart, top = side - size;
    const QRectF box(badge == IconBadge::lock ? side - size : 0, top, size, size);
    const bool isBroken = badge == IconBadge::brokenLink;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.color(ThemeColor::pageEdge), side / 20));
    painter.setBrush(theme.color(isBroken ? ThemeColor::dangerSoft : ThemeColor::surface));
    const QRectF plate = box.adjusted(0.5, 0.5, -0.5, -0.5);
    painter.drawRoundedRect(plate, size / 4, size / 4);
    const auto glyph = badge == IconBadge::lock ? Glyph::lock : Glyph::link;
    const auto color = isBroken                   ? ThemeColor::danger
                       : badge == IconBadge::lock ? ThemeColor::warning
                                                  : ThemeColor::text;
    Glyphs::draw(painter, glyph, box.adjusted(size / 8, size / 8, -size / 8, -size / 8), theme.color(color));
}

} // namespace

IconBadge FileIcons::badgeOf(FileItemView item) {
    if (item.readError()) return IconBadge::lock;
    const auto kind = item.kind();
    if (kind.which() != FileKind::Case::symlink) return IconBadge::none;
    switch (kind.target().which()) {
    case SymlinkTarget::Case::file:
    case SymlinkTarget::Case::directory: return IconBadge::link;
    case SymlinkTarget::Case::inaccessible: return IconBadge::lock;
    case SymlinkTarget::Case::broken:
    case SymlinkTarget::Case::loop: return IconBadge::brokenLink;
    }
    std::unreachable();
}

void FileIcons::draw(QPainter& painter, FileClass fileClass, IconBadge badge, const QRect& box) {
    const double ratio = painter.device()->devicePixelRatio();
    const auto key = static_cast<std::uint64_t>(fileClass) | static_cast<std::uint64_t>(badge) << 8 |
                     static_cast<std::uint64_t>(box.width()) << 16 |
                     static_cast<std::uint64_t>(std::lround(ratio * 1000)) << 32;
    auto& pixmap = kept_[key];
    if (pixmap.isNull()) pixmap = make(fileClass, badge, box.width(), ratio);
    painter.drawPixmap(box.topLeft(), pixmap);
}

void FileIcons::drawLarge(QPainter& painter, FileClass fileClass, const QRectF& box) const {
    FileIconDrawing::draw(painter, *theme_, fileClass, box);
}

QPixmap FileIcons::make(FileClass fileClass, IconBadge badge, int side, double ratio) const {
    const int pixels = static_cast<int>(std::ceil(side * ratio));
    QPixmap pixmap(pixels, pixels);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    FileIconDrawing::draw(painter, *theme_, fileClass, QRectF(0, 0, side, side));
    drawBadge(painter, *theme_, badge, side);
    return pixmap;
}

} // namespace ombrel
