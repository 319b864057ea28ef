#include "listing/POSIXMetadata.h"

#include "listing/POSIXCall.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>

namespace ombrel::POSIX {

using SystemCall::Kind;

namespace {

struct Times {
    std::array<timespec, 2> values;
    Times(FileTime accessed, FileTime modified)
        : values{timespec{accessed.seconds, static_cast<long>(accessed.nanoseconds)},
                 timespec{modified.seconds, static_cast<long>(modified.nanoseconds)}} {}
};

/// Reads something whose size is known only when it is asked for. Most fits the first, small room.
template <typename Read>
Result<std::string> sized(Read read) {
    std::array<char, 1024> small;
    auto length = answered(Kind::readAttribute, [&] { return read(small.data(), small.size()); });
    if (length) return std::string(small.data(), static_cast<std::size_t>(*length));
    std::string value;
    while (length.error().number == ERANGE) {
        length = answered(Kind::readAttribute, [&] { return read(nullptr, 0); });
        if (!length) break;
        value.resize(static_cast<std::size_t>(*length) + 1);
        length = answered(Kind::readAttribute, [&] { return read(value.data(), value.size()); });
        if (!length) continue;
        value.resize(static_cast<std::size_t>(*length));
        return value;
    }
    return std::unexpected(length.error());
}

} // namespace

Result<void> changeOwner(int fd, std::uint32_t owner, std::uint32_t group) {
    return done(Kind::changeOwner, [&] { return ::fchown(fd, owner, group); });
}

Result<void> changeOwner(Place place, std::uint32_t owner, std::uint32_t group) {
    return done(Kind::changeOwner,
                [&] { return ::fchownat(place.folder, place.name, owner, group, AT_SYMLINK_NOFOLLOW); });
}

Result<void> changeTimes(int fd, FileTime accessed, FileTime modified) {
    const Times times(accessed, modified);
    return done(Kind::changeTimes, [&] { return ::futimens(fd, times.values.data()); });
}

Result<void> changeTimes(Place place, FileTime accessed, FileTime modified) {
    const Times times(accessed, modified);
    return done(Kind::changeTimes, [&] {
        return ::utimensat(place.folder, place.name, times.values.data(), AT_SYMLINK_NOFOLLOW);
    });
}

Result<std::vector<std::string>> attributeNames(int fd) {
    const auto list = sized([&](char* room, std::size_t size) { return ::flistxattr(fd, room, size); });
    if (!list) return std::unexpected(list.error());
    std::vector<std::string> names;
    for (std::size_t start = 0; start < list->size();) {
        names.emplace_back(list->c_str() + start);
        start += names.back().size() + 1;
    }
    return names;
}

Result<std::string> attribute(int fd, const std::string& name) {
    return sized([&](char* room, std::size_t size) { return ::fgetxattr(fd, name.c_str(), room, size); });
}

Result<void> setAttribute(int fd, const std::string& name, std::string_view value) {
    return done(Kind::writeAttribute,
                [&] { return ::fsetxattr(fd, name.c_str(), value.data(), value.size(), 0); });
}

Result<void> removeAttribute(int fd, const std::string& name) {
    return done(Kind::writeAttribute, [&] { return ::fremovexattr(fd, name.c_str()); });
}

} // namespace ombrel::POSIX
