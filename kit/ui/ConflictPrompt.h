#pragma once

#include "operations/OperationConflict.h"
#include "ui/PromptView.h"

#include <functional>
#include <memory>

namespace ombrel {

class ChoiceCards;
class OperationJob;
class OperationPrompt;
class Theme;
class ThumbnailStore;

/// The question about names that are taken: one for all of them, or one for one with both items to compare.
class ConflictPrompt final : public PromptView {
    Q_OBJECT

public:
    /// Puts the conflicts one by one.
    using DecideEach = std::function<void()>;

    /// `theme` and, where given, `thumbnails` must outlive it; `prompt` is a conflict of `job`.
    ConflictPrompt(const Theme& theme, std::shared_ptr<OperationPrompt> prompt,
                   std::shared_ptr<OperationJob> job, DecideEach decideEach, ThumbnailStore* thumbnails,
                   QWidget* parent = nullptr);

    [[nodiscard]] QString title() const override { return title_; }
    [[nodiscard]] QString message() const override;
    void focusSafeAnswer() override;

private:
    void layOutBatch(const DecideEach& decideEach);
    void layOutSingle(ThumbnailStore* thumbnails);
    void answer(ConflictChoice choice, bool applyToAll);
    [[nodiscard]] const ConflictContext& context() const;

    const Theme* theme_;
    const std::shared_ptr<OperationPrompt> prompt_;
    const std::shared_ptr<OperationJob> job_;
    QString title_;
    ChoiceCards* cards_;
};

} // namespace ombrel
