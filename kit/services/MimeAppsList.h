#pragma once

#include <string>
#include <string_view>

/// The desktop's file of associations ("mimeapps.list") as text.
namespace ombrel::MimeAppsList {

/// The text with `application` as the default for `type` and first among the added associations, and no
/// longer among the removed ones. Every other line stays as it is, understood or not.
[[nodiscard]] std::string withDefault(std::string_view text, std::string_view type,
                                      std::string_view application);

} // namespace ombrel::MimeAppsList
