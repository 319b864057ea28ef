#pragma once

#include "base/Worker.h"
#include "browser/ItemValues.h"
#include "listing/FileItem.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ombrel {

/// What a quick look at an item shows: an image as large as it fits, the beginning of a text, or what is
/// known of anything else. Main thread only; files are read and images made on a worker, and given up when
/// another item is looked at.
///
/// What was shown before stays until something is known of the new item, though not longer than `patience`;
/// then its icon comes first.
class QuickLookContent final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds patience{150};
    /// More of a text is not read; bytes.
    static constexpr std::size_t mostText = std::size_t{256} << 10;

    enum class Kind : std::uint8_t {
        nothing, ///< as long as nothing was ever looked at
        icon,    ///< the icon or a large thumbnail, with the values
        image,
        text,
    };

    explicit QuickLookContent(QObject* parent = nullptr);

    /// `room` for an image, in pixels of the screen.
    void look(const FileItem& item, QSize room);
    /// Ends what is under way.
    void stop();

    [[nodiscard]] Kind kind() const noexcept { return kind_; }
    /// The item that is shown, which may still be the one before.
    [[nodiscard]] const std::optional<FileItem>& item() const noexcept { return item_; }
    [[nodiscard]] const ItemValues& values() const noexcept { return values_; }
    [[nodiscard]] const QImage& image() const noexcept { return image_; }
    /// Lines of more than 2,000 characters are broken.
    [[nodiscard]] const QString& text() const noexcept { return text_; }
    /// Whether the text goes on.
    [[nodiscard]] bool isCut() const noexcept { return isCut_; }
    /// Whether nothing more is expected of the item.
    [[nodiscard]] bool isSettled() const noexcept { return !isReading_; }

    enum class End : bool { whole, cut };
    /// Bytes as text: by their mark, as UTF-8 where they are, otherwise byte by byte. Where they were cut, a
    /// character that lost its end is left out. Nothing for what is no text.
    [[nodiscard]] static std::optional<QString> decoded(std::string_view bytes, End end = End::whole);

Q_SIGNALS:
    void changed();

private:
    struct Found;
    void showIcon();
    void take(std::uint64_t ticket, const Found& found);

    Kind kind_ = Kind::nothing;
    std::optional<FileItem> item_, wanted_;
    ItemValues values_;
    QImage image_;
    QString text_;
    bool isCut_ = false;
    bool isReading_ = false;
    QTimer timer_;
    std::uint64_t ticket_ = 0; ///< of the newest reading; older answers are dropped
    Worker reader_;
};

} // namespace ombrel
