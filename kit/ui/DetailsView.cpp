#include "ui/DetailsView.h"

#include "base/FileName.h"
#include "browser/AddressCrumbs.h"
#include "services/AppSettings.h"
#include "ui/ItemPainting.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>

namespace ombrel {

DetailsView::DetailsView(BrowserModel& model, const Theme& theme, QWidget* parent)
    : FileView(model, theme, parent), header_(new DetailsHeader(model, theme, this)),
      besideHeader_(new QWidget) {
    addScrollBarWidget(besideHeader_, Qt::AlignTop);
    verticalScrollBar()->setProperty(OmbrelStyle::overProperty, true);
    verticalScrollBar()->setAttribute(Qt::WA_OpaquePaintEvent, false);
    connect(header_, &DetailsHeader::columnsChanged, this, &DetailsView::relayout);
    connect(header_, &DetailsHeader::toggleAllRequested, this, [this] { toggleAll(); });
    connect(header_, &DetailsHeader::fitRequested, this, &DetailsView::fitColumn);
    connect(header_, &DetailsHeader::arranged, this, [this] {
        if (sources().settings) sources().settings->setDetailsColumns(header_->arrangement());
    });
    layOut();
}

DetailsView::~DetailsView() {
    // It may be hidden on the way, and this is no longer there to be told.
    disconnect(header_, nullptr, this, nullptr);
}

// ---- Layout

void DetailsView::layOut() {
    const auto* const settings = sources().settings;
    const bool isCompact = settings && settings->compactView();
    rowHeight_ = theme().size(isCompact ? ThemeSize::compactRow : ThemeSize::row);
    header_->setShowsCheckBoxes(hasCheckBoxes());
    header_->arrange(settings ? settings->detailsColumns() : header_->arrangement());
    placeHeader();
}

int DetailsView::iconSize() const {
    const bool isCompact = rowHeight_ < theme().size(ThemeSize::row);
    return theme().size(isCompact ? ThemeSize::smallIcon : ThemeSize::listIcon);
}

int DetailsView::inset() const {
    return theme().size(ThemeSize::listInset);
}

qint64 DetailsView::contentHeight() const {
    return static_cast<qint64>(model().items().size()) * rowHeight_ + 2 * inset();
}

int DetailsView::contentWidth() const {
    return header_->totalWidth() + besideColumns();
}

/// Rows go on under the scroll bar, columns end before it.
int DetailsView::besideColumns() const {
    return theme().size(ThemeSize::space8) +
           style()->pixelMetric(QStyle::PM_ScrollView_ScrollBarOverlap, nullptr, verticalScrollBar());
}

FileView::ContentRect DetailsView::contentRect(std::size_t row) const {
    return {.x = inset(),
            .y = inset() + static_cast<qint64>(row) * rowHeight_,
            .width = std::max(contentWidth(), viewport()->width()) - 2 * inset(),
            .height = rowHeight_};
}

std::vector<RowRange> DetailsView::rowsTouching(const ContentRect& area) const {
    const auto count = static_cast<qint64>(model().items().size());
    const ContentRect first = contentRect(std::size_t{0});
    if (area.x >= first.x + first.width || area.x + area.width <= first.x) return {};
    const qint64 top = area.y - inset(), bottom = area.bottom() - inset();
    const qint64 begin = std::clamp<qint64>(top / rowHeight_, 0, count);
    const qint64 end = std::clamp<qint64>((bottom + rowHeight_ - 1) / rowHeight_, 0, count);
    if (begin >= end) return {};
    return {{static_cast<std::size_t>(begin), static_cast<std::size_t>(end)}};
}

std::size_t DetailsView::stepped(std::size_t row, Step step) const {
    switch (step) {
    case Step::up: return row == 0 ? 0 : row - 1;
    case Step::down: return std::min(row + 1, model().items().size() - 1);
    case Step::left:
    case Step::right: return row;
    }
    std::unreachable();
}

std::size_t DetailsView::rowsPerPage() const {
    return static_cast<std::size_t>(std::max(1, viewport()->height() / rowHeight_ - 1));
}

QRect DetailsView::cell(const QRect& row, DetailsColumn column) const {
    const QRect canvas(-horizontalScrollBar()->value(), row.top(),
                       std::max(contentWidth(), viewport()->width()), row.height());
    const QRect rect(canvas.left() + header_->left(column), row.top(), header_->width(column), row.height());
    return mirrored(canvas, rect);
}

QRect DetailsView::mirrored(const QRect& in, const QRect& rect) const {
    return QStyle::visualRect(layoutDirection(), in, rect);
}

QRect DetailsView::nameTextRect(const QRect& row) const {
    const QRect name = cell(row, DetailsColumn::name);
    const int margin = theme().size(ThemeSize::space8), icon = iconSize();
    return mirrored(name, name.adjusted(margin + icon + margin, 0, -margin, 0));
}

FileView::NamePlace DetailsView::namePlace(std::size_t row) const {
    const QRect rect = rowRect(row);
    const int margin = theme().size(ThemeSize::space2);
    const QRect text = nameTextRect(rect).adjusted(0, margin, 0, -margin);
    const int least = std::min(text.width(), theme().size(ThemeSize::buttonMinimumWidth));
    return {.name = mirrored(text, QRect(text.left(), text.top(), least, text.height())),
            .room = text,
            .alignment = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)};
}

FileView::Part DetailsView::partAt(std::size_t row, QPoint viewportPoint) {
    const QRect rect = rowRect(row);
    if (cell(rect, DetailsColumn::checkBox).contains(viewportPoint)) return Part::checkBox;
    const QRect name = cell(rect, DetailsColumn::name), text = nameTextRect(rect);
    const int width = std::min(text.width(), fontMetrics().horizontalAdvance(facts(row).name));
    const QRect written = mirrored(text, QRect(text.left(), text.top(), width, text.height()));
    const bool isBesideName = layoutDirection() == Qt::RightToLeft ? viewportPoint.x() < written.left()
                                                                   : viewportPoint.x() > written.right();
    if (written.contains(viewportPoint)) return Part::name;
    return name.contains(viewportPoint) && isBesideName ? Part::emptiness : Part::content;
}

void DetailsView::placeHeader() {
    const int height = theme().size(ThemeSize::header);
    setViewportMargins(0, height, 0, 0);
    besideHeader_->setFixedHeight(height);
    header_->setGeometry(0, 0, width(), height);
    header_->fitInto(viewport()->width() - besideColumns());
    header_->setOffset(horizontalScrollBar()->value());
    header_->raise();
}

void DetailsView::resizeEvent(QResizeEvent* event) {
    placeHeader();
    FileView::resizeEvent(event);
}

void DetailsView::scrollContentsBy(int dx, int dy) {
    header_->setOffset(horizontalScrollBar()->value());
    FileView::scrollContentsBy(dx, dy);
}

void DetailsView::fitColumn(DetailsColumn column) {
    const RowRange rows = visibleRows();
    int widest = 0;
    for (std::size_t row = rows.begin; row < rows.end; ++row) {
        const auto& shown = facts(row);
        const int aside = iconSize() + theme().size(ThemeSize::space8);
        switch (column) {
        case DetailsColumn::checkBox: return;
        case DetailsColumn::name:
            widest = std::max(widest, fontMetrics().horizontalAdvance(shown.name) + aside);
            break;
        case DetailsColumn::dateModified:
            widest = std::max(widest, fontMetrics().horizontalAdvance(shown.date));
            break;
        case DetailsColumn::type:
            widest = std::max(widest, fontMetrics().horizontalAdvance(shown.type));
            break;
        case DetailsColumn::size:
            widest = std::max(widest, fontMetrics().horizontalAdvance(shown.size));
            break;
        case DetailsColumn::folder:
            widest = std::max(widest, fontMetrics().horizontalAdvance(folderText(row)));
            break;
        }
    }
    header_->fit(column, widest + 1);
}

// ---- Painting

void DetailsView::paintIcon(QPainter& painter, std::size_t row, const QRect& rect) {
    const auto& shown = facts(row);
    const QRect name = cell(rect, DetailsColumn::name);
    const int side = iconSize();
    const QRect box = mirrored(name, QRect(name.left() + theme().size(ThemeSize::space8),
                                           rect.top() + (rect.height() - side) / 2, side, side));
    painter.setOpacity(ItemPainting::opacityOf(shown));
    const QImage image = shown.fileClass == FileClass::image ? thumbnailOf(row, box.size()) : QImage();
    if (image.isNull()) {
        icons().draw(painter, shown.fileClass, shown.badge, box);
    } else {
        ItemPainting::thumbnail(painter, theme(), image, box);
        icons().drawBadge(painter, shown.badge, box);
    }
    painter.setOpacity(1);
}

void DetailsView::paintRow(QPainter& painter, std::size_t row, const QRect& rect, const RowState& state) {
    ItemPainting::background(painter, theme(), rect, state);
    if (state.showsCheckBox) {
        const QRect column = cell(rect, DetailsColumn::checkBox);
        const int side = theme().size(ThemeSize::checkBox);
        const QRect box = mirrored(column, QRect(column.left() + theme().size(ThemeSize::checkBoxLeft),
                                                 rect.top() + (rect.height() - side) / 2, side, side));
        ItemPainting::checkBox(painter, *this, box.topLeft(), state.isSelected);
    }
    paintIcon(painter, row, rect);
    const auto& shown = facts(row);

    const bool isOnSelection = (state.isSelected && state.isActive) || state.isDropTarget;
    const QRect text = nameTextRect(rect);
    painter.setFont(font());
    painter.setPen(ItemPainting::nameColor(theme(), shown, state));
    lines_.draw(painter, text, QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft), shown.name,
                Qt::ElideMiddle);
    const bool isLoud = isOnSelection && theme().appearance().isHighContrast;
    painter.setPen(theme().color(isLoud ? ThemeColor::onSelection : ThemeColor::textSecondary));
    paintText(painter, rect, DetailsColumn::dateModified, shown.date);
    paintText(painter, rect, DetailsColumn::type, shown.type);
    paintText(painter, rect, DetailsColumn::size, shown.size);
    if (model().showsSearch()) paintText(painter, rect, DetailsColumn::folder, folderText(row));
}

QString DetailsView::folderText(std::size_t row) const {
    const auto& searched = model().currentURL();
    if (!searched) return {};
    const FileURL folder = model().items()[row].url().parent();
    if (folder == *searched) return QString::fromStdString(AddressCrumbs::nameOf(folder));
    return QString::fromStdString(
        FileName::displayText(folder.isWithin(*searched) ? folder.pathBelow(*searched) : folder.path()));
}

void DetailsView::paintText(QPainter& painter, const QRect& row, DetailsColumn column, const QString& text) {
    if (text.isEmpty() || header_->width(column) == 0) return;
    const int margin = theme().size(ThemeSize::space8);
    const QRect rect = cell(row, column).adjusted(margin, 0, -margin, 0);
    const auto side = column == DetailsColumn::size ? Qt::AlignRight : Qt::AlignLeft;
    lines_.draw(painter, rect, QStyle::visualAlignment(layoutDirection(), side), text, Qt::ElideRight);
}

void DetailsView::paintPlaceholder(QPainter& painter, int index) {
    const QRect rect(inset(), inset() + index * rowHeight_, viewport()->width() - 2 * inset(), rowHeight_);
    const int icon = iconSize(), bar = theme().size(ThemeSize::space12);
    const QRect name = cell(rect, DetailsColumn::name), text = nameTextRect(rect);
    // Widths that look like names of different length.
    constexpr int widths[] = {62, 48, 70, 40, 55, 66, 44, 58};
    const int width = text.width() * widths[static_cast<std::size_t>(index) % std::size(widths)] / 100;
    const int top = rect.center().y() - bar / 2;
    const QRect iconRect(name.left() + theme().size(ThemeSize::space8),
                         rect.top() + (rect.height() - icon) / 2, icon, icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme().color(ThemeColor::hover));
    const int radius = theme().size(ThemeSize::radiusCheckBox);
    painter.drawRoundedRect(mirrored(name, iconRect), radius, radius);
    painter.drawRoundedRect(mirrored(text, QRect(text.left(), top, width, bar)), radius, radius);
}

QString DetailsView::toolTipAt(std::size_t row, QPoint viewportPoint) {
    const QString reason = FileView::toolTipAt(row, viewportPoint);
    if (!reason.isEmpty()) return reason;
    const QRect text = nameTextRect(rowRect(row));
    const QString name = facts(row).name;
    const bool isElided = fontMetrics().horizontalAdvance(name) > text.width();
    return isElided && text.contains(viewportPoint) ? name : QString();
}

} // namespace ombrel
