#include "ui/FileViewPointer.h"

#include "ui/FileDrag.h"
#include "ui/FileView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QStyleHints>

#include <algorithm>
#include <chrono>

namespace ombrel {
namespace {

using How = SelectionGestures::How;
using BandMode = SelectionGestures::BandMode;

constexpr std::chrono::seconds bandPatience(2); // that long arriving items wait for a band to end

How howOf(Qt::KeyboardModifiers modifiers) {
    const bool isRange = modifiers & Qt::ShiftModifier, isAdding = modifiers & Qt::ControlModifier;
    if (isRange) return isAdding ? How::addRange : How::range;
    return isAdding ? How::toggle : How::only;
}

BandMode bandModeOf(Qt::KeyboardModifiers modifiers) {
    if (modifiers & Qt::ControlModifier) return BandMode::flip;
    return modifiers & Qt::ShiftModifier ? BandMode::add : BandMode::replace;
}

} // namespace

FileViewPointer::FileViewPointer(FileView& view, SelectionGestures& gestures)
    : view_(&view), gestures_(&gestures), edges_(view.theme()) {
    connect(&edges_, &EdgeScroll::step, this,
            [this](int pixels) { view_->scrollTo(view_->offset() + pixels); });
    patience_.setSingleShot(true);
    patience_.setInterval(bandPatience);
    slowClick_.setSingleShot(true);
    connect(&slowClick_, &QTimer::timeout, this, [this] {
        const auto row = std::exchange(slowRow_, std::nullopt);
        const auto& selection = view_->model().selection();
        if (row && view_->hasFocus() && selection.count() == 1 && selection.firstRow() == row)
            view_->beginRename(*row);
    });
    connect(&patience_, &QTimer::timeout, this, [this] { view_->model().setHeld(false); });
    connect(&view.model(), &BrowserModel::itemsSucceeded, this, [this](const ItemSuccession& succession) {
        if (press_ && press_->item) press_->item = succession.successor(*press_->item);
    });
}

void FileViewPointer::press(QMouseEvent& event) {
    const bool isLeft = event.button() == Qt::LeftButton, isMiddle = event.button() == Qt::MiddleButton;
    if (!isLeft && !isMiddle && event.button() != Qt::RightButton) return event.ignore();
    cancel();
    view_->touch();
    const QPoint at = event.position().toPoint();
    const auto row = view_->rowAt(at);
    const auto content = view_->contentRect(QRect(at, QSize(1, 1)));
    press_ = Press{.at = at,
                   .contentX = content.x,
                   .contentY = content.y,
                   .button = event.button(),
                   .item = row ? std::optional(view_->model().items().order()[*row]) : std::nullopt,
                   .mayBand = isLeft && !row,
                   .mode = bandModeOf(event.modifiers())};
    if (isMiddle) return;
    if (row)
        pressRow(*row, event);
    else if (!(event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)))
        gestures_->clear();
    hasJustFocused_ = false;
}

void FileViewPointer::pressRow(std::size_t row, const QMouseEvent& event) {
    const auto& selection = view_->model().selection();
    const bool isSelected = selection.contains(row);
    if (event.button() == Qt::RightButton) {
        if (!isSelected) gestures_->select(row, How::only);
        press_->mayDrag = true;
        return;
    }
    const auto part = view_->partAt(row, press_->at);
    if (part == FileView::Part::checkBox) {
        gestures_->select(row, How::toggle);
        hasTickedBoxes_ = !view_->model().selection().empty();
        view_->viewport()->update();
        return;
    }
    press_->mayBand = part == FileView::Part::emptiness;
    press_->mayDrag = !press_->mayBand;
    const How how = howOf(event.modifiers());
    press_->mayRename = part == FileView::Part::name && how == How::only && isSelected &&
                        selection.count() == 1 && !hasJustFocused_;
    // What is selected may be about to be dragged, with Ctrl as a copy.
    const bool waits = how == How::only ? selection.count() > 1 : how == How::toggle && press_->mayDrag;
    if (isSelected && waits) {
        press_->selects = true;
        press_->howToSelect = how;
        view_->model().setRow(BrowserModel::Place::current, row);
        return;
    }
    gestures_->select(row, how);
    press_->hasToggled = how == How::toggle;
}

std::optional<std::size_t> FileViewPointer::pressedRow() const {
    return press_ && press_->item ? view_->model().rowOf(*press_->item) : std::nullopt;
}

void FileViewPointer::move(QMouseEvent& event) {
    pointer_ = event.position().toPoint();
    if (!press_ || !(event.buttons() & press_->button)) return hover(pointer_);
    if (gestures_->hasBand()) return moveBand();
    const int distance = (pointer_ - press_->at).manhattanLength();
    if (distance < QGuiApplication::styleHints()->startDragDistance()) return;
    if (press_->mayBand)
        beginBand();
    else if (press_->mayDrag && event.buttons() == press_->button) // the release of another would drop
        beginDrag();
}

void FileViewPointer::beginBand() {
    press_->selects = false;
    const auto row = pressedRow();
    if (row && press_->hasToggled) gestures_->select(*row, How::toggle);
    gestures_->beginBand(press_->mode);
    view_->model().setHeld(true);
    patience_.start();
    moveBand();
}

void FileViewPointer::beginDrag() {
    const auto row = pressedRow();
    const bool isSelected = row && view_->model().selection().contains(*row);
    const auto button = press_->button;
    // Whoever takes the drop has the button's release too.
    cancel();
    // Nor does anyone say where the pointer went.
    leave();
    if (isSelected) FileDrag::run(*view_, button);
}

void FileViewPointer::release(QMouseEvent& event) {
    if (!press_ || event.button() != press_->button) return event.ignore();
    const Press press = *press_;
    const auto pressed = pressedRow();
    cancel();
    if (press.selects && pressed) gestures_->select(*pressed, press.howToSelect);
    const auto row = view_->rowAt(event.position().toPoint());
    const bool isClick = row && row == pressed;
    if (press.button == Qt::MiddleButton && isClick) Q_EMIT view_->tabRequested(*row);
    if (press.mayRename && isClick) {
        slowRow_ = row;
        slowClick_.start(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    }
    hover(event.position().toPoint());
}

void FileViewPointer::doubleClick(QMouseEvent& event) {
    slowClick_.stop();
    const auto row = view_->rowAt(event.position().toPoint());
    const bool opens = event.button() == Qt::LeftButton && row &&
                       view_->partAt(*row, event.position().toPoint()) != FileView::Part::checkBox &&
                       !(event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier));
    if (!opens) return press(event);
    Q_EMIT view_->openRequested(*row);
}

void FileViewPointer::leave() {
    if (hovered_.has_value()) view_->viewport()->update();
    hovered_.reset();
    pointer_ = QPoint(-1, -1);
}

void FileViewPointer::hover(QPoint at) {
    pointer_ = at;
    const auto row = view_->rowAt(at);
    if (row == hovered_) return;
    hovered_ = row;
    view_->viewport()->update();
}

void FileViewPointer::rowsMoved() {
    hovered_ =
        view_->viewport()->underMouse() && !gestures_->hasBand() ? view_->rowAt(pointer_) : std::nullopt;
    if (press_ && gestures_->hasBand()) moveBand();
}

void FileViewPointer::cancel() {
    const bool hadBand = gestures_->hasBand();
    slowClick_.stop();
    press_.reset();
    gestures_->endBand();
    edges_.stop();
    patience_.stop();
    if (!hadBand) return;
    view_->model().setHeld(false);
    view_->viewport()->update();
}

QRect FileViewPointer::band() const {
    if (!press_ || !gestures_->hasBand()) return {};
    const QRect screen = view_->viewport()->rect();
    // What lies beyond the screen only has to be beyond it.
    constexpr int beyond = 8;
    const auto shift = view_->contentRect(QRect(0, 0, 1, 1));
    const auto left = std::clamp<qint64>(press_->contentX - shift.x, -beyond, screen.width() + beyond);
    const auto top = std::clamp<qint64>(press_->contentY - shift.y, -beyond, screen.height() + beyond);
    return QRect(QPoint(static_cast<int>(left), static_cast<int>(top)), pointer_).normalized();
}

void FileViewPointer::moveBand() {
    edges_.over(pointer_.y(), view_->viewport()->height());
    const auto here = view_->contentRect(QRect(pointer_, QSize(1, 1)));
    const qint64 left = std::min<qint64>(press_->contentX, here.x),
                 right = std::max<qint64>(press_->contentX, here.x);
    const qint64 top = std::min(press_->contentY, here.y), bottom = std::max(press_->contentY, here.y);
    const FileView::ContentRect area{.x = static_cast<int>(left),
                                     .y = top,
                                     .width = static_cast<int>(right - left + 1),
                                     .height = bottom - top + 1};
    gestures_->moveBand(view_->rowsTouching(area), view_->rowAt(pointer_));
    view_->viewport()->update();
}

} // namespace ombrel
