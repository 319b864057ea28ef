#include "ui/DragRun.h"

#include <QCoreApplication>
#include <QDrag>
#include <QEvent>
#include <QObject>

namespace ombrel {
namespace {

/// Calls the drag that is under way off when a button is pressed. Qt shows the press to whatever is under the
/// pointer and drops at the release of whichever button comes first.
class OtherButtons final : public QObject {
public:
    OtherButtons() { QCoreApplication::instance()->installEventFilter(this); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            isCalledOff_ = true;
            QDrag::cancel();
            return true;
        // It may come before the drag's loop has ended.
        case QEvent::MouseButtonRelease: return isCalledOff_;
        default: return QObject::eventFilter(watched, event);
        }
    }

private:
    bool isCalledOff_ = false;
};

} // namespace

Qt::DropAction DragRun::toTheEnd(QDrag& drag, Qt::DropActions offered, Qt::DropAction usual) {
    const OtherButtons watching;
    return drag.exec(offered, usual);
}

} // namespace ombrel
