#pragma once

#include "services/AppServices.h"

#include <memory>

namespace ombrel {

/// The services of the running program, over the desktop's own facilities and nothing started yet. `settings`
/// have been read already, because the language stands before everything else; `pasteboard` must outlive
/// them. Main thread only.
[[nodiscard]] std::unique_ptr<AppServices> makeServices(std::unique_ptr<AppSettings> settings,
                                                        Pasteboard& pasteboard);

} // namespace ombrel
