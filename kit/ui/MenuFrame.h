#pragma once

#include <QFrame>

namespace ombrel {

class Theme;

/// What floats like a menu and holds something else: a rounded ground in the colours of menus, with room
/// for its outline and for the rounding at its top and bottom. Either a popup or a part of a window.
class MenuFrame : public QFrame {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit MenuFrame(const Theme& theme, QWidget* parent = nullptr, Qt::WindowFlags flags = {});

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

    const Theme* theme_;

private:
    void takeColors();
};

} // namespace ombrel
