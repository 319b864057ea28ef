#include "ui/FolderIcon.h"

#include "ui/PlaceIcons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

namespace ombrel {
namespace {

/// How much is left of what cannot be chosen.
constexpr double disabledOpacity = 0.4;

class Engine final : public QIconEngine {
public:
    Engine(const Theme& theme, std::optional<KnownFolder> known) : theme_(&theme), known_(known) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (mode == QIcon::Disabled) painter->setOpacity(painter->opacity() * disabledOpacity);
        PlaceIcons::drawFolder(*painter, *theme_, known_, rect);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new Engine(*theme_, known_); }

private:
    const Theme* theme_;
    std::optional<KnownFolder> known_;
};

} // namespace

QIcon folderIcon(const Theme& theme, std::optional<KnownFolder> known) {
    return QIcon(new Engine(theme, known));
}

} // namespace ombrel
