#pragma once

#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QAbstractButton>

#include <cstdint>

class QAction;
class QMenu;

namespace ombrel {

/// A button of the command bar: a glyph, a label that can be left out when there is little room, and a small
/// arrow where it opens a menu.
class BarButton final : public QAbstractButton {
    Q_OBJECT

public:
    enum class Labelled : std::uint8_t { no, yes };

    /// `theme` must outlive it.
    BarButton(const Theme& theme, Glyph glyph, QWidget* parent);

    void setGlyph(Glyph glyph);
    void setGlyphColor(ThemeColor color);
    /// What it is called; also to be seen, while it is labelled.
    void setLabel(const QString& label);
    /// The button follows `action` from now on and triggers it. Its label stays as it is, or becomes the
    /// action's name when there is none.
    void follow(QAction* action);
    /// A click opens `menu` below the button, which does not take it over.
    void setMenu(QMenu* menu);
    void showMenu();

    void setLabelled(Labelled labelled);
    [[nodiscard]] int widthWhen(Labelled labelled) const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const Theme* theme_;
    Glyph glyph_;
    ThemeColor glyphColor_ = ThemeColor::text;
    QMenu* menu_ = nullptr;
    Labelled labelled_ = Labelled::no;
};

} // namespace ombrel
