#pragma once

#include <functional>

/// The one door to the main thread, for the half that knows no Qt.
namespace ombrel::MainThread {

using Task = std::move_only_function<void()>;

/// Connects the event loop; called on the main thread, once, before workers start. An empty function
/// disconnects: tasks that are posted from then on are destroyed unrun.
void connect(std::function<void(Task)> post);

/// Runs `task` on the main thread, later, in the order of posting. `task` looks itself whether what it is
/// meant for still lives: it is destroyed on the main thread, or unrun where it was posted when no loop is
/// connected.
void post(Task task);

/// Whether the caller is on the thread that called `connect`.
[[nodiscard]] bool isCurrent() noexcept;

} // namespace ombrel::MainThread
