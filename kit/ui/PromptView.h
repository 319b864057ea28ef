#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QWidget>

namespace ombrel {

/// The question of a job as it stands in the job's card, below its title. Gone when it has been answered.
/// It comes unasked, so at first its buttons let clicks and keys pass that were meant for what was there
/// before: the rest of a double click, or what somebody was typing.
class PromptView : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    [[nodiscard]] virtual QString title() const = 0;
    /// What else there is to read: for screen readers.
    [[nodiscard]] virtual QString message() const = 0;
    /// Puts the focus on the answer that destroys nothing.
    virtual void focusSafeAnswer() = 0;

    [[nodiscard]] bool takesAnswers() const;

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QElapsedTimer shown_;
};

} // namespace ombrel
