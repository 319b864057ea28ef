#pragma once

#include "operations/OperationConflict.h"
#include "operations/OperationErrorQuestion.h"
#include "operations/PendingAnswer.h"

#include <QObject>
#include <QUuid>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

namespace ombrel {

/// A question of a job that waits for the user's answer. Main thread.
///
/// It is answered once; further answers do nothing. A prompt that goes unanswered answers `cancel`.
class OperationPrompt final : public QObject {
    Q_OBJECT

public:
    /// A name that is taken.
    struct Conflict {
        ConflictContext context;
        /// How many conflicts are known. Above 1 the question is put for all of them at once; nothing when
        /// the user decides each singly.
        std::optional<std::int64_t> batchCount;

        friend bool operator==(const Conflict&, const Conflict&) = default;
    };
    using Kind = std::variant<Conflict, ErrorContext>;
    using ConflictAnswerer = PendingAnswer<ConflictDecision>::Answerer;
    using ErrorAnswerer = PendingAnswer<ErrorDecision>::Answerer;

    OperationPrompt(Conflict question, ConflictAnswerer answerer);
    OperationPrompt(ErrorContext question, ErrorAnswerer answerer);

    [[nodiscard]] const QUuid& id() const noexcept { return id_; }
    [[nodiscard]] const Kind& kind() const noexcept { return kind_; }
    /// Whether one answer is wanted for all known conflicts.
    [[nodiscard]] bool isBatch() const noexcept;
    [[nodiscard]] bool isAnswered() const noexcept { return !conflictAnswerer_ && !errorAnswerer_; }

    /// Whether the answer to a conflict stands for all further ones.
    [[nodiscard]] bool isAnsweredForAll() const noexcept { return isAnsweredForAll_; }

    /// The state of the check box.
    [[nodiscard]] bool applyToAll() const noexcept { return applyToAll_; }
    void setApplyToAll(bool on);

    /// Answers a conflict; without effect on another kind.
    void answer(ConflictChoice choice, bool applyToAll);
    /// Answers an error, for all further ones too when the check box says so; without effect on another kind.
    void answer(ErrorChoice choice);

    /// The same question put singly, with the right to answer handed over: this prompt is answered.
    [[nodiscard]] std::shared_ptr<OperationPrompt> single();

    /// Called once, when it has been answered.
    std::function<void()> onAnswered;

Q_SIGNALS:
    void applyToAllChanged();
    /// It has been answered, or its question is put anew in another prompt: it is not to be shown any more.
    void answered();

private:
    void finish();

    const QUuid id_ = QUuid::createUuid();
    const Kind kind_;
    bool applyToAll_ = false;
    bool isAnsweredForAll_ = false;
    ConflictAnswerer conflictAnswerer_;
    ErrorAnswerer errorAnswerer_;
};

} // namespace ombrel
