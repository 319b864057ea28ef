#include "browser/PaneTargets.h"

#include <algorithm>

namespace ombrel::PaneTargets {

bool isFolder(FileItemView item) {
    return item.isDirectoryLike() || item.isPackage();
}

bool areFolders(const BrowserModel& pane, std::size_t limit) {
    const FileSelection& selection = pane.selection();
    if (selection.empty() || selection.count() > limit) return false;
    bool areAll = true;
    selection.set().forEach([&](ItemRef ref) { areAll = areAll && isFolder(selection.list().view(ref)); });
    return areAll;
}

std::vector<FileURL> folders(const BrowserModel& pane, std::size_t limit) {
    if (areFolders(pane, limit)) return selected(pane);
    if (pane.selection().empty() && pane.location().which() == Location::Case::folder)
        return {*pane.currentURL()};
    return {};
}

std::optional<FileURL> folder(const BrowserModel& pane) {
    std::optional<FileURL> one;
    if (areFolders(pane, 1))
        pane.selection().set().forEach([&](ItemRef ref) { one = pane.selection().list().view(ref).url(); });
    return one ? one : pane.currentURL();
}

std::vector<FileURL> selected(const BrowserModel& pane) {
    std::vector<FileURL> urls;
    const auto items = pane.selection().items();
    urls.reserve(items.size());
    std::ranges::transform(items, std::back_inserter(urls), &FileItem::url);
    return urls;
}

} // namespace ombrel::PaneTargets
