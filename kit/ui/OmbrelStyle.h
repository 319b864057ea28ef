#pragma once

#include <QProxyStyle>

#include <cstdint>
#include <optional>

class QStyleOptionButton;
class QStyleOptionMenuItem;
class QStyleOptionSlider;

namespace ombrel {

class Theme;
enum class ThemeColor : std::uint8_t;

/// Fusion with the theme's shapes: buttons, scroll bars, check boxes, menus, tooltips and focus rings.
class OmbrelStyle final : public QProxyStyle {
    Q_OBJECT

public:
    /// A property of actions: menus write them in the colour of danger.
    static constexpr const char* dangerProperty = "ombrelIsDangerous";

    /// A property of push buttons: those that are small stand inside something else, in rows.
    static constexpr const char* smallProperty = "ombrelIsSmall";

    /// A property of scroll bars: the view goes on under them.
    static constexpr const char* overProperty = "ombrelLiesOver";

    /// `theme` must outlive it.
    explicit OmbrelStyle(const Theme& theme);

    /// A 2 px ring of the accent along the inside of `rect`. Where what it lies on, `ground`, is of the
    /// accent too, the ring has the colour of the text on it and leaves a gap to the edge.
    static void drawInnerRing(QPainter& painter, const Theme& theme, const QRectF& rect, int radius,
                              std::optional<ThemeColor> ground = std::nullopt);

    /// The round mark of one choice among several.
    static void drawRadio(QPainter& painter, const Theme& theme, const QRectF& box, bool isOn,
                          bool isEnabled);

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* answer) const override;
    void polish(QPalette& palette) override;
    void polish(QWidget* widget) override;
    using QProxyStyle::polish;

private:
    void drawButton(const QStyleOptionButton& option, QPainter& painter, const QWidget* widget) const;
    void drawFrame(const QRect& frame, QPainter& painter) const;
    void drawCheckBox(const QStyleOption& option, QPainter& painter) const;
    void drawMenuGround(const QRect& menu, QPainter& painter, const QWidget* widget) const;
    void drawMenuItem(const QStyleOptionMenuItem& option, QPainter& painter, const QWidget* widget) const;
    [[nodiscard]] QSize menuItemSize(const QStyleOptionMenuItem& option, const QSize& text,
                                     const QWidget* widget) const;
    void drawScrollBar(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const;

    const Theme* theme_;
};

} // namespace ombrel
