#include "ui/FileView.h"

#include "services/AppSettings.h"
#include "services/ClipboardService.h"
#include "ui/FileViewAccessible.h"
#include "ui/LoadingLine.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QEvent>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QNativeGestureEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <utility>

namespace ombrel {
namespace {

using Place = BrowserModel::Place;
using How = SelectionGestures::How;

constexpr std::chrono::milliseconds placeholderDelay(300);
constexpr int placeholderCount = 8;

} // namespace

FileView::FileView(BrowserModel& model, const Theme& theme, QWidget* parent)
    : QAbstractScrollArea(parent), model_(&model), theme_(&theme), gestures_(model), typeAhead_(model),
      icons_(theme), pointer_(*this, gestures_), loadingLine_(nullptr), sortShown_(model.itemsSort()),
      drop_(*this) {
    // Its coming is an event of the viewport, which all of this view takes part in.
    loadingLine_ = new LoadingLine(model, theme, viewport());
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    // Always there, though empty at first: columns must not shift when a folder turns out to be long.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    viewport()->setMouseTracking(true);
    viewport()->setAcceptDrops(true);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    placeholderDelay_.setSingleShot(true);
    placeholderDelay_.setInterval(placeholderDelay);
    connect(&placeholderDelay_, &QTimer::timeout, this, [this] {
        showsPlaceholders_ = true;
        viewport()->update();
    });
    FileViewAccessible::install();
    connectModel();
}

FileView::~FileView() = default;

void FileView::connectModel() {
    const auto repaint = [this] { viewport()->update(); };
    connect(model_, &BrowserModel::locationChanged, this, &FileView::beginLocation);
    connect(model_, &BrowserModel::itemsAboutToChange, this, &FileView::keepPlace);
    connect(model_, &BrowserModel::itemsChanged, this, &FileView::takeItems);
    connect(model_, &BrowserModel::selectionChanged, this, [this] {
        if (model_->selection().empty()) pointer_.forgetTickedBoxes();
        viewport()->update();
        announceSelection();
    });
    connect(model_, &BrowserModel::currentRowChanged, this, [this] {
        viewport()->update();
        announceCurrent();
    });
    connect(model_, &BrowserModel::listingStateChanged, this, &FileView::showState);
    connect(model_, &BrowserModel::revealRequested, this, [this](std::size_t row) {
        touch();
        reveal(row);
    });
    connect(this, &FileView::scrolled, this, &FileView::placeEditor);
    connect(&facts_, &RowFacts::changed, this, repaint);
    connect(&typeAhead_, &TypeAhead::found, this, [this](std::size_t row) {
        touch();
        gestures_.select(row, How::only);
        reveal(row);
    });
    connect(theme_, &Theme::changed, this, [this] {
        icons_.forget();
        relayoutAround([this] { layOut(); });
    });
}

void FileView::setSources(const Sources& sources) {
    for (const QObject* before :
         {static_cast<const QObject*>(sources_.settings), static_cast<const QObject*>(sources_.clipboard),
          static_cast<const QObject*>(sources_.thumbnails)})
        if (before) before->disconnect(this);
    sources_ = sources;
    facts_.setSources(sources.settings, sources.clipboard);
    const auto formatAgain = [this] {
        facts_.forget();
        viewport()->update();
    };
    if (sources.settings) connect(sources.settings, &AppSettings::changed, this, &FileView::takeSetting);
    if (sources.clipboard) connect(sources.clipboard, &ClipboardService::cutURLsChanged, this, formatAgain);
    if (sources.thumbnails)
        connect(sources.thumbnails, &ThumbnailStore::changed, this, [this] { viewport()->update(); });
    formatAgain();
    layOut();
    relayout();
}

void FileView::takeSetting(Setting setting) {
    switch (setting) {
    case Setting::hideKnownExtensions: facts_.forget(); [[fallthrough]];
    case Setting::showItemCheckBoxes:
    case Setting::detailsColumns:
    case Setting::iconSize:
    case Setting::compactView: relayoutAround([this] { layOut(); }); break;
    default: break;
    }
}

bool FileView::hasCheckBoxes() const {
    return !sources_.settings || sources_.settings->showItemCheckBoxes();
}

// ---- Where things are

std::optional<FileView::Anchor> FileView::anchorAt(QPoint viewportPoint) const {
    const auto ranges = rowsTouching(contentRect(QRect(0, viewportPoint.y(), viewport()->width(), 1)));
    if (ranges.empty()) return std::nullopt;
    Anchor nearest;
    int least = INT_MAX;
    for (std::size_t row = ranges.front().begin; row < ranges.back().end; ++row) {
        const QRect rect = rowRect(row);
        const int distance = std::abs(rect.center().x() - viewportPoint.x());
        if (distance < least) nearest = {.row = row, .y = rect.center().y()};
        least = std::min(least, distance);
    }
    return nearest;
}

std::optional<FileView::Anchor> FileView::anchorToKeep() const {
    // At the top one stays at the top.
    if (offset() == 0) return std::nullopt;
    const RowRange visible = visibleRows();
    if (visible.empty()) return std::nullopt;
    const auto current = model_->row(Place::current);
    const std::size_t row = current && visible.contains(*current) ? *current : visible.begin;
    return Anchor{.row = row, .y = rowRect(row).center().y()};
}

void FileView::restore(const Anchor& anchor) {
    if (anchor.row >= model_->items().size()) return;
    const ContentRect rect = contentRect(anchor.row);
    scrollTo(rect.y + (rect.height - 1) / 2 - anchor.y);
}

void FileView::relayout() {
    extent_.setHeights(contentHeight(), viewport()->height());
    placeBars();
    placeEditor();
    viewport()->update();
}

void FileView::placeBars() {
    isPlacingBars_ = true;
    auto* const bar = verticalScrollBar();
    bar->setRange(0, extent_.barMaximum());
    bar->setPageStep(extent_.barPage());
    bar->setSingleStep(scrollStep());
    bar->setValue(extent_.barValue());
    auto* const sideways = horizontalScrollBar();
    const int beyond = model_->items().empty() ? 0 : contentWidth() - viewport()->width();
    sideways->setRange(0, std::max(0, beyond));
    sideways->setPageStep(viewport()->width());
    sideways->setSingleStep(scrollStep());
    isPlacingBars_ = false;
}

void FileView::scrollTo(qint64 offset) {
    const qint64 before = extent_.offset();
    extent_.scrollTo(offset);
    if (extent_.offset() == before) return;
    placeBars();
    pointer_.rowsMoved();
    viewport()->update();
    Q_EMIT scrolled();
}

void FileView::scrollContentsBy(int dx, int) {
    if (dx != 0) {
        viewport()->update();
        Q_EMIT scrolled();
    }
    if (isPlacingBars_) return;
    // The user has moved a bar.
    touch();
    const qint64 before = extent_.offset();
    extent_.scrollToBar(verticalScrollBar()->value());
    if (extent_.offset() == before) return;
    pointer_.rowsMoved();
    viewport()->update();
    Q_EMIT scrolled();
}

void FileView::reveal(std::size_t row) {
    const ContentRect rect = contentRect(row);
    const bool isFirst = row == 0, isLast = row + 1 == model_->items().size();
    if (isFirst || rect.y < offset())
        scrollTo(isFirst ? 0 : rect.y);
    else if (rect.bottom() > offset() + extent_.viewport())
        scrollTo((isLast ? contentHeight() : rect.bottom()) - extent_.viewport());
}

RowRange FileView::visibleRows() const {
    const auto ranges = rowsTouching(contentRect(viewport()->rect()));
    if (ranges.empty()) return {};
    return {ranges.front().begin, ranges.back().end};
}

FileView::ContentRect FileView::contentRect(QRect viewportRect) const {
    return {.x = viewportRect.x() + horizontalScrollBar()->value(),
            .y = viewportRect.y() + extent_.offset(),
            .width = viewportRect.width(),
            .height = viewportRect.height()};
}

QRect FileView::rowRect(std::size_t row) const {
    const ContentRect rect = contentRect(row);
    // Far off the screen is as good as just beyond it.
    const qint64 beyond = 2 * static_cast<qint64>(extent_.viewport()) + rect.height;
    const auto top = std::clamp<qint64>(rect.y - extent_.offset(), -beyond, beyond);
    return {rect.x - horizontalScrollBar()->value(), static_cast<int>(top), rect.width,
            static_cast<int>(rect.height)};
}

std::optional<std::size_t> FileView::rowAt(QPoint viewportPoint) const {
    if (!viewport()->rect().contains(viewportPoint)) return std::nullopt;
    const auto ranges = rowsTouching(contentRect(QRect(viewportPoint, QSize(1, 1))));
    return ranges.empty() ? std::nullopt : std::optional(ranges.front().begin);
}

QString FileView::spokenText(std::size_t row) {
    const auto& shown = facts(row);
    QStringList parts;
    for (const QString* part : {&shown.name, &shown.type, &shown.date, &shown.size})
        if (!part->isEmpty()) parts << *part;
    if (const auto failure = model_->items()[row].accessError())
        parts << QString::fromStdString(failure->systemText());
    if (shown.isCut) parts << localized("ui.accessible.cut");
    return parts.join(QStringLiteral(", "));
}

// ---- What the model says

void FileView::beginLocation() {
    pointer_.cancel();
    if (editor_) endRename(editor_, RenameEditor::Then::rest);
    isTouched_ = false;
    sortShown_ = model_->sort();
    facts_.forget();
    extent_.scrollTo(0);
    horizontalScrollBar()->setValue(0);
    showsPlaceholders_ = false;
    placeholderDelay_.start();
}

void FileView::keepPlace() {
    // Of two views of a pane only the one that is shown has a place to keep.
    if (isHidden()) return;
    std::optional<std::size_t> kept;
    const RowRange visible = visibleRows();
    if (isTouched_ && !visible.empty()) {
        const auto current = model_->row(Place::current);
        kept = visible.begin;
        if (current && visible.contains(*current))
            kept = current;
        else if (contentRect(visible.begin).y < offset() && visible.size() > 1)
            kept = visible.begin + 1;
        distanceKept_ = contentRect(*kept).y - offset();
        nameKept_ = model_->items()[*kept].name();
    }
    model_->setRow(Place::scroll, kept);
}

void FileView::takeItems() {
    facts_.forget();
    showsPlaceholders_ = false;
    extent_.setHeights(contentHeight(), viewport()->height());
    if (const auto kept = model_->row(Place::scroll); kept && !isHidden()) {
        // Who sorts wants to see the beginning, unless there is an item to stay with.
        const bool isSorted = sortShown_ != model_->itemsSort();
        const bool stays = !isSorted || kept == model_->row(Place::current);
        // One that has another name went elsewhere by itself, and the others stay where they are.
        if (stays && model_->items()[*kept].name() != nameKept_)
            reveal(*kept);
        else
            extent_.scrollTo(stays ? contentRect(*kept).y - distanceKept_ : 0);
        model_->setRow(Place::scroll, std::nullopt);
    }
    sortShown_ = model_->itemsSort();
    placeBars();
    pointer_.rowsMoved();
    viewport()->update();
    announceRows();
    Q_EMIT scrolled();
}

void FileView::announceRows() {
    if (!QAccessible::isActive()) return;
    if (auto* const accessible =
            dynamic_cast<FileViewAccessible*>(QAccessible::queryAccessibleInterface(this)))
        accessible->forgetRows();
    QAccessibleEvent event(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

void FileView::announceCurrent() {
    const auto current = model_->row(Place::current);
    if (!QAccessible::isActive() || !hasFocus() || !current) return;
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(static_cast<int>(*current));
    QAccessible::updateAccessibility(&event);
}

void FileView::announceSelection() {
    if (!QAccessible::isActive()) return;
    QAccessibleEvent event(this, QAccessible::SelectionWithin);
    QAccessible::updateAccessibility(&event);
}

void FileView::showState() {
    if (model_->listingState() != ListingState::Case::loading) {
        placeholderDelay_.stop();
        showsPlaceholders_ = false;
    }
    viewport()->update();
}

// ---- Painting

FileView::RowState FileView::stateOf(std::size_t row) const {
    RowState state;
    state.isSelected = model_->selection().contains(row);
    state.isActive = keyboard_.isHeld();
    state.isCurrent = keyboard_.hasRing() && model_->row(Place::current) == row;
    state.isHovered = pointer_.hoveredRow() == row;
    state.isDropTarget = drop_.targetRow() == row;
    state.showsCheckBox =
        hasCheckBoxes() && (state.isSelected || state.isHovered || pointer_.hasTickedBoxes());
    return state;
}

void FileView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), theme_->color(ThemeColor::surface));
    paintsAll_ = event->rect().contains(viewport()->rect());
    std::vector<std::size_t> raised;
    for (const RowRange& range : rowsTouching(contentRect(event->rect())))
        for (std::size_t row = range.begin; row < range.end; ++row) {
            const RowState state = stateOf(row);
            if (isRaised(row, state))
                raised.push_back(row);
            else
                paintRow(painter, row, rowRect(row), state);
        }
    for (const std::size_t row : raised)
        paintRow(painter, row, rowRect(row), stateOf(row));
    if (showsPlaceholders_ && model_->items().empty())
        for (int index = 0; index < placeholderCount; ++index)
            paintPlaceholder(painter, index);
    paintBand(painter);
    askForThumbnails();
}

void FileView::paintBand(QPainter& painter) const {
    const QRect band = pointer_.band();
    if (band.isEmpty()) return;
    QColor inside = theme_->color(ThemeColor::accent);
    constexpr float bandOpacity = 0.15F;
    inside.setAlphaF(bandOpacity);
    painter.setPen(theme_->color(ThemeColor::accent));
    painter.setBrush(inside);
    painter.drawRect(band.adjusted(0, 0, -1, -1));
}

QImage FileView::thumbnailOf(std::size_t row, QSize box) {
    if (!sources_.thumbnails) return {};
    const FileItemView item = model_->items()[row];
    if (!ThumbnailStore::mayHave(item)) return {};
    const double ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(box) * ratio).toSize();
    QImage image = sources_.thumbnails->thumbnail(item, pixels);
    image.setDevicePixelRatio(ratio);
    painted_.push_back({.item = model_->items().item(row), .box = pixels});
    return image;
}

void FileView::askForThumbnails() {
    auto painted = std::exchange(painted_, {});
    // A part that is painted anew says nothing of the rest of the screen.
    if (!sources_.thumbnails || !paintsAll_ || painted == wanted_) return;
    sources_.thumbnails->want(*this, painted);
    wanted_ = std::move(painted);
}

QString FileView::toolTipAt(std::size_t row, QPoint) {
    const auto failure = model_->items()[row].accessError();
    return failure ? QString::fromStdString(failure->systemText()) : QString();
}

// ---- Events

void FileView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    loadingLine_->setGeometry(0, 0, viewport()->width(), theme_->size(ThemeSize::loadingLine));
    relayout();
}

void FileView::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    // Others may be looked at now.
    wanted_.clear();
    if (sources_.thumbnails) sources_.thumbnails->want(*this, {});
}

bool FileView::viewportEvent(QEvent* event) {
    if (drop_.take(*event)) return true;
    switch (event->type()) {
    case QEvent::Leave: pointer_.leave(); break;
    case QEvent::NativeGesture: {
        auto* const gesture = static_cast<QNativeGestureEvent*>(event);
        if (gesture->gestureType() != Qt::ZoomNativeGesture) break;
        constexpr double step = 0.25; // of the size before
        pinch_ += gesture->value();
        if (std::abs(pinch_) < step) return true;
        Q_EMIT zoomRequested(pinch_ > 0 ? 1 : -1, gesture->position().toPoint());
        pinch_ = 0;
        return true;
    }
    case QEvent::ToolTip: {
        auto* help = static_cast<QHelpEvent*>(event);
        const auto row = rowAt(help->pos());
        const QString text = row ? toolTipAt(*row, help->pos()) : QString();
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), text, viewport(), rowRect(*row));
        return true;
    }
    default: break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void FileView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange || event->type() == QEvent::FontChange)
        relayoutAround([this] { layOut(); });
}

void FileView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    if (event->reason() == Qt::MouseFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        pointer_.noteFocusByClick();
    const bool isByKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (isByKey && !model_->row(Place::current) && !model_->items().empty())
        model_->setRow(Place::current, 0);
    viewport()->update();
}

void FileView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

} // namespace ombrel
