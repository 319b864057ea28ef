#include "operations/Trashing.h"

#include "operations/JobRun.h"
#include "operations/PermanentDeletion.h"

#include <utility>

namespace ombrel {
namespace {

ItemResult trashOne(TrashBackend& trash, const FileReference& item, JobRun& run) {
    for (;;) {
        const auto moved = trash.moveToTrash(item);
        if (moved) return {item.url, ItemOutcome::completed(*moved)};
        ErrorContext context{FileOperationKind::trash, item.url, std::nullopt, moved.error().error};
        context.facts.trashReason = moved.error().reason;
        switch (run.ask(context)) {
        case ErrorChoice::retry: continue;
        case ErrorChoice::skip: return {item.url, ItemOutcome::failed(context.error), context.facts};
        case ErrorChoice::cancel: return {item.url, ItemOutcome::cancelled()};
        }
    }
}

} // namespace

OperationReport moveToTrash(TrashBackend& trash, std::span<const FileReference> items,
                            const OperationHooks& hooks, std::stop_token stop) {
    JobRun run(hooks, std::move(stop));
    run.progress.phase = OperationProgress::Phase::trashing;
    run.progress.totalItems = static_cast<std::int64_t>(items.size());
    run.tell();
    OperationReport report{FileOperationKind::trash, {}};
    report.items.reserve(items.size());
    for (const auto& item : items) {
        if (!run.goesOn()) {
            report.items.push_back({item.url, ItemOutcome::cancelled()});
            continue;
        }
        run.progress.currentName = item.url.name();
        run.tellSometimes();
        report.items.push_back(trashOne(trash, item, run));
        ++run.progress.completedItems;
    }
    run.tell();
    return report;
}

EmptiedTrash emptyTrash(TrashBackend& trash, const OperationHooks& hooks, std::stop_token stop) {
    auto listing = trash.list(TrashSizes::known, stop);
    EmptiedTrash emptied{{FileOperationKind::delete_, {}}, {}, std::move(listing.unreadable)};
    std::vector<FileReference> items;
    for (const auto& item : listing.items) {
        if (item.original)
            items.push_back({item.location, item.status.identity});
        else
            emptied.unrecorded.push_back(item.location);
    }
    emptied.report = deletePermanently(items, hooks, stop);
    std::vector<FileURL> locations;
    for (const auto& item : items)
        locations.push_back(item.url);
    trash.forget(locations);
    trash.tidy(stop);
    return emptied;
}

} // namespace ombrel
