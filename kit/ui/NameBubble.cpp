#include "ui/NameBubble.h"

#include "ui/Theme.h"

#include <QAccessible>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace ombrel {

NameBubble::NameBubble(QWidget* field, const Theme& theme)
    : QWidget(field->window()), field_(field), theme_(&theme) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

int NameBubble::margin() const {
    return theme_->size(ThemeSize::space8);
}

void NameBubble::say(const QString& text, Kind kind) {
    const bool isNews = text != text_ || !isVisible();
    text_ = text;
    kind_ = kind;
    setVisible(!text.isEmpty());
    if (text.isEmpty()) return;
    follow();
    raise();
    update();
    if (!isNews) return;
    setAccessibleName(text);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void NameBubble::follow() {
    if (text_.isEmpty()) return;
    const QWidget* const window = parentWidget();
    setFont(theme_->font(ThemeFont::body));
    const int widest = std::min(theme_->size(ThemeSize::menuMaximumWidth), window->width()) - 2 * margin();
    const QRect needed =
        fontMetrics().boundingRect(QRect(0, 0, widest, window->height()), Qt::TextWordWrap, text_);
    const QSize size = needed.size() + QSize(2 * margin(), margin() + margin() / 2);
    const QPoint below = field_->mapTo(window, QPoint(0, field_->height() + theme_->size(ThemeSize::space4)));
    const QPoint above = field_->mapTo(window, QPoint(0, -theme_->size(ThemeSize::space4) - size.height()));
    const bool fitsBelow = below.y() + size.height() <= window->height();
    const int x = std::clamp(below.x(), 0, std::max(0, window->width() - size.width()));
    setGeometry(QRect(QPoint(x, fitsBelow ? below.y() : above.y()), size));
}

void NameBubble::paintEvent(QPaintEvent*) {
    const bool isError = kind_ == Kind::error;
    const int radius = theme_->size(ThemeSize::radiusButton);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_->color(isError ? ThemeColor::danger : ThemeColor::warning),
                        theme_->size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(isError ? ThemeColor::dangerSoft : ThemeColor::warningSoft));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.setFont(font());
    painter.drawText(rect().adjusted(margin(), 0, -margin(), 0),
                     QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignVCenter |
                         Qt::TextWordWrap,
                     text_);
}

} // namespace ombrel
