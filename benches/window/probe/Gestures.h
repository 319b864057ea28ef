#pragma once

#include <string>

namespace ombrel::bench {

/// What loading a huge folder and working in it costs the main thread; tells the figures.
void probeGestures(const std::string& emptyFolder, const std::string& hugeFolder);

} // namespace ombrel::bench
