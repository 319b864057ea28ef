#pragma once

#include <memory>

namespace ombrel {

class AppServices;
class BrowserModel;

/// A pane that lists what the services list, shows the items that the settings want shown, and follows both.
/// `services` must outlive it. Main thread only.
[[nodiscard]] std::unique_ptr<BrowserModel> makePane(AppServices& services);

} // namespace ombrel
