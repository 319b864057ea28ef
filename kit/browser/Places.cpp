#include "browser/Places.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "services/AccessManager.h"
#include "services/AppSettings.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace ombrel {
namespace {

constexpr double nearlyFull = 0.9;

QString shown(std::string_view bytes) {
    return QString::fromStdString(FileName::displayText(bytes));
}

QString textOf(std::string_view key) {
    return QString::fromStdString(Texts::localized(key));
}

std::optional<std::int64_t> bytesOf(const Metadata<std::int64_t>& value) {
    return value.hasValue() && value.value() >= 0 ? std::optional(value.value()) : std::nullopt;
}

bool isTrue(const Metadata<bool>& flag) {
    return flag.hasValue() && flag.value();
}

VolumePlace::Kind kindOf(const VolumeInfo& volume) {
    if (volume.isLocal.hasValue() && !volume.isLocal.value()) return VolumePlace::Kind::network;
    const bool isOutside = volume.isInternal.hasValue() && !volume.isInternal.value();
    const bool comesAndGoes = isTrue(volume.isRemovable) || isTrue(volume.isEjectable);
    return isOutside || comesAndGoes ? VolumePlace::Kind::removable : VolumePlace::Kind::internal;
}

/// File systems as people write them.
QString fileSystemName(const std::string& type) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 13> names = {
        {{"vfat", "FAT32"},
         {"msdos", "FAT"},
         {"exfat", "exFAT"},
         {"fuse.exfat", "exFAT"},
         {"ntfs", "NTFS"},
         {"ntfs3", "NTFS"},
         {"fuseblk", "FUSE"},
         {"nfs", "NFS"},
         {"nfs4", "NFS"},
         {"cifs", "SMB"},
         {"smb3", "SMB"},
         {"fuse.sshfs", "SSH"},
         {"iso9660", "ISO 9660"}}};
    const auto known = std::ranges::find(names, type, [](const auto& name) { return name.first; });
    return shown(known == names.end() ? std::string_view(type) : known->second);
}

QString natureOf(const VolumeInfo& volume, VolumePlace::Kind kind) {
    QStringList facts;
    if (volume.fileSystemType.hasValue() && !volume.fileSystemType.value().empty())
        facts << fileSystemName(volume.fileSystemType.value());
    switch (kind) {
    case VolumePlace::Kind::internal: facts << textOf("ui.volume.internal"); break;
    case VolumePlace::Kind::removable: facts << textOf("ui.volume.removable"); break;
    case VolumePlace::Kind::network: facts << textOf("ui.volume.network"); break;
    }
    if (!volume.isReadOnly.hasValue())
        facts << textOf("volume.readOnlyUnknown");
    else if (volume.isReadOnly.value())
        facts << textOf("ui.volume.readOnly");
    return facts.join(QStringLiteral(", "));
}

} // namespace

std::optional<double> VolumePlace::used() const noexcept {
    if (!total || !available || *total <= 0) return std::nullopt;
    const auto left = static_cast<double>(std::min(*available, *total));
    return 1 - left / static_cast<double>(*total);
}

bool VolumePlace::isNearlyFull() const noexcept {
    return used().value_or(0) >= nearlyFull;
}

namespace Places {

std::vector<PinnedPlace> pinned(const AppSettings& settings, const AccessManager& access,
                                const FileURL& home) {
    std::vector<PinnedPlace> places;
    for (const PinnedFolder& pin : settings.pinnedFolders()) {
        const FileURL& url = pin.url(settings.knownFolders());
        places.push_back({pin, url, QString::fromStdString(pin.title()),
                          pin.known() ? path(url, home) : trail(url.parent(), access, home)});
    }
    return places;
}

std::vector<GrantedPlace> granted(const AccessManager& access) {
    std::vector<GrantedPlace> places;
    for (const auto& grant : access.grants())
        places.push_back({.id = grant->id(),
                          .url = grant->url(),
                          .title = QString::fromStdString(grant->displayName()),
                          .path = grant->url() ? shown(grant->url()->path()) : QString(),
                          .state = grant->state().which,
                          .reason = QString::fromStdString(grant->state().message())});
    return places;
}

std::vector<VolumePlace> volumes(std::span<const VolumeInfo> volumes) {
    std::vector<VolumePlace> places;
    for (const VolumeInfo& volume : volumes) {
        const auto kind = kindOf(volume);
        places.push_back({.url = volume.url.marked(FileURL::Mark::directory),
                          .title = titleOf(volume),
                          .nature = natureOf(volume, kind),
                          .kind = kind,
                          .total = bytesOf(volume.totalCapacity),
                          .available = bytesOf(volume.availableCapacity),
                          .canBeEjected = !volume.isRootFileSystem &&
                                          (isTrue(volume.isEjectable) || isTrue(volume.isRemovable)),
                          .isEjecting = false});
    }
    return places;
}

QString titleOf(const VolumeInfo& volume) {
    const bool isNamed = volume.name.hasValue() && !volume.name.value().empty();
    if (!isNamed && volume.isRootFileSystem) return textOf("ui.volume.system");
    return QString::fromStdString(volume.displayName());
}

QString path(const FileURL& url, const FileURL& home) {
    if (!url.isWithin(home) || home.isRoot()) return shown(url.path());
    return QLatin1Char('~') + shown(std::string_view(url.path()).substr(home.path().size()));
}

QString trail(const FileURL& url, const AccessManager& access, const FileURL& home) {
    const auto grant = access.grantCovering(url);
    if (!grant || grant->url()->isRoot()) return path(url, home);
    QStringList names;
    for (FileURL folder = url.standardized(); folder != grant->url()->standardized();
         folder = folder.parent())
        names.prepend(shown(folder.name()));
    names.prepend(QString::fromStdString(grant->displayName()));
    return names.join(QStringLiteral(" / "));
}

} // namespace Places
} // namespace ombrel
