#pragma once

#include "browser/FolderTreeModel.h"
#include "ui/NavigationTreeDelegate.h"
#include "ui/PlaceDrop.h"
#include "ui/PlaceIntents.h"
#include "ui/PlaceMenu.h"

#include <QTimer>
#include <QTreeView>

#include <optional>

namespace ombrel {

class Theme;

/// The navigation tree of a window. What the user wants goes out through the intents and the HomeModel.
class NavigationTree final : public QTreeView {
    Q_OBJECT

public:
    /// Both must outlive it.
    NavigationTree(FolderTreeModel& model, const Theme& theme, PlaceIntents intents,
                   QWidget* parent = nullptr);

    [[nodiscard]] FolderTreeModel& folders() const noexcept { return *model_; }
    /// Where the parts of a row are in the viewport.
    [[nodiscard]] NavigationRowParts partsOf(const QModelIndex& index) const;
    /// The line between two pins where a drop would pin; empty when it would not.
    [[nodiscard]] QRect insertionLine() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void updateGeometries() override;

private:
    enum class Part : std::uint8_t { none, row, chevron, button };

    void takeLook();
    void showCurrent();
    void lookAtPainted();
    void toggle(const QModelIndex& index);
    void activate(const QModelIndex& index, Qt::KeyboardModifiers modifiers);
    void pressButton(const QModelIndex& index);
    void fillMenu(QMenu& menu, const QModelIndex& index) const;
    [[nodiscard]] Part partAt(const QModelIndex& index, const QPoint& at) const;
    void hover(const QPoint& at);
    void beginDrag(const QModelIndex& index);
    [[nodiscard]] PlaceDrop::Target dropTargetAt(const QPoint& at, bool isPin) const;
    [[nodiscard]] std::optional<std::size_t> insertionAt(const QPoint& at, bool isPin) const;

    FolderTreeModel* model_;
    const Theme* theme_;
    const PlaceIntents intents_;
    PlaceMenu menus_;
    NavigationTreeDelegate* delegate_;
    QPersistentModelIndex hovered_;
    Part hoveredPart_ = Part::none;
    QPersistentModelIndex pressed_;
    Part pressedPart_ = Part::none;
    QPoint pressedAt_;
    Qt::MouseButton pressedButton_ = Qt::NoButton;
    PlaceDrop* drag_;
    QTimer looking_;
    mutable QList<QPersistentModelIndex> painted_; ///< since the model was last asked to look into them
};

} // namespace ombrel
