#include "ui/DropLabel.h"

#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace ombrel {

DropLabel::DropLabel(QWidget* window, const Theme& theme) : QWidget(window), theme_(&theme) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFont(theme.font(ThemeFont::body));
    hide();
}

void DropLabel::say(const QString& text, bool isRefusal, QPoint pointer) {
    text_ = text;
    isRefusal_ = isRefusal;
    if (text.isEmpty()) return hide();
    const int margin = theme_->size(ThemeSize::space8), away = theme_->size(ThemeSize::space16);
    const QRect room = parentWidget()->rect();
    const int widest = std::min(theme_->size(ThemeSize::menuMaximumWidth), room.width());
    shown_ = fontMetrics().elidedText(text, Qt::ElideMiddle, widest - 2 * margin);
    const QSize size(fontMetrics().horizontalAdvance(shown_) + 2 * margin, fontMetrics().height() + margin);
    const int x = std::clamp(pointer.x() + away, 0, std::max(0, room.width() - size.width()));
    const int y = std::clamp(pointer.y() + away, 0, std::max(0, room.height() - size.height()));
    setGeometry(QRect(QPoint(x, y), size));
    show();
    raise();
    update();
}

void DropLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int radius = theme_->size(ThemeSize::radiusButton);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_->color(ThemeColor::borderStrong), theme_->size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(ThemeColor::menu));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.setPen(theme_->color(isRefusal_ ? ThemeColor::danger : ThemeColor::text));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, shown_);
}

} // namespace ombrel
