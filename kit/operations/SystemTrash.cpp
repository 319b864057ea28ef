#include "operations/SystemTrash.h"

#include "base/Log.h"
#include "base/Worker.h"
#include "operations/FolderTrail.h"

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <future>
#include <memory>
#include <set>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Reason = TrashUnavailableReason;
using Access = TrashFolder::Access;

std::unexpected<TrashFailure> unavailable(Reason reason) {
    return std::unexpected(TrashFailure{Error::Case::trashUnavailable, reason});
}

std::optional<FileURL> folderInEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    const auto url = FileURL::fromPath(value ? value : "", FileURL::Mark::directory);
    return url ? std::optional(*url) : std::nullopt;
}

/// Where an open folder really is, links resolved; nothing when that cannot be told.
std::optional<FileURL> realPath(int folder, const FileStatus& status) {
    const std::string link = "/proc/self/fd/" + std::to_string(folder);
    const auto target = POSIX::readLink(POSIX::Place{AT_FDCWD, link.c_str()});
    const auto url = FileURL::fromPath(target ? *target : "", FileURL::Mark::directory);
    if (!url) return std::nullopt;
    const auto there = POSIX::statFollowing(*url);
    return there && there->identity == status.identity ? std::optional(*url) : std::nullopt;
}

FileURL realPath(const FileURL& url) {
    const auto folder = POSIX::open(url, O_PATH | O_DIRECTORY);
    const auto status = folder ? POSIX::status(folder->get()) : std::unexpected(folder.error());
    return status ? realPath(folder->get(), *status).value_or(url) : url;
}

/// How a path relates to the trash folders of a volume, by their names.
std::optional<Reason> placeInVolumeTrash(const FileURL& location, const FileURL& top) {
    if (!location.isWithin(top) || location == top) return std::nullopt;
    auto path = location.pathBelow(top);
    const auto next = [&] {
        const auto end = std::min(path.find('/'), path.size());
        const auto component = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        return component;
    };
    const auto first = next();
    if (first == ".Trash")
        next();
    else if (!first.starts_with(".Trash-") || first.size() == 7 ||
             first.find_first_not_of("0123456789", 7) != std::string_view::npos)
        return std::nullopt;
    next(); // "files" or "info"
    return path.empty() ? Reason::isTrash : Reason::inTrash;
}

std::optional<Reason> placeInHomeTrash(const FileURL& location, const FileURL& trash) {
    if (!location.isWithin(trash)) return std::nullopt;
    const bool isPart = location == trash || location.parent() == trash;
    return isPart ? Reason::isTrash : Reason::inTrash;
}

std::int64_t now() {
    return std::time(nullptr);
}

} // namespace

SystemTrash::Places SystemTrash::Places::ofCurrentUser() {
    Places places;
    places.user = ::geteuid();
    auto home = folderInEnvironment("HOME");
    if (!home) {
        const auto* entry = ::getpwuid(places.user);
        const auto listed = FileURL::fromPath(entry ? entry->pw_dir : "/", FileURL::Mark::directory);
        home = listed.value_or(FileURL());
    }
    places.homeFolder = *home;
    const auto data =
        folderInEnvironment("XDG_DATA_HOME").value_or(home->appending(".local").appending("share"));
    places.homeTrash = data.appending("Trash", FileURL::Mark::directory);
    return places;
}

SystemTrash::SystemTrash(Places places, MountSource mounts)
    : places_(std::move(places)), mounts_(std::move(mounts)) {}

/// Why an item must not go to any trash, whatever there is.
std::optional<Reason> SystemTrash::refusal(const ConfirmedSource& source, const FileURL& location,
                                           const FileStatus& holder, const Mount* mount) const {
    if (!isSameMount(source.status(), holder)) return Reason::isMountPoint;
    if (const auto home = POSIX::statFollowing(places_.homeFolder);
        home && home->identity == source.status().identity)
        return Reason::isHome;
    const FileURL trash = realPath(places_.homeTrash);
    if (const auto place = placeInHomeTrash(location, trash)) return place;
    if (const auto place = mount ? placeInVolumeTrash(location, mount->point) : std::nullopt) return place;
    if (trash.isWithin(location) || realPath(places_.homeFolder).isWithin(location))
        return Reason::holdsTrash;
    return std::nullopt;
}

/// Whether the home trash, or the place where it would be made, is on the device that holds the item.
bool SystemTrash::mayGoHome(const FileStatus& holder) const {
    for (FileURL url = places_.homeTrash;; url = url.parent()) {
        const auto status = POSIX::statFollowing(url);
        if (status) return status->identity.device == holder.identity.device;
        if (status.error().number != ENOENT || url.isRoot()) return false;
    }
}

std::expected<FileURL, TrashFailure> SystemTrash::moveToTrash(const FileReference& item) {
    if (item.url.isRoot()) return unavailable(Reason::isMountPoint);
    if (item.url.name() == "..")
        return std::unexpected(TrashFailure{Error::invalidName(InvalidNameReason::reserved)});
    const auto source = ConfirmedSource::of(item);
    if (!source) return std::unexpected(TrashFailure{source.error()});
    const auto holder = POSIX::status(source->folder().get());
    if (!holder) return std::unexpected(TrashFailure{Error::from(holder.error())});

    const MountTable table = mounts_();
    const Mount* mount = table.of(*holder);
    const FileURL location =
        realPath(source->folder().get(), *holder).value_or(item.url.parent()).appending(source->name());
    if (const auto reason = refusal(*source, location, *holder, mount)) return unavailable(*reason);

    TrashFailure failure{Error::Case::trashUnavailable, Reason::notSupported};
    /// Answers with the end of it, unless this trash cannot take the item and another one may.
    const auto attempt =
        [&](TrashFolder::Opened trash) -> std::optional<std::expected<FileURL, TrashFailure>> {
        if (!trash) {
            failure = trash.error();
            if (!failure.reason && failure.error != Error::Case::sourceMissing)
                return std::unexpected(failure);
            return std::nullopt;
        }
        const auto name = trash->take(*source, location, now());
        if (name) return trash->locationOf(*name);
        failure = {Error::Case::trashUnavailable, Reason::notSupported};
        switch (name.error().number) {
        case EXDEV: return std::nullopt;
        case EBUSY: return unavailable(Reason::isMountPoint);
        case EINVAL: return unavailable(Reason::holdsTrash);
        case EROFS: return unavailable(Reason::readOnly);
        default: return std::unexpected(TrashFailure{Error::from(name.error())});
        }
    };
    if (mayGoHome(*holder))
        if (const auto end = attempt(TrashFolder::home(places_.homeTrash, Access::create))) return *end;
    if (!mount || mount->traits.isPseudo) return unavailable(Reason::notSupported);
    if (mount->isReadOnly) return unavailable(Reason::readOnly);

    if (const auto end = attempt(TrashFolder::shared(mount->point, places_.user, Access::create)))
        return *end;
    const bool isUnsafe = failure.reason == Reason::unsafe;
    if (isUnsafe)
        Log::error(Log::Category::operations, "unsafe .Trash in " + mount->point.path() + " is not used");
    if (const auto end =
            attempt(TrashFolder::own(mount->point, places_.user, mount->traits.holdsOwners, Access::create)))
        return *end;
    if (isUnsafe && failure.reason) failure.reason = Reason::unsafe;
    return std::unexpected(failure);
}

/// Calls `use` with every trash folder there is, each once, however many mounts lead to it. Volumes that may
/// not answer are given their time on a thread of their own.
void SystemTrash::eachFolder(const std::function<void(const TrashFolder&)>& use,
                             std::vector<FileURL>& unreadable) const {
    constexpr auto patience = std::chrono::seconds(3);
    using Folders = std::vector<TrashFolder>;
    std::set<FileIdentity> seen;
    const auto useOnce = [&](const TrashFolder& folder) {
        if (seen.insert(folder.identity()).second) use(folder);
    };
    if (const auto home = TrashFolder::home(places_.homeTrash, Access::existing)) useOnce(*home);

    const MountTable table = mounts_();
    for (const Mount& mount : table.mounts()) {
        if (mount.traits.isPseudo || !table.isVisible(mount)) continue;
        const auto find = [top = mount.point, user = places_.user, holdsOwners = mount.traits.holdsOwners] {
            Folders found;
            if (auto shared = TrashFolder::shared(top, user, Access::existing))
                found.push_back(std::move(*shared));
            if (auto own = TrashFolder::own(top, user, holdsOwners, Access::existing))
                found.push_back(std::move(*own));
            return found;
        };
        if (!mount.traits.isNetwork && !mount.traits.isFUSE) {
            for (const auto& folder : find())
                useOnce(folder);
            continue;
        }
        auto task = std::make_shared<std::packaged_task<Folders()>>(find);
        auto answer = task->get_future();
        Worker("trash probe", [task](std::stop_token) { (*task)(); }).detach();
        if (answer.wait_for(patience) != std::future_status::ready)
            unreadable.push_back(mount.point);
        else
            for (const auto& folder : answer.get())
                useOnce(folder);
    }
}

TrashListing SystemTrash::list(TrashSizes sizes, const std::stop_token& stop) {
    TrashListing listing;
    std::vector<FileURL> unreadable;
    const auto add = [&](const TrashFolder& folder) {
        if (!stop.stop_requested() && !folder.list(listing, sizes, stop)) unreadable.push_back(folder.url());
    };
    eachFolder(add, unreadable);
    listing.unreadable = std::move(unreadable);
    return listing;
}

std::optional<TrashedItem> SystemTrash::itemAt(const FileURL& location) {
    const auto folder = TrashFolder::holding(location, places_.homeTrash);
    return folder ? folder->item(std::string(location.name())) : std::nullopt;
}

void SystemTrash::forget(std::span<const FileURL> locations) {
    std::optional<TrashFolder> folder; // of the location before, as many lie in one
    FileURL files;
    for (const auto& location : locations) {
        if (location.parent() != files) {
            files = location.parent();
            folder = TrashFolder::holding(location, places_.homeTrash);
        }
        if (folder) folder->forget(std::string(location.name()));
    }
}

void SystemTrash::tidy(const std::stop_token& stop) {
    std::vector<FileURL> unreadable;
    eachFolder([&](const TrashFolder& folder) { folder.tidy(now(), stop); }, unreadable);
}

} // namespace ombrel
