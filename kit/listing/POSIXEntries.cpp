#include "listing/POSIXEntries.h"

#include "listing/POSIXCall.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace ombrel::POSIX {

using SystemCall::Kind;

Result<void> makeDirectory(Place place, std::uint32_t mode) {
    return done(Kind::makeDirectory, [&] { return ::mkdirat(place.folder, place.name, mode); });
}

Result<void> makeSymlink(const std::string& target, Place place) {
    return done(Kind::makeSymlink, [&] { return ::symlinkat(target.c_str(), place.folder, place.name); });
}

Result<void> makeFIFO(Place place, std::uint32_t mode) {
    return done(Kind::makeNode, [&] { return ::mkfifoat(place.folder, place.name, mode); });
}

Result<void> unlink(Place place) {
    return done(Kind::unlink, [&] { return ::unlinkat(place.folder, place.name, 0); });
}

Result<void> removeDirectory(Place place) {
    return done(Kind::removeDirectory, [&] { return ::unlinkat(place.folder, place.name, AT_REMOVEDIR); });
}

Result<void> rename(Place from, Place to) {
    return done(Kind::rename, [&] { return ::renameat(from.folder, from.name, to.folder, to.name); });
}

Result<void> checkWritable(Place place) {
    return done(Kind::status, [&] {
        return ::faccessat(place.folder, place.name, W_OK | X_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW);
    });
}

Result<void> changeMode(Place place, std::uint32_t mode) {
    return done(Kind::changeMode,
                [&] { return ::fchmodat(place.folder, place.name, mode, AT_SYMLINK_NOFOLLOW); });
}

Result<void> changeMode(int fd, std::uint32_t mode) {
    return done(Kind::changeMode, [&] { return ::fchmod(fd, mode); });
}

Result<std::size_t> write(int fd, const void* buffer, std::size_t size) {
    return moved(Kind::write, size, [&](std::size_t count) { return ::write(fd, buffer, count); });
}

Result<void> writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = write(fd, bytes.data(), bytes.size());
        if (!count) return std::unexpected(count.error());
        bytes.remove_prefix(*count);
    }
    return {};
}

Result<std::string> readAll(int fd, std::size_t limit) {
    std::string text;
    for (;;) {
        const std::size_t filled = text.size();
        text.resize(std::max<std::size_t>(2 * filled, 4096));
        const auto count = read(fd, text.data() + filled, text.size() - filled);
        if (!count) return std::unexpected(count.error());
        text.resize(filled + *count);
        if (text.size() > limit) return std::unexpected(POSIXFailure{EFBIG});
        if (*count == 0) return text;
    }
}

Result<void> close(OwnedFd fd) {
    const auto fault = SystemCall::gate(Kind::close);
    auto closed = fd.close();
    // Linux has let go of the descriptor whatever close answers, EINTR included.
    if (fault && fault->errorNumber != 0 && fault->errorNumber != EINTR)
        return std::unexpected(POSIXFailure{fault->errorNumber});
    return closed;
}

Result<void> closeCopyOf(int fd) {
    const auto copy = answered(Kind::open, [&] { return ::fcntl(fd, F_DUPFD_CLOEXEC, 0); });
    if (!copy) return std::unexpected(copy.error());
    return close(OwnedFd(*copy));
}

Result<void> flush(int fd) {
    return done(Kind::flush, [&] { return ::fsync(fd); });
}

Result<void> rewind(int folder) {
    return done(Kind::seek, [&] { return ::lseek(folder, 0, SEEK_SET) < 0 ? -1 : 0; });
}

} // namespace ombrel::POSIX
