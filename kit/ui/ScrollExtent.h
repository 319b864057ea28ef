#pragma once

#include <QtGlobal>

namespace ombrel {

/// How far a view is scrolled over contents of any height, and what that means to a scroll bar, whose numbers
/// end at 32 bits: where the height goes beyond, one step of the bar stands for several pixels.
class ScrollExtent {
public:
    /// Heights in pixels, not negative. The offset is kept, as far as the new heights allow.
    void setHeights(qint64 content, int viewport);
    /// Moves to `offset`, or as near as there is something to show.
    void scrollTo(qint64 offset);
    /// Moves to where the bar stands. A bar that says where we are already moves nothing by its rounding.
    void scrollToBar(int value);

    [[nodiscard]] qint64 content() const noexcept { return content_; }
    [[nodiscard]] int viewport() const noexcept { return viewport_; }
    [[nodiscard]] qint64 offset() const noexcept { return offset_; }
    [[nodiscard]] qint64 largestOffset() const noexcept;

    [[nodiscard]] int barMaximum() const noexcept;
    [[nodiscard]] int barPage() const noexcept;
    [[nodiscard]] int barValue() const noexcept;

private:
    [[nodiscard]] qint64 pixelsPerStep() const noexcept;

    qint64 content_ = 0;
    int viewport_ = 0;
    qint64 offset_ = 0;
};

} // namespace ombrel
