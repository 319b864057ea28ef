#pragma once

#include "operations/DriveQueue.h"
#include "operations/FileOperationError.h"
#include "operations/JobBody.h"
#include "operations/JobPlan.h"
#include "services/OperationJob.h"
#include "services/OperationPresenting.h"
#include "services/OperationPrompt.h"

#include <QObject>
#include <QPointer>
#include <QUuid>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace ombrel {

/// Runs the file operations of the application as jobs: each on a thread of its own, with progress that can
/// be watched, questions that wait for an answer, pause, and cancel.
///
/// Main thread only, and it never waits. Jobs run side by side, but for those that copy data to or from the
/// same spinning or removable drive, which run one after another. When the center goes, its jobs are asked to
/// stop and forgotten; they own what they touch, and leave it whole.
class OperationCenter final : public QObject {
    Q_OBJECT

public:
    using Job = OperationJob;
    using Prompt = OperationPrompt;
    using SpeedSample = OperationJob::SpeedSample;
    using ScriptedAnswer = std::variant<ConflictDecision, ErrorDecision>;
    /// Called once with what the job came to, after it has left `jobs`. Not at all when the center goes
    /// first.
    using Done = std::move_only_function<void(const JobResult&)>;
    /// To be called with whether the program is to end all the same.
    using Decide = std::function<void(bool quits)>;

    explicit OperationCenter(QObject* parent = nullptr);
    ~OperationCenter() override;

    /// Starts a job. It is in `jobs` at once, unless operations are refused: then it never is, and `done` is
    /// called later all the same.
    std::shared_ptr<Job> run(JobPlan plan, Done done = {});

    /// Those that have not ended, in the order in which they were started.
    [[nodiscard]] const std::vector<std::shared_ptr<Job>>& jobs() const noexcept { return jobs_; }
    void cancelAll();

    /// Puts a conflict that was asked about for all at once singly, as will be all further ones of the job.
    void decideEach(Prompt& prompt, Job& job);

    /// What jobs that did not wholly succeed have left, the oldest first, until it is dismissed.
    [[nodiscard]] const std::vector<LeftReport>& leftReports() const noexcept { return leftReports_; }
    void dismissReport(const QUuid& id);

    /// Answers questions in place of a prompt, for runs that nobody attends. Nothing for those that are to be
    /// shown.
    std::function<std::optional<ScriptedAnswer>(const Prompt::Kind&)> scriptedAnswers;

    /// Held weakly. A new one is told of everything there is to show.
    void setPresenter(OperationPresenting* presenter);
    /// How long a job runs before it is shown.
    void setWindowDelay(std::chrono::milliseconds delay) noexcept { windowDelay_ = delay; }
    /// The drives that jobs queue for; the machine's own unless a test has others.
    void setSlowDrives(SlowDrives drives) { slowDrives_ = std::move(drives); }
    /// While there is one, every operation fails with it before it begins.
    void setRefusal(std::optional<FileOperationError> error) { refusal_ = std::move(error); }
    [[nodiscard]] bool isRefusing() const noexcept { return refusal_.has_value(); }

    /// Asks the user whether the program may end although jobs run. Set by the window side; without it the
    /// program stays.
    std::function<void(Decide)> onQuitWithJobs;
    /// Whether the program may end: at once when no job runs; otherwise the user is asked, and the jobs are
    /// cancelled and have ended before `decide` is called with true.
    void requestQuit(Decide decide);

Q_SIGNALS:
    /// A job came or went.
    void jobsChanged();
    void leftReportsChanged();

private:
    struct Link;

    bool start(Job& job);
    void startPending();
    void refuse(JobPlan plan, Done done, FileOperationError error);
    void finish(Job& job, const JobResult& result);
    void askConflict(Job& job, const ConflictContext& context, Prompt::ConflictAnswerer answerer);
    void askError(Job& job, const ErrorContext& context, Prompt::ErrorAnswerer answerer);
    template <typename Decision, typename Answerer>
    bool answerByScript(const Prompt::Kind& kind, Answerer& answerer);
    void show(Job& job, std::shared_ptr<Prompt> prompt);
    void showWaiting(Job& job, const std::vector<DriveQueue::Number>& ahead);
    void scheduleWindow(const std::shared_ptr<Job>& job);
    [[nodiscard]] std::shared_ptr<Job> held(const Job& job) const;
    void tryToQuit();

    DriveQueue queue_;
    SlowDrives slowDrives_ = &slowDrivesOf;
    std::vector<std::shared_ptr<Job>> jobs_;
    std::vector<LeftReport> leftReports_;
    QPointer<OperationPresenting> presenter_;
    std::chrono::milliseconds windowDelay_{500};
    std::optional<FileOperationError> refusal_;
    std::vector<Decide> quits_; // agreed to, once the jobs have ended
};

} // namespace ombrel
