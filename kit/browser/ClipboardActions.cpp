#include "browser/ClipboardActions.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using Intent = ClipboardService::PasteIntent;

JobPlan planOf(const FileOperationService& service, const Intent& intent, const FileURL& folder) {
    std::vector<TransferItem> items;
    const bool isMove = intent.which == Intent::Case::move;
    for (const auto& url : intent.urls)
        items.emplace_back(FileReference{url, std::nullopt});
    for (const auto& item : intent.items)
        if (item.url.isRoot() || item.url.parent() != folder) items.emplace_back(item);
    return JobPlan::transfer(service, isMove ? FileOperationKind::move : FileOperationKind::copy,
                             std::move(items), folder);
}

} // namespace

void ClipboardActions::bindTo(CommandDispatcher& dispatcher) {
    auto& clipboard = jobs_.services().clipboard();
    dispatcher.bind(FileCommand::copy, {.perform = [&clipboard](BrowserModel& pane) {
                        clipboard.copy(PaneJobs::referencesOf(pane.selection()));
                    }});
    dispatcher.bind(FileCommand::cut, {.perform =
                                           [&clipboard](BrowserModel& pane) {
                                               clipboard.cut(PaneJobs::referencesOf(pane.selection()));
                                           },
                                       .isEnabled = [this](const BrowserModel&) { return jobs_.mayRun(); }});
    dispatcher.bind(
        FileCommand::paste,
        {.perform = [this](BrowserModel& pane) { pasteInto(pane, *PaneJobs::targetFolder(pane)); },
         .isEnabled =
             [this](const BrowserModel& pane) { return PaneJobs::targetFolder(pane) && canPaste(); }});
    dispatcher.bind(
        FileCommand::cancelCut,
        {.perform = [&clipboard](BrowserModel&) { clipboard.cancelCut(); },
         .isEnabled = [&clipboard](const BrowserModel&) { return !clipboard.cutURLs().empty(); }});
    dispatcher.bind(FileCommand::copyPath, {.perform = [this](BrowserModel& pane) { copyPath(pane); },
                                            .isEnabled =
                                                [](const BrowserModel& pane) {
                                                    return !pane.selection().empty() ||
                                                           pane.currentURL().has_value();
                                                }});
}

bool ClipboardActions::canPaste() const {
    return jobs_.mayRun() && !jobs_.services().clipboard().fileURLs().empty();
}

void ClipboardActions::pasteInto(BrowserModel& pane, const FileURL& folder) const {
    auto& services = jobs_.services();
    const auto intent = std::make_shared<const Intent>(services.clipboard().refresh());
    if (intent->which == Intent::Case::none) return;
    const auto isAway = [&](const FileReference& item) { return item.url.parent() != folder; };
    const bool isMove = intent->which == Intent::Case::move;
    if (isMove && std::ranges::none_of(intent->items, isAway)) return;
    const auto finish = [&services, intent](const OperationReport& report) {
        if (report.overall() == OperationReport::Overall::succeeded)
            services.clipboard().finishMove(intent->items);
    };
    jobs_.run(pane, intent->urls.size() + intent->items.size(),
              [service = services.operations(), intent, folder] { return planOf(service, *intent, folder); },
              {.select = PaneJobs::Aftermath::Select::results,
               .done = isMove ? std::function<void(const OperationReport&)>(finish) : nullptr});
}

void ClipboardActions::copyPath(const BrowserModel& pane) const {
    auto& clipboard = jobs_.services().clipboard();
    std::vector<FileURL> urls;
    for (auto& item : PaneJobs::referencesOf(pane.selection()))
        urls.push_back(std::move(item.url));
    if (urls.empty() && pane.currentURL()) urls.push_back(*pane.currentURL());
    clipboard.copyPaths(urls);
}

} // namespace ombrel
