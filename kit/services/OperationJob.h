#pragma once

#include "base/FileURL.h"
#include "base/Text.h"
#include "base/Worker.h"
#include "operations/DriveQueue.h"
#include "operations/JobBody.h"
#include "operations/JobPlan.h"
#include "operations/OperationControl.h"
#include "operations/OperationProgress.h"
#include "operations/SpeedMeter.h"
#include "services/OperationPrompt.h"

#include <QObject>
#include <QUuid>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// A running file operation, as those who watch it see it. Main thread; the work itself has a thread of its
/// own. Made by the operation center; one that is still held after its end keeps its last state.
class OperationJob final : public QObject {
    Q_OBJECT

public:
    using SpeedSample = SpeedMeter::Sample;

    /// How far it is besides its progress. A paused job, or one with a prompt, is at one of these too.
    enum class Stage : std::uint8_t {
        preparing, ///< its thread starts, looks at the items
        waiting,   ///< for other jobs that use the same drive; see `waitsFor`
        working,
        ended,
    };

    OperationJob(const JobPlan& plan, std::shared_ptr<DriveQueue::Place> place);
    ~OperationJob() override;

    [[nodiscard]] const QUuid& id() const noexcept { return id_; }
    [[nodiscard]] FileOperationKind kind() const noexcept { return kind_; }
    [[nodiscard]] std::int64_t itemCount() const noexcept { return itemCount_; }
    /// For people: the folder that the items are in, empty when there are none.
    [[nodiscard]] const std::string& sourceName() const noexcept { return sourceName_; }
    /// For people: the folder that things come into, empty when there is none.
    [[nodiscard]] const std::string& destinationName() const noexcept { return destinationName_; }
    /// The folders of these names.
    [[nodiscard]] const std::optional<FileURL>& sourceFolder() const noexcept { return sourceFolder_; }
    [[nodiscard]] const std::optional<FileURL>& destinationFolder() const noexcept {
        return destinationFolder_;
    }
    [[nodiscard]] Text title() const;
    /// How many items have a name that was taken at the destination when the job started; 0 until they are
    /// counted, which is before the first question.
    [[nodiscard]] std::int64_t knownConflicts() const noexcept { return knownConflicts_; }
    [[nodiscard]] const std::shared_ptr<OperationControl>& control() const noexcept { return control_; }

    [[nodiscard]] Stage stage() const noexcept { return stage_; }
    [[nodiscard]] const OperationProgress& progress() const noexcept { return progress_; }
    [[nodiscard]] double fractionCompleted() const noexcept { return progress_.fraction(); }
    [[nodiscard]] bool isPaused() const noexcept { return isPaused_; }
    [[nodiscard]] bool isCancelling() const noexcept { return isCancelling_; }
    /// The question that waits for an answer now.
    [[nodiscard]] const std::shared_ptr<OperationPrompt>& prompt() const noexcept { return prompt_; }
    /// Whether the user wants to answer conflicts one by one.
    [[nodiscard]] bool decideEach() const noexcept { return decideEach_; }

    /// Smoothed bytes per second.
    [[nodiscard]] std::optional<double> speed() const noexcept { return meter_.speed(); }
    [[nodiscard]] const std::vector<SpeedSample>& speedSamples() const noexcept { return meter_.samples(); }
    [[nodiscard]] std::optional<double> remainingSeconds() const noexcept {
        return meter_.remainingSeconds(progress_);
    }

    /// The jobs that have to end first, because they use the same drive.
    [[nodiscard]] const std::vector<std::weak_ptr<OperationJob>>& waitsFor() const noexcept {
        return waitsFor_;
    }
    /// "Waiting for: …"; nothing when it does not wait.
    [[nodiscard]] std::optional<Text> waitingText() const;
    /// Does not wait any longer, and will not.
    void startNow() { place_->startNow(); }

    /// Without effect on a job that is being cancelled or has ended.
    void pause() { setPaused(true); }
    void resume() { setPaused(false); }
    /// Cannot be taken back. A prompt is answered with `cancel`; the report follows when the work has let go.
    void cancel();

    /// Takes a report of progress; `now` is in seconds on a clock that only goes forward.
    void apply(const OperationProgress& progress, double now);

Q_SIGNALS:
    /// Progress, speed or the time left.
    void progressChanged();
    /// Stage, `waitsFor`, `knownConflicts`, paused or being cancelled.
    void stateChanged();
    void promptChanged();
    /// It has left the center's list. Sent once.
    void ended(const ombrel::OperationReport& report);

private:
    friend class OperationCenter;

    void setPaused(bool paused);
    void setStage(Stage stage);
    void setPrompt(std::shared_ptr<OperationPrompt> prompt);
    void setWaitsFor(std::vector<std::weak_ptr<OperationJob>> jobs);
    void updateIdle();
    /// Asks the work to stop and forgets it.
    void letGo();

    const QUuid id_ = QUuid::createUuid();
    const FileOperationKind kind_;
    const std::int64_t itemCount_;
    const bool leavesReport_;
    const std::optional<FileURL> sourceFolder_, destinationFolder_;
    const std::string sourceName_, destinationName_;
    const std::shared_ptr<OperationControl> control_ = std::make_shared<OperationControl>();
    const std::shared_ptr<DriveQueue::Place> place_;

    Stage stage_ = Stage::preparing;
    std::int64_t knownConflicts_ = 0;
    OperationProgress progress_;
    SpeedMeter meter_;
    bool isPaused_ = false;
    bool isCancelling_ = false;
    bool decideEach_ = false;
    bool hasAnsweredBatch_ = false; // what is still asked is asked singly
    std::shared_ptr<OperationPrompt> prompt_;
    std::vector<std::weak_ptr<OperationJob>> waitsFor_;

    std::optional<JobPlan> plan_; // until its thread runs
    std::move_only_function<void(const JobResult&)> done_;
    Worker worker_;
};

} // namespace ombrel
