#include "operations/ItemCreation.h"
#include "operations/ItemRename.h"
#include "support/FaultAt.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <ostream>
#include <string>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using testing::TempTree;
using testing::TestMount;
using Error = FileOperationError;

ItemOutcome renamed(const FileURL& url, std::string_view name) {
    return renameOne(FileReference::sampling(url), name);
}

TEST(RenameOne, TakesTheNewNameOfFilesFoldersAndLinks) {
    const TempTree tree;
    EXPECT_EQ(renamed(tree.file("a", "x"), "b"), ItemOutcome::completed(tree.url("b")));
    EXPECT_EQ(renamed(tree.folder("f"), "g h"), ItemOutcome::completed(tree.url("g h")));
    EXPECT_EQ(renamed(tree.symlink("broken", "nowhere"), "\xFF\n"),
              ItemOutcome::completed(tree.url("\xFF\n")));
    EXPECT_THAT(tree.names(), ElementsAre("b", "g h", "\xFF\n"));
    EXPECT_EQ(tree.contents("b"), "x");
}

TEST(RenameOne, ToTheSameNameChangesNothing) {
    const TempTree tree;
    EXPECT_TRUE(renamed(tree.file("a"), "a").isSuccess());
    EXPECT_EQ(renamed(tree.url("gone"), "gone"), ItemOutcome::failed(Error::Case::sourceMissing));
}

TEST(RenameOne, ChecksTheNameBeforeTheDisk) {
    const TempTree tree;
    const auto refused = [&](std::string_view name) { return *renamed(tree.url("gone"), name).error(); };
    EXPECT_EQ(refused("a/b"), Error::invalidName(InvalidNameReason::containsSlash));
    EXPECT_EQ(refused(""), Error::invalidName(InvalidNameReason::empty));
    EXPECT_EQ(refused("."), Error::invalidName(InvalidNameReason::reserved));
    EXPECT_EQ(refused(std::string(256, 'n')), Error::invalidName(InvalidNameReason::tooLong));
    EXPECT_EQ(refused("fine"), Error(Error::Case::sourceMissing));
}

TEST(RenameOne, NeverOverwrites) {
    const TempTree tree;
    tree.file("file", "kept");
    tree.folder("empty");
    tree.symlink("link", "nowhere");
    for (const auto* name : {"file", "empty", "link"}) {
        EXPECT_EQ(renamed(tree.file("source", "s"), name),
                  ItemOutcome::failed(Error::Case::destinationExists));
        EXPECT_EQ(renamed(tree.folder("folder"), name), ItemOutcome::failed(Error::Case::destinationExists));
        ::rmdir(tree.path("folder").c_str());
    }
    EXPECT_EQ(tree.contents("file"), "kept");
    EXPECT_THAT(tree.names(), ElementsAre("empty", "file", "link", "source"));
}

TEST(RenameOne, RefusesAnItemThatIsNotTheOneThatWasPicked) {
    const TempTree tree;
    const auto reference = FileReference::sampling(tree.file("a", "old"));
    tree.file("other", "new");
    ASSERT_EQ(::rename(tree.path("other").c_str(), tree.path("a").c_str()), 0);
    EXPECT_EQ(renameOne(reference, "b"), ItemOutcome::failed(Error::Case::sourceChanged));
    EXPECT_THAT(tree.names(), ElementsAre("a"));
}

// Two hard links of one file answer to the same identity, and a plain rename of one onto the other does
// nothing.
TEST(RenameOne, TakesAHardLinkInOtherLettersForAnotherItem) {
    const TempTree tree;
    const auto url = tree.file("report.txt", "x");
    ASSERT_EQ(::link(url.path().c_str(), tree.path("Report.txt").c_str()), 0);
    EXPECT_EQ(renamed(url, "Report.txt"), ItemOutcome::failed(Error::Case::destinationExists));
    EXPECT_THAT(tree.names(), ElementsAre("Report.txt", "report.txt"));
}

TEST(RenameOne, ChangesLetterCaseWhereTheFileSystemIgnoresIt) {
    for (const auto* format : {"exfat", "vfat"}) {
        const auto mount = TestMount::image(format);
        if (!mount) {
            std::printf("%s: %s\n", format, mount.error().c_str());
            continue;
        }
        const TempTree tree((*mount)->path());
        const auto url = tree.file("report.txt", "x");
        tree.file("Other.txt", "y");
        EXPECT_EQ(renamed(url, "Report.txt"), ItemOutcome::completed(tree.url("Report.txt"))) << format;
        EXPECT_THAT(tree.names(), ElementsAre("Other.txt", "Report.txt")) << format;
        EXPECT_EQ(renamed(tree.folder("d\xC3\xA9j\xC3\xA0"), "D\xC3\x89J\xC3\x80").which(),
                  ItemOutcome::Case::completed);
        EXPECT_EQ(renamed(tree.url("Report.txt"), "other.TXT"),
                  ItemOutcome::failed(Error::Case::destinationExists));
        EXPECT_EQ(tree.contents("Other.txt") + tree.contents("Report.txt"), "yx");
    }
}

TEST(RenameOne, RefusesTheRootFolder) {
    EXPECT_EQ(renamed(FileURL(), "a").which(), ItemOutcome::Case::failed);
}

TEST(CreateExclusive, TakesTheFirstFreeNameAndWritesTheContents) {
    const TempTree tree;
    tree.folder("Photos");
    tree.file("Photos (2)");
    tree.symlink("Notes.txt", "nowhere");
    const auto made = [&](std::string_view name, NewItem item, std::string_view contents = {}) {
        return createExclusive(tree.url(), name, item, contents);
    };
    EXPECT_EQ(made("Photos", NewItem::folder), ItemOutcome::completed(tree.url("Photos (3)")));
    EXPECT_EQ(made("Notes.txt", NewItem::file, "text"), ItemOutcome::completed(tree.url("Notes (2).txt")));
    EXPECT_EQ(made("Archive.old", NewItem::folder), ItemOutcome::completed(tree.url("Archive.old")));
    EXPECT_EQ(made("Archive.old", NewItem::folder), ItemOutcome::completed(tree.url("Archive.old (2)")));
    EXPECT_EQ(made(".x", NewItem::file), ItemOutcome::completed(tree.url(".x")));
    EXPECT_EQ(made(".x", NewItem::file), ItemOutcome::completed(tree.url(".x (2)")));
    EXPECT_EQ(tree.contents("Notes (2).txt"), "text");
    EXPECT_FALSE(tree.exists("nowhere"));
}

TEST(CreateExclusive, SaysWhatIsInTheWay) {
    const TempTree tree;
    const auto made = [&](std::string_view folder, std::string_view name) {
        return createExclusive(tree.url(folder), name, NewItem::file);
    };
    tree.folder("full");
    for (int number = 1; number <= 500; ++number)
        tree.file("full/n" + (number == 1 ? "" : " (" + std::to_string(number) + ")"));
    EXPECT_EQ(made("full", "n"), ItemOutcome::failed(Error::Case::destinationExists));
    EXPECT_EQ(tree.names("full").size(), 500U);
    EXPECT_EQ(made("gone", "n"), ItemOutcome::failed(Error::Case::sourceMissing));
    EXPECT_EQ(made("full", "a/b"), ItemOutcome::failed(Error::invalidName(InvalidNameReason::containsSlash)));
    const std::string longest(255, 'n');
    EXPECT_TRUE(made("full", longest).isSuccess());
    EXPECT_EQ(made("full", longest), ItemOutcome::failed(Error::invalidName(InvalidNameReason::tooLong)));
}

TEST(CreateFromTemplate, TakesTheFirstFreeNameAndCopiesEverything) {
    const TempTree tree;
    const TempTree templates;
    const auto letter = templates.file("letter.odt", "Dear");
    const auto package = templates.folder("Site.app");
    templates.file("Site.app/index", "<html>");
    const auto made = [&](const FileURL& source, const char* folder, std::string_view name) {
        const FileOperationService service{std::make_shared<testing::NoTrash>()};
        const auto report =
            service.createFromTemplate(FileReference::sampling(source), tree.url(folder), name);
        EXPECT_EQ(report.items.size(), 1U);
        EXPECT_FALSE(report.items[0].source);
        return report.items[0].outcome;
    };
    tree.folder("d");
    tree.symlink("d/a.odt", "nowhere");
    EXPECT_EQ(made(letter, "d", "a.odt"), ItemOutcome::completed(tree.url("d/a (2).odt")));
    EXPECT_EQ(made(letter, "d", "a.odt"), ItemOutcome::completed(tree.url("d/a (3).odt")));
    EXPECT_EQ(tree.contents("d/a (3).odt"), "Dear");
    for (const char* name : {"d/S.app", "d/S.app (2)"}) {
        EXPECT_EQ(made(package, "d", "S.app"),
                  ItemOutcome::completed(tree.url(name).marked(FileURL::Mark::directory)));
        EXPECT_EQ(tree.contents(std::string(name) + "/index"), "<html>");
    }
    // Its own folder is like any other.
    const auto own = tree.file("own.txt", "x");
    EXPECT_EQ(made(own, "", "own.txt"), ItemOutcome::completed(tree.url("own (2).txt")));

    EXPECT_EQ(made(letter, "gone", "a"), ItemOutcome::failed(Error::Case::destinationMissing));
    EXPECT_EQ(made(templates.url("gone"), "d", "a"), ItemOutcome::failed(Error::Case::sourceMissing));
    EXPECT_EQ(made(letter, "d", "a/b"),
              ItemOutcome::failed(Error::invalidName(InvalidNameReason::containsSlash)));
    tree.folder("full");
    for (int number = 1; number <= 500; ++number)
        tree.file("full/n" + (number == 1 ? "" : " (" + std::to_string(number) + ")"));
    EXPECT_EQ(made(letter, "full", "n"), ItemOutcome::failed(Error::Case::destinationExists));
    EXPECT_EQ(tree.names("full").size(), 500U);
}

// ---- Every call fails once

struct Named {
    const char* label;
    SystemCall::Fault fault;
    friend void PrintTo(const Named& named, std::ostream* out) { *out << named.label; }
};

class RenameAndCreateFaults : public ::testing::TestWithParam<Named> {
protected:
    /// Calls `once` with the tree emptied each time until it runs through, then `judge` with what it said.
    template <typename Prepare, typename Once, typename Judge>
    static void sweep(const std::string& base, Prepare prepare, Once once, Judge judge) {
        bool wasHit = true;
        int nth = 0;
        while (wasHit && nth < 500) {
            const TempTree tree(base);
            prepare(tree);
            std::optional<ItemOutcome> outcome;
            {
                const testing::FaultAt fault(++nth, GetParam().fault);
                outcome = once(tree);
                wasHit = fault.hit().has_value();
            }
            SCOPED_TRACE("call " + std::to_string(nth));
            judge(tree, *outcome);
            EXPECT_TRUE(outcome->isSuccess() || (wasHit && !GetParam().fault.isShort));
        }
        EXPECT_GT(nth, 2);
    }
};

TEST_P(RenameAndCreateFaults, LeaveTheOldNameOrTheNewOne) {
    const auto prepare = [](const TempTree& tree) {
        tree.file("report.txt", "x");
        tree.file("beside", "y");
    };
    const auto judge = [](const TempTree& tree, const ItemOutcome& outcome) {
        const std::string name = outcome.isSuccess() ? "Report.txt" : "report.txt";
        EXPECT_THAT(tree.names(), ::testing::UnorderedElementsAre("beside", name));
        EXPECT_EQ(tree.contents(name) + tree.contents("beside"), "xy");
    };
    const auto once = [](const TempTree& tree) { return renamed(tree.url("report.txt"), "Report.txt"); };
    sweep({}, prepare, once, judge);
    // By way of a name in between, where letter case does not count.
    if (const auto mount = TestMount::image("exfat")) sweep((*mount)->path(), prepare, once, judge);
}

TEST_P(RenameAndCreateFaults, LeaveNothingOfWhatCouldNotBeCreated) {
    for (const auto item : {NewItem::file, NewItem::folder})
        sweep(
            {}, [](const TempTree& tree) { tree.file("new", "kept"); },
            [&](const TempTree& tree) { return createExclusive(tree.url(), "new", item, "contents"); },
            [&](const TempTree& tree, const ItemOutcome& outcome) {
                EXPECT_EQ(tree.contents("new"), "kept");
                EXPECT_EQ(tree.exists("new (2)"), outcome.isSuccess());
                EXPECT_EQ(tree.names().size(), outcome.isSuccess() ? 2U : 1U);
                EXPECT_TRUE(!outcome.isSuccess() || item == NewItem::folder ||
                            tree.contents("new (2)") == "contents");
            });
}

INSTANTIATE_TEST_SUITE_P(Errors, RenameAndCreateFaults,
                         ::testing::Values(Named{"EIO", {EIO, false}}, Named{"ENOSPC", {ENOSPC, false}},
                                           Named{"EACCES", {EACCES, false}}, Named{"EINTR", {EINTR, false}},
                                           Named{"ESTALE", {ESTALE, false}}, Named{"ShortCount", {0, true}}),
                         [](const auto& tested) { return tested.param.label; });

} // namespace
} // namespace ombrel
