#include "browser/FolderActions.h"

#include "base/Text.h"
#include "browser/BrowserPrompter.h"
#include "operations/FolderPlans.h"

#include <QPointer>

#include <memory>
#include <utility>

namespace ombrel {
namespace {

using Select = PaneJobs::Aftermath::Select;

/// A folder itself, no link to one.
bool isFolder(FileItemView item) {
    return item.kind() == FileKind::Case::directory || item.isPackage();
}

} // namespace

void FolderActions::bindTo(CommandDispatcher& dispatcher) {
    dispatcher.bind(
        FileCommand::moveIntoNewFolder,
        {[this](BrowserModel& pane) { moveIntoNewFolder(pane); },
         [this](const BrowserModel& pane) { return jobs_.mayRun() && PaneJobs::targetFolder(pane); }});
    dispatcher.bind(FileCommand::dissolveFolder,
                    {[this](BrowserModel& pane) { dissolve(pane); },
                     [this](const BrowserModel& pane) {
                         return jobs_.mayRun() && pane.selection().count() == 1 &&
                                isFolder(pane.items()[*pane.selection().firstRow()]);
                     }});
}

void FolderActions::moveIntoNewFolder(BrowserModel& pane) const {
    const auto selection = std::make_shared<const FileSelection>(pane.selection());
    jobs_.run(pane, selection->count(),
              [service = jobs_.services().operations(), selection, folder = *PaneJobs::targetFolder(pane),
               name = Texts::localized("new.folder")] {
                  return FolderPlans::moveIntoNewFolder(service, PaneJobs::referencesOf(*selection), folder,
                                                        name);
              },
              {.select = Select::folder, .renames = true});
}

void FolderActions::dissolve(BrowserModel& pane) const {
    auto* const prompter = pane.prompter();
    if (!prompter) return;
    const auto folder = pane.items()[*pane.selection().firstRow()].reference();
    prompter->ask({BrowserQuestion::Kind::dissolveFolder, {folder}, 1},
                  [services = QPointer(&jobs_.services()), pane = QPointer(&pane),
                   folder](const BrowserAnswer& answer) {
                      if (answer.choice != BrowserAnswer::Choice::accept || !services || !pane) return;
                      PaneJobs(*services).run(*pane, FolderPlans::dissolve(services->operations(), folder),
                                              {.select = Select::results});
                  });
}

} // namespace ombrel
