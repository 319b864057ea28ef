#pragma once

#include "ui/Glyphs.h"

#include <QAbstractButton>

#include <optional>

namespace ombrel {

class Theme;

/// A word that does something: in the accent, underlined under the pointer, with a glyph before it or
/// without. Shortened in the middle where there is no room.
class LinkButton final : public QAbstractButton {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit LinkButton(const Theme& theme, std::optional<Glyph> glyph = std::nullopt,
                        QWidget* parent = nullptr);

    void setGlyph(Glyph glyph);
    void setLabel(const QString& label);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] QFont face() const;
    [[nodiscard]] int textLeft() const;

    const Theme* theme_;
    std::optional<Glyph> glyph_;
};

} // namespace ombrel
