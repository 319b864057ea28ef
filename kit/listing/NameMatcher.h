#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ombrel {

class TextSearch;

/// Whether names contain a text as people see it, case and diacritics aside.
///
/// A name matches when it holds the text with ASCII letters in either case, or when it does so by the primary
/// level of the Unicode collation algorithm with the locale's tailoring (ICU): "resume" is in "Résumé.pdf",
/// and "ü" in "UBER". Where text and name are plain ASCII the first rule alone decides, in every locale, so
/// that letter pairs that a language sorts as one letter are still found by each of the two. The empty text
/// is in every name. Names are bytes; what is not UTF-8 in them matches itself. One thread at a time.
class NameMatcher {
public:
    explicit NameMatcher(std::string_view text);
    NameMatcher(NameMatcher&&) noexcept;
    NameMatcher& operator=(NameMatcher&&) noexcept;
    ~NameMatcher();

    [[nodiscard]] bool matches(std::string_view name);

private:
    /// What a name must hold as bytes, ASCII letters lowered. A text such as "é" that the locale takes for
    /// ASCII letters is looked for as these.
    std::string folded_;
    std::string text_;
    bool isASCII_; ///< `folded_` is, so that a plain name needs no collation
    bool fitsPlainNames_ = true;
    std::string long_;                   ///< for names longer than the stack's buffer
    std::unique_ptr<TextSearch> search_; ///< made for the first name that needs it
};

} // namespace ombrel
