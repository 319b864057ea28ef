#include "operations/PairChecker.h"

#include <algorithm>
#include <utility>

namespace ombrel {

PairChecker::PairChecker(FilePairComparison::Settings settings, const MetadataSupport& support,
                         std::function<bool()> goesOn)
    : settings_(settings), support_(support), goesOn_(std::move(goesOn)), own_(settings, goesOn_),
      queue_([this](const Batch& batch, Hand hand) { compare(batch, hand); }) {}

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
    queue_.add(std::move(batch));
}

void PairChecker::share(Work work) {
    queue_.callHelper();
    add(std::move(work));
}

void PairChecker::note(Verification result) {
    const std::scoped_lock lock(lock_);
    worst_ = worse(worst_, result);
}

void PairChecker::handOver() {
    if (!open_.pairs.empty()) queue_.add(std::exchange(open_, {}));
}

void PairChecker::compare(const Batch& batch, Hand hand) {
    {
        const std::scoped_lock lock(lock_);
        if (worst_ == Verification::different) return;
    }
    const bool isOwn = hand == Hand::owner;
    if (!isOwn && !helper_) helper_.emplace(settings_, goesOn_);
    note(outcomeOf(batch, isOwn ? own_ : *helper_));
}

Verification PairChecker::outcomeOf(const Batch& batch, FilePairComparison& comparison) {
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
    handOver();
    queue_.finish();
    const std::scoped_lock lock(lock_);
    return std::exchange(worst_, Verification::identical);
}

bool PairChecker::compareSome() {
    return queue_.doOne();
}

void PairChecker::waitUntilIdle() {
    queue_.waitUntilIdle();
}

void PairChecker::abandon() {
    open_ = {};
    queue_.clear();
    const std::scoped_lock lock(lock_);
    worst_ = Verification::identical;
}

} // namespace ombrel
