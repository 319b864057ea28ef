#pragma once

#include "base/FileURL.h"
#include "base/Text.h"
#include "operations/FileOperationError.h"
#include "operations/FileOperationService.h"
#include "operations/FileUndoStep.h"
#include "operations/UndoPlans.h"
#include "services/OperationCenter.h"

#include <QObject>
#include <QPointer>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace ombrel {

/// What can be undone and done again, for the whole application. Main thread only; an undo runs as jobs of
/// the operation center, with its progress and prompts.
///
/// Nothing is offered while one runs. Recording a step clears what could be done again. An undo that is
/// cancelled keeps what it has not got to.
class FileUndoHistory final : public QObject {
    Q_OBJECT

public:
    static constexpr std::size_t mostSteps = 50;

    /// An item that an undo or redo could not handle.
    struct Problem {
        FileURL url;
        FileOperationError error;

        friend bool operator==(const Problem&, const Problem&) = default;
    };

    /// `center` must outlive the history.
    FileUndoHistory(OperationCenter& center, FileOperationService service, QObject* parent = nullptr);

    /// A step that was carried out. An empty one changes nothing; beyond `mostSteps` the oldest goes.
    void record(FileUndoStep step);

    /// Oldest first.
    [[nodiscard]] const std::vector<FileUndoStep>& undoSteps() const noexcept { return undoSteps_; }
    [[nodiscard]] const std::vector<FileUndoStep>& redoSteps() const noexcept { return redoSteps_; }
    [[nodiscard]] bool isRunning() const noexcept { return run_.has_value(); }
    [[nodiscard]] bool canUndo() const noexcept { return mayRun() && !undoSteps_.empty(); }
    [[nodiscard]] bool canRedo() const noexcept { return mayRun() && !redoSteps_.empty(); }

    /// For the menu: "Undo Copy". Nothing when there is no step.
    [[nodiscard]] std::optional<Text> undoTitle() const;
    [[nodiscard]] std::optional<Text> redoTitle() const;

    /// Carry out the newest step; without effect unless that can be done. `done` is called at the end.
    void undo(std::function<void()> done = {});
    void redo(std::function<void()> done = {});

    /// Of the last undo or redo.
    [[nodiscard]] const std::vector<Problem>& problems() const noexcept { return problems_; }

Q_SIGNALS:
    /// Steps, titles, or whether one runs.
    void changed();
    /// An undo or redo has ended; `problems` has what could not be handled.
    void finished();

private:
    enum class Direction : std::uint8_t { undo, redo };
    struct Run {
        Direction direction;
        FileUndoStep step; ///< with the pieces that are still to be done
        std::deque<FileUndoStep::Action> pieces;
        std::vector<FileUndoStep::Action> inverse; ///< in the order in which they were done
        std::uint64_t recordings;                  ///< how many there were when it began
        std::function<void()> done;
    };

    [[nodiscard]] std::vector<FileUndoStep>& stepsOf(Direction direction) noexcept {
        return direction == Direction::undo ? undoSteps_ : redoSteps_;
    }
    [[nodiscard]] bool mayRun() const noexcept { return !isRunning() && !center_.isRefusing(); }
    void begin(Direction direction, std::function<void()> done);
    void runNext();
    void take(const FileUndoStep::Action& piece, const JobResult& result);
    void finish();
    void eachKnown(const std::function<void(FileReference&, const std::optional<ItemStamp>&)>& use);
    void renumber(const std::vector<Renumbered>& items);
    static void push(std::vector<FileUndoStep>& steps, FileUndoStep step);

    OperationCenter& center_;
    const FileOperationService service_;
    std::vector<FileUndoStep> undoSteps_, redoSteps_;
    std::uint64_t recordings_ = 0;
    bool hasRenumbered_ = false; // identities in steps may have to be renewed wherever something lands
    std::optional<Run> run_;
    std::vector<Problem> problems_;
};

} // namespace ombrel
