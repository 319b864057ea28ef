#include "ui/FileViewPointer.h"

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

constexpr std::chrono::milliseconds edgeScrollInterval(16);
constexpr std::chrono::seconds bandPatience(2); // that long arriving items wait for a band to end
constexpr int edge = 24;                        // pixels at the top and bottom within which a band scrolls

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
    : view_(&view), gestures_(&gestures) {
    edgeScroll_.setInterval(edgeScrollInterval);
    connect(&edgeScroll_, &QTimer::timeout, this, &FileViewPointer::scrollAtEdge);
    patience_.setSingleShot(true);
    patience_.setInterval(bandPatience);
    connect(&patience_, &QTimer::timeout, this, [this] { view_->model().setHeld(false); });
}

void FileViewPointer::press(QMouseEvent& event) {
    const bool isLeft = event.button() == Qt::LeftButton;
    if (!isLeft && event.button() != Qt::RightButton) return event.ignore();
    cancel();
    view_->touch();
    const QPoint at = event.position().toPoint();
    const auto row = view_->rowAt(at);
    const auto content = view_->contentRect(QRect(at, QSize(1, 1)));
    press_ = Press{.at = at,
                   .contentX = content.x,
                   .contentY = content.y,
                   .rowToSelect = std::nullopt,
                   .mayBand = isLeft && !row,
                   .mode = bandModeOf(event.modifiers())};
    if (row)
        pressRow(*row, event);
    else if (!(event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)))
        gestures_->clear();
}

void FileViewPointer::pressRow(std::size_t row, const QMouseEvent& event) {
    const bool isSelected = view_->model().selection().contains(row);
    if (event.button() == Qt::RightButton) {
        if (!isSelected) gestures_->select(row, How::only);
        return;
    }
    switch (view_->partAt(row, press_->at)) {
    case FileView::Part::checkBox:
        gestures_->select(row, How::toggle);
        hasTickedBoxes_ = !view_->model().selection().empty();
        view_->viewport()->update();
        return;
    case FileView::Part::emptiness: press_->mayBand = true; break;
    case FileView::Part::content:
    case FileView::Part::name: break;
    }
    const How how = howOf(event.modifiers());
    if (how == How::only && isSelected && view_->model().selection().count() > 1) {
        press_->rowToSelect = row;
        view_->model().setRow(BrowserModel::Place::current, row);
        return;
    }
    gestures_->select(row, how);
}

void FileViewPointer::move(QMouseEvent& event) {
    pointer_ = event.position().toPoint();
    if (!(event.buttons() & Qt::LeftButton) || !press_) return hover(pointer_);
    if (gestures_->hasBand()) return moveBand();
    if (!press_->mayBand ||
        (pointer_ - press_->at).manhattanLength() < QGuiApplication::styleHints()->startDragDistance())
        return;
    press_->rowToSelect.reset();
    gestures_->beginBand(press_->mode);
    view_->model().setHeld(true);
    patience_.start();
    edgeScroll_.start();
    moveBand();
}

void FileViewPointer::release(QMouseEvent& event) {
    if (event.button() != Qt::LeftButton && event.button() != Qt::RightButton) return event.ignore();
    if (press_ && press_->rowToSelect) gestures_->select(*press_->rowToSelect, How::only);
    cancel();
    hover(event.position().toPoint());
}

void FileViewPointer::doubleClick(QMouseEvent& event) {
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
}

void FileViewPointer::cancel() {
    const bool hadBand = gestures_->hasBand();
    press_.reset();
    gestures_->endBand();
    edgeScroll_.stop();
    patience_.stop();
    if (!hadBand) return;
    view_->model().setHeld(false);
    view_->viewport()->update();
}

QRect FileViewPointer::band() const {
    if (!press_ || !gestures_->hasBand()) return {};
    const QRect screen = view_->viewport()->rect();
    // What lies beyond the screen only has to be beyond it.
    const auto shift = view_->contentRect(QRect(0, 0, 1, 1));
    const auto left = std::clamp<qint64>(press_->contentX - shift.x, -edge, screen.width() + edge);
    const auto top = std::clamp<qint64>(press_->contentY - shift.y, -edge, screen.height() + edge);
    return QRect(QPoint(static_cast<int>(left), static_cast<int>(top)), pointer_).normalized();
}

void FileViewPointer::moveBand() {
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

void FileViewPointer::scrollAtEdge() {
    const int height = view_->viewport()->height();
    const int above = edge - pointer_.y(), below = pointer_.y() - (height - edge);
    const int distance = above > 0 ? -above : below > 0 ? below : 0;
    if (distance == 0) return;
    view_->scrollTo(view_->offset() + distance);
    moveBand();
}

} // namespace ombrel
