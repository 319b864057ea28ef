#include "ui/OmbrelStyle.h"

#include "ui/Compositing.h"
#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPen>
#include <QPushButton>
#include <QRegion>
#include <QStyleFactory>
#include <QStyleOption>

#include <algorithm>
#include <cmath>

namespace ombrel {
namespace {

/// A rectangle whose outline of one pixel lies wholly inside `rect`.
QRectF hairlineInside(const QRectF& rect) {
    return rect.adjusted(0.5, 0.5, -0.5, -0.5);
}

/// The pixels of a rectangle with round corners.
QRegion rounded(const QRect& rect, int radius) {
    QRegion region = rect.adjusted(0, radius, 0, -radius);
    for (int line = 0; line < radius; ++line) {
        const double rise = radius - line - 0.5;
        const int cut = static_cast<int>(std::lround(radius - std::sqrt(radius * radius - rise * rise)));
        const int left = rect.left() + cut, width = rect.width() - 2 * cut;
        region += QRect(left, rect.top() + line, width, 1);
        region += QRect(left, rect.bottom() - line, width, 1);
    }
    return region;
}

bool liesOver(const QWidget* scrollBar) {
    return scrollBar && scrollBar->property(OmbrelStyle::overProperty).toBool();
}

bool isDangerous(const QWidget* widget, const QRect& row) {
    const auto* const menu = qobject_cast<const QMenu*>(widget);
    const QAction* const action = menu ? menu->actionAt(row.center()) : nullptr;
    return action && action->property(OmbrelStyle::dangerProperty).toBool();
}

} // namespace

OmbrelStyle::OmbrelStyle(const Theme& theme)
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))), theme_(&theme) {}

void OmbrelStyle::drawInnerRing(QPainter& painter, const Theme& theme, const QRectF& rect, int radius,
                                std::optional<ThemeColor> ground) {
    const double width = theme.size(ThemeSize::focusRing);
    const bool isOnAccent = ground && theme.color(*ground) == theme.color(ThemeColor::accent);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.color(isOnAccent ? ThemeColor::onAccent : ThemeColor::accent), width));
    painter.setBrush(Qt::NoBrush);
    const double inset = width / 2 + (isOnAccent ? theme.size(ThemeSize::focusGap) : 0);
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
    painter.restore();
}

void OmbrelStyle::drawRadio(QPainter& painter, const Theme& theme, const QRectF& box, bool isOn,
                            bool isEnabled) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double outline = 1.3, dotShare = 0.4;
    if (isOn) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.color(isEnabled ? ThemeColor::accent : ThemeColor::textDisabled));
        painter.drawEllipse(box);
        painter.setBrush(theme.color(ThemeColor::onAccent));
        const double inset = box.width() * (1 - dotShare) / 2;
        painter.drawEllipse(box.adjusted(inset, inset, -inset, -inset));
    } else {
        painter.setPen(
            QPen(theme.color(isEnabled ? ThemeColor::borderStrong : ThemeColor::textDisabled), outline));
        painter.setBrush(theme.color(ThemeColor::surface));
        painter.drawEllipse(box.adjusted(outline / 2, outline / 2, -outline / 2, -outline / 2));
    }
    painter.restore();
}

void OmbrelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    const auto fill = [&](ThemeColor token) { painter->fillRect(option->rect, theme_->color(token)); };
    switch (element) {
    case PE_FrameFocusRect: return; // rings are drawn by the FocusRing and by the views themselves
    case PE_IndicatorCheckBox: return drawCheckBox(*option, *painter);
    case PE_IndicatorRadioButton:
        return drawRadio(*painter, *theme_, option->rect, option->state & State_On,
                         option->state & State_Enabled);
    case PE_PanelScrollAreaCorner: return fill(ThemeColor::surface);
    case PE_PanelTipLabel:
    case PE_PanelMenu: return drawMenuGround(option->rect, *painter, widget);
    case PE_FrameMenu: return; // drawn with the ground
    case PE_Frame: return drawFrame(option->rect, *painter);
    default: return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void OmbrelStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    switch (element) {
    case CE_PushButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            return drawButton(*button, *painter, widget);
        break;
    case CE_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            return drawMenuItem(*item, *painter, widget);
        break;
    case CE_MenuEmptyArea: return; // the ground is there
    case CE_HeaderEmptyArea: {
        const int hairline = theme_->size(ThemeSize::hairline);
        painter->fillRect(option->rect, theme_->color(ThemeColor::surface));
        painter->fillRect(
            QRect(option->rect.left(), option->rect.bottom() - hairline + 1, option->rect.width(), hairline),
            theme_->color(ThemeColor::border));
        return;
    }
    case CE_FocusFrame: {
        const int radius = theme_->size(ThemeSize::radiusButton) + theme_->size(ThemeSize::focusGap) +
                           theme_->size(ThemeSize::focusRing);
        return drawInnerRing(*painter, *theme_, option->rect, radius);
    }
    default: break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void OmbrelStyle::drawButton(const QStyleOptionButton& option, QPainter& painter,
                             const QWidget* widget) const {
    const bool isEnabled = option.state & State_Enabled;
    const bool isPressed = option.state & (State_Sunken | State_On);
    const bool isHovered = isEnabled && option.state & State_MouseOver;
    const bool isPrimary = isEnabled && option.features & QStyleOptionButton::DefaultButton;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const auto face = isPressed ? ThemeColor::pressed : isHovered ? ThemeColor::hover : ThemeColor::surface;
    QColor color = theme_->color(isPrimary ? ThemeColor::accent : face);
    constexpr int slightly = 108;
    if (isPrimary && (isHovered || isPressed))
        color = theme_->appearance().isDark ? color.lighter(slightly) : color.darker(slightly);
    painter.setPen(isPrimary ? QPen(Qt::NoPen)
                             : QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
    painter.setBrush(color);
    const int radius = theme_->size(ThemeSize::radiusButton);
    painter.drawRoundedRect(isPrimary ? QRectF(option.rect) : hairlineInside(option.rect), radius, radius);
    const bool isDanger = widget && widget->property("isDanger").toBool();
    const auto ink = !isEnabled  ? ThemeColor::textDisabled
                     : isPrimary ? ThemeColor::onAccent
                     : isDanger  ? ThemeColor::danger
                                 : ThemeColor::text;
    painter.setPen(theme_->color(ink));
    const bool isSmall = widget && widget->property(smallProperty).toBool();
    painter.setFont(isSmall  ? theme_->font(ThemeFont::caption)
                    : widget ? widget->font()
                             : theme_->font(ThemeFont::body));
    QRect words = option.rect;
    if (!option.icon.isNull()) {
        const int glyph = theme_->size(ThemeSize::glyph), gap = theme_->size(ThemeSize::space6);
        const int text = painter.fontMetrics().size(Qt::TextShowMnemonic, option.text).width();
        const int left = words.left() + std::max(0, (words.width() - glyph - gap - text) / 2);
        const QRect box(left, words.center().y() - glyph / 2 + 1, glyph, glyph);
        option.icon.paint(&painter, visualRect(option.direction, option.rect, box), Qt::AlignCenter,
                          isEnabled ? QIcon::Normal : QIcon::Disabled);
        words = visualRect(option.direction, option.rect,
                           words.adjusted(left - words.left() + glyph + gap, 0, 0, 0));
        painter.drawText(
            words, visualAlignment(option.direction, Qt::AlignLeft) | Qt::AlignVCenter | Qt::TextShowMnemonic,
            option.text);
    } else {
        painter.drawText(words, Qt::AlignCenter | Qt::TextShowMnemonic, option.text);
    }
    painter.restore();
}

void OmbrelStyle::drawFrame(const QRect& frame, QPainter& painter) const {
    const int hairline = theme_->size(ThemeSize::hairline);
    const QRegion line = QRegion(frame) - frame.adjusted(hairline, hairline, -hairline, -hairline);
    for (const QRect& side : line)
        painter.fillRect(side, theme_->color(ThemeColor::border));
}

void OmbrelStyle::drawCheckBox(const QStyleOption& option, QPainter& painter) const {
    const bool isEnabled = option.state & State_Enabled;
    const bool isMarked = option.state & (State_On | State_NoChange);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = theme_->size(ThemeSize::radiusCheckBox);
    const QRectF box(option.rect);
    if (isMarked) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme_->color(isEnabled ? ThemeColor::accent : ThemeColor::textDisabled));
        painter.drawRoundedRect(box, radius, radius);
        const auto glyph = option.state & State_NoChange ? Glyph::dash : Glyph::check;
        const double inset = box.width() / 8;
        Glyphs::draw(painter, glyph, box.adjusted(inset, inset, -inset, -inset),
                     theme_->color(ThemeColor::onAccent));
    } else {
        constexpr double outline = 1.3;
        painter.setPen(
            QPen(theme_->color(isEnabled ? ThemeColor::borderStrong : ThemeColor::textDisabled), outline));
        painter.setBrush(theme_->color(ThemeColor::surface));
        painter.drawRoundedRect(box.adjusted(outline / 2, outline / 2, -outline / 2, -outline / 2), radius,
                                radius);
    }
    painter.restore();
}

void OmbrelStyle::drawMenuGround(const QRect& menu, QPainter& painter, const QWidget* widget) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(ThemeColor::menu));
    const bool isCut = widget && !widget->testAttribute(Qt::WA_TranslucentBackground);
    // Where a mask cuts the corners off in whole pixels, what it leaves belongs to the outline.
    if (isCut) painter.fillRect(menu, theme_->color(ThemeColor::border));
    const int radius = theme_->size(ThemeSize::radiusField);
    painter.drawRoundedRect(hairlineInside(menu), radius, radius);
    painter.restore();
}

void OmbrelStyle::drawMenuItem(const QStyleOptionMenuItem& option, QPainter& painter,
                               const QWidget* widget) const {
    const QRect row = option.rect;
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        const int inset = theme_->size(ThemeSize::space8);
        painter.fillRect(QRect(row.left() + inset, row.center().y(), row.width() - 2 * inset,
                               theme_->size(ThemeSize::hairline)),
                         theme_->color(ThemeColor::border));
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isEnabled = option.state & State_Enabled;
    const int inset = theme_->size(ThemeSize::space4), glyph = theme_->size(ThemeSize::glyph);
    if (option.state & State_Selected && isEnabled) {
        painter.setPen(Qt::NoPen);
        // On the dark ground of menus the colour of hovered rows would not be seen.
        painter.setBrush(
            theme_->color(theme_->appearance().isDark ? ThemeColor::pressed : ThemeColor::hover));
        const int radius = theme_->size(ThemeSize::radiusRow);
        painter.drawRoundedRect(row.adjusted(inset, 0, -inset, 0), radius, radius);
    }
    const auto face = isDangerous(widget, row) ? ThemeColor::danger : ThemeColor::text;
    const QColor ink = theme_->color(isEnabled ? face : ThemeColor::textDisabled);
    const int left = row.left() + theme_->size(ThemeSize::space12);
    const QRect glyphBox(left, row.center().y() - glyph / 2, glyph, glyph);
    if (option.checkType != QStyleOptionMenuItem::NotCheckable && option.checked)
        Glyphs::draw(painter, Glyph::check, glyphBox, ink);
    else if (!option.icon.isNull())
        option.icon.paint(&painter, glyphBox, Qt::AlignCenter, isEnabled ? QIcon::Normal : QIcon::Disabled);
    QRect textBox = row.adjusted(left - row.left() + glyph + theme_->size(ThemeSize::space8) +
                                     theme_->size(ThemeSize::space2),
                                 0, -theme_->size(ThemeSize::space12), 0);
    const auto parts = option.text.split(QLatin1Char('\t'));
    const ThemeColor beside = isEnabled ? ThemeColor::textSecondary : ThemeColor::textDisabled;
    int taken = 0;
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const int side = theme_->size(ThemeSize::space12);
        const QRect arrow(textBox.right() - side + 1, row.center().y() - side / 2, side, side);
        Glyphs::draw(painter, option.direction == Qt::RightToLeft ? Glyph::chevronLeft : Glyph::chevronRight,
                     arrow, theme_->color(beside));
        taken = side;
    } else if (parts.size() > 1) {
        painter.setFont(theme_->font(ThemeFont::caption));
        painter.setPen(theme_->color(ThemeColor::textSecondary));
        painter.drawText(textBox, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, parts.constLast());
        taken = painter.fontMetrics().horizontalAdvance(parts.constLast());
    }
    if (taken > 0) textBox.adjust(0, 0, -taken - theme_->size(ThemeSize::space8), 0);
    painter.setFont(option.font);
    painter.setPen(ink);
    painter.drawText(textBox, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(parts.constFirst(), Qt::ElideMiddle, textBox.width(),
                                                      Qt::TextShowMnemonic));
    painter.restore();
}

void OmbrelStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    if (control == CC_ScrollBar)
        if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option))
            return drawScrollBar(*bar, *painter, widget);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void OmbrelStyle::drawScrollBar(const QStyleOptionSlider& option, QPainter& painter,
                                const QWidget* widget) const {
    if (!liesOver(widget)) painter.fillRect(option.rect, option.palette.color(QPalette::Base));
    if (option.maximum <= option.minimum) return;
    const QRect slider = subControlRect(CC_ScrollBar, &option, SC_ScrollBarSlider, widget);
    const bool isUpright = option.orientation == Qt::Vertical;
    const int thickness = theme_->size(ThemeSize::scrollThumb);
    const int margin = ((isUpright ? slider.width() : slider.height()) - thickness) / 2;
    const QRectF thumb =
        isUpright ? slider.adjusted(margin, 2, -margin, -2) : slider.adjusted(2, margin, -2, -margin);
    const bool isGrabbed =
        option.activeSubControls & SC_ScrollBarSlider && option.state & (State_Sunken | State_MouseOver);
    const QColor color = theme_->color(isGrabbed ? ThemeColor::textSecondary : ThemeColor::borderStrong);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(thumb, thickness / 2.0, thickness / 2.0);
    painter.restore();
}

QRect OmbrelStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) return QProxyStyle::subControlRect(control, option, part, widget);
    // No buttons: the groove is the whole bar.
    const QRect groove = bar->rect;
    const bool isUpright = bar->orientation == Qt::Vertical;
    const int length = isUpright ? groove.height() : groove.width();
    const qint64 range = static_cast<qint64>(bar->maximum) - bar->minimum;
    int thumb = length;
    if (range > 0) {
        const auto share =
            static_cast<qint64>(length) * bar->pageStep / std::max<qint64>(1, range + bar->pageStep);
        thumb = std::clamp(static_cast<int>(share),
                           std::min(theme_->size(ThemeSize::scrollThumbMinimum), length), length);
    }
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb,
                                              bar->upsideDown);
    const auto along = [&](int from, int extent) {
        return isUpright ? QRect(groove.left(), groove.top() + from, groove.width(), extent)
                         : QRect(groove.left() + from, groove.top(), extent, groove.height());
    };
    switch (part) {
    case SC_ScrollBarGroove: return groove;
    case SC_ScrollBarSlider: return along(start, thumb);
    case SC_ScrollBarSubPage: return along(0, start);
    case SC_ScrollBarAddPage: return along(start + thumb, length - start - thumb);
    default: return {};
    }
}

QSize OmbrelStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                    const QWidget* widget) const {
    if (type == CT_PushButton) {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        if (!button) return QProxyStyle::sizeFromContents(type, option, size, widget);
        const bool isSmall = widget && widget->property(smallProperty).toBool();
        const int glyph =
            button->icon.isNull() ? 0 : theme_->size(ThemeSize::glyph) + theme_->size(ThemeSize::space6);
        const QFontMetrics metrics(isSmall ? theme_->font(ThemeFont::caption)
                                           : theme_->font(ThemeFont::body));
        const int text = glyph + metrics.size(Qt::TextShowMnemonic, button->text).width();
        if (isSmall)
            return {text + 2 * theme_->size(ThemeSize::space12), theme_->size(ThemeSize::compactButton)};
        return {
            std::max(text + theme_->size(ThemeSize::space28), theme_->size(ThemeSize::buttonMinimumWidth)),
            std::max(theme_->size(ThemeSize::button), size.height())};
    }
    if (type == CT_MenuItem) {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (!item) return QProxyStyle::sizeFromContents(type, option, size, widget);
        return menuItemSize(*item, size, widget);
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

/// Without the shortcut, for which the menu itself leaves as much room as the widest one needs.
QSize OmbrelStyle::menuItemSize(const QStyleOptionMenuItem& option, const QSize& text,
                                const QWidget* widget) const {
    if (option.menuItemType == QStyleOptionMenuItem::Separator)
        return {text.width(), theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::hairline)};
    const int beside = 2 * theme_->size(ThemeSize::space12) + theme_->size(ThemeSize::glyph) +
                       theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::space2) +
                       theme_->size(ThemeSize::space28);
    const int frames = 2 * theme_->size(ThemeSize::hairline);
    int width = text.width() + beside, most = theme_->size(ThemeSize::menuMaximumWidth) - frames;
    const auto* const menu = qobject_cast<const QMenu*>(widget);
    const bool mayBeTooWide = width > theme_->size(ThemeSize::menuMinimumWidth);
    if (menu && mayBeTooWide) {
        int shortcuts = 0;
        for (const QAction* action : menu->actions())
            if (const auto tab = action->text().indexOf(QLatin1Char('\t')); tab >= 0)
                shortcuts =
                    std::max(shortcuts, menu->fontMetrics().horizontalAdvance(action->text().mid(tab + 1)));
        most -= shortcuts;
    }
    return {std::min(width, most), theme_->size(ThemeSize::menuRow)};
}

int OmbrelStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_ScrollBarExtent: return theme_->size(ThemeSize::scrollBar);
    case PM_ScrollBarSliderMin: return theme_->size(ThemeSize::scrollThumbMinimum);
    case PM_ScrollView_ScrollBarSpacing: return 0;
    case PM_ScrollView_ScrollBarOverlap: return liesOver(widget) ? theme_->size(ThemeSize::scrollBar) : 0;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight: return theme_->size(ThemeSize::checkBox);
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin: return theme_->size(ThemeSize::focusRing) + theme_->size(ThemeSize::focusGap);
    case PM_MenuVMargin: return theme_->size(ThemeSize::space4);
    case PM_MenuHMargin: return 0;
    case PM_MenuPanelWidth: return theme_->size(ThemeSize::hairline);
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical: return 0;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int OmbrelStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* answer) const {
    constexpr int subMenuDelay = 200; // milliseconds
    switch (hint) {
    case SH_ScrollBar_LeftClickAbsolutePosition:
    case SH_UnderlineShortcut:
    case SH_ScrollView_FrameOnlyAroundContents: return 0;
    case SH_Menu_SubMenuPopupDelay: return subMenuDelay;
    case SH_FocusFrame_AboveWidget:
    // Names have no underlined letters: typing jumps to them.
    case SH_Menu_KeyboardSearch: return 1;
    case SH_ToolTip_Mask:
    case SH_Menu_Mask: {
        auto* const mask = qstyleoption_cast<QStyleHintReturnMask*>(answer);
        if (!mask || !option || !widget || widget->testAttribute(Qt::WA_TranslucentBackground)) return 0;
        mask->region = rounded(option->rect, theme_->size(ThemeSize::radiusField));
        return 1;
    }
    case SH_Widget_Animation_Duration:
        if (theme_->appearance().isMotionReduced) return 0;
        break;
    default: break;
    }
    return QProxyStyle::styleHint(hint, option, widget, answer);
}

void OmbrelStyle::polish(QPalette& palette) {
    palette = theme_->palette();
}

void OmbrelStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    // What a tooltip tells are names more often than not, and those may look like markup.
    if (widget->inherits("QTipLabel")) static_cast<QLabel*>(widget)->setTextFormat(Qt::PlainText);
    auto* const menu = qobject_cast<QMenu*>(widget);
    if (!menu) return;
    menu->setMinimumWidth(theme_->size(ThemeSize::menuMinimumWidth));
    // Otherwise what lies outside the rounded corners would be black; a mask cuts it off.
    if (Compositing::isOn()) menu->setAttribute(Qt::WA_TranslucentBackground);
}

} // namespace ombrel
