#include "listing/StoreFile.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXLock.h"
#include "listing/POSIXRename.h"

#include <fcntl.h>
#include <unistd.h>

#include <thread>

namespace ombrel {
namespace {

using POSIX::Place;
using POSIX::Result;

constexpr int mostLinks = 40; // as the kernel follows
constexpr int mostNames = 100;
constexpr std::uint32_t folderMode = 0700;
constexpr std::uint32_t fileMode = 0600;

/// Where the contents are: `url`, or what the chain of links that begins there leads to.
Result<FileURL> resolved(FileURL url) {
    for (int links = 0; links < mostLinks; ++links) {
        const auto target =
            POSIX::withPath<std::string>(url, [](Place place) { return POSIX::readLink(place); });
        if (!target) {
            const int number = target.error().number;
            if (number == EINVAL || number == ENOENT) return url;
            return std::unexpected(target.error());
        }
        const auto next =
            FileURL::fromPath(target->starts_with('/') ? *target : url.parent().path() + "/" + *target);
        if (!next) return std::unexpected(POSIXFailure{ENOENT});
        url = *next;
    }
    return std::unexpected(POSIXFailure{ELOOP});
}

Result<void> makeFolders(const FileURL& folder) {
    const auto make = [&]() -> Result<void> {
        auto made = POSIX::withPath<void>(
            folder, [](Place place) { return POSIX::makeDirectory(place, folderMode); });
        if (!made && made.error().number == EEXIST) return {};
        return made;
    };
    auto made = make();
    if (made || made.error().number != ENOENT || folder.isRoot()) return made;
    if (auto parent = makeFolders(folder.parent()); !parent) return parent;
    return make();
}

/// Some file systems have nothing to flush and say so by refusing.
Result<void> flushed(int fd) {
    auto done = POSIX::flush(fd);
    if (!done && (done.error().number == EINVAL || done.error().number == ENOSYS)) return {};
    return done;
}

/// A new file that goes again unless it was given its name.
class Draft {
public:
    [[nodiscard]] static Result<Draft> make(int folder, std::string_view name) {
        for (int count = 0; count < mostNames; ++count) {
            auto draft =
                "." + std::string(name) + "." + std::to_string(::getpid()) + "-" + std::to_string(count);
            auto fd =
                POSIX::open({folder, draft.c_str()}, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, fileMode);
            if (fd) return Draft(folder, std::move(draft), std::move(*fd));
            if (fd.error().number != EEXIST) return std::unexpected(fd.error());
        }
        return std::unexpected(POSIXFailure{EEXIST});
    }
    Draft(Draft&& other) noexcept
        : folder_(std::exchange(other.folder_, -1)), name_(std::move(other.name_)),
          fd_(std::move(other.fd_)) {}
    Draft& operator=(Draft&&) = delete;
    ~Draft() {
        if (folder_ >= 0) (void)POSIX::unlink({folder_, name_.c_str()});
    }

    [[nodiscard]] Result<void> fill(std::string_view bytes, std::uint32_t mode) {
        if (mode != fileMode)
            if (auto done = POSIX::changeMode(fd_.get(), mode); !done) return done;
        if (auto done = POSIX::writeAll(fd_.get(), bytes); !done) return done;
        if (auto done = flushed(fd_.get()); !done) return done;
        return POSIX::close(std::move(fd_));
    }
    [[nodiscard]] Result<void> giveName(const std::string& name) {
        if (auto done = POSIX::rename({folder_, name_.c_str()}, {folder_, name.c_str()}); !done) return done;
        const int folder = std::exchange(folder_, -1);
        return flushed(folder);
    }

private:
    Draft(int folder, std::string name, OwnedFd fd)
        : folder_(folder), name_(std::move(name)), fd_(std::move(fd)) {}

    int folder_; // -1 once the draft is no draft any more
    std::string name_;
    OwnedFd fd_;
};

Result<OwnedFd> openFolder(const FileURL& folder) {
    return POSIX::open(folder, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
}

} // namespace

Result<std::optional<std::string>> StoreFile::read() const {
    const auto fd = POSIX::open(url_, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!fd && fd.error().number == ENOENT) return std::nullopt;
    if (!fd) return std::unexpected(fd.error());
    const auto status = POSIX::status(fd->get());
    if (!status) return std::unexpected(status.error());
    if (!status->isRegular()) return std::unexpected(POSIXFailure{EINVAL});
    auto bytes = POSIX::readAll(fd->get(), largest);
    if (!bytes) return std::unexpected(bytes.error());
    return *std::move(bytes);
}

Result<void> StoreFile::replace(std::string_view bytes) const {
    const auto place = resolved(url_);
    if (!place) return std::unexpected(place.error());
    if (auto made = makeFolders(place->parent()); !made) return made;
    const auto folder = openFolder(place->parent());
    if (!folder) return std::unexpected(folder.error());
    const std::string name(place->name());
    const auto existing = POSIX::lstat({folder->get(), name.c_str()});
    if (existing && !existing->isRegular()) return std::unexpected(POSIXFailure{EINVAL});
    auto draft = Draft::make(folder->get(), name);
    if (!draft) return std::unexpected(draft.error());
    if (auto filled = draft->fill(bytes, existing ? existing->permissions() : fileMode); !filled)
        return filled;
    return draft->giveName(name);
}

Result<FileURL> StoreFile::setAside() const {
    const auto place = resolved(url_);
    if (!place) return std::unexpected(place.error());
    const auto folder = openFolder(place->parent());
    if (!folder) return std::unexpected(folder.error());
    const std::string name(place->name());
    for (int count = 1; count <= mostNames; ++count) {
        const auto aside = name + ".damaged" + (count == 1 ? "" : "-" + std::to_string(count));
        const auto moved =
            POSIX::renameExclusive({folder->get(), name.c_str()}, {folder->get(), aside.c_str()});
        if (moved) return place->parent().appending(aside);
        if (moved.error().number != EEXIST) return std::unexpected(moved.error());
    }
    return std::unexpected(POSIXFailure{EEXIST});
}

Result<StoreFile::Lock> StoreFile::lock(std::chrono::milliseconds limit) const {
    constexpr std::chrono::milliseconds pause(20);
    if (auto made = makeFolders(url_.parent()); !made) return std::unexpected(made.error());
    const auto place = url_.parent().appending(std::string(url_.name()) + ".lock");
    auto fd = POSIX::open(place, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, fileMode);
    if (!fd) return std::unexpected(fd.error());
    for (const auto end = std::chrono::steady_clock::now() + limit;;) {
        const auto locked = POSIX::tryLock(fd->get());
        if (!locked) {
            const int number = locked.error().number;
            if (number != ENOLCK && number != ENOSYS && number != EOPNOTSUPP)
                return std::unexpected(locked.error());
        }
        if (!locked || *locked) return Lock(std::move(*fd));
        if (std::chrono::steady_clock::now() >= end) return std::unexpected(POSIXFailure{ETIMEDOUT});
        std::this_thread::sleep_for(pause);
    }
}

} // namespace ombrel
