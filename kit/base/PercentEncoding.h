#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Bytes written as text that holds only harmless characters (RFC 3986, section 2.1), and read back.
namespace ombrel::PercentEncoding {

/// Letters, digits and the bytes in `alsoBare` stay as they are, every other byte becomes "%" and two
/// upper-case hexadecimal digits.
[[nodiscard]] std::string encoded(std::string_view bytes, std::string_view alsoBare);

/// Nothing when an escape is cut short, is not hexadecimal or stands for NUL.
[[nodiscard]] std::optional<std::string> decoded(std::string_view text);

} // namespace ombrel::PercentEncoding
