#pragma once

#include "operations/SpeedMeter.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace ombrel {

class Theme;

/// The speed of a job over what it has done: from left to right the share that is done, upwards bytes per
/// second.
class SpeedGraph final : public QWidget {
    Q_OBJECT

public:
    using Sample = SpeedMeter::Sample;

    /// `theme` must outlive it.
    explicit SpeedGraph(const Theme& theme, QWidget* parent = nullptr);

    /// `share` is 0 to 1, `speed` in bytes per second.
    void show(const std::vector<Sample>& samples, double share, std::optional<double> speed);
    /// The line of a job that rests is grey.
    void setResting(bool isResting);

    /// The speed at the upper edge: the next 1, 2 or 5 times a power of ten above `highest`.
    [[nodiscard]] static double ceilingOf(double highest);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawGrid(QPainter& painter, const QRectF& frame) const;
    void drawLabel(QPainter& painter, const QRectF& frame, double y) const;
    /// From the left edge to the share that is done; the mean of the samples where several fall on one pixel.
    [[nodiscard]] QPolygonF lineIn(const QRectF& frame) const;

    const Theme* theme_;
    std::vector<Sample> samples_;
    double share_ = 0;
    std::optional<double> speed_;
    bool isResting_ = false;
};

} // namespace ombrel
