#pragma once

#include "browser/ListingState.h"
#include "ui/BadgedFolder.h"
#include "ui/Theme.h"

#include <QString>
#include <QWidget>

#include <cstdint>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace ombrel {

class BrowserModel;

/// What an overlay says and offers.
struct OverlayContent {
    enum class Action : std::uint8_t { tryAgain, goUp, goHome, allowAccess, clearSearch };

    QString title;
    QString message;
    std::optional<BadgedFolder::Badge> badge;
    std::vector<Action> actions; ///< as buttons, the first one primary
    QString invitation = {};     ///< the message while something is dragged that may be dropped here

    /// For the state of a pane; nothing when its items are to be seen.
    [[nodiscard]] static std::optional<OverlayContent> of(const BrowserModel& model);
};

/// Covers an empty file view with the reason why it is empty and what can be done about it.
class Overlay final : public QWidget {
    Q_OBJECT

public:
    /// Lies over `view`. `model` and `theme` must outlive it.
    Overlay(BrowserModel& model, const Theme& theme, QWidget* view);

    /// Something is dragged over the view that may be dropped there, or is no longer.
    void inviteDrop(bool invites);
    /// From now on covers `view`.
    void lieOver(QWidget* view);

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString message() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    void show(const OverlayContent& content);
    /// `widest` is the message that room is kept for.
    void setTexts(const QString& title, const QString& message, const QString& widest);
    void perform(OverlayContent::Action action);
    void takeSizes();
    /// Wraps the texts, and gives up the picture and the buttons' row where there is no room for them.
    void fit();
    void fadeIn();

    BrowserModel* model_;
    const Theme* theme_;
    bool invitesDrop_ = false;
    std::optional<BadgedFolder::Badge> badge_;
    QWidget* picture_;
    QLabel* title_;
    QLabel* message_;
    QString widest_; ///< the message that room is kept for
    std::vector<QPushButton*> buttons_;
    QWidget* buttonRow_;
};

} // namespace ombrel
