#include "ui/TransferMenus.h"

#include "browser/ScriptedWorkspace.h"
#include "ui/ContextMenu.h"
#include "ui/WindowMenus.h"
#include "ui/WindowWorld.h"

#include <QAction>
#include <QMenu>

#include <memory>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Transfers : public WindowWorld {
protected:
    Transfers() {
        auto scripted = std::make_unique<ScriptedPicker>();
        picker = scripted.get();
        menus = new TransferMenus(window,
                                  {.theme = quietTheme(),
                                   .services = *services,
                                   .commands = window.commands(),
                                   .transfers = window.files().transfers()},
                                  std::move(scripted));
        for (const auto* folder : {"a", "a/In", "b", "b/In", "c", "c/b", "c/b/In", "Out & <b>"})
            tree.folder(folder);
        open(tree.url("Projects"));
        window.model().setPrompter(&prompter);
    }
    ~Transfers() override {
        (void)waitForJobs();
        window.model().setPrompter(nullptr);
    }

    /// The entries of one of the two for what is selected now, those that cannot be chosen in brackets.
    [[nodiscard]] std::vector<std::string> entries(const char* name) {
        QMenu menu;
        menus->addTo(menu, window.model());
        return entriesOf(*below(menu, name));
    }
    static std::vector<std::string> entriesOf(const QMenu& menu) {
        std::vector<std::string> found;
        for (const QAction* action : menu.actions()) {
            const std::string text = action->text().toStdString();
            found.push_back(action->isSeparator() ? "-" : action->isEnabled() ? text : "(" + text + ")");
        }
        return found;
    }
    static QMenu* below(const QMenu& menu, const char* name) {
        for (const QAction* action : menu.actions())
            if (action->menu() && action->text() == QLatin1String(name)) return action->menu();
        ADD_FAILURE() << "no " << name;
        return nullptr;
    }
    void choose(const char* name, const char* text) {
        QMenu menu;
        menus->addTo(menu, window.model());
        for (QAction* action : below(menu, name)->actions())
            if (action->text() == QString::fromUtf8(text)) return action->trigger();
        FAIL() << "no " << text;
    }
    [[nodiscard]] bool waitForJobs() {
        return runUntil([&] { return services->center().jobs().empty(); }) && runUntilQuiet();
    }

    ScriptedPicker* picker = nullptr;
    TransferMenus* menus = nullptr;
    OpeningPrompter prompter;
};

TEST_F(Transfers, NameTheFoldersOfTheLastTimes) {
    select(window.model(), {"one.txt"});
    EXPECT_THAT(entries("Copy to"), ElementsAre("-", "Choose folder…"));
    for (const auto* folder : {"a/In", "b/In", "c/b/In", "Out & <b>", "Projects"})
        settings.rememberDestination(tree.url(folder));
    const auto in = [](const std::string& parent) { return "\u2068In\u2069 (\u2068" + parent + "\u2069)"; };
    EXPECT_THAT(entries("Move to"), ElementsAre("Out && <b>", in(tree.url("c/b").path()),
                                                in(tree.url("b").path()), in("a"), "-", "Choose folder…"))
        << "not the one that is shown";
    QMenu menu;
    menus->addTo(menu, window.model());
    EXPECT_EQ(below(menu, "Copy to")->actions().front()->toolTip().toStdString(), tree.url().path());
}

TEST_F(Transfers, OfferWhatCanBeDoneNow) {
    settings.rememberDestination(tree.url("a"));
    settings.rememberDestination(tree.url("Projects/Reports"));
    QMenu context, more;
    const auto enabledIn = [](const QMenu& menu) {
        return below(menu, "Copy to")->isEnabled() && below(menu, "Move to")->isEnabled();
    };
    window.menus().fill(WindowMenus::Kind::more, more);
    EXPECT_FALSE(below(more, "Copy to")->isEnabled() || below(more, "Move to")->isEnabled());
    select(window.model(), {"Reports", "one.txt"});
    window.contextMenu().fill(context, window.model());
    more.clear();
    window.menus().fill(WindowMenus::Kind::more, more);
    EXPECT_TRUE(enabledIn(context) && enabledIn(more));
    EXPECT_THAT(entriesOf(*below(context, "Move to")), ElementsAre("(Reports)", "a", "-", "Choose folder…"));
    EXPECT_THAT(entries("Copy to"), Contains("(Reports)")) << "a folder does not go into itself";
}

TEST_F(Transfers, BringItemsToAFolderOfTheLastTimesOrToAnother) {
    settings.rememberDestination(tree.url("a"));
    select(window.model(), {"one.txt"});
    choose("Copy to", "a");
    ASSERT_TRUE(waitForJobs());
    EXPECT_TRUE(tree.exists("a/one.txt") && tree.exists("Projects/one.txt"));

    picker->answer = tree.url("b");
    select(window.model(), {"one.txt", "two.txt"});
    choose("Move to", "Choose folder…");
    ASSERT_TRUE(waitForJobs());
    EXPECT_EQ(picker->requests.back().startingAt, tree.url("Projects"));
    EXPECT_EQ(picker->requests.back().prompt, "Move here");
    EXPECT_TRUE(tree.exists("b/two.txt") && !tree.exists("Projects/two.txt"));
    EXPECT_THAT(settings.recentDestinations(), ElementsAre(tree.url("b"), tree.url("a")));

    ASSERT_TRUE(runUntil([&] { return window.model().items().size() == 1; }));
    select(window.model(), {"Reports"});
    picker->answer = std::nullopt;
    choose("Copy to", "Choose folder…");
    EXPECT_THAT(prompter.told, IsEmpty());
    picker->answer = tree.url("Projects");
    choose("Move to", "Choose folder…");
    picker->answer = tree.url("Projects/Reports");
    choose("Copy to", "Choose folder…");
    ASSERT_TRUE(waitForJobs());
    EXPECT_THAT(prompter.told, ElementsAre(Text{"error.op.sameLocation"}, Text{"ui.drop.intoItself"}));
    EXPECT_THAT(tree.names("Projects"), ElementsAre("Reports"));
}

} // namespace
} // namespace ombrel
