#include "listing/SubfolderProbe.h"

#include "listing/FileVisibility.h"
#include "listing/HiddenNames.h"
#include "listing/POSIX.h"

#include <optional>

namespace ombrel {
namespace {

bool isFolder(int folder, const POSIX::DirectoryEntry& entry) {
    if (entry.type == DT_DIR) return true;
    if (entry.type != DT_LNK && entry.type != DT_UNKNOWN) return false;
    const auto status = POSIX::statFollowing({folder, entry.name.data()});
    return status && status->isDirectory();
}

} // namespace

SubfolderProbe::Answer SubfolderProbe::look(const FileURL& folder, const std::stop_token& stop) const {
    auto stream = POSIX::openDirectory(folder);
    if (!stream) return Answer::likely;
    std::optional<HiddenNames> hidden; // read only where there is something that it could hide
    for (int count = 0; count < mostEntries && !stop.stop_requested(); ++count) {
        const auto entry = POSIX::readEntry(*stream);
        if (!entry) return Answer::likely;
        if (!*entry) return Answer::none;
        const std::string_view name = (*entry)->name;
        if (!showsHidden && name.starts_with('.')) continue;
        if (!showsProtected && FileVisibility::isProtectedSystemItem(name)) continue;
        if (!isFolder(stream->fd(), **entry)) continue;
        if (!showsHidden) {
            if (!hidden) hidden = HiddenNames::read(stream->fd());
            if (hidden->contains(name)) continue;
        }
        return Answer::some;
    }
    return Answer::likely;
}

} // namespace ombrel
