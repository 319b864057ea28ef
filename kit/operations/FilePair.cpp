#include "operations/FilePair.h"

#include "listing/POSIXFiles.h"
#include "operations/EntryMetadata.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace ombrel {
namespace {

constexpr int fileFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

/// Reads until `size` bytes are there or the file ends. `known` is the size that the file says it has: what
/// ends right there need not be asked once more.
std::optional<std::size_t> fill(int fd, std::byte* buffer, std::size_t size, std::int64_t start,
                                std::int64_t known) {
    std::size_t filled = 0;
    while (filled < size) {
        const auto count = POSIX::read(fd, buffer + filled, size - filled);
        if (!count) return std::nullopt;
        filled += *count;
        if (*count == 0 || start + static_cast<std::int64_t>(filled) == known) break;
    }
    return filled;
}

} // namespace

FilePairComparison::FilePairComparison(Settings settings, std::function<bool()> goesOn)
    : settings_(settings), goesOn_(std::move(goesOn)),
      buffers_(std::make_unique_for_overwrite<std::byte[]>(2 * bufferBytes)) {}

bool FilePairComparison::haveEqualContents(int source, int copy, Range range, std::int64_t size) {
    if (range.start > 0 && (!POSIX::seek(source, range.start) || !POSIX::seek(copy, range.start)))
        return false;
    std::byte* const a = buffers_.get();
    std::byte* const b = a + bufferBytes;
    for (std::int64_t position = range.start; position < range.end;) {
        if (!goesOn_()) return false;
        const auto wanted =
            static_cast<std::size_t>(std::min(range.end - position, static_cast<std::int64_t>(bufferBytes)));
        const auto read = fill(source, a, wanted, position, size);
        const auto copied = fill(copy, b, wanted, position, size);
        if (!read || !copied || *read != *copied || std::memcmp(a, b, *read) != 0) return false;
        position += static_cast<std::int64_t>(*read);
        if (*read < wanted || position == size) return true;
    }
    return true;
}

Verification FilePairComparison::compare(POSIX::Place source, POSIX::Place copy, Range range,
                                         const MetadataSupport& support) {
    const auto a = POSIX::open(source, fileFlags);
    const auto b = POSIX::open(copy, fileFlags);
    if (!a || !b) return Verification::different;
    const auto sourceStatus = POSIX::status(a->get());
    const auto copyStatus = POSIX::status(b->get());
    if (!sourceStatus || !copyStatus || !sourceStatus->isRegular() || !copyStatus->isRegular())
        return Verification::different;
    if (settings_.readsPastCache && range.start == 0) POSIX::dropCache(b->get());
    // Only a size that both agree on can be believed: some files do not know theirs.
    const auto size = sourceStatus->size == copyStatus->size ? sourceStatus->size : -1;
    if (size != 0 && !haveEqualContents(a->get(), b->get(), range, size)) return Verification::different;
    if (!settings_.comparesMetadata || range.start > 0) return Verification::identical;
    const auto same = EntryMetadata::areEqual(a->get(), *sourceStatus, b->get(), *copyStatus, support);
    if (!same) return Verification::different;
    return *same ? Verification::identical : Verification::metadataDiffers;
}

Verification FilePairComparison::compareRest(POSIX::Place source, POSIX::Place copy, Range range, Known known,
                                             const MetadataSupport& support) {
    const auto a = POSIX::open(source, fileFlags);
    const auto b = POSIX::open(copy, fileFlags);
    if (!a || !b) return Verification::different;
    if (known.size > 0 && !haveEqualContents(a->get(), b->get(), range, known.size))
        return Verification::different;
    if (!settings_.comparesMetadata || range.start > 0) return Verification::identical;
    const auto same = known.hasNoAttributes ? EntryMetadata::hasNoAttributes(b->get(), support)
                                            : EntryMetadata::haveEqualAttributes(a->get(), b->get(), support);
    if (!same) return Verification::different;
    return *same ? Verification::identical : Verification::metadataDiffers;
}

} // namespace ombrel
