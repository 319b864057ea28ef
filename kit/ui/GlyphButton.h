#pragma once

#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QAbstractButton>
#include <QPointer>

class QAction;

namespace ombrel {

/// A square button that shows a glyph and does what an action does; enabled, named and described as the
/// action is.
class GlyphButton final : public QAbstractButton {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    GlyphButton(const Theme& theme, Glyph glyph, ThemeSize side, QWidget* parent = nullptr);

    void setGlyph(Glyph glyph);
    /// What it is called, as name and as tooltip; for one that follows no action.
    void setLabel(const QString& label);
    void setInk(ThemeColor ink);
    /// Whoever it stands in paints its ground.
    void setBare(bool bare) { isBare_ = bare; }
    /// The button follows `action` from now on and triggers it.
    void follow(QAction* action);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    Glyph glyph_;
    ThemeSize side_;
    ThemeColor ink_ = ThemeColor::text;
    bool isBare_ = false;
    QPointer<QAction> action_;
};

} // namespace ombrel
