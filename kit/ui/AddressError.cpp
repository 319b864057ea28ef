#include "ui/AddressError.h"

#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QPainter>
#include <QStyle>

namespace ombrel {

AddressError::AddressError(const Theme& theme, QWidget* bar) : QWidget(bar), theme_(&theme), bar_(bar) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void AddressError::show(const QString& message) {
    message_ = message;
    setAccessibleName(message);
    setParent(bar_->window());
    place();
    QWidget::show();
    raise();
    update();
    QAccessibleEvent announcement(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void AddressError::place() {
    if (!parentWidget()) return;
    const QPoint below = bar_->mapTo(bar_->window(), QPoint(0, bar_->height()));
    setGeometry(QRect(below, QSize(bar_->width(), theme_->size(ThemeSize::addressError))));
}

void AddressError::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = theme_->size(ThemeSize::radiusRow);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_->color(ThemeColor::dangerSoft));
    painter.drawRoundedRect(rect(), radius, radius);
    const int glyph = theme_->size(ThemeSize::glyph), gap = theme_->size(ThemeSize::space8);
    const auto mirrored = [&](const QRect& part) {
        return QStyle::visualRect(layoutDirection(), rect(), part);
    };
    const QRect box(gap + theme_->size(ThemeSize::space2), (height() - glyph) / 2, glyph, glyph);
    const QColor ink = theme_->color(ThemeColor::danger);
    Glyphs::draw(painter, Glyph::warning, mirrored(box), ink);
    const QRect text(box.right() + 1 + gap, 0, width() - box.right() - 1 - 2 * gap, height());
    painter.setPen(ink);
    painter.drawText(mirrored(text), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(message_, Qt::ElideRight, text.width()));
}

} // namespace ombrel
