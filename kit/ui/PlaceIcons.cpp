#include "ui/PlaceIcons.h"

#include "ui/FileIconDrawing.h"
#include "ui/Theme.h"

#include <QPainter>

#include <utility>

namespace ombrel::PlaceIcons {

Glyph glyphOf(KnownFolder folder) noexcept {
    switch (folder) {
    case KnownFolder::desktop: return Glyph::desktop;
    case KnownFolder::downloads: return Glyph::downloads;
    case KnownFolder::documents: return Glyph::documents;
    case KnownFolder::pictures: return Glyph::pictures;
    case KnownFolder::music: return Glyph::music;
    case KnownFolder::videos: return Glyph::videos;
    }
    std::unreachable();
}

Glyph glyphOf(VolumePlace::Kind kind) noexcept {
    switch (kind) {
    case VolumePlace::Kind::internal: return Glyph::drive;
    case VolumePlace::Kind::removable: return Glyph::stick;
    case VolumePlace::Kind::network: return Glyph::network;
    }
    std::unreachable();
}

void drawFolder(QPainter& painter, const Theme& theme, std::optional<KnownFolder> known, const QRectF& box) {
    FileIconDrawing::draw(painter, theme, FileClass::folder, box);
    if (!known) return;
    // In the middle of the folder's front, in parts of its side.
    constexpr double part = 0.36, middle = 0.605;
    const double side = box.width() * part;
    const QRectF glyph(box.center().x() - side / 2, box.top() + box.height() * middle - side / 2, side, side);
    Glyphs::draw(painter, glyphOf(*known), glyph, theme.color(ThemeColor::folderGlyph));
}

} // namespace ombrel::PlaceIcons
