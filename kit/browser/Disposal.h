#pragma once

#include "base/Worker.h"

#include <system_error>
#include <utility>

namespace ombrel::Disposal {

/// Destroys `value` on a worker: freeing the lists of a large folder takes tens of milliseconds, which the
/// main thread does not have.
template <typename T>
void elsewhere(T value) {
    try {
        Worker("ombrel-disposal", [doomed = std::move(value)](const std::stop_token&) {}).detach();
    } catch (const std::system_error&) {
        // No thread is left: it is destroyed here.
    }
}

} // namespace ombrel::Disposal
