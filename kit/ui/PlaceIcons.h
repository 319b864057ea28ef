#pragma once

#include "browser/Places.h"
#include "listing/KnownFolder.h"
#include "ui/Glyphs.h"

#include <QRectF>

#include <optional>

class QPainter;

namespace ombrel {

class Theme;

/// How folders and volumes look where they are offered as places.
namespace PlaceIcons {

[[nodiscard]] Glyph glyphOf(KnownFolder folder) noexcept;
[[nodiscard]] Glyph glyphOf(VolumePlace::Kind kind) noexcept;

/// A folder; a standard one carries its glyph on the front.
void drawFolder(QPainter& painter, const Theme& theme, std::optional<KnownFolder> known, const QRectF& box);

} // namespace PlaceIcons
} // namespace ombrel
