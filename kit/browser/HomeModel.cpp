#include "browser/HomeModel.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "listing/POSIX.h"
#include "services/VolumeEjector.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace ombrel {

HomeModel::HomeModel(AppServices& services, FileURL home, QObject* parent)
    : QObject(parent), services_(services), home_(std::move(home)) {
    connect(&services.settings(), &AppSettings::changed, this, [this](Setting setting) {
        if (setting == Setting::pinnedFolders) refreshPins();
        if (setting == Setting::foldedHomeSections) refreshFolds();
    });
    connect(&services.settings(), &AppSettings::knownFoldersChanged, this, &HomeModel::refreshPins);
    connect(&services.access(), &AccessManager::grantsChanged, this, [this] {
        refreshLocations();
        refreshPins(); // which say where they lie
    });
    connect(&services.volumes(), &VolumeMonitor::volumesChanged, this, &HomeModel::refreshVolumes);
    refreshFolds();
    refreshPins();
    refreshLocations();
    refreshVolumes();
}

std::size_t HomeModel::count(Section section) const noexcept {
    switch (section) {
    case Section::quickAccess: return pins_.size();
    case Section::locations: return locations_.size();
    case Section::volumes: return volumes_.size();
    }
    std::unreachable();
}

void HomeModel::setFolded(Section section, bool folded) {
    if (isFolded(section) == folded) return;
    auto sections = services_.settings().foldedHomeSections();
    if (folded)
        sections.emplace_back(rawValue(section));
    else
        std::erase(sections, rawValue(section));
    services_.settings().setFoldedHomeSections(std::move(sections));
}

void HomeModel::refreshFolds() {
    const auto& sections = services_.settings().foldedHomeSections();
    for (std::size_t i = 0; i < sectionCount; ++i) {
        const auto section = static_cast<Section>(i);
        const bool isFolded = std::ranges::find(sections, rawValue(section)) != sections.end();
        if (std::exchange(isFolded_[i], isFolded) != isFolded) Q_EMIT foldedChanged(section);
    }
}

bool HomeModel::isPinned(const FileURL& url) const {
    return std::ranges::any_of(
        pins_, [&](const PinnedPlace& pin) { return pin.url.standardized() == url.standardized(); });
}

void HomeModel::refreshPins() {
    auto pins = Places::pinned(services_.settings(), services_.access(), home_);
    if (pins == pins_) return;
    pins_ = std::move(pins);
    Q_EMIT changed(Section::quickAccess);
}

void HomeModel::refreshLocations() {
    auto locations = Places::granted(services_.access());
    if (locations == locations_) return;
    locations_ = std::move(locations);
    Q_EMIT changed(Section::locations);
}

void HomeModel::refreshVolumes() {
    auto volumes = Places::volumes(services_.volumes().volumes());
    for (VolumePlace& volume : volumes)
        volume.isEjecting = ejector_ && ejector_->isWorking(volume.url);
    if (volumes == volumes_) return;
    volumes_ = std::move(volumes);
    Q_EMIT changed(Section::volumes);
}

void HomeModel::pin(const std::vector<FileURL>& urls, std::size_t before) {
    try {
        Worker("ombrel-pin", [self = QPointer(this), urls, before](const std::stop_token&) {
            std::vector<FileURL> folders;
            for (const FileURL& url : urls) {
                const auto status = POSIX::statFollowing(url);
                if (status && status->isDirectory())
                    folders.push_back(url.standardized().marked(FileURL::Mark::directory));
            }
            MainThread::post([self, before, folders = std::move(folders)] {
                if (self) self->place(folders, before);
            });
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread nothing is pinned; the user sees that and tries again.
        return;
    }
}

void HomeModel::place(const std::vector<FileURL>& folders, std::size_t before) {
    if (folders.empty()) return;
    AppSettings& settings = services_.settings();
    settings.pin(folders);
    const auto& known = settings.knownFolders();
    const auto isPlaced = [&](const PinnedFolder& pin) {
        return std::ranges::find(folders, pin.url(known).standardized()) != folders.end();
    };
    const auto all = settings.pinnedFolders();
    const auto middle = std::min(before, all.size());
    std::vector<PinnedFolder> ordered;
    const auto add = [&](std::size_t from, std::size_t to, bool placed) {
        for (std::size_t i = from; i < to; ++i)
            if (isPlaced(all[i]) == placed) ordered.push_back(all[i]);
    };
    add(0, middle, false);
    add(0, all.size(), true);
    add(middle, all.size(), false);
    settings.setPinnedFolders(std::move(ordered));
}

void HomeModel::movePin(std::size_t from, std::size_t before) {
    if (from < pins_.size()) place({pins_[from].url.standardized()}, before);
}

void HomeModel::unpin(const FileURL& url) {
    services_.settings().unpin({&url, 1});
}

AccessManager::Grant HomeModel::grantOf(const QUuid& id) const {
    const auto& grants = services_.access().grants();
    const auto found = std::ranges::find(grants, id, [](const auto& grant) { return grant->id(); });
    return found == grants.end() ? nullptr : *found;
}

void HomeModel::requestAccess(const AccessManager::Grant& grant) {
    services_.access().requestAccess(grant ? grant->url() : std::nullopt,
                                     grant ? "access.panel.reauthorize" : "access.panel.message", grant,
                                     [self = QPointer(this)](const AccessManager::Grant& granted) {
                                         if (self && granted && granted->isActive())
                                             Q_EMIT self->allowed(*granted->url());
                                     });
}

void HomeModel::addLocation() {
    requestAccess(nullptr);
}

void HomeModel::allowAgain(const QUuid& id) {
    if (const auto grant = grantOf(id)) requestAccess(grant);
}

void HomeModel::removeLocation(const QUuid& id) {
    const auto grant = grantOf(id);
    if (!grant || !prompter_) return;
    BrowserQuestion question{.kind = BrowserQuestion::Kind::removeLocation, .items = {}, .count = 1};
    if (grant->url()) question.items.push_back({*grant->url(), std::nullopt});
    prompter_->ask(question, [self = QPointer(this), id](const BrowserAnswer& answer) {
        if (!self || answer.choice != BrowserAnswer::Choice::accept) return;
        if (const auto present = self->grantOf(id)) self->services_.access().remove(present);
    });
}

void HomeModel::setEjector(VolumeEjector* ejector) {
    if (ejector_) disconnect(ejector_, nullptr, this, nullptr);
    ejector_ = ejector;
    if (ejector) connect(ejector, &VolumeEjector::workingChanged, this, &HomeModel::refreshVolumes);
    refreshVolumes();
}

void HomeModel::eject(const FileURL& volume) {
    if (!ejector_ || ejector_->isWorking(volume)) return;
    ejector_->eject(volume, [self = QPointer(this)](const std::expected<void, Text>& done) {
        if (self && !done && self->prompter_) self->prompter_->tell(done.error());
    });
}

} // namespace ombrel
