#pragma once

#include "browser/AddressCrumbs.h"

#include <QString>
#include <QWidget>

#include <cstddef>
#include <optional>
#include <vector>

namespace ombrel {

class DropSpring;
class FolderDrop;
class GlyphButton;
class Theme;

/// An address as a row of its folders: each a button that goes there, and after it one that opens the list of
/// its subfolders. Crumbs that do not fit collapse, the first ones first, into a button with a menu; the last
/// one is cut short when it alone does not fit.
///
/// To the keyboard it is one stop; the arrow keys move inside it.
class CrumbBar final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit CrumbBar(const Theme& theme, QWidget* parent = nullptr);

    void setCrumbs(const std::vector<AddressCrumb>& crumbs);
    /// One crumb that is no folder: what is shown is called `text`.
    void setOnly(const QString& text);
    [[nodiscard]] const std::vector<AddressCrumb>& crumbs() const noexcept { return crumbs_; }

    /// Who takes what is dragged onto crumbs; must outlive the bar. Without it nothing can be dragged there.
    void setDrops(FolderDrop& drops);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void folderChosen(const ombrel::FileURL& folder);
    /// The crumb of `setOnly` was clicked.
    void onlyChosen();
    /// The list of a crumb's subfolders is wanted, under `below`, which is where it stands on the screen.
    void childrenRequested(std::size_t crumb, const QRect& below);
    void menuRequested(std::size_t crumb, QPoint at);
    /// A click beside the crumbs.
    void emptySpaceClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    class Crumb;
    /// A crumb's two buttons; the second is absent where there are no subfolders to list.
    struct Pair {
        Crumb* name;
        GlyphButton* chevron;
    };

    void rebuild(const std::vector<QString>& names);
    void arrange();
    void showCollapsed();
    void moveFocus(const QWidget* from, int step);
    void requestChildren(std::size_t crumb);
    [[nodiscard]] std::optional<std::size_t> pairOf(const QObject* button) const;
    [[nodiscard]] std::optional<std::size_t> crumbAt(QPoint point) const;
    [[nodiscard]] QRect shapeOf(std::size_t crumb) const;
    /// The folder that something is dragged over at a point.
    [[nodiscard]] std::optional<FileURL> takeDropTarget(QPoint point);
    void setDropTarget(std::optional<std::size_t> crumb);
    void openUnderDrag(std::size_t crumb);

    const Theme* theme_;
    GlyphButton* collapsed_;
    std::vector<AddressCrumb> crumbs_; ///< none where the only crumb is no folder
    std::vector<Pair> pairs_;
    std::size_t firstShown_ = 0;
    bool isPressed_ = false; ///< beside the crumbs
    std::optional<std::size_t> dropTarget_;
    DropSpring* spring_;
    FolderDrop* drops_ = nullptr;
    bool takesDrag_ = false; ///< the one that is over the bar
};

} // namespace ombrel
