#include "ui/GlyphIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

namespace ombrel {
namespace {

class Engine final : public QIconEngine {
public:
    Engine(const Theme& theme, Glyph glyph, ThemeColor color)
        : theme_(&theme), glyph_(glyph), color_(color) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        Glyphs::draw(*painter, glyph_, rect,
                     theme_->color(mode == QIcon::Disabled ? ThemeColor::textDisabled : color_));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new Engine(*theme_, glyph_, color_); }

private:
    const Theme* theme_;
    Glyph glyph_;
    ThemeColor color_;
};

} // namespace

QIcon glyphIcon(const Theme& theme, Glyph glyph, ThemeColor color) {
    return QIcon(new Engine(theme, glyph, color));
}

} // namespace ombrel
