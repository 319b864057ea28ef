#include "operations/TransferMeasure.h"

#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cerrno>
#include <string>

namespace ombrel {
namespace {

using namespace testing;

constexpr int folders = 40, filesEach = 50;

void fill(const TempTree& tree) {
    tree.folder("top");
    for (int i = 0; i < folders; ++i) {
        const std::string folder = "top/" + std::to_string(i);
        tree.folder(folder);
        for (int j = 0; j < filesEach; ++j)
            tree.file(folder + "/" + std::to_string(j), std::string(static_cast<std::size_t>(j), 'x'));
    }
    tree.symlink("top/link", "0");
}

TEST(TransferMeasure, AddsUpManyFoldersOnTwoThreads) {
    const TempTree tree;
    fill(tree);
    const auto measure =
        TransferMeasure::of(FileReference::sampling(tree.url("top")), {}, [] { return true; });
    EXPECT_TRUE(measure.isKnown);
    EXPECT_EQ(measure.bytes, folders * filesEach * (filesEach - 1) / 2);
    EXPECT_THAT(measure.refusals, ::testing::IsEmpty());
}

TEST(TransferMeasure, TellsWhatIsTooLargeByItsWayFromTheItem) {
    const TempTree tree;
    fill(tree);
    FileSystemTraits target;
    target.largestFile = filesEach - 2;
    const auto measure =
        TransferMeasure::of(FileReference::sampling(tree.url("top")), target, [] { return true; });
    ASSERT_EQ(measure.refusals.size(), folders);
    EXPECT_EQ(measure.refusals.front().path, "0/49");
    EXPECT_EQ(measure.refusals.front().error, FileOperationError::posix(EFBIG));
    EXPECT_EQ(measure.refusals.back().path, "9/49");
    EXPECT_EQ(measure.bytes, folders * (filesEach - 1) * (filesEach - 2) / 2);
}

TEST(TransferMeasure, EndsWhenItIsToldTo) {
    const TempTree tree;
    fill(tree);
    std::atomic<int> asked = 0;
    const auto measure =
        TransferMeasure::of(FileReference::sampling(tree.url("top")), {}, [&asked] { return ++asked < 10; });
    EXPECT_LT(measure.bytes, folders * filesEach * (filesEach - 1) / 2);
}

} // namespace
} // namespace ombrel
