#pragma once

#include "ui/Theme.h"

#include <QGuiApplication>
#include <QPoint>

namespace ombrel::testing {

/// Where things are in a first window of the real program, from the same tables that it is laid out with.
///
/// Sizes follow the interface font: it is the one that a program has on a display without a desktop, as
/// `Desktop` shows it.
class WindowPlaces {
public:
    [[nodiscard]] static WindowPlaces measured() {
        static int count = 3;
        static char program[] = "places", option[] = "-platform", platform[] = "offscreen";
        static char* words[] = {program, option, platform, nullptr};
        qputenv("QT_FONT_DPI", "104");
        const QGuiApplication application(count, words);
        constexpr int points = 9;
        Theme theme;
        theme.setInterfaceFont(QFont(QStringLiteral("Sans Serif"), points));
        const auto size = [&theme](ThemeSize token) { return theme.size(token); };
        WindowPlaces places;
        places.listLeft_ = size(ThemeSize::tree);
        places.headerTop_ =
            size(ThemeSize::tabStrip) + size(ThemeSize::navigationRow) + size(ThemeSize::commandBar);
        places.headerHeight_ = size(ThemeSize::header);
        places.firstRowTop_ = places.headerTop_ + places.headerHeight_ + size(ThemeSize::listInset);
        places.rowHeight_ = size(ThemeSize::row);
        places.nameLeft_ = places.listLeft_ + size(ThemeSize::checkBoxColumn) + size(ThemeSize::listInset);
        places.icon_ = size(ThemeSize::listIcon);
        return places;
    }

    /// On the name of a row, counted from 0.
    [[nodiscard]] QPoint row(int index) const {
        return {nameLeft_ + 2 * icon_, firstRowTop_ + index * rowHeight_ + rowHeight_ / 2};
    }
    [[nodiscard]] QPoint nameHeader() const { return {nameLeft_ + icon_, headerTop_ + headerHeight_ / 2}; }

private:
    int listLeft_ = 0, headerTop_ = 0, headerHeight_ = 0, firstRowTop_ = 0, rowHeight_ = 0, nameLeft_ = 0,
        icon_ = 0;
};

} // namespace ombrel::testing
