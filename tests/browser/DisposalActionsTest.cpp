#include "browser/DisposalActions.h"

#include "browser/ActionsWorld.h"

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using enum FileCommand;
using Choice = BrowserAnswer::Choice;

class Disposing : public ActionsWorld {
protected:
    Disposing() {
        for (const auto* name : {"pane/a", "pane/b", "pane/c", "pane/d"})
            tree.file(name, name);
        show("pane");
    }
    void removeAtOnce(const std::string& name) { ASSERT_EQ(::unlink(tree.path(name).c_str()), 0); }
};

TEST_F(Disposing, AsksBeforeTheTrashUntilToldNotTo) {
    prompter.answer = {Choice::decline, true};
    ASSERT_TRUE(perform(moveToTrash, {"b", "c"}));
    EXPECT_THAT(tree.names("pane"), SizeIs(4));
    ASSERT_THAT(prompter.questions, SizeIs(1));
    EXPECT_EQ(prompter.questions[0].count, 2);
    EXPECT_EQ(prompter.questions[0].items.at(1).url, tree.url("pane/c"));
    EXPECT_TRUE(services->settings().confirmMoveToTrash()) << "the answer was no";

    prompter.answer = {Choice::accept, true};
    ASSERT_TRUE(perform(moveToTrash, {"b", "c"}));
    EXPECT_TRUE(shows({"a", "d"}, {"d"})) << "the neighbour";
    EXPECT_FALSE(services->settings().confirmMoveToTrash());
    ASSERT_TRUE(perform(moveToTrash, {"d"}));
    EXPECT_TRUE(shows({"a"}, {"a"})) << "the one above, where there is none below";
    EXPECT_THAT(prompter.questions, SizeIs(2));

    ASSERT_TRUE(perform(undo, {}));
    EXPECT_TRUE(shows({"a", "d"}, {"d"}));
    ASSERT_TRUE(perform(undo, {}));
    EXPECT_TRUE(shows({"a", "b", "c", "d"}, {"b", "c"}));
    EXPECT_EQ(tree.contents("pane/b"), "pane/b");
}

TEST_F(Disposing, DeletesForGoodOnlyWhenAskedAndAnswered) {
    services->settings().setConfirmMoveToTrash(false);
    prompter.answer = {};
    ASSERT_TRUE(perform(deletePermanently, {"b"}));
    pane.setPrompter(nullptr);
    ASSERT_TRUE(perform(deletePermanently, {"b"})) << "nobody can be asked";
    EXPECT_THAT(tree.names("pane"), SizeIs(4));
    pane.setPrompter(&prompter);
    prompter.answer = {Choice::accept};
    ASSERT_TRUE(perform(deletePermanently, {"b"}));
    EXPECT_TRUE(shows({"a", "c", "d"}, {"c"}));
    EXPECT_FALSE(can(undo));
    EXPECT_FALSE(tree.exists("Trash/files/b"));
}

TEST_F(Disposing, LeavesWhatIsNotWhatWasSelected) {
    prompter.meanwhile = [&] {
        removeAtOnce("pane/a");
        removeAtOnce("pane/b");
        // Another file of that name must not go in its place. It is made before the old one goes, so that it
        // cannot be the same object.
        tree.file("pane/new", "another");
        ASSERT_EQ(::rename(tree.path("pane/new").c_str(), tree.path("pane/c").c_str()), 0);
    };
    ASSERT_TRUE(perform(moveToTrash, {"a", "c", "d"}));
    EXPECT_THAT(tree.names("pane"), ElementsAre("c"));
    EXPECT_EQ(tree.contents("pane/c"), "another");
    ASSERT_THAT(services->center().leftReports(), SizeIs(1));
    EXPECT_THAT(services->center().leftReports()[0].report->unsuccessful(), SizeIs(2));
    prompter.meanwhile = nullptr;
    ASSERT_TRUE(perform(undo, {}));
    EXPECT_THAT(tree.names("pane"), ElementsAre("c", "d")) << "what went comes back";
}

TEST_F(Disposing, TellsWhatAnUndoCouldNotHandle) {
    ASSERT_TRUE(perform(moveToTrash, {"a", "b"}));
    removeAtOnce("Trash/files/a");
    ASSERT_TRUE(perform(undo, {}));
    ASSERT_THAT(prompter.shown, SizeIs(1));
    EXPECT_THAT(prompter.shown[0].items, SizeIs(1));
    EXPECT_THAT(services->center().leftReports(), IsEmpty()) << "it is told once";
    EXPECT_THAT(tree.names("pane"), ElementsAre("b", "c", "d"));
}

TEST_F(Disposing, HandlesManyItemsWithoutHoldingUpTheMainThread) {
    constexpr std::size_t many = 3000;
    tree.folder("many");
    for (std::size_t i = 0; i < many; ++i)
        tree.file("many/" + std::to_string(i));
    show("many");
    ASSERT_TRUE(commands.perform(selectAll, pane));
    ASSERT_TRUE(commands.perform(deletePermanently, pane));
    EXPECT_THAT(services->center().jobs(), IsEmpty()) << "a worker puts the items together first";
    ASSERT_TRUE(runUntil([&] { return tree.names("many").empty(); }));
    EXPECT_EQ(prompter.questions.at(0).count, std::int64_t{many});
}

} // namespace
} // namespace ombrel
