#pragma once

#include "browser/ItemValues.h"
#include "listing/FileItem.h"

#include <QImage>
#include <QStringList>
#include <QWidget>

#include <optional>

namespace ombrel {

class Theme;
class ThumbnailStore;

/// What quick look shows of everything but texts: an image, pixel for pixel of the screen where there is room
/// for it, or of other items a large thumbnail or icon and what is known of them.
class QuickLookPicture final : public QWidget {
    Q_OBJECT

public:
    /// `theme` and, where given, `thumbnails` must outlive it.
    QuickLookPicture(const Theme& theme, ThumbnailStore* thumbnails, QWidget* parent = nullptr);
    ~QuickLookPicture() override;

    void clear();
    void setImage(const QImage& image);
    /// Shows the icon of the item.
    void setItem(const FileItem& item, const ItemValues& values);
    /// From now on its thumbnail is shown, once there is one.
    void wantThumbnail();

    /// The largest image that is shown whole, in pixels of the screen.
    [[nodiscard]] QSize room() const;
    [[nodiscard]] const QImage& image() const noexcept { return image_; }
    /// Type, size and date of the item, as far as it has them; of an image nothing.
    [[nodiscard]] const QStringList& facts() const noexcept { return facts_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void forgetThumbnail();
    void askForThumbnail();
    [[nodiscard]] QImage thumbnail() const;
    [[nodiscard]] QRect area() const;
    /// Of the lines below the picture, with the gap above them.
    [[nodiscard]] int factsHeight() const;
    [[nodiscard]] QSize thumbnailRoom() const;
    void paintImage(QPainter& painter, const QImage& image, const QRect& room) const;
    void paintItem(QPainter& painter) const;
    void paintIcon(QPainter& painter, const QRect& box) const;

    const Theme* theme_;
    ThumbnailStore* thumbnails_;
    QImage image_;
    std::optional<FileItem> item_;
    QStringList facts_;
    bool wantsThumbnail_ = false;
};

} // namespace ombrel
