#pragma once

#include <QString>
#include <QWidget>

#include <cstdint>

namespace ombrel {

class Theme;

/// A short text below a field: why what is typed cannot be, or what is worth knowing about it. Said to
/// assistive programs once.
class NameBubble final : public QWidget {
    Q_OBJECT

public:
    enum class Kind : std::uint8_t { error, hint };

    /// Lies over everything in the field's window. `theme` must outlive it.
    NameBubble(QWidget* field, const Theme& theme);

    void say(const QString& text, Kind kind);
    [[nodiscard]] const QString& text() const noexcept { return text_; }
    /// To be called when the field has moved.
    void follow();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int margin() const;

    QWidget* field_;
    const Theme* theme_;
    QString text_;
    Kind kind_ = Kind::error;
};

} // namespace ombrel
