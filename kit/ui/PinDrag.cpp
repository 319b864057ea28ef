#include "ui/PinDrag.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QList>

#include <string>

namespace ombrel::PinDrag {
namespace {

const QString pinType = QStringLiteral("application/x-ombrel-pin");
const QString listType = QStringLiteral("text/uri-list");

/// Pins of another running program are numbered by its own list.
QByteArray ownMark() {
    return QByteArray::number(QCoreApplication::applicationPid());
}

} // namespace

std::unique_ptr<QMimeData> dataOf(const FileURL& folder, std::optional<std::size_t> pin) {
    auto data = std::make_unique<QMimeData>();
    data->setData(listType, QByteArray::fromStdString(folder.uri() + "\r\n"));
    if (pin) data->setData(pinType, ownMark() + ' ' + QByteArray::number(static_cast<qulonglong>(*pin)));
    return data;
}

std::optional<std::size_t> pinOf(const QMimeData& data) {
    const auto parts = data.data(pinType).split(' ');
    if (parts.size() != 2 || parts[0] != ownMark()) return std::nullopt;
    bool isNumber = false;
    const auto pin = parts[1].toULongLong(&isNumber);
    return isNumber ? std::optional(static_cast<std::size_t>(pin)) : std::nullopt;
}

std::vector<FileURL> itemsOf(const QMimeData& data) {
    std::vector<FileURL> items;
    for (const QByteArray& line : data.data(listType).split('\n')) {
        const auto uri = line.trimmed();
        if (uri.isEmpty() || uri.startsWith('#')) continue;
        if (auto url = FileURL::fromURI(uri.toStdString())) items.push_back(std::move(*url));
    }
    return items;
}

} // namespace ombrel::PinDrag
