#include "listing/TextSearch.h"

#include "listing/NameCollation.h"

#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/usearch.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace ombrel {
namespace {

/// Beyond lie rare ideographs alone; they are always asked for.
constexpr char32_t rememberedCharacters = 0x20000;

std::u16string wide(std::string_view text) {
    std::u16string units(text.size(), u'\0'); // no text has more UTF-16 units than bytes
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length, text.data(),
                         static_cast<std::int32_t>(text.size()), 0xFFFD, nullptr, &status);
    units.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return units;
}

std::u16string wide(char32_t character) {
    if (character <= 0xFFFF) return {static_cast<char16_t>(character)};
    return {static_cast<char16_t>(U16_LEAD(character)), static_cast<char16_t>(U16_TRAIL(character))};
}

std::int32_t lengthOf(std::u16string_view text) {
    return static_cast<std::int32_t>(text.size());
}

/// Every character that takes part in a contraction.
USet* joinedCharacters(const UCollator* collator) {
    UErrorCode status = U_ZERO_ERROR;
    USet* joined = uset_openEmpty();
    USet* contractions = uset_openEmpty();
    ucol_getContractionsAndExpansions(collator, contractions, nullptr, true, &status);
    for (std::int32_t item = 0; item < uset_getItemCount(contractions); ++item) {
        std::array<char16_t, 64> text;
        UChar32 first = 0, last = 0;
        const auto length = uset_getItem(contractions, item, &first, &last, text.data(),
                                         static_cast<std::int32_t>(text.size()), &status);
        if (length > 0) uset_addAllCodePoints(joined, text.data(), std::min(length, 64));
    }
    uset_close(contractions);
    uset_removeRange(joined, 0, 0x7F);
    uset_freeze(joined);
    return joined;
}

} // namespace

/// What all searches in one locale share. Never changed once made, as ICU asks for where threads share a
/// collator.
struct TextSearch::Order {
    explicit Order(std::string name) : locale(std::move(name)) {
        UErrorCode status = U_ZERO_ERROR;
        collator = ucol_open(locale.c_str(), &status);
        if (U_FAILURE(status)) return;
        ucol_setStrength(collator, UCOL_PRIMARY);
        ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
        joined = joinedCharacters(collator);
    }
    ~Order() {
        if (joined) uset_close(joined);
        if (collator) ucol_close(collator);
    }
    Order(const Order&) = delete;
    Order& operator=(const Order&) = delete;

    /// The one for the locale in force; its making takes some milliseconds.
    static std::shared_ptr<const Order> current() {
        static auto& mutex = *new std::mutex; // guards last
        static auto& last = *new std::shared_ptr<const Order>;
        const std::scoped_lock lock(mutex);
        auto locale = NameCollation::locale();
        if (!last || last->locale != locale) last = std::make_shared<const Order>(std::move(locale));
        return last;
    }

    const std::string locale;
    UCollator* collator = nullptr;
    USet* joined = nullptr; // characters that weigh otherwise beside certain others
};

TextSearch::TextSearch(std::string_view text) : order_(Order::current()), text_(wide(text)) {
    if (!order_->collator) return;
    UErrorCode status = U_ZERO_ERROR;
    elements_ = ucol_openElements(order_->collator, u" ", 1, &status);
    search_ =
        usearch_openFromCollator(text_.data(), lengthOf(text_), u" ", 1, order_->collator, nullptr, &status);
    if (!search_) return;
    weights_ = weightsOf(text_);
    std::ranges::sort(weights_);
    nearness_.resize(rememberedCharacters, Nearness::unknown);
}

TextSearch::~TextSearch() {
    if (elements_) ucol_closeElements(elements_);
    if (search_) usearch_close(search_);
}

bool TextSearch::finds(std::string_view name) {
    if (!search_ || name.empty()) return false;
    name_ = wide(name);
    UErrorCode status = U_ZERO_ERROR;
    usearch_setText(search_, name_.data(), lengthOf(name_), &status);
    const std::int32_t at = usearch_first(search_, &status);
    // A text without weight of its own, such as a lone accent, is found as nothing at all.
    return U_SUCCESS(status) && at != USEARCH_DONE && usearch_getMatchedLength(search_) > 0;
}

TextSearch::Weights TextSearch::weightsOf(std::u16string_view text) {
    Weights weights;
    UErrorCode status = U_ZERO_ERROR;
    ucol_setText(elements_, text.data(), lengthOf(text), &status);
    for (auto element = ucol_next(elements_, &status); element != UCOL_NULLORDER && U_SUCCESS(status);
         element = ucol_next(elements_, &status))
        if (const auto weight = ucol_primaryOrder(element))
            weights.push_back(static_cast<std::uint16_t>(weight));
    return weights;
}

bool TextSearch::dependsOnNeighbours(char32_t character) const {
    return uset_contains(order_->joined, static_cast<UChar32>(character));
}

TextSearch::Nearness TextSearch::nearnessOf(char32_t character) {
    if (character >= rememberedCharacters) return Nearness::near;
    Nearness& known = nearness_[character];
    if (known != Nearness::unknown) return known;
    const auto own = weightsOf(wide(character));
    const bool isNear = own.empty() || dependsOnNeighbours(character) ||
                        std::ranges::any_of(own, [this](std::uint16_t weight) {
                            return std::ranges::binary_search(weights_, weight);
                        });
    return known = isNear ? Nearness::near : Nearness::apart;
}

bool TextSearch::mayWeighBeyondASCII(std::string_view name) {
    if (!search_) return false;
    for (std::size_t at = 0; at < name.size();) {
        if (static_cast<unsigned char>(name[at]) < 0x80) {
            ++at;
            continue;
        }
        UChar32 character = 0;
        U8_NEXT_OR_FFFD(name.data(), at, name.size(), character);
        if (nearnessOf(static_cast<char32_t>(character)) == Nearness::near) return true;
    }
    return false;
}

TextSearch::Spelling TextSearch::spelling() {
    if (!search_) return {};
    std::vector<std::pair<char, Weights>> letters;
    for (char16_t letter = u' '; letter < 0x7F; ++letter)
        if (letter < u'A' || letter > u'Z')
            letters.emplace_back(static_cast<char>(letter), weightsOf({&letter, 1}));
    Spelling spelling{.letters = std::string(), .fitsPlainNames = true};
    for (std::size_t at = 0; at < text_.size();) {
        UChar32 character = 0;
        U16_NEXT(text_.data(), at, text_.size(), character);
        if (dependsOnNeighbours(static_cast<char32_t>(character))) return {};
        for (auto rest = weightsOf(wide(static_cast<char32_t>(character))); !rest.empty();) {
            const auto found = std::ranges::find_if(letters, [&](const auto& letter) {
                const Weights& own = letter.second;
                return !own.empty() && own.size() <= rest.size() &&
                       std::equal(own.begin(), own.end(), rest.begin());
            });
            if (found == letters.end()) return {.letters = std::nullopt, .fitsPlainNames = false};
            spelling.letters->push_back(found->first);
            rest.erase(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(found->second.size()));
        }
    }
    if (spelling.letters->empty()) return {};
    return spelling;
}

} // namespace ombrel
