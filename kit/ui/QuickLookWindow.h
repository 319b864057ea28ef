#pragma once

#include "browser/QuickLookContent.h"
#include "listing/FileItem.h"
#include "ui/FileView.h"

#include <QDialog>
#include <QPointer>
#include <QTimer>

#include <cstddef>
#include <functional>
#include <optional>

class QKeyEvent;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;

namespace ombrel {

class ElidedLabel;
class GlyphButton;
class PaneArea;
class QuickLookPicture;
class TextLabel;
class Theme;
class ThumbnailStore;

/// A look at the current item of a pane, in a window without a frame over the pane's own, which goes on
/// working. Arrows move the selection behind it, or go through the selected items where there are several;
/// what is shown follows, also when items change or go. It closes when the pane shows another place or
/// another tab is active. Deletes itself.
class QuickLookWindow final : public QDialog {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme; ///< must outlive the window
        PaneArea& area;
        ThumbnailStore* thumbnails = nullptr; ///< if given, must outlive the window
        /// Opens the item of a row, when this window has closed.
        std::function<void(std::size_t row)> open = {};
    };

    QuickLookWindow(const Setting& setting, QWidget& browser);
    /// Shows one over the window, or closes the one that it has.
    static void toggle(const Setting& setting, QWidget& browser);

    [[nodiscard]] const QuickLookContent& content() const noexcept { return content_; }
    [[nodiscard]] const QuickLookPicture& picture() const noexcept { return *picture_; }
    [[nodiscard]] QPlainTextEdit& text() const noexcept { return *text_; }
    /// "2 of 14".
    [[nodiscard]] QString position() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut();
    void layOutHeader();
    void takeLook();
    void followPane();
    void appear();
    void place();
    void followLater();
    void follow();
    [[nodiscard]] std::optional<std::size_t> shownRow() const;
    [[nodiscard]] bool isAmongSeveral() const;
    void refreshPosition(std::size_t row);
    void look(std::size_t row);
    void lookAgainIfLarger();
    void showContent();
    void showText();
    void showPage(QWidget* page);
    bool press(const QKeyEvent& event);
    void step(FileView::Step step);
    [[nodiscard]] std::size_t stepped(std::size_t row, FileView::Step step) const;
    void openShown();
    void showTextMenu(QPoint at);
    [[nodiscard]] BrowserModel& pane() const;

    const Theme* theme_;
    QWidget* browser_;
    QPointer<PaneArea> area_;
    const QObject* watchedArea_;
    std::function<void(std::size_t row)> open_;
    QuickLookContent content_;
    std::optional<FileItem> looked_; ///< the item that is to be shown
    QSize room_;                     ///< that an image was made for
    QTimer rest_;                    ///< since the window was last made larger or smaller
    bool isFollowDue_ = false;
    bool isRinged_ = false; ///< the keyboard has come to what is shown

    QWidget* header_;
    ElidedLabel* name_;
    TextLabel* position_;
    QPushButton* openButton_;
    GlyphButton* closeButton_;
    QStackedWidget* pages_;
    QuickLookPicture* picture_;
    QWidget* textPage_;
    QPlainTextEdit* text_;
    TextLabel* cut_;
};

} // namespace ombrel
