#pragma once

#include "listing/FileStatus.h"
#include "operations/CopyFailure.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace ombrel {

/// Copies what is in files, one after another, through one buffer.
class FileContent {
public:
    struct Settings {
        /// Has the medium keep up with the copy, so that little is left to be flushed at its end.
        bool keepsPace = false;
        /// Does not ask the source where its holes are, and makes holes of blocks of zeros instead.
        bool findsHolesItself = false;
    };
    /// Is told how many bytes more were copied; answers whether to go on.
    using Progress = std::function<bool(std::int64_t bytes)>;

    FileContent(Settings settings, Progress progress);

    /// Copies from the start of `from`, an open file with the given status, to the empty file `to`. Reads to
    /// the end, whatever the status says of the size: `sourceChanged` when that is because the file changed,
    /// `cancelled` when told to stop. Holes stay holes. Never shares extents with the source.
    [[nodiscard]] CopyResult<void> copy(int from, const FileStatus& status, int to);

private:
    struct Files {
        int from, to;
        const FileStatus& status;
        bool isSent;               // from file to file within the kernel
        std::int64_t position = 0; // of both
    };

    [[nodiscard]] CopyResult<void> copyRun(Files& files, std::int64_t end);
    [[nodiscard]] CopyResult<void> copySparse(Files& files);
    [[nodiscard]] CopyResult<void> copyWithoutZeros(Files& files);
    [[nodiscard]] CopyResult<std::size_t> sendChunk(Files& files, std::int64_t wanted);
    [[nodiscard]] CopyResult<std::size_t> readChunk(Files& files, std::int64_t wanted);
    [[nodiscard]] CopyResult<void> writeChunk(Files& files, std::size_t offset, std::size_t size);
    [[nodiscard]] CopyResult<void> countChunk(Files& files, std::size_t size);
    [[nodiscard]] static CopyResult<void> seek(const Files& files, std::int64_t position);
    [[nodiscard]] CopyResult<void> checkGrowth(const Files& files);
    [[nodiscard]] CopyResult<void> keepPace(const Files& files);
    void adaptChunk(double seconds) noexcept;

    static constexpr std::size_t smallestChunk = std::size_t{64} << 10;
    static constexpr std::size_t largestChunk = std::size_t{256} << 10;

    Settings settings_;
    Progress progress_;
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t chunk_ = largestChunk;
    std::int64_t paced_ = 0; // how far the medium was told to write
};

} // namespace ombrel
