#pragma once

#include "browser/BrowserPrompter.h"
#include "browser/CommandDispatcher.h"
#include "browser/FileActions.h"
#include "browser/ModelWorld.h"
#include "operations/SystemTrash.h"
#include "services/AppServices.h"
#include "services/FileBookmarkStore.h"
#include "services/SystemSecurityScope.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "qtmain/KitWorld.h"

namespace ombrel::testing {

/// Keeps what it was asked and told, and gives every question the same answer at once.
class ScriptedPrompter final : public BrowserPrompter {
public:
    std::vector<BrowserQuestion> questions;
    std::vector<Text> told;
    std::vector<OperationReport> shown;
    BrowserAnswer answer{BrowserAnswer::Choice::accept};
    /// Runs before the answer is given.
    std::function<void()> meanwhile;

    void ask(const BrowserQuestion& question, Answer answered) override {
        questions.push_back(question);
        if (meanwhile) meanwhile();
        answered(answer);
    }
    void tell(const Text& problem) override { told.push_back(problem); }
    void show(const OperationReport& report) override { shown.push_back(report); }
};

/// A pane over a folder of its own with the commands that change files, jobs and a trash that are real, and
/// questions of jobs that are skipped.
class ActionsWorld : public ::testing::Test {
protected:
    ActionsWorld() {
        for (const auto* folder : {"pane", "other", "home"})
            tree.folder(folder);
        services->center().scriptedAnswers = [this](const OperationPrompt::Kind& kind) {
            using Answer = OperationCenter::ScriptedAnswer;
            return std::holds_alternative<OperationPrompt::Conflict>(kind)
                       ? Answer(ConflictDecision{onConflict, false})
                       : Answer(ErrorDecision{ErrorChoice::skip, false});
        };
        services->center().setSlowDrives([](const FileStatus&) { return std::vector<DriveQueue::Drive>(); });
        actions.bindTo(commands);
        pane.setPrompter(&prompter);
        pane.requestRename = [this](std::size_t row) { renaming = std::string(pane.items()[row].name()); };
    }

    void show(const std::string& folder) {
        pane.navigate(tree.url(folder));
        ASSERT_TRUE(runUntilLoaded(pane));
    }
    /// Performs the command on the items, and waits for its jobs.
    bool perform(FileCommand command, const std::vector<std::string>& names) {
        if (!names.empty()) select(pane, names);
        return commands.perform(command, pane) && waitForJobs();
    }
    bool waitForJobs() {
        return runUntil([&] { return services->center().jobs().empty() && !services->undo().isRunning(); }) &&
               runUntilQuiet();
    }
    [[nodiscard]] bool can(FileCommand command) const { return commands.canPerform(command, pane); }
    /// Waits until the pane shows just these, and has just these selected.
    [[nodiscard]] bool shows(const std::vector<std::string>& names,
                             const std::vector<std::string>& selected) {
        return runUntil([&] { return namesOf(pane.items()) == names && selectedNames(pane) == selected; });
    }

    KitWorld world;
    TempTree tree;
    PrivatePasteboard pasteboard;
    std::unique_ptr<AppServices> services = [this] {
        const SystemCall::Allowed settingsAreRead;
        return std::make_unique<AppServices>(
            std::make_unique<AppSettings>(SettingsFile(tree.url("settings.json"))),
            std::make_unique<AccessManager>(std::make_shared<SystemSecurityScope>(),
                                            std::make_shared<FileBookmarkStore>(tree.url("Locations.plist"))),
            std::make_unique<VolumeMonitor>(), std::make_unique<ClipboardService>(pasteboard),
            FileOperationService(std::make_shared<SystemTrash>(
                SystemTrash::Places{tree.url("Trash"), tree.url("home"), ::getuid()})),
            std::make_unique<OperationCenter>());
    }();
    ScriptedPrompter prompter;
    BrowserModel pane{realListings()};
    CommandDispatcher commands;
    FileActions actions{*services};
    ConflictChoice onConflict = ConflictChoice::skip;
    std::optional<std::string> renaming; ///< the item that the view was asked to rename
};

} // namespace ombrel::testing
