#pragma once

#include "browser/HomeModel.h"

#include <QRect>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace ombrel {

class Theme;

/// One thing on the home page that the keyboard can be at.
struct HomeItem {
    enum class Part : std::uint8_t {
        head,        ///< of a section; opens and closes it
        entry,       ///< a tile, row or card
        addLocation, ///< the last row of the locations
    };

    HomeModel::Section section = HomeModel::Section::quickAccess;
    Part part = Part::head;
    std::size_t index = 0; ///< of an entry

    friend bool operator==(const HomeItem&, const HomeItem&) = default;
};

/// Where everything stands on a home page of a given width, in its contents' coordinates, from left to right.
/// A plain value.
class HomeLayout {
public:
    struct Placed {
        HomeItem item;
        QRect rect;
    };
    enum class Direction : std::uint8_t { up, down, left, right };

    HomeLayout() = default;
    HomeLayout(const HomeModel& model, const Theme& theme, int width);

    [[nodiscard]] int height() const noexcept { return height_; }
    /// In the order of reading.
    [[nodiscard]] const std::vector<Placed>& items() const noexcept { return items_; }
    /// Empty when there is no such item.
    [[nodiscard]] QRect rectOf(const HomeItem& item) const;
    [[nodiscard]] std::optional<HomeItem> itemAt(const QPoint& at) const;
    /// The outline around the rows of the locations; empty when they are folded away.
    [[nodiscard]] const QRect& locationsFrame() const noexcept { return frame_; }
    /// The sentence that stands for locations that are not there.
    [[nodiscard]] const QRect& emptyText() const noexcept { return emptyText_; }

    /// The item next to another one in a direction: sideways in the order of reading within a line, up and
    /// down the nearest one of the next line. Nothing at the end.
    [[nodiscard]] std::optional<HomeItem> neighbour(const HomeItem& from, Direction direction) const;
    /// Between which tiles something is dropped at a place among them: in front of that one.
    [[nodiscard]] std::optional<std::size_t> insertionAt(const QPoint& at, int margin) const;

private:
    void placeGrid(const Theme& theme, HomeModel::Section section, std::size_t count, int leastWidth,
                   int height);
    void placeLocations(const Theme& theme, std::size_t count);
    [[nodiscard]] std::optional<std::size_t> placeOf(const HomeItem& item) const;

    std::vector<Placed> items_;
    int left_ = 0, width_ = 0, height_ = 0;
    QRect frame_, emptyText_;
};

} // namespace ombrel
