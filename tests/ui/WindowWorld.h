#pragma once

#include "services/AccessFakes.h"
#include "services/AppServices.h"
#include "ui/BrowserWindow.h"
#include "ui/FileView.h"
#include "ui/ViewWorld.h"

#include <memory>
#include <string>

namespace ombrel::testing {

/// Services over a settings file, a clipboard and grants of a test's own; nothing is started.
class TestServices {
public:
    explicit TestServices(const FileURL& settingsFile)
        : services_(std::make_unique<AppSettings>(SettingsFile(settingsFile), std::nullopt),
                    std::make_unique<AccessManager>(std::make_shared<ScriptedScopes>(),
                                                    std::make_shared<MemoryStore>()),
                    std::make_unique<VolumeMonitor>(), std::make_unique<ClipboardService>(pasteboard_),
                    FileOperationService(), std::make_unique<OperationCenter>()) {}

    [[nodiscard]] AppServices& operator*() noexcept { return services_; }
    [[nodiscard]] AppServices* operator->() noexcept { return &services_; }

private:
    PrivatePasteboard pasteboard_;
    AppServices services_;
};

/// A window over a folder of its own.
class WindowWorld : public ::testing::Test {
protected:
    WindowWorld()
        : services(tree.url("settings.json")), settings(services->settings()),
          window({.theme = quietTheme(),
                  .services = *services,
                  .home = tree.url(),
                  .startingAt = tree.folder("Projects")}) {
        tree.folder("Projects/Reports");
        tree.file("Projects/one.txt", "12345");
        tree.file("Projects/two.txt", "1234567890");
        window.setAttribute(Qt::WA_DeleteOnClose, false);
        constexpr int width = 900, height = 600;
        window.resize(width, height);
        window.show();
    }
    void open(const FileURL& folder) {
        window.model().navigate(folder);
        ASSERT_TRUE(runUntil([&] { return window.model().listingState() != ListingState::Case::loading; }));
        QApplication::processEvents();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, QWidget* on = nullptr) {
        QTest::keyClick(on ? on : &window.view(), key, modifiers);
    }
    [[nodiscard]] std::string title() const { return window.windowTitle().toStdString(); }

    TempTree tree;
    TestServices services;
    AppSettings& settings;
    BrowserWindow window;
};

} // namespace ombrel::testing
