#include "ui/ItemPicture.h"

#include "base/FileName.h"
#include "base/MainThread.h"
#include "base/Worker.h"
#include "listing/TypeDatabase.h"
#include "ui/FileIconDrawing.h"
#include "ui/Theme.h"

#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <stop_token>
#include <string>
#include <system_error>
#include <utility>

namespace ombrel {

ItemPicture::ItemPicture(const Theme& theme, const FileURL& url, bool isDirectory, QWidget* parent)
    : QWidget(parent), theme_(&theme) {
    if (isDirectory) {
        fileClass_ = FileClass::folder;
        return;
    }
    const std::string name(url.name());
    const std::string extension(FileName::extension(name));
    if (const auto known = TypeDatabase::knownFileType(extension)) {
        fileClass_ = FileClasses::ofType(TypeDatabase::identifier(*known));
        return;
    }
    auto ask = [extension, picture = QPointer(this)](const std::stop_token&) {
        const TypeIndex type = TypeDatabase::fileType(extension);
        MainThread::post([type, picture] {
            if (!picture) return;
            picture->fileClass_ = FileClasses::ofType(TypeDatabase::identifier(type));
            picture->update();
        });
    };
    try {
        Worker("ombrel-type", std::move(ask)).detach();
    } catch (const std::system_error&) {
        // Without a thread it stays a file of some kind.
    }
}

void ItemPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = theme_->size(ThemeSize::radiusRow);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_->color(ThemeColor::surface));
    painter.drawRoundedRect(rect(), radius, radius);
    const int room = std::min(width(), height()) - 2 * theme_->size(ThemeSize::space16);
    const int side = std::min(room, theme_->size(ThemeSize::overlayIcon));
    if (side <= 0) return;
    FileIconDrawing::draw(painter, *theme_, fileClass_,
                          QRectF((width() - side) / 2.0, (height() - side) / 2.0, side, side));
}

} // namespace ombrel
