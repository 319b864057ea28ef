#pragma once

#include "browser/SelectionGestures.h"
#include "ui/EdgeScroll.h"

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QTimer>

#include <cstdint>
#include <optional>

class QMouseEvent;

namespace ombrel {

class FileView;

/// What the mouse does in a file view: hovering, selecting by click and check box, and the rubber band, which
/// scrolls at the edges and holds arriving items back for a while.
class FileViewPointer final : public QObject {
    Q_OBJECT

public:
    FileViewPointer(FileView& view, SelectionGestures& gestures);

    void press(QMouseEvent& event);
    void move(QMouseEvent& event);
    void release(QMouseEvent& event);
    void doubleClick(QMouseEvent& event);
    void leave();
    /// The view has got the focus by a click, which is no click on what is selected then.
    void noteFocusByClick() noexcept { hasJustFocused_ = true; }
    /// What is done meanwhile keeps a slow second click from renaming.
    void forgetSlowClick() { slowClick_.stop(); }
    /// To be called when other rows have come under the pointer.
    void rowsMoved();
    /// Gives a press or a band up.
    void cancel();

    [[nodiscard]] std::optional<std::size_t> hoveredRow() const noexcept { return hovered_; }
    /// Where the band is in the viewport; empty when there is none.
    [[nodiscard]] QRect band() const;
    /// Something was selected by its check box, so that all rows show theirs.
    [[nodiscard]] bool hasTickedBoxes() const noexcept { return hasTickedBoxes_; }
    void forgetTickedBoxes() noexcept { hasTickedBoxes_ = false; }

private:
    struct Press {
        QPoint at;           ///< in the viewport
        qint64 contentX = 0; ///< and in the contents, which may scroll meanwhile
        qint64 contentY = 0;
        Qt::MouseButton button = Qt::LeftButton;
        std::optional<ItemRef> item; ///< which a reload may give another row or take away
        bool selects = false;        ///< on release, unless something was dragged
        bool hasToggled = false;     ///< what a band has to take back, which toggles it itself
        SelectionGestures::How howToSelect = SelectionGestures::How::only;
        bool mayDrag = false;
        bool mayRename = false; ///< a click on the name of what alone was selected already
        bool mayBand = false;
        SelectionGestures::BandMode mode = SelectionGestures::BandMode::replace;
    };

    void pressRow(std::size_t row, const QMouseEvent& event);
    /// Where the item is now that the button was pressed on.
    [[nodiscard]] std::optional<std::size_t> pressedRow() const;
    void hover(QPoint at);
    void beginDrag();
    void beginBand();
    void moveBand();

    FileView* view_;
    SelectionGestures* gestures_;
    std::optional<std::size_t> hovered_;
    std::optional<Press> press_;
    QPoint pointer_;
    bool hasTickedBoxes_ = false;
    bool hasJustFocused_ = false;
    std::optional<std::size_t> slowRow_;
    QTimer slowClick_;
    EdgeScroll edges_;
    QTimer patience_;
};

} // namespace ombrel
