#include "browser/DroppedFolders.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "browser/BrowserTabsModel.h"
#include "listing/POSIX.h"

#include <system_error>
#include <utility>

namespace ombrel {
namespace {

/// More would be a slip of the hand.
constexpr std::size_t mostFolders = 30;

bool isFolder(const FileURL& item) {
    const auto status = POSIX::statFollowing(item);
    return status && status->isDirectory();
}

} // namespace

void DroppedFolders::openAsTabs(QPointer<BrowserTabsModel> tabs, std::vector<FileURL> items) {
    try {
        Worker("ombrel-dropped", [tabs = std::move(tabs), items = std::move(items)](const std::stop_token&) {
            std::vector<FileURL> folders;
            for (const FileURL& item : items)
                if (folders.size() < mostFolders && isFolder(item)) folders.push_back(item);
            MainThread::post([tabs, folders = std::move(folders)] {
                if (!tabs) return;
                // Each opens right beside the active one.
                using enum BrowserTabsModel::Activation;
                for (std::size_t i = folders.size(); i-- > 0;)
                    tabs->addTab(folders[i], i == 0 ? activate : stayBehind);
            });
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread left nothing opens.
    }
}

} // namespace ombrel
