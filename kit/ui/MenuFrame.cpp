#include "ui/MenuFrame.h"

#include "ui/Compositing.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QStyle>
#include <QStyleHintReturnMask>
#include <QStyleOption>

namespace ombrel {

MenuFrame::MenuFrame(const Theme& theme, QWidget* parent, Qt::WindowFlags flags)
    : QFrame(parent, flags), theme_(&theme) {
    const int outline = theme.size(ThemeSize::hairline), inset = theme.size(ThemeSize::space4);
    setContentsMargins(outline, inset, outline, inset);
    takeColors();
    connect(&theme, &Theme::changed, this, &MenuFrame::takeColors);
    if (isWindow() && Compositing::isOn()) setAttribute(Qt::WA_TranslucentBackground);
}

void MenuFrame::takeColors() {
    QPalette colors;
    colors.setColor(QPalette::Base, theme_->color(ThemeColor::menu));
    setPalette(colors);
}

void MenuFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOption ground;
    ground.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelMenu, &ground, &painter, isWindow() ? this : nullptr);
}

void MenuFrame::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    if (!isWindow()) return;
    QStyleOption menu;
    menu.initFrom(this);
    QStyleHintReturnMask corners;
    if (style()->styleHint(QStyle::SH_Menu_Mask, &menu, this, &corners))
        setMask(corners.region);
    else
        clearMask();
}

} // namespace ombrel
