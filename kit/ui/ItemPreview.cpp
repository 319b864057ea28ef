#include "ui/ItemPreview.h"

#include "browser/ThumbnailStore.h"
#include "ui/FileIconDrawing.h"
#include "ui/ItemPainting.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <iterator>
#include <span>

namespace ombrel {
namespace {

FileClass classOf(const FileItem& item) {
    if (item.isPackage()) return FileClass::folder;
    return FileClasses::known(item).value_or(FileClass::other);
}

/// As large as it fits into `room` without becoming larger than it is, around the room's middle.
QRectF fitted(const QImage& image, double ratio, const QRectF& room) {
    QSizeF size = QSizeF(image.size()) / ratio;
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room.size(), Qt::KeepAspectRatio);
    QRectF place(QPointF(), size);
    place.moveCenter(room.center());
    return place;
}

} // namespace

ItemPreview::ItemPreview(const Theme& theme, ThumbnailStore& thumbnails, QWidget* parent)
    : QWidget(parent), theme_(&theme), thumbnails_(&thumbnails), icons_(theme) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(localized("ui.details.preview"));
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
    connect(&thumbnails, &ThumbnailStore::changed, this, [this](const FileURL& url) {
        if (std::ranges::any_of(items_, [&](const FileItem& item) { return item.url() == url; })) update();
    });
}

ItemPreview::~ItemPreview() {
    thumbnails_->want(*this, {});
}

void ItemPreview::setItems(const std::vector<FileItem>& items, Arrangement arrangement) {
    items_ = items;
    arrangement_ = arrangement;
    trouble_.reset();
    askForThumbnails();
    update();
}

void ItemPreview::setFolderInTrouble(const std::optional<BadgedFolder::Badge>& badge) {
    setItems({}, Arrangement::card);
    trouble_ = badge;
}

QSize ItemPreview::box() const {
    return (QSizeF(theme_->size(ThemeSize::previewPicture), theme_->size(ThemeSize::previewThumbnail)) *
            devicePixelRatioF())
        .toSize();
}

void ItemPreview::askForThumbnails() {
    // The box stays the same at every width of the pane, so that dragging its edge asks for nothing.
    asked_ = isVisible() ? box() : QSize();
    std::vector<ThumbnailStore::Request> requests;
    if (!asked_.isEmpty())
        std::ranges::transform(items_, std::back_inserter(requests), [this](const FileItem& item) {
            return ThumbnailStore::Request{item, asked_};
        });
    thumbnails_->want(*this, requests);
}

bool ItemPreview::isSettled() const {
    return std::ranges::all_of(items_, [this](const FileItem& item) {
        return !isVisible() || !ThumbnailStore::mayHave(item) || thumbnails_->isKnown(item, asked_);
    });
}

QSize ItemPreview::sizeHint() const {
    return {theme_->size(ThemeSize::previewPicture) + theme_->size(ThemeSize::space28),
            theme_->size(ThemeSize::preview)};
}

QSize ItemPreview::minimumSizeHint() const {
    return {theme_->size(ThemeSize::space28), sizeHint().height()};
}

void ItemPreview::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    askForThumbnails();
}

void ItemPreview::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    askForThumbnails();
}

QImage ItemPreview::thumbnailOf(const FileItem& item) const {
    return ThumbnailStore::mayHave(item) ? thumbnails_->thumbnail(item, asked_) : QImage();
}

void ItemPreview::paintEvent(QPaintEvent*) {
    // The window may have moved to another screen.
    if (asked_ != box()) askForThumbnails();
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (arrangement_ == Arrangement::fan)
        paintFan(painter);
    else
        paintCard(painter);
}

void ItemPreview::paintCard(QPainter& painter) {
    const int side = theme_->size(ThemeSize::previewIcon);
    QRectF icon(0, 0, side, side);
    icon.moveCenter(QRectF(rect()).center());
    if (trouble_) return BadgedFolder::draw(painter, *theme_, trouble_, icon, ThemeColor::surfaceAlt);
    if (items_.empty()) return;
    if (classOf(items_.front()) != FileClass::folder) {
        painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
        painter.setBrush(theme_->color(ThemeColor::surface));
        const int radius = theme_->size(ThemeSize::radiusField);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }
    const double inset = (height() - theme_->size(ThemeSize::previewThumbnail)) / 2.0;
    const QRectF room = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    if (const QImage image = thumbnailOf(items_.front()); !image.isNull()) {
        paintThumbnail(painter, items_.front(), image, fitted(image, devicePixelRatioF(), room));
        return;
    }
    paintIcon(painter, items_.front(), icon);
}

void ItemPreview::paintFan(QPainter& painter) {
    struct Leaf {
        double side;    ///< in parts of the shift, from the middle
        double degrees; ///< turned
    };
    // The first item lies in front; the one before it in the list of leaves lies under it.
    constexpr std::array leaves = {Leaf{0, -1.5}, Leaf{-1, -7}, Leaf{1, 6}};
    const int shift = theme_->size(ThemeSize::fanShift);
    const int drop = theme_->size(ThemeSize::fanDrop);
    const QSizeF size(theme_->size(ThemeSize::fanWidth), theme_->size(ThemeSize::fanHeight));
    const int icon = theme_->size(ThemeSize::fanIcon);
    const int frame = theme_->size(ThemeSize::fanFrame);
    const QPointF middle = QRectF(rect()).center();
    for (std::size_t i = std::min(items_.size(), leaves.size()); i-- > 0;) {
        painter.save();
        painter.translate(middle + QPointF(leaves[i].side * shift, i == 0 ? drop : -drop / 2.0));
        painter.rotate(leaves[i].degrees);
        const QImage image = thumbnailOf(items_[i]);
        if (image.isNull()) {
            paintIcon(painter, items_[i], QRectF(-icon / 2.0, -icon / 2.0, icon, icon));
        } else {
            const QRectF place = fitted(image, devicePixelRatioF(),
                                        QRectF(QPointF(-size.width() / 2, -size.height() / 2), size));
            painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
            painter.setBrush(theme_->color(ThemeColor::surface));
            painter.drawRect(place.adjusted(-frame, -frame, frame, frame));
            paintThumbnail(painter, items_[i], image, place);
        }
        painter.restore();
    }
}

void ItemPreview::paintThumbnail(QPainter& painter, const FileItem& item, const QImage& image,
                                 const QRectF& place) const {
    painter.drawImage(place, image);
    painter.setPen(QPen(theme_->color(ThemeColor::thumbnailEdge), theme_->size(ThemeSize::hairline)));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(place.adjusted(0.5, 0.5, -0.5, -0.5));
    if (classOf(item) == FileClass::video) ItemPainting::playBadge(painter, *theme_, place.toRect());
    painter.setRenderHint(QPainter::Antialiasing);
}

void ItemPreview::paintIcon(QPainter& painter, const FileItem& item, const QRectF& box) const {
    FileIconDrawing::draw(painter, *theme_, classOf(item), box);
    icons_.drawBadge(painter, FileIcons::badgeOf(item), box);
    painter.setRenderHint(QPainter::Antialiasing);
}

} // namespace ombrel
