#pragma once

#include "ui/Theme.h"

#include <QTextEdit>

namespace ombrel {

/// A text that cannot be changed but selected and copied, by mouse and keyboard. It wraps, within words where
/// it has to, and is as high as its text at the width it is given.
class ValueText final : public QTextEdit {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit ValueText(const Theme& theme, ThemeFont font = ThemeFont::body, QWidget* parent = nullptr);

    /// `name` is what it is called for assistive programs. `copied` is what a copy of all of it gives where
    /// that is not `text` itself. What is selected stays selected as long as the text is the same.
    void setValue(const QString& name, const QString& text, const QString& copied = {});
    [[nodiscard]] const QString& text() const noexcept { return text_; }
    void setColor(ThemeColor color);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;

private:
    void takeLook();
    void copyFromMenu();

    const Theme* theme_;
    ThemeFont font_;
    ThemeColor color_ = ThemeColor::text;
    QString text_;
    QString copied_;
};

} // namespace ombrel
