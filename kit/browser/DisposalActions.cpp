#include "browser/DisposalActions.h"

#include <QPointer>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using Kind = BrowserQuestion::Kind;

/// What is to go, as it was when the command was given.
struct Doomed {
    FileSelection selection;
    std::vector<FileURL> neighbour;
};

BrowserQuestion questionOf(Kind kind, const FileSelection& selection) {
    constexpr std::size_t mostNamed = 8;
    BrowserQuestion question{kind, {}, static_cast<std::int64_t>(selection.count())};
    const auto& list = selection.list();
    const auto wanted = std::min(mostNamed, selection.count());
    for (auto row = selection.firstRow().value_or(list.size());
         row < list.size() && question.items.size() < wanted; ++row)
        if (selection.contains(row)) question.items.push_back(list[row].reference());
    return question;
}

void run(AppServices& services, BrowserModel& pane, Kind kind, std::shared_ptr<const Doomed> doomed) {
    const auto count = doomed->selection.count();
    auto neighbour = doomed->neighbour;
    PaneJobs(services).run(pane, count,
                           [service = services.operations(), doomed = std::move(doomed), kind] {
                               auto items = PaneJobs::referencesOf(doomed->selection);
                               return kind == Kind::moveToTrash
                                          ? JobPlan::moveToTrash(service, std::move(items))
                                          : JobPlan::deletePermanently(service, std::move(items));
                           },
                           {.given = std::move(neighbour)});
}

} // namespace

void DisposalActions::bindTo(CommandDispatcher& dispatcher) {
    const auto mayRun = [this](const BrowserModel&) { return jobs_.mayRun(); };
    dispatcher.bind(FileCommand::moveToTrash,
                    {[this](BrowserModel& pane) { dispose(pane, Kind::moveToTrash); }, mayRun});
    dispatcher.bind(FileCommand::deletePermanently,
                    {[this](BrowserModel& pane) { dispose(pane, Kind::deletePermanently); }, mayRun});
}

void DisposalActions::dispose(BrowserModel& pane, Kind how) const {
    auto& services = jobs_.services();
    auto doomed = std::make_shared<const Doomed>(Doomed{pane.selection(), PaneJobs::neighbourOf(pane)});
    if (how == Kind::moveToTrash && !services.settings().confirmMoveToTrash())
        return run(services, pane, how, std::move(doomed));
    auto* const prompter = pane.prompter();
    if (!prompter) return;
    const auto question = questionOf(how, doomed->selection);
    prompter->ask(question, [services = QPointer(&services), pane = QPointer(&pane), how,
                             doomed = std::move(doomed)](const BrowserAnswer& answer) {
        if (!services || answer.choice != BrowserAnswer::Choice::accept) return;
        if (how == Kind::moveToTrash && answer.dontAskAgain)
            services->settings().setConfirmMoveToTrash(false);
        if (pane) run(*services, *pane, how, doomed);
    });
}

} // namespace ombrel
