#pragma once

#include "base/OwnedFd.h"
#include "operations/FilePair.h"
#include "operations/HelpedQueue.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace ombrel {

/// A folder and its copy, held open for as long as pairs of files in them are to be compared.
struct FolderPair {
    OwnedFd source;
    OwnedFd copy;
};

/// Compares files with their copies on a second thread, while the first goes on copying; at the end both
/// compare. Fed and finished on one thread; what is not compared at the end of its life is dropped.
class PairChecker {
public:
    /// `goesOn` is called on both threads: it waits while the job is paused and says whether it goes on.
    PairChecker(FilePairComparison::Settings settings, const MetadataSupport& support,
                std::function<bool()> goesOn);

    /// Bytes of a large file that are compared at a time.
    static constexpr std::int64_t pieceBytes = std::int64_t{32} << 20;

    /// Two regular files, by their names in two folders, which must stay until they are compared.
    struct Names {
        const char* source;
        const char* copy;
    };
    /// One more pair, about `size` bytes each, of which those before `from` are left out.
    void add(const std::shared_ptr<const FolderPair>& folders, Names names, std::int64_t size,
             FilePairComparison::Known known = {}, std::int64_t from = 0);
    /// A part of a pair.
    void addPiece(const std::shared_ptr<const FolderPair>& folders, Names names,
                  FilePairComparison::Range range, FilePairComparison::Known known);
    /// Some other comparison, on whichever thread has the time for it.
    using Work = std::function<Verification(FilePairComparison&)>;
    void add(Work work);
    /// The same, for the other thread to help with while this one is busy with its like.
    void share(Work work);
    /// The outcome of a comparison made elsewhere.
    void note(Verification result);

    /// Does one piece of what waits, on this thread; answers whether there was any.
    bool compareSome();
    /// Waits until the other thread has done what it is at; nothing is left when `compareSome` found nothing.
    void waitUntilIdle();
    /// Compares what is left and answers the worst of all pairs since the last call.
    [[nodiscard]] Verification finish();
    /// Drops what is left; the answers so far are forgotten.
    void abandon();

    /// What was given when it was made.
    [[nodiscard]] const std::function<bool()>& goesOn() const noexcept { return goesOn_; }

private:
    struct Pair {
        Names names;
        FilePairComparison::Range range;
        FilePairComparison::Known known;
    };
    /// Files of one folder, as much as is worth the handing over, or something else.
    struct Batch {
        Work work;
        std::shared_ptr<const FolderPair> folders;
        std::vector<Pair> pairs;
        std::int64_t bytes = 0;
    };

    using Hand = HelpedQueue<Batch>::Hand;
    void handOver();
    void compare(const Batch& batch, Hand hand);
    [[nodiscard]] Verification outcomeOf(const Batch& batch, FilePairComparison& comparison);

    static constexpr std::size_t pairsPerBatch = 64;

    const FilePairComparison::Settings settings_;
    const MetadataSupport& support_;
    const std::function<bool()> goesOn_;
    Batch open_;
    FilePairComparison own_;                   // of the thread that feeds
    std::optional<FilePairComparison> helper_; // made and used by the other

    std::mutex lock_; // guards what follows
    Verification worst_ = Verification::identical;

    HelpedQueue<Batch> queue_; // last, so that it ends before what it uses
};

} // namespace ombrel
