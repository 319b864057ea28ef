#include "ui/Glyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <array>
#include <span>
#include <utility>

// A glyph is a few steps on a grid of 16 by 16.

namespace ombrel {
namespace {

enum class Step : std::uint8_t { move, line, arc, circle };

struct PathStep {
    Step step;
    /// move, line: x, y. arc: the square's x, y and side, then start and sweep in degrees. circle: centre and
    /// radius.
    std::array<double, 5> at;
};

constexpr PathStep to(double x, double y) {
    return {Step::move, {x, y}};
}
constexpr PathStep line(double x, double y) {
    return {Step::line, {x, y}};
}
constexpr PathStep arc(double x, double y, double side, double start, double sweep) {
    return {Step::arc, {x, y, side, start, sweep}};
}
constexpr PathStep circle(double x, double y, double radius) {
    return {Step::circle, {x, y, radius}};
}

constexpr PathStep backSteps[] = {to(13.5, 8), line(2.75, 8), to(7.25, 3.25), line(2.5, 8),
                                  line(7.25, 12.75)};
constexpr PathStep forwardSteps[] = {to(2.5, 8), line(13.25, 8), to(8.75, 3.25), line(13.5, 8),
                                     line(8.75, 12.75)};
constexpr PathStep upSteps[] = {to(8, 13.5), line(8, 2.75), to(3.25, 7.25), line(8, 2.5), line(12.75, 7.25)};
constexpr PathStep refreshSteps[] = {to(13.4, 8.9), arc(2.5, 2.75, 11, -10, -305), to(13.5, 2.2),
                                     line(13.5, 5.6), line(10.1, 5.6)};
constexpr PathStep chevronLeftSteps[] = {to(9.5, 5), line(6.5, 8), line(9.5, 11)};
constexpr PathStep chevronRightSteps[] = {to(6.5, 5), line(9.5, 8), line(6.5, 11)};
constexpr PathStep chevronUpSteps[] = {to(5, 9.5), line(8, 6.5), line(11, 9.5)};
constexpr PathStep chevronDownSteps[] = {to(5, 6.5), line(8, 9.5), line(11, 6.5)};
constexpr PathStep collapsedSteps[] = {to(7.5, 4.5), line(4, 8),   line(7.5, 11.5),
                                       to(12, 4.5),  line(8.5, 8), line(12, 11.5)};
constexpr PathStep closeSteps[] = {to(4.5, 4.5), line(11.5, 11.5), to(11.5, 4.5), line(4.5, 11.5)};
constexpr PathStep plusSteps[] = {to(8, 2.75), line(8, 13.25), to(2.75, 8), line(13.25, 8)};
constexpr PathStep homeSteps[] = {to(1.75, 8),      line(8, 2.25),     line(14.25, 8),  to(3.5, 6.5),
                                  line(3.5, 13.75), line(6.5, 13.75),  line(6.5, 9.75), line(9.5, 9.75),
                                  line(9.5, 13.75), line(12.5, 13.75), line(12.5, 6.5)};
constexpr PathStep searchSteps[] = {circle(7, 7, 4.5), to(10.35, 10.35), line(14, 14)};
constexpr PathStep checkSteps[] = {to(3.5, 8.25), line(6.75, 11.5), line(12.5, 5)};
constexpr PathStep dashSteps[] = {to(4, 8), line(12, 8)};
constexpr PathStep linkSteps[] = {to(4, 12), line(11.5, 4.5), to(5.5, 4.5), line(11.5, 4.5),
                                  line(11.5, 10.5)};
constexpr PathStep lockSteps[] = {
    to(3.5, 7.25),   line(12.5, 7.25), line(12.5, 14),   line(3.5, 14),
    line(3.5, 7.25), to(5.25, 7),      line(5.25, 4.75), arc(5.25, 2, 5.5, 180, -180),
    line(10.75, 7),  to(8, 10),        line(8, 11.25)};
constexpr PathStep warningSteps[] = {to(8, 2.25), line(14.5, 13.5), line(1.5, 13.5), line(8, 2.25),
                                     to(8, 6.5),  line(8, 9.5),     to(8, 11.5),     line(8, 11.55)};
constexpr PathStep unpluggedSteps[] = {
    to(5.5, 1.75),   line(5.5, 4.5),   to(10.5, 1.75), line(10.5, 4.5),
    to(3.5, 4.75),   line(12.5, 4.75), line(12.5, 7),  arc(3.5, 2.5, 9, 0, -180),
    line(3.5, 4.75), to(8, 11.5),      line(8, 14.5)};
constexpr PathStep goneSteps[] = {circle(8, 8, 6.25), to(5.75, 5.75), line(10.25, 10.25), to(10.25, 5.75),
                                  line(5.75, 10.25)};
constexpr PathStep pauseSteps[] = {to(5.25, 3.5), line(5.25, 12.5), to(10.75, 3.5), line(10.75, 12.5)};
constexpr PathStep playSteps[] = {to(4.5, 3), line(12.5, 8), line(4.5, 13), line(4.5, 3)};
constexpr PathStep replaceSteps[] = {to(2.5, 5),   line(13, 5), to(10, 2.25), line(13.25, 5), line(10, 7.75),
                                     to(13.5, 11), line(3, 11), to(6, 8.25),  line(2.75, 11), line(6, 13.75)};
constexpr PathStep skipSteps[] = {to(3.5, 3.25),   line(10, 8),  line(3.5, 12.75),
                                  line(3.5, 3.25), to(12.75, 3), line(12.75, 13)};
constexpr PathStep listSteps[] = {to(2.5, 4),    line(13.5, 4), to(2.5, 8),
                                  line(13.5, 8), to(2.5, 12),   line(13.5, 12)};
constexpr PathStep keepBothSteps[] = {to(2.5, 2.5),    line(9.5, 2.5), line(9.5, 9.5),  line(2.5, 9.5),
                                      line(2.5, 2.5),  to(12, 6.5),    line(13.5, 6.5), line(13.5, 13.5),
                                      line(6.5, 13.5), line(6.5, 12)};
constexpr PathStep gearSteps[] = {
    circle(8, 8, 2.75), to(8, 1.75),   line(8, 3.5),    to(8, 12.5),   line(8, 14.25), to(1.75, 8),
    line(3.5, 8),       to(12.5, 8),   line(14.25, 8),  to(3.6, 3.6),  line(4.8, 4.8), to(11.2, 11.2),
    line(12.4, 12.4),   to(12.4, 3.6), line(11.2, 4.8), to(4.8, 11.2), line(3.6, 12.4)};
constexpr PathStep keyboardSteps[] = {to(1.5, 4.25),   line(14.5, 4.25), line(14.5, 11.75), line(1.5, 11.75),
                                      line(1.5, 4.25), to(4, 6.9),       line(4.05, 6.9),   to(6.65, 6.9),
                                      line(6.7, 6.9),  to(9.3, 6.9),     line(9.35, 6.9),   to(11.95, 6.9),
                                      line(12, 6.9),   to(5, 9.4),       line(11, 9.4)};
constexpr PathStep globeSteps[] = {circle(8, 8, 6.25), to(1.75, 8),   line(14.25, 8), to(8, 1.75),
                                   line(5.6, 5),       line(5.6, 11), line(8, 14.25), line(10.4, 11),
                                   line(10.4, 5),      line(8, 1.75)};
constexpr PathStep keySteps[] = {circle(5.25, 10.75, 2.75), to(7.25, 8.75), line(13.25, 2.75),
                                 to(10.75, 5.25), line(12.75, 7.25)};
constexpr PathStep syncSteps[] = {
    to(13.3, 6.5), arc(2.5, 2.5, 11, 16, 150),  to(2.6, 2.5),   line(2.6, 5.9),   line(6, 5.9),
    to(2.7, 9.5),  arc(2.5, 2.5, 11, 196, 150), to(13.4, 13.5), line(13.4, 10.1), line(10, 10.1)};

constexpr PathStep newItemSteps[] = {circle(8, 8, 6), to(8, 5.25), line(8, 10.75), to(5.25, 8),
                                     line(10.75, 8)};
constexpr PathStep cutSteps[] = {circle(4.5, 12, 1.9), circle(11.5, 12, 1.9), to(5.6, 10.4),
                                 line(11.25, 2.5),     to(10.4, 10.4),        line(4.75, 2.5)};
constexpr PathStep copySteps[] = {to(6, 5.5),     line(13.5, 5.5), line(13.5, 14),  line(5.5, 14),
                                  line(5.5, 5.5), line(6, 5.5),    to(10.5, 5.25),  line(10.5, 2),
                                  line(2.5, 2),   line(2.5, 10.5), line(5.25, 10.5)};
constexpr PathStep pasteSteps[] = {to(5.5, 3),        line(3.25, 3),    line(3.25, 14),   line(12.75, 14),
                                   line(12.75, 3),    line(10.5, 3),    to(5.75, 1.75),   line(10.25, 1.75),
                                   line(10.25, 4.25), line(5.75, 4.25), line(5.75, 1.75), to(5.75, 7.5),
                                   line(10.25, 7.5),  to(5.75, 10.5),   line(10.25, 10.5)};
constexpr PathStep renameSteps[] = {to(7, 4.5),     line(1.75, 4.5),  line(1.75, 11.5),  line(7, 11.5),
                                    to(11.5, 4.5),  line(14.25, 4.5), line(14.25, 11.5), line(11.5, 11.5),
                                    to(9.25, 2.5),  line(9.25, 13.5), to(7.75, 2.5),     line(10.75, 2.5),
                                    to(7.75, 13.5), line(10.75, 13.5)};
constexpr PathStep trashSteps[] = {to(2.5, 4),      line(13.5, 4),    to(6, 3.75), line(6, 2),
                                   line(10, 2),     line(10, 3.75),   to(4, 4.25), line(4.75, 14),
                                   line(11.25, 14), line(12, 4.25),   to(6.75, 7), line(6.75, 11.25),
                                   to(9.25, 7),     line(9.25, 11.25)};
constexpr PathStep sortSteps[] = {to(4, 3),          line(4, 13), to(1.75, 10.75), line(4, 13),
                                  line(6.25, 10.75), to(8, 4),    line(14.25, 4),  to(8, 8),
                                  line(12.5, 8),     to(8, 12),   line(10.5, 12)};
constexpr PathStep gridSteps[] = {to(2.5, 2.5),    line(6.5, 2.5),   line(6.5, 6.5),  line(2.5, 6.5),
                                  line(2.5, 2.5),  to(9.5, 2.5),     line(13.5, 2.5), line(13.5, 6.5),
                                  line(9.5, 6.5),  line(9.5, 2.5),   to(2.5, 9.5),    line(6.5, 9.5),
                                  line(6.5, 13.5), line(2.5, 13.5),  line(2.5, 9.5),  to(9.5, 9.5),
                                  line(13.5, 9.5), line(13.5, 13.5), line(9.5, 13.5), line(9.5, 9.5)};
constexpr PathStep moreSteps[] = {circle(3, 8, 0.3), circle(8, 8, 0.3), circle(13, 8, 0.3)};
constexpr PathStep detailsPaneSteps[] = {to(2, 3),   line(14, 3), line(14, 13), line(2, 13),
                                         line(2, 3), to(10, 3),   line(10, 13)};
constexpr PathStep openItemSteps[] = {to(9.5, 2.5),   line(13.5, 2.5), line(13.5, 6.5),  to(13.5, 2.5),
                                      line(7.5, 8.5), to(11.5, 9.5),   line(11.5, 13.5), line(2.5, 13.5),
                                      line(2.5, 4.5), line(6.5, 4.5)};
constexpr PathStep chainSteps[] = {to(7.25, 4.75),    line(9, 3),       line(11, 3), line(13, 5), line(13, 7),
                                   line(11.25, 8.75), to(8.75, 11.25),  line(7, 13), line(5, 13), line(3, 11),
                                   line(3, 9),        line(4.75, 7.25), to(6, 10),   line(10, 6)};
constexpr PathStep zipSteps[] = {to(3.5, 2),          line(9.5, 2),     line(12.5, 5), line(12.5, 14),
                                 line(3.5, 14),       line(3.5, 2),     to(7.25, 4.5), line(8.75, 4.5),
                                 to(7.25, 6.75),      line(8.75, 6.75), to(7.25, 9),   line(8.75, 9),
                                 circle(8, 11.4, 0.9)};
constexpr PathStep extractSteps[] = {to(2.5, 9.5),    line(2.5, 13.5), line(13.5, 13.5),
                                     line(13.5, 9.5), to(8, 10.5),     line(8, 2.5),
                                     to(5, 5.5),      line(8, 2.5),    line(11, 5.5)};
constexpr PathStep folderPlusSteps[] = {to(1.75, 13),      line(1.75, 3.5), line(6, 3.5),   line(7.75, 5.25),
                                        line(14.25, 5.25), line(14.25, 13), line(1.75, 13), to(6, 9.25),
                                        line(10, 9.25),    to(8, 7.25),     line(8, 11.25)};
constexpr PathStep folderUpSteps[] = {to(1.75, 13),      line(1.75, 3.5), line(6, 3.5),   line(7.75, 5.25),
                                      line(14.25, 5.25), line(14.25, 13), line(1.75, 13), to(8, 11.25),
                                      line(8, 7.25),     to(6.25, 9),     line(8, 7.25),  line(9.75, 9)};
constexpr PathStep screenSteps[] = {to(1.75, 3),       line(14.25, 3), line(14.25, 11),
                                    line(1.75, 11),    line(1.75, 3),  to(5.5, 13.75),
                                    line(10.5, 13.75), to(8, 11),      line(8, 13.75)};
constexpr PathStep eyeSteps[] = {to(1.49, 8), arc(0.7, 4, 14.6, 153.1, -126.2),
                                 arc(0.7, -2.6, 14.6, -26.9, -126.2), circle(8, 8, 2)};
constexpr PathStep propertiesSteps[] = {to(2.5, 2.5),   line(13.5, 2.5), line(13.5, 13.5),  line(2.5, 13.5),
                                        line(2.5, 2.5), to(5.25, 5.75),  line(10.75, 5.75), to(5.25, 8),
                                        line(10.75, 8), to(5.25, 10.25), line(10.75, 10.25)};
constexpr PathStep undoSteps[] = {to(3, 3), line(3, 6.5), line(6.5, 6.5), to(3.47, 6.4),
                                  arc(3, 3.5, 10, 155, -250)};
constexpr PathStep redoSteps[] = {to(13, 3), line(13, 6.5), line(9.5, 6.5), to(12.53, 6.4),
                                  arc(3, 3.5, 10, 25, 250)};
constexpr PathStep terminalSteps[] = {to(1.75, 3),     line(14.25, 3),    line(14.25, 13), line(1.75, 13),
                                      line(1.75, 3),   to(4.5, 6),        line(6.75, 8),   line(4.5, 10),
                                      to(8.25, 10.25), line(11.25, 10.25)};
constexpr PathStep newWindowSteps[] = {to(2, 3),   line(14, 3), line(14, 13), line(2, 13),
                                       line(2, 3), to(2, 6),    line(14, 6)};
constexpr PathStep newTabSteps[] = {to(1.75, 13),   line(1.75, 5),   line(4, 5),
                                    line(4, 2.75),  line(10, 2.75),  line(10, 5),
                                    line(14.25, 5), line(14.25, 13), line(1.75, 13)};
constexpr PathStep pinSteps[] = {to(5.5, 2.5), line(10.5, 2.5), to(6.5, 2.75),   line(6.5, 6.75),
                                 line(4.5, 9), line(11.5, 9),   line(9.5, 6.75), line(9.5, 2.75),
                                 to(8, 9.25),  line(8, 13.75)};
constexpr PathStep selectAllSteps[] = {to(2.5, 2.5),   line(13.5, 2.5), line(13.5, 13.5),  line(2.5, 13.5),
                                       line(2.5, 2.5), to(5.25, 8.25),  line(7.25, 10.25), line(11, 6)};
constexpr PathStep desktopSteps[] = {to(2, 2.75),    line(14, 2.75), line(14, 10.75),
                                     line(2, 10.75), line(2, 2.75),  to(8, 11),
                                     line(8, 13.25), to(5.5, 13.5),  line(10.5, 13.5)};
constexpr PathStep downloadsSteps[] = {to(8, 2.5),     line(8, 10),  to(4.75, 7),    line(8, 10.25),
                                       line(11.25, 7), to(3, 13.25), line(13, 13.25)};
constexpr PathStep documentsSteps[] = {to(3.5, 2),        line(9.5, 2), line(12.5, 5),  line(12.5, 14),
                                       line(3.5, 14),     line(3.5, 2), to(9.25, 2.25), line(9.25, 5.25),
                                       line(12.25, 5.25), to(6, 8.25),  line(10, 8.25), to(6, 11),
                                       line(10, 11)};
constexpr PathStep picturesSteps[] = {to(2, 3),       line(14, 3),       line(14, 13),
                                      line(2, 13),    line(2, 3),        circle(10.75, 6, 0.5),
                                      to(2.25, 11.5), line(5.75, 7.75),  line(8.75, 10.75),
                                      line(11, 9),    line(13.75, 11.25)};
constexpr PathStep musicSteps[] = {circle(4.5, 12, 1.75), circle(11, 10.75, 1.75), to(6.25, 12),
                                   line(6.25, 4),         line(12.75, 2.5),        line(12.75, 10.75)};
constexpr PathStep videosSteps[] = {to(2, 3.25),       line(10.5, 3.25),   line(10.5, 12.75),
                                    line(2, 12.75),    line(2, 3.25),      to(10.75, 7.25),
                                    line(13.75, 5.25), line(13.75, 10.75), line(10.75, 8.75)};
constexpr PathStep driveSteps[] = {to(2, 9.5),      line(4.25, 3.5), line(11.75, 3.5), line(14, 9.5),
                                   line(14, 12.75), line(2, 12.75),  line(2, 9.5),     line(14, 9.5),
                                   to(11.25, 11.1), line(11.5, 11.1)};
constexpr PathStep stickSteps[] = {to(4.75, 6),       line(11.25, 6), line(11.25, 14), line(4.75, 14),
                                   line(4.75, 6),     to(5.75, 5.75), line(5.75, 2),   line(10.25, 2),
                                   line(10.25, 5.75), to(7.25, 4),    line(7.3, 4),    to(8.75, 4),
                                   line(8.8, 4)};
constexpr PathStep networkSteps[] = {to(2.25, 2.75),  line(13.75, 2.75), line(13.75, 9.5),
                                     line(2.25, 9.5), line(2.25, 2.75),  to(8, 9.75),
                                     line(8, 13.25),  to(4.5, 13.25),    line(11.5, 13.25)};
constexpr PathStep ejectSteps[] = {to(3, 9.25),   line(8, 3.75), line(13, 9.25),
                                   line(3, 9.25), to(3, 12.75),  line(13, 12.75)};

std::span<const PathStep> stepsOf(Glyph glyph) {
    switch (glyph) {
    case Glyph::back: return backSteps;
    case Glyph::forward: return forwardSteps;
    case Glyph::up: return upSteps;
    case Glyph::refresh: return refreshSteps;
    case Glyph::chevronLeft: return chevronLeftSteps;
    case Glyph::chevronRight: return chevronRightSteps;
    case Glyph::chevronUp: return chevronUpSteps;
    case Glyph::chevronDown: return chevronDownSteps;
    case Glyph::collapsed: return collapsedSteps;
    case Glyph::close: return closeSteps;
    case Glyph::plus: return plusSteps;
    case Glyph::home: return homeSteps;
    case Glyph::search: return searchSteps;
    case Glyph::check: return checkSteps;
    case Glyph::dash: return dashSteps;
    case Glyph::link: return linkSteps;
    case Glyph::lock: return lockSteps;
    case Glyph::warning: return warningSteps;
    case Glyph::unplugged: return unpluggedSteps;
    case Glyph::gone: return goneSteps;
    case Glyph::pause: return pauseSteps;
    case Glyph::play: return playSteps;
    case Glyph::replace: return replaceSteps;
    case Glyph::skip: return skipSteps;
    case Glyph::list: return listSteps;
    case Glyph::keepBoth: return keepBothSteps;
    case Glyph::gear: return gearSteps;
    case Glyph::keyboard: return keyboardSteps;
    case Glyph::globe: return globeSteps;
    case Glyph::key: return keySteps;
    case Glyph::sync: return syncSteps;
    case Glyph::newItem: return newItemSteps;
    case Glyph::cut: return cutSteps;
    case Glyph::copy: return copySteps;
    case Glyph::paste: return pasteSteps;
    case Glyph::rename: return renameSteps;
    case Glyph::trash: return trashSteps;
    case Glyph::sort: return sortSteps;
    case Glyph::grid: return gridSteps;
    case Glyph::more: return moreSteps;
    case Glyph::detailsPane: return detailsPaneSteps;
    case Glyph::openItem: return openItemSteps;
    case Glyph::chain: return chainSteps;
    case Glyph::zip: return zipSteps;
    case Glyph::extract: return extractSteps;
    case Glyph::folderPlus: return folderPlusSteps;
    case Glyph::folderUp: return folderUpSteps;
    case Glyph::screen: return screenSteps;
    case Glyph::eye: return eyeSteps;
    case Glyph::properties: return propertiesSteps;
    case Glyph::undo: return undoSteps;
    case Glyph::redo: return redoSteps;
    case Glyph::terminal: return terminalSteps;
    case Glyph::newWindow: return newWindowSteps;
    case Glyph::newTab: return newTabSteps;
    case Glyph::pin: return pinSteps;
    case Glyph::selectAll: return selectAllSteps;
    case Glyph::desktop: return desktopSteps;
    case Glyph::downloads: return downloadsSteps;
    case Glyph::documents: return documentsSteps;
    case Glyph::pictures: return picturesSteps;
    case Glyph::music: return musicSteps;
    case Glyph::videos: return videosSteps;
    case Glyph::drive: return driveSteps;
    case Glyph::stick: return stickSteps;
    case Glyph::network: return networkSteps;
    case Glyph::eject: return ejectSteps;
    }
    std::unreachable();
}

QPainterPath pathOf(Glyph glyph) {
    QPainterPath path;
    for (const PathStep& step : stepsOf(glyph)) {
        const auto& at = step.at;
        switch (step.step) {
        case Step::move: path.moveTo(at[0], at[1]); break;
        case Step::line: path.lineTo(at[0], at[1]); break;
        case Step::arc: path.arcTo(at[0], at[1], at[2], at[2], at[3], at[4]); break;
        case Step::circle: path.addEllipse(QPointF(at[0], at[1]), at[2], at[2]); break;
        }
    }
    return path;
}

} // namespace

void Glyphs::draw(QPainter& painter, Glyph glyph, const QRectF& box, const QColor& color) {
    constexpr double grid = 16, thinnest = 1.2; // 1.5 on a grid of 20, and no thinner where they are small
    const double scale = box.width() / grid;
    const double stroke = std::max(thinnest, thinnest / scale);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.topLeft());
    painter.scale(scale, box.height() / grid);
    painter.setPen(QPen(color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(pathOf(glyph));
    painter.restore();
}

} // namespace ombrel
