#pragma once

#include "services/AccessFakes.h"
#include "services/AppServices.h"
#include "services/OperationWorld.h"
#include "services/Pasteboard.h"
#include "services/ScriptedMounts.h"
#include "support/TempTree.h"

#include <memory>
#include <string>
#include <utility>

#include "qtmain/EventLoop.h"

namespace ombrel::testing {

/// The application's services over a folder of the test, scripted grants and scripted mounts.
class ServicesWorld {
public:
    ServicesWorld() {
        const SystemCall::Allowed settingsAreRead;
        services = std::make_unique<AppServices>(
            std::make_unique<AppSettings>(SettingsFile(settingsTree.url("settings.json"))),
            std::make_unique<AccessManager>(scopes, store),
            std::make_unique<VolumeMonitor>(std::unique_ptr<MountWatch>(mounts)),
            std::make_unique<ClipboardService>(pasteboard), FileOperationService(std::make_shared<NoTrash>()),
            std::make_unique<OperationCenter>());
        services->access().setFolderPicker(&picker);
        services->settings().setPinnedFolders({});
    }
    ~ServicesWorld() {
        services.reset();
        (void)runUntilQuiet();
    }
    ServicesWorld(const ServicesWorld&) = delete;
    ServicesWorld& operator=(const ServicesWorld&) = delete;

    /// Grants a folder and waits until it has been found.
    void grant(const FileURL& folder) {
        bool isDone = false;
        services->access().addGrant(folder, nullptr, [&](const auto&) { isDone = true; });
        (void)runUntil([&] { return isDone; });
    }
    void mount(const std::string& table) {
        mounts->tell(table);
        (void)runUntil([&] { return services->volumes().isSettled(); });
    }

    TempTree settingsTree;
    std::shared_ptr<ScriptedScopes> scopes = std::make_shared<ScriptedScopes>();
    std::shared_ptr<MemoryStore> store = std::make_shared<MemoryStore>();
    ScriptedPicker picker;
    ScriptedMounts* mounts = new ScriptedMounts;
    PrivatePasteboard pasteboard;
    std::unique_ptr<AppServices> services;
};

} // namespace ombrel::testing
