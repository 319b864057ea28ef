#include "ui/ReportTable.h"

#include "base/FileName.h"
#include "operations/ReportTexts.h"
#include "ui/Formats.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Pill.h"
#include "ui/Theme.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

enum Column { nameColumn, resultColumn, reasonColumn, columnCount };

PillKind pillOf(const ItemOutcome& outcome) {
    switch (outcome.which()) {
    case ItemOutcome::Case::failed: return PillKind::failed;
    case ItemOutcome::Case::skipped: return PillKind::skipped;
    case ItemOutcome::Case::cancelled: return PillKind::cancelled;
    case ItemOutcome::Case::copiedSourceKept: return PillKind::originalKept;
    case ItemOutcome::Case::completed: break;
    }
    return PillKind::available;
}

QString nameOf(const ItemResult& item) {
    return item.source ? QString::fromStdString(FileName::displayText(item.source->name())) : QString();
}

QString reasonOf(const ItemResult& item) {
    const auto which = item.outcome.which();
    // The pill says it already.
    if (which == ItemOutcome::Case::skipped || which == ItemOutcome::Case::cancelled) return {};
    return localized(textOf(item, [](std::int64_t bytes) { return Formats::size(bytes).toStdString(); }));
}

class Rows final : public QAbstractTableModel {
public:
    Rows(const OperationReport& report, QObject* parent) : QAbstractTableModel(parent) {
        for (const ItemResult& item : report.items) {
            if (items_.size() == ReportTable::mostRows) break;
            if (!item.outcome.isSuccess()) items_.push_back(item);
        }
    }
    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(items_.size());
    }
    [[nodiscard]] int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(ombrel::columnCount);
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        const ItemResult& item = items_[static_cast<std::size_t>(index.row())];
        if (role == Qt::UserRole) return static_cast<int>(pillOf(item.outcome));
        if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
        switch (index.column()) {
        case nameColumn: return nameOf(item);
        case resultColumn: return Pill::textOf(pillOf(item.outcome));
        default: return reasonOf(item);
        }
    }

private:
    std::vector<ItemResult> items_;
};

class Cells final : public QStyledItemDelegate {
public:
    Cells(const Theme& theme, QObject* parent) : QStyledItemDelegate(parent), theme_(&theme) {}
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        painter->save();
        const int inset = theme_->size(ThemeSize::space8);
        const QRect box = option.rect.adjusted(inset, 0, 0, 0);
        if (index.column() == resultColumn) {
            const auto kind = static_cast<PillKind>(index.data(Qt::UserRole).toInt());
            QRect pill(QPoint(), Pill::sizeOf(*theme_, kind));
            pill.moveCenter(box.center());
            pill.moveLeft(box.left());
            painter->setLayoutDirection(option.direction);
            Pill::draw(*painter, *theme_, kind, pill);
        } else {
            const bool isName = index.column() == nameColumn;
            painter->setFont(theme_->font(isName ? ThemeFont::body : ThemeFont::caption));
            painter->setPen(theme_->color(isName ? ThemeColor::text : ThemeColor::textSecondary));
            const QString words = index.data(Qt::DisplayRole).toString();
            painter->drawText(box, static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading) | Qt::TextSingleLine,
                              painter->fontMetrics().elidedText(
                                  words, isName ? Qt::ElideMiddle : Qt::ElideRight, box.width()));
        }
        painter->restore();
    }

private:
    const Theme* theme_;
};

int resultWidth(const Theme& theme) {
    int width = 0;
    for (const auto kind : {PillKind::failed, PillKind::skipped, PillKind::cancelled, PillKind::originalKept})
        width = std::max(width, Pill::sizeOf(theme, kind).width());
    return width + theme.size(ThemeSize::space16);
}

} // namespace

ReportTable::ReportTable(const Theme& theme, const OperationReport& report, QWidget* parent)
    : QTableView(parent), theme_(&theme),
      hasNames_(
          std::ranges::any_of(report.items, [](const ItemResult& item) { return item.source.has_value(); })) {
    setModel(new Rows(report, this));
    setItemDelegate(new Cells(theme, this));
    setSelectionMode(NoSelection);
    setTabKeyNavigation(false);
    setFocusPolicy(Qt::StrongFocus);
    setShowGrid(false);
    setWordWrap(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    horizontalHeader()->hide();
    horizontalHeader()->setMinimumSectionSize(0);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(0);
    verticalHeader()->setDefaultSectionSize(theme.size(ThemeSize::reportRow));
    setAccessibleName(localized(summaryOf(report)));
}

QSize ReportTable::sizeHint() const {
    const int rows = model()->rowCount() * theme_->size(ThemeSize::reportRow) + 2 * frameWidth();
    return {theme_->size(ThemeSize::progressMinimumWidth),
            std::min(rows, theme_->size(ThemeSize::reportRows))};
}

QSize ReportTable::minimumSizeHint() const {
    return {0, sizeHint().height()};
}

void ReportTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    const int result = resultWidth(*theme_), rest = std::max(0, viewport()->width() - result);
    constexpr int nameShare = 45, whole = 100;
    const int name = hasNames_ ? rest * nameShare / whole : 0;
    setColumnWidth(nameColumn, name);
    setColumnWidth(resultColumn, result);
    setColumnWidth(reasonColumn, rest - name);
}

void ReportTable::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    if (!currentIndex().isValid()) setCurrentIndex(model()->index(0, 0));
    viewport()->update();
}

void ReportTable::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    viewport()->update();
}

void ReportTable::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (!hasFocus() || !currentIndex().isValid()) return;
    QPainter painter(viewport());
    const QRect row(0, rowViewportPosition(currentIndex().row()), viewport()->width(),
                    rowHeight(currentIndex().row()));
    OmbrelStyle::drawInnerRing(painter, *theme_, row, theme_->size(ThemeSize::radiusRow));
}

QString ReportTable::asText(const OperationReport& report) {
    QString text = localized(summaryOf(report)) + QLatin1Char('\n');
    for (const ItemResult& item : report.items) {
        if (item.outcome.isSuccess()) continue;
        const QString path =
            item.source ? QString::fromStdString(FileName::displayText(item.source->path())) : QString();
        QStringList line{path, Pill::textOf(pillOf(item.outcome)), reasonOf(item)};
        line.removeAll(QString());
        text += line.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    return text;
}

} // namespace ombrel
