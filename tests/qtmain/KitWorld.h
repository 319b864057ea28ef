#pragma once

#include "listing/SystemCall.h"
#include "services/QtConnections.h"

#include "qtmain/EventLoop.h"

namespace ombrel::testing {

/// What a program sets up before it makes services, for one test: the kit connected to Qt, and the main
/// thread kept off the disk. At the end it lets work that is under way come to its end.
class KitWorld {
public:
    KitWorld() { SystemCall::forbidOnMainThread(true); }
    ~KitWorld() {
        (void)runUntilQuiet();
        SystemCall::forbidOnMainThread(false);
    }
    KitWorld(const KitWorld&) = delete;
    KitWorld& operator=(const KitWorld&) = delete;

private:
    QtConnections connections_{InterfaceLanguage{}, QtConnections::Logging::silent};
};

} // namespace ombrel::testing
