#include "window/World.h"

#include <sys/stat.h>

#include <filesystem>
#include <utility>

#include "window/Display.h"

namespace ombrel::bench {

World::World(const Display& display, std::string folder)
    : display_(display.name()), folder_(std::move(folder)) {
    for (const char* part : {"home", "config", "data", "cache", "state", "runtime"})
        std::filesystem::create_directories(folder_ + "/" + part);
    ::chmod((folder_ + "/runtime").c_str(), S_IRWXU);
    const std::string program = programPath("dbus-daemon");
    if (program.empty()) fail("dbus-daemon is not installed");
    bus_ = std::make_unique<Process>(
        std::vector<std::string>{program, "--session", "--nofork", "--nopidfile", "--print-address=3"},
        variables());
    busAddress_ = bus_->readLine();
    if (busAddress_.empty()) fail("the message bus does not start");
}

std::vector<std::string> World::variables() const {
    std::vector<std::string> all = {
        "DISPLAY=" + display_,
        "HOME=" + folder_ + "/home",
        "XDG_CONFIG_HOME=" + folder_ + "/config",
        "XDG_DATA_HOME=" + folder_ + "/data",
        "XDG_CACHE_HOME=" + cacheFolder(),
        "XDG_STATE_HOME=" + folder_ + "/state",
        "XDG_RUNTIME_DIR=" + folder_ + "/runtime",
        "LANG=C.UTF-8",
        "LANGUAGE=",
        // Else it mounts something in the folder that is to be removed.
        "GVFS_DISABLE_FUSE=1",
    };
    if (!busAddress_.empty()) all.push_back("DBUS_SESSION_BUS_ADDRESS=" + busAddress_);
    return all;
}

} // namespace ombrel::bench
