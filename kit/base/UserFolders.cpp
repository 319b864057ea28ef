#include "base/UserFolders.h"

#include "base/PathInput.h"

#include <cstdlib>
#include <optional>
#include <string_view>

namespace ombrel::UserFolders {
namespace {

std::optional<FileURL> variable(const char* name) {
    const char* value = std::getenv(name);
    const auto url = FileURL::fromPath(value ? value : "", FileURL::Mark::directory);
    return url ? std::optional(*url) : std::nullopt;
}

FileURL home() {
    const auto set = variable("HOME");
    return set ? *set : PathInput::userHomeDirectory();
}

FileURL folder(const char* name, std::string_view belowHome) {
    if (const auto set = variable(name)) return *set;
    return home().appending(belowHome, FileURL::Mark::directory);
}

} // namespace

FileURL config() {
    return folder("XDG_CONFIG_HOME", ".config");
}

FileURL data() {
    return folder("XDG_DATA_HOME", ".local/share");
}

FileURL cache() {
    return folder("XDG_CACHE_HOME", ".cache");
}

FileURL ours(const FileURL& folder) {
    return folder.appending("HalvaneOmbrel", FileURL::Mark::directory);
}

} // namespace ombrel::UserFolders
