#include "ui/TabStripAccessible.h"

#include "base/FileName.h"
#include "browser/BrowserTabsModel.h"
#include "ui/PaintedItemAccessible.h"
#include "ui/TabStrip.h"

namespace ombrel {
namespace {

class Tab final : public PaintedItemAccessible<TabStrip> {
public:
    using PaintedItemAccessible::PaintedItemAccessible;

    bool isValid() const override { return view_ && tab() < view_->tabs().count(); }
    QAccessible::Role role() const override { return QAccessible::PageTab; }

    QString text(QAccessible::Text what) const override {
        if (!isValid()) return {};
        if (what == QAccessible::Name) return view_->titleOf(tab());
        if (what != QAccessible::Description) return {};
        const auto& folder = view_->tabs().tab(tab()).currentURL();
        return folder ? QString::fromStdString(FileName::displayText(folder->path())) : QString();
    }

    QRect rect() const override {
        if (!isValid()) return {};
        const QRect rect = view_->tabRect(tab());
        return {view_->mapToGlobal(rect.topLeft()), rect.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid) return state;
        state.selectable = state.focusable = true;
        state.selected = view_->tabs().selectedIndex() == tab();
        state.focused = view_->hasFocus() && view_->focusedTab() == tab();
        state.offscreen = view_->tabRect(tab()).isEmpty();
        return state;
    }

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (isValid() && action == pressAction()) view_->tabs().select(tab());
    }

private:
    [[nodiscard]] std::size_t tab() const noexcept { return static_cast<std::size_t>(index()); }
};

QAccessibleInterface* make(const QString&, QObject* object) {
    auto* const strip = qobject_cast<TabStrip*>(object);
    return strip ? new TabStripAccessible(*strip) : nullptr;
}

} // namespace

void TabStripAccessible::install() {
    // One is enough: a second one would be asked in vain.
    static const bool isInstalled = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    Q_UNUSED(isInstalled)
}

TabStripAccessible::TabStripAccessible(TabStrip& strip)
    : QAccessibleWidget(&strip, QAccessible::PageTabList) {}

TabStripAccessible::~TabStripAccessible() {
    for (const auto& [tab, id] : tabs_)
        QAccessible::deleteAccessibleInterface(id);
}

TabStrip& TabStripAccessible::strip() const {
    return *static_cast<TabStrip*>(widget());
}

int TabStripAccessible::tabCount() const {
    return static_cast<int>(strip().tabs().count());
}

int TabStripAccessible::childCount() const {
    return tabCount() + QAccessibleWidget::childCount();
}

QAccessibleInterface* TabStripAccessible::child(int index) const {
    if (index < 0) return nullptr;
    if (index >= tabCount()) return QAccessibleWidget::child(index - tabCount());
    if (const auto known = tabs_.find(index); known != tabs_.end())
        return QAccessible::accessibleInterface(known->second);
    auto* const tab = new Tab(strip(), index);
    tabs_.emplace(index, QAccessible::registerAccessibleInterface(tab));
    return tab;
}

int TabStripAccessible::indexOfChild(const QAccessibleInterface* child) const {
    if (const auto* const tab = dynamic_cast<const Tab*>(child)) return tab->index();
    const int button = QAccessibleWidget::indexOfChild(child);
    return button < 0 ? button : button + tabCount();
}

QAccessibleInterface* TabStripAccessible::childAt(int x, int y) const {
    const auto tab = strip().tabAt(strip().mapFromGlobal(QPoint(x, y)));
    return tab ? child(static_cast<int>(*tab)) : QAccessibleWidget::childAt(x, y);
}

QAccessibleInterface* TabStripAccessible::focusChild() const {
    return strip().hasFocus() ? child(static_cast<int>(strip().focusedTab()))
                              : QAccessibleWidget::focusChild();
}

} // namespace ombrel
