#include "ui/SpeedGraph.h"

#include "operations/JobTexts.h"
#include "ui/Formats.h"
#include "ui/LocalizedText.h"
#include "ui/PartsAccessible.h"
#include "ui/Theme.h"

#include <QLocale>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace ombrel {
namespace {

QString inWords(double speed) {
    const auto words = [](std::int64_t bytes) { return Formats::size(bytes).toStdString(); };
    return QString::fromStdString(speedText(speed, words));
}

} // namespace

SpeedGraph::SpeedGraph(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    PartsAccessible::install();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
}

void SpeedGraph::show(const std::vector<Sample>& samples, double share, std::optional<double> speed) {
    samples_ = samples;
    share_ = share;
    speed_ = speed;
    const auto percent = QLocale().toString(static_cast<int>(share * 100)).toStdString();
    setAccessibleName(speed ? localized("ui.progress.graph", {inWords(*speed).toStdString(), percent})
                            : localized("progress.calculating"));
    update();
}

void SpeedGraph::setResting(bool isResting) {
    isResting_ = isResting;
    update();
}

double SpeedGraph::ceilingOf(double highest) {
    double power = std::pow(10, std::floor(std::log10(std::max(highest, 1.0))));
    for (;; power *= 10)
        for (const double factor : {1, 2, 5})
            if (factor * power > highest) return factor * power;
}

QSize SpeedGraph::sizeHint() const {
    return {theme_->size(ThemeSize::progressMinimumWidth), theme_->size(ThemeSize::speedGraph)};
}

QSize SpeedGraph::minimumSizeHint() const {
    return {0, theme_->size(ThemeSize::speedGraph)};
}

QPolygonF SpeedGraph::lineIn(const QRectF& frame) const {
    double highest = speed_.value_or(0);
    for (const Sample& sample : samples_)
        highest = std::max(highest, sample.bytesPerSecond);
    const double ceiling = ceilingOf(highest);
    const auto yOf = [&](double speed) { return frame.bottom() - frame.height() * speed / ceiling; };
    const auto xOf = [&](double share) { return std::floor(frame.left() + frame.width() * share); };
    QPolygonF line;
    if (samples_.empty()) return line;
    line << QPointF(frame.left(), yOf(samples_.front().bytesPerSecond));
    double sum = 0;
    int count = 0;
    for (const Sample& sample : samples_) {
        const double x = xOf(std::min(sample.fraction, share_));
        if (count > 0 && x == line.back().x()) {
            sum += sample.bytesPerSecond;
            line.back().setY(yOf(sum / ++count));
            continue;
        }
        sum = sample.bytesPerSecond;
        count = 1;
        line << QPointF(x, yOf(sum));
    }
    line << QPointF(frame.left() + frame.width() * share_, yOf(speed_.value_or(sum)));
    return line;
}

void SpeedGraph::drawGrid(QPainter& painter, const QRectF& frame) const {
    constexpr int quarters = 4;
    painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
    for (int i = 1; i < quarters; ++i) {
        const double x = std::floor(frame.left() + frame.width() * i / quarters) + 0.5;
        const double y = std::floor(frame.top() + frame.height() * i / quarters) + 0.5;
        painter.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom()));
        painter.drawLine(QPointF(frame.left(), y), QPointF(frame.right(), y));
    }
}

void SpeedGraph::drawLabel(QPainter& painter, const QRectF& frame, double y) const {
    painter.setFont(theme_->font(ThemeFont::caption));
    const QFontMetrics metrics(painter.font());
    const QString words = inWords(*speed_);
    const double gap = theme_->size(ThemeSize::space4), side = theme_->size(ThemeSize::space8);
    QRectF box(0, 0, metrics.horizontalAdvance(words) + 2 * gap, metrics.height());
    box.moveRight(frame.right() - side + gap);
    box.moveBottom(y - gap / 2);
    if (box.top() < frame.top() + gap / 2) box.moveTop(y + gap / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_->color(ThemeColor::surfaceAlt));
    const int radius = theme_->size(ThemeSize::radiusCheckBox);
    painter.drawRoundedRect(box, radius, radius);
    painter.setPen(theme_->color(ThemeColor::text));
    painter.drawText(box, Qt::AlignCenter, words);
}

void SpeedGraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double half = 0.5;
    const QRectF outline = QRectF(rect()).adjusted(half, half, -half, -half);
    const int radius = theme_->size(ThemeSize::radiusField);
    QPainterPath shape;
    shape.addRoundedRect(outline, radius, radius);
    painter.fillPath(shape, theme_->color(ThemeColor::surfaceAlt));
    painter.save();
    painter.setClipPath(shape);
    if (layoutDirection() == Qt::RightToLeft) {
        painter.translate(width(), 0);
        painter.scale(-1, 1);
    }
    drawGrid(painter, outline);
    const QPolygonF line = lineIn(outline);
    const QColor ink = theme_->color(isResting_ ? ThemeColor::borderStrong : ThemeColor::accent);
    if (line.size() > 1) {
        QPolygonF area = line;
        area << QPointF(line.back().x(), outline.bottom()) << QPointF(outline.left(), outline.bottom());
        constexpr double faint = 0.15;
        QColor ground = ink;
        ground.setAlphaF(faint);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        painter.drawPolygon(area);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(
            QPen(ink, theme_->size(ThemeSize::space2), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(line);
        const QPointF end = line.back();
        painter.setPen(QPen(ink, theme_->size(ThemeSize::hairline)));
        painter.drawLine(QPointF(end.x(), outline.top()), QPointF(end.x(), outline.bottom()));
        painter.setPen(QPen(theme_->color(ThemeColor::textSecondary), theme_->size(ThemeSize::hairline),
                            Qt::CustomDashLine));
        QPen dots = painter.pen();
        dots.setDashPattern({2, 3});
        painter.setPen(dots);
        painter.drawLine(QPointF(outline.left(), end.y()), QPointF(outline.right(), end.y()));
        painter.setPen(QPen(theme_->color(ThemeColor::surfaceAlt), theme_->size(ThemeSize::hairline)));
        painter.setBrush(ink);
        const double dot = theme_->size(ThemeSize::space4);
        painter.drawEllipse(end, dot, dot);
    }
    painter.restore();
    if (speed_ && line.size() > 1) drawLabel(painter, outline, line.back().y());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
    painter.drawPath(shape);
}

} // namespace ombrel
