#include "ui/Pill.h"

#include "ui/LocalizedText.h"
#include "ui/PartsAccessible.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

struct Look {
    ThemeColor ground;
    ThemeColor ink;
    std::optional<Glyph> glyph = std::nullopt;
};

Look lookOf(PillKind kind) {
    using enum ThemeColor;
    switch (kind) {
    case PillKind::available: return {successSoft, success, Glyph::check};
    case PillKind::newer: return {successSoft, success};
    case PillKind::needsPermission: return {warningSoft, warning, Glyph::key};
    case PillKind::originalKept: return {warningSoft, warning};
    case PillKind::failed: return {dangerSoft, danger};
    case PillKind::notAvailable:
    case PillKind::larger:
    case PillKind::skipped:
    case PillKind::cancelled: return {selectionInactive, textSecondary};
    }
    std::unreachable();
}

int glyphSide(const Theme& theme) {
    return theme.size(ThemeSize::space12);
}

} // namespace

Pill::Pill(const Theme& theme, PillKind kind, QWidget* parent)
    : QWidget(parent), theme_(&theme), kind_(kind) {
    PartsAccessible::install();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
    setAccessibleName(textOf(kind));
}

void Pill::setKind(PillKind kind) {
    if (kind == kind_) return;
    kind_ = kind;
    setAccessibleName(textOf(kind));
    updateGeometry();
    update();
}

QString Pill::textOf(PillKind kind) {
    switch (kind) {
    case PillKind::available: return localized("ui.pill.available");
    case PillKind::needsPermission: return localized("ui.pill.needsPermission");
    case PillKind::notAvailable: return localized("ui.pill.notAvailable");
    case PillKind::newer: return localized("ui.pill.newer");
    case PillKind::larger: return localized("ui.pill.larger");
    case PillKind::failed: return localized("ui.pill.failed");
    case PillKind::skipped: return localized("ui.pill.skipped");
    case PillKind::cancelled: return localized("ui.pill.cancelled");
    case PillKind::originalKept: return localized("ui.pill.originalKept");
    }
    std::unreachable();
}

QSize Pill::sizeOf(const Theme& theme, PillKind kind) {
    const QFontMetrics metrics(theme.font(ThemeFont::caption));
    int width = metrics.horizontalAdvance(textOf(kind)) + 2 * theme.size(ThemeSize::space8);
    if (lookOf(kind).glyph) width += glyphSide(theme) + theme.size(ThemeSize::space4);
    return {width, std::max(theme.size(ThemeSize::pill), metrics.height())};
}

void Pill::draw(QPainter& painter, const Theme& theme, PillKind kind, const QRect& box) {
    const auto [ground, ink, glyph] = lookOf(kind);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(ground));
    const double radius = box.height() / 2.0;
    painter.drawRoundedRect(box, radius, radius);
    QRect words = box.adjusted(theme.size(ThemeSize::space8), 0, -theme.size(ThemeSize::space8), 0);
    const bool isRightToLeft = painter.layoutDirection() == Qt::RightToLeft;
    if (glyph) {
        const int side = glyphSide(theme);
        const int beside = side + theme.size(ThemeSize::space4);
        const QRect picture(isRightToLeft ? words.right() - side + 1 : words.left(),
                            box.top() + (box.height() - side) / 2, side, side);
        Glyphs::draw(painter, *glyph, picture, theme.color(ink));
        words.adjust(isRightToLeft ? 0 : beside, 0, isRightToLeft ? -beside : 0, 0);
    }
    painter.setFont(theme.font(ThemeFont::caption));
    painter.setPen(theme.color(ink));
    painter.drawText(words, static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading) | Qt::TextSingleLine,
                     textOf(kind));
    painter.restore();
}

void Pill::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    draw(painter, *theme_, kind_, rect());
}

} // namespace ombrel
