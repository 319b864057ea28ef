#pragma once

#include "base/FileURL.h"

#include <functional>

namespace ombrel {

class FolderDrop;

/// What the user wants done with a place of the navigation tree or the home page. Whoever owns the view sets
/// these; what nobody has set is not offered.
struct PlaceIntents {
    using OnFolder = std::function<void(const FileURL&)>;

    OnFolder open = {}; ///< in the active tab
    std::function<void()> openHome = {};
    OnFolder openInNewTab = {};    ///< which becomes active
    OnFolder openInTabBehind = {}; ///< which does not
    OnFolder openInNewWindow = {};
    OnFolder openInTerminal = {};
    OnFolder copyPath = {};
    OnFolder pasteInto = {};
    std::function<bool()> canPaste = {}; ///< whether there are files to be pasted
    OnFolder showProperties = {};

    /// Takes what is dropped on folders; must outlive the view.
    FolderDrop* drops = nullptr;
};

} // namespace ombrel
