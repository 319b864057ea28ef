#include "ui/HomePainter.h"

#include "ui/CapacityBar.h"
#include "ui/Glyphs.h"
#include "ui/HomeTexts.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Pill.h"
#include "ui/PlaceIcons.h"

#include <QPainterPath>
#include <QStyle>

#include <algorithm>
#include <array>
#include <utility>

namespace ombrel {
namespace {

using Section = HomeModel::Section;
using Part = HomeItem::Part;

QRectF hairlineInside(const QRectF& rect) {
    return rect.adjusted(0.5, 0.5, -0.5, -0.5);
}

QRect centred(const QRect& within, int side) {
    QRect box(0, 0, side, side);
    box.moveCenter(within.center());
    return box;
}

} // namespace

QRect HomePainter::mirrored(const QRect& part, const QRect& within) const {
    return QStyle::visualRect(direction_, within, part);
}

std::optional<ThemeColor> HomePainter::fillOf(const Look& look) const {
    if (look.isDropTarget) return ThemeColor::selection;
    if (look.isSelected && !look.isActive) return ThemeColor::selectionInactive;
    if (look.isSelected) return look.isHovered ? ThemeColor::selectionHover : ThemeColor::selection;
    return look.isHovered ? std::optional(ThemeColor::hover) : std::nullopt;
}

QColor HomePainter::ink(ThemeColor usual, const Look& look) const {
    const bool isOnSelection = look.isDropTarget || (look.isSelected && look.isActive);
    const bool isLoud = isOnSelection && theme_->appearance().isHighContrast;
    return theme_->color(isLoud ? ThemeColor::onSelection : usual);
}

QColor HomePainter::buttonInk(const Look& look) const {
    const bool hasGround = look.isButtonHovered || look.isButtonPressed;
    return hasGround ? theme_->color(ThemeColor::text) : ink(ThemeColor::text, look);
}

void HomePainter::paint(QPainter& painter, const HomeItem& item, const QRect& rect, const Look& look) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (item.part == Part::head)
        paintHead(painter, item, rect, look);
    else if (item.section == Section::locations)
        paintRowGround(painter, item, rect, look);
    else
        paintCard(painter, rect, look);
    if (item.part == Part::addLocation)
        paintAddLocation(painter, rect, look);
    else if (item.part == Part::entry) {
        switch (item.section) {
        case Section::quickAccess: paintPin(painter, model_->pins()[item.index], rect, look); break;
        case Section::locations: paintLocation(painter, item, rect, look); break;
        case Section::volumes: paintVolume(painter, item, rect, look); break;
        }
    }
    painter.restore();
}

void HomePainter::paintHead(QPainter& painter, const HomeItem& item, const QRect& rect,
                            const Look& look) const {
    const int chevron = size(ThemeSize::treeChevron), gap = size(ThemeSize::space8);
    const QString title = HomeTexts::sectionTitle(item.section);
    const QString count = HomeTexts::count(item.section, model_->count(item.section));
    const QFont strong = theme_->font(ThemeFont::subtitle), small = theme_->font(ThemeFont::caption);
    const int titleWidth = QFontMetrics(strong).horizontalAdvance(title) + 1;
    const int countWidth = QFontMetrics(small).horizontalAdvance(count) + 1;
    QRect part(rect.left(), rect.top() + (rect.height() - chevron) / 2, chevron, chevron);
    const QRect titlePart(part.right() + 1 + gap, rect.top(), titleWidth, rect.height());
    const QRect countPart(titlePart.right() + 1 + gap, rect.top(), countWidth, rect.height());
    if (look.isHovered || look.isCurrent) {
        const int radius = size(ThemeSize::radiusRow), inset = size(ThemeSize::space2);
        const QRect ground = mirrored(QRect(QPoint(rect.left() - gap, rect.top() + inset),
                                            QPoint(countPart.right() + gap, rect.bottom() - inset)),
                                      rect);
        if (look.isHovered) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(theme_->color(ThemeColor::hover));
            painter.drawRoundedRect(ground, radius, radius);
        }
        if (look.isCurrent) OmbrelStyle::drawInnerRing(painter, *theme_, ground, radius);
    }
    const Glyph closed = direction_ == Qt::RightToLeft ? Glyph::chevronLeft : Glyph::chevronRight;
    Glyphs::draw(painter, model_->isFolded(item.section) ? closed : Glyph::chevronDown, mirrored(part, rect),
                 theme_->color(ThemeColor::text));
    const auto flags =
        QStyle::visualAlignment(direction_, Qt::AlignLeft) | Qt::AlignVCenter | Qt::TextSingleLine;
    painter.setFont(strong);
    painter.setPen(theme_->color(ThemeColor::text));
    painter.drawText(mirrored(titlePart, rect), flags, title);
    painter.setFont(small);
    painter.setPen(theme_->color(ThemeColor::textSecondary));
    painter.drawText(mirrored(countPart, rect), flags, count);
}

void HomePainter::paintCard(QPainter& painter, const QRect& rect, const Look& look) const {
    const int radius = size(ThemeSize::radiusField);
    painter.setPen(QPen(theme_->color(ThemeColor::border), size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(fillOf(look).value_or(ThemeColor::surface)));
    painter.drawRoundedRect(hairlineInside(rect), radius, radius);
    if (look.isCurrent || look.isDropTarget)
        OmbrelStyle::drawInnerRing(painter, *theme_, rect, radius, fillOf(look));
}

void HomePainter::paintLines(QPainter& painter, const QRect& box, const QString& first, const QString& second,
                             ThemeColor ink, const Look& look) const {
    const QFont strong = theme_->font(ThemeFont::bodyStrong), caption = theme_->font(ThemeFont::caption);
    const int upper = theme_->lineHeight(ThemeFont::bodyStrong),
              lower = theme_->lineHeight(ThemeFont::caption);
    const int top = box.top() + (box.height() - upper - lower) / 2;
    const auto flags =
        QStyle::visualAlignment(direction_, Qt::AlignLeft) | Qt::AlignVCenter | Qt::TextSingleLine;
    painter.setFont(strong);
    painter.setPen(this->ink(ink, look));
    painter.drawText(QRect(box.left(), top, box.width(), upper), flags,
                     QFontMetrics(strong).elidedText(first, Qt::ElideMiddle, box.width()));
    painter.setFont(caption);
    painter.setPen(this->ink(ThemeColor::textSecondary, look));
    painter.drawText(QRect(box.left(), top + upper, box.width(), lower), flags,
                     QFontMetrics(caption).elidedText(second, Qt::ElideRight, box.width()));
}

void HomePainter::paintPin(QPainter& painter, const PinnedPlace& pin, const QRect& rect,
                           const Look& look) const {
    const int inset = size(ThemeSize::tileInset), icon = size(ThemeSize::tileIcon),
              gap = size(ThemeSize::space12);
    const QRect box(rect.left() + inset, rect.top() + (rect.height() - icon) / 2, icon, icon);
    PlaceIcons::drawFolder(painter, *theme_, pin.pin.known(), mirrored(box, rect));
    QRect text(QPoint(box.right() + 1 + gap, rect.top()), QPoint(rect.right() - inset, rect.bottom()));
    if (!pin.pin.known()) {
        const int glyph = size(ThemeSize::treeChevron);
        const QRect mark(rect.right() - inset - glyph + 1, rect.top() + (rect.height() - glyph) / 2, glyph,
                         glyph);
        Glyphs::draw(painter, Glyph::pin, mirrored(mark, rect), ink(ThemeColor::textSecondary, look));
        text.setRight(mark.left() - gap);
    }
    paintLines(painter, mirrored(text, rect), pin.title, pin.whereabouts, ThemeColor::text, look);
}

// ---- Locations

void HomePainter::paintLocationsFrame(QPainter& painter, const QRect& frame, const QRect& emptyText) const {
    if (frame.isEmpty()) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = size(ThemeSize::radiusField);
    painter.setPen(QPen(theme_->color(ThemeColor::border), size(ThemeSize::hairline)));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(hairlineInside(frame), radius, radius);
    if (!emptyText.isEmpty()) {
        const int inset = size(ThemeSize::tileInset);
        painter.setFont(theme_->font(ThemeFont::body));
        painter.setPen(theme_->color(ThemeColor::textSecondary));
        painter.drawText(emptyText.adjusted(inset, 0, -inset, 0),
                         QStyle::visualAlignment(direction_, Qt::AlignLeft) | Qt::AlignVCenter |
                             Qt::TextWordWrap,
                         localized("ui.home.noLocations"));
    }
    painter.restore();
}

void HomePainter::paintRowGround(QPainter& painter, const HomeItem& item, const QRect& rect,
                                 const Look& look) const {
    const int radius = size(ThemeSize::radiusField), hairline = size(ThemeSize::hairline);
    const bool isFirst = item.part == Part::entry && item.index == 0;
    const bool isLast = item.part == Part::addLocation;
    // The line below belongs to the row that follows.
    const QRect ground = rect.adjusted(hairline, hairline, -hairline, 0);
    if (const auto fill = fillOf(look)) {
        QPainterPath shape;
        shape.setFillRule(Qt::WindingFill);
        shape.addRoundedRect(ground, radius - hairline, radius - hairline);
        if (!isFirst) shape.addRect(ground.adjusted(0, 0, 0, -radius));
        if (!isLast) shape.addRect(ground.adjusted(0, radius, 0, 0));
        painter.fillPath(shape.simplified(), theme_->color(*fill));
    }
    if (!isFirst)
        painter.fillRect(QRect(rect.left(), rect.top(), rect.width(), hairline),
                         theme_->color(ThemeColor::border));
    if (look.isCurrent || look.isDropTarget)
        OmbrelStyle::drawInnerRing(painter, *theme_, ground, radius - hairline, fillOf(look));
}

QRect HomePainter::paintPill(QPainter& painter, const GrantedPlace& location, int right,
                             const QRect& row) const {
    const PillKind kind = location.isActive()          ? PillKind::available
                          : location.needsPermission() ? PillKind::needsPermission
                                                       : PillKind::notAvailable;
    const QSize needed = Pill::sizeOf(*theme_, kind);
    const QRect pill(QPoint(right - needed.width(), row.top() + (row.height() - needed.height()) / 2),
                     needed);
    painter.setLayoutDirection(direction_);
    Pill::draw(painter, *theme_, kind, mirrored(pill, row));
    return pill;
}

void HomePainter::paintButtonGround(QPainter& painter, const QRect& button, const Look& look) const {
    if (!look.isButtonHovered && !look.isButtonPressed) return;
    const int radius = size(ThemeSize::radiusButton);
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        theme_->color(look.isButtonPressed ? ThemeColor::pressed : ThemeColor::selectionInactive));
    painter.drawRoundedRect(button, radius, radius);
}

void HomePainter::paintLocation(QPainter& painter, const HomeItem& item, const QRect& rect,
                                const Look& look) const {
    const GrantedPlace& location = model_->locations()[item.index];
    const int inset = size(ThemeSize::tileInset), icon = size(ThemeSize::locationIcon),
              gap = size(ThemeSize::space12);
    const QRect box(rect.left() + inset, rect.top() + (rect.height() - icon) / 2, icon, icon);
    PlaceIcons::drawFolder(painter, *theme_, std::nullopt, mirrored(box, rect));
    // Pills end at one line, whether or not there is a wide button beside them.
    const QFontMetrics metrics(theme_->font(ThemeFont::body));
    const int widest = metrics.horizontalAdvance(localized("settings.locations.reauthorize")) + 2 * gap;
    const int pillEnd =
        rect.right() + 1 - inset - widest - size(ThemeSize::space28) - size(ThemeSize::space8);
    const QRect pill = paintPill(painter, location, pillEnd, rect);
    const QRect text(QPoint(box.right() + 1 + gap, rect.top()), QPoint(pill.left() - gap, rect.bottom()));
    const bool isThere = location.isActive() || location.needsPermission();
    paintLines(painter, mirrored(text, rect), location.title, location.path,
               isThere ? ThemeColor::text : ThemeColor::textSecondary, look);
    const QRect button = buttonOf(item, rect);
    if (!location.needsPermission()) {
        paintButtonGround(painter, button, look);
        Glyphs::draw(painter, Glyph::more, centred(button, size(ThemeSize::treeChevron)), buttonInk(look));
        return;
    }
    const int radius = size(ThemeSize::radiusButton);
    const ThemeColor face = look.isButtonPressed   ? ThemeColor::pressed
                            : look.isButtonHovered ? ThemeColor::hover
                                                   : ThemeColor::surface;
    painter.setPen(QPen(theme_->color(ThemeColor::border), size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(face));
    painter.drawRoundedRect(hairlineInside(button), radius, radius);
    painter.setFont(theme_->font(ThemeFont::body));
    painter.setPen(theme_->color(ThemeColor::text));
    painter.drawText(button, Qt::AlignCenter | Qt::TextSingleLine, buttonText(item));
}

void HomePainter::paintAddLocation(QPainter& painter, const QRect& rect, const Look& look) const {
    const int inset = size(ThemeSize::tileInset), icon = size(ThemeSize::locationIcon),
              gap = size(ThemeSize::space12);
    const QRect box(rect.left() + inset, rect.top() + (rect.height() - icon) / 2, icon, icon);
    Glyphs::draw(painter, Glyph::plus, centred(mirrored(box, rect), size(ThemeSize::glyph)),
                 ink(ThemeColor::accent, look));
    const QRect text(QPoint(box.right() + 1 + gap, rect.top()), QPoint(rect.right() - inset, rect.bottom()));
    painter.setFont(theme_->font(ThemeFont::body));
    painter.setPen(ink(ThemeColor::accent, look));
    painter.drawText(mirrored(text, rect),
                     QStyle::visualAlignment(direction_, Qt::AlignLeft) | Qt::AlignVCenter |
                         Qt::TextSingleLine,
                     localized("ui.home.addLocation"));
}

// ---- Volumes

void HomePainter::paintVolume(QPainter& painter, const HomeItem& item, const QRect& rect,
                              const Look& look) const {
    const VolumePlace& volume = model_->volumes()[item.index];
    const int inset = size(ThemeSize::tileInset), plate = size(ThemeSize::volumePlate);
    const QRect box(rect.left() + inset, rect.top() + inset, plate, plate);
    const int radius = size(ThemeSize::radiusField);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_->color(ThemeColor::hover));
    painter.drawRoundedRect(mirrored(box, rect), radius, radius);
    Glyphs::draw(painter, PlaceIcons::glyphOf(volume.kind),
                 centred(mirrored(box, rect), size(ThemeSize::listIcon)), theme_->color(ThemeColor::accent));
    QRect column(QPoint(box.right() + 1 + size(ThemeSize::space12) + size(ThemeSize::space2), box.top()),
                 QPoint(rect.right() - inset, rect.bottom() - inset));
    QRect lines(column.left(), box.top(), column.width(), plate);
    const QRect button = buttonOf(item, rect);
    if (!button.isEmpty()) {
        lines.setRight(mirrored(button, rect).left() - size(ThemeSize::space4));
        paintButtonGround(painter, button, look);
        Glyphs::draw(painter, Glyph::eject, centred(button, size(ThemeSize::treeChevron)), buttonInk(look));
    }
    paintLines(painter, mirrored(lines, rect), volume.title,
               volume.isEjecting ? localized("ui.volume.ejecting") : volume.nature,
               volume.isEjecting ? ThemeColor::textSecondary : ThemeColor::text, look);
    column.setTop(box.bottom() + 1 + size(ThemeSize::space2));
    paintCapacity(painter, volume, mirrored(column, rect), look);
}

void HomePainter::paintCapacity(QPainter& painter, const VolumePlace& volume, const QRect& column,
                                const Look& look) const {
    const auto used = volume.used();
    const int bar = size(ThemeSize::capacityBar);
    QRect caption = column;
    if (used) {
        const QRect track(column.left(), column.top(), column.width(), bar);
        const bool isOnSelection = look.isDropTarget || (look.isSelected && look.isActive);
        const auto ground = isOnSelection     ? CapacityBar::Ground::selection
                            : look.isSelected ? CapacityBar::Ground::selectionInactive
                                              : CapacityBar::Ground::plain;
        CapacityBar::paint(painter, *theme_, track, {.used = *used, .isNearlyFull = volume.isNearlyFull()},
                           ground, direction_);
        caption.setTop(track.bottom() + 1 + size(ThemeSize::space4));
    }
    const QFont font = theme_->font(ThemeFont::caption);
    const QFontMetrics metrics(font);
    caption.setHeight(metrics.height());
    painter.setFont(font);
    painter.setPen(ink(volume.isNearlyFull() ? ThemeColor::danger : ThemeColor::textSecondary, look));
    painter.drawText(
        caption, QStyle::visualAlignment(direction_, Qt::AlignLeft) | Qt::AlignVCenter | Qt::TextSingleLine,
        metrics.elidedText(HomeTexts::capacity(volume), Qt::ElideRight, caption.width()));
}

// ---- Buttons

QRect HomePainter::buttonOf(const HomeItem& item, const QRect& rect) const {
    if (item.part != Part::entry) return {};
    const int inset = size(ThemeSize::tileInset);
    if (item.section == Section::locations) {
        const GrantedPlace& location = model_->locations()[item.index];
        const int height = size(ThemeSize::space28);
        int width = size(ThemeSize::navigationButton), end = rect.right() + 1 - inset;
        if (location.needsPermission())
            width = QFontMetrics(theme_->font(ThemeFont::body)).horizontalAdvance(buttonText(item)) +
                    2 * size(ThemeSize::space12);
        else
            end += (width - size(ThemeSize::glyph)) / 2; // the dots end where the other button does
        return mirrored(QRect(end - width, rect.top() + (rect.height() - height) / 2, width, height), rect);
    }
    if (item.section != Section::volumes) return {};
    const VolumePlace& volume = model_->volumes()[item.index];
    if (!volume.canBeEjected || volume.isEjecting) return {};
    const int side = size(ThemeSize::treeButton), edge = size(ThemeSize::space12);
    return mirrored(QRect(rect.right() + 1 - edge - side, rect.top() + edge, side, side), rect);
}

QString HomePainter::buttonText(const HomeItem& item) const {
    if (item.section == Section::volumes) return localized("ui.volume.eject");
    const bool isLost = model_->locations()[item.index].needsPermission();
    return localized(isLost ? "settings.locations.reauthorize" : "ui.home.moreActions");
}

} // namespace ombrel
