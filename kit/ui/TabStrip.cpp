#include "ui/TabStrip.h"

#include "browser/BrowserTabsModel.h"
#include "services/AppSettings.h"
#include "ui/DropSpring.h"
#include "ui/FolderDrop.h"
#include "ui/GlyphButton.h"
#include "ui/KeyStrokes.h"
#include "ui/LocalizedText.h"
#include "ui/LocationLook.h"
#include "ui/OmbrelStyle.h"
#include "ui/TabStripAccessible.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QEasingCurve>
#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>

#include <algorithm>

namespace ombrel {
namespace {

/// A tab's outline: round above, straight into what lies below.
QPainterPath tabOutline(const QRectF& rect, double radius, double radiusUpright) {
    QPainterPath path;
    const double width = 2 * radius, height = 2 * radiusUpright;
    path.moveTo(rect.bottomLeft());
    path.lineTo(rect.left(), rect.top() + radiusUpright);
    path.arcTo(QRectF(rect.left(), rect.top(), width, height), 180, -90);
    path.arcTo(QRectF(rect.right() - width, rect.top(), width, height), 90, -90);
    path.lineTo(rect.bottomRight());
    path.closeSubpath();
    return path;
}

} // namespace

TabStrip::TabStrip(BrowserTabsModel& tabs, const Theme& theme, const AppSettings& settings, QWidget* parent)
    : QWidget(parent), tabs_(&tabs), theme_(&theme), settings_(&settings),
      newTab_(new GlyphButton(theme, Glyph::plus, ThemeSize::navigationButton, this)),
      scrollBack_(new GlyphButton(theme, Glyph::chevronLeft, ThemeSize::smallButton, this)),
      scrollOn_(new GlyphButton(theme, Glyph::chevronRight, ThemeSize::smallButton, this)),
      spring_(new DropSpring(theme, Theme::delay(ThemeDelay::springTab), this)) {
    TabStripAccessible::install();
    setAccessibleName(localized("ui.accessible.tabs"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setAcceptDrops(true);
    newTab_->setAccessibleName(localized("ui.command.newTab"));
    connect(newTab_, &QAbstractButton::clicked, this,
            [this] { tabs_->addTab(std::nullopt, BrowserTabsModel::Activation::activate); });
    scrollBack_->setAccessibleName(localized("ui.tabs.scrollBack"));
    scrollOn_->setAccessibleName(localized("ui.tabs.scrollOn"));
    for (GlyphButton* const arrow : {scrollBack_, scrollOn_}) {
        arrow->setFocusPolicy(Qt::NoFocus);
        arrow->setToolTip(arrow->accessibleName());
        arrow->setAutoRepeat(true);
        connect(arrow, &QAbstractButton::clicked, this, [this, arrow] {
            const int step = layout_.tabWidth();
            scrollTo(scroll_ + (arrow == scrollBack_ ? -step : step));
        });
    }
    for (std::size_t i = 0; i < tabs.count(); ++i)
        shown_.push_back({&tabs.tab(i), LocationLook::title(tabs.tab(i)), 1, 1});
    motion_.setStartValue(0.0);
    motion_.setEndValue(1.0);
    motion_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&motion_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { takeShares(value.toDouble()); });

    connect(&tabs, &BrowserTabsModel::tabAdded, this, &TabStrip::takeTab);
    connect(&tabs, &BrowserTabsModel::tabClosed, this, [this](std::size_t index) { dropTab(index); });
    connect(&tabs, &BrowserTabsModel::tabMoved, this, &TabStrip::moveShown);
    connect(&tabs, &BrowserTabsModel::activeTabChanged, this, [this] {
        if (!hasFocus()) focused_ = tabs_->selectedIndex();
        revealTab(tabs_->selectedIndex());
        QAccessibleEvent change(this, QAccessible::Selection);
        QAccessible::updateAccessibility(&change);
        update();
    });
    connect(&tabs, &BrowserTabsModel::titleChanged, this, [this](std::size_t index) {
        shown_[shownIndex(index)].title = LocationLook::title(tabs_->tab(index));
        QAccessibleEvent change(this, QAccessible::NameChanged);
        change.setChild(static_cast<int>(index));
        QAccessible::updateAccessibility(&change);
        update();
    });
    connect(spring_, &DropSpring::opened, this, &TabStrip::selectUnderDrag);
    connect(spring_, &DropSpring::flashChanged, this, qOverload<>(&QWidget::update));
    connect(&theme, &Theme::changed, this, &TabStrip::takeSizes);
    connect(&settings, &AppSettings::changed, this, &TabStrip::refreshTexts);
    refreshTexts();
    takeSizes();
}

TabStrip::~TabStrip() = default;

void TabStrip::refreshTexts() {
    const QString keys = KeyStrokes::shown(FileCommand::newTab, settings_->keyPreset());
    const QString name = newTab_->accessibleName();
    newTab_->setToolTip(keys.isEmpty()
                            ? name
                            : localized("ui.tooltip.withShortcut", {name.toStdString(), keys.toStdString()}));
}

// ---- What there is to show

std::size_t TabStrip::shownIndex(std::size_t tab) const {
    std::size_t index = 0;
    for (std::size_t open = 0; index < shown_.size(); ++index)
        if (shown_[index].pane && open++ == tab) break;
    return index;
}

void TabStrip::takeTab(std::size_t index) {
    forgetGesture();
    BrowserModel& pane = tabs_->tab(index);
    const auto at = shown_.begin() + static_cast<std::ptrdiff_t>(shownIndex(index));
    shown_.insert(at, {&pane, LocationLook::title(pane), 0, 0});
    if (index <= focused_ && tabs_->count() > 1) ++focused_;
    heldWidth_ = std::nullopt;
    startMotion();
}

void TabStrip::dropTab(std::size_t index) {
    forgetGesture();
    shown_[shownIndex(index)].pane = nullptr;
    if (index < focused_) --focused_;
    focused_ = std::min(focused_, tabs_->count() - 1);
    startMotion();
    if (hasFocus()) focusTab(focused_);
}

void TabStrip::moveShown(std::size_t from, std::size_t to) {
    forgetGesture();
    const auto source = shown_.begin() + static_cast<std::ptrdiff_t>(shownIndex(from));
    const Shown moved = std::move(*source);
    shown_.erase(source);
    shown_.insert(shown_.begin() + static_cast<std::ptrdiff_t>(shownIndex(to)), moved);
    if (focused_ == from)
        focused_ = to;
    else if (from < focused_ && to >= focused_)
        --focused_;
    else if (from > focused_ && to <= focused_)
        ++focused_;
    arrange();
}

void TabStrip::startMotion() {
    motion_.stop();
    for (Shown& shown : shown_)
        shown.shareFrom = shown.share;
    const int duration = isVisible() ? theme_->duration(ThemeDuration::tab) : 0;
    if (duration == 0) return takeShares(1);
    // What is shown from now on has its place before the first step.
    takeShares(0);
    motion_.setDuration(duration);
    motion_.start();
}

void TabStrip::takeShares(double progress) {
    for (Shown& shown : shown_)
        shown.share = shown.shareFrom + (shown.goal() - shown.shareFrom) * progress;
    if (progress >= 1) std::erase_if(shown_, [](const Shown& shown) { return !shown.pane; });
    arrange();
    if (tabs_->selectedIndex() < tabs_->count()) revealTab(tabs_->selectedIndex());
}

void TabStrip::forgetGesture() {
    held_ = std::nullopt;
    edgeScroll_.stop();
    hovered_ = {};
    dropSpot_ = {};
    spring_->over(std::nullopt);
}

// ---- Where it is shown

QSize TabStrip::sizeHint() const {
    return {theme_->size(ThemeSize::tabMinimumWidth) * 3, theme_->size(ThemeSize::tabStrip)};
}

QSize TabStrip::minimumSizeHint() const {
    return sizeHint();
}

void TabStrip::takeSizes() {
    setFixedHeight(theme_->size(ThemeSize::tabStrip));
    arrange();
}

void TabStrip::arrange() {
    const int space8 = theme_->size(ThemeSize::space8);
    const TabStripLayout::Sizes sizes{.margin = space8,
                                      .gap = theme_->size(ThemeSize::space2),
                                      .smallest = theme_->size(ThemeSize::tabMinimumWidth),
                                      .largest = theme_->size(ThemeSize::tabMaximumWidth),
                                      .arrow = theme_->size(ThemeSize::smallButton),
                                      .newTab = theme_->size(ThemeSize::navigationButton),
                                      .spare = space8};
    std::vector<double> shares;
    shares.reserve(shown_.size());
    for (const Shown& shown : shown_)
        shares.push_back(shown.share);
    layout_ = TabStripLayout(sizes, width(), shares, heldWidth_);
    scroll_ = std::clamp(scroll_, 0, layout_.mostScroll());
    placeButtons();
    update();
}

void TabStrip::placeButtons() {
    const QRect view(layout_.viewLeft(), 0, layout_.viewWidth(), height());
    const int tabTop = height() - theme_->size(ThemeSize::tab);
    const auto place = [&](GlyphButton* button, int left) {
        const QSize size = button->sizeHint();
        const int top = tabTop + (theme_->size(ThemeSize::tab) - size.height()) / 2;
        button->setGeometry(fromLeft(QRect(QPoint(left, top), size)));
    };
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    scrollBack_->setGlyph(isRightToLeft ? Glyph::chevronRight : Glyph::chevronLeft);
    scrollOn_->setGlyph(isRightToLeft ? Glyph::chevronLeft : Glyph::chevronRight);
    place(scrollBack_, view.left() - scrollBack_->sizeHint().width());
    place(scrollOn_, view.right() + 1);
    place(newTab_, layout_.newTabLeft());
    scrollBack_->setVisible(layout_.scrolls());
    scrollOn_->setVisible(layout_.scrolls());
    scrollBack_->setEnabled(scroll_ > 0);
    scrollOn_->setEnabled(scroll_ < layout_.mostScroll());
}

QRect TabStrip::fromLeft(const QRect& rect) const {
    return QStyle::visualRect(layoutDirection(), this->rect(), rect);
}

QRect TabStrip::viewRect() const {
    return fromLeft(QRect(layout_.viewLeft(), 0, layout_.viewWidth(), height()));
}

QRect TabStrip::shownRect(std::size_t shown) const {
    const int tab = theme_->size(ThemeSize::tab);
    return fromLeft(QRect(layout_.left(shown) - scroll_, height() - tab, layout_.widthOf(shown), tab));
}

QRect TabStrip::tabRect(std::size_t tab) const {
    return tab < tabs_->count() ? shownRect(shownIndex(tab)) & viewRect() : QRect();
}

bool TabStrip::hasCloseButton(std::size_t tab) const {
    return tab == tabs_->selectedIndex() || layout_.tabWidth() >= theme_->size(ThemeSize::tabWithCloseButton);
}

QRect TabStrip::closeRect(std::size_t tab) const {
    if (tab >= tabs_->count() || !hasCloseButton(tab)) return {};
    const QRect rect = shownRect(shownIndex(tab));
    const int side = theme_->size(ThemeSize::smallButton);
    const int top = rect.top() + (rect.height() - side) / 2;
    const QRect box(rect.right() + 1 - theme_->size(ThemeSize::space6) - side, top, side, side);
    return QStyle::visualRect(layoutDirection(), rect, box);
}

QString TabStrip::titleOf(std::size_t tab) const {
    return shown_[shownIndex(tab)].title;
}

void TabStrip::scrollTo(int scroll) {
    scroll = std::clamp(scroll, 0, layout_.mostScroll());
    if (scroll == scroll_) return;
    scroll_ = scroll;
    placeButtons();
    update();
}

void TabStrip::revealTab(std::size_t tab) {
    const std::size_t index = shownIndex(tab);
    if (index < shown_.size() && layout_.scrolls()) scrollTo(layout_.scrollToShow(index, scroll_));
}

// ---- How it looks

void TabStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_->color(ThemeColor::chrome));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.save();
    painter.setClipRect(viewRect());
    for (std::size_t i = 0; i < shown_.size(); ++i)
        if (layout_.widthOf(i) > 0 && shownRect(i).intersects(viewRect())) paintTab(painter, i);
    painter.restore();
    if (!held_ || !held_->isDragging) return;
    // Between two tabs, or beside the first or the last one.
    const int thickness = theme_->size(ThemeSize::space2);
    const bool isAtEnd = held_->target == tabs_->count();
    const int along =
        isAtEnd ? layout_.end() - thickness : layout_.left(shownIndex(held_->target)) - thickness;
    const int tab = theme_->size(ThemeSize::tab), inset = theme_->size(ThemeSize::space4);
    painter.fillRect(fromLeft(QRect(along - scroll_, height() - tab + inset, thickness, tab - 2 * inset)),
                     theme_->color(ThemeColor::accent));
}

void TabStrip::paintTab(QPainter& painter, std::size_t shown) const {
    const BrowserModel* const pane = shown_[shown].pane;
    const auto tab = pane ? tabs_->indexOf(*pane) : std::nullopt;
    const bool isActive = tab && *tab == tabs_->selectedIndex();
    const auto is = [&](const Spot& spot) {
        return tab && spot.tab == *tab && (spot.part == Spot::Part::tab || spot.part == Spot::Part::close);
    };
    const QRect rect = shownRect(shown);
    const double radius = theme_->size(ThemeSize::radiusField);
    const double line = theme_->size(ThemeSize::focusRing);
    const auto ground = [&]() -> std::optional<ThemeColor> {
        if (is(dropSpot_) && drops_->isAllowed()) return ThemeColor::selection;
        if (isActive) return ThemeColor::chromeRaised;
        if (held_ && held_->spot.part == Spot::Part::tab && is(held_->spot)) return ThemeColor::pressed;
        if (is(hovered_)) return ThemeColor::hover;
        return std::nullopt;
    }();
    if (ground) painter.fillPath(tabOutline(rect, radius, radius), theme_->color(*ground));
    if (isActive) {
        const QPainterPath below = tabOutline(QRectF(rect).adjusted(0, line, 0, 0), radius, radius - line);
        painter.fillPath(tabOutline(rect, radius, radius).subtracted(below),
                         theme_->color(ThemeColor::accent));
    }
    const bool hasRing = tab && ((showsRing_ && hasFocus() && *tab == focused_) || spring_->isFlashing(*tab));
    if (hasRing)
        OmbrelStyle::drawInnerRing(painter, *theme_, rect.adjusted(1, static_cast<int>(line) + 1, -1, -1),
                                   theme_->size(ThemeSize::radiusButton), ground);

    const auto ink = ground == ThemeColor::selection ? ThemeColor::onSelection
                     : isActive                      ? ThemeColor::text
                                                     : ThemeColor::textSecondary;
    const auto inTab = [&](const QRect& part) { return QStyle::visualRect(layoutDirection(), rect, part); };
    const int side = theme_->size(ThemeSize::smallIcon), padding = theme_->size(ThemeSize::space12);
    const int gap = theme_->size(ThemeSize::space8);
    painter.save();
    painter.setClipRect(rect & viewRect());
    const QRect icon(rect.left() + padding, rect.top() + (rect.height() - side) / 2, side, side);
    if (pane) LocationLook::drawIcon(painter, *theme_, *pane, inTab(icon), ink);
    const QRect close = tab ? closeRect(*tab) : QRect();
    const int taken = close.isEmpty() ? padding : theme_->size(ThemeSize::space6) + close.width() + gap / 2;
    const QRect text(icon.right() + 1 + gap, rect.top(), rect.width() - padding - side - gap - taken,
                     rect.height());
    if (text.width() > 0) {
        painter.setPen(theme_->color(ink));
        painter.drawText(inTab(text), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(shown_[shown].title, Qt::ElideRight, text.width()));
    }
    if (!close.isEmpty())
        paintCloseButton(painter, {Spot::Part::close, *tab}, close, isActive, theme_->color(ink));
    painter.restore();
}

void TabStrip::paintCloseButton(QPainter& painter, const Spot& spot, const QRect& rect, bool isActive,
                                const QColor& ink) const {
    const bool isPressed = held_ && held_->spot == spot;
    if (hovered_ == spot || isPressed) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme_->color(isPressed || !isActive ? ThemeColor::pressed : ThemeColor::hover));
        const int corner = theme_->size(ThemeSize::radiusButton);
        painter.drawRoundedRect(rect, corner, corner);
    }
    const int inset = (rect.width() - theme_->size(ThemeSize::smallIcon)) / 2;
    Glyphs::draw(painter, Glyph::close, QRectF(rect).adjusted(inset, inset, -inset, -inset), ink);
}

} // namespace ombrel
