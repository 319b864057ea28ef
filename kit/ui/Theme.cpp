#include "ui/Theme.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace ombrel {
namespace {

struct ColorRow {
    ThemeColor token;
    QRgb light;
    QRgb dark;
};

using enum ThemeColor;
constexpr ColorRow colorTable[] = {
    {chrome, 0xFFE9EEEF, 0xFF191E20},
    {chromeRaised, 0xFFF4F7F7, 0xFF20272A},
    {surface, 0xFFFFFFFF, 0xFF22292C},
    {surfaceAlt, 0xFFF7F9F9, 0xFF1D2326},
    {menu, 0xFFFFFFFF, 0xFF2A3235},
    {border, 0xFFD5DDDF, 0xFF374145},
    {borderStrong, 0xFF6E7D82, 0xFF859499},
    {text, 0xFF172124, 0xFFE9EFF0},
    {textSecondary, 0xFF526167, 0xFFB0BDC1},
    {textDisabled, 0xFF98A4A8, 0xFF6C7B80},
    {accent, 0xFF0B6E75, 0xFF5CC6CB},
    {onAccent, 0xFFFFFFFF, 0xFF05282A},
    {selection, 0xFFCFE8E9, 0xFF1B484C},
    {onSelection, 0xFF172124, 0xFFE9EFF0},
    {selectionHover, 0xFFC2E0E2, 0xFF1F5055},
    {selectionInactive, 0xFFE1E7E8, 0xFF30393C},
    {hover, 0xFFEDF3F3, 0xFF2B3437},
    {pressed, 0xFFDDE7E8, 0xFF344044},
    {danger, 0xFFB3261E, 0xFFFF9A90},
    {dangerSoft, 0xFFFBE9E7, 0xFF45231F},
    {warning, 0xFF835400, 0xFFF2BE62},
    {warningSoft, 0xFFFFF1D6, 0xFF42351A},
    {success, 0xFF1C6F3A, 0xFF7CD39B},
    {successSoft, 0xFFE0F2E6, 0xFF1E3A29},
    {track, 0xFFD9E1E3, 0xFF3A4549},
    {folderFrontTop, 0xFFFBC675, 0xFFFBC675},
    {folderFrontBottom, 0xFFF0A04B, 0xFFF0A04B},
    {folderBack, 0xFFC97C34, 0xFFC97C34},
    {folderPaper, 0xFFFFF6E8, 0xFFFFF6E8},
    {folderGlyph, 0xFF8A4B12, 0xFF8A4B12},
    {thumbnailEdge, 0x1F000000, 0x1F000000},
    {badgeGround, 0xB3172124, 0xB3172124},
    {onBadge, 0xFFFFFFFF, 0xFFFFFFFF},
    {pageFill, 0xFFFFFFFF, 0xFFFFFFFF},
    {pageEdge, 0xFFB7C4C8, 0xFFB7C4C8},
    {pageFold, 0xFFDCE4E6, 0xFFDCE4E6},
    {emblemGrey, 0xFF64757B, 0xFF64757B},
    {emblemBlue, 0xFF2F6DB5, 0xFF2F6DB5},
    {emblemGreen, 0xFF2B8A55, 0xFF2B8A55},
    {emblemRed, 0xFFC8382F, 0xFFC8382F},
    {emblemPurple, 0xFF5B4BB5, 0xFF5B4BB5},
    {emblemOrange, 0xFFBF5B26, 0xFFBF5B26},
    {emblemOlive, 0xFF9A7A2A, 0xFF9A7A2A},
    {emblemTeal, 0xFF1F7F8C, 0xFF1F7F8C},
};
static_assert(std::size(colorTable) == themeColorCount);

struct SizeRow {
    ThemeSize token;
    int pixels;
};

constexpr SizeRow sizeTable[] = {
    {ThemeSize::space2, 2},
    {ThemeSize::space4, 4},
    {ThemeSize::space6, 6},
    {ThemeSize::space8, 8},
    {ThemeSize::space12, 12},
    {ThemeSize::space16, 16},
    {ThemeSize::space20, 20},
    {ThemeSize::space28, 28},
    {ThemeSize::radiusCheckBox, 4},
    {ThemeSize::radiusRow, 5},
    {ThemeSize::radiusButton, 6},
    {ThemeSize::radiusField, 8},
    {ThemeSize::radiusLargeCard, 10},
    {ThemeSize::hairline, 1},
    {ThemeSize::focusRing, 2},
    {ThemeSize::focusGap, 2},
    {ThemeSize::row, 32},
    {ThemeSize::compactRow, 24},
    {ThemeSize::menuRow, 30},
    {ThemeSize::header, 32},
    {ThemeSize::tabStrip, 40},
    {ThemeSize::tab, 34},
    {ThemeSize::tabMinimumWidth, 120},
    {ThemeSize::tabMaximumWidth, 216},
    {ThemeSize::tabWithCloseButton, 140},
    {ThemeSize::navigationRow, 48},
    {ThemeSize::statusBar, 28},
    {ThemeSize::button, 32},
    {ThemeSize::buttonMinimumWidth, 88},
    {ThemeSize::compactButton, 28},
    {ThemeSize::navigationButton, 32},
    {ThemeSize::smallButton, 24},
    {ThemeSize::field, 34},
    {ThemeSize::checkBox, 16},
    {ThemeSize::glyph, 16},
    {ThemeSize::listIcon, 20},
    {ThemeSize::smallIcon, 16},
    {ThemeSize::scrollBar, 10},
    {ThemeSize::scrollThumb, 6},
    {ThemeSize::scrollThumbMinimum, 32},
    {ThemeSize::loadingLine, 2},
    {ThemeSize::listInset, 4},
    {ThemeSize::smallImageWidth, 32},
    {ThemeSize::smallImageHeight, 32},
    {ThemeSize::smallCellWidth, 88},
    {ThemeSize::smallCellHeight, 76},
    {ThemeSize::mediumImageWidth, 56},
    {ThemeSize::mediumImageHeight, 48},
    {ThemeSize::mediumCellWidth, 104},
    {ThemeSize::mediumCellHeight, 100},
    {ThemeSize::largeImageWidth, 112},
    {ThemeSize::largeImageHeight, 96},
    {ThemeSize::largeCellWidth, 124},
    {ThemeSize::largeCellHeight, 152},
    {ThemeSize::extraLargeImageWidth, 224},
    {ThemeSize::extraLargeImageHeight, 192},
    {ThemeSize::extraLargeCellWidth, 236},
    {ThemeSize::extraLargeCellHeight, 252},
    {ThemeSize::cellGap, 6},
    {ThemeSize::cellInset, 12},
    {ThemeSize::cellCheckBox, 7},
    {ThemeSize::hitTarget, 24},
    {ThemeSize::dragEdge, 24},
    {ThemeSize::thumbnailBadge, 24},
    {ThemeSize::checkBoxColumn, 34},
    {ThemeSize::checkBoxLeft, 14},
    {ThemeSize::nameColumnMinimum, 140},
    {ThemeSize::dateColumn, 168},
    {ThemeSize::dateColumnMinimum, 90},
    {ThemeSize::typeColumn, 136},
    {ThemeSize::typeColumnMinimum, 70},
    {ThemeSize::sizeColumn, 92},
    {ThemeSize::sizeColumnMinimum, 60},
    {ThemeSize::folderColumn, 200},
    {ThemeSize::folderColumnMinimum, 90},
    {ThemeSize::overlayWidth, 420},
    {ThemeSize::overlayIcon, 104},
    {ThemeSize::overlayBadge, 40},
    {ThemeSize::progressWidth, 560},
    {ThemeSize::progressMinimumWidth, 440},
    {ThemeSize::jobBar, 6},
    {ThemeSize::speedGraph, 118},
    {ThemeSize::choiceCard, 54},
    {ThemeSize::conflictPictureWidth, 230},
    {ThemeSize::conflictPictureHeight, 138},
    {ThemeSize::conflictStackWidth, 480},
    {ThemeSize::reportRow, 24},
    {ThemeSize::reportRows, 240},
    {ThemeSize::pill, 20},
    {ThemeSize::dialogWidth, 440},
    {ThemeSize::dialogMaximumWidth, 640},
    {ThemeSize::dialogIcon, 48},
    {ThemeSize::settingsWidth, 880},
    {ThemeSize::settingsHeight, 600},
    {ThemeSize::settingsMinimumWidth, 640},
    {ThemeSize::settingsMinimumHeight, 440},
    {ThemeSize::settingsPages, 204},
    {ThemeSize::folderOptionsWidth, 460},
    {ThemeSize::onboardingWidth, 800},
    {ThemeSize::onboardingHeight, 600},
    {ThemeSize::quickLookWidth, 960},
    {ThemeSize::quickLookHeight, 720},
    {ThemeSize::quickLookHeader, 40},
    {ThemeSize::quickLookIcon, 128},
    {ThemeSize::applicationList, 288},
    {ThemeSize::menuMinimumWidth, 220},
    {ThemeSize::menuMaximumWidth, 360},
    {ThemeSize::addressMinimumWidth, 220},
    {ThemeSize::searchWidth, 240},
    {ThemeSize::searchMinimumWidth, 140},
    {ThemeSize::crumbChevron, 20},
    {ThemeSize::addressError, 28},
    {ThemeSize::windowWidth, 1280},
    {ThemeSize::windowHeight, 800},
    {ThemeSize::windowMinimumWidth, 640},
    {ThemeSize::windowMinimumHeight, 420},
    {ThemeSize::cascade, 28},
    {ThemeSize::commandBar, 44},
    {ThemeSize::statusButton, 24},
    {ThemeSize::tree, 232},
    {ThemeSize::treeMinimum, 160},
    {ThemeSize::treeFoldsBelow, 120},
    {ThemeSize::detailsPane, 284},
    {ThemeSize::detailsPaneMinimum, 220},
    {ThemeSize::sideMaximum, 480},
    {ThemeSize::fileViewMinimum, 320},
    {ThemeSize::splitterGrab, 7},
    {ThemeSize::roomForTree, 720},
    {ThemeSize::roomForDetails, 900},
    {ThemeSize::treeRow, 28},
    {ThemeSize::treeInset, 6},
    {ThemeSize::treeTop, 8},
    {ThemeSize::treeIndent, 16},
    {ThemeSize::treeChevron, 14},
    {ThemeSize::treeButton, 24},
    {ThemeSize::treeEdge, 3},
    {ThemeSize::homeMargin, 28},
    {ThemeSize::homeTop, 12},
    {ThemeSize::homeHead, 32},
    {ThemeSize::homeHeadGap, 4},
    {ThemeSize::homeSectionGap, 14},
    {ThemeSize::homeGap, 10},
    {ThemeSize::tile, 64},
    {ThemeSize::tileMinimumWidth, 220},
    {ThemeSize::tileInset, 15},
    {ThemeSize::tileIcon, 40},
    {ThemeSize::locationRow, 52},
    {ThemeSize::locationIcon, 28},
    {ThemeSize::volumeCard, 100},
    {ThemeSize::volumeCardMinimumWidth, 260},
    {ThemeSize::volumePlate, 40},
    {ThemeSize::capacityBar, 6},
    {ThemeSize::insertionLine, 2},
    {ThemeSize::preview, 158},
    {ThemeSize::previewPicture, 224},
    {ThemeSize::previewThumbnail, 130},
    {ThemeSize::previewIcon, 112},
    {ThemeSize::fanWidth, 140},
    {ThemeSize::fanHeight, 104},
    {ThemeSize::fanIcon, 96},
    {ThemeSize::fanShift, 26},
    {ThemeSize::fanDrop, 8},
    {ThemeSize::fanFrame, 3},
    {ThemeSize::factInset, 3},
    {ThemeSize::factGap, 1},
    {ThemeSize::detailsCaptions, 96},
    {ThemeSize::propertiesCaptions, 104},
    {ThemeSize::propertiesWidth, 420},
    {ThemeSize::propertiesHeight, 520},
};
static_assert(std::size(sizeTable) == themeSizeCount);

template <typename Row, std::size_t count>
constexpr bool isInTokenOrder(const Row (&table)[count]) {
    for (std::size_t i = 0; i < count; ++i)
        if (static_cast<std::size_t>(table[i].token) != i) return false;
    return true;
}
static_assert(isInTokenOrder(colorTable) && isInTokenOrder(sizeTable));

/// In high contrast, tokens that are drawn as another one.
ThemeColor highContrast(ThemeColor token) {
    switch (token) {
    case border: return borderStrong;
    case selection:
    case selectionHover: return accent;
    case onSelection: return onAccent;
    default: return token;
    }
}

/// The desktop's font of equal widths; where it names none, whatever serves as one.
QFont fixedFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (!QFontInfo(font).fixedPitch()) font = QFont(QStringLiteral("monospace"));
    font.setStyleHint(QFont::Monospace);
    return font;
}

/// Whether the interface speaks a language whose letters are as high as they are wide, and dense.
bool isDenseScript() {
    switch (QLocale().language()) {
    case QLocale::Chinese:
    case QLocale::Japanese:
    case QLocale::Korean: return true;
    default: return false;
    }
}

/// The height of the interface font that the sizes are given for.
constexpr double referenceFontHeight = 18;

} // namespace

Theme::Theme(const Appearance& appearance, QObject* parent) : QObject(parent), appearance_(appearance) {
    setInterfaceFont(QGuiApplication::font());
}

void Theme::setAppearance(const Appearance& appearance) {
    if (appearance == appearance_) return;
    appearance_ = appearance;
    Q_EMIT changed();
}

void Theme::setInterfaceFont(const QFont& font) {
    font_ = font;
    scale_ = std::round(QFontMetricsF(font).height()) / referenceFontHeight;
    Q_EMIT changed();
}

QColor Theme::color(ThemeColor token) const {
    const auto& row =
        colorTable[std::to_underlying(appearance_.isHighContrast ? highContrast(token) : token)];
    return QColor::fromRgba(appearance_.isDark ? row.dark : row.light);
}

int Theme::size(ThemeSize token) const {
    const int pixels = sizeTable[std::to_underlying(token)].pixels;
    if (token == ThemeSize::hairline) return pixels;
    const int scaled = std::max(1, static_cast<int>(std::lround(pixels * scale_)));
    if (token != ThemeSize::row && token != ThemeSize::compactRow) return scaled;
    constexpr int roomAroundText = 6;
    return std::max(scaled, static_cast<int>(std::ceil(QFontMetricsF(font_).height())) + roomAroundText);
}

QFont Theme::font(ThemeFont token) const {
    struct Setting {
        double factor;
        bool isSemibold;
    };
    constexpr double captionFactor = 0.92;
    const auto [factor, isSemibold] = [token]() -> Setting {
        switch (token) {
        case ThemeFont::caption: return {captionFactor, false};
        case ThemeFont::captionStrong: return {captionFactor, !isDenseScript()};
        case ThemeFont::body:
        case ThemeFont::fixed: return {1, false};
        case ThemeFont::bodyStrong: return {1, true};
        case ThemeFont::subtitle: return {1.15, true};
        case ThemeFont::title: return {1.4, true};
        case ThemeFont::display: return {1.85, true};
        }
        std::unreachable();
    }();
    QFont font = token == ThemeFont::fixed ? fixedFont() : font_;
    if (font_.pixelSize() > 0)
        font.setPixelSize(static_cast<int>(std::lround(font_.pixelSize() * factor)));
    else
        font.setPointSizeF(font_.pointSizeF() * factor);
    if (isSemibold) font.setWeight(QFont::DemiBold);
    return font;
}

int Theme::lineHeight(ThemeFont token) const {
    const QFont set = font(token);
    constexpr double leastOfDense = 1.4; // times the size of the letters
    const double least = isDenseScript() ? leastOfDense * QFontInfo(set).pixelSize() : 0;
    return std::max(QFontMetrics(set).height(), static_cast<int>(std::ceil(least)));
}

int Theme::duration(ThemeDuration token) const {
    if (appearance_.isMotionReduced) return 0;
    switch (token) {
    case ThemeDuration::progress:
    case ThemeDuration::fade: return 100;
    case ThemeDuration::tab: return 120;
    case ThemeDuration::springFlash: return 150;
    case ThemeDuration::expand: return 120;
    }
    std::unreachable();
}

std::chrono::milliseconds Theme::delay(ThemeDelay token) {
    using std::chrono::milliseconds;
    switch (token) {
    case ThemeDelay::springItem: return milliseconds(900);
    case ThemeDelay::springCrumb: return milliseconds(700);
    case ThemeDelay::springBranch: return milliseconds(600);
    case ThemeDelay::springTab: return milliseconds(500);
    case ThemeDelay::selectionQuiet: return milliseconds(120);
    case ThemeDelay::promptAnswers: return milliseconds(400);
    }
    std::unreachable();
}

QPalette Theme::palette() const {
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, ThemeColor token) {
        palette.setColor(role, color(token));
    };
    set(QPalette::Window, chromeRaised);
    set(QPalette::WindowText, text);
    set(QPalette::Base, surface);
    set(QPalette::AlternateBase, surfaceAlt);
    set(QPalette::ToolTipBase, menu);
    set(QPalette::ToolTipText, text);
    set(QPalette::PlaceholderText, textSecondary);
    set(QPalette::Text, text);
    set(QPalette::Button, surface);
    set(QPalette::ButtonText, text);
    set(QPalette::BrightText, onAccent);
    set(QPalette::Light, surface);
    set(QPalette::Midlight, hover);
    set(QPalette::Mid, border);
    set(QPalette::Dark, borderStrong);
    set(QPalette::Shadow, border);
    set(QPalette::Highlight, selection);
    set(QPalette::HighlightedText, onSelection);
    set(QPalette::Link, accent);
    set(QPalette::LinkVisited, accent);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
        palette.setColor(QPalette::Disabled, role, color(textDisabled));
    palette.setColor(QPalette::Inactive, QPalette::Highlight, color(selectionInactive));
    return palette;
}

} // namespace ombrel
