#pragma once

#include "base/FileURL.h"

#include <QMimeData>
#include <QString>
#include <Qt>

#include <functional>
#include <optional>
#include <vector>

namespace ombrel {

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

    /// What dropping `items` on `folder` would do now, and what that is called ("Move to Reports").
    struct DropEffect {
        Qt::DropAction action = Qt::IgnoreAction;
        QString label = {};
    };
    std::function<DropEffect(const QMimeData& items, const FileURL& folder, Qt::KeyboardModifiers modifiers,
                             Qt::DropActions offered)>
        dropEffect = {};
    /// Does it.
    std::function<void(const QMimeData& items, const FileURL& folder, Qt::DropAction action)> drop = {};
};

} // namespace ombrel
