#include "browser/QuickLookContent.h"

#include "base/FileName.h"
#include "base/MainThread.h"
#include "listing/FileBeginning.h"
#include "listing/TypeDatabase.h"

#include <QBuffer>
#include <QImageReader>
#include <QPointer>
#include <QStringDecoder>

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

namespace ombrel {

/// What a worker has read.
struct QuickLookContent::Found {
    Kind kind = Kind::icon;
    ItemValues values;
    QImage image;
    QString text;
    bool isCut = false;
};

namespace {

/// A larger image is not looked at.
constexpr std::size_t largestImage = std::size_t{128} << 20;

QImage imageOf(const std::string& contents, QSize room) {
    QByteArray bytes = QByteArray::fromRawData(contents.data(), static_cast<qsizetype>(contents.size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    if (const QSize size = reader.size(); size.isValid()) {
        // The size is that before it is turned.
        if (reader.transformation().testFlag(QImageIOHandler::TransformationRotate90)) room.transpose();
        if (size.width() > room.width() || size.height() > room.height())
            reader.setScaledSize(size.scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    }
    return reader.read();
}

bool isImage(std::string_view type) {
    return type.starts_with("image/");
}

bool mayBeText(TypeIndex type, std::string_view identifier) {
    return identifier.empty() || identifier == "application/octet-stream" ||
           TypeDatabase::conforms(type, "text/plain") || TypeDatabase::isScript(type);
}

/// Without the part of a character that the end may have cut in two.
std::string_view withoutCutCharacter(std::string_view bytes) {
    constexpr std::size_t longest = 4;
    for (std::size_t back = 1; back <= std::min(longest, bytes.size()); ++back) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
        if ((byte & 0xC0U) == 0x80U) continue; // goes on from an earlier one
        const std::size_t length = byte >= 0xF0U ? 4 : byte >= 0xE0U ? 3 : byte >= 0xC0U ? 2 : 1;
        return length > back ? bytes.substr(0, bytes.size() - back) : bytes;
    }
    return bytes;
}

/// A line without end, as in data that programs wrote, would take a view seconds to lay out.
QString withBrokenLines(const QString& text) {
    constexpr qsizetype longestLine = 2000;
    QString broken;
    broken.reserve(text.size() + text.size() / longestLine);
    qsizetype length = 0;
    for (const QChar character : text) {
        length = character == QLatin1Char('\n') ? 0 : length + 1;
        if (length > longestLine && !character.isLowSurrogate()) {
            broken += QLatin1Char('\n');
            length = 1;
        }
        broken += character;
    }
    return broken;
}

} // namespace

std::optional<QString> QuickLookContent::decoded(std::string_view bytes, End end) {
    const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
    if (const auto marked = QStringConverter::encodingForData(view)) {
        QStringDecoder decode(*marked);
        return QString(decode(view));
    }
    if (bytes.find('\0') != std::string_view::npos) return std::nullopt;
    const auto whole = end == End::cut ? withoutCutCharacter(bytes) : bytes;
    if (FileName::isValidUTF8(whole))
        return QString::fromUtf8(whole.data(), static_cast<qsizetype>(whole.size()));
    return QString::fromLatin1(view);
}

QuickLookContent::QuickLookContent(QObject* parent) : QObject(parent) {
    timer_.setSingleShot(true);
    timer_.setInterval(patience);
    connect(&timer_, &QTimer::timeout, this, &QuickLookContent::showIcon);
}

void QuickLookContent::look(const FileItem& item, QSize room) {
    const std::uint64_t ticket = ++ticket_;
    wanted_ = item;
    isReading_ = true;
    timer_.start();
    try {
        reader_ =
            Worker("ombrel-look", [self = QPointer(this), ticket, item, room](const std::stop_token& stop) {
                Found found;
                found.values = ItemValues::read(item);
                const auto type = item.typeIdentifier();
                const std::string identifier(type.hasValue() ? type.value() : std::string_view());
                const bool wantsImage = isImage(identifier);
                if (wantsImage) {
                    if (const auto contents = beginningOf(item.url(), largestImage))
                        found.image = imageOf(*contents, room);
                    if (!found.image.isNull()) found.kind = Kind::image;
                } else if (mayBeText(item.type(), identifier)) {
                    std::string bytes = beginningOf(item.url(), mostText + 1).value_or("");
                    found.isCut = bytes.size() > mostText;
                    if (found.isCut) bytes.resize(mostText);
                    auto text = decoded(bytes, found.isCut ? End::cut : End::whole);
                    if (text && !bytes.empty()) {
                        found.kind = Kind::text;
                        found.text = withBrokenLines(*text);
                    }
                }
                if (stop.stop_requested()) return;
                MainThread::post([self, ticket, found = std::move(found)] {
                    if (self) self->take(ticket, found);
                });
            });
    } catch (const std::system_error&) {
        // The icon stays.
        isReading_ = false;
    }
}

void QuickLookContent::stop() {
    ++ticket_;
    timer_.stop();
    reader_ = Worker();
    isReading_ = false;
}

void QuickLookContent::showIcon() {
    kind_ = Kind::icon;
    item_ = wanted_;
    values_ = ItemValues::known(*item_);
    image_ = {};
    text_.clear();
    Q_EMIT changed();
}

void QuickLookContent::take(std::uint64_t ticket, const Found& found) {
    if (ticket != ticket_) return;
    timer_.stop();
    isReading_ = false;
    kind_ = found.kind;
    item_ = wanted_;
    values_ = found.values;
    image_ = found.image;
    text_ = found.text;
    isCut_ = found.isCut;
    Q_EMIT changed();
}

} // namespace ombrel
