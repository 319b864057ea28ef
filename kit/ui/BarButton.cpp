#include "ui/BarButton.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStyle>

namespace ombrel {

BarButton::BarButton(const Theme& theme, Glyph glyph, QWidget* parent)
    : QAbstractButton(parent), theme_(&theme), glyph_(glyph) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void BarButton::setGlyph(Glyph glyph) {
    glyph_ = glyph;
    update();
}

void BarButton::setGlyphColor(ThemeColor color) {
    glyphColor_ = color;
    update();
}

void BarButton::setLabel(const QString& label) {
    if (label == text()) return;
    setText(label);
    setAccessibleName(label);
    updateGeometry();
}

void BarButton::follow(QAction* action) {
    setCheckable(action->isCheckable());
    const bool takesName = text().isEmpty();
    const auto update = [this, action, takesName] {
        setEnabled(action->isEnabled());
        setChecked(action->isChecked());
        setToolTip(action->toolTip());
        if (takesName) setLabel(action->iconText());
    };
    connect(action, &QAction::changed, this, update);
    connect(this, &QAbstractButton::clicked, action, &QAction::trigger);
    update();
}

void BarButton::setMenu(QMenu* menu) {
    menu_ = menu;
    connect(this, &QAbstractButton::clicked, this, &BarButton::showMenu);
    connect(menu, &QMenu::aboutToHide, this, [this] { setDown(false); });
}

void BarButton::showMenu() {
    setDown(true);
    const int width = menu_->sizeHint().width();
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    menu_->popup(mapToGlobal(QPoint(isRightToLeft ? this->width() - width : 0, height())));
}

void BarButton::setLabelled(Labelled labelled) {
    if (labelled == labelled_) return;
    labelled_ = labelled;
    updateGeometry();
    update();
}

int BarButton::widthWhen(Labelled labelled) const {
    const int glyph = theme_->size(ThemeSize::glyph) + theme_->size(ThemeSize::space2),
              side = theme_->size(ThemeSize::space8);
    if (labelled == Labelled::no && !menu_) return theme_->size(ThemeSize::button);
    int width = glyph + 2 * side;
    if (labelled == Labelled::yes)
        width += theme_->size(ThemeSize::space6) + fontMetrics().horizontalAdvance(text());
    if (menu_ && !text().isEmpty() && glyph_ != Glyph::more)
        width += theme_->size(ThemeSize::space4) + theme_->size(ThemeSize::space12);
    return width;
}

QSize BarButton::sizeHint() const {
    return {widthWhen(labelled_), theme_->size(ThemeSize::button)};
}

void BarButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isOn = isDown() || (isChecked() && isEnabled());
    if (isOn || (isEnabled() && underMouse())) {
        const int radius = theme_->size(ThemeSize::radiusButton);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme_->color(isOn ? ThemeColor::pressed : ThemeColor::hover));
        painter.drawRoundedRect(rect(), radius, radius);
    }
    const QColor ink = theme_->color(isEnabled() ? ThemeColor::text : ThemeColor::textDisabled);
    const auto mirrored = [this](const QRect& part) {
        return QStyle::visualRect(layoutDirection(), rect(), part);
    };
    const int glyph = theme_->size(ThemeSize::glyph) + theme_->size(ThemeSize::space2),
              side = theme_->size(ThemeSize::space8);
    Glyphs::draw(painter, glyph_, mirrored(QRect(side, (height() - glyph) / 2, glyph, glyph)),
                 isEnabled() ? theme_->color(glyphColor_) : ink);
    const int textLeft = side + glyph + theme_->size(ThemeSize::space6);
    if (labelled_ == Labelled::yes) {
        painter.setPen(ink);
        painter.drawText(mirrored(QRect(textLeft, 0, width() - textLeft, height())),
                         Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine, text());
    }
    if (!menu_ || glyph_ == Glyph::more) return;
    const int arrow = theme_->size(ThemeSize::space12);
    Glyphs::draw(painter, Glyph::chevronDown,
                 mirrored(QRect(width() - side - arrow, (height() - arrow) / 2, arrow, arrow)),
                 theme_->color(isEnabled() ? ThemeColor::textSecondary : ThemeColor::textDisabled));
}

void BarButton::keyPressEvent(QKeyEvent* event) {
    const bool opens =
        event->key() == Qt::Key_Down || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (menu_ && opens) return showMenu();
    if (!menu_ && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) return click();
    QAbstractButton::keyPressEvent(event);
}

} // namespace ombrel
