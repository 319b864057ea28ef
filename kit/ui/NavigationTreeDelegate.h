#pragma once

#include "browser/FolderTreeModel.h"

#include <QStyledItemDelegate>

#include <optional>

namespace ombrel {

class Theme;

/// The parts of one row of the navigation tree.
struct NavigationRowParts {
    QRect row;     ///< what is filled when it is selected or hovered
    QRect chevron; ///< large enough to be hit
    QRect icon;
    QRect text;
    QRect button; ///< of a row that has one
};

/// Paints the rows of the navigation tree and knows where their parts are.
class NavigationTreeDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// How a row is just now.
    struct Look {
        bool isShown = false;   ///< it stands for the folder that the pane shows
        bool isCurrent = false; ///< the keyboard is here
        bool isHovered = false;
        bool isButtonHovered = false;
        bool isButtonPressed = false;
        bool isDropTarget = false;
        bool isFlashing = false;
    };
    enum class Button : std::uint8_t { allow, eject };

    /// `theme` must outlive it.
    NavigationTreeDelegate(const FolderTreeModel& model, const Theme& theme, QObject* parent);

    [[nodiscard]] NavigationRowParts parts(const QRect& rect, const QModelIndex& index,
                                           Qt::LayoutDirection direction) const;
    [[nodiscard]] static std::optional<Button> buttonOf(const FolderTreeModel::Entry& entry);
    void paintRow(QPainter& painter, const QRect& rect, const QModelIndex& index, const Look& look,
                  Qt::LayoutDirection direction) const;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintGround(QPainter& painter, const QRect& row, const Look& look,
                     Qt::LayoutDirection direction) const;
    void paintIcon(QPainter& painter, const FolderTreeModel::Entry& entry, const QRect& box,
                   const QColor& ink) const;

    const FolderTreeModel* model_;
    const Theme* theme_;
};

} // namespace ombrel
