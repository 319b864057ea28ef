#pragma once

#include "listing/SystemCall.h"
#include "services/QtConnections.h"

#include <optional>

#include "qtmain/EventLoop.h"

namespace ombrel::testing {

/// Whether the test program is set up as a whole (see KitEnvironment), so that no test needs to be.
inline bool isKitSetUp = false;

/// What a program sets up before it makes services, for one test: the kit connected to Qt, and the main
/// thread kept off the disk. At the end it lets work that is under way come to its end.
class KitWorld {
public:
    KitWorld() {
        if (isKitSetUp) return;
        connections_.emplace(InterfaceLanguage{}, QtConnections::Logging::silent);
        SystemCall::forbidOnMainThread(true);
    }
    ~KitWorld() {
        (void)runUntilQuiet();
        if (connections_) SystemCall::forbidOnMainThread(false);
    }
    KitWorld(const KitWorld&) = delete;
    KitWorld& operator=(const KitWorld&) = delete;

private:
    std::optional<QtConnections> connections_;
};

} // namespace ombrel::testing
