#include "ui/PresetCard.h"

#include "browser/FileCommand.h"
#include "ui/KeyStrokes.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <iterator>

namespace ombrel {
namespace {

struct Row {
    FileCommand command;
    std::string_view name;
};

constexpr Row rows[] = {
    {FileCommand::open, "ui.command.open"},
    {FileCommand::rename, "ui.command.rename"},
    {FileCommand::moveToTrash, "ui.command.moveToTrash"},
    {FileCommand::goUp, "ui.preset.folderAbove"},
    {FileCommand::undo, "ui.command.undo"},
    {FileCommand::redo, "ui.command.redo"},
    {FileCommand::quickLook, "ui.command.quickLook"},
};

QString captionOf(KeyPreset preset) {
    const auto keys = [preset](FileCommand command) {
        return KeyStrokes::shown(command, preset).toStdString();
    };
    if (preset == KeyPreset::windows)
        return localized("ui.preset.opensFirst", {keys(FileCommand::open), keys(FileCommand::rename)});
    return localized("ui.preset.renamesFirst", {keys(FileCommand::rename), keys(FileCommand::open)});
}

} // namespace

PresetCard::PresetCard(const Theme& theme, KeyPreset preset, QWidget* parent)
    : QRadioButton(parent), theme_(&theme), preset_(preset) {
    setText(localized(preset == KeyPreset::windows ? "preset.windows" : "preset.mac"));
    setAccessibleName(text());
    QStringList words{captionOf(preset)};
    for (const Row& row : rows)
        words << localized(row.name) + QLatin1Char(' ') + KeyStrokes::shown(row.command, preset);
    setAccessibleDescription(words.join(QStringLiteral(", ")));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
}

int PresetCard::headingHeight() const {
    return QFontMetrics(theme_->font(ThemeFont::subtitle)).height() +
           QFontMetrics(theme_->font(ThemeFont::caption)).height() + theme_->size(ThemeSize::space12);
}

int PresetCard::rowHeight() const {
    return theme_->size(ThemeSize::menuRow) + theme_->size(ThemeSize::hairline);
}

QSize PresetCard::sizeHint() const {
    const int height = headingHeight() + static_cast<int>(std::size(rows)) * rowHeight() +
                       2 * theme_->size(ThemeSize::space20);
    return {theme_->size(ThemeSize::dialogWidth) * 3 / 4, height};
}

QSize PresetCard::minimumSizeHint() const {
    return {theme_->size(ThemeSize::addressMinimumWidth), sizeHint().height()};
}

void PresetCard::drawHeading(QPainter& painter, const QRect& box) const {
    const int side = theme_->size(ThemeSize::checkBox) + theme_->size(ThemeSize::space2);
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    OmbrelStyle::drawRadio(painter, *theme_,
                           QRect(isRightToLeft ? box.right() - side : box.left(), box.top(), side, side),
                           isChecked(), isEnabled());
    const int beside = side + theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::space2);
    QRect line = isRightToLeft ? box.adjusted(0, 0, -beside, 0) : box.adjusted(beside, 0, 0, 0);
    constexpr int flags = Qt::AlignLeading | Qt::AlignTop | Qt::TextSingleLine;
    painter.setFont(theme_->font(ThemeFont::subtitle));
    painter.setPen(theme_->color(ThemeColor::text));
    painter.drawText(line, flags, text());
    line.translate(0, painter.fontMetrics().height());
    painter.setFont(theme_->font(ThemeFont::caption));
    painter.setPen(theme_->color(ThemeColor::textSecondary));
    painter.drawText(line, flags,
                     painter.fontMetrics().elidedText(captionOf(preset_), Qt::ElideRight, line.width()));
}

void PresetCard::drawKeys(QPainter& painter, const QRect& box, const QString& keys) const {
    painter.setFont(theme_->font(ThemeFont::caption));
    const QFontMetrics metrics(painter.font());
    const int inset = theme_->size(ThemeSize::space8), gap = theme_->size(ThemeSize::space4);
    const int height = std::min(box.height() - gap, metrics.height() + theme_->size(ThemeSize::space6));
    const int radius = theme_->size(ThemeSize::radiusCheckBox);
    const QStringList caps = keys.split(QLatin1Char('+'), Qt::SkipEmptyParts);
    int end = box.right();
    for (auto cap = caps.crbegin(); cap != caps.crend(); ++cap) {
        const int width = metrics.horizontalAdvance(*cap) + 2 * inset;
        const QRectF face(end - width + 0.5, box.top() + (box.height() - height) / 2 + 0.5, width - 1,
                          height - 1);
        painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
        painter.setBrush(theme_->color(ThemeColor::surfaceAlt));
        // The lower edge is thicker, as a key's is.
        painter.drawRoundedRect(face.translated(0, 1), radius, radius);
        painter.drawRoundedRect(face, radius, radius);
        painter.setPen(theme_->color(ThemeColor::text));
        painter.drawText(face, Qt::AlignCenter, *cap);
        end -= width + gap;
    }
}

void PresetCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = theme_->size(ThemeSize::radiusLargeCard);
    const double line = isChecked() ? theme_->size(ThemeSize::focusRing) : theme_->size(ThemeSize::hairline);
    painter.setPen(QPen(theme_->color(isChecked() ? ThemeColor::accent : ThemeColor::border), line));
    painter.setBrush(theme_->color(underMouse() && !isChecked() ? ThemeColor::hover : ThemeColor::surface));
    painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), radius,
                            radius);
    const int inset = theme_->size(ThemeSize::space20);
    const QRect inner = rect().adjusted(inset, inset, -inset, -inset);
    drawHeading(painter, inner);
    int y = inner.top() + headingHeight();
    for (const Row& row : rows) {
        const QRect box(inner.left(), y, inner.width(), rowHeight());
        painter.fillRect(QRect(box.left(), box.top(), box.width(), theme_->size(ThemeSize::hairline)),
                         theme_->color(ThemeColor::border));
        painter.setFont(theme_->font(ThemeFont::body));
        painter.setPen(theme_->color(ThemeColor::textSecondary));
        painter.drawText(box, static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) | Qt::TextSingleLine,
                         localized(row.name));
        drawKeys(painter, box, KeyStrokes::shown(row.command, preset_));
        y += rowHeight();
    }
}

} // namespace ombrel
