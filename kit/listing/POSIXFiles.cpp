#include "listing/POSIXFiles.h"

#include "listing/POSIXCall.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <limits>

namespace ombrel::POSIX {

using SystemCall::Kind;

Result<void> seek(int fd, std::int64_t offset) {
    return done(Kind::seek, [&] { return ::lseek(fd, offset, SEEK_SET) < 0 ? -1 : 0; });
}

Result<std::int64_t> position(int fd) {
    return answered(Kind::seek, [&] { return ::lseek(fd, 0, SEEK_CUR); });
}

Result<std::optional<std::int64_t>> findData(int fd, std::int64_t offset) {
    const auto found = answered(Kind::seek, [&] { return ::lseek(fd, offset, SEEK_DATA); });
    if (found) return *found;
    if (found.error().number == ENXIO) return std::nullopt;
    if (found.error().number != EINVAL) return std::unexpected(found.error());
    const auto whole = status(fd);
    if (!whole) return std::unexpected(whole.error());
    if (offset < whole->size) return offset;
    return std::nullopt;
}

Result<std::int64_t> findHole(int fd, std::int64_t offset) {
    const auto found = answered(Kind::seek, [&] { return ::lseek(fd, offset, SEEK_HOLE); });
    if (found) return *found;
    if (found.error().number != EINVAL) return std::unexpected(found.error());
    const auto whole = status(fd);
    if (!whole) return std::unexpected(whole.error());
    return whole->size;
}

Result<void> resize(int fd, std::int64_t size) {
    return done(Kind::truncate, [&] { return ::ftruncate(fd, size); });
}

Result<std::size_t> send(int from, int to, std::size_t size) {
    return moved(Kind::write, size, [&](std::size_t count) { return ::sendfile(to, from, nullptr, count); });
}

Result<void> startWriting(int fd, std::int64_t offset, std::int64_t length) {
    return done(Kind::flush, [&] { return ::sync_file_range(fd, offset, length, SYNC_FILE_RANGE_WRITE); });
}

Result<void> finishWriting(int fd, std::int64_t offset, std::int64_t length) {
    constexpr unsigned all = SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    return done(Kind::flush, [&] { return ::sync_file_range(fd, offset, length, all); });
}

Result<void> flushFileSystem(int fd) {
    return done(Kind::flush, [&] { return ::syncfs(fd); });
}

Result<void> flushEverything() {
    return done(Kind::flush, [] {
        ::sync();
        return 0;
    });
}

void adviseSequential(int fd) noexcept {
    (void)::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
}

void dropCache(int fd) noexcept {
    (void)::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
}

Result<FileSystemSpace> space(int fd) {
    constexpr long zfs = 0x2FC12FC1;
    struct statfs facts;
    const auto asked = done(Kind::fileSystem, [&] { return ::fstatfs(fd, &facts); });
    if (!asked) return std::unexpected(asked.error());
    // A driver that does not count says that it has 0 of 0 blocks.
    const auto available = facts.f_blocks == 0 ? std::numeric_limits<std::int64_t>::max()
                                               : static_cast<std::int64_t>(facts.f_bavail) * facts.f_frsize;
    return FileSystemSpace{available, static_cast<long>(facts.f_type) == zfs};
}

} // namespace ombrel::POSIX
