#include "ui/OutlineButton.h"

#include "ui/Theme.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

namespace ombrel {

OutlineButton::OutlineButton(const Theme& theme, Glyph glyph, const QString& label, QWidget* parent)
    : QAbstractButton(parent), theme_(&theme), glyph_(glyph) {
    setText(label);
    setAccessibleName(label);
    setToolTip(label);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
}

int OutlineButton::textLeft() const {
    return theme_->size(ThemeSize::space12) + theme_->size(ThemeSize::glyph) +
           theme_->size(ThemeSize::space6);
}

QSize OutlineButton::sizeHint() const {
    const QFontMetrics metrics(theme_->font(ThemeFont::body));
    return {textLeft() + metrics.horizontalAdvance(text()) + theme_->size(ThemeSize::space12),
            theme_->size(ThemeSize::compactButton)};
}

QSize OutlineButton::minimumSizeHint() const {
    return {textLeft() + theme_->size(ThemeSize::space28), theme_->size(ThemeSize::compactButton)};
}

void OutlineButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto face = isDown()                      ? ThemeColor::pressed
                      : isEnabled() && underMouse() ? ThemeColor::hover
                                                    : ThemeColor::surface;
    painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(face));
    const int radius = theme_->size(ThemeSize::radiusButton);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    const QColor ink = theme_->color(isEnabled() ? ThemeColor::text : ThemeColor::textDisabled);
    const int glyph = theme_->size(ThemeSize::glyph), left = textLeft();
    const QRect box(theme_->size(ThemeSize::space12), (height() - glyph) / 2, glyph, glyph);
    Glyphs::draw(painter, glyph_, QStyle::visualRect(layoutDirection(), rect(), box), ink);
    painter.setPen(ink);
    painter.setFont(theme_->font(ThemeFont::body));
    const QRect words(left, 0, width() - left - theme_->size(ThemeSize::space8), height());
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), words),
                     static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, words.width()));
}

void OutlineButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QAbstractButton::keyPressEvent(event);
}

} // namespace ombrel
