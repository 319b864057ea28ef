#include "ui/PlaceDrop.h"

#include "browser/HomeModel.h"
#include "ui/DraggedFiles.h"
#include "ui/FolderDrop.h"
#include "ui/PinDrag.h"

#include <QAbstractScrollArea>
#include <QDropEvent>
#include <QScrollBar>

#include <utility>

namespace ombrel {

PlaceDrop::PlaceDrop(QAbstractScrollArea& view, const Setting& setting, Find find)
    : QObject(&view), view_(&view), setting_(setting), find_(std::move(find)), edges_(setting.theme),
      spring_(setting.theme, setting.patience, nullptr) {
    connect(&edges_, &EdgeScroll::step, this, &PlaceDrop::scrollBy);
    connect(&spring_, &DropSpring::opened, this, [this] { Q_EMIT rested(pointer_); });
    connect(&spring_, &DropSpring::flashChanged, view.viewport(), qOverload<>(&QWidget::update));
    if (setting.folders)
        connect(setting.folders, &FolderDrop::planned, view.viewport(), qOverload<>(&QWidget::update));
}

bool PlaceDrop::isOn(const QRect& place) const {
    return target_.folder && target_.place == place && setting_.folders && setting_.folders->isAllowed();
}

bool PlaceDrop::isFlashing(const QRect& place) const {
    return target_.folder && target_.place == place && spring_.isFlashing(places_);
}

bool PlaceDrop::take(QEvent& event) {
    switch (event.type()) {
    case QEvent::DragEnter: enter(static_cast<QDropEvent&>(event)); return true;
    case QEvent::DragMove: follow(static_cast<QDropEvent&>(event)); return true;
    case QEvent::DragLeave: leave(); return true;
    case QEvent::Drop: drop(static_cast<QDropEvent&>(event)); return true;
    default: return false;
    }
}

void PlaceDrop::enter(QDropEvent& event) {
    leave();
    pin_ = PinDrag::pinOf(*event.mimeData());
    isWanted_ = pin_ || (setting_.folders ? setting_.folders->enter(event, *view_->viewport())
                                          : DraggedFiles::areIn(event.mimeData()));
    // Who refuses a drag that enters does not hear of the rest of its way.
    event.setAccepted(isWanted_);
}

void PlaceDrop::lookUnder(QPoint pointer) {
    pointer_ = pointer;
    Target target = isWanted_ ? find_(pointer, pin_.has_value()) : Target();
    // Pins go nowhere but among the pins.
    if (pin_ || target.insertion) target.folder.reset();
    if (target.folder != target_.folder || target.place != target_.place) ++places_;
    target_ = std::move(target);
    spring_.over(target_.folder && target_.opens ? std::optional(places_) : std::nullopt);
    view_->viewport()->update();
}

void PlaceDrop::answerPinning(QDropEvent& event) const {
    event.setDropAction(event.possibleActions() & Qt::LinkAction ? Qt::LinkAction : Qt::CopyAction);
    event.accept();
}

void PlaceDrop::follow(QDropEvent& event) {
    lookUnder(event.position().toPoint());
    event.ignore();
    if (setting_.folders) setting_.folders->follow(event, target_.folder);
    if (target_.insertion) answerPinning(event);
    if (isWanted_) edges_.over(pointer_.y(), view_->viewport()->height());
}

void PlaceDrop::drop(QDropEvent& event) {
    lookUnder(event.position().toPoint());
    event.ignore();
    if (target_.insertion) {
        if (pin_)
            setting_.pins.movePin(*pin_, *target_.insertion);
        else
            setting_.pins.pin(DraggedFiles::of(event.mimeData()), *target_.insertion);
        answerPinning(event);
    } else if (setting_.folders) {
        setting_.folders->drop(event, target_.folder);
    }
    leave();
}

void PlaceDrop::leave() {
    edges_.stop();
    isWanted_ = false;
    pin_.reset();
    lookUnder(pointer_);
    if (setting_.folders) setting_.folders->leave();
}

void PlaceDrop::scrollBy(int pixels) {
    QScrollBar& bar = *view_->verticalScrollBar();
    const int before = bar.value();
    bar.setValue(before + pixels);
    if (bar.value() == before) return;
    lookUnder(pointer_);
    if (setting_.folders) setting_.folders->aim(target_.folder);
}

} // namespace ombrel
