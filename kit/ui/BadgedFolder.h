#pragma once

#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QRectF>

#include <optional>

class QPainter;

namespace ombrel {

/// A large folder and, on a disc in its lower right corner, what is the matter with it.
struct BadgedFolder {
    struct Badge {
        Glyph glyph;
        ThemeColor color;
        ThemeColor ground;
    };

    /// Draws it into the square `box`. `behind` is what it lies on, which shows around the disc.
    static void draw(QPainter& painter, const Theme& theme, const std::optional<Badge>& badge,
                     const QRectF& box, ThemeColor behind);
};

} // namespace ombrel
