#include "operations/Transfer.h"

#include "listing/POSIX.h"
#include "listing/POSIXFiles.h"
#include "operations/ItemTransfer.h"
#include "operations/StagingSweep.h"
#include "operations/TransferDestination.h"
#include "operations/TransferMeasure.h"
#include "operations/TransferRun.h"
#include "operations/TransferSettlement.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Phase = OperationProgress::Phase;

/// A process that may not write files beyond a size is to be told so by the call, not ended by a signal.
void takeSizeLimitsAsErrors() {
    struct sigaction action = {};
    if (::sigaction(SIGXFSZ, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) return;
    action.sa_handler = SIG_IGN;
    (void)::sigaction(SIGXFSZ, &action, nullptr);
}

class Transfer {
public:
    Transfer(FileOperationKind kind, std::span<const TransferItem> items, const OperationHooks& hooks,
             TrashBackend& trash, const FileOperationFaults& faults, std::stop_token stop)
        : items_(items), trash_(trash), run_(kind, hooks, faults, std::move(stop)), settlement_(run_) {
        run_.beforeQuestion = [this] { settlement_.settle(); };
    }

    OperationReport run(const FileURL& url) {
        takeSizeLimitsAsErrors();
        auto destination = TransferDestination::open(url, nullptr, run_.goesOnAnywhere());
        if (!destination) return refuse(destination.error());
        top_ = std::move(*destination);
        sweep(url);
        measure();
        run_.enter(Phase::copying);
        run_.tell();
        if (hasRoom())
            for (std::size_t i = 0; i < items_.size() && run_.goesOn(); ++i)
                transferItem(i);
        settlement_.settle();
        for (std::size_t i = begun_; i < items_.size(); ++i)
            run_.results.push_back({items_[i].reference.url, ItemOutcome::cancelled()});
        return {run_.kind, std::move(run_.results)};
    }

private:
    /// What is to be brought into which folder. Folders that are merged put their entries here, so that their
    /// depth costs neither stack nor descriptors.
    struct Work {
        TransferItem item;
        std::string folder;    // below the destination; empty for itself
        bool isMerged = false; // its entries are through
    };

    OperationReport refuse(const Error& error) {
        for (const auto& item : items_)
            run_.results.push_back({item.reference.url, ItemOutcome::failed(error)});
        return {run_.kind, std::move(run_.results)};
    }

    /// Clears a folder that gets something of what earlier jobs left there.
    void sweep(const FileURL& folder) {
        constexpr std::chrono::seconds minimumAge(120);
        sweepStaleStaging(folder, minimumAge, std::chrono::system_clock::now(), trash_);
    }

    void measure() {
        run_.progress().totalItems = static_cast<std::int64_t>(items_.size());
        run_.tell();
        measures_.resize(items_.size());
        for (std::size_t i = 0; i < items_.size() && run_.goesOn(); ++i) {
            if (isRenamed(items_[i].reference)) continue;
            measures_[i] =
                TransferMeasure::of(items_[i].reference, top_->volume().traits, run_.goesOnAnywhere());
            run_.progress().totalBytes += measures_[i].bytes;
            run_.tellSometimes();
        }
    }

    /// Whether one rename will do, as far as can be told before it is tried.
    [[nodiscard]] bool isRenamed(const FileReference& item) const {
        if (run_.kind != FileOperationKind::move) return false;
        const auto status = POSIX::lstat(item.url);
        return status && isSameMount(*status, top_->status());
    }

    /// Tells before the first of several items is copied that not all will fit. Each is still tried when the
    /// caller wants to go on.
    bool hasRoom() {
        std::int64_t needed = 0;
        for (const auto& measure : measures_)
            needed += measure.allocated;
        while (items_.size() > 1) {
            const auto space = POSIX::space(top_->fd());
            if (!space || needed <= space->available) break;
            ErrorContext context{run_.kind, std::nullopt, top_->url(), Error::Case::noSpace};
            context.facts.missingBytes = needed - space->available;
            const auto choice = run_.ask(context);
            if (choice == ErrorChoice::cancel) return false;
            if (choice == ErrorChoice::skip) break;
        }
        return true;
    }

    void transferItem(std::size_t index) {
        ++begun_;
        const auto before = run_.progress().completedBytes;
        run_.progress().currentName = items_[index].reference.url.name();
        run_.tell();
        std::vector<Work> work;
        work.push_back({items_[index], {}});
        isTop_ = true;
        while (!work.empty()) {
            Work next = std::move(work.back());
            work.pop_back();
            take(std::move(next), measures_[index], work);
            isTop_ = false;
        }
        // What was not copied is not waited for.
        auto& progress = run_.progress();
        progress.totalBytes -= measures_[index].bytes - (progress.completedBytes - before);
        ++progress.completedItems;
        run_.tell();
    }

    void take(Work next, TransferMeasure& measure, std::vector<Work>& work) {
        const auto& url = next.item.reference.url;
        if (next.isMerged) {
            if (run_.kind == FileOperationKind::move) settlement_.addMerged(url, folderOf(next.folder));
            return;
        }
        if (!run_.goesOn()) {
            run_.results.push_back({url, ItemOutcome::cancelled()});
            return;
        }
        if (!isTop_) run_.progress().currentName = url.name();
        if (!enter(next.folder)) {
            run_.results.push_back({url, ItemOutcome::failed(Error::Case::destinationMissing)});
            return;
        }
        TransferMeasure own;
        own.isKnown = measure.isKnown; // with the item that it is in
        ItemTransfer item(run_, settlement_, current_, next.item, isTop_ ? measure : own);
        if (item.transfer() == ItemTransfer::End::merge) merge(std::move(next), item.mergeName(), work);
    }

    /// Has the entries of a folder brought into the existing one, in the order of their names.
    void merge(Work folder, const std::string& name, std::vector<Work>& work) {
        const auto& url = folder.item.reference.url;
        std::vector<std::string> names;
        for (;;) {
            const auto listed = listNames(url);
            if (listed) {
                names = *listed;
                break;
            }
            const auto error = Error::from(listed.error());
            const auto choice = run_.ask(ErrorContext{run_.kind, url, folderOf(folder.folder), error});
            if (choice == ErrorChoice::retry) continue;
            run_.results.push_back(
                {url, choice == ErrorChoice::skip ? ItemOutcome::failed(error) : ItemOutcome::cancelled()});
            return;
        }
        const std::string below = folder.folder.empty() ? name : folder.folder + "/" + name;
        sweep(folderOf(below));
        // Without entries there would be no result at all. The folder at the destination was there before.
        if (names.empty()) run_.results.push_back({url, ItemOutcome::completed()});
        work.push_back({folder.item, below, true});
        for (std::size_t i = names.size(); i-- > 0;)
            work.push_back({FileReference::sampling(url.appending(names[i])), below});
    }

    static POSIX::Result<std::vector<std::string>> listNames(const FileURL& folder) {
        auto stream = POSIX::openDirectory(folder, POSIX::Links::refuse);
        if (!stream) return std::unexpected(stream.error());
        std::vector<std::string> names;
        for (;;) {
            const auto entry = POSIX::readEntry(*stream);
            if (!entry) return std::unexpected(entry.error());
            if (!*entry) break;
            names.emplace_back((*entry)->name);
        }
        std::ranges::sort(names);
        return names;
    }

    /// Opens the folder below the destination that comes next.
    bool enter(const std::string& folder) {
        if (folder.empty()) {
            current_ = top_;
            current_->begin();
        } else if (folder != currentFolder_ || current_ == top_) {
            auto below = top_->below(folder, run_.goesOnAnywhere());
            if (!below) return false;
            current_ = std::move(*below);
        }
        currentFolder_ = folder;
        return true;
    }

    [[nodiscard]] FileURL folderOf(const std::string& folder) const {
        if (folder.empty()) return top_->url();
        return FileURL::fromPath(top_->url().path() + "/" + folder).value_or(top_->url());
    }

    std::span<const TransferItem> items_;
    TrashBackend& trash_;
    TransferRun run_;
    TransferSettlement settlement_;
    std::shared_ptr<TransferDestination> top_;
    std::shared_ptr<TransferDestination> current_;
    std::string currentFolder_;
    std::vector<TransferMeasure> measures_;
    std::size_t begun_ = 0; // items with results
    bool isTop_ = true;
};

} // namespace

OperationReport transfer(FileOperationKind kind, std::span<const TransferItem> items,
                         const FileURL& destination, const OperationHooks& hooks, TrashBackend& trash,
                         const FileOperationFaults& faults, std::stop_token stop) {
    return Transfer(kind, items, hooks, trash, faults, std::move(stop)).run(destination);
}

std::vector<FileURL> conflicts(std::span<const FileReference> items, const FileURL& destination) {
    std::vector<FileURL> taken;
    for (const auto& item : items) {
        const auto url = destination.appending(item.url.name());
        if (POSIX::lstat(url)) taken.push_back(url);
    }
    return taken;
}

} // namespace ombrel
