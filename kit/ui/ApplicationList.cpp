#include "ui/ApplicationList.h"

#include "ui/ApplicationIcon.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QAbstractListModel>
#include <QIcon>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace ombrel {

class ApplicationList::Model final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    struct Entry {
        DesktopApplication application;
        QString name;
        bool isRecommended = false;
    };

    void setEntries(std::vector<Entry> entries) {
        entries_ = std::move(entries);
        filter(text_);
    }
    void filter(const QString& text) {
        beginResetModel();
        text_ = text;
        rows_.clear();
        add(true, "ui.chooser.recommended");
        // Without recommended ones there is nothing to tell them from.
        add(false, rows_.empty() ? std::string_view() : "ui.chooser.others");
        endResetModel();
    }

    /// Nothing for a heading.
    [[nodiscard]] const Entry* entry(int row) const {
        if (row < 0 || row >= rowCount()) return nullptr;
        const Row& shown = rows_[static_cast<std::size_t>(row)];
        return shown.heading.isEmpty() ? &entries_[shown.entry] : nullptr;
    }
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole) return {};
        const Entry* const shown = entry(index.row());
        return shown ? shown->name : rows_[static_cast<std::size_t>(index.row())].heading;
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        if (!entry(index.row())) return Qt::NoItemFlags;
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    }

private:
    struct Row {
        QString heading; ///< empty for an application
        std::size_t entry = 0;
    };

    void add(bool areRecommended, std::string_view headingKey) {
        bool isFirst = !headingKey.empty();
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            if (entries_[i].isRecommended != areRecommended) continue;
            if (!entries_[i].name.contains(text_, Qt::CaseInsensitive)) continue;
            if (std::exchange(isFirst, false)) rows_.push_back({localized(headingKey), 0});
            rows_.push_back({{}, i});
        }
    }

    std::vector<Entry> entries_;
    std::vector<Row> rows_;
    QString text_;
};

class ApplicationList::Rows final : public QStyledItemDelegate {
public:
    Rows(const Theme& theme, const Model& model, QObject* parent)
        : QStyledItemDelegate(parent), theme_(&theme), model_(&model) {}

    /// To be called when the rows stand for other applications, or look otherwise.
    void forget() { icons_.clear(); }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {theme_->size(ThemeSize::menuMinimumWidth), theme_->size(ThemeSize::row)};
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const auto* const entry = model_->entry(index.row());
        const QRect row =
            option.rect.adjusted(theme_->size(ThemeSize::space4), 0, -theme_->size(ThemeSize::space4), 0);
        if (entry) paintGround(*painter, option, row);
        QRect words = row.adjusted(theme_->size(ThemeSize::space8), 0, -theme_->size(ThemeSize::space8), 0);
        if (entry) {
            const int side = theme_->size(ThemeSize::listIcon);
            const QRect box(words.left(), row.center().y() - side / 2, side, side);
            icon(entry->application).paint(painter, QStyle::visualRect(option.direction, row, box));
            words.setLeft(box.right() + 1 + theme_->size(ThemeSize::space8));
        }
        painter->setFont(theme_->font(entry ? ThemeFont::body : ThemeFont::caption));
        const bool isChosen = entry && option.state & QStyle::State_Selected;
        painter->setPen(theme_->color(!entry     ? ThemeColor::textSecondary
                                      : isChosen ? ThemeColor::onSelection
                                                 : ThemeColor::text));
        painter->drawText(
            QStyle::visualRect(option.direction, row, words),
            static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) | Qt::TextSingleLine,
            painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, words.width()));
        painter->restore();
    }

private:
    void paintGround(QPainter& painter, const QStyleOptionViewItem& option, const QRect& row) const {
        const bool isChosen = option.state & QStyle::State_Selected;
        const bool isHovered = option.state & QStyle::State_MouseOver;
        if (!isChosen && !isHovered) return;
        const int radius = theme_->size(ThemeSize::radiusRow);
        painter.setPen(Qt::NoPen);
        const auto ground = !isChosen   ? ThemeColor::hover
                            : isHovered ? ThemeColor::selectionHover
                                        : ThemeColor::selection;
        painter.setBrush(theme_->color(ground));
        painter.drawRoundedRect(row, radius, radius);
        if (option.state & QStyle::State_HasFocus)
            OmbrelStyle::drawInnerRing(painter, *theme_, row, radius, ground);
    }
    /// An icon is looked for when its row is first seen.
    const QIcon& icon(const DesktopApplication& application) const {
        const auto known = std::ranges::find(icons_, application.file, &Known::first);
        if (known != icons_.end()) return known->second;
        return icons_.emplace_back(application.file, applicationIcon(*theme_, application)).second;
    }

    using Known = std::pair<FileURL, QIcon>;
    const Theme* theme_;
    const Model* model_;
    mutable std::vector<Known> icons_;
};

ApplicationList::ApplicationList(const Theme& theme, QWidget* parent)
    : QListView(parent), theme_(&theme), model_(new Model(this)) {
    setModel(model_);
    auto* const rows = new Rows(theme, *model_, this);
    setItemDelegate(rows);
    setUniformItemSizes(true);
    setMouseTracking(true);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setAccessibleName(localized("ui.chooser.list"));
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &ApplicationList::chosenChanged);
    connect(model_, &QAbstractItemModel::modelReset, this, &ApplicationList::chosenChanged);
    connect(&theme, &Theme::changed, this, [this, rows] {
        rows->forget();
        scheduleDelayedItemsLayout();
    });
}

void ApplicationList::setApplications(const std::vector<DesktopApplication>& recommended,
                                      const std::vector<DesktopApplication>& all) {
    std::vector<Model::Entry> entries;
    const auto add = [&](const DesktopApplication& application, bool isRecommended) {
        const bool isThere = std::ranges::any_of(
            entries, [&](const Model::Entry& entry) { return entry.application.file == application.file; });
        if (!isThere)
            entries.push_back({application, QString::fromStdString(application.name), isRecommended});
    };
    for (const auto& application : recommended)
        add(application, true);
    for (const auto& application : all)
        add(application, false);
    model_->setEntries(std::move(entries));
}

void ApplicationList::filter(const QString& text) {
    model_->filter(text);
    if (!text.isEmpty()) chooseFirst();
}

void ApplicationList::chooseFirst() {
    if (chosen()) return;
    for (int row = 0; row < model_->rowCount(); ++row) {
        if (!model_->entry(row)) continue;
        setCurrentIndex(model_->index(row));
        // With the heading above it.
        if (row <= 1) scrollToTop();
        return;
    }
}

std::size_t ApplicationList::shownCount() const {
    std::size_t count = 0;
    for (int row = 0; row < model_->rowCount(); ++row)
        count += model_->entry(row) ? 1 : 0;
    return count;
}

const DesktopApplication* ApplicationList::chosen() const {
    const auto rows = selectionModel()->selectedIndexes();
    const auto* const entry = rows.isEmpty() ? nullptr : model_->entry(rows.front().row());
    return entry ? &entry->application : nullptr;
}

} // namespace ombrel
