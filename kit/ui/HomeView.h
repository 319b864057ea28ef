#pragma once

#include "ui/HomeLayout.h"
#include "ui/HomePainter.h"
#include "ui/KeyboardHold.h"
#include "ui/PlaceDrop.h"
#include "ui/PlaceIntents.h"
#include "ui/PlaceMenu.h"

#include <QAbstractScrollArea>

#include <optional>

class QMenu;

namespace ombrel {

class KeyRouter;
class Theme;

/// The home page: pinned folders as tiles, locations as rows, volumes as cards. What the user wants goes out
/// through the intents and the HomeModel.
///
/// One click selects, a double click opens. Nothing on the page is a widget.
class HomeView final : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// Both must outlive it.
    HomeView(HomeModel& model, const Theme& theme, PlaceIntents intents, QWidget* parent = nullptr);

    [[nodiscard]] const HomeModel& model() const noexcept { return *model_; }
    [[nodiscard]] const HomeLayout& homeLayout() const noexcept { return layout_; }
    /// Where an item is in the viewport; empty when there is no such item.
    [[nodiscard]] QRect rectOf(const HomeItem& item) const;
    [[nodiscard]] std::optional<HomeItem> itemAt(const QPoint& at) const;
    [[nodiscard]] const std::optional<HomeItem>& current() const noexcept { return current_; }
    [[nodiscard]] bool isSelected(const HomeItem& item) const noexcept { return item == selected_; }
    void setCurrent(const HomeItem& item);
    /// What a double click and Enter do.
    void activate(const HomeItem& item, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// The line in front of a tile where a drop would pin; empty when it would not.
    [[nodiscard]] QRect insertionLine() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void arrange();
    void takeChange();
    [[nodiscard]] int offset() const;
    [[nodiscard]] QPoint toContents(const QPoint& inViewport) const;
    [[nodiscard]] bool isOnButton(const HomeItem& item, const QPoint& at) const;
    void hover(const QPoint& at);
    void reveal(const HomeItem& item);
    void pressButton(const HomeItem& item);
    void move(HomeLayout::Direction direction);
    void movePage(int pages);
    [[nodiscard]] std::optional<FileURL> folderOf(const HomeItem& item) const;
    [[nodiscard]] std::optional<PlaceMenu::Place> placeOf(const HomeItem& item) const;
    void showMenu(const HomeItem& item, const QPoint& at);
    void beginDrag(const HomeItem& item);
    [[nodiscard]] PlaceDrop::Target dropTargetAt(const QPoint& at, bool isPin) const;
    void openUnderDrag(const QPoint& at);
    void announceFocus();

    HomeModel* model_;
    const Theme* theme_;
    const PlaceIntents intents_;
    PlaceMenu menus_;
    HomePainter painter_;
    KeyboardHold keyboard_{*this};
    HomeLayout layout_;
    std::optional<HomeItem> current_;
    std::optional<HomeItem> selected_;
    std::optional<HomeItem> hovered_;
    std::optional<HomeItem> pressed_;
    QPoint pressedAt_;
    Qt::MouseButton pressedButton_ = Qt::NoButton;
    bool isButtonHovered_ = false;
    bool isButtonPressed_ = false;
    PlaceDrop* drag_;
};

} // namespace ombrel
