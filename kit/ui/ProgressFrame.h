#pragma once

#include <QElapsedTimer>
#include <QWidget>

#include <vector>

class QScrollArea;

namespace ombrel {

class Theme;

/// The window that the cards stand in, below one another: as high as they are, up to most of the screen, then
/// it scrolls. What it grows by goes up where there is no room below. Closing it hides it.
class ProgressFrame final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit ProgressFrame(const Theme& theme);

    /// Below the others. The frame takes the card over.
    void add(QWidget* card);
    /// In the place of another one, which goes later.
    void replace(QWidget* old, QWidget* card);
    /// The card goes later, because it may be the one whose click is being handled.
    void remove(QWidget* card);
    [[nodiscard]] const std::vector<QWidget*>& cards() const noexcept { return cards_; }
    void reveal(QWidget* card);

Q_SIGNALS:
    /// The user has closed it; it is hidden.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Column;

    void fit();
    void keepOnScreen();

    const Theme* theme_;
    QScrollArea* scroll_;
    Column* column_;
    std::vector<QWidget*> cards_;
    QElapsedTimer grown_; ///< since it has become higher
};

} // namespace ombrel
