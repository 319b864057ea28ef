#pragma once

#include "ui/Theme.h"

#include <QGuiApplication>
#include <QPoint>

namespace ombrel::testing {

/// Where things are in a first window of the real program: its sizes follow the interface font of the
/// display that it is on, and so does its width, which tells by how much.
class WindowPlaces {
public:
    /// `width` of the window in pixels, on a screen that is large enough for a first window.
    explicit WindowPlaces(int width) {
        // Fonts want an application object.
        static int count = 3;
        static char program[] = "places", option[] = "-platform", platform[] = "offscreen";
        static char* words[] = {program, option, platform, nullptr};
        const QGuiApplication application(count, words);
        const Theme theme;
        const double scale = static_cast<double>(width) / theme.size(ThemeSize::windowWidth);
        const auto size = [&](ThemeSize token) { return static_cast<int>(theme.size(token) * scale); };
        const int listLeft = size(ThemeSize::tree);
        headerTop_ = size(ThemeSize::tabStrip) + size(ThemeSize::navigationRow) + size(ThemeSize::commandBar);
        headerHeight_ = size(ThemeSize::header);
        firstRowTop_ = headerTop_ + headerHeight_ + size(ThemeSize::listInset);
        rowHeight_ = size(ThemeSize::row);
        nameLeft_ = listLeft + size(ThemeSize::checkBoxColumn) + size(ThemeSize::listInset);
        icon_ = size(ThemeSize::listIcon);
    }

    /// On the name of a row, counted from 0.
    [[nodiscard]] QPoint row(int index) const {
        return {nameLeft_ + 2 * icon_, firstRowTop_ + index * rowHeight_ + rowHeight_ / 2};
    }
    [[nodiscard]] QPoint nameHeader() const { return {nameLeft_ + icon_, headerTop_ + headerHeight_ / 2}; }

private:
    int headerTop_ = 0, headerHeight_ = 0, firstRowTop_ = 0, rowHeight_ = 0, nameLeft_ = 0, icon_ = 0;
};

} // namespace ombrel::testing
