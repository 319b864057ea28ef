#include "operations/FolderPlans.h"

#include "listing/POSIX.h"
#include "listing/POSIXEntries.h"
#include "operations/FolderRecord.h"
#include "operations/ItemNames.h"
#include "operations/UndoRecording.h"

#include <algorithm>
#include <cerrno>
#include <expected>
#include <memory>
#include <optional>
#include <utility>

namespace ombrel::FolderPlans {
namespace {

using Error = FileOperationError;
using Step = FileUndoStep;
using Kind = FileOperationKind;

/// What a job's work leaves for its undo.
using Actions = std::shared_ptr<std::vector<Step::Action>>;

FileUndoStep stepOf(const Actions& actions) {
    return {Step::Kind::move, Step::Sequence{std::move(*actions)}};
}

OperationReport transferRecording(const FileOperationService& service, const std::vector<TransferItem>& items,
                                  const FileURL& destination, const OperationHooks& hooks,
                                  std::vector<FolderRecord>& removed, std::stop_token stop) {
    auto recording = hooks;
    recording.removedFolder = [&](const FolderRecord& folder) { removed.push_back(folder); };
    return service.transfer(Kind::move, items, destination, recording, std::move(stop));
}

POSIX::Result<void> removeEmpty(const FileURL& folder) {
    return POSIX::withPath<void>(folder, [](POSIX::Place place) { return POSIX::removeDirectory(place); });
}

std::optional<FolderRecord> recordOf(const FileURL& folder) {
    const auto anchor = POSIX::Anchor::of(folder);
    if (!anchor) return std::nullopt;
    auto record = FolderRecord::of(folder, anchor->place());
    return record ? std::optional(*std::move(record)) : std::nullopt;
}

bool hasBrought(const ItemResult& item) {
    return item.outcome.isSuccess() || item.outcome.which() == ItemOutcome::Case::copiedSourceKept;
}

/// The taking apart of one folder, on its job's thread.
class Dissolution {
public:
    Dissolution(const FileOperationService& service, FileReference folder, Actions actions)
        : service_(service), folder_(std::move(folder)), parent_(folder_.url.parent()),
          actions_(std::move(actions)) {}

    OperationReport run(const OperationHooks& hooks, std::stop_token stop) {
        const auto names = look();
        if (!names) return reportOf(ItemOutcome::failed(names.error()));
        std::vector<TransferItem> items;
        for (const auto& name : *names) {
            const auto entry = FileReference::sampling(folder_.url.appending(name));
            if (name == folder_.url.name())
                items.emplace_back(entry, freeName());
            else
                items.emplace_back(entry);
        }
        std::vector<FolderRecord> removed;
        OperationReport report{Kind::move, {}};
        if (!items.empty())
            report = transferRecording(service_, items, parent_, hooks, removed, std::move(stop));
        const bool isGone = removeFolder(report, removed);
        actions_->push_back(undoStepOf(report, std::move(removed)).action);
        if (isGone) giveOwnName(report);
        return report;
    }

private:
    [[nodiscard]] OperationReport reportOf(ItemOutcome outcome) const {
        return {Kind::move, {{folder_.url, std::move(outcome)}}};
    }

    /// The names of the entries.
    std::expected<std::vector<std::string>, Error> look() {
        if (!folder_.identity) folder_ = FileReference::sampling(folder_.url);
        const auto status = POSIX::lstat(folder_.url);
        if (!status) return std::unexpected(Error::from(status.error()));
        if (!status->isDirectory() || status->identity != folder_.identity)
            return std::unexpected(Error(Error::Case::sourceChanged));
        const auto above = POSIX::lstat(parent_);
        if (!above) return std::unexpected(Error::from(above.error()));
        if (above->mountID != status->mountID) return std::unexpected(Error::posix(EBUSY));
        record_ = recordOf(folder_.url);
        auto stream = POSIX::openDirectory(folder_.url, POSIX::Links::refuse);
        if (!stream) return std::unexpected(Error::from(stream.error()));
        std::vector<std::string> names;
        for (;;) {
            const auto entry = POSIX::readEntry(*stream);
            if (!entry) return std::unexpected(Error::from(entry.error()));
            if (!*entry) return names;
            names.emplace_back((*entry)->name);
        }
    }

    /// Where the folder's namesake waits until the name is free, in nobody's way.
    [[nodiscard]] std::string freeName() const {
        constexpr int lastNumber = 500;
        std::string name;
        for (int number = 2; number <= lastNumber; ++number) {
            name = ItemNames::numbered(folder_.url.name(), number, KeepExtension::no);
            if (!POSIX::lstat(parent_.appending(name)) && !POSIX::lstat(folder_.url.appending(name))) break;
        }
        return name;
    }

    bool removeFolder(OperationReport& report, std::vector<FolderRecord>& removed) const {
        if (!std::ranges::all_of(report.items, [](const auto& item) { return item.outcome.isSuccess(); }))
            return false;
        const auto status = POSIX::lstat(folder_.url);
        if (!status || status->identity != folder_.identity) return false;
        const auto gone = removeEmpty(folder_.url);
        if (!gone) {
            const bool isFilled = gone.error().number == ENOTEMPTY;
            report.items.push_back(
                {folder_.url, ItemOutcome::failed(isFilled ? Error(Error::Case::sourceChanged)
                                                           : Error::from(gone.error()))});
            return false;
        }
        // Made again first of all.
        if (record_) removed.push_back(*record_);
        if (report.items.empty()) report.items.push_back({folder_.url, ItemOutcome::completed()});
        return true;
    }

    void giveOwnName(OperationReport& report) const {
        for (auto& item : report.items) {
            const bool isNamesake = item.source && item.source->name() == folder_.url.name() &&
                                    item.source->parent() == folder_.url;
            if (!isNamesake || !item.outcome.destination()) continue;
            const auto renamed =
                service_.rename(FileReference::sampling(*item.outcome.destination()), folder_.url.name());
            if (!renamed.items.front().outcome.isSuccess()) return; // it keeps the name it waited under
            actions_->push_back(undoStepOf(renamed).action);
            item.outcome = renamed.items.front().outcome;
            return;
        }
    }

    const FileOperationService& service_;
    FileReference folder_;
    const FileURL parent_;
    Actions actions_;
    std::optional<FolderRecord> record_;
};

} // namespace

JobPlan moveIntoNewFolder(const FileOperationService& service, std::vector<FileReference> items,
                          const FileURL& folder, std::string preferredName) {
    const auto actions = std::make_shared<std::vector<Step::Action>>();
    JobPlan plan{.kind = Kind::move, .destination = folder};
    for (const auto& item : items)
        plan.sources.push_back(item.url);
    plan.work = [service, items = std::move(items), folder, name = std::move(preferredName),
                 actions](const OperationHooks& hooks, std::stop_token stop) {
        const auto made = service.createFolder(folder, name).items.front().outcome;
        OperationReport report{Kind::move, {}};
        if (!made.isSuccess()) {
            for (const auto& item : items)
                report.items.push_back({item.url, made});
            return report;
        }
        const FileURL into = *made.destination();
        std::vector<FolderRecord> removed;
        std::vector<TransferItem> transferred;
        for (const auto& item : items)
            transferred.emplace_back(item.identity ? item : FileReference::sampling(item.url));
        report = transferRecording(service, transferred, into, hooks, removed, std::move(stop));
        if (std::ranges::none_of(report.items, hasBrought)) {
            (void)removeEmpty(into);
            return report;
        }
        if (auto record = recordOf(into)) actions->emplace_back(Step::RemoveFolders{{*std::move(record)}});
        actions->push_back(undoStepOf(report, std::move(removed)).action);
        return report;
    };
    plan.undo = [actions](const OperationReport&) { return stepOf(actions); };
    return plan;
}

JobPlan dissolve(const FileOperationService& service, const FileReference& folder) {
    const auto actions = std::make_shared<std::vector<Step::Action>>();
    JobPlan plan{.kind = Kind::move, .sources = {folder.url}, .destination = folder.url.parent()};
    plan.work = [service, folder, actions](const OperationHooks& hooks, std::stop_token stop) {
        return Dissolution(service, folder, actions).run(hooks, std::move(stop));
    };
    plan.undo = [actions](const OperationReport&) { return stepOf(actions); };
    return plan;
}

} // namespace ombrel::FolderPlans
