#include "listing/CacheFile.h"

#include "listing/POSIXEntries.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

namespace ombrel::CacheFile {
namespace {

constexpr std::uint32_t folderMode = 0700, fileMode = 0600;

/// The state of an open regular file.
std::optional<State> stateOf(int fd) {
    const auto status = POSIX::status(fd);
    if (!status || !status->isRegular()) return std::nullopt;
    return State{.size = status->size, .modified = status->modified.seconds};
}

POSIX::Result<OwnedFd> opened(const FileURL& url) {
    return POSIX::open(url, O_RDONLY | O_NONBLOCK | O_NOCTTY);
}

void makeFolders(const FileURL& folder) {
    const auto make = [&] {
        return POSIX::withPath<void>(
            folder, [](POSIX::Place place) { return POSIX::makeDirectory(place, folderMode); });
    };
    const auto made = make();
    if (made || made.error().number != ENOENT || folder.isRoot()) return;
    makeFolders(folder.parent());
    (void)make();
}

/// A name that nobody else uses, neither in this process nor in another.
FileURL draftOf(const FileURL& url) {
    static std::atomic<unsigned> drafts = 0;
    return url.parent().appending("." + std::string(url.name()) + "." + std::to_string(::getpid()) + "-" +
                                  std::to_string(drafts.fetch_add(1)));
}

} // namespace

std::optional<std::string> read(const FileURL& url, std::size_t limit) {
    const auto fd = opened(url);
    if (!fd || !stateOf(fd->get())) return std::nullopt;
    auto bytes = POSIX::readAll(fd->get(), limit);
    return bytes ? std::optional(*std::move(bytes)) : std::nullopt;
}

std::optional<std::string> readInState(const FileURL& url, const State& state, std::size_t limit) {
    const auto fd = opened(url);
    if (!fd || stateOf(fd->get()) != state) return std::nullopt;
    auto bytes = POSIX::readAll(fd->get(), limit);
    if (!bytes || stateOf(fd->get()) != state) return std::nullopt;
    return *std::move(bytes);
}

bool replace(const FileURL& url, std::string_view bytes) {
    makeFolders(url.parent());
    const FileURL draft = draftOf(url);
    const auto from = POSIX::Anchor::of(draft), to = POSIX::Anchor::of(url);
    if (!from || !to) return false;
    auto fd = POSIX::open(from->place(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, fileMode);
    if (!fd) return false;
    const bool isWritten = POSIX::writeAll(fd->get(), bytes) && POSIX::close(std::move(*fd)) &&
                           POSIX::rename(from->place(), to->place());
    if (!isWritten) (void)POSIX::unlink(from->place());
    return isWritten;
}

} // namespace ombrel::CacheFile
