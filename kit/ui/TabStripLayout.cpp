#include "ui/TabStripLayout.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ombrel {

TabStripLayout::TabStripLayout(const Sizes& sizes, int width, const std::vector<double>& shares,
                               std::optional<int> heldWidth) {
    const double count = std::accumulate(shares.begin(), shares.end(), 0.0);
    const int room = width - sizes.margin - sizes.gap - sizes.newTab - sizes.spare;
    const double even = count > 0 ? room / count - sizes.gap : sizes.largest;
    tabWidth_ = std::clamp(static_cast<int>(std::floor(even)), sizes.smallest, sizes.largest);
    if (heldWidth) tabWidth_ = std::min(tabWidth_, *heldWidth);

    double left = 0;
    for (const double share : shares) {
        const double next = left + share * (tabWidth_ + sizes.gap);
        lefts_.push_back(static_cast<int>(std::lround(left)));
        widths_.push_back(std::max(0, static_cast<int>(std::lround(next)) - sizes.gap - lefts_.back()));
        left = next;
    }
    const int content = static_cast<int>(std::lround(left));
    scrolls_ = content > room;
    viewLeft_ = sizes.margin + (scrolls_ ? sizes.arrow : 0);
    viewWidth_ = std::max(0, scrolls_ ? room - 2 * sizes.arrow : content);
    mostScroll_ = std::max(0, content - viewWidth_);
    for (int& tabLeft : lefts_)
        tabLeft += viewLeft_;
    end_ = viewLeft_ + content;
    newTabLeft_ = viewLeft_ + viewWidth_ + (scrolls_ ? sizes.arrow : 0) + sizes.gap;
}

int TabStripLayout::scrollToShow(std::size_t tab, int scroll) const {
    const int begin = left(tab) - viewLeft_, end = begin + widthOf(tab);
    scroll = std::min(std::max(scroll, end - viewWidth_), begin);
    return std::clamp(scroll, 0, mostScroll_);
}

} // namespace ombrel
