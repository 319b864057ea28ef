#pragma once

#include <functional>
#include <string>
#include <string_view>

/// The log of the half that knows no Qt. The application connects it to its own logging once, at start; until
/// then nothing is written. Any thread.
namespace ombrel::Log {

enum class Category : unsigned char { access, directory, operations, volumes, ui };
enum class Level : unsigned char { info, error };

using Sink = std::function<void(Category, Level, const std::string&)>;

/// An empty sink disconnects. A call that is under way on another thread may still reach the old sink.
void connect(Sink sink);

void info(Category category, const std::string& line);
void error(Category category, const std::string& line);

[[nodiscard]] std::string_view name(Category category) noexcept;

} // namespace ombrel::Log
