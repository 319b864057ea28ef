#pragma once

#include "listing/POSIX.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Calls on what an entry carries besides its contents: owner, times, extended attributes. (Its mode is in
/// POSIXEntries.h.)
namespace ombrel::POSIX {

/// Gives the entry itself to another owner or group; `keepOwner` leaves either as it is.
inline constexpr std::uint32_t keepOwner = UINT32_MAX;
[[nodiscard]] Result<void> changeOwner(int fd, std::uint32_t owner, std::uint32_t group);
[[nodiscard]] Result<void> changeOwner(Place place, std::uint32_t owner, std::uint32_t group);

[[nodiscard]] Result<void> changeTimes(int fd, FileTime accessed, FileTime modified);
/// Of the entry itself; a final link is not followed.
[[nodiscard]] Result<void> changeTimes(Place place, FileTime accessed, FileTime modified);

/// The names of a file's extended attributes, access control lists among them (xattr(7), acl(5)). EOPNOTSUPP
/// where the file system has none.
[[nodiscard]] Result<std::vector<std::string>> attributeNames(int fd);
/// ENODATA when there is none of that name.
[[nodiscard]] Result<std::string> attribute(int fd, const std::string& name);
/// Makes the attribute or replaces it.
[[nodiscard]] Result<void> setAttribute(int fd, const std::string& name, std::string_view value);
[[nodiscard]] Result<void> removeAttribute(int fd, const std::string& name);

} // namespace ombrel::POSIX
