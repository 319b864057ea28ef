#pragma once

#include <QRect>

#include <cstddef>
#include <optional>
#include <vector>

namespace ombrel {

/// Where the parts of a tab strip are: tabs that shrink evenly to their smallest width and then scroll
/// between two arrows, and the button for a new tab behind them. A plain value; everything is counted from
/// the side where the text begins, in device-independent pixels.
class TabStripLayout {
public:
    struct Sizes {
        int margin;   ///< before the first tab
        int gap;      ///< between tabs
        int smallest; ///< width of a tab
        int largest;
        int arrow; ///< width of a button that scrolls
        int newTab;
        int spare; ///< of the empty strip at the end
    };

    TabStripLayout() = default;
    /// `shares` has the part of its width that each tab takes now, 0 to 1. `heldWidth` is the width that the
    /// tabs keep although there is room for more.
    TabStripLayout(const Sizes& sizes, int width, const std::vector<double>& shares,
                   std::optional<int> heldWidth);

    [[nodiscard]] int tabWidth() const noexcept { return tabWidth_; }
    [[nodiscard]] bool scrolls() const noexcept { return scrolls_; }
    /// What the tabs are seen through.
    [[nodiscard]] int viewLeft() const noexcept { return viewLeft_; }
    [[nodiscard]] int viewWidth() const noexcept { return viewWidth_; }
    [[nodiscard]] int mostScroll() const noexcept { return mostScroll_; }
    /// The first pixel of a tab and its width, when the strip is not scrolled.
    [[nodiscard]] int left(std::size_t tab) const { return lefts_.at(tab); }
    [[nodiscard]] int widthOf(std::size_t tab) const { return widths_.at(tab); }
    /// Where the last tab ends.
    [[nodiscard]] int end() const noexcept { return end_; }
    [[nodiscard]] int newTabLeft() const noexcept { return newTabLeft_; }
    /// How far to scroll so that a tab is seen whole, from `scroll`.
    [[nodiscard]] int scrollToShow(std::size_t tab, int scroll) const;

private:
    int tabWidth_ = 0;
    bool scrolls_ = false;
    int viewLeft_ = 0;
    int viewWidth_ = 0;
    int mostScroll_ = 0;
    int end_ = 0;
    int newTabLeft_ = 0;
    std::vector<int> lefts_;
    std::vector<int> widths_;
};

} // namespace ombrel
