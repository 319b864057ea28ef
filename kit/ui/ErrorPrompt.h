#pragma once

#include "operations/OperationErrorQuestion.h"
#include "ui/PromptView.h"

#include <functional>
#include <memory>

class QPushButton;

namespace ombrel {

class OperationJob;
class OperationPrompt;
class Theme;

/// The question about an item that failed: what went wrong, and whether to try again.
class ErrorPrompt final : public PromptView {
    Q_OBJECT

public:
    /// Asks the user whether the item is to be deleted for good, and sees to it.
    using DeletePermanently = std::function<void(const FileURL&)>;

    /// `theme` must outlive it; `prompt` is an error of `job`.
    ErrorPrompt(const Theme& theme, std::shared_ptr<OperationPrompt> prompt,
                const std::shared_ptr<OperationJob>& job, DeletePermanently deletePermanently,
                QWidget* parent = nullptr);

    [[nodiscard]] QString title() const override { return title_; }
    [[nodiscard]] QString message() const override { return message_; }
    void focusSafeAnswer() override;

private:
    QPushButton* addAnswer(const QString& label, ErrorChoice choice);

    const std::shared_ptr<OperationPrompt> prompt_;
    QString title_;
    QString message_;
    QPushButton* safe_ = nullptr;
};

} // namespace ombrel
