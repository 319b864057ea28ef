#include "support/ChildProcess.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TreeSnapshot.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

// The program itself is killed or interrupted at moments spread over the time that a transfer takes. Where
// exactly it is then is left to chance; tests/operations/KillSweepTest.cpp goes through every call.

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Clock = std::chrono::steady_clock;

struct Scene {
    const char* name;
    const char* command;
    bool isTree;
    bool replaces;
    bool isOtherVolume;
};

constexpr Scene scenes[] = {
    {"CopyOfAFile", "copy", false, false, false},
    {"CopyOfATree", "copy", true, false, true},
    {"Replace", "copy", false, true, false},
    {"MoveAcrossVolumes", "move", true, false, true},
    {"ReplacingMoveAcrossVolumes", "move", false, true, true},
};

bool isStaging(const std::string& name) {
    return name.starts_with(".hom-staging-");
}

class KilledTransfer : public ::testing::TestWithParam<Scene> {
protected:
    static constexpr int kills = 24;
    const Scene& scene = GetParam();
    TempTree home;
    std::unique_ptr<TestMount> first, second;
    std::optional<TempTree> from, to;
    TreeSnapshot incoming, existing;

    void SetUp() override {
        auto made = TestMount::tmpfs({}, "size=256m");
        auto other = TestMount::tmpfs({}, "size=256m");
        if (!made) GTEST_SKIP() << made.error();
        if (!other) GTEST_SKIP() << other.error();
        first = std::move(*made);
        second = std::move(*other);
    }

    void arrange() {
        from.reset();
        to.reset();
        from.emplace(first->path());
        to.emplace(scene.isOtherVolume ? second->path() : first->path());
        if (scene.isTree) {
            from->folder("thing");
            for (int i = 0; i < 8; ++i) {
                const auto folder = "thing/folder " + std::to_string(i);
                from->folder(folder);
                for (int j = 0; j < 40; ++j)
                    from->fileOfSize(folder + "/" + std::to_string(j), static_cast<std::size_t>(j * 4000));
            }
        } else {
            from->fileOfSize("thing", 24'000'000);
        }
        const timespec old[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        if (scene.replaces) {
            to->file("thing", "existing");
            ::utimensat(AT_FDCWD, to->path("thing").c_str(), old, 0);
        }
        incoming = snapshotOf(from->path("thing"));
        existing = snapshotOf(to->path("thing"));
    }

    [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::string& target) const {
        const std::vector<std::string> words = {OMBRELCTL_PATH, scene.command,       "--conflict",
                                                "replace",      from->path("thing"), target};
        const auto data = "XDG_DATA_HOME=" + home.path();
        return std::make_unique<ChildProcess>(
            words, ChildProcess::Setting{.variables = {"HOME=" + home.path(), data}});
    }

    [[nodiscard]] bool isSetAside() const {
        return std::ranges::any_of(to->names(), [&](const std::string& name) {
            return isStaging(name) && differences(existing, snapshotOf(to->path(name))).empty();
        });
    }

    void judge() const {
        const auto now = snapshotOf(to->path("thing")), source = snapshotOf(from->path("thing"));
        const bool isNew = differences(incoming, now, Compare::metadata).empty();
        if (!isNew && scene.replaces) {
            EXPECT_TRUE(now.empty() ? isSetAside() : now == existing);
        } else if (!isNew) {
            EXPECT_THAT(now, IsEmpty());
        }
        if (!isNew || std::string(scene.command) == "copy") {
            EXPECT_THAT(differences(incoming, source), IsEmpty());
        }
    }

    /// What another transfer into the folder makes of it once some minutes have passed.
    void sweepLater() const {
        const auto later = TestMount::limited(to->path(), "older=600");
        if (!later) GTEST_SKIP() << later.error();
        const auto before = snapshotOf(to->path("thing"));
        const bool isReplaced = scene.replaces && !before.empty() && isSetAside();
        home.file("another", "another");
        const std::vector<std::string> words = {OMBRELCTL_PATH, "copy", "--conflict=replace",
                                                home.path("another"), (*later)->path()};
        const auto data = "XDG_DATA_HOME=" + home.path();
        const auto result = ChildProcess(words, {.variables = {"HOME=" + home.path(), data}}).finish();
        EXPECT_EQ(result.status, 0) << result.errors;
        auto names = to->names();
        // The mount's trash, and what its driver still keeps open.
        std::erase_if(names, [](const std::string& name) {
            return name.starts_with(".Trash-") || name.starts_with(".fuse_hidden");
        });
        const auto now = snapshotOf(to->path("thing"));
        if (before.empty() && existing.empty()) {
            EXPECT_THAT(names, ElementsAre("another"));
        } else {
            EXPECT_THAT(names, ElementsAre("another", "thing"));
            EXPECT_TRUE(now == (before.empty() ? existing : before));
            if (isReplaced) {
                EXPECT_THAT(to->names(".Trash-0/files"), ElementsAre("thing (2)"));
            }
        }
    }
};

TEST_P(KilledTransfer, LosesNothingAndIsClearedAwayByALaterOne) {
    arrange();
    const auto begin = Clock::now();
    ASSERT_EQ(start(to->path())->finish().status, 0);
    const auto whole = Clock::now() - begin;
    int killed = 0, leftSomething = 0;
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        arrange();
        const auto program = start(to->path());
        std::this_thread::sleep_for(whole * i / kills);
        program->signal(SIGKILL);
        const int status = program->finish().status;
        EXPECT_THAT(status, ::testing::AnyOf(0, 128 + SIGKILL));
        killed += status != 0;
        judge();
        const bool hasLeft = std::ranges::any_of(to->names(), isStaging);
        if (hasLeft && leftSomething++ % 4 == 0) sweepLater();
    }
    EXPECT_GT(killed, 0);
    RecordProperty("killed", killed);
    RecordProperty("left", leftSomething);
}

// Ctrl+C at any moment: what is left is what was there, or the whole of what was to be there.
TEST_P(KilledTransfer, LeavesNothingBehindWhenItIsInterrupted) {
    arrange();
    const auto begin = Clock::now();
    ASSERT_EQ(start(to->path())->finish().status, 0);
    const auto whole = Clock::now() - begin;
    int cancelled = 0;
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        SCOPED_TRACE("interrupt " + std::to_string(i));
        arrange();
        const auto program = start(to->path());
        std::this_thread::sleep_for(whole * i / kills);
        program->signal(SIGINT);
        const auto result = program->finish();
        EXPECT_THAT(result.status, ::testing::AnyOf(0, 130)) << result.errors;
        cancelled += result.status != 0;
        judge();
        EXPECT_FALSE(std::ranges::any_of(to->names(), isStaging));
    }
    EXPECT_GT(cancelled, 0);
}

INSTANTIATE_TEST_SUITE_P(All, KilledTransfer, ::testing::ValuesIn(scenes),
                         [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace ombrel
