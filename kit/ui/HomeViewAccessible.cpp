#include "ui/HomeViewAccessible.h"

#include "ui/HomeTexts.h"
#include "ui/HomeView.h"
#include "ui/PaintedItemAccessible.h"

#include <algorithm>

namespace ombrel {
namespace {

using Part = HomeItem::Part;

class Item final : public PaintedItemAccessible<HomeView> {
public:
    Item(HomeView& view, const HomeItem& item, int index) : PaintedItemAccessible(view, index), item_(item) {}

    bool isValid() const override { return view_ && !view_->rectOf(item_).isEmpty(); }
    QAccessible::Role role() const override {
        return item_.part == Part::entry ? QAccessible::ListItem : QAccessible::Button;
    }
    QString text(QAccessible::Text what) const override {
        return isValid() && what == QAccessible::Name ? HomeTexts::spoken(view_->model(), item_) : QString();
    }
    QRect rect() const override {
        if (!isValid()) return {};
        const QRect inViewport = view_->rectOf(item_);
        return {view_->viewport()->mapToGlobal(inViewport.topLeft()), inViewport.size()};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid) return state;
        state.focusable = true;
        state.focused = view_->hasFocus() && view_->current() == item_;
        state.selectable = item_.part == Part::entry;
        state.selected = state.selectable && view_->isSelected(item_);
        state.expandable = item_.part == Part::head;
        state.expanded = state.expandable && !view_->model().isFolded(item_.section);
        state.collapsed = state.expandable && !state.expanded;
        state.offscreen = !view_->viewport()->rect().intersects(view_->rectOf(item_));
        return state;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& action) override {
        if (!isValid()) return;
        if (action == pressAction()) view_->activate(item_);
        if (action == setFocusAction()) {
            view_->setFocus();
            view_->setCurrent(item_);
        }
    }

private:
    HomeItem item_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
    auto* const view = qobject_cast<HomeView*>(object);
    return view ? new HomeViewAccessible(*view) : nullptr;
}

HomeViewAccessible* interfaceOf(HomeView& view) {
    // Nobody is told of what nobody has asked for.
    if (!QAccessible::isActive()) return nullptr;
    return dynamic_cast<HomeViewAccessible*>(QAccessible::queryAccessibleInterface(&view));
}

} // namespace

void HomeViewAccessible::install() {
    QAccessible::installFactory(make);
}

void HomeViewAccessible::forgetItems(HomeView& view) {
    if (auto* const present = interfaceOf(view)) present->forget();
}

void HomeViewAccessible::tellFocus(HomeView& view, const HomeItem& item) {
    const auto* const present = interfaceOf(view);
    const auto* const child = present ? dynamic_cast<const Item*>(present->of(item)) : nullptr;
    if (!child) return;
    QAccessibleEvent event(&view, QAccessible::Focus);
    event.setChild(child->index());
    QAccessible::updateAccessibility(&event);
}

HomeViewAccessible::HomeViewAccessible(HomeView& view) : QAccessibleWidget(&view, QAccessible::List) {}

HomeViewAccessible::~HomeViewAccessible() {
    forget();
}

HomeView& HomeViewAccessible::view() const {
    return *static_cast<HomeView*>(widget());
}

void HomeViewAccessible::forget() {
    for (const auto id : items_)
        if (id) QAccessible::deleteAccessibleInterface(id);
    items_.clear();
}

int HomeViewAccessible::childCount() const {
    return static_cast<int>(view().homeLayout().items().size());
}

QAccessibleInterface* HomeViewAccessible::child(int index) const {
    if (index < 0 || index >= childCount()) return nullptr;
    items_.resize(static_cast<std::size_t>(childCount()));
    auto& id = items_[static_cast<std::size_t>(index)];
    if (!id) {
        const auto& item = view().homeLayout().items()[static_cast<std::size_t>(index)].item;
        id = QAccessible::registerAccessibleInterface(new Item(view(), item, index));
    }
    return QAccessible::accessibleInterface(id);
}

QAccessibleInterface* HomeViewAccessible::of(const HomeItem& item) const {
    const auto& items = view().homeLayout().items();
    const auto found = std::ranges::find(items, item, &HomeLayout::Placed::item);
    return found == items.end() ? nullptr : child(static_cast<int>(found - items.begin()));
}

int HomeViewAccessible::indexOfChild(const QAccessibleInterface* child) const {
    const auto* const item = dynamic_cast<const Item*>(child);
    return item ? item->index() : -1;
}

QAccessibleInterface* HomeViewAccessible::childAt(int x, int y) const {
    const auto item = view().itemAt(view().viewport()->mapFromGlobal(QPoint(x, y)));
    return item ? of(*item) : nullptr;
}

QAccessibleInterface* HomeViewAccessible::focusChild() const {
    return view().hasFocus() && view().current() ? of(*view().current()) : nullptr;
}

} // namespace ombrel
