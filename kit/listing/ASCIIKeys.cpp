#include "listing/ASCIIKeys.h"

#include <unicode/uset.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace ombrel {
namespace {

constexpr char levelSeparator = 0x01;
/// A number of common secondary weights is a byte: this much more than it, for up to `mostCommons` at a time.
constexpr std::uint8_t commonsBase = 0x04;
constexpr std::size_t mostCommons = 33;
/// Weights have no bytes below: 00 and 01 end keys and levels.
constexpr unsigned firstWeightByte = 2;
constexpr unsigned weightBytes = 256 - firstWeightByte;
/// ICU weighs longer runs of digits in pieces.
constexpr std::size_t mostDigits = 254;

constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

std::string collatorKey(const UCollator* collator, std::string_view name) {
    const std::u16string wide(name.begin(), name.end());
    std::string key(4 * name.size() + 64, '\0');
    const auto length =
        ucol_getSortKey(collator, wide.data(), static_cast<std::int32_t>(wide.size()),
                        reinterpret_cast<std::uint8_t*>(key.data()), static_cast<std::int32_t>(key.size()));
    key.resize(length > 0 ? std::min(static_cast<std::size_t>(length) - 1, key.size()) : 0);
    return key;
}

/// Whether some string of nothing but ASCII characters weighs otherwise than its characters one by one.
bool joinsASCII(const UCollator* collator) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<USet, decltype(&uset_close)> joined(uset_openEmpty(), &uset_close);
    ucol_getContractionsAndExpansions(collator, joined.get(), nullptr, true, &status);
    if (U_FAILURE(status)) return true;
    for (std::int32_t i = uset_getItemCount(joined.get()) - 1; i >= 0; --i) {
        std::array<char16_t, 64> text;
        UChar32 start = 0, end = 0;
        const auto length = uset_getItem(joined.get(), i, &start, &end, text.data(),
                                         static_cast<std::int32_t>(text.size()), &status);
        if (U_FAILURE(status)) return true;
        if (length >= 2 &&
            std::all_of(text.begin(), text.begin() + length, [](char16_t c) { return c < 0x80; }))
            return true;
    }
    return false;
}

/// Names that show whether keys are what they are taken for: lengths around the packing of secondary weights,
/// and numbers around each change of encoding.
std::vector<std::string> trialNames() {
    std::vector<std::string> names = {"",
                                      "a",
                                      "README.md",
                                      "IMG_20240131_235959~2 (copy).jpg",
                                      "0",
                                      "00",
                                      "a00b",
                                      "1 1-1",
                                      "v1.02.003-rc4+build.55"};
    for (const std::size_t length : {32, 33, 34, 65, 66, 67, 99, 100, 255})
        names.emplace_back(length, 'm');
    for (const long number : {9L,
                              10L,
                              73L,
                              74L,
                              327L,
                              328L,
                              10'233L,
                              10'234L,
                              74'749L,
                              74'750L,
                              1'042'489L,
                              1'042'490L,
                              9'999'999L,
                              10'000'000L,
                              99'000'000L,
                              123'456'789L,
                              1'234'567'890L,
                              100'000'000'000L,
                              123'456'789'012'345L,
                              1'000'000'000'000'000'000L})
        names.push_back("x" + std::to_string(number) + "y0" + std::to_string(number));
    for (const std::size_t length : {19, 40, 41, 120, 251, 254})
        names.emplace_back(length, '7');
    for (char c = 1; c < 0x7F; ++c)
        names.push_back({'0', c, c, '5', c, 'Z', c});
    return names;
}

} // namespace

/// The key under way, on the stack.
struct ASCIIKeys::Writer {
    std::array<char, longestName * sizeof(Character::primary) + 64> bytes;
    char* end = bytes.data();
    std::size_t secondaries = 0;

    void put(unsigned byte) noexcept { *end++ = static_cast<char>(byte); }
    void put(const Character& character) noexcept {
        std::memcpy(end, character.primary.data(), character.primary.size());
        end += character.primaryLength;
        secondaries += character.secondaries;
    }
    void finish() noexcept {
        *end++ = levelSeparator;
        for (; secondaries > mostCommons; secondaries -= mostCommons)
            put(commonsBase + mostCommons);
        if (secondaries > 0) put(commonsBase + static_cast<unsigned>(secondaries));
    }
};

/// A character's weights out of the key of a name that is this character alone.
std::optional<ASCIIKeys::Character> ASCIIKeys::weighed(std::string_view key) {
    Character character;
    const auto separator = key.find(levelSeparator);
    if (separator > character.primary.size() || key.size() > separator + 2) return std::nullopt;
    std::ranges::copy(key.substr(0, separator), character.primary.begin());
    character.primaryLength = static_cast<std::uint8_t>(separator);
    const unsigned commons =
        key.size() == separator + 1 ? commonsBase : static_cast<unsigned char>(key.back());
    if (commons < commonsBase || commons > commonsBase + 3) return std::nullopt;
    character.secondaries = static_cast<std::uint8_t>(commons - commonsBase);
    character.role = Role::weighed;
    return character;
}

std::optional<ASCIIKeys> ASCIIKeys::learn(const UCollator* collator) {
    if (joinsASCII(collator)) return std::nullopt;
    ASCIIKeys learned;
    for (char c = 1; c < 0x7F; ++c) {
        auto& character = learned.characters_[static_cast<unsigned char>(c)];
        if (isDigit(c))
            character.role = Role::digit;
        else
            character = weighed(collatorKey(collator, {&c, 1})).value_or(Character());
    }
    const auto zero = collatorKey(collator, "0");
    if (zero.empty()) return std::nullopt;
    learned.digitLead_ = zero.front();
    for (const auto& name : trialNames()) {
        std::string key;
        if (learned.append(name, key) && key != collatorKey(collator, name)) return std::nullopt;
    }
    return learned;
}

/// ICU's numeric ordering: small values are dense (after the lead byte come one, two or three bytes in base
/// 254 whose first tells their number); larger ones are the number of digit pairs and the pairs, each an odd
/// byte, the last one less by one and zero pairs at the end left out, with a new weight begun after every
/// third byte.
void ASCIIKeys::appendNumber(std::string_view digits, Writer& writer) const {
    writer.put(static_cast<unsigned char>(digitLead_));
    ++writer.secondaries;
    if (digits.size() <= 7) {
        unsigned value = 0;
        for (const char digit : digits)
            value = value * 10 + static_cast<unsigned>(digit - '0');
        constexpr unsigned small = 74, medium = 40 * weightBytes, large = 16 * weightBytes * weightBytes;
        if (value < small) return writer.put(firstWeightByte + value);
        value -= small;
        if (value < medium) {
            writer.put(firstWeightByte + small + value / weightBytes);
            return writer.put(firstWeightByte + value % weightBytes);
        }
        value -= medium;
        if (value < large) {
            writer.put(firstWeightByte + small + 40 + value / (weightBytes * weightBytes));
            writer.put(firstWeightByte + value / weightBytes % weightBytes);
            return writer.put(firstWeightByte + value % weightBytes);
        }
    }
    constexpr unsigned pairsBase = firstWeightByte + 74 + 40 + 16 - 4;
    writer.put(pairsBase + static_cast<unsigned>((digits.size() + 1) / 2));
    while (digits.ends_with("00"))
        digits.remove_suffix(2);
    unsigned inWeight = 1;
    for (std::size_t at = 0; at < digits.size();) {
        unsigned pair = static_cast<unsigned>(digits[at++] - '0');
        if (at > 1 || digits.size() % 2 == 0) pair = pair * 10 + static_cast<unsigned>(digits[at++] - '0');
        if (inWeight == 3) {
            writer.put(static_cast<unsigned char>(digitLead_));
            ++writer.secondaries;
            inWeight = 0;
        }
        writer.put(11 + 2 * pair - (at == digits.size() ? 1 : 0));
        ++inWeight;
    }
}

bool ASCIIKeys::append(std::string_view name, std::string& keys) const {
    if (name.size() > longestName) return false;
    Writer writer;
    for (std::size_t at = 0; at < name.size(); ++at) {
        const auto& character = characters_[static_cast<unsigned char>(name[at])];
        if (character.role == Role::weighed) [[likely]] {
            writer.put(character);
            continue;
        }
        if (character.role == Role::foreign) return false;
        auto start = at;
        while (at + 1 < name.size() && isDigit(name[at + 1]))
            ++at;
        while (start < at && name[start] == '0')
            ++start;
        if (at + 1 - start > mostDigits) return false;
        appendNumber(name.substr(start, at + 1 - start), writer);
    }
    writer.finish();
    keys.append(writer.bytes.data(), writer.end);
    return true;
}

} // namespace ombrel
