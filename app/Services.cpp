#include "app/Services.h"

#include "services/FileBookmarkStore.h"
#include "services/SystemSecurityScope.h"

#include <utility>

namespace ombrel {

std::unique_ptr<AppServices> makeServices(std::unique_ptr<AppSettings> settings, Pasteboard& pasteboard) {
    return std::make_unique<AppServices>(
        std::move(settings),
        std::make_unique<AccessManager>(std::make_shared<SystemSecurityScope>(),
                                        std::make_shared<FileBookmarkStore>()),
        std::make_unique<VolumeMonitor>(), std::make_unique<ClipboardService>(pasteboard),
        FileOperationService(), std::make_unique<OperationCenter>());
}

} // namespace ombrel
