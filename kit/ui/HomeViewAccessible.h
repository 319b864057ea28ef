#pragma once

#include "ui/HomeLayout.h"

#include <QAccessibleWidget>

#include <vector>

namespace ombrel {

class HomeView;

/// The home page as assistive programs see it: a list of its heads, tiles, rows and cards. Items are made as
/// they are asked for.
class HomeViewAccessible final : public QAccessibleWidget {
public:
    /// Makes Qt ask here for all home pages; once a program, any number of times.
    static void install();
    /// To be called when the items stand for other things, and when the keyboard has gone to one of them.
    static void forgetItems(HomeView& view);
    static void tellFocus(HomeView& view, const HomeItem& item);

    explicit HomeViewAccessible(HomeView& view);
    ~HomeViewAccessible() override;

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;

private:
    [[nodiscard]] HomeView& view() const;
    [[nodiscard]] QAccessibleInterface* of(const HomeItem& item) const;
    void forget();
    mutable std::vector<QAccessible::Id> items_; ///< 0 for one that nobody has asked for
};

} // namespace ombrel
