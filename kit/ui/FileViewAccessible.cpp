#include "ui/FileViewAccessible.h"

#include "browser/SelectionGestures.h"
#include "ui/FileView.h"
#include "ui/LocalizedText.h"
#include "ui/PaintedItemAccessible.h"

#include <algorithm>
#include <climits>

namespace ombrel {
namespace {

using Place = BrowserModel::Place;

/// More rows than an assistive program has on its mind at a time.
constexpr std::size_t keptRows = 4096;

class Row final : public PaintedItemAccessible<FileView> {
public:
    using PaintedItemAccessible::PaintedItemAccessible;

    bool isValid() const override { return view_ && row() < view_->model().items().size(); }
    QAccessible::Role role() const override { return QAccessible::ListItem; }

    QString text(QAccessible::Text what) const override {
        return isValid() && what == QAccessible::Name ? view_->spokenText(row()) : QString();
    }

    QRect rect() const override {
        if (!isValid()) return {};
        const QRect inViewport = view_->rowRect(row());
        return {view_->viewport()->mapToGlobal(inViewport.topLeft()), inViewport.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid) return state;
        const bool isSelected = view_->model().selection().contains(row());
        state.selectable = state.multiSelectable = state.focusable = state.checkable = true;
        state.selected = state.checked = isSelected;
        state.focused = view_->hasFocus() && view_->model().row(Place::current) == row();
        state.offscreen = !view_->visibleRows().contains(row());
        return state;
    }

    QStringList actionNames() const override { return {pressAction(), toggleAction()}; }
    void doAction(const QString& action) override {
        if (!isValid()) return;
        if (action == pressAction())
            Q_EMIT view_->openRequested(row());
        else if (action == toggleAction())
            SelectionGestures(view_->model()).select(row(), SelectionGestures::How::toggle);
    }

private:
    [[nodiscard]] std::size_t row() const noexcept { return static_cast<std::size_t>(index()); }
};

QAccessibleInterface* make(const QString&, QObject* object) {
    auto* const view = qobject_cast<FileView*>(object);
    return view ? new FileViewAccessible(*view) : nullptr;
}

} // namespace

void FileViewAccessible::install() {
    QAccessible::installFactory(make);
}

FileViewAccessible::FileViewAccessible(FileView& view) : QAccessibleWidget(&view, QAccessible::List) {}

FileViewAccessible::~FileViewAccessible() {
    forgetRows();
}

FileView& FileViewAccessible::view() const {
    return *static_cast<FileView*>(widget());
}

void FileViewAccessible::forgetRows() {
    for (const auto& [row, id] : rows_)
        QAccessible::deleteAccessibleInterface(id);
    rows_.clear();
}

QString FileViewAccessible::text(QAccessible::Text what) const {
    return what == QAccessible::Name ? localized("ui.accessible.files") : QAccessibleWidget::text(what);
}

int FileViewAccessible::rowCount() const {
    constexpr std::size_t mostRows = INT_MAX / 2; // the widgets come on top
    return static_cast<int>(std::min(view().model().items().size(), mostRows));
}

int FileViewAccessible::childCount() const {
    return rowCount() + QAccessibleWidget::childCount();
}

QAccessibleInterface* FileViewAccessible::child(int index) const {
    if (index < 0) return nullptr;
    if (index >= rowCount()) return QAccessibleWidget::child(index - rowCount());
    if (const auto known = rows_.find(index); known != rows_.end())
        return QAccessible::accessibleInterface(known->second);
    if (rows_.size() >= keptRows) const_cast<FileViewAccessible*>(this)->forgetRows();
    auto* const row = new Row(view(), index);
    rows_.emplace(index, QAccessible::registerAccessibleInterface(row));
    return row;
}

int FileViewAccessible::indexOfChild(const QAccessibleInterface* child) const {
    if (const auto* const row = dynamic_cast<const Row*>(child)) return row->index();
    const int widget = QAccessibleWidget::indexOfChild(child);
    return widget < 0 ? widget : widget + rowCount();
}

QAccessibleInterface* FileViewAccessible::childAt(int x, int y) const {
    const QPoint at = view().viewport()->mapFromGlobal(QPoint(x, y));
    // What lies over the rows hides them.
    const auto row = view().viewport()->childAt(at) ? std::nullopt : view().rowAt(at);
    if (row) return child(static_cast<int>(*row));
    for (int i = rowCount(); i < childCount(); ++i)
        if (auto* const widget = child(i); !widget->state().invisible && widget->rect().contains(x, y))
            return widget;
    return nullptr;
}

QAccessibleInterface* FileViewAccessible::focusChild() const {
    const auto current = view().model().row(Place::current);
    return view().hasFocus() && current ? child(static_cast<int>(*current)) : QAccessibleWidget::focusChild();
}

} // namespace ombrel
