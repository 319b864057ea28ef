#include "ui/MenuTrigger.h"

#include "ui/FileView.h"
#include "ui/Theme.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleHints>
#include <QTouchEvent>

#include <algorithm>
#include <chrono>

namespace ombrel {
namespace {

constexpr std::chrono::milliseconds longPress(500);

bool isNear(QPoint a, QPoint b) {
    return (a - b).manhattanLength() < QGuiApplication::styleHints()->startDragDistance();
}

} // namespace

MenuTrigger::MenuTrigger(FileView& view) : QObject(&view), view_(&view) {
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
    longPress_.setSingleShot(true);
    longPress_.setInterval(longPress);
    connect(&longPress_, &QTimer::timeout, this, [this] { Q_EMIT requested(pressedAt_); });
}

bool MenuTrigger::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress: takePress(*event); break;
    case QEvent::MouseButtonRelease: {
        const auto& release = static_cast<const QMouseEvent&>(*event);
        longPress_.stop();
        if (release.button() != Qt::RightButton || !isArmed_) break;
        isArmed_ = false;
        const QPoint at = release.globalPosition().toPoint();
        // The view has its release first: it may change what is selected.
        if (isNear(at, pressedAt_))
            QMetaObject::invokeMethod(this, [this, at] { Q_EMIT requested(at); }, Qt::QueuedConnection);
        break;
    }
    case QEvent::MouseMove: {
        const auto& move = static_cast<const QMouseEvent&>(*event);
        if (longPress_.isActive() && !isNear(move.globalPosition().toPoint(), pressedAt_)) longPress_.stop();
        break;
    }
    case QEvent::ContextMenu: {
        const auto& wanted = static_cast<const QContextMenuEvent&>(*event);
        if (wanted.reason() == QContextMenuEvent::Keyboard) Q_EMIT requested(placeForKeyboard());
        event->accept();
        return true;
    }
    case QEvent::KeyPress: {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (watched != view_ || key.key() != Qt::Key_F10 || key.modifiers() != Qt::ShiftModifier) break;
        Q_EMIT requested(placeForKeyboard());
        return true;
    }
    default: break;
    }
    return QObject::eventFilter(watched, event);
}

void MenuTrigger::takePress(const QEvent& event) {
    const auto& press = static_cast<const QMouseEvent&>(event);
    pressedAt_ = press.globalPosition().toPoint();
    isArmed_ = press.button() == Qt::RightButton;
    const bool isTouch = press.device() && press.device()->type() == QInputDevice::DeviceType::TouchScreen;
    if (isTouch && press.button() == Qt::LeftButton)
        longPress_.start();
    else
        longPress_.stop();
}

QPoint MenuTrigger::placeForKeyboard() const {
    const QRect whole = view_->viewport()->rect();
    const auto current = view_->model().row(BrowserModel::Place::current);
    if (!current || !view_->model().selection().contains(*current))
        return view_->viewport()->mapToGlobal(whole.center());
    view_->reveal(*current);
    const QRect row = view_->rowRect(*current).intersected(whole);
    // Where the names begin, in either direction of writing.
    const int inset = view_->theme().size(ThemeSize::checkBoxColumn);
    const int x = view_->isRightToLeft() ? row.right() - inset : row.left() + inset;
    return view_->viewport()->mapToGlobal(QPoint(x, row.bottom()));
}

} // namespace ombrel
