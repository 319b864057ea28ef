#include "operations/JobTexts.h"

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Kind = FileOperationKind;

TEST(JobTitle, NamesWhatTheKindIsAbout) {
    const auto title = [](Kind kind) { return titleOf(kind, 3, "Here", "There"); };
    EXPECT_EQ(title(Kind::copy), (Text{"progress.title.copy", {"Here", "There"}, 3}));
    EXPECT_EQ(title(Kind::trash), (Text{"progress.title.trash", {"Here"}, 3}));
    EXPECT_EQ(title(Kind::newFolder), (Text{"progress.title.newFolder", {"There"}}));
    EXPECT_EQ(title(Kind::extract), (Text{"progress.title.extract", {"There"}, 3}));
}

TEST(SpeedText, IsWholeBytesOrNothingYet) {
    const auto words = [](std::int64_t bytes) { return std::to_string(bytes) + " B"; };
    EXPECT_EQ(speedText(std::nullopt, words), "progress.calculating");
    EXPECT_EQ(speedText(1999.99, words), "1999 Bprogress.perSecond");
}

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

TEST(ErrorTitle, TellsTheCommonErrorsApart) {
    const auto title = [](const Error& error) {
        return titleOf(ErrorContext{Kind::copy, FileURL().appending("a"), std::nullopt, error});
    };
    EXPECT_EQ(title(Error::Case::trashUnavailable), Text{"progress.error.trash"});
    EXPECT_EQ(title(Error::Case::permissionDenied), Text{"progress.error.denied"});
    EXPECT_EQ(title(Error::Case::noSpace), Text{"progress.error.noSpace"});
    EXPECT_EQ(title(Error::posix(5)), Text{"progress.error.other"});
}

} // namespace
} // namespace ombrel
