#include "browser/ArchiveActions.h"

#include "operations/ArchivePlan.h"

#include <memory>
#include <utility>

namespace ombrel {
namespace {

using Select = PaneJobs::Aftermath::Select;

/// More archives than anyone extracts at a time; names are looked at whenever the selection changes.
constexpr std::size_t mostArchives = 200;

bool areArchives(const FileSelection& selection) {
    if (selection.count() > mostArchives) return false;
    bool areAll = true;
    selection.set().forEach([&](ItemRef ref) {
        const auto item = selection.list().view(ref);
        areAll = areAll && !item.isDirectoryLike() && !item.isPackage() && extractionPlan(item.name());
    });
    return areAll;
}

/// Where an archive of the selected items goes: beside them. Matches of a search may lie in many places.
std::optional<FileURL> folderFor(const BrowserModel& pane) {
    if (pane.selection().count() != 1) return PaneJobs::targetFolder(pane);
    return pane.items()[*pane.selection().firstRow()].folder();
}

} // namespace

void ArchiveActions::bindTo(CommandDispatcher& dispatcher) {
    dispatcher.bind(
        FileCommand::compress,
        {.perform =
             [this](BrowserModel& pane) {
                 const auto selection = std::make_shared<const FileSelection>(pane.selection());
                 jobs_.run(pane, selection->count(),
                           [selection, folder = *folderFor(pane)] {
                               return JobPlan::compress(PaneJobs::referencesOf(*selection), folder);
                           },
                           {.select = Select::results});
             },
         .isEnabled = [this](const BrowserModel& pane) { return jobs_.mayRun() && folderFor(pane); }});
    dispatcher.bind(
        FileCommand::extract,
        {.perform =
             [this](BrowserModel& pane) {
                 jobs_.run(pane, JobPlan::extract(PaneJobs::referencesOf(pane.selection())),
                           {.select = Select::results});
             },
         .isEnabled =
             [this](const BrowserModel& pane) { return jobs_.mayRun() && areArchives(pane.selection()); }});
}

} // namespace ombrel
