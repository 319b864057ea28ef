#pragma once

#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QAbstractButton>

namespace ombrel {

/// One way to answer a question: a glyph, what it does, and in smaller words what follows from it. As wide as
/// there is room; its words wrap.
class ChoiceCard final : public QAbstractButton {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    ChoiceCard(const Theme& theme, Glyph glyph, const QString& title, QWidget* parent = nullptr);

    [[nodiscard]] const QString& caption() const noexcept { return caption_; }
    void setCaption(const QString& caption, ThemeColor color = ThemeColor::textSecondary);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    [[nodiscard]] QRect wordsIn(const QRect& card) const;

    const Theme* theme_;
    Glyph glyph_;
    QString caption_;
    ThemeColor captionColor_ = ThemeColor::textSecondary;
};

/// Cards below one another that are one stop for Tab: Up and Down move between them.
class ChoiceCards final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit ChoiceCards(const Theme& theme, QWidget* parent = nullptr);

    ChoiceCard* add(Glyph glyph, const QString& title, const QString& caption);
    /// The one that Tab comes to first.
    void setSafe(ChoiceCard* card);
    [[nodiscard]] ChoiceCard* safe() const noexcept { return safe_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeCurrent(const QWidget* card);

    const Theme* theme_;
    QList<ChoiceCard*> cards_;
    ChoiceCard* safe_ = nullptr;
};

} // namespace ombrel
