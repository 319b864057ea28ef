#include "listing/MountTable.h"

#include "base/Log.h"
#include "base/OwnedFd.h"
#include "listing/BlockDevice.h"
#include "listing/POSIX.h"

#include <fcntl.h>
#include <libmount/libmount.h>
#include <poll.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cstdio>
#include <mutex>

namespace ombrel {
namespace {

struct Release {
    void operator()(libmnt_table* table) const noexcept { mnt_unref_table(table); }
    void operator()(libmnt_iter* iterator) const noexcept { mnt_free_iter(iterator); }
    void operator()(FILE* stream) const noexcept { std::fclose(stream); }
};
using Table = std::unique_ptr<libmnt_table, Release>;
using Iterator = std::unique_ptr<libmnt_iter, Release>;

std::string textOf(const char* text) {
    return text ? text : std::string();
}

void appendOptions(std::string& options, const char* more) {
    if (!more || !*more) return;
    if (!options.empty()) options.push_back(',');
    options.append(more);
}

std::optional<Mount> mountOf(libmnt_fs* entry) {
    const auto point = FileURL::fromPath(textOf(mnt_fs_get_target(entry)), FileURL::Mark::directory);
    if (!point) return std::nullopt;
    Mount mount;
    mount.id = static_cast<std::uint64_t>(mnt_fs_get_id(entry));
    mount.parentID = static_cast<std::uint64_t>(mnt_fs_get_parent_id(entry));
    mount.device = mnt_fs_get_devno(entry);
    mount.point = *point;
    mount.root = textOf(mnt_fs_get_root(entry));
    mount.source = textOf(mnt_fs_get_source(entry));
    mount.type = textOf(mnt_fs_get_fstype(entry));
    appendOptions(mount.options, mnt_fs_get_vfs_options(entry));
    appendOptions(mount.options, mnt_fs_get_fs_options(entry));
    appendOptions(mount.options, mnt_fs_get_user_options(entry));
    mount.isReadOnly = mount.hasOption("ro");
    mount.isAsleep = mount.type == "autofs";
    mount.traits = FileSystemTraits::of(mount.type);
    return mount;
}

std::vector<Mount> mountsOf(libmnt_table* table) {
    std::vector<Mount> mounts;
    const Iterator iterator(mnt_new_iter(MNT_ITER_FORWARD));
    libmnt_fs* entry = nullptr;
    while (iterator && mnt_table_next_fs(table, iterator.get(), &entry) == 0)
        if (auto mount = mountOf(entry)) mounts.push_back(std::move(*mount));
    return mounts;
}

/// Adds what the devices tell; file systems without one are left as they are.
void askDevices(std::vector<Mount>& mounts) {
    for (Mount& mount : mounts) {
        const bool isBlockFUSE = mount.type.starts_with("fuseblk");
        if (isBlockFUSE || ::major(mount.device) == 0)
            mount.blockDevice = BlockDevice::numberOf(mount.source);
        else
            mount.blockDevice = mount.device;
        if (!mount.blockDevice) continue;
        const auto device = BlockDevice::of(*mount.blockDevice);
        if (!device) continue;
        mount.isRemovable = device->isRemovable || !device->isInternal;
        if (isBlockFUSE) mount.traits = FileSystemTraits::of(mount.type, device->format);
    }
}

POSIXFailure failureOf(int result) {
    return {result < 0 ? -result : EIO};
}

/// The table of the whole process with the descriptor that tells when it is out of date.
class Current {
public:
    MountTable get() {
        const std::scoped_lock lock(mutex_);
        if (!hasChanged()) return table_;
        auto table = MountTable::read();
        if (table)
            table_ = std::move(*table);
        else
            Log::error(Log::Category::volumes, "mount table unreadable: " + table.error().systemText());
        isRead_ = table.has_value();
        return table_;
    }

private:
    /// The kernel marks an open mountinfo file once for each time that it was polled since the last change.
    bool hasChanged() {
        if (!monitor_)
            if (auto file = POSIX::open({AT_FDCWD, "/proc/self/mountinfo"}, O_RDONLY))
                monitor_ = std::move(*file);
        if (!monitor_) return true;
        pollfd query{monitor_.get(), POLLPRI, 0};
        const bool isMarked = ::poll(&query, 1, 0) > 0 && (query.revents & (POLLPRI | POLLERR));
        return isMarked || !isRead_;
    }

    std::mutex mutex_; // guards everything below
    OwnedFd monitor_;
    bool isRead_ = false;
    MountTable table_;
};

/// Never destroyed: a worker that outlives main() may still ask.
Current& process() {
    static auto& instance = *new Current;
    return instance;
}

} // namespace

std::optional<std::string_view> Mount::optionValue(std::string_view name) const noexcept {
    for (std::string_view rest = options; !rest.empty();) {
        const auto option = rest.substr(0, rest.find(','));
        rest.remove_prefix(std::min(option.size() + 1, rest.size()));
        if (!option.starts_with(name)) continue;
        if (option.size() == name.size()) return std::string_view();
        if (option[name.size()] == '=') return option.substr(name.size() + 1);
    }
    return std::nullopt;
}

MountTable::MountTable() : mounts_(std::make_shared<const std::vector<Mount>>()) {}

MountTable::MountTable(std::vector<Mount> mounts)
    : mounts_(std::make_shared<const std::vector<Mount>>(std::move(mounts))) {}

std::expected<MountTable, POSIXFailure> MountTable::read() {
    const auto fault = SystemCall::gate(SystemCall::Kind::fileSystem);
    if (fault && fault->errorNumber) return std::unexpected(POSIXFailure{fault->errorNumber});
    const Table table(mnt_new_table());
    if (!table) return std::unexpected(POSIXFailure{ENOMEM});
    // The user space's own options (x-gvfs-hide) come from the table that mount(8) keeps.
    if (const int result = mnt_table_parse_mtab(table.get(), nullptr); result != 0)
        return std::unexpected(failureOf(result));
    auto mounts = mountsOf(table.get());
    askDevices(mounts);
    return MountTable(std::move(mounts));
}

std::expected<MountTable, POSIXFailure> MountTable::fromText(std::string_view mountInfo) {
    if (mountInfo.empty()) return MountTable();
    std::string text(mountInfo);
    const std::unique_ptr<FILE, Release> stream(::fmemopen(text.data(), text.size(), "r"));
    const Table table(mnt_new_table());
    if (!stream || !table) return std::unexpected(POSIXFailure{ENOMEM});
    if (const int result = mnt_table_parse_stream(table.get(), stream.get(), "mountinfo"); result != 0)
        return std::unexpected(failureOf(result));
    return MountTable(mountsOf(table.get()));
}

MountTable MountTable::current() {
    return process().get();
}

const Mount* MountTable::byID(std::uint64_t id) const noexcept {
    const auto found = std::ranges::find(*mounts_, id, &Mount::id);
    return found == mounts_->end() ? nullptr : &*found;
}

const Mount* MountTable::of(const FileStatus& status) const noexcept {
    if (status.mountID != 0) return byID(status.mountID);
    const auto found = std::ranges::find(*mounts_, status.identity.device, &Mount::device);
    return found == mounts_->end() ? nullptr : &*found;
}

// The kernel's own way: from the outermost mount inwards, at each component into what stands there. A mount
// that was covered later by one on a folder above it is not met this way, as it is not in the kernel.
const Mount* MountTable::containing(const FileURL& url) const noexcept {
    const Mount* place = nullptr;
    for (std::size_t depth = 0; depth < mounts_->size(); ++depth) {
        const Mount* next = nullptr;
        for (const Mount& mount : *mounts_) {
            const bool standsHere = place ? mount.parentID == place->id && mount.id != place->id
                                          : mount.id == mount.parentID || !byID(mount.parentID);
            if (!standsHere || !url.isWithin(mount.point)) continue;
            if (!next || mount.point.path().size() < next->point.path().size()) next = &mount;
        }
        if (!next) break;
        place = next;
    }
    return place;
}

FileSystemTraits MountTable::traits(const FileStatus& status) const noexcept {
    const Mount* mount = of(status);
    return mount ? mount->traits : FileSystemTraits();
}

bool MountTable::isVisible(const Mount& mount) const noexcept {
    const Mount* reached = containing(mount.point);
    return reached && reached->id == mount.id;
}

bool MountTable::mayHang(const Mount& mount) const noexcept {
    const Mount* place = &mount;
    for (std::size_t depth = 0; place && depth < mounts().size(); ++depth) {
        if (place->isAsleep || !place->traits.reportsChanges()) return true;
        place = place->parentID == place->id ? nullptr : byID(place->parentID);
    }
    return false;
}

} // namespace ombrel
