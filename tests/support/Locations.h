#pragma once

#include "base/FileURL.h"

#include <string_view>

namespace ombrel::testing {

/// A location by its absolute path.
[[nodiscard]] inline FileURL at(std::string_view path) {
    return *FileURL::fromPath(path);
}

} // namespace ombrel::testing
