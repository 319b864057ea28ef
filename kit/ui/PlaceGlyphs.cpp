#include "ui/PlaceGlyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <array>
#include <span>
#include <utility>

// A glyph is a few steps on a grid of 16 by 16.

namespace ombrel {
namespace {

enum class Step : std::uint8_t { move, line, circle };

struct PathStep {
    Step step;
    /// move, line: x, y. circle: centre and radius.
    std::array<double, 3> at;
};

constexpr PathStep to(double x, double y) {
    return {Step::move, {x, y}};
}
constexpr PathStep line(double x, double y) {
    return {Step::line, {x, y}};
}
constexpr PathStep circle(double x, double y, double radius) {
    return {Step::circle, {x, y, radius}};
}

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
constexpr PathStep pinSteps[] = {to(5.5, 2.5), line(10.5, 2.5), to(6.5, 2.75),   line(6.5, 6.75),
                                 line(4.5, 9), line(11.5, 9),   line(9.5, 6.75), line(9.5, 2.75),
                                 to(8, 9.25),  line(8, 13.75)};
constexpr PathStep moreSteps[] = {to(3, 8),      line(3.05, 8), to(8, 8),
                                  line(8.05, 8), to(13, 8),     line(13.05, 8)};

std::span<const PathStep> stepsOf(PlaceGlyph glyph) {
    switch (glyph) {
    case PlaceGlyph::desktop: return desktopSteps;
    case PlaceGlyph::downloads: return downloadsSteps;
    case PlaceGlyph::documents: return documentsSteps;
    case PlaceGlyph::pictures: return picturesSteps;
    case PlaceGlyph::music: return musicSteps;
    case PlaceGlyph::videos: return videosSteps;
    case PlaceGlyph::drive: return driveSteps;
    case PlaceGlyph::stick: return stickSteps;
    case PlaceGlyph::network: return networkSteps;
    case PlaceGlyph::eject: return ejectSteps;
    case PlaceGlyph::pin: return pinSteps;
    case PlaceGlyph::more: return moreSteps;
    }
    std::unreachable();
}

} // namespace

void PlaceGlyphs::draw(QPainter& painter, PlaceGlyph glyph, const QRectF& box, const QColor& color) {
    constexpr double grid = 16, stroke = 1.5;
    QPainterPath path;
    for (const PathStep& step : stepsOf(glyph)) {
        const auto& at = step.at;
        switch (step.step) {
        case Step::move: path.moveTo(at[0], at[1]); break;
        case Step::line: path.lineTo(at[0], at[1]); break;
        case Step::circle: path.addEllipse(QPointF(at[0], at[1]), at[2], at[2]); break;
        }
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.topLeft());
    painter.scale(box.width() / grid, box.height() / grid);
    painter.setPen(QPen(color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    painter.restore();
}

} // namespace ombrel
