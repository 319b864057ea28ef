#pragma once

#include "cli/Command.h"

#include <string>

namespace ombrel::cli {

/// What the program can do: its commands and the options that all of them take.
[[nodiscard]] std::string programHelp();

/// How a command is used.
[[nodiscard]] std::string commandHelp(const Command& command);

} // namespace ombrel::cli
