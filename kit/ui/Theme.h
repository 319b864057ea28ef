#pragma once

#include <QColor>
#include <QFont>
#include <QObject>
#include <QPalette>

#include <chrono>
#include <cstdint>

namespace ombrel {

/// Every colour of the interface by what it is for.
enum class ThemeColor : std::uint8_t {
    chrome,            ///< the tab strip's row
    chromeRaised,      ///< active tab, navigation row, command bar, status bar, dialogs
    surface,           ///< file list, fields, cards, buttons
    surfaceAlt,        ///< navigation tree, details pane, background of the graph
    menu,              ///< menus, tooltips, completion list
    border,            ///< separators, outlines of fields and cards: decoration
    borderStrong,      ///< check boxes, radio buttons, scroll thumbs
    text,              ///< primary text, glyphs
    textSecondary,     ///< columns other than the name, captions, section heads
    textDisabled,      ///< disabled controls only
    accent,            ///< focus ring, primary button, progress, links, line of the active tab
    onAccent,          ///< text on `accent`
    selection,         ///< selected rows of the active view
    onSelection,       ///< text on the three selection colours
    selectionHover,    ///< selected and hovered
    selectionInactive, ///< selected while another view has the focus
    hover,             ///< hovered rows, buttons, menu items
    pressed,           ///< pressed or switched-on buttons
    danger,
    dangerSoft,
    warning,
    warningSoft,
    success,
    successSoft,
    track, ///< the empty part of bars
    folderFrontTop,
    folderFrontBottom,
    folderBack,
    folderPaper,
    folderGlyph,   ///< what standard folders carry on their front
    thumbnailEdge, ///< the outline of thumbnails, over them
    badgeGround,   ///< behind the glyph on a thumbnail, and behind a count
    onBadge,
    pageFill, ///< file icons: the sheet, its outline, its folded corner, and the emblems
    pageEdge,
    pageFold,
    emblemGrey,
    emblemBlue,
    emblemGreen,
    emblemRed,
    emblemPurple,
    emblemOrange,
    emblemOlive,
    emblemTeal,
};
inline constexpr std::size_t themeColorCount = static_cast<std::size_t>(ThemeColor::emblemTeal) + 1;

/// Every size of the interface, in device-independent pixels at an interface font of 13 px.
enum class ThemeSize : std::uint8_t {
    space2,
    space4,
    space6,
    space8,
    space12,
    space16,
    space20,
    space28,
    radiusCheckBox,
    radiusRow,
    radiusButton,
    radiusField,
    radiusLargeCard,
    hairline,
    focusRing,
    focusGap,
    row,
    compactRow,
    menuRow,
    header,
    tabStrip,
    tab,
    tabMinimumWidth,
    tabMaximumWidth,
    tabWithCloseButton, ///< the narrowest inactive tab that shows its button
    navigationRow,
    statusBar,
    button,
    buttonMinimumWidth,
    compactButton,
    navigationButton,
    smallButton, ///< inside something else: a tab, a field
    field,
    checkBox,
    glyph,
    listIcon,
    smallIcon,
    scrollBar,
    scrollThumb,
    scrollThumbMinimum,
    loadingLine,
    listInset,       ///< between the edge of a list and its rows
    smallImageWidth, ///< the icons view by size: what an image fits into, and the cell
    smallImageHeight,
    smallCellWidth,
    smallCellHeight,
    mediumImageWidth,
    mediumImageHeight,
    mediumCellWidth,
    mediumCellHeight,
    largeImageWidth,
    largeImageHeight,
    largeCellWidth,
    largeCellHeight,
    extraLargeImageWidth,
    extraLargeImageHeight,
    extraLargeCellWidth,
    extraLargeCellHeight,
    cellGap,      ///< least space between cells
    cellInset,    ///< above the first cells and below the last
    cellCheckBox, ///< of a cell's box from its corner
    hitTarget,    ///< of what is clicked, at least
    dragEdge,     ///< within which a drag scrolls
    thumbnailBadge,
    checkBoxColumn,
    checkBoxLeft, ///< of the box in its column
    nameColumnMinimum,
    dateColumn,
    dateColumnMinimum,
    typeColumn,
    typeColumnMinimum,
    sizeColumn,
    sizeColumnMinimum,
    folderColumn,
    folderColumnMinimum,
    overlayWidth,
    overlayIcon,
    overlayBadge,
    progressWidth,
    progressMinimumWidth,
    jobBar,
    speedGraph,
    choiceCard,
    conflictPictureWidth,
    conflictPictureHeight,
    conflictStackWidth, ///< below it the two cards stand one above the other
    reportRow,
    reportRows, ///< the height of the list of a report at most
    pill,
    dialogWidth,
    dialogMaximumWidth,
    dialogIcon,
    settingsWidth,
    settingsHeight,
    settingsMinimumWidth,
    settingsMinimumHeight,
    settingsPages, ///< the list of pages
    folderOptionsWidth,
    onboardingWidth,
    onboardingHeight,
    quickLookWidth,
    quickLookHeight,
    quickLookHeader,
    quickLookIcon,
    applicationList, ///< the height of the applications to choose from
    menuMinimumWidth,
    menuMaximumWidth,
    addressMinimumWidth,
    searchWidth,
    searchMinimumWidth,
    crumbChevron,
    addressError,
    windowWidth,
    windowHeight,
    windowMinimumWidth,
    windowMinimumHeight,
    cascade, ///< how far a new window lies below and beside the one before it
    commandBar,
    statusButton,
    tree,
    treeMinimum,
    treeFoldsBelow, ///< when it is dragged to that width
    detailsPane,
    detailsPaneMinimum,
    sideMaximum, ///< of tree and details pane
    fileViewMinimum,
    splitterGrab,
    roomForTree,    ///< the least width of a window with a tree
    roomForDetails, ///< the least width of a window with a details pane
    treeRow,
    treeInset, ///< between the edges of the tree and its rows
    treeTop,   ///< above the first row
    treeIndent,
    treeChevron,
    treeButton,
    treeEdge, ///< along the row of the folder that is shown
    homeMargin,
    homeTop,
    homeHead,
    homeHeadGap,
    homeSectionGap,
    homeGap, ///< between tiles, and between cards
    tile,
    tileMinimumWidth,
    tileInset,
    tileIcon,
    locationRow,
    locationIcon,
    volumeCard,
    volumeCardMinimumWidth,
    volumePlate,
    capacityBar,
    insertionLine,
    preview,          ///< the height of what shows the item; it is as wide as the pane has room
    previewPicture,   ///< a thumbnail in it is at most that wide
    previewThumbnail, ///< and that high
    previewIcon,
    fanWidth, ///< of one picture of several
    fanHeight,
    fanIcon,
    fanShift, ///< of the pictures behind, to the sides
    fanDrop,  ///< of the one in front, below the middle
    fanFrame,
    factInset,       ///< around a value, where its focus ring is
    factGap,         ///< between one value and the next
    detailsCaptions, ///< the column that says what the values are
    propertiesCaptions,
    propertiesWidth,
    propertiesHeight,
};
inline constexpr std::size_t themeSizeCount = static_cast<std::size_t>(ThemeSize::propertiesHeight) + 1;

/// How a text is set, relative to the interface font.
enum class ThemeFont : std::uint8_t {
    caption,
    captionStrong, ///< heads of sections; plain where letters are too dense to be small and bold
    body,
    bodyStrong,
    subtitle,
    title,
    display,
    fixed,
};

/// How long something moves.
enum class ThemeDuration : std::uint8_t {
    progress,    ///< bars and lines growing to a new value
    fade,        ///< overlays appearing
    tab,         ///< opening and closing
    springFlash, ///< of what opens because something is dragged over it
    expand,      ///< details of jobs, sections of Home
};

/// How long something waits, whether or not motion is reduced.
enum class ThemeDelay : std::uint8_t {
    springItem, ///< what is dragged rests over a folder in a view or on Home until it opens
    springCrumb,
    springBranch, ///< of the navigation tree
    springTab,
    selectionQuiet, ///< the selection rests until the details pane follows
    promptAnswers,  ///< a question is shown until its buttons take clicks and keys
};

/// What the desktop says about how things should look.
struct Appearance {
    bool isDark = false;
    bool isHighContrast = false;
    bool isMotionReduced = false;

    friend bool operator==(const Appearance&, const Appearance&) = default;
};

/// The tokens that the interface is drawn with: colours, sizes, fonts and durations. Nothing else in the
/// interface holds a number or a colour of its own. Main thread only.
class Theme final : public QObject {
    Q_OBJECT

public:
    explicit Theme(const Appearance& appearance = {}, QObject* parent = nullptr);

    [[nodiscard]] const Appearance& appearance() const noexcept { return appearance_; }
    void setAppearance(const Appearance& appearance);
    /// The desktop's interface font, from which sizes follow.
    void setInterfaceFont(const QFont& font);

    [[nodiscard]] QColor color(ThemeColor token) const;
    /// The colours in the places where Qt's own widgets look for them.
    [[nodiscard]] QPalette palette() const;

    /// In device-independent pixels, scaled with the interface font and rounded.
    [[nodiscard]] int size(ThemeSize token) const;
    [[nodiscard]] QFont font(ThemeFont token) const;
    /// From one line of a text to the next, in device-independent pixels.
    [[nodiscard]] int lineHeight(ThemeFont token) const;
    /// Milliseconds; 0 where motion is reduced.
    [[nodiscard]] int duration(ThemeDuration token) const;
    [[nodiscard]] static std::chrono::milliseconds delay(ThemeDelay token);

Q_SIGNALS:
    void changed();

private:
    Appearance appearance_;
    QFont font_;
    double scale_ = 1;
};

} // namespace ombrel
