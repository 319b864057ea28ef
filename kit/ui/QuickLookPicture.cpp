#include "ui/QuickLookPicture.h"

#include "browser/ThumbnailStore.h"
#include "ui/FileClass.h"
#include "ui/FileIcons.h"
#include "ui/Formats.h"
#include "ui/PartsAccessible.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace ombrel {

QuickLookPicture::QuickLookPicture(const Theme& theme, ThumbnailStore* thumbnails, QWidget* parent)
    : QWidget(parent), theme_(&theme), thumbnails_(thumbnails) {
    PartsAccessible::install();
    setFocusPolicy(Qt::StrongFocus);
    connect(&theme, &Theme::changed, this, [this] { update(); });
    if (!thumbnails) return;
    connect(thumbnails, &ThumbnailStore::changed, this, [this](const FileURL& changed) {
        if (wantsThumbnail_ && item_ && item_->url() == changed) update();
    });
}

QuickLookPicture::~QuickLookPicture() {
    forgetThumbnail();
}

void QuickLookPicture::clear() {
    forgetThumbnail();
    image_ = {};
    item_.reset();
    facts_.clear();
    update();
}

void QuickLookPicture::setImage(const QImage& image) {
    clear();
    image_ = image;
}

void QuickLookPicture::setItem(const FileItem& item, const ItemValues& values) {
    clear();
    item_ = item;
    if (!values.type.empty()) facts_ << QString::fromStdString(values.type);
    if (values.size && !values.isFolder) facts_ << Formats::size(*values.size);
    if (values.modified) facts_ << Formats::dateAndTime(*values.modified);
}

// ---- Thumbnails

void QuickLookPicture::wantThumbnail() {
    wantsThumbnail_ = thumbnails_ && item_ && ThumbnailStore::mayHave(*item_);
    askForThumbnail();
}

void QuickLookPicture::askForThumbnail() {
    const QSize box = thumbnailRoom();
    if (!wantsThumbnail_ || box.isEmpty()) return;
    const std::array requests{ThumbnailStore::Request{*item_, box}};
    thumbnails_->want(*this, requests);
}

void QuickLookPicture::forgetThumbnail() {
    if (wantsThumbnail_) thumbnails_->want(*this, {});
    wantsThumbnail_ = false;
}

QImage QuickLookPicture::thumbnail() const {
    return wantsThumbnail_ ? thumbnails_->thumbnail(*item_, thumbnailRoom()) : QImage();
}

// ---- Where things are

QRect QuickLookPicture::area() const {
    const int inset = theme_->size(ThemeSize::space12);
    return rect().adjusted(inset, inset, -inset, -inset);
}

QSize QuickLookPicture::room() const {
    return (QSizeF(area().size()) * devicePixelRatioF()).toSize();
}

int QuickLookPicture::factsHeight() const {
    const int line = QFontMetrics(theme_->font(ThemeFont::body)).lineSpacing();
    return theme_->size(ThemeSize::space16) + static_cast<int>(facts_.size()) * line;
}

QSize QuickLookPicture::thumbnailRoom() const {
    const QSize above = area().size() - QSize(0, factsHeight());
    return (QSizeF(above) * devicePixelRatioF()).toSize();
}

void QuickLookPicture::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    askForThumbnail();
}

// ---- Painting

void QuickLookPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(rect(), theme_->color(ThemeColor::surface));
    if (!image_.isNull())
        paintImage(painter, image_, area());
    else if (item_)
        paintItem(painter);
}

void QuickLookPicture::paintImage(QPainter& painter, const QImage& image, const QRect& room) const {
    const double ratio = devicePixelRatioF();
    QSizeF size = QSizeF(image.size()) / ratio;
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room.size(), Qt::KeepAspectRatio);
    // From a whole pixel of the screen on, so that nothing is blurred.
    const auto whole = [ratio](double at) { return std::round(at * ratio) / ratio; };
    const QPointF middle = QRectF(room).center();
    const QPointF corner(whole(middle.x() - size.width() / 2), whole(middle.y() - size.height() / 2));
    painter.drawImage(QRectF(corner, size), image);
}

void QuickLookPicture::paintItem(QPainter& painter) const {
    const QRect whole = area();
    QRect words(whole.left(), whole.top(), whole.width(), factsHeight());
    if (const QImage found = thumbnail(); !found.isNull()) {
        words.moveBottom(whole.bottom());
        paintImage(painter, found, QRect(whole.topLeft(), QPoint(whole.right(), words.top() - 1)));
    } else {
        const int side = std::min(theme_->size(ThemeSize::quickLookIcon), whole.height() - factsHeight());
        if (side <= 0) return;
        const QRect icon(whole.center().x() - side / 2,
                         whole.top() + (whole.height() - side - factsHeight()) / 2, side, side);
        paintIcon(painter, icon);
        words.moveTop(icon.bottom() + 1);
    }
    painter.setFont(theme_->font(ThemeFont::body));
    painter.setPen(theme_->color(ThemeColor::textSecondary));
    const QFontMetrics metrics = painter.fontMetrics();
    QRect line(words.left(), words.top() + theme_->size(ThemeSize::space16), words.width(),
               metrics.lineSpacing());
    for (const QString& fact : facts_) {
        painter.drawText(line, Qt::AlignCenter | Qt::TextSingleLine,
                         metrics.elidedText(fact, Qt::ElideRight, line.width()));
        line.translate(0, line.height());
    }
}

void QuickLookPicture::paintIcon(QPainter& painter, const QRect& box) const {
    const bool isFolder = item_->isDirectoryLike() || item_->isPackage();
    const FileClass fileClass =
        isFolder ? FileClass::folder : FileClasses::known(*item_).value_or(FileClass::other);
    const FileIcons icons(*theme_);
    icons.drawLarge(painter, fileClass, box);
    icons.drawBadge(painter, FileIcons::badgeOf(*item_), box);
}

} // namespace ombrel
