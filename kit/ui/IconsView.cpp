#include "ui/IconsView.h"

#include "services/AppSettings.h"
#include "ui/ItemPainting.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

/// The theme's sizes of each size of icons: image, then cell; width, then height.
constexpr ThemeSize sizes[][4] = {
    {ThemeSize::smallImageWidth, ThemeSize::smallImageHeight, ThemeSize::smallCellWidth,
     ThemeSize::smallCellHeight},
    {ThemeSize::mediumImageWidth, ThemeSize::mediumImageHeight, ThemeSize::mediumCellWidth,
     ThemeSize::mediumCellHeight},
    {ThemeSize::largeImageWidth, ThemeSize::largeImageHeight, ThemeSize::largeCellWidth,
     ThemeSize::largeCellHeight},
    {ThemeSize::extraLargeImageWidth, ThemeSize::extraLargeImageHeight, ThemeSize::extraLargeCellWidth,
     ThemeSize::extraLargeCellHeight},
};
static_assert(std::size(sizes) == iconSizeCount);

} // namespace

IconsView::IconsView(BrowserModel& model, const Theme& theme, QWidget* parent)
    : FileView(model, theme, parent) {
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layOut();
}

// ---- Layout

IconsView::Measures IconsView::measures() const {
    const auto& row = sizes[std::to_underlying(size_)];
    Measures is;
    is.image = QSize(theme().size(row[0]), theme().size(row[1]));
    is.lines = size_ == IconSize::extraLarge ? 3 : 2;
    is.lineHeight = std::max(fontMetrics().height(), theme().lineHeight(ThemeFont::body));
    const int used = is.image.height() + is.lines * is.lineHeight;
    // Scripts with tall letters make the cells higher before they are cut off.
    const int height = std::max(theme().size(row[3]), used + 3 * theme().size(ThemeSize::space2));
    is.cell = QSize(theme().size(row[2]), height);
    is.top = (height - used) / 3;
    is.textTop = height - is.top - is.lines * is.lineHeight;
    is.linePitch = height + theme().size(ThemeSize::cellGap);
    is.inset = theme().size(ThemeSize::cellInset);
    return is;
}

void IconsView::layOut() {
    if (sources().settings) size_ = sources().settings->iconSize();
    measures_ = measures();
    columns_ = std::max(1, viewport()->width() / (measures_.cell.width() + theme().size(ThemeSize::cellGap)));
    names_.setRoom(font(), measures_.cell.width() - 2 * theme().size(ThemeSize::space4));
}

void IconsView::setIconSize(IconSize size, std::optional<Anchor> anchor) {
    if (size == size_) return;
    if (auto* const settings = sources().settings) {
        // Which tells this view too.
        settings->setIconSize(size);
        if (anchor) restore(*anchor);
        return;
    }
    relayoutAround(
        [&] {
            size_ = size;
            layOut();
        },
        anchor);
}

void IconsView::resizeEvent(QResizeEvent* event) {
    relayoutAround([&] {
        layOut();
        FileView::resizeEvent(event);
    });
}

std::size_t IconsView::lineCount() const {
    const auto columns = static_cast<std::size_t>(columns_);
    return (model().items().size() + columns - 1) / columns;
}

int IconsView::cellLeft(int column) const {
    const int width = viewport()->width();
    const int shown = layoutDirection() == Qt::RightToLeft ? columns_ - 1 - column : column;
    const int left = width * shown / columns_, right = width * (shown + 1) / columns_;
    return std::max(0, left + (right - left - measures_.cell.width()) / 2);
}

qint64 IconsView::contentHeight() const {
    const auto lines = static_cast<qint64>(lineCount());
    const int gap = measures_.linePitch - measures_.cell.height();
    return lines == 0 ? 0 : lines * measures_.linePitch - gap + 2 * measures_.inset;
}

FileView::ContentRect IconsView::contentRect(std::size_t row) const {
    const auto columns = static_cast<std::size_t>(columns_);
    return {.x = cellLeft(static_cast<int>(row % columns)),
            .y = measures_.inset + static_cast<qint64>(row / columns) * measures_.linePitch,
            .width = measures_.cell.width(),
            .height = measures_.cell.height()};
}

std::vector<RowRange> IconsView::rowsTouching(const ContentRect& area) const {
    const qint64 gap = measures_.linePitch - measures_.cell.height();
    const qint64 top = area.y - measures_.inset + gap, bottom = area.bottom() - measures_.inset;
    const qint64 first =
        std::max<qint64>(0, top > 0 ? (top + measures_.linePitch - 1) / measures_.linePitch - 1 : 0);
    const qint64 end = bottom <= 0 ? 0 : (bottom + measures_.linePitch - 1) / measures_.linePitch;
    int left = columns_, right = -1; // the columns that it touches, in reading order
    for (int column = 0; column < columns_; ++column) {
        const int x = cellLeft(column);
        if (x >= area.x + area.width || x + measures_.cell.width() <= area.x) continue;
        left = std::min(left, column);
        right = std::max(right, column);
    }
    const std::size_t count = model().items().size(), columns = static_cast<std::size_t>(columns_);
    std::vector<RowRange> ranges;
    for (auto line = static_cast<std::size_t>(first); std::cmp_less(line, end) && line < lineCount();
         ++line) {
        const RowRange cells{.begin = line * columns + static_cast<std::size_t>(left),
                             .end = std::min(count, line * columns + static_cast<std::size_t>(right + 1))};
        if (cells.empty()) continue;
        if (!ranges.empty() && ranges.back().end == cells.begin)
            ranges.back().end = cells.end;
        else
            ranges.push_back(cells);
    }
    return ranges;
}

std::size_t IconsView::stepped(std::size_t row, Step step) const {
    const auto columns = static_cast<std::size_t>(columns_);
    const std::size_t last = model().items().size() - 1;
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    switch (step) {
    case Step::up: return row < columns ? row : row - columns;
    // Below the line there may be one that does not reach so far.
    case Step::down: return row / columns == last / columns ? row : std::min(row + columns, last);
    case Step::left:
    case Step::right: break;
    }
    const bool isBack = (step == Step::left) != isMirrored;
    if (isBack) return row % columns == 0 ? row : row - 1;
    return row % columns == columns - 1 || row == last ? row : row + 1;
}

std::size_t IconsView::rowsPerPage() const {
    const int lines = std::max(1, viewport()->height() / measures_.linePitch);
    return static_cast<std::size_t>(lines) * static_cast<std::size_t>(columns_);
}

int IconsView::scrollStep() const {
    // A notch of the wheel, which is three of them, goes on by a line.
    return std::max(1, measures_.linePitch / 3);
}

QRect IconsView::imageRect(const QRect& cell) const {
    return {cell.left() + (cell.width() - measures_.image.width()) / 2, cell.top() + measures_.top,
            measures_.image.width(), measures_.image.height()};
}

QRect IconsView::textRect(const QRect& cell, int lines) const {
    const int margin = theme().size(ThemeSize::space4);
    return {cell.left() + margin, cell.top() + measures_.textTop, cell.width() - 2 * margin,
            lines * measures_.lineHeight};
}

QRect IconsView::checkBoxRect(const QRect& cell) const {
    const int inset = theme().size(ThemeSize::cellCheckBox), side = theme().size(ThemeSize::checkBox);
    return QStyle::visualRect(layoutDirection(), cell,
                              QRect(cell.left() + inset, cell.top() + inset, side, side));
}

FileView::NamePlace IconsView::namePlace(std::size_t row) const {
    const QRect cell = rowRect(row);
    const int margin = theme().size(ThemeSize::space2);
    const QRect line = textRect(cell, 1).adjusted(0, -margin, 0, margin);
    // A longer name grows to both sides, over the cells beside it.
    const QRect room(0, line.top(), viewport()->width(), line.height());
    return {.name = line, .room = room, .alignment = Qt::AlignHCenter};
}

FileView::Part IconsView::partAt(std::size_t row, QPoint viewportPoint) {
    const QRect cell = rowRect(row), box = checkBoxRect(cell);
    const int reach = (theme().size(ThemeSize::hitTarget) - box.width() + 1) / 2;
    if (hasCheckBoxes() && box.adjusted(-reach, -reach, reach, reach).contains(viewportPoint))
        return Part::checkBox;
    const auto lines = static_cast<int>(names_.of(facts(row).name, measures_.lines).size());
    return textRect(cell, lines).contains(viewportPoint) ? Part::name : Part::content;
}

// ---- Painting

bool IconsView::isRaised(std::size_t row, const RowState& state) {
    if (state.isSelected && model().selection().count() == 1) return true;
    return model().row(BrowserModel::Place::current) == row && state.isActive;
}

void IconsView::paintPicture(QPainter& painter, std::size_t row, const QRect& cell) {
    const auto& shown = facts(row);
    const QRect box = imageRect(cell);
    painter.setOpacity(ItemPainting::opacityOf(shown));
    if (const QImage image = thumbnailOf(row, box.size()); !image.isNull()) {
        const QRect place = ItemPainting::thumbnail(painter, theme(), image, box);
        if (shown.fileClass == FileClass::video) ItemPainting::playBadge(painter, theme(), place);
        icons().drawBadge(painter, shown.badge, place);
    } else {
        const int side = box.height();
        icons().draw(painter, shown.fileClass, shown.badge,
                     QRect(box.left() + (box.width() - side) / 2, box.top(), side, side));
    }
    painter.setOpacity(1);
}

void IconsView::paintRow(QPainter& painter, std::size_t row, const QRect& rect, const RowState& state) {
    const auto& shown = facts(row);
    const QString name = shown.name;
    const QStringList whole = isRaised(row, state) ? names_.whole(name) : QStringList();
    const QStringList& lines = whole.isEmpty() ? names_.of(name, measures_.lines) : whole;
    const int longer = std::max(0, static_cast<int>(lines.size()) - measures_.lines) * measures_.lineHeight;
    const QRect ground = rect.adjusted(0, 0, 0, longer);
    if (longer > 0) painter.fillRect(ground, theme().color(ThemeColor::surface));
    ItemPainting::background(painter, theme(), ground, state);
    const QColor color = ItemPainting::nameColor(theme(), shown, state);
    paintPicture(painter, row, rect);
    if (state.showsCheckBox)
        ItemPainting::checkBox(painter, *this, checkBoxRect(rect).topLeft(), state.isSelected);
    painter.setFont(font());
    painter.setPen(color);
    QRect line = textRect(rect, 1);
    for (const QString& text : lines) {
        texts_.draw(painter, line, Qt::AlignHCenter, text, Qt::ElideNone);
        line.translate(0, measures_.lineHeight);
    }
}

void IconsView::paintPlaceholder(QPainter& painter, int index) {
    const QRect cell(cellLeft(index % columns_), measures_.inset + index / columns_ * measures_.linePitch,
                     measures_.cell.width(), measures_.cell.height());
    const int radius = theme().size(ThemeSize::radiusCheckBox), bar = theme().size(ThemeSize::space12);
    const QRect text = textRect(cell, 1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme().color(ThemeColor::hover));
    painter.drawRoundedRect(imageRect(cell), radius, radius);
    painter.drawRoundedRect(
        QRect(text.left() + text.width() / 6, text.center().y() - bar / 2, text.width() * 2 / 3, bar), radius,
        radius);
}

QString IconsView::toolTipAt(std::size_t row, QPoint viewportPoint) {
    const QString reason = FileView::toolTipAt(row, viewportPoint);
    if (!reason.isEmpty()) return reason;
    const QString name = facts(row).name;
    return names_.whole(name).size() > measures_.lines ? name : QString();
}

} // namespace ombrel
