#pragma once

#include "base/FileURL.h"

#include <QPointer>

#include <vector>

namespace ombrel {

class BrowserTabsModel;

namespace DroppedFolders {

/// Opens those of `items` that are folders, or lead to one, as tabs behind the active one, in their order,
/// and activates the first. They are looked at on a worker. Main thread only; nothing happens when the tabs
/// have gone by then.
void openAsTabs(QPointer<BrowserTabsModel> tabs, std::vector<FileURL> items);

} // namespace DroppedFolders
} // namespace ombrel
