#include "services/OperationCenter.h"

#include "services/OperationWorld.h"

#include <QPointer>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using testing::Holdup;
using ::testing::IsEmpty;
using testing::OperationWorld;
using testing::Presenter;
using testing::runUntil;
using testing::runUntilQuiet;
using ::testing::SizeIs;
using Case = ItemOutcome::Case;
using Kind = FileOperationKind;
using Overall = OperationReport::Overall;
using Phase = OperationProgress::Phase;
using Stage = OperationJob::Stage;

class Center : public ::testing::Test, public OperationWorld {};

// ---- From start to end

TEST_F(Center, ListsAJobAtOnceAndUntilItsReportIsThere) {
    const auto job = run(JobPlan::createFolder(service, tree.url(), "new"));
    EXPECT_THAT(center->jobs(), ElementsAre(job));
    std::vector<Overall> told;
    QObject::connect(job.get(), &OperationJob::ended, [&](const OperationReport& report) {
        told.push_back(report.overall());
        EXPECT_THAT(center->jobs(), IsEmpty());
        EXPECT_THAT(results, IsEmpty()) << "whoever started it is told last";
    });
    ASSERT_TRUE(waitForResults(1));
    EXPECT_THAT(told, ElementsAre(Overall::succeeded));
    EXPECT_EQ(job->stage(), Stage::ended);
    EXPECT_EQ(results.front().report.items.front().outcome.destination(), tree.url("new"));
    EXPECT_THAT(center->leftReports(), IsEmpty());
}

TEST_F(Center, DescribesAJobForPeople) {
    tree.folder("to");
    const auto job = run(transfer(Kind::copy, {tree.file("a"), tree.file("b")}, tree.url("to")));
    EXPECT_EQ(job->itemCount(), 2);
    EXPECT_EQ(job->sourceName(), tree.url().name());
    EXPECT_EQ(job->destinationName(), "to");
    EXPECT_EQ(job->title(), (Text{"progress.title.copy", {std::string(tree.url().name()), "to"}, 2}));
    ASSERT_TRUE(waitForResults(1));
}

TEST_F(Center, KeepsTheReportOfAJobThatDidNotWhollySucceedUntilItIsDismissed) {
    run(JobPlan::rename(service, {tree.url("missing"), {}}, "b"));
    run(JobPlan::createFolder(service, tree.url(), "new"));
    ASSERT_TRUE(waitForResults(2));
    ASSERT_THAT(center->leftReports(), SizeIs(1));
    EXPECT_EQ(center->leftReports().front().report->items.front().outcome,
              ItemOutcome::failed(FileOperationError::Case::sourceMissing));
    Presenter late;
    center->setPresenter(&late);
    ASSERT_THAT(late.reports, SizeIs(1)) << "who comes late is told too";
    center->dismissReport(late.reports.front().id);
    EXPECT_THAT(center->leftReports(), IsEmpty());
}

TEST_F(Center, ShowsOnlyJobsThatRunForAWhile) {
    Presenter presenter;
    center->setPresenter(&presenter);
    center->setWindowDelay(std::chrono::milliseconds(30));
    Holdup holdup;
    const auto slow = run(holdup.plan(tree.url()));
    ASSERT_TRUE(runUntil([&] { return !presenter.jobs.empty(); }));
    EXPECT_THAT(presenter.jobs, ElementsAre(slow));
    holdup.end();
    ASSERT_TRUE(waitForResults(1));

    presenter.jobs.clear();
    center->setWindowDelay(std::chrono::seconds(1));
    run(JobPlan::createFolder(service, tree.url(), "quick"));
    ASSERT_TRUE(waitForResults(2));
    bool isOver = false;
    QTimer::singleShot(std::chrono::milliseconds(1100), [&] { isOver = true; });
    ASSERT_TRUE(runUntil([&] { return isOver; }));
    EXPECT_THAT(presenter.jobs, IsEmpty());
}

TEST_F(Center, RefusesEveryOperationWhileItIsToldTo) {
    center->setRefusal(FileOperationError::Case::permissionDenied);
    run(JobPlan::createFolder(service, tree.url(), "new"));
    run(transfer(Kind::move, {tree.file("a"), tree.file("b")}, tree.folder("to")));
    EXPECT_THAT(center->jobs(), IsEmpty());
    EXPECT_THAT(results, IsEmpty()) << "told later, as always";
    ASSERT_TRUE(waitForResults(2));
    const auto refused = ItemOutcome::failed(FileOperationError::Case::permissionDenied);
    EXPECT_EQ(results[1].report,
              (OperationReport{Kind::move, {{tree.url("a"), refused}, {tree.url("b"), refused}}}));
    EXPECT_THAT(tree.names(), ElementsAre("a", "b", "to"));
}

// ---- Progress

TEST_F(Center, TakesTheNewestProgressOfAJobThatTellsMoreThanItCanTake) {
    Holdup holdup;
    auto plan = holdup.plan(tree.url());
    plan.work = [work = std::move(plan.work)](const OperationHooks& hooks, std::stop_token stop) mutable {
        for (std::int64_t i = 1; i <= 100'000; ++i)
            hooks.progress({.completedItems = i, .totalItems = 100'000, .currentName = {}});
        return work(hooks, std::move(stop));
    };
    const auto job = run(std::move(plan));
    int told = 0;
    QObject::connect(job.get(), &OperationJob::progressChanged, [&] { ++told; });
    ASSERT_TRUE(holdup.waitUntilReached()) << "while the main thread does nothing else";
    ASSERT_TRUE(runUntil([&] { return job->progress().completedItems == 100'000; }));
    EXPECT_LT(told, 1000);
    holdup.end();
    ASSERT_TRUE(waitForResults(1));
}

// ---- Conflicts

class Conflicts : public Center {
protected:
    Conflicts() {
        tree.folder("to");
        for (const std::string name : {"a", "b", "c"}) {
            tree.file("to/" + name, "old");
            tree.file(name, "new " + name);
        }
        center->setPresenter(&presenter);
    }
    std::shared_ptr<OperationJob> copyAll() {
        return run(transfer(Kind::copy, {tree.url("a"), tree.url("b"), tree.url("c")}, tree.url("to")));
    }
    [[nodiscard]] bool waitForPrompts(std::size_t count) {
        return runUntil([&] { return presenter.prompts.size() >= count; });
    }
    static const OperationPrompt::Conflict& question(const OperationPrompt& prompt) {
        return std::get<OperationPrompt::Conflict>(prompt.kind());
    }
    Presenter presenter;
};

TEST_F(Conflicts, AreAskedAboutAllAtOnceFirst) {
    const auto job = copyAll();
    ASSERT_TRUE(waitForPrompts(1));
    auto& prompt = *presenter.prompts.front();
    EXPECT_EQ(job->prompt().get(), &prompt);
    EXPECT_EQ(job->knownConflicts(), 3);
    EXPECT_EQ(question(prompt).batchCount, 3);
    EXPECT_TRUE(prompt.isBatch());
    EXPECT_EQ(question(prompt).context.existing, tree.url("to/a"));
    int answered = 0;
    QObject::connect(&prompt, &OperationPrompt::answered, [&] { ++answered; });
    prompt.answer(ConflictChoice::replace, true);
    prompt.answer(ConflictChoice::cancel, true);
    prompt.answer(ErrorChoice::cancel);
    EXPECT_EQ(answered, 1) << "a second answer does nothing";
    EXPECT_EQ(job->prompt(), nullptr);
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(results.front().report.overall(), Overall::succeeded);
    EXPECT_EQ(tree.contents("to/c"), "new c");
    EXPECT_THAT(presenter.prompts, SizeIs(1));
}

TEST_F(Conflicts, AreAskedAboutSinglyOnceTheUserWantsToDecideEach) {
    const auto job = copyAll();
    ASSERT_TRUE(waitForPrompts(1));
    const auto batch = presenter.prompts.front();
    center->decideEach(*batch, *job);
    ASSERT_THAT(presenter.prompts, SizeIs(2));
    EXPECT_TRUE(batch->isAnswered());
    batch->answer(ConflictChoice::cancel, true);
    EXPECT_EQ(job->prompt(), presenter.prompts[1]);
    EXPECT_EQ(question(*presenter.prompts[1]).context, question(*batch).context);
    EXPECT_EQ(question(*presenter.prompts[1]).batchCount, std::nullopt);
    presenter.prompts[1]->answer(ConflictChoice::skip, false);
    ASSERT_TRUE(waitForPrompts(3));
    EXPECT_EQ(question(*presenter.prompts[2]).batchCount, std::nullopt);
    presenter.prompts[2]->answer(ConflictChoice::keepBoth, false);
    ASSERT_TRUE(waitForPrompts(4));
    presenter.prompts[3]->answer(ConflictChoice::replace, false);
    ASSERT_TRUE(waitForResults(1));
    EXPECT_THAT(tree.names("to"), ElementsAre("a", "b", "b (2)", "c"));
    EXPECT_EQ(tree.contents("to/a") + tree.contents("to/b") + tree.contents("to/c"), "oldoldnew c");
}

TEST_F(Conflicts, OfOneJobDoNotHoldUpAnother) {
    const auto asking = copyAll();
    ASSERT_TRUE(waitForPrompts(1));
    run(JobPlan::createFolder(service, tree.url(), "meanwhile"));
    ASSERT_TRUE(waitForResults(1));
    EXPECT_THAT(center->jobs(), ElementsAre(asking));
    asking->cancel();
    ASSERT_TRUE(waitForResults(2));
}

TEST_F(Conflicts, AreAnsweredByAScriptWithoutAPrompt) {
    center->scriptedAnswers =
        [](const OperationPrompt::Kind& kind) -> std::optional<OperationCenter::ScriptedAnswer> {
        const auto* conflict = std::get_if<OperationPrompt::Conflict>(&kind);
        if (!conflict || conflict->context.source.name() == "b") return std::nullopt;
        return ConflictDecision{ConflictChoice::keepBoth, false};
    };
    copyAll();
    ASSERT_TRUE(waitForPrompts(1)) << "what the script has no answer to is asked";
    EXPECT_EQ(question(*presenter.prompts.front()).context.source.name(), "b");
    presenter.prompts.front()->answer(ConflictChoice::skip, false);
    ASSERT_TRUE(waitForResults(1));
    EXPECT_THAT(tree.names("to"), ElementsAre("a", "a (2)", "b", "c", "c (2)"));
}

TEST_F(Conflicts, StayWithTheJobWhenThePresenterGoes) {
    auto first = std::make_unique<Presenter>();
    center->setPresenter(first.get());
    const auto job = copyAll();
    ASSERT_TRUE(runUntil([&] { return !first->prompts.empty(); }));
    first.reset();
    ASSERT_NE(job->prompt(), nullptr);
    center->setPresenter(&presenter);
    ASSERT_THAT(presenter.prompts, ElementsAre(job->prompt())) << "the next one is told";
    presenter.prompts.front()->answer(ConflictChoice::skip, true);
    ASSERT_TRUE(waitForResults(1));
}

TEST_F(Conflicts, OfTwoJobsIntoOneFolderWithTheSameNamesLoseNothing) {
    tree.folder("other");
    const auto again = tree.file("other/x", "second");
    const auto once = tree.file("x", "first");
    run(transfer(Kind::copy, {once}, tree.url("to")));
    run(transfer(Kind::copy, {again}, tree.url("to")));
    center->scriptedAnswers = [](const OperationPrompt::Kind&) {
        return ConflictDecision{ConflictChoice::keepBoth, false};
    };
    ASSERT_TRUE(waitForResults(2));
    std::vector<std::string> contents;
    for (const std::string name : {"x", "x (2)"})
        contents.push_back(tree.contents("to/" + name));
    EXPECT_THAT(contents, ::testing::UnorderedElementsAre("first", "second"));
}

// ---- Errors

TEST_F(Center, AsksAboutErrorsAndTakesTheCheckBox) {
    Presenter presenter;
    center->setPresenter(&presenter);
    tree.folder("to");
    tree.file("c");
    run(transfer(Kind::copy, {tree.url("a"), tree.url("b"), tree.url("c")}, tree.url("to")));
    ASSERT_TRUE(runUntil([&] { return presenter.prompts.size() == 1; }));
    EXPECT_EQ(std::get<ErrorContext>(presenter.prompts[0]->kind()).error,
              FileOperationError(FileOperationError::Case::sourceMissing));
    tree.file("a");
    presenter.prompts[0]->answer(ErrorChoice::retry);
    ASSERT_TRUE(runUntil([&] { return presenter.prompts.size() == 2; }));
    presenter.prompts[1]->setApplyToAll(true);
    presenter.prompts[1]->answer(ErrorChoice::skip);
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(results.front().report.overall(), Overall::partiallySucceeded);
    EXPECT_THAT(tree.names("to"), ElementsAre("a", "c"));
}

// ---- Pause and cancel

/// Where a job is when it is cancelled.
struct Moment {
    const char* name;
    std::optional<Phase> pausedIn; ///< paused by its own thread as soon as it tells this phase
    std::string question = {};

    friend void PrintTo(const Moment& moment, std::ostream* stream) { *stream << moment.name; }
};

class CancellingAJob : public Center, public ::testing::WithParamInterface<Moment> {
protected:
    /// A real copy that comes to the moment and stays there.
    std::shared_ptr<OperationJob> start() {
        const auto& moment = GetParam();
        tree.folder("to");
        tree.fileOfSize("a", 300'000);
        if (moment.question == "conflict") tree.file("to/a", "old");
        std::vector<FileURL> sources = {tree.url("a"), tree.file("b")};
        if (moment.question == "error") sources.insert(sources.begin(), tree.url("missing"));
        auto plan = transfer(Kind::copy, sources, tree.url("to"));
        plan.work = [moment, work = std::move(plan.work)](const OperationHooks& hooks,
                                                          std::stop_token stop) mutable {
            auto pausing = hooks;
            pausing.progress = [&](const OperationProgress& progress) {
                if (progress.phase == moment.pausedIn && !stop.stop_requested())
                    hooks.control->setPaused(true);
                hooks.progress(progress);
                // Reports that follow one another too closely are not made; this phase is to be told.
                if (moment.pausedIn == Phase::verifying && progress.phase == Phase::copying)
                    std::this_thread::sleep_for(std::chrono::milliseconds(100));
            };
            return work(pausing, stop);
        };
        const auto job = run(std::move(plan));
        const bool isThere = runUntil([&] {
            if (!moment.question.empty()) return job->prompt() != nullptr;
            return !moment.pausedIn ||
                   (job->control()->isPaused() && job->progress().phase == *moment.pausedIn);
        });
        EXPECT_TRUE(isThere);
        return job;
    }
};

TEST_P(CancellingAJob, EndsItAndLeavesNoHalves) {
    const auto job = start();
    const bool hadOld = tree.exists("to/a");
    job->cancel();
    job->cancel();
    EXPECT_TRUE(job->isCancelling());
    EXPECT_EQ(job->prompt(), nullptr);
    ASSERT_TRUE(waitForResults(1));
    const auto& items = results.front().report.items;
    // What was whole already may have taken its place.
    EXPECT_EQ(items.back().outcome.which(), Case::cancelled);
    std::vector<std::string> whole;
    if (hadOld) whole.emplace_back("a");
    for (const auto& item : items)
        if (item.outcome.isSuccess()) whole.emplace_back(item.outcome.destination()->name());
    EXPECT_THAT(tree.names("to"), ::testing::ElementsAreArray(whole));
    if (hadOld) {
        EXPECT_TRUE(tree.contents("to/a") == "old");
    }
}

TEST_P(CancellingAJob, AlsoBySendingTheCenterAway) {
    const auto job = start();
    center.reset();
    ASSERT_TRUE(runUntilQuiet()) << "its thread ends by itself";
    EXPECT_THAT(results, IsEmpty());
    EXPECT_EQ(job->stage(), Stage::ended);
    EXPECT_EQ(tree.exists("to/b"), false);
    job->cancel();
    job->pause();
}

INSTANTIATE_TEST_SUITE_P(At, CancellingAJob,
                         ::testing::Values(Moment{"TheStart", {}}, Moment{"Preparing", Phase::preparing},
                                           Moment{"Copying", Phase::copying},
                                           Moment{"Verifying", Phase::verifying},
                                           Moment{"AConflict", {}, "conflict"},
                                           Moment{"AnError", {}, "error"}),
                         [](const auto& at) { return at.param.name; });

TEST_F(Center, GoesOnWhereItWasPaused) {
    tree.folder("to");
    const auto job = run(transfer(Kind::copy, {tree.fileOfSize("a", 100'000)}, tree.url("to")));
    job->pause();
    EXPECT_TRUE(job->isPaused());
    EXPECT_TRUE(job->control()->isPaused());
    job->resume();
    EXPECT_FALSE(job->control()->isPaused());
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(results.front().report.overall(), Overall::succeeded);
    job->pause();
    EXPECT_FALSE(job->isPaused()) << "it has ended";
}

TEST_F(Center, CancelsAllAtOnce) {
    Holdup holdup;
    for (int i = 0; i < 3; ++i)
        run(holdup.plan(tree.url()));
    center->cancelAll();
    ASSERT_TRUE(waitForResults(3));
    EXPECT_THAT(center->jobs(), IsEmpty());
}

// ---- One drive, several jobs

class BusyDrive : public Center {
protected:
    BusyDrive() {
        tree.folder("to");
        center->setSlowDrives([](const FileStatus&) { return std::vector<DriveQueue::Drive>{8}; });
        first = run(holdup.plan(tree.url(), JobPlan::Data::copied));
        EXPECT_TRUE(runUntil([this] { return first->stage() == Stage::working; }));
    }
    [[nodiscard]] bool waits(const OperationJob& job) const {
        return runUntil([&] { return job.stage() == Stage::waiting; });
    }
    Holdup holdup;
    std::shared_ptr<OperationJob> first;
};

TEST_F(BusyDrive, MakesTheNextCopyWaitAndSayForWhat) {
    const auto second = run(transfer(Kind::copy, {tree.file("a")}, tree.url("to")));
    ASSERT_TRUE(waits(*second));
    ASSERT_THAT(second->waitsFor(), SizeIs(1));
    EXPECT_EQ(second->waitsFor().front().lock(), first);
    EXPECT_EQ(second->waitingText(), (Text{"progress.waiting", {first->title().localized()}}));
    run(transfer(Kind::move, {tree.file("b")}, tree.url("to")));
    run(JobPlan::rename(service, {tree.file("c"), {}}, "d"));
    ASSERT_TRUE(waitForResults(2)) << "what copies no data never waits";
    EXPECT_EQ(second->stage(), Stage::waiting);
    holdup.end();
    ASSERT_TRUE(waitForResults(4));
    EXPECT_EQ(second->waitingText(), std::nullopt);
    EXPECT_TRUE(tree.exists("to/a"));
}

TEST_F(BusyDrive, CanBeUsedAllTheSame) {
    const auto second = run(transfer(Kind::copy, {tree.file("a")}, tree.url("to")));
    ASSERT_TRUE(waits(*second));
    second->startNow();
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(first->stage(), Stage::working);
    holdup.end();
    ASSERT_TRUE(waitForResults(2));
}

TEST_F(BusyDrive, IsFreeWhileTheJobThatUsesItIsPaused) {
    const auto second = run(transfer(Kind::copy, {tree.file("a")}, tree.url("to")));
    ASSERT_TRUE(waits(*second));
    first->pause();
    ASSERT_TRUE(waitForResults(1));
    first->cancel();
    ASSERT_TRUE(waitForResults(2));
}

TEST_F(BusyDrive, LetsAWaitingJobBeCancelled) {
    const auto second = run(transfer(Kind::copy, {tree.file("a")}, tree.url("to")));
    ASSERT_TRUE(waits(*second));
    second->cancel();
    ASSERT_TRUE(waitForResults(1));
    EXPECT_EQ(results.front().report.overall(), Overall::cancelled);
    EXPECT_FALSE(tree.exists("to/a"));
    center.reset();
    EXPECT_TRUE(runUntilQuiet());
}

// ---- Quitting

TEST_F(Center, AsksBeforeTheProgramEndsUnderItsJobs) {
    std::vector<bool> decided;
    const auto decide = [&](bool quits) { decided.push_back(quits); };
    center->requestQuit(decide);
    EXPECT_THAT(decided, ElementsAre(true)) << "nothing runs";
    Holdup holdup;
    run(holdup.plan(tree.url()));
    center->requestQuit(decide);
    EXPECT_THAT(decided, ElementsAre(true, false)) << "nobody can be asked";
    OperationCenter::Decide user;
    center->onQuitWithJobs = [&](OperationCenter::Decide answer) { user = std::move(answer); };
    center->requestQuit(decide);
    ASSERT_TRUE(user);
    user(false);
    EXPECT_THAT(decided, ElementsAre(true, false, false));
    EXPECT_FALSE(center->jobs().front()->isCancelling());
    center->requestQuit(decide);
    user(true);
    EXPECT_THAT(decided, SizeIs(3)) << "not before the jobs have ended";
    ASSERT_TRUE(waitForResults(1));
    EXPECT_THAT(decided, ElementsAre(true, false, false, true));
}

// ---- Many

TEST_F(Center, RunsAThousandJobsAtOnceAndLosesNoReport) {
    constexpr int count = 1000;
    tree.folder("to");
    tree.file("to/taken");
    const auto taken = tree.file("taken");
    Presenter presenter;
    center->setPresenter(&presenter);
    center->setSlowDrives([](const FileStatus&) { return std::vector<DriveQueue::Drive>{1}; });
    presenter.answersAll = ConflictChoice::skip;
    for (int i = 0; i < count; ++i) {
        const auto name = std::to_string(i);
        if (i % 3 == 0)
            run(transfer(Kind::copy, {taken}, tree.url("to")));
        else if (i % 3 == 1)
            run(JobPlan::createFolder(service, tree.url("to"), name));
        else
            run(JobPlan::rename(service, {tree.file(name), {}}, "renamed" + name));
    }
    EXPECT_THAT(center->jobs(), SizeIs(count));
    ASSERT_TRUE(waitForResults(count, std::chrono::minutes(4)));
    EXPECT_THAT(center->jobs(), IsEmpty());
    EXPECT_THAT(center->leftReports(), SizeIs(334)) << "of those that skipped their only item";
    EXPECT_THAT(presenter.reports, SizeIs(334));
    EXPECT_THAT(tree.names("to"), SizeIs(334)) << "333 folders and the file";
}

} // namespace
} // namespace ombrel
