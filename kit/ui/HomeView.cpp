#include "ui/HomeView.h"

#include "ui/FolderDrop.h"
#include "ui/HomeTexts.h"
#include "ui/HomeViewAccessible.h"
#include "ui/LocalizedText.h"
#include "ui/PinDrag.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

using Section = HomeModel::Section;
using Part = HomeItem::Part;
using Direction = HomeLayout::Direction;

} // namespace

HomeView::HomeView(HomeModel& model, const Theme& theme, PlaceIntents intents, QWidget* parent)
    : QAbstractScrollArea(parent), model_(&model), theme_(&theme), intents_(std::move(intents)),
      menus_(model, intents_), painter_(model, theme),
      drag_(new PlaceDrop(*this,
                          {.theme = theme,
                           .pins = model,
                           .folders = intents_.drops,
                           .patience = Theme::delay(ThemeDelay::springItem)},
                          [this](QPoint at, bool isPin) { return dropTargetAt(at, isPin); })) {
    HomeViewAccessible::install();
    setAccessibleName(localized("ui.home.title"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setMouseTracking(true);
    viewport()->setAcceptDrops(true);
    connect(drag_, &PlaceDrop::rested, this, &HomeView::openUnderDrag);
    connect(&model, &HomeModel::changed, this, &HomeView::takeChange);
    connect(&model, &HomeModel::foldedChanged, this, &HomeView::takeChange);
    connect(&theme, &Theme::changed, this, &HomeView::takeChange);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(), qOverload<>(&QWidget::update));
    painter_.setDirection(layoutDirection());
    arrange();
}

// ---- Where things are

void HomeView::arrange() {
    layout_ = HomeLayout(*model_, *theme_, viewport()->width());
    const int page = viewport()->height();
    verticalScrollBar()->setRange(0, std::max(0, layout_.height() - page));
    verticalScrollBar()->setPageStep(page);
    verticalScrollBar()->setSingleStep(theme_->size(ThemeSize::locationRow));
    viewport()->update();
}

void HomeView::takeChange() {
    HomeViewAccessible::forgetItems(*this);
    arrange();
    for (auto* item : {&current_, &selected_, &hovered_, &pressed_}) {
        if (!*item || !layout_.rectOf(**item).isEmpty()) continue;
        // The keyboard stays in the section.
        const std::size_t count = model_->count((*item)->section);
        const bool isFolded = model_->isFolded((*item)->section);
        if (item == &current_ && (*item)->part == Part::entry && count > 0 && !isFolded)
            (*item)->index = count - 1;
        else if (item == &current_)
            *item = HomeItem{(*item)->section, Part::head, 0};
        else
            item->reset();
    }
}

int HomeView::offset() const {
    return verticalScrollBar()->value();
}

QPoint HomeView::toContents(const QPoint& inViewport) const {
    const QPoint at = layoutDirection() == Qt::RightToLeft
                          ? QPoint(viewport()->width() - 1 - inViewport.x(), inViewport.y())
                          : inViewport;
    return at + QPoint(0, offset());
}

QRect HomeView::rectOf(const HomeItem& item) const {
    const QRect rect = layout_.rectOf(item);
    if (rect.isEmpty()) return {};
    return QStyle::visualRect(layoutDirection(), viewport()->rect(), rect.translated(0, -offset()));
}

std::optional<HomeItem> HomeView::itemAt(const QPoint& at) const {
    return layout_.itemAt(toContents(at));
}

bool HomeView::isOnButton(const HomeItem& item, const QPoint& at) const {
    return painter_.buttonOf(item, rectOf(item)).contains(at);
}

void HomeView::reveal(const HomeItem& item) {
    const QRect rect = layout_.rectOf(item);
    const int margin = theme_->size(ThemeSize::homeGap);
    if (rect.top() - margin < offset()) verticalScrollBar()->setValue(rect.top() - margin);
    if (rect.bottom() + margin >= offset() + viewport()->height())
        verticalScrollBar()->setValue(rect.bottom() + margin - viewport()->height() + 1);
}

void HomeView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    arrange();
}

void HomeView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() != QEvent::LayoutDirectionChange) return;
    painter_.setDirection(layoutDirection());
    viewport()->update();
}

// ---- Painting

void HomeView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), theme_->color(ThemeColor::surface));
    const auto shown = [&](const QRect& rect) {
        return QStyle::visualRect(layoutDirection(), viewport()->rect(), rect.translated(0, -offset()));
    };
    for (const auto& [item, placed] : layout_.items()) {
        const QRect rect = shown(placed);
        if (!rect.intersects(event->rect())) continue;
        HomePainter::Look look;
        look.isHovered = item == hovered_;
        look.isSelected = item == selected_ && item.part != Part::head;
        look.isActive = keyboard_.isHeld();
        look.isCurrent = keyboard_.hasRing() && item == current_;
        look.isButtonHovered = look.isHovered && isButtonHovered_;
        look.isButtonPressed = isButtonPressed_ && item == pressed_;
        look.isDropTarget = drag_->isOn(rect) && !drag_->isFlashing(rect);
        painter_.paint(painter, item, rect, look);
    }
    if (!layout_.locationsFrame().isEmpty())
        painter_.paintLocationsFrame(painter, shown(layout_.locationsFrame()),
                                     layout_.emptyText().isEmpty() ? QRect() : shown(layout_.emptyText()));
    if (const QRect line = insertionLine(); !line.isEmpty())
        painter.fillRect(line, theme_->color(ThemeColor::accent));
}

// ---- What is done

void HomeView::announceFocus() {
    if (hasFocus() && current_) HomeViewAccessible::tellFocus(*this, *current_);
}

void HomeView::setCurrent(const HomeItem& item) {
    current_ = item;
    selected_ = item;
    reveal(item);
    viewport()->update();
    announceFocus();
}

std::optional<FileURL> HomeView::folderOf(const HomeItem& item) const {
    if (item.part != Part::entry || item.index >= model_->count(item.section)) return std::nullopt;
    switch (item.section) {
    case Section::quickAccess: return model_->pins()[item.index].url;
    case Section::locations:
        return model_->locations()[item.index].isActive() ? model_->locations()[item.index].url
                                                          : std::nullopt;
    case Section::volumes: return model_->volumes()[item.index].url;
    }
    std::unreachable();
}

void HomeView::activate(const HomeItem& item, Qt::KeyboardModifiers modifiers) {
    if (item.part == Part::head) return model_->setFolded(item.section, !model_->isFolded(item.section));
    if (item.part == Part::addLocation) return model_->addLocation();
    const auto folder = folderOf(item);
    if (!folder) {
        const bool isLost =
            item.section == Section::locations && model_->locations()[item.index].needsPermission();
        if (isLost) model_->allowAgain(model_->locations()[item.index].id);
        return;
    }
    if (modifiers.testFlag(Qt::ControlModifier) && intents_.openInNewTab)
        return intents_.openInNewTab(*folder);
    if (intents_.open) intents_.open(*folder);
}

void HomeView::pressButton(const HomeItem& item) {
    if (item.section == Section::volumes) return model_->eject(model_->volumes()[item.index].url);
    const GrantedPlace& location = model_->locations()[item.index];
    if (location.needsPermission()) return model_->allowAgain(location.id);
    showMenu(item, viewport()->mapToGlobal(painter_.buttonOf(item, rectOf(item)).bottomLeft()));
}

void HomeView::hover(const QPoint& at) {
    const auto item = viewport()->rect().contains(at) ? itemAt(at) : std::nullopt;
    const bool isOnItsButton = item && isOnButton(*item, at);
    if (item == hovered_ && isOnItsButton == isButtonHovered_) return;
    hovered_ = item;
    isButtonHovered_ = isOnItsButton;
    viewport()->update();
}

void HomeView::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const auto item = itemAt(at);
    pressed_ = item;
    pressedAt_ = at;
    pressedButton_ = event->button();
    isButtonPressed_ = event->button() == Qt::LeftButton && item && isOnButton(*item, at);
    if (event->button() == Qt::BackButton || event->button() == Qt::ForwardButton) return event->ignore();
    if (item && !isButtonPressed_ && event->button() != Qt::MiddleButton) setCurrent(*item);
    if (!item && event->button() == Qt::LeftButton) selected_.reset();
    viewport()->update();
}

void HomeView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    hover(at);
    const bool isDrag = event->buttons() & Qt::LeftButton && pressed_ && pressed_->part == Part::entry &&
                        !isButtonPressed_ &&
                        (at - pressedAt_).manhattanLength() >= QApplication::startDragDistance();
    if (isDrag) beginDrag(*std::exchange(pressed_, std::nullopt));
}

void HomeView::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const auto pressed = std::exchange(pressed_, std::nullopt);
    const bool wasButton = std::exchange(isButtonPressed_, false);
    viewport()->update();
    if (!pressed || itemAt(at) != pressed || event->button() != pressedButton_) return;
    if (event->button() == Qt::MiddleButton) {
        const auto folder = folderOf(*pressed);
        if (folder && intents_.openInTabBehind) intents_.openInTabBehind(*folder);
        return;
    }
    if (event->button() != Qt::LeftButton) return;
    if (wasButton) {
        if (isOnButton(*pressed, at)) pressButton(*pressed);
    } else if (pressed->part != Part::entry) {
        activate(*pressed);
    }
}

void HomeView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const auto item = itemAt(at);
    // Of heads and buttons each click counts.
    if (event->button() != Qt::LeftButton || !item || item->part != Part::entry || isOnButton(*item, at))
        return mousePressEvent(event);
    activate(*item, event->modifiers());
}

void HomeView::leaveEvent(QEvent* event) {
    QAbstractScrollArea::leaveEvent(event);
    hover(QPoint(-1, -1));
}

void HomeView::move(Direction direction) {
    if (layoutDirection() == Qt::RightToLeft) {
        if (direction == Direction::left)
            direction = Direction::right;
        else if (direction == Direction::right)
            direction = Direction::left;
    }
    if (!current_) return setCurrent(layout_.items().front().item);
    const bool isSideways = direction == Direction::left || direction == Direction::right;
    if (isSideways && current_->part == Part::head)
        return model_->setFolded(current_->section, direction == Direction::left);
    if (const auto next = layout_.neighbour(*current_, direction)) setCurrent(*next);
}

void HomeView::movePage(int pages) {
    if (!current_) return move(Direction::down);
    const int goal = layout_.rectOf(*current_).top() + pages * viewport()->height();
    auto reached = *current_;
    for (auto next = std::optional(reached); next;) {
        reached = *next;
        next = layout_.neighbour(reached, pages < 0 ? Direction::up : Direction::down);
        if (next && (pages < 0 ? layout_.rectOf(*next).top() < goal : layout_.rectOf(*next).top() > goal))
            break;
    }
    setCurrent(reached);
}

void HomeView::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() & (Qt::AltModifier | Qt::MetaModifier)) return event->ignore();
    switch (event->key()) {
    case Qt::Key_Up: return move(Direction::up);
    case Qt::Key_Down: return move(Direction::down);
    case Qt::Key_Left: return move(Direction::left);
    case Qt::Key_Right: return move(Direction::right);
    case Qt::Key_Home: return setCurrent(layout_.items().front().item);
    case Qt::Key_End: return setCurrent(layout_.items().back().item);
    case Qt::Key_PageUp: return movePage(-1);
    case Qt::Key_PageDown: return movePage(1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (current_) activate(*current_, event->modifiers());
        return;
    case Qt::Key_Space:
        if (current_ && current_->part != Part::entry) activate(*current_);
        return;
    default: event->ignore();
    }
}

void HomeView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    if (!current_) {
        const auto& items = layout_.items();
        const auto first =
            std::ranges::find_if(items, [](const auto& placed) { return placed.item.part == Part::entry; });
        current_ = (first == items.end() ? items.front() : *first).item;
    }
    viewport()->update();
    announceFocus();
}

void HomeView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

// ---- Menus

std::optional<PlaceMenu::Place> HomeView::placeOf(const HomeItem& item) const {
    if (item.part != Part::entry || item.index >= model_->count(item.section)) return std::nullopt;
    PlaceMenu::Place place;
    switch (item.section) {
    case Section::quickAccess:
        place.url = model_->pins()[item.index].url;
        place.isPinned = true;
        return place;
    case Section::locations: {
        const GrantedPlace& location = model_->locations()[item.index];
        place.url = location.url;
        place.canOpen = location.isActive();
        place.location = location.id;
        place.needsPermission = location.needsPermission();
        break;
    }
    case Section::volumes: {
        const VolumePlace& volume = model_->volumes()[item.index];
        place.url = volume.url;
        place.canBeEjected = volume.canBeEjected;
        place.isEjecting = volume.isEjecting;
        break;
    }
    }
    place.isPinned = place.url && model_->isPinned(*place.url);
    return place;
}

void HomeView::showMenu(const HomeItem& item, const QPoint& at) {
    const auto place = placeOf(item);
    if (!place) return;
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menus_.fill(*menu, *place, PlaceMenu::Extent::page);
    menu->popup(at);
}

void HomeView::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard) {
        if (!current_) return;
        return showMenu(*current_, viewport()->mapToGlobal(rectOf(*current_).center()));
    }
    if (const auto item = itemAt(event->pos())) showMenu(*item, event->globalPos());
}

bool HomeView::viewportEvent(QEvent* event) {
    if (drag_->take(*event)) return true;
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        const auto item = itemAt(help->pos());
        QString text;
        if (item && isOnButton(*item, help->pos()))
            text = painter_.buttonText(*item);
        else if (item && item->part == Part::entry && item->section == Section::locations)
            text = model_->locations()[item->index].reason;
        else if (item && item->part == Part::entry)
            if (const auto folder = folderOf(*item))
                text = QString::fromStdString(FileName::displayText(folder->path()));
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), text, this, rectOf(*item));
        return true;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

// ---- Drag and drop

void HomeView::beginDrag(const HomeItem& item) {
    const auto folder = folderOf(item);
    if (!folder) return;
    const bool isPin = item.section == Section::quickAccess;
    PinDrag::run(*this, *folder, isPin ? std::optional(item.index) : std::nullopt, rectOf(item), pressedAt_);
}

PlaceDrop::Target HomeView::dropTargetAt(const QPoint& at, bool isPin) const {
    const auto item = itemAt(at);
    const bool isTile = item && item->part == Part::entry && item->section == Section::quickAccess;
    // A tile that is dragged goes before or behind any other; what is to be pinned goes between two.
    const QRect tile = isTile ? layout_.rectOf(*item) : QRect();
    const int margin = isPin && isTile ? tile.width() / 2 : theme_->size(ThemeSize::tileInset);
    if (const auto before = layout_.insertionAt(toContents(at), margin)) return {.insertion = before};
    const bool isOnHead = item && item->part == Part::head && item->section == Section::quickAccess;
    if (isOnHead) return {.insertion = model_->pins().size()};
    const auto folder = item ? folderOf(*item) : std::nullopt;
    if (!folder) return {};
    return {.folder = folder, .place = rectOf(*item), .opens = intents_.open != nullptr};
}

void HomeView::openUnderDrag(const QPoint& at) {
    const auto item = itemAt(at);
    const auto folder = item ? folderOf(*item) : std::nullopt;
    if (!folder || !intents_.open) return;
    if (intents_.drops) intents_.drops->rememberPlace();
    intents_.open(*folder);
}

QRect HomeView::insertionLine() const {
    const auto& insertion = drag_->insertion();
    if (!insertion || model_->pins().empty()) return {};
    const bool isLast = *insertion >= model_->pins().size();
    const HomeItem beside{Section::quickAccess, Part::entry, isLast ? model_->pins().size() - 1 : *insertion};
    const QRect tile = layout_.rectOf(beside);
    if (tile.isEmpty()) return {};
    const int gap = theme_->size(ThemeSize::homeGap), width = theme_->size(ThemeSize::insertionLine);
    const int middle = isLast ? tile.right() + 1 + gap / 2 : tile.left() - gap / 2;
    const QRect line(middle - width / 2, tile.top() - offset(), width, tile.height());
    return QStyle::visualRect(layoutDirection(), viewport()->rect(), line);
}

} // namespace ombrel
