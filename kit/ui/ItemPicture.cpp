#include "ui/ItemPicture.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "browser/ThumbnailStore.h"
#include "listing/TypeDatabase.h"
#include "ui/FileIconDrawing.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QPointer>

#include <algorithm>
#include <array>
#include <stop_token>
#include <system_error>
#include <utility>

namespace ombrel {

ItemPicture::ItemPicture(const Theme& theme, const FileURL& url, bool isDirectory, ThumbnailStore* thumbnails,
                         QWidget* parent)
    : QWidget(parent), theme_(&theme), thumbnails_(thumbnails) {
    if (isDirectory) {
        fileClass_ = FileClass::folder;
        return;
    }
    if (thumbnails)
        connect(thumbnails, &ThumbnailStore::changed, this, [this, url](const FileURL& changed) {
            if (changed.path() == url.path()) update();
        });
    look(url);
}

ItemPicture::~ItemPicture() {
    if (thumbnails_ && item_) thumbnails_->want(*this, {});
}

void ItemPicture::look(const FileURL& url) {
    auto body = [url, picture = QPointer(this)](const std::stop_token&) {
        FileItem item = FileItem::make(url.name(), url.parent(), 0);
        MainThread::post([item = std::move(item), picture] {
            if (!picture) return;
            picture->fileClass_ = FileClasses::ofType(TypeDatabase::identifier(item.type()));
            picture->item_ = item;
            picture->wantThumbnail();
            picture->update();
        });
    };
    try {
        Worker("ombrel-picture", std::move(body)).detach();
    } catch (const std::system_error&) {
        // Without a thread it stays a file of some kind.
    }
}

QSize ItemPicture::box() const {
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

void ItemPicture::wantThumbnail() {
    if (!thumbnails_ || !item_ || size().isEmpty() || !ThumbnailStore::mayHave(*item_)) return;
    const std::array requests{ThumbnailStore::Request{*item_, box()}};
    thumbnails_->want(*this, requests);
}

void ItemPicture::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    wantThumbnail();
}

void ItemPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const int radius = theme_->size(ThemeSize::radiusRow);
    QPainterPath shape;
    shape.addRoundedRect(rect(), radius, radius);
    painter.fillPath(shape, theme_->color(ThemeColor::surface));
    if (thumbnails_ && item_) {
        if (const QImage image = thumbnails_->thumbnail(*item_, box()); !image.isNull()) {
            // As large as it fits, but a small one not larger than it is.
            QSizeF room = QSizeF(image.size()) / devicePixelRatioF();
            if (room.width() > width() || room.height() > height()) room.scale(size(), Qt::KeepAspectRatio);
            painter.setClipPath(shape);
            painter.drawImage(
                QRectF(QPointF((width() - room.width()) / 2, (height() - room.height()) / 2), room), image);
            return;
        }
    }
    const int room = std::min(width(), height()) - 2 * theme_->size(ThemeSize::space16);
    const int side = std::min(room, theme_->size(ThemeSize::overlayIcon));
    if (side <= 0) return;
    FileIconDrawing::draw(painter, *theme_, fileClass_,
                          QRectF((width() - side) / 2.0, (height() - side) / 2.0, side, side));
}

} // namespace ombrel
