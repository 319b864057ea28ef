#pragma once

#include "base/FileURL.h"
#include "services/AppServices.h"

#include <QObject>
#include <QRect>

#include <optional>
#include <vector>

namespace ombrel {

class BrowserWindow;
class Theme;

/// Opens the program's windows, all over the same services, and keeps how the last one was left. Main thread
/// only.
class Windows final : public QObject {
    Q_OBJECT

public:
    /// `theme` and `services` must outlive it. From now on requests for windows come here.
    Windows(const Theme& theme, AppServices& services);
    ~Windows() override;

    /// A window that is not shown yet; at home without a folder.
    [[nodiscard]] BrowserWindow* make(const std::optional<FileURL>& folder) const;
    /// Shows a window beside the one that the user works in, or where the last one was left.
    void open(const std::optional<FileURL>& folder);
    /// A window for each folder, or one at home.
    void open(const std::vector<FileURL>& folders);

private:
    [[nodiscard]] static std::vector<BrowserWindow*> shown();
    /// The one that the user works in, or did last.
    [[nodiscard]] BrowserWindow* latest() const;
    void place(BrowserWindow& window) const;
    void keepState(const BrowserWindow& closing);

    const Theme* theme_;
    AppServices* services_;
};

} // namespace ombrel
