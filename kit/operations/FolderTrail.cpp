#include "operations/FolderTrail.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

namespace ombrel {
namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK;

} // namespace

bool isSameMount(const FileStatus& a, const FileStatus& b) noexcept {
    if (a.mountID != 0 && b.mountID != 0) return a.mountID == b.mountID;
    return a.identity.device == b.identity.device;
}

bool isWithin(int folder, const FileIdentity& above) {
    std::optional<FileIdentity> last;
    OwnedFd current;
    for (;;) {
        const int fd = current ? current.get() : folder;
        const auto status = POSIX::status(fd);
        if (!status || (last && status->identity == *last)) return false;
        if (status->identity == above) return true;
        last = status->identity;
        auto next = POSIX::open(POSIX::Place{fd, ".."}, O_PATH | O_DIRECTORY);
        if (!next) return false;
        current = std::move(*next);
    }
}

FolderTrail::FolderTrail(OwnedFd top, const FileStatus& status, Mounts mounts) : mounts_(mounts) {
    steps_.push_back({std::move(top), status, {}});
}

POSIX::Result<FolderTrail> FolderTrail::from(int folder, Mounts mounts) {
    auto top = POSIX::open(POSIX::Place{folder, "."}, O_PATH | O_DIRECTORY);
    if (!top) return std::unexpected(top.error());
    const auto status = POSIX::status(top->get());
    if (!status) return std::unexpected(status.error());
    return FolderTrail(std::move(*top), *status, mounts);
}

std::string FolderTrail::pathOf(std::string_view name) const {
    std::string path;
    for (std::size_t i = 1; i < steps_.size(); ++i)
        path.append(steps_[i].name).append("/");
    return path.append(name);
}

bool FolderTrail::isInsideItself() const noexcept {
    const auto& own = steps_.back().status;
    if (depth() == 0 || isSameMount(own, steps_[steps_.size() - 2].status)) return false;
    return std::ranges::any_of(steps_.begin(), steps_.end() - 1,
                               [&](const Step& step) { return step.status.identity == own.identity; });
}

POSIX::Result<void> FolderTrail::enter(const char* name) {
    auto folder = POSIX::open(POSIX::Place{fd(), name}, folderFlags);
    if (!folder) return std::unexpected(folder.error());
    const auto status = POSIX::status(folder->get());
    if (!status) return std::unexpected(status.error());
    if (mounts_ == Mounts::refuse && !isSameMount(*status, steps_.back().status))
        return std::unexpected(POSIXFailure{EBUSY});
    if (steps_.size() > keptOpen) steps_[steps_.size() - keptOpen].folder = OwnedFd();
    steps_.push_back({std::move(*folder), *status, name});
    return {};
}

POSIX::Result<void> FolderTrail::leave() {
    Step& above = steps_[steps_.size() - 2];
    if (!above.folder) {
        auto folder = POSIX::open(POSIX::Place{fd(), ".."}, folderFlags);
        if (!folder) return std::unexpected(folder.error());
        const auto status = POSIX::status(folder->get());
        if (!status) return std::unexpected(status.error());
        if (status->identity != above.status.identity) return std::unexpected(POSIXFailure{ESTALE});
        above.folder = std::move(*folder);
    }
    steps_.pop_back();
    return {};
}

} // namespace ombrel
