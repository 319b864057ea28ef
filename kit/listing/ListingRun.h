#pragma once

#include "base/DirectoryStream.h"
#include "listing/DirectoryProvider.h"
#include "listing/EntryOrder.h"
#include "listing/HiddenNames.h"
#include "listing/ItemBlock.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace ombrel {

/// One listing under way, from the open folder to the complete snapshot, worked on by two threads alike.
///
/// Each thread takes the next few names from the folder, looks at the entries, completes them (types, sort
/// keys) and sorts them, then hands the sorted chunk in. Chunks are put together in the order of reading by
/// whichever thread handed in the one that was missing; that thread also emits the snapshots, while the other
/// goes on reading. So the kernel's work, which is most of it, is shared as well.
class ListingRun {
public:
    ListingRun(const DirectoryRequest& request, DirectoryStream stream,
               const std::function<void(DirectorySnapshot)>& emit, std::stop_token stop);

    /// Works until the folder is exhausted, fails, or `stop` comes. To be called once on each thread.
    void work();
    /// After every `work` has returned: emits the complete snapshot, or tells why there is none.
    DirectoryProvider::Ending finish();

private:
    struct Names {
        std::size_t number; ///< of the chunk, in the order of reading
        std::string bytes;  ///< each name ends in NUL
        std::vector<std::uint8_t> types;
    };
    struct Chunk {
        std::shared_ptr<const ItemBlock> block;
        SortedRun run; ///< its references already carry the chunk's number
        std::int64_t unreadableCount = 0;
    };

    std::optional<Names> nextNames();
    std::optional<Chunk> examined(const Names& names, int folder) const;
    void handIn(std::size_t number, Chunk chunk);
    bool assemble(Chunk chunk);
    bool addRun(SortedRun run);
    void emit(bool isComplete);

    const DirectoryRequest& request_;
    const std::function<void(DirectorySnapshot)>& emit_;
    const std::stop_token stop_;
    const int folder_;
    const HiddenNames hidden_;

    std::mutex reading_; // guards the four below
    DirectoryStream stream_;
    std::size_t namesRead_ = 0;
    std::size_t chunksRead_ = 0;
    std::optional<int> ending_; ///< errno of the reading, 0 at the folder's end

    std::mutex handingIn_; // guards the three below
    std::map<std::size_t, Chunk> waiting_;
    std::size_t nextChunk_ = 0;
    bool isAssembling_ = false;

    // Touched only by the thread that assembles.
    FileItemList::Blocks blocks_;
    EntryOrder order_;
    SortedRuns runs_;
    std::int64_t batchSize_;
    std::int64_t leftInBatch_;
    std::int64_t unreadableCount_ = 0;
};

} // namespace ombrel
