#include "ui/TabStripAccessible.h"

#include "base/FileName.h"
#include "browser/BrowserTabsModel.h"
#include "ui/TabStrip.h"

#include <QPointer>

namespace ombrel {
namespace {

class Tab final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    Tab(TabStrip& strip, int tab) : strip_(&strip), tab_(tab) {}

    [[nodiscard]] int index() const noexcept { return tab_; }

    bool isValid() const override { return strip_ && tab() < strip_->tabs().count(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return isValid() ? strip_->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(strip_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }

    QString text(QAccessible::Text what) const override {
        if (!isValid()) return {};
        if (what == QAccessible::Name) return strip_->titleOf(tab());
        if (what != QAccessible::Description) return {};
        const auto& folder = strip_->tabs().tab(tab()).currentURL();
        return folder ? QString::fromStdString(FileName::displayText(folder->path())) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override {
        if (!isValid()) return {};
        const QRect rect = strip_->tabRect(tab());
        return {strip_->mapToGlobal(rect.topLeft()), rect.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid) return state;
        state.selectable = state.focusable = true;
        state.selected = strip_->tabs().selectedIndex() == tab();
        state.focused = strip_->hasFocus() && strip_->focusedTab() == tab();
        state.offscreen = strip_->tabRect(tab()).isEmpty();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override {
        if (isValid() && action == pressAction()) strip_->tabs().select(tab());
    }

private:
    [[nodiscard]] std::size_t tab() const noexcept { return static_cast<std::size_t>(tab_); }
    QPointer<TabStrip> strip_;
    int tab_;
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
