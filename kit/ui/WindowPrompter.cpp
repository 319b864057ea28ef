#include "ui/WindowPrompter.h"

#include "ui/LocalizedText.h"
#include "ui/ReportDialog.h"
#include "ui/Theme.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace ombrel {
namespace {

using Content = ConfirmationDialog::Content;
using Kind = BrowserQuestion::Kind;

std::string nameOf(const BrowserQuestion& question) {
    if (question.items.empty()) return {};
    return isolated(question.items.front().url.title());
}

std::int64_t countOf(const BrowserQuestion& question) {
    return std::max(question.count, static_cast<std::int64_t>(question.items.size()));
}

Content aboutTrash(const BrowserQuestion& question, bool isOne) {
    return {.title = isOne ? localized("confirm.trash.one", {nameOf(question)})
                           : localized("confirm.trash.many", countOf(question)),
            .message = localized("confirm.canUndo"),
            .accept = localized("confirm.trash.accept"),
            .checkBox = localized("confirm.dontAskAgain"),
            .isAcceptSafe = true};
}

Content aboutDeleting(const BrowserQuestion& question, bool isOne) {
    return {.title = isOne ? localized("confirm.delete.one", {nameOf(question)})
                           : localized("confirm.delete.many", countOf(question)),
            .message = localized("confirm.cannotUndo"),
            .accept = localized("confirm.delete.accept"),
            .isDanger = true};
}

Content aboutDissolving(const BrowserQuestion& question, bool isOne) {
    return {.title = isOne ? localized("confirm.dissolve.one", {nameOf(question)})
                           : localized("confirm.dissolve.many", countOf(question)),
            .message =
                isOne ? localized("confirm.dissolve.message") : localized("confirm.dissolve.messageMany"),
            .accept = localized("confirm.dissolve.accept")};
}

Content aboutRunning(const BrowserQuestion& question, bool isOne) {
    return {.title = isOne ? localized("confirm.runProgram.title", {nameOf(question)})
                           : localized("confirm.runProgram.many", countOf(question)),
            .message =
                isOne ? localized("confirm.runProgram.message") : localized("confirm.runProgram.messageMany"),
            .accept = localized("confirm.runProgram.accept"),
            .alternative = localized("confirm.runProgram.alternative")};
}

} // namespace

ConfirmationDialog::Content WindowPrompter::contentOf(const BrowserQuestion& question) {
    const bool isOne = countOf(question) == 1 && !question.items.empty();
    Content content;
    switch (question.kind) {
    case Kind::moveToTrash: content = aboutTrash(question, isOne); break;
    case Kind::deletePermanently: content = aboutDeleting(question, isOne); break;
    case Kind::dissolveFolder: content = aboutDissolving(question, isOne); break;
    case Kind::removeLocation:
        content = {.title = localized("confirm.removeLocation.title", {nameOf(question)}),
                   .message = localized("confirm.removeLocation.message"),
                   .accept = localized("confirm.removeLocation.accept")};
        break;
    case Kind::openMany:
        content = {.title = localized("confirm.openMany.title", countOf(question)),
                   .accept = localized("confirm.openMany.accept")};
        break;
    case Kind::runProgram: content = aboutRunning(question, isOne); break;
    case Kind::showProtected:
        content = {.title = localized("confirm.showProtected.title"),
                   .message = localized("confirm.showProtected.message"),
                   .accept = localized("confirm.showProtected.accept")};
        break;
    }
    content.decline = localized("confirm.cancel");
    const bool showsItem = question.kind != Kind::removeLocation && question.kind != Kind::showProtected;
    if (isOne && showsItem) content.item = question.items.front().url;
    return content;
}

WindowPrompter::WindowPrompter(const Theme& theme, QWidget& window, QObject* parent)
    : BrowserPrompter(parent), theme_(&theme), window_(&window) {}

void WindowPrompter::ask(const BrowserQuestion& question, Answer answer) {
    if (!window_) return answer({});
    (new ConfirmationDialog(*theme_, contentOf(question), std::move(answer), window_))->open();
}

void WindowPrompter::tell(const Text& problem) {
    if (!window_) return;
    (new ConfirmationDialog(*theme_, {.title = localized(problem), .decline = localized("ui.report.close")},
                            {}, window_))
        ->open();
}

void WindowPrompter::show(const OperationReport& report) {
    if (window_) (new ReportDialog(*theme_, report, window_))->open();
}

} // namespace ombrel
