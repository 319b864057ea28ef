#include "operations/SmallFiles.h"

#include "listing/POSIXEntries.h"
#include "operations/EntryMetadata.h"
#include "operations/TargetNames.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace ombrel {
namespace {

/// One more than the largest file, so that a read that stops right at its end has seen the end.
constexpr auto bufferBytes = static_cast<std::size_t>(SmallFiles::largest) + 1;

std::byte* buffersOfThisThread() {
    thread_local const auto buffers = std::make_unique_for_overwrite<std::byte[]>(2 * bufferBytes);
    return buffers.get();
}

} // namespace

SmallFiles::SmallFiles(const Settings& settings, std::vector<File> files, std::function<bool()> goesOn)
    : settings_(settings), files_(std::move(files)), goesOn_(std::move(goesOn)) {}

CopyResult<void> SmallFiles::run(PairChecker& checker,
                                 const std::function<bool(std::int64_t bytes)>& copied) {
    checker.share([this](FilePairComparison&) { return copySome(files_.size()); });
    Verification worst = Verification::identical;
    while (!isStopped_ && stuck_ == 0 && next_ < files_.size()) {
        worst = worse(worst, copySome(filesPerReport));
        if (!copied(bytes_.exchange(0))) isStopped_ = true;
    }
    checker.note(worst);
    // What the other thread has not even begun is not worth waiting for.
    while (checker.compareSome()) {
    }
    checker.waitUntilIdle();
    const bool goesOn = copied(bytes_.exchange(0)) && !isStopped_;
    if (const int number = stuck_)
        return std::unexpected(CopyFailure{CopyFailure::ofCopy({number}).error, CopyFailure::Reach::item});
    if (!goesOn)
        return std::unexpected(CopyFailure{FileOperationError::Case::cancelled, CopyFailure::Reach::item});
    return {};
}

/// On any thread: files that nobody has taken yet, `most` of them.
Verification SmallFiles::copySome(std::size_t most) {
    std::byte* const buffers = buffersOfThisThread();
    Verification worst = Verification::identical;
    for (std::size_t done = 0; done < most && !isStopped_ && stuck_ == 0; ++done) {
        if (!goesOn_()) {
            isStopped_ = true;
            break;
        }
        const std::size_t taken = next_++;
        if (taken >= files_.size()) break;
        if (const auto compared = copyOne(files_[taken], buffers)) worst = worse(worst, *compared);
    }
    return worst;
}

bool SmallFiles::isForHere(const FileStatus& status) const noexcept {
    constexpr std::int64_t blockBytes = 512; // the unit of FileStatus::blocks
    constexpr std::int64_t smallestSparse = 8192;
    const bool isSparse = status.size >= smallestSparse && status.blocks * blockBytes < status.size;
    return status.isRegular() && !isSparse && status.size <= std::min(largest, settings_.target->largestFile);
}

/// Nothing when the file was not copied.
std::optional<Verification> SmallFiles::copyOne(File& file, std::byte* buffers) {
    if (TargetNames::faultOf(file.name, *settings_.target)) return std::nullopt;
    const auto from =
        POSIX::open(POSIX::Place{settings_.source, file.name}, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!from) return std::nullopt;
    const auto status = POSIX::status(from->get());
    if (!status || !isForHere(*status)) return std::nullopt;
    const POSIX::Place place{settings_.copy, file.name};
    auto to = POSIX::open(place, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (!to) return std::nullopt;
    auto compared = fill(from->get(), *status, to->get(), buffers);
    if (compared && !POSIX::close(std::move(*to))) compared.reset();
    if (!compared) {
        if (const auto removed = POSIX::unlink(place); !removed) stuck_ = removed.error().number;
        return std::nullopt;
    }
    file.copied = *status;
    bytes_ += status->size;
    return compared;
}

/// Nothing when the copy is not whole. The comparison reads both files anew.
std::optional<Verification> SmallFiles::fill(int from, const FileStatus& status, int to, std::byte* buffers) {
    const auto size = static_cast<std::size_t>(status.size);
    const auto count = POSIX::read(from, buffers, bufferBytes);
    if (!count || *count != size) return std::nullopt;
    if (size > 0 && !POSIX::writeAll(to, {reinterpret_cast<const char*>(buffers), size})) return std::nullopt;
    const auto hasAttributes = EntryMetadata::carry(from, status, to, *settings_.support);
    if (!hasAttributes) return std::nullopt;
    std::byte* const second = buffers + bufferBytes;
    const auto again = POSIX::readAt(from, buffers, bufferBytes, 0);
    const auto copied = POSIX::readAt(to, second, bufferBytes, 0);
    if (!again || !copied || *again != size) return std::nullopt;
    if (*copied != size || std::memcmp(buffers, second, size) != 0) return Verification::different;
    const auto same = *hasAttributes ? EntryMetadata::haveEqualAttributes(from, to, *settings_.support)
                                     : EntryMetadata::hasNoAttributes(to, *settings_.support);
    if (!same) return Verification::different;
    return *same ? Verification::identical : Verification::metadataDiffers;
}

} // namespace ombrel
