#pragma once

#include <string>

namespace ombrel::bench {

/// A window of Qt's with nothing but a tree of the folder's names, as the least that a program of Qt can be.
int showBareTree(const std::string& folder);

} // namespace ombrel::bench
