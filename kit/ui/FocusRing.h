#pragma once

#include <QFocusFrame>

namespace ombrel {

/// The ring around the focused button of one window, outside its edge. It is shown when the focus came by the
/// keyboard or from the program, not after a click. Views draw their own rings inside, and so do buttons with
/// the property "drawsRing".
class FocusRing final : public QFocusFrame {
    Q_OBJECT

public:
    explicit FocusRing(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget* focused);
    QWidget* window_;
};

} // namespace ombrel
