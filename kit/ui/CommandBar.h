#pragma once

#include <QWidget>

#include <vector>

class QMenu;

namespace ombrel {

class BarButton;
class BrowserTabsModel;
class Theme;
class ViewModeActions;
class WindowActions;
class WindowMenus;

/// The row of the commands that are used most. When it is short of room the labels go first, from the right,
/// and then whole groups move into the menu "More", from the right too.
class CommandBar final : public QWidget {
    Q_OBJECT

public:
    /// `theme`, the actions and the menus must outlive it.
    CommandBar(const Theme& theme, WindowActions& actions, WindowMenus& menus, QWidget* parent = nullptr);

    /// Gives the keyboard to its first button that can be used.
    void focusFirst();
    /// Stands at the right end, for as long as it is visible there; the bar does not take it over.
    void setTail(QWidget* tail);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// Buttons that stand together and leave together.
    struct Group {
        std::vector<BarButton*> buttons;
    };

    void makeButtons(const Theme& theme, WindowActions& actions);
    void refreshMenus();
    void followViewMode(const ViewModeActions& modes);
    void arrange();
    [[nodiscard]] int widthOf(std::size_t groupCount) const;
    [[nodiscard]] bool fits(std::size_t groupCount) const;
    void putLeftOutInto(QMenu& menu) const;
    [[nodiscard]] int between() const;

    const Theme* theme_;
    WindowActions* actions_;
    WindowMenus* menus_;
    BarButton *new_ = nullptr, *sort_ = nullptr, *view_ = nullptr, *more_ = nullptr, *details_ = nullptr;
    std::vector<Group> groups_;
    std::size_t groupsShown_ = 0;
    std::vector<int> separators_; ///< where lines between groups are drawn
    QWidget* tail_ = nullptr;
};

} // namespace ombrel
