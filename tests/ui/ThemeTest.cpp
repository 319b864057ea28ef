#include "ui/Theme.h"

#include "ui/CapacityBar.h"
#include "ui/DesktopAppearance.h"
#include "ui/OmbrelStyle.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QPalette>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace ombrel {
namespace {

/// Relative luminance and contrast of the Web Content Accessibility Guidelines 2.1.
double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

struct Pair {
    ThemeColor ink;
    ThemeColor ground;
};

using enum ThemeColor;
constexpr double forText = 4.5, forOutlines = 3.0;
constexpr ThemeColor grounds[] = {chrome, chromeRaised, surface, surfaceAlt, menu, hover, pressed};

class ThemeContrast : public ::testing::TestWithParam<Appearance> {
protected:
    void expectAtLeast(double least, Pair pair) const {
        EXPECT_GE(contrast(theme.color(pair.ink), theme.color(pair.ground)), least)
            << "tokens " << static_cast<int>(pair.ink) << " on " << static_cast<int>(pair.ground);
    }
    const Theme theme{GetParam()};
};

TEST_P(ThemeContrast, OfTextIsFourAndAHalfToOne) {
    for (const auto ground : grounds)
        for (const auto ink : {text, textSecondary, accent, danger, warning, success})
            expectAtLeast(forText, {ink, ground});
    for (const auto ground : {selection, selectionHover})
        expectAtLeast(forText, {onSelection, ground});
    for (const auto ink : {text, textSecondary})
        expectAtLeast(forText, {ink, selectionInactive});
    // There all that stands on a selection is `onSelection`.
    if (!GetParam().isHighContrast) {
        for (const auto ground : {selection, selectionHover})
            expectAtLeast(forText, {textSecondary, ground});
        expectAtLeast(forText, {accent, selection});
    }
    for (const auto pair : {Pair{onAccent, accent}, Pair{danger, dangerSoft}, Pair{warning, warningSoft},
                            Pair{success, successSoft}, Pair{textSecondary, track}})
        expectAtLeast(forText, pair);
}

TEST_P(ThemeContrast, OfOutlinesIsThreeToOne) {
    for (const auto ground : grounds)
        for (const auto ink : {borderStrong, accent})
            expectAtLeast(forOutlines, {ink, ground});
    for (const auto ground : {selectionInactive, track, dangerSoft, warningSoft})
        for (const auto ink : {borderStrong, accent})
            expectAtLeast(forOutlines, {ink, ground});
    expectAtLeast(forOutlines, {danger, track});
    if (GetParam().isHighContrast)
        expectAtLeast(forOutlines, {border, surface});
    else
        for (const auto ink : {borderStrong, accent, warning})
            expectAtLeast(forOutlines, {ink, selection});
}

TEST_P(ThemeContrast, ShowsHowFullAVolumeIsOnEveryGround) {
    using Ground = CapacityBar::Ground;
    for (const auto& [token, ground] : {std::pair(surface, Ground::plain),
                                        {selection, Ground::selection},
                                        {selectionHover, Ground::selection},
                                        {selectionInactive, Ground::selectionInactive}})
        for (const bool isNearlyFull : {false, true}) {
            const QColor behind = theme.color(token);
            QImage picture(100, 6, QImage::Format_RGB32);
            picture.fill(behind);
            QPainter painter(&picture);
            CapacityBar::paint(painter, theme, picture.rect(), {.used = 0.5, .isNearlyFull = isNearlyFull},
                               ground, Qt::LeftToRight);
            const QColor filling = picture.pixelColor(25, 3), track = picture.pixelColor(75, 3),
                         edge = picture.pixelColor(75, 0);
            constexpr double decorative = 1.2;
            EXPECT_GE(std::max(contrast(track, behind), contrast(edge, behind)), decorative)
                << "the track on token " << static_cast<int>(token);
            EXPECT_GE(contrast(filling, track), forOutlines) << "on token " << static_cast<int>(token);
        }
}

INSTANTIATE_TEST_SUITE_P(Appearances, ThemeContrast,
                         ::testing::Values(Appearance{}, Appearance{.isDark = true},
                                           Appearance{.isHighContrast = true},
                                           Appearance{.isDark = true, .isHighContrast = true}),
                         [](const auto& tested) {
                             return std::string(tested.param.isDark ? "Dark" : "Light") +
                                    (tested.param.isHighContrast ? "HighContrast" : "");
                         });

TEST(ThemeSizes, GrowWithTheInterfaceFontAndRowsHoldTheirText) {
    QFont font(QStringLiteral("Noto Sans"));
    font.setPixelSize(13);
    Theme theme;
    theme.setInterfaceFont(font);
    EXPECT_EQ(theme.size(ThemeSize::row), 32);
    EXPECT_EQ(theme.size(ThemeSize::hairline), 1);
    font.setPixelSize(26);
    theme.setInterfaceFont(font);
    EXPECT_NEAR(theme.size(ThemeSize::row), 64, 2);
    EXPECT_EQ(theme.size(ThemeSize::hairline), 1);
    EXPECT_EQ(theme.font(ThemeFont::title).pixelSize(), 36);
}

TEST(ThemeFonts, LeaveRoomAroundDenseLettersAndDoNotMakeThemSmallAndBold) {
    const QLocale before;
    const Theme theme;
    const auto plainLine = theme.lineHeight(ThemeFont::body);
    EXPECT_TRUE(theme.font(ThemeFont::captionStrong).weight() > QFont::Normal);
    for (const auto language : {QLocale::Chinese, QLocale::Japanese, QLocale::Korean}) {
        QLocale::setDefault(QLocale(language));
        EXPECT_EQ(theme.font(ThemeFont::captionStrong).weight(), QFont::Normal);
        EXPECT_TRUE(theme.font(ThemeFont::bodyStrong).weight() > QFont::Normal);
        EXPECT_GE(theme.lineHeight(ThemeFont::body),
                  1.4 * QFontInfo(theme.font(ThemeFont::body)).pixelSize());
        EXPECT_GE(theme.lineHeight(ThemeFont::body), plainLine);
    }
    QLocale::setDefault(before);
}

TEST(ThemeMotion, IsNoneWhereItIsReduced) {
    Theme theme;
    EXPECT_GT(theme.duration(ThemeDuration::fade), 0);
    theme.setAppearance({.isMotionReduced = true});
    EXPECT_EQ(theme.duration(ThemeDuration::fade), 0);
}

TEST(AppearanceOfAPalette, IsDarkWhenItsWindowsAre) {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor::fromHsl(0, 0, 127));
    EXPECT_TRUE(DesktopAppearance::fromPalette(palette).isDark);
    palette.setColor(QPalette::Window, QColor::fromHsl(0, 0, 128));
    EXPECT_FALSE(DesktopAppearance::fromPalette(palette).isDark);
    EXPECT_TRUE(DesktopAppearance::fromPalette(Theme({.isDark = true}).palette()).isDark);
}

TEST(RingOfTheKeyboard, IsSeenOnASelectionOfTheAccent) {
    const Theme plain, loud({.isHighContrast = true});
    const auto middleOfEdge = [](const Theme& theme, int depth) {
        constexpr int side = 40;
        QImage image(side, side, QImage::Format_RGB32);
        image.fill(theme.color(ThemeColor::selection));
        QPainter painter(&image);
        OmbrelStyle::drawInnerRing(painter, theme, image.rect(), theme.size(ThemeSize::radiusRow),
                                   ThemeColor::selection);
        return image.pixelColor(depth, side / 2);
    };
    EXPECT_EQ(middleOfEdge(plain, 0), plain.color(ThemeColor::accent));
    const int gap = loud.size(ThemeSize::focusGap);
    EXPECT_EQ(middleOfEdge(loud, 0), loud.color(ThemeColor::accent));
    EXPECT_EQ(middleOfEdge(loud, gap), loud.color(ThemeColor::onAccent));
}

} // namespace
} // namespace ombrel
