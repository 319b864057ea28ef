#pragma once

#include "ui/Theme.h"

#include <QLabel>

namespace ombrel {

/// Plain text in a font and a colour of the theme, which it follows.
class TextLabel final : public QLabel {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit TextLabel(const Theme& theme, ThemeFont font = ThemeFont::body,
                       ThemeColor color = ThemeColor::text, QWidget* parent = nullptr);

    void setLook(ThemeFont font, ThemeColor color);

private:
    void takeLook();

    const Theme* theme_;
    ThemeFont font_;
    ThemeColor color_;
};

/// One line of text that is shortened where there is no room for all of it; then all of it is its tooltip.
class ElidedLabel final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    ElidedLabel(const Theme& theme, Qt::TextElideMode mode, ThemeColor color = ThemeColor::text,
                QWidget* parent = nullptr);

    [[nodiscard]] const QString& text() const noexcept { return text_; }
    void setText(const QString& text);
    /// Usually it is set as the body.
    void setFontToken(ThemeFont font);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    Qt::TextElideMode mode_;
    ThemeFont font_ = ThemeFont::body;
    ThemeColor color_;
    QString text_;
};

} // namespace ombrel
