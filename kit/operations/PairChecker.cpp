#include "operations/PairChecker.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace ombrel {

PairChecker::PairChecker(FilePairComparison::Settings settings, const MetadataSupport& support,
                         std::function<bool()> goesOn)
    : settings_(settings), support_(support), goesOn_(std::move(goesOn)), own_(settings, goesOn_) {}

PairChecker::~PairChecker() {
    abandon();
}

void PairChecker::add(const std::shared_ptr<const FolderPair>& folders, Names names, std::int64_t size,
                      FilePairComparison::Known known, std::int64_t from) {
    if (open_.folders != folders) handOver();
    // A large file goes in pieces, so that both threads have their share.
    for (; size - from > pieceBytes; from += pieceBytes)
        addPiece(folders, names, {from, from + pieceBytes}, known);
    open_.folders = folders;
    open_.pairs.push_back({names, {.start = from}, known});
    open_.bytes += size - from;
    if (open_.pairs.size() >= pairsPerBatch || open_.bytes >= pieceBytes) handOver();
}

void PairChecker::addPiece(const std::shared_ptr<const FolderPair>& folders, Names names,
                           FilePairComparison::Range range, FilePairComparison::Known known) {
    if (open_.folders != folders) handOver();
    open_.folders = folders;
    open_.pairs.push_back({names, range, known});
    handOver();
}

void PairChecker::add(Work work) {
    Batch batch;
    batch.work = std::move(work);
    handOver(std::move(batch));
}

void PairChecker::share(Work work) {
    startHelper();
    add(std::move(work));
}

void PairChecker::note(Verification result) {
    const std::scoped_lock lock(lock_);
    worst_ = worse(worst_, result);
}

void PairChecker::handOver() {
    if (!open_.pairs.empty()) handOver(std::exchange(open_, {}));
}

void PairChecker::handOver(Batch batch) {
    bool isFull = false, isOnly = false;
    {
        const std::scoped_lock lock(lock_);
        isFull = waiting_.size() >= longestQueue;
        isOnly = waiting_.empty();
        waiting_.push_back(std::move(batch));
    }
    // One batch may be all there is, and then the other thread is not worth its start.
    if (!isOnly) startHelper();
    changed_.notify_all();
    // The queue bounds the descriptors that wait in it.
    if (isFull) (void)takeOne(own_);
}

void PairChecker::startHelper() {
    if (worker_.joinable()) return;
    try {
        worker_ = std::jthread([this](const std::stop_token& stop) { work(stop); });
    } catch (const std::system_error&) {
        // A system that has no thread left compares on one.
    }
}

void PairChecker::work(const std::stop_token& stop) {
    FilePairComparison comparison(settings_, goesOn_);
    while (!stop.stop_requested()) {
        {
            std::unique_lock lock(lock_);
            if (!changed_.wait(lock, stop, [&] { return !waiting_.empty(); })) return;
            isBusy_ = true;
        }
        (void)takeOne(comparison);
        {
            const std::scoped_lock lock(lock_);
            isBusy_ = false;
        }
        changed_.notify_all();
    }
}

bool PairChecker::takeOne(FilePairComparison& comparison) {
    Batch batch;
    bool isNeeded = false;
    {
        const std::scoped_lock lock(lock_);
        if (waiting_.empty()) return false;
        batch = std::move(waiting_.front());
        waiting_.pop_front();
        isNeeded = worst_ != Verification::different;
    }
    if (!isNeeded) return true;
    const Verification result = compare(batch, comparison);
    const std::scoped_lock lock(lock_);
    worst_ = worse(worst_, result);
    return true;
}

Verification PairChecker::compare(const Batch& batch, FilePairComparison& comparison) {
    if (batch.work) return batch.work(comparison);
    Verification worst = Verification::identical;
    const int source = batch.folders->source.get(), copy = batch.folders->copy.get();
    for (const auto& pair : batch.pairs) {
        const POSIX::Place from{source, pair.names.source}, to{copy, pair.names.copy};
        worst = worse(worst, pair.known.size < 0
                                 ? comparison.compare(from, to, pair.range, support_)
                                 : comparison.compareRest(from, to, pair.range, pair.known, support_));
        if (worst == Verification::different) break;
    }
    return worst;
}

Verification PairChecker::finish() {
    // What is left may be little: then the other thread need not be woken.
    if (!worker_.joinable() && !open_.pairs.empty()) {
        const std::scoped_lock lock(lock_);
        waiting_.push_back(std::exchange(open_, {}));
    } else {
        handOver();
    }
    while (compareSome()) {
    }
    waitUntilIdle();
    const std::scoped_lock lock(lock_);
    return std::exchange(worst_, Verification::identical);
}

bool PairChecker::compareSome() {
    return takeOne(own_);
}

void PairChecker::waitUntilIdle() {
    std::unique_lock lock(lock_);
    changed_.wait(lock, [&] { return !isBusy_ && waiting_.empty(); });
}

void PairChecker::abandon() {
    open_ = {};
    std::unique_lock lock(lock_);
    waiting_.clear();
    changed_.wait(lock, [&] { return !isBusy_; });
    worst_ = Verification::identical;
}

} // namespace ombrel
