#pragma once

#include "base/FileURL.h"
#include "services/WorkspaceOpener.h"

#include <expected>
#include <string>
#include <vector>

/// Programs that live on by themselves.
namespace ombrel::DetachedProcess {

/// What was meant for the start of this program and would mislead another one.
[[nodiscard]] std::vector<std::string> ownStartupVariables();

/// Starts `words`, the first of which is the program's path, in `folder`. It leads a session of its own,
/// inherits no descriptor, and nobody waits for its end. The error is in the system's words. Blocking.
[[nodiscard]] std::expected<void, std::string>
start(const std::vector<std::string>& words, const FileURL& folder, const StartupEnvironment& environment);

} // namespace ombrel::DetachedProcess
