#include "browser/FolderAccess.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "listing/POSIX.h"
#include "services/AppServices.h"

#include <QPointer>

#include <cerrno>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

/// Everything else that keeps a folder from being listed is better told by the listing.
bool isForbidden(const FileURL& url) {
    const auto folder = POSIX::openDirectory(url);
    return !folder && (folder.error().number == EACCES || folder.error().number == EPERM);
}

} // namespace

FolderAccess::FolderAccess(AppServices& services, QObject* parent) : QObject(parent), services_(&services) {}

bool FolderAccess::isCovered(const FileURL& url) const {
    return services_->access().grantCovering(url) != nullptr;
}

bool FolderAccess::isAuthorized(const PinnedFolder& folder) const {
    const FileURL& url = folder.url(services_->settings().knownFolders());
    return !forbidden_.contains(url) || isCovered(url);
}

void FolderAccess::refresh(std::span<const PinnedFolder> folders) {
    for (const auto& folder : folders)
        look(folder.url(services_->settings().knownFolders()), {});
}

void FolderAccess::look(const FileURL& url, std::function<void(bool)> done) {
    try {
        Worker("ombrel-access", [self = QPointer(this), url, done](const std::stop_token&) {
            MainThread::post([self, url, done, forbidden = isForbidden(url)] {
                if (!self) return;
                self->learn(url, forbidden);
                if (done) done(forbidden);
            });
        }).detach();
    } catch (const std::system_error&) {
        // The listing will tell.
        if (done) done(false);
    }
}

void FolderAccess::learn(const FileURL& url, bool isForbidden) {
    const bool isNews = isForbidden ? forbidden_.insert(url).second : forbidden_.erase(url) > 0;
    if (isNews) Q_EMIT changed();
}

void FolderAccess::openPinned(BrowserModel& pane, const PinnedFolder& folder, Prompting prompting) {
    const FileURL& url = folder.url(services_->settings().knownFolders());
    if (prompting == Prompting::no || isCovered(url)) return pane.navigate(url);
    look(url, [this, url, guard = QPointer(&pane), generation = pane.generation()](bool forbidden) {
        // The user may have gone elsewhere meanwhile.
        if (!guard || guard->generation() != generation) return;
        if (!forbidden) return guard->navigate(url);
        services_->access().requestAccess(url, "access.panel.knownFolder", nullptr,
                                          [guard](const AccessManager::Grant& grant) {
                                              if (guard && grant && grant->url())
                                                  guard->navigate(*grant->url());
                                          });
    });
}

} // namespace ombrel
