#pragma once

#include "ui/Theme.h"

#include <QWidget>

namespace ombrel {

/// The rounded frame of a field, around whatever it is made of; the parts are arranged anew when the size,
/// the direction of writing or the theme changes.
class FieldFrame : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    FieldFrame(const Theme& theme, QWidget* parent);

protected:
    virtual void arrange() = 0;
    /// The ground, and an outline that is wider where the field has the keyboard.
    void paintFrame(QPainter& painter, ThemeColor outline, bool hasKeyboard) const;
    /// A part of the field, put where the direction of writing has it.
    [[nodiscard]] QRect mirrored(const QRect& part) const;

    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

    const Theme* theme_;
};

} // namespace ombrel
