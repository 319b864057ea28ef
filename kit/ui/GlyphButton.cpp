#include "ui/GlyphButton.h"

#include <QAction>
#include <QPainter>

namespace ombrel {

GlyphButton::GlyphButton(const Theme& theme, Glyph glyph, ThemeSize side, QWidget* parent)
    : QAbstractButton(parent), theme_(&theme), glyph_(glyph), side_(side) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void GlyphButton::setGlyph(Glyph glyph) {
    if (glyph == glyph_) return;
    glyph_ = glyph;
    update();
}

void GlyphButton::setInk(ThemeColor ink) {
    ink_ = ink;
    update();
}

void GlyphButton::follow(QAction* action) {
    if (action == action_) return;
    if (action_) {
        action_->disconnect(this);
        disconnect(action_);
    }
    action_ = action;
    const auto update = [this, action] {
        setEnabled(action->isEnabled());
        setToolTip(action->toolTip());
        setAccessibleName(action->iconText());
    };
    connect(action, &QAction::changed, this, update);
    connect(this, &QAbstractButton::clicked, action, &QAction::trigger);
    update();
}

void GlyphButton::setLabel(const QString& label) {
    setToolTip(label);
    setAccessibleName(label);
}

QSize GlyphButton::sizeHint() const {
    return {theme_->size(side_), theme_->size(side_)};
}

void GlyphButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isOn = isDown() || isChecked();
    if (!isBare_ && (isOn || (isEnabled() && underMouse()))) {
        const int radius = theme_->size(ThemeSize::radiusButton);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme_->color(isOn ? ThemeColor::pressed : ThemeColor::hover));
        painter.drawRoundedRect(rect(), radius, radius);
    }
    // Inside something else it is as small as there.
    const bool isLarge = theme_->size(side_) >= theme_->size(ThemeSize::button);
    const int side = theme_->size(ThemeSize::glyph) + (isLarge ? theme_->size(ThemeSize::space2) : 0);
    const QRect box((width() - side) / 2, (height() - side) / 2, side, side);
    Glyphs::draw(painter, glyph_, box, theme_->color(isEnabled() ? ink_ : ThemeColor::textDisabled));
}

} // namespace ombrel
