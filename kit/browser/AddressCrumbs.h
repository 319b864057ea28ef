#pragma once

#include "base/FileURL.h"

#include <span>
#include <string>
#include <vector>

namespace ombrel {

class AppServices;

/// One folder of an address, as the address bar shows it.
struct AddressCrumb {
    FileURL folder;
    std::string name; ///< for people, UTF-8

    friend bool operator==(const AddressCrumb&, const AddressCrumb&) = default;
};

namespace AddressCrumbs {

/// The folders on the way to `location`, from the nearest of `starts` that it lies in; from the root where
/// it lies in none. The last one is the location itself.
[[nodiscard]] std::vector<AddressCrumb> of(const FileURL& location, std::span<const AddressCrumb> starts);

/// Where addresses begin now: granted folders, volumes and the home folder.
[[nodiscard]] std::vector<AddressCrumb> startsOf(const AppServices& services, const FileURL& home);

/// What a folder is called as a place: what its volume is when it is the whole of one, else as by itself.
/// `services` knows the volumes and may be missing. UTF-8.
[[nodiscard]] std::string titleOf(const FileURL& folder, const AppServices* services);

/// What a folder is called by itself: its name, or its path for the root. UTF-8.
[[nodiscard]] std::string nameOf(const FileURL& folder);

} // namespace AddressCrumbs
} // namespace ombrel
