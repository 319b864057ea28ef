#include "services/OperationCenter.h"

#include "base/Log.h"
#include "base/MainThread.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

double secondsNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

constexpr ConflictDecision cancelConflicts{ConflictChoice::cancel, true};
constexpr ErrorDecision cancelErrors{ErrorChoice::cancel, true};

bool isWhole(const OperationReport& report) {
    const auto overall = report.overall();
    return overall == OperationReport::Overall::succeeded || overall == OperationReport::Overall::nothingToDo;
}

} // namespace

/// What a job's thread holds of the center: the way to the main thread, where it is looked whether the center
/// and the job are still there. The newest progress waits here, so that a slow main thread is not flooded.
struct OperationCenter::Link : std::enable_shared_from_this<Link> {
    Link(OperationCenter& itsCenter, Job& itsJob) : center(&itsCenter), job(&itsJob) {}

    const QPointer<OperationCenter> center;
    const QPointer<Job> job;

    std::mutex mutex; // guards everything below
    OperationProgress progress;
    double time = 0;
    bool isPosted = false;

    /// Has `use` called on the main thread unless the center or the job has gone. Destroyed unused otherwise.
    template <typename Use>
    void post(Use use) {
        MainThread::post([link = shared_from_this(), use = std::move(use)]() mutable {
            if (link->center && link->job && link->job->stage() != Job::Stage::ended)
                use(*link->center, *link->job);
        });
    }

    void tell(const OperationProgress& latest) {
        {
            const std::scoped_lock lock(mutex);
            progress = latest;
            time = secondsNow();
            if (std::exchange(isPosted, true)) return;
        }
        post([this](OperationCenter&, Job& at) {
            std::unique_lock lock(mutex);
            isPosted = false;
            const OperationProgress taken = progress;
            const double takenAt = time;
            lock.unlock();
            at.apply(taken, takenAt);
        });
    }

    ConflictDecision askConflict(const ConflictContext& context, const std::stop_token& stop) {
        PendingAnswer<ConflictDecision> pending(cancelConflicts);
        post([context, answerer = pending.answerer()](OperationCenter& to, Job& of) mutable {
            to.askConflict(of, context, std::move(answerer));
        });
        return pending.wait(stop);
    }

    ErrorDecision askError(const ErrorContext& context, const std::stop_token& stop) {
        PendingAnswer<ErrorDecision> pending(cancelErrors);
        post([context, answerer = pending.answerer()](OperationCenter& to, Job& of) mutable {
            to.askError(of, context, std::move(answerer));
        });
        return pending.wait(stop);
    }

    [[nodiscard]] OperationHooks hooks(std::shared_ptr<OperationControl> control) {
        OperationHooks hooks;
        hooks.conflicts = [link = shared_from_this()](const ConflictContext& context, std::stop_token stop) {
            return link->askConflict(context, stop);
        };
        hooks.errors = [link = shared_from_this()](const ErrorContext& context, std::stop_token stop) {
            return link->askError(context, stop);
        };
        hooks.progress = [link = shared_from_this()](const OperationProgress& latest) { link->tell(latest); };
        hooks.control = std::move(control);
        return hooks;
    }

    [[nodiscard]] JobEvents events() {
        JobEvents events;
        events.countedConflicts = [link = shared_from_this()](std::int64_t count) {
            link->post([count](OperationCenter&, Job& of) {
                of.knownConflicts_ = count;
                Q_EMIT of.stateChanged();
            });
        };
        events.waits = [link = shared_from_this()](const std::vector<DriveQueue::Number>& ahead) {
            link->post([ahead](OperationCenter& to, Job& of) { to.showWaiting(of, ahead); });
        };
        events.begins = [link = shared_from_this()] {
            link->post([](OperationCenter&, Job& of) { of.setStage(Job::Stage::working); });
        };
        return events;
    }
};

OperationCenter::OperationCenter(QObject* parent) : QObject(parent) {}

OperationCenter::~OperationCenter() {
    for (const auto& job : std::exchange(jobs_, {}))
        job->letGo();
}

std::shared_ptr<OperationJob> OperationCenter::run(JobPlan plan, Done done) {
    const auto job = std::make_shared<Job>(plan, queue_.join());
    if (refusal_) {
        job->letGo();
        refuse(std::move(plan), std::move(done), *refusal_);
        return job;
    }
    job->done_ = std::move(done);
    job->plan_ = std::move(plan);
    jobs_.push_back(job);
    scheduleWindow(job);
    start(*job);
    Q_EMIT jobsChanged();
    return job;
}

void OperationCenter::refuse(JobPlan plan, Done done, FileOperationError error) {
    const auto told = std::make_shared<Done>(std::move(done));
    QMetaObject::invokeMethod(
        this,
        [told, report = plan.reportOfAll(ItemOutcome::failed(std::move(error)))] {
            if (*told) (*told)({report});
        },
        Qt::QueuedConnection);
}

/// Gives the job its thread. When the system has none left it waits for another job to end.
bool OperationCenter::start(Job& job) {
    const auto link = std::make_shared<Link>(*this, job);
    // The closure goes when the thread cannot be made, so the plan is lent to it.
    const auto plan = std::make_shared<JobPlan>(std::move(*std::exchange(job.plan_, std::nullopt)));
    try {
        job.worker_ = Worker("ombrel-job", [plan, link, drives = slowDrives_, place = job.place_,
                                            hooks = link->hooks(job.control_),
                                            events = link->events()](std::stop_token stop) {
            auto result = runJob(*plan, hooks, events, *place, drives, stop);
            link->post([result = std::move(result)](OperationCenter& to, Job& of) { to.finish(of, result); });
        });
        return true;
    } catch (const std::system_error& failure) {
        Log::error(Log::Category::operations, std::string("a job has to wait: ") + failure.what());
        job.plan_ = std::move(*plan);
    }
    constexpr std::chrono::milliseconds pause(200);
    QTimer::singleShot(pause, this, &OperationCenter::startPending);
    return false;
}

void OperationCenter::startPending() {
    for (const auto& job : std::vector(jobs_)) {
        if (!job->plan_ || job->stage() == Job::Stage::ended) continue;
        if (job->isCancelling())
            finish(*job, {job->plan_->reportOfAll(ItemOutcome::cancelled())});
        else if (!start(*job))
            return;
    }
}

void OperationCenter::finish(Job& job, const JobResult& result) {
    const auto kept = held(job);
    if (!kept) return;
    std::erase(jobs_, kept);
    job.place_->leave();
    job.plan_.reset();
    auto done = std::move(job.done_);
    const QPointer guard(this);
    if (job.prompt_) job.setPrompt(nullptr);
    job.setStage(Job::Stage::ended);
    Q_EMIT job.ended(result.report);
    if (!guard) return;
    if (job.leavesReport_ && !isWhole(result.report)) {
        leftReports_.push_back(
            {job.id(), job.title(), std::make_shared<const OperationReport>(result.report)});
        const auto left = leftReports_.back();
        Q_EMIT leftReportsChanged();
        if (guard && presenter_) presenter_->presentReport(left);
    }
    if (guard) Q_EMIT jobsChanged();
    if (done) done(result);
    if (guard) tryToQuit();
}

void OperationCenter::cancelAll() {
    const QPointer guard(this);
    for (const auto& job : std::vector(jobs_)) {
        job->cancel();
        if (!guard) return;
    }
}

void OperationCenter::decideEach(Prompt& prompt, Job& job) {
    if (job.prompt().get() != &prompt) return;
    auto single = prompt.single();
    if (!single) return;
    job.decideEach_ = true;
    show(job, std::move(single));
}

void OperationCenter::dismissReport(const QUuid& id) {
    if (std::erase_if(leftReports_, [&](const LeftReport& left) { return left.id == id; }) > 0)
        Q_EMIT leftReportsChanged();
}

void OperationCenter::setPresenter(OperationPresenting* presenter) {
    presenter_ = presenter;
    if (!presenter) return;
    for (const auto& job : std::vector(jobs_)) {
        scheduleWindow(job);
        if (job->prompt() && presenter_) presenter_->presentPrompt(job->prompt(), job);
    }
    for (const auto& left : std::vector(leftReports_))
        if (presenter_) presenter_->presentReport(left);
}

void OperationCenter::requestQuit(Decide decide) {
    if (jobs_.empty()) return decide(true);
    if (!onQuitWithJobs) return decide(false);
    onQuitWithJobs([center = QPointer(this), decide = std::move(decide)](bool quits) {
        if (!center || !quits) return decide(quits);
        center->quits_.push_back(decide);
        center->cancelAll();
        if (center) center->tryToQuit();
    });
}

void OperationCenter::tryToQuit() {
    if (!jobs_.empty()) return;
    for (const auto& decide : std::exchange(quits_, {}))
        decide(true);
}

template <typename Decision, typename Answerer>
bool OperationCenter::answerByScript(const Prompt::Kind& kind, Answerer& answerer) {
    if (!scriptedAnswers) return false;
    const auto answer = scriptedAnswers(kind);
    const auto* const decision = answer ? std::get_if<Decision>(&*answer) : nullptr;
    if (decision) answerer(*decision);
    return decision;
}

void OperationCenter::askConflict(Job& job, const ConflictContext& context,
                                  Prompt::ConflictAnswerer answerer) {
    if (job.isCancelling()) return;
    Prompt::Conflict question{context, std::nullopt};
    if (!job.decideEach_)
        question.batchCount = job.hasAnsweredBatch_ ? 1 : std::max<std::int64_t>(job.knownConflicts_, 1);
    if (answerByScript<ConflictDecision>(question, answerer)) return;
    show(job, std::make_shared<Prompt>(std::move(question), std::move(answerer)));
}

void OperationCenter::askError(Job& job, const ErrorContext& context, Prompt::ErrorAnswerer answerer) {
    if (job.isCancelling()) return;
    if (answerByScript<ErrorDecision>(context, answerer)) return;
    show(job, std::make_shared<Prompt>(context, std::move(answerer)));
}

void OperationCenter::show(Job& job, std::shared_ptr<Prompt> prompt) {
    prompt->onAnswered = [owner = QPointer(&job), which = prompt.get()] {
        if (!owner || owner->prompt_.get() != which) return;
        if (which->isBatch() && which->isAnsweredForAll()) owner->hasAnsweredBatch_ = true;
        owner->setPrompt(nullptr);
    };
    const auto kept = held(job);
    const QPointer guard(this);
    job.setPrompt(prompt);
    if (guard && presenter_ && kept && !prompt->isAnswered()) presenter_->presentPrompt(prompt, kept);
}

void OperationCenter::showWaiting(Job& job, const std::vector<DriveQueue::Number>& ahead) {
    std::vector<std::weak_ptr<Job>> others;
    for (const auto& other : jobs_)
        if (std::ranges::find(ahead, other->place_->number()) != ahead.end()) others.emplace_back(other);
    job.setWaitsFor(std::move(others));
}

void OperationCenter::scheduleWindow(const std::shared_ptr<Job>& job) {
    QTimer::singleShot(windowDelay_, this, [this, waiting = std::weak_ptr(job)] {
        const auto kept = waiting.lock();
        if (kept && presenter_ && held(*kept)) presenter_->presentJob(kept);
    });
}

std::shared_ptr<OperationJob> OperationCenter::held(const Job& job) const {
    const auto found = std::ranges::find(jobs_, &job, &std::shared_ptr<Job>::get);
    return found == jobs_.end() ? nullptr : *found;
}

} // namespace ombrel
