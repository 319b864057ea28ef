#pragma once

#include "base/FileURL.h"
#include "base/RawValue.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ombrel {

/// One of the six standard folders of a user. The raw values are stored.
enum class KnownFolder : std::uint8_t { desktop, downloads, documents, pictures, music, videos };

template <>
struct RawValues<KnownFolder> {
    static constexpr std::string_view names[] = {"desktop",  "downloads", "documents",
                                                 "pictures", "music",     "videos"};
};

/// All six, in the order in which they are shown.
[[nodiscard]] std::span<const KnownFolder> allKnownFolders() noexcept;

/// "knownFolder." followed by the raw value.
[[nodiscard]] std::string_view titleKey(KnownFolder folder) noexcept;

/// Where the six stand for one user. A plain value.
class KnownFolders {
public:
    /// By the table of names that holds where the desktop says nothing else: Desktop, Downloads, Documents,
    /// Pictures, Music, Movies, all in `home`.
    explicit KnownFolders(FileURL home);

    [[nodiscard]] const FileURL& home() const noexcept { return home_; }
    [[nodiscard]] const FileURL& url(KnownFolder folder) const noexcept;
    void set(KnownFolder folder, FileURL url);

    friend bool operator==(const KnownFolders&, const KnownFolders&) = default;

private:
    FileURL home_;
    std::array<FileURL, std::size(RawValues<KnownFolder>::names)> urls_;
};

} // namespace ombrel
