#include "ui/HomeLayout.h"

#include "ui/Theme.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace ombrel {
namespace {

using Section = HomeModel::Section;
using Part = HomeItem::Part;

constexpr int mostColumns = 4;

} // namespace

HomeLayout::HomeLayout(const HomeModel& model, const Theme& theme, int width) {
    left_ = theme.size(ThemeSize::homeMargin);
    width_ = std::max(1, width - 2 * left_);
    height_ = theme.size(ThemeSize::homeTop);
    for (const Section section : {Section::quickAccess, Section::locations, Section::volumes}) {
        items_.push_back(
            {{section, Part::head, 0}, QRect(left_, height_, width_, theme.size(ThemeSize::homeHead))});
        height_ += theme.size(ThemeSize::homeHead);
        if (!model.isFolded(section)) {
            height_ += theme.size(ThemeSize::homeHeadGap);
            const std::size_t count = model.count(section);
            if (section == Section::locations)
                placeLocations(theme, count);
            else if (section == Section::quickAccess)
                placeGrid(theme, section, count, theme.size(ThemeSize::tileMinimumWidth),
                          theme.size(ThemeSize::tile));
            else
                placeGrid(theme, section, count, theme.size(ThemeSize::volumeCardMinimumWidth),
                          theme.size(ThemeSize::volumeCard));
        }
        height_ += theme.size(ThemeSize::homeSectionGap);
    }
}

void HomeLayout::placeGrid(const Theme& theme, Section section, std::size_t count, int leastWidth,
                           int height) {
    const int gap = theme.size(ThemeSize::homeGap);
    const int columns = std::clamp((width_ + gap) / (leastWidth + gap), 1, mostColumns);
    const int room = width_ - (columns - 1) * gap;
    for (std::size_t i = 0; i < count; ++i) {
        const int column = static_cast<int>(i) % columns, line = static_cast<int>(i) / columns;
        // What does not divide evenly is shared out, so that the right edges meet.
        const int from = room * column / columns, to = room * (column + 1) / columns;
        items_.push_back(
            {{section, Part::entry, i},
             QRect(left_ + from + column * gap, height_ + line * (height + gap), to - from, height)});
    }
    const int lines = (static_cast<int>(count) + columns - 1) / columns;
    if (lines > 0) height_ += lines * (height + gap) - gap;
}

void HomeLayout::placeLocations(const Theme& theme, std::size_t count) {
    const int row = theme.size(ThemeSize::locationRow), hairline = theme.size(ThemeSize::hairline);
    const int top = height_;
    if (count == 0) {
        emptyText_ = QRect(left_, height_, width_, row);
        height_ += row;
    }
    for (std::size_t i = 0; i < count; ++i) {
        items_.push_back({{Section::locations, Part::entry, i}, QRect(left_, height_, width_, row)});
        height_ += row;
    }
    items_.push_back({{Section::locations, Part::addLocation, 0}, QRect(left_, height_, width_, row)});
    height_ += row + hairline;
    frame_ = QRect(left_, top, width_, height_ - top);
}

std::optional<std::size_t> HomeLayout::placeOf(const HomeItem& item) const {
    const auto found = std::ranges::find(items_, item, &Placed::item);
    if (found == items_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - items_.begin());
}

QRect HomeLayout::rectOf(const HomeItem& item) const {
    const auto place = placeOf(item);
    return place ? items_[*place].rect : QRect();
}

std::optional<HomeItem> HomeLayout::itemAt(const QPoint& at) const {
    const auto found =
        std::ranges::find_if(items_, [&](const Placed& placed) { return placed.rect.contains(at); });
    return found == items_.end() ? std::nullopt : std::optional(found->item);
}

std::optional<HomeItem> HomeLayout::neighbour(const HomeItem& from, Direction direction) const {
    const auto place = placeOf(from);
    if (!place) return std::nullopt;
    const QRect& rect = items_[*place].rect;
    if (direction == Direction::left || direction == Direction::right) {
        const bool isLeft = direction == Direction::left;
        if (isLeft ? *place == 0 : *place + 1 == items_.size()) return std::nullopt;
        const Placed& next = items_[isLeft ? *place - 1 : *place + 1];
        const bool isInSection = next.item.section == from.section && next.item.part == from.part;
        return isInSection ? std::optional(next.item) : std::nullopt;
    }
    const bool isUp = direction == Direction::up;
    std::optional<HomeItem> nearest;
    auto best = std::pair(std::numeric_limits<int>::max(), 0);
    for (const Placed& other : items_) {
        const int away = isUp ? rect.top() - other.rect.top() : other.rect.top() - rect.top();
        if (away <= 0) continue;
        const auto distance = std::pair(away, std::abs(other.rect.center().x() - rect.center().x()));
        if (distance >= best) continue;
        best = distance;
        nearest = other.item;
    }
    return nearest;
}

std::optional<std::size_t> HomeLayout::insertionAt(const QPoint& at, int margin) const {
    std::optional<std::size_t> last;
    for (const auto& [item, rect] : items_) {
        if (item.section != Section::quickAccess || item.part != Part::entry) continue;
        if (at.y() < rect.top() - margin || at.y() > rect.bottom() + margin) continue;
        if (at.x() < rect.left() + margin)
            return at.x() >= rect.left() - margin || !last ? std::optional(item.index) : last;
        if (at.x() <= rect.right() - margin) return std::nullopt;
        last = item.index + 1;
    }
    return last;
}

} // namespace ombrel
