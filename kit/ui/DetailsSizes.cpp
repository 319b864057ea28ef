#include "ui/DetailsSizes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace ombrel::DetailsSizes {
namespace {

struct SizeRow {
    DetailsSize token;
    int pixels;
};

constexpr SizeRow sizeTable[] = {
    {DetailsSize::preview, 158},
    {DetailsSize::previewPicture, 224},
    {DetailsSize::previewThumbnail, 130},
    {DetailsSize::previewIcon, 112},
    {DetailsSize::fanWidth, 140},
    {DetailsSize::fanHeight, 104},
    {DetailsSize::fanIcon, 96},
    {DetailsSize::fanShift, 26},
    {DetailsSize::fanDrop, 8},
    {DetailsSize::fanFrame, 3},
    {DetailsSize::factInset, 3},
    {DetailsSize::factGap, 1},
    {DetailsSize::captions, 96},
    {DetailsSize::propertiesCaptions, 104},
    {DetailsSize::propertiesWidth, 420},
    {DetailsSize::propertiesHeight, 520},
};
static_assert(std::size(sizeTable) == static_cast<std::size_t>(DetailsSize::propertiesHeight) + 1);

constexpr bool isInTokenOrder() {
    for (std::size_t i = 0; i < std::size(sizeTable); ++i)
        if (static_cast<std::size_t>(sizeTable[i].token) != i) return false;
    return true;
}
static_assert(isInTokenOrder());

} // namespace

int of(const Theme& theme, DetailsSize token) {
    // The theme's scale, by a size that is large enough to tell it.
    constexpr double reference = 1280;
    const double scale = theme.size(ThemeSize::windowWidth) / reference;
    return std::max(1,
                    static_cast<int>(std::lround(sizeTable[static_cast<std::size_t>(token)].pixels * scale)));
}

} // namespace ombrel::DetailsSizes
