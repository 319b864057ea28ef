// Every window by keyboard alone: each control that Tab or F6 comes to has a name, a role and a ring.
#include "services/OperationWorld.h"
#include "ui/AboutDialog.h"
#include "ui/ChoiceCard.h"
#include "ui/ConfirmationDialog.h"
#include "ui/FolderOptionsDialog.h"
#include "ui/OnboardingDialog.h"
#include "ui/PaneArea.h"
#include "ui/ProgressWindow.h"
#include "ui/ReportCard.h"
#include "ui/SettingsWindow.h"
#include "ui/WindowWorld.h"

#include <QAccessible>
#include <QPixmap>

#include <set>
#include <string>
#include <vector>

namespace ombrel {
namespace {

using testing::NoTrash;
using testing::quietTheme;
using testing::runUntil;
using testing::TempTree;
using testing::TestServices;

/// Walks through one window and complains about what it meets.
class FocusWalk {
public:
    explicit FocusWalk(QWidget& window) : window_(&window) {
        window.show();
        window.activateWindow();
        (void)runUntil([&] { return window.isActiveWindow() && window.focusWidget(); });
    }

    /// Until it has come around; answers how many controls there were.
    std::size_t walk(Qt::Key key) {
        constexpr int mostSteps = 200;
        std::set<const QWidget*> met;
        for (int step = 0; step < mostSteps; ++step) {
            QWidget* const from = window_->focusWidget();
            if (!from) break;
            QTest::keyClick(from, key);
            QApplication::processEvents();
            QWidget* const at = window_->focusWidget();
            if (!at || !met.insert(at).second) break;
            examine(*at);
        }
        return met.size();
    }

    /// What it complains about.
    [[nodiscard]] const std::vector<std::string>& problems() const noexcept { return problems_; }

private:
    static std::string described(const QWidget& control) {
        std::string text = control.metaObject()->className();
        for (const QWidget* above = control.parentWidget(); above; above = above->parentWidget())
            text += std::string(" in ") + above->metaObject()->className();
        return text;
    }

    void examine(QWidget& control) {
        const auto* const accessible = QAccessible::queryAccessibleInterface(&control);
        const auto complain = [&](const char* what) { problems_.push_back(what + described(control)); };
        if (!accessible || accessible->text(QAccessible::Name).isEmpty()) complain("no name: ");
        if (!accessible || accessible->role() == QAccessible::NoRole ||
            accessible->role() == QAccessible::Client)
            complain("no role: ");
        if (!hasRing(control)) complain("no ring: ");
    }

    /// Whether enough of the accent's colour comes and goes with the focus in and around the control.
    bool hasRing(QWidget& control) {
        const Theme& theme = quietTheme();
        const int around = theme.size(ThemeSize::focusRing) + theme.size(ThemeSize::focusGap);
        const QRect place = QRect(control.mapTo(window_, QPoint()), control.size())
                                .adjusted(-around, -around, around, around)
                                .intersected(window_->rect());
        const QImage with = window_->grab(place).toImage();
        control.clearFocus();
        QApplication::processEvents();
        const QImage without = window_->grab(place).toImage();
        control.setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        const QRgb accent = theme.color(ThemeColor::accent).rgb();
        int drawn = 0;
        for (int y = 0; y < with.height(); ++y)
            for (int x = 0; x < with.width(); ++x)
                if (with.pixel(x, y) == accent && without.pixel(x, y) != accent) ++drawn;
        // A list rings its current row, which may be narrower than it is.
        constexpr int smallest = 40;
        return drawn >= smallest;
    }

    QWidget* window_;
    std::vector<std::string> problems_;
};

/// Expects at least so many controls, and nothing to complain about.
void walk(QWidget& window, Qt::Key key, std::size_t least) {
    FocusWalk walk(window);
    EXPECT_GE(walk.walk(key), least);
    EXPECT_THAT(walk.problems(), ::testing::IsEmpty());
}

TEST(FocusWalkItself, MissesNothing) {
    QWidget window;
    QWidget silent(&window), named(&window);
    named.setGeometry(0, 100, 100, 50);
    for (QWidget* const control : {&silent, &named})
        control->setFocusPolicy(Qt::StrongFocus);
    named.setAccessibleName(QStringLiteral("named"));
    FocusWalk walk(window);
    EXPECT_EQ(walk.walk(Qt::Key_Tab), 2U);
    EXPECT_THAT(walk.problems(),
                ::testing::UnorderedElementsAre("no name: QWidget in QWidget", "no role: QWidget in QWidget",
                                                "no ring: QWidget in QWidget", "no role: QWidget in QWidget",
                                                "no ring: QWidget in QWidget"));
}

class FocusWalkTest : public testing::WindowWorld {
protected:
    void TearDown() override { QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
};

TEST_F(FocusWalkTest, ThroughAFolder) {
    open(tree.url("Projects"));
    window.paneArea().focusContent();
    walk(window, Qt::Key_Tab, 9);
    window.paneArea().focusContent();
    walk(window, Qt::Key_F6, 5);
}

TEST_F(FocusWalkTest, ThroughHome) {
    window.model().navigateHome();
    QApplication::processEvents();
    window.paneArea().focusContent();
    walk(window, Qt::Key_Tab, 6);
    window.paneArea().focusContent();
    walk(window, Qt::Key_F6, 4);
}

TEST_F(FocusWalkTest, ThroughTheSettings) {
    tree.folder("granted");
    services->access().addGrant(tree.url("granted"), nullptr, [](const auto&) {});
    ASSERT_TRUE(runUntil([&] { return !services->access().isBusy(); }));
    SettingsWindow settingsWindow(quietTheme(), *services);
    settingsWindow.setAttribute(Qt::WA_DeleteOnClose, false);
    using enum SettingsWindow::Page;
    for (const auto page : {general, keyboard, language, locations}) {
        settingsWindow.select(page);
        walk(settingsWindow, Qt::Key_Tab, 2);
    }
}

TEST_F(FocusWalkTest, ThroughTheDialogs) {
    const auto walkThrough = [](QDialog* dialog, std::size_t least) {
        dialog->open();
        walk(*dialog, Qt::Key_Tab, least);
        dialog->reject();
    };
    walkThrough(new FolderOptionsDialog(quietTheme(), settings, &window), 9);
    walkThrough(new AboutDialog(quietTheme(), &window), 1);
    walkThrough(new ConfirmationDialog(
                    quietTheme(),
                    {.title = QStringLiteral("Really?"),
                     .accept = QStringLiteral("Yes"),
                     .decline = QStringLiteral("No"),
                     .checkBox = QStringLiteral("Never again")},
                    [](const auto&) {}, &window),
                3);
}

TEST_F(FocusWalkTest, ThroughOnboarding) {
    OnboardingDialog dialog(quietTheme(), *services);
    dialog.setAttribute(Qt::WA_DeleteOnClose, false);
    dialog.show();
    constexpr std::size_t least[] = {2, 3, 8};
    for (const std::size_t count : least) {
        walk(dialog, Qt::Key_Tab, count);
        QTest::keyClick(&dialog, Qt::Key_Return);
    }
    EXPECT_FALSE(dialog.isVisible());
}

class ProgressFocusWalk : public ::testing::Test {
protected:
    ProgressFocusWalk() {
        center.setSlowDrives([](const FileStatus&) { return std::vector<DriveQueue::Drive>(); });
        center.setWindowDelay(std::chrono::milliseconds(0));
        center.setPresenter(&progress);
    }
    ~ProgressFocusWalk() override {
        center.cancelAll();
        (void)runUntil([&] { return center.jobs().empty(); });
    }
    [[nodiscard]] bool waitForPrompt() const {
        return runUntil([&] {
            return !center.jobs().empty() && center.jobs().front()->prompt() && progress.window().isVisible();
        });
    }

    TempTree tree;
    FileOperationService service{std::make_shared<NoTrash>()};
    OperationCenter center;
    mutable ProgressWindow progress{{.theme = quietTheme(), .center = center}};
};

TEST_F(ProgressFocusWalk, ThroughQuestionsAndTheReport) {
    tree.folder("to");
    for (const char* name : {"a", "b", "to/a", "to/b"})
        tree.file(name);
    center.run(JobPlan::transfer(service, FileOperationKind::copy,
                                 {FileReference{tree.url("a"), std::nullopt},
                                  FileReference{tree.url("b"), std::nullopt},
                                  FileReference{tree.url("gone"), std::nullopt}},
                                 tree.url("to")));
    ASSERT_TRUE(waitForPrompt());
    // For all at once: the cards are one stop, beside the folders and the cancel button.
    walk(progress.window(), Qt::Key_Tab, 3);
    auto& job = *center.jobs().front();
    center.decideEach(*job.prompt(), job);
    ASSERT_TRUE(runUntil([&] { return job.prompt() && !job.prompt()->isBatch(); }));
    walk(progress.window(), Qt::Key_Tab, 5);
    job.prompt()->answer(ConflictChoice::skip, true);
    ASSERT_TRUE(
        runUntil([&] { return job.prompt() && std::holds_alternative<ErrorContext>(job.prompt()->kind()); }));
    walk(progress.window(), Qt::Key_Tab, 3);
    job.prompt()->answer(ErrorChoice::skip);
    ASSERT_TRUE(runUntil([&] { return progress.window().findChild<ReportCard*>() != nullptr; }));
    walk(progress.window(), Qt::Key_Tab, 2);
}

} // namespace
} // namespace ombrel
