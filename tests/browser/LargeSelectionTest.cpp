// Commands on a hundred thousand selected items: they do what they do for one.
#include "browser/ActionsWorld.h"
#include "browser/ItemProperties.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using enum FileCommand;

class LargeSelection : public ActionsWorld {
protected:
    static constexpr std::size_t many = 100'000;

    LargeSelection() {
        for (std::size_t i = 1; i < many; ++i)
            memory.file(std::to_string(i));
        memory.file("0", "words");
        pane.navigate(memory.url());
        EXPECT_TRUE(runUntilLoaded(pane));
        EXPECT_TRUE(runUntilQuiet());
    }

    /// Without a disk.
    TempTree memory{::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : ""};
};

TEST_F(LargeSelection, TakesTheCommandsOfOne) {
    EXPECT_TRUE(commands.perform(selectAll, pane));
    EXPECT_EQ(pane.selection().count(), many);

    auto others = pane.selection();
    others.change(7, FileSelection::Change::remove);
    EXPECT_EQ(others.count(), many - 1);
    others.change(RowRange{0, many}, FileSelection::Change::flip);
    pane.setSelection(std::move(others));
    EXPECT_THAT(selectedNames(pane), ::testing::ElementsAre(pane.items()[7].name()));
    ASSERT_TRUE(commands.perform(selectAll, pane));

    const ItemProperties properties(pane.selection());
    EXPECT_TRUE(runUntil([&] { return properties.contents().contents().isComplete; }));
    EXPECT_EQ(properties.count(), many);
    EXPECT_EQ(properties.contents().contents().files, std::int64_t{many});
    EXPECT_EQ(properties.contents().contents().bytes, 5);
    EXPECT_EQ(properties.commonFolder(), memory.url());

    EXPECT_TRUE(commands.perform(copy, pane));
    EXPECT_THAT(services->clipboard().fileURLs(), SizeIs(many));
    EXPECT_TRUE(can(paste));
    EXPECT_TRUE(commands.perform(copyPath, pane));
    EXPECT_EQ(std::ranges::count(pasteboard.read("text/plain").value(), '\n'),
              static_cast<std::ptrdiff_t>(many - 1));

    prompter.answer = {BrowserAnswer::Choice::decline};
    EXPECT_TRUE(commands.perform(moveToTrash, pane));
    EXPECT_EQ(prompter.questions.at(0).count, std::int64_t{many});
    EXPECT_THAT(services->center().jobs(), IsEmpty());

    prompter.answer = {BrowserAnswer::Choice::accept};
    EXPECT_TRUE(commands.perform(deletePermanently, pane));
    EXPECT_TRUE(runUntil([&] {
        const auto& jobs = services->center().jobs();
        return !jobs.empty() && jobs.front()->progress().completedItems > 1000;
    }));
    ASSERT_THAT(services->center().jobs(), SizeIs(1));
    EXPECT_EQ(services->center().jobs().front()->progress().totalItems, std::int64_t{many});
    services->center().jobs().front()->cancel();
    EXPECT_TRUE(runUntil([&] { return services->center().jobs().empty(); }));
    ASSERT_TRUE(waitForJobs());
    EXPECT_TRUE(runUntil([&] { return pane.items().size() == memory.names().size(); }));
    EXPECT_LT(pane.items().size(), many);
    EXPECT_GT(pane.items().size(), 0U);
}

} // namespace
} // namespace ombrel
