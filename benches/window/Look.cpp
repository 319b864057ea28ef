#include "window/Look.h"

#include <utility>

namespace ombrel::bench {
namespace {

std::uint32_t pixel(const Picture& picture, int x, int y) {
    return picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                          static_cast<std::size_t>(x)];
}

const std::uint32_t* rowOf(const Picture& picture, int y) {
    return &picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width)];
}

/// The first and the one after the last index between which all but a share of the counts lie, half of that
/// on either side.
std::pair<int, int> bulk(const std::vector<std::size_t>& counts, double leftOut) {
    std::size_t total = 0;
    for (const std::size_t count : counts)
        total += count;
    const auto spare = static_cast<std::size_t>(static_cast<double>(total) * leftOut / 2);
    int first = 0, end = static_cast<int>(counts.size());
    for (std::size_t passed = 0; first < end; ++first) {
        passed += counts[static_cast<std::size_t>(first)];
        if (passed > spare) break;
    }
    for (std::size_t passed = 0; end > first; --end) {
        passed += counts[static_cast<std::size_t>(end - 1)];
        if (passed > spare) break;
    }
    return {first, end};
}

/// Every second line tells as much as all of them, in half the time.
constexpr int lineStep = 2;

std::size_t differences(const std::uint32_t* one, const std::uint32_t* other, int from, int to) {
    std::size_t count = 0;
    for (int x = from; x < to; ++x)
        count += one[x] != other[x];
    return count;
}

} // namespace

Look::Area Look::areaOfDifferences(const Picture& one, const Picture& other, double leftOut) {
    std::vector<std::size_t> columns(static_cast<std::size_t>(one.width)),
        lines(static_cast<std::size_t>(one.height));
    for (int y = 0; y < one.height; ++y)
        for (int x = 0; x < one.width; ++x)
            if (pixel(one, x, y) != pixel(other, x, y)) {
                ++columns[static_cast<std::size_t>(x)];
                ++lines[static_cast<std::size_t>(y)];
            }
    const auto [left, right] = bulk(columns, leftOut);
    const auto [top, bottom] = bulk(lines, leftOut);
    return {.left = left, .top = top, .right = right, .bottom = bottom};
}

Look::Look(Picture desk, Picture empty, const Picture& filled)
    : desk_(std::move(desk)), empty_(std::move(empty)), filled_(filled) {
    // Titles and status bars differ a little too.
    constexpr double elsewhere = 0.04;
    window_ = areaOfDifferences(desk_, empty_, 0);
    rows_ = areaOfDifferences(empty_, filled_, elsewhere);
    for (int y = rows_.top; y < rows_.bottom; y += lineStep)
        ink_ += differences(rowOf(empty_, y), rowOf(filled_, y), rows_.left, rows_.right);
    constexpr std::size_t tooLittle = 1000;
    if (ink_ < tooLittle) ink_ = 0;
}

bool Look::showsWindow(const Display& display) const {
    std::size_t changed = 0, all = 0;
    for (int y = window_.top; y < window_.bottom; y += lineStep) {
        changed += differences(display.row(y), rowOf(desk_, y), window_.left, window_.right);
        all += differences(rowOf(empty_, y), rowOf(desk_, y), window_.left, window_.right);
    }
    return changed * 2 > all;
}

bool Look::showsRows(const Display& display) const {
    std::size_t around = 0, changedAround = 0, written = 0;
    for (int y = window_.top; y < window_.bottom; y += lineStep) {
        const std::uint32_t *const now = display.row(y), *const empty = rowOf(empty_, y);
        const bool isBeside = y < rows_.top || y >= rows_.bottom;
        const int left = isBeside ? window_.right : rows_.left,
                  right = isBeside ? window_.right : rows_.right;
        changedAround += differences(now, empty, window_.left, left);
        changedAround += differences(now, empty, right, window_.right);
        written += differences(now, empty, left, right);
        around += static_cast<std::size_t>((left - window_.left) + (window_.right - right));
    }
    constexpr std::size_t shareAround = 10;
    return changedAround * shareAround <= around && written * 2 >= ink_ && written <= ink_ * 2;
}

bool Look::isComplete(const Display& display) const {
    std::size_t different = 0;
    for (int y = rows_.top; y < rows_.bottom; y += lineStep)
        different += differences(display.row(y), rowOf(filled_, y), rows_.left, rows_.right);
    constexpr std::size_t share = 20;
    return different * share <= ink_;
}

} // namespace ombrel::bench
