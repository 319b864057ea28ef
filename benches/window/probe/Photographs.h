#pragma once

#include <string>

namespace ombrel::bench {

/// Fills the folder with small photographs, and the cache of thumbnails with theirs, as a desktop has them
/// that has shown the folder before.
void makePhotographs(const std::string& folder, int count);

/// Scrolls through the folder's icons, each with its thumbnail, from the first to the last; tells the
/// figures.
void probePhotographs(const std::string& folder);

} // namespace ombrel::bench
