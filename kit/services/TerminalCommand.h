#pragma once

#include "base/FileURL.h"

#include <optional>
#include <string>
#include <vector>

/// Which program is the terminal, and how it is told to begin in a folder.
namespace ombrel::TerminalCommand {

/// The words to start it with: the first one that is there, of the desktop's own choice, the system's, and
/// the terminals of the usual desktops. `search` are folders joined by ":". The folder is to be its working
/// folder too. Nothing when there is no terminal. Blocking.
[[nodiscard]] std::optional<std::vector<std::string>> find(const FileURL& folder, const std::string& search);

} // namespace ombrel::TerminalCommand
