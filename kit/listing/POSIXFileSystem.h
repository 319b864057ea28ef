#pragma once

#include "base/FileURL.h"
#include "listing/POSIX.h"

#include <cstdint>

/// Calls about file systems as a whole.
namespace ombrel::POSIX {

/// Room on a file system, in bytes.
struct Capacity {
    std::int64_t total = 0;
    std::int64_t available = 0; ///< for users without privileges

    friend bool operator==(const Capacity&, const Capacity&) = default;
};

/// Of the file system that holds `url`; links are followed.
[[nodiscard]] Result<Capacity> capacity(const FileURL& url);

} // namespace ombrel::POSIX
