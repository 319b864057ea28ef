#include "app/Desktop.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <string>

namespace ombrel {
namespace {

using testing::ChildProcess;
using testing::Desktop;
using testing::TempTree;

/// Programs that are started while one runs already.
class Instances : public ::testing::Test {
protected:
    void SetUp() override {
        tree.folder("desk");
        tree.folder("other");
        desktop = Desktop::open();
        if (!desktop) GTEST_SKIP() << "Xvfb, openbox and xdotool are not all there";
        if (::access("/usr/bin/dbus-daemon", X_OK) != 0) GTEST_SKIP() << "there is no dbus-daemon";
        bus = desktop->start({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=2"});
        desktop->setBus(bus->readErrorLine());
        first = desktop->start({OMBREL_PATH, tree.path("desk")});
        ASSERT_TRUE(desktop->hasTitle("desk"));
    }
    void TearDown() override {
        for (auto* process : {first.get(), bus.get()}) {
            if (!process) continue;
            process->signal(SIGCONT);
            process->signal(SIGTERM);
            static_cast<void>(process->finish());
        }
    }

    TempTree tree;
    std::unique_ptr<Desktop> desktop;
    std::unique_ptr<ChildProcess> bus, first;
};

TEST_F(Instances, HandTheirFoldersToTheFirst) {
    EXPECT_EQ(desktop->start({OMBREL_PATH, tree.path("other")})->finish().status, 0);
    ASSERT_TRUE(desktop->hasTitle("other"));
    desktop->key("alt+F4");
    ASSERT_TRUE(desktop->hasTitle("desk"));
    desktop->key("alt+F4");
    EXPECT_EQ(first->finish().status, 0) << "the last window ends it";
    first = nullptr;

    // The name is free again.
    auto next = desktop->start({OMBREL_PATH, tree.path("other")});
    ASSERT_TRUE(desktop->hasTitle("other"));
    desktop->key("alt+F4");
    EXPECT_EQ(next->finish().status, 0);
}

TEST_F(Instances, DoWithoutOneThatDoesNotAnswer) {
    first->signal(SIGSTOP);
    auto second = desktop->start({OMBREL_PATH, tree.path("other")});
    ASSERT_TRUE(desktop->hasTitle("other"));
    desktop->key("alt+F4");
    EXPECT_EQ(second->finish().status, 0);
}

} // namespace
} // namespace ombrel
