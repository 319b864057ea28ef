#include "browser/CommandDispatcher.h"

#include "browser/SelectionGestures.h"

#include <utility>

namespace ombrel {
namespace {

using Request = std::function<void()>;

CommandDispatcher::Handler requesting(Request BrowserModel::* request) {
    return {.perform = [request](BrowserModel& pane) { (pane.*request)(); },
            .isEnabled = [request](const BrowserModel& pane) { return static_cast<bool>(pane.*request); }};
}

} // namespace

CommandDispatcher::CommandDispatcher() {
    bind(FileCommand::goBack, {&BrowserModel::goBack, &BrowserModel::canGoBack});
    bind(FileCommand::goForward, {&BrowserModel::goForward, &BrowserModel::canGoForward});
    bind(FileCommand::goUp, {&BrowserModel::goUp, &BrowserModel::canGoUp});
    bind(FileCommand::refresh, {&BrowserModel::refresh, [](const BrowserModel& pane) {
                                    return pane.isHome() || pane.currentURL().has_value();
                                }});
    bind(FileCommand::selectAll, {[](BrowserModel& pane) { SelectionGestures(pane).selectAll(); },
                                  [](const BrowserModel& pane) { return !pane.items().empty(); }});
    bind(FileCommand::newTab,
         {[](BrowserModel& pane) { pane.requestNewTab(std::nullopt); },
          [](const BrowserModel& pane) { return static_cast<bool>(pane.requestNewTab); }});
    bind(FileCommand::closeTab, requesting(&BrowserModel::requestCloseTab));
    bind(FileCommand::focusAddress, requesting(&BrowserModel::requestAddressFocus));
    bind(FileCommand::focusSearch, requesting(&BrowserModel::requestSearchFocus));
    bind(FileCommand::quickLook, requesting(&BrowserModel::requestQuickLook));
}

void CommandDispatcher::bind(FileCommand command, Handler handler) {
    handlers_[std::to_underlying(command)] = std::move(handler);
}

bool CommandDispatcher::isBound(FileCommand command) const noexcept {
    return static_cast<bool>(handlers_[std::to_underlying(command)].perform);
}

bool CommandDispatcher::canPerform(FileCommand command, const BrowserModel& pane) const {
    if (!isBound(command) || (FileCommands::needsSelection(command) && pane.selection().empty()))
        return false;
    const auto& isEnabled = handlers_[std::to_underlying(command)].isEnabled;
    return !isEnabled || isEnabled(pane);
}

bool CommandDispatcher::perform(FileCommand command, BrowserModel& pane) const {
    if (!canPerform(command, pane)) return false;
    // It may bind anew what is running.
    const auto perform = handlers_[std::to_underlying(command)].perform;
    perform(pane);
    return true;
}

} // namespace ombrel
