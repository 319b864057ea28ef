#pragma once

#include "base/FileURL.h"
#include "ui/FileClass.h"

#include <QString>

#include <functional>

class QObject;

namespace ombrel {

/// What a dialog says about the one item that it is about.
struct ItemGlance {
    FileClass fileClass = FileClass::other;
    QString type;
    QString size; ///< empty where it has none
    QString date; ///< likewise

    /// Looks at the item on a worker and calls `use` on the main thread, unless `context` has gone by then.
    static void take(const FileURL& url, QObject* context, std::function<void(const ItemGlance&)> use);
};

} // namespace ombrel
