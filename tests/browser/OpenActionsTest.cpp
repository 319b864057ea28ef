#include "browser/OpenActions.h"

#include "browser/FolderAccess.h"
#include "browser/ModelWorld.h"
#include "browser/ScriptedWorkspace.h"
#include "browser/ServicesWorld.h"
#include "support/FailingCalls.h"

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::OpeningPrompter;
using testing::runUntil;
using testing::runUntilLoaded;
using testing::runUntilQuiet;
using testing::ScriptedWorkspace;
using testing::select;
using testing::selectedNames;
using testing::TempTree;
using ::testing::UnorderedElementsAre;
using Kind = BrowserQuestion::Kind;
using Choice = BrowserAnswer::Choice;

/// Until what one answer starts has come to its end too.
bool settle() {
    constexpr int longestChain = 8;
    for (int i = 0; i < longestChain; ++i)
        if (!runUntilQuiet()) return false;
    return true;
}

class Opening : public ::testing::Test {
protected:
    Opening() {
        services->launcher().setOpener(workspace);
        services->openWindowAt = [this](const FileURL& url) { windows.push_back(url); };
        auto folders = services->settings().knownFolders();
        folders.set(KnownFolder::desktop, tree.folder("Desktop"));
        services->settings().setKnownFolders(folders);
        actions.bindTo(commands);
        pane.setServices(*services);
        pane.setPrompter(&prompter);
        pane.requestNewTab = [this](const std::optional<FileURL>& url) { tabs.push_back(url.value()); };
    }
    ~Opening() override { (void)runUntilQuiet(); }

    /// Shows the folder with some items selected.
    void show(const std::vector<std::string>& selected) {
        pane.navigate(folder);
        ASSERT_TRUE(runUntilLoaded(pane));
        select(pane, selected);
    }
    void perform(FileCommand command) {
        EXPECT_TRUE(commands.perform(command, pane));
        ASSERT_TRUE(settle());
    }
    [[nodiscard]] bool can(FileCommand command) const { return commands.canPerform(command, pane); }
    static std::expected<OpeningFacts, Text> facts(OpeningFacts::Kind kind, bool mayRun) {
        return OpeningFacts{.kind = kind, .type = {}, .mayRun = mayRun};
    }

    TempTree tree;
    FileURL folder = tree.folder("Work");
    testing::ServicesWorld world;
    std::unique_ptr<AppServices>& services = world.services;
    std::shared_ptr<ScriptedWorkspace> workspace = std::make_shared<ScriptedWorkspace>();
    OpenActions actions{*services};
    CommandDispatcher commands;
    OpeningPrompter prompter;
    BrowserModel pane{testing::realListings()};
    std::vector<FileURL> tabs, windows;
};

TEST_F(Opening, ShowsTheFirstFolderInPlaceAndTheOthersInTabsAndOpensFilesTogether) {
    tree.folder("Work/a");
    tree.folder("Work/b.app");
    tree.file("Work/1.txt");
    tree.file("Work/2.txt");
    tree.symlink("Work/c", "a");
    show({"a", "b.app", "1.txt", "2.txt", "c"});
    perform(FileCommand::open);
    EXPECT_EQ(pane.currentURL(), tree.url("Work/a"));
    EXPECT_THAT(tabs, UnorderedElementsAre(tree.url("Work/b.app"), tree.url("Work/c")));
    EXPECT_THAT(workspace->calls(), ElementsAre("open 1.txt 2.txt"));
    EXPECT_THAT(prompter.questions, IsEmpty());
}

TEST_F(Opening, AsksBeforeManyItemsAreOpened) {
    std::vector<std::string> names;
    for (char letter = 'a'; letter <= 'k'; ++letter)
        tree.file("Work/" + names.emplace_back(1, letter));
    show(names);
    prompter.choice = Choice::decline;
    perform(FileCommand::open);
    ASSERT_EQ(prompter.questions.size(), 1U);
    EXPECT_EQ(prompter.questions[0].kind, Kind::openMany);
    EXPECT_EQ(prompter.questions[0].count, 11);
    EXPECT_THAT(workspace->calls(), IsEmpty());
    prompter.choice = Choice::accept;
    perform(FileCommand::open);
    EXPECT_THAT(workspace->calls(), ElementsAre("open a b c d e f g h i j k"));
    names.pop_back();
    select(pane, names);
    perform(FileCommand::open);
    EXPECT_EQ(prompter.questions.size(), 2U);
}

TEST_F(Opening, RunsWhatIsMarkedAndAgreedToAndNothingElse) {
    for (const auto* name : {"marked.sh", "plain.sh", "marked", "plain", "ours.desktop", "theirs.desktop"})
        tree.file(std::string("Work/") + name);
    using enum OpeningFacts::Kind;
    workspace->facts = {{"marked.sh", facts(script, true)},      {"plain.sh", facts(script, false)},
                        {"marked", facts(program, true)},        {"plain", facts(program, false)},
                        {"ours.desktop", facts(launcher, true)}, {"theirs.desktop", facts(launcher, false)}};
    const std::vector<std::string> all = {"marked.sh", "plain.sh",     "marked",
                                          "plain",     "ours.desktop", "theirs.desktop"};
    const std::vector<std::string> unasked = {"open plain.sh", "Editor theirs.desktop"};
    const auto opened = [&](Choice choice) {
        show(all);
        prompter.choice = choice;
        const auto before = workspace->calls().size();
        perform(FileCommand::open);
        auto calls = workspace->calls();
        calls.erase(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(before));
        return calls;
    };
    EXPECT_THAT(opened(Choice::decline), ::testing::UnorderedElementsAreArray(unasked));
    ASSERT_EQ(prompter.questions.size(), 1U);
    EXPECT_EQ(prompter.questions[0].kind, Kind::runProgram);
    EXPECT_EQ(prompter.questions[0].count, 3);
    ASSERT_EQ(prompter.told.size(), 1U);
    EXPECT_EQ(prompter.told[0], (Text{"open.error.notExecutable", {"plain"}}));
    EXPECT_THAT(opened(Choice::alternative),
                UnorderedElementsAre(unasked[0], unasked[1], "Editor marked marked.sh ours.desktop"));
    EXPECT_THAT(opened(Choice::accept), UnorderedElementsAre(unasked[0], unasked[1], "run marked",
                                                             "run marked.sh", "run ours.desktop"));
    pane.setPrompter(nullptr);
    EXPECT_THAT(opened(Choice::accept), ::testing::UnorderedElementsAreArray(unasked));
}

TEST_F(Opening, TellsWhatCouldNotBeOpened) {
    for (const auto* name : {"gone", "unset", "fails"})
        tree.file(std::string("Work/") + name);
    workspace->facts = {{"gone", std::unexpected(Text{"open.error.missing", {"gone"}})}};
    workspace->problems = {{"unset", {{}, {"open.error.noApplication", {"unset"}}, true}},
                           {"fails", {{}, {"open.error.failed", {"fails", "why"}}}}};
    show({"gone", "unset", "fails"});
    perform(FileCommand::open);
    ASSERT_EQ(prompter.told.size(), 2U);
    EXPECT_EQ(prompter.told[0].key, "open.error.missing");
    EXPECT_EQ(prompter.told[1].key, "open.error.several");
    EXPECT_EQ(prompter.told[1].count, 2);
    // Who can let the user choose an application is asked to instead.
    std::vector<FileURL> unset;
    actions.requestApplication = [&](BrowserModel&, const std::vector<FileURL>& urls) { unset = urls; };
    perform(FileCommand::open);
    EXPECT_THAT(unset, ElementsAre(tree.url("Work/unset")));
    ASSERT_EQ(prompter.told.size(), 4U);
    EXPECT_EQ(prompter.told[3], (Text{"open.error.failed", {"fails", "why"}}));
}

TEST_F(Opening, OpensFilesOfAPaneThatIsClosedMeanwhile) {
    tree.file("Work/a.txt");
    auto closing = std::make_unique<BrowserModel>(testing::realListings());
    closing->setPrompter(&prompter);
    closing->navigate(folder);
    ASSERT_TRUE(runUntilLoaded(*closing));
    select(*closing, {"a.txt"});
    EXPECT_TRUE(commands.perform(FileCommand::open, *closing));
    closing.reset();
    ASSERT_TRUE(settle());
    EXPECT_THAT(workspace->calls(), ElementsAre("open a.txt"));
}

TEST_F(Opening, OpensFoldersElsewhere) {
    tree.folder("Work/a");
    tree.folder("Work/b");
    tree.file("Work/file");
    show({"a", "file"});
    EXPECT_FALSE(can(FileCommand::openInNewTab));
    EXPECT_FALSE(can(FileCommand::openInNewWindow));
    EXPECT_FALSE(can(FileCommand::openContainingFolder));
    select(pane, {"a", "b"});
    perform(FileCommand::openInNewTab);
    EXPECT_THAT(tabs, UnorderedElementsAre(tree.url("Work/a"), tree.url("Work/b")));
    perform(FileCommand::openInNewWindow);
    EXPECT_EQ(windows, tabs);
    // A terminal begins in the one folder that is meant.
    perform(FileCommand::openInTerminal);
    select(pane, {"b"});
    workspace->problems = {{"b", {{}, {"open.error.noTerminal"}}}};
    perform(FileCommand::openInTerminal);
    EXPECT_THAT(workspace->calls(), ElementsAre("terminal Work", "terminal b"));
    EXPECT_THAT(prompter.told, ElementsAre(Text{"open.error.noTerminal"}));
    pane.navigateHome();
    EXPECT_FALSE(can(FileCommand::openInTerminal));
}

TEST_F(Opening, GoesFromASearchToTheFoldersOfWhatItFound) {
    tree.folder("Work/a");
    tree.folder("Work/b");
    tree.file("Work/a/hit 1");
    tree.file("Work/a/hit 2");
    tree.file("Work/b/hit 3");
    pane.navigate(folder);
    pane.search("hit");
    ASSERT_TRUE(
        runUntil([&] { return pane.showsSearch() && !pane.isSearching() && pane.items().size() == 3; }));
    select(pane, {"hit 1", "hit 2", "hit 3"});
    perform(FileCommand::openContainingFolder);
    ASSERT_TRUE(runUntilLoaded(pane));
    EXPECT_EQ(pane.currentURL(), tree.url("Work/a"));
    EXPECT_THAT(selectedNames(pane), ElementsAre("hit 1", "hit 2"));
    EXPECT_THAT(tabs, ElementsAre(tree.url("Work/b")));
}

TEST_F(Opening, PutsLinksOnTheDesktopUnderFreeNamesAndTakesThemBack) {
    tree.file("Work/report.txt");
    tree.folder("Work/v1.2");
    tree.file("Desktop/report.txt");
    tree.folder("Desktop/v1.2");
    show({"report.txt", "v1.2"});
    perform(FileCommand::createShortcut);
    ASSERT_TRUE(runUntil([&] { return services->center().jobs().empty(); }));
    EXPECT_THAT(tree.names("Desktop"), ElementsAre("report (2).txt", "report.txt", "v1.2", "v1.2 (2)"));
    std::vector<char> target(256);
    const auto length = ::readlink(tree.path("Desktop/v1.2 (2)").c_str(), target.data(), target.size());
    EXPECT_EQ(std::string(target.data(), static_cast<std::size_t>(length)), tree.path("Work/v1.2"));
    ASSERT_EQ(services->undo().undoSteps().size(), 1U);
    EXPECT_EQ(services->undo().undoSteps()[0].kind, FileUndoStep::Kind::new_);
    // Without a desktop folder the job says so.
    auto folders = services->settings().knownFolders();
    folders.set(KnownFolder::desktop, tree.url("nowhere"));
    services->settings().setKnownFolders(folders);
    perform(FileCommand::createShortcut);
    ASSERT_EQ(services->center().leftReports().size(), 1U);
    EXPECT_EQ(services->center().leftReports()[0].report->items.at(0).outcome.error(),
              FileOperationError(FileOperationError::Case::destinationMissing));
}

TEST_F(Opening, PinsFoldersAndUnpinsThem) {
    tree.folder("Work/a");
    tree.folder("Work/b");
    tree.file("Work/file");
    show({"file"});
    EXPECT_FALSE(can(FileCommand::pin));
    select(pane, {"a"});
    EXPECT_FALSE(can(FileCommand::unpin));
    perform(FileCommand::pin);
    EXPECT_FALSE(can(FileCommand::pin));
    select(pane, {"a", "b"});
    EXPECT_TRUE(can(FileCommand::pin));
    EXPECT_FALSE(can(FileCommand::unpin));
    select(pane, {"a"});
    perform(FileCommand::unpin);
    EXPECT_FALSE(services->settings().isPinned(tree.url("Work/a")));
    select(pane, {});
    perform(FileCommand::pin);
    EXPECT_TRUE(services->settings().isPinned(folder));
}

TEST_F(Opening, RemembersTheApplicationsThatOpenFolders) {
    tree.folder("Work/a");
    tree.file("Work/file");
    show({"file"});
    actions.openWith(pane, ScriptedWorkspace::editor());
    ASSERT_TRUE(settle());
    EXPECT_THAT(services->settings().recentFolderApps(), IsEmpty());
    select(pane, {"a"});
    actions.openWith(pane, ScriptedWorkspace::editor());
    ASSERT_TRUE(settle());
    EXPECT_THAT(workspace->calls(), ElementsAre("Editor file", "Editor a"));
    std::vector<DesktopApplication> recent;
    actions.recentFolderApplications([&](const auto& applications) { recent = applications; });
    ASSERT_TRUE(settle());
    EXPECT_THAT(recent, ElementsAre(ScriptedWorkspace::editor()));
}

TEST_F(Opening, BringsAForbiddenFolderThroughThePickerFirst) {
    auto& picker = world.picker;
    FolderAccess access(*services);
    const auto fine = tree.folder("fine");
    access.openPinned(pane, fine, FolderAccess::Prompting::yes);
    ASSERT_TRUE(settle());
    EXPECT_EQ(pane.currentURL(), fine);
    access.openPinned(pane, tree.url("missing"), FolderAccess::Prompting::yes);
    ASSERT_TRUE(settle());
    EXPECT_EQ(pane.currentURL(), tree.url("missing")); // the listing tells what is wrong
    EXPECT_TRUE(picker.requests.empty());
    EXPECT_TRUE(access.isAuthorized(KnownFolder::desktop));
    const auto secret = tree.folder("secret");
    {
        const testing::FailingCalls denied(SystemCall::Kind::openDirectory, EACCES);
        access.openPinned(pane, secret, FolderAccess::Prompting::yes);
        ASSERT_TRUE(runUntil([&] { return !picker.requests.empty(); }));
    }
    EXPECT_EQ(picker.requests[0].startingAt, secret);
    EXPECT_EQ(pane.currentURL(), tree.url("missing")); // nothing was picked
    EXPECT_FALSE(access.isAuthorized(secret));
    picker.answer = secret;
    {
        const testing::FailingCalls denied(SystemCall::Kind::openDirectory, EACCES, 1, 1);
        access.openPinned(pane, secret, FolderAccess::Prompting::yes);
        ASSERT_TRUE(settle());
    }
    EXPECT_EQ(pane.currentURL(), secret);
    EXPECT_TRUE(access.isAuthorized(secret));
}

} // namespace
} // namespace ombrel
