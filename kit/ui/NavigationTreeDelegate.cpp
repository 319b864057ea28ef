#include "ui/NavigationTreeDelegate.h"

#include "ui/Glyphs.h"
#include "ui/OmbrelStyle.h"
#include "ui/PlaceIcons.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>

#include <algorithm>

namespace ombrel {
namespace {

using Kind = FolderTreeModel::Kind;

int depthOf(const QModelIndex& index) {
    int depth = 0;
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent())
        ++depth;
    return depth;
}

} // namespace

NavigationTreeDelegate::NavigationTreeDelegate(const FolderTreeModel& model, const Theme& theme,
                                               QObject* parent)
    : QStyledItemDelegate(parent), model_(&model), theme_(&theme) {}

std::optional<NavigationTreeDelegate::Button>
NavigationTreeDelegate::buttonOf(const FolderTreeModel::Entry& entry) {
    if (entry.location && entry.location->needsPermission()) return Button::allow;
    if (entry.volume && entry.volume->canBeEjected && !entry.volume->isEjecting) return Button::eject;
    return std::nullopt;
}

NavigationRowParts NavigationTreeDelegate::parts(const QRect& rect, const QModelIndex& index,
                                                 Qt::LayoutDirection direction) const {
    const auto size = [this](ThemeSize token) { return theme_->size(token); };
    const auto entry = model_->entry(index);
    const int inset = size(ThemeSize::treeInset);
    // Deep folders keep most of the row for their names.
    const int indent = std::min(depthOf(index) * size(ThemeSize::treeIndent), rect.width() * 2 / 5);
    const int chevron = size(ThemeSize::treeChevron), icon = size(ThemeSize::smallIcon);
    const int button = size(ThemeSize::treeButton), small = size(ThemeSize::space2);
    NavigationRowParts parts;
    parts.row = rect.adjusted(inset, 0, -inset, 0);
    int x = parts.row.left() + size(ThemeSize::space4) + small / 2 + indent;
    const int chevronLeft = x;
    x += chevron + size(ThemeSize::space8);
    parts.chevron = QRect(chevronLeft - small, rect.top(), chevron + size(ThemeSize::space8), rect.height());
    parts.icon = QRect(x, rect.top() + (rect.height() - icon) / 2, icon, icon);
    int textLeft = parts.icon.right() + 1 + size(ThemeSize::space6) + small / 2;
    if (entry.kind == Kind::head) textLeft = parts.row.left() + size(ThemeSize::space8);
    if (entry.kind == Kind::notice) textLeft = parts.icon.left();
    int right = parts.row.right() - size(ThemeSize::space4);
    if (buttonOf(entry)) {
        parts.button = QRect(parts.row.right() - small - button + 1,
                             rect.top() + (rect.height() - button) / 2, button, button);
        right = parts.button.left() - small;
    }
    parts.text = QRect(QPoint(textLeft, rect.top()), QPoint(right, rect.bottom()));
    for (QRect* part : {&parts.row, &parts.chevron, &parts.icon, &parts.text, &parts.button})
        *part = QStyle::visualRect(direction, rect, *part);
    return parts;
}

QSize NavigationTreeDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {0, theme_->size(ThemeSize::treeRow)};
}

void NavigationTreeDelegate::paintGround(QPainter& painter, const QRect& row, const Look& look,
                                         Qt::LayoutDirection direction) const {
    std::optional<ThemeColor> fill;
    if (look.isFlashing)
        fill = ThemeColor::pressed;
    else if (look.isShown || look.isDropTarget)
        fill = look.isHovered ? ThemeColor::selectionHover : ThemeColor::selection;
    else if (look.isHovered)
        fill = ThemeColor::hover;
    const int radius = theme_->size(ThemeSize::radiusRow);
    QPainterPath shape;
    shape.addRoundedRect(row, radius, radius);
    if (fill) painter.fillPath(shape, theme_->color(*fill));
    if (look.isShown) {
        const int edge = theme_->size(ThemeSize::treeEdge);
        const QRect strip(direction == Qt::RightToLeft ? row.right() - edge + 1 : row.left(), row.top(), edge,
                          row.height());
        painter.save();
        painter.setClipRect(strip, Qt::IntersectClip);
        painter.fillPath(shape, theme_->color(ThemeColor::accent));
        painter.restore();
    }
    if (look.isCurrent || look.isDropTarget) OmbrelStyle::drawInnerRing(painter, *theme_, row, radius, fill);
}

void NavigationTreeDelegate::paintIcon(QPainter& painter, const FolderTreeModel::Entry& entry,
                                       const QRect& box, const QColor& ink) const {
    if (entry.kind == Kind::home)
        Glyphs::draw(painter, Glyph::home, box, ink);
    else if (entry.known)
        Glyphs::draw(painter, PlaceIcons::glyphOf(*entry.known), box, ink);
    else if (entry.volume)
        Glyphs::draw(painter, PlaceIcons::glyphOf(entry.volume->kind), box, ink);
    else
        PlaceIcons::drawFolder(painter, *theme_, std::nullopt, box);
}

void NavigationTreeDelegate::paintRow(QPainter& painter, const QRect& rect, const QModelIndex& index,
                                      const Look& look, Qt::LayoutDirection direction) const {
    const auto entry = model_->entry(index);
    const auto at = parts(rect, index, direction);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isCaption = entry.kind == Kind::head;
    const bool isNotice = entry.kind == Kind::notice;
    // Where the ground of what is shown is loud, only one ink can be read on it.
    const bool isLoud = theme_->appearance().isHighContrast && (look.isShown || look.isDropTarget);
    const QColor glyphInk = theme_->color(isLoud ? ThemeColor::onSelection : ThemeColor::textSecondary);
    if (!isCaption && !isNotice) {
        paintGround(painter, at.row, look, direction);
        if (model_->hasChildren(index)) {
            const int side = theme_->size(ThemeSize::treeChevron);
            QRect box(0, 0, side, side);
            box.moveCenter(at.chevron.center());
            const Glyph closed = direction == Qt::RightToLeft ? Glyph::chevronLeft : Glyph::chevronRight;
            Glyphs::draw(painter, model_->isOpen(index) ? Glyph::chevronDown : closed, box, glyphInk);
        }
        paintIcon(painter, entry, at.icon, glyphInk);
    }
    const QFont font = theme_->font(isCaption  ? ThemeFont::captionStrong
                                    : isNotice ? ThemeFont::caption
                                               : ThemeFont::body);
    const bool isUnavailable =
        entry.location && !entry.location->isActive() && !entry.location->needsPermission();
    const bool isEjecting = entry.volume && entry.volume->isEjecting;
    ThemeColor ink = ThemeColor::text;
    if (!isLoud && (isCaption || isNotice || isUnavailable || isEjecting))
        ink = ThemeColor::textSecondary;
    else if (look.isShown || look.isDropTarget)
        ink = ThemeColor::onSelection;
    painter.setFont(font);
    painter.setPen(theme_->color(ink));
    painter.drawText(
        at.text, QStyle::visualAlignment(direction, Qt::AlignLeft) | Qt::AlignVCenter | Qt::TextSingleLine,
        QFontMetrics(font).elidedText(entry.title, Qt::ElideRight, at.text.width()));
    if (const auto button = buttonOf(entry)) {
        const bool hasGround = look.isButtonHovered || look.isButtonPressed;
        if (hasGround) {
            const int radius = theme_->size(ThemeSize::radiusButton);
            painter.setPen(Qt::NoPen);
            painter.setBrush(theme_->color(look.isButtonPressed ? ThemeColor::pressed : ThemeColor::surface));
            painter.drawRoundedRect(at.button, radius, radius);
        }
        const int side = theme_->size(ThemeSize::treeChevron);
        QRect box(0, 0, side, side);
        box.moveCenter(at.button.center());
        const bool isKey = *button == Button::allow;
        Glyphs::draw(painter, isKey ? Glyph::key : Glyph::eject, box,
                     isLoud && !hasGround
                         ? glyphInk
                         : theme_->color(isKey ? ThemeColor::warning : ThemeColor::textSecondary));
    }
    painter.restore();
}

} // namespace ombrel
