#pragma once

#include "base/DirectoryStream.h"
#include "base/FileURL.h"
#include "base/OwnedFd.h"
#include "base/POSIXFailure.h"
#include "listing/FileStatus.h"
#include "listing/SystemCall.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// The thin layer of file-system calls: each returns a value or the errno that the call left, passes the gate
/// of SystemCall.h, repeats what a signal interrupted, and works on descriptors and names, so that neither a
/// swapped link nor a long path can lead it astray. Blocking; any thread but the main one.
namespace ombrel::POSIX {

template <typename T>
using Result = std::expected<T, POSIXFailure>;

/// Where a call is to look: a name relative to an open folder. `AT_FDCWD` goes with an absolute path.
struct Place {
    int folder;
    const char* name;
};

/// Calls `body` with a place that stands for `url`, whatever the length of its path: for one of PATH_MAX
/// bytes or more the folders on the way are opened piece by piece, which may fail. Links on the way are
/// followed, the last component is left to `body`.
template <typename T>
[[nodiscard]] Result<T> withPath(const FileURL& url, const std::function<Result<T>(Place)>& body);

/// The folder that a long path is relative to, kept open while its `place` is in use.
class Anchor {
public:
    [[nodiscard]] static Result<Anchor> of(const FileURL& url);
    /// Valid as long as this anchor and the location it was made for.
    [[nodiscard]] Place place() const noexcept { return {folder_ ? folder_.get() : outermost, name_}; }

private:
    Anchor(OwnedFd folder, const char* name) noexcept : folder_(std::move(folder)), name_(name) {}
    static const int outermost;
    OwnedFd folder_;
    const char* name_;
};

template <typename T>
Result<T> withPath(const FileURL& url, const std::function<Result<T>(Place)>& body) {
    auto anchor = Anchor::of(url);
    if (!anchor) return std::unexpected(anchor.error());
    return body(anchor->place());
}

/// One look at an entry; a final link is not followed.
[[nodiscard]] Result<FileStatus> lstat(const FileURL& url);
[[nodiscard]] Result<FileStatus> lstat(Place place);
/// The same, following links.
[[nodiscard]] Result<FileStatus> statFollowing(const FileURL& url);
[[nodiscard]] Result<FileStatus> statFollowing(Place place);
[[nodiscard]] Result<FileStatus> status(int fd);
/// Whether the calling thread's user may read what is in the file or folder itself; EACCES when not.
[[nodiscard]] Result<void> checkReadable(Place place);

/// Always with O_CLOEXEC. `mode` counts only when something is created.
[[nodiscard]] Result<OwnedFd> open(Place place, int flags, std::uint32_t mode = 0);
[[nodiscard]] Result<OwnedFd> open(const FileURL& url, int flags, std::uint32_t mode = 0);

/// Opens what `relative` leads to from `folder` and follows no link, neither at its end nor on the way (ELOOP
/// or ENOTDIR), whatever its length.
[[nodiscard]] Result<OwnedFd> openWithoutLinks(int folder, const std::string& relative, int flags);

enum class Links : std::uint8_t { follow, refuse };

[[nodiscard]] Result<DirectoryStream> openDirectory(const FileURL& url, Links links = Links::follow);
[[nodiscard]] Result<DirectoryStream> openDirectory(Place place, Links links);

/// One entry as the folder names it.
struct DirectoryEntry {
    std::string_view name; ///< NUL-terminated; valid until the next read of the stream
    std::uint8_t type;     ///< a DT_ constant of <dirent.h>, DT_UNKNOWN where the file system does not say
    std::uint64_t inode;
};

/// The next entry, "." and ".." left out; nothing at the end.
[[nodiscard]] Result<std::optional<DirectoryEntry>> readEntry(DirectoryStream& stream);

/// Up to `size` bytes; 0 at the end of the file.
[[nodiscard]] Result<std::size_t> read(int fd, void* buffer, std::size_t size);
/// The same from `offset`; where the next read begins stays as it was.
[[nodiscard]] Result<std::size_t> readAt(int fd, void* buffer, std::size_t size, std::int64_t offset);

/// The target of a symbolic link, as bytes.
[[nodiscard]] Result<std::string> readLink(Place place);

} // namespace ombrel::POSIX
