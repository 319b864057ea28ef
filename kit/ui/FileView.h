#pragma once

#include "browser/BrowserModel.h"
#include "browser/KeyRouter.h"
#include "browser/RowRange.h"
#include "browser/SelectionGestures.h"
#include "browser/ThumbnailStore.h"
#include "browser/TypeAhead.h"
#include "ui/FileIcons.h"
#include "ui/FileViewDrop.h"
#include "ui/FileViewPointer.h"
#include "ui/KeyboardHold.h"
#include "ui/RenameEditor.h"
#include "ui/RowFacts.h"
#include "ui/ScrollExtent.h"

#include <QAbstractScrollArea>
#include <QImage>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QTimer>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

class AppSettings;
class FileActions;
enum class Setting : std::uint8_t;
class ClipboardService;
class LoadingLine;
class Theme;

/// A view of a pane's items that draws and lays out only what is on the screen, so that a million items cost
/// what a hundred do. What all such views share: scrolling by the pixel, selecting with mouse, keys and
/// rubber band, jumping to typed names, and holding still while items come and go. A view lays its items out
/// and paints one.
///
/// Coordinates of contents are pixels from the top left of all rows, downwards in 64 bits.
class FileView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// A rectangle of the contents.
    struct ContentRect {
        int x = 0;
        qint64 y = 0;
        int width = 0;
        qint64 height = 0;
        [[nodiscard]] qint64 bottom() const noexcept { return y + height; }
    };
    struct RowState {
        bool isSelected = false;
        bool isCurrent = false; ///< and its ring is to be seen
        bool isHovered = false;
        bool isActive = false; ///< the view holds the keyboard
        bool showsCheckBox = false;
        bool isDropTarget = false;
    };
    /// What a view looks at besides its pane. Each may be missing and must outlive the view.
    struct Sources {
        AppSettings* settings = nullptr;             ///< check boxes, compact rows, hidden endings, columns
        const ClipboardService* clipboard = nullptr; ///< what is cut
        ThumbnailStore* thumbnails = nullptr;
        FileActions* actions = nullptr; ///< renaming and dropping; without it there is neither
    };
    /// What of a row lies under the pointer.
    enum class Part : std::uint8_t { content, name, emptiness, checkBox };
    enum class Step : std::uint8_t { up, down, left, right };

    /// `model` and `theme` must outlive it.
    FileView(BrowserModel& model, const Theme& theme, QWidget* parent = nullptr);
    ~FileView() override;

    [[nodiscard]] BrowserModel& model() const noexcept { return *model_; }
    [[nodiscard]] const Theme& theme() const noexcept { return *theme_; }
    [[nodiscard]] const TypeAhead& typeAhead() const noexcept { return typeAhead_; }

    void setSources(const Sources& sources);
    [[nodiscard]] const Sources& sources() const noexcept { return sources_; }
    [[nodiscard]] bool hasCheckBoxes() const;

    /// Where keys that mean commands go, before what the view does with keys itself: moving, selecting and
    /// typing. Without it they mean nothing. `keys` must outlive the view.
    void setKeys(const KeyRouter& keys) noexcept { keys_ = &keys; }

    // ---- Renaming in place

    /// Begins to rename the row's item, revealed. Without actions nothing happens.
    void beginRename(std::size_t row);
    /// The field, while an item is being renamed.
    [[nodiscard]] RenameEditor* renameEditor() const noexcept { return editor_; }

    // ---- Dragging
    [[nodiscard]] const FileViewDrop& drop() const noexcept { return drop_; }
    [[nodiscard]] FileIcons& icons() noexcept { return icons_; }

    // ---- Where things are
    [[nodiscard]] qint64 offset() const noexcept { return extent_.offset(); }
    /// Moves the contents so that `offset` is at the top of the screen.
    void scrollTo(qint64 offset);
    /// Scrolls no more than is needed to show the row.
    void reveal(std::size_t row);
    /// The rows that are on the screen, whole or in part.
    [[nodiscard]] RowRange visibleRows() const;
    /// A row's place in the viewport.
    [[nodiscard]] QRect rowRect(std::size_t row) const;
    [[nodiscard]] std::optional<std::size_t> rowAt(QPoint viewportPoint) const;
    [[nodiscard]] ContentRect contentRect(QRect viewportRect) const;

    /// An item and how far down the screen its middle is.
    struct Anchor {
        std::size_t row = 0;
        int y = 0;
    };
    /// The item under a point of the viewport, or the nearest one in its line; nothing when there is none.
    [[nodiscard]] std::optional<Anchor> anchorAt(QPoint viewportPoint) const;
    /// Scrolls so that the item is where the anchor says.
    void restore(const Anchor& anchor);

    /// What a row shows.
    [[nodiscard]] const RowFacts::Facts& facts(std::size_t row) { return facts_.of(model_->items(), row); }
    /// How a row is read out.
    [[nodiscard]] QString spokenText(std::size_t row);
    /// Whether everything that is on the screen is known.
    [[nodiscard]] bool isSettled() const noexcept {
        return !facts_.isWaiting() && (!sources_.thumbnails || sources_.thumbnails->isSettled());
    }

    // ---- The layout, which a view gives

    /// Takes sizes from the theme and the settings again.
    virtual void layOut() {}
    [[nodiscard]] virtual qint64 contentHeight() const = 0;
    [[nodiscard]] virtual int contentWidth() const { return 0; }
    [[nodiscard]] virtual ContentRect contentRect(std::size_t row) const = 0;
    /// The rows that touch a rectangle of the contents, in ascending order.
    [[nodiscard]] virtual std::vector<RowRange> rowsTouching(const ContentRect& area) const = 0;
    /// Where the row's name stands in the viewport, and how far it may reach.
    struct NamePlace {
        QRect name;
        QRect room;
        Qt::Alignment alignment = Qt::AlignLeft;
    };
    [[nodiscard]] virtual NamePlace namePlace(std::size_t row) const = 0;
    [[nodiscard]] virtual Part partAt(std::size_t row, QPoint viewportPoint) = 0;
    /// Where a step leads from `row`; `row` itself where it leads nowhere. The list is not empty.
    [[nodiscard]] virtual std::size_t stepped(std::size_t row, Step step) const = 0;
    /// How many rows Page Down goes on; at least 1.
    [[nodiscard]] virtual std::size_t rowsPerPage() const = 0;
    /// How far one arrow key or a third of a wheel's notch goes.
    [[nodiscard]] virtual int scrollStep() const = 0;

Q_SIGNALS:
    /// Ctrl and the wheel, or two fingers, ask for larger (1) or smaller (-1) items at a point of the
    /// viewport.
    void zoomRequested(int step, QPoint at);
    /// A double click on a row.
    void openRequested(std::size_t row);
    /// A middle click on a row.
    void tabRequested(std::size_t row);
    void scrolled();
    /// What a drop would do where the drag is now; empty when there is none.
    void dropEffectChanged(const QString& effect);

protected:
    virtual void paintRow(QPainter& painter, std::size_t row, const QRect& rect, const RowState& state) = 0;
    /// Whether the row reaches over others, so that it is painted after them.
    [[nodiscard]] virtual bool isRaised(std::size_t, const RowState&) { return false; }
    /// A row's stand-in while nothing of a slow folder is there yet.
    virtual void paintPlaceholder(QPainter& painter, int index) = 0;
    /// What a row says under a resting pointer; nothing for most.
    [[nodiscard]] virtual QString toolTipAt(std::size_t row, QPoint viewportPoint);

    /// To be called when heights or widths have changed.
    void relayout();
    /// Runs `change`, after which items may lie elsewhere, and keeps what the user looks at in its place: the
    /// item of `anchor`, else the current one, else the first on the screen.
    template <typename Change>
    void relayoutAround(const Change& change, std::optional<Anchor> anchor = std::nullopt) {
        if (!anchor) anchor = anchorToKeep();
        change();
        relayout();
        if (anchor) restore(*anchor);
    }
    /// The row's thumbnail as far as there is one, fitting into `box` pixels. Asks for it otherwise.
    [[nodiscard]] QImage thumbnailOf(std::size_t row, QSize box);
    /// Selects or clears all, as the header's box does.
    void toggleAll() { gestures_.toggleAll(); }
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override { pointer_.press(*event); }
    void mouseMoveEvent(QMouseEvent* event) override { pointer_.move(*event); }
    void mouseReleaseEvent(QMouseEvent* event) override { pointer_.release(*event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { pointer_.doubleClick(*event); }
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    friend class FileViewPointer;

    void connectModel();
    void beginLocation();
    void keepPlace();
    void takeItems();
    void showState();
    /// Tells assistive programs, where there are any.
    void announceRows();
    void announceCurrent();
    void announceSelection();
    void placeBars();
    [[nodiscard]] QRect onScreen(const ContentRect& rect) const;
    [[nodiscard]] RowState stateOf(std::size_t row) const;
    [[nodiscard]] std::optional<Anchor> anchorToKeep() const;
    void paintBand(QPainter& painter) const;
    void askForThumbnails();
    void placeEditor();
    void endRename(RenameEditor* editor, RenameEditor::Then then);
    void zoomByWheel(const QWheelEvent& event);
    void takeSetting(Setting setting);
    bool endByKey(const KeyStroke& stroke);
    bool moveByKey(const KeyStroke& stroke);
    bool typeByKey(const KeyStroke& stroke, const QString& text);
    /// The row that a key leads to; nothing when it leads nowhere.
    [[nodiscard]] std::optional<std::size_t> rowLedTo(const KeyStroke& stroke) const;
    /// From now on what is on the screen keeps its place.
    void touch() noexcept { isTouched_ = true; }

    BrowserModel* model_;
    const Theme* theme_;
    const KeyRouter* keys_ = nullptr;
    SelectionGestures gestures_;
    TypeAhead typeAhead_;
    RowFacts facts_;
    FileIcons icons_;
    FileViewPointer pointer_;
    LoadingLine* loadingLine_;
    ScrollExtent extent_;
    bool isPlacingBars_ = false;

    /// Until the user has done something the view stays at its top, whatever comes in above.
    bool isTouched_ = false;
    qint64 distanceKept_ = 0; ///< from the top of the screen, of the row that is kept in its place
    std::string nameKept_;    ///< of that row
    FileSort sortShown_;
    QTimer placeholderDelay_;
    bool showsPlaceholders_ = false;
    Sources sources_;
    QPointer<RenameEditor> editor_;
    std::optional<ItemRef> renamed_; ///< the item that the editor is for
    FileViewDrop drop_;
    KeyboardHold keyboard_{*this};
    std::vector<ThumbnailStore::Request> painted_; ///< the thumbnails of this painting
    std::vector<ThumbnailStore::Request> wanted_;  ///< and those that were asked for last
    bool paintsAll_ = false;
    int zoomRest_ = 0; ///< of Ctrl and a wheel's turning, too little for a step
    double pinch_ = 0;
    int wheelRest_ = 0; ///< of a wheel's turning, too little for a pixel
};

} // namespace ombrel
