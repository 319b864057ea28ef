#pragma once

#include <functional>

namespace ombrel::testing {

/// Runs `body` on a thread that is the user nobody, because permission checks do not bind root; threads that
/// it starts are nobody too. Answers what the body does, false when the machine does not allow the change.
[[nodiscard]] bool asNobody(const std::function<bool()>& body);

} // namespace ombrel::testing
