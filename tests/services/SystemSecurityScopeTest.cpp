#include "services/SystemSecurityScope.h"

#include "services/AccessManager.h"
#include "services/FileBookmarkStore.h"
#include "support/Locations.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "qtmain/KitWorld.h"

namespace ombrel {
namespace {

using testing::at;
using testing::KitWorld;
using testing::runUntil;
using testing::TempTree;
using testing::TestMount;

TEST(BookmarkAsBytes, GoesThereAndBack) {
    const TempTree tree;
    tree.folder("a\xFF\n");
    const auto bookmark = FolderBookmark::of(tree.url("a\xFF\n")).value();
    EXPECT_EQ(BookmarkData::decoded(BookmarkData::encoded(bookmark)), bookmark);
    auto odd = bookmark;
    odd.volume.uuid.clear();
    odd.steps.back().born = {-5, 999'999'999};
    odd.steps.back().inode = UINT64_MAX;
    EXPECT_EQ(BookmarkData::decoded(BookmarkData::encoded(odd)), odd);
}

TEST(BookmarkAsBytes, IsRefusedInAnyOtherForm) {
    const TempTree tree;
    const auto bookmark = FolderBookmark::of(tree.url()).value();
    const auto bytes = BookmarkData::encoded(bookmark);
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_FALSE(BookmarkData::decoded(bytes.substr(0, length))) << length;
    for (const char* other :
         {"/a/plain/path", "bplist00", "<plist><dict/></plist>", "<plist><array/></plist>"})
        EXPECT_FALSE(BookmarkData::decoded(other)) << other;
    const auto refused = [&](auto change) {
        auto changed = bookmark;
        change(changed);
        return !BookmarkData::decoded(BookmarkData::encoded(changed));
    };
    EXPECT_TRUE(refused([](FolderBookmark& each) { each.steps.clear(); }));
    EXPECT_TRUE(refused([](FolderBookmark& each) { each.steps.back().name = "a/../b"; }));
    EXPECT_TRUE(refused([](FolderBookmark& each) { each.steps.push_back({}); }));
}

/// Grants kept in a file, over the real system.
class GrantsOnDisk : public ::testing::Test {
protected:
    GrantsOnDisk() { start(); }
    /// Ends the program and starts it again.
    void start() {
        manager =
            std::make_unique<AccessManager>(std::make_shared<SystemSecurityScope>(),
                                            std::make_shared<FileBookmarkStore>(tree.url("Locations.plist")));
        manager->restore();
        settle();
    }
    void settle() const {
        ASSERT_TRUE(runUntil([&] { return !manager->isBusy(); }));
    }
    void add(const std::string& path) const {
        bool isDone = false;
        manager->addGrant(at(path), nullptr,
                          [&](const AccessManager::Granted& granted) { isDone = granted.has_value(); });
        ASSERT_TRUE(runUntil([&] { return isDone && !manager->isBusy(); }));
    }
    [[nodiscard]] std::string state() const {
        if (manager->grants().size() != 1) return "not one";
        const auto& grant = *manager->grants().front();
        return grant.isActive() ? grant.url()->path() : std::string(rawValue(grant.state().which));
    }

    KitWorld world;
    TempTree tree;
    std::unique_ptr<AccessManager> manager;
};

TEST_F(GrantsOnDisk, FollowRenamesFromStartToStart) {
    tree.folder("p");
    tree.folder("p/q");
    add(tree.path("p/q"));
    std::filesystem::rename(tree.path("p/q"), tree.path("p/r"));
    start();
    EXPECT_EQ(state(), tree.path("p/r"));
    EXPECT_EQ(manager->grants().front()->displayName(), "r");
    std::filesystem::rename(tree.path("p"), tree.path("s"));
    start();
    EXPECT_EQ(state(), tree.path("s/r"));
    // The renewed bookmark knows the new place: the old name may come back.
    tree.folder("p");
    std::filesystem::rename(tree.path("s/r"), tree.path("s/t"));
    start();
    EXPECT_EQ(state(), tree.path("s/t"));
}

TEST_F(GrantsOnDisk, AreNotGivenToAFolderThatTookThePlace) {
    tree.folder("p");
    add(tree.path("p"));
    std::filesystem::remove(tree.path("p"));
    start();
    EXPECT_EQ(state(), "unavailable");
    tree.folder("p");
    start();
    EXPECT_EQ(state(), "needsReauthorization");
    EXPECT_EQ(manager->grants().front()->state().messageKey, "access.bookmarkInvalid");
}

TEST_F(GrantsOnDisk, ComeBackWithTheirVolume) {
    auto mount = TestMount::image("ext4", tree.path("volume"));
    if (!mount) GTEST_SKIP() << mount.error();
    std::filesystem::create_directories((*mount)->path() + "/a/b");
    add((*mount)->path() + "/a/b");
    ASSERT_TRUE((*mount)->unmount());
    start();
    EXPECT_EQ(state(), "unavailable");
    EXPECT_EQ(manager->grants().front()->state().messageKey, "access.unavailable");
    ASSERT_TRUE((*mount)->remount(tree.path("elsewhere")));
    manager->retryUnavailable();
    settle();
    EXPECT_EQ(state(), tree.path("elsewhere/a/b"));
}

TEST_F(GrantsOnDisk, CannotBeUsedWithABookmarkOfALaterVersion) {
    const SystemCall::Allowed allowed;
    FileBookmarkStore store(tree.url("Locations.plist"));
    ASSERT_TRUE(store.save({{QUuid::createUuid(), "of a later version", "x", {}}}));
    start();
    EXPECT_EQ(state(), "needsReauthorization");
    EXPECT_EQ(store.load().value().front().bookmark, "of a later version") << "and it is kept";
}

} // namespace
} // namespace ombrel
