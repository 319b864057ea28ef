#pragma once

#include <QColor>
#include <QRectF>

#include <cstdint>

class QPainter;

namespace ombrel {

/// The line drawings of places and of what is done to them, in the manner of the other glyphs.
enum class PlaceGlyph : std::uint8_t {
    desktop,
    downloads,
    documents,
    pictures,
    music,
    videos,
    drive,
    stick, ///< a volume that comes and goes
    network,
    eject,
    pin,
    more, ///< there is a menu
};

namespace PlaceGlyphs {

/// As `Glyphs::draw`.
void draw(QPainter& painter, PlaceGlyph glyph, const QRectF& box, const QColor& color);

} // namespace PlaceGlyphs
} // namespace ombrel
