#pragma once

#include "ui/Theme.h"

#include <cstdint>

namespace ombrel {

/// The sizes of the details pane and the properties, in device-independent pixels at an interface font of
/// 13 px: a table beside the theme's own.
enum class DetailsSize : std::uint8_t {
    preview,          ///< the height of what shows the item; it is as wide as the pane has room
    previewPicture,   ///< a thumbnail in it is at most that wide
    previewThumbnail, ///< and that high
    previewIcon,
    fanWidth, ///< of one picture of several
    fanHeight,
    fanIcon,
    fanShift, ///< of the pictures behind, to the sides
    fanDrop,  ///< of the one in front, below the middle
    fanFrame,
    factInset, ///< around a value, where its focus ring is
    factGap,   ///< between one value and the next
    captions,  ///< the column that says what the values are
    propertiesCaptions,
    propertiesWidth,
    propertiesHeight,
};

namespace DetailsSizes {

/// Scaled with the interface font, as the theme's sizes are.
[[nodiscard]] int of(const Theme& theme, DetailsSize token);

} // namespace DetailsSizes
} // namespace ombrel
