#include "ui/PinDrag.h"

#include "ui/DragRun.h"

#include <QAbstractScrollArea>
#include <QByteArray>
#include <QCoreApplication>
#include <QDrag>
#include <QList>
#include <QPixmap>

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

void run(QAbstractScrollArea& view, const FileURL& folder, std::optional<std::size_t> pin, const QRect& place,
         QPoint pointer) {
    auto* const drag = new QDrag(&view);
    drag->setMimeData(dataOf(folder, pin).release());
    drag->setPixmap(view.viewport()->grab(place));
    drag->setHotSpot(pointer - place.topLeft());
    DragRun::toTheEnd(*drag, Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::LinkAction);
}

std::optional<std::size_t> pinOf(const QMimeData& data) {
    const auto parts = data.data(pinType).split(' ');
    if (parts.size() != 2 || parts[0] != ownMark()) return std::nullopt;
    bool isNumber = false;
    const auto pin = parts[1].toULongLong(&isNumber);
    return isNumber ? std::optional(static_cast<std::size_t>(pin)) : std::nullopt;
}

} // namespace ombrel::PinDrag
