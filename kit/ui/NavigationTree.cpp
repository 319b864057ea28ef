#include "ui/NavigationTree.h"

#include "ui/LocalizedText.h"
#include "ui/PinDrag.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include <utility>

namespace ombrel {
namespace {

using Kind = FolderTreeModel::Kind;
using By = FolderTreeModel::By;
using Button = NavigationTreeDelegate::Button;

} // namespace

NavigationTree::NavigationTree(FolderTreeModel& model, const Theme& theme, PlaceIntents intents,
                               QWidget* parent)
    : QTreeView(parent), model_(&model), theme_(&theme), intents_(std::move(intents)),
      menus_(model.home(), intents_), delegate_(new NavigationTreeDelegate(model, theme, this)),
      drag_(new PlaceDrop(*this,
                          {.theme = theme,
                           .pins = model.home(),
                           .folders = intents_.drops,
                           .patience = Theme::delay(ThemeDelay::springBranch)},
                          [this](QPoint at, bool isPin) { return dropTargetAt(at, isPin); })) {
    viewport()->setAcceptDrops(true);
    setAccessibleName(localized("ui.accessible.tree"));
    setModel(&model);
    setItemDelegate(delegate_);
    setHeaderHidden(true);
    header()->setStretchLastSection(true);
    setFrameShape(QFrame::NoFrame);
    setIndentation(0);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setItemsExpandable(true);
    setExpandsOnDoubleClick(false);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setAutoFillBackground(true);

    connect(drag_, &PlaceDrop::rested, this, [this](const QPoint& at) { model_->open(indexAt(at)); });
    looking_.setSingleShot(true);
    connect(&looking_, &QTimer::timeout, this, &NavigationTree::lookAtPainted);
    connect(&model, &FolderTreeModel::opened, this,
            [this](const QModelIndex& index) { setExpanded(index, true); });
    connect(&model, &FolderTreeModel::currentChanged, this, &NavigationTree::showCurrent);
    connect(this, &QTreeView::expanded, &model, &FolderTreeModel::open);
    connect(&theme, &Theme::changed, this, &NavigationTree::takeLook);
    takeLook();
    showCurrent();
}

void NavigationTree::takeLook() {
    QPalette colors = theme_->palette();
    for (const auto role : {QPalette::Base, QPalette::Window})
        colors.setColor(role, theme_->color(ThemeColor::surfaceAlt));
    setPalette(colors);
    scheduleDelayedItemsLayout();
}

/// The base class keeps the margins for its header.
void NavigationTree::updateGeometries() {
    QTreeView::updateGeometries();
    const QMargins margins(0, theme_->size(ThemeSize::treeTop), 0, 0);
    if (viewportMargins() != margins) setViewportMargins(margins);
}

void NavigationTree::changeEvent(QEvent* event) {
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) viewport()->update();
}

NavigationRowParts NavigationTree::partsOf(const QModelIndex& index) const {
    return delegate_->parts(visualRect(index), index, layoutDirection());
}

// ---- What is seen

void NavigationTree::showCurrent() {
    const QModelIndex shown = model_->current();
    selectionModel()->select(shown, QItemSelectionModel::ClearAndSelect);
    viewport()->update();
    if (!shown.isValid()) return;
    if (!hasFocus()) {
        const bool scrolls = hasAutoScroll();
        setAutoScroll(false);
        selectionModel()->setCurrentIndex(shown, QItemSelectionModel::NoUpdate);
        setAutoScroll(scrolls);
    }
    if (!model_->isSearching()) scrollTo(shown);
}

void NavigationTree::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    NavigationTreeDelegate::Look look;
    look.isShown = index == model_->current();
    look.isCurrent = hasFocus() && index == currentIndex();
    look.isHovered = index == hovered_;
    look.isButtonHovered = look.isHovered && hoveredPart_ == Part::button;
    look.isButtonPressed = index == pressed_ && pressedPart_ == Part::button;
    look.isDropTarget = drag_->isOn(visualRect(index));
    look.isFlashing = drag_->isFlashing(visualRect(index));
    delegate_->paintRow(*painter, option.rect, index, look, layoutDirection());
    painted_.append(QPersistentModelIndex(index));
}

void NavigationTree::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    if (!painted_.isEmpty() && !looking_.isActive()) looking_.start(0);
    QPainter painter(viewport());
    if (const QRect line = insertionLine(); !line.isEmpty())
        painter.fillRect(line, theme_->color(ThemeColor::accent));
}

void NavigationTree::lookAtPainted() {
    QModelIndexList rows;
    for (const auto& index : std::exchange(painted_, {}))
        if (index.isValid()) rows.append(index);
    model_->look(rows);
}

// ---- What is done

void NavigationTree::toggle(const QModelIndex& index) {
    if (!model_->isOpen(index)) {
        setExpanded(index, false); // what is left of a branch that the model closed
        return model_->open(index);
    }
    for (QModelIndex above = currentIndex(); above.isValid(); above = above.parent())
        if (above.parent() == index) {
            setCurrentIndex(index);
            break;
        }
    const QPersistentModelIndex row(index);
    collapse(index);
    model_->close(row, By::hand);
}

void NavigationTree::activate(const QModelIndex& index, Qt::KeyboardModifiers modifiers) {
    const auto entry = model_->entry(index);
    if (entry.kind == Kind::home) {
        if (intents_.openHome) intents_.openHome();
        return;
    }
    if (entry.location && entry.location->needsPermission()) return pressButton(index);
    if (!entry.url || !entry.isOpenable()) return;
    const bool isForTab = modifiers.testFlag(Qt::ControlModifier);
    if (isForTab && intents_.openInNewTab) return intents_.openInNewTab(*entry.url);
    model_->setOrigin(index);
    if (intents_.open) intents_.open(*entry.url);
}

void NavigationTree::pressButton(const QModelIndex& index) {
    const auto entry = model_->entry(index);
    const auto button = NavigationTreeDelegate::buttonOf(entry);
    if (button == Button::allow) model_->home().allowAgain(entry.location->id);
    if (button == Button::eject) model_->home().eject(*entry.url);
}

NavigationTree::Part NavigationTree::partAt(const QModelIndex& index, const QPoint& at) const {
    if (!index.isValid() || !(index.flags() & Qt::ItemIsEnabled)) return Part::none;
    const auto parts = partsOf(index);
    if (parts.button.contains(at)) return Part::button;
    if (model_->hasChildren(index) && parts.chevron.contains(at)) return Part::chevron;
    return parts.row.contains(at) ? Part::row : Part::none;
}

void NavigationTree::hover(const QPoint& at) {
    const QModelIndex index = indexAt(at);
    const Part part = partAt(index, at);
    const QModelIndex hovered = part == Part::none ? QModelIndex() : index;
    if (hovered == hovered_ && part == hoveredPart_) return;
    hovered_ = hovered;
    hoveredPart_ = part;
    viewport()->update();
}

void NavigationTree::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const QModelIndex index = indexAt(at);
    pressedPart_ = partAt(index, at);
    pressed_ = pressedPart_ == Part::none ? QModelIndex() : index;
    pressedAt_ = at;
    pressedButton_ = event->button();
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) {
        // Back and forward belong to the window.
        if (event->button() != Qt::RightButton) event->ignore();
        pressed_ = QModelIndex();
        return;
    }
    if (!pressed_.isValid()) return;
    if (event->button() == Qt::LeftButton && pressedPart_ == Part::chevron) {
        toggle(pressed_);
        pressed_ = QModelIndex();
        return;
    }
    if (event->button() == Qt::LeftButton && pressedPart_ == Part::row)
        selectionModel()->setCurrentIndex(pressed_, QItemSelectionModel::NoUpdate);
    viewport()->update();
}

void NavigationTree::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    hover(at);
    const bool isDrag = event->buttons() & Qt::LeftButton && pressed_.isValid() &&
                        pressedPart_ == Part::row &&
                        (at - pressedAt_).manhattanLength() >= QApplication::startDragDistance();
    if (isDrag) beginDrag(std::exchange(pressed_, {}));
}

void NavigationTree::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const QPersistentModelIndex pressed = std::exchange(pressed_, {});
    const QModelIndex index = indexAt(at);
    viewport()->update();
    if (!pressed.isValid() || event->button() != pressedButton_ || index != pressed ||
        partAt(index, at) != pressedPart_)
        return;
    if (pressedPart_ == Part::button) return pressButton(index);
    if (pressedPart_ != Part::row) return;
    if (event->button() == Qt::LeftButton) return activate(index, event->modifiers());
    const auto entry = model_->entry(index);
    if (entry.url && entry.isOpenable() && intents_.openInTabBehind) intents_.openInTabBehind(*entry.url);
}

void NavigationTree::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void NavigationTree::leaveEvent(QEvent* event) {
    QTreeView::leaveEvent(event);
    hover(QPoint(-1, -1));
}

void NavigationTree::keyPressEvent(QKeyEvent* event) {
    const QModelIndex index = currentIndex();
    const bool isForward =
        event->key() == (layoutDirection() == Qt::RightToLeft ? Qt::Key_Left : Qt::Key_Right);
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) return event->ignore();
        if (const auto next = moveCursor(event->key() == Qt::Key_Up       ? MoveUp
                                         : event->key() == Qt::Key_Down   ? MoveDown
                                         : event->key() == Qt::Key_Home   ? MoveHome
                                         : event->key() == Qt::Key_End    ? MoveEnd
                                         : event->key() == Qt::Key_PageUp ? MovePageUp
                                                                          : MovePageDown,
                                         Qt::NoModifier);
            next.isValid())
            selectionModel()->setCurrentIndex(next, QItemSelectionModel::NoUpdate);
        return viewport()->update();
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (event->modifiers() & ~Qt::KeypadModifier) return event->ignore();
        if (isForward && model_->hasChildren(index)) {
            if (!model_->isOpen(index)) return toggle(index);
            const auto first = model_->index(0, 0, index);
            if (first.flags() & Qt::ItemIsEnabled)
                selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        } else if (!isForward) {
            if (model_->isOpen(index)) return toggle(index);
            if (index.parent().isValid())
                selectionModel()->setCurrentIndex(index.parent(), QItemSelectionModel::NoUpdate);
        }
        return viewport()->update();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (event->modifiers() & Qt::AltModifier) return event->ignore();
        return activate(index, event->modifiers());
    default: break;
    }
    const QString text = event->text();
    const bool isTyping = !text.isEmpty() && text.front().isPrint() && text != QLatin1String("*") &&
                          !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (!isTyping) return event->ignore();
    keyboardSearch(text);
    selectionModel()->select(model_->current(), QItemSelectionModel::ClearAndSelect);
    viewport()->update();
}

void NavigationTree::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    if (!currentIndex().isValid())
        selectionModel()->setCurrentIndex(model_->current().isValid() ? model_->current()
                                                                      : model_->index(0, 0),
                                          QItemSelectionModel::NoUpdate);
    const bool isByKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (isByKey && currentIndex().isValid()) scrollTo(currentIndex());
    viewport()->update();
}

void NavigationTree::fillMenu(QMenu& menu, const QModelIndex& index) const {
    const auto entry = model_->entry(index);
    menus_.fill(menu,
                {.url = entry.url,
                 .isHome = entry.kind == Kind::home,
                 .canOpen = entry.isOpenable(),
                 .location = entry.location ? std::optional(entry.location->id) : std::nullopt,
                 .needsPermission = entry.location && entry.location->needsPermission(),
                 .canBeEjected = entry.volume && entry.volume->canBeEjected,
                 .isEjecting = entry.volume && entry.volume->isEjecting,
                 .isPinned = entry.url && model_->home().isPinned(*entry.url)},
                PlaceMenu::Extent::tree);
}

void NavigationTree::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isByKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid() || !(index.flags() & Qt::ItemIsEnabled)) return;
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    viewport()->update();
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillMenu(*menu, index);
    menu->popup(isByKey ? viewport()->mapToGlobal(partsOf(index).text.bottomLeft()) : event->globalPos());
}

bool NavigationTree::viewportEvent(QEvent* event) {
    if (drag_->take(*event)) return true;
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        const QModelIndex index = indexAt(help->pos());
        if (partAt(index, help->pos()) == Part::button) {
            const bool isKey = NavigationTreeDelegate::buttonOf(model_->entry(index)) == Button::allow;
            QToolTip::showText(help->globalPos(),
                               localized(isKey ? "settings.locations.reauthorize" : "ui.volume.eject"), this,
                               partsOf(index).button);
            return true;
        }
    }
    return QTreeView::viewportEvent(event);
}

// ---- Drag and drop

void NavigationTree::beginDrag(const QModelIndex& index) {
    const auto entry = model_->entry(index);
    if (!entry.url || !entry.isOpenable()) return;
    PinDrag::run(*this, *entry.url, entry.kind == Kind::pin ? entry.place : std::nullopt, partsOf(index).row,
                 pressedAt_);
}

std::optional<std::size_t> NavigationTree::insertionAt(const QPoint& at, bool isPin) const {
    const QModelIndex index = indexAt(at);
    if (!index.isValid()) return std::nullopt;
    const auto entry = model_->entry(index);
    const std::size_t count = model_->home().pins().size();
    const QRect row = visualRect(index);
    // Between two rows lies a quarter of each; a pin that is dragged goes before or behind any row.
    const int margin = isPin ? row.height() / 2 : row.height() / 4;
    const bool isAbove = at.y()<row.top() + margin, isBelow = at.y()> row.bottom() - margin;
    if (entry.kind == Kind::pin) {
        if (isAbove) return *entry.place;
        if (isBelow) return *entry.place + 1;
        return std::nullopt;
    }
    const auto above = indexAbove(index);
    const bool isPinHead = entry.kind == Kind::head && index.row() == 1;
    if (isPinHead) return 0;
    const bool isBehindPins = entry.kind == Kind::head && index.row() == static_cast<int>(count) + 2;
    if (isBehindPins && above.isValid()) return count;
    return std::nullopt;
}

PlaceDrop::Target NavigationTree::dropTargetAt(const QPoint& at, bool isPin) const {
    if (const auto insertion = insertionAt(at, isPin)) return {.insertion = insertion};
    const QModelIndex index = indexAt(at);
    const auto entry = model_->entry(index);
    if (!entry.url || !entry.isOpenable()) return {};
    return {.folder = entry.url,
            .place = visualRect(index),
            .opens = model_->hasChildren(index) && !model_->isOpen(index)};
}

QRect NavigationTree::insertionLine() const {
    if (!drag_->insertion()) return {};
    // Home and the head stand above the pins.
    const auto row = static_cast<int>(*drag_->insertion()) + 2;
    const QModelIndex below = model_->index(row, 0);
    const QRect next = below.isValid() ? visualRect(below) : QRect();
    QModelIndex last = model_->index(row - 1, 0);
    while (!below.isValid() && model_->isOpen(last) && model_->rowCount(last) > 0)
        last = model_->index(model_->rowCount(last) - 1, 0, last);
    const int y = below.isValid() ? next.top() : visualRect(last).bottom() + 1;
    const int height = theme_->size(ThemeSize::insertionLine), inset = theme_->size(ThemeSize::treeInset);
    return {inset, y - height / 2, viewport()->width() - 2 * inset, height};
}

} // namespace ombrel
