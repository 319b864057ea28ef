#pragma once

#include "base/FileURL.h"
#include "listing/FileStatus.h"

#include <QImage>
#include <QSize>

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// The folder of thumbnails that all programs of a desktop share (freedesktop thumbnail standard): PNG files
/// by the hash of the original's URI, in a folder for each size. All calls block; any thread.
class ThumbnailCache {
public:
    /// The longest side that the thumbnails of a folder may have: 128, 256, 512, 1024 pixels.
    enum class Size : std::uint8_t { normal, large, extraLarge, extraExtraLarge };
    /// The smallest of them that fills `box`, as far as any does.
    [[nodiscard]] static Size sizeFor(QSize box);
    [[nodiscard]] static int pixels(Size size);
    /// What the thumbnailer service calls the size, and the folder of it.
    [[nodiscard]] static const char* name(Size size);

    /// A file as it was listed: a thumbnail of another state of it does not count.
    struct Original {
        FileURL url;
        std::int64_t modified = 0; ///< seconds
        std::int64_t size = 0;     ///< bytes
        std::string type;          ///< MIME

        friend bool operator==(const Original&, const Original&) = default;
    };

    explicit ThumbnailCache(FileURL folder) : folder_(std::move(folder)) {}

    /// The thumbnail of `wanted` or a larger size; of a smaller one only where `acceptsSmaller`.
    [[nodiscard]] std::optional<QImage> find(const Original& original, Size wanted,
                                             bool acceptsSmaller) const;
    /// Whether we have failed at this state of the file before.
    [[nodiscard]] bool isKnownToFail(const Original& original) const;
    /// Puts a thumbnail there for everyone, whole or not at all. `dimensions` are the original's. What goes
    /// wrong is nobody's loss.
    void keep(const Original& original, Size size, QImage image, QSize dimensions) const;
    void keepFailure(const Original& original) const;
    /// Whether `url` lies in the cache itself, of which no thumbnails are made.
    [[nodiscard]] bool holds(const FileURL& url) const { return url.isWithin(folder_); }

private:
    [[nodiscard]] FileURL place(const Original& original, const std::string& below) const;
    [[nodiscard]] std::optional<QImage> read(const Original& original, const std::string& below) const;
    void write(const Original& original, const std::string& below, const QImage& image) const;

    FileURL folder_;
};

/// Making thumbnails of images ourselves.
namespace ImageThumbnails {

/// Whether files of the type can be read here.
[[nodiscard]] bool canMake(const std::string& type);

struct Made {
    QImage image;     ///< null where the file is no image that can be shown
    QSize dimensions; ///< of the original
};
/// Reads the image no larger than `pixels` on its longest side, turned as its camera says; blocking. Nothing
/// when the file could not be read at all, or is not the one that was listed any more.
[[nodiscard]] std::optional<Made> make(const ThumbnailCache::Original& original, int pixels);

/// `image` made smaller until it fits into `box`, in a format that is quick to draw.
[[nodiscard]] QImage fitted(const QImage& image, QSize box);

} // namespace ImageThumbnails
} // namespace ombrel
