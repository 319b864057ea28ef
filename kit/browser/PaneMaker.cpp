#include "browser/PaneMaker.h"

#include "browser/BrowserModel.h"
#include "services/AppServices.h"

namespace ombrel {
namespace {

ItemFilter filterOf(const AppSettings& settings) {
    return {.showsHidden = settings.showHiddenFiles(),
            .showsProtected = !settings.hideProtectedSystemFiles()};
}

} // namespace

std::unique_ptr<BrowserModel> makePane(AppServices& services) {
    auto pane = std::make_unique<BrowserModel>(
        [&directories = services.directories()](const DirectoryRequest& request) {
            return directories.snapshots(request);
        });
    pane->setServices(services);
    const AppSettings& settings = services.settings();
    pane->setFilter(filterOf(settings));
    pane->setViewMode(settings.showsIcons() ? ViewMode::icons : ViewMode::details);
    QObject::connect(
        &settings, &AppSettings::changed, pane.get(), [&settings, made = pane.get()](Setting setting) {
            if (setting == Setting::showHiddenFiles || setting == Setting::hideProtectedSystemFiles)
                made->setFilter(filterOf(settings));
        });
    return pane;
}

} // namespace ombrel
