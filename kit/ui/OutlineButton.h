#pragma once

#include "ui/Glyphs.h"

#include <QAbstractButton>

namespace ombrel {

class Theme;

/// A small button with an outline: a glyph and a label, shortened where there is no room.
class OutlineButton final : public QAbstractButton {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    OutlineButton(const Theme& theme, Glyph glyph, const QString& label, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] int textLeft() const;

    const Theme* theme_;
    Glyph glyph_;
};

} // namespace ombrel
