#include "ui/PlaceSizes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace ombrel::PlaceSizes {
namespace {

struct SizeRow {
    PlaceSize token;
    int pixels;
};

constexpr SizeRow sizeTable[] = {
    {PlaceSize::treeRow, 28},
    {PlaceSize::treeInset, 6},
    {PlaceSize::treeTop, 8},
    {PlaceSize::treeIndent, 16},
    {PlaceSize::treeChevron, 14},
    {PlaceSize::treeButton, 24},
    {PlaceSize::treeEdge, 3},
    {PlaceSize::homeMargin, 28},
    {PlaceSize::homeTop, 12},
    {PlaceSize::homeHead, 32},
    {PlaceSize::homeHeadGap, 4},
    {PlaceSize::homeSectionGap, 14},
    {PlaceSize::homeGap, 10},
    {PlaceSize::tile, 64},
    {PlaceSize::tileMinimumWidth, 220},
    {PlaceSize::tileInset, 15},
    {PlaceSize::tileIcon, 40},
    {PlaceSize::locationRow, 52},
    {PlaceSize::locationIcon, 28},
    {PlaceSize::pillHeight, 19},
    {PlaceSize::volumeCard, 100},
    {PlaceSize::volumeCardMinimumWidth, 260},
    {PlaceSize::volumePlate, 40},
    {PlaceSize::capacityBar, 6},
    {PlaceSize::insertionLine, 2},
};
static_assert(std::size(sizeTable) == static_cast<std::size_t>(PlaceSize::insertionLine) + 1);

constexpr bool isInTokenOrder() {
    for (std::size_t i = 0; i < std::size(sizeTable); ++i)
        if (static_cast<std::size_t>(sizeTable[i].token) != i) return false;
    return true;
}
static_assert(isInTokenOrder());

} // namespace

int of(const Theme& theme, PlaceSize token) {
    // The theme's scale, by a size that is large enough to tell it.
    constexpr double reference = 1280;
    const double scale = theme.size(ThemeSize::windowWidth) / reference;
    return std::max(1,
                    static_cast<int>(std::lround(sizeTable[static_cast<std::size_t>(token)].pixels * scale)));
}

QColor folderGlyph() {
    return QColor::fromRgba(0xFF8A4B12);
}

} // namespace ombrel::PlaceSizes
