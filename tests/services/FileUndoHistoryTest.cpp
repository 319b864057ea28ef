#include "services/FileUndoHistory.h"

#include "operations/SystemTrash.h"
#include "services/OperationWorld.h"
#include "support/TestMount.h"
#include "support/TreeSnapshot.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace ombrel {

void PrintTo(const FileUndoHistory::Problem& problem, std::ostream* stream) {
    *stream << problem.url.path() << ": " << rawValue(problem.error.which());
}

namespace {

namespace fs = std::filesystem;
using testing::Compare;
using testing::differences;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::OperationWorld;
using testing::runUntil;
using ::testing::SizeIs;
using testing::snapshotOf;
using testing::TempTree;
using testing::TestMount;
using testing::TreeSnapshot;
using Case = FileOperationError::Case;
using Kind = FileOperationKind;
using Problem = FileUndoHistory::Problem;

/// Operations whose steps are recorded, in a folder beside a trash of its own.
class History : public ::testing::Test, public OperationWorld {
protected:
    History() {
        service.trash = std::make_shared<SystemTrash>(
            SystemTrash::Places{trash.url("Trash"), trash.url("home"), ::getuid()});
        history = std::make_unique<FileUndoHistory>(*center, service);
        center->scriptedAnswers = [](const OperationPrompt::Kind& kind) {
            using Answer = OperationCenter::ScriptedAnswer;
            return std::holds_alternative<OperationPrompt::Conflict>(kind)
                       ? Answer(ConflictDecision{ConflictChoice::keepBoth, false})
                       : Answer(ErrorDecision{ErrorChoice::skip, false});
        };
    }

    OperationReport perform(JobPlan plan) {
        std::optional<JobResult> result;
        center->run(std::move(plan), [&](const JobResult& told) { result = told; });
        EXPECT_TRUE(runUntil([&] { return result.has_value(); }));
        if (!result) return {};
        history->record(result->undo);
        return result->report;
    }
    OperationReport copy(const std::vector<FileURL>& sources, const FileURL& to) {
        return perform(transfer(Kind::copy, sources, to));
    }
    OperationReport move(const std::vector<FileURL>& sources, const FileURL& to) {
        return perform(transfer(Kind::move, sources, to));
    }
    OperationReport toTrash(const FileURL& item) {
        return perform(JobPlan::moveToTrash(service, {{item, std::nullopt}}));
    }
    OperationReport rename(const FileURL& item, const std::string& name) {
        return perform(JobPlan::rename(service, {item, std::nullopt}, name));
    }
    /// Answers what could not be handled.
    std::vector<Problem> undo() {
        history->undo();
        EXPECT_TRUE(runUntil([&] { return !history->isRunning(); }));
        return history->problems();
    }
    std::vector<Problem> redo() {
        history->redo();
        EXPECT_TRUE(runUntil([&] { return !history->isRunning(); }));
        return history->problems();
    }
    [[nodiscard]] std::vector<std::string> changesSince(const TreeSnapshot& before) const {
        return differences(before, snapshotOf(tree.url()), Compare::metadata);
    }
    /// What was done since `before` is undone, done again and undone.
    void expectUndoneAndRedone(const TreeSnapshot& before) {
        const auto after = snapshotOf(tree.url());
        EXPECT_THAT(changesSince(before), ::testing::Not(IsEmpty()));
        EXPECT_THAT(undo(), IsEmpty());
        EXPECT_THAT(changesSince(before), IsEmpty());
        EXPECT_THAT(redo(), IsEmpty());
        EXPECT_THAT(changesSince(after), IsEmpty());
        EXPECT_THAT(undo(), IsEmpty());
        EXPECT_THAT(changesSince(before), IsEmpty());
        EXPECT_FALSE(history->canUndo());
    }

    TempTree trash;
    std::unique_ptr<FileUndoHistory> history;
};

FileUndoStep stepOf(FileUndoStep::Kind kind, const std::string& name) {
    return {kind, FileUndoStep::RenameBack{{FileURL().appending(name), std::nullopt}, "x"}};
}

// ---- What is kept

TEST_F(History, KeepsTheNewestFiftySteps) {
    for (int i = 0; i < 51; ++i)
        history->record(stepOf(FileUndoStep::Kind::rename, std::to_string(i)));
    ASSERT_THAT(history->undoSteps(), SizeIs(50));
    EXPECT_EQ(std::get<FileUndoStep::RenameBack>(history->undoSteps().front().action.what).item.url.path(),
              "/1");
}

TEST_F(History, TakesNoStepThatDoesNothing) {
    history->record({FileUndoStep::Kind::move, FileUndoStep::MoveBack{}});
    FileUndoStep::Sequence empty;
    empty.actions.emplace_back(FileUndoStep::Trash{});
    history->record({FileUndoStep::Kind::copy, std::move(empty)});
    EXPECT_FALSE(history->canUndo());
    EXPECT_EQ(history->undoTitle(), std::nullopt);
}

TEST_F(History, NamesWhatWouldBeUndone) {
    history->record(stepOf(FileUndoStep::Kind::copy, "a"));
    history->record(stepOf(FileUndoStep::Kind::delete_, "b"));
    EXPECT_EQ(history->undoTitle()->localized(), "Undo Delete");
    EXPECT_EQ(history->redoTitle(), std::nullopt);
}

TEST_F(History, ForgetsWhatWasUndoneOnceSomethingNewIsDone) {
    rename(tree.file("a"), "b");
    undo();
    EXPECT_EQ(history->redoTitle()->localized(), "Redo Rename");
    rename(tree.url("a"), "c");
    EXPECT_FALSE(history->canRedo());
    EXPECT_THAT(history->undoSteps(), SizeIs(1));
}

TEST_F(History, OffersNothingWhileOneRunsOrOperationsAreRefused) {
    rename(tree.file("a"), "b");
    rename(tree.url("b"), "c");
    history->undo();
    EXPECT_TRUE(history->isRunning());
    EXPECT_FALSE(history->canUndo());
    EXPECT_FALSE(history->canRedo());
    history->undo();
    ASSERT_TRUE(runUntil([&] { return !history->isRunning(); }));
    EXPECT_THAT(tree.names(), ElementsAre("b")) << "the second call had no effect";
    center->setRefusal(FileOperationError::Case::permissionDenied);
    EXPECT_FALSE(history->canUndo());
    history->undo();
    EXPECT_THAT(history->undoSteps(), SizeIs(1));
}

// ---- Each operation, undone and done again

class Undoing : public History {
protected:
    Undoing() {
        tree.folder("from");
        tree.folder("to");
        tree.folder("from/folder");
        ::chmod(tree.path("from/folder").c_str(), 0750);
        tree.file("from/folder/inner", "inner");
        tree.file("from/a", "a");
        tree.file("from/b", "b");
        before = snapshotOf(tree.url());
    }
    TreeSnapshot before;
};

TEST_F(Undoing, ACopyPutsTheCopiesIntoTheTrash) {
    copy({tree.url("from/a"), tree.url("from/folder")}, tree.url("to"));
    expectUndoneAndRedone(before);
}

TEST_F(Undoing, ACopyBesideItself) {
    copy({tree.url("from/a")}, tree.url("from"));
    expectUndoneAndRedone(before);
}

TEST_F(Undoing, AMove) {
    move({tree.url("from/a"), tree.url("from/folder")}, tree.url("to"));
    expectUndoneAndRedone(before);
}

TEST_F(Undoing, ARenameAndNewItemsAndTheTrash) {
    rename(tree.url("from/folder"), "renamed");
    expectUndoneAndRedone(before);
    perform(JobPlan::createFolder(service, tree.url("to"), "new"));
    expectUndoneAndRedone(before);
    perform(JobPlan::createEmptyFile(service, tree.url("to"), "new.txt"));
    expectUndoneAndRedone(before);
    toTrash(tree.url("from/folder"));
    expectUndoneAndRedone(before);
    EXPECT_FALSE(trash.exists("Trash/info/folder.trashinfo")) << "put back removes the record";
}

TEST_F(Undoing, AMoveThatKeptBothBringsBackTheVeryName) {
    tree.file("to/a", "other");
    before = snapshotOf(tree.url());
    move({tree.url("from/a")}, tree.url("to"));
    ASSERT_TRUE(tree.exists("to/a (2)"));
    expectUndoneAndRedone(before);
}

/// Answers folders with a merge and files with both.
void mergeFolders(OperationCenter& center) {
    center.scriptedAnswers =
        [](const OperationPrompt::Kind& kind) -> std::optional<OperationCenter::ScriptedAnswer> {
        const auto* const conflict = std::get_if<OperationPrompt::Conflict>(&kind);
        if (!conflict) return ErrorDecision{ErrorChoice::skip, false};
        const bool areFolders = conflict->context.sourceIsDirectory && conflict->context.existingIsDirectory;
        return ConflictDecision{areFolders ? ConflictChoice::replace : ConflictChoice::keepBoth, false};
    };
}

TEST_F(Undoing, AMergeTakesApartWhatWasPutTogether) {
    mergeFolders(*center);
    tree.folder("to/folder");
    tree.file("to/folder/inner", "other");
    tree.folder("from/folder/deep");
    tree.folder("to/folder/deep");
    tree.file("from/folder/deep/x", "x");
    ASSERT_EQ(::setxattr(tree.path("from/folder/deep").c_str(), "user.note", "kept", 4, 0), 0);
    ::chmod(tree.path("from/folder/deep").c_str(), 0710);
    before = snapshotOf(tree.url());
    copy({tree.url("from/folder")}, tree.url("to"));
    expectUndoneAndRedone(before);
    move({tree.url("from/folder")}, tree.url("to"));
    EXPECT_FALSE(tree.exists("from/folder")) << "it became empty and went";
    expectUndoneAndRedone(before);
}

TEST_F(Undoing, StepsFromTheLastToTheFirstAcrossVolumes) {
    const auto memory = TestMount::tmpfs();
    if (!memory) GTEST_SKIP() << memory.error();
    const TempTree other((*memory)->path());
    perform(JobPlan::createEmptyFile(service, tree.url("from/folder"), "new"));
    move({tree.url("from/folder")}, other.url());
    rename(other.url("folder"), "renamed");
    const auto elsewhere = snapshotOf(other.url());
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 3; ++i)
            EXPECT_THAT(undo(), IsEmpty()) << "each move makes new objects of the items";
        EXPECT_THAT(changesSince(before), IsEmpty());
        for (int i = 0; i < 3; ++i)
            EXPECT_THAT(redo(), IsEmpty());
        EXPECT_THAT(differences(elsewhere, snapshotOf(other.url()), Compare::metadata), IsEmpty());
    }
}

// ---- When something is not as it was

TEST_F(Undoing, ReportsWhatIsGoneAndHandlesTheRest) {
    move({tree.url("from/a"), tree.url("from/b")}, tree.url("to"));
    fs::remove(tree.path("to/a"));
    EXPECT_THAT(undo(), ElementsAre(Problem{tree.url("to/a"), Case::sourceMissing}));
    EXPECT_THAT(tree.names("from"), ElementsAre("b", "folder"));
    EXPECT_THAT(redo(), IsEmpty());
    EXPECT_THAT(tree.names("to"), ElementsAre("b"));
}

TEST_F(Undoing, LeavesAnotherObjectOfTheSameNameAlone) {
    move({tree.url("from/a")}, tree.url("to"));
    tree.file("to/fresh", "another");
    fs::rename(tree.path("to/fresh"), tree.path("to/a"));
    EXPECT_THAT(undo(), ElementsAre(Problem{tree.url("to/a"), Case::sourceChanged}));
    EXPECT_EQ(tree.contents("to/a"), "another");
}

TEST_F(Undoing, NeverTrashesWhatWasChangedSince) {
    copy({tree.url("from/a"), tree.url("from/b"), tree.url("from/folder")}, tree.url("to"));
    std::ofstream(tree.path("to/a"), std::ios::app) << "more";
    std::ofstream(tree.path("to/folder/added")) << "new";
    EXPECT_THAT(undo(), ::testing::UnorderedElementsAre(Problem{tree.url("to/a"), Case::sourceChanged},
                                                        Problem{tree.url("to/folder"), Case::sourceChanged}));
    EXPECT_THAT(tree.names("to"), ElementsAre("a", "folder"));
    EXPECT_THAT(center->leftReports(), IsEmpty()) << "whoever asked for the undo tells the problems";
}

TEST_F(Undoing, DoesNotTakeAPlaceThatIsTaken) {
    move({tree.url("from/a")}, tree.url("to"));
    tree.file("from/a", "newcomer");
    undo();
    EXPECT_EQ(tree.contents("from/a"), "newcomer");
    EXPECT_EQ(tree.contents("from/a (2)"), "a") << "the answer was to keep both";
}

TEST_F(Undoing, KeepsWhatIsLeftWhenItIsCancelled) {
    move({tree.url("from/a"), tree.url("from/b")}, tree.url("to"));
    const auto after = snapshotOf(tree.url());
    tree.file("from/a", "newcomer");
    const auto answers = center->scriptedAnswers;
    center->scriptedAnswers = [](const OperationPrompt::Kind&) {
        return ConflictDecision{ConflictChoice::cancel, true};
    };
    undo();
    EXPECT_TRUE(tree.exists("to/a"));
    EXPECT_TRUE(history->canUndo()) << "it can be tried again";
    fs::remove(tree.path("from/a"));
    center->scriptedAnswers = answers;
    EXPECT_THAT(undo(), IsEmpty());
    EXPECT_THAT(changesSince(before), IsEmpty());
}

TEST_F(Undoing, SurvivesThatTheHistoryGoesMeanwhile) {
    move({tree.url("from/a")}, tree.url("to"));
    history->undo();
    history.reset();
    ASSERT_TRUE(runUntil([&] { return center->jobs().empty(); }));
    EXPECT_TRUE(tree.exists("from/a"));
}

// ---- Many operations, as they come

/// Random operations without replace and permanent delete on one or two volumes.
class RandomOperations {
public:
    RandomOperations(unsigned seed, std::vector<FileURL> roots) : random_(seed), roots_(std::move(roots)) {}

    void fill() {
        for (const auto& root : roots_) {
            for (int i = 0; i < 4; ++i)
                fs::create_directories(root.path() + "/d" + std::to_string(i) + "/e" + std::to_string(i % 2));
            for (int i = 0; i < 8; ++i)
                write(pickFolder(root) + "/f" + std::to_string(pick(5)));
        }
        for (const auto& root : roots_)
            for (const auto& path : entries(root))
                if (!fs::is_symlink(path)) ::chmod(path.c_str(), pick(2) ? 0755 : 0700);
    }
    /// A file of its own contents, unless the name is taken.
    std::string write(const std::string& path) {
        const auto contents = "contents " + std::to_string(++written_);
        if (!fs::exists(path)) std::ofstream(path) << contents;
        return contents;
    }

    JobPlan next(const FileOperationService& service) {
        const auto to = folder();
        switch (pick(8)) {
        case 0:
        case 1: return JobPlan::transfer(service, Kind::copy, items(), to);
        case 2:
        case 3:
        case 4: return JobPlan::transfer(service, Kind::move, items(), to);
        case 5: return JobPlan::rename(service, items().front().reference, name());
        case 6:
            return pick(2) ? JobPlan::createFolder(service, to, name())
                           : JobPlan::createEmptyFile(service, to, name());
        default: return JobPlan::moveToTrash(service, {items().front().reference});
        }
    }
    OperationCenter::ScriptedAnswer answer(const OperationPrompt::Kind& kind) {
        const auto* const conflict = std::get_if<OperationPrompt::Conflict>(&kind);
        if (!conflict) return ErrorDecision{ErrorChoice::skip, false};
        const bool areFolders = conflict->context.sourceIsDirectory && conflict->context.existingIsDirectory;
        if (areFolders && pick(3) > 0) return ConflictDecision{ConflictChoice::replace, false};
        return ConflictDecision{pick(4) > 0 ? ConflictChoice::keepBoth : ConflictChoice::skip, false};
    }
    FileURL folder() { return *FileURL::fromPath(pickFolder(roots_[pick(roots_.size())])); }
    std::optional<std::string> file() {
        std::vector<std::string> files;
        for (const auto& path : entries(roots_[pick(roots_.size())]))
            if (fs::is_regular_file(path)) files.push_back(path);
        if (files.empty()) return std::nullopt;
        return files[pick(files.size())];
    }
    std::size_t pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }

private:
    static std::vector<std::string> entries(const FileURL& root) {
        std::vector<std::string> paths;
        for (const auto& entry : fs::recursive_directory_iterator(root.path()))
            paths.push_back(entry.path());
        std::ranges::sort(paths);
        return paths;
    }
    std::string pickFolder(const FileURL& root) {
        std::vector<std::string> folders = {root.path()};
        for (const auto& path : entries(root))
            if (fs::is_directory(path)) folders.push_back(path);
        return folders[pick(folders.size())];
    }
    std::vector<TransferItem> items() {
        const auto all = entries(roots_[pick(roots_.size())]);
        std::vector<TransferItem> picked;
        if (all.empty()) picked.emplace_back(FileReference{roots_.front().appending("nothing"), {}});
        const auto first = all.empty() ? 0 : pick(all.size());
        for (std::size_t i = first; i < std::min(all.size(), first + 1 + pick(2)); ++i)
            if (i == first || !all[i].starts_with(all[first] + "/"))
                picked.emplace_back(FileReference{*FileURL::fromPath(all[i]), std::nullopt});
        return picked;
    }
    std::string name() { return (pick(2) ? "f" : "d") + std::to_string(pick(6)); }

    std::mt19937 random_;
    const std::vector<FileURL> roots_;
    int written_ = 0;
};

struct World {
    const char* name;
    bool hasSecondVolume;
    friend void PrintTo(const World& world, std::ostream* stream) { *stream << world.name; }
};

class ManyOperations : public History, public ::testing::WithParamInterface<World> {
protected:
    void SetUp() override {
        roots.push_back(tree.url());
        if (!GetParam().hasSecondVolume) return;
        auto made = TestMount::tmpfs();
        if (!made) GTEST_SKIP() << made.error();
        memory = std::move(*made);
        second = std::make_unique<TempTree>(memory->path());
        roots.push_back(second->url());
    }
    [[nodiscard]] std::vector<TreeSnapshot> snapshots() const {
        std::vector<TreeSnapshot> all;
        for (const auto& root : roots)
            all.push_back(snapshotOf(root));
        return all;
    }
    void expectSame(const std::vector<TreeSnapshot>& expected, const std::string& when) const {
        for (std::size_t i = 0; i < roots.size(); ++i)
            EXPECT_THAT(differences(expected[i], snapshotOf(roots[i]), Compare::metadata), IsEmpty()) << when;
    }
    void performMany(RandomOperations& random, int count) {
        center->scriptedAnswers = [&](const OperationPrompt::Kind& kind) { return random.answer(kind); };
        for (int i = 0; i < count; ++i)
            perform(random.next(service));
        // From here on no question is to come.
        center->scriptedAnswers =
            [this](const OperationPrompt::Kind& kind) -> std::optional<OperationCenter::ScriptedAnswer> {
            ++questions;
            if (std::holds_alternative<ErrorContext>(kind)) return ErrorDecision{ErrorChoice::skip, false};
            return ConflictDecision{ConflictChoice::keepBoth, false};
        };
    }
    /// The contents of all files, in the trees and in the trash.
    [[nodiscard]] std::set<std::string> allContents(bool withTrash) const {
        std::set<std::string> found;
        auto places = roots;
        if (withTrash) places.push_back(trash.url());
        if (withTrash && memory) places.push_back(memory->url());
        for (const auto& place : places)
            for (const auto& entry : fs::recursive_directory_iterator(place.path()))
                if (entry.is_regular_file() && entry.path().extension() != ".trashinfo" &&
                    entry.path().filename() != "directorysizes") {
                    std::ifstream file(entry.path());
                    found.emplace(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
                }
        return found;
    }
    std::vector<FileURL> roots;
    std::unique_ptr<TestMount> memory;
    std::unique_ptr<TempTree> second;
    int questions = 0;
};

TEST_P(ManyOperations, UndoneAndDoneAgainGiveTheVeryTrees) {
    for (unsigned seed = 1; seed <= 6 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomOperations random(seed, roots);
        if (seed == 1) random.fill();
        const auto before = snapshots();
        performMany(random, 25);
        const auto after = snapshots();
        for (int round = 0; round < 2 && !HasFailure(); ++round) {
            while (history->canUndo() && !HasFailure())
                EXPECT_THAT(undo(), IsEmpty());
            expectSame(before, "undone");
            while (history->canRedo() && !HasFailure())
                EXPECT_THAT(redo(), IsEmpty());
            expectSame(after, "done again");
        }
        EXPECT_EQ(questions, 0);
        while (history->canUndo() && !HasFailure())
            undo();
        history = std::make_unique<FileUndoHistory>(*center, service);
    }
}

TEST_P(ManyOperations, WithAForeignChangeInBetweenLoseNothing) {
    for (unsigned seed = 101; seed <= 106 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomOperations random(seed, roots);
        if (seed == 101) random.fill();
        performMany(random, 20);
        auto kept = allContents(true);
        std::set<std::string> foreign;
        for (int i = 0; i < 3; ++i) {
            const auto mark = "foreign" + std::to_string(seed * 10 + static_cast<unsigned>(i));
            const auto file = random.file();
            if (i < 2 || !file) {
                std::ofstream(random.folder().path() + "/" + mark) << mark;
                foreign.insert(mark);
                continue;
            }
            std::ifstream old(*file);
            const std::string contents{std::istreambuf_iterator<char>(old), std::istreambuf_iterator<char>()};
            kept.erase(contents);
            foreign.erase(contents);
            foreign.insert(contents + "edited");
            std::ofstream(*file, std::ios::app) << "edited";
        }
        while (history->canUndo())
            undo();
        EXPECT_THAT(foreign,
                    ::testing::Each(::testing::ResultOf(
                        [here = allContents(false)](const std::string& one) { return here.contains(one); },
                        ::testing::IsTrue())))
            << "what others wrote stays in sight";
        while (history->canRedo())
            redo();
        const auto now = allContents(true);
        for (const auto& contents : kept)
            EXPECT_TRUE(now.contains(contents)) << "lost: " << contents;
        for (const auto& contents : foreign)
            EXPECT_TRUE(now.contains(contents)) << "lost: " << contents;
        history = std::make_unique<FileUndoHistory>(*center, service);
    }
}

INSTANTIATE_TEST_SUITE_P(On, ManyOperations,
                         ::testing::Values(World{"OneVolume", false}, World{"TwoVolumes", true}),
                         [](const auto& on) { return on.param.name; });

} // namespace
} // namespace ombrel
