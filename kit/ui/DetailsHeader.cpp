#include "ui/DetailsHeader.h"

#include "ui/Glyphs.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QAbstractTableModel>
#include <QContextMenuEvent>
#include <QHoverEvent>
#include <QMenu>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyleOptionButton>

#include <algorithm>
#include <chrono>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace ombrel {
namespace {

/// Gives QHeaderView its sections; the rows are the view's own business.
class Columns final : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;
    int rowCount(const QModelIndex&) const override { return 0; }
    int columnCount(const QModelIndex&) const override { return detailsColumnCount; }
    QVariant data(const QModelIndex&, int) const override { return {}; }
    QVariant headerData(int section, Qt::Orientation, int role) const override {
        const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
        return isText ? DetailsHeader::label(static_cast<DetailsColumn>(section)) : QVariant();
    }
};

constexpr int index(DetailsColumn column) {
    return std::to_underlying(column);
}

std::optional<FileSort::Key> keyOf(DetailsColumn column) {
    switch (column) {
    case DetailsColumn::checkBox: return std::nullopt;
    case DetailsColumn::name: return FileSort::Key::name;
    case DetailsColumn::dateModified: return FileSort::Key::modificationDate;
    case DetailsColumn::type: return FileSort::Key::kind;
    case DetailsColumn::size: return FileSort::Key::size;
    case DetailsColumn::folder: return std::nullopt;
    }
    std::unreachable();
}

constexpr std::chrono::milliseconds settlingTime(300);

/// What a column is called where its width is kept.
constexpr std::string_view storedNames[] = {"checkBox", "name", "dateModified", "type", "size", "folder"};
static_assert(std::size(storedNames) == detailsColumnCount);

constexpr DetailsColumn optionalColumns[] = {DetailsColumn::dateModified, DetailsColumn::type,
                                             DetailsColumn::size};

} // namespace

DetailsHeader::DetailsHeader(BrowserModel& model, const Theme& theme, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), model_(&model), theme_(&theme) {
    setModel(new Columns(this));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setSectionsClickable(true);
    setSectionsMovable(true);
    setFirstSectionMovable(false);
    setHighlightSections(false);
    setMinimumSectionSize(1);
    setSectionResizeMode(QHeaderView::Interactive);
    setSectionResizeMode(index(DetailsColumn::checkBox), QHeaderView::Fixed);
    setAccessibleName(localized("ui.accessible.columns"));
    setSectionHidden(index(DetailsColumn::folder), !model.showsSearch());
    resetColumns();
    connect(this, &QHeaderView::sectionClicked, this,
            [this](int section) { sortBy(static_cast<DetailsColumn>(section)); });
    // The second of two quick clicks is a click like the first.
    connect(this, &QHeaderView::sectionDoubleClicked, this,
            [this](int section) { sortBy(static_cast<DetailsColumn>(section)); });
    connect(this, &QHeaderView::sectionResized, this, &DetailsHeader::shareEdge);
    connect(this, &QHeaderView::sectionMoved, this, &DetailsHeader::keepFirstColumns);
    connect(this, &QHeaderView::sectionHandleDoubleClicked, this,
            [this](int section) { Q_EMIT fitRequested(static_cast<DetailsColumn>(section)); });
    const auto repaint = [this] { viewport()->update(); };
    connect(&model, &BrowserModel::sortChanged, this, repaint);
    connect(&model, &BrowserModel::selectionChanged, this, repaint);
    connect(&model, &BrowserModel::itemsChanged, this, repaint);
    connect(&model, &BrowserModel::locationChanged, this, [this] { setShowsFolders(model_->showsSearch()); });
    settling_.setSingleShot(true);
    settling_.setInterval(settlingTime);
    connect(&settling_, &QTimer::timeout, this, &DetailsHeader::arranged);
}

QString DetailsHeader::label(DetailsColumn column) {
    switch (column) {
    case DetailsColumn::checkBox: return {};
    case DetailsColumn::name: return localized("ui.column.name");
    case DetailsColumn::dateModified: return localized("ui.column.dateModified");
    case DetailsColumn::type: return localized("ui.column.type");
    case DetailsColumn::size: return localized("ui.column.size");
    case DetailsColumn::folder: return localized("ui.column.folder");
    }
    std::unreachable();
}

// ---- Widths

int DetailsHeader::usualWidth(DetailsColumn column) const {
    switch (column) {
    case DetailsColumn::checkBox: return theme_->size(ThemeSize::checkBoxColumn);
    case DetailsColumn::name: return theme_->size(ThemeSize::nameColumnMinimum);
    case DetailsColumn::dateModified: return theme_->size(ThemeSize::dateColumn);
    case DetailsColumn::type: return theme_->size(ThemeSize::typeColumn);
    case DetailsColumn::size: return theme_->size(ThemeSize::sizeColumn);
    case DetailsColumn::folder: return theme_->size(ThemeSize::folderColumn);
    }
    std::unreachable();
}

int DetailsHeader::leastWidth(DetailsColumn column) const {
    switch (column) {
    case DetailsColumn::checkBox:
    case DetailsColumn::name: return usualWidth(column);
    case DetailsColumn::dateModified: return theme_->size(ThemeSize::dateColumnMinimum);
    case DetailsColumn::type: return theme_->size(ThemeSize::typeColumnMinimum);
    case DetailsColumn::size: return theme_->size(ThemeSize::sizeColumnMinimum);
    case DetailsColumn::folder: return theme_->size(ThemeSize::folderColumnMinimum);
    }
    std::unreachable();
}

int DetailsHeader::left(DetailsColumn column) const {
    return sectionPosition(index(column));
}

int DetailsHeader::width(DetailsColumn column) const {
    return sectionSize(index(column));
}

bool DetailsHeader::isShown(DetailsColumn column) const {
    return !isSectionHidden(index(column));
}

void DetailsHeader::setWidth(DetailsColumn column, int width) {
    const QScopedValueRollback arranging(isArranging_, true);
    resizeSection(index(column), width);
}

void DetailsHeader::fitInto(int width) {
    available_ = width;
    int others = 0;
    for (std::size_t section = 0; section < detailsColumnCount; ++section)
        if (section != std::to_underlying(DetailsColumn::name))
            others += sectionSize(static_cast<int>(section));
    setWidth(DetailsColumn::name, std::max(leastWidth(DetailsColumn::name), available_ - others));
    Q_EMIT columnsChanged();
}

void DetailsHeader::resetColumns() {
    const QScopedValueRollback arranging(isArranging_, true);
    for (const auto column : optionalColumns)
        setSectionHidden(index(column), false);
    for (std::size_t section = 0; section < detailsColumnCount; ++section) {
        const auto column = static_cast<DetailsColumn>(section);
        setWidth(column, usualWidth(column));
        moveSection(visualIndex(index(column)), index(column));
    }
    fitInto(available_);
}

std::vector<std::string> DetailsHeader::arrangement() const {
    std::vector<std::string> columns;
    for (int visual = 0; visual < count(); ++visual) {
        const int section = logicalIndex(visual);
        const auto column = static_cast<DetailsColumn>(section);
        if (std::ranges::find(optionalColumns, column) == std::end(optionalColumns)) continue;
        // A hidden section keeps the width that it comes back with.
        const int size = isShown(column) ? sectionSize(section) : usualWidth(column);
        columns.push_back(std::string(storedNames[static_cast<std::size_t>(section)]) + " " +
                          std::to_string(size) + (isShown(column) ? "" : " hidden"));
    }
    return columns;
}

void DetailsHeader::arrange(const std::vector<std::string>& columns) {
    if (columns == arrangement()) return fitInto(available_);
    resetColumns();
    const QScopedValueRollback arranging(isArranging_, true);
    int visual = index(DetailsColumn::name) + 1;
    for (const std::string& stored : columns) {
        std::istringstream words(stored);
        std::string name, mark;
        int size = 0;
        words >> name >> size >> mark;
        const auto known = std::ranges::find(storedNames, name);
        if (known == std::end(storedNames)) continue;
        const auto column = static_cast<DetailsColumn>(known - std::begin(storedNames));
        if (std::ranges::find(optionalColumns, column) == std::end(optionalColumns)) continue;
        moveSection(visualIndex(index(column)), visual++);
        resizeSection(index(column), std::max(leastWidth(column), size));
        setSectionHidden(index(column), mark == "hidden");
    }
    fitInto(available_);
}

void DetailsHeader::setShowsCheckBoxes(bool on) {
    setShown(DetailsColumn::checkBox, on);
}

void DetailsHeader::setShowsFolders(bool on) {
    setShown(DetailsColumn::folder, on);
}

void DetailsHeader::setShown(DetailsColumn column, bool on) {
    if (isShown(column) == on) return;
    {
        const QScopedValueRollback arranging(isArranging_, true);
        setSectionHidden(index(column), !on);
    }
    fitInto(available_);
}

void DetailsHeader::shareEdge(int logicalIndex, int before, int after) {
    if (isArranging_ || before == 0 || after == 0) return;
    const auto column = static_cast<DetailsColumn>(logicalIndex);
    int neighbour = visualIndex(logicalIndex) + 1;
    while (neighbour < count() && isSectionHidden(this->logicalIndex(neighbour)))
        ++neighbour;
    if (neighbour >= count()) return setWidth(column, before);
    const auto giving = static_cast<DetailsColumn>(this->logicalIndex(neighbour));
    const int together = before + width(giving);
    const int share =
        std::clamp(after, leastWidth(column), std::max(leastWidth(column), together - leastWidth(giving)));
    setWidth(column, share);
    setWidth(giving, together - share);
    fitInto(available_);
    settling_.start();
}

void DetailsHeader::fit(DetailsColumn column, int content) {
    const int wanted = std::max(leastWidth(column), content + 2 * theme_->size(ThemeSize::space8));
    if (column == DetailsColumn::name)
        growName(wanted);
    else
        // A long text does not push the others out of sight.
        setWidth(column, std::min(wanted, std::max(width(column), roomFor(column))));
    fitInto(available_);
    settling_.start();
}

/// The name grows at the cost of the others, the last one first, as long as they can do without.
void DetailsHeader::growName(int wanted) {
    int missing = wanted - width(DetailsColumn::name);
    for (int visual = count() - 1; visual > 0 && missing > 0; --visual) {
        const auto giving = static_cast<DetailsColumn>(logicalIndex(visual));
        if (giving == DetailsColumn::name || !isShown(giving)) continue;
        const int gift = std::clamp(width(giving) - usualWidth(giving), 0, missing);
        setWidth(giving, width(giving) - gift);
        missing -= gift;
    }
}

/// How wide a column can be while the others keep their widths and the name has its least one.
int DetailsHeader::roomFor(DetailsColumn column) const {
    int others = leastWidth(DetailsColumn::name);
    for (int section = 0; section < count(); ++section)
        if (section != index(column) && section != index(DetailsColumn::name)) others += sectionSize(section);
    return std::max(usualWidth(column), available_ - others);
}

void DetailsHeader::keepFirstColumns() {
    if (isArranging_) return;
    const QScopedValueRollback arranging(isArranging_, true);
    for (const auto column : {DetailsColumn::checkBox, DetailsColumn::name})
        moveSection(visualIndex(index(column)), index(column));
    Q_EMIT columnsChanged();
    settling_.start();
}

// ---- What it does

void DetailsHeader::sortBy(DetailsColumn column) {
    if (column == DetailsColumn::checkBox) {
        Q_EMIT toggleAllRequested();
        return;
    }
    const auto key = keyOf(column);
    if (!key) return;
    FileSort sort = model_->sort();
    sort.ascending = sort.key == *key ? !sort.ascending : *key != FileSort::Key::modificationDate;
    sort.key = *key;
    model_->setSort(sort);
}

void DetailsHeader::contextMenuEvent(QContextMenuEvent* event) {
    const int section = logicalIndexAt(event->pos());
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const auto column : optionalColumns) {
        auto* const action = menu->addAction(label(column));
        action->setCheckable(true);
        action->setChecked(isShown(column));
        connect(action, &QAction::toggled, this, [this, column](bool shown) {
            setSectionHidden(index(column), !shown);
            fitInto(available_);
            settling_.start();
        });
    }
    menu->addSeparator();
    auto* const fitThis = menu->addAction(localized("ui.columns.fitThis"));
    fitThis->setEnabled(section > index(DetailsColumn::checkBox));
    connect(fitThis, &QAction::triggered, this,
            [this, section] { Q_EMIT fitRequested(static_cast<DetailsColumn>(section)); });
    connect(menu->addAction(localized("ui.columns.fitAll")), &QAction::triggered, this, [this] {
        for (const auto column : optionalColumns)
            if (isShown(column)) Q_EMIT fitRequested(column);
    });
    connect(menu->addAction(localized("ui.columns.reset")), &QAction::triggered, this, [this] {
        resetColumns();
        settling_.start();
    });
    menu->popup(event->globalPos());
}

bool DetailsHeader::viewportEvent(QEvent* event) {
    const int before = hovered_;
    if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverEnter)
        hovered_ = logicalIndexAt(static_cast<QHoverEvent*>(event)->position().toPoint());
    else if (event->type() == QEvent::HoverLeave || event->type() == QEvent::Leave)
        hovered_ = -1;
    if (hovered_ != before) viewport()->update();
    return QHeaderView::viewportEvent(event);
}

void DetailsHeader::hideEvent(QHideEvent* event) {
    QHeaderView::hideEvent(event);
    // The window may be about to go.
    if (!settling_.isActive()) return;
    settling_.stop();
    Q_EMIT arranged();
}

// ---- Painting

QSize DetailsHeader::sizeHint() const {
    return {length(), theme_->size(ThemeSize::header)};
}

void DetailsHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
    const auto column = static_cast<DetailsColumn>(logicalIndex);
    const int hairline = theme_->size(ThemeSize::hairline);
    painter->fillRect(rect, theme_->color(logicalIndex == hovered_ && keyOf(column) ? ThemeColor::hover
                                                                                    : ThemeColor::surface));
    const QColor line = theme_->color(ThemeColor::border);
    painter->fillRect(QRect(rect.left(), rect.bottom() - hairline + 1, rect.width(), hairline), line);
    if (column == DetailsColumn::checkBox) return paintCheckBox(*painter, rect);
    const int edge = layoutDirection() == Qt::RightToLeft ? rect.left() : rect.right() - hairline + 1;
    painter->fillRect(QRect(edge, rect.top(), hairline, rect.height()), line);
    paintLabel(*painter, rect, column);
}

void DetailsHeader::paintLabel(QPainter& painter, const QRect& rect, DetailsColumn column) const {
    const bool isSorted = keyOf(column) == model_->sort().key;
    const int margin = theme_->size(ThemeSize::space8), glyph = theme_->size(ThemeSize::glyph),
              gap = theme_->size(ThemeSize::space4);
    const QFont font = theme_->font(isSorted ? ThemeFont::bodyStrong : ThemeFont::body);
    const QFontMetrics metrics(font);
    const int room = rect.width() - 2 * margin - (isSorted ? glyph + gap : 0);
    const QString text = metrics.elidedText(label(column), Qt::ElideRight, std::max(0, room));
    const int textWidth = metrics.horizontalAdvance(text);
    const bool atRight = column == DetailsColumn::size;
    const int block = textWidth + (isSorted ? gap + glyph : 0);
    const int start = atRight ? rect.right() + 1 - margin - block : rect.left() + margin;
    const auto mirrored = [&](const QRect& part) {
        return QStyle::visualRect(layoutDirection(), rect, part);
    };
    painter.setFont(font);
    painter.setPen(theme_->color(isSorted ? ThemeColor::text : ThemeColor::textSecondary));
    painter.drawText(mirrored(QRect(start, rect.top(), textWidth + 1, rect.height())),
                     Qt::AlignLeft | Qt::AlignVCenter, text);
    if (!isSorted) return;
    const QRect arrow(start + textWidth + gap, rect.center().y() - glyph / 2, glyph, glyph);
    const int inset = theme_->size(ThemeSize::space2);
    Glyphs::draw(painter, model_->sort().ascending ? Glyph::chevronUp : Glyph::chevronDown,
                 QRectF(mirrored(arrow)).adjusted(inset, inset, -inset, -inset),
                 theme_->color(ThemeColor::textSecondary));
}

void DetailsHeader::paintCheckBox(QPainter& painter, const QRect& rect) const {
    const int side = theme_->size(ThemeSize::checkBox);
    const QRect box(rect.left() + theme_->size(ThemeSize::checkBoxLeft),
                    rect.top() + (rect.height() - side) / 2, side, side);
    QStyleOptionButton option;
    option.initFrom(this);
    option.rect = QStyle::visualRect(layoutDirection(), rect, box);
    const auto& selection = model_->selection();
    option.state.setFlag(QStyle::State_Enabled, !model_->items().empty());
    option.state.setFlag(QStyle::State_On, selection.isEverything());
    option.state.setFlag(QStyle::State_NoChange, !selection.empty() && !selection.isEverything());
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, this);
}

} // namespace ombrel
