#pragma once

#include <QDateTime>
#include <QObject>

#include <optional>

namespace ombrel {

/// The updater that the application brings along, as the page "Updates" of the settings sees it. Main thread.
class SoftwareUpdater : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] virtual bool checksAutomatically() const = 0;
    virtual void setChecksAutomatically(bool on) = 0;
    [[nodiscard]] virtual bool downloadsAutomatically() const = 0;
    virtual void setDownloadsAutomatically(bool on) = 0;
    [[nodiscard]] virtual bool includesBetaVersions() const = 0;
    virtual void setIncludesBetaVersions(bool on) = 0;
    /// Nothing when it never checked.
    [[nodiscard]] virtual std::optional<QDateTime> lastCheck() const = 0;

    virtual void checkNow() = 0;

Q_SIGNALS:
    /// One of the values above differs from what it was.
    void changed();
};

} // namespace ombrel
