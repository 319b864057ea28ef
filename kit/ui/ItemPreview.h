#pragma once

#include "listing/FileItem.h"
#include "ui/BadgedFolder.h"
#include "ui/FileIcons.h"

#include <QWidget>

#include <cstdint>
#include <optional>
#include <vector>

namespace ombrel {

class Theme;
class ThumbnailStore;

/// What the details pane shows of the items themselves: the thumbnail of one, or its icon, on a card; the
/// first few of several as a fan; a folder that cannot be shown as what is the matter with it. A thumbnail
/// that comes later changes nothing but what is inside.
class ItemPreview final : public QWidget {
    Q_OBJECT

public:
    /// `theme` and `thumbnails` must outlive it.
    ItemPreview(const Theme& theme, ThumbnailStore& thumbnails, QWidget* parent = nullptr);
    ~ItemPreview() override;

    enum class Arrangement : std::uint8_t { card, fan };
    void setItems(const std::vector<FileItem>& items, Arrangement arrangement);
    void setFolderInTrouble(const std::optional<BadgedFolder::Badge>& badge);

    /// Whether nothing that it waits for would change it.
    [[nodiscard]] bool isSettled() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void askForThumbnails();
    void paintCard(QPainter& painter);
    void paintFan(QPainter& painter);
    /// What there is of an item's thumbnail, as large as it is to be painted.
    [[nodiscard]] QImage thumbnailOf(const FileItem& item) const;
    void paintThumbnail(QPainter& painter, const FileItem& item, const QImage& image,
                        const QRectF& place) const;
    void paintIcon(QPainter& painter, const FileItem& item, const QRectF& box) const;
    /// In pixels of the screen.
    [[nodiscard]] QSize box() const;

    const Theme* theme_;
    ThumbnailStore* thumbnails_;
    FileIcons icons_;
    std::vector<FileItem> items_;
    Arrangement arrangement_ = Arrangement::card;
    std::optional<BadgedFolder::Badge> trouble_; ///< of a folder, in place of items
    QSize asked_; ///< the box that thumbnails were asked for; empty while nothing is
};

} // namespace ombrel
