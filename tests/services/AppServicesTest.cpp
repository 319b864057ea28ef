#include "services/AppServices.h"

#include "services/AccessFakes.h"
#include "services/OperationWorld.h"
#include "services/Pasteboard.h"
#include "services/ScriptedMounts.h"
#include "support/TempTree.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using testing::KitWorld;
using testing::MemoryStore;
using testing::Presenter;
using testing::runUntil;
using testing::runUntilQuiet;
using testing::ScriptedMounts;
using testing::ScriptedScopes;
using testing::TempTree;
using Event = VolumeMonitor::Event;
using State = AccessGrant::State;

class Services : public ::testing::Test {
protected:
    Services() {
        scopes->failures["/mnt/stick/folder"] = {true, "posix", 2};
        store->add("/mnt/stick/folder");
        const SystemCall::Allowed settingsAreRead;
        services = std::make_unique<AppServices>(
            std::make_unique<AppSettings>(SettingsFile(tree.url("settings.json"))),
            std::make_unique<AccessManager>(scopes, store),
            std::make_unique<VolumeMonitor>(std::unique_ptr<MountWatch>(watch)),
            std::make_unique<ClipboardService>(pasteboard),
            FileOperationService(std::make_shared<testing::NoTrash>()), std::make_unique<OperationCenter>());
        services->makeProgressWindow = [this](OperationCenter&) {
            ++windows;
            return std::make_unique<Presenter>();
        };
    }
    void TearDown() override {
        services.reset();
        EXPECT_TRUE(runUntilQuiet());
    }
    void mount(const std::string& table) {
        watch->tell(table);
        ASSERT_TRUE(runUntilQuiet());
    }

    KitWorld world;
    TempTree tree;
    std::shared_ptr<ScriptedScopes> scopes = std::make_shared<ScriptedScopes>();
    std::shared_ptr<MemoryStore> store = std::make_shared<MemoryStore>();
    ScriptedMounts* watch = new ScriptedMounts;
    PrivatePasteboard pasteboard;
    std::unique_ptr<AppServices> services;
    int windows = 0;
};

TEST_F(Services, StartOnceHoweverOftenTheyAreToldTo) {
    EXPECT_FALSE(watch->isStarted());
    EXPECT_EQ(services->progressWindow(), nullptr);
    services->start();
    auto* const window = services->progressWindow();
    services->start();
    EXPECT_EQ(watch->starts, 1);
    EXPECT_EQ(windows, 1);
    EXPECT_EQ(services->progressWindow(), window);
    services->stop();
    EXPECT_FALSE(watch->isStarted());
}

TEST_F(Services, ReadCapacitiesAgainWhenTheApplicationComesToTheFront) {
    // One look for each activation shows that there is one observer.
    int looks = 0;
    services->volumes().includesVolume = [&looks](const FileURL&) { return ++looks > 0; };
    const auto activate = [] {
        QMetaObject::invokeMethod(QCoreApplication::instance(), "applicationStateChanged",
                                  Q_ARG(Qt::ApplicationState, Qt::ApplicationActive));
    };
    services->start();
    services->start();
    mount("2 1 0:2 / /mnt/a rw - tmpfs tmpfs rw\n");
    const int atStart = looks;
    activate();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(looks, atStart + 1);
    services->stop();
    activate();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(looks, atStart + 1);
}

TEST_F(Services, LookForGrantsAgainWhenAVolumeComesBack) {
    services->start();
    mount("");
    ASSERT_FALSE(services->access().grants().empty());
    const auto grant = services->access().grants().front();
    ASSERT_TRUE(runUntil([&] { return !services->access().isBusy(); }));
    EXPECT_EQ(grant->state().which, State::Case::unavailable);
    EXPECT_EQ(services->lastVolumeEvent(), std::nullopt);
    scopes->failures.clear();
    mount("2 1 0:2 / /mnt/stick rw - tmpfs tmpfs rw\n");
    EXPECT_EQ(services->lastVolumeEvent(), (Event{Event::Kind::mounted, *FileURL::fromPath("/mnt/stick")}));
    EXPECT_TRUE(runUntil([&] { return grant->state().which == State::Case::active; }));
    mount("");
    EXPECT_EQ(services->lastVolumeEvent()->kind, Event::Kind::unmounted);
}

TEST_F(Services, RefuseEveryOperationWhileDiagnosing) {
    EXPECT_FALSE(services->isReadOnlyDiagnostics());
    services->setReadOnlyDiagnostics(true);
    std::vector<OperationReport> reports;
    const auto run = [&] {
        services->center().run(JobPlan::createFolder(services->operations(), tree.url(), "new"),
                               [&](const JobResult& result) {
                                   reports.push_back(result.report);
                                   services->undo().record(result.undo);
                               });
    };
    run();
    ASSERT_TRUE(runUntil([&] { return reports.size() == 1; }));
    EXPECT_EQ(reports.front().overall(), OperationReport::Overall::failed);
    EXPECT_FALSE(tree.exists("new"));
    services->setReadOnlyDiagnostics(false);
    run();
    ASSERT_TRUE(runUntil([&] { return reports.size() == 2; }));
    EXPECT_TRUE(tree.exists("new"));
    EXPECT_TRUE(services->undo().canUndo());
}

TEST_F(Services, CountFailuresAndTellNobody) {
    services->start();
    ASSERT_TRUE(runUntil([&] { return !services->access().isBusy(); }));
    EXPECT_EQ(services->telemetry().counted(0) + services->telemetry().counted(1) +
                  services->telemetry().counted(2),
              1U);
}

TEST_F(Services, OpenWindowsThroughTheApplication) {
    QObject tabs;
    services->requestNewWindow(&tabs);
    EXPECT_EQ(services->activeWindowTabs(), &tabs) << "and nothing else, without anybody to open one";
    int opened = 0;
    services->openNewWindow = [&] { ++opened; };
    services->requestNewWindow();
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(services->activeWindowTabs(), &tabs);
    {
        QObject others;
        services->setActiveWindowTabs(&others);
    }
    EXPECT_EQ(services->activeWindowTabs(), nullptr) << "held weakly";
}

} // namespace
} // namespace ombrel
