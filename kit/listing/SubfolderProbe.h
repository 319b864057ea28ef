#pragma once

#include "base/FileURL.h"

#include <cstdint>
#include <stop_token>

namespace ombrel {

/// A quick look whether a folder has folders in it, for the arrow beside its name. Any thread but the main
/// one.
struct SubfolderProbe {
    enum class Answer : std::uint8_t {
        none,
        some,
        likely, ///< it cannot be opened, or its first entries are files and there are many more
    };

    bool showsHidden = false;
    bool showsProtected = false; ///< the systems' own items

    /// Blocking; reads `mostEntries` entries at most and stops at the first folder, or link to one, that is
    /// shown. `likely` once stop is requested.
    [[nodiscard]] Answer look(const FileURL& folder, const std::stop_token& stop = {}) const;

    static constexpr int mostEntries = 2000;
};

} // namespace ombrel
