#include "listing/UserDirectories.h"

#include "listing/MountTable.h"
#include "listing/POSIX.h"
#include "listing/StoreFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

namespace ombrel::UserDirectories {
namespace {

constexpr std::array<std::pair<std::string_view, KnownFolder>, 6> names = {{
    {"XDG_DESKTOP_DIR", KnownFolder::desktop},
    {"XDG_DOWNLOAD_DIR", KnownFolder::downloads},
    {"XDG_DOCUMENTS_DIR", KnownFolder::documents},
    {"XDG_PICTURES_DIR", KnownFolder::pictures},
    {"XDG_MUSIC_DIR", KnownFolder::music},
    {"XDG_VIDEOS_DIR", KnownFolder::videos},
}};

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

/// What stands between double quotes, with the quoting taken away.
std::optional<std::string> unquoted(std::string_view value) {
    if (!value.starts_with('"')) return std::nullopt;
    std::string text;
    for (std::size_t i = 1; i < value.size(); ++i) {
        if (value[i] == '"') return text;
        if (value[i] == '\\' && i + 1 < value.size()) ++i;
        text.push_back(value[i]);
    }
    return std::nullopt;
}

std::optional<FileURL> located(std::string_view value, const FileURL& home) {
    constexpr std::string_view homeVariable = "$HOME";
    auto path = unquoted(value);
    if (!path) return std::nullopt;
    if (*path == homeVariable || path->starts_with("$HOME/"))
        path->replace(0, homeVariable.size(), home.path());
    const auto url = FileURL::fromPath(*path, FileURL::Mark::directory);
    if (!url || *url == home) return std::nullopt;
    return *url;
}

/// Calls `use` with the name and the value of each line that sets something.
template <typename Use>
void eachSetting(std::string_view text, Use use) {
    for (std::size_t start = 0; start < text.size();) {
        const auto end = std::min(text.find('\n', start), text.size());
        const auto line = trimmed(text.substr(start, end - start));
        start = end + 1;
        const auto equals = line.find('=');
        if (line.starts_with('#') || equals == std::string_view::npos) continue;
        use(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
}

bool isThere(const FileURL& url, const MountTable& table) {
    // Nothing, not even the end of the program, frees a thread that waits for a FUSE process.
    if (const Mount* mount = table.containing(url); mount && table.mayHang(*mount)) return true;
    const auto status = POSIX::statFollowing(url);
    return status && status->isDirectory();
}

} // namespace

void configure(std::string_view text, KnownFolders& folders) {
    const FileURL home = folders.home();
    eachSetting(text, [&](std::string_view variable, std::string_view value) {
        for (const auto& [name, folder] : names)
            if (variable == name)
                if (auto url = located(value, home)) folders.set(folder, *std::move(url));
    });
}

KnownFolders read(const FileURL& home, const FileURL& config) {
    const KnownFolders byTable(home);
    const auto text = StoreFile(config.appending("user-dirs.dirs")).read();
    if (!text || !*text) return byTable;
    KnownFolders folders = byTable;
    configure(**text, folders);
    const auto table = MountTable::current();
    for (const KnownFolder folder : allKnownFolders())
        if (!isThere(folders.url(folder), table)) folders.set(folder, byTable.url(folder));
    return folders;
}

std::optional<FileURL> templates(const FileURL& home, const FileURL& config) {
    std::optional<FileURL> found = home.appending("Templates", FileURL::Mark::directory);
    const auto text = StoreFile(config.appending("user-dirs.dirs")).read();
    if (text && *text)
        eachSetting(**text, [&](std::string_view variable, std::string_view value) {
            if (variable == "XDG_TEMPLATES_DIR") found = located(value, home);
        });
    return found;
}

} // namespace ombrel::UserDirectories
