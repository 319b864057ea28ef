#pragma once

namespace ombrel::Compositing {

/// Whether what lies behind a window is seen through its transparent parts. Asks the display, which takes a
/// round trip: for windows that are about to be made. Main thread only.
[[nodiscard]] bool isOn();

} // namespace ombrel::Compositing
