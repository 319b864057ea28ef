#include "operations/PermanentDeletion.h"

#include "operations/JobRun.h"
#include "operations/TreePlan.h"
#include "operations/TreeRemoval.h"

#include <fcntl.h>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

/// What was found below one item.
struct Planned {
    TreePlan::FolderIndex top = TreePlan::noFolder;
    std::int64_t entries = 1; // with the item itself
};

/// Never fails: what cannot be looked at now is found, or told, when it is to be removed.
Planned plan(const FileReference& item, TreePlan& tree, JobRun& run) {
    Planned planned{.top = tree.add()};
    const auto source = ConfirmedSource::of(item);
    if (!source || !source->status().isDirectory()) return planned;
    auto folder = POSIX::open(source->place(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK);
    if (!folder) return planned;
    const auto status = POSIX::status(folder->get());
    const auto holder = POSIX::status(source->folder().get());
    if (!status || !holder || !isSameMount(*status, *holder)) return planned;
    const auto before = tree.entryCount();
    const auto total = run.progress.totalItems;
    const auto count = [&] {
        planned.entries = 1 + static_cast<std::int64_t>(tree.entryCount() - before);
        run.progress.totalItems = total + planned.entries;
        run.tellSometimes();
    };
    FolderTrail trail(std::move(*folder), *status);
    tree.scan(planned.top, trail, count, run.stop());
    count();
    return planned;
}

} // namespace

OperationReport deletePermanently(std::span<const FileReference> items, const OperationHooks& hooks,
                                  std::stop_token stop) {
    JobRun run(hooks, std::move(stop));
    TreePlan tree;
    std::vector<Planned> planned;
    planned.reserve(items.size());
    run.tell();
    for (const auto& item : items) {
        const auto total = run.progress.totalItems;
        planned.push_back(run.goesOn() ? plan(item, tree, run) : Planned{});
        run.progress.totalItems = total + planned.back().entries;
    }

    OperationReport report{FileOperationKind::delete_, {}};
    run.progress.phase = OperationProgress::Phase::deleting;
    std::int64_t due = 0; // entries dealt with once the item is
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!run.goesOn()) {
            report.items.push_back({items[i].url, ItemOutcome::cancelled()});
            continue;
        }
        run.progress.currentName = items[i].url.name();
        run.tell();
        auto results = TreeRemoval(items[i], tree, planned[i].top, run).remove();
        std::ranges::move(results, std::back_inserter(report.items));
        due += planned[i].entries;
        run.progress.completedItems = std::max(run.progress.completedItems, due);
    }
    run.tell();
    return report;
}

} // namespace ombrel
