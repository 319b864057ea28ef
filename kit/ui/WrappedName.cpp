#include "ui/WrappedName.h"

#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace ombrel {

WrappedName::WrappedName(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
}

void WrappedName::setName(const QString& name) {
    if (name == name_) return;
    name_ = name;
    setAccessibleName(name);
    explain();
    updateGeometry();
    update();
}

const QStringList& WrappedName::linesAt(int width) const {
    lines_.setRoom(theme_->font(ThemeFont::subtitle), std::max(width, 1));
    return lines_.of(name_, mostLines);
}

/// All of the name is the tooltip where not all of it is to be seen.
void WrappedName::explain() {
    const QStringList& lines = linesAt(width());
    const bool isCut = !lines.isEmpty() && lines.size() == mostLines && !name_.endsWith(lines.last());
    setToolTip(isCut ? name_ : QString());
}

int WrappedName::heightForWidth(int width) const {
    const auto count = std::max<qsizetype>(linesAt(width).size(), 1);
    return static_cast<int>(count) * theme_->lineHeight(ThemeFont::subtitle);
}

QSize WrappedName::sizeHint() const {
    return {theme_->size(ThemeSize::buttonMinimumWidth), minimumSizeHint().height()};
}

QSize WrappedName::minimumSizeHint() const {
    return {theme_->size(ThemeSize::space28), theme_->lineHeight(ThemeFont::subtitle)};
}

void WrappedName::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    explain();
}

void WrappedName::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(theme_->font(ThemeFont::subtitle));
    painter.setPen(theme_->color(ThemeColor::text));
    const int height = theme_->lineHeight(ThemeFont::subtitle);
    QRect line(0, 0, width(), height);
    for (const QString& text : linesAt(width())) {
        painter.drawText(line, static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) | Qt::TextSingleLine,
                         text);
        line.translate(0, height);
    }
}

} // namespace ombrel
