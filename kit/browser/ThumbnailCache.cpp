#include "browser/ThumbnailCache.h"

#include "listing/CacheFile.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QImageReader>
#include <QImageWriter>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

constexpr std::pair<const char*, int> sizeTable[] = {
    {"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};
constexpr auto failureFolder = "fail/halvaneombrel-1";
/// A thumbnail of 1024 pixels is hardly ever larger; what is may not be one.
constexpr std::size_t largestThumbnail = std::size_t{16} << 20;
/// Photographs of large cameras are some 100 MB; what is larger is not worth a picture the size of a stamp.
constexpr std::size_t largestOriginal = std::size_t{128} << 20;
constexpr qint64 mostPixels = 200'000'000;

const QString uriKey = QStringLiteral("Thumb::URI"), modifiedKey = QStringLiteral("Thumb::MTime"),
              sizeKey = QStringLiteral("Thumb::Size");

} // namespace

ThumbnailCache::Size ThumbnailCache::sizeFor(QSize box) {
    const int side = std::max(box.width(), box.height());
    for (std::size_t i = 0; i < std::size(sizeTable); ++i)
        if (side <= sizeTable[i].second) return static_cast<Size>(i);
    return Size::extraExtraLarge;
}

int ThumbnailCache::pixels(Size size) {
    return sizeTable[std::to_underlying(size)].second;
}

const char* ThumbnailCache::name(Size size) {
    return sizeTable[std::to_underlying(size)].first;
}

FileURL ThumbnailCache::place(const Original& original, const std::string& below) const {
    const auto hash =
        QCryptographicHash::hash(QByteArray::fromStdString(original.url.uri()), QCryptographicHash::Md5);
    const std::string path = folder_.path() + "/" + below + "/" + hash.toHex().toStdString() + ".png";
    return *FileURL::fromPath(path);
}

std::optional<QImage> ThumbnailCache::read(const Original& original, const std::string& below) const {
    const auto bytes = CacheFile::read(place(original, below), largestThumbnail);
    if (!bytes) return std::nullopt;
    QImage image;
    image.loadFromData(QByteArrayView(bytes->data(), static_cast<qsizetype>(bytes->size())), "PNG");
    if (image.isNull()) return std::nullopt;
    const bool isSame = image.text(uriKey).toStdString() == original.url.uri() &&
                        image.text(modifiedKey) == QString::number(original.modified);
    const QString size = image.text(sizeKey);
    if (!isSame || (!size.isEmpty() && size != QString::number(original.size))) return std::nullopt;
    return image;
}

std::optional<QImage> ThumbnailCache::find(const Original& original, Size wanted, bool acceptsSmaller) const {
    const auto first = static_cast<int>(std::to_underlying(wanted));
    for (int i = first; i < static_cast<int>(std::size(sizeTable)); ++i)
        if (auto image = read(original, sizeTable[i].first)) return image;
    for (int i = first - 1; acceptsSmaller && i >= 0; --i)
        if (auto image = read(original, sizeTable[i].first)) return image;
    return std::nullopt;
}

bool ThumbnailCache::isKnownToFail(const Original& original) const {
    return read(original, failureFolder).has_value();
}

void ThumbnailCache::write(const Original& original, const std::string& below, const QImage& image) const {
    QImage marked = image;
    marked.setText(uriKey, QString::fromStdString(original.url.uri()));
    marked.setText(modifiedKey, QString::number(original.modified));
    marked.setText(sizeKey, QString::number(original.size));
    if (!original.type.empty())
        marked.setText(QStringLiteral("Thumb::Mimetype"), QString::fromStdString(original.type));
    marked.setText(QStringLiteral("Software"), QStringLiteral("Ombrel"));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!marked.save(&buffer, "PNG")) return;

    (void)CacheFile::replace(place(original, below),
                             {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

void ThumbnailCache::keep(const Original& original, Size size, QImage image, QSize dimensions) const {
    image.setText(QStringLiteral("Thumb::Image::Width"), QString::number(dimensions.width()));
    image.setText(QStringLiteral("Thumb::Image::Height"), QString::number(dimensions.height()));
    write(original, name(size), image);
}

void ThumbnailCache::keepFailure(const Original& original) const {
    QImage nothing(1, 1, QImage::Format_ARGB32);
    nothing.fill(Qt::transparent);
    write(original, failureFolder, nothing);
}

// ---- Our own

bool ImageThumbnails::canMake(const std::string& type) {
    static const auto types = QImageReader::supportedMimeTypes();
    return type.starts_with("image/") && types.contains(QByteArray::fromStdString(type));
}

std::optional<ImageThumbnails::Made> ImageThumbnails::make(const ThumbnailCache::Original& original,
                                                           int pixels) {
    if (std::cmp_greater(original.size, largestOriginal)) return Made{};
    const auto bytes = CacheFile::readInState(
        original.url, {.size = original.size, .modified = original.modified}, largestOriginal);
    if (!bytes) return std::nullopt;

    QByteArray data = QByteArray::fromRawData(bytes->data(), static_cast<qsizetype>(bytes->size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize whole = reader.size();
    if (!whole.isValid() || whole.isEmpty() || qint64{whole.width()} * whole.height() > mostPixels)
        return Made{};
    if (std::max(whole.width(), whole.height()) > pixels)
        reader.setScaledSize(whole.scaled(pixels, pixels, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    const bool isTurned = reader.transformation() & QImageIOHandler::TransformationRotate90;
    return Made{.image = reader.read(), .dimensions = isTurned ? whole.transposed() : whole};
}

QImage ImageThumbnails::fitted(const QImage& image, QSize box) {
    QImage fit = image;
    if (image.width() > box.width() || image.height() > box.height())
        fit = image.scaled(image.size().scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)),
                           Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    fit.convertTo(fit.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    return fit;
}

} // namespace ombrel
