#include "listing/POSIX.h"

#include "listing/POSIXCall.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <climits>
#include <cstring>

namespace ombrel::POSIX {
namespace {

using SystemCall::Kind;

FileTime timeOf(const struct statx_timestamp& time) noexcept {
    return {time.tv_sec, time.tv_nsec};
}

FileStatus statusOf(const struct statx& facts) noexcept {
    FileStatus status;
    status.mode = facts.stx_mode;
    status.owner = facts.stx_uid;
    status.group = facts.stx_gid;
    status.linkCount = facts.stx_nlink;
    status.identity = {::makedev(facts.stx_dev_major, facts.stx_dev_minor), facts.stx_ino};
    if (facts.stx_mask & STATX_MNT_ID) status.mountID = facts.stx_mnt_id;
    status.deviceNumber = ::makedev(facts.stx_rdev_major, facts.stx_rdev_minor);
    status.size = static_cast<std::int64_t>(facts.stx_size);
    status.blocks = static_cast<std::int64_t>(facts.stx_blocks);
    status.modified = timeOf(facts.stx_mtime);
    status.changed = timeOf(facts.stx_ctime);
    status.accessed = timeOf(facts.stx_atime);
    if (facts.stx_mask & STATX_BTIME) status.born = timeOf(facts.stx_btime);
    return status;
}

Result<FileStatus> look(int folder, const char* name, int flags) {
    struct statx facts;
    const auto looked = done(Kind::status, [&] {
        return ::statx(folder, name, flags | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID,
                       &facts);
    });
    if (!looked) return std::unexpected(looked.error());
    return statusOf(facts);
}

/// Splits a path of any length at a "/" so that the first piece fits one system call.
std::string_view firstPiece(std::string_view path) noexcept {
    if (path.size() < PATH_MAX) return path;
    const auto slash = path.rfind('/', PATH_MAX - 2);
    return slash == std::string_view::npos || slash == 0 ? path : path.substr(0, slash);
}

} // namespace

const int Anchor::outermost = AT_FDCWD;

Result<Anchor> Anchor::of(const FileURL& url) {
    const std::string& path = url.path();
    if (path.size() < PATH_MAX) return Anchor(OwnedFd(), path.c_str());
    OwnedFd folder;
    std::size_t start = 0;
    while (path.size() - start >= PATH_MAX) {
        const std::string piece(firstPiece(std::string_view(path).substr(start)));
        auto next = open(Place{folder ? folder.get() : AT_FDCWD, piece.c_str()}, O_PATH | O_DIRECTORY);
        if (!next) return std::unexpected(next.error());
        folder = std::move(*next);
        start += piece.size() + 1;
    }
    return Anchor(std::move(folder), path.c_str() + start);
}

Result<FileStatus> lstat(Place place) {
    return look(place.folder, place.name, AT_SYMLINK_NOFOLLOW);
}

Result<FileStatus> lstat(const FileURL& url) {
    return withPath<FileStatus>(url, [](Place place) { return lstat(place); });
}

Result<FileStatus> statFollowing(Place place) {
    return look(place.folder, place.name, 0);
}

Result<FileStatus> statFollowing(const FileURL& url) {
    return withPath<FileStatus>(url, [](Place place) { return statFollowing(place); });
}

Result<FileStatus> status(int fd) {
    return look(fd, "", AT_EMPTY_PATH);
}

Result<void> checkReadable(Place place) {
    return done(Kind::status, [&] {
        return ::faccessat(place.folder, place.name, R_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW);
    });
}

Result<OwnedFd> open(Place place, int flags, std::uint32_t mode) {
    const auto fd =
        answered(Kind::open, [&] { return ::openat(place.folder, place.name, flags | O_CLOEXEC, mode); });
    if (!fd) return std::unexpected(fd.error());
    return OwnedFd(*fd);
}

Result<OwnedFd> open(const FileURL& url, int flags, std::uint32_t mode) {
    return withPath<OwnedFd>(url, [&](Place place) { return open(place, flags, mode); });
}

namespace {

/// Name by name, for kernels without openat2 and for paths that are too long for one call.
Result<OwnedFd> openStepwise(int folder, std::string relative, int flags) {
    OwnedFd current;
    for (std::size_t start = 0;;) {
        const auto end = relative.find('/', start);
        const bool isLast = end == std::string::npos;
        if (!isLast) relative[end] = '\0';
        auto next = open({current ? current.get() : folder, relative.c_str() + start},
                         isLast ? flags | O_NOFOLLOW : O_PATH | O_DIRECTORY | O_NOFOLLOW);
        if (!next || isLast) return next;
        current = std::move(*next);
        start = end + 1;
    }
}

} // namespace

Result<OwnedFd> openWithoutLinks(int folder, const std::string& relative, int flags) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags | O_CLOEXEC);
    how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    for (;;) {
        const auto fd = answered(
            Kind::open, [&] { return ::syscall(SYS_openat2, folder, relative.c_str(), &how, sizeof how); });
        if (fd) return OwnedFd(static_cast<int>(*fd));
        const int number = fd.error().number;
        // Sandboxes that do not know the call refuse it with EPERM, and ENOSYS is an old kernel's answer.
        if (number == ENOSYS || number == EPERM || number == ENAMETOOLONG)
            return openStepwise(folder, relative, flags);
        if (number != EAGAIN) return std::unexpected(fd.error());
    }
}

Result<DirectoryStream> openDirectory(Place place, Links links) {
    if (const auto gate = done(Kind::openDirectory, [] { return 0; }); !gate)
        return std::unexpected(gate.error());
    const int follow = links == Links::refuse ? O_NOFOLLOW : 0;
    auto fd = open(place, O_RDONLY | O_DIRECTORY | O_NONBLOCK | follow);
    if (!fd) return std::unexpected(fd.error());
    DIR* stream = ::fdopendir(fd->get());
    if (!stream) return std::unexpected(POSIXFailure::current());
    (void)fd->release();
    return DirectoryStream(stream);
}

Result<DirectoryStream> openDirectory(const FileURL& url, Links links) {
    return withPath<DirectoryStream>(url, [&](Place place) { return openDirectory(place, links); });
}

Result<std::optional<DirectoryEntry>> readEntry(DirectoryStream& stream) {
    for (;;) {
        const struct dirent* entry = nullptr;
        const auto read = done(Kind::readDirectory, [&] {
            errno = 0;
            entry = ::readdir(stream.get());
            return !entry && errno != 0 ? -1 : 0;
        });
        if (!read) return std::unexpected(read.error());
        if (!entry) return std::nullopt;
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) continue;
        return DirectoryEntry{name, entry->d_type, entry->d_ino};
    }
}

Result<std::size_t> read(int fd, void* buffer, std::size_t size) {
    return moved(Kind::read, size, [&](std::size_t count) { return ::read(fd, buffer, count); });
}

Result<std::size_t> readAt(int fd, void* buffer, std::size_t size, std::int64_t offset) {
    return moved(Kind::read, size, [&](std::size_t count) { return ::pread(fd, buffer, count, offset); });
}

Result<std::string> readLink(Place place) {
    std::string target(256, '\0');
    for (;;) {
        const auto length = answered(Kind::readLink, [&] {
            return ::readlinkat(place.folder, place.name, target.data(), target.size());
        });
        if (!length) return std::unexpected(length.error());
        if (static_cast<std::size_t>(*length) < target.size()) {
            target.resize(static_cast<std::size_t>(*length));
            return target;
        }
        target.resize(target.size() * 2);
    }
}

} // namespace ombrel::POSIX
