#pragma once

#include "services/InterfaceLanguage.h"

#include <QObject>

#include <cstdint>
#include <memory>

namespace ombrel {

/// Connects the half of the kit that knows no Qt to the application: its door to the main thread, its log,
/// its texts, the order of its names.
///
/// A program makes one on the main thread, right after the application object and before anything that starts
/// threads. While it goes, tasks that wait for the main thread are destroyed unrun, and so are those posted
/// later.
class QtConnections {
public:
    /// How much of the log is written unless QT_LOGGING_RULES says otherwise (categories "ombrel.access",
    /// "ombrel.directory", "ombrel.operations", "ombrel.volumes", "ombrel.ui").
    enum class Logging : std::uint8_t { errors, silent };

    explicit QtConnections(InterfaceLanguage language, Logging logging = Logging::errors);
    ~QtConnections();
    QtConnections(const QtConnections&) = delete;
    QtConnections& operator=(const QtConnections&) = delete;

    [[nodiscard]] const InterfaceLanguage& language() const noexcept { return language_; }

private:
    struct Door;

    InterfaceLanguage language_;
    std::shared_ptr<Door> door_;
};

} // namespace ombrel
