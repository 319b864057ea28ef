#pragma once

#include "base/FileURL.h"
#include "ui/TabStripLayout.h"

#include <QBasicTimer>
#include <QString>
#include <QVariantAnimation>
#include <QWidget>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace ombrel {

class AppSettings;
class BrowserModel;
class BrowserTabsModel;
class DropSpring;
class FolderDrop;
class GlyphButton;
class Theme;

/// The tabs of a window as one painted strip. The tabs shrink evenly, then the strip scrolls. It is one stop
/// of the keyboard: the arrow keys move between its tabs.
class TabStrip final : public QWidget {
    Q_OBJECT

public:
    /// All must outlive it.
    TabStrip(BrowserTabsModel& tabs, const Theme& theme, const AppSettings& settings,
             QWidget* parent = nullptr);
    ~TabStrip() override;

    [[nodiscard]] BrowserTabsModel& tabs() const noexcept { return *tabs_; }
    /// As it is seen; empty for a tab that is scrolled out of sight.
    [[nodiscard]] QRect tabRect(std::size_t tab) const;
    /// Empty where the tab shows no button for closing it.
    [[nodiscard]] QRect closeRect(std::size_t tab) const;
    [[nodiscard]] std::optional<std::size_t> tabAt(QPoint point) const;
    /// What a tab is called here: the name of its folder.
    [[nodiscard]] QString titleOf(std::size_t tab) const;
    /// The tab that the keyboard is on.
    [[nodiscard]] std::size_t focusedTab() const noexcept { return focused_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// Who takes what is dragged onto tabs; must outlive the strip. Without it nothing can be dragged there.
    void setDrops(FolderDrop& drops);

Q_SIGNALS:
    void copyPathRequested(const ombrel::FileURL& folder);
    /// Items were dropped on the empty strip; the folders among them are to be opened as tabs.
    void openFoldersRequested(const std::vector<ombrel::FileURL>& items);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    /// A tab as it is drawn: one that has been closed is still there while it narrows.
    struct Shown {
        BrowserModel* pane; ///< nothing once it is closed
        QString title;
        double share;     ///< of its width, now
        double shareFrom; ///< where its motion began
        [[nodiscard]] double goal() const noexcept { return pane ? 1 : 0; }
    };
    struct Spot {
        enum class Part : std::uint8_t { empty, tab, close, outside };
        Part part = Part::outside;
        std::size_t tab = 0;

        friend bool operator==(const Spot&, const Spot&) = default;
    };
    struct Held {
        Spot spot;
        Qt::MouseButton button;
        QPoint at;
        bool isDragging = false;
        std::size_t target = 0; ///< before which tab a dragged one is put
    };

    void takeSizes();
    void arrange();
    void placeButtons();
    void scrollTo(int scroll);
    void revealTab(std::size_t tab);
    void takeTab(std::size_t index);
    void dropTab(std::size_t index);
    void moveShown(std::size_t from, std::size_t to);
    void startMotion();
    void takeShares(double progress);
    void forgetGesture();
    void refreshTexts();
    [[nodiscard]] std::size_t shownIndex(std::size_t tab) const;
    [[nodiscard]] QRect shownRect(std::size_t shown) const;
    [[nodiscard]] QRect viewRect() const;
    [[nodiscard]] bool hasCloseButton(std::size_t tab) const;
    [[nodiscard]] Spot spotAt(QPoint point) const;
    [[nodiscard]] std::size_t gapAt(QPoint point) const;
    [[nodiscard]] QRect fromLeft(const QRect& rect) const;
    void hover(const Spot& spot);
    void drag(QPoint point);
    void finishDrag();
    void click(const Held& held);
    void closeByPointer(std::size_t tab);
    void focusTab(std::size_t tab);
    void showMenu(std::optional<std::size_t> tab, QPoint at);
    void duplicate(std::size_t tab);
    void closeOthers(std::size_t tab, std::size_t from);
    void showToolTip(QPoint at, QPoint globalAt);
    /// The folder that something is dragged over at a point.
    [[nodiscard]] std::optional<FileURL> takeDropSpot(QPoint point);
    void setDropSpot(const Spot& spot);
    [[nodiscard]] bool opensDropped(QDropEvent& event) const;
    void selectUnderDrag(std::size_t tab);
    void paintTab(QPainter& painter, std::size_t shown) const;
    void paintCloseButton(QPainter& painter, const Spot& spot, const QRect& rect, bool isActive,
                          const QColor& ink) const;

    BrowserTabsModel* tabs_;
    const Theme* theme_;
    const AppSettings* settings_;
    GlyphButton* newTab_;
    GlyphButton* scrollBack_;
    GlyphButton* scrollOn_;
    std::vector<Shown> shown_;
    TabStripLayout layout_;
    QVariantAnimation motion_;
    std::optional<int> heldWidth_; ///< so that the next button for closing comes under the pointer
    int scroll_ = 0;
    int wheelRest_ = 0;
    std::size_t focused_ = 0;
    bool showsRing_ = false;
    Spot hovered_;
    std::optional<Held> held_;
    Spot dropSpot_;
    DropSpring* spring_;
    FolderDrop* drops_ = nullptr;
    bool takesDrag_ = false; ///< the one that is over the strip
    QBasicTimer edgeScroll_;
};

} // namespace ombrel
