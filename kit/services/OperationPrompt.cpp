#include "services/OperationPrompt.h"

#include <QPointer>

#include <memory>
#include <utility>

namespace ombrel {

OperationPrompt::OperationPrompt(Conflict question, ConflictAnswerer answerer)
    : kind_(std::move(question)), conflictAnswerer_(std::move(answerer)) {}

OperationPrompt::OperationPrompt(ErrorContext question, ErrorAnswerer answerer)
    : kind_(std::move(question)), errorAnswerer_(std::move(answerer)) {}

bool OperationPrompt::isBatch() const noexcept {
    const auto* const conflict = std::get_if<Conflict>(&kind_);
    return conflict && conflict->batchCount.value_or(1) > 1;
}

void OperationPrompt::setApplyToAll(bool on) {
    if (applyToAll_ == on) return;
    applyToAll_ = on;
    Q_EMIT applyToAllChanged();
}

void OperationPrompt::answer(ConflictChoice choice, bool applyToAll) {
    if (!conflictAnswerer_) return;
    isAnsweredForAll_ = applyToAll;
    conflictAnswerer_({choice, applyToAll});
    finish();
}

void OperationPrompt::answer(ErrorChoice choice) {
    if (!errorAnswerer_) return;
    errorAnswerer_({choice, applyToAll_});
    finish();
}

std::shared_ptr<OperationPrompt> OperationPrompt::single() {
    if (!conflictAnswerer_) return nullptr;
    auto question = std::get<Conflict>(kind_);
    question.batchCount.reset();
    auto prompt = std::make_shared<OperationPrompt>(std::move(question), std::move(conflictAnswerer_));
    Q_EMIT answered();
    return prompt;
}

void OperationPrompt::finish() {
    const QPointer guard(this);
    if (const auto told = std::exchange(onAnswered, nullptr)) told();
    if (guard) Q_EMIT answered();
}

} // namespace ombrel
