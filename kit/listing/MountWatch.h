#pragma once

#include "base/Worker.h"
#include "listing/MountTable.h"

#include <functional>
#include <memory>

namespace ombrel {

/// Tells when something is mounted, unmounted or moved.
class MountWatch {
public:
    /// Takes the table as it is, first on `start` and then after each change; called on a thread of the
    /// watch's.
    using Changed = std::function<void(MountTable)>;

    virtual ~MountWatch() = default;
    /// Once, and again after `stop`.
    virtual void start(Changed changed) = 0;
    /// `changed` may still be called once when a change is just being told.
    virtual void stop() = 0;

    /// The kernel's table, through libmount.
    [[nodiscard]] static std::unique_ptr<MountWatch> system();
};

} // namespace ombrel
