#include "ui/HistoryMenu.h"

#include "browser/BrowserTabsModel.h"
#include "ui/LocationLook.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTimerEvent>

#include <chrono>

namespace ombrel {
namespace {

constexpr std::chrono::milliseconds holdTime(400);
constexpr std::size_t mostPlaces = 12;

} // namespace

HistoryMenu::HistoryMenu(QAbstractButton& button, BrowserTabsModel& tabs, BrowserHistory::Direction direction)
    : QObject(&button), button_(&button), tabs_(&tabs), direction_(direction) {
    button.installEventFilter(this);
}

bool HistoryMenu::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            hold_.start(static_cast<int>(holdTime.count()), this);
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::Leave: hold_.stop(); break;
    case QEvent::ContextMenu: show(); return true;
    case QEvent::KeyPress: {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_Down || !(key->modifiers() & Qt::AltModifier)) break;
        show();
        return true;
    }
    default: break;
    }
    return QObject::eventFilter(watched, event);
}

void HistoryMenu::timerEvent(QTimerEvent* event) {
    if (event->timerId() != hold_.timerId()) return;
    hold_.stop();
    // Letting go is no click any more.
    button_->setDown(false);
    show();
}

void HistoryMenu::show() {
    hold_.stop();
    const auto places = tabs_->activeTab().historyPlaces(direction_, mostPlaces);
    if (places.empty()) return;
    auto* const menu = new QMenu(button_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (std::size_t i = 0; i < places.size(); ++i) {
        QString name = LocationLook::nameOf(places[i], tabs_->activeTab());
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        connect(menu->addAction(name), &QAction::triggered, this,
                [this, steps = i + 1] { tabs_->activeTab().goAlong(direction_, steps); });
    }
    menu->popup(button_->mapToGlobal(QPoint(0, button_->height())));
}

} // namespace ombrel
