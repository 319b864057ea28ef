#include "ui/ProgressFrame.h"

#include "ui/FocusRing.h"
#include "ui/Theme.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace ombrel {

/// The cards with lines between them.
class ProgressFrame::Column final : public QWidget {
public:
    Column(const Theme& theme, const std::vector<QWidget*>& cards) : theme_(&theme), cards_(&cards) {
        auto* const column = new QVBoxLayout(this);
        column->setContentsMargins({});
        column->setSpacing(theme.size(ThemeSize::hairline));
    }
    [[nodiscard]] QVBoxLayout& cards() { return *static_cast<QVBoxLayout*>(layout()); }
    [[nodiscard]] int heightFor(int width) const {
        return layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width)
                                             : layout()->totalSizeHint().height();
    }

    /// Words that wrap would be reckoned with the height that they have at their narrowest.
    [[nodiscard]] QSize minimumSizeHint() const override { return {QWidget::minimumSizeHint().width(), 0}; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), theme_->color(ThemeColor::surface));
        for (const QWidget* card : *cards_)
            if (card != cards_->front())
                painter.fillRect(QRect(0, card->y() - layout()->spacing(), width(), layout()->spacing()),
                                 theme_->color(ThemeColor::border));
    }

private:
    const Theme* theme_;
    const std::vector<QWidget*>* cards_;
};

ProgressFrame::ProgressFrame(const Theme& theme)
    : theme_(&theme), scroll_(new QScrollArea(this)), column_(new Column(theme, cards_)) {
    // It is a window of the application, but none that keeps the program running.
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* const all = new QVBoxLayout(this);
    all->setContentsMargins({});
    all->addWidget(scroll_);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setWidget(column_);
    column_->installEventFilter(this);
    new FocusRing(this);
    setMinimumWidth(theme.size(ThemeSize::progressMinimumWidth));
    resize(theme.size(ThemeSize::progressWidth), theme.size(ThemeSize::speedGraph));
    connect(&theme, &Theme::changed, this, [this] {
        setMinimumWidth(theme_->size(ThemeSize::progressMinimumWidth));
        column_->update();
    });
}

void ProgressFrame::add(QWidget* card) {
    column_->cards().addWidget(card);
    cards_.push_back(card);
    card->show();
    fit();
}

void ProgressFrame::replace(QWidget* old, QWidget* card) {
    const auto place = std::ranges::find(cards_, old);
    if (place == cards_.end()) return add(card);
    column_->cards().insertWidget(column_->cards().indexOf(old), card);
    *place = card;
    old->hide();
    old->deleteLater();
    card->show();
    fit();
}

void ProgressFrame::remove(QWidget* card) {
    if (std::erase(cards_, card) == 0) return;
    card->hide();
    card->deleteLater();
    fit();
}

void ProgressFrame::reveal(QWidget* card) {
    fit();
    scroll_->ensureWidgetVisible(card, 0, 0);
}

void ProgressFrame::fit() {
    constexpr double largestShare = 0.8;
    const int wanted = column_->heightFor(width());
    const auto* const at = screen();
    const int most = at ? static_cast<int>(at->availableGeometry().height() * largestShare) : wanted;
    const int before = height();
    setFixedHeight(std::max(1, std::min(wanted, most)));
    column_->update();
    if (height() <= before) return;
    grown_.start();
    keepOnScreen();
}

void ProgressFrame::keepOnScreen() {
    if (!isVisible() || !screen()) return;
    const QRect area = screen()->availableGeometry(), frame = frameGeometry();
    const int y = std::max(area.top(), std::min(frame.top(), area.bottom() + 1 - frame.height()));
    if (y < frame.top()) move(frame.left(), y);
}

void ProgressFrame::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    Q_EMIT closed();
}

void ProgressFrame::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void ProgressFrame::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (event->oldSize().width() != event->size().width()) fit();
}

void ProgressFrame::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    // The place that the window manager has found for the height that it had is told a little later. Where
    // the user moves it, it stays.
    constexpr qint64 longestAnswer = 1000;
    if (grown_.isValid() && !grown_.hasExpired(longestAnswer)) keepOnScreen();
}

bool ProgressFrame::eventFilter(QObject* watched, QEvent* event) {
    if (watched == column_ && event->type() == QEvent::LayoutRequest) fit();
    return QWidget::eventFilter(watched, event);
}

} // namespace ombrel
