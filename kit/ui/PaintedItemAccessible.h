#pragma once

#include <QAccessible>
#include <QPointer>
#include <QStringList>
#include <QWidget>

namespace ombrel {

/// One of the things that a view paints, as assistive programs see it: a child of the view that has none
/// itself, with actions.
template <typename View>
class PaintedItemAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    /// `index` is its place among the view's children.
    PaintedItemAccessible(View& view, int index) : view_(&view), index_(index) {}

    [[nodiscard]] int index() const noexcept { return index_; }

    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return isValid() ? view_->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(view_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override {}
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

protected:
    QPointer<View> view_; ///< may go before the assistive program lets go of this

private:
    int index_;
};

} // namespace ombrel
