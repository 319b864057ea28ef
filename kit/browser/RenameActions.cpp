#include "browser/RenameActions.h"

#include "browser/BrowserPrompter.h"
#include "browser/RenameRules.h"

#include <QPointer>

#include <utility>

namespace ombrel {

void RenameActions::bindTo(CommandDispatcher& dispatcher) {
    dispatcher.bind(FileCommand::rename,
                    {.perform = [](BrowserModel& pane) { pane.requestRename(*pane.selection().firstRow()); },
                     .isEnabled =
                         [this](const BrowserModel& pane) {
                             return jobs_.mayRun() && pane.requestRename && pane.selection().count() == 1;
                         }});
}

void RenameActions::commit(BrowserModel& pane, FileItemView item, std::string_view text, Done done) const {
    auto tell = [pane = QPointer(&pane), done = std::move(done)](const std::optional<Text>& refusal) {
        if (done) return done(refusal);
        if (refusal && pane && pane->prompter()) pane->prompter()->tell(*refusal);
    };
    auto& services = jobs_.services();
    const auto verdict = RenameRules::of(item, services.settings()).judge(text);
    if (verdict.which != RenameRules::Verdict::Case::rename) return tell(verdict.reason);
    auto plan = JobPlan::rename(services.operations(), item.reference(), verdict.name);
    plan.leavesReport = false;
    jobs_.run(pane, std::move(plan),
              {.select = PaneJobs::Aftermath::Select::results,
               .done = [tell = std::move(tell)](const OperationReport& report) {
                   const auto& error = report.items.front().outcome.error();
                   tell(error ? std::optional(error->text()) : std::nullopt);
               }});
}

} // namespace ombrel
