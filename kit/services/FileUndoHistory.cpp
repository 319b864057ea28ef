#include "services/FileUndoHistory.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <ranges>
#include <string>
#include <string_view>
#include <utility>

namespace ombrel {
namespace {

std::string nameOf(FileUndoStep::Kind kind) {
    // In the order of the kinds.
    constexpr std::array<std::string_view, 5> keys = {"undo.action.copy", "undo.action.move",
                                                      "undo.action.rename", "undo.action.delete",
                                                      "undo.action.new"};
    return Texts::localized(keys[static_cast<std::size_t>(kind)]);
}

} // namespace

FileUndoHistory::FileUndoHistory(OperationCenter& center, FileOperationService service, QObject* parent)
    : QObject(parent), center_(center), service_(std::move(service)) {}

void FileUndoHistory::record(FileUndoStep step) {
    if (step.action.isEmpty()) return;
    ++recordings_;
    redoSteps_.clear();
    push(undoSteps_, std::move(step));
    Q_EMIT changed();
}

void FileUndoHistory::push(std::vector<FileUndoStep>& steps, FileUndoStep step) {
    steps.push_back(std::move(step));
    if (steps.size() > mostSteps)
        steps.erase(steps.begin(), steps.end() - static_cast<std::ptrdiff_t>(mostSteps));
}

std::optional<Text> FileUndoHistory::undoTitle() const {
    if (undoSteps_.empty()) return std::nullopt;
    return Text{"undo.title", {nameOf(undoSteps_.back().kind)}};
}

std::optional<Text> FileUndoHistory::redoTitle() const {
    if (redoSteps_.empty()) return std::nullopt;
    return Text{"redo.title", {nameOf(redoSteps_.back().kind)}};
}

void FileUndoHistory::undo(std::function<void()> done) {
    if (canUndo()) begin(Direction::undo, std::move(done));
}

void FileUndoHistory::redo(std::function<void()> done) {
    if (canRedo()) begin(Direction::redo, std::move(done));
}

void FileUndoHistory::begin(Direction direction, std::function<void()> done) {
    auto& steps = stepsOf(direction);
    FileUndoStep step = std::move(steps.back());
    steps.pop_back();
    problems_.clear();
    auto pieces = piecesOf(std::exchange(step.action, {}));
    run_ = Run{direction, std::move(step), std::move(pieces), {}, recordings_, std::move(done)};
    const QPointer guard(this);
    Q_EMIT changed();
    if (guard) runNext();
}

void FileUndoHistory::runNext() {
    if (run_->pieces.empty()) return finish();
    const auto piece = std::move(run_->pieces.front());
    run_->pieces.pop_front();
    std::vector<FileUndoStep::Made> known;
    eachKnown(
        [&](FileReference& item, const std::optional<ItemStamp>& stamp) { known.emplace_back(item, stamp); });
    const auto renumbered = std::make_shared<std::vector<Renumbered>>();
    const auto landings = hasRenumbered_ ? Landings::all : Landings::ofOtherObjects;
    auto plan = planOf(service_, piece, std::move(known), landings, renumbered);
    plan.leavesReport = false; // `problems` has it
    center_.run(std::move(plan), [history = QPointer(this), piece, renumbered](const JobResult& result) {
        if (!history) return;
        history->renumber(*renumbered);
        history->take(piece, result);
    });
}

void FileUndoHistory::take(const FileUndoStep::Action& piece, const JobResult& result) {
    if (!result.undo.action.isEmpty()) run_->inverse.push_back(result.undo.action);
    for (const auto& item : result.report.items)
        if (const auto& error = item.outcome.error())
            problems_.push_back(
                {item.source ? *item.source : item.outcome.destination().value_or(FileURL()), *error});
    if (auto left = cancelledPart(piece, result.report); !left.isEmpty()) {
        run_->pieces.push_front(std::move(left));
        return finish();
    }
    runNext();
}

void FileUndoHistory::finish() {
    Run run = std::move(*run_);
    run_.reset();
    const bool isUndo = run.direction == Direction::undo;
    if (!run.pieces.empty()) {
        // It was cancelled: what is left is still to be undone.
        FileUndoStep::Sequence left;
        std::ranges::move(std::views::reverse(run.pieces), std::back_inserter(left.actions));
        push(stepsOf(run.direction), {run.step.kind, std::move(left)});
    }
    FileUndoStep inverse{run.step.kind, FileUndoStep::Sequence{std::move(run.inverse)}};
    // Something new was done meanwhile: there is nothing to be done again any more.
    const bool isOvertaken = isUndo && run.recordings != recordings_;
    if (!inverse.action.isEmpty() && !isOvertaken) push(isUndo ? redoSteps_ : undoSteps_, std::move(inverse));
    const QPointer guard(this);
    Q_EMIT changed();
    if (guard) Q_EMIT finished();
    if (run.done) run.done();
}

void FileUndoHistory::eachKnown(
    const std::function<void(FileReference&, const std::optional<ItemStamp>&)>& use) {
    for (auto* const steps : {&undoSteps_, &redoSteps_})
        for (auto& step : *steps)
            FileUndoStep::eachItem(step.action, use);
    if (!run_) return;
    for (auto& piece : run_->pieces)
        FileUndoStep::eachItem(piece, use);
    for (auto& action : run_->inverse)
        FileUndoStep::eachItem(action, use);
}

void FileUndoHistory::renumber(const std::vector<Renumbered>& items) {
    if (items.empty()) return;
    hasRenumbered_ = true;
    eachKnown([&](FileReference& item, const std::optional<ItemStamp>&) {
        for (const auto& one : items)
            if (item.url == one.url && item.identity == one.before) {
                item.identity = one.now;
                return;
            }
    });
}

} // namespace ombrel
