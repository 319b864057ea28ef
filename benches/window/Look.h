#pragma once

#include "window/Display.h"

namespace ombrel::bench {

/// What one program's window looks like, and by that how far it has come. The same measure for all programs:
///
/// - the window is there when half of its pixels are no longer the desk's;
/// - rows are painted when around them nine tenths of the window are as in the picture of the empty folder,
///   and where the rows come between half and twice as much is written as in the end;
/// - it is complete when what the rows are to show differs from what it shows by no more than a twentieth.
class Look {
public:
    /// The display without the program, with its window over an empty folder, and over the folder that is
    /// opened, each at rest.
    Look(Picture desk, Picture empty, const Picture& filled);

    [[nodiscard]] bool showsWindow(const Display& display) const;
    [[nodiscard]] bool showsRows(const Display& display) const;
    [[nodiscard]] bool isComplete(const Display& display) const;
    /// Pixels that the rows change; none, when the pictures do not differ enough to tell anything.
    [[nodiscard]] std::size_t ink() const noexcept { return ink_; }

private:
    /// A part of the display; `right` and `bottom` lie outside.
    struct Area {
        int left = 0, top = 0, right = 0, bottom = 0;
        [[nodiscard]] bool contains(int x, int y) const noexcept {
            return x >= left && x < right && y >= top && y < bottom;
        }
    };
    [[nodiscard]] static Area areaOfDifferences(const Picture& one, const Picture& other, double leftOut);

    Picture desk_, empty_, filled_;
    Area window_; ///< where the window is
    Area rows_;   ///< where its rows are
    std::size_t ink_ = 0;
};

} // namespace ombrel::bench
