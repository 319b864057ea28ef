#include "ui/FileIconDrawing.h"

#include "ui/Theme.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <array>
#include <span>
#include <utility>

// Everything is drawn on a grid of 20 by 20. An emblem is a few strokes and filled shapes on the sheet, whose
// free part reaches from 5 to 15 across and from 7 to 16.5 down.

namespace ombrel {
namespace {

constexpr double grid = 20;

enum class Mark : std::uint8_t {
    stroke, ///< a line through the points
    fill,   ///< the shape between the points
    dot,    ///< a filled circle: centre, then radius and nothing
    block,  ///< a filled rounded rectangle: corner, then width and height
    frame,  ///< its outline
    paper,  ///< as fill, in the colour of the sheet
};

struct EmblemMark {
    Mark mark;
    double width; ///< of strokes
    std::array<double, 12> points{};
    std::size_t count = 0; ///< of numbers in `points`
};

template <typename... Numbers>
constexpr EmblemMark make(Mark mark, double width, Numbers... numbers) {
    return {mark, width, {static_cast<double>(numbers)...}, sizeof...(numbers)};
}

constexpr EmblemMark textMarks[] = {make(Mark::stroke, 1.1, 6, 8.5, 14, 8.5),
                                    make(Mark::stroke, 1.1, 6, 11, 14, 11),
                                    make(Mark::stroke, 1.1, 6, 13.5, 11.5, 13.5)};
constexpr EmblemMark markupMarks[] = {
    make(Mark::stroke, 1.2, 5.6, 13.6, 5.6, 9.4, 7.6, 11.8, 9.6, 9.4, 9.6, 13.6),
    make(Mark::stroke, 1.2, 13, 9.4, 13, 13.4), make(Mark::stroke, 1.2, 11.4, 12, 13, 13.6, 14.6, 12)};
constexpr EmblemMark documentMarks[] = {
    make(Mark::block, 0, 6, 4.2, 3.6, 2), make(Mark::stroke, 1.1, 6.4, 8.6, 13.6, 8.6),
    make(Mark::stroke, 1.1, 6.4, 11.2, 13.6, 11.2), make(Mark::stroke, 1.1, 6.4, 13.8, 11.4, 13.8)};
constexpr EmblemMark spreadsheetMarks[] = {
    make(Mark::frame, 1.3, 5.4, 7.6, 9.2, 8.2), make(Mark::stroke, 1.1, 5.4, 10.3, 14.6, 10.3),
    make(Mark::stroke, 1.1, 5.4, 13.1, 14.6, 13.1), make(Mark::stroke, 1.1, 8.5, 7.6, 8.5, 15.8)};
constexpr EmblemMark presentationMarks[] = {
    make(Mark::frame, 1.2, 5.4, 7.8, 9.2, 6.4), make(Mark::stroke, 1.1, 7.6, 12, 7.6, 11),
    make(Mark::stroke, 1.1, 10, 12, 10, 10), make(Mark::stroke, 1.1, 12.4, 12, 12.4, 10.4),
    make(Mark::stroke, 1.1, 10, 14.4, 10, 16)};
constexpr EmblemMark pdfMarks[] = {
    make(Mark::stroke, 1, 6.2, 5.4, 9.4, 5.4), make(Mark::stroke, 1, 6.2, 7.6, 13.4, 7.6),
    make(Mark::block, 0, 3.6, 10, 12.8, 5.6),
    // The letters PDF, in the colour of the sheet.
    make(Mark::paper, 0.9, 5.5, 14.2, 5.5, 11.5, 6.9, 11.5, 6.9, 13, 5.5, 13),
    make(Mark::paper, 0.9, 9, 14.1, 9, 11.5, 9.9, 11.5, 10.7, 12.8, 9.9, 14.1),
    make(Mark::paper, 0.9, 12.8, 14.2, 12.8, 11.5, 14.4, 11.5, 12.8, 11.5, 12.8, 12.9)};
constexpr EmblemMark imageMarks[] = {
    make(Mark::frame, 1.2, 5.2, 7.8, 9.6, 7.6), make(Mark::dot, 0, 7.8, 10.2, 0.9, 0),
    make(Mark::fill, 0, 5.6, 15, 9, 11.8, 10.6, 13.2, 12.2, 11.4, 14.4, 13.4, 14.4, 15)};
constexpr EmblemMark vectorMarks[] = {make(Mark::stroke, 1.1, 6.4, 14.4, 7.2, 9.4, 12.8, 9.4, 13.6, 14.4),
                                      make(Mark::block, 0, 5.4, 13.4, 2, 2),
                                      make(Mark::block, 0, 12.6, 13.4, 2, 2),
                                      make(Mark::block, 0, 9, 8.4, 2, 2)};
constexpr EmblemMark audioMarks[] = {make(Mark::stroke, 1.2, 8.6, 14, 8.6, 8.6, 13, 7.6, 13, 13),
                                     make(Mark::dot, 0, 7.4, 14.2, 1.5, 0),
                                     make(Mark::dot, 0, 11.8, 13.2, 1.5, 0)};
constexpr EmblemMark videoMarks[] = {make(Mark::block, 0, 5, 8, 10, 7.6),
                                     make(Mark::paper, 0, 9, 10, 9, 13.6, 12, 11.8)};
constexpr EmblemMark archiveMarks[] = {
    make(Mark::block, 0, 9.2, 2.4, 1.6, 1.3), make(Mark::block, 0, 9.2, 5, 1.6, 1.3),
    make(Mark::block, 0, 9.2, 7.6, 1.6, 1.3), make(Mark::frame, 1.3, 8, 10.4, 4, 5),
    make(Mark::stroke, 1.1, 10, 12.2, 10, 13.4)};
constexpr EmblemMark codeMarks[] = {make(Mark::stroke, 1.2, 7.4, 9.2, 5.2, 11.6, 7.4, 14),
                                    make(Mark::stroke, 1.2, 12.6, 9.2, 14.8, 11.6, 12.6, 14),
                                    make(Mark::stroke, 1.2, 10.8, 8.6, 9.2, 14.6)};
constexpr EmblemMark tableMarks[] = {
    make(Mark::block, 0, 5.2, 7.6, 9.6, 2.2), make(Mark::frame, 1.1, 5.4, 7.8, 9.2, 7.8),
    make(Mark::stroke, 1, 10, 9.6, 10, 15.6), make(Mark::stroke, 1, 5.4, 12.6, 14.6, 12.6)};
constexpr EmblemMark mapMarks[] = {make(Mark::stroke, 1.3, 6, 15.2, 8.2, 9.8, 10.6, 12, 13.6, 6.8),
                                   make(Mark::dot, 0, 6, 15.2, 1.3, 0),
                                   make(Mark::dot, 0, 13.6, 6.8, 1.3, 0)};

struct Emblem {
    std::span<const EmblemMark> marks;
    ThemeColor color;
};

Emblem emblemOf(FileClass fileClass) {
    switch (fileClass) {
    case FileClass::text: return {textMarks, ThemeColor::emblemGrey};
    case FileClass::markup: return {markupMarks, ThemeColor::emblemGrey};
    case FileClass::document: return {documentMarks, ThemeColor::emblemBlue};
    case FileClass::spreadsheet: return {spreadsheetMarks, ThemeColor::emblemGreen};
    case FileClass::presentation: return {presentationMarks, ThemeColor::emblemOrange};
    case FileClass::pdf: return {pdfMarks, ThemeColor::emblemRed};
    case FileClass::image: return {imageMarks, ThemeColor::emblemTeal};
    case FileClass::vectorImage: return {vectorMarks, ThemeColor::emblemTeal};
    case FileClass::audio: return {audioMarks, ThemeColor::emblemPurple};
    case FileClass::video: return {videoMarks, ThemeColor::emblemPurple};
    case FileClass::archive: return {archiveMarks, ThemeColor::emblemOlive};
    case FileClass::code: return {codeMarks, ThemeColor::emblemBlue};
    case FileClass::tableData: return {tableMarks, ThemeColor::emblemGreen};
    case FileClass::mapData: return {mapMarks, ThemeColor::emblemOrange};
    case FileClass::folder:
    case FileClass::other: return {{}, ThemeColor::emblemGrey};
    }
    std::unreachable();
}

void drawMark(QPainter& painter, const EmblemMark& mark, const QColor& color, const QColor& paper) {
    const auto& at = mark.points;
    const QColor ink = mark.mark == Mark::paper ? paper : color;
    const bool isOutlined = mark.width > 0;
    const bool isFilled =
        mark.mark != Mark::stroke && mark.mark != Mark::frame && !(mark.mark == Mark::paper && isOutlined);
    painter.setPen(isOutlined ? QPen(ink, mark.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)
                              : QPen(Qt::NoPen));
    painter.setBrush(isFilled ? QBrush(ink) : QBrush(Qt::NoBrush));
    constexpr double corner = 0.8;
    switch (mark.mark) {
    case Mark::dot: painter.drawEllipse(QPointF(at[0], at[1]), at[2], at[2]); return;
    case Mark::block:
    case Mark::frame: painter.drawRoundedRect(QRectF(at[0], at[1], at[2], at[3]), corner, corner); return;
    case Mark::stroke:
    case Mark::fill:
    case Mark::paper: break;
    }
    QPolygonF points;
    for (std::size_t i = 0; i + 1 < mark.count; i += 2)
        points << QPointF(at[i], at[i + 1]);
    if (isFilled)
        painter.drawPolygon(points);
    else
        painter.drawPolyline(points);
}

void drawSheet(QPainter& painter, const Theme& theme) {
    constexpr double left = 3.4, right = 16.6, top = 1.4, bottom = 18.6, fold = 3.8, corner = 1.4;
    QPainterPath sheet;
    sheet.moveTo(left + corner, top);
    sheet.lineTo(right - fold, top);
    sheet.lineTo(right, top + fold);
    sheet.lineTo(right, bottom - corner);
    sheet.quadTo(right, bottom, right - corner, bottom);
    sheet.lineTo(left + corner, bottom);
    sheet.quadTo(left, bottom, left, bottom - corner);
    sheet.lineTo(left, top + corner);
    sheet.quadTo(left, top, left + corner, top);
    const QPen edge(theme.color(ThemeColor::pageEdge), 0.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(edge);
    painter.setBrush(theme.color(ThemeColor::pageFill));
    painter.drawPath(sheet);
    painter.setBrush(theme.color(ThemeColor::pageFold));
    painter.drawPolygon(QPolygonF{{right - fold, top}, {right - fold, top + fold}, {right, top + fold}});
}

void drawFolder(QPainter& painter, const Theme& theme) {
    constexpr double left = 1.4, right = 18.6, top = 3.4, bottom = 16.6, front = 7.6, tab = 8.2, slope = 1.8,
                     body = 5, corner = 1.2;
    QPainterPath back;
    back.moveTo(left, bottom - corner);
    back.lineTo(left, top + corner);
    back.quadTo(left, top, left + corner, top);
    back.lineTo(tab, top);
    back.lineTo(tab + slope, body);
    back.lineTo(right - corner, body);
    back.quadTo(right, body, right, body + corner);
    back.lineTo(right, bottom - corner);
    back.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(ThemeColor::folderBack));
    painter.drawPath(back);
    painter.setBrush(theme.color(ThemeColor::folderPaper));
    painter.drawRoundedRect(QRectF(left + 1.6, front - 1.5, right - left - 3.2, 3), 0.5, 0.5);
    QLinearGradient shade(0, front, 0, bottom);
    shade.setColorAt(0, theme.color(ThemeColor::folderFrontTop));
    shade.setColorAt(1, theme.color(ThemeColor::folderFrontBottom));
    painter.setBrush(shade);
    painter.drawRoundedRect(QRectF(left, front, right - left, bottom - front), corner, corner);
}

} // namespace

void FileIconDrawing::draw(QPainter& painter, const Theme& theme, FileClass fileClass, const QRectF& box) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.topLeft());
    painter.scale(box.width() / grid, box.height() / grid);
    if (fileClass == FileClass::folder) {
        drawFolder(painter, theme);
    } else {
        drawSheet(painter, theme);
        const auto emblem = emblemOf(fileClass);
        for (const auto& mark : emblem.marks)
            drawMark(painter, mark, theme.color(emblem.color), theme.color(ThemeColor::pageFill));
    }
    painter.restore();
}

} // namespace ombrel
