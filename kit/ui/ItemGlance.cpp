#include "ui/ItemGlance.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "listing/FileItem.h"
#include "listing/FileTypeNames.h"
#include "listing/TypeDatabase.h"
#include "ui/Formats.h"

#include <QObject>
#include <QPointer>

#include <stop_token>
#include <string>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

FileClass classOf(const FileItem& item) {
    if (item.isDirectoryLike() || item.isPackage()) return FileClass::folder;
    return FileClasses::ofType(TypeDatabase::identifier(item.type()));
}

ItemGlance glanceAt(const FileItem& item, const std::string& type) {
    ItemGlance glance{classOf(item), QString::fromStdString(type), {}, {}};
    if (item.size().hasValue() && !item.isDirectoryLike()) glance.size = Formats::size(item.size().value());
    if (item.modificationDate().hasValue())
        glance.date = Formats::dateAndTime(item.modificationDate().value());
    return glance;
}

} // namespace

void ItemGlance::take(const FileURL& url, QObject* context, std::function<void(const ItemGlance&)> use) {
    auto look = [url, context = QPointer(context), use = std::move(use)](const std::stop_token&) {
        FileItem item = FileItem::make(url.name(), url.parent(), 0);
        std::string type = FileTypeNames::name(item);
        MainThread::post([item = std::move(item), type = std::move(type), context, use] {
            if (context) use(glanceAt(item, type));
        });
    };
    try {
        Worker("ombrel-glance", std::move(look)).detach();
    } catch (const std::system_error&) {
        // Without a thread the dialog names the item, and nothing else.
    }
}

} // namespace ombrel
