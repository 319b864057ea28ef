#pragma once

#include "base/FileURL.h"
#include "services/AppServices.h"
#include "ui/Theme.h"

#include <QObject>
#include <QPointer>

#include <functional>

namespace ombrel {

class ProgressWindow;

/// Shows the jobs of all windows, and keeps the program running as long as there is a window or a job.
/// Main thread only.
class Lifetime final : public QObject {
    Q_OBJECT

public:
    /// Both must outlive it. `openWindow` shows a folder in a window of its own. To be made before the
    /// services are started.
    Lifetime(const Theme& theme, AppServices& services, std::function<void(const FileURL&)> openWindow);

private:
    void openFolder(const FileURL& folder);
    void consider();
    void askBeforeEnd();
    void confirm(const std::function<void(bool)>& decide);

    const Theme* theme_;
    AppServices* services_;
    std::function<void(const FileURL&)> openWindow_;
    QPointer<ProgressWindow> progress_;
};

} // namespace ombrel
