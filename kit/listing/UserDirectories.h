#pragma once

#include "base/FileURL.h"
#include "listing/KnownFolder.h"

#include <optional>
#include <string_view>

/// The folders that the desktop has set up for a user (the file "user-dirs.dirs" of xdg-user-dirs).
namespace ombrel::UserDirectories {

/// Puts into `folders` what the text of such a file names: lines XDG_NAME_DIR="$HOME/..." or with an absolute
/// path, backslashes before what they quote. A folder that is the home itself counts as switched off.
void configure(std::string_view text, KnownFolders& folders);

/// Where the known folders of a user stand: as the file in `config` sets them up as far as such folders
/// exist, otherwise by the table of names. A place on a mount that may hang is not looked at and counts as
/// existing. Blocking.
[[nodiscard]] KnownFolders read(const FileURL& home, const FileURL& config);

/// Where the user keeps patterns of new files: as the file in `config` says, otherwise "Templates" in `home`;
/// nothing when that is switched off. Whether the folder exists is not looked at. Blocking.
[[nodiscard]] std::optional<FileURL> templates(const FileURL& home, const FileURL& config);

} // namespace ombrel::UserDirectories
