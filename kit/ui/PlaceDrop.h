#pragma once

#include "base/FileURL.h"
#include "ui/DropSpring.h"
#include "ui/EdgeScroll.h"

#include <QObject>
#include <QPoint>
#include <QRect>

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>

class QAbstractScrollArea;
class QDropEvent;
class QEvent;

namespace ombrel {

class FolderDrop;
class HomeModel;
class Theme;

/// What a drag does over a view of places: folders are pinned between the pins, pins find another place among
/// them, and files go into the folders that places stand for. The view scrolls at its edges, and places open
/// that the drag rests on.
class PlaceDrop final : public QObject {
    Q_OBJECT

public:
    /// What something that is dropped at a point of the viewport comes to.
    struct Target {
        std::optional<std::size_t> insertion = {}; ///< it is pinned in front of this pin,
        std::optional<FileURL> folder = {};        ///< or goes into this folder,
        QRect place = {};                          ///< which stands there in the viewport
        bool opens = false;                        ///< when the drag rests there
    };
    /// `isPin`: what is dragged is one of the pins.
    using Find = std::function<Target(QPoint at, bool isPin)>;
    struct Setting {
        const Theme& theme;
        HomeModel& pins;
        FolderDrop* folders;                ///< without one, nothing is taken into folders
        std::chrono::milliseconds patience; ///< until a place opens
    };

    /// It belongs to `view`, whose viewport has to accept drops; what the setting names must outlive it.
    PlaceDrop(QAbstractScrollArea& view, const Setting& setting, Find find);

    /// Takes an event of the viewport, when it is one of a drag.
    [[nodiscard]] bool take(QEvent& event);

    [[nodiscard]] const std::optional<std::size_t>& insertion() const noexcept { return target_.insertion; }
    /// Whether a drop would be taken by the place that stands at `place`.
    [[nodiscard]] bool isOn(const QRect& place) const;
    /// Whether that place is opening.
    [[nodiscard]] bool isFlashing(const QRect& place) const;

Q_SIGNALS:
    /// The drag has rested on a place that opens; `at` is where, in the viewport.
    void rested(QPoint at);

private:
    void enter(QDropEvent& event);
    void follow(QDropEvent& event);
    void drop(QDropEvent& event);
    void leave();
    void lookUnder(QPoint pointer);
    void scrollBy(int pixels);
    void answerPinning(QDropEvent& event) const;

    QAbstractScrollArea* view_;
    Setting setting_;
    Find find_;
    EdgeScroll edges_;
    DropSpring spring_;
    bool isWanted_ = false;
    std::optional<std::size_t> pin_; ///< that is dragged
    QPoint pointer_;
    Target target_;
    std::size_t places_ = 0; ///< how many the drag has been over
};

} // namespace ombrel
