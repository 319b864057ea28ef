#include "ui/BrowserWindow.h"

#include "listing/SystemCall.h"
#include "support/FaultAt.h"
#include "ui/CrumbBar.h"
#include "ui/Overlay.h"
#include "ui/StatusBar.h"
#include "ui/ViewWorld.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>

#include <cerrno>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::ElementsAre;

class Window : public ::testing::Test {
protected:
    Window() : window({.theme = quietTheme(), .listings = realListings(), .home = tree.url()}) {
        tree.folder("Projects");
        tree.folder("Projects/Reports");
        tree.file("Projects/one.txt", "12345");
        tree.file("Projects/two.txt", "1234567890");
        window.setAttribute(Qt::WA_DeleteOnClose, false);
        window.resize(900, 600);
        window.show();
    }
    void open(const FileURL& folder) {
        window.model().navigate(folder);
        ASSERT_TRUE(runUntil([&] { return window.model().listingState() != ListingState::Case::loading; }));
    }
    [[nodiscard]] std::vector<std::string> status() const {
        std::vector<std::string> parts;
        for (const QString& part : window.statusBar().parts())
            parts.push_back(part.toStdString());
        return parts;
    }
    [[nodiscard]] std::vector<std::string> buttons() const {
        std::vector<std::string> texts;
        for (const auto* button : window.overlay().findChildren<QPushButton*>())
            texts.push_back(button->text().toStdString());
        return texts;
    }
    void trigger(const QKeySequence& keys) {
        for (QAction* action : window.actions())
            if (action->shortcuts().contains(keys)) return action->trigger();
        ADD_FAILURE() << "no command for " << keys.toString().toStdString();
    }

    TempTree tree;
    BrowserWindow window;
};

TEST_F(Window, IsNamedAfterItsFolderAndCountsItsItems) {
    open(tree.url("Projects"));
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    EXPECT_THAT(status(), ElementsAre("3 items"));
    select(window.model(), {"one.txt", "two.txt"});
    EXPECT_THAT(status(), ElementsAre("3 items", "2 items selected, 15 bytes"));
    select(window.model(), {"Reports"});
    EXPECT_THAT(status(), ElementsAre("3 items", "1 item selected"));
    EXPECT_TRUE(window.overlay().isHidden());
    window.model().navigate(FileURL());
    EXPECT_EQ(window.windowTitle().toStdString(), "/");
}

TEST_F(Window, EntersFoldersAndFindsBack) {
    open(tree.url("Projects"));
    auto& view = window.view();
    Q_EMIT view.openRequested(rowNamed(window.model(), "one.txt"));
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    Q_EMIT view.openRequested(rowNamed(window.model(), "Reports"));
    EXPECT_EQ(window.windowTitle().toStdString(), "Reports");
    trigger(QKeySequence(Qt::Key_Backspace));
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    ASSERT_TRUE(runUntilLoaded(window.model()));
    EXPECT_THAT(selectedNames(window.model()), ElementsAre("Reports"));
    trigger(QKeySequence(Qt::ALT | Qt::Key_Right));
    EXPECT_EQ(window.windowTitle().toStdString(), "Reports");
    trigger(QKeySequence(Qt::ALT | Qt::Key_Up));
    trigger(QKeySequence(Qt::ALT | Qt::Key_Up));
    EXPECT_EQ(window.model().currentURL(), tree.url());
    QTest::mouseClick(view.viewport(), Qt::BackButton);
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    QTest::mouseClick(view.viewport(), Qt::ForwardButton);
    EXPECT_EQ(window.model().currentURL(), tree.url());
}

TEST_F(Window, SaysWhyAFolderIsNotShownAndWhatToDo) {
    const auto& overlay = window.overlay();
    open(tree.url("gone"));
    EXPECT_EQ(overlay.title().toStdString(), "This folder can’t be shown");
    EXPECT_EQ(overlay.message().toStdString(), "This folder does not exist.");
    EXPECT_THAT(buttons(), ElementsAre("Try again", "Go to the folder above"));
    EXPECT_THAT(status(), ElementsAre("Can’t show this folder"));
    tree.folder("gone");
    QTest::mouseClick(overlay.findChildren<QPushButton*>().constFirst(), Qt::LeftButton);
    ASSERT_TRUE(runUntilLoaded(window.model()));
    EXPECT_EQ(overlay.title().toStdString(), "This folder is empty");
    EXPECT_THAT(status(), ElementsAre("0 items"));

    open(tree.url("Projects/one.txt"));
    EXPECT_EQ(overlay.message().toStdString(), "This is not a folder.");
    open(tree.url("Projects"));
    EXPECT_TRUE(overlay.isHidden());
}

TEST_F(Window, KnowsRefusalsApart) {
    const auto overlayUnder = [&](int errorNumber) {
        {
            const FaultAt fault(1, {errorNumber, false});
            open(tree.url("Projects"));
            EXPECT_TRUE(runUntilQuiet());
        }
        return window.overlay().title().toStdString() + " | " + window.overlay().message().toStdString();
    };
    EXPECT_EQ(overlayUnder(EACCES),
              "Ombrel can’t open this folder yet | You don’t have permission to see what is in "
              "“\u2068Projects\u2069”. Allow access to this folder, or ask its owner to share it with "
              "you.");
    // The longest of them needs two lines and gets them.
    for (const auto* label : window.overlay().findChildren<QLabel*>())
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
    EXPECT_EQ(overlayUnder(ENXIO),
              "This volume is not connected | Connect it again and the folder will come back.");
    EXPECT_THAT(overlayUnder(EMFILE), ::testing::HasSubstr("The folder could not be read: "));
}

TEST_F(Window, TellsOfEntriesThatCouldNotBeRead) {
    // The first call opens the folder; some later one looks at an entry.
    for (int call = 2; call < 12; ++call) {
        const FaultAt fault(call, {EIO, false});
        open(tree.url("Projects"));
        ASSERT_TRUE(runUntilQuiet());
        if (fault.hit() == SystemCall::Kind::status && window.model().unreadableCount() > 0) break;
    }
    EXPECT_THAT(status(), Contains("1 item could not be read"));
    const auto& items = window.model().items();
    std::size_t row = 0;
    while (!items[row].readError())
        ++row;
    EXPECT_TRUE(window.view().facts(row).date.isEmpty());
    EXPECT_EQ(window.view().facts(row).badge, IconBadge::lock);
}

TEST(Crumbs, BeginAtHomeOrAtTheRoot) {
    const auto home = *FileURL::fromPath("/home/ann");
    const auto crumbs = [&](std::string_view path) {
        std::vector<std::string> paths;
        for (const FileURL& crumb : CrumbBar::crumbs(*FileURL::fromPath(path), home))
            paths.push_back(crumb.path());
        return paths;
    };
    EXPECT_THAT(crumbs("/home/ann/a/b"), ElementsAre("/home/ann", "/home/ann/a", "/home/ann/a/b"));
    EXPECT_THAT(crumbs("/home/ann"), ElementsAre("/home/ann"));
    EXPECT_THAT(crumbs("/home/anna"), ElementsAre("/", "/home", "/home/anna"));
    EXPECT_THAT(crumbs("/"), ElementsAre("/"));
}

} // namespace
} // namespace ombrel
