#include "operations/TransferSettlement.h"

#include "listing/POSIXEntries.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Phase = OperationProgress::Phase;

constexpr std::size_t manyItems = 32;
constexpr std::size_t manyEntries = 100'000;
constexpr std::size_t fewFiles = 4; // that are flushed one by one rather than with the whole file system

/// Of the copy itself, whatever has its name by now; nothing where that cannot be told.
std::optional<FileIdentity> identityOf(const TransferSettlement::Placed& placed) {
    if (!placed.top || placed.destination->volume().traits.renumbersInodes) return std::nullopt;
    const auto status = POSIX::status(placed.top.get());
    return status ? std::optional(status->identity) : std::nullopt;
}

} // namespace

void TransferSettlement::add(Placed placed) {
    const auto now = std::chrono::steady_clock::now();
    if (placed_.empty()) since_ = now;
    if (placed.moved) entries_ += placed.moved->manifest.size();
    placed_.push_back(std::move(placed));
    const bool isDue = now - since_ > std::chrono::seconds(1);
    if (isDue || placed_.size() >= manyItems || entries_ >= manyEntries) settle();
}

void TransferSettlement::addMerged(FileURL source, FileURL destination) {
    merged_.emplace_back(std::move(source), std::move(destination));
}

void TransferSettlement::settle() {
    if (!placed_.empty()) {
        const auto flushed = flush();
        const auto before = run_.progress().phase;
        for (auto& placed : placed_)
            flushed ? complete(placed) : takeBack(placed, flushed.error());
        run_.progress().phase = before;
        placed_.clear();
        entries_ = 0;
    }
    removeMerged();
}

POSIX::Result<void> TransferSettlement::flush() {
    // All lie in one volume, so one of the folders stands for it; the others' names go with it.
    const bool areFewFiles =
        placed_.size() <= fewFiles &&
        std::ranges::all_of(placed_, [](const Placed& one) { return !one.isFolder && one.top; });
    std::vector<int> files;
    const TransferDestination* last = nullptr;
    for (const auto& placed : placed_) {
        const TransferDestination& destination = *placed.destination;
        if (last && last != &destination) {
            if (auto flushed = last->flush(files); !flushed) return flushed;
            files.clear();
        }
        last = &destination;
        if (areFewFiles || destination.volume().flushesFiles)
            if (placed.top) files.push_back(placed.top.get());
    }
    return last ? last->flush(files) : POSIX::Result<void>();
}

/// It is safe now: what it replaced may go, and the source it came from.
void TransferSettlement::complete(Placed& placed) {
    const auto url = placed.destination->url().appending(
        placed.name, placed.isFolder ? FileURL::Mark::directory : FileURL::Mark::none);
    auto outcome = ItemOutcome::completed(url);
    if (placed.moved) {
        auto& moved = *placed.moved;
        run_.enter(Phase::removingSource);
        moved.settings.copy = identityOf(placed);
        SourceRemoval removal(moved.manifest, moved.settings, [this] { return run_.goesOn(); });
        const POSIX::Place copy{placed.destination->fd(), placed.name.c_str()};
        auto failure = removal.remove(moved.source.place(), copy);
        if (!failure) failure = moved.keptFor;
        const bool isGone = failure && (*failure == Error::Case::destinationExists ||
                                        *failure == Error::Case::destinationMissing);
        if (isGone) // somebody has taken the copy away
            outcome = ItemOutcome::failed(*failure);
        else if (failure)
            outcome = ItemOutcome::copiedSourceKept(url, *failure);
    }
    run_.results[placed.result].outcome = outcome;
    if (!placed.replaced) return;
    // Nothing has come of the item where nothing has its name any more.
    if (outcome == ItemOutcome::failed(Error::Case::destinationMissing))
        (void)placed.replaced->putBack();
    else
        placed.replaced->remove();
    tellLeftBehind(placed, placed.replaced->leftBehind());
}

/// One result for each name of ours that is still there.
void TransferSettlement::tellLeftBehind(const Placed& placed, const std::vector<std::string>& names) {
    for (const auto& name : names)
        run_.results.push_back({placed.destination->url().appending(placed.name),
                                ItemOutcome::failed(Error::partialCopyLeftBehind(name))});
}

/// Takes a copy from its place again.
POSIX::Result<StagedItem> TransferSettlement::withdraw(Placed& placed) {
    const auto identity = identityOf(placed);
    if (placed.replaced) return placed.replaced->putBackFor(identity);
    return StagedItem::takenFrom({placed.destination->fd(), placed.name.c_str()}, identity);
}

/// It could not be made safe: the name goes back to what had it, and the source stays.
void TransferSettlement::takeBack(Placed& placed, POSIXFailure failure) {
    const auto url = placed.destination->url().appending(
        placed.name, placed.isFolder ? FileURL::Mark::directory : FileURL::Mark::none);
    auto outcome = ItemOutcome::failed(Error::from(failure));
    std::vector<std::string> left;
    if (auto withdrawn = withdraw(placed); !withdrawn) {
        // It is whole, but who knows for how long.
        outcome = placed.moved ? ItemOutcome::copiedSourceKept(url, Error::from(failure))
                               : ItemOutcome::failed(Error::partialCopyLeftBehind(placed.name));
    } else if (withdrawn->remove()) {
        left.push_back(withdrawn->name());
    }
    run_.results[placed.result].outcome = outcome;
    if (placed.replaced) std::ranges::copy(placed.replaced->leftBehind(), std::back_inserter(left));
    tellLeftBehind(placed, left);
}

void TransferSettlement::removeMerged() {
    for (const auto& [source, destination] : std::exchange(merged_, {})) {
        const auto item = ConfirmedSource::of({source, std::nullopt});
        if (!item || !item->status().isDirectory()) continue;
        const auto record = FolderRecord::of(source, item->place());
        const auto removed = POSIX::removeDirectory(item->place());
        const int number = removed ? 0 : removed.error().number;
        if (removed && record) run_.tellRemoved(*record);
        if (number == 0 || number == ENOTEMPTY || number == EEXIST || number == ENOENT) continue;
        run_.results.push_back(
            {source, ItemOutcome::copiedSourceKept(destination, Error::sourceRemovalFailed(number))});
    }
}

} // namespace ombrel
