#pragma once

#include "app/PictureContent.h"
#include "app/PictureWorld.h"
#include "ui/Theme.h"

#include <QPoint>
#include <QSize>
#include <QString>

#include <memory>
#include <string>

class QApplication;
class QImage;
class QWidget;

namespace ombrel {

class BrowserWindow;

/// A picture of each important state of the interface, in light and in dark, in English and in stand-ins for
/// longer languages ("home-light.png", "home-dark-de.png"): the real windows over the files of a
/// PictureContent.
///
/// Windows stand in a plain band where the desktop's frame would be, with the title in it. What lies over
/// another window is drawn over a picture of that one.
class PictureSeries {
public:
    /// `folder` is made when it is missing, not the folders above it. `content` has been filled.
    PictureSeries(QString folder, const PictureContent& content, Theme& theme);
    ~PictureSeries();
    PictureSeries(const PictureSeries&) = delete;
    PictureSeries& operator=(const PictureSeries&) = delete;

    /// Makes the pictures and answers with the status to end with: 0, or 1 after it has said what went wrong.
    [[nodiscard]] int make();

private:
    using Language = PictureWorld::Language;
    /// How a window lies in a picture.
    struct Placing {
        QSize canvas;
        int band = 0;                  ///< height of the frame's band; none around what needs no frame
        QPoint corner = {};            ///< of the frame in the picture
        const QImage* below = nullptr; ///< the picture it lies over; a plain ground without one
    };

    [[nodiscard]] bool makeAll(Language language);
    [[nodiscard]] bool prepare();
    [[nodiscard]] bool makeBrowser();
    [[nodiscard]] bool makeMenu();
    [[nodiscard]] bool makeOverlay();
    [[nodiscard]] bool makeSettings();
    [[nodiscard]] bool makeOnboarding();
    [[nodiscard]] bool makeProgress();
    [[nodiscard]] bool makeConflicts();

    [[nodiscard]] bool open(const FileURL& folder);
    /// Selects the items of these names; the keyboard is at the last one.
    [[nodiscard]] bool select(std::initializer_list<std::string_view> names);
    void hover(std::string_view name);
    [[nodiscard]] bool takeBrowser(const char* name);
    /// Draws the browser window in both colours, and over each what `over` is.
    [[nodiscard]] bool takeOver(const char* name, QWidget& over, int band, QPoint corner);
    [[nodiscard]] bool take(const char* name, QWidget& window, const Placing& placing);
    /// Waits until the widget shows all that it will; false when it does not come to rest.
    [[nodiscard]] bool look(QWidget& widget, QImage& result);
    [[nodiscard]] QImage framed(const QImage& look, const QString& title, const Placing& placing) const;
    void setDark(bool isDark);
    [[nodiscard]] bool save(const QImage& picture, const char* name);
    void complain(const QString& text);

    const QString folder_;
    const PictureContent* content_;
    Theme* theme_;
    Language language_ = Language::english;
    std::string last_ = "-"; ///< the picture that was written last
    bool hasComplained_ = false;
    std::unique_ptr<PictureWorld> world_;
    std::unique_ptr<BrowserWindow> window_;
};

} // namespace ombrel
