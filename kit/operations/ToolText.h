#pragma once

#include <string>
#include <string_view>

/// How tools write names.
namespace ombrel::ToolText {

/// The bytes that bsdtar means: a backslash and three octal digits stand for that byte, a doubled backslash
/// for one, and \a \b \f \n \r \t \v are those of C. Anything else stays.
[[nodiscard]] std::string unescaped(std::string_view text);

/// The last component of a path, a final "/" left aside.
[[nodiscard]] std::string_view lastComponent(std::string_view path);

} // namespace ombrel::ToolText
