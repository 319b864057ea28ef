#include "operations/ReportTexts.h"

#include "operations/SpeedMeter.h"

#include <gmock/gmock.h>

#include <limits>

namespace ombrel {
namespace {

using Error = FileOperationError;
using ::testing::ElementsAre;

std::string words(std::int64_t bytes) {
    return std::to_string(bytes) + " B";
}

TEST(ErrorText, SaysWhatIsKnownBeyondTheKind) {
    ErrorFacts facts;
    EXPECT_EQ(textOf(Error::Case::noSpace, facts, words), Text{"error.op.noSpace"});
    facts.missingBytes = 5;
    facts.trashReason = TrashUnavailableReason::isHome;
    EXPECT_EQ(textOf(Error::Case::noSpace, facts, words), (Text{"error.fact.missingBytes", {"5 B"}}));
    EXPECT_EQ(textOf(Error::Case::trashUnavailable, facts, words), Text{"trash.unavailable.isHome"});
    EXPECT_EQ(textOf(Error::Case::sourceMissing, facts, words), Text{"error.op.sourceMissing"});
    facts = {.missingBytes = {}, .trashReason = {}, .isMountPoint = true, .toolWords = {}};
    EXPECT_EQ(textOf(Error::posix(16), facts, words), Text{"trash.unavailable.isMountPoint"});
    facts = {.missingBytes = {}, .trashReason = {}, .isMountPoint = false, .toolWords = "bad\x01"};
    EXPECT_EQ(textOf(Error::system("zip", 3), facts, words),
              (Text{"error.fact.toolWords", {"zip", "bad\xEF\xBF\xBD"}}));
}

TEST(ItemText, IsOneSentenceForEachOutcome) {
    const FileURL there = FileURL().appending("b\xFF");
    const auto key = [](ItemOutcome outcome) {
        return textOf(ItemResult{{}, std::move(outcome), {}}, words).key;
    };
    EXPECT_EQ(key(ItemOutcome::completed()), "report.item.done");
    EXPECT_EQ(textOf(ItemResult{{}, ItemOutcome::completed(there), {}}, words),
              (Text{"report.item.doneAs", {"b\xEF\xBF\xBD"}}));
    EXPECT_EQ(key(ItemOutcome::failed(Error::Case::readOnlyVolume)), "error.op.readOnlyVolume");
    EXPECT_EQ(key(ItemOutcome::copiedSourceKept(there, Error::Case::sourceChanged)),
              "report.item.sourceKept");
    EXPECT_EQ(key(ItemOutcome::copiedSourceKept(there, Error::sourceRemovalFailed(5))),
              "error.op.sourceRemovalFailed");
    EXPECT_EQ(key(ItemOutcome::skipped()), "report.item.skipped");
    EXPECT_EQ(key(ItemOutcome::cancelled()), "error.op.cancelled");
}

TEST(ReportSummary, CountsWhatWasDone) {
    OperationReport report{FileOperationKind::delete_, {}};
    EXPECT_EQ(summaryOf(report), Text{"report.nothingToDo"});
    report.items.push_back({FileURL(), ItemOutcome::completed()});
    EXPECT_EQ(summaryOf(report), (Text{"report.done.delete", {}, 1}));
    report.items.push_back({FileURL(), ItemOutcome::skipped()});
    EXPECT_EQ(summaryOf(report), (Text{"report.part.delete", {"1"}, 2}));
    report.kind = FileOperationKind::extract;
    EXPECT_EQ(summaryOf(report).key, "report.part.extract");
}

TEST(SpeedMeter, SmoothsAndKeepsItsHistory) {
    SpeedMeter meter;
    OperationProgress progress;
    progress.totalBytes = 1000;
    const auto at = [&](double now, std::int64_t bytes, OperationProgress::Phase phase) {
        progress.completedBytes = bytes;
        progress.phase = phase;
        meter.apply(progress, now);
    };
    using enum OperationProgress::Phase;
    at(0.0, 0, preparing);
    at(1.0, 0, copying);
    at(1.1, 50, copying);
    at(1.2, 60, copying);
    EXPECT_EQ(meter.speed(), std::nullopt);
    EXPECT_EQ(meter.remainingSeconds(progress), std::nullopt);
    at(1.5, 100, copying);
    EXPECT_DOUBLE_EQ(*meter.speed(), 200);
    EXPECT_DOUBLE_EQ(*meter.remainingSeconds(progress), 4.5);
    at(2.0, 150, verifying);
    at(3.5, 300, copying); // the whole interval counts, a pause in reports included
    EXPECT_DOUBLE_EQ(*meter.speed(), 0.6 * 200 + 0.4 * 100);
    EXPECT_THAT(meter.samples(), ElementsAre(SpeedMeter::Sample{0.1, 200}, SpeedMeter::Sample{0.3, 100}));
    progress.completedBytes = 2000;
    EXPECT_EQ(meter.remainingSeconds(progress), 0.0);
    progress.totalBytes = 0;
    EXPECT_EQ(meter.remainingSeconds(progress), std::nullopt);
}

TEST(RemainingTimeText, RoundsUp) {
    const std::pair<double, Text> table[] = {
        {0.0, {"progress.aboutSeconds", {}, 1}},     {0.2, {"progress.aboutSeconds", {}, 1}},
        {59.0, {"progress.aboutSeconds", {}, 59}},   {59.2, {"progress.aboutMinutes", {}, 1}},
        {61.0, {"progress.aboutMinutes", {}, 2}},    {3599.0, {"progress.aboutMinutes", {}, 60}},
        {3600.0, {"progress.aboutHours", {"0"}, 1}}, {7199.0, {"progress.aboutHours", {"60"}, 1}},
    };
    for (const auto& [seconds, text] : table)
        EXPECT_EQ(remainingTimeText(seconds), text) << seconds;
    for (const auto seconds :
         {std::optional<double>(), std::optional(std::numeric_limits<double>::infinity()),
          std::optional(std::numeric_limits<double>::quiet_NaN())})
        EXPECT_EQ(remainingTimeText(seconds), Text{"progress.calculating"});
}

} // namespace
} // namespace ombrel
