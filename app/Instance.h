#pragma once

#include "base/FileURL.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <vector>

namespace ombrel {

/// The program as one for all of the user's windows: who starts it again has the running one open the
/// windows. It goes by the desktop's own convention, so that the desktop can do so too. Main thread only.
///
/// Without a bus, or when the one that has the name does not answer, every start is a program of its own.
class Instance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// Opens a window for each folder, or one where there is none.
    using OpenWindows = std::function<void(const std::vector<FileURL>&)>;

    /// The session's bus; nothing where there is none.
    [[nodiscard]] static std::optional<QDBusConnection> sessionBus();

    explicit Instance(QDBusConnection bus);
    ~Instance() override;

    /// Tries to become the one that others find, and otherwise has that one open `folders`: true when it has.
    /// Waits a moment for the answer. False: this program is to open them itself.
    [[nodiscard]] bool handOver(const std::vector<FileURL>& folders);
    /// What others ask for from now on, and have asked for meanwhile, comes to `openWindows`.
    void serve(OpenWindows openWindows);

    // ---- As the desktop calls them
    Q_SCRIPTABLE Q_INVOKABLE void Activate(const QVariantMap& platformData);
    Q_SCRIPTABLE Q_INVOKABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_SCRIPTABLE Q_INVOKABLE void ActivateAction(const QString& action, const QVariantList& parameters,
                                                 const QVariantMap& platformData);

private:
    void open(const std::vector<FileURL>& folders, const QVariantMap& platformData);
    [[nodiscard]] bool claimName();
    [[nodiscard]] bool call(const std::vector<FileURL>& folders) const;

    QDBusConnection bus_;
    OpenWindows openWindows_;
    std::vector<std::vector<FileURL>> waiting_; ///< asked for before anyone served
    bool hasName_ = false;
};

} // namespace ombrel
