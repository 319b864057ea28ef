#pragma once

#include "base/RawValue.h"
#include "browser/BrowserPrompter.h"
#include "browser/Places.h"
#include "services/AppServices.h"

#include <QObject>
#include <QPointer>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string_view>
#include <vector>

namespace ombrel {

class VolumeEjector;

/// What the home page and the top of the navigation tree show: pinned folders, granted locations and volumes,
/// kept up to date, and what can be done to them.
///
/// Main thread only, and it never blocks.
class HomeModel final : public QObject {
    Q_OBJECT

public:
    enum class Section : std::uint8_t { quickAccess, locations, volumes };
    static constexpr std::size_t sectionCount = 3;

    /// `services` must outlive it; `home` is what "~" stands for.
    HomeModel(AppServices& services, FileURL home, QObject* parent = nullptr);

    [[nodiscard]] const std::vector<PinnedPlace>& pins() const noexcept { return pins_; }
    [[nodiscard]] const std::vector<GrantedPlace>& locations() const noexcept { return locations_; }
    [[nodiscard]] const std::vector<VolumePlace>& volumes() const noexcept { return volumes_; }
    /// How many entries a section has.
    [[nodiscard]] std::size_t count(Section section) const noexcept;

    /// Whether the entries of a section are put away: in all windows, and from one start to the next.
    [[nodiscard]] bool isFolded(Section section) const noexcept {
        return isFolded_[static_cast<std::size_t>(section)];
    }
    void setFolded(Section section, bool folded);

    // ---- Quick access
    [[nodiscard]] bool isPinned(const FileURL& url) const;
    /// Pins those of `urls` that are folders (a worker looks) in front of the pin that is now at `before`, or
    /// at the end. What is pinned already is moved there.
    void pin(const std::vector<FileURL>& urls, std::size_t before);
    /// Puts the pin at `from` in front of the one that is now at `before`.
    void movePin(std::size_t from, std::size_t before);
    void unpin(const FileURL& url);

    // ---- Locations
    /// Lets the user pick a folder; of a grant that needs permission, that folder again.
    void addLocation();
    void allowAgain(const QUuid& id);
    /// Asks first.
    void removeLocation(const QUuid& id);

    // ---- Volumes
    /// Who takes volumes out of use; nobody at first.
    void setEjector(VolumeEjector* ejector);
    void eject(const FileURL& volume);

    /// Who asks and tells the user; held weakly. Without one nothing that is asked about is done.
    void setPrompter(BrowserPrompter* prompter) { prompter_ = prompter; }

Q_SIGNALS:
    /// Entries of the section came, went, moved or changed.
    void changed(ombrel::HomeModel::Section section);
    void foldedChanged(ombrel::HomeModel::Section section);
    /// A location has been allowed and can be opened.
    void allowed(const ombrel::FileURL& url);

private:
    void refreshFolds();
    void refreshPins();
    void refreshLocations();
    void refreshVolumes();
    void place(const std::vector<FileURL>& folders, std::size_t before);
    [[nodiscard]] AccessManager::Grant grantOf(const QUuid& id) const;
    void requestAccess(const AccessManager::Grant& grant);

    AppServices& services_;
    const FileURL home_;
    std::vector<PinnedPlace> pins_;
    std::vector<GrantedPlace> locations_;
    std::vector<VolumePlace> volumes_;
    std::array<bool, sectionCount> isFolded_{};
    QPointer<VolumeEjector> ejector_;
    QPointer<BrowserPrompter> prompter_;
};

/// As the settings name them.
template <>
struct RawValues<HomeModel::Section> {
    static constexpr std::string_view names[] = {"quickAccess", "locations", "volumes"};
};

} // namespace ombrel
