#include "ui/LinkButton.h"

#include "ui/Theme.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace ombrel {

LinkButton::LinkButton(const Theme& theme, std::optional<Glyph> glyph, QWidget* parent)
    : QAbstractButton(parent), theme_(&theme), glyph_(glyph) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void LinkButton::setGlyph(Glyph glyph) {
    glyph_ = glyph;
    update();
}

void LinkButton::setLabel(const QString& label) {
    if (label == text()) return;
    setText(label);
    setAccessibleName(label);
    updateGeometry();
}

QFont LinkButton::face() const {
    return theme_->font(glyph_ ? ThemeFont::body : ThemeFont::bodyStrong);
}

int LinkButton::textLeft() const {
    return glyph_ ? theme_->size(ThemeSize::glyph) + theme_->size(ThemeSize::space4) : 0;
}

QSize LinkButton::sizeHint() const {
    const QFontMetrics metrics(face());
    const int words = metrics.size(Qt::TextSingleLine, text()).width() + 1;
    return {textLeft() + words, std::max(metrics.height(), glyph_ ? theme_->size(ThemeSize::glyph) : 0)};
}

QSize LinkButton::minimumSizeHint() const {
    if (glyph_) return sizeHint();
    const QSize whole = sizeHint();
    return {std::min(whole.width(), theme_->size(ThemeSize::dialogIcon)), whole.height()};
}

void LinkButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor ink = theme_->color(isEnabled() ? ThemeColor::accent : ThemeColor::textDisabled);
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    if (glyph_) {
        const int side = theme_->size(ThemeSize::glyph);
        Glyphs::draw(painter, *glyph_,
                     QRect(isRightToLeft ? width() - side : 0, (height() - side) / 2, side, side), ink);
    }
    QFont font = face();
    font.setUnderline(isEnabled() && underMouse());
    painter.setFont(font);
    painter.setPen(ink);
    const QRect box =
        isRightToLeft ? rect().adjusted(0, 0, -textLeft(), 0) : rect().adjusted(textLeft(), 0, 0, 0);
    painter.drawText(box, static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text(), Qt::ElideMiddle, box.width()));
}

void LinkButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QAbstractButton::keyPressEvent(event);
}

} // namespace ombrel
