#include "ui/ProgressWindow.h"

#include "services/OperationCenter.h"
#include "services/OperationWorld.h"
#include "ui/ChoiceCard.h"
#include "ui/ConfirmationDialog.h"
#include "ui/ConflictPrompt.h"
#include "ui/GlyphButton.h"
#include "ui/JobCard.h"
#include "ui/LinkButton.h"
#include "ui/ProgressFrame.h"
#include "ui/ReportCard.h"
#include "ui/ReportTable.h"
#include "ui/SpeedGraph.h"
#include "ui/ViewWorld.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QPushButton>

namespace ombrel {
namespace {

using testing::Holdup;
using testing::NoTrash;
using testing::runUntil;
using testing::TempTree;
using Kind = FileOperationKind;

/// Real jobs, shown at once.
class ProgressWindowTest : public ::testing::Test {
protected:
    ProgressWindowTest() {
        center.setSlowDrives([](const FileStatus&) { return std::vector<DriveQueue::Drive>(); });
        center.setWindowDelay(std::chrono::milliseconds(0));
        center.setPresenter(&progress);
        tree.folder("to");
    }
    ~ProgressWindowTest() override {
        center.cancelAll();
        (void)runUntil([&] { return center.jobs().empty(); });
    }

    void copy(std::initializer_list<const char*> names, Kind kind = Kind::copy) {
        std::vector<TransferItem> items;
        for (const char* name : names)
            items.emplace_back(FileReference{tree.url(name), std::nullopt});
        center.run(JobPlan::transfer(service, kind, std::move(items), tree.url("to")));
    }
    template <typename Widget>
    [[nodiscard]] Widget* find() const {
        const auto all = window.findChildren<Widget*>();
        for (Widget* widget : all)
            if (widget->isVisible()) return widget;
        return nullptr;
    }
    template <typename Button>
    [[nodiscard]] Button* button(const QString& text) const {
        const auto all = window.findChildren<Button*>();
        for (Button* button : all)
            if (button->isVisible() && (button->text() == text || button->accessibleName() == text))
                return button;
        return nullptr;
    }
    template <typename Widget>
    [[nodiscard]] bool waitFor() const {
        return runUntil([&] { return find<Widget>() != nullptr; });
    }
    [[nodiscard]] bool waitForCard(const QString& title) const {
        return runUntil([&] { return button<ChoiceCard>(title) != nullptr; }) && waitForAnswers();
    }
    [[nodiscard]] bool waitForAnswers() const {
        return runUntil([&] { return find<PromptView>() && find<PromptView>()->takesAnswers(); });
    }
    [[nodiscard]] bool waitUntilGone() const {
        return runUntil([&] { return !window.isVisible() && center.jobs().empty(); });
    }
    void press(Qt::Key key) { QTest::keyClick(window.focusWidget(), key); }
    static void click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }

    TempTree tree;
    FileOperationService service{std::make_shared<NoTrash>()};
    OperationCenter center;
    std::vector<FileURL> opened, deleted;
    ProgressWindow progress{{.theme = testing::quietTheme(),
                             .center = center,
                             .openFolder = [this](const FileURL& url) { opened.push_back(url); },
                             .deletePermanently = [this](const FileURL& url) { deleted.push_back(url); }}};
    QWidget& window = progress.window();
};

/// Reports what a test wants, then goes on until it is ended.
JobPlan reporting(const TempTree& tree, std::vector<OperationProgress> reports, Holdup& end) {
    JobPlan plan = end.plan(tree.url("from/a"));
    plan.kind = Kind::copy;
    plan.destination = tree.url("to");
    plan.work = [reports = std::move(reports), rest = std::move(plan.work)](
                    const OperationHooks& hooks, const std::stop_token& stop) mutable {
        for (const auto& report : reports)
            hooks.progress(report);
        return rest(hooks, stop);
    };
    return plan;
}

TEST_F(ProgressWindowTest, ShowsAJobUntilItEnds) {
    Holdup end;
    center.run(reporting(tree,
                         {{.completedItems = 1,
                           .totalItems = 4,
                           .completedBytes = 3 << 20,
                           .totalBytes = 6 << 20,
                           .currentName = "caf\xC3\xA9.txt",
                           .phase = OperationProgress::Phase::copying}},
                         end));
    ASSERT_TRUE(waitFor<JobCard>());
    auto* const card = find<JobCard>();
    ASSERT_TRUE(runUntil([&] { return card->stateText() == QStringLiteral("50% complete"); }));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("50% complete"));
    EXPECT_NE(find<SpeedGraph>(), nullptr);

    click(button<LinkButton>(QStringLiteral("to")));
    click(button<LinkButton>(QStringLiteral("from")));
    EXPECT_EQ(opened, (std::vector{tree.url("to"), tree.url("from")}));

    click(button<GlyphButton>(QStringLiteral("Pause")));
    EXPECT_TRUE(card->job()->isPaused());
    EXPECT_EQ(card->stateText(), QStringLiteral("Paused, 50%"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Paused"));
    click(button<GlyphButton>(QStringLiteral("Resume")));
    click(button<LinkButton>(QStringLiteral("Fewer details")));
    EXPECT_EQ(find<SpeedGraph>(), nullptr);

    // What is closed goes on.
    press(Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(center.jobs().size(), 1u);
    progress.comeBack();
    EXPECT_TRUE(window.isVisible());
    end.end();
    EXPECT_TRUE(waitUntilGone());
    EXPECT_TRUE(progress.isEmpty());
}

TEST_F(ProgressWindowTest, NeverCountsBack) {
    Holdup end;
    OperationProgress first;
    first.completedBytes = 80;
    first.totalBytes = 100;
    first.phase = OperationProgress::Phase::copying;
    OperationProgress second = first;
    second.completedBytes = 40;
    const auto job = center.run(reporting(tree, {}, end));
    ASSERT_TRUE(waitFor<JobCard>());
    job->apply(first, 0);
    EXPECT_EQ(find<JobCard>()->stateText(), QStringLiteral("80% complete"));
    job->apply(second, 1);
    EXPECT_EQ(find<JobCard>()->stateText(), QStringLiteral("80% complete"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("80% complete"));
    OperationProgress again;
    again.totalItems = 12;
    job->apply(again, 2);
    EXPECT_EQ(find<JobCard>()->stateText(), QStringLiteral("Preparing, 12 items found"));
    end.end();
    EXPECT_TRUE(waitUntilGone());
}

TEST_F(ProgressWindowTest, ConflictsAreAnsweredByKeysAndByMouse) {
    for (const char* name : {"a", "b", "c", "free"})
        tree.file(name, std::string("new ") + name);
    for (const char* name : {"to/a", "to/b", "to/c"})
        tree.file(name, "old");
    copy({"a", "b", "c", "free"});
    ASSERT_TRUE(waitForCard(QStringLiteral("Skip these items")));
    EXPECT_EQ(find<ConflictPrompt>()->title(),
              QStringLiteral("3 items with the same names are already there"));
    EXPECT_EQ(button<ChoiceCard>(QStringLiteral("Skip these items"))->caption(),
              QStringLiteral("The 3 items stay as they are. The other one is copied."));
    EXPECT_EQ(button<ChoiceCard>(QStringLiteral("Replace the existing items"))->caption(),
              QStringLiteral("The 3 items in “to” will be overwritten."));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Waiting for your answer"));
    EXPECT_EQ(window.focusWidget(), button<ChoiceCard>(QStringLiteral("Skip these items")));

    press(Qt::Key_D); // letters do nothing
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(window.focusWidget(), button<ChoiceCard>(QStringLiteral("Decide for each item")));
    // Between two questions as well, what destroys something does not have the keyboard.
    const QWidget* const cancel = button<GlyphButton>(QStringLiteral("Cancel"));
    ASSERT_NE(cancel, nullptr);
    bool couldCancel = false;
    QObject::connect(qApp, &QApplication::focusChanged, &window,
                     [&](const QWidget*, const QWidget* now) { couldCancel = couldCancel || now == cancel; });
    press(Qt::Key_Return);
    ASSERT_TRUE(waitForCard(QStringLiteral("Keep both")));
    EXPECT_EQ(find<ConflictPrompt>()->title(), QStringLiteral("“a” is already there"));
    EXPECT_EQ(window.focusWidget(), button<ChoiceCard>(QStringLiteral("Skip")));
    press(Qt::Key_Up);
    press(Qt::Key_Space);
    const auto asksAbout = [&](const char* title) {
        return runUntil([&] {
            return find<ConflictPrompt>() && find<ConflictPrompt>()->title() == QString::fromUtf8(title);
        });
    };
    ASSERT_TRUE(asksAbout("“b” is already there"));
    ASSERT_TRUE(waitForAnswers());
    click(button<ChoiceCard>(QStringLiteral("Keep both")));
    ASSERT_TRUE(asksAbout("“c” is already there"));
    // The second half of a double click, and somebody who types on, answer nothing.
    EXPECT_FALSE(find<PromptView>()->takesAnswers());
    click(button<ChoiceCard>(QStringLiteral("Replace")));
    press(Qt::Key_Return);
    EXPECT_TRUE(asksAbout("“c” is already there"));
    ASSERT_TRUE(waitForAnswers());
    EXPECT_TRUE(asksAbout("“c” is already there"));

    // The question outlasts a closed window.
    press(Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    progress.comeBack();
    EXPECT_EQ(window.focusWidget(), button<ChoiceCard>(QStringLiteral("Skip")));
    press(Qt::Key_Return);
    ASSERT_TRUE(runUntil([&] { return center.jobs().empty(); }));
    EXPECT_FALSE(couldCancel);
    EXPECT_EQ(tree.contents("to/a"), "new a");
    EXPECT_EQ(tree.contents("to/b"), "old");
    EXPECT_EQ(tree.contents("to/b (2)"), "new b");
    EXPECT_EQ(tree.contents("to/c"), "old");
    EXPECT_EQ(tree.contents("to/free"), "new free");
}

TEST_F(ProgressWindowTest, GrowsUpwardsAtTheBottomOfTheScreen) {
    tree.file("file", "new");
    tree.folder("to/file");
    Holdup end;
    center.run(end.plan(tree.url("from/a")));
    ASSERT_TRUE(runUntil([&] { return window.isVisible(); }));
    const QRect area = window.screen()->availableGeometry();
    window.move(area.left(), area.bottom() + 1 - window.frameGeometry().height());
    const int low = window.y();
    copy({"file"});
    ASSERT_TRUE(waitForCard(QStringLiteral("Replace")));
    EXPECT_LT(window.y(), low);
    EXPECT_TRUE(area.contains(window.frameGeometry()));
    end.end();
}

TEST_F(ProgressWindowTest, OneAnswerStandsForTheOtherConflictsToo) {
    tree.folder("dir");
    tree.file("file", "new");
    tree.folder("to/file");
    copy({"file"});
    ASSERT_TRUE(waitForCard(QStringLiteral("Replace")));
    EXPECT_EQ(button<ChoiceCard>(QStringLiteral("Replace"))->caption(),
              QStringLiteral("The existing folder and everything in it is removed."));
    auto* const box = find<QCheckBox>();
    ASSERT_NE(box, nullptr);
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_TRUE(center.jobs().front()->prompt()->applyToAll());
    click(button<QPushButton>(QStringLiteral("Cancel the copy")));
    // Nothing has happened, so there is nothing to report.
    EXPECT_TRUE(waitUntilGone());
    EXPECT_TRUE(runUntil([&] { return center.leftReports().empty(); }));
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ProgressWindowTest, FailuresAreAskedAboutAndReported) {
    tree.file("a", "kept");
    center.run(
        JobPlan::moveToTrash(service, {{tree.url("a"), std::nullopt}, {tree.url("gone"), std::nullopt}}));
    ASSERT_TRUE(waitForAnswers());
    EXPECT_EQ(find<JobCard>()->stateText(), QStringLiteral("This item can’t go to the trash"));
    click(find<QCheckBox>());
    click(button<QPushButton>(QStringLiteral("Delete permanently…")));
    EXPECT_TRUE(deleted.empty());
    EXPECT_EQ(find<ConfirmationDialog>()->focusWidget(),
              find<ConfirmationDialog>()->findChild<QPushButton*>());
    click(button<QPushButton>(QStringLiteral("Delete")));
    EXPECT_EQ(deleted, std::vector{tree.url("a")});
    // The answer was for that item alone.
    ASSERT_TRUE(runUntil([&] {
        const auto prompt = center.jobs().empty() ? nullptr : center.jobs().front()->prompt();
        return prompt && std::get<ErrorContext>(prompt->kind()).source == tree.url("gone");
    }));
    ASSERT_TRUE(waitForAnswers());
    click(button<QPushButton>(QStringLiteral("Skip")));
    ASSERT_TRUE(waitFor<ReportCard>());
    EXPECT_EQ(find<JobCard>(), nullptr);
    EXPECT_EQ(find<ReportTable>()->model()->rowCount(), 2);
    EXPECT_EQ(window.windowTitle(), find<ReportCard>()->summary());

    EXPECT_EQ(window.focusWidget(), button<QPushButton>(QStringLiteral("Close")));
    click(button<QPushButton>(QStringLiteral("Copy report")));
    EXPECT_THAT(QGuiApplication::clipboard()->text().toStdString(), ::testing::HasSubstr(tree.path("gone")));
    QTest::keyClick(button<QPushButton>(QStringLiteral("Close")), Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(center.leftReports().empty());
}

TEST(ReportTableTest, ShowsTheFirstAndCopiesAll) {
    OperationReport report{.kind = Kind::copy, .items = {}};
    constexpr int count = 300;
    for (int i = 0; i < count; ++i)
        report.items.push_back({FileURL().appending("item " + std::to_string(i)), ItemOutcome::skipped()});
    report.items.push_back({FileURL().appending("fine"), ItemOutcome::completed()});
    const ReportTable table(testing::quietTheme(), report);
    EXPECT_EQ(table.model()->rowCount(), ReportTable::mostRows);
    EXPECT_EQ(table.model()->index(0, 1).data().toString(), QStringLiteral("Skipped"));
    const QString text = ReportTable::asText(report);
    EXPECT_EQ(text.count(QLatin1Char('\n')), count + 1);
    EXPECT_FALSE(text.contains(QStringLiteral("fine")));
}

TEST(SpeedGraphTest, EndsAtTheNextRoundSpeedAbove) {
    EXPECT_EQ(SpeedGraph::ceilingOf(0), 1);
    EXPECT_EQ(SpeedGraph::ceilingOf(1), 2);
    EXPECT_EQ(SpeedGraph::ceilingOf(499), 500);
    EXPECT_EQ(SpeedGraph::ceilingOf(500), 1000);
    EXPECT_EQ(SpeedGraph::ceilingOf(86'400'000), 100'000'000);
}

} // namespace
} // namespace ombrel
