#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>

namespace ombrel {

class FileView;

/// Tells when the user wants the context menu of a file view: by the right button when it is let go where it
/// was pressed, so that it can drag too; by the Menu key or Shift+F10; by a long press on a touch screen.
class MenuTrigger final : public QObject {
    Q_OBJECT

public:
    /// Lives as long as `view`.
    explicit MenuTrigger(FileView& view);

Q_SIGNALS:
    void requested(QPoint globalPosition);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QPoint placeForKeyboard() const;
    void takePress(const QEvent& event);

    FileView* view_;
    bool isArmed_ = false; ///< by a press of the right button
    QPoint pressedAt_;     ///< global
    QTimer longPress_;
};

} // namespace ombrel
