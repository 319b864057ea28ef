#pragma once

#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QIcon>

namespace ombrel {

/// A glyph where Qt wants an icon: drawn at any size, in `color`, or as disabled. `theme` must outlive it.
[[nodiscard]] QIcon glyphIcon(const Theme& theme, Glyph glyph, ThemeColor color = ThemeColor::text);

} // namespace ombrel
