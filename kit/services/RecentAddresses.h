#pragma once

#include "base/FileURL.h"

#include <cstddef>
#include <vector>

namespace ombrel {

/// The places that were typed into the address bars since the program began, the last one first. Main thread
/// only.
class RecentAddresses {
public:
    static constexpr std::size_t most = 10;

    void add(const FileURL& place);
    [[nodiscard]] const std::vector<FileURL>& places() const noexcept { return places_; }

private:
    std::vector<FileURL> places_;
};

} // namespace ombrel
