#pragma once

#include "base/FileURL.h"
#include "browser/BrowserModel.h"

#include <cstddef>
#include <optional>
#include <vector>

/// What a command of a pane is about. Cheap enough for menus: none looks at more than `limit` items.
namespace ombrel::PaneTargets {

/// Whether the item is shown in place when it is opened.
[[nodiscard]] bool isFolder(FileItemView item);

/// Whether between one and `limit` items are selected, and all are folders.
[[nodiscard]] bool areFolders(const BrowserModel& pane, std::size_t limit);

/// The selected folders, in their order, when `areFolders`; without a selection the folder that is shown.
/// Empty where there is neither.
[[nodiscard]] std::vector<FileURL> folders(const BrowserModel& pane, std::size_t limit);

/// The one selected folder, else the folder that is shown; nothing at home.
[[nodiscard]] std::optional<FileURL> folder(const BrowserModel& pane);

/// The locations of all selected items, in their order.
[[nodiscard]] std::vector<FileURL> selected(const BrowserModel& pane);

} // namespace ombrel::PaneTargets
