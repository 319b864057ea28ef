#include "ui/FileView.h"

#include "ui/FileViewAccessible.h"
#include "ui/LoadingLine.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QEvent>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>

namespace ombrel {
namespace {

using Place = BrowserModel::Place;
using How = SelectionGestures::How;

constexpr std::chrono::milliseconds placeholderDelay(300);
constexpr int placeholderCount = 8;

How howOf(Qt::KeyboardModifiers modifiers) {
    const bool isRange = modifiers & Qt::ShiftModifier, isControl = modifiers & Qt::ControlModifier;
    if (isRange) return isControl ? How::addRange : How::range;
    return isControl ? How::currentOnly : How::only;
}

std::optional<FileView::Step> stepOf(int key) {
    switch (key) {
    case Qt::Key_Up: return FileView::Step::up;
    case Qt::Key_Down: return FileView::Step::down;
    case Qt::Key_Left: return FileView::Step::left;
    case Qt::Key_Right: return FileView::Step::right;
    case Qt::Key_PageUp: return FileView::Step::pageUp;
    case Qt::Key_PageDown: return FileView::Step::pageDown;
    case Qt::Key_Home: return FileView::Step::home;
    case Qt::Key_End: return FileView::Step::end;
    default: return std::nullopt;
    }
}

} // namespace

FileView::FileView(BrowserModel& model, const Theme& theme, QWidget* parent)
    : QAbstractScrollArea(parent), model_(&model), theme_(&theme), gestures_(model), typeAhead_(model),
      icons_(theme), pointer_(*this, gestures_), loadingLine_(new LoadingLine(model, theme, viewport())) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    // Always there, though empty at first: columns must not shift when a folder turns out to be long.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    viewport()->setMouseTracking(true);
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
    connect(&facts_, &RowFacts::changed, this, repaint);
    connect(&typeAhead_, &TypeAhead::found, this, [this](std::size_t row) {
        touch();
        gestures_.select(row, How::only);
        reveal(row);
    });
    connect(theme_, &Theme::changed, this, [this] {
        icons_.forget();
        relayout();
    });
}

// ---- Where things are

void FileView::relayout() {
    extent_.setHeights(contentHeight(), viewport()->height());
    placeBars();
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
    sideways->setRange(0, std::max(0, contentWidth() - viewport()->width()));
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
    return parts.join(QStringLiteral(", "));
}

// ---- What the model says

void FileView::beginLocation() {
    pointer_.cancel();
    isTouched_ = false;
    sortShown_ = model_->sort();
    facts_.forget();
    extent_.scrollTo(0);
    horizontalScrollBar()->setValue(0);
    showsPlaceholders_ = false;
    placeholderDelay_.start();
}

void FileView::keepPlace() {
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
    }
    model_->setRow(Place::scroll, kept);
}

void FileView::takeItems() {
    facts_.forget();
    showsPlaceholders_ = false;
    extent_.setHeights(contentHeight(), viewport()->height());
    if (const auto kept = model_->row(Place::scroll)) {
        // Who sorts wants to see the beginning, unless there is an item to stay with.
        const bool isSorted = sortShown_ != model_->itemsSort();
        const bool stays = !isSorted || kept == model_->row(Place::current);
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
    state.isActive = hasFocus();
    state.isCurrent = state.isActive && model_->row(Place::current) == row;
    state.isHovered = pointer_.hoveredRow() == row;
    state.showsCheckBox = state.isSelected || state.isHovered || pointer_.hasTickedBoxes();
    return state;
}

void FileView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), theme_->color(ThemeColor::surface));
    for (const RowRange& range : rowsTouching(contentRect(event->rect())))
        for (std::size_t row = range.begin; row < range.end; ++row)
            paintRow(painter, row, rowRect(row), stateOf(row));
    if (showsPlaceholders_ && model_->items().empty())
        for (int index = 0; index < placeholderCount; ++index)
            paintPlaceholder(painter, index);
    if (const QRect band = pointer_.band(); !band.isEmpty()) {
        QColor inside = theme_->color(ThemeColor::accent);
        constexpr float bandOpacity = 0.15F;
        inside.setAlphaF(bandOpacity);
        painter.setPen(theme_->color(ThemeColor::accent));
        painter.setBrush(inside);
        painter.drawRect(band.adjusted(0, 0, -1, -1));
    }
}

QString FileView::toolTipAt(std::size_t row, QPoint) {
    const auto failure = model_->items()[row].readError();
    return failure ? QString::fromStdString(failure->systemText()) : QString();
}

// ---- Events

void FileView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    loadingLine_->setGeometry(0, 0, viewport()->width(), theme_->size(ThemeSize::loadingLine));
    relayout();
}

bool FileView::event(QEvent* event) {
    // Tab belongs to the window's walk, and keys that a view acts on must not become shortcuts first.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Space && !typeAhead_.text().isEmpty()) event->accept();
    }
    return QAbstractScrollArea::event(event);
}

bool FileView::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::Leave: pointer_.leave(); break;
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

void FileView::wheelEvent(QWheelEvent* event) {
    touch();
    if (event->modifiers() & (Qt::ShiftModifier | Qt::AltModifier) || event->pixelDelta().x() != 0)
        return QAbstractScrollArea::wheelEvent(event);
    if (const int pixels = event->pixelDelta().y(); pixels != 0) {
        scrollTo(offset() - pixels);
    } else {
        constexpr int notch = 120, stepsPerNotch = 3;
        wheelRest_ += event->angleDelta().y() * scrollStep() * stepsPerNotch;
        scrollTo(offset() - wheelRest_ / notch);
        wheelRest_ %= notch;
    }
    event->accept();
}

void FileView::keyPressEvent(QKeyEvent* event) {
    if (moveByKey(*event) || actByKey(*event)) return event->accept();
    if (stepOf(event->key())) return QAbstractScrollArea::keyPressEvent(event);
    event->ignore();
}

bool FileView::moveByKey(const QKeyEvent& event) {
    const auto step = stepOf(event.key());
    const auto& items = model_->items();
    if (!step || items.empty() || event.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) return false;
    const auto current = model_->row(Place::current);
    const std::size_t first = *step == Step::end ? items.size() - 1 : 0;
    const std::size_t row = current ? stepped(*current, *step) : first;
    const bool isSideways = *step == Step::left || *step == Step::right;
    if (isSideways && row == current) return false;
    touch();
    typeAhead_.clear();
    gestures_.select(row, howOf(event.modifiers()));
    reveal(row);
    return true;
}

bool FileView::actByKey(const QKeyEvent& event) {
    const auto current = model_->row(Place::current);
    const bool isPlain = !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const int key = event.key();
    if (event.matches(QKeySequence::SelectAll)) {
        touch();
        gestures_.selectAll();
        return true;
    }
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) &&
        (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        if (current) Q_EMIT openRequested(*current);
        return current.has_value();
    }
    if (key == Qt::Key_Escape && (gestures_.hasBand() || !typeAhead_.text().isEmpty())) {
        pointer_.cancel();
        typeAhead_.clear();
        return true;
    }
    if (key == Qt::Key_Space && event.modifiers() & Qt::ControlModifier && current) {
        gestures_.select(*current, How::toggle);
        return true;
    }
    const QString text = event.text();
    const bool isTyped = isPlain && !text.isEmpty() && text.front().isPrint();
    if (!isTyped || (text == QLatin1String(" ") && typeAhead_.text().isEmpty())) return false;
    typeAhead_.type(text);
    return true;
}

void FileView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
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
