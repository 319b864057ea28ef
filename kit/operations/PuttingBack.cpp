#include "operations/PuttingBack.h"

#include "listing/POSIXEntries.h"
#include "operations/ConfirmedSource.h"
#include "operations/ItemNames.h"
#include "operations/JobRun.h"
#include "operations/Relocation.h"

#include <fcntl.h>

#include <cerrno>
#include <string>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;

constexpr int lastNumber = 500;

/// Opens a folder, and makes it and those above it where that is asked for.
POSIX::Result<OwnedFd> openFolder(const FileURL& url, MissingFolders folders) {
    auto folder = POSIX::open(url, O_PATH | O_DIRECTORY);
    if (folder || folder.error().number != ENOENT || folders == MissingFolders::refuse || url.isRoot())
        return folder;
    const auto above = openFolder(url.parent(), folders);
    if (!above) return std::unexpected(above.error());
    const std::string name(url.name());
    const POSIX::Place place{above->get(), name.c_str()};
    const auto made = POSIX::makeDirectory(place, 0777);
    if (!made && made.error().number != EEXIST) return std::unexpected(made.error());
    return POSIX::open(place, O_PATH | O_DIRECTORY);
}

ItemFacts factsOf(const FileStatus& status) {
    return {status.isRegular() ? std::optional(status.size) : std::nullopt, status.modified};
}

/// Puts back one item of a job.
class PuttingBack {
public:
    PuttingBack(TrashBackend& trash, const OperationHooks& hooks, JobRun& run, MissingFolders folders)
        : trash_(trash), hooks_(hooks), run_(run), folders_(folders) {}

    ItemResult putBack(const PutBackItem& item) {
        for (;;) {
            const auto outcome = attempt(item);
            if (outcome) return {item.item.url, *outcome};
            ErrorContext context{FileOperationKind::move, item.item.url, item.original,
                                 outcome.error().error};
            context.facts.trashReason = outcome.error().reason;
            switch (run_.ask(context)) {
            case ErrorChoice::retry: continue;
            case ErrorChoice::skip: return {item.item.url, ItemOutcome::failed(context.error), context.facts};
            case ErrorChoice::cancel: return {item.item.url, ItemOutcome::cancelled()};
            }
        }
    }

private:
    using Attempt = std::expected<ItemOutcome, TrashFailure>;

    static std::unexpected<TrashFailure> failed(Error error) {
        return std::unexpected(TrashFailure{std::move(error)});
    }

    Attempt attempt(const PutBackItem& item) {
        const auto source = ConfirmedSource::of(item.item);
        if (!source) return failed(source.error());
        const auto kept = trash_.itemAt(item.item.url);
        if (!kept) return failed(Error::Case::sourceMissing);
        const auto target = item.original ? item.original : kept->original;
        if (!target)
            return std::unexpected(
                TrashFailure{Error::Case::trashUnavailable, TrashUnavailableReason::noRecord});
        if (target->isRoot() || target->name() == "..") return failed(Error::Case::destinationExists);
        const auto folder = openFolder(target->parent(), folders_);
        if (!folder && (folder.error().number == ENOENT || folder.error().number == ENOTDIR))
            return failed(Error::Case::destinationMissing);
        if (!folder) return failed(Error::from(folder.error()));
        return moveTo(*source, item.item.url, *target, *folder);
    }

    Attempt moveTo(const ConfirmedSource& source, const FileURL& location, const FileURL& target,
                   const OwnedFd& folder) {
        const auto keep = source.status().isDirectory() ? KeepExtension::no : KeepExtension::yes;
        std::string name(target.name());
        bool isNumbered = false;
        for (int number = 1; number <= lastNumber;) {
            if (run_.isCancelled()) return ItemOutcome::cancelled();
            const POSIX::Place place{folder.get(), name.c_str()};
            const auto moved = relocate(source.place(), source.status(), place);
            const FileURL there = target.parent().appending(name);
            if (moved) {
                trash_.forget({&location, 1});
                const bool isFolder = source.status().isDirectory();
                return ItemOutcome::completed(
                    there.marked(isFolder ? FileURL::Mark::directory : FileURL::Mark::none));
            }
            if (moved.error().number != EEXIST && moved.error().number != ENOTEMPTY)
                return failed(Error::from(moved.error()));
            const auto choice =
                isNumbered ? ConflictChoice::keepBoth : decide(source, location, there, place);
            switch (choice) {
            case ConflictChoice::skip: return ItemOutcome::skipped();
            case ConflictChoice::cancel: run_.cancel(); return ItemOutcome::cancelled();
            case ConflictChoice::replace:
                if (const auto away = trash_.moveToTrash(FileReference::sampling(there)); !away)
                    return std::unexpected(away.error());
                continue;
            case ConflictChoice::keepBoth:
                isNumbered = true;
                name = ItemNames::numbered(target.name(), ++number, keep);
            }
        }
        return failed(Error::Case::destinationExists);
    }

    ConflictChoice decide(const ConfirmedSource& source, const FileURL& location, const FileURL& existing,
                          POSIX::Place place) {
        if (standing_) return *standing_;
        if (!hooks_.conflicts) return ConflictChoice::skip;
        ConflictContext context{FileOperationKind::move, location, existing, source.status().isDirectory()};
        context.sourceFacts = factsOf(source.status());
        if (const auto status = POSIX::lstat(place)) {
            context.existingIsDirectory = status->isDirectory();
            context.existingFacts = factsOf(*status);
        }
        const auto decision = hooks_.conflicts(context, run_.stop());
        if (decision.applyToAll) standing_ = decision.choice;
        return decision.choice;
    }

    TrashBackend& trash_;
    const OperationHooks& hooks_;
    JobRun& run_;
    const MissingFolders folders_;
    std::optional<ConflictChoice> standing_;
};

} // namespace

OperationReport putBack(TrashBackend& trash, std::span<const PutBackItem> items, MissingFolders folders,
                        const OperationHooks& hooks, std::stop_token stop) {
    JobRun run(hooks, std::move(stop));
    PuttingBack work(trash, hooks, run, folders);
    run.progress.totalItems = static_cast<std::int64_t>(items.size());
    run.progress.phase = OperationProgress::Phase::copying;
    run.tell();
    OperationReport report{FileOperationKind::move, {}};
    for (const auto& item : items) {
        if (!run.goesOn()) {
            report.items.push_back({item.item.url, ItemOutcome::cancelled()});
            continue;
        }
        run.progress.currentName = item.item.url.name();
        run.tellSometimes();
        report.items.push_back(work.putBack(item));
        ++run.progress.completedItems;
    }
    run.tell();
    return report;
}

} // namespace ombrel
