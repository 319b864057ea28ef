#include "ui/PlaceIcons.h"

#include "ui/FileIconDrawing.h"
#include "ui/PlaceSizes.h"

#include <QPainter>

#include <utility>

namespace ombrel::PlaceIcons {

PlaceGlyph glyphOf(KnownFolder folder) noexcept {
    switch (folder) {
    case KnownFolder::desktop: return PlaceGlyph::desktop;
    case KnownFolder::downloads: return PlaceGlyph::downloads;
    case KnownFolder::documents: return PlaceGlyph::documents;
    case KnownFolder::pictures: return PlaceGlyph::pictures;
    case KnownFolder::music: return PlaceGlyph::music;
    case KnownFolder::videos: return PlaceGlyph::videos;
    }
    std::unreachable();
}

PlaceGlyph glyphOf(VolumePlace::Kind kind) noexcept {
    switch (kind) {
    case VolumePlace::Kind::internal: return PlaceGlyph::drive;
    case VolumePlace::Kind::removable: return PlaceGlyph::stick;
    case VolumePlace::Kind::network: return PlaceGlyph::network;
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
    PlaceGlyphs::draw(painter, glyphOf(*known), glyph, PlaceSizes::folderGlyph());
}

} // namespace ombrel::PlaceIcons
