#pragma once

#include "base/FileURL.h"

/// Where a program keeps what belongs to its user (XDG Base Directory Specification). Read from the
/// environment at each call; variables that are empty or hold no absolute path do not count. Makes no system
/// call but the one that `PathInput::userHomeDirectory` makes where $HOME is missing.
namespace ombrel::UserFolders {

/// $XDG_CONFIG_HOME, otherwise ~/.config.
[[nodiscard]] FileURL config();
/// $XDG_DATA_HOME, otherwise ~/.local/share.
[[nodiscard]] FileURL data();

/// $XDG_CACHE_HOME, otherwise ~/.cache.
[[nodiscard]] FileURL cache();

/// The program's own folder in one of these.
[[nodiscard]] FileURL ours(const FileURL& folder);

} // namespace ombrel::UserFolders
