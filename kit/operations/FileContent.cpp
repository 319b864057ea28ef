#include "operations/FileContent.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXFiles.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <utility>

namespace ombrel {
namespace {

constexpr auto toTheEnd = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t blockBytes = 512; // the unit of FileStatus::blocks
/// Below this, file systems keep a file's bytes in places of their own, and a hole is not worth asking for.
constexpr std::int64_t smallestSparse = 8192;
constexpr std::int64_t paceBytes = std::int64_t{16} << 20;

CopyFailure stopped() {
    return {FileOperationError::Case::cancelled, CopyFailure::Reach::item};
}

bool isZero(const std::byte* bytes, std::size_t size) noexcept {
    return size == 0 || (bytes[0] == std::byte{} && std::memcmp(bytes, bytes + 1, size - 1) == 0);
}

} // namespace

FileContent::FileContent(Settings settings, Progress progress)
    : settings_(settings), progress_(std::move(progress)),
      buffer_(std::make_unique_for_overwrite<std::byte[]>(largestChunk)) {}

CopyResult<void> FileContent::copy(int from, const FileStatus& status, int to) {
    // A file of one chunk is read beyond its end at once, which saves a call.
    Files files{from, to, status, status.size > static_cast<std::int64_t>(largestChunk)};
    chunk_ = largestChunk;
    paced_ = 0;
    if (status.size > static_cast<std::int64_t>(largestChunk)) POSIX::adviseSequential(from);
    const bool isSparse = status.size >= smallestSparse && status.blocks * blockBytes < status.size;
    const auto copied = !isSparse                    ? copyRun(files, toTheEnd)
                        : settings_.findsHolesItself ? copyWithoutZeros(files)
                                                     : copySparse(files);
    if (!copied || files.position == status.size) return copied;
    return checkGrowth(files);
}

/// More or less was read than the status said: the file changed, or it is one of those that do not know their
/// size.
CopyResult<void> FileContent::checkGrowth(const Files& files) {
    const auto now = POSIX::status(files.from);
    if (!now) return std::unexpected(CopyFailure::ofSource(now.error()));
    if (now->size != files.status.size || now->modified != files.status.modified)
        return std::unexpected(CopyFailure{FileOperationError::Case::sourceChanged});
    return {};
}

/// From the present position to `end` or to the end of the file.
CopyResult<void> FileContent::copyRun(Files& files, std::int64_t end) {
    using Clock = std::chrono::steady_clock;
    const bool isOneChunk = files.status.size < static_cast<std::int64_t>(chunk_);
    while (files.position < end) {
        const auto start = isOneChunk ? Clock::time_point() : Clock::now();
        const auto count = sendChunk(files, end - files.position);
        if (!count) return std::unexpected(count.error());
        if (*count == 0) break;
        // A read beyond the end that stopped right at it has seen the end.
        if (files.position == files.status.size && end == toTheEnd && *count < chunk_) break;
        if (!isOneChunk) adaptChunk(std::chrono::duration<double>(Clock::now() - start).count());
    }
    return {};
}

CopyResult<void> FileContent::copySparse(Files& files) {
    for (;;) {
        const auto data = POSIX::findData(files.from, files.position);
        if (!data) return std::unexpected(CopyFailure::ofSource(data.error()));
        if (!*data) break;
        const auto hole = POSIX::findHole(files.from, **data);
        if (!hole) return std::unexpected(CopyFailure::ofSource(hole.error()));
        if (auto sought = seek(files, **data); !sought) return sought;
        if (!progress_(**data - files.position)) return std::unexpected(stopped());
        files.position = **data;
        // A hole that was made meanwhile may begin right here.
        const auto end = std::max(*hole, **data + 1);
        if (auto copied = copyRun(files, end); !copied) return copied;
        if (files.position < end) return {}; // cut short meanwhile, which the caller finds out
    }
    if (files.position >= files.status.size) return {};
    if (!progress_(files.status.size - files.position)) return std::unexpected(stopped());
    files.position = files.status.size;
    const auto resized = POSIX::resize(files.to, files.status.size);
    if (!resized) return std::unexpected(CopyFailure::ofCopy(resized.error()));
    return {};
}

CopyResult<void> FileContent::copyWithoutZeros(Files& files) {
    bool endsInHole = false;
    for (;;) {
        const auto count = readChunk(files, toTheEnd);
        if (!count) return std::unexpected(count.error());
        if (*count == 0) break;
        for (std::size_t offset = 0; offset < *count; offset += smallestChunk) {
            const auto size = std::min(smallestChunk, *count - offset);
            endsInHole = isZero(buffer_.get() + offset, size);
            if (!endsInHole) {
                if (auto written = writeChunk(files, offset, size); !written) return written;
                continue;
            }
            files.position += static_cast<std::int64_t>(size);
            if (auto sought = POSIX::seek(files.to, files.position); !sought)
                return std::unexpected(CopyFailure::ofCopy(sought.error()));
            if (!progress_(static_cast<std::int64_t>(size))) return std::unexpected(stopped());
        }
    }
    if (!endsInHole) return {};
    const auto resized = POSIX::resize(files.to, files.position);
    if (!resized) return std::unexpected(CopyFailure::ofCopy(resized.error()));
    return {};
}

/// One chunk, of which nothing is left at the end of the file: within the kernel for as long as it agrees to
/// that. Which side it was that failed only reading and writing tells.
CopyResult<std::size_t> FileContent::sendChunk(Files& files, std::int64_t wanted) {
    const auto passesTheSize = [&files](std::size_t count) {
        return files.position + static_cast<std::int64_t>(count) > files.status.size;
    };
    if (files.isSent) {
        const auto size = std::min(wanted, static_cast<std::int64_t>(chunk_));
        const auto sent = POSIX::send(files.from, files.to, static_cast<std::size_t>(size));
        if (sent) {
            if (passesTheSize(*sent))
                if (auto same = checkGrowth(files); !same) return std::unexpected(same.error());
            if (*sent == 0) return 0;
            if (auto counted = countChunk(files, *sent); !counted) return std::unexpected(counted.error());
            return *sent;
        }
        files.isSent = false;
        if (auto sought = seek(files, files.position); !sought) return std::unexpected(sought.error());
    }
    const auto count = readChunk(files, wanted);
    if (!count || *count == 0) return count;
    if (passesTheSize(*count))
        if (auto same = checkGrowth(files); !same) return std::unexpected(same.error());
    if (auto written = writeChunk(files, 0, *count); !written) return std::unexpected(written.error());
    return *count;
}

CopyResult<void> FileContent::seek(const Files& files, std::int64_t position) {
    if (auto sought = POSIX::seek(files.from, position); !sought)
        return std::unexpected(CopyFailure::ofSource(sought.error()));
    if (auto sought = POSIX::seek(files.to, position); !sought)
        return std::unexpected(CopyFailure::ofCopy(sought.error()));
    return {};
}

CopyResult<std::size_t> FileContent::readChunk(Files& files, std::int64_t wanted) {
    const auto size =
        static_cast<std::size_t>(std::min<std::int64_t>(wanted, static_cast<std::int64_t>(chunk_)));
    const auto count = POSIX::read(files.from, buffer_.get(), size);
    if (!count) return std::unexpected(CopyFailure::ofSource(count.error()));
    return *count;
}

CopyResult<void> FileContent::writeChunk(Files& files, std::size_t offset, std::size_t size) {
    const char* const bytes = reinterpret_cast<const char*>(buffer_.get() + offset);
    const auto written = POSIX::writeAll(files.to, {bytes, size});
    if (!written) return std::unexpected(CopyFailure::ofCopy(written.error()));
    return countChunk(files, size);
}

CopyResult<void> FileContent::countChunk(Files& files, std::size_t size) {
    files.position += static_cast<std::int64_t>(size);
    if (!progress_(static_cast<std::int64_t>(size))) return std::unexpected(stopped());
    return settings_.keepsPace ? keepPace(files) : CopyResult<void>();
}

/// Two windows: one is being written while the next is filled.
CopyResult<void> FileContent::keepPace(const Files& files) {
    if (files.position - paced_ < paceBytes) return {};
    const auto started = POSIX::startWriting(files.to, paced_, files.position - paced_);
    if (!started) return std::unexpected(CopyFailure::ofCopy(started.error()));
    if (paced_ > 0) {
        const auto finished = POSIX::finishWriting(files.to, 0, paced_);
        if (!finished) return std::unexpected(CopyFailure::ofCopy(finished.error()));
    }
    paced_ = files.position;
    return {};
}

/// A slow medium gets small chunks, so that a pause or an end takes effect soon.
void FileContent::adaptChunk(double seconds) noexcept {
    constexpr double slow = 0.02, fast = 0.002;
    if (seconds > slow) chunk_ = std::max(chunk_ / 2, smallestChunk);
    if (seconds < fast) chunk_ = std::min(chunk_ * 2, largestChunk);
}

} // namespace ombrel
