#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct UStringSearch;
struct UCollationElements;

namespace ombrel {

/// ICU's search for one text at the collation's primary level, in the locale in force. Finds nothing when
/// ICU's data is missing. One thread at a time.
class TextSearch {
public:
    explicit TextSearch(std::string_view text);
    ~TextSearch();
    TextSearch(const TextSearch&) = delete;
    TextSearch& operator=(const TextSearch&) = delete;

    /// `name` is UTF-8, other bytes count as U+FFFD.
    [[nodiscard]] bool finds(std::string_view name);

    /// Whether some character of `name` beyond ASCII weighs the same as one of the text's, or has no weight
    /// of its own. Where none does, such characters only divide the name: what is found, is found between
    /// them. Much cheaper than `finds`.
    [[nodiscard]] bool mayWeighBeyondASCII(std::string_view name);

    /// What the text is worth in ASCII.
    struct Spelling {
        /// Lower-case letters and signs that weigh the same as the text ("strasse" for "Straße"), if there
        /// are such.
        std::optional<std::string> letters;
        /// Whether names of ASCII alone may hold the text. True as well where that is not known.
        bool fitsPlainNames = true;
    };
    [[nodiscard]] Spelling spelling();

private:
    using Weights = std::vector<std::uint16_t>;
    enum class Nearness : std::uint8_t { unknown, apart, near };

    [[nodiscard]] Weights weightsOf(std::u16string_view text);
    [[nodiscard]] Nearness nearnessOf(char32_t character);
    [[nodiscard]] bool dependsOnNeighbours(char32_t character) const;

    struct Order;

    const std::shared_ptr<const Order> order_;
    const std::u16string text_;
    std::u16string name_;
    UStringSearch* search_ = nullptr;
    UCollationElements* elements_ = nullptr;
    Weights weights_;                ///< of the text, sorted
    std::vector<Nearness> nearness_; ///< by character, as far as asked
};

} // namespace ombrel
