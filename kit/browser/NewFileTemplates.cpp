#include "browser/NewFileTemplates.h"

#include "base/FileName.h"
#include "base/MainThread.h"
#include "base/Text.h"
#include "base/Worker.h"
#include "listing/DirectoryProvider.h"
#include "listing/UserDirectories.h"

#include <QPointer>

#include <algorithm>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

/// More than anyone keeps there, and few enough for a menu.
constexpr std::size_t mostTemplates = 50;

std::vector<NewFileTemplate> read(const FileURL& home, const FileURL& config) {
    const auto folder = UserDirectories::templates(home, config);
    if (!folder) return {};
    const auto listing = DirectoryProvider().load({.url = *folder});
    if (!listing) return {};
    std::vector<NewFileTemplate> found;
    for (const FileItemView item : listing->items()) {
        if (found.size() == mostTemplates) break;
        const auto name = item.name();
        const bool isBackup = name.ends_with('~');
        const bool canBeCopied = item.kind() != FileKind::Case::other && !item.readError();
        if (item.isHidden() || isBackup || !canBeCopied) continue;
        const auto title = item.isDirectoryLike() ? name : FileName::stem(name);
        found.push_back({FileName::displayText(title), std::string(name), item.reference()});
    }
    // Titles that leave it open which is meant are spelled out.
    for (auto& one : found) {
        const auto title = one.title;
        if (std::ranges::count(found, title, &NewFileTemplate::title) < 2) continue;
        for (auto& same : found)
            if (same.title == title) same.title = FileName::displayText(same.preferredName);
    }
    return found;
}

} // namespace

NewFileTemplates::NewFileTemplates(FileURL home, FileURL config, QObject* parent)
    : QObject(parent), home_(std::move(home)), config_(std::move(config)) {}

NewFileTemplate NewFileTemplates::textDocument() {
    return {Texts::localized("ui.new.textDocument"), Texts::localized("new.textDocument") + ".txt"};
}

void NewFileTemplates::refresh() {
    if (std::exchange(isReading_, true)) return;
    auto body = [home = home_, config = config_, self = QPointer(this)](const std::stop_token&) {
        MainThread::post([self, found = read(home, config)]() mutable {
            if (!self) return;
            self->isReading_ = false;
            found.insert(found.begin(), textDocument());
            if (found == self->list_) return;
            self->list_ = std::move(found);
            Q_EMIT self->changed();
        });
    };
    try {
        Worker("ombrel-template", std::move(body)).detach();
    } catch (const std::system_error&) {
        isReading_ = false;
    }
}

} // namespace ombrel
