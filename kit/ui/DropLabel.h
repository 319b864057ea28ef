#pragma once

#include <QString>
#include <QWidget>

namespace ombrel {

class Theme;

/// What a drop would do, in words beside the pointer. It lies over everything else in its window and takes no
/// part in anything, so that it works wherever a window of its own would not.
class DropLabel final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    DropLabel(QWidget* window, const Theme& theme);

    /// Says `text` beside `pointer`, a point of the window; without a text it hides.
    void say(const QString& text, bool isRefusal, QPoint pointer);
    [[nodiscard]] const QString& text() const noexcept { return text_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    QString text_, shown_;
    bool isRefusal_ = false;
};

} // namespace ombrel
