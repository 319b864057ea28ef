#pragma once

#include "base/FileURL.h"
#include "listing/FileItem.h"
#include "ui/FileClass.h"

#include <QWidget>

#include <optional>

namespace ombrel {

class Theme;
class ThumbnailStore;

/// A large picture of one item: its thumbnail where there is one, else the icon of its class. Everything that
/// has to be asked for is asked on a worker.
class ItemPicture final : public QWidget {
    Q_OBJECT

public:
    /// `theme` and, where given, `thumbnails` must outlive it.
    ItemPicture(const Theme& theme, const FileURL& url, bool isDirectory, ThumbnailStore* thumbnails,
                QWidget* parent = nullptr);
    ~ItemPicture() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void look(const FileURL& url);
    void wantThumbnail();
    [[nodiscard]] QSize box() const;

    const Theme* theme_;
    ThumbnailStore* thumbnails_;
    FileClass fileClass_ = FileClass::other;
    std::optional<FileItem> item_; // as soon as it is known
};

} // namespace ombrel
