#include "services/VolumeMonitor.h"

#include "services/ScriptedMounts.h"
#include "support/Locations.h"
#include "support/LogRecorder.h"
#include "support/MirrorMount.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <QCoreApplication>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <vector>

#include "qtmain/KitWorld.h"

namespace ombrel {

void PrintTo(const VolumeMonitor::Event& event, std::ostream* stream) {
    constexpr const char* names[] = {"mounted", "unmounted", "renamed"};
    *stream << names[static_cast<int>(event.kind)] << ' ' << event.url.path();
}

namespace {

using testing::at;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::KitWorld;
using testing::LogRecorder;
using testing::MirrorMount;
using testing::runUntil;
using testing::runUntilQuiet;
using testing::ScriptedMounts;
using testing::TempTree;
using testing::TestMount;
using Event = VolumeMonitor::Event;

std::string line(int id, const std::string& path, int device = 0) {
    return std::to_string(id) + " 1 0:" + std::to_string(device != 0 ? device : id) + " / " + path +
           " rw - tmpfs tmpfs rw\n";
}

class Volumes : public ::testing::Test {
protected:
    Volumes() {
        QObject::connect(&monitor, &VolumeMonitor::observed,
                         [this](const Event& event) { observed.push_back(event); });
        QObject::connect(&monitor, &VolumeMonitor::volumesChanged, [this] { ++changes; });
        monitor.onEvent = [this](const Event& event) { told.push_back(event); };
    }
    /// What was told is in the queue first, before any worker reads.
    static void settle() {
        QCoreApplication::processEvents();
        ASSERT_TRUE(runUntilQuiet());
    }
    [[nodiscard]] std::vector<std::string> listed() const {
        std::vector<std::string> paths;
        for (const VolumeInfo& volume : monitor.volumes())
            paths.push_back(volume.url.path());
        return paths;
    }

    KitWorld world;
    ScriptedMounts* watch = new ScriptedMounts;
    VolumeMonitor monitor{std::unique_ptr<MountWatch>(watch)};
    std::vector<Event> observed, told;
    int changes = 0;
};

TEST_F(Volumes, AreListedOnceStarted) {
    EXPECT_FALSE(watch->isStarted());
    monitor.start();
    monitor.start();
    watch->tell(line(2, "/mnt/a") + line(3, "/mnt/b"));
    EXPECT_THAT(listed(), IsEmpty()) << "nothing is read on the main thread";
    settle();
    EXPECT_THAT(listed(), ElementsAre("/mnt/a", "/mnt/b"));
    EXPECT_EQ(changes, 1);
    EXPECT_THAT(observed, IsEmpty()) << "what was there before is no event";
    monitor.stop();
    EXPECT_FALSE(watch->isStarted());
    EXPECT_THAT(listed(), ElementsAre("/mnt/a", "/mnt/b"));
}

TEST_F(Volumes, TellEachKindOfEventAfterTheListHasIt) {
    monitor.start();
    watch->tell(line(2, "/mnt/a"));
    settle();
    std::vector<std::string> listedWhenTold;
    monitor.onEvent = [&](const Event& event) {
        told.push_back(event);
        listedWhenTold = listed();
    };
    watch->tell(line(2, "/mnt/a") + line(3, "/mnt/b"));
    settle();
    EXPECT_THAT(listedWhenTold, ElementsAre("/mnt/a", "/mnt/b"));
    watch->tell(line(2, "/mnt/moved") + line(3, "/mnt/b"));
    settle();
    EXPECT_THAT(listedWhenTold, ElementsAre("/mnt/moved", "/mnt/b"));
    watch->tell(line(3, "/mnt/b"));
    settle();
    EXPECT_THAT(listedWhenTold, ElementsAre("/mnt/b"));
    const std::vector<Event> expected = {{Event::Kind::mounted, at("/mnt/b")},
                                         {Event::Kind::renamed, at("/mnt/moved")},
                                         {Event::Kind::unmounted, at("/mnt/moved")}};
    EXPECT_EQ(told, expected);
    EXPECT_EQ(observed, expected);
}

TEST_F(Volumes, AreLoggedByEventAndNotByName) {
    const LogRecorder log;
    monitor.start();
    watch->tell("");
    settle();
    watch->tell(line(2, "/mnt/a"));
    watch->tell(line(2, "/mnt/b"));
    settle();
    EXPECT_THAT(log.lines(),
                ElementsAre("info volumes: volume event observed", "info volumes: volume event observed"));
}

TEST_F(Volumes, OvertakenEventsAreObservedButNotToldWithTheList) {
    monitor.start();
    watch->tell("");
    settle();
    watch->tell(line(2, "/mnt/a"));
    watch->tell(line(2, "/mnt/a") + line(3, "/mnt/b"));
    settle();
    EXPECT_THAT(listed(), ElementsAre("/mnt/a", "/mnt/b"));
    EXPECT_THAT(told, ElementsAre(Event{Event::Kind::mounted, at("/mnt/b")}));
    EXPECT_THAT(observed, ElementsAre(Event{Event::Kind::mounted, at("/mnt/a")},
                                      Event{Event::Kind::mounted, at("/mnt/b")}));
    EXPECT_EQ(changes, 1);
}

TEST_F(Volumes, ANumberThatIsGivenAwayAgainIsAnotherMount) {
    monitor.start();
    watch->tell(line(2, "/mnt/a", 40));
    settle();
    watch->tell(line(2, "/mnt/a", 41));
    settle();
    EXPECT_THAT(observed, ElementsAre(Event{Event::Kind::unmounted, at("/mnt/a")},
                                      Event{Event::Kind::mounted, at("/mnt/a")}));
}

TEST_F(Volumes, AreLeftOutWhenThePredicateSaysSo) {
    monitor.includesVolume = [](const FileURL& url) { return url.name() != "secret"; };
    monitor.start();
    watch->tell(line(2, "/mnt/secret") + line(3, "/mnt/open"));
    settle();
    EXPECT_THAT(listed(), ElementsAre("/mnt/open"));
}

TEST_F(Volumes, AreSilentAfterStopAndFreshAfterStart) {
    monitor.start();
    watch->tell(line(2, "/mnt/a"));
    monitor.stop();
    settle();
    EXPECT_THAT(listed(), IsEmpty());
    monitor.start();
    watch->tell(line(3, "/mnt/b"));
    settle();
    EXPECT_THAT(listed(), ElementsAre("/mnt/b"));
    EXPECT_THAT(observed, IsEmpty());
}

// ---- The machine's own mounts

class RealVolumes : public ::testing::Test {
protected:
    RealVolumes() {
        QObject::connect(&monitor, &VolumeMonitor::observed,
                         [this](const Event& event) { observed.push_back(event); });
    }
    [[nodiscard]] const VolumeInfo* find(const FileURL& url) const {
        const auto found = std::ranges::find(monitor.volumes(), url, &VolumeInfo::url);
        return found == monitor.volumes().end() ? nullptr : &*found;
    }
    [[nodiscard]] bool waitFor(Event::Kind kind, const std::string& path) {
        return runUntil([&] { return std::ranges::find(observed, Event{kind, at(path)}) != observed.end(); },
                        std::chrono::seconds(10));
    }
    /// The watch and its first reading run on workers of their own.
    void start() {
        monitor.start();
        ASSERT_TRUE(runUntil([this] { return !monitor.volumes().empty(); }, std::chrono::seconds(10)));
    }
    void TearDown() override { monitor.stop(); }

    KitWorld world;
    VolumeMonitor monitor;
    std::vector<Event> observed;
};

TEST_F(RealVolumes, ComeMoveAndGo) {
    start();
    ASSERT_NE(find(FileURL()), nullptr) << "the root is always one";
    EXPECT_TRUE(find(FileURL())->isRootFileSystem);
    EXPECT_GT(find(FileURL())->totalCapacity.value(), 0);
    const auto image = TestMount::image("ext4", "/mnt/ombrel-test-volume", "Travels");
    if (!image) GTEST_SKIP() << image.error();
    ASSERT_TRUE(waitFor(Event::Kind::mounted, "/mnt/ombrel-test-volume"));
    ASSERT_TRUE(runUntil([&] { return find((*image)->url()) != nullptr; }, std::chrono::seconds(10)));
    EXPECT_EQ(find((*image)->url())->displayName(), "Travels");
    ASSERT_TRUE((*image)->moveTo("/mnt/ombrel-test-moved"));
    ASSERT_TRUE(waitFor(Event::Kind::renamed, "/mnt/ombrel-test-moved"));
    ASSERT_TRUE((*image)->unmount());
    ASSERT_TRUE(waitFor(Event::Kind::unmounted, "/mnt/ombrel-test-moved"));
    ASSERT_TRUE((*image)->remount("/mnt/ombrel-test-again"));
    ASSERT_TRUE(waitFor(Event::Kind::mounted, "/mnt/ombrel-test-again"));
}

TEST_F(RealVolumes, AreWatchedWithoutKeepingAnybodyWaiting) {
    start();
    EXPECT_TRUE(runUntilQuiet()) << "a watch on duty is not work under way";
}

TEST_F(RealVolumes, AreNotHeldUpByOneThatHangs) {
    const TempTree tree;
    const auto dead = MirrorMount::of(tree.path(), {"hanging"}, "/mnt/ombrel-test-dead");
    if (!dead) GTEST_SKIP() << dead.error();
    const auto begun = std::chrono::steady_clock::now();
    start();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, VolumeMonitor::answerLimit);
    ASSERT_NE(find((*dead)->url()), nullptr);
    EXPECT_TRUE(find((*dead)->url())->totalCapacity.isUnknown());
    EXPECT_EQ(find((*dead)->url())->fileSystemType.value(), "fuse.mirror");
    ASSERT_TRUE(
        runUntil([&] { return find((*dead)->url())->totalCapacity.isFailed(); }, std::chrono::seconds(10)));
    EXPECT_EQ(find((*dead)->url())->totalCapacity.errorNumber(), ETIMEDOUT);
    (*dead)->answer();
    ASSERT_TRUE(runUntil(
        [&] {
            monitor.refreshCapacities();
            return find((*dead)->url())->totalCapacity.hasValue();
        },
        std::chrono::seconds(10)));
}

TEST_F(RealVolumes, ChangeTheirRoomWhenAskedAgain) {
    const auto memory = TestMount::tmpfs("/mnt/ombrel-test-room");
    if (!memory) GTEST_SKIP() << memory.error();
    start();
    const auto room = [&] { return find((*memory)->url())->availableCapacity.value(); };
    const auto before = room();
    std::ofstream((*memory)->path() + "/filling", std::ios::binary) << std::string(1 << 20, 'x');
    monitor.refreshCapacities();
    EXPECT_TRUE(runUntil([&] { return room() <= before - (1 << 20); }, std::chrono::seconds(10)));
}

} // namespace
} // namespace ombrel
