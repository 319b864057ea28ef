#include "operations/OperationControl.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Overall = OperationReport::Overall;
using std::chrono::steady_clock;

TEST(FileOperationErrorFromErrno, FollowsTheTable) {
    const std::pair<int, Error> table[] = {
        {EPERM, Error::Case::permissionDenied},
        {EACCES, Error::Case::permissionDenied},
        {ENOENT, Error::Case::sourceMissing},
        {EEXIST, Error::Case::destinationExists},
        {ENOTEMPTY, Error::Case::destinationExists},
        {ENOSPC, Error::Case::noSpace},
        {EDQUOT, Error::Case::noSpace},
        {EROFS, Error::Case::readOnlyVolume},
        {ENAMETOOLONG, Error::invalidName(InvalidNameReason::tooLong)},
        {ECANCELED, Error::Case::cancelled},
        {EIO, Error::posix(EIO)},
        {EXDEV, Error::posix(EXDEV)},
        {0, Error::posix(0)},
    };
    for (const auto& [number, error] : table)
        EXPECT_EQ(Error::from(number), error) << number;
}

TEST(FileOperationErrorText, NamesTheKeyAndItsArguments) {
    EXPECT_EQ(Error::invalidName(InvalidNameReason::windowsCharacters).text().key,
              "error.op.invalidName.windowsCharacters");
    EXPECT_EQ(Error::posix(EIO).text(),
              (Text{"error.op.posix", {POSIXFailure{EIO}.systemText(), std::to_string(EIO)}}));
    EXPECT_EQ(Error::system("unzip", 9).text(), (Text{"error.op.system", {"unzip", "9"}}));
    EXPECT_EQ(Error::partialCopyLeftBehind("a\xFF").text(),
              (Text{"error.op.partialCopyLeftBehind", {"a\xEF\xBF\xBD"}}));
    EXPECT_EQ(Error::sourceRemovalFailed(EIO).text(), Text{"error.op.sourceRemovalFailed"});
}

TEST(OperationReportOverall, FollowsTheRulesInOrder) {
    const auto done = ItemOutcome::completed(), skip = ItemOutcome::skipped(),
               stop = ItemOutcome::cancelled(), fail = ItemOutcome::failed(Error::Case::noSpace),
               kept = ItemOutcome::copiedSourceKept(FileURL(), Error::Case::sourceChanged);
    const std::pair<std::vector<ItemOutcome>, Overall> table[] = {
        {{}, Overall::nothingToDo},
        {{done, done}, Overall::succeeded},
        {{done, skip}, Overall::partiallySucceeded},
        {{done, stop}, Overall::partiallySucceeded},
        {{kept}, Overall::partiallySucceeded},
        {{kept, stop}, Overall::partiallySucceeded},
        {{kept, fail}, Overall::partiallySucceeded},
        {{skip, skip}, Overall::failed},
        {{fail, skip}, Overall::failed},
        {{fail, stop}, Overall::failed},
        {{skip, stop}, Overall::cancelled},
        {{stop}, Overall::cancelled},
    };
    for (const auto& [outcomes, expected] : table) {
        OperationReport report{FileOperationKind::copy, {}};
        for (const auto& outcome : outcomes)
            report.items.push_back({FileURL(), outcome});
        EXPECT_EQ(report.overall(), expected) << &outcomes - &table[0].first;
        EXPECT_EQ(report.succeeded().size() + report.unsuccessful().size(), outcomes.size());
    }
}

TEST(OperationProgressFraction, CountsBytesThenItemsAndNeverPassesOne) {
    OperationProgress progress;
    EXPECT_EQ(progress.fraction(), 0.0);
    progress.completedItems = 3;
    progress.totalItems = 4;
    EXPECT_EQ(progress.fraction(), 0.75);
    progress.completedBytes = 150;
    progress.totalBytes = 100;
    EXPECT_EQ(progress.fraction(), 1.0);
}

TEST(OperationControlPause, EndsAtOnceWhenItIsLiftedOrStopped) {
    OperationControl control;
    std::stop_source stop;
    EXPECT_TRUE(control.waitWhilePaused(stop.get_token()));

    for (const bool isLifted : {true, false}) {
        control.setPaused(true);
        bool mayGoOn = !isLifted;
        std::chrono::nanoseconds waited{};
        std::atomic<bool> isWaiting = false;
        steady_clock::time_point freed;
        std::jthread job([&] {
            isWaiting = true;
            mayGoOn = control.waitWhilePaused(stop.get_token());
            waited = steady_clock::now() - freed;
        });
        while (!isWaiting)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        freed = steady_clock::now();
        if (isLifted)
            control.setPaused(false);
        else
            stop.request_stop();
        job.join();
        EXPECT_EQ(mayGoOn, isLifted);
        EXPECT_LT(waited, std::chrono::milliseconds(50));
    }
}

} // namespace
} // namespace ombrel
