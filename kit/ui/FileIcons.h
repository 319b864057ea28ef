#pragma once

#include "listing/FileItem.h"
#include "ui/FileClass.h"

#include <QPixmap>
#include <QRectF>

#include <cstdint>
#include <unordered_map>

class QPainter;

namespace ombrel {

class Theme;

/// What is drawn onto the corner of an icon. The link's badge is at the lower left, the lock at the lower
/// right.
enum class IconBadge : std::uint8_t { none, link, brokenLink, lock };

/// The drawn icons of files and folders, sharp at every size. Kept as pixmaps by size and device pixel ratio.
/// Main thread only.
class FileIcons {
public:
    /// `theme` must outlive it.
    explicit FileIcons(const Theme& theme) : theme_(&theme) {}

    [[nodiscard]] static IconBadge badgeOf(FileItemView item);

    /// Draws the icon into the square `box`, which is in device-independent pixels.
    void draw(QPainter& painter, FileClass fileClass, IconBadge badge, const QRect& box);
    /// Draws the badge alone, as it lies on a picture of that place.
    void drawBadge(QPainter& painter, IconBadge badge, const QRectF& picture) const;
    /// The icon alone, without keeping anything: for sizes that are drawn once.
    void drawLarge(QPainter& painter, FileClass fileClass, const QRectF& box) const;
    /// To be called when the theme has changed.
    void forget() { kept_.clear(); }

private:
    [[nodiscard]] QPixmap make(FileClass fileClass, IconBadge badge, int side, double ratio) const;

    const Theme* theme_;
    std::unordered_map<std::uint64_t, QPixmap> kept_;
};

} // namespace ombrel
