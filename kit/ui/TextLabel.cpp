#include "ui/TextLabel.h"

#include "ui/PartsAccessible.h"

#include <QPainter>

namespace ombrel {

TextLabel::TextLabel(const Theme& theme, ThemeFont font, ThemeColor color, QWidget* parent)
    : QLabel(parent), theme_(&theme), font_(font), color_(color) {
    setTextFormat(Qt::PlainText);
    connect(&theme, &Theme::changed, this, &TextLabel::takeLook);
    takeLook();
}

void TextLabel::setLook(ThemeFont font, ThemeColor color) {
    if (font == font_ && color == color_) return;
    font_ = font;
    color_ = color;
    takeLook();
}

void TextLabel::takeLook() {
    setFont(theme_->font(font_));
    QPalette colors = theme_->palette();
    colors.setColor(QPalette::WindowText, theme_->color(color_));
    setPalette(colors);
}

ElidedLabel::ElidedLabel(const Theme& theme, Qt::TextElideMode mode, ThemeColor color, QWidget* parent)
    : QWidget(parent), theme_(&theme), mode_(mode), color_(color) {
    PartsAccessible::install();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(&theme, &Theme::changed, this, &QWidget::updateGeometry);
}

void ElidedLabel::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setAccessibleName(text);
    setToolTip(text);
    updateGeometry();
    update();
}

void ElidedLabel::setFontToken(ThemeFont font) {
    font_ = font;
    updateGeometry();
    update();
}

QSize ElidedLabel::sizeHint() const {
    const QFontMetrics metrics(theme_->font(font_));
    return {metrics.horizontalAdvance(text_) + 1, theme_->lineHeight(font_)};
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, sizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(theme_->font(font_));
    painter.setPen(theme_->color(color_));
    painter.drawText(rect(), static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text_, mode_, width()));
}

} // namespace ombrel
