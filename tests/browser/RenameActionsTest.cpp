#include "browser/RenameActions.h"

#include "browser/ActionsWorld.h"
#include "browser/RenameRules.h"

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using enum FileCommand;
using Case = RenameRules::Verdict::Case;
using Shape = RenameRules::Shape;

/// A file that is shown whole.
RenameRules rulesOf(std::string_view name) {
    return {name, name, Shape::file};
}

TEST(RenamingSelects, TheStem) {
    const std::vector<std::pair<std::string_view, std::string_view>> stems = {
        {"photo.jpg", "photo"},   {"a.tar.gz", "a"},        {"a.b.TAR.xz", "a.b"},
        {"x.cpio.gz", "x"},       {"tar.gz", "tar"},        {"v1.2.txt", "v1.2"},
        {".profile", ".profile"}, {"Makefile", "Makefile"}, {"my.tar.holiday", "my.tar"},
        {"näïve.txt", "näïve"},
    };
    for (const auto& [name, stem] : stems)
        EXPECT_EQ(std::string_view(name).substr(0, rulesOf(name).stemLength(name)), stem);
    EXPECT_EQ(RenameRules("My.Folder", "My.Folder", Shape::folder).stemLength("My.Folder"), 9U);
}

TEST(RenamingJudges, WhatWasTyped) {
    const auto rules = rulesOf("a.txt");
    for (const auto* text : {"a.txt", "", "   "})
        EXPECT_EQ(rules.judge(text).which, Case::nothing) << text;
    EXPECT_EQ(rules.judge("b.txt").name, "b.txt");
    EXPECT_EQ(rules.judge("..").reason, (Text{"error.op.invalidName.reserved"}));
    EXPECT_EQ(rules.judge(std::string(256, 'x')).reason, (Text{"error.op.invalidName.tooLong"}));
    EXPECT_FALSE(RenameRules::accepts("a/b"));
    EXPECT_TRUE(RenameRules::accepts("a\\b:"));
    for (const auto* text : {"a:b", "con.txt", "LPT1", "end.", "end "}) {
        EXPECT_TRUE(rules.hint(text)) << text;
        EXPECT_EQ(rules.judge(text).which, Case::rename) << text;
    }
    for (const auto* text : {"a.txt", "console", "com10", ""})
        EXPECT_FALSE(rules.hint(text)) << text;
}

TEST(RenamingKeeps, WhatTheTextCannotShow) {
    const RenameRules hidden("photo.jpg", "photo", Shape::file);
    EXPECT_EQ(hidden.text(), "photo");
    EXPECT_EQ(hidden.stemLength("photo"), 5U);
    EXPECT_EQ(hidden.judge("sun").name, "sun.jpg");
    EXPECT_EQ(hidden.judge("photo").which, Case::nothing);

    const auto bytes = rulesOf("caf\xE9 1\x01.txt"); // Latin 1 and a control character
    EXPECT_EQ(bytes.text(), "caf\uFFFD 1\uFFFD.txt");
    EXPECT_EQ(bytes.judge(bytes.text()).which, Case::nothing);
    EXPECT_EQ(bytes.judge("caf\uFFFD 22\uFFFD.txt").name, "caf\xE9 22\x01.txt");
    EXPECT_EQ(bytes.judge("tea.txt").name, "tea.txt");
}

class Renaming : public ActionsWorld {
protected:
    /// Answers with the reason why not; "" when it was done.
    std::string commit(const std::string& name, std::string_view text) {
        std::optional<std::string> answer;
        actions.renaming().commit(pane, pane.items()[rowNamed(pane, name)], text,
                                  [&](const auto& refusal) { answer = refusal ? refusal->key : ""; });
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or("never");
    }
};

TEST_F(Renaming, KeepsTheItemSelectedUnderItsNewName) {
    for (const auto* name : {"pane/a", "pane/b", "pane/c"})
        tree.file(name, name);
    show("pane");
    select(pane, {"a", "b"});
    EXPECT_FALSE(can(rename)) << "one at a time";
    ASSERT_TRUE(perform(rename, {"a"}));
    EXPECT_EQ(renaming, "a");
    EXPECT_EQ(commit("a", "z"), "");
    EXPECT_TRUE(shows({"b", "c", "z"}, {"z"}));
    EXPECT_EQ(commit("z", "z"), "");
    EXPECT_EQ(services->undo().undoSteps().size(), 1U) << "the same name is no step";
    ASSERT_TRUE(perform(undo, {}));
    EXPECT_TRUE(shows({"a", "b", "c"}, {"a"}));
}

TEST_F(Renaming, SaysWhyNotWhereTheEditorIsAndNowhereElse) {
    for (const auto* name : {"pane/a", "pane/b"})
        tree.file(name, name);
    show("pane");
    EXPECT_EQ(commit("a", "b"), "error.op.destinationExists");
    EXPECT_EQ(commit("a", ".."), "error.op.invalidName.reserved");
    ASSERT_EQ(::unlink(tree.path("pane/a").c_str()), 0);
    EXPECT_TRUE(services->center().leftReports().empty());
    EXPECT_EQ(tree.contents("pane/b"), "pane/b");
    EXPECT_FALSE(can(undo));
    actions.renaming().commit(pane, pane.items()[0], "c");
    EXPECT_TRUE(runUntil([&] { return !prompter.told.empty(); }));
    EXPECT_THAT(prompter.told, ElementsAre(Text{"error.op.sourceMissing"}));
}

} // namespace
} // namespace ombrel
