#pragma once

#include "listing/POSIX.h"

#include <cstdint>
#include <optional>

/// Calls on the contents of open files and on the room that their file systems have.
namespace ombrel::POSIX {

/// From here on reads and writes go on at `offset`.
[[nodiscard]] Result<void> seek(int fd, std::int64_t offset);
/// Where the next read or write begins.
[[nodiscard]] Result<std::int64_t> position(int fd);
/// The first byte at or after `offset` that is not in a hole; nothing when only a hole is left. File systems
/// that know no holes have none.
[[nodiscard]] Result<std::optional<std::int64_t>> findData(int fd, std::int64_t offset);
/// The first byte at or after `offset` that is in a hole; the end of the file counts as one.
[[nodiscard]] Result<std::int64_t> findHole(int fd, std::int64_t offset);
/// Cuts the file, or makes it longer by a hole.
[[nodiscard]] Result<void> resize(int fd, std::int64_t size);

/// Copies up to `size` bytes between two files, from where either is to be read and written next, and answers
/// how many; 0 at the end of `from`. The kernel copies them from cache to cache (`sendfile`), never by
/// sharing extents. EINVAL or ENOSYS from file systems that cannot; a failure may leave both files' positions
/// anywhere.
[[nodiscard]] Result<std::size_t> send(int from, int to, std::size_t size);

/// Starts writing the range's changed pages to the medium and returns.
[[nodiscard]] Result<void> startWriting(int fd, std::int64_t offset, std::int64_t length);
/// Waits until the range's pages are written, those that changed meanwhile included. Says nothing of what the
/// file system must still write to find them again: that is `flush`.
[[nodiscard]] Result<void> finishWriting(int fd, std::int64_t offset, std::int64_t length);
/// Waits until everything of the file system that holds `fd` is on the medium. Tells errors that were met
/// since `fd` was opened.
[[nodiscard]] Result<void> flushFileSystem(int fd);
/// The same for all file systems, where there is no descriptor to name one; errors are not told.
[[nodiscard]] Result<void> flushEverything();

/// Advice, which cannot fail: the file will be read from its start to its end.
void adviseSequential(int fd) noexcept;
/// Advice: what is on the medium already need not stay in memory, so that the next read comes from there.
void dropCache(int fd) noexcept;

/// What the file system of an open file has and is.
struct FileSystemSpace {
    std::int64_t available =
        0;              ///< bytes that this user may still fill; the largest number where nobody counts
    bool isZFS = false; ///< whose answers about holes have been wrong
};
[[nodiscard]] Result<FileSystemSpace> space(int fd);

} // namespace ombrel::POSIX
