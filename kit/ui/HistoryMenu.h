#pragma once

#include "browser/BrowserHistory.h"

#include <QBasicTimer>
#include <QObject>

class QAbstractButton;

namespace ombrel {

class BrowserTabsModel;

/// The places that the back or the forward button leads to, the nearest first: listed when the button is held
/// or clicked with the right button, and by Alt+Down.
class HistoryMenu final : public QObject {
    Q_OBJECT

public:
    /// Lives as long as `button`; `tabs` must outlive it.
    HistoryMenu(QAbstractButton& button, BrowserTabsModel& tabs, BrowserHistory::Direction direction);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void show();

    QAbstractButton* button_;
    BrowserTabsModel* tabs_;
    BrowserHistory::Direction direction_;
    QBasicTimer hold_;
};

} // namespace ombrel
