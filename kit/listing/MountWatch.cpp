#include "listing/MountWatch.h"

#include "base/Log.h"
#include "base/OwnedFd.h"

#include <libmount/libmount.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <stop_token>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

struct Release {
    void operator()(libmnt_monitor* monitor) const noexcept { mnt_unref_monitor(monitor); }
};
using Monitor = std::unique_ptr<libmnt_monitor, Release>;

/// Nothing when the kernel's table cannot be watched.
Monitor madeMonitor() {
    Monitor monitor(mnt_new_monitor());
    if (!monitor || mnt_monitor_enable_kernel(monitor.get(), 1) != 0) return nullptr;
    // mount(8) writes the options for desktops after the mount itself; where it keeps no such file, nothing
    // is lost.
    (void)mnt_monitor_enable_userspace(monitor.get(), 1, nullptr);
    return mnt_monitor_get_fd(monitor.get()) >= 0 ? std::move(monitor) : nullptr;
}

void watchMounts(const MountWatch::Changed& changed, const std::stop_token& stop) {
    const Monitor monitor = madeMonitor();
    if (!monitor) Log::error(Log::Category::volumes, "mounts cannot be watched");
    const OwnedFd ending(::eventfd(0, EFD_CLOEXEC));
    const std::stop_callback wake(stop, [&ending] {
        const std::uint64_t one = 1;
        (void)!::write(ending.get(), &one, sizeof one);
    });
    while (!stop.stop_requested()) {
        changed(MountTable::current());
        pollfd sources[] = {{ending.get(), POLLIN, 0},
                            {monitor ? mnt_monitor_get_fd(monitor.get()) : -1, POLLIN, 0}};
        while (::poll(sources, 2, -1) < 0 && errno == EINTR) {
        }
        if (monitor) mnt_monitor_event_cleanup(monitor.get());
    }
}

class SystemMountWatch final : public MountWatch {
public:
    void start(Changed changed) override {
        try {
            worker_ =
                Worker::sentry("ombrel-mounts", [changed = std::move(changed)](const std::stop_token& stop) {
                    watchMounts(changed, stop);
                });
        } catch (const std::system_error& failure) {
            Log::error(Log::Category::volumes, std::string("mounts are not watched: ") + failure.what());
        }
    }
    void stop() override { worker_ = Worker(); }

private:
    Worker worker_;
};

} // namespace

std::unique_ptr<MountWatch> MountWatch::system() {
    return std::make_unique<SystemMountWatch>();
}

} // namespace ombrel
