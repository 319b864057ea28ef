#pragma once

#include <string>
#include <string_view>

/// Stand-ins for texts in other languages, to see whether an interface has room for them: each word of the
/// English text two fifths longer.
namespace ombrel::PictureTexts {

/// With umlauts and long words. Placeholders, numbers and punctuation stay.
[[nodiscard]] std::string germanLike(std::string_view text);
/// In Han characters, two fifths wider than the words and without spaces between them.
[[nodiscard]] std::string chineseLike(std::string_view text);

} // namespace ombrel::PictureTexts
