#pragma once

#include <QAccessibleWidget>

#include <unordered_map>

namespace ombrel {

class TabStrip;

/// A tab strip as assistive programs see it: a list of page tabs, and behind them its buttons.
class TabStripAccessible final : public QAccessibleWidget {
public:
    /// Makes Qt ask here for all tab strips; once a program, any number of times.
    static void install();

    explicit TabStripAccessible(TabStrip& strip);
    ~TabStripAccessible() override;

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;

private:
    [[nodiscard]] TabStrip& strip() const;
    [[nodiscard]] int tabCount() const;
    mutable std::unordered_map<int, QAccessible::Id> tabs_;
};

} // namespace ombrel
