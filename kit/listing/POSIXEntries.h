#pragma once

#include "listing/POSIX.h"

#include <cstddef>
#include <cstdint>

/// Calls that make, remove and rename the entries of folders. None follows a link in the place's last
/// component.
namespace ombrel::POSIX {

/// Fails with EEXIST when the name is taken. The process's creation mask applies to `mode`.
[[nodiscard]] Result<void> makeDirectory(Place place, std::uint32_t mode);

/// A link to `target`, any bytes but NUL. EEXIST when the name is taken.
[[nodiscard]] Result<void> makeSymlink(const std::string& target, Place place);
[[nodiscard]] Result<void> makeFIFO(Place place, std::uint32_t mode);

/// Removes a name that is not a folder's.
[[nodiscard]] Result<void> unlink(Place place);
/// Removes an empty folder.
[[nodiscard]] Result<void> removeDirectory(Place place);

/// The plain rename: whatever has the name `to` is replaced. For names that are known to be one's own.
[[nodiscard]] Result<void> rename(Place from, Place to);

/// Whether entries of the folder may be made and removed; the errno says why not.
[[nodiscard]] Result<void> checkWritable(Place folder);

/// Permission bits of the entry itself; EOPNOTSUPP for a link.
[[nodiscard]] Result<void> changeMode(Place place, std::uint32_t mode);
[[nodiscard]] Result<void> changeMode(int fd, std::uint32_t mode);

/// Writes up to `size` bytes and answers how many were.
[[nodiscard]] Result<std::size_t> write(int fd, const void* buffer, std::size_t size);
/// Writes all of `bytes`, in as many calls as it takes.
[[nodiscard]] Result<void> writeAll(int fd, std::string_view bytes);

/// All that is left of a file, which may not be longer than `limit` bytes (EFBIG).
[[nodiscard]] Result<std::string> readAll(int fd, std::size_t limit);
/// Closes now and tells a late write error, as OwnedFd::close does.
[[nodiscard]] Result<void> close(OwnedFd fd);

/// Tells the late write errors that closing tells, and leaves `fd` open.
[[nodiscard]] Result<void> closeCopyOf(int fd);

/// Waits until the descriptor's data, or the entries of the folder it stands for, are on the medium.
[[nodiscard]] Result<void> flush(int fd);

/// Turns an open folder back to its first entry.
[[nodiscard]] Result<void> rewind(int folder);

} // namespace ombrel::POSIX
