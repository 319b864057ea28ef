#pragma once

#include <QString>
#include <QWidget>

namespace ombrel {

/// The question of a job as it stands in the job's card, below its title. Gone when it has been answered.
class PromptView : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    [[nodiscard]] virtual QString title() const = 0;
    /// What else there is to read: for screen readers.
    [[nodiscard]] virtual QString message() const = 0;
    /// Puts the focus on the answer that destroys nothing.
    virtual void focusSafeAnswer() = 0;
};

} // namespace ombrel
