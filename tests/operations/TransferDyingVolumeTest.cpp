#include "operations/TransferScenario.h"
#include "support/TestMount.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
using Error = FileOperationError;

/// A driver without flags of renameat2 that loses one ability.
struct Driver {
    const char* name;
    const char* options; ///< as of `TestMount::limited`, but for the number of calls that still work
    friend void PrintTo(const Driver& driver, std::ostream* out) { *out << driver.name; }
};

constexpr Driver drivers[] = {
    {"RenameEIO", "fail=rename,number=5"},
    {"RenameEIOWithoutLinks", "nolinks,fail=rename,number=5"},
    {"LinkEIO", "fail=link,number=5"},
    {"UnlinkEIO", "fail=unlink,number=5"},
    {"UnlinkEIOWithoutLinks", "nolinks,fail=unlink,number=5"},
    {"MakeFolderENOSPC", "fail=mkdir,number=28"},
    {"MakeRecordEIO", "fail=symlink,number=5"},
    {"FlushEIO", "fail=fsync,number=5"},
    {"WriteENOSPC", "fail=write,number=28"},
    {"CloseEDQUOT", "fail=close,number=122"},
};

class DyingVolume : public ::testing::TestWithParam<std::tuple<const char*, Driver>> {};

TEST_P(DyingVolume, LosesNothingAndTellsTheTruth) {
    const auto& [name, driver] = GetParam();
    const auto& scenario = transferScenario(name);
    constexpr int mostCalls = 4;
    for (int after = 0; after <= mostCalls; ++after) {
        const TempTree backing;
        const auto mount =
            TestMount::limited(backing.path(), driver.options + (",after=" + std::to_string(after)));
        if (!mount) GTEST_SKIP() << mount.error();
        // What is made beforehand is made below the driver.
        std::optional<TransferStage> stage;
        stage.emplace(scenario.isAcross ? std::string() : backing.path(), backing.path());
        const auto seen = [&](const std::string& path) {
            return path.starts_with(backing.path()) ? (*mount)->path() + path.substr(backing.path().size())
                                                    : path;
        };
        TransferTrial trial(scenario, *stage, seen);
        trial.run();
        EXPECT_THAT(trial.broken(), IsEmpty())
            << scenario.name << " on " << driver.name << " after " << after << "\n"
            << textOf(trial.report());
    }
}

INSTANTIATE_TEST_SUITE_P(All, DyingVolume,
                         ::testing::Combine(::testing::Values("CopyFile", "CopyFileReplacing",
                                                              "CopyFileReplacingFolder", "MoveReplacing",
                                                              "MoveReplacingFolder", "MoveFileAcross",
                                                              "MoveAcrossReplacing", "MoveTreeAcross"),
                                            ::testing::ValuesIn(drivers)),
                         [](const auto& tested) {
                             return std::string(std::get<0>(tested.param)) + "_" +
                                    std::get<1>(tested.param).name;
                         });

TEST(DyingVolumeErrors, ThatCloseTellsLateKeepTheSource) {
    const TempTree backing, from;
    const auto mount = TestMount::limited(backing.path(), "fail=close,number=122"); // EDQUOT
    if (!mount) GTEST_SKIP() << mount.error();
    const FileReference source = FileReference::sampling(from.file("item", "contents"));
    for (const bool isMove : {false, true}) {
        const FileOperationService service;
        const auto report = isMove ? service.move({&source, 1}, (*mount)->url(), {}, {})
                                   : service.copy({&source, 1}, (*mount)->url(), {}, {});
        EXPECT_EQ(report.items[0].outcome, ItemOutcome::failed(Error::Case::noSpace)) << textOf(report);
        EXPECT_EQ(from.contents("item"), "contents");
        EXPECT_THAT(backing.names(), IsEmpty());
    }
}

} // namespace
} // namespace ombrel
