#pragma once

#include "services/KeyPreset.h"

#include <QRadioButton>

namespace ombrel {

class Theme;

/// A keyboard scheme to choose, with the keys that tell it from others.
class PresetCard final : public QRadioButton {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    PresetCard(const Theme& theme, KeyPreset preset, QWidget* parent = nullptr);

    [[nodiscard]] KeyPreset preset() const noexcept { return preset_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& point) const override { return rect().contains(point); }

private:
    void drawHeading(QPainter& painter, const QRect& box) const;
    /// The caps of one shortcut, ending at the right edge of `box`.
    void drawKeys(QPainter& painter, const QRect& box, const QString& keys) const;
    [[nodiscard]] int headingHeight() const;
    [[nodiscard]] int rowHeight() const;

    const Theme* theme_;
    KeyPreset preset_;
};

} // namespace ombrel
