#pragma once

#include <QString>
#include <QWidget>

namespace ombrel {

class Theme;

/// Says under the address bar why a typed address was refused. It floats over what is below, so that nothing
/// moves, and is announced to assistive programs.
class AddressError final : public QWidget {
    Q_OBJECT

public:
    /// Floats in the window of `bar`. `theme` must outlive it.
    AddressError(const Theme& theme, QWidget* bar);

    void show(const QString& message);
    [[nodiscard]] const QString& message() const noexcept { return message_; }
    /// Follows the bar to where it is now.
    void place();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    QWidget* bar_;
    QString message_;
};

} // namespace ombrel
