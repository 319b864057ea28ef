#include "listing/ListingRun.h"

#include "listing/ItemBlockBuilder.h"
#include "listing/LazyItems.h"
#include "listing/POSIX.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

/// Chunks grow with what has been read, so that the first rows come at once and the millionth at little cost.
/// None is so large that one thread waits long for the other at the end.
constexpr std::size_t smallestChunk = 64, largestChunk = 2048;
static_assert(largestChunk <= ItemBlock::capacity);

bool mayBeDirectory(std::uint8_t type) noexcept {
    return type == DT_UNKNOWN || type == DT_DIR || type == DT_LNK;
}

/// Splits a sorted run by slot: what lies below `slot`, and the rest; both stay in order.
std::pair<SortedRun, SortedRun> split(const SortedRun& run, std::int64_t slot) {
    const auto isBelow = [slot](const SortEntry& entry) {
        return static_cast<std::int64_t>(entry.ref & (ItemBlock::capacity - 1)) < slot;
    };
    const auto below = static_cast<std::size_t>(std::count_if(run.begin(), run.end(), isBelow));
    std::pair parts(SortedRun(below), SortedRun(run.size() - below));
    std::partition_copy(run.begin(), run.end(), parts.first.begin(), parts.second.begin(), isBelow);
    return parts;
}

/// How many items of the slots from `begin` to before `end` could not be examined.
std::int64_t unreadable(const ItemBlock& block, std::int64_t begin, std::int64_t end) {
    std::int64_t count = 0;
    for (; begin < end; ++begin)
        if (FileItemView(block, static_cast<std::uint32_t>(begin)).readError()) ++count;
    return count;
}

} // namespace

ListingRun::ListingRun(const DirectoryRequest& request, DirectoryStream stream,
                       const std::function<void(DirectorySnapshot)>& emit, std::stop_token stop)
    : request_(request), emit_(emit), stop_(std::move(stop)), folder_(stream.fd()),
      hidden_(HiddenNames::read(stream.fd())), stream_(std::move(stream)), order_(request.sort, blocks_),
      batchSize_(std::max<std::int64_t>(request.firstBatchSize, 1)), leftInBatch_(batchSize_) {}

void ListingRun::work() {
    // A description of its own for each thread: the kernel counts every use of a shared one, on both cores.
    auto own = POSIX::open({folder_, "."}, O_PATH | O_DIRECTORY);
    const int folder = own ? own->get() : folder_;
    while (const auto names = nextNames()) {
        auto chunk = examined(*names, folder);
        if (!chunk) return;
        handIn(names->number, std::move(*chunk));
    }
}

std::optional<ListingRun::Names> ListingRun::nextNames() {
    const std::scoped_lock lock(reading_);
    if (ending_) return std::nullopt;
    Names names{chunksRead_, {}, {}};
    const auto wanted = std::clamp(namesRead_ / 2, smallestChunk, largestChunk);
    while (names.types.size() < wanted && !stop_.stop_requested()) {
        const auto entry = POSIX::readEntry(stream_);
        if (!entry || !*entry) {
            ending_ = entry ? 0 : entry.error().number;
            break;
        }
        if (request_.directoriesOnly && !mayBeDirectory((*entry)->type)) continue;
        names.bytes.append((*entry)->name).push_back('\0');
        names.types.push_back((*entry)->type);
    }
    if (names.types.empty()) return std::nullopt;
    namesRead_ += names.types.size();
    ++chunksRead_;
    return names;
}

std::optional<ListingRun::Chunk> ListingRun::examined(const Names& names, int folder) const {
    ItemBlockBuilder builder(request_.url, request_.generation, names.types.size());
    const char* next = names.bytes.data();
    for (const std::uint8_t type : names.types) {
        if (stop_.stop_requested()) return std::nullopt;
        const std::string_view name(next);
        next += name.size() + 1;
        builder.examine({folder, name.data()}, name, type == DT_DIR);
        if (request_.directoriesOnly) builder.keepLastIfDirectoryLike();
    }
    Chunk chunk;
    chunk.unreadableCount = builder.unreadableCount();
    const FileItemList::Blocks own = {std::move(builder).finish(hidden_)};
    chunk.block = own.front();
    EntryOrder order(request_.sort, own);
    const auto count = static_cast<ItemRef>(chunk.block->records.size());
    chunk.run = SortedRun(count);
    for (ItemRef slot = 0; slot < count; ++slot)
        chunk.run.begin()[slot] = order.entry(slot);
    order.sort({chunk.run.begin(), chunk.run.end()});
    for (SortEntry& entry : chunk.run)
        entry.ref |= static_cast<ItemRef>(names.number << ItemBlock::slotBits);
    return chunk;
}

void ListingRun::handIn(std::size_t number, Chunk chunk) {
    std::unique_lock lock(handingIn_);
    waiting_.emplace(number, std::move(chunk));
    if (isAssembling_) return;
    isAssembling_ = true;
    for (auto next = waiting_.find(nextChunk_); next != waiting_.end(); next = waiting_.find(nextChunk_)) {
        Chunk taken = std::move(next->second);
        waiting_.erase(next);
        ++nextChunk_;
        lock.unlock();
        const bool goesOn = assemble(std::move(taken));
        lock.lock();
        if (!goesOn) return;
    }
    isAssembling_ = false;
}

bool ListingRun::assemble(Chunk chunk) {
    blocks_.push_back(chunk.block);
    const auto count = static_cast<std::int64_t>(chunk.run.size());
    std::int64_t done = 0;
    while (count - done >= leftInBatch_) {
        if (chunk.unreadableCount > 0)
            unreadableCount_ += unreadable(*chunk.block, done, done + leftInBatch_);
        done += leftInBatch_;
        auto [batch, rest] = split(chunk.run, done);
        if (!addRun(std::move(batch))) return false;
        chunk.run = std::move(rest);
        emit(false);
        batchSize_ = batchSize_ >= DirectoryProvider::largestBatch / 2 ? DirectoryProvider::largestBatch
                                                                       : batchSize_ * 2;
        leftInBatch_ = batchSize_;
    }
    leftInBatch_ -= count - done;
    if (chunk.unreadableCount > 0) unreadableCount_ += unreadable(*chunk.block, done, count);
    return addRun(std::move(chunk.run));
}

bool ListingRun::addRun(SortedRun run) {
    if (run.empty()) return true;
    runs_.add(std::move(run));
    return runs_.compact(order_, stop_);
}

void ListingRun::emit(bool isComplete) {
    emit_({request_, isComplete, unreadableCount_,
           std::make_shared<LazyItems>(request_.sort, std::make_shared<const FileItemList::Blocks>(blocks_),
                                       runs_.runs())});
}

DirectoryProvider::Ending ListingRun::finish() {
    if (stop_.stop_requested()) return std::unexpected(Stopped<DirectoryError>::cancelled());
    if (*ending_ != 0) return std::unexpected(DirectoryError::from(*ending_));
    emit(true);
    return {};
}

} // namespace ombrel
