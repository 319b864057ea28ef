#include "ui/TransferMenus.h"

#include "base/FileName.h"
#include "browser/BrowserPrompter.h"
#include "browser/CommandDispatcher.h"
#include "browser/TransferActions.h"
#include "services/AppServices.h"
#include "ui/FolderIcon.h"
#include "ui/GlyphIcon.h"
#include "ui/LocalizedText.h"

#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using Wish = DropPlan::Wish;

/// More items than these are not looked at one by one; their job finds what does not fit.
constexpr std::size_t mostLookedAt = 1000;

DraggedItems selectedIn(const BrowserModel& pane) {
    std::vector<FileReference> items;
    const FileSelection& selection = pane.selection();
    if (selection.count() <= mostLookedAt)
        selection.set().forEach(
            [&](ItemRef ref) { items.push_back({selection.list().view(ref).url(), std::nullopt}); });
    return DraggedItems(std::move(items));
}

std::string nameOf(const FileURL& folder) {
    return FileName::displayText(folder.title());
}

/// The folder's name; where another of them has the same, with its parent's, and with the whole way there
/// where that is the same too.
QString tellingName(const FileURL& folder, const std::vector<FileURL>& all) {
    const auto isAlike = [&](const FileURL& other, auto read) {
        return other != folder && read(other) == read(folder);
    };
    const auto parentOf = [](const FileURL& url) { return url.isRoot() ? url : url.parent(); };
    bool hasTwin = false, hasCousin = false;
    for (const FileURL& other : all) {
        if (!isAlike(other, nameOf)) continue;
        hasTwin = true;
        hasCousin |= isAlike(other, [&](const FileURL& url) { return nameOf(parentOf(url)); });
    }
    const std::string name = nameOf(folder);
    if (!hasTwin || folder.isRoot()) return QString::fromStdString(name);
    const FileURL parent = folder.parent();
    return localized("ui.transfer.folderIn",
                     {isolated(name), isolated(hasCousin ? parent.path() : nameOf(parent))});
}

std::optional<KnownFolder> knownAs(const FileURL& folder, const KnownFolders& known) {
    for (const KnownFolder each : allKnownFolders())
        if (known.url(each) == folder) return each;
    return std::nullopt;
}

} // namespace

TransferMenus::TransferMenus(QWidget& window, const Setting& setting, std::unique_ptr<FolderPicker> picker)
    : QObject(&window), setting_(setting), picker_(std::move(picker)) {}

void TransferMenus::addTo(QMenu& menu, BrowserModel& pane) {
    const DraggedItems items = selectedIn(pane);
    add(menu, Kind::copy, pane, items);
    add(menu, Kind::move, pane, items);
}

bool TransferMenus::canDo(Kind kind, const BrowserModel& pane) const {
    return setting_.transfers.canTransfer(pane) &&
           setting_.commands.canPerform(kind == Kind::copy ? FileCommand::copy : FileCommand::cut, pane);
}

void TransferMenus::add(QMenu& menu, Kind kind, BrowserModel& pane, const DraggedItems& items) {
    const bool isCopy = kind == Kind::copy;
    auto* const below = menu.addMenu(glyphIcon(setting_.theme, isCopy ? Glyph::copy : Glyph::forward),
                                     localized(isCopy ? "ui.transfer.copyTo" : "ui.transfer.moveTo"));
    below->setEnabled(canDo(kind, pane));
    below->setToolTipsVisible(true);
    const auto folders = setting_.transfers.recentDestinations(pane);
    for (const FileURL& folder : folders) {
        auto* const entry = below->addAction(
            folderIcon(setting_.theme, knownAs(folder, setting_.services.settings().knownFolders())),
            tellingName(folder, folders).replace(QLatin1Char('&'), QLatin1String("&&")));
        const auto parent = folder.isRoot() ? std::string() : FileName::displayText(folder.parent().path());
        entry->setToolTip(QString::fromStdString(parent));
        const auto plan = DropPlan::of(items, folder, {}, isCopy ? Wish::copy : Wish::move);
        entry->setEnabled(items.items().empty() || plan.which != DropPlan::Case::forbidden);
        connect(entry, &QAction::triggered, this, [this, kind, folder, selected = QPointer(&pane)] {
            if (selected) transfer(kind, *selected, folder);
        });
    }
    below->addSeparator();
    connect(below->addAction(localized("ui.transfer.chooseFolder")), &QAction::triggered, this,
            [this, kind, selected = QPointer(&pane)] {
                if (selected) choose(kind, *selected);
            });
}

void TransferMenus::choose(Kind kind, BrowserModel& pane) {
    const bool isCopy = kind == Kind::copy;
    picker_->pickFolder(
        {.startingAt = pane.currentURL(),
         .message = Texts::localized(isCopy ? "ui.transfer.copyMessage" : "ui.transfer.moveMessage"),
         .prompt = Texts::localized(isCopy ? "ui.drop.copyHere" : "ui.drop.moveHere")},
        [self = QPointer(this), kind, selected = QPointer(&pane)](const std::optional<FileURL>& folder) {
            if (self && selected && folder) self->transfer(kind, *selected, *folder);
        });
}

void TransferMenus::transfer(Kind kind, BrowserModel& pane, const FileURL& folder) {
    const auto plan =
        DropPlan::of(selectedIn(pane), folder, {}, kind == Kind::copy ? Wish::copy : Wish::move);
    if (plan.which == DropPlan::Case::forbidden && plan.reason) {
        if (pane.prompter()) pane.prompter()->tell(*plan.reason);
        return;
    }
    if (kind == Kind::copy)
        setting_.transfers.copyTo(pane, folder);
    else
        setting_.transfers.moveTo(pane, folder);
}

} // namespace ombrel
