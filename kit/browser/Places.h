#pragma once

#include "base/FileURL.h"
#include "listing/PinnedFolder.h"
#include "listing/VolumeInfo.h"
#include "services/AccessGrant.h"

#include <QString>
#include <QUuid>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ombrel {

class AccessManager;
class AppSettings;

// The places that the navigation tree and the home page offer, as values for people. Names are shown text.

/// An entry of quick access.
struct PinnedPlace {
    PinnedFolder pin;
    FileURL url;
    QString title;
    QString whereabouts; ///< of a known folder its path, of another what it lies in

    friend bool operator==(const PinnedPlace&, const PinnedPlace&) = default;
};

/// A granted folder.
struct GrantedPlace {
    QUuid id;
    std::optional<FileURL> url; ///< nothing until the folder has been found for the first time
    QString title;
    QString path;
    AccessGrant::State::Case state = AccessGrant::State::Case::unavailable;
    QString reason; ///< why it is not active; empty when that is not known

    [[nodiscard]] bool isActive() const noexcept { return state == AccessGrant::State::Case::active; }
    [[nodiscard]] bool needsPermission() const noexcept {
        return state == AccessGrant::State::Case::needsReauthorization;
    }
    friend bool operator==(const GrantedPlace&, const GrantedPlace&) = default;
};

/// A mounted volume.
struct VolumePlace {
    enum class Kind : std::uint8_t { internal, removable, network };

    FileURL url;
    QString title;
    QString nature; ///< file system and kind: "ext4, internal"
    Kind kind = Kind::internal;
    std::optional<std::int64_t> total;     ///< bytes; nothing when it is not known
    std::optional<std::int64_t> available; ///< likewise
    bool canBeEjected = false;
    bool isEjecting = false;

    /// From 0 to 1; nothing when the capacity is not known.
    [[nodiscard]] std::optional<double> used() const noexcept;
    /// Whether hardly any room is left.
    [[nodiscard]] bool isNearlyFull() const noexcept;

    friend bool operator==(const VolumePlace&, const VolumePlace&) = default;
};

namespace Places {

[[nodiscard]] std::vector<PinnedPlace> pinned(const AppSettings& settings, const AccessManager& access,
                                              const FileURL& home);
[[nodiscard]] std::vector<GrantedPlace> granted(const AccessManager& access);
/// `isEjecting` stays false.
[[nodiscard]] std::vector<VolumePlace> volumes(std::span<const VolumeInfo> volumes);

/// What a volume is called: by its name, or as the system's when it has none and everything else is mounted
/// into it.
[[nodiscard]] QString titleOf(const VolumeInfo& volume);

/// The path, with "~" for the home folder.
[[nodiscard]] QString path(const FileURL& url, const FileURL& home);
/// A folder seen from the granted location that it lies in: "Projects / Field survey"; its path where there
/// is none.
[[nodiscard]] QString trail(const FileURL& url, const AccessManager& access, const FileURL& home);

} // namespace Places
} // namespace ombrel
