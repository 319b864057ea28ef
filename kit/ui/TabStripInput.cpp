#include "base/FileName.h"
#include "browser/BrowserTabsModel.h"
#include "services/AppSettings.h"
#include "ui/DraggedFiles.h"
#include "ui/DropSpring.h"
#include "ui/FolderDrop.h"
#include "ui/KeyStrokes.h"
#include "ui/LocalizedText.h"
#include "ui/TabStrip.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QTimerEvent>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <utility>

// What the user does with a tab strip.

namespace ombrel {
namespace {

/// How often a strip moves on while something is dragged at its edge, and how far.
constexpr std::chrono::milliseconds edgeBeat(30);
constexpr int edgeStepsPerTab = 12;

} // namespace

// ---- The pointer

TabStrip::Spot TabStrip::spotAt(QPoint point) const {
    if (!rect().contains(point)) return {};
    for (std::size_t tab = 0; tab < tabs_->count(); ++tab) {
        if (!tabRect(tab).contains(point)) continue;
        return {closeRect(tab).contains(point) ? Spot::Part::close : Spot::Part::tab, tab};
    }
    return {.part = Spot::Part::empty};
}

std::optional<std::size_t> TabStrip::tabAt(QPoint point) const {
    const Spot spot = spotAt(point);
    const bool isTab = spot.part == Spot::Part::tab || spot.part == Spot::Part::close;
    return isTab ? std::optional(spot.tab) : std::nullopt;
}

std::size_t TabStrip::gapAt(QPoint point) const {
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    std::size_t tab = 0;
    for (; tab < tabs_->count(); ++tab) {
        const int middle = shownRect(shownIndex(tab)).center().x();
        if (isRightToLeft ? point.x() > middle : point.x() < middle) break;
    }
    return tab;
}

void TabStrip::hover(const Spot& spot) {
    if (spot == hovered_) return;
    hovered_ = spot;
    update();
}

void TabStrip::mousePressEvent(QMouseEvent* event) {
    switch (event->button()) {
    case Qt::LeftButton:
    case Qt::MiddleButton: break;
    default: return event->ignore();
    }
    held_ = Held{spotAt(event->pos()), event->button(), event->pos()};
    update();
}

void TabStrip::mouseMoveEvent(QMouseEvent* event) {
    if (!held_) return hover(spotAt(event->pos()));
    const bool canBegin = held_->button == Qt::LeftButton && held_->spot.part == Spot::Part::tab &&
                          tabs_->count() > 1 &&
                          (event->pos() - held_->at).manhattanLength() >= QApplication::startDragDistance();
    if (held_->isDragging || canBegin) drag(event->pos());
}

void TabStrip::drag(QPoint point) {
    held_->isDragging = true;
    held_->at = point;
    held_->target = gapAt(point);
    const QRect view = viewRect();
    const bool isAtEdge = layout_.scrolls() && (point.x() < view.left() || point.x() > view.right());
    if (!isAtEdge)
        edgeScroll_.stop();
    else if (!edgeScroll_.isActive())
        edgeScroll_.start(static_cast<int>(edgeBeat.count()), this);
    update();
}

void TabStrip::timerEvent(QTimerEvent* event) {
    if (event->timerId() != edgeScroll_.timerId()) return QWidget::timerEvent(event);
    if (!held_) return edgeScroll_.stop();
    const bool isOn = (held_->at.x() > viewRect().center().x()) == (layoutDirection() == Qt::LeftToRight);
    const int step = layout_.tabWidth() / edgeStepsPerTab;
    scrollTo(scroll_ + (isOn ? step : -step));
    held_->target = gapAt(held_->at);
}

void TabStrip::mouseReleaseEvent(QMouseEvent* event) {
    if (!held_ || event->button() != held_->button) return;
    const Held held = *held_;
    forgetGesture();
    update();
    if (held.isDragging) {
        // The tab leaves a gap behind that everything after it moves up into.
        const std::size_t to = held.target > held.spot.tab ? held.target - 1 : held.target;
        tabs_->moveTab(held.spot.tab, to);
    } else if (spotAt(event->pos()) == held.spot) {
        click(held);
    }
    hover(spotAt(event->pos()));
}

void TabStrip::click(const Held& held) {
    const auto part = held.spot.part;
    if (part != Spot::Part::tab && part != Spot::Part::close) return;
    if (held.button == Qt::MiddleButton || part == Spot::Part::close)
        closeByPointer(held.spot.tab);
    else
        tabs_->select(held.spot.tab);
}

void TabStrip::closeByPointer(std::size_t tab) {
    heldWidth_ = layout_.tabWidth();
    tabs_->closeTab(tab);
}

void TabStrip::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && spotAt(event->pos()).part == Spot::Part::empty)
        tabs_->addTab(std::nullopt, BrowserTabsModel::Activation::activate);
    else
        mousePressEvent(event); // two clicks in quick succession, on buttons for closing say
}

void TabStrip::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    hover({});
    if (!heldWidth_) return;
    heldWidth_ = std::nullopt;
    arrange();
}

void TabStrip::wheelEvent(QWheelEvent* event) {
    if (!layout_.scrolls()) return event->ignore();
    constexpr int notch = 120;
    QPoint pixels = event->pixelDelta();
    if (pixels.isNull()) {
        const QPoint angle = event->angleDelta();
        wheelRest_ += (angle.y() != 0 ? angle.y() : angle.x()) * layout_.tabWidth();
        pixels.setY(wheelRest_ / notch);
        wheelRest_ %= notch;
    }
    scrollTo(scroll_ - (pixels.y() != 0 ? pixels.y() : pixels.x()));
    hover(spotAt(event->position().toPoint()));
    event->accept();
}

bool TabStrip::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        showToolTip(help->pos(), help->globalPos());
        return true;
    }
    return QWidget::event(event);
}

void TabStrip::showToolTip(QPoint at, QPoint globalAt) {
    const Spot spot = spotAt(at);
    QString text;
    QRect area;
    if (spot.part == Spot::Part::close) {
        area = closeRect(spot.tab);
        text = localized("ui.command.closeTab");
        const QString keys = KeyStrokes::shown(FileCommand::closeTab, settings_->keyPreset());
        if (!keys.isEmpty() && spot.tab == tabs_->selectedIndex())
            text = localized("ui.tooltip.withShortcut", {text.toStdString(), keys.toStdString()});
    } else if (spot.part == Spot::Part::tab) {
        area = tabRect(spot.tab);
        const auto& folder = tabs_->tab(spot.tab).currentURL();
        text = folder ? QString::fromStdString(FileName::displayText(folder->path())) : titleOf(spot.tab);
    }
    // Names may look like marked-up text.
    QToolTip::showText(globalAt, text, this, area);
}

// ---- The keyboard

void TabStrip::keyPressEvent(QKeyEvent* event) {
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    const std::size_t last = tabs_->count() - 1;
    switch (event->key()) {
    case Qt::Key_Escape:
        if (!held_ || !held_->isDragging) return event->ignore();
        forgetGesture();
        return update();
    case Qt::Key_Left:
    case Qt::Key_Right:
        if ((event->key() == Qt::Key_Right) != isRightToLeft) return focusTab(std::min(focused_ + 1, last));
        return focusTab(focused_ == 0 ? 0 : focused_ - 1);
    case Qt::Key_Home: return focusTab(0);
    case Qt::Key_End: return focusTab(last);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!event->isAutoRepeat()) tabs_->select(focused_);
        return;
    case Qt::Key_Delete:
        if (!event->isAutoRepeat()) tabs_->closeTab(focused_);
        return;
    default: QWidget::keyPressEvent(event);
    }
}

void TabStrip::focusTab(std::size_t tab) {
    focused_ = tab;
    revealTab(tab);
    QAccessibleEvent change(this, QAccessible::Focus);
    change.setChild(static_cast<int>(tab));
    QAccessible::updateAccessibility(&change);
    update();
}

void TabStrip::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    showsRing_ = event->reason() != Qt::MouseFocusReason;
    const bool returns =
        event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
    focusTab(returns ? focused_ : tabs_->selectedIndex());
}

void TabStrip::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}

void TabStrip::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::LayoutDirectionChange) arrange();
}

void TabStrip::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    heldWidth_ = std::nullopt;
    arrange();
    revealTab(tabs_->selectedIndex());
}

// ---- The menu

void TabStrip::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard)
        showMenu(focused_, mapToGlobal(tabRect(focused_).bottomLeft()));
    else
        showMenu(tabAt(event->pos()), event->globalPos());
    event->accept();
}

void TabStrip::showMenu(std::optional<std::size_t> tab, QPoint at) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](std::string_view key, bool isEnabled, auto&& perform) {
        QAction* const action = menu->addAction(localized(key));
        action->setEnabled(isEnabled);
        connect(action, &QAction::triggered, this, std::forward<decltype(perform)>(perform));
    };
    // The tabs may have changed by the time something is chosen: the pane is found again.
    const BrowserModel* const pane = tab ? &tabs_->tab(*tab) : nullptr;
    const auto withTab = [this, pane](auto perform) {
        return [this, pane, perform] {
            if (const auto now = tabs_->indexOf(*pane)) perform(*now);
        };
    };
    add("ui.command.newTab", true,
        [this] { tabs_->addTab(std::nullopt, BrowserTabsModel::Activation::activate); });
    if (pane) {
        add("ui.tabs.duplicate", true, withTab([this](std::size_t index) { duplicate(index); }));
        menu->addSeparator();
        add("ui.command.copyPath", pane->currentURL().has_value(), withTab([this](std::size_t index) {
                if (const auto& folder = tabs_->tab(index).currentURL()) Q_EMIT copyPathRequested(*folder);
            }));
        menu->addSeparator();
        add("ui.command.closeTab", true, withTab([this](std::size_t index) { tabs_->closeTab(index); }));
        add("ui.tabs.closeOthers", tabs_->count() > 1,
            withTab([this](std::size_t index) { closeOthers(index, 0); }));
        add("ui.tabs.closeToTheRight", *tab + 1 < tabs_->count(),
            withTab([this](std::size_t index) { closeOthers(index, index + 1); }));
    }
    menu->popup(at);
}

void TabStrip::duplicate(std::size_t tab) {
    BrowserModel& original = tabs_->tab(tab);
    BrowserModel& copy = tabs_->addTab(original.currentURL(), BrowserTabsModel::Activation::activate);
    copy.setSort(original.sort());
    // It opened beside the active tab.
    const auto from = tabs_->indexOf(copy), beside = tabs_->indexOf(original);
    tabs_->moveTab(*from, *from > *beside ? *beside + 1 : *beside);
}

void TabStrip::closeOthers(std::size_t tab, std::size_t from) {
    const BrowserModel& kept = tabs_->tab(tab);
    tabs_->select(tab);
    for (std::size_t index = tabs_->count(); index-- > from;)
        if (&tabs_->tab(index) != &kept) tabs_->closeTab(index);
}

// ---- What is dragged here

void TabStrip::setDrops(FolderDrop& drops) {
    drops_ = &drops;
    connect(&drops, &FolderDrop::planned, this, qOverload<>(&QWidget::update));
}

void TabStrip::setDropSpot(const Spot& spot) {
    const bool isTab = spot.part == Spot::Part::tab || spot.part == Spot::Part::close;
    const bool opens = isTab && spot.tab != tabs_->selectedIndex();
    spring_->over(opens ? std::optional(spot.tab) : std::nullopt);
    dropSpot_ = spot;
    update();
}

std::optional<FileURL> TabStrip::takeDropSpot(QPoint point) {
    setDropSpot(takesDrag_ ? spotAt(point) : Spot());
    const bool isTab = dropSpot_.part == Spot::Part::tab || dropSpot_.part == Spot::Part::close;
    return isTab ? tabs_->tab(dropSpot_.tab).currentURL() : std::nullopt;
}

/// Whether the drag is where folders are opened that are dropped. The event is answered then.
bool TabStrip::opensDropped(QDropEvent& event) const {
    if (dropSpot_.part != Spot::Part::empty) return false;
    // Opening takes nothing from where it is.
    for (const auto action : {Qt::LinkAction, Qt::CopyAction}) {
        if (!(event.possibleActions() & action)) continue;
        event.setDropAction(action);
        event.accept();
        return true;
    }
    return false;
}

void TabStrip::selectUnderDrag(std::size_t tab) {
    drops_->leadBack(*tabs_, [tabs = tabs_, before = QPointer(&tabs_->activeTab())] {
        if (const auto index = before ? tabs->indexOf(*before) : std::nullopt) tabs->select(*index);
    });
    tabs_->select(tab);
}

void TabStrip::dragEnterEvent(QDragEnterEvent* event) {
    takesDrag_ = drops_ && drops_->enter(*event, *this);
    // Who refuses a drag that enters does not hear of the rest of its way.
    event->setAccepted(takesDrag_);
    if (takesDrag_) drops_->aim(takeDropSpot(event->position().toPoint()));
}

void TabStrip::dragMoveEvent(QDragMoveEvent* event) {
    if (!takesDrag_) return event->ignore();
    drops_->follow(*event, takeDropSpot(event->position().toPoint()));
    (void)opensDropped(*event);
}

void TabStrip::dragLeaveEvent(QDragLeaveEvent*) {
    if (std::exchange(takesDrag_, false)) drops_->leave();
    setDropSpot({});
}

void TabStrip::dropEvent(QDropEvent* event) {
    if (!takesDrag_) return event->ignore();
    const auto folder = takeDropSpot(event->position().toPoint());
    const bool opens = opensDropped(*event);
    takesDrag_ = false;
    setDropSpot({});
    if (!opens) return drops_->drop(*event, folder);
    drops_->leave();
    Q_EMIT openFoldersRequested(DraggedFiles::of(event->mimeData()));
}

} // namespace ombrel
