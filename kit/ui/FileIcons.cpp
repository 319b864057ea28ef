#include "ui/FileIcons.h"

#include "ui/FileIconDrawing.h"
#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ombrel {
namespace {

/// The badge's side in parts of a small icon's; of large ones it takes less.
constexpr double badgePart = 0.5, largeBadgePart = 0.28;
constexpr double smallIcon = 32;

} // namespace

IconBadge FileIcons::badgeOf(FileItemView item) {
    if (item.accessError()) return IconBadge::lock;
    const auto kind = item.kind();
    if (kind.which() != FileKind::Case::symlink) return IconBadge::none;
    switch (kind.target().which()) {
    case SymlinkTarget::Case::file:
    case SymlinkTarget::Case::directory: return IconBadge::link;
    case SymlinkTarget::Case::inaccessible: return IconBadge::lock; // told above
    case SymlinkTarget::Case::broken:
    case SymlinkTarget::Case::loop: return IconBadge::brokenLink;
    }
    std::unreachable();
}

void FileIcons::drawBadge(QPainter& painter, IconBadge badge, const QRectF& picture) const {
    if (badge == IconBadge::none) return;
    const double side = std::min(picture.width(), picture.height());
    const double size = std::max(std::min(side, smallIcon) * badgePart, side * largeBadgePart);
    const double left = badge == IconBadge::lock ? picture.right() - size : picture.left();
    const QRectF box(left, picture.bottom() - size, size, size);
    const bool isBroken = badge == IconBadge::brokenLink;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_->color(ThemeColor::pageEdge), size / 10));
    painter.setBrush(theme_->color(isBroken ? ThemeColor::dangerSoft : ThemeColor::surface));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), size / 4, size / 4);
    const auto glyph = badge == IconBadge::lock ? Glyph::lock : Glyph::link;
    const auto color = isBroken                   ? ThemeColor::danger
                       : badge == IconBadge::lock ? ThemeColor::warning
                                                  : ThemeColor::text;
    Glyphs::draw(painter, glyph, box.adjusted(size / 8, size / 8, -size / 8, -size / 8),
                 theme_->color(color));
    painter.setRenderHint(QPainter::Antialiasing, false);
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
    drawBadge(painter, badge, QRectF(0, 0, side, side));
    return pixmap;
}

} // namespace ombrel
