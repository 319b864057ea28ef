#include "browser/CreationActions.h"

#include "base/Text.h"

#include <utility>

namespace ombrel {

void CreationActions::bindTo(CommandDispatcher& dispatcher) {
    const auto canCreate = [this](const BrowserModel& pane) { return this->canCreate(pane); };
    dispatcher.bind(FileCommand::newFolder, {[this](BrowserModel& pane) { createFolder(pane); }, canCreate});
    dispatcher.bind(
        FileCommand::newFile,
        {[this](BrowserModel& pane) { createFile(pane, NewFileTemplates::textDocument()); }, canCreate});
}

bool CreationActions::canCreate(const BrowserModel& pane) const {
    return jobs_.mayRun() && PaneJobs::targetFolder(pane);
}

void CreationActions::createFolder(BrowserModel& pane) const {
    if (const auto folder = PaneJobs::targetFolder(pane))
        run(pane,
            JobPlan::createFolder(jobs_.services().operations(), *folder, Texts::localized("new.folder")));
}

void CreationActions::createFile(BrowserModel& pane, const NewFileTemplate& pattern) const {
    const auto folder = PaneJobs::targetFolder(pane);
    if (!folder) return;
    const auto& service = jobs_.services().operations();
    run(pane, pattern.source
                  ? JobPlan::createFromTemplate(service, *pattern.source, *folder, pattern.preferredName)
                  : JobPlan::createEmptyFile(service, *folder, pattern.preferredName));
}

void CreationActions::run(BrowserModel& pane, JobPlan plan) const {
    jobs_.run(pane, std::move(plan), {.select = PaneJobs::Aftermath::Select::results, .renames = true});
}

} // namespace ombrel
