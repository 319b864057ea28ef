#include "operations/JobTexts.h"

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using Kind = FileOperationKind;

TEST(ConflictText, HasABatchFormForSeveralAndASingleOneOtherwise) {
    ConflictContext context{Kind::copy, FileURL().appending("a"), FileURL().appending("b\xFF")};
    EXPECT_EQ(titleOf(context, 2), (Text{"conflict.batch.title", {}, 2}));
    const Text single{"conflict.single.title", {"b\xEF\xBF\xBD"}};
    EXPECT_EQ(titleOf(context, 1), single);
    EXPECT_EQ(titleOf(context, std::nullopt), single);
    EXPECT_EQ(keepBothText(context).detail, std::nullopt);
    context.keepBothName = "b (2)";
    EXPECT_EQ(keepBothText(context).detail, (Text{"conflict.keepBoth.detail", {"b (2)"}}));
    EXPECT_EQ(replaceOneText(context).detail, Text{"conflict.replace.detail"});
    context.existingIsDirectory = true;
    EXPECT_EQ(replaceOneText(context).detail, Text{"conflict.replaceFolder.detail"});
    EXPECT_TRUE(replaceOneText(context).isLoss);
    context.sourceIsDirectory = true;
    EXPECT_EQ(replaceOneText(context).detail, Text{"conflict.merge.detail"});
    EXPECT_FALSE(replaceOneText(context).isLoss);
}

} // namespace
} // namespace ombrel
