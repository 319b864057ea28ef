#include "operations/UndoPlans.h"

#include "listing/MountTable.h"
#include "listing/POSIXEntries.h"
#include "operations/ConfirmedSource.h"
#include "operations/UndoRecording.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Step = FileUndoStep;
using Stamp = std::optional<ItemStamp>;

enum class Change : std::uint8_t { mayBe, mustNotBe };

/// Why an item cannot be handled; nothing when it can.
std::optional<Error> problemOf(const FileReference& item, const Stamp& stamp, Change change) {
    const auto source = ConfirmedSource::of(item);
    if (!source)
        return source.error() == Error::posix(ENOTDIR) ? Error(Error::Case::sourceMissing) : source.error();
    const auto& status = source->status();
    if (change == Change::mustNotBe) {
        const auto now = ItemStamp::reading(source->place(), status);
        if (!now) return Error::from(now.error());
        if (!stamp || !now->agreesWith(*stamp)) return Error(Error::Case::sourceChanged);
    } else if (stamp && MountTable::current().traits(status).renumbersInodes &&
               !ItemStamp::of(status).agreesWith(*stamp)) {
        return Error(Error::Case::sourceChanged);
    }
    return std::nullopt;
}

/// Sorts out what cannot be handled, as results of the job.
template <typename Item>
std::vector<ItemResult> takeProblems(std::vector<Item>& items, Change change) {
    std::vector<ItemResult> problems;
    std::erase_if(items, [&](const Item& item) {
        const auto problem = problemOf(item.item, item.stamp, change);
        if (problem) problems.push_back({item.item.url, ItemOutcome::failed(*problem)});
        return problem.has_value();
    });
    return problems;
}

OperationReport joined(OperationReport report, std::vector<ItemResult> problems) {
    for (auto& problem : problems)
        report.items.push_back(std::move(problem));
    return report;
}

template <typename Item>
std::vector<FileURL> locationsOf(const std::vector<Item>& items) {
    std::vector<FileURL> urls;
    for (const auto& item : items)
        urls.push_back(item.item.url);
    return urls;
}

/// Where items are now that were moved. Tells those that became other objects by that.
std::set<FileURL> landingsOf(const OperationReport& report, const std::map<FileURL, FileIdentity>& before,
                             Landings which, std::vector<Renumbered>& renumbered) {
    std::set<FileURL> landed;
    for (const auto& item : report.items) {
        const auto& now = item.outcome.destination();
        if (!item.outcome.isSuccess() || !now || !item.source) continue;
        const auto old = before.find(*item.source);
        const auto identity = currentIdentity(*now);
        const bool isOther = old != before.end() && identity && old->second != *identity;
        if (isOther) renumbered.push_back({*now, old->second, *identity});
        if (which == Landings::all || isOther) landed.insert(*now);
    }
    return landed;
}

bool isWithinAny(FileURL url, const std::set<FileURL>& tops) {
    while (!tops.contains(url)) {
        if (url.isRoot()) return false;
        url = url.parent();
    }
    return true;
}

void tellRenumbered(const std::set<FileURL>& landed, const std::vector<Step::Made>& known,
                    std::vector<Renumbered>& renumbered) {
    if (landed.empty()) return;
    for (const auto& [item, stamp] : known) {
        if (!item.identity || !stamp || !isWithinAny(item.url, landed)) continue;
        const auto status = POSIX::lstat(item.url);
        if (status && status->identity != *item.identity && ItemStamp::of(*status).agreesWith(*stamp))
            renumbered.push_back({item.url, *item.identity, status->identity});
    }
}

JobPlan planOfMovingBack(const FileOperationService& service, Step::MoveBack back) {
    const auto folder = back.items.front().original.parent();
    std::vector<TransferItem> all;
    for (const auto& moved : back.items)
        all.emplace_back(moved.item, std::string(moved.original.name()));
    auto plan = JobPlan::transfer(service, FileOperationKind::move, std::move(all), folder);
    const auto removed = std::make_shared<std::vector<FolderRecord>>();
    plan.work = [service, items = std::move(back.items), folder, removed](const OperationHooks& hooks,
                                                                          std::stop_token stop) mutable {
        auto problems = takeProblems(items, Change::mayBe);
        std::vector<TransferItem> good;
        for (const auto& moved : items)
            good.emplace_back(moved.item, std::string(moved.original.name()));
        OperationReport report{FileOperationKind::move, {}};
        if (!good.empty()) {
            auto recording = hooks;
            recording.removedFolder = [&](const FolderRecord& gone) { removed->push_back(gone); };
            report = service.transfer(FileOperationKind::move, good, folder, recording, std::move(stop));
        }
        return joined(std::move(report), std::move(problems));
    };
    plan.undo = [removed](const OperationReport& report) { return undoStepOf(report, *removed); };
    return plan;
}

JobPlan planOfTrashing(const FileOperationService& service, Step::Trash trash) {
    JobPlan plan{.kind = FileOperationKind::trash, .sources = locationsOf(trash.items), .undo = undoByKind};
    plan.work = [service, items = std::move(trash.items)](const OperationHooks& hooks,
                                                          std::stop_token stop) mutable {
        auto problems = takeProblems(items, Change::mustNotBe);
        std::vector<FileReference> good;
        for (const auto& made : items)
            good.push_back(made.item);
        return joined(service.moveToTrash(good, hooks, std::move(stop)), std::move(problems));
    };
    return plan;
}

JobPlan planOfPuttingBack(const FileOperationService& service, Step::PutBack back) {
    JobPlan plan{.kind = FileOperationKind::move,
                 .sources = locationsOf(back.items),
                 .destination = back.items.front().original.parent(),
                 .undo = undoStepOfPuttingBack};
    plan.work = [service, items = std::move(back.items)](const OperationHooks& hooks,
                                                         std::stop_token stop) mutable {
        auto problems = takeProblems(items, Change::mayBe);
        std::vector<PutBackItem> good;
        for (const auto& moved : items)
            good.push_back({moved.item, moved.original});
        return joined(service.putBack(good, MissingFolders::refuse, hooks, std::move(stop)),
                      std::move(problems));
    };
    return plan;
}

JobPlan planOfRenamingBack(const FileOperationService& service, Step::RenameBack back) {
    JobPlan plan{.kind = FileOperationKind::rename, .sources = {back.item.url}, .undo = undoByKind};
    plan.work = [service, back = std::move(back)](const OperationHooks&, const std::stop_token&) {
        if (const auto problem = problemOf(back.item, back.stamp, Change::mayBe))
            return OperationReport{FileOperationKind::rename,
                                   {{back.item.url, ItemOutcome::failed(*problem)}}};
        return service.rename(back.item, back.name);
    };
    return plan;
}

ItemOutcome outcomeOf(const POSIX::Result<void>& done, const FileURL& url) {
    return done ? ItemOutcome::completed(url) : ItemOutcome::failed(Error::from(done.error()));
}

/// The records of what was completed, in an order of their own.
std::vector<FolderRecord> completedOf(const std::vector<FolderRecord>& folders,
                                      const OperationReport& report) {
    std::vector<FolderRecord> done;
    for (const auto& folder : folders)
        for (const auto& item : report.items)
            if (item.outcome.isSuccess() && item.outcome.destination() == folder.url) done.push_back(folder);
    return done;
}

/// A folder that is made again is another object than the one that other steps know.
JobPlan planOfMakingFolders(Step::MakeFolders make, std::shared_ptr<std::vector<Renumbered>> renumbered) {
    JobPlan plan{.kind = FileOperationKind::newFolder, .destination = make.folders.back().url.parent()};
    plan.work = [folders = make.folders, renumbered](const OperationHooks&, const std::stop_token&) {
        OperationReport report{FileOperationKind::newFolder, {}};
        for (std::size_t i = folders.size(); i-- > 0;) {
            const auto& folder = folders[i];
            report.items.push_back({std::nullopt, outcomeOf(folder.make(), folder.url)});
            const auto now = currentIdentity(folder.url);
            if (report.items.back().outcome.isSuccess() && now)
                renumbered->push_back({folder.url, folder.status.identity, *now});
        }
        return report;
    };
    plan.undo = [folders = std::move(make.folders)](const OperationReport& report) {
        return FileUndoStep{Step::Kind::move, Step::RemoveFolders{completedOf(folders, report)}};
    };
    return plan;
}

JobPlan planOfRemovingFolders(Step::RemoveFolders remove) {
    JobPlan plan{.kind = FileOperationKind::delete_};
    for (const auto& folder : remove.folders)
        plan.sources.push_back(folder.url);
    const auto removed = std::make_shared<std::vector<FolderRecord>>();
    plan.work = [folders = std::move(remove.folders), removed](const OperationHooks&,
                                                               const std::stop_token&) {
        OperationReport report{FileOperationKind::delete_, {}};
        for (const auto& folder : folders) {
            // As it is now, so that what was done to it since comes back too.
            const auto done =
                POSIX::withPath<void>(folder.url, [&](POSIX::Place place) -> POSIX::Result<void> {
                    auto record = FolderRecord::of(folder.url, place);
                    if (!record) return std::unexpected(record.error());
                    auto gone = POSIX::removeDirectory(place);
                    if (gone) removed->push_back(std::move(*record));
                    return gone;
                });
            report.items.push_back({folder.url, outcomeOf(done, folder.url)});
        }
        return report;
    };
    plan.undo = [removed](const OperationReport&) {
        return FileUndoStep{Step::Kind::move, Step::MakeFolders{*removed}};
    };
    return plan;
}

template <typename Moved>
bool holdsNested(const std::vector<Moved>& items) {
    std::set<FileURL> places;
    for (const auto& moved : items)
        places.insert(moved.item.url);
    return std::ranges::any_of(places, [&](FileURL above) {
        while (!above.isRoot())
            if (above = above.parent(); places.contains(above)) return true;
        return false;
    });
}

/// Groups items by the folder they go to, the last item first. Of items that lie in one another the order is
/// kept, so that one folder may come several times.
template <typename Back>
void addGroups(Back back, std::deque<Step::Action>& pieces) {
    const bool keepsOrder = holdsNested(back.items);
    std::vector<std::pair<FileURL, Back>> groups;
    std::map<FileURL, std::size_t> known;
    for (std::size_t i = back.items.size(); i-- > 0;) {
        const auto folder = back.items[i].original.parent();
        const bool isNew =
            keepsOrder ? groups.empty() || groups.back().first != folder : !known.contains(folder);
        if (isNew) {
            known[folder] = groups.size();
            groups.emplace_back(folder, Back{});
        }
        groups[known[folder]].second.items.push_back(std::move(back.items[i]));
    }
    for (auto& [folder, group] : groups)
        pieces.emplace_back(std::move(group));
}

} // namespace

std::deque<FileUndoStep::Action> piecesOf(FileUndoStep::Action action) {
    std::deque<Step::Action> pieces;
    if (action.isEmpty()) return pieces;
    if (auto* const sequence = std::get_if<Step::Sequence>(&action.what)) {
        for (std::size_t i = sequence->actions.size(); i-- > 0;)
            for (auto& piece : piecesOf(std::move(sequence->actions[i])))
                pieces.push_back(std::move(piece));
    } else if (auto* const moveBack = std::get_if<Step::MoveBack>(&action.what)) {
        addGroups(std::move(*moveBack), pieces);
    } else if (auto* const putBack = std::get_if<Step::PutBack>(&action.what)) {
        addGroups(std::move(*putBack), pieces);
    } else {
        pieces.push_back(std::move(action));
    }
    return pieces;
}

JobPlan planOf(const FileOperationService& service, Step::Action piece, std::vector<Step::Made> known,
               Landings landings, std::shared_ptr<std::vector<Renumbered>> renumbered) {
    std::map<FileURL, FileIdentity> before;
    Step::eachItem(piece, [&](const FileReference& item, const Stamp&) {
        if (item.identity) before.emplace(item.url, *item.identity);
    });
    auto plan = std::visit(
        [&]<typename One>(One& one) -> JobPlan {
            if constexpr (std::is_same_v<One, Step::MoveBack>)
                return planOfMovingBack(service, std::move(one));
            else if constexpr (std::is_same_v<One, Step::Trash>)
                return planOfTrashing(service, std::move(one));
            else if constexpr (std::is_same_v<One, Step::PutBack>)
                return planOfPuttingBack(service, std::move(one));
            else if constexpr (std::is_same_v<One, Step::RenameBack>)
                return planOfRenamingBack(service, std::move(one));
            else if constexpr (std::is_same_v<One, Step::MakeFolders>)
                return planOfMakingFolders(std::move(one), renumbered);
            else if constexpr (std::is_same_v<One, Step::RemoveFolders>)
                return planOfRemovingFolders(std::move(one));
            else
                std::unreachable(); // sequences are taken to pieces
        },
        piece.what);
    plan.work = [work = std::move(plan.work), before = std::move(before), known = std::move(known), landings,
                 renumbered](const OperationHooks& hooks, std::stop_token stop) mutable {
        auto report = work(hooks, std::move(stop));
        tellRenumbered(landingsOf(report, before, landings, *renumbered), known, *renumbered);
        return report;
    };
    return plan;
}

FileUndoStep::Action cancelledPart(const FileUndoStep::Action& piece, const OperationReport& report) {
    std::set<FileURL> cancelled;
    for (const auto& item : report.items)
        if (item.source && item.outcome.which() == ItemOutcome::Case::cancelled)
            cancelled.insert(*item.source);
    return std::visit(
        [&]<typename One>(One one) -> Step::Action {
            if constexpr (requires { one.items; })
                std::erase_if(one.items,
                              [&](const auto& item) { return !cancelled.contains(item.item.url); });
            else if constexpr (std::is_same_v<One, Step::RenameBack>) {
                if (!cancelled.contains(one.item.url)) return {};
            } else if constexpr (std::is_same_v<One, Step::MakeFolders>) {
                if (report.overall() != OperationReport::Overall::cancelled) return {};
            } else if constexpr (std::is_same_v<One, Step::RemoveFolders>) {
                std::erase_if(one.folders,
                              [&](const auto& folder) { return !cancelled.contains(folder.url); });
            }
            return one;
        },
        piece.what);
}

} // namespace ombrel
