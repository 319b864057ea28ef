#pragma once

#include "ui/NameLines.h"

#include <QWidget>

namespace ombrel {

class Theme;

/// The name of an item as a heading, in up to three lines; what is too long for them loses its middle and is
/// its tooltip.
class WrappedName final : public QWidget {
    Q_OBJECT

public:
    static constexpr int mostLines = 3;

    /// `theme` must outlive it.
    explicit WrappedName(const Theme& theme, QWidget* parent = nullptr);

    void setName(const QString& name);
    [[nodiscard]] const QString& name() const noexcept { return name_; }

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] const QStringList& linesAt(int width) const;
    void explain();

    const Theme* theme_;
    QString name_;
    mutable NameLines lines_;
};

} // namespace ombrel
