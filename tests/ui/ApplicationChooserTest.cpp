// Choosing an application, and who asks for it.
#include "ui/ApplicationChooser.h"

#include "browser/ScriptedWorkspace.h"
#include "ui/AddressBar.h"
#include "ui/ApplicationList.h"
#include "ui/ConfirmationDialog.h"
#include "ui/ContextMenu.h"
#include "ui/NavigationTree.h"
#include "ui/WindowWorld.h"

#include <QAction>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include <algorithm>
#include <cstddef>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

DesktopApplication application(const std::string& name) {
    return {name + ".desktop", name, "", *FileURL::fromPath("/apps/" + name)};
}

class Chooser : public ::testing::Test {
protected:
    Chooser() {
        window.show();
        dialog = new ApplicationChooser(
            quietTheme(), {*FileURL::fromPath("/a/b.txt")},
            [this](const DesktopApplication& one, const std::vector<std::string>& types) {
                answers.push_back(one.name);
                always = types;
            },
            &window);
        dialog->open();
    }
    void offer() {
        dialog->offer({.applications = {application("Editor")}, .hasDefault = true, .types = {"text/plain"}},
                      {application("Calculator"), application("Editor"), application("Video editor")});
    }
    [[nodiscard]] std::vector<std::string> rows() const {
        std::vector<std::string> shown;
        const auto& model = *dialog->list().model();
        for (int row = 0; row < model.rowCount(); ++row)
            shown.push_back(model.index(row, 0).data().toString().toStdString());
        return shown;
    }
    void key(Qt::Key which) const { QTest::keyClick(dialog->focusWidget(), which); }
    [[nodiscard]] std::string chosen() const {
        const auto* const one = dialog->list().chosen();
        return one ? one->name : "none";
    }

    QWidget window;
    QPointer<ApplicationChooser> dialog;
    std::vector<std::string> answers;
    std::vector<std::string> always;
};

TEST_F(Chooser, ChoosesNothingByItselfAndIsUsedByKeys) {
    EXPECT_EQ(dialog->note(), QStringLiteral("Looking for applications…"));
    offer();
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Open “\u2068b.txt\u2069” with"));
    EXPECT_THAT(rows(),
                ElementsAre("Recommended", "Editor", "Other applications", "Calculator", "Video editor"));
    EXPECT_EQ(dialog->focusWidget(), &dialog->filter());
    EXPECT_EQ(chosen(), "none");
    key(Qt::Key_Return);
    EXPECT_TRUE(dialog->isVisible());
    key(Qt::Key_Down);
    EXPECT_EQ(chosen(), "Editor");
    key(Qt::Key_Down);
    EXPECT_EQ(chosen(), "Calculator") << "a heading is none";
    dialog->always().click();
    key(Qt::Key_Return);
    EXPECT_THAT(answers, ElementsAre("Calculator"));
    EXPECT_THAT(always, ElementsAre("text/plain"));
}

TEST_F(Chooser, FiltersByName) {
    offer();
    QTest::keyClicks(&dialog->filter(), QStringLiteral("EDIT"));
    EXPECT_THAT(rows(), ElementsAre("Recommended", "Editor", "Other applications", "Video editor"));
    EXPECT_EQ(chosen(), "Editor");
    dialog->filter().setText(QStringLiteral("video"));
    EXPECT_THAT(rows(), ElementsAre("Video editor"));
    dialog->filter().setText(QStringLiteral("zz"));
    EXPECT_EQ(dialog->note(), QStringLiteral("No application matches “\u2068zz\u2069”."));
    EXPECT_FALSE(dialog->openButton().isEnabled());
    dialog->filter().setText(QStringLiteral("video"));
    key(Qt::Key_Return);
    EXPECT_THAT(answers, ElementsAre("Video editor"));
    EXPECT_THAT(always, IsEmpty());
}

TEST_F(Chooser, CanBeLeftAndHasWordsForNothing) {
    dialog->offer({}, {});
    EXPECT_EQ(dialog->note(), QStringLiteral("No applications are installed."));
    EXPECT_FALSE(dialog->always().isEnabled());
    key(Qt::Key_Escape);
    EXPECT_THAT(answers, IsEmpty());
    EXPECT_TRUE(!dialog || !dialog->isVisible());
}

// ---- Who asks

class Opening : public WindowWorld {
protected:
    Opening() {
        services->launcher().setOpener(workspace);
        open(tree.url("Projects"));
    }
    ~Opening() override { (void)runUntilQuiet(); }

    template <typename Dialog>
    [[nodiscard]] Dialog* shown() const {
        const auto all = window.findChildren<Dialog*>();
        for (Dialog* dialog : all)
            if (dialog->isVisible()) return dialog;
        return nullptr;
    }
    /// An entry of a menu or of one below it.
    [[nodiscard]] static QAction* entry(const QMenu& menu, const char* text) {
        for (QAction* action : menu.actions()) {
            if (action->text().section(QLatin1Char('\t'), 0, 0) == QString::fromUtf8(text)) return action;
            if (action->menu())
                if (auto* const found = entry(*action->menu(), text)) return found;
        }
        return nullptr;
    }
    void choose(const char* name, bool forAlways) {
        ASSERT_TRUE(runUntil([&] {
            auto* const dialog = shown<ApplicationChooser>();
            return dialog && dialog->list().shownCount() > 0;
        }));
        auto* const dialog = shown<ApplicationChooser>();
        dialog->filter().setText(QString::fromUtf8(name));
        dialog->always().setChecked(forAlways);
        dialog->openButton().click();
    }
    [[nodiscard]] std::ptrdiff_t count(const std::string& call) const {
        const auto calls = workspace->calls();
        return std::ranges::count(calls, call);
    }
    [[nodiscard]] bool runUntilCalled(const std::string& call) {
        return runUntil([&] { return count(call) > 0; });
    }

    std::shared_ptr<ScriptedWorkspace> workspace = std::make_shared<ScriptedWorkspace>();
};

TEST_F(Opening, OffersApplicationsInTheMenuAndAllOthersInADialog) {
    select(window.model(), {"one.txt", "two.txt"});
    QMenu menu;
    window.contextMenu().fill(menu, window.model());
    ASSERT_TRUE(runUntil([&] { return entry(menu, "Editor") != nullptr; }));
    const QMenu& with = *entry(menu, "Open with")->menu();
    EXPECT_EQ(with.actions().front()->text(), QStringLiteral("Editor"));
    EXPECT_TRUE(with.actions().at(1)->isSeparator());
    entry(menu, "Editor")->trigger();
    EXPECT_TRUE(runUntilCalled("Editor one.txt two.txt"));
    entry(menu, "Other application…")->trigger();
    choose("Editor", false);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(count("Editor one.txt two.txt"), 2);
    EXPECT_EQ(count("default Editor of text/plain"), 0);
}

TEST_F(Opening, OffersForAFolderWhatOpenedFoldersLast) {
    select(window.model(), {"Reports"});
    QMenu first;
    window.contextMenu().fill(first, window.model());
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(entry(first, "Editor"), nullptr) << "not everything that could";
    entry(first, "Other application…")->trigger();
    ASSERT_TRUE(runUntil([&] { return shown<ApplicationChooser>() != nullptr; }));
    EXPECT_FALSE(shown<ApplicationChooser>()->always().isVisible());
    choose("Editor", false);
    EXPECT_TRUE(runUntilCalled("Editor Reports"));
    EXPECT_THAT(settings.recentFolderApps(), ElementsAre(ScriptedWorkspace::editor().file));

    QMenu second;
    window.contextMenu().fill(second, window.model());
    ASSERT_TRUE(runUntil([&] { return entry(second, "Editor") != nullptr; }));
    entry(second, "Editor")->trigger();
    EXPECT_TRUE(runUntil([&] { return count("Editor Reports") == 2; }));
}

TEST_F(Opening, AsksWhatOpensAFileThatNothingOpens) {
    workspace->problems["one.txt"] = {.url = tree.url("Projects/one.txt"),
                                      .text = Text{"open.error.noApplication"},
                                      .lacksApplication = true};
    workspace->defaultProblem = Text{"open.error.noTerminal"};
    Q_EMIT window.view().openRequested(rowNamed(window.model(), "one.txt"));
    ASSERT_TRUE(runUntil([&] { return shown<ApplicationChooser>() != nullptr; }));
    workspace->problems.clear();
    choose("Editor", true);
    EXPECT_TRUE(runUntilCalled("Editor one.txt"));
    EXPECT_TRUE(runUntilCalled("default Editor of text/plain"));
    ASSERT_TRUE(runUntil([&] { return shown<ConfirmationDialog>() != nullptr; }));
    EXPECT_EQ(shown<ConfirmationDialog>()->windowTitle(), QStringLiteral("No terminal is installed."));
}

TEST_F(Opening, HappensFromTheAddressAndTheTreeToo) {
    std::vector<FileURL> windows;
    services->openWindowAt = [&](const FileURL& folder) { windows.push_back(folder); };
    Q_EMIT window.findChild<AddressBar*>()->openInNewWindowRequested(tree.url("Projects"));
    EXPECT_THAT(windows, ElementsAre(tree.url("Projects")));

    settings.setPinnedFolders({PinnedFolder(tree.url("Projects"))});
    auto* const places = window.findChild<NavigationTree*>();
    const FolderTreeModel& rows = places->folders();
    QModelIndex row;
    ASSERT_TRUE(runUntil([&] {
        for (row = rows.index(0, 0); row.isValid(); row = places->indexBelow(row))
            if (rows.entry(row).title == QStringLiteral("Projects")) return true;
        return false;
    }));
    const auto fromMenu = [&](const char* text) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, places->visualRect(row).center(), QPoint());
        QApplication::sendEvent(places->viewport(), &event);
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QAction* const action = menu ? entry(*menu, text) : nullptr;
        const bool isEnabled = action && action->isEnabled();
        if (isEnabled) action->trigger();
        if (menu) menu->close();
        return isEnabled;
    };
    EXPECT_TRUE(fromMenu("Open in terminal"));
    EXPECT_TRUE(runUntilCalled("terminal Projects"));
    EXPECT_FALSE(fromMenu("Paste")) << "there is nothing to paste";
    services->clipboard().copy({{tree.file("elsewhere.txt"), std::nullopt}});
    EXPECT_TRUE(fromMenu("Paste"));
    EXPECT_TRUE(runUntil([&] { return tree.exists("Projects/elsewhere.txt"); }));
}

} // namespace
} // namespace ombrel
