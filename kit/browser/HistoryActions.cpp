#include "browser/HistoryActions.h"

#include "browser/BrowserPrompter.h"

#include <QPointer>

#include <cstdint>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using Kind = FileUndoStep::Kind;
enum class Direction : std::uint8_t { undo, redo };

/// What going back over a step of that kind, or doing it again, is to the one who reads what failed.
FileOperationKind operationOf(Kind kind, Direction direction) {
    const bool isUndo = direction == Direction::undo;
    switch (kind) {
    case Kind::copy:
    case Kind::new_: return isUndo ? FileOperationKind::trash : FileOperationKind::move;
    case Kind::delete_: return isUndo ? FileOperationKind::move : FileOperationKind::trash;
    case Kind::move: return FileOperationKind::move;
    case Kind::rename: return FileOperationKind::rename;
    }
    std::unreachable();
}

void tellProblems(const FileUndoHistory& history, FileOperationKind kind, const BrowserModel& pane) {
    if (history.problems().empty() || !pane.prompter()) return;
    OperationReport report{kind, {}};
    for (const auto& problem : history.problems())
        report.items.push_back({problem.url, ItemOutcome::failed(problem.error)});
    pane.prompter()->show(report);
}

/// The step of the other direction knows what has come of the run.
void selectWhatCameBack(const FileUndoHistory& history, Direction direction, BrowserModel& pane) {
    const auto& others = direction == Direction::undo ? history.redoSteps() : history.undoSteps();
    if (others.empty()) return;
    std::vector<FileURL> urls;
    FileUndoStep::eachItem(others.back().action, [&](const FileReference& item) {
        if (!item.url.isRoot() && item.url.parent() == pane.currentURL()) urls.push_back(item.url);
    });
    if (!urls.empty()) pane.selectWhenListed(urls);
}

void run(AppServices& services, Direction direction, BrowserModel& pane) {
    auto& history = services.undo();
    const auto& steps = direction == Direction::undo ? history.undoSteps() : history.redoSteps();
    auto done = [&history, direction, kind = operationOf(steps.back().kind, direction),
                 guard = QPointer(&pane), location = pane.location()] {
        if (!guard) return;
        if (guard->location() == location) selectWhatCameBack(history, direction, *guard);
        tellProblems(history, kind, *guard);
    };
    if (direction == Direction::undo)
        history.undo(std::move(done));
    else
        history.redo(std::move(done));
}

} // namespace

void HistoryActions::bindTo(CommandDispatcher& dispatcher) {
    auto* const services = services_;
    dispatcher.bind(FileCommand::undo,
                    {[services](BrowserModel& pane) { run(*services, Direction::undo, pane); },
                     [services](const BrowserModel&) { return services->undo().canUndo(); }});
    dispatcher.bind(FileCommand::redo,
                    {[services](BrowserModel& pane) { run(*services, Direction::redo, pane); },
                     [services](const BrowserModel&) { return services->undo().canRedo(); }});
}

} // namespace ombrel
