#pragma once

#include "operations/JobPlan.h"
#include "services/OperationCenter.h"
#include "services/OperationPresenting.h"
#include "support/TempTree.h"
#include "support/TransferWorld.h"

#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "qtmain/KitWorld.h"

namespace ombrel::testing {

/// Keeps what it was told.
class Presenter final : public OperationPresenting {
public:
    std::vector<std::shared_ptr<OperationJob>> jobs;
    std::vector<std::shared_ptr<OperationPrompt>> prompts;
    std::vector<LeftReport> reports;
    /// Answers every conflict with it at once.
    std::optional<ConflictChoice> answersAll;

    void presentJob(const std::shared_ptr<OperationJob>& job) override { jobs.push_back(job); }
    void presentPrompt(const std::shared_ptr<OperationPrompt>& prompt,
                       const std::shared_ptr<OperationJob>&) override {
        prompts.push_back(prompt);
        if (answersAll) prompt->answer(*answersAll, true);
    }
    void presentReport(const LeftReport& report) override { reports.push_back(report); }
};

/// Work that goes on until it is ended, or its job cancelled. May go before its jobs.
class Holdup {
public:
    [[nodiscard]] JobPlan plan(const FileURL& source, JobPlan::Data data = JobPlan::Data::none) const {
        JobPlan plan{.kind = FileOperationKind::compress, .sources = {source}, .data = data};
        plan.work = [state = state_, source](const OperationHooks&, const std::stop_token& stop) {
            std::unique_lock lock(state->mutex);
            state->isReached = true;
            state->changed.notify_all();
            const bool isDone = state->changed.wait(lock, stop, [&] { return state->hasEnded; });
            return OperationReport{FileOperationKind::compress,
                                   {{source, isDone ? ItemOutcome::completed() : ItemOutcome::cancelled()}}};
        };
        return plan;
    }
    void end() {
        const std::scoped_lock lock(state_->mutex);
        state_->hasEnded = true;
        state_->changed.notify_all();
    }
    /// Blocks until one of the jobs works.
    [[nodiscard]] bool waitUntilReached() {
        std::unique_lock lock(state_->mutex);
        return state_->changed.wait_for(lock, std::chrono::seconds(20), [&] { return state_->isReached; });
    }

private:
    struct State {
        std::mutex mutex; // guards everything below
        std::condition_variable_any changed;
        bool isReached = false;
        bool hasEnded = false;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// A center with a folder to work in, and what its jobs came to.
class OperationWorld {
public:
    KitWorld world;
    TempTree tree;
    FileOperationService service{std::make_shared<NoTrash>()};
    std::unique_ptr<OperationCenter> center = std::make_unique<OperationCenter>();
    std::vector<JobResult> results; // in the order of their end

    OperationWorld() {
        // The machine's own may be slow, which is not what a test is about.
        center->setSlowDrives([](const FileStatus&) { return std::vector<DriveQueue::Drive>(); });
    }

    std::shared_ptr<OperationJob> run(JobPlan plan) {
        return center->run(std::move(plan), [this](const JobResult& result) { results.push_back(result); });
    }
    [[nodiscard]] JobPlan transfer(FileOperationKind kind, const std::vector<FileURL>& sources,
                                   const FileURL& destination) const {
        std::vector<TransferItem> items;
        for (const auto& source : sources)
            items.emplace_back(FileReference{source, std::nullopt});
        return JobPlan::transfer(service, kind, std::move(items), destination);
    }
    [[nodiscard]] bool waitForResults(std::size_t count,
                                      std::chrono::milliseconds limit = std::chrono::seconds(30)) const {
        return runUntil([&] { return results.size() >= count; }, limit);
    }
};

} // namespace ombrel::testing
