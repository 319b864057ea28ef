#include "browser/ThumbnailStore.h"

#include "browser/ModelWorld.h"

#include <QCryptographicHash>
#include <QImage>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <semaphore>

namespace ombrel {
namespace {

using namespace testing;

class Thumbnails : public ::testing::Test {
protected:
    static constexpr QSize box{112, 96};

    ThumbnailStore::Setting setting() const {
        return {.cache = *FileURL::fromPath(cacheTree.path("thumbnails")),
                .asksService = false,
                .budget = budget,
                .isOnNetwork = [isRemote = isRemote](const FileURL&) { return isRemote; }};
    }
    void image(const std::string& name, QSize size = {400, 300}) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        ASSERT_TRUE(picture.save(QString::fromStdString(tree.path(name))));
    }
    void list() {
        model.navigate(tree.url());
        ASSERT_TRUE(runUntilLoaded(model));
        // Types are asked for when they are looked at; the listing has those of endings already.
    }
    FileItem item(const std::string& name) { return model.items().item(rowNamed(model, name)); }
    QImage wait(ThumbnailStore& store, const std::string& name, QSize room = box) {
        const ThumbnailStore::Request request{item(name), room};
        store.want(viewer, {&request, 1});
        EXPECT_TRUE(runUntil([&] { return store.isKnown(request.item, room); }));
        return store.thumbnail(request.item, room);
    }
    /// Where the convention puts the thumbnail of a file of ours.
    std::string placeOf(const std::string& name, const std::string& folder) const {
        const auto hash = QCryptographicHash::hash(
            QByteArray::fromStdString(tree.url().appending(name).uri()), QCryptographicHash::Md5);
        return cacheTree.path("thumbnails/" + folder + "/" + hash.toHex().toStdString() + ".png");
    }

    TempTree tree, cacheTree;
    std::size_t budget = std::size_t{64} << 20;
    bool isRemote = false;
    BrowserModel model{realListings()};
    QObject viewer;
};

TEST_F(Thumbnails, AreMadeOfImagesAndPutThereForEveryone) {
    image("a b#1.png");
    list();
    ThumbnailStore store(setting());
    EXPECT_EQ(wait(store, "a b#1.png").size(), QSize(112, 84));

    const QImage kept(QString::fromStdString(placeOf("a b#1.png", "normal")));
    EXPECT_EQ(kept.size(), QSize(128, 96));
    EXPECT_EQ(kept.text(QStringLiteral("Thumb::URI")).toStdString(), tree.url().appending("a b#1.png").uri());
    const auto modified = item("a b#1.png").modificationDate().value().seconds;
    EXPECT_EQ(kept.text(QStringLiteral("Thumb::MTime")), QString::number(modified));
    struct ::stat status = {};
    ASSERT_EQ(::stat(placeOf("a b#1.png", "normal").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    ASSERT_EQ(::stat(cacheTree.path("thumbnails/normal").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    const auto files = std::filesystem::directory_iterator(cacheTree.path("thumbnails/normal"));
    EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "no draft is left";
}

TEST_F(Thumbnails, OfAnotherStateOfTheFileDoNotCount) {
    image("a.png", {400, 300});
    list();
    ThumbnailStore store(setting());
    EXPECT_EQ(wait(store, "a.png").size(), QSize(112, 84));
    image("a.png", {300, 300});
    std::filesystem::last_write_time(tree.path("a.png"),
                                     std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
    list();
    EXPECT_FALSE(store.isKnown(item("a.png"), box));
    EXPECT_EQ(store.thumbnail(item("a.png"), box).size(), QSize(112, 84)) << "until there is a new one";
    EXPECT_EQ(wait(store, "a.png").size(), QSize(96, 96));
}

TEST_F(Thumbnails, OfWhatOnlyLooksLikeAnImageFailOnceAndForAll) {
    tree.file("no.png", "this is no picture");
    list();
    ThumbnailStore store(setting());
    EXPECT_TRUE(wait(store, "no.png").isNull());
    EXPECT_TRUE(std::filesystem::exists(placeOf("no.png", "fail/halvaneombrel-1")));
    ThumbnailStore another(setting());
    EXPECT_TRUE(wait(another, "no.png").isNull());
}

TEST_F(Thumbnails, OfNetworkVolumesAreThoseInTheCacheAlone) {
    image("kept.png");
    image("new.png");
    list();
    {
        ThumbnailStore store(setting());
        EXPECT_FALSE(wait(store, "kept.png").isNull());
    }
    isRemote = true;
    ThumbnailStore store(setting());
    EXPECT_FALSE(wait(store, "kept.png").isNull());
    EXPECT_TRUE(wait(store, "new.png").isNull());
    EXPECT_FALSE(std::filesystem::exists(placeOf("new.png", "normal")));
    // Better a small one than none.
    EXPECT_EQ(wait(store, "kept.png", {224, 192}).size(), QSize(128, 96));
}

TEST_F(Thumbnails, ComeToWhoeverLooksAgainWhileTheyAreLookedFor) {
    image("a.png");
    list();
    auto asking = setting();
    asking.asksService = true;
    // The second look into the cache, for what no service makes, lasts.
    const auto looks = std::make_shared<std::atomic<int>>(0);
    const auto mayGoOn = std::make_shared<std::binary_semaphore>(0);
    asking.isOnNetwork = [looks, mayGoOn](const FileURL&) {
        if (++*looks == 2) mayGoOn->acquire();
        return false;
    };
    ThumbnailStore store(std::move(asking));
    const ThumbnailStore::Request request{item("a.png"), box};
    store.want(viewer, {&request, 1});
    ASSERT_TRUE(runUntil([&] { return *looks == 2; }));
    store.want(viewer, {});
    EXPECT_TRUE(store.isSettled());
    store.want(viewer, {&request, 1});
    mayGoOn->release();
    EXPECT_TRUE(runUntil([&] { return store.isKnown(request.item, box); }));
    EXPECT_TRUE(store.isSettled());
    EXPECT_FALSE(store.thumbnail(request.item, box).isNull());
}

TEST_F(Thumbnails, AreMadeAnewWhereTheCacheHoldsSmallerOnes) {
    constexpr QSize larger{252, 158};
    image("a.png", {600, 420});
    image("broken.png", {600, 420});
    list();
    const auto path = tree.path("broken.png");
    const auto modified = std::filesystem::last_write_time(path);
    auto withService = setting();
    withService.asksService = true; // where there is none
    ThumbnailStore store(withService);
    EXPECT_EQ(wait(store, "a.png").size(), QSize(112, 77));
    EXPECT_EQ(wait(store, "broken.png").size(), QSize(112, 77));
    EXPECT_EQ(wait(store, "a.png", larger).size(), QSize(225, 158));
    EXPECT_EQ(QImage(QString::fromStdString(placeOf("a.png", "large"))).size(), QSize(256, 179));

    // The same file as far as can be seen, but not to be read any more.
    tree.file("broken.png", std::string(std::filesystem::file_size(path), 'x'));
    std::filesystem::last_write_time(path, modified);
    EXPECT_EQ(wait(store, "broken.png", larger).size(), QSize(128, 89)) << "better a small one than none";
}

TEST_F(Thumbnails, KeepToTheirBudgetAndForgetWhatNobodyWants) {
    for (int i = 0; i < 12; ++i)
        image("p" + std::to_string(10 + i) + ".png");
    list();
    budget = 4 * 112 * 84 * 4;
    ThumbnailStore store(setting());
    std::vector<ThumbnailStore::Request> all;
    for (std::size_t row = 0; row < model.items().size(); ++row)
        all.push_back({model.items().item(row), box});
    store.want(viewer, all);
    store.want(viewer, std::span(all).last(1));
    EXPECT_TRUE(runUntil([&] { return store.isSettled(); }));
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_FALSE(store.thumbnail(all.back().item, box).isNull());
    const auto files = std::filesystem::directory_iterator(cacheTree.path("thumbnails/normal"));
    EXPECT_LE(std::distance(begin(files), end(files)), 3) << "what was scrolled away is not made";
    for (const auto& request : all) {
        store.want(viewer, {&request, 1});
        EXPECT_TRUE(runUntil([&] { return store.isSettled(); }));
    }
    EXPECT_LE(store.bytesKept(), budget);
    EXPECT_GT(store.bytesKept(), 0U);
}

} // namespace
} // namespace ombrel
