#pragma once

#include "listing/KnownFolder.h"

#include <QIcon>

#include <optional>

namespace ombrel {

class Theme;

/// A folder where Qt wants an icon; a standard one carries its glyph on the front. `theme` must outlive it.
[[nodiscard]] QIcon folderIcon(const Theme& theme, std::optional<KnownFolder> known = std::nullopt);

} // namespace ombrel
