#include "operations/UndoPlans.h"
#include "support/FolderTrash.h"
#include "support/TempTree.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

namespace ombrel {
namespace {

using namespace testing;
using Error = FileOperationError;
using Kind = FileOperationKind;

/// How somebody changes an item that a job has brought while the job goes on with the next one.
enum class Change : std::uint8_t { saved, written };

/// Two items, of which the first is changed once it has its place; then the whole is undone.
class UndoneAfterAChange : public ::testing::TestWithParam<std::tuple<Kind, Change>> {
protected:
    TempTree tree;
    std::shared_ptr<FolderTrash> trash = std::make_shared<FolderTrash>(tree.folder("trash").path());
    FileOperationService service{trash};

    void change(Change how) {
        const auto victim = tree.path("target/a");
        if (how == Change::saved) {
            tree.file("fresh", "edited");
            ASSERT_EQ(std::rename(tree.path("fresh").c_str(), victim.c_str()), 0);
        } else {
            tree.file("target/a", "edited");
        }
    }

    OperationReport undo(FileUndoStep step) {
        OperationReport all{Kind::move, {}};
        for (auto& piece : piecesOf(std::move(step.action))) {
            const auto renumbered = std::make_shared<std::vector<Renumbered>>();
            auto plan = planOf(service, piece, {}, Landings::ofOtherObjects, renumbered);
            for (auto& item : plan.work({}, {}).items)
                all.items.push_back(std::move(item));
        }
        return all;
    }
};

TEST_P(UndoneAfterAChange, LeavesAloneWhatIsNotAsItWasBrought) {
    const auto& [kind, how] = GetParam();
    tree.folder("target");
    std::vector<TransferItem> items;
    for (const char* name : {"a", "b"})
        items.emplace_back(FileReference::sampling(tree.file(name, name)));
    auto plan = JobPlan::transfer(service, kind, items, tree.url("target"));
    OperationHooks hooks;
    bool isChanged = false;
    hooks.progress = [&, what = how](const OperationProgress& progress) {
        if (progress.completedItems == 1 && !std::exchange(isChanged, true)) change(what);
    };
    const auto report = plan.work(hooks, {});
    ASSERT_EQ(report.overall(), OperationReport::Overall::succeeded);
    ASSERT_TRUE(isChanged);

    const auto undone = undo(plan.undo(report));
    EXPECT_EQ(tree.contents("target/a"), "edited");
    EXPECT_FALSE(tree.exists("target/b"));
    EXPECT_EQ(undone.unsuccessful().size(), 1U);
    for (const auto& item : undone.unsuccessful())
        EXPECT_EQ(item.outcome, ItemOutcome::failed(Error::Case::sourceChanged));
}

// What was moved goes back with what was written into it.
INSTANTIATE_TEST_SUITE_P(All, UndoneAfterAChange,
                         ::testing::Values(std::tuple(Kind::copy, Change::saved),
                                           std::tuple(Kind::copy, Change::written),
                                           std::tuple(Kind::move, Change::saved)));

} // namespace
} // namespace ombrel
