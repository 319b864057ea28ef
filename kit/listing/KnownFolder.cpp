#include "listing/KnownFolder.h"

#include <utility>

namespace ombrel {
namespace {

struct Facts {
    KnownFolder folder;
    std::string_view name;
    std::string_view titleKey;
};

constexpr std::array<Facts, 6> table = {{
    {KnownFolder::desktop, "Desktop", "knownFolder.desktop"},
    {KnownFolder::downloads, "Downloads", "knownFolder.downloads"},
    {KnownFolder::documents, "Documents", "knownFolder.documents"},
    {KnownFolder::pictures, "Pictures", "knownFolder.pictures"},
    {KnownFolder::music, "Music", "knownFolder.music"},
    {KnownFolder::videos, "Movies", "knownFolder.videos"},
}};

} // namespace

std::span<const KnownFolder> allKnownFolders() noexcept {
    static constexpr std::array all = {KnownFolder::desktop,  KnownFolder::downloads, KnownFolder::documents,
                                       KnownFolder::pictures, KnownFolder::music,     KnownFolder::videos};
    return all;
}

std::string_view titleKey(KnownFolder folder) noexcept {
    return table[std::to_underlying(folder)].titleKey;
}

KnownFolders::KnownFolders(FileURL home) : home_(std::move(home)) {
    for (const auto& [folder, name, key] : table)
        urls_[std::to_underlying(folder)] = home_.appending(name, FileURL::Mark::directory);
}

const FileURL& KnownFolders::url(KnownFolder folder) const noexcept {
    return urls_[std::to_underlying(folder)];
}

void KnownFolders::set(KnownFolder folder, FileURL url) {
    urls_[std::to_underlying(folder)] = std::move(url);
}

} // namespace ombrel
