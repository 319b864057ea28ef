#include "ui/FolderRowDelegate.h"

#include "ui/FileIconDrawing.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QPainter>

namespace ombrel {

FolderRowDelegate::FolderRowDelegate(const Theme& theme, QObject* parent)
    : QStyledItemDelegate(parent), theme_(&theme) {}

QSize FolderRowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {theme_->size(ThemeSize::menuMinimumWidth), theme_->size(ThemeSize::menuRow)};
}

void FolderRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    const int inset = theme_->size(ThemeSize::space4), icon = theme_->size(ThemeSize::smallIcon);
    const QRect row = option.rect;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool isPicked = option.state & QStyle::State_Selected;
    if (isPicked || option.state & QStyle::State_MouseOver) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(theme_->color(ThemeColor::hover));
        const int radius = theme_->size(ThemeSize::radiusRow);
        painter->drawRoundedRect(row.adjusted(inset, 0, -inset, 0), radius, radius);
        if (isPicked)
            OmbrelStyle::drawInnerRing(*painter, *theme_, row.adjusted(inset, 0, -inset, 0), radius);
    }
    const auto mirrored = [&](const QRect& part) { return QStyle::visualRect(option.direction, row, part); };
    const QRect box(row.left() + theme_->size(ThemeSize::space12), row.center().y() - icon / 2, icon, icon);
    FileIconDrawing::draw(*painter, *theme_, FileClass::folder, mirrored(box));
    const QRect text(box.right() + 1 + theme_->size(ThemeSize::space8), row.top(),
                     row.right() - box.right() - 2 * theme_->size(ThemeSize::space8) - inset, row.height());
    const QVariant font = index.data(Qt::FontRole);
    painter->setFont(font.isValid() ? font.value<QFont>() : theme_->font(ThemeFont::body));
    painter->setPen(theme_->color(ThemeColor::text));
    painter->drawText(
        mirrored(text), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
        painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideMiddle, text.width()));
    painter->restore();
}

} // namespace ombrel
