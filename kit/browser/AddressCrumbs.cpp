#include "browser/AddressCrumbs.h"

#include "base/FileName.h"
#include "browser/Places.h"
#include "services/AppServices.h"

#include <algorithm>

namespace ombrel {

std::string AddressCrumbs::nameOf(const FileURL& folder) {
    return FileName::displayText(folder.title());
}

std::string AddressCrumbs::titleOf(const FileURL& folder, const AppServices* services) {
    if (!services) return nameOf(folder);
    const auto& volumes = services->volumes().volumes();
    // Of several at one place the last one hides the others.
    const auto volume = std::ranges::find(volumes.rbegin(), volumes.rend(), folder, &VolumeInfo::url);
    const std::string title = volume == volumes.rend() ? "" : Places::titleOf(*volume).toStdString();
    return title.empty() ? nameOf(folder) : title;
}

std::vector<AddressCrumb> AddressCrumbs::of(const FileURL& location, std::span<const AddressCrumb> starts) {
    AddressCrumb first{FileURL(), nameOf(FileURL())};
    for (const AddressCrumb& start : starts)
        if (location.isWithin(start.folder) && start.folder.path().size() >= first.folder.path().size())
            first = start;
    std::vector<AddressCrumb> crumbs;
    for (FileURL folder = location; folder != first.folder; folder = folder.parent())
        crumbs.push_back({folder, nameOf(folder)});
    crumbs.push_back(std::move(first));
    std::ranges::reverse(crumbs);
    return crumbs;
}

std::vector<AddressCrumb> AddressCrumbs::startsOf(const AppServices& services, const FileURL& home) {
    // Of several at one place the last one names it.
    std::vector<AddressCrumb> starts;
    for (const VolumeInfo& volume : services.volumes().volumes()) {
        const std::string name = Places::titleOf(volume).toStdString();
        starts.push_back({volume.url, name.empty() ? nameOf(volume.url) : name});
    }
    starts.push_back({home, nameOf(home)});
    for (const auto& grant : services.access().grants())
        if (grant->isActive() && grant->url()) starts.push_back({*grant->url(), grant->displayName()});
    return starts;
}

} // namespace ombrel
