#pragma once

#include "browser/BrowserPrompter.h"
#include "ui/ConfirmationDialog.h"

#include <QPointer>
#include <QWidget>

namespace ombrel {

class Theme;

/// Puts the questions of a window's panes to the user, in dialogs that are modal to that window.
class WindowPrompter final : public BrowserPrompter {
    Q_OBJECT

public:
    /// `theme` must outlive it. Without a window any more, everything is declined.
    WindowPrompter(const Theme& theme, QWidget& window, QObject* parent = nullptr);

    /// What is said about a question.
    [[nodiscard]] static ConfirmationDialog::Content contentOf(const BrowserQuestion& question);

    void ask(const BrowserQuestion& question, Answer answer) override;
    void tell(const Text& problem) override;
    void show(const OperationReport& report) override;

private:
    const Theme* theme_;
    QPointer<QWidget> window_;
};

} // namespace ombrel
