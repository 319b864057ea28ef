#pragma once

#include <QAccessibleWidget>

#include <unordered_map>

namespace ombrel {

class FileView;

/// A file view as assistive programs see it: a list with one item a row, and behind them the widgets in it:
/// its header, and what lies over the rows. Items are made as they are asked for.
class FileViewAccessible final : public QAccessibleWidget {
public:
    /// Makes Qt ask here for all file views; once a program, any number of times.
    static void install();

    explicit FileViewAccessible(FileView& view);
    ~FileViewAccessible() override;

    /// To be called when the rows stand for other items.
    void forgetRows();

    [[nodiscard]] QString text(QAccessible::Text what) const override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;

private:
    [[nodiscard]] FileView& view() const;
    [[nodiscard]] int rowCount() const;
    mutable std::unordered_map<int, QAccessible::Id> rows_;
};

} // namespace ombrel
