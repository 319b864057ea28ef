#include "operations/TransferScenario.h"
#include "support/FaultAt.h"
#include "support/StrikeAt.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
using Case = ItemOutcome::Case;
namespace fs = std::filesystem;

constexpr const char* foreign = "made by somebody else";
constexpr const char* secret = "not to be touched";
constexpr const char* growth = " and more";

/// What another program does to a transfer that is under way. `secrets` are folders that nobody may touch,
/// one on each side.
struct Strike {
    const char* name;
    /// Answers where it put something of its own, if it did.
    std::string (*act)(const TransferStage& stage);

    friend void PrintTo(const Strike& strike, std::ostream* out) { *out << strike.name; }
};

bool has(const std::string& path) {
    return fs::exists(fs::symlink_status(path));
}

void write(const std::string& path, const char* contents, std::ios::openmode mode = std::ios::trunc) {
    std::ofstream(path, std::ios::binary | mode) << contents;
}

/// The file that is struck: the item, or one in it, or one in a folder of it.
std::string victimOf(const TransferStage& stage, const char* inTree) {
    const auto item = stage.from.path("item");
    return fs::is_directory(fs::symlink_status(item)) ? item + inTree : item;
}

std::string replaceByFile(const std::string& victim, const std::string& refuge) {
    if (!has(victim) || std::rename(victim.c_str(), refuge.c_str()) != 0) return {};
    write(victim, foreign);
    return victim;
}

std::string replaceByLink(const std::string& victim, const std::string& refuge, const std::string& to) {
    if (!has(victim) || std::rename(victim.c_str(), refuge.c_str()) != 0) return {};
    fs::create_symlink(to, victim);
    return {};
}

std::string moveDestination(const TransferStage& stage) {
    std::rename(stage.to.path("target").c_str(), stage.to.path("target-moved").c_str());
    return {};
}

constexpr Strike strikes[] = {
    {"SourceReplacedByFile",
     [](const TransferStage& stage) {
         return replaceByFile(victimOf(stage, "/file"), stage.from.path("refuge"));
     }},
    {"InnerSourceReplacedByFile",
     [](const TransferStage& stage) {
         return replaceByFile(victimOf(stage, "/sub/inner"), stage.from.path("refuge"));
     }},
    {"SourceReplacedByLink",
     [](const TransferStage& stage) {
         return replaceByLink(stage.from.path("item"), stage.from.path("refuge"), stage.from.path("secrets"));
     }},
    {"InnerFolderReplacedByLink",
     [](const TransferStage& stage) {
         return replaceByLink(victimOf(stage, "/sub"), stage.from.path("refuge"), stage.from.path("secrets"));
     }},
    {"SourceGrows",
     [](const TransferStage& stage) -> std::string {
         const auto victim = victimOf(stage, "/file");
         if (has(victim)) write(victim, growth, std::ios::app);
         return {};
     }},
    {"SourceGainsAFile",
     [](const TransferStage& stage) -> std::string {
         const auto folder = stage.from.path("item");
         if (!fs::is_directory(fs::symlink_status(folder))) return {};
         write(folder + "/gained", foreign);
         return folder + "/gained";
     }},
    {"DestinationMovedAway", moveDestination},
    {"DestinationReplacedByLink",
     [](const TransferStage& stage) -> std::string {
         moveDestination(stage);
         fs::create_symlink(stage.to.path("secrets"), stage.to.path("target"));
         return {};
     }},
    {"ForeignItemAtTheTarget",
     [](const TransferStage& stage) -> std::string {
         // As editors save: what may stand there is replaced by a new file at once.
         const auto item = stage.to.path("target/item"), fresh = stage.to.path("target/fresh");
         if (fs::is_directory(fs::symlink_status(item))) return {};
         write(fresh, foreign);
         if (std::rename(fresh.c_str(), item.c_str()) != 0) return {};
         return item;
     }},
};

/// Every file of both sides by its path: contents, or where a link leads.
using Files = std::map<std::string, std::string>;

Files filesOf(const TransferStage& stage) {
    Files files;
    for (const auto& top : {stage.from.path(), stage.to.path()})
        for (const auto& entry : fs::recursive_directory_iterator(top)) {
            const auto path = entry.path().string();
            if (entry.is_symlink()) {
                files[path] = "-> " + fs::read_symlink(entry.path()).string();
            } else if (entry.is_regular_file()) {
                std::ifstream stream(path, std::ios::binary);
                files[path] = {std::istreambuf_iterator<char>(stream), {}};
            }
        }
    return files;
}

/// The staging name on the way to a file, empty when there is none.
std::string stagingNameIn(const std::string& path) {
    const auto start = path.find("/.hom-staging-");
    return start == std::string::npos ? "" : path.substr(start + 1, path.find('/', start + 1) - start - 1);
}

class TransferRace : public OnTransferVolumes<::testing::Test, class TransferRace> {};

class TransferRaceAtEveryCall : public TransferRace,
                                public ::testing::WithParamInterface<std::tuple<const char*, Strike>> {};

/// One run that was struck, judged by what is on disk.
struct Aftermath {
    const TransferScenario& scenario;
    const TransferStage& stage;
    const TransferTrial& trial;
    Files before, now;
    std::string placed;            // where the other program put something
    bool wasAskedAgain = false;    // a conflict was asked about after that
    bool overwroteTheCopy = false; // the other program did so itself, once the copy had its name
    bool struckAtRemoval = false;  // between the last look at something and its removal

    [[nodiscard]] bool isSomewhere(const std::string& contents) const {
        return std::ranges::any_of(now, [&](const auto& file) {
            const auto staging = stagingNameIn(file.first);
            return file.second == contents && (staging.empty() || trial.told().contains(staging));
        });
    }
    [[nodiscard]] bool isDone() const {
        const auto which = trial.report().items.at(0).outcome.which();
        return which == Case::completed || which == Case::copiedSourceKept;
    }
    [[nodiscard]] bool isLeftOut(const std::string& path) const {
        return std::ranges::any_of(trial.report().items, [&](const auto& item) {
            return item.source && item.source->path() == path && item.outcome.which() == Case::failed;
        });
    }
    [[nodiscard]] bool isAtDestination(const std::string& contents) const {
        return std::ranges::any_of(now, [&](const auto& file) {
            return file.second == contents && stagingNameIn(file.first).empty() &&
                   file.first.starts_with(stage.to.path("target"));
        });
    }
    [[nodiscard]] std::vector<std::string> broken() const {
        std::vector<std::string> lines;
        std::set<std::string> whole = {foreign};
        for (const auto& [path, contents] : before) {
            whole.insert(contents);
            whole.insert(contents + growth);
        }
        for (const auto& [path, contents] : before) {
            if (isSomewhere(contents) || isSomewhere(contents + growth)) continue;
            if (overwroteTheCopy && path.starts_with(stage.from.path("item"))) continue;
            const bool wasReplaced =
                path.starts_with(stage.to.path()) && scenario.answer == ConflictChoice::replace;
            if (!wasReplaced || !(isDone() || isSomewhere(foreign))) lines.push_back("lost: " + path);
        }
        for (const auto& [path, contents] : now) {
            const auto staging = stagingNameIn(path);
            if (!staging.empty() && !trial.told().contains(staging))
                lines.push_back("left behind untold: " + path);
            if (staging.empty() && !contents.starts_with("-> ") && !whole.contains(contents))
                lines.push_back("not whole: " + path);
        }
        for (const auto* tree : {&stage.from, &stage.to})
            if (tree->names("secrets") != std::vector<std::string>{"secret"} ||
                tree->contents("secrets/secret") != secret)
                lines.push_back("something was done beyond a link in " + tree->path());
        if (!placed.empty() && !isSomewhere(foreign) && !wasAskedAgain && !struckAtRemoval)
            lines.push_back("the other program's file is gone");
        judgeReport(lines);
        return lines;
    }
    void judgeReport(std::vector<std::string>& lines) const {
        const auto& outcome = trial.report().items.at(0).outcome;
        for (const auto& [path, contents] : before) {
            if (!path.starts_with(stage.from.path("item")) || contents.starts_with("-> ")) continue;
            const bool isThere = isAtDestination(contents) || isAtDestination(contents + growth);
            // Inside a folder, what had come or gone by then is copied as it was.
            const bool wasMoved = now.contains(stage.from.path("refuge") + path.substr(path.rfind('/'))) ||
                                  has(stage.from.path("refuge"));
            if (isDone() && !isThere && !wasMoved && !isLeftOut(path) && !overwroteTheCopy)
                lines.push_back("done, but not there: " + path);
            if (outcome.isSuccess() && scenario.kind == FileOperationKind::move && has(path) &&
                placed != path)
                lines.push_back("moved, but still there: " + path);
        }
    }
};

TEST_P(TransferRaceAtEveryCall, TouchesNothingOfOthersAndLosesNothing) {
    const auto& [name, strike] = GetParam();
    const auto& scenario = transferScenario(name);
    constexpr int mostCalls = 2000, mostFailures = 5;
    bool hasStruck = true;
    int nth = 1, failures = 0; // the first call opens the destination, wherever that is by then
    while (hasStruck && nth < mostCalls && failures < mostFailures) {
        const auto stage = volumes->stage(scenario);
        for (const auto* tree : {&stage.from, &stage.to}) {
            tree->folder("secrets");
            tree->file("secrets/secret", secret);
        }
        TransferTrial trial(scenario, stage);
        Aftermath aftermath{scenario, stage, trial, filesOf(stage), {}, {}};
        std::size_t asked = 0;
        std::optional<SystemCall::Kind> struck;
        {
            const StrikeAt meddler(++nth, [&] {
                asked = trial.questions();
                const auto copy = stage.to.path("target/item");
                const bool isCopy = fs::is_regular_file(fs::symlink_status(copy)) &&
                                    stage.to.contents("target/item") == "contents of item";
                aftermath.placed = strike.act(stage);
                aftermath.overwroteTheCopy = isCopy && aftermath.placed == copy;
            });
            trial.run();
            hasStruck = meddler.hasStruck();
            if (hasStruck) struck = meddler.struck();
        }
        aftermath.now = filesOf(stage);
        aftermath.wasAskedAgain = trial.questions() > asked;
        aftermath.struckAtRemoval = struck == SystemCall::Kind::unlink;
        const auto broken = aftermath.broken();
        EXPECT_THAT(broken, IsEmpty()) << scenario.name << ", " << strike.name << " before call " << nth
                                       << " (" << (struck ? nameOf(*struck) : "none") << ")\n"
                                       << textOf(trial.report());
        if (!broken.empty()) ++failures;
    }
    EXPECT_GT(nth, 10);
    EXPECT_FALSE(hasStruck);
}

INSTANTIATE_TEST_SUITE_P(All, TransferRaceAtEveryCall,
                         ::testing::Combine(::testing::Values("CopyFile", "CopyTree", "CopyFileReplacing",
                                                              "CopyTreeReplacingFile", "MoveFileAcross",
                                                              "MoveTreeAcross", "MoveAcrossReplacing",
                                                              "MoveTree", "MoveReplacing"),
                                            ::testing::ValuesIn(strikes)),
                         [](const auto& tested) {
                             return std::string(std::get<0>(tested.param)) + "_" +
                                    std::get<1>(tested.param).name;
                         });

TEST_F(TransferRace, KeepsTheSourceWhenTheCopyIsReplacedBeforeItIsSafe) {
    const auto& scenario = transferScenario("MoveFileAcross");
    const auto stage = volumes->stage(scenario);
    TransferTrial trial(scenario, stage);
    {
        const StrikeAt meddler(SystemCall::Kind::flush, 1, [&] {
            write(stage.to.path("target/fresh"), foreign);
            fs::rename(stage.to.path("target/fresh"), stage.to.path("target/item"));
        });
        trial.run();
        ASSERT_TRUE(meddler.hasStruck());
    }
    EXPECT_EQ(trial.report().items[0].outcome,
              ItemOutcome::failed(FileOperationError::Case::destinationExists));
    EXPECT_EQ(stage.from.contents("item"), "contents of item");
    EXPECT_EQ(stage.to.contents("target/item"), foreign);
}

TEST_F(TransferRace, GivesBackWhatWasReplacedWhenTheCopyIsTakenAwayBeforeItIsSafe) {
    const auto& scenario = transferScenario("MoveAcrossReplacing");
    const auto stage = volumes->stage(scenario);
    TransferTrial trial(scenario, stage);
    const auto old = stage.to.contents("target/item");
    {
        const StrikeAt meddler(SystemCall::Kind::flush, 1, [&] {
            ASSERT_EQ(stage.to.contents("target/item"), stage.from.contents("item"));
            fs::rename(stage.to.path("target/item"), stage.to.path("taken"));
        });
        trial.run();
        ASSERT_TRUE(meddler.hasStruck());
    }
    EXPECT_EQ(trial.report().items[0].outcome,
              ItemOutcome::failed(FileOperationError::Case::destinationMissing));
    EXPECT_EQ(stage.from.contents("item"), "contents of item");
    EXPECT_EQ(stage.to.contents("target/item"), old);
    EXPECT_THAT(stage.to.names("target"), ::testing::ElementsAre("item"));
}

} // namespace
} // namespace ombrel
