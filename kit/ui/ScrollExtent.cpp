#include "ui/ScrollExtent.h"

#include <algorithm>

namespace ombrel {
namespace {

/// Half of what an int holds, so that Qt's sums of value and page do not overflow.
constexpr qint64 largestBarValue = qint64{1} << 30;

constexpr qint64 roundedUp(qint64 value, qint64 divisor) {
    return (value + divisor - 1) / divisor;
}

} // namespace

void ScrollExtent::setHeights(qint64 content, int viewport) {
    content_ = content;
    viewport_ = viewport;
    scrollTo(offset_);
}

void ScrollExtent::scrollTo(qint64 offset) {
    offset_ = std::clamp<qint64>(offset, 0, largestOffset());
}

void ScrollExtent::scrollToBar(int value) {
    if (value != barValue()) scrollTo(value * pixelsPerStep());
}

qint64 ScrollExtent::largestOffset() const noexcept {
    return std::max<qint64>(0, content_ - viewport_);
}

qint64 ScrollExtent::pixelsPerStep() const noexcept {
    return std::max<qint64>(1, roundedUp(largestOffset(), largestBarValue));
}

int ScrollExtent::barMaximum() const noexcept {
    return static_cast<int>(roundedUp(largestOffset(), pixelsPerStep()));
}

int ScrollExtent::barPage() const noexcept {
    return static_cast<int>(std::max<qint64>(1, viewport_ / pixelsPerStep()));
}

int ScrollExtent::barValue() const noexcept {
    // Rounded up, so that the end of the contents is the end of the bar.
    return static_cast<int>(roundedUp(offset_, pixelsPerStep()));
}

} // namespace ombrel
