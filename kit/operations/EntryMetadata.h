#pragma once

#include "listing/FileStatus.h"
#include "listing/POSIX.h"
#include "operations/MetadataSupport.h"

/// What goes with an entry when it is copied, besides its contents: owner and group where that is allowed,
/// extended attributes with the access control lists among them, permission bits, times.
namespace ombrel::EntryMetadata {

/// Gives the copy behind `to`, a file or folder, what the source behind `from` has. Set-id bits go along only
/// with the owner or group that they stand for. What the destination has no place for is passed over and
/// remembered in `support`; an errno tells that something was lost that it could hold. Answers whether the
/// source has any attributes.
[[nodiscard]] POSIX::Result<bool> carry(int from, const FileStatus& source, int to, MetadataSupport& support);

/// The same for a copy that cannot be opened: a link or a FIFO.
[[nodiscard]] POSIX::Result<void> carry(const FileStatus& source, POSIX::Place to, MetadataSupport& support);

/// Takes from a folder or file what it inherited from the access control list of the folder it was made in.
void dropInherited(int fd);
/// Whether entries that are made in the folder inherit such a list.
[[nodiscard]] bool handsDownLists(int folder);

/// Whether permission bits, `user.*` attributes and access control lists are the same, as far as the copy's
/// file system has a place for them.
[[nodiscard]] POSIX::Result<bool> areEqual(int a, const FileStatus& source, int b, const FileStatus& copy,
                                           const MetadataSupport& support);
/// The attributes and lists alone.
[[nodiscard]] POSIX::Result<bool> haveEqualAttributes(int a, int b, const MetadataSupport& support);
/// Whether there is none that would be compared.
[[nodiscard]] POSIX::Result<bool> hasNoAttributes(int fd, const MetadataSupport& support);
/// The permission bits alone.
[[nodiscard]] bool haveEqualModes(const FileStatus& source, const FileStatus& copy,
                                  const MetadataSupport& support) noexcept;

} // namespace ombrel::EntryMetadata
