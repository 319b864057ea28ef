#pragma once

#include "ui/Theme.h"

#include <cstdint>

namespace ombrel {

/// The sizes of the navigation tree and the home page, in device-independent pixels at an interface font of
/// 13 px: a table beside the theme's own.
enum class PlaceSize : std::uint8_t {
    treeRow,
    treeInset, ///< between the edges of the tree and its rows
    treeTop,   ///< above the first row
    treeIndent,
    treeChevron,
    treeButton,
    treeEdge, ///< along the row of the folder that is shown
    homeMargin,
    homeTop,
    homeHead,
    homeHeadGap,
    homeSectionGap,
    homeGap, ///< between tiles, and between cards
    tile,
    tileMinimumWidth,
    tileInset,
    tileIcon,
    locationRow,
    locationIcon,
    pillHeight,
    volumeCard,
    volumeCardMinimumWidth,
    volumePlate,
    capacityBar,
    insertionLine,
};

namespace PlaceSizes {

/// Scaled with the interface font, as the theme's sizes are.
[[nodiscard]] int of(const Theme& theme, PlaceSize token);
[[nodiscard]] inline int of(const Theme& theme, ThemeSize token) {
    return theme.size(token);
}

/// Of the glyphs that standard folders carry; the same in both themes, as the folder's colours are.
[[nodiscard]] QColor folderGlyph();

} // namespace PlaceSizes
} // namespace ombrel
