#include "ui/ScrollExtent.h"

#include <gmock/gmock.h>

namespace ombrel {
namespace {

TEST(ScrollExtentOfALittle, IsNothingToScroll) {
    ScrollExtent extent;
    extent.setHeights(100, 400);
    extent.scrollTo(50);
    EXPECT_EQ(extent.offset(), 0);
    EXPECT_EQ(extent.barMaximum(), 0);
    extent.setHeights(0, 0);
    EXPECT_EQ(extent.barMaximum(), 0);
    EXPECT_GE(extent.barPage(), 1);
}

TEST(ScrollExtentInPixels, IsWhatTheBarSays) {
    ScrollExtent extent;
    extent.setHeights(1000, 400);
    EXPECT_EQ(extent.barMaximum(), 600);
    EXPECT_EQ(extent.barPage(), 400);
    extent.scrollToBar(123);
    EXPECT_EQ(extent.offset(), 123);
    EXPECT_EQ(extent.barValue(), 123);
    extent.scrollTo(10'000);
    EXPECT_EQ(extent.offset(), 600);
    extent.setHeights(500, 400);
    EXPECT_EQ(extent.offset(), 100);
}

/// Heights that no int holds: four thousand million rows of 96 pixels.
TEST(ScrollExtentBeyondAnInt, ReachesBothEndsAndEveryPixelBetween) {
    constexpr qint64 content = 4'000'000'000LL * 96;
    ScrollExtent extent;
    extent.setHeights(content, 700);
    EXPECT_LE(extent.barMaximum(), 1 << 30);
    extent.scrollToBar(extent.barMaximum());
    EXPECT_EQ(extent.offset(), content - 700);
    EXPECT_EQ(extent.barValue(), extent.barMaximum());
    extent.scrollTo(content - 701);
    const int value = extent.barValue();
    extent.scrollToBar(value);
    EXPECT_EQ(extent.offset(), content - 701);
    extent.scrollToBar(value - 1);
    EXPECT_LT(extent.offset(), content - 701);
    extent.scrollToBar(0);
    EXPECT_EQ(extent.offset(), 0);
}

} // namespace
} // namespace ombrel
