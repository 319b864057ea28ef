#include "operations/FileOperationService.h"
#include "operations/StagingName.h"
#include "operations/StagingSweep.h"
#include "support/FolderTrash.h"
#include "support/StrikeAt.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"
#include "support/TreeSnapshot.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

// A transfer in a process of its own that dies, without a chance to do anything about it, right before its
// n-th file-system call, for every n. What stands on the disk then is judged, the next transfer's sweep is
// run at a time when everything is old enough, and then the transfer is made again.

namespace ombrel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
using Kind = FileOperationKind;

/// Where the target folder is.
enum class Place : std::uint8_t {
    same,         ///< on the volume of the source
    other,        ///< on another one
    refusing,     ///< on another one, whose driver refuses the flags of a rename
    linkless,     ///< the same, without hard links too
    fromRefusing, ///< the volume of the source, whose driver refuses those flags
};

enum class Existing : std::uint8_t { none, file, folder };

struct Scene {
    const char* name;
    Kind kind;
    Place place;
    bool isTree;
    Existing existing = Existing::none;
};

constexpr Scene scenes[] = {
    {"CopyFile", Kind::copy, Place::same, false},
    {"CopyTree", Kind::copy, Place::other, true},
    {"CopyFileReplacing", Kind::copy, Place::other, false, Existing::file},
    {"CopyFileReplacingAFolder", Kind::copy, Place::same, false, Existing::folder},
    {"CopyTreeReplacingAFile", Kind::copy, Place::same, true, Existing::file},
    {"CopyMerging", Kind::copy, Place::other, true, Existing::folder},
    {"MoveFileReplacing", Kind::move, Place::same, false, Existing::file},
    {"MoveMerging", Kind::move, Place::same, true, Existing::folder},
    {"MoveFileAcross", Kind::move, Place::other, false},
    {"MoveTreeAcross", Kind::move, Place::other, true},
    {"MoveFileAcrossReplacing", Kind::move, Place::other, false, Existing::file},
    {"MoveMergingAcross", Kind::move, Place::other, true, Existing::folder},
    {"CopyFileReplacingRefused", Kind::copy, Place::refusing, false, Existing::file},
    {"MoveMergingAcrossRefused", Kind::move, Place::refusing, true, Existing::folder},
    {"MoveFileReplacingRefused", Kind::move, Place::fromRefusing, false, Existing::file},
    {"CopyTreeLinkless", Kind::copy, Place::linkless, true},
    {"MoveFileAcrossReplacingLinkless", Kind::move, Place::linkless, false, Existing::file},
};

void fillTree(const TempTree& tree, const std::string& top, const std::string& maker) {
    tree.folder(top);
    tree.file(top + "/both", maker);
    tree.file(top + "/only-" + maker, maker + " alone");
    tree.folder(top + "/sub");
    tree.file(top + "/sub/both", maker + " below");
    tree.folder(top + "/dir-" + maker);
    tree.fileOfSize(top + "/dir-" + maker + "/big", 300'001);
    tree.symlink(top + "/dir-" + maker + "/link", maker);
    ::chmod(tree.path(top + "/both").c_str(), 0641);
    ::setxattr(tree.path(top + "/sub/both").c_str(), "user.maker", maker.data(), maker.size(), 0);
}

void fill(const TempTree& tree, bool isTree, const std::string& maker) {
    if (isTree)
        fillTree(tree, "thing", maker);
    else
        tree.file("thing", maker + " file");
}

bool isSame(const TreeSnapshot& a, const TreeSnapshot& b) {
    return differences(a, b, Compare::metadata).empty();
}

class KillSweep : public ::testing::TestWithParam<Scene> {
protected:
    const Scene& scene = GetParam();
    std::unique_ptr<TestMount> first, second, limited;
    std::optional<TempTree> from, to, bin;
    TreeSnapshot incoming, existing;
    std::set<std::string> placeholders; // what only held its name

    void SetUp() override {
        const auto made = [](TestMount::Made mount, std::unique_ptr<TestMount>& into) {
            if (mount) into = std::move(*mount);
            return mount ? std::string() : mount.error();
        };
        auto reason = made(TestMount::tmpfs(), first);
        if (reason.empty()) reason = made(TestMount::tmpfs(), second);
        if (reason.empty() && scene.place >= Place::refusing) {
            const auto& backing = scene.place == Place::fromRefusing ? first : second;
            reason =
                made(TestMount::limited(backing->path(), scene.place == Place::linkless ? "nolinks" : ""),
                     limited);
        }
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    void arrange() {
        from.reset();
        to.reset();
        bin.reset();
        from.emplace(scene.place == Place::fromRefusing ? limited->path() : first->path());
        const auto& target = scene.place == Place::same    ? first
                             : scene.place == Place::other ? second
                                                           : limited;
        to.emplace(target->path());
        bin.emplace(target->path());
        fill(*from, scene.isTree, "new");
        if (scene.existing != Existing::none) fill(*to, scene.existing == Existing::folder, "old");
        incoming = snapshotOf(from->path("thing"));
        existing = snapshotOf(to->path("thing"));
        placeholders.clear();
    }

    OperationReport transfer() {
        TransferWorld world;
        world.answers.conflictAnswers.assign(20, {ConflictChoice::replace, true});
        return world.run(scene.kind, {from->url("thing")}, to->url());
    }

    /// Answers whether the transfer was over before its n-th call.
    bool survives(int nth) {
        const pid_t process = ::fork();
        if (process == 0) {
            const StrikeAt strike(nth, [] { ::kill(::getpid(), SIGKILL); });
            const auto report = transfer();
            ::_exit(report.overall() == OperationReport::Overall::succeeded ? 0 : 1);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(process, &status, 0), process);
        if (WIFEXITED(status)) {
            EXPECT_EQ(WEXITSTATUS(status), 0);
        }
        return WIFEXITED(status);
    }

    [[nodiscard]] bool isMerge() const { return scene.isTree && scene.existing == Existing::folder; }

    /// What is either there or not: an item that was given, or the entries of a folder that is merged.
    [[nodiscard]] std::vector<std::string> units() const {
        if (!isMerge()) return {"thing"};
        return {"thing/both",     "thing/only-new", "thing/only-old",
                "thing/sub/both", "thing/dir-new",  "thing/dir-old"};
    }
    static TreeSnapshot partFor(const TreeSnapshot& tree, const std::string& unit) {
        return partOf(tree, unit == "thing" ? "" : unit.substr(6));
    }

    /// An empty file or folder holds the name where nothing else can; it is no content of anybody's.
    [[nodiscard]] bool isPlaceholder(const TreeSnapshot& now) const {
        const bool isEmpty = now.size() == 1 && now.begin()->second.size == 0;
        if (scene.place == Place::linkless) return isEmpty;
        return scene.place >= Place::refusing && isEmpty && S_ISDIR(now.begin()->second.mode);
    }

    [[nodiscard]] bool isSetAside(const std::string& unit, const TreeSnapshot& old) const {
        const auto folder = unit.substr(0, unit.rfind('/') == std::string::npos ? 0 : unit.rfind('/'));
        return std::ranges::any_of(stagingNames(to->names(folder)), [&](const std::string& name) {
            return isSame(old, snapshotOf(to->path(folder.empty() ? name : folder + "/" + name)));
        });
    }

    /// Nothing half-written has a real name, and nothing is lost.
    void judge(bool mayBeAside) {
        for (const auto& unit : units()) {
            SCOPED_TRACE(unit);
            const auto fresh = partFor(incoming, unit), old = partFor(existing, unit);
            const auto now = snapshotOf(to->path(unit)), source = snapshotOf(from->path(unit));
            const bool isFresh = !fresh.empty() && isSame(fresh, now);
            if (!isFresh && !(!old.empty() && isSame(old, now))) {
                EXPECT_TRUE(now.empty() || isPlaceholder(now));
                if (!now.empty()) placeholders.insert(unit);
                if (!old.empty()) {
                    EXPECT_TRUE((mayBeAside && isSetAside(unit, old)) || isInTrash(old));
                }
            }
            if (!fresh.empty()) {
                EXPECT_TRUE(isFresh || isSame(fresh, source));
            }
            if (scene.kind == Kind::copy) {
                EXPECT_THAT(differences(fresh, source), IsEmpty());
            }
        }
    }

    // ---- The sweep of the next transfer

    [[nodiscard]] bool isInTrash(const TreeSnapshot& old) const {
        return std::ranges::any_of(
            bin->names(), [&](const std::string& name) { return isSame(old, snapshotOf(bin->path(name))); });
    }

    [[nodiscard]] bool holdsStaging() const {
        return std::ranges::any_of(snapshotOf(to->path()), [](const auto& entry) {
            return entry.first.find(StagingName::prefix) != std::string::npos;
        });
    }

    void sweepAll() {
        FolderTrash trash(bin->path());
        const auto later = std::chrono::system_clock::now() + std::chrono::hours(1);
        for (const char* folder : {"", "thing", "thing/sub"})
            if (std::filesystem::is_directory(std::filesystem::symlink_status(to->path(folder))))
                sweepStaleStaging(to->url(folder), std::chrono::seconds(120), later, trash);
        EXPECT_FALSE(holdsStaging());
        for (const auto& name : bin->names()) {
            const auto thrown = snapshotOf(bin->path(name));
            EXPECT_TRUE(std::ranges::any_of(
                units(), [&](const auto& unit) { return isSame(partFor(existing, unit), thrown); }))
                << name << " was never a user's";
        }
    }

    void finishAgain() {
        if (!from->exists("thing")) return;
        EXPECT_EQ(transfer().overall(), OperationReport::Overall::succeeded);
        for (const auto& unit : units()) {
            const auto fresh = partFor(incoming, unit);
            if (fresh.empty()) continue;
            // A folder that only held the name was merged into.
            const auto compare = placeholders.contains(unit) ? Compare::data : Compare::metadata;
            EXPECT_THAT(differences(fresh, snapshotOf(to->path(unit)), compare), IsEmpty());
        }
        EXPECT_EQ(from->exists("thing"), scene.kind == Kind::copy);
    }
};

TEST_P(KillSweep, LosesNothingAndHalfWritesNothing) {
    // Trees on the slow driver are the same again but for the renames, which its files go through as well.
    const int step = scene.isTree && scene.place >= Place::refusing ? 5 : 1;
    int nth = 1, leftSomething = 0;
    for (;; nth += step) {
        SCOPED_TRACE("killed before call " + std::to_string(nth));
        arrange();
        if (survives(nth)) break;
        judge(true);
        leftSomething += holdsStaging();
        sweepAll();
        judge(false);
        finishAgain();
        if (HasFailure()) break;
    }
    RecordProperty("calls", nth - 1);
    EXPECT_GT(nth, 20) << "hardly anything was tried";
    EXPECT_GT(leftSomething, 0) << "nothing was ever left for the sweep";
}

INSTANTIATE_TEST_SUITE_P(All, KillSweep, ::testing::ValuesIn(scenes),
                         [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace ombrel
