#include "ui/DraggedFiles.h"

#include <QByteArray>
#include <QMimeData>

namespace ombrel {
namespace {

const QString& uriList() {
    static const QString format = QStringLiteral("text/uri-list");
    return format;
}

} // namespace

bool DraggedFiles::areIn(const QMimeData* data) {
    return data && data->hasFormat(uriList()) && !of(data).empty();
}

std::vector<FileURL> DraggedFiles::of(const QMimeData* data) {
    std::vector<FileURL> files;
    if (!data) return files;
    // The bytes as they came: QUrl would make text of them.
    const auto lines = data->data(uriList()).split('\n');
    for (const QByteArray& line : lines) {
        const QByteArray uri = line.trimmed();
        if (uri.isEmpty() || uri.startsWith('#')) continue;
        if (auto url = FileURL::fromURI({uri.constData(), static_cast<std::size_t>(uri.size())}))
            files.push_back(std::move(*url));
    }
    return files;
}

} // namespace ombrel
