#include "ui/KeyboardHold.h"

#include "ui/CommandBar.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QMenu>

namespace ombrel {
namespace {

bool isInCommandBar(const QWidget& widget) {
    const QWidget* part = &widget;
    while (part && !qobject_cast<const CommandBar*>(part))
        part = part->parentWidget();
    return part;
}

} // namespace

KeyboardHold::KeyboardHold(QAbstractScrollArea& view) : view_(&view) {
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

bool KeyboardHold::isHeld() const {
    return view_->hasFocus() || (holder_ != Holder::other && QApplication::focusWidget());
}

bool KeyboardHold::hasRing() const {
    return view_->hasFocus() || (holder_ == Holder::view && QApplication::focusWidget());
}

void KeyboardHold::follow(const QWidget* focused) {
    // Without any focus another program has the keyboard; it may come back to where it was.
    if (!focused || qobject_cast<const QMenu*>(focused)) return;
    const bool mayAct = holder_ != Holder::other && focused->window() == view_->window();
    const Holder before = holder_;
    holder_ = focused == view_                     ? Holder::view
              : mayAct && isInCommandBar(*focused) ? Holder::commandBar
                                                   : Holder::other;
    if (holder_ != before) view_->viewport()->update();
}

} // namespace ombrel
